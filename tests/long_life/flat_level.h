// How much more memory and how many more handles a process may use after long use than after short use.
#pragma once

#include <gtest/gtest.h>

#include "tests/long_life/process_level.h"

namespace quillon::long_life {

// Heap: 64 kB and `excused` bytes. That is less than 7 bytes for each of 10,000 runs; a report's smallest object has 40.
// Private pages: 4 MB, because they depend on how the heaps are laid out: 800 runs need no more than 200. Handles: none.
inline void expectFlat(const ProcessLevel& before, const ProcessLevel& after, std::uint64_t excused = 0) {
  const std::uint64_t heapGrowth = 64 * 1024 + excused;
  constexpr std::uint64_t privateGrowth = 4 * 1024 * 1024;
  EXPECT_LE(after.heapBytes, before.heapBytes + heapGrowth);
  EXPECT_LE(after.privateBytes, before.privateBytes + privateGrowth);
  EXPECT_LE(after.handles, before.handles);
}

}  // namespace quillon::long_life
