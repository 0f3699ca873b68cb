// Allocations of the library that fail. Linking memory.cpp replaces the allocation functions of the program.
#pragma once

#include <cstddef>

namespace quillon::faults {

// While one of these lives, the thread does not work for the library: its allocations are neither counted nor refused.
class NotTheLibrary {
 public:
  NotTheLibrary();
  NotTheLibrary(const NotTheLibrary&) = delete;
  NotTheLibrary& operator=(const NotTheLibrary&) = delete;
  ~NotTheLibrary();
};

// Counts the library's allocations on this thread, from 1, while it lives, and refuses number `failAt` with
// std::bad_alloc; 0 refuses none.
class CountedAllocations {
 public:
  explicit CountedAllocations(std::size_t failAt);
  CountedAllocations(const CountedAllocations&) = delete;
  CountedAllocations& operator=(const CountedAllocations&) = delete;
  ~CountedAllocations();

  std::size_t count() const;
};

// How many blocks the whole program holds.
long blocksHeld();

}  // namespace quillon::faults
