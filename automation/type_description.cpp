#include "automation/type_description.h"

#include <string>

#include "automation/errors.h"

namespace quillon::automation {

namespace {

void check(HRESULT code) {
  if (FAILED(code))
    throw AutomationError(code, "Quillon", "The type library in Quillon.dll cannot be read: " + systemMessage(code));
}

}  // namespace

HMODULE thisModule() noexcept {
  HMODULE module = nullptr;
  // Any address inside the module names it.
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&thisModule), &module);
  return module;
}

std::wstring modulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(thisModule(), path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) check(HRESULT_FROM_WIN32(GetLastError()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

ComPtr<ITypeLib> typeLibrary() {
  ComPtr<ITypeLib> library;
  check(LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, library.out()));
  return library;
}

ComPtr<ITypeInfo> typeDescription(REFGUID id) {
  ComPtr<ITypeInfo> info;
  check(typeLibrary()->GetTypeInfoOfGuid(id, info.out()));
  return info;
}

ComPtr<ITypeInfo> slotDescription(REFIID id) {
  const ComPtr<ITypeInfo> dispatch = typeDescription(id);
  // A dual interface is described twice; the reference -1 leads from automation's view to the one with the slots.
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> slots;
  check(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  check(dispatch->GetRefTypeInfo(reference, slots.out()));
  return slots;
}

}  // namespace quillon::automation
