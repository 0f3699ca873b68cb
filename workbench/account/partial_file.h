// A new file that appears complete or not at all.
#pragma once

#include <filesystem>

namespace quillon::account {

// Throws AccountError when `file` exists.
void refuseExisting(const std::filesystem::path& file);

// Removes what SQLite left beside an account of this name that is gone: a journal whose account was deleted after its
// program had been killed would be rolled back into the next account that gets the name. Throws AccountError when `file`
// exists: the journal is its own then.
void removeOrphanedJournals(const std::filesystem::path& file);

// A file that is in the making: it grows under the name `file` + ".part" in the same folder, where what an interrupted
// run left is overwritten. Gone with the object, and with what SQLite keeps beside it, unless complete() was called.
class PartialFile {
 public:
  // Throws AccountError when `file` exists.
  explicit PartialFile(std::filesystem::path file);
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;
  ~PartialFile() { remove(); }

  const std::filesystem::path& path() const { return path_; }
  // Gives the file its name; it is closed by now. Throws AccountError when the name has been taken meanwhile or cannot
  // be given.
  void complete();

 private:
  void remove() const noexcept;

  std::filesystem::path file_;
  std::filesystem::path path_;
};

}  // namespace quillon::account
