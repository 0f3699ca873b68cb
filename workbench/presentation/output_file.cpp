#include "workbench/presentation/output_file.h"

#include <fstream>
#include <system_error>

#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace fs = std::filesystem;

OutputFile::OutputFile(const fs::path& file) : file_(file), target_(file), part_(file) {
  std::error_code error;
  const fs::file_status older = fs::status(file, error);
  if (fs::exists(older)) {
    if (!fs::is_regular_file(older)) return;
    // The link stays and the file behind it is replaced.
    if (fs::path behind = fs::canonical(file, error); !error) target_ = std::move(behind);
    // A new name could be given over a file that is protected from being written to, which this one then is not.
    if (!std::ofstream(target_, std::ios::binary | std::ios::app)) fail();
  }
  part_ = target_;
  part_ += ".part";
  fs::remove(part_, error);
}

OutputFile::~OutputFile() {
  std::error_code ignored;
  if (replaces()) fs::remove(part_, ignored);
}

void OutputFile::complete() {
  if (!replaces()) return;
  std::error_code error;
  if (const fs::file_status older = fs::status(target_, error); fs::exists(older)) {
    fs::permissions(part_, older.permissions(), error);
    if (error) fail();
  }
  fs::rename(part_, target_, error);
  if (error) fail();
}

void OutputFile::fail() const {
  throw UserError("cannot write " + utf8FromPath(file_) + "; check the folder, its permissions and its free space");
}

}  // namespace quillon::workbench
