#include "tests/faults/com/intercepted_objects.h"

#include <deque>
#include <map>
#include <stdexcept>
#include <utility>

#include "automation/class_lookup.h"
#include "automation/com_object.h"
#include "automation/errors.h"
#include "automation/text.h"
#include "automation/variant.h"
#include "component/platform_bindings.h"
#include "frame/automation_error.h"
#include "workbench/com/exposed_platform.h"

namespace quillon::faults {

namespace {

using automation::ComPtr;
namespace bindings = component::bindings;

// An interface id that only a proxy answers to; no other program knows it.
constexpr GUID proxyId = {0x5a1f6c0e, 0x2f0d, 0x4b7a, {0x8c, 0x55, 0x90, 0x13, 0x7f, 0x6e, 0x2b, 0xd4}};

AutomationError refusal(std::size_t call) {
  return {ComFaultInjector::failure, ComFaultInjector::source, ComFaultInjector::description(call)};
}

class Proxy : public automation::ComObject<IDispatch> {
 public:
  Proxy(ComFaultInjector& injector, std::string name, ComPtr<IDispatch> inner)
      : injector_(injector), name_(std::move(name)), inner_(std::move(inner)) {
    ++injector_.liveProxies;
  }
  ~Proxy() override { --injector_.liveProxies; }

  // The object behind `object`, which may be a proxy; borrowed.
  static IDispatch* behind(IDispatch* object) {
    ComPtr<IDispatch> proxy;
    if (!object || FAILED(object->QueryInterface(proxyId, reinterpret_cast<void**>(proxy.out())))) return object;
    return static_cast<Proxy*>(proxy.get())->inner_.get();
  }

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (id != IID_IUnknown && id != IID_IDispatch && id != proxyId) return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return inner_->GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
    return inner_->GetTypeInfo(index, locale, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    const std::string member = automation::toUtf8(std::wstring_view(names[0]));
    if (injector_.shouldFail({CallKind::lookUp, name_, member})) return ComFaultInjector::failure;
    const ComFaultInjector::PlatformAtWork atWork(injector_);
    const HRESULT code = inner_->GetIDsOfNames(reserved, names, count, locale, ids);
    if (SUCCEEDED(code)) members_[ids[0]] = member;
    return code;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override {
    const auto known = members_.find(id);
    const std::string member = known == members_.end() ? "Item" : known->second;
    if (injector_.shouldFail({CallKind::invoke, name_, member}))
      return automation::fillExcepInfo(refusal(injector_.calls().size()), info);
    const ComFaultInjector::PlatformAtWork atWork(injector_);
    Unwrapped arguments(*parameters);
    const HRESULT code = inner_->Invoke(id, reserved, locale, kind, arguments.parameters(), result, info, badArgument);
    if (SUCCEEDED(code) && result && result->vt == VT_DISPATCH && result->pdispVal) {
      result->pdispVal = intercepted(injector_, member, ComPtr<IDispatch>::adopt(result->pdispVal)).release();
    }
    return code;
  }

 private:
  // A call's arguments with the objects themselves in place of their proxies. The platform reads objects that are passed
  // by reference and never replaces them.
  class Unwrapped {
   public:
    explicit Unwrapped(const DISPPARAMS& given)
        : values_(given.rgvarg, given.rgvarg + given.cArgs), parameters_(given) {
      for (VARIANT& value : values_) {
        if (value.vt == VT_DISPATCH) {
          value.pdispVal = behind(value.pdispVal);
        } else if (value.vt == (VT_DISPATCH | VT_BYREF)) {
          value.ppdispVal = &objects_.emplace_back(behind(*value.ppdispVal));
        } else if (value.vt == (VT_VARIANT | VT_BYREF) && value.pvarVal->vt == VT_DISPATCH) {
          VARIANT& inner = variants_.emplace_back(*value.pvarVal);
          inner.pdispVal = behind(inner.pdispVal);
          value.pvarVal = &inner;
        }
      }
      parameters_.rgvarg = values_.data();
    }
    Unwrapped(const Unwrapped&) = delete;
    Unwrapped& operator=(const Unwrapped&) = delete;

    DISPPARAMS* parameters() { return &parameters_; }

   private:
    std::vector<VARIANT> values_;
    std::deque<IDispatch*> objects_;
    std::deque<VARIANT> variants_;
    DISPPARAMS parameters_;
  };

  ComFaultInjector& injector_;
  std::string name_;
  ComPtr<IDispatch> inner_;
  std::map<DISPID, std::string> members_;  // that were looked up
};

// The resource service, which the library calls by its slots.
class ResourceProxy : public automation::ComObject<bindings::IResourceService, ISupportErrorInfo> {
 public:
  ResourceProxy(ComFaultInjector& injector, ComPtr<bindings::IResourceService> inner)
      : injector_(injector), inner_(std::move(inner)) {
    ++injector_.liveProxies;
  }
  ~ResourceProxy() override { --injector_.liveProxies; }

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (id == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else if (id == IID_IUnknown || id == IID_IDispatch || id == bindings::resourceServiceId) {
      *object = static_cast<bindings::IResourceService*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID /*id*/) override { return S_OK; }
  STDMETHODIMP GetTypeInfoCount(UINT* /*count*/) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** /*info*/) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* /*names*/, UINT /*count*/, LCID /*locale*/,
                             DISPID* /*ids*/) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP Invoke(DISPID /*id*/, REFIID /*reserved*/, LCID /*locale*/, WORD /*kind*/, DISPPARAMS* /*parameters*/,
                      VARIANT* /*result*/, EXCEPINFO* /*info*/, UINT* /*badArgument*/) override {
    return E_NOTIMPL;
  }

