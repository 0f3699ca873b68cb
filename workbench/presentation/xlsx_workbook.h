// A report as an Excel workbook (XLSX).
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "workbench/presentation/laid_out_report.h"

namespace quillon::workbench {

struct XlsxLimits {
  std::int64_t rowsOfSheet = 1'048'576;  // more go on on a further sheet
};

// Writes each section to a sheet of its own, named after its layout; rows that a sheet has no room for go on on
// "明细 (2)" with the same heading. On top stand title, company, period and conditions, then the headings, all of which
// stay in sight with the key columns; sheets that hold lines alone can be filtered, and rows below the head of a group
// or a line can be folded away. Totals, subtotals and running balances are formulas wherever these
// come to the same figure (xlsx_formulas.h), which is kept beside them; so a sheet that is cut by its limit has totals
// of all rows as figures. Pages are A4 landscape with the headings on each.
//
// Captions are in the heading's language. Numbers are numbers with all their decimals, shown with those of their column; a
// number of more digits than a cell holds (15) is a text, so that none is lost. Dates are dates; those before 1900, which
// Excel does not know, are texts.
//
// Rows go to a temporary file while they are read, so memory does not grow with them: a sheet with heads of groups keeps a
// few numbers for each of these, and one that is cut by a limit holds what it shows. The workbook is only begun when all
// rows were read, and replaces an older file when it is complete (output_file.h). Throws UserError when the file cannot be
// written.
void writeXlsx(const std::filesystem::path& file, const LaidOutReport& report, const XlsxLimits& limits);
void writeXlsx(const std::filesystem::path& file, const LaidOutReport& report);

// The same of several reports, one behind the other. A last sheet has the fingerprints of the runs.
class XlsxBook {
 public:
  // `title` and `company` are those of the workbook.
  XlsxBook(const std::filesystem::path& file, const std::string& title, const std::string& company,
           const XlsxLimits& limits = {});
  XlsxBook(const XlsxBook&) = delete;
  XlsxBook& operator=(const XlsxBook&) = delete;
  // Without save() nothing is left.
  ~XlsxBook();

  // Sheets are named after their layout, with `name` in front. The report is read now, and need not stay.
  void add(const LaidOutReport& report, const std::string& name = {});
  void save();

 private:
  class Sheets;
  std::unique_ptr<Sheets> sheets_;
};

}  // namespace quillon::workbench
