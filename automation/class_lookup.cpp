#include "automation/class_lookup.h"

#include "automation/errors.h"

namespace quillon::automation {

CLSID classIdOf(const NamedClass& wanted) noexcept {
  CLSID id;
  return SUCCEEDED(CLSIDFromProgID(wanted.progId, &id)) ? id : wanted.standIn;
}

LateBound tryCreateObject(const NamedClass& wanted) {
  std::string name = toUtf8(std::wstring_view(wanted.progId));
  ComPtr<IDispatch> object;
  const HRESULT code = CoCreateInstance(classIdOf(wanted), nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                        IID_IDispatch, reinterpret_cast<void**>(object.out()));
  if (code == REGDB_E_CLASSNOTREG) return {};
  if (FAILED(code))
    throw AutomationError(code, std::string(ownSource), name + " cannot be created: " + systemMessage(code));
  return {std::move(object), std::move(name)};
}

LateBound createObject(const NamedClass& wanted) {
  LateBound object = tryCreateObject(wanted);
  if (!object) {
    const std::string name = toUtf8(std::wstring_view(wanted.progId));
    throw AutomationError(
        REGDB_E_CLASSNOTREG, std::string(ownSource),
        name + " is not registered on this machine: install or register the component that it belongs to.");
  }
  return object;
}

}  // namespace quillon::automation
