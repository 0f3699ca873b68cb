// The memory that a loaded library takes from the C runtime and from automation: its entries in the library's import
// table are replaced, so that its blocks are counted and any one request can be refused. Nothing else in the process
// notices. One at a time.
#pragma once

#include <cstddef>

#include "automation/win32.h"

namespace quillon::faults {

class WatchedMemory {
 public:
  // Throws std::logic_error when the library does not import what it is known to take memory by.
  explicit WatchedMemory(HMODULE library);
  WatchedMemory(const WatchedMemory&) = delete;
  WatchedMemory& operator=(const WatchedMemory&) = delete;
  ~WatchedMemory();

  // Counts this thread's requests from 1 on, and refuses number `failAt`; 0 refuses none.
  static void count(std::size_t failAt);
  // Neither counts nor refuses from here on; gives how many requests there were.
  static std::size_t rest();
  // How many blocks of the C runtime the library holds more than when this began.
  static long blocksHeld();

 private:
  HMODULE library_;
};

}  // namespace quillon::faults
