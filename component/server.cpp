// The entry points of Quillon.dll.
#include "automation/class_factory.h"
#include "automation/errors.h"
#include "component/classes.h"
#include "component/module_state.h"
#include "component/registration.h"
#include "component/runtime_release.h"

using namespace quillon;
using namespace quillon::automation;
using namespace quillon::component;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, void* processEnds) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      return startThreadStates() ? TRUE : FALSE;
    case DLL_THREAD_DETACH:
      forgetThreadState();
      return TRUE;
    case DLL_PROCESS_DETACH:
      // A process that ends takes everything with it, and other libraries may be gone already.
      if (!processEnds) {
        endThreadStates();
        // Releasing the objects has had them make some of it again.
        releaseRuntimeOfThread();
        releaseRuntime();
      }
      return TRUE;
    default:
      return TRUE;
  }
}

// The class object of one of the eight classes.
STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  HRESULT code = CLASS_E_CLASSNOTAVAILABLE;
  const HRESULT made = guarded(IID_IClassFactory, "Quillon", [&] {
    for (const ServerClass& entry : serverClasses())
      if (entry.id == classId) code = makeObject<ClassFactory>(entry.make)->QueryInterface(interfaceId, object);
  });
  return FAILED(made) ? made : code;
}

// S_OK when nobody holds an object, a class object or a lock of this library, and nothing but what this thread can make
// again would go with it. What the library keeps for the thread stays until it is really unloaded: whoever asks may go on.
STDAPI DllCanUnloadNow() {
  if (LiveCount::value() != 0 || ClassFactory::locks() != 0 || !threadStatesMayGo()) return S_FALSE;
  releaseRuntimeOfThread();
  return S_OK;
}

STDAPI DllRegisterServer() {
  return guarded(IID_NULL, "Quillon", [] { registerServer(); });
}

STDAPI DllUnregisterServer() {
  return guarded(IID_NULL, "Quillon", [] { unregisterServer(); });
}

}  // extern "C"
