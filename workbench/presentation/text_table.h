// An aligned table for a terminal, written row by row.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace quillon::workbench {

enum class Align { left, right };

struct TableColumn {
  std::string heading;
  Align align = Align::left;
};

class TextTable {
 public:
  // Columns are as wide as the heading and the first `sampledRows` rows need; a later cell that is wider pushes its own
  // row only. So memory does not grow with the rows.
  static constexpr std::size_t sampledRows = 1000;

  TextTable(std::ostream& out, std::vector<TableColumn> columns);

  // One cell a column.
  void row(std::vector<std::string> cells);
  // A rule across the table.
  void rule();
  // Writes what is still held back. Call it once, last.
  void finish();

 private:
  void flush();
  void write(const std::vector<std::string>& cells);

  std::ostream& out_;
  std::vector<TableColumn> columns_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<std::string>> held_;  // an empty row stands for a rule
  bool started_ = false;
};

}  // namespace quillon::workbench
