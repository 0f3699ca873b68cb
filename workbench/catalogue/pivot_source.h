// What of a report's result table a pivot is made from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report_layout.h"
#include "workbench/platform/lookup.h"

namespace quillon::workbench {

// Two columns of a result table that stand for one thing: "cWhCode" and "cWhName".
struct CodeAndName {
  std::string_view code;
  std::string_view name;
};

// A column of codes that a result table does not name.
struct CodeNames {
  std::string_view column;
  const Lookup* lookup;  // with rows, where the names stand
};

// Some of the rows of a result table, for a report whose rows cannot all be summed.
struct PivotSource {
  // What goes behind From: a derived table with all columns of `table` and those that the states need.
  std::string (*rows)(std::string_view table);
  // Which rows these are: the ones that have `value` in `column`.
  std::string_view column;
  std::string_view value;
  // Quantity and amount of each state over these rows.
  std::vector<CrossState> (*states)();
};

}  // namespace quillon::workbench
