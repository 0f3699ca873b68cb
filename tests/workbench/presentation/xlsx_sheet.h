// The one sheet of a workbook, read back from its file for the tests.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace quillon::workbench::test {

struct XlsxCell {
  std::optional<double> number;
  std::string text;
  std::string format;   // of a number: how it is shown
  bool filled = false;  // the cell has a background
};

class XlsxSheet {
 public:
  // Throws std::runtime_error when `file` is no workbook.
  explicit XlsxSheet(const std::filesystem::path& file);

  const std::string& name() const { return name_; }
  // The cell at "B3"; an empty one when nothing is there.
  XlsxCell cell(const std::string& place) const;
  // The texts and numbers of row `row` with a bar between them; what is empty vanishes.
  std::string row(int row) const;
  int lastRow() const { return lastRow_; }
  // The rows that the headings' filter covers, "A4:C9".
  const std::string& filter() const { return filter_; }

 private:
  std::string name_;
  std::string filter_;
  std::map<std::string, XlsxCell> cells_;
  std::map<int, std::string> rows_;
  int lastRow_ = 0;
};

}  // namespace quillon::workbench::test
