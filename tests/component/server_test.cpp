// The public face of Quillon.dll: identities, slots, entry points, counting.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "automation/dispatch_object.h"
#include "automation/late_bound.h"
#include "automation/text.h"
#include "component/quillon_interfaces.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/fake_platform.h"
#include "tests/component/quillon_library.h"

namespace quillon::component::test {

using automation::Bstr;
using automation::ComPtr;
using automation::LateBound;
using automation::LiveCount;
using automation::makeObject;
using automation::toUtf8;
using automation::Variant;
using automation::test::ComScope;
namespace {

GUID guid(const wchar_t* text) {
  GUID id{};
  EXPECT_EQ(CLSIDFromString(text, &id), S_OK);
  return id;
}

// One class with its members in slot order, as the host platform is built against them: how a member is used, its name,
// the types of its arguments, and behind an arrow the type of its result. Everything is passed by reference.
struct Face {
  const char* name;
  const wchar_t* classId;
  const wchar_t* interfaceId;
  std::vector<std::string> slots;
};

const std::vector<Face>& faces() {
  static const std::vector<Face> all = {
      {"clsSFC_Item",
       L"{e518f10c-f08e-4684-a465-50e6808d031e}",
       L"{683a557b-9620-472b-b7d8-c2789fe4e5be}",
       {"get tarn_tmpTable() -> text", "put tarn_tmpTable(text)", "TempTablename() -> text", "MoveDataDetail() -> text",
        "GETSQL(object)", "Execute(object)"}},
      {"ClsBusiness",
       L"{ae3cc61b-e0a2-4f0d-a960-c82092c5035e}",
       L"{afec4577-fd39-4f64-8a74-28f807e364e4}",
       {"Init(object) -> variant"}},
      {"clsFXDetail",
       L"{ccf4cf6e-f448-4a03-bf9a-7cea240096aa}",
       L"{ed975856-11e1-4685-94af-09edd06376ea}",
       {"GETSQL(object)", "Execute(object)"}},
      {"clsOutsum_Item",
       L"{fddec39e-a286-4e4a-9677-98f46845fca4}",
       L"{b1f154af-3ad6-4c9d-a0bd-e9b0417d2a0a}",
       {"get tarn_tmpTable() -> text", "put tarn_tmpTable(text)", "TempTablename() -> text", "MoveDataDetail() -> text",
        "GETSQL(object)", "Execute(object)"}},
      {"clsFXWt",
       L"{c16213bb-4741-47cf-9eac-1fcab47e3e06}",
       L"{1d5d585c-7c7b-47f7-ac7c-b8b44b9570b6}",
       {"get msLanguage() -> text", "put msLanguage(text)", "get objFilter() -> object", "put objFilter(object)",
        "putref objFilter(object)", "get tarn_tmpTable() -> text", "put tarn_tmpTable(text)",
        "get m_sBaseTable() -> text", "put m_sBaseTable(text)", "GETSQL(object)", "MoveDataDetail() -> text",
        "Execute(object)"}},
      {"clsWtFilterControl",
       L"{ca218940-7a13-4cca-b5bd-73789593d6f5}",
       L"{d1071287-567a-40cf-847f-d542af028d02}",
       {"get msLanguage() -> text", "put msLanguage(text)", "CallBack_FilterInit(object) -> variant",
        "CallBack_ValueChange(text, object)", "CallBack_FilterClick(object, boolean) -> variant"}},
      {"clsSFCFilterControl",
       L"{7ecd1526-372f-43c7-be9c-5923a07915ca}",
       L"{11e9125c-4e71-4687-995b-564a7be89bfa}",
       {"CallBack_FilterInit(object) -> variant", "CallBack_ValueChange(text, object)",
        "CallBack_FilterClick(object, boolean) -> variant", "CallBack_ReportViewChange(text, object, variant)",
        "CallBack_ReportViewInit(object, variant)", "InitYear()", "InitGrade()"}},
      {"clsFilterControl",
       L"{b5857a26-9af9-40af-ba23-3c32bc93cb5f}",
       L"{e428aaa6-748f-4503-8ca1-45af89473a89}",
       {"CallBack_FilterInit(object) -> variant", "CallBack_FilterClick(object, boolean) -> variant",
        "CallBack_ValueChange(text, object)", "CallBack_ReportViewChange(text, object, variant)",
        "CallBack_ReportViewInit(object, variant)"}},
  };
  return all;
}

class ServerTest : public testing::Test {
 protected:
  QuillonLibrary library_;
  ComScope apartment_;
};

std::string typeName(const TYPEDESC& type) {
  if (type.vt != VT_PTR) return "by value";
  static const std::map<VARTYPE, std::string> names = {
      {VT_BSTR, "text"}, {VT_DISPATCH, "object"}, {VT_BOOL, "boolean"}, {VT_VARIANT, "variant"}};
  const auto found = names.find(type.lptdesc->vt);
  return found == names.end() ? "other" : found->second;
}

// A member as the type library describes it, in the words of Face.
std::string described(ITypeInfo& info, const FUNCDESC& function) {
  Bstr name;
  EXPECT_EQ(info.GetDocumentation(function.memid, name.out(), nullptr, nullptr, nullptr), S_OK);
  static const std::map<INVOKEKIND, std::string> kinds = {{INVOKE_FUNC, ""},
                                                          {INVOKE_PROPERTYGET, "get "},
                                                          {INVOKE_PROPERTYPUT, "put "},
                                                          {INVOKE_PROPERTYPUTREF, "putref "}};
  std::string text = kinds.at(function.invkind) + name.utf8() + "(";
  std::string result;
  for (SHORT i = 0; i < function.cParams; ++i) {
    const ELEMDESC& parameter = function.lprgelemdescParam[i];
    if (parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) {
      result = " -> " + typeName(parameter.tdesc);
    } else {
      text += (i > 0 ? ", " : "") + typeName(parameter.tdesc);
    }
  }
  return text + ")" + result;
}

TEST_F(ServerTest, TheTypeLibraryInTheDllDescribesEverySlotInOrder) {
  ComPtr<ITypeLib> typeLibrary;
  ASSERT_EQ(LoadTypeLibEx(QuillonLibrary::path().c_str(), REGKIND_NONE, typeLibrary.out()), S_OK);
  for (const Face& face : faces()) {
    SCOPED_TRACE(face.name);
    ComPtr<ITypeInfo> dispatch;
    ASSERT_EQ(typeLibrary->GetTypeInfoOfGuid(guid(face.interfaceId), dispatch.out()), S_OK);
    Bstr name;
    ASSERT_EQ(dispatch->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(name.utf8(), std::string("_") + face.name);
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    ASSERT_EQ(dispatch->GetRefTypeInfo(reference, info.out()), S_OK);

    constexpr SHORT slotSize = 4;
    constexpr SHORT dispatchSlots = 7;
    std::vector<std::string> slots;
    FUNCDESC* function = nullptr;
    for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &function)); ++i) {
      EXPECT_EQ(function->oVft, static_cast<SHORT>((dispatchSlots + static_cast<SHORT>(i)) * slotSize));
      slots.push_back(described(*info.get(), *function));
      info->ReleaseFuncDesc(function);
    }
    EXPECT_EQ(slots, face.slots);
  }
}

