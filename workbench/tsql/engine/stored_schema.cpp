#include "workbench/tsql/engine/stored_schema.h"

#include "workbench/tsql/engine/catalog.h"
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

// An index of Create Index is stored as "table.index", with the table's stored name.
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

ScriptStatement::Kind kindOf(const Statement& statement) {
  using Kind = ScriptStatement::Kind;
  switch (statement.kind) {
    case StatementKind::createTable:
      return Kind::createTable;
    case StatementKind::createIndex:
      return statement.unique ? Kind::createUniqueIndex : Kind::createIndex;
    case StatementKind::createView:
      return Kind::createView;
    case StatementKind::createFunction:
      return Kind::createFunction;
    default:
      return Kind::other;
  }
}

}  // namespace

StoredSchema storedSchema(Connection& connection) {
  StoredSchema schema;
  sqlite3* const database = connection.handle();
  Prepared list(database, "SELECT database, name, type, definition FROM main.tsql_objects ORDER BY id");
  while (list.step()) {
    const char type = list.text(2).at(0);
    if (type == 'U') {
      const Table table = tableOf("main", list.text(0), list.text(1), list.text(3));
      schema.tables.push_back({table, indexesOf(database, table)});
    } else {
      schema.code.push_back(codeOf(type == 'V', list.text(0), list.text(1), list.text(3)));
    }
  }
  return schema;
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
  // A server refuses to create a function without its schema in front of the name.
  const std::string name =
      (code.database.empty() ? "" : code.database + '.') + std::string("dbo.") + bracketed(code.name);
  if (code.isView) return "Create View " + name + " As " + code.text;
  return "Create Function " + name + "() Returns " + code.returnType + " As Begin Return " + code.text + " End";
}

std::vector<ScriptStatement> statementsOf(std::string_view script) {
  std::vector<ScriptStatement> statements;
  for (const StatementPtr& statement : parseBatch(script)) {
    statements.push_back({.kind = kindOf(*statement),
                          .text = std::string(script.substr(statement->begin, statement->end - statement->begin)),
                          .line = statement->place.line,
                          .token = statement->place.token});
  }
  return statements;
}

}  // namespace quillon::tsql
