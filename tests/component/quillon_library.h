// Quillon.dll as COM sees it: loaded from the folder of the test program, asked through its entry points, not
// registered.
#pragma once

#include <map>
#include <stdexcept>
#include <string>

#include "automation/com_ptr.h"

namespace quillon::component::test {

class QuillonLibrary {
 public:
  QuillonLibrary() : module_(LoadLibraryW(path().c_str())) {
    if (!module_) throw std::runtime_error("Quillon.dll cannot be loaded");
  }
  QuillonLibrary(const QuillonLibrary&) = delete;
  QuillonLibrary& operator=(const QuillonLibrary&) = delete;
  ~QuillonLibrary() { FreeLibrary(module_); }

  static std::wstring path() {
    std::wstring name(MAX_PATH, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), MAX_PATH));
    return name.substr(0, name.rfind(L'\\') + 1) + L"Quillon.dll";
  }

  HMODULE module() const { return module_; }

  HRESULT classObject(REFCLSID classId, REFIID interfaceId, void** object) const {
    using Entry = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    return entry<Entry>("DllGetClassObject")(classId, interfaceId, object);
  }
  HRESULT canUnload() const { return call("DllCanUnloadNow"); }
  HRESULT registerServer() const { return call("DllRegisterServer"); }
  HRESULT unregisterServer() const { return call("DllUnregisterServer"); }

  // The classes of the type library in the DLL, with their identifiers by name.
  static std::map<std::wstring, CLSID> classes() {
    automation::ComPtr<ITypeLib> types;
    if (FAILED(LoadTypeLibEx(path().c_str(), REGKIND_NONE, types.out())))
      throw std::runtime_error("Quillon.dll has no type library");
    std::map<std::wstring, CLSID> found;
    for (UINT i = 0; i < types->GetTypeInfoCount(); ++i) {
      automation::ComPtr<ITypeInfo> type;
      TYPEATTR* attributes = nullptr;
      BSTR name = nullptr;
      if (FAILED(types->GetTypeInfo(i, type.out())) || FAILED(type->GetTypeAttr(&attributes)) ||
          FAILED(types->GetDocumentation(static_cast<int>(i), &name, nullptr, nullptr, nullptr)))
        throw std::runtime_error("a type of the library cannot be read");
      if (attributes->typekind == TKIND_COCLASS) found.emplace(name, attributes->guid);
      SysFreeString(name);
      type->ReleaseTypeAttr(attributes);
    }
    return found;
  }
  // The identifier of the class called `name`. Throws std::out_of_range when the type library has none.
  static CLSID classId(const std::wstring& name) { return classes().at(name); }

  // A new object; `code` gets what the class factory said.
  template <class Interface>
  automation::ComPtr<Interface> create(REFCLSID classId, HRESULT* code = nullptr) const {
    automation::ComPtr<IClassFactory> factory;
    automation::ComPtr<Interface> object;
    HRESULT result = classObject(classId, IID_IClassFactory, reinterpret_cast<void**>(factory.out()));
    if (SUCCEEDED(result))
      result = factory->CreateInstance(nullptr, __uuidof(Interface), reinterpret_cast<void**>(object.out()));
    if (code) *code = result;
    return object;
  }

 private:
  template <class Entry>
  Entry entry(const char* name) const {
    return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }
  HRESULT call(const char* name) const { return entry<HRESULT(STDAPICALLTYPE*)()>(name)(); }

  HMODULE module_;
};

}  // namespace quillon::component::test
