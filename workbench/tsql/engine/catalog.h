// The declared tables, views and functions. SQLite's own schema knows only integers, texts and reals; the declarations
// in T-SQL are kept beside it, as text, in the table tsql_objects of each file and of the connection's temporary
// database.
//
// SQLite calls the account's file "main". On a connection with a scratch file, that is "main", and the account, which is
// only read, is "account": names without a database are then looked for in the scratch file first, and what is created
// is created there.
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
  enum class Files { account, scratchAndAccount };
  Catalog(sqlite3* database, Files files);

  // Creates the tables of the catalog in the file "main", unless it has them.
  static void create(sqlite3* database);

  // Empties the cache when another connection has changed the schema of a file.
  void refresh();
  // Empties the cache after a rollback.
  void forget();

  std::shared_ptr<const Table> table(const ObjectName& name) override;
  std::optional<StoredObject> object(const ObjectName& name) override;
  std::string sysobjects(std::string_view database) const override;
  std::string sysindexes(std::string_view database) const override;
  std::vector<std::string> tables(std::string_view database);

  // Creates the table in SQLite and enters it here. Throws SqlError 2714 when an object has the name already, 2705 when
  // two columns have one name.
  std::shared_ptr<const Table> createTable(const ObjectName& name, const std::vector<ColumnDefinition>& columns,
                                           const std::vector<KeyDefinition>& keys);
  void createObject(const ObjectName& name, char type, const std::string& definition);
  // Throws SqlError 3701 when there is no such object.
  void drop(const ObjectName& name, char type);

 private:
  // Where the objects of a database lie, by SQLite's names: where one is created, then where else it is looked for.
  std::vector<std::string> schemasOf(std::string_view database) const;
  std::vector<std::int64_t> schemaVersions() const;
  std::string idIn(std::string_view schema) const;

  sqlite3* database_;
  Files files_;
  std::vector<std::int64_t> schemaVersions_;  // of what is known
  std::unordered_map<std::string, std::shared_ptr<const Table>> known_;
};

// The table that a definition out of tsql_objects of that schema declares.
Table tableOf(std::string schema, std::string database, std::string name, std::string_view definition);

}  // namespace quillon::tsql
