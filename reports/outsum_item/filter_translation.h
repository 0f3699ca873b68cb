// The outbound summary's filter as SQL: what the user chose in the filter dialog becomes one condition text and the
// settings that the statements of the build are made with.
#pragma once

#include <string>

#include "frame/module.h"
#include "frame/summary_filter.h"

namespace quillon::outsum_item {

// The conditions are on ledger rows with inv, wh and cus joined.
struct FilterConditions : SummaryConditions {
  std::string source;  // cSource: "0" reads the split in ia_subsidiary_Item, else in ia_subsidiary_ItemOut
  // The cost-item breakdown starts within the year, and `where` leaves earlier months out.
  bool monthRestricted = false;
};

// Reads each item of the filter once, in list order, and claims it for the report by its grouping token; an item that
// the report has no key for goes back to the filter object, whose own condition (GetWhereWithToken(0)) follows the
// others. The condition on the months comes last. The condition text and the source are made anew; year, mode and grade
// keep what an earlier translation left in `conditions` until their item comes.
// The module's session and login must be set. Throws AutomationError when the filter, the login, the public component
// or the session refuses; `conditions` is then half made, and good for another translation.
void translateFilter(Filter& filter, Module& module, FilterConditions& conditions);

}  // namespace quillon::outsum_item
