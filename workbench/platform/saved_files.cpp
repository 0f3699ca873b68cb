#include "workbench/platform/saved_files.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <system_error>

#include "frame/text.h"
#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view extension = ".json";
constexpr std::size_t longestName = 60;  // with four bytes each, a file's name has 245 of its 255

// The folder that the environment names; empty when it names none, or none that is the same from everywhere.
fs::path folderFromEnvironment(const char* variable) {
#ifdef _WIN32
  const std::wstring name(variable, variable + std::char_traits<char>::length(variable));
  const wchar_t* const text = _wgetenv(name.c_str());
#else
  const char* const text = std::getenv(variable);
#endif
  if (text == nullptr) return {};
  fs::path folder(text);
  return folder.is_absolute() ? folder : fs::path();
}

bool endsIgnoringCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && equalIgnoringCase(text.substr(text.size() - end.size()), end);
}

// Characters that are not seen, or change how others are.
bool isInvisible(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0) || character == 0xad ||
         (character >= 0x200b && character <= 0x200f) || (character >= 0x2028 && character <= 0x202e) ||
         (character >= 0x2060 && character <= 0x206f) || character == 0xfeff ||
         (character >= 0xd800 && character <= 0xdfff) || character > tsql::text::lastCharacter;
}

bool isAllowed(char32_t character) {
  constexpr char32_t asciiEnd = 0x80;
  if (character >= asciiEnd) return !isInvisible(character);
  const char c = static_cast<char>(character);
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return letter || isDigit(c) || std::string_view(" -_.()+,").find(c) != std::string_view::npos;
}

// CON, LPT1 and the like, with whatever stands behind a point.
bool isDevice(std::string_view name) {
  name = name.substr(0, name.find('.'));
  for (const std::string_view device : {"con", "prn", "aux", "nul", "conin$", "conout$"}) {
    if (equalIgnoringCase(name, device)) return true;
  }
  constexpr std::size_t numbered = 4;
  return name.size() == numbered && isDigit(name.back()) &&
         (equalIgnoringCase(name.substr(0, 3), "com") || equalIgnoringCase(name.substr(0, 3), "lpt"));
}

[[noreturn]] void refuseToWrite(const fs::path& file) {
  throw UserError(messages::cannotWrite(utf8FromPath(file)));
}

// A file that goes unless it gets another name.
class Draft {
 public:
  explicit Draft(fs::path file) : file_(std::move(file)) {}
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft() {
    std::error_code ignored;
    fs::remove(file_, ignored);
  }
  const fs::path& file() const { return file_; }

 private:
  fs::path file_;
};

// Gives the draft its name if there is no file of that name; false when there is one.
bool nameIfFree(const fs::path& draft, const fs::path& file) {
  std::error_code error;
  fs::create_hard_link(draft, file, error);
  if (!error) return true;
  // Where files have one name only, another program may come in between.
  std::error_code ignored;
  if (fs::exists(fs::symlink_status(file, ignored))) return false;
  fs::rename(draft, file, error);
  if (error) refuseToWrite(file);
  return true;
}

}  // namespace

fs::path folderOfUser(std::string_view name) {
#ifdef _WIN32
  const fs::path folder = folderFromEnvironment("APPDATA");
  if (folder.empty()) throw UserError(messages::noFilterFolderWindows());
  return folder / "Quillon" / name;
#else
  fs::path folder = folderFromEnvironment("XDG_CONFIG_HOME");
  if (folder.empty()) {
    const fs::path home = folderFromEnvironment("HOME");
    if (home.empty()) throw UserError(messages::noFilterFolder());
    folder = home / ".config";
  }
  return folder / "quillon" / name;
#endif
}

std::vector<std::string> SavedFiles::names() const {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder_, error), end; !error && entry != end; entry.increment(error)) {
    const std::string file = utf8FromPath(entry->path().filename());
    std::error_code ignored;
    if (!file.ends_with(extension) || !entry->is_regular_file(ignored)) continue;
    std::string name = file.substr(0, file.size() - extension.size());
    if (faultOfName(name).empty()) names.push_back(std::move(name));
  }
  std::ranges::sort(names);
  return names;
}

void SavedFiles::requireName(std::string_view name) const {
  if (const Message fault = faultOfName(name); !fault.empty()) throw UserError(words_.noName(name, fault));
}

fs::path SavedFiles::path(std::string_view name) const {
  requireName(name);
  return folder_ / pathFromUtf8(std::string(name) + std::string(extension));
}

bool SavedFiles::has(std::string_view name) const {
  std::error_code ignored;
  return faultOfName(name).empty() && fs::is_regular_file(path(name), ignored);
}

void SavedFiles::requireFree(std::string_view name, bool replace) const {
  const fs::path file = path(name);
  std::error_code ignored;
  if (!replace && fs::exists(fs::symlink_status(file, ignored))) throw UserError(words_.taken(name));
}

void SavedFiles::save(std::string_view name, std::string_view text, bool replace) const {
  requireFree(name, replace);
  const fs::path file = path(name);
  std::error_code error;
  fs::create_directories(folder_, error);
  const Draft draft(folder_ / ("saving-" + uniqueNamePart()));
  std::ofstream out(draft.file(), std::ios::binary);
  out << text;
  out.close();
  if (!out) refuseToWrite(file);
  if (replace) {
    fs::rename(draft.file(), file, error);
    if (error) refuseToWrite(file);
  } else if (!nameIfFree(draft.file(), file)) {
    requireFree(name, false);
  }
}

void SavedFiles::requireThere(std::string_view name) const {
  std::error_code ignored;
  if (!fs::exists(fs::symlink_status(path(name), ignored))) refuseUnknown(name, false);
}

void SavedFiles::remove(std::string_view name) const {
  requireThere(name);
  const fs::path file = path(name);
  std::error_code error;
  fs::remove(file, error);
  if (error) throw UserError(messages::cannotRemove(utf8FromPath(file), error.message()));
}

std::string SavedFiles::fileOf(const std::string& nameOrFile) const {
  if (isSavedAsFile(nameOrFile)) return nameOrFile;
  if (has(nameOrFile)) return utf8FromPath(path(nameOrFile));
  std::error_code ignored;
  if (fs::exists(pathFromUtf8(nameOrFile), ignored)) return nameOrFile;
  refuseUnknown(nameOrFile, true);
}

void SavedFiles::refuseUnknown(std::string_view name, bool orFile) const {
  const Message meant = suggestion(name, names());
  throw UserError(orFile ? words_.neitherNameNorFile(name, meant) : words_.unknown(name, meant));
}

bool isSavedAsFile(std::string_view nameOrFile) {
  return nameOrFile.find_first_of("/\\") != std::string_view::npos || endsIgnoringCase(nameOrFile, extension);
}

Message faultOfSavedName(std::string_view name) {
  std::size_t length = 0;
  for (std::size_t position = 0; position < name.size(); ++length) {
    if (!isAllowed(tsql::text::next(name, position))) return messages::nameOfOtherCharacters();
  }
  if (length == 0) return messages::nameEmpty();
  if (length > longestName) return messages::nameTooLong(longestName);
  if (name.starts_with(' ') || name.starts_with('.') || name.ends_with(' ') || name.ends_with('.'))
    return messages::nameOfBlankEnds();
  if (name.starts_with('-')) return messages::nameLikeOption();
  if (endsIgnoringCase(name, extension)) return messages::nameLikeFile();
  if (isDevice(name)) return messages::nameOfDevice();
  return {};
}

}  // namespace quillon::workbench
