// What it costs a host to have Quillon.dll: prints the milliseconds from loading the library, which lies beside this
// program, to holding an object of a first class. COM itself is up before, as it is in a host.
//
//   library_load_bench.exe
#include <cstdio>
#include <stdexcept>
#include <string>

#include "automation/com_ptr.h"
#include "component/quillon_interfaces.h"

namespace {

using quillon::automation::ComPtr;

std::wstring libraryPath() {
  std::wstring name(MAX_PATH, L'\0');
  name.resize(GetModuleFileNameW(nullptr, name.data(), MAX_PATH));
  return name.substr(0, name.rfind(L'\\') + 1) + L"Quillon.dll";
}

long long ticks() {
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

double millisecondsSince(long long start) {
  LARGE_INTEGER perSecond;
  QueryPerformanceFrequency(&perSecond);
  return static_cast<double>(ticks() - start) * 1000.0 / static_cast<double>(perSecond.QuadPart);
}

double loadAndCreate() {
  const long long start = ticks();
  const HMODULE library = LoadLibraryW(libraryPath().c_str());
  if (library == nullptr) throw std::runtime_error("Quillon.dll cannot be loaded");
  using Entry = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  const auto entry = reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
  ComPtr<IClassFactory> factory;
  ComPtr<IDispatch> object;
  if (entry == nullptr ||
      FAILED(entry(__uuidof(clsSFC_Item), IID_IClassFactory, reinterpret_cast<void**>(factory.out()))) ||
      FAILED(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(object.out())))) {
    throw std::runtime_error("Quillon.dll makes no object of its first class");
  }
  return millisecondsSince(start);
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  try {
    std::printf("%.3f\n", loadAndCreate());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "library_load_bench: %s\n", error.what());
    return 1;
  }
}
