#include "tests/workbench/account/allocation_counter.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

std::size_t inUse = 0;
std::size_t peak = 0;

// In front of each block stands its size, in a space that keeps the block aligned.
constexpr std::size_t header = alignof(std::max_align_t);

}  // namespace

void* operator new(std::size_t size) {
  auto* block = static_cast<unsigned char*>(std::malloc(size + header));
  if (block == nullptr) throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(block) = size;
  inUse += size;
  peak = std::max(peak, inUse);
  return block + header;
}

void operator delete(void* pointer) noexcept {
  if (pointer == nullptr) return;
  auto* block = static_cast<unsigned char*>(pointer) - header;
  inUse -= *reinterpret_cast<std::size_t*>(block);
  std::free(block);
}

void operator delete(void* pointer, std::size_t) noexcept {
  operator delete(pointer);
}

namespace quillon::account::testing {

std::size_t bytesInUse() {
  return inUse;
}

std::size_t peakBytes() {
  return peak;
}

void restartPeak() {
  peak = inUse;
}

}  // namespace quillon::account::testing
