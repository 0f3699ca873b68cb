// The declared tables, views and functions. SQLite's own schema knows only integers, texts and reals; the declarations
// in T-SQL are kept beside it, as text, in the table tsql_objects of the file and of the connection's temporary
// database.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "workbench/tsql/binding/stored_tables.h"
#include "workbench/tsql/syntax/ast.h"

struct sqlite3;

namespace quillon::tsql {

class Catalog : public TableLookup {
 public:
  explicit Catalog(sqlite3* database);

  // Creates the tables of the catalog in a new file.
  static void create(sqlite3* database);

  // Empties the cache when another connection has changed the schema of the file.
  void refresh();
  // Empties the cache after a rollback.
  void forget();

  std::shared_ptr<const Table> table(const ObjectName& name) override;
  std::optional<StoredObject> object(const ObjectName& name) override;
  std::string sysobjects(std::string_view database) const override;
  std::vector<std::string> tables(std::string_view database);

  // Creates the table in SQLite and enters it here. Throws SqlError 2714 when an object has the name already, 2705 when
  // two columns have one name.
  std::shared_ptr<const Table> createTable(const ObjectName& name, const std::vector<ColumnDefinition>& columns,
                                           const std::vector<KeyDefinition>& keys);
  void createObject(const ObjectName& name, char type, const std::string& definition);
  // Throws SqlError 3701 when there is no such object.
  void drop(const ObjectName& name, char type);

 private:
  sqlite3* database_;
  std::int64_t schemaVersion_ = -1;
  std::unordered_map<std::string, std::shared_ptr<const Table>> known_;
};

// The table that a definition out of tsql_objects declares.
Table tableOf(std::string database, std::string name, std::string_view definition);

}  // namespace quillon::tsql
