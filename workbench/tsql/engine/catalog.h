// The declared tables, views and functions. SQLite's own schema knows only integers, texts and reals; what T-SQL
// declared stands beside it in the tables tsql_objects of the file and of the connection's temporary database, as the
// definition's T-SQL text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "workbench/tsql/syntax/ast.h"

struct sqlite3;

namespace quillon::tsql {

struct TableColumn {
  std::string name;
  Type type;
  bool notNull = false;
  bool identity = false;
  std::int64_t seed = 1;
  std::int64_t increment = 1;
  std::string defaultText;  // T-SQL; empty: none
};

struct Table {
  std::string database;  // "", "orvsystem" or "tempdb"
  std::string name;
  std::string schema;    // SQLite's: "main" or "temp"
  std::string stored;    // the name in SQLite
  std::string physical;  // both, quoted
  std::vector<TableColumn> columns;
  std::vector<KeyDefinition> keys;
  int rowidColumn = -1;  // the column that is SQLite's rowid, -1 when none is

  // The place of a column, in any letter case; -1 when there is none.
  int find(std::string_view column) const;
  // The name by which SQLite's rowid is reached past the table's own columns.
  std::string rowid() const;
};

struct StoredObject {
  std::int64_t id = 0;  // as OBJECT_ID gives it
  char type = 'U';      // U table, V view, F function
  std::string name;
  std::string definition;
};

class Catalog {
 public:
  explicit Catalog(sqlite3* database);

  // Lays out the tables of the catalog in a new file.
  static void create(sqlite3* database);

  // Forgets what it knows when another connection may have changed the file.
  void refresh();
  // Forgets everything, after a rollback.
  void forget();

  // The table, or null. Throws SqlError 208 when the database of the name is unknown.
  std::shared_ptr<const Table> table(const ObjectName& name);
  // Any object of that name.
  std::optional<StoredObject> object(const ObjectName& name);
  std::vector<std::string> tables(std::string_view database);

  // Creates the table in SQLite and enters it here. Throws SqlError 2714 when an object has the name already, 2705 when
  // two columns have one name.
  std::shared_ptr<const Table> createTable(const ObjectName& name, const std::vector<ColumnDefinition>& columns,
                                           const std::vector<KeyDefinition>& keys);
  void createObject(const ObjectName& name, char type, const std::string& definition);
  // Throws SqlError 3701 when there is no such object.
  void drop(const ObjectName& name, char type);

  // "" for the account database, "orvsystem", "tempdb". Throws SqlError 208 for any other.
  static std::string databaseOf(const ObjectName& name);
  // The SQL of a table of all objects with the columns of sysobjects.
  static std::string sysobjects(std::string_view database);

 private:
  sqlite3* database_;
  std::int64_t schemaVersion_ = -1;
  std::unordered_map<std::string, std::shared_ptr<const Table>> known_;
};

// The table that a definition out of tsql_objects declares.
Table tableOf(std::string database, std::string name, std::string_view definition);

// A type as a Create Table writes it.
std::string declaration(const Type& type);
// A name in brackets.
std::string bracketed(std::string_view name);

}  // namespace quillon::tsql
