#include "workbench/account/scratch.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <array>
#include <cstdio>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "workbench/account/account_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view namePrefix = "quillon-scratch-";
constexpr const char* lockSuffix = ".lock";
constexpr const char* fileName = "scratch.account";

// A lock on a file that the system ends with this process.
class FileLock {
 public:
  // Makes the file when it is not there. Holds nothing when another process has the lock, or the file cannot be made.
  explicit FileLock(const fs::path& file, bool makes = true);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

  explicit operator bool() const { return held_; }

 private:
#ifdef _WIN32
  HANDLE handle_ = INVALID_HANDLE_VALUE;
#else
  int descriptor_ = -1;
#endif
  bool held_ = false;
};

#ifdef _WIN32

// Nobody else may open the file while this one has it.
FileLock::FileLock(const fs::path& file, bool makes)
    : handle_(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, makes ? OPEN_ALWAYS : OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL, nullptr)),
      held_(handle_ != INVALID_HANDLE_VALUE) {}

FileLock::~FileLock() {
  if (held_) CloseHandle(handle_);
}

// The folder for temporary files is the user's own there.
bool makePrivateFolder(const fs::path& folder) {
  return CreateDirectoryW(folder.c_str(), nullptr) != 0;
}

bool isOwn(const fs::path&) {
  return true;
}

constexpr const char* folderVariable = "TEMP";

#else

FileLock::FileLock(const fs::path& file, bool makes)
    : descriptor_(open(file.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | (makes ? O_CREAT : 0), S_IRUSR | S_IWUSR)) {
  held_ = descriptor_ >= 0 && flock(descriptor_, LOCK_EX | LOCK_NB) == 0;
  if (!held_) return;
  // Whoever had the lock before may have removed the file while this one waited for it.
  struct stat mine {};
  struct stat named {};
  held_ = fstat(descriptor_, &mine) == 0 && stat(file.c_str(), &named) == 0 && mine.st_ino == named.st_ino;
}

FileLock::~FileLock() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool makePrivateFolder(const fs::path& folder) {
  return mkdir(folder.c_str(), S_IRWXU) == 0;
}

bool isOwn(const fs::path& file) {
  struct stat status {};
  return lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

constexpr const char* folderVariable = "TMPDIR";

#endif

// False when something could not be removed. The folder has files only.
bool removeFolder(const fs::path& folder) {
  std::error_code error;
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    files.push_back(entry->path());
  for (const fs::path& file : files)
    fs::remove(file, error);
  fs::remove(folder, error);
  return !fs::exists(folder, error);
}

// The folder, and then the lock: as long as that is there, the next run tries again. Ends the lock, because Windows removes
// no file that is open.
void removeScratch(const fs::path& folder, std::optional<FileLock>& lock, const fs::path& lockFile) {
  const bool removed = removeFolder(folder);
  lock.reset();
  std::error_code ignored;
  if (removed) fs::remove(lockFile, ignored);
}

void removeLeftOvers(const fs::path& temporary) {
  std::error_code error;
  std::vector<fs::path> lockFiles;
  for (fs::directory_iterator entry(temporary, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = utf8FromPath(entry->path().filename());
    if (name.starts_with(namePrefix) && name.ends_with(lockSuffix)) lockFiles.push_back(entry->path());
  }
  for (const fs::path& lockFile : lockFiles) {
    if (!isOwn(lockFile)) continue;
    std::optional<FileLock> lock(std::in_place, lockFile, false);
    if (*lock) removeScratch(fs::path(lockFile).replace_extension(), lock, lockFile);
  }
}

std::string randomName() {
  std::random_device random;
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%08x%08x", static_cast<unsigned>(random()), static_cast<unsigned>(random()));
  return std::string(namePrefix) + text.data();
}

}  // namespace

// The lock, and the folder that is made once the lock is held: so there is never a folder without a lock that says whether
// its owner lives.
class Scratch::Owner {
 public:
  explicit Owner(fs::path folder)
      : folder_(std::move(folder)), lockFile_(fs::path(folder_) += lockSuffix), lock_(std::in_place, lockFile_) {
    made_ = *lock_ && makePrivateFolder(folder_);
  }
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;
  ~Owner() {
    if (*lock_) removeScratch(folder_, lock_, lockFile_);
  }

  // False when the folder cannot be made, or another run has just taken the lock for one that is left over.
  bool made() const { return made_; }

 private:
  fs::path folder_;
  fs::path lockFile_;
  std::optional<FileLock> lock_;
  bool made_ = false;
};

Scratch::Scratch() {
  std::error_code error;
  const fs::path temporary = fs::temp_directory_path(error);
  if (!error) removeLeftOvers(temporary);
  constexpr int attempts = 10;
  for (int attempt = 0; attempt < attempts && !error; ++attempt) {
    const fs::path folder = temporary / randomName();
    auto owner = std::make_unique<Owner>(folder);
    if (!owner->made()) continue;
    owner_ = std::move(owner);
    file_ = folder / fileName;
    return;
  }
  throw AccountError("cannot make a folder for this run's tables in " +
                     (error ? std::string("the folder for temporary files") : utf8FromPath(temporary)) +
                     "; check that folder, or name another one in " + folderVariable);
}

Scratch::~Scratch() = default;

}  // namespace quillon::account
