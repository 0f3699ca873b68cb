// What the filters of the two summary reports have in common: the conditions and settings that come of them, and the
// items that both reports have.
#pragma once

#include <string>
#include <string_view>

#include "frame/filter_reading.h"

namespace quillon {

// The conditions and settings that both reports take from their filter.
struct SummaryConditions {
  // Conditions on the ledger rows (alias base, with inv and wh joined). Each begins with "And " and ends with a blank,
  // so that they can follow one another.
  std::string where = "Where 1 = 1 ";
  std::string mode;   // cModal: "0" reports by cost-item class, "2" by expense item, any other by cost item
  std::string year;   // iYear
  std::string grade;  // iGrade: the grade of the cost-item classes; "1" when the item is there and empty
};

// Adds `open`, the value and `close` to `where`; nothing for an empty value. The value stays as it is.
void addCondition(std::string& where, std::string_view open, std::string_view value, std::string_view close);
// The same with the value's selections as a quoted list (frame/quoted_list.h).
void addListCondition(std::string& where, std::string_view open, std::string_view value, std::string_view close);
// Adds that the inventory has not expired at the login's business date, when `value` is "0". Throws AutomationError when
// the login refuses.
void addExpiryCondition(std::string& where, std::string_view value, Login& login);

// Adds the item to `conditions` and gives true when its key, in any letter case, is one that both reports have: mode,
// year, grade, warehouse (cWhCode), inventory (cInvCode), or a free item or user-defined field of the ledger line. False
// for any other, with `conditions` as they were.
bool addCommonItem(const FilterValues& item, SummaryConditions& conditions);

}  // namespace quillon
