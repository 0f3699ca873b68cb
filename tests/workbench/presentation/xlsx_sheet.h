// A sheet of a workbook, read back from its file for the tests.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillon::workbench::test {

struct XlsxCell {
  std::optional<double> number;
  std::string text;
  std::string format;   // of a number: how it is shown
  std::string formula;  // without the sign = before it
  bool filled = false;  // the cell has a background
  bool bold = false;
  bool red = false;
};

class XlsxSheet {
 public:
  // Throws std::runtime_error when `file` is no workbook, std::out_of_range when it has less sheets than `number`.
  explicit XlsxSheet(const std::filesystem::path& file, std::size_t number = 1);

  // The names of all sheets.
  const std::vector<std::string>& names() const { return names_; }

  const std::string& name() const { return name_; }
  // The cell at "B3"; an empty one when nothing is there.
  XlsxCell cell(const std::string& place) const;
  // The texts and numbers of row `row` with a bar between them; what is empty vanishes.
  std::string row(int row) const;
  int lastRow() const { return lastRow_; }
  // The rows that the headings' filter covers, "A4:C9".
  const std::string& filter() const { return filter_; }
  // The first cell that is not kept in sight, "C6".
  const std::string& frozen() const { return frozen_; }
  // The cells that are one, "D5:F5".
  const std::vector<std::string>& merged() const { return merged_; }
  // How deep row `row` lies in an outline.
  int level(int row) const;
  // The width of column `column` (1 is A) in characters; 0 when none is set.
  double width(int column) const;
  // Everything about pages: their set-up, heads and feet; the rows and columns that each repeats.
  const std::string& pages() const { return pages_; }
  const std::map<std::string, XlsxCell>& cells() const { return cells_; }

 private:
  std::string name_;
  std::vector<std::string> names_;
  std::string filter_;
  std::string frozen_;
  std::vector<std::string> merged_;
  std::map<int, int> levels_;
  std::map<int, double> widths_;
  std::string pages_;
  std::map<std::string, XlsxCell> cells_;
  std::map<int, std::string> rows_;
  int lastRow_ = 0;
};

}  // namespace quillon::workbench::test
