// What a report's result columns are called and how they are shown.
#pragma once

#include <string>
#include <vector>

#include "workbench/platform/language.h"

namespace quillon::workbench {

enum class ColumnRole {
  internal,     // keys and helper columns; only in CSV and JSON
  userDefined,  // fields whose meaning each account gives; in CSV and JSON, elsewhere when asked for
  further,      // what a document carries beside; likewise
  text,
  date,
  quantity,  // shown with the account's decimals, summed
  money,     // shown with two decimals, summed
  movement,  // quantity of a row's state: shown, not summed, since states do not add up
  amount,    // money of a row's state, likewise
  unitCost,  // shown with the account's decimals of unit costs, not summed
  share,     // a part of one, shown in per cent with two decimals, not summed
};

constexpr bool isNumber(ColumnRole role) {
  return role >= ColumnRole::quantity;
}
constexpr bool isMoney(ColumnRole role) {
  return role == ColumnRole::money || role == ColumnRole::amount;
}
constexpr bool isSummed(ColumnRole role) {
  return role == ColumnRole::quantity || role == ColumnRole::money;
}

struct ReportColumn {
  std::string name;  // as the result table has it
  std::string chinese;
  std::string english;
  ColumnRole role = ColumnRole::text;
  bool ofLine = false;  // of a ledger line as a whole, whatever cost item the row is for

  const std::string& caption(Language language) const { return language == Language::chinese ? chinese : english; }
};

// What several reports have alike.

// Puts the free items, cFree1 to cFree10, behind `columns`.
void addFreeItems(std::vector<ReportColumn>& columns);
// Puts the user-defined fields of the inventory and of the document behind `columns`: cInvDefine1 to cInvDefine16,
// cDefine1 to cDefine16 and cDefine22 to cDefine37.
void addUserDefinedFields(std::vector<ReportColumn>& columns);

}  // namespace quillon::workbench