TEST_F(ServerTest, EveryClassAnswersUnderItsFixedIdentities) {
  for (const Face& face : faces()) {
    SCOPED_TRACE(face.name);
    const ComPtr<IUnknown> object = library_.create<IUnknown>(guid(face.classId));
    ASSERT_TRUE(object);
    ComPtr<IDispatch> dual;
    ComPtr<IDispatch> dispatch;
    EXPECT_EQ(object->QueryInterface(guid(face.interfaceId), reinterpret_cast<void**>(dual.out())), S_OK);
    EXPECT_EQ(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.out())), S_OK);
    EXPECT_EQ(dual.get(), dispatch.get()) << "a dual interface is the object's automation interface";
    ComPtr<IUnknown> identity;
    EXPECT_EQ(dual->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.out())), S_OK);
    EXPECT_EQ(identity.get(), object.get());

    ComPtr<ISupportErrorInfo> errors;
    ASSERT_EQ(object->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(errors.out())), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(guid(face.interfaceId)), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IPersist), S_FALSE);

    ComPtr<IProvideClassInfo> provider;
    ASSERT_EQ(object->QueryInterface(IID_IProvideClassInfo, reinterpret_cast<void**>(provider.out())), S_OK);
    ComPtr<ITypeInfo> classInfo;
    ASSERT_EQ(provider->GetClassInfo(classInfo.out()), S_OK);
    Bstr name;
    ASSERT_EQ(classInfo->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(name.utf8(), face.name);

    UINT count = 0;
    EXPECT_EQ(dispatch->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1U);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(dispatch->GetTypeInfo(0, LOCALE_NEUTRAL, info.out()), S_OK);
    EXPECT_EQ(dispatch->GetTypeInfo(1, LOCALE_NEUTRAL, info.out()), DISP_E_BADINDEX);
    void* none = &none;
    EXPECT_EQ(object->QueryInterface(IID_IPersist, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
  }
}

TEST_F(ServerTest, HasNoOtherClasses) {
  std::set<std::string> tested, known;
  for (const Face& face : faces())
    tested.insert(face.name);
  for (const auto& [name, id] : QuillonLibrary::classes())
    known.insert(toUtf8(name));
  EXPECT_EQ(known, tested);
}

TEST_F(ServerTest, StoredPropertiesStandInTheirSlots) {
  const ComPtr<_clsFXWt> object = library_.create<_clsFXWt>(guid(L"{c16213bb-4741-47cf-9eac-1fcab47e3e06}"));
  ASSERT_TRUE(object);
  Bstr language(std::string_view("zh-CN"));
  Bstr table(std::string_view("tmp"));
  Bstr base(std::string_view("base"));
  EXPECT_EQ(object->put_msLanguage(language.inOut()), S_OK);
  EXPECT_EQ(object->put_tarn_tmpTable(table.inOut()), S_OK);
  EXPECT_EQ(object->put_m_sBaseTable(base.inOut()), S_OK);
  // 0, 5 and 7 are the slots of the three property gets.
  const auto textIn = [&](std::size_t slot) {
    void** slots = *reinterpret_cast<void***>(object.get());
    Bstr text;
    EXPECT_EQ(
        reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(IDispatch*, BSTR*)>(slots[7 + slot])(object.get(), text.out()),
        S_OK);
    return text.utf8();
  };
  EXPECT_EQ(textIn(0), "zh-CN");
  EXPECT_EQ(textIn(5), "tmp");
  EXPECT_EQ(textIn(7), "base");
}

TEST_F(ServerTest, AnErrorReachesALateBoundCallerInExcepInfo) {
  for (const Face& face : faces()) {
    if (std::string_view(face.name) != "clsFXDetail") continue;
    const ComPtr<IDispatch> object = library_.create<IDispatch>(guid(face.classId));
    const LateBound late(object, "clsFXDetail");
    try {
      late.call(L"GETSQL", {object});  // which is no argument object
      FAIL() << "nothing was reported";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), DISP_E_UNKNOWNNAME);
      EXPECT_EQ(error.source(), "Quillon.clsFXDetail.GETSQL");
      EXPECT_EQ(error.description(), "e.rawFilter: The object has no member of this name.");
    }
  }
}

