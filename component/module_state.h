// The module-wide state of the calling thread: made on first use, released on the thread that it belongs to.
//
// It holds objects of the thread's apartment, so only that thread may release them. That happens when the thread leaves
// COM (its last CoUninitialize), or when DllCanUnloadNow is asked on it and nothing would be lost. A thread that ends
// without leaving COM takes its objects with it: nobody else may release them.
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

// Releases the calling thread's state if all that it holds can be made again. It stays while it holds the business
// object or the connection that a failed build or a dialog leaves open.
void releaseThreadState() noexcept;
// How many threads have a state.
long threadStates() noexcept;

// For DllMain: when the library is loaded, when a thread ends, when the library is unloaded.
bool startThreadStates() noexcept;
void forgetThreadState() noexcept;
void endThreadStates() noexcept;

}  // namespace quillon::component
