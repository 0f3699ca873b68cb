// The memory and the handles that this process uses.
#pragma once

#include <cstdint>
#include <string>

namespace quillon::long_life {

struct ProcessLevel {
  std::uint64_t heapBytes = 0;     // in use in all heaps; exact
  std::uint64_t privateBytes = 0;  // pages of this process alone; depends on how the heaps are laid out
  std::uint32_t handles = 0;
};

// Throws std::runtime_error when the system does not say.
ProcessLevel processLevel();

// "heap 1234 -> 1240 kB, ..." for the table of a long run.
std::string described(const ProcessLevel& before, const ProcessLevel& after);

}  // namespace quillon::long_life
