// What several reports' statements say of cost items and of the expenses and materials behind them. A part of a ledger
// line (ia_subsidiary_Item) belongs to a cost item (Ca_FxDef) of a class (Ca_FxClassDef); its expense mapping
// (Ca_FxMapExpDID, Ca_FxMapExpDetails) says which material or which expense it is.
#pragma once

#include <string>
#include <string_view>

#include "frame/report_mode.h"

namespace quillon {

// The period of the ledger line `base` as Ca_CostExpDetail_Period.iPeriod has it: year and month, "202403".
inline constexpr std::string_view linePeriod =
    "Cast(base.iYear as nVarchar(10)) + Case When Len(base.iMonth) = 1 Then '0' else '' End + Cast(base.iMonth as nVarchar(10))";

// The keywords of a case expression, as the rest of the statement spells them.
struct CaseWords {
  std::string_view caseWhen;
  std::string_view then;
  std::string_view otherwise;
  std::string_view end;
};
inline constexpr CaseWords lowerCaseWords{.caseWhen = "case when", .then = "then", .otherwise = "else", .end = "end"};
inline constexpr CaseWords capitalWords{.caseWhen = "Case When", .then = "Then", .otherwise = "Else", .end = "End"};

// Gives the expression for a part's code or name: `material` for a part of expense type 0, `expense` for any other. Both
// are expressions over the joined tables.
std::string expenseItem(const CaseWords& words, std::string_view material, std::string_view expense);

// Code and name of a part's cost item, as cFXCode and cFXName; by class those of the cost item's class at the chosen
// grade (alias fxcls), or of its own class where none above it has that grade.
std::string_view costItemColumns(ReportMode mode);

}  // namespace quillon
