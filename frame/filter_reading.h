// How the summary reports read the filter object: each item once, in list order, with a grouping token that says whether
// the report or the filter object turns the item into SQL; and the condition on the months of a report year in which the
// cost-item breakdown starts late.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "frame/module.h"

namespace quillon {

// An item as a report reads it.
struct FilterValues {
  std::string name;    // the key; reports compare it without regard to letter case
  std::string value;   // the value or lower bound; several values are TAB-separated
  std::string value2;  // the upper bound; empty when not given
};

// Takes the value of the filter item iYear and gives it as a number. Throws AutomationError (type mismatch) for anything but a 16-bit
// number.
std::int16_t yearNumber(const std::string& year);

// Claims each item for the report by its grouping token, before its name is read, and hands it to `translate`; an item
// for which that gives false goes back to the filter object. Gives the filter object's own condition
// (GetWhereWithToken(0)) on the items that went back, as " AND " and the condition; empty when there is none. Throws
// AutomationError when the filter object refuses, and whatever `translate` throws.
std::string translateItems(Filter& filter, const std::function<bool(const FilterValues& item)>& translate);

// " And base.iMonth >= M " when the cost-item breakdown of `year` starts in month M (iFxStartMonth), after January and
// after the month in which inventory accounting began in that year; else empty. The module's session must be set.
// Throws AutomationError when the public component or the session refuses, and for a year that is not a number where
// the number is needed.
std::string costItemMonthCondition(Module& module, const std::string& year);

}  // namespace quillon
