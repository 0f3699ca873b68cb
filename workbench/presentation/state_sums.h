// The states of a report, opening balance, receipts, issues and closing balance, as columns of a view.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "workbench/catalogue/report_layout.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// Two columns for each state, quantity and amount, under the state's name: "receiptQuantity" and "receiptAmount".
std::vector<ViewColumn> stateColumns(std::span<const CrossState> states);
// Their sums, as the end of a select list: ", Sum(...), Sum(...)".
std::string stateSums(std::span<const CrossState> states);

}  // namespace quillon::workbench
