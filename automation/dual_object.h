// A base for classes with a dual interface, which the type library in the module describes, and whose
// members report failures to early-bound callers through IErrorInfo and to late-bound ones through EXCEPINFO.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "automation/com_object.h"
#include "automation/dual_invoke.h"
#include "automation/errors.h"
#include "automation/text.h"
#include "automation/type_description.h"

namespace quillon::automation {

// `Interface` is the dual interface, `Class` the class in the type library; both carry their ids.
template <class Interface, class Class>
class DualObject : public ComObject<Interface, ISupportErrorInfo, IProvideClassInfo> {
 public:
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface)) {
      *object = static_cast<Interface*>(this);
    } else if (id == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else if (id == IID_IProvideClassInfo) {
      *object = static_cast<IProvideClassInfo*>(this);
    } else {
      return E_NOINTERFACE;
    }
    this->AddRef();
    return S_OK;
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) override {
    if (!info) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return run("GetTypeInfo", [&] { *info = typeDescription(__uuidof(Interface)).release(); });
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*locale*/, DISPID* ids) override {
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!names || !ids || count == 0) return E_INVALIDARG;
    HRESULT found = DISP_E_UNKNOWNNAME;
    const HRESULT code = run("GetIDsOfNames", [&] { found = slots().GetIDsOfNames(names, count, ids); });
    return FAILED(code) ? code : found;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID /*locale*/, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override {
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    // What the member calls may release the last reference from outside.
    const ComPtr<Interface> self(this);
    ITypeInfo* description = nullptr;
    const HRESULT code = run("Invoke", [&] { description = &slots(); });
    return FAILED(code) ? code : invokeDual(*description, *self.get(), id, kind, parameters, result, info, badArgument);
  }

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override { return id == __uuidof(Interface) ? S_OK : S_FALSE; }
  STDMETHODIMP GetClassInfo(ITypeInfo** info) override {
    if (!info) return E_POINTER;
    *info = nullptr;
    return run("GetClassInfo", [&] { *info = typeDescription(__uuidof(Class)).release(); });
  }

 protected:
  // `name` is the class's ProgID; with the member that is called it is the source of its own errors.
  explicit DualObject(std::string_view name) : name_(name) {}

  // Runs the body of `member`; a failure becomes the returned code and the thread's IErrorInfo. The object lives until
  // the member is through, whoever releases it meanwhile.
  template <class Body>
  HRESULT run(std::string_view member, Body&& body) noexcept {
    ComPtr<Interface> self(static_cast<Interface*>(this));
    const HRESULT code = guarded(__uuidof(Interface), {.className = name_, .member = member}, std::forward<Body>(body));
    if (FAILED(code)) {
      // Objects that go with this one may use the thread's IErrorInfo for themselves.
      const KeptErrorInfo forTheCaller;
      self.reset();
    }
    return code;
  }

  // Stores a text in the caller's variable; `out` must be one.
  static void give(BSTR* out, std::string_view text) {
    require(out);
    *out = makeBstr(text);
  }
  // The text that a caller passed by reference.
  static std::string taken(const BSTR* in) {
    require(in);
    return toUtf8(*in);
  }
  static void require(const void* pointer) {
    if (!pointer)
      throw AutomationError(hresult::pointer, std::string(ownSource), "The call passes no variable for an argument.");
  }

 private:
  ITypeInfo& slots() {
    if (!slots_) slots_ = slotDescription(__uuidof(Interface));
    return *slots_;
  }

  std::string name_;
  ComPtr<ITypeInfo> slots_;
};

}  // namespace quillon::automation
