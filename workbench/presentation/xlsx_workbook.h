// A report as an Excel workbook (XLSX) of one sheet.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

// Writes heading, conditions, cross view, rows and totals to `file`, one sheet named after the report; of a ledger its
// rows, balances set off. Captions are in the document's language. Numbers are numbers with all their decimals, shown
// with those of their column; a number of more digits than a cell holds (15) is a text, so that none is lost. Dates are
// dates; those before 1900, which Excel does not know, are texts. `limit` rows at most are written, the totals are of
// all.
//
// Rows go to a temporary file while they are read, so memory does not grow with them. The workbook is only begun when all
// of them were read, and replaces an older file when it is complete (output_file.h). Throws UserError when the rows are
// more than a sheet has or the file cannot be written.
void writeXlsx(const std::filesystem::path& file, const ReportDocument& document, const ResultTable& table,
               std::optional<std::int64_t> limit);

}  // namespace quillon::workbench
