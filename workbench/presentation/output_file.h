// A file that a command writes its output to.
#pragma once

#include <filesystem>
#include <optional>
#include <span>

#include "workbench/account/held_file.h"

namespace quillon::workbench {

// Throws UserError when output that is written to `file` would destroy something that is not output: one of `inputs`,
// whatever links lead to it, any account file, or what SQLite keeps beside an account (-journal, -wal, -shm). Files are
// the same when they have the same device and number in it, and on Windows the same volume and file number; an input
// that does not exist destroys nothing.
void refuseToReplace(const std::filesystem::path& file, std::span<const std::filesystem::path> inputs);

// Whatever stands under the file's name stays as it is until the output is complete, and is then replaced by it in one
// step: a reader finds the older file or the newer one, even after a run that was killed. The output grows as a part
// (account::makePart), which no other run has. What is not a regular file, such as /dev/stdout or a pipe, is written to
// directly.
class OutputFile {
 public:
  // Throws UserError when there is an older file that may not be written to, or is an account (refuseToReplace()), and
  // when the folder takes no new file.
  explicit OutputFile(const std::filesystem::path& file);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // The part is gone with the object.
  ~OutputFile();

  // Where the output is to be written; it exists.
  const std::filesystem::path& path() const { return part_ ? part_->path() : target_; }
  // Gives the output its name, and an older file's permissions; it is closed by now. Throws UserError.
  void complete();
  // Throws the UserError that says that the file cannot be written.
  [[noreturn]] void fail() const;

 private:
  std::filesystem::path file_;    // as it was named
  std::filesystem::path target_;  // behind symbolic links
  std::optional<account::HeldFile> part_;
};

}  // namespace quillon::workbench
