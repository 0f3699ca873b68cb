// What a summary report breaks its ledger lines down by: the filter item cModal.
#pragma once

#include <string_view>

namespace quillon {

enum class ReportMode { costItemClass, costItem, expenseType };

// The item cModal read as a number: 0 reports by cost-item class, 2 by expense type, any other number by cost item. A
// text that does not begin with a number counts as 0.
ReportMode reportMode(std::string_view mode);

}  // namespace quillon
