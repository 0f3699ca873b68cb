// Automation objects of the workbench that others of it take as arguments, and must tell from other programs' objects.
#pragma once

#include <string>
#include <string_view>

#include "automation/dispatch_object.h"
#include "frame/automation_error.h"

namespace quillon::workbench {

// `Self` has a static member `ownId`, an interface id that nobody else's objects answer to.
template <class Self>
class OwnObject : public automation::DispatchObject<Self> {
 public:
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object || id != Self::ownId) return automation::DispatchObject<Self>::QueryInterface(id, object);
    *object = static_cast<Self*>(this);
    this->AddRef();
    return S_OK;
  }

  // The object behind an automation reference. Throws AutomationError (invalid argument) from `source` when it is not
  // one of these; `wanted` names what it should be.
  static automation::ComPtr<Self> from(const automation::ComPtr<IDispatch>& object, const char* source,
                                       std::string_view wanted) {
    void* found = nullptr;
    if (!object || FAILED(object->QueryInterface(Self::ownId, &found))) {
      throw AutomationError(hresult::invalidArgument, source,
                            "This call needs " + std::string(wanted) + " that this platform made.");
    }
    return automation::ComPtr<Self>::adopt(static_cast<Self*>(found));
  }
};

}  // namespace quillon::workbench
