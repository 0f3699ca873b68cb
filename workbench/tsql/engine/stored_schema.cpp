#include "workbench/tsql/engine/stored_schema.h"

#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/syntax/parser.h"

namespace quillon::tsql {
namespace {

std::vector<std::string> indexedColumns(sqlite3* database, const std::string& index) {
  Prepared list(database, "SELECT name FROM pragma_index_info(?1) ORDER BY seqno");
  list.bind(1, index);
  std::vector<std::string> columns;
  while (list.step())
    columns.push_back(list.text(0));
  return columns;
}

// The indexes of Create Index lie in the file under the table's stored name, a point and their own.
std::vector<StoredIndex> indexesOf(sqlite3* database, const Table& table) {
  Prepared list(database,
                "SELECT i.name, l.\"unique\" FROM main.sqlite_schema AS i JOIN pragma_index_list(?1) AS l ON l.name = "
                "i.name WHERE i.type = 'index' AND l.origin = 'c' ORDER BY i.rowid");
  list.bind(1, table.stored);
  std::vector<StoredIndex> indexes;
  while (list.step()) {
    const std::string stored = list.text(0);
    indexes.push_back({.name = stored.substr(table.stored.size() + 1),
                       .columns = indexedColumns(database, stored),
                       .unique = list.integer(1) != 0});
  }
  return indexes;
}

StoredCode codeOf(bool isView, std::string database, std::string name, const std::string& definition) {
  StoredCode code{.isView = isView, .database = std::move(database), .name = std::move(name), .text = definition};
  if (isView) return code;
  // The catalog keeps a function as "cast(expression as type)".
  code.returnType = declaration(parseValue(definition)->type);
  constexpr std::string_view before = "cast(", between = " as ", after = ")";
  const std::size_t around = before.size() + between.size() + code.returnType.size() + after.size();
  code.text = definition.substr(before.size(), definition.size() - around);
  return code;
}

}  // namespace

std::vector<std::string> StoredTable::primaryKey() const {
  for (const KeyDefinition& key : keys) {
    if (key.primary) return key.columns;
  }
  return {};
}

StoredSchema storedSchema(Connection& connection) {
  StoredSchema schema;
  sqlite3* const database = connection.handle();
  Prepared list(database, "SELECT database, name, type, definition FROM main.tsql_objects ORDER BY id");
  while (list.step()) {
    const char type = list.text(2).at(0);
    if (type == 'U') {
      StoredTable table{tableOf(list.text(0), list.text(1), list.text(3)), {}};
      table.indexes = indexesOf(database, table);
      schema.tables.push_back(std::move(table));
    } else {
      schema.code.push_back(codeOf(type == 'V', list.text(0), list.text(1), list.text(3)));
    }
  }
  return schema;
}

std::string writtenName(std::string_view database, std::string_view name) {
  return (database.empty() ? std::string() : std::string(database) + "..") + bracketed(name);
}

std::string bracketedList(const std::vector<std::string>& columns) {
  std::string list;
  for (const std::string& column : columns)
    list += (list.empty() ? "" : ", ") + bracketed(column);
  return list;
}

std::string createStatement(const StoredTable& table) {
  std::string sql = "Create Table " + writtenName(table.database, table.name) + " (";
  const char* separator = "\n  ";
  for (const TableColumn& column : table.columns) {
    sql += separator + bracketed(column.name) + ' ' + declaration(column.type);
    if (column.identity)
      sql += " identity(" + std::to_string(column.seed) + ", " + std::to_string(column.increment) + ')';
    sql += column.notNull ? " not null" : " null";
    if (!column.defaultText.empty()) sql += " default " + column.defaultText;
    separator = ",\n  ";
  }
  for (const KeyDefinition& key : table.keys)
    sql += separator + std::string(key.primary ? "Primary Key (" : "Unique (") + bracketedList(key.columns) + ')';
  return sql + "\n)";
}

std::string createStatement(const StoredTable& table, const StoredIndex& index) {
  return std::string(index.unique ? "Create Unique Index " : "Create Index ") + bracketed(index.name) + " On " +
         writtenName(table.database, table.name) + " (" + bracketedList(index.columns) + ')';
}

std::string createStatement(const StoredCode& code) {
  // A server makes functions only with their owner's name in front.
  const std::string name =
      (code.database.empty() ? "" : code.database + '.') + std::string("dbo.") + bracketed(code.name);
  if (code.isView) return "Create View " + name + " As " + code.text;
  return "Create Function " + name + "() Returns " + code.returnType + " As Begin Return " + code.text + " End";
}

}  // namespace quillon::tsql
