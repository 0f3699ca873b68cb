// Every form in which automation clients pass arguments, against objects of this program that have the interfaces of
// Quillon.dll's type library (which this program carries as well).
#include "automation/dual_invoke.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "automation/dual_object.h"
#include "automation/variant.h"
#include "component/quillon_interfaces.h"
#include "tests/automation/com_scope.h"

namespace quillon::component::test {

using automation::ComPtr;
using automation::DualObject;
using automation::LiveCount;
using automation::makeObject;
using automation::toFlag;
using automation::toObject;
using automation::toText;
using automation::toUtf8;
using automation::Variant;
using automation::test::ComScope;
namespace {

// Writes down what reaches its members, and answers what the test wants.
class Dialog : public DualObject<_clsSFCFilterControl, clsSFCFilterControl> {
 public:
  Dialog() : DualObject("Dialog") {}

  std::vector<std::string> seen;
  std::optional<VARIANT_BOOL> cancel;
  std::optional<std::string> view;
  ComPtr<IDispatch> replacement;
  std::optional<AutomationError> failure;
  std::function<void()> during = [] {};  // of CallBack_FilterClick

  STDMETHODIMP CallBack_FilterInit(IDispatch** filter, VARIANT* result) override {
    return run("CallBack_FilterInit", [&] {
      if (failure) throw AutomationError(*failure);
      seen.push_back(*filter ? "init" : "init nothing");
      if (replacement) *filter = (ComPtr<IDispatch>::adopt(*filter), ComPtr<IDispatch>(replacement).release());
      *result = Variant("initialised").release();
    });
  }
  STDMETHODIMP CallBack_ValueChange(BSTR* key, IDispatch** filter) override {
    return run("CallBack_ValueChange",
               [&] { seen.push_back("change " + taken(key) + (*filter ? " with filter" : " without filter")); });
  }
  STDMETHODIMP CallBack_FilterClick(IDispatch** filter, VARIANT_BOOL* canceled, VARIANT* result) override {
    return run("CallBack_FilterClick", [&] {
      seen.push_back(std::string("click ") + (*filter ? "filter " : "nothing ") + (*canceled ? "True" : "False"));
      if (cancel) *canceled = *cancel;
      *result = Variant(true).release();
      // The test's part may release this object, and the function object with it.
      const std::function<void()> work = during;
      work();
    });
  }
  STDMETHODIMP CallBack_ReportViewChange(BSTR* key, IDispatch** filter, VARIANT* viewClass) override {
    return run("CallBack_ReportViewChange", [&] {
      seen.push_back("view " + taken(key) + (*filter ? " filter " : " nothing ") + std::to_string(viewClass->vt));
      if (view) *viewClass = (Variant::adopt(*viewClass), Variant(*view).release());
    });
  }
  STDMETHODIMP CallBack_ReportViewInit(IDispatch** /*filter*/, VARIANT* viewClass) override {
    return run("CallBack_ReportViewInit", [&] {
      if (view) *viewClass = (Variant::adopt(*viewClass), Variant(*view).release());
    });
  }
  STDMETHODIMP InitYear() override {
    return run("InitYear", [&] { seen.emplace_back("year"); });
  }
  STDMETHODIMP InitGrade() override { return E_ACCESSDENIED; }
};

// Properties, the reserved slot among them.
class Holder : public DualObject<_clsFXWt, clsFXWt> {
 public:
  Holder() : DualObject("Holder") {}

  std::vector<std::string> seen;

