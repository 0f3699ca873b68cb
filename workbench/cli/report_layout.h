// How a report's result table is laid out for a reader: its columns, and the cross view that sums its rows by cost
// item.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/cli/report_columns.h"

namespace quillon::workbench {

// A state of the cross view, such as receipts: quantity and money of each row that belong to it, as T-SQL expressions
// over the result table.
struct CrossState {
  std::string_view nameKey;  // the resource key of its name
  std::string quantity;
  std::string money;
};

struct ReportLayout {
  std::span<const ReportColumn> columns;  // in the order in which table and page show them
  // The states of the cross view for a report mode (the value of cModal).
  std::vector<CrossState> (*states)(std::string_view mode);
  // The report is a ledger: its rows are lines and balances, which cannot be summed, so it has no cross view.
  bool ledger = false;
};

// The layout of the report called `report`. Throws std::invalid_argument for a report that has none.
const ReportLayout& layoutOf(std::string_view report);

}  // namespace quillon::workbench