  STDMETHODIMP EnumName(BSTR type, BSTR code, BSTR* name) override {
    return pass("EnumName", [&] { return inner_->EnumName(type, code, name); });
  }
  STDMETHODIMP Text(BSTR key, BSTR* text) override {
    return pass("Text", [&] { return inner_->Text(key, text); });
  }
  STDMETHODIMP ShowMessage(BSTR text, LONG flags, LONG helpContext, LONG defaultAnswer) override {
    return pass("ShowMessage", [&] { return inner_->ShowMessage(text, flags, helpContext, defaultAnswer); });
  }
  STDMETHODIMP FormatText(VARIANT keyOrLogin, VARIANT arguments, BSTR* text) override {
    if (keyOrLogin.vt == VT_DISPATCH) keyOrLogin.pdispVal = Proxy::behind(keyOrLogin.pdispVal);
    return pass("FormatText", [&] { return inner_->FormatText(keyOrLogin, arguments, text); });
  }

 private:
  template <typename Slot>
  HRESULT pass(const char* member, Slot slot) {
    if (injector_.shouldFail({CallKind::invoke, "ResourceService", member}))
      return automation::setErrorInfo(refusal(injector_.calls().size()), bindings::resourceServiceId);
    const ComFaultInjector::PlatformAtWork atWork(injector_);
    return slot();
  }

  ComFaultInjector& injector_;
  ComPtr<bindings::IResourceService> inner_;
};

ComPtr<IUnknown> proxyOf(ComFaultInjector& injector, const std::string& progId, const ComPtr<IUnknown>& inner) {
  if (progId == automation::toUtf8(std::wstring_view(bindings::resourceService.progId))) {
    ComPtr<bindings::IResourceService> service;
    if (FAILED(inner->QueryInterface(bindings::resourceServiceId, reinterpret_cast<void**>(service.out()))))
      throw std::logic_error("the resource service has lost its interface");
    return ComPtr<IUnknown>::adopt(
        static_cast<bindings::IResourceService*>(automation::makeObject<ResourceProxy>(injector, service).release()));
  }
  ComPtr<IDispatch> object;
  if (FAILED(inner->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.out()))))
    throw std::logic_error(progId + " is no automation object");
  return intercepted(injector, progId, object);
}

const automation::NamedClass* const classes[] = {
    &bindings::connection,    &bindings::recordset,      &bindings::publicComponent, &bindings::resourceService,
    &bindings::naming,        &bindings::uniqueNames,    &bindings::workTableNumber, &bindings::accountLogin,
    &bindings::environment,   &bindings::accountOptions, &bindings::sourceVoucher,   &bindings::ledgerModule,
    &bindings::ledgerVoucher, &bindings::drillThrough};

}  // namespace

void ComFaultInjector::start(std::size_t failAt) {
  calls_.clear();
  failAt_ = failAt;
  counting_ = true;
}

bool ComFaultInjector::shouldFail(ComCall call) {
  if (!counting_ || platformAtWork()) return false;
  calls_.push_back(std::move(call));
  return calls_.size() == failAt_;
}

ComPtr<IDispatch> intercepted(ComFaultInjector& injector, std::string name, ComPtr<IDispatch> inner) {
  return automation::makeObject<Proxy>(injector, std::move(name), std::move(inner));
}

InterceptedClasses::InterceptedClasses(ComFaultInjector& injector, workbench::EmbeddedPlatform& platform,
                                       const std::shared_ptr<workbench::SessionMonitor>& monitor) {
  // The workbench's class objects are taken out of the apartment again, so that these are the only ones.
  std::vector<ComPtr<IClassFactory>> factories;
  {
    const workbench::PlatformStandIn standIn(platform, monitor);
    for (const automation::NamedClass* entry : classes) {
      ComPtr<IClassFactory> factory;
      const HRESULT code = CoGetClassObject(automation::classIdOf(*entry), CLSCTX_INPROC_SERVER, nullptr,
                                            IID_IClassFactory, reinterpret_cast<void**>(factory.out()));
      if (FAILED(code)) throw AutomationError(code, "CoGetClassObject", "the workbench lacks a class");
      factories.push_back(std::move(factory));
    }
  }
  for (std::size_t i = 0; i < factories.size(); ++i) {
    const std::string progId = automation::toUtf8(std::wstring_view(classes[i]->progId));
    const auto make = [&injector, progId, factory = factories[i]]() -> ComPtr<IUnknown> {
      if (injector.shouldFail({CallKind::create, progId, {}})) throw refusal(injector.calls().size());
      const bool forTheLibrary = !injector.platformAtWork();
      const ComFaultInjector::PlatformAtWork atWork(injector);
      ComPtr<IUnknown> inner;
      const HRESULT code = factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(inner.out()));
      if (FAILED(code)) throw AutomationError(code, progId, "the workbench's object cannot be made");
      return forTheLibrary ? proxyOf(injector, progId, inner) : inner;
    };
    classes_.push_back(std::make_unique<automation::InProcessClass>(automation::classIdOf(*classes[i]), make));
  }
}

}  // namespace quillon::faults
