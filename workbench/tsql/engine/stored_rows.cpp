#include "workbench/tsql/engine/stored_rows.h"

#include <sqlite3.h>

#include <vector>

#include "workbench/tsql/engine/sqlite.h"

namespace quillon::tsql {

StoredRows::StoredRows(sqlite3* database, const Table& table, Use use) : database_(database) {
  std::vector<const char*> columns;
  for (const TableColumn& column : table.columns)
    columns.push_back(column.name.c_str());
  const quillon_table known = {table.schema.c_str(), table.stored.c_str(), columns.data(),
                               static_cast<int>(columns.size()), table.rowidColumn};
  quillon_records* opened = nullptr;
  const int result = quillon_records_open(database, &known, use == Use::write ? 1 : 0, &opened);
  records_.reset(opened);
  if (result != SQLITE_MISMATCH) check(result);
}

std::string_view StoredRows::at(std::int64_t number) {
  const void* data = nullptr;
  int size = 0;
  check(quillon_records_read(records_.get(), number, &data, &size));
  return {static_cast<const char*>(data), static_cast<std::size_t>(size)};
}

std::int64_t StoredRows::last() {
  sqlite3_int64 number = 0;
  check(quillon_records_last(records_.get(), &number));
  return number;
}

void StoredRows::write(std::int64_t number, std::string_view record, bool follows) {
  const auto size = static_cast<int>(record.size());
  check(quillon_records_write(records_.get(), number, record.data(), size, follows ? 1 : 0));
}

void StoredRows::check(int result) const {
  if (result != SQLITE_OK) throwSqliteError(database_);
}

}  // namespace quillon::tsql
