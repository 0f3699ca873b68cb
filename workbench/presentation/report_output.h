// A report as CSV, as JSON and as aligned text. Rows are read from the result table while they are written, so memory
// does not grow with them.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <span>

#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

// All columns of the result table under their own names, one record a row, CR LF; exact numbers, dates as yyyy-mm-dd.
// Null and an empty text are both nothing.
void writeCsv(std::ostream& out, const ResultTable& table);

// One object: report, title, columns ([name, type]), captions (by column name, of the columns that are known), rows
// (one array a line, values as `quillon sql` writes them).
void writeJson(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::span<const ReportColumn> known);

// Heading, conditions, cross view, rows and totals as aligned text; of a ledger its rows, balances between rules.
// `limit` rows at most are shown, the totals are of all.
void writeTable(std::ostream& out, const ReportDocument& document, const ResultTable& table,
                std::optional<std::int64_t> limit);

}  // namespace quillon::workbench
