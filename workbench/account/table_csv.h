// The rows of one table as CSV (csv.h): the names of the table's columns, and behind them a record a row. No value is
// NULL, "" is an empty text; numbers have all their decimals, dates are written "2024-03-05 00:00:00.000".
#pragma once

#include <istream>
#include <ostream>
#include <string>

#include "workbench/account/transfer_progress.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/stored_schema.h"

namespace quillon::account {

// Both count the rows that they have moved.

// Writes all rows, ordered by primary key, without one by all columns. Whether `out` took it all is its owner's to ask.
// Throws SqlError when the table cannot be read.
void writeTable(std::ostream& out, tsql::Connection& connection, const tsql::StoredTable& table, RowCounter& counter);

// Puts the rows of `in` into the table. Its columns may stand in any order, any value in quotes. Throws AccountError with
// `fileName`, line and column for the first thing that is wrong, and SqlError when the table cannot be written; the
// rows before it are in the table then.
void readTable(std::istream& in, const std::string& fileName, const tsql::StoredTable& table,
               tsql::Connection& connection, RowCounter& counter);

}  // namespace quillon::account
