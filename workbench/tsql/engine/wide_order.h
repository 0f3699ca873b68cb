// Orders by many keys. SQLite takes every key of two rows apart to compare them, and a report's rows are ordered by a
// hundred columns, so that the same report always comes in the same order, although the first few nearly always decide.
// Here SQLite orders by these alone, and rows that are alike in them are ordered by the others afterwards. Where many
// rows are alike, SQLite orders by all keys after all; the order is the same.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/values/database.h"

struct sqlite3;

namespace quillon::tsql {

// Whether `query` has so many keys that widelyOrderedRows() is worth it.
bool isWidelyOrdered(const BoundQuery& query);

// The rows of such a query, whose columns are `columns`; the first of them is fetched at once. Keeps the rows in memory
// that are alike in the first keys, five hundred at most.
std::unique_ptr<Cursor> widelyOrderedRows(sqlite3* database, const BoundQuery& query, std::vector<Column> columns);

// A table that each column of a query is one of, as it stands.
struct ShownTable {
  std::shared_ptr<const Table> table;
  std::string number;               // the expression for its row's number
  std::vector<std::size_t> places;  // by the query's column
};
// The same rows of a table that is small enough for the page cache: their numbers are ordered, and then each is read by its
// number. Null: the table is larger, or its rows cannot be read as they are stored.
std::unique_ptr<Cursor> rowsOfSmallTable(sqlite3* database, const BoundQuery& query, std::vector<Column> columns,
                                         const ShownTable& shown);

// The numbers of the rows of `query`, an ordered one of one table; `number` is the expression for them. With `limit` only
// the beginning: at most so many, and at least one if there is one.
std::vector<std::int64_t> orderedNumbers(sqlite3* database, const BoundQuery& query, const std::string& number,
                                         std::optional<std::int64_t> limit);

}  // namespace quillon::tsql
