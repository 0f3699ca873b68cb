#include "workbench/presentation/output_file.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "frame/text.h"
#include "workbench/account/partial_file.h"
#include "workbench/messages/common.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace fs = std::filesystem;

namespace {

bool isSameFile(const fs::path& one, const fs::path& other) {
  std::error_code error;
  return fs::equivalent(one, other, error) && !error;
}

// Whether SQLite keeps the file for an account beside it.
bool belongsToAccount(const fs::path& file) {
  const std::string name = utf8FromPath(file);
  return std::ranges::any_of(tsql::besideAccountFile, [&name](std::string_view suffix) {
    if (name.size() <= suffix.size()) return false;
    const std::size_t base = name.size() - suffix.size();
    return equalIgnoringCase(std::string_view(name).substr(base), suffix) &&
           tsql::isAccountFile(pathFromUtf8(name.substr(0, base)));
  });
}

}  // namespace

void refuseToReplace(const fs::path& file, std::span<const fs::path> inputs) {
  if (tsql::isAccountFile(file)) throw UserError(messages::isAnAccount(utf8FromPath(file)));
  if (belongsToAccount(file)) throw UserError(messages::isOfAnAccount(utf8FromPath(file)));
  for (const fs::path& input : inputs) {
    std::error_code error;
    const fs::file_status status = fs::status(input, error);
    // One terminal may well be read from and written to.
    if (fs::is_regular_file(status) && isSameFile(file, input))
      throw UserError(messages::isReadByCommand(utf8FromPath(file)));
  }
}

OutputFile::OutputFile(const fs::path& file) : file_(file), target_(file) {
  refuseToReplace(file, {});
  std::error_code error;
  const fs::file_status older = fs::status(file, error);
  if (fs::exists(older)) {
    if (!fs::is_regular_file(older)) return;
    // The link stays and the file behind it is replaced.
    if (fs::path behind = fs::canonical(file, error); !error) target_ = std::move(behind);
    // A new name could be given over a file that is protected from being written to, which this one then is not.
    if (!std::ofstream(target_, std::ios::binary | std::ios::app)) fail();
  }
  try {
    part_.emplace(account::makePart(target_));
  } catch (const std::system_error&) {
    fail();
  }
}

OutputFile::~OutputFile() {
  if (part_) part_->remove();
}

void OutputFile::complete() {
  if (!part_) return;
  refuseToReplace(target_, {});
  std::error_code error;
  if (const fs::file_status older = fs::status(target_, error); fs::exists(older)) {
    fs::permissions(part_->path(), older.permissions(), error);
    if (error) fail();
  }
  if (part_->rename(target_, account::HeldFile::Taken::replaced)) fail();
}

void OutputFile::fail() const {
  throw UserError(messages::cannotWrite(utf8FromPath(file_)));
}

}  // namespace quillon::workbench
