// The rows of a result table, as they are, as an HTML page.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>

#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

// What writeTable() of report_output.h shows, as a page of its own, fit to print: no script, nothing from elsewhere.
// `limit` rows at most are shown, the totals are of all. Rows are read while they are written.
void writeHtml(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::optional<std::int64_t> limit);

}  // namespace quillon::workbench
