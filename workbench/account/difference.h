// Compares two accounts, table by table and row by row.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/messages/message.h"
#include "workbench/tsql/values/database.h"

namespace quillon::account {

struct NamedValue {
  std::string column;
  tsql::Value value;
};

struct ChangedValue {
  std::string column;
  tsql::Value first;
  tsql::Value second;
};

struct RowDifference {
  enum class Kind { onlyInFirst, onlyInSecond, changed };
  Kind kind = Kind::changed;
  std::vector<NamedValue> key;
  std::vector<ChangedValue> changes;  // of a changed row
};

struct TableComparison {
  std::string table;                          // "Inventory", "orvsystem..UA_Period"
  std::vector<workbench::Message> structure;  // what differs in the declarations, a sentence each
  std::int64_t rows = 0;                      // of the first account
  std::int64_t onlyInFirst = 0;
  std::int64_t onlyInSecond = 0;
  std::int64_t changed = 0;
  std::vector<RowDifference> shown;  // the first of them

  bool equal() const { return structure.empty() && onlyInFirst + onlyInSecond + changed == 0; }
};

// Which tables are compared: every table that either account has, or those that make an account. A server's database
// holds more than the account.
enum class ComparedTables { every, ofAnAccount };

// Compares the tables in the order of the schema, tables that it does not know behind them, by name. Rows are told apart
// by primary key, without one by all columns; values are equal when they are the same to the last digit and letter. At
// most `shown` differing rows of a table are kept. Memory grows with the rows that have no partner, not with the rows:
// both accounts are read in the order of the key, and a row waits for its partner only while they are out of step.
// Throws tsql::SqlError when a source cannot be read.
std::vector<TableComparison> compareAccounts(tsql::Database& first, tsql::Database& second, ComparedTables which,
                                             std::size_t shown);

}  // namespace quillon::account
