// The cost-item voucher report's filter as SQL.
#pragma once

#include <string>

#include "frame/filter.h"

namespace quillon::fx_wt {

struct FilterConditions {
  // Conditions on the ledger lines (alias base) and their masters (Inventory, Customer, Vendor, CAQ_CostCenterMap):
  // the first, and behind it any number of " And " and a condition.
  std::string where;
  // The chosen voucher types as a quoted, comma-separated list; empty when none is chosen.
  std::string voucherTypes;
};

// Reads each item of the filter once, in list order, and writes its grouping token: 0 for an item that is translated
// here, 1 or 3 for one that the filter object is to translate. The filter object's own conditions
// (GetWhereWithToken of 1, 2 and 3) follow the others. Keys are compared to the letter; a key that is not known is
// taken for a column of the ledger. Throws AutomationError when the filter refuses.
FilterConditions translateFilter(Filter& filter);

}  // namespace quillon::fx_wt
