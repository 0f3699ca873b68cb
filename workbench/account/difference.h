// Compares two accounts, table by table and row by row.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/account/transfer_progress.h"
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
  bool lastDigit = false;  // they agree but for it
};

struct RowDifference {
  enum class Kind { onlyInFirst, onlyInSecond, changed, lastDigit };
  Kind kind = Kind::changed;
  std::vector<NamedValue> key;
  std::vector<ChangedValue> changes;  // of rows that both accounts have
};

struct TableComparison {
  std::string table;                          // "Inventory", "orvsystem..UA_Period"
  std::vector<workbench::Message> structure;  // tables and columns that only one has, a sentence each
  std::vector<workbench::Message> types;      // columns of different types, a sentence each
  std::int64_t rows = 0;                      // of the first account
  std::int64_t onlyInFirst = 0;
  std::int64_t onlyInSecond = 0;
  std::int64_t changed = 0;
  std::int64_t lastDigits = 0;       // rows that agree but for the last digit of a quotient
  std::vector<RowDifference> shown;  // the first of them

  bool equal() const { return structure.empty() && onlyInFirst + onlyInSecond + changed == 0; }
};

// Which tables are compared: every table that either account has, or those that make an account. A server's database
// holds more than the account.
enum class ComparedTables { every, ofAnAccount };

struct DifferenceOptions {
  ComparedTables which = ComparedTables::every;
  std::size_t shown = 10;  // differing rows of a table that are kept
  // Types and last digits count as differences, too. Otherwise numbers are the same in however many decimals, types are
  // told, and rows that agree but for the last digit of a unit cost or of a floating-point number are told and counted
  // apart (tsql::agreementOf()).
  bool exact = false;
};

// Compares the tables in the order of the schema, tables that it does not know behind them, by name. Rows are told apart
// by primary key, without one by all columns. Names of columns are the same whatever the case of their letters. Memory grows with the rows that have no partner, not with the rows:
// both accounts are read in the order of the key, and a row waits for its partner only while they are out of step.
// Throws tsql::SqlError when a source cannot be read.
std::vector<TableComparison> compareAccounts(tsql::Database& first, tsql::Database& second,
                                             const DifferenceOptions& options, const TransferProgress& progress = {});

}  // namespace quillon::account
