#include "tests/faults/com/import_table.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

namespace quillon::faults {

namespace {

bool counting = false;
DWORD countedThread = 0;
std::size_t counted = 0;
std::size_t refused = 0;
long blocks = 0;

// Whether the request that is made now is refused.
bool refuse() {
  return counting && GetCurrentThreadId() == countedThread && ++counted == refused;
}

using Allocate = void*(__cdecl*)(std::size_t);
using AllocateCleared = void*(__cdecl*)(std::size_t, std::size_t);
using Reallocate = void*(__cdecl*)(void*, std::size_t);
using Duplicate = char*(__cdecl*)(const char*);
using Free = void(__cdecl*)(void*);
using AllocateText = BSTR(WINAPI*)(const OLECHAR*, UINT);

Allocate originalMalloc = nullptr;
AllocateCleared originalCalloc = nullptr;
Reallocate originalRealloc = nullptr;
Duplicate originalStrdup = nullptr;
Free originalFree = nullptr;
AllocateText originalSysAllocStringLen = nullptr;

void* __cdecl hookedMalloc(std::size_t size) {
  if (refuse()) return nullptr;
  void* block = originalMalloc(size);
  if (block) ++blocks;
  return block;
}

void* __cdecl hookedCalloc(std::size_t count, std::size_t size) {
  if (refuse()) return nullptr;
  void* block = originalCalloc(count, size);
  if (block) ++blocks;
  return block;
}

void* __cdecl hookedRealloc(void* block, std::size_t size) {
  if (refuse()) return nullptr;
  void* moved = originalRealloc(block, size);
  if (!block && moved) ++blocks;
  if (block && size == 0) --blocks;
  return moved;
}

char* __cdecl hookedStrdup(const char* text) {
  if (refuse()) return nullptr;
  char* copy = originalStrdup(text);
  if (copy) ++blocks;
  return copy;
}

void __cdecl hookedFree(void* block) {
  if (block) --blocks;
  originalFree(block);
}

// Automation itself frees the texts that the library hands over, so they can be refused but are not counted as live blocks.
BSTR WINAPI hookedSysAllocStringLen(const OLECHAR* text, UINT length) {
  return refuse() ? nullptr : originalSysAllocStringLen(text, length);
}

// A function that the library imports: its name, what replaces it, and where the original is kept.
struct Import {
  const char* name;
  void* replacement;
  void** original;
};

template <class Function>
Import import(const char* name, Function replacement, Function& original) {
  return {name, reinterpret_cast<void*>(replacement), reinterpret_cast<void**>(&original)};
}

const Import imports[] = {import("malloc", &hookedMalloc, originalMalloc),
                          import("calloc", &hookedCalloc, originalCalloc),
                          import("realloc", &hookedRealloc, originalRealloc),
                          import("_strdup", &hookedStrdup, originalStrdup),
                          import("free", &hookedFree, originalFree),
                          import("SysAllocStringLen", &hookedSysAllocStringLen, originalSysAllocStringLen)};

// The functions that every build of the library imports; the others it may lack.
constexpr const char* needed[] = {"malloc", "free", "SysAllocStringLen"};

// Calls `visit` with the name and the place of every function that the module imports by name.
template <typename Visit>
void eachImport(HMODULE module, Visit visit) {
  auto* base = reinterpret_cast<unsigned char*>(module);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
  for (; library->Name != 0; ++library) {
    const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
    auto* place = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++place) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* byName = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
      visit(reinterpret_cast<const char*>(byName->Name), reinterpret_cast<void**>(&place->u1.Function));
    }
  }
}

void write(void** place, void* function) {
  DWORD protection = 0;
  if (!VirtualProtect(static_cast<void*>(place), sizeof(void*), PAGE_READWRITE, &protection))
    throw std::logic_error("the import table cannot be written");
  *place = function;
  VirtualProtect(static_cast<void*>(place), sizeof(void*), protection, &protection);
}

}  // namespace

AllocationHooks::AllocationHooks(HMODULE library) : library_(library) {
  blocks = 0;
  for (const Import& wanted : imports)
    *wanted.original = nullptr;
  eachImport(library_, [](const char* name, void** place) {
    for (const Import& wanted : imports) {
      if (std::strcmp(name, wanted.name) != 0) continue;
      *wanted.original = *place;
      write(place, wanted.replacement);
    }
  });
  for (const char* name : needed) {
    for (const Import& wanted : imports) {
      if (std::strcmp(name, wanted.name) == 0 && !*wanted.original)
        throw std::logic_error(std::string("the library does not import ") + name);
    }
  }
}

AllocationHooks::~AllocationHooks() {
  eachImport(library_, [](const char*, void** place) {
    for (const Import& wanted : imports) {
      if (*place == wanted.replacement) write(place, *wanted.original);
    }
  });
}

void AllocationHooks::start(std::size_t failAt) {
  countedThread = GetCurrentThreadId();
  counted = 0;
  refused = failAt;
  counting = true;
}

std::size_t AllocationHooks::stop() {
  counting = false;
  return counted;
}

long AllocationHooks::liveBlocks() {
  return blocks;
}

}  // namespace quillon::faults
