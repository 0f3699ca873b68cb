// What DllRegisterServer writes and DllUnregisterServer takes out again. The registry's class branch is turned to a key
// of this test's own, so that nothing else on the machine is touched or disturbs.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "automation/text.h"
#include "tests/automation/com_scope.h"
#include "tests/component/quillon_library.h"

namespace quillon::component::test {

using automation::toUtf8;
using automation::test::ComScope;
namespace {

class ClassesBranch {
 public:
  ClassesBranch() : path_("Software\\QuillonTest" + std::to_string(GetCurrentProcessId())) {
    EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                              nullptr, &key_, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, key_), ERROR_SUCCESS);
  }
  ClassesBranch(const ClassesBranch&) = delete;
  ClassesBranch& operator=(const ClassesBranch&) = delete;
  ~ClassesBranch() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(key_);
    RegDeleteTreeA(HKEY_CURRENT_USER, path_.c_str());
  }

  // All keys and values below, "key\\name" with the value; a key's own value has no name.
  std::map<std::string, std::string> content() const {
    std::map<std::string, std::string> all;
    collect(key_, "", all);
    return all;
  }

  void write(const wchar_t* key, const wchar_t* value) const {
    const auto size = static_cast<DWORD>((wcslen(value) + 1) * sizeof(wchar_t));
    EXPECT_EQ(RegSetKeyValueW(key_, key, nullptr, REG_SZ, value, size), ERROR_SUCCESS);
  }

 private:
  static void collect(HKEY key, const std::string& path, std::map<std::string, std::string>& all) {
    wchar_t name[512];
    wchar_t data[512];
    if (!path.empty()) all[path];
    for (DWORD i = 0;; ++i) {
      DWORD nameSize = 512;
      DWORD dataSize = sizeof(data);
      if (RegEnumValueW(key, i, name, &nameSize, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &dataSize) !=
          ERROR_SUCCESS)
        break;
      const std::string label = nameSize == 0 ? path : path + "@" + toUtf8(std::wstring_view(name, nameSize));
      all[label] = toUtf8(std::wstring_view(data, dataSize / sizeof(wchar_t) - 1));
    }
    for (DWORD i = 0;; ++i) {
      DWORD nameSize = 512;
      if (RegEnumKeyExW(key, i, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
      HKEY below = nullptr;
      if (RegOpenKeyExW(key, name, 0, KEY_READ, &below) != ERROR_SUCCESS) continue;
      collect(below, path + "\\" + toUtf8(std::wstring_view(name, nameSize)), all);
      RegCloseKey(below);
    }
  }

  std::string path_;
  HKEY key_ = nullptr;
};

TEST(Registration, WritesEveryClassAndLeavesNothingBehind) {
  const ComScope apartment;
  const ClassesBranch classes;
  // What other servers have registered stays.
  classes.write(L"Other.Class", L"another server's");
  classes.write(L"CLSID\\{00000000-0000-0000-0000-000000000001}", L"another server's");
  classes.write(L"TypeLib\\{00000000-0000-0000-0000-000000000001}", L"another server's");
  classes.write(L"Interface\\{00000000-0000-0000-0000-000000000001}", L"another server's");
  const auto before = classes.content();

  const QuillonLibrary library;
  ASSERT_EQ(library.registerServer(), S_OK);
  auto written = classes.content();
  const std::string path = toUtf8(std::wstring_view(QuillonLibrary::path()));
  const std::map<std::string, std::string> classIds = {
      {"clsSFC_Item", "{E518F10C-F08E-4684-A465-50E6808D031E}"},
      {"ClsBusiness", "{AE3CC61B-E0A2-4F0D-A960-C82092C5035E}"},
      {"clsFXDetail", "{CCF4CF6E-F448-4A03-BF9A-7CEA240096AA}"},
      {"clsOutsum_Item", "{FDDEC39E-A286-4E4A-9677-98F46845FCA4}"},
      {"clsFXWt", "{C16213BB-4741-47CF-9EAC-1FCAB47E3E06}"},
      {"clsWtFilterControl", "{CA218940-7A13-4CCA-B5BD-73789593D6F5}"},
      {"clsSFCFilterControl", "{7ECD1526-372F-43C7-BE9C-5923A07915CA}"},
      {"clsFilterControl", "{B5857A26-9AF9-40AF-BA23-3C32BC93CB5F}"}};
  EXPECT_EQ(classIds.size(), QuillonLibrary::classes().size());
  const std::string library10 = "{A04E69C6-FCCA-4C39-942A-44F988877A23}";
  for (const auto& [name, id] : classIds) {
    SCOPED_TRACE(name);
    EXPECT_EQ(written["\\Quillon." + name + "\\CLSID"], id);
    EXPECT_EQ(written["\\CLSID\\" + id + "\\InprocServer32"], path);
    EXPECT_EQ(written["\\CLSID\\" + id + "\\InprocServer32@ThreadingModel"], "Apartment");
    EXPECT_EQ(written["\\CLSID\\" + id + "\\ProgID"], "Quillon." + name);
    EXPECT_EQ(written["\\CLSID\\" + id + "\\TypeLib"], library10);
  }
  EXPECT_EQ(written["\\TypeLib\\" + library10 + "\\1.0\\0\\win32"], path);

  EXPECT_EQ(written["\\TypeLib\\" + library10 + "\\1.0\\HELPDIR"], path.substr(0, path.rfind('\\')));

  ASSERT_EQ(library.registerServer(), S_OK) << "a second time changes nothing";
  EXPECT_EQ(classes.content().size(), written.size());

  // Where the library was registered from another folder before, everything follows it to where it lies now.
  classes.write(L"TypeLib\\{A04E69C6-FCCA-4C39-942A-44F988877A23}\\1.0\\HELPDIR", L"C:\\another folder");
  classes.write(L"TypeLib\\{A04E69C6-FCCA-4C39-942A-44F988877A23}\\1.0\\0\\win32", L"C:\\another folder\\Quillon.dll");
  classes.write(L"CLSID\\{E518F10C-F08E-4684-A465-50E6808D031E}\\InprocServer32", L"C:\\another folder\\Quillon.dll");
  ASSERT_EQ(library.registerServer(), S_OK);
  EXPECT_EQ(classes.content(), written);

  ASSERT_EQ(library.unregisterServer(), S_OK);
  EXPECT_EQ(classes.content(), before);
  EXPECT_EQ(library.unregisterServer(), S_OK) << "what is not there is no error";
  EXPECT_EQ(classes.content(), before);
}

}  // namespace
}  // namespace quillon::component::test
