// Counts the memory that a program has in use. Linking allocation_counter.cpp replaces the allocation functions.
#pragma once

#include <cstddef>

namespace quillon::account::testing {

std::size_t bytesInUse();
// The most that was in use since the last call of restartPeak().
std::size_t peakBytes();
void restartPeak();

}  // namespace quillon::account::testing
