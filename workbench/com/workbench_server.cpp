// The entry points of QuillonWorkbench.dll: one class, QuillonWorkbench.Platform.
#include <string>

#include "automation/class_factory.h"
#include "automation/errors.h"
#include "automation/win32.h"
#include "frame/automation_error.h"
#include "workbench/com/workbench_platform.h"

using namespace quillon;

namespace {

constexpr CLSID platformClass = {0x2f0f3a41, 0x8c1b, 0x4a86, {0xa7, 0x35, 0x5e, 0x0c, 0x61, 0x9d, 0x24, 0xb8}};
constexpr const wchar_t* platformClassKey = L"CLSID\\{2F0F3A41-8C1B-4A86-A735-5E0C619D24B8}";
constexpr const wchar_t* platformProgId = L"QuillonWorkbench.Platform";
constexpr const wchar_t* platformTitle = L"Quillon workbench platform";

HMODULE ownModule = nullptr;

std::wstring modulePath() {
  std::wstring path(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = GetModuleFileNameW(ownModule, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

void check(LSTATUS status) {
  if (status == ERROR_SUCCESS) return;
  const HRESULT code = HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  throw AutomationError(
      code, "QuillonWorkbench",
      "The registry refuses the class: " + automation::systemMessage(code) + " Register with administrator rights.");
}

void writeValue(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  check(RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(),
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))));
}

void removeKey(const wchar_t* key) {
  const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key);
  if (status != ERROR_FILE_NOT_FOUND) check(status);
}

void registerClass() {
  const std::wstring classKey = platformClassKey;
  const std::wstring progId = platformProgId;
  writeValue(progId, nullptr, platformTitle);
  writeValue(progId + L"\\CLSID", nullptr, classKey.substr(classKey.find(L'{')));
  writeValue(classKey, nullptr, platformTitle);
  writeValue(classKey + L"\\InprocServer32", nullptr, modulePath());
  writeValue(classKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  writeValue(classKey + L"\\ProgID", nullptr, progId);
}

void unregisterClass() {
  removeKey(platformProgId);
  removeKey(platformClassKey);
}

automation::ComPtr<IUnknown> makePlatform() {
  return automation::makeObject<workbench::WorkbenchPlatform>();
}

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    ownModule = module;
    DisableThreadLibraryCalls(module);
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (classId != platformClass) return CLASS_E_CLASSNOTAVAILABLE;
  HRESULT code = E_UNEXPECTED;
  const HRESULT made = automation::guarded(IID_IClassFactory, "QuillonWorkbench", [&] {
    code = automation::makeObject<automation::ClassFactory>(makePlatform)->QueryInterface(interfaceId, object);
  });
  return FAILED(made) ? made : code;
}

// A platform with an account keeps its class objects alive, and they count as objects.
STDAPI DllCanUnloadNow() {
  return automation::LiveCount::value() == 0 && automation::ClassFactory::locks() == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return automation::guarded(IID_NULL, "QuillonWorkbench", registerClass);
}

STDAPI DllUnregisterServer() {
  return automation::guarded(IID_NULL, "QuillonWorkbench", unregisterClass);
}

}  // extern "C"