TEST_F(ServerTest, EntryPointsAreExportedUnderTheirPlainNames) {
  for (const char* name : {"DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer"})
    EXPECT_NE(GetProcAddress(library_.module(), name), nullptr) << name;
  EXPECT_EQ(GetProcAddress(library_.module(), "DllGetClassObject@12"), nullptr);
}

TEST_F(ServerTest, ClassObjectsRefuseWhatTheyAreNot) {
  void* object = &object;
  EXPECT_EQ(library_.classObject(IID_IDispatch, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  for (const Face& face : faces()) {
    SCOPED_TRACE(face.name);
    object = &object;
    EXPECT_EQ(library_.classObject(guid(face.classId), IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(library_.classObject(guid(face.classId), IID_IClassFactory, nullptr), E_POINTER);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(library_.classObject(guid(face.classId), IID_IClassFactory, reinterpret_cast<void**>(factory.out())),
              S_OK);
    object = &object;
    EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
  }
}

TEST_F(ServerTest, TheDllMayGoOnlyWhenNobodyNeedsIt) {
  const CLSID business = guid(L"{ae3cc61b-e0a2-4f0d-a960-c82092c5035e}");
  EXPECT_EQ(library_.canUnload(), S_OK);
  {
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(library_.classObject(business, IID_IClassFactory, reinterpret_cast<void**>(factory.out())), S_OK);
    EXPECT_EQ(library_.canUnload(), S_FALSE) << "a class object is held";
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    factory.reset();
    EXPECT_EQ(library_.canUnload(), S_FALSE) << "the server is locked";
    ASSERT_EQ(library_.classObject(business, IID_IClassFactory, reinterpret_cast<void**>(factory.out())), S_OK);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  }
  EXPECT_EQ(library_.canUnload(), S_OK);
  for (const Face& face : faces()) {
    SCOPED_TRACE(face.name);
    const ComPtr<IUnknown> object = library_.create<IUnknown>(guid(face.classId));
    ASSERT_TRUE(object);
    EXPECT_EQ(library_.canUnload(), S_FALSE) << "an object is held";
  }
  EXPECT_EQ(library_.canUnload(), S_OK);
}

TEST_F(ServerTest, TheBusinessObjectIsKeptUntilItIsTakenBackOrReplaced) {
  Recorder recorder;
  // A thread that another test let end without leaving COM keeps what it had.
  const long before = LiveCount::value();
  const CLSID business = guid(L"{ae3cc61b-e0a2-4f0d-a960-c82092c5035e}");
  const auto init = [&](const Variant& object) {
    const LateBound holder(ComPtr<IDispatch>(library_.create<IDispatch>(business)), "ClsBusiness");
    return holder.get(L"Init", {object}).vt;
  };
  {
    const ComPtr<FakeObject> first = makeObject<FakeObject>(recorder, "Business");
    EXPECT_EQ(init(first), VT_EMPTY);
  }
  EXPECT_EQ(LiveCount::value(), before + 1) << "the library holds it without an instance";
  EXPECT_EQ(library_.canUnload(), S_FALSE) << "nobody could make it again";
  init(makeObject<FakeObject>(recorder, "Business"));
  EXPECT_EQ(LiveCount::value(), before + 1) << "the second took the place of the first";
  init(Variant(static_cast<IDispatch*>(nullptr)));
  EXPECT_EQ(LiveCount::value(), before);
  EXPECT_EQ(library_.canUnload(), S_OK);
}

TEST(Server, MayBeUnloadedWithoutBeingAsked) {
  const ComScope apartment;
  const QuillonLibrary library;
  EXPECT_TRUE(library.create<IUnknown>(guid(L"{e518f10c-f08e-4684-a465-50e6808d031e}")));
  // The library goes before the apartment; COM must not call into it any more then.
}

TEST_F(ServerTest, TheFileCarriesItsVersion) {
  DWORD ignored = 0;
  const std::wstring path = QuillonLibrary::path();
  std::vector<char> data(GetFileVersionInfoSizeW(path.c_str(), &ignored));
  ASSERT_FALSE(data.empty());
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()));
  VS_FIXEDFILEINFO* version = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&version), &size));
  EXPECT_EQ(version->dwFileType, DWORD{VFT_DLL});
  wchar_t* product = nullptr;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\StringFileInfo\\040904B0\\ProductName",
                             reinterpret_cast<void**>(&product), &size));
  EXPECT_EQ(toUtf8(std::wstring_view(product)), "Quillon");
  wchar_t* text = nullptr;
  ASSERT_TRUE(
      VerQueryValueW(data.data(), L"\\StringFileInfo\\040904B0\\FileVersion", reinterpret_cast<void**>(&text), &size));
  EXPECT_EQ(toUtf8(std::wstring_view(text)), QUILLON_VERSION);
}

