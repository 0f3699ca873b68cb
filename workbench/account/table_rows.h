// The rows of a table in an order that does not depend on how they came into it.
#pragma once

#include <string>

#include "workbench/tsql/engine/stored_schema.h"

namespace quillon::account {

// The statement that gives all rows with all columns, or those that meet `where`: by primary key, without one by all columns.
inline std::string selectAllRows(const tsql::StoredTable& table, const std::string& where = {}) {
  std::vector<std::string> columns;
  for (const tsql::TableColumn& column : table.columns)
    columns.push_back(column.name);
  const std::vector<std::string> key = table.primaryKey();
  return "Select " + tsql::bracketedList(columns) + " From " + tsql::writtenName(table.database, table.name) +
         (where.empty() ? "" : " Where " + where) + " Order By " + tsql::bracketedList(key.empty() ? columns : key);
}

}  // namespace quillon::account
