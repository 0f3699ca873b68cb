#include "component/registration.h"

#include <array>
#include <string>

#include "automation/errors.h"
#include "automation/text.h"
#include "automation/type_description.h"
#include "component/classes.h"
#include "frame/automation_error.h"

namespace quillon::component {

using automation::ComPtr;
using automation::modulePath;
using automation::systemMessage;
using automation::toUtf8;
using automation::typeLibrary;

namespace {

void check(HRESULT code, const std::wstring& what) {
  if (FAILED(code))
    throw AutomationError(code, "Quillon",
                          "The registry refuses " + toUtf8(std::wstring_view(what)) + ": " + systemMessage(code) +
                              " Register with administrator rights.");
}

std::wstring textOf(REFGUID id) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::wstring progIdOf(const ServerClass& entry) {
  return std::wstring(L"Quillon.") + entry.name;
}

std::wstring classKeyOf(const ServerClass& entry) {
  return L"CLSID\\" + textOf(entry.id);
}

// Writes the text `value` under `name` (null: the key's own value), making the key where it is not there.
void writeValue(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  const std::size_t size = (value.size() + 1) * sizeof(wchar_t);
  check(HRESULT_FROM_WIN32(
            RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(), static_cast<DWORD>(size))),
        key);
}

void removeKey(const std::wstring& key) {
  const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  if (status != ERROR_FILE_NOT_FOUND) check(HRESULT_FROM_WIN32(status), key);
}

bool keyExists(const std::wstring& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

GUID libraryId(WORD& major, WORD& minor) {
  TLIBATTR* attributes = nullptr;
  const ComPtr<ITypeLib> library = typeLibrary();
  check(library->GetLibAttr(&attributes), L"the type library");
  const GUID id = attributes->guid;
  major = attributes->wMajorVerNum;
  minor = attributes->wMinorVerNum;
  library->ReleaseTLibAttr(attributes);
  return id;
}

void writeClass(const ServerClass& entry, const std::wstring& path, const std::wstring& library) {
  const std::wstring progId = progIdOf(entry);
  const std::wstring key = classKeyOf(entry);
  writeValue(progId, nullptr, entry.title);
  writeValue(progId + L"\\CLSID", nullptr, textOf(entry.id));
  writeValue(key, nullptr, entry.title);
  writeValue(key + L"\\InprocServer32", nullptr, path);
  writeValue(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  writeValue(key + L"\\ProgID", nullptr, progId);
  writeValue(key + L"\\TypeLib", nullptr, library);
  writeValue(key + L"\\Version", nullptr, L"1.0");
  // Says that the class is made for automation clients.
  writeValue(key + L"\\Programmable", nullptr, L"");
}

}  // namespace

void registerServer() {
  try {
    std::wstring path = modulePath();
    WORD major = 0;
    WORD minor = 0;
    const std::wstring library = textOf(libraryId(major, minor));
    // Without a folder of its own, HELPDIR would keep that of an earlier registration.
    std::wstring folder = path.substr(0, path.rfind(L'\\'));
    check(RegisterTypeLib(typeLibrary().get(), path.data(), folder.data()), L"the type library");
    for (const ServerClass& entry : serverClasses())
      writeClass(entry, path, library);
  } catch (...) {
    try {
      unregisterServer();
    } catch (const AutomationError&) {
      // What stopped the writing stops the taking out as well; the first failure is the one to report.
    }
    throw;
  }
}

void unregisterServer() {
  for (const ServerClass& entry : serverClasses()) {
    removeKey(progIdOf(entry));
    removeKey(classKeyOf(entry));
  }
  WORD major = 0;
  WORD minor = 0;
  const GUID library = libraryId(major, minor);
  // Systems differ in what they say of a type library that is not registered, so it is not asked to go.
  if (!keyExists(L"TypeLib\\" + textOf(library))) return;
  check(UnRegisterTypeLib(library, major, minor, LOCALE_NEUTRAL, SYS_WIN32), L"the type library");
}

}  // namespace quillon::component
