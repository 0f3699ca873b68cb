// The statements of the outbound summary's build, as texts. Each function gives one statement, ready to be sent.
//
// The build collects the outbound ledger lines of the year in a detail table: a line that is split by cost item as one
// row per part, any other line as a whole. The result table is a copy of it, with names in place of codes.
#pragma once

#include <string>
#include <string_view>

#include "frame/work_table.h"
#include "reports/outsum_item/filter_translation.h"

namespace quillon::outsum_item {

// What the statements of one run have in common.
struct Build {
  const FilterConditions& conditions;
  std::string resultTable;  // as the platform names it
  WorkTable detail;
};

// Whether the parts of lines are read as expense items (mode "2"), with the lines that are not split left out.
bool byExpenseItem(const Build& build);

std::string createDetailTable(const Build& build);
std::string createResultTable(const Build& build);

// Cost-item fill, for every mode but "2"; in this order.
std::string insertSplitLines(const Build& build);
std::string insertUnsplitLines(const Build& build);

// Expense-item fill. `language` chooses the names of the expense types (Ca_AmoTypeName.localid).
std::string insertExpenseItems(const Build& build, std::string_view language);

// Asks for the project-item classes of the collected rows: class code, class table, item table.
std::string queryProjectItemClasses(const Build& build);
// Gives the rows of project-item class `itemClass` the code and name of their item's class: from the inventory classes,
// or from the item table and the class table that fItem names for the class.
std::string nameInventoryItemClasses(const Build& build, std::string_view itemClass);
std::string nameProjectItemClasses(const Build& build, std::string_view itemClass, std::string_view itemTable,
                                   std::string_view classTable);

std::string insertReportRows(const Build& build);
// Puts the voucher types' names in place of their codes in the result table.
std::string nameVoucherTypes(const Build& build);

}  // namespace quillon::outsum_item
