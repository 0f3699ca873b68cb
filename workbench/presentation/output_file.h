// A file that a command writes its output to.
#pragma once

#include <filesystem>

namespace quillon::workbench {

// Whatever stands under the file's name stays as it is until the output is complete, and is then replaced by it in one
// step: a reader finds the older file or the newer one, even after a run that was killed. The output grows
// as `file` + ".part" in the same folder, over what an interrupted run left there. What is not a regular file, such as
// /dev/stdout or a pipe, is written to directly.
class OutputFile {
 public:
  // Throws UserError when there is an older file that may not be written to.
  explicit OutputFile(const std::filesystem::path& file);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // The part is gone with the object.
  ~OutputFile();

  // Where the output is to be written.
  const std::filesystem::path& path() const { return part_; }
  // Gives the output its name, and an older file's permissions; it is closed by now. Throws UserError.
  void complete();
  // Throws the UserError that says that the file cannot be written.
  [[noreturn]] void fail() const;

 private:
  bool replaces() const { return part_ != target_; }

  std::filesystem::path file_;    // as it was named
  std::filesystem::path target_;  // behind symbolic links
  std::filesystem::path part_;
};

}  // namespace quillon::workbench
