#include "tests/long_life/process_level.h"

#include <stdexcept>
#include <vector>

#include "automation/win32.h"

namespace quillon::long_life {

namespace {

std::uint64_t bytesInUse(HANDLE heap) {
  std::uint64_t bytes = 0;
  if (!HeapLock(heap)) throw std::runtime_error("a heap cannot be locked");
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry))
    if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
  HeapUnlock(heap);
  return bytes;
}

// The pages that belong to this process alone.
std::uint64_t committedBytes() {
  std::uint64_t bytes = 0;
  MEMORY_BASIC_INFORMATION region{};
  for (const char* address = nullptr; VirtualQuery(address, &region, sizeof region) == sizeof region;
       address = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    if (reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize < region.RegionSize) break;
  }
  return bytes;
}

// Wine answers GetProcessHandleCount with 0 for every process, so all handles of the system are asked for.
std::uint32_t openHandles() {
  struct Handle {
    void* object;
    ULONG_PTR process;
    ULONG_PTR value;
    ULONG access;
    USHORT creator, type;
    ULONG attributes, reserved;
  };
  struct Handles {
    ULONG_PTR count, reserved;
    Handle handle[1];
  };
  constexpr int extendedHandleInformation = 64;
  using Query = LONG(NTAPI*)(int, void*, ULONG, ULONG*);
  const auto query = reinterpret_cast<Query>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<std::uint64_t> room(1 << 17);
  if (query(extendedHandleInformation, room.data(), static_cast<ULONG>(room.size() * sizeof room[0]), nullptr) != 0)
    throw std::runtime_error("handles cannot be counted");
  const auto* const handles = reinterpret_cast<const Handles*>(room.data());
  std::uint32_t own = 0;
  for (ULONG_PTR i = 0; i < handles->count; ++i)
    own += (&handles->handle[0])[i].process == GetCurrentProcessId() ? 1 : 0;
  if (own == 0) throw std::runtime_error("handles cannot be counted");
  return own;
}

}  // namespace

ProcessLevel processLevel() {
  ProcessLevel level;
  std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
  heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
  for (const HANDLE heap : heaps)
    level.heapBytes += bytesInUse(heap);
  level.privateBytes = committedBytes();
  level.handles = openHandles();
  return level;
}

std::string described(const ProcessLevel& before, const ProcessLevel& after) {
  const auto kilobytes = [](std::uint64_t bytes) { return std::to_string(bytes / 1024) + " kB"; };
  return "heaps " + kilobytes(before.heapBytes) + " -> " + kilobytes(after.heapBytes) + ", private " +
         kilobytes(before.privateBytes) + " -> " + kilobytes(after.privateBytes) + ", handles " +
         std::to_string(before.handles) + " -> " + std::to_string(after.handles);
}

}  // namespace quillon::long_life
