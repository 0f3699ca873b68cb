// A new file that appears complete or not at all.
#pragma once

#include <filesystem>

#include "workbench/account/held_file.h"

namespace quillon::account {

// Throws AccountError when `file` exists.
void refuseExisting(const std::filesystem::path& file);

// Removes the journal of an account that is gone. When a program is killed and its account then deleted, SQLite's journal
// stays, and would be rolled back into the next account of the same name. Throws AccountError when `file`
// exists: the journal is its own then.
void removeOrphanedJournals(const std::filesystem::path& file);

// An empty file for what will be called `file` when it is complete: in the same folder, with a number of this run's own and
// ".part" behind the name. Removes the parts of `file` that dead runs left, and SQLite's journals of them: those that no
// run holds and that nothing has been written to for a minute. Throws std::system_error when the folder takes no new file.
HeldFile makePart(const std::filesystem::path& file);

// A file that is not complete yet: a part (makePart()). The object removes it, and SQLite's journals of it, unless
// complete() was called.
class PartialFile {
 public:
  // Throws AccountError when `file` exists, and when the folder takes no new file.
  explicit PartialFile(std::filesystem::path file);
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;
  ~PartialFile();

  // Where it is to be written; it exists and is empty.
  const std::filesystem::path& path() const { return part_.path(); }
  // Gives the file its name; it is closed by now. Throws AccountError when the name has been taken meanwhile, if only by a
  // run that began later, or cannot be given.
  void complete();

 private:
  std::filesystem::path file_;
  HeldFile part_;
};

}  // namespace quillon::account
