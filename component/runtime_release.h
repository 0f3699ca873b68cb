// What the compiler's run-time libraries, which are linked into Quillon.dll, hold for it and would keep when it is
// unloaded: a process that loads and unloads the library over and over would grow by it.
#pragma once

namespace quillon::component {

// Releases what they hold for the calling thread (the thread's handle, its thread-local variables), as the system has
// them do when a thread ends. They make it again if the thread goes on using the library. No exception may be under way.
void releaseRuntimeOfThread() noexcept;

// For DllMain, when the library is unloaded: releases the memory that is set apart for exceptions without memory.
void releaseRuntime() noexcept;

}  // namespace quillon::component
