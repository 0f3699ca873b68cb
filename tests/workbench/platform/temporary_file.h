// A file name of its own for one test; the file is removed at the end, and whatever the engine left beside it.
#pragma once

#include <filesystem>
#include <string>

#include "workbench/platform/embedded_platform.h"

namespace quillon::workbench::test {

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& extension)
      : path_(std::filesystem::temp_directory_path() / ("quillon-test-" + uniqueNamePart() + extension)) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    std::error_code ignored;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
      std::filesystem::path file = path_;
      file += suffix;
      std::filesystem::remove(file, ignored);
    }
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace quillon::workbench::test
