// The rows of a result table as they are, as CSV and as JSON. They are read while they are written, so memory does not grow
// with them.
#pragma once

#include <ostream>
#include <span>

#include "workbench/presentation/csv_style.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"
#include "workbench/presentation/row_progress.h"

namespace quillon::workbench {

// All columns of the result table under their own names or captions (of those that are `known`), one record a row, CR LF;
// exact numbers, dates as yyyy-mm-dd. Null and an empty text are both nothing.
void writeCsv(std::ostream& out, const ResultTable& table, std::span<const ReportColumn> known = {},
              const CsvStyle& style = {}, Language language = Language::chinese,
              RowProgress& progress = noRowProgress());

// One object: report, title, columns ([name, type]), captions (by column name, of the columns that are known), rows
// (one array a line, values as `quillon sql` writes them).
void writeJson(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::span<const ReportColumn> known, RowProgress& progress = noRowProgress());

}  // namespace quillon::workbench
