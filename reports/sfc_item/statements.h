// The statements of the receipt/issue/balance build, as texts. Each function gives one statement, ready to be sent.
//
// The build collects one row per ledger line and cost item in a detail table and sums them into the result table. In
// the modes by cost item and by class every ledger line comes in twice: once per cost item, with the movement and the
// closing balance that fall to it, and once as a whole, with opening balance, receipts and issues. The whole line then
// takes the cost item of one of its rows, so that nothing is counted twice.
#pragma once

#include <string>
#include <string_view>

#include "frame/report_mode.h"
#include "frame/work_table.h"
#include "reports/sfc_item/filter_translation.h"

namespace quillon::sfc_item {

// What the statements of one run have in common.
struct Build {
  const FilterConditions& conditions;
  ReportMode mode;
  std::string resultTable;  // as the platform names it
  WorkTable detail;
};

// The texts of cState, localized by the platform. They stand inside N'...'.
struct StateTexts {
  std::string opening;
  std::string receipt;
  std::string issue;
  std::string closing;
};

std::string createResultTable(const Build& build);
std::string createDetailTable(const Build& build);

// Cost-item filler, for every mode but that by expense item; in this order.
std::string insertCostItemOpenings(const Build& build, const StateTexts& states);
std::string insertCostItemMovements(const Build& build, const StateTexts& states);
std::string insertLineOpenings(const Build& build, const StateTexts& states);
std::string insertLineMovements(const Build& build, const StateTexts& states);
// Only with an opening condition: movements before the lower date bound become opening balance.
std::string turnIntoOpenings(const Build& build, const StateTexts& states);
std::string insertClosings(const Build& build, const StateTexts& states);
std::string copyCostItemsToWholeLines(const Build& build);

// Expense-type filler; in this order.
// Asks for the period ("202401") whose expense names the opening rows carry.
std::string queryExpensePeriod(const Build& build);
std::string insertExpenseOpenings(const Build& build, std::string_view openingText, std::string_view language,
                                  std::string_view period);
std::string insertExpenseMovements(const Build& build, std::string_view language);
// Only with an opening condition: movements before the lower date bound become opening amounts.
std::string turnIntoExpenseOpenings(const Build& build);
std::string clearExpenseStates(const Build& build);

// The warehouse and inventory pairs whose sums meet the having text.
std::string createGroupIndex(const Build& build, const WorkTable& groupIndex);
// `groupIndex` is null unless the rows are to be those of the group index's pairs.
std::string insertReportRows(const Build& build, const WorkTable* groupIndex);
std::string deleteRowsWithoutCostItem(const Build& build);

}  // namespace quillon::sfc_item