  STDMETHODIMP get_msLanguage(BSTR* value) override {
    return run("msLanguage", [&] { give(value, language_); });
  }
  STDMETHODIMP put_msLanguage(BSTR* value) override {
    return run("msLanguage", [&] { language_ = taken(value); });
  }
  STDMETHODIMP get_objFilter(IDispatch** value) override {
    *value = nullptr;
    seen.emplace_back("get");
    return S_OK;
  }
  STDMETHODIMP put_objFilter(IDispatch** /*value*/) override {
    seen.emplace_back("put");
    return S_OK;
  }
  STDMETHODIMP putref_objFilter(IDispatch** /*value*/) override {
    seen.emplace_back("putref");
    return S_OK;
  }
  STDMETHODIMP get_tarn_tmpTable(BSTR* /*value*/) override { return E_NOTIMPL; }
  STDMETHODIMP put_tarn_tmpTable(BSTR* /*value*/) override { return E_NOTIMPL; }
  STDMETHODIMP get_m_sBaseTable(BSTR* /*value*/) override { return E_NOTIMPL; }
  STDMETHODIMP put_m_sBaseTable(BSTR* /*value*/) override { return E_NOTIMPL; }
  STDMETHODIMP GETSQL(IDispatch** /*e*/) override { return E_NOTIMPL; }
  STDMETHODIMP MoveDataDetail(BSTR* result) override {
    return run("MoveDataDetail", [&] { give(result, " "); });
  }
  STDMETHODIMP Execute(IDispatch** /*e*/) override { return E_NOTIMPL; }

 private:
  std::string language_;
};

constexpr WORD both = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

class DualInvokeTest : public testing::Test {
 protected:
  ~DualInvokeTest() override {
    clearInfo();
    dialog.reset();
    holder.reset();
    EXPECT_EQ(LiveCount::value(), 0);
  }

  static DISPID idOf(IDispatch& object, const wchar_t* member) {
    std::wstring name(member);
    LPOLESTR names[] = {name.data()};
    DISPID id = DISPID_UNKNOWN;
    EXPECT_EQ(object.GetIDsOfNames(IID_NULL, names, 1, LOCALE_NEUTRAL, &id), S_OK);
    return id;
  }

  // Calls with arguments in their natural order; `names` names the last of them.
  HRESULT invoke(IDispatch& object, const wchar_t* member, WORD kind, std::vector<VARIANT> arguments,
                 std::vector<DISPID> names = {}) {
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    std::vector<DISPID> reversedNames(names.rbegin(), names.rend());
    DISPPARAMS parameters{reversed.data(), reversedNames.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(reversedNames.size())};
    clearInfo();
    badArgument = 99;
    return object.Invoke(idOf(object, member), IID_NULL, LOCALE_NEUTRAL, kind, &parameters, result.out(), &info,
                         &badArgument);
  }

  void clearInfo() {
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    info = EXCEPINFO{};
  }

  ComScope apartment;
  ComPtr<Dialog> dialog = makeObject<Dialog>();
  ComPtr<Holder> holder = makeObject<Holder>();
  const Variant filter{holder};
  Variant result;
  EXCEPINFO info{};
  UINT badArgument = 99;
};

// The fixture's own variant must be gone before the objects are counted.
class DualInvoke : public DualInvokeTest {
 protected:
  void TearDown() override { const_cast<Variant&>(filter) = {}; }
};

TEST_F(DualInvoke, ArgumentsByValue) {
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", DISPATCH_METHOD, {filter, Variant(true)}), S_OK);
  EXPECT_EQ(dialog->seen, std::vector<std::string>{"click filter True"});
  EXPECT_TRUE(toFlag(result));
}

TEST_F(DualInvoke, ArgumentsByTypedReference) {
  IDispatch* object = holder.get();
  VARIANT_BOOL canceled = VARIANT_FALSE;
  Variant flag;
  flag.vt = VT_BOOL | VT_BYREF;
  flag.pboolVal = &canceled;
  dialog->cancel = VARIANT_TRUE;
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {Variant::reference(object), flag}), S_OK);
  EXPECT_EQ(dialog->seen, std::vector<std::string>{"click filter False"});
  EXPECT_EQ(canceled, VARIANT_TRUE);
  EXPECT_EQ(object, holder.get());
}

TEST_F(DualInvoke, ArgumentsThroughVariants) {
  Variant object = filter;
  Variant canceled(false);
  dialog->cancel = VARIANT_TRUE;
  EXPECT_EQ(
      invoke(*dialog.get(), L"CallBack_FilterClick", both, {Variant::reference(object), Variant::reference(canceled)}),
      S_OK);
  EXPECT_EQ(canceled.vt, VT_BOOL);
  EXPECT_EQ(canceled.boolVal, VARIANT_TRUE);
}

