// The keys by which the reports join masters to ledger lines. A report joins with every row that has the key: a master
// with two rows for one key brings each line that names it into the report twice, or into its sums. Some of
// these keys are not the tables' primary keys, and an account that comes from elsewhere may have no primary keys at
// all.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

// Rows that share a key which should be one row's.
struct BrokenKey {
  std::string table;
  std::string key;        // which key, and its value: "cWhCode = 01", "iYear = 2024, cCode = 6602"
  std::int64_t rows = 0;  // how many rows a ledger line finds instead of one
  std::string reports;    // the reports that so show lines more than once: "outsum-item, fx-wt"
};

// All of them, by table in the order in which the reports join them, then by key. Beside the keys of single tables:
//   - a work centre and an accounting department that both have a cost centre, for issues that have both;
//   - a cost-item class whose code begins with the codes of two classes of one grade.
// Throws AccountError when the database lacks the tables of an account, and tsql::SqlError when it cannot be read.
std::vector<BrokenKey> brokenKeys(tsql::Database& connection);

}  // namespace quillon::account
