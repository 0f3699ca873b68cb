// Allocations of the library that fail. Linking memory.cpp replaces the allocation functions of the program.
#pragma once

#include <cstddef>

namespace quillon::faults {

// While one of these lives, this thread's allocations are neither counted nor refused: they are the platform's, not the
// library's.
class AllocationFaultsPaused {
 public:
  AllocationFaultsPaused();
  AllocationFaultsPaused(const AllocationFaultsPaused&) = delete;
  AllocationFaultsPaused& operator=(const AllocationFaultsPaused&) = delete;
  ~AllocationFaultsPaused();
};

// Counts the library's allocations on this thread, from 1, while it lives, and refuses number `failAt` with
// std::bad_alloc; 0 refuses none.
class AllocationFaults {
 public:
  explicit AllocationFaults(std::size_t failAt);
  AllocationFaults(const AllocationFaults&) = delete;
  AllocationFaults& operator=(const AllocationFaults&) = delete;
  ~AllocationFaults();

  std::size_t count() const;
};

// How many blocks the whole program has allocated and not freed.
long liveBlocks();

}  // namespace quillon::faults
