#include "tests/faults/memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace quillon::faults {

namespace {

std::atomic<long> blocks = 0;

thread_local bool counting = false;
thread_local int paused = 0;
thread_local std::size_t counted = 0;
thread_local std::size_t refused = 0;

}  // namespace

AllocationFaultsPaused::AllocationFaultsPaused() {
  ++paused;
}
AllocationFaultsPaused::~AllocationFaultsPaused() {
  --paused;
}

AllocationFaults::AllocationFaults(std::size_t failAt) {
  counting = true;
  counted = 0;
  refused = failAt;
}
AllocationFaults::~AllocationFaults() {
  counting = false;
}
std::size_t AllocationFaults::count() const {
  return counted;
}

long liveBlocks() {
  return blocks.load();
}

}  // namespace quillon::faults

// The forms for arrays, and those without exceptions, end here in the standard library; the library under test has no
// types that need the aligned ones.
void* operator new(std::size_t size) {
  using namespace quillon::faults;
  if (counting && paused == 0 && ++counted == refused) throw std::bad_alloc();
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++blocks;
  return block;
}

void operator delete(void* block) noexcept {
  if (block == nullptr) return;
  --quillon::faults::blocks;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}
