// The formats of a report. Rows are read from the result table while they are written, so memory does not grow with
// them.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string_view>

#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

// `text` as a field of RFC 4180: in quotes when it holds a comma, a quote or a line end; quotes are doubled.
std::string csvField(std::string_view text);

// All columns of the result table under their own names, one record a row, CR LF; exact numbers, dates as yyyy-mm-dd,
// null as nothing.
void writeCsv(std::ostream& out, const ResultTable& table);

// One object: report, title, columns ([name, type]), captions (by column name, of the columns that are known), rows
// (one array a line, values as `quillon sql` writes them).
void writeJson(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::span<const ReportColumn> known);

// Heading, conditions, cross view, rows and totals as aligned text; of a ledger its rows, balances between rules. `limit` rows at most are shown, the totals are of
// all.
void writeTable(std::ostream& out, const ReportDocument& document, const ResultTable& table,
                std::optional<std::int64_t> limit);

// The same as a page of its own, fit to print: no script, nothing from elsewhere.
void writeHtml(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::optional<std::int64_t> limit);

}  // namespace quillon::workbench
