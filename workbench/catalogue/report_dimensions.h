// By what a pivot of a report can tell its rows apart: dimensions, as they are made of the columns of its result table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

enum class DimensionKind {
  value,          // what stands in the columns
  month,          // the month of a date
  costItemClass,  // the class of a grade that a cost item, or class, lies in
  state,          // opening balance, receipt, issue or closing balance; figures of several states do not add up
};

struct ReportDimension {
  std::string name;  // of the column of its code, or its own: "cWhCode", "month"
  std::string chinese;
  std::string english;
  DimensionKind kind = DimensionKind::value;
  std::string column;                     // of the result table, whose values it tells apart
  std::string nameColumn;                 // names these values; empty for none
  const Lookup* lookup = nullptr;         // names the codes that no column names
  int grade = 0;                          // of a class, 1 being the top
  bool ofClassCodes = false;              // whether a class is found by the codes of classes, not of cost items
  std::vector<std::string> aliases = {};  // names and captions of its columns, by which it is found, too

  const std::string& caption(Language language) const { return language == Language::chinese ? chinese : english; }
};

// The columns by which DimensionKind::costItemClass finds the classes, as a report writes them: that of a cost item's own
// class, where the report has it, for there a cost item's code may stand with its class's before it; else the cost item.
inline constexpr std::string_view costItemCodeColumn = "cFXCode", classCodeColumn = "cfxCCode";

// Whether each row of the report is one state of a ledger line in a report mode, the value of cModal.
bool rowsAreStates(const Report& report, std::string_view mode);

// The dimensions of the report, in the order of its columns: each column that is neither a number nor internal, a code with
// its name being one; the months of posting and document dates; the classes of cost items down to `classGrades`; the
// state, where each row is one.
std::vector<ReportDimension> dimensionsOf(const Report& report, std::string_view mode, int classGrades);

// What a pivot of the report sums in a report mode; nothing of a report that has neither a cross view nor a source.
std::vector<CrossState> pivotStates(const Report& report, std::string_view mode);

}  // namespace quillon::workbench
