// How a report's result table is laid out for a reader: its columns, and the cross view that sums its rows by cost
// item.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report_columns.h"

namespace quillon::workbench {

// A state of the cross view, such as receipts: quantity and money of each row that belong to it, as T-SQL expressions
// over the result table.
struct CrossState {
  std::string_view nameKey;  // the resource key of its name
  std::string quantity;
  std::string money;
};

// What a report's rows are ordered by: the columns of these that its result table has.
using RowOrder = std::span<const std::string_view>;
// By line number, or by place, inventory, batch, cost item or class, state and ledger line.
inline constexpr std::array<std::string_view, 10> orderByPlace = {
    "RowNo", "cWhCode", "cDepCode", "cInvCode", "cBatchia", "cFXCode", "cAmoCode", "cFxCName", "iState", "autoid"};
// By the day and the ledger line, then by cost item and expense item.
inline constexpr std::array<std::string_view, 4> orderByLine = {"dKeepDate", "AutoID", "cfxCode", "cAmoID"};

struct ReportLayout {
  std::span<const ReportColumn> columns;  // in the order in which table and page show them
  // The states of the cross view for a report mode (the value of cModal).
  std::vector<CrossState> (*states)(std::string_view mode);
  // The report is a ledger: its rows are lines and balances, which cannot be summed, so it has no cross view.
  bool ledger = false;
  RowOrder order = orderByPlace;
};

// The layout of the report called `report`. Throws std::invalid_argument for a report that has none.
const ReportLayout& layoutOf(std::string_view report);

}  // namespace quillon::workbench
