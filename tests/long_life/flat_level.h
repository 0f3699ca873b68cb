// How much a process may hold more after long use than after a short one.
#pragma once

#include <gtest/gtest.h>

#include "tests/long_life/process_level.h"

namespace quillon::long_life {

// 64 kB of heap: less than 7 bytes for each of 10,000 runs, where a report's smallest object has 40; and `excused` bytes.
// The pages may lie otherwise, by 2 MB. No handle more.
inline void expectFlat(const ProcessLevel& before, const ProcessLevel& after, std::uint64_t excused = 0) {
  const std::uint64_t heapGrowth = 64 * 1024 + excused;
  constexpr std::uint64_t privateGrowth = 2 * 1024 * 1024;
  EXPECT_LE(after.heapBytes, before.heapBytes + heapGrowth);
  EXPECT_LE(after.privateBytes, before.privateBytes + privateGrowth);
  EXPECT_LE(after.handles, before.handles);
}

}  // namespace quillon::long_life
