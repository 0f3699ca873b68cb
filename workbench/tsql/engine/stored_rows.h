// The rows of a table as the records that SQLite stores (record.h), past its SQL.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "workbench/tsql/binding/stored_tables.h"
#include "workbench/tsql/records/sqlite_records.h"

struct sqlite3;

namespace quillon::tsql {

class StoredRows {
 public:
  enum class Use { read, write };
  // Within a savepoint, or while a statement reads the file for who only reads; either ends after the object. Throws
  // SqlError.
  StoredRows(sqlite3* database, const Table& table, Use use);
  // False: the table is none whose rows are their records alone, or the file has another of that name by now. Nothing else
  // may be called then.
  explicit operator bool() const { return records_ != nullptr; }

  // The record of the row with that number, until the next call or change of the table; empty: there is none.
  std::string_view at(std::int64_t number);
  // The greatest number; 0 in an empty table.
  std::int64_t last();
  // `number` is greater than all others.
  void add(std::int64_t number, std::string_view record) { write(number, record, true); }
  void replace(std::int64_t number, std::string_view record) { write(number, record, false); }

 private:
  void write(std::int64_t number, std::string_view record, bool follows);
  void check(int result) const;

  struct Close {
    void operator()(quillon_records* records) const { quillon_records_close(records); }
  };
  sqlite3* database_;
  std::unique_ptr<quillon_records, Close> records_;
};

// While it lives, a query of a connection that is prepared does not read an index in place of a table because it needs few
// of its columns: so it gives its rows in the order in which a query of more columns does.
class RowsAsStored {
 public:
  explicit RowsAsStored(sqlite3* database) : database_(database) { quillon_read_indexes_for_tables(database_, 0); }
  ~RowsAsStored() { quillon_read_indexes_for_tables(database_, 1); }
  RowsAsStored(const RowsAsStored&) = delete;
  RowsAsStored& operator=(const RowsAsStored&) = delete;

 private:
  sqlite3* database_;
};

}  // namespace quillon::tsql
