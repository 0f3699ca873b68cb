// The report's filter as SQL: what the user chose in the filter dialog becomes the condition texts and settings that
// the statements of the build are made with.
#pragma once

#include <string>

#include "frame/module.h"
#include "frame/summary_filter.h"

namespace quillon::sfc_item {

// The conditions are on ledger rows with inv, wh and dep joined.
struct FilterConditions : SummaryConditions {
  std::string opening;       // picks the rows before the lower date bound; empty without such a bound
  std::string having;        // "Having ..." on the summed movements; empty without such a condition
  std::string balanceState;  // cFSType
  // " And base.iMonth >= M " when the cost-item breakdown starts in month M, later in the year than inventory
  // accounting; the opening balances by cost item then lie in tables of their own (IA_Subsidiary_QC).
  std::string month;

  bool monthActive() const { return !month.empty(); }
};

// Reads each item of the filter once, in list order, and claims it for the report by its grouping token; an item that
// the report has no key for goes back to the filter object, whose own condition (GetWhereWithToken(0)) is added last.
// Then compares the first month of the cost-item breakdown (iFxStartMonth) with that of inventory accounting.
// The module's session and login must be set. Throws AutomationError when the filter, the login, the public component
// or the session refuses, and for a closing-balance item (cJudgeQuantity, cJudgeMoney, cJudgeCost) whose value holds
// none of the digits 0, 1 and 2.
FilterConditions translateFilter(Filter& filter, Module& module);

}  // namespace quillon::sfc_item
