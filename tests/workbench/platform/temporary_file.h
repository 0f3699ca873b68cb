// A file name of its own for one test; the file is removed at the end, and whatever the engine left beside it.
#pragma once

#include <filesystem>
#include <string>

#include "workbench/platform/embedded_platform.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::test {

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& extension)
      : path_(std::filesystem::temp_directory_path() / ("quillon-test-" + uniqueNamePart() + extension)) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
    for (const std::string_view suffix : tsql::besideAccountFile)
      std::filesystem::remove(std::filesystem::path(path_).concat(suffix), ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace quillon::workbench::test
