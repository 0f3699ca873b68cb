#include "workbench/presentation/output_file.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

#include "frame/text.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view partSuffix = ".part";
constexpr std::size_t numberDigits = 8;
constexpr std::array<std::string_view, 3> besideAccounts = {"-journal", "-wal", "-shm"};

// Whether `name` is `target` with a number and the suffix behind it.
bool isPartOf(const std::string& name, const std::string& target) {
  if (name.size() != target.size() + 1 + numberDigits + partSuffix.size()) return false;
  if (!name.starts_with(target + ".") || !name.ends_with(partSuffix)) return false;
  const std::string_view number = std::string_view(name).substr(target.size() + 1, numberDigits);
  return number.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

bool isSameFile(const fs::path& one, const fs::path& other) {
  std::error_code error;
  return fs::equivalent(one, other, error) && !error;
}

// Whether SQLite keeps the file for an account beside it.
bool belongsToAccount(const fs::path& file) {
  const std::string name = utf8FromPath(file);
  return std::ranges::any_of(besideAccounts, [&name](std::string_view suffix) {
    if (name.size() <= suffix.size()) return false;
    const std::size_t base = name.size() - suffix.size();
    return equalIgnoringCase(std::string_view(name).substr(base), suffix) &&
           tsql::isAccountFile(pathFromUtf8(name.substr(0, base)));
  });
}

[[noreturn]] void refuse(const fs::path& file, const char* reason) {
  throw UserError("will not write over " + utf8FromPath(file) + ": it " + reason + "; name another file");
}

}  // namespace

// A part that is kept open as long as its run lives, so that other runs can tell whether it does: the system lets go of it
// with the program.
class OutputFile::Hold {
 public:
  // Makes the file `name` and holds it; null when it exists already. Sets `error` when it cannot be made.
  static std::unique_ptr<Hold> make(const fs::path& name, std::error_code& error) {
#ifdef _WIN32
    // Others may write and read it, as this run does by its name, but not delete it.
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
      const DWORD reason = GetLastError();
      if (reason != ERROR_FILE_EXISTS) error.assign(static_cast<int>(reason), std::system_category());
      return nullptr;
    }
#else
    constexpr mode_t asUsual = 0666;  // what the user's mask leaves of it
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, asUsual);
    if (file < 0) {
      if (errno != EEXIST) error.assign(errno, std::generic_category());
      return nullptr;
    }
    flock(file, LOCK_EX | LOCK_NB);
#endif
    return std::make_unique<Hold>(file);
  }

  // Removes the file `name` unless a program holds it.
  static void removeUnheld(const fs::path& name) {
    std::error_code ignored;
#ifdef _WIN32
    fs::remove(name, ignored);  // fails while it is held
#else
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (file < 0) return;
    if (flock(file, LOCK_EX | LOCK_NB) == 0) fs::remove(name, ignored);
    close(file);
#endif
  }

#ifdef _WIN32
  explicit Hold(HANDLE file) : file_(file) {}
  ~Hold() {
    CloseHandle(file_);
  }
#else
  explicit Hold(int file) : file_(file) {}
  ~Hold() {
    close(file_);
  }
#endif
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
#ifdef _WIN32
  HANDLE file_;
#else
  int file_;
#endif
};

void refuseToReplace(const fs::path& file, std::span<const fs::path> inputs) {
  if (tsql::isAccountFile(file)) refuse(file, "is an account");
  if (belongsToAccount(file)) refuse(file, "belongs to an account");
  for (const fs::path& input : inputs) {
    std::error_code error;
    const fs::file_status status = fs::status(input, error);
    // One terminal may well be read from and written to.
    if (fs::is_regular_file(status) && isSameFile(file, input)) refuse(file, "is read by this command");
  }
}

OutputFile::OutputFile(const fs::path& file) : file_(file), target_(file), part_(file) {
  refuseToReplace(file, {});
  std::error_code error;
  const fs::file_status older = fs::status(file, error);
  if (fs::exists(older)) {
    if (!fs::is_regular_file(older)) return;
    // The link stays and the file behind it is replaced.
    if (fs::path behind = fs::canonical(file, error); !error) target_ = std::move(behind);
    // A new name could be given over a file that is protected from being written to, which this one then is not.
    if (!std::ofstream(target_, std::ios::binary | std::ios::app)) fail();
  }
  removeLeftParts();
  makePart();
}

OutputFile::~OutputFile() {
  std::error_code ignored;
  hold_.reset();
  if (replaces()) fs::remove(part_, ignored);
}

void OutputFile::makePart() {
  constexpr int attempts = 100;  // each would have to meet another run's number
  std::random_device random;
  std::error_code error;
  for (int attempt = 0; attempt < attempts && !error; ++attempt) {
    std::array<char, numberDigits + 1> number{};
    std::snprintf(number.data(), number.size(), "%08x", static_cast<unsigned>(random()));
    fs::path part = target_;
    part += "." + std::string(number.data()) + std::string(partSuffix);
    hold_ = Hold::make(part, error);
    if (hold_ == nullptr) continue;
    part_ = std::move(part);
    return;
  }
  fail();
}

void OutputFile::removeLeftParts() const {
  // A part is not held for a moment when it is made, and on Windows when it gets its name.
  constexpr std::chrono::minutes sure{1};
  const std::string name = utf8FromPath(target_.filename());
  const fs::path folder = target_.has_parent_path() ? target_.parent_path() : fs::path(".");
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (!isPartOf(utf8FromPath(entry->path().filename()), name)) continue;
    std::error_code ignored;
    const auto age = fs::file_time_type::clock::now() - entry->last_write_time(ignored);
    if (!ignored && age > sure) Hold::removeUnheld(entry->path());
  }
}

void OutputFile::complete() {
  if (!replaces()) return;
  refuseToReplace(target_, {});
  std::error_code error;
  if (const fs::file_status older = fs::status(target_, error); fs::exists(older)) {
    fs::permissions(part_, older.permissions(), error);
    if (error) fail();
  }
#ifdef _WIN32
  hold_.reset();  // what is held gets no other name
#endif
  fs::rename(part_, target_, error);
  if (error) fail();
}

void OutputFile::fail() const {
  throw UserError("cannot write " + utf8FromPath(file_) + "; check the folder, its permissions and its free space");
}

}  // namespace quillon::workbench
