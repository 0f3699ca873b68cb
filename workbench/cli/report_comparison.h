// `quillon report --compare`: the same report from two sources, row by row in the report's order.
#pragma once

#include <cstdint>
#include <ostream>

#include "workbench/platform/language.h"
#include "workbench/tsql/values/database.h"

namespace quillon::workbench {

// Reads both results side by side and says on `out` that they are equal, or what differs: columns that only one has or
// that differ in type, at most `shown` rows with both values of each column that differs, rows that only one has, and a
// line that sums it up. Rows count from 1. True when the results are equal.
bool compareResults(tsql::Cursor& first, tsql::Cursor& second, std::int64_t shown, std::ostream& out,
                    Language language = Language::english);

}  // namespace quillon::workbench