TEST_F(DualInvoke, AVariableThatTheMemberLeavesAloneKeepsItsForm) {
  Variant canceled("0");
  Variant key(7);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, Variant::reference(canceled)}), S_OK);
  EXPECT_EQ(canceled.vt, VT_BSTR);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ValueChange", both, {Variant::reference(key), filter}), S_OK);
  EXPECT_EQ(key.vt, VT_I4);
  EXPECT_EQ(dialog->seen, (std::vector<std::string>{"click filter False", "change 7 with filter"}));
}

TEST_F(DualInvoke, AResultGoesBackIntoATypedVariableInItsOwnType) {
  SHORT canceled = 0;
  Variant flag;
  flag.vt = VT_I2 | VT_BYREF;
  flag.piVal = &canceled;
  dialog->cancel = VARIANT_TRUE;
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, flag}), S_OK);
  EXPECT_EQ(canceled, -1);
}

// A variable that only counts as True is exactly True once the member has set it, in every form of the variable.
TEST_F(DualInvoke, AFlagThatIsSetIsExactlyTrueWhateverTheVariableHeld) {
  dialog->cancel = VARIANT_TRUE;
  const auto click = [&](const Variant& flag) {
    return invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, flag});
  };
  for (const Variant& before : {Variant(7), Variant(1), Variant(-1), Variant(0), Variant(2.5), Variant("True"),
                                Variant("7"), Variant("0"), Variant(true), Variant(false), Variant()}) {
    SCOPED_TRACE(before.vt == VT_EMPTY ? "Empty" : toText(before));
    Variant flag = before;
    EXPECT_EQ(click(Variant::reference(flag)), S_OK);
    EXPECT_EQ(flag.vt, VT_BOOL);
    EXPECT_EQ(flag.boolVal, VARIANT_TRUE);
  }
  for (const VARIANT_BOOL before : {VARIANT_BOOL{7}, VARIANT_BOOL{1}, VARIANT_FALSE, VARIANT_TRUE}) {
    VARIANT_BOOL canceled = before;
    Variant flag;
    flag.vt = VT_BOOL | VT_BYREF;
    flag.pboolVal = &canceled;
    EXPECT_EQ(click(flag), S_OK);
    EXPECT_EQ(canceled, VARIANT_TRUE) << before;
    canceled = before;
    EXPECT_EQ(click(Variant::reference(flag)), S_OK) << "a reference inside a variant";
    EXPECT_EQ(canceled, VARIANT_TRUE) << before;
  }
  LONG number = 7;
  Variant typed;
  typed.vt = VT_I4 | VT_BYREF;
  typed.plVal = &number;
  EXPECT_EQ(click(typed), S_OK);
  EXPECT_EQ(number, -1);
  DOUBLE fraction = 7.5;
  typed.vt = VT_R8 | VT_BYREF;
  typed.pdblVal = &fraction;
  EXPECT_EQ(click(typed), S_OK);
  EXPECT_EQ(fraction, -1.0);
}

TEST_F(DualInvoke, AFlagThatIsLeftAloneKeepsWhatTheVariableHeld) {
  Variant number(7);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, Variant::reference(number)}), S_OK);
  EXPECT_EQ(number.vt, VT_I4);
  EXPECT_EQ(number.lVal, 7);
  VARIANT_BOOL canceled = 7;
  Variant flag;
  flag.vt = VT_BOOL | VT_BYREF;
  flag.pboolVal = &canceled;
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, flag}), S_OK);
  EXPECT_EQ(canceled, 7);
  EXPECT_EQ(dialog->seen, (std::vector<std::string>{"click filter True", "click filter True"}));
}

