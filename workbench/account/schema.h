// The tables of an account, as data: what a column is called, what it holds, which keys and indexes stand on it.
//
// Two databases share one account file: the account's own tables, and the system database `orvsystem` with the
// accounting periods and the users of all accounts. Creating the schema also creates dbo.UDF_GetLocaleID(), which
// gives the language of the account's texts ("zh-CN").
//
// What the reports rely on without saying so:
//   - VouchType has two columns and no more: a statement unites it with a row of its own.
//   - An unqualified column name in a statement over several tables stands in exactly one of them. So the masters carry
//     no code column of the ledger beyond their own key: neither Inventory nor Warehouse has a cDepCode.
//   - Ca_FxMapExpDetails and Ca_FxMapExpDID hold at most one row for a cost-item detail; masters one row for a code.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

struct ColumnDefinition {
  std::string_view name;
  std::string_view type;  // as Create Table takes it: "nvarchar(20) not null"
};

struct TableDefinition {
  std::string_view name;  // "orvsystem..UA_Period" for a table of the system database
  std::span<const ColumnDefinition> columns;
  std::string_view primaryKey;  // comma-separated columns
};

struct IndexDefinition {
  std::string_view name;
  std::string_view table;
  std::string_view columns;  // comma-separated
  bool unique = false;
};

// All tables, masters before what refers to them.
std::span<const TableDefinition> tables();
// The indexes besides the primary keys. Their order is by table.
std::span<const IndexDefinition> indexes();

// The Create statement of one table or index, in T-SQL that a server takes as well.
std::string createStatement(const TableDefinition& table);
std::string createStatement(const IndexDefinition& index);

// Makes the empty tables and the locale function; the indexes come afterwards, because filling a table is quicker
// without them. Both throw tsql::SqlError.
void createTables(tsql::Connection& connection);
void createIndexes(tsql::Connection& connection);

}  // namespace quillon::account
