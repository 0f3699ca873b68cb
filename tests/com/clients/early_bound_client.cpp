// An early-bound client: finds the classes by name in the registered type library and calls their interfaces' slots.
//
//   early_bound_client ACCOUNT
#include <stdexcept>

#include "automation/errors.h"
#include "component/quillon_interfaces.h"
#include "tests/automation/com_scope.h"
#include "tests/com/clients/client_session.h"

namespace quillon::automation::test {
namespace {

constexpr const char* source = "early-bound client";

// The type library that registering Quillon.dll has made known.
class TypeLibrary {
 public:
  TypeLibrary() {
    constexpr GUID library = {0xa04e69c6, 0xfcca, 0x4c39, {0x94, 0x2a, 0x44, 0xf9, 0x88, 0x87, 0x7a, 0x23}};
    if (FAILED(LoadRegTypeLib(library, 1, 0, LOCALE_NEUTRAL, library_.out())))
      throw std::runtime_error("Quillon's type library is not registered");
  }

  // A new object of the class called `name`, with its interface.
  template <class Interface>
  ComPtr<Interface> create(const wchar_t* name) const {
    const GUID classId = guidOf(name, TKIND_COCLASS);
    ComPtr<Interface> object;
    const HRESULT code = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                          reinterpret_cast<void**>(object.out()));
    if (FAILED(code)) throw AutomationError(code, source, "a class of the type library cannot be created");
    return object;
  }
  GUID guidOf(const wchar_t* name, TYPEKIND kind) const {
    const Bstr wanted{std::wstring_view(name)};
    ComPtr<ITypeInfo> info;
    MEMBERID member = MEMBERID_NIL;
    USHORT found = 1;
    GUID guid{};
    if (SUCCEEDED(library_->FindName(wanted.get(), 0, info.out(), &member, &found)) && found == 1) {
      TYPEATTR* attributes = nullptr;
      if (SUCCEEDED(info->GetTypeAttr(&attributes))) {
        if (attributes->typekind == kind) guid = attributes->guid;
        info->ReleaseTypeAttr(attributes);
      }
    }
    if (guid == GUID{}) throw std::runtime_error("the type library lacks " + toUtf8(name));
    return guid;
  }

 private:
  ComPtr<ITypeLib> library_;
};

class EarlyBoundClasses final : public VoucherReportClasses {
 public:
  void create() override {
    control_ = library_.create<_clsWtFilterControl>(L"clsWtFilterControl");
    report_ = library_.create<_clsFXWt>(L"clsFXWt");
  }

  Variant filterInit(IDispatch* filter) override {
    Variant result;
    check(*control_, control_->CallBack_FilterInit(&filter, result.out()), "CallBack_FilterInit");
    return result;
  }
  void valueChange(const char* key, IDispatch* filter) override {
    Bstr text{std::string_view(key)};
    check(*control_, control_->CallBack_ValueChange(text.inOut(), &filter), "CallBack_ValueChange");
  }
  bool filterClick(IDispatch* filter, bool& cancel) override {
    VARIANT_BOOL flag = cancel ? VARIANT_TRUE : VARIANT_FALSE;
    Variant result;
    check(*control_, control_->CallBack_FilterClick(&filter, &flag, result.out()), "CallBack_FilterClick");
    cancel = flag != VARIANT_FALSE;
    return toFlag(result);
  }

  void setTemporaryTable(const char* name) override {
    Bstr text{std::string_view(name)};
    check(*report_, report_->put_tarn_tmpTable(text.inOut()), "tarn_tmpTable");
  }
  std::string temporaryTable() override {
    Bstr text;
    check(*report_, report_->get_tarn_tmpTable(text.out()), "tarn_tmpTable");
    return text.utf8();
  }
  ComPtr<IDispatch> filter() override {
    ComPtr<IDispatch> filter;
    check(*report_, report_->get_objFilter(filter.out()), "objFilter");
    return filter;
  }
  void getSql(IDispatch* e) override { check(*report_, report_->GETSQL(&e), "GETSQL"); }
  void execute(IDispatch* e) override { check(*report_, report_->Execute(&e), "Execute"); }
  void moveDataDetail() override {
    Bstr result;
    check(*report_, report_->MoveDataDetail(result.out()), "MoveDataDetail");
  }
  // Early-bound, the compiler refuses it; the type library is asked in its stead.
  bool hasMember(const wchar_t* name) override {
    try {
      library_.guidOf(name, TKIND_DISPATCH);
      return true;
    } catch (const std::runtime_error&) {
      return false;
    }
  }

 private:
  template <class Interface>
  static void check(Interface& object, HRESULT code, const char* member) {
    if (FAILED(code)) throw takeErrorInfo(code, object, __uuidof(Interface), source, member);
  }

  TypeLibrary library_;
  ComPtr<_clsWtFilterControl> control_;
  ComPtr<_clsFXWt> report_;
};

}  // namespace
}  // namespace quillon::automation::test

int main(int argumentCount, char** arguments) {
  const quillon::automation::test::ComScope apartment;
  quillon::automation::test::EarlyBoundClasses classes;
  return quillon::automation::test::runSession(classes, argumentCount, arguments);
}
