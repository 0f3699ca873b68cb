// A new file that appears complete or not at all.
#pragma once

#include <filesystem>

namespace quillon::account {

// Throws AccountError when `file` exists.
void refuseExisting(const std::filesystem::path& file);

// Removes the journal of an account that is gone. When a program is killed and its account then deleted, SQLite's journal
// stays, and would be rolled back into the next account of the same name. Throws AccountError when `file`
// exists: the journal is its own then.
void removeOrphanedJournals(const std::filesystem::path& file);

// A file that is not complete yet: it grows under the name `file` + ".part" in the same folder, over what an interrupted
// run left there. The object removes it, and SQLite's journals of it, unless complete() was called.
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
