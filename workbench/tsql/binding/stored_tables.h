// What the binder asks of the catalog: which tables, views and functions there are, and where in SQLite a table lies.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/tsql/syntax/ast.h"
#include "workbench/tsql/values/declared_table.h"

namespace quillon::tsql {

// How the values of a column lie in SQLite; `any` is INTEGER or BLOB.
enum class Storage { integer, real, text, any };
Storage storageOf(const Type& type);

// A declared table with its place in SQLite.
struct Table : DeclaredTable {
  std::string schema;    // SQLite's: "main", "temp" or "account"
  std::string stored;    // the name in SQLite
  std::string physical;  // both, quoted
  int rowidColumn = -1;  // the column that is SQLite's rowid, -1 when none is

  // The name by which SQLite's rowid is reached past the table's own columns. Throws SqlError 40510 when they leave none.
  std::string rowid() const;
  bool hasRowid() const;  // whether they leave one
};

struct StoredObject {
  std::int64_t id = 0;  // as OBJECT_ID gives it
  char type = 'U';      // U table, V view, F function
  std::string name;
  std::string definition;
  std::string schema = {};  // SQLite's, as Table has it
};

// Looks names up. Implemented by the engine's Catalog. Both throw SqlError 208 when the database of the name is unknown.
class TableLookup {
 public:
  virtual ~TableLookup() = default;
  // The table, or null.
  virtual std::shared_ptr<const Table> table(const ObjectName& name) = 0;
  // Any object of that name.
  virtual std::optional<StoredObject> object(const ObjectName& name) = 0;
  // The SQLite query that gives all objects of a database with the columns of sysobjects.
  virtual std::string sysobjects(std::string_view database) const = 0;
  // The SQLite query that gives the indexes of Create Index in a database with the columns id, of the table, and name.
  virtual std::string sysindexes(std::string_view database) const = 0;
};

// "" for the account database, "orvsystem", "tempdb". Throws SqlError 208 for any other.
std::string databaseOf(const ObjectName& name);

}  // namespace quillon::tsql
