#include "workbench/account/held_file.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <array>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <utility>

#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t numberDigits = 8;

// Whether `name` is `stem`, a number and `suffix`.
bool isNamed(const std::string& name, const std::string& stem, std::string_view suffix) {
  if (name.size() != stem.size() + numberDigits + suffix.size()) return false;
  if (!name.starts_with(stem) || !name.ends_with(suffix)) return false;
  const std::string_view number = std::string_view(name).substr(stem.size(), numberDigits);
  return number.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

}  // namespace

// The system lets go of it with the program.
class HeldFile::Hold {
 public:
  // Makes the file `name` and holds it; null when it exists already. Sets `error` when it cannot be made.
  static std::unique_ptr<Hold> make(const fs::path& name, std::error_code& error);
  // Holds a file that exists; null when a run holds it, or it cannot be held.
  static std::unique_ptr<Hold> takeOver(const fs::path& name);

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
  bool lock() const;
  bool isFile(const fs::path& name) const;

  int file_;
#endif
};

#ifdef _WIN32

// Others may write and read the file, but not remove it, and not open it for themselves alone.
std::unique_ptr<HeldFile::Hold> HeldFile::Hold::make(const fs::path& name, std::error_code& error) {
  const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) return std::make_unique<Hold>(file);
  const DWORD reason = GetLastError();
  if (reason != ERROR_FILE_EXISTS) error.assign(static_cast<int>(reason), std::system_category());
  return nullptr;
}

std::unique_ptr<HeldFile::Hold> HeldFile::Hold::takeOver(const fs::path& name) {
  const HANDLE file = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : std::make_unique<Hold>(file);
}

#else

std::unique_ptr<HeldFile::Hold> HeldFile::Hold::make(const fs::path& name, std::error_code& error) {
  constexpr mode_t asUsual = 0666;  // what the user's mask leaves of it
  const int file = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, asUsual);
  if (file < 0) {
    if (errno != EEXIST) error.assign(errno, std::generic_category());
    return nullptr;
  }
  auto hold = std::make_unique<Hold>(file);
  // Another run took it for a left one before it was held, and removes it. Where a file system knows no locks, nobody does.
  const bool taken = !hold->lock() && (errno == EAGAIN || errno == EACCES);
  if (taken || !hold->isFile(name)) hold.reset();
  return hold;
}

std::unique_ptr<HeldFile::Hold> HeldFile::Hold::takeOver(const fs::path& name) {
  const int file = open(name.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (file < 0) return nullptr;
  auto hold = std::make_unique<Hold>(file);
  if (!hold->lock() || !hold->isFile(name)) hold.reset();
  return hold;
}

// Locks one byte behind all that can be written. An account that grows has locks of SQLite's own, and a lock on the whole
// file would stand in their way on a network file system, on some even in the way of writing.
bool HeldFile::Hold::lock() const {
  struct flock byte {};
  byte.l_type = F_WRLCK;
  byte.l_whence = SEEK_SET;
  byte.l_start = std::numeric_limits<off_t>::max() - 1;
  byte.l_len = 1;
  return fcntl(file_, F_OFD_SETLK, &byte) == 0;  // of the open file: it outlives others of this process
}

// Whether it has that name, and is no pipe. Whoever held the file before may have removed it meanwhile.
bool HeldFile::Hold::isFile(const fs::path& name) const {
  struct stat mine {};
  struct stat named {};
  return fstat(file_, &mine) == 0 && S_ISREG(mine.st_mode) && lstat(name.c_str(), &named) == 0 &&
         mine.st_ino == named.st_ino && mine.st_dev == named.st_dev;
}

#endif

HeldFile::HeldFile(fs::path path, std::unique_ptr<Hold> hold) noexcept
    : path_(std::move(path)), hold_(std::move(hold)) {}
HeldFile::HeldFile(HeldFile&&) noexcept = default;
HeldFile::~HeldFile() = default;

HeldFile::HeldFile(const fs::path& stem, std::string_view suffix) {
  constexpr int attempts = 100;  // each would have to meet another run's number
  std::random_device random;
  std::error_code error;
  for (int attempt = 0; attempt < attempts && !error; ++attempt) {
    std::array<char, numberDigits + 1> number{};
    std::snprintf(number.data(), number.size(), "%08x", static_cast<unsigned>(random()));
    fs::path path = stem;
    path += std::string(number.data()) + std::string(suffix);
    hold_ = Hold::make(path, error);
    if (hold_ == nullptr) continue;
    path_ = std::move(path);
    return;
  }
  throw std::system_error(error ? error : std::make_error_code(std::errc::file_exists));
}

std::vector<HeldFile> HeldFile::left(const fs::path& stem, std::string_view suffix, std::chrono::seconds age) {
  const std::string name = utf8FromPath(stem.filename());
  const fs::path folder = stem.has_parent_path() ? stem.parent_path() : fs::path(".");
  const auto isOldEnough = [age](const fs::directory_entry& entry) {
    std::error_code error;
    const auto written = entry.last_write_time(error);
    return !error && fs::file_time_type::clock::now() - written >= age;
  };
  std::vector<HeldFile> files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (!isNamed(utf8FromPath(entry->path().filename()), name, suffix)) continue;
    if (age > std::chrono::seconds::zero() && !isOldEnough(*entry)) continue;
    if (std::unique_ptr<Hold> hold = Hold::takeOver(entry->path()))
      files.push_back(HeldFile(entry->path(), std::move(hold)));
  }
  return files;
}

std::error_code HeldFile::rename(const fs::path& name, Taken taken) noexcept {
  std::error_code error;
#ifdef _WIN32
  hold_.reset();  // what is held gets no other name
  const DWORD flags = taken == Taken::replaced ? MOVEFILE_REPLACE_EXISTING : 0;
  if (MoveFileExW(path_.c_str(), name.c_str(), flags) == 0)
    error.assign(static_cast<int>(GetLastError()), std::system_category());
#else
  if (taken == Taken::refused) {
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) return error;
    error.assign(errno, std::generic_category());
    // Some file systems cannot do both in one step.
    if (error != std::errc::invalid_argument && error != std::errc::function_not_supported) return error;
    if (fs::exists(fs::symlink_status(name, error))) return std::make_error_code(std::errc::file_exists);
  }
  fs::rename(path_, name, error);
#endif
  return error;
}

void HeldFile::remove() noexcept {
  hold_.reset();  // Windows removes no file that is held
  std::error_code ignored;
  fs::remove(path_, ignored);
}

}  // namespace quillon::account
