// Class objects: the factory behind DllGetClassObject, and classes that exist only inside this process.
#pragma once

#include <functional>

#include "automation/com_object.h"

namespace quillon::automation {

// Makes one object; what it throws becomes the HRESULT of CreateInstance.
using Maker = std::function<ComPtr<IUnknown>()>;

class ClassFactory : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(Maker maker) : maker_(std::move(maker)) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  // An object cannot be part of another: `outer` is refused with CLASS_E_NOAGGREGATION.
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override;
  // Keeps the module loaded while it is locked.
  STDMETHODIMP LockServer(BOOL lock) override;
  // How many locks all factories of this module hold together.
  static long locks() noexcept;

 private:
  Maker maker_;
};

// Makes a class known to this thread's apartment for as long as it lives, without a trace in the registry:
// CoCreateInstance for `id` then asks `maker`, even when a server for `id` is registered on the machine. Throws
// AutomationError.
class InProcessClass {
 public:
  InProcessClass(const CLSID& id, Maker maker);
  InProcessClass(const InProcessClass&) = delete;
  InProcessClass& operator=(const InProcessClass&) = delete;
  ~InProcessClass();

 private:
  DWORD cookie_ = 0;
};

}  // namespace quillon::automation
