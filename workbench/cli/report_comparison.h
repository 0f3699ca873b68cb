// `quillon report --compare`: the same report from two sources, row by row in the report's order.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "workbench/platform/language.h"
#include "workbench/tsql/values/database.h"

namespace quillon::workbench {

struct ComparisonOptions {
  std::int64_t shown = 10;                  // rows that are shown of those that differ
  bool exact = false;                       // everything must be the same: letter case, types, decimals, last digits
  std::vector<std::string> quotients = {};  // columns of divided amounts
  Language language = Language::english;
};

// Reads both results side by side and says on `out` that they are equal, or what differs: columns that only one has, at
// most `shown` rows with both values of each column that differs, rows that only one has, and a line that sums it up. Rows
// count from 1. Unless it is to be exact, columns belong together whose names are the same but for letter case, in any
// order; types that differ are told; and rows that agree but for a last digit (tsql::agreementOf()) are told and counted
// apart. True when the results are equal, or agree so.
bool compareResults(tsql::Cursor& first, tsql::Cursor& second, const ComparisonOptions& options, std::ostream& out);

}  // namespace quillon::workbench
