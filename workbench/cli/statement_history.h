// The lines of statements that a user has typed, kept from one session to the next in a file that nobody else may read.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon::workbench {

// $XDG_STATE_HOME/quillon/sql_history, ~/.local/state without it; empty where there is neither.
std::filesystem::path statementHistoryFile();

// Whatever the file does not take, is forgotten: nobody is told. Sessions that run at the same time add to one file.
class StatementHistory {
 public:
  static constexpr std::size_t longest = 1000;  // lines given and, roughly, kept

  // Keeps nothing when `file` is empty.
  explicit StatementHistory(std::filesystem::path file);

  // The latest lines of earlier sessions, the oldest first.
  const std::vector<std::string>& lines() const { return lines_; }
  // Keeps a line, unless it is like the one before it or speaks of a password.
  void add(const std::string& line);

 private:
  void shorten() const;

  std::filesystem::path file_;
  std::vector<std::string> lines_;
  std::string last_;
};

}  // namespace quillon::workbench
