// The formulas of a written workbook, computed as a spreadsheet does: in doubles, from the cells that they name.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/workbench/presentation/xlsx_sheet.h"

namespace quillon::workbench::test {

class XlsxEvaluation {
 public:
  explicit XlsxEvaluation(const std::filesystem::path& file);

  const std::vector<XlsxSheet>& sheets() const { return sheets_; }
  // What `formula` on sheet number `home` (0 is the first) comes to. Throws std::runtime_error when it has something
  // that the workbooks' formulas do not have, or adds a text.
  double valueOf(const std::string& formula, std::size_t home) const;
  // The formulas that do not come to the figure beside them within half a thousandth, as "明细!C9 =... is 1, not 2".
  std::vector<std::string> disagreements() const;
  std::size_t formulaCount() const;

 private:
  std::vector<XlsxSheet> sheets_;
};

}  // namespace quillon::workbench::test
