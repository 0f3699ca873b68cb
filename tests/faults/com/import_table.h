// Hooks into the functions by which a loaded library takes memory from the C runtime and from automation. They replace the
// entries of the library's import table, so that its blocks are counted and any one request can be refused; the rest of
// the process is not affected. One object at a time.
#pragma once

#include <cstddef>

#include "automation/win32.h"

namespace quillon::faults {

class AllocationHooks {
 public:
  // Throws std::logic_error when the library does not import the functions that every build of it uses.
  explicit AllocationHooks(HMODULE library);
  AllocationHooks(const AllocationHooks&) = delete;
  AllocationHooks& operator=(const AllocationHooks&) = delete;
  ~AllocationHooks();

  // Counts this thread's requests from 1 on, and refuses number `failAt`; 0 refuses none.
  static void start(std::size_t failAt);
  // Ends counting and refusing; gives how many requests there were.
  static std::size_t stop();
  // How many blocks of the C runtime the library has allocated and not freed since the hooks were set.
  static long liveBlocks();

 private:
  HMODULE library_;
};

}  // namespace quillon::faults
