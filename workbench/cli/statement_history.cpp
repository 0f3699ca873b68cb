#include "workbench/cli/statement_history.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace quillon::workbench {

namespace {

constexpr mode_t ownFile = 0600;

bool speaksOfPassword(std::string_view line) {
  constexpr std::string_view word = "password";
  const auto same = [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; };
  return std::search(line.begin(), line.end(), word.begin(), word.end(), same) != line.end();
}

// Adds `text` to the end of the file in one call, so that lines of two sessions do not mix.
void append(const std::filesystem::path& file, const std::string& text, int flags) {
  const int handle = ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | flags, ownFile);
  if (handle < 0) return;
  if (fchmod(handle, ownFile) != 0 || ::write(handle, text.data(), text.size()) < 0) {
    // It is forgotten.
  }
  ::close(handle);
}

}  // namespace

std::filesystem::path statementHistoryFile() {
  namespace fs = std::filesystem;
  fs::path state;
  if (const char* const set = std::getenv("XDG_STATE_HOME"); set != nullptr && *set == '/') {
    state = set;
  } else if (const char* const home = std::getenv("HOME"); home != nullptr && *home == '/') {
    state = fs::path(home) / ".local" / "state";
  } else {
    return {};
  }
  return state / "quillon" / "sql_history";
}

StatementHistory::StatementHistory(std::filesystem::path file) : file_(std::move(file)) {
  if (file_.empty()) return;
  std::ifstream kept(file_, std::ios::binary);
  std::size_t count = 0;
  for (std::string line; std::getline(kept, line); ++count)
    lines_.push_back(line);
  if (lines_.size() > longest) lines_.erase(lines_.begin(), lines_.end() - static_cast<std::ptrdiff_t>(longest));
  if (!lines_.empty()) last_ = lines_.back();
  if (count > 2 * longest) shorten();
}

void StatementHistory::add(const std::string& line) {
  if (file_.empty() || line == last_ || speaksOfPassword(line)) return;
  last_ = line;
  std::error_code error;
  if (std::filesystem::create_directories(file_.parent_path(), error))
    std::filesystem::permissions(file_.parent_path(), std::filesystem::perms::owner_all, error);
  append(file_, line + '\n', 0);
}

void StatementHistory::shorten() const {
  std::string text;
  for (const std::string& line : lines_)
    text += line + '\n';
  const std::filesystem::path part = file_.string() + "." + std::to_string(getpid()) + ".part";
  append(part, text, O_EXCL);
  std::error_code error;
  std::filesystem::rename(part, file_, error);
  if (error) std::filesystem::remove(part, error);
}

}  // namespace quillon::workbench