TEST_F(ServerTest, TextSurvivesTheEdgeWithoutLoss) {
  const ComPtr<_clsSFC_Item> object = library_.create<_clsSFC_Item>(guid(L"{e518f10c-f08e-4684-a465-50e6808d031e}"));
  ASSERT_TRUE(object);
  // Chinese, a character beyond the first plane, two lone surrogates, a zero.
  const std::wstring text(L"\x6536\x53D1\xD83D\xDE00|\xD83D|\xDE00|\0.", 10);
  Bstr in{std::wstring_view(text)};
  Bstr out;
  EXPECT_EQ(object->put_tarn_tmpTable(in.inOut()), S_OK);
  EXPECT_EQ(object->get_tarn_tmpTable(out.out()), S_OK);
  EXPECT_EQ(std::wstring(out.get(), SysStringLen(out.get())), text);
}

TEST_F(ServerTest, AMissingVariableIsAnErrorAndNoCrash) {
  const ComPtr<_clsSFC_Item> object = library_.create<_clsSFC_Item>(guid(L"{e518f10c-f08e-4684-a465-50e6808d031e}"));
  ASSERT_TRUE(object);
  EXPECT_EQ(object->get_tarn_tmpTable(nullptr), E_POINTER);
  EXPECT_EQ(object->put_tarn_tmpTable(nullptr), E_POINTER);
  EXPECT_EQ(object->TempTablename(nullptr), E_POINTER);
  EXPECT_EQ(object->MoveDataDetail(nullptr), E_POINTER);
  EXPECT_TRUE(FAILED(object->GETSQL(nullptr)));
  EXPECT_EQ(object->Execute(nullptr), S_OK) << "Execute never fails";
}

}  // namespace
}  // namespace quillon::component::test
