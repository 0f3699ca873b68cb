#include "workbench/account/partial_file.h"

#include <chrono>
#include <string_view>
#include <system_error>
#include <utility>

#include "workbench/account/account_error.h"
#include "workbench/messages/account.h"
#include "workbench/messages/common.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {

namespace {

void removeJournals(const std::filesystem::path& file) noexcept {
  for (const std::string_view suffix : tsql::besideAccountFile) {
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::path(file).concat(suffix), ignored);
  }
}

[[noreturn]] void refuse(const std::filesystem::path& file) {
  throw AccountError(messages::existsAlready(utf8FromPath(file)));
}

[[noreturn]] void fail(const std::filesystem::path& file, const std::error_code& error) {
  throw AccountError(messages::cannotWriteBecause(utf8FromPath(file), error.message()));
}

HeldFile partOfNew(const std::filesystem::path& file) {
  refuseExisting(file);
  try {
    return makePart(file);
  } catch (const std::system_error& error) {
    fail(file, error.code());
  }
}

}  // namespace

void refuseExisting(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::exists(file, error)) refuse(file);
}

void removeOrphanedJournals(const std::filesystem::path& file) {
  refuseExisting(file);
  removeJournals(file);
}

HeldFile makePart(const std::filesystem::path& file) {
  // A part that lives is not held where the file system knows no locks, and on Windows while it gets its name.
  constexpr std::chrono::minutes sure{1};
  constexpr std::string_view suffix = ".part";
  const std::filesystem::path stem = std::filesystem::path(file).concat(".");
  for (HeldFile& left : HeldFile::left(stem, suffix, sure)) {
    removeJournals(left.path());
    left.remove();
  }
  return {stem, suffix};
}

PartialFile::PartialFile(std::filesystem::path file) : file_(std::move(file)), part_(partOfNew(file_)) {}

PartialFile::~PartialFile() {
  part_.remove();
  removeJournals(part_.path());
}

void PartialFile::complete() {
  const std::error_code error = part_.rename(file_, HeldFile::Taken::refused);
  if (error == std::errc::file_exists) refuse(file_);
  if (error) fail(file_, error);
}

}  // namespace quillon::account