TEST_F(DualInvoke, AVariantResultGoesBackInEveryForm) {
  dialog->view = "cross";
  Variant variable;
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ReportViewInit", both, {filter, Variant::reference(variable)}), S_OK);
  EXPECT_EQ(toText(variable), "cross");

  BSTR text = nullptr;
  Variant typed;
  typed.vt = VT_BSTR | VT_BYREF;
  typed.pbstrVal = &text;
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ReportViewInit", both, {filter, typed}), S_OK);
  EXPECT_EQ(toUtf8(text), "cross");
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ReportViewInit", both, {filter, Variant::reference(typed)}), S_OK)
      << "a reference inside a variant";
  EXPECT_EQ(toUtf8(text), "cross");
  SysFreeString(text);

  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ReportViewInit", both, {filter, Variant("by value")}), S_OK);
}

TEST_F(DualInvoke, AResultThatDoesNotFitTheCallersVariableIsAMismatch) {
  dialog->view = "cross";
  LONG number = 5;
  Variant typed;
  typed.vt = VT_I4 | VT_BYREF;
  typed.plVal = &number;
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ReportViewInit", both, {filter, typed}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(badArgument, 0U);
  EXPECT_EQ(number, 5);
}

TEST_F(DualInvoke, AnObjectVariableTakesTheObjectThatTheMemberPutsIn) {
  dialog->replacement = dialog;
  Variant variable = filter;
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterInit", both, {Variant::reference(variable)}), S_OK);
  EXPECT_EQ(toObject(variable).get(), static_cast<IDispatch*>(dialog.get()));
  dialog->replacement.reset();
}

TEST_F(DualInvoke, ArgumentsByName) {
  const DISPID key = 0;
  const DISPID flt = 1;
  const DISPID view = 2;
  const Variant name("cModal");
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ReportViewChange", both, {Variant(), name, filter}, {view, key, flt}),
            S_OK);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ReportViewChange", both, {name, Variant(), filter}, {view, flt}), S_OK)
      << "the first by its place";
  EXPECT_EQ(dialog->seen, (std::vector<std::string>{"view cModal filter 0", "view cModal filter 0"}));
}

TEST_F(DualInvoke, ArgumentNamesAreFoundInAnyLetterCase) {
  wchar_t member[] = L"callback_reportviewchange";
  wchar_t key[] = L"SKEY";
  wchar_t view[] = L"returnviewclass";
  wchar_t none[] = L"nobody";
  LPOLESTR names[] = {member, view, key, none};
  DISPID ids[4] = {};
  EXPECT_EQ(dialog->GetIDsOfNames(IID_NULL, names, 3, LOCALE_NEUTRAL, ids), S_OK);
  EXPECT_EQ(ids[1], 2);
  EXPECT_EQ(ids[2], 0);
  EXPECT_EQ(dialog->GetIDsOfNames(IID_NULL, names, 4, LOCALE_NEUTRAL, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(dialog->GetIDsOfNames(IID_NULL, names + 3, 1, LOCALE_NEUTRAL, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(dialog->GetIDsOfNames(IID_IUnknown, names, 1, LOCALE_NEUTRAL, ids), DISP_E_UNKNOWNINTERFACE);
}

TEST_F(DualInvoke, NamesThatDoNotExistOrAreTaken) {
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, Variant(true)}, {5}), DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(badArgument, 0U);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, Variant(true)}, {0}), DISP_E_PARAMNOTFOUND);
}

TEST_F(DualInvoke, EverythingThatHasATextIsAKey) {
  DECIMAL exact{};
  exact.Lo64 = 125;
  exact.scale = 2;
  Variant decimal;
  decimal.decVal = exact;
  decimal.vt = VT_DECIMAL;
  for (const Variant& key : {Variant("iYear"), Variant(2024), Variant(1.5), Variant(true), decimal, Variant()})
    EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ValueChange", both, {key, filter}), S_OK);
  EXPECT_EQ(dialog->seen,
            (std::vector<std::string>{"change iYear with filter", "change 2024 with filter", "change 1.5 with filter",
                                      "change True with filter", "change 1.25 with filter", "change  with filter"}));
}

TEST_F(DualInvoke, NothingIsAnObject) {
  EXPECT_EQ(
      invoke(*dialog.get(), L"CallBack_ValueChange", both, {Variant("k"), Variant(static_cast<IDispatch*>(nullptr))}),
      S_OK);
  EXPECT_EQ(dialog->seen, std::vector<std::string>{"change k without filter"});
}

