// What the filter dialogs have in common: data rights, the years in use, availability by valuation method, the text of
// a list of choices. Each throws AutomationError when the dialog, the login or the public component refuses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/account_options.h"
#include "frame/filter_dialog.h"
#include "frame/module.h"

namespace quillon {

// Takes the user's rights to departments, inventories and warehouses off the lookups of the dialog (AuthString). The
// public component, which answers those lookups, is created if there is none.
void liftDataRights(Module& module);

// The years in use of the login's account (GetIAUsedYears), joined by commas. A year in which the cost-item breakdown
// has not started (iFxStartMonth is 0) counts as an empty text: before the first year that has, it leaves nothing;
// behind it, a bare comma.
std::string usedYearsList(Module& module, FilterDialog& dialog);

// Gives the item the used years to choose from and, when its value is empty, the login's year (cIYear) if that text
// occurs in the list, else the current one (CurPeriodYear).
void offerUsedYears(Module& module, FilterDialog& dialog, DialogItem& item);

// Switches the warehouse and the department item (cWhCode, cDepCode): by inventory neither is available, by department
// only the department, by any other method only the warehouse.
void applyValuationRule(FilterDialog& dialog, std::string_view valuationMethod);

// A choice of a list: the code that the item takes and the name that the user sees.
struct Choice {
  std::string code;
  std::string name;
};

// The list as the filter object takes it: the codes joined by "{#}", "{##}", the names joined by "{#}". An empty list
// gives the bare "{##}".
std::string enumerationText(const std::vector<Choice>& choices);

}  // namespace quillon
