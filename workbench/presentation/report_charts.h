// The charts of a report: what a reader looks at before reading the rows. All their sums are exact.
#pragma once

#include <vector>

#include "workbench/presentation/laid_out_report.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

// What the costs of the period consist of, from the view of the layout summary: the closing balance by cost item where
// there is one, else receipts and issues. The greatest amounts come first; what has no place of its own is summed in the
// last point. A state whose amounts are all zero gives no chart.
std::vector<Chart> structureCharts(const View& summary, Language language);

// Of a ledger, from the view of the layout ledger and the result table that it was made from: the balance at the end of
// each month, and what the closing balance consists of. `table` must be there while the function runs; throws
// tsql::SqlError when the account refuses a statement.
std::vector<Chart> ledgerCharts(const View& ledger, const ResultTable& table, Language language);

}  // namespace quillon::workbench
