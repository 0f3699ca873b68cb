#include "component/runtime_release.h"

#include "automation/win32.h"

// The library's own directory of thread-local storage, as mingw-w64's start-up code lays it out.
extern "C" const IMAGE_TLS_DIRECTORY _tls_used;

namespace __gnu_cxx {
// libstdc++'s, which declares it nowhere: releases the pool that exceptions come from when there is no memory.
void __freeres();
}  // namespace __gnu_cxx

namespace quillon::component {

void releaseRuntimeOfThread() noexcept {
  const auto* callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
  for (; *callback != nullptr; ++callback)
    (*callback)(nullptr, DLL_THREAD_DETACH, nullptr);
}

void releaseRuntime() noexcept {
  __gnu_cxx::__freeres();
}

}  // namespace quillon::component
