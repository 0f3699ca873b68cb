#include "workbench/account/scratch.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <chrono>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "workbench/account/account_error.h"
#include "workbench/messages/account.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {

namespace fs = std::filesystem;

namespace {

// Earlier builds hold their files in another way, and would take these for left ones: theirs begin with "quillon-scratch-".
constexpr std::string_view namePrefix = "quillon-run-";
constexpr std::string_view lockSuffix = ".lock";
constexpr const char* fileName = "scratch.account";

#ifdef _WIN32

// The folder for temporary files is the user's own there.
bool makePrivateFolder(const fs::path& folder) {
  return CreateDirectoryW(folder.c_str(), nullptr) != 0;
}

bool isOwn(const fs::path&) {
  return true;
}

constexpr const char* folderVariable = "TEMP";

#else

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

// What belongs to a lock.
fs::path folderOf(const HeldFile& lock) {
  return fs::path(lock.path()).replace_extension();
}

// The folder, and then the lock: as long as that is there, the next run tries again.
void removeScratch(HeldFile& lock) {
  if (removeFolder(folderOf(lock))) lock.remove();
}

// Throws std::system_error.
HeldFile lockIn(const fs::path& temporary) {
  const fs::path stem = temporary / namePrefix;
  for (HeldFile& left : HeldFile::left(stem, lockSuffix, std::chrono::seconds::zero()))
    if (isOwn(left.path())) removeScratch(left);
  return {stem, lockSuffix};
}

[[noreturn]] void fail(const workbench::Filling& folder) {
  throw AccountError(messages::noScratchFolder(folder, folderVariable));
}

HeldFile makeLock() {
  std::error_code error;
  const fs::path temporary = fs::temp_directory_path(error);
  if (error) fail(messages::temporaryFolder());
  try {
    return lockIn(temporary);
  } catch (const std::system_error&) {
    fail(utf8FromPath(temporary));
  }
}

}  // namespace

// The folder is made once the lock is held: so there is never a folder without a lock that says whether its owner lives.
Scratch::Scratch() : lock_(makeLock()), file_(folderOf(lock_) / fileName) {
  if (makePrivateFolder(folderOf(lock_))) return;
  lock_.remove();
  fail(utf8FromPath(lock_.path().parent_path()));
}

Scratch::~Scratch() {
  removeScratch(lock_);
}

}  // namespace quillon::account
