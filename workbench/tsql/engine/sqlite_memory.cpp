#include "workbench/tsql/engine/sqlite_memory.h"

#ifdef __linux__
#include <sqlite3.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#endif

namespace quillon::tsql {

#ifdef __linux__
namespace {

// A sort keeps up to 64 MiB of rows in one block, which it doubles when it is full. In the C library's heap, between the
// pages of a cache, such a block is copied where it cannot grow, and its old places fill with pages or stay empty, as
// chance has it: the same report needed some 40 MiB more or less. A large block has pages of its own, therefore: the system
// moves these instead of copying them, and has them back when the block is released.
constexpr std::size_t leastLarge = std::size_t{1} << 20U;

// In front of each block stands its size. SQLite wants blocks at multiples of 8.
constexpr std::size_t headSize = 8;
static_assert(sizeof(std::size_t) <= headSize);

void* headOf(void* block) {
  return static_cast<std::byte*>(block) - headSize;
}

std::size_t sizeOf(void* block) {
  return *static_cast<std::size_t*>(headOf(block));
}

void* blockBehind(void* head, std::size_t size) {
  if (head == nullptr) return nullptr;
  *static_cast<std::size_t*>(head) = size;
  return static_cast<std::byte*>(head) + headSize;
}

void* orNull(void* mapped) {
  return mapped == MAP_FAILED ? nullptr : mapped;
}

void* allocate(std::size_t size) {
  const std::size_t whole = size + headSize;
  if (size < leastLarge) return blockBehind(std::malloc(whole), size);
  return blockBehind(orNull(mmap(nullptr, whole, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)), size);
}

void release(void* block) {
  const std::size_t size = sizeOf(block);
  if (size < leastLarge) {
    std::free(headOf(block));
  } else {
    munmap(headOf(block), size + headSize);
  }
}

void* resize(void* block, std::size_t size) {
  const std::size_t before = sizeOf(block);
  if (before < leastLarge && size < leastLarge) return blockBehind(std::realloc(headOf(block), size + headSize), size);
  if (before >= leastLarge && size >= leastLarge)
    return blockBehind(orNull(mremap(headOf(block), before + headSize, size + headSize, MREMAP_MAYMOVE)), size);
  void* const other = allocate(size);
  if (other == nullptr) return nullptr;  // the block stays, then
  std::memcpy(other, block, std::min(before, size));
  release(block);
  return other;
}

// SQLite never asks for 2 GiB or more at once, nor does it give a null pointer back.
constexpr sqlite3_mem_methods methods = {
    .xMalloc = [](int size) { return allocate(static_cast<std::size_t>(size)); },
    .xFree = release,
    .xRealloc = [](void* block, int size) { return resize(block, static_cast<std::size_t>(size)); },
    .xSize = [](void* block) { return static_cast<int>(sizeOf(block)); },
    .xRoundup = [](int size) { return static_cast<int>((static_cast<unsigned>(size) + 7U) & ~7U); },
    .xInit = [](void*) { return SQLITE_OK; },
    .xShutdown = [](void*) {},
    .pAppData = nullptr};

}  // namespace

void setUpSqliteMemory() {
  [[maybe_unused]] static const int result = sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
}
#else
void setUpSqliteMemory() {}
#endif

}  // namespace quillon::tsql