TEST_F(DualInvoke, AnObjectMayComeAsItsPlainInterface) {
  Variant unknown;
  unknown.vt = VT_UNKNOWN;
  unknown.punkVal = static_cast<IDispatch*>(holder.get());
  unknown.punkVal->AddRef();
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterInit", both, {unknown}), S_OK);
  EXPECT_EQ(toText(result), "initialised");
}

TEST_F(DualInvoke, WhatCannotBeConvertedIsAMismatchAtItsPlace) {
  const Variant key("k");
  const Variant noObject("no object");
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ValueChange", both, {key, noObject}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(badArgument, 0U);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ValueChange", both, {Variant::null(), filter}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(badArgument, 1U);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, Variant("perhaps")}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(badArgument, 0U);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterInit", both, {Variant()}), DISP_E_TYPEMISMATCH);
  EXPECT_TRUE(dialog->seen.empty());
}

TEST_F(DualInvoke, WrongNumbersOfArguments) {
  EXPECT_EQ(invoke(*dialog.get(), L"InitYear", both, {Variant(1)}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ValueChange", both, {Variant("k")}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterClick", both, {filter, Variant::missing()}),
            DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(badArgument, 0U);
}

TEST_F(DualInvoke, AMemberWithoutArgumentsAndResult) {
  EXPECT_EQ(invoke(*dialog.get(), L"InitYear", DISPATCH_METHOD, {}), S_OK);
  EXPECT_EQ(result.vt, VT_EMPTY);
}

TEST_F(DualInvoke, AResultMayBeLeftUntaken) {
  VARIANT argument = filter;
  DISPPARAMS parameters{&argument, nullptr, 1, 0};
  EXPECT_EQ(dialog->Invoke(idOf(*dialog.get(), L"CallBack_FilterInit"), IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD,
                           &parameters, nullptr, nullptr, nullptr),
            S_OK);
}

TEST_F(DualInvoke, PropertiesAreReadAndWritten) {
  const Variant number(7);
  EXPECT_EQ(invoke(*holder.get(), L"msLanguage", DISPATCH_PROPERTYPUT, {number}, {DISPID_PROPERTYPUT}), S_OK);
  EXPECT_EQ(invoke(*holder.get(), L"msLanguage", DISPATCH_PROPERTYGET, {}), S_OK);
  EXPECT_EQ(toText(result), "7");
  EXPECT_EQ(invoke(*holder.get(), L"MSLANGUAGE", both, {}), S_OK);
  Variant variable("zh-CN");
  EXPECT_EQ(
      invoke(*holder.get(), L"msLanguage", DISPATCH_PROPERTYPUT, {Variant::reference(variable)}, {DISPID_PROPERTYPUT}),
      S_OK);
  EXPECT_EQ(invoke(*holder.get(), L"msLanguage", both, {}), S_OK);
  EXPECT_EQ(toText(result), "zh-CN");
}

TEST_F(DualInvoke, AnObjectIsAssignedByReferenceWhereTheCallerLeavesItOpen) {
  const std::vector<DISPID> assigned{DISPID_PROPERTYPUT};
  const Variant object{dialog};
  EXPECT_EQ(invoke(*holder.get(), L"objFilter", DISPATCH_PROPERTYPUTREF, {object}, assigned), S_OK);
  EXPECT_EQ(invoke(*holder.get(), L"objFilter", DISPATCH_PROPERTYPUT, {object}, assigned), S_OK);
  EXPECT_EQ(invoke(*holder.get(), L"objFilter", DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF, {object}, assigned),
            S_OK);
  EXPECT_EQ(invoke(*holder.get(), L"objFilter", both, {}), S_OK);
  EXPECT_EQ(holder->seen, (std::vector<std::string>{"putref", "put", "putref", "get"}));
  EXPECT_EQ(result.vt, VT_DISPATCH);
}

TEST_F(DualInvoke, AMemberUsedInAWayThatItDoesNotHave) {
  EXPECT_EQ(invoke(*dialog.get(), L"InitYear", DISPATCH_PROPERTYPUT, {Variant(1)}, {DISPID_PROPERTYPUT}),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(invoke(*holder.get(), L"msLanguage", DISPATCH_PROPERTYPUTREF, {Variant{dialog}}, {DISPID_PROPERTYPUT}),
            DISP_E_MEMBERNOTFOUND);
  DISPPARAMS none{};
  EXPECT_EQ(dialog->Invoke(4711, IID_NULL, LOCALE_NEUTRAL, both, &none, nullptr, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(dialog->Invoke(1, IID_IUnknown, LOCALE_NEUTRAL, both, &none, nullptr, nullptr, nullptr),
            DISP_E_UNKNOWNINTERFACE);
}

TEST_F(DualInvoke, AFailureFillsExcepInfoWithTheMembersOwnWords) {
  dialog->failure = AutomationError(static_cast<HResult>(0x80040E37U), "ADODB.Connection", "Invalid object name 'x'.");
  EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterInit", both, {filter}), DISP_E_EXCEPTION);
  EXPECT_EQ(static_cast<std::uint32_t>(info.scode), 0x80040E37U);
  EXPECT_EQ(toUtf8(info.bstrSource), "ADODB.Connection");
  EXPECT_EQ(toUtf8(info.bstrDescription), "Invalid object name 'x'.");
}

TEST_F(DualInvoke, AFailureWithoutWordsStillHasItsCode) {
  EXPECT_EQ(invoke(*dialog.get(), L"InitGrade", both, {}), DISP_E_EXCEPTION);
  EXPECT_EQ(info.scode, E_ACCESSDENIED);
  EXPECT_TRUE(toUtf8(info.bstrDescription).starts_with("Quillon.InitGrade: ")) << toUtf8(info.bstrDescription);
}

// Lets go of the fixture's last reference in the midst of a member.
TEST_F(DualInvoke, TheObjectLivesUntilItsMemberIsThroughOnBothRoads) {
  for (const bool early : {true, false}) {
    for (const bool fails : {false, true}) {
      SCOPED_TRACE(std::string(early ? "early" : "late") + (fails ? ", fails" : ""));
      dialog = makeObject<Dialog>();
      Dialog* const object = dialog.get();
      object->during = [&] {
        dialog.reset();
        if (fails) throw AutomationError(E_ABORT, "Quillon", "it went away");
      };
      const long alive = LiveCount::value();
      if (early) {
        VARIANT_BOOL canceled = VARIANT_FALSE;
        IDispatch* reference = holder.get();
        EXPECT_EQ(object->CallBack_FilterClick(&reference, &canceled, result.out()), fails ? E_ABORT : S_OK);
        if (fails) {
          ComPtr<IErrorInfo> error;
          ASSERT_EQ(GetErrorInfo(0, error.out()), S_OK);
          automation::Bstr description;
          EXPECT_EQ(error->GetDescription(description.out()), S_OK);
          EXPECT_EQ(description.utf8(), "it went away");
        }
      } else {
        EXPECT_EQ(invoke(*object, L"CallBack_FilterClick", both, {filter, Variant(false)}),
                  fails ? DISP_E_EXCEPTION : S_OK);
        if (fails) {
          EXPECT_EQ(toUtf8(info.bstrSource), "Dialog.CallBack_FilterClick");
          EXPECT_EQ(toUtf8(info.bstrDescription), "it went away");
        }
      }
      EXPECT_EQ(LiveCount::value(), alive - 1) << "gone after the call";
    }
  }
}

TEST_F(DualInvoke, ReferencesAreCountedWhateverTheForm) {
  Variant object = filter;
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(invoke(*dialog.get(), L"CallBack_FilterInit", both, {Variant::reference(object)}), S_OK);
    EXPECT_EQ(invoke(*dialog.get(), L"CallBack_ValueChange", both, {object, filter}), DISP_E_TYPEMISMATCH);
  }
  // This test's own, the fixture's and the variable's.
  holder->AddRef();
  EXPECT_EQ(holder->Release(), 3U);
}

}  // namespace
}  // namespace quillon::component::test
