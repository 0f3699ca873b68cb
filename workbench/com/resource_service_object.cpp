#include "workbench/com/resource_service_object.h"

#include <memory>
#include <string>
#include <utility>

#include "automation/dispatch_object.h"
#include "automation/errors.h"
#include "component/login_adapter.h"
#include "component/platform_bindings.h"

namespace quillon::workbench {

using automation::Call;
using automation::callable;
using automation::ComPtr;
using automation::dereferenced;
using automation::DispatchObject;
using automation::makeObject;
using automation::toText;
using automation::toUtf8;
using automation::Variant;
namespace bindings = component::bindings;

namespace {

// The late-bound half of the resource and message service.
class ExposedResourceServiceMembers : public DispatchObject<ExposedResourceServiceMembers> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"EnumName", 1, callable, 2, 2, &ExposedResourceServiceMembers::enumName},
        {L"Text", 2, callable, 1, 1, &ExposedResourceServiceMembers::text},
        {L"ShowMessage", 3, callable, 1, 4, &ExposedResourceServiceMembers::showMessage},
    };
    return table;
  }

  explicit ExposedResourceServiceMembers(std::shared_ptr<ResourceService> service) : service_(std::move(service)) {}

 private:
  Variant enumName(Call& call) { return service_->enumName(call.text(0), call.text(1)); }
  Variant text(Call& call) { return service_->text(call.text(0)); }
  Variant showMessage(Call& call) {
    service_->showMessage(call.text(0), call.given(1) ? call.integer(1) : 0);
    return {};
  }
  const char* sourceName() const override { return "Quillon resources"; }

  std::shared_ptr<ResourceService> service_;
};

// The resource and message service as the dual interface by which the library calls it.
class ExposedResourceService : public automation::ComObject<bindings::IResourceService> {
 public:
  explicit ExposedResourceService(const std::shared_ptr<ResourceService>& service)
      : service_(service), lateBound_(makeObject<ExposedResourceServiceMembers>(service)) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (id != IID_IUnknown && id != IID_IDispatch && id != bindings::resourceServiceId) return E_NOINTERFACE;
    *object = static_cast<bindings::IResourceService*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return lateBound_->GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
    return lateBound_->GetTypeInfo(index, locale, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    return lateBound_->GetIDsOfNames(reserved, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override {
    return lateBound_->Invoke(id, reserved, locale, kind, parameters, result, info, badArgument);
  }

  STDMETHODIMP EnumName(BSTR type, BSTR code, BSTR* name) override {
    return giveText(name, [&] { return service_->enumName(toUtf8(type), toUtf8(code)); });
  }
  STDMETHODIMP Text(BSTR key, BSTR* text) override {
    return giveText(text, [&] { return service_->text(toUtf8(key)); });
  }
  STDMETHODIMP ShowMessage(BSTR text, LONG flags, LONG /*helpContext*/, LONG /*defaultAnswer*/) override {
    return automation::guarded(bindings::resourceServiceId, source,
                               [&] { service_->showMessage(toUtf8(text), static_cast<int>(flags)); });
  }
  STDMETHODIMP FormatText(VARIANT keyOrLogin, VARIANT arguments, BSTR* text) override {
    return giveText(text, [&] { return formatted(keyOrLogin, arguments); });
  }

 private:
  static constexpr const char* source = "Quillon resources";

  // Leaves what `give` returns in `result`; nothing is thrown out of it.
  template <typename Give>
  static HRESULT giveText(BSTR* result, Give give) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return automation::guarded(bindings::resourceServiceId, source, [&] { *result = automation::makeBstr(give()); });
  }

  std::string formatted(const VARIANT& keyOrLogin, const VARIANT& arguments) const {
    const Variant plain = dereferenced(keyOrLogin);
    if (plain.vt == VT_DISPATCH) {
      component::LateBoundLogin login({automation::toObject(plain), "login"});
      service_->takeLogin(login);
      return {};
    }
    if (automation::isMissing(arguments) || dereferenced(arguments).vt == VT_EMPTY)
      return service_->text(toText(plain));
    return service_->formattedText(toText(plain), automation::toTexts(arguments));
  }

  std::shared_ptr<ResourceService> service_;
  ComPtr<ExposedResourceServiceMembers> lateBound_;
};

}  // namespace

ComPtr<IUnknown> resourceServiceObject(std::shared_ptr<ResourceService> service) {
  return makeObject<ExposedResourceService>(service);
}

}  // namespace quillon::workbench
