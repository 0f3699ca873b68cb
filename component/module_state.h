// The module-wide state of the calling thread: made on first use, released on the thread that it belongs to.
//
// It lives for as long as the library stays loaded. It holds objects of the thread's apartment, so only that thread may
// release them:
//  - when it leaves COM (its last CoUninitialize), before the apartment goes;
//  - when it unloads the library (FreeLibrary, which is what COM does after DllCanUnloadNow has said S_OK). The loader holds
//    its lock then, but thread, apartment and the objects' own libraries are all there.
// Nothing is released when a thread ends without leaving COM, because its apartment may be half gone when the library
// hears of it, nor when the process ends, because other libraries may be gone already; both take the objects with them.
#pragma once

#include <memory>

#include "automation/win32.h"
#include "component/platform_adapter.h"
#include "frame/module.h"

namespace quillon::component {

// What the instances made on one thread share; each of them keeps it alive.
class ModuleState {
 public:
  Module& module() { return module_; }

 private:
  LateBoundPlatform platform_;
  Module module_{platform_};
};

// The calling thread's state. Throws std::bad_alloc.
std::shared_ptr<ModuleState> threadState();

// Whether the library may be unloaded on the calling thread as far as the threads' states are concerned: no other thread
// has one, because it could not be released from here, and this thread's holds nothing that cannot be made again, which
// the business object is and the connection that a failed build or a dialog leaves open. Releases nothing: the answer
// binds nobody to unload the library.
bool threadStatesMayGo() noexcept;

// For DllMain: when the library is loaded, when a thread ends, when the library is unloaded.
bool startThreadStates() noexcept;
void forgetThreadState() noexcept;
void endThreadStates() noexcept;

}  // namespace quillon::component
