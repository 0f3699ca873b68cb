// The keys by which the reports join masters to ledger lines. A report joins with every row that has the key: a master
// with two rows for one key brings each line that names it into the report twice, or into its sums. Some of
// these keys are not the tables' primary keys, and an account that comes from elsewhere may have no primary keys at
// all.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/messages/message.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

// A key by which a report joins: columns of a table, comma-separated, of which one row may have the same values.
struct JoinKey {
  std::string_view table;
  std::string_view columns;
  // For a key that columns of one table cannot tell: a statement that gives what is ambiguous, a row each, with the
  // number of rows found as its last column, and the words for such a row. Then `columns` only names the key.
  std::string_view statement = {};
  workbench::Message (*describe)(const tsql::Cursor& row) = nullptr;

  bool operator==(const JoinKey&) const = default;
};

// A report that shows a cost centre finds one for each issue: not one for its work centre and one for its accounting
// department.
JoinKey oneCostCentreAnIssue();
// A report by class finds one class above each class at each grade: no code begins with the codes of two of one grade.
JoinKey oneClassAGrade();

// The keys of a report, in the order in which it joins.
struct ReportKeys {
  std::string_view report;
  std::span<const JoinKey> keys;
};

// Rows that share a key which should be one row's.
struct BrokenKey {
  std::string table;
  workbench::Message key;  // which key, and its value: "cWhCode = 01", "iYear = 2024, cCode = 6602"
  std::int64_t rows = 0;   // how many rows a ledger line finds instead of one
  std::string reports;     // the reports that so show lines more than once: "outsum-item, fx-wt"
};

// What `reports` find broken, by key in the order in which they join, then by the key's value. Throws AccountError when
// the database lacks the tables of an account, and tsql::SqlError when it cannot be read.
std::vector<BrokenKey> brokenKeys(tsql::Database& connection, std::span<const ReportKeys> reports);

}  // namespace quillon::account
