#include "automation/class_factory.h"

#include <atomic>

#include "automation/errors.h"

namespace quillon::automation {

namespace {
std::atomic<long> lockCount = 0;
}

STDMETHODIMP ClassFactory::QueryInterface(REFIID id, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (id != IID_IUnknown && id != IID_IClassFactory) return E_NOINTERFACE;
  *object = static_cast<IClassFactory*>(this);
  AddRef();
  return S_OK;
}

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID id, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (outer) return CLASS_E_NOAGGREGATION;
  HRESULT code = E_UNEXPECTED;
  // What the new object calls may release the last reference from outside.
  const ComPtr<ClassFactory> self(this);
  const HRESULT made = guarded(IID_IClassFactory, ownSource, [&] { code = maker_()->QueryInterface(id, object); });
  return FAILED(made) ? made : code;
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock) {
  lockCount += lock ? 1 : -1;
  return S_OK;
}

long ClassFactory::locks() noexcept {
  return lockCount;
}

InProcessClass::InProcessClass(const CLSID& id, Maker maker) {
  const ComPtr<ClassFactory> factory = makeObject<ClassFactory>(std::move(maker));
  const HRESULT code = CoRegisterClassObject(id, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_);
  if (FAILED(code))
    throw AutomationError(code, "CoRegisterClassObject",
                          "The class cannot be made known in this process: " + systemMessage(code));
}

InProcessClass::~InProcessClass() {
  CoRevokeClassObject(cookie_);
}

}  // namespace quillon::automation
