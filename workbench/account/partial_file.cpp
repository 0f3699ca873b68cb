#include "workbench/account/partial_file.h"

#include <system_error>
#include <utility>

#include "workbench/account/account_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {

void refuseExisting(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::exists(file, error)) {
    throw AccountError(utf8FromPath(file) + " exists already; choose another name or delete the file first");
  }
}

namespace {

void removeJournals(const std::filesystem::path& file) noexcept {
  for (const char* suffix : {"-journal", "-wal", "-shm"}) {
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::path(file).concat(suffix), ignored);
  }
}

}  // namespace

void removeOrphanedJournals(const std::filesystem::path& file) {
  refuseExisting(file);
  removeJournals(file);
}

PartialFile::PartialFile(std::filesystem::path file) : file_(std::move(file)), path_(file_) {
  refuseExisting(file_);
  path_ += ".part";
  remove();
}

void PartialFile::complete() {
  refuseExisting(file_);
  std::error_code error;
  std::filesystem::rename(path_, file_, error);
  if (error) throw AccountError("cannot write " + utf8FromPath(file_) + ": " + error.message());
}

void PartialFile::remove() const noexcept {
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
  removeJournals(path_);
}

}  // namespace quillon::account
