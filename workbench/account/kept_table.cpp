#include "workbench/account/kept_table.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "frame/text.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/stored_schema.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::account {

void keepTable(const std::filesystem::path& account, const std::filesystem::path& scratch, std::string_view name) {
  const std::unique_ptr<tsql::Connection> from = tsql::Connection::openWithScratch(account, scratch);
  const tsql::StoredSchema schema = tsql::storedSchema(*from);
  const auto table = std::ranges::find_if(
      schema.tables, [name](const tsql::StoredTable& stored) { return equalIgnoringCase(stored.name, name); });
  if (table == schema.tables.end()) {
    constexpr int invalidObject = 208;
    throw tsql::SqlError(invalidObject, "Invalid object name '" + std::string(name) + "'.");
  }
  std::vector<std::string> columns;
  for (const tsql::TableColumn& column : table->columns)
    columns.push_back(column.name);
  const std::unique_ptr<tsql::Cursor> rows =
      from->query("Select " + tsql::bracketedList(columns) + " From " + tsql::bracketed(table->name));

  const std::unique_ptr<tsql::Connection> into = tsql::Connection::open(account, tsql::OpenMode::existing);
  into->begin();
  into->execute(tsql::createStatement(*table));
  const std::unique_ptr<tsql::BulkWriter> writer = into->bulkWriter(table->name, columns);
  std::vector<tsql::Value> values(columns.size());
  while (rows->next()) {
    for (std::size_t column = 0; column < values.size(); ++column)
      values[column] = rows->value(column);
    writer->write(values);
  }
  into->commit();
}

}  // namespace quillon::account
