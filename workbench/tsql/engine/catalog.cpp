#include "workbench/tsql/engine/catalog.h"

#include <algorithm>
#include <mutex>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/text.h"

namespace quillon::tsql {
namespace {

constexpr std::string_view mainSchema = "main", accountSchema = "account", temporarySchema = "temp";

// OBJECT_ID tells an object of the scratch file from one of the account; those of tempdb are negative.
constexpr std::int64_t firstScratchId = 1'000'000'000;

std::int64_t objectId(std::string_view schema, bool hasScratch, std::int64_t row) {
  if (schema == temporarySchema) return -row;
  return hasScratch && schema == mainSchema ? firstScratchId + row : row;
}

// Tables of the system database are stored in the same file, as "orvsystem..name". A name that SQLite or the catalog
// reserves gets "user." in front.
std::string physicalName(std::string_view database, std::string_view name) {
  if (database == "orvsystem") return "orvsystem.." + std::string(name);
  const std::string folded = text::foldCase(name);
  return (folded.starts_with("sqlite_") || folded == "tsql_objects" ? "user." : "") + std::string(name);
}

std::string columnList(const std::vector<std::string>& columns, std::string (*quote)(std::string_view)) {
  std::string result;
  for (const std::string& column : columns)
    result += (result.empty() ? "" : ", ") + quote(column);
  return result;
}

// What the catalog stores: the part of Create Table in brackets, as parseTableDefinition() reads it.
std::string definitionOf(const Table& table) {
  std::string result;
  for (const TableColumn& column : table.columns) {
    result += (result.empty() ? "(" : ", ") + bracketed(column.name) + ' ' + declaration(column.type);
    if (column.identity) {
      result += " identity(" + std::to_string(column.seed) + ", " + std::to_string(column.increment) + ')';
    }
    if (column.notNull) result += " not null";
    if (!column.defaultText.empty()) result += " default " + column.defaultText;
  }
  for (const KeyDefinition& key : table.keys) {
    result +=
        std::string(", ") + (key.primary ? "primary key (" : "unique (") + columnList(key.columns, bracketed) + ')';
  }
  return result + ')';
}

std::string storage(const Type& type) {
  switch (storageOf(type)) {
    case Storage::integer:
      return "INTEGER";
    case Storage::real:
      return "REAL";
    case Storage::text:
      return std::string("TEXT COLLATE ") + collationName;
    case Storage::any:
      break;
  }
  return "ANY";
}

// The column that is SQLite's rowid: an identity that counts by one, or the only column of a primary key that lies in SQLite
// as whole numbers, dates and amounts among them, which SQLite makes it by itself.
int rowidColumnOf(const Table& table) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (table.columns[i].identity && table.columns[i].increment == 1) return static_cast<int>(i);
  }
  for (const KeyDefinition& key : table.keys) {
    if (!key.primary || key.columns.size() != 1) continue;
    const int place = table.find(key.columns[0]);
    if (place >= 0 && storageOf(table.columns[static_cast<std::size_t>(place)].type) == Storage::integer) return place;
  }
  return -1;
}

std::string createStatement(const Table& table) {
  std::string sql = "CREATE TABLE " + table.physical + "(";
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const TableColumn& column = table.columns[i];
    sql += (i == 0 ? "" : ", ") + quoteName(column.name) + ' ' + storage(column.type);
    if (static_cast<int>(i) == table.rowidColumn) {
      sql += column.identity ? " PRIMARY KEY AUTOINCREMENT" : " PRIMARY KEY";
    } else if (column.notNull) {
      sql += " NOT NULL";
    }
  }
  for (const KeyDefinition& key : table.keys) {
    if (table.rowidColumn >= 0 && key.columns.size() == 1 && table.find(key.columns[0]) == table.rowidColumn) continue;
    const bool primary = key.primary && table.rowidColumn < 0;
    sql += std::string(primary ? ", PRIMARY KEY(" : ", UNIQUE(") + columnList(key.columns, quoteName) + ')';
  }
  return sql + ") STRICT";
}

TableColumn columnOf(const ColumnDefinition& definition) {
  TableColumn column;
  column.name = definition.name;
  column.type = definition.type;
  column.notNull = definition.notNull;
  column.identity = definition.identity;
  column.seed = definition.seed;
  column.increment = definition.increment;
  column.defaultText = definition.defaultText;
  return column;
}

Table makeTable(std::string schema, std::string database, std::string name,
                const std::vector<ColumnDefinition>& columns, const std::vector<KeyDefinition>& keys) {
  Table table;
  table.database = std::move(database);
  table.name = std::move(name);
  table.schema = std::move(schema);
  table.stored = physicalName(table.database, table.name);
  table.physical = table.schema + '.' + quoteName(table.stored);
  for (const ColumnDefinition& column : columns) {
    if (table.find(column.name) >= 0) {
      throw SqlError(2705,
                     "Column names in each table must be unique. Column name '" + column.name + "' in table '" +
                         table.name + "' is specified more than once.",
                     column.place.line, column.name);
    }
    table.columns.push_back(columnOf(column));
  }
  table.keys = keys;
  for (const KeyDefinition& key : keys) {
    for (const std::string& column : key.columns) {
      const int place = table.find(column);
      if (place < 0) {
        throw SqlError(1911, "Column name '" + column + "' does not exist in the target table or view.", 0, column);
      }
      if (key.primary) table.columns[static_cast<std::size_t>(place)].notNull = true;
    }
  }
  table.rowidColumn = rowidColumnOf(table);
  return table;
}

// Tables that are declared alike are one object for all connections of the process: a declaration is read once, and who
// keeps something that was made of one knows by the object whether it holds still.
class Declarations {
 public:
  std::shared_ptr<const Table> find(const std::string& key) const {
    const std::lock_guard lock(mutex_);
    const auto found = known_.find(key);
    return found == known_.end() ? nullptr : found->second.lock();
  }

  std::shared_ptr<const Table> keep(const std::string& key, Table table) {
    const std::lock_guard lock(mutex_);
    std::erase_if(known_, [](const auto& each) { return each.second.expired(); });
    std::weak_ptr<const Table>& known = known_[key];
    std::shared_ptr<const Table> kept = known.lock();
    if (!kept) known = kept = std::make_shared<const Table>(std::move(table));
    return kept;
  }

 private:
  mutable std::mutex mutex_;
  std::unordered_map<std::string, std::weak_ptr<const Table>> known_;  // those that somebody has
};

Declarations& declarations() {
  static Declarations instance;
  return instance;
}

// All that a table is made of.
std::string declarationKey(std::string_view schema, std::string_view database, std::string_view name,
                           std::string_view definition) {
  std::string key;
  for (const std::string_view part : {schema, database, name})
    key.append(part).append(1, '\0');
  return key.append(definition);
}

}  // namespace

Table tableOf(std::string schema, std::string database, std::string name, std::string_view definition) {
  const StatementPtr parsed = parseTableDefinition(definition);
  return makeTable(std::move(schema), std::move(database), std::move(name), parsed->definitions, parsed->keys);
}

Catalog::Catalog(sqlite3* database, Files files) : database_(database), files_(files) {
  runSqlite(
      database_,
      "CREATE TABLE temp.tsql_objects(id INTEGER PRIMARY KEY, database TEXT NOT NULL, key TEXT NOT NULL, name TEXT NOT "
      "NULL, type TEXT NOT NULL, definition TEXT NOT NULL, UNIQUE(database, key)) STRICT");
}

void Catalog::create(sqlite3* database) {
  runSqlite(
      database,
      "CREATE TABLE IF NOT EXISTS main.tsql_objects(id INTEGER PRIMARY KEY, database TEXT NOT NULL, key TEXT NOT NULL, name TEXT NOT "
      "NULL, type TEXT NOT NULL, definition TEXT NOT NULL, UNIQUE(database, key)) STRICT");
}

std::vector<std::string> Catalog::schemasOf(std::string_view database) const {
  if (database == "tempdb") return {std::string(temporarySchema)};
  if (files_ == Files::account) return {std::string(mainSchema)};
  if (database == "orvsystem") return {std::string(accountSchema)};
  return {std::string(mainSchema), std::string(accountSchema)};
}

std::vector<std::int64_t> Catalog::schemaVersions() const {
  std::vector<std::int64_t> versions;
  for (const std::string& schema : schemasOf("")) {
    Prepared version(database_, "PRAGMA " + schema + ".schema_version");
    version.step();
    versions.push_back(version.integer(0));
  }
  return versions;
}

void Catalog::refresh() {
  std::vector<std::int64_t> versions = schemaVersions();
  if (versions == schemaVersions_) return;
  schemaVersions_ = std::move(versions);
  known_.clear();
}

void Catalog::forget() {
  schemaVersions_.clear();
  known_.clear();
}

std::optional<StoredObject> Catalog::object(const ObjectName& name) {
  const std::string database = databaseOf(name);
  const std::string key = text::foldCase(name.name);
  for (const std::string& schema : schemasOf(database)) {
    Prepared find(database_, "SELECT id, type, name, definition FROM " + schema +
                                 ".tsql_objects WHERE database = ?1 AND key = ?2");
    find.bind(1, database);
    find.bind(2, key);
    if (!find.step()) continue;
    return StoredObject{.id = objectId(schema, files_ == Files::scratchAndAccount, find.integer(0)),
                        .type = find.text(1).at(0),
                        .name = find.text(2),
                        .definition = find.text(3),
                        .schema = schema};
  }
  return std::nullopt;
}

std::shared_ptr<const Table> Catalog::table(const ObjectName& name) {
  const std::string database = databaseOf(name);
  const std::string key = database + '.' + text::foldCase(name.name);
  if (const auto found = known_.find(key); found != known_.end()) return found->second;
  const std::optional<StoredObject> stored = object(name);
  if (!stored || stored->type != 'U') return nullptr;
  const std::string declaration = declarationKey(stored->schema, database, stored->name, stored->definition);
  auto table = declarations().find(declaration);
  if (!table)
    table = declarations().keep(declaration, tableOf(stored->schema, database, stored->name, stored->definition));
  known_[key] = table;
  return table;
}

std::vector<std::string> Catalog::tables(std::string_view database) {
  std::string query;
  for (const std::string& schema : schemasOf(database)) {
    query += (query.empty() ? "" : " UNION ALL ") + ("SELECT name, key FROM " + schema) +
             ".tsql_objects WHERE database = ?1 AND type = 'U'";
  }
  Prepared list(database_, query + " ORDER BY key");
  list.bind(1, database);
  std::vector<std::string> names;
  while (list.step())
    names.push_back(list.text(0));
  return names;
}

std::shared_ptr<const Table> Catalog::createTable(const ObjectName& name, const std::vector<ColumnDefinition>& columns,
                                                  const std::vector<KeyDefinition>& keys) {
  const std::string database = databaseOf(name);
  Table made = makeTable(schemasOf(database).front(), database, name.name, columns, keys);
  const std::string definition = definitionOf(made);
  const std::string declaration = declarationKey(made.schema, database, name.name, definition);
  auto table = declarations().keep(declaration, std::move(made));
  createObject(name, 'U', definition);
  runSqlite(database_, createStatement(*table));
  if (table->rowidColumn >= 0) {
    const TableColumn& column = table->columns[static_cast<std::size_t>(table->rowidColumn)];
    if (column.identity && column.seed != 1) {
      Prepared seed(database_, "INSERT INTO " + table->schema + ".sqlite_sequence(name, seq) VALUES(?1, ?2)");
      seed.bind(1, table->stored);
      seed.bind(2, column.seed - 1);
      seed.step();
    }
  }
  known_[database + '.' + text::foldCase(name.name)] = table;
  return table;
}

void Catalog::createObject(const ObjectName& name, char type, const std::string& definition) {
  if (object(name)) {
    throw SqlError(2714, "There is already an object named '" + name.name + "' in the database.", name.place.line,
                   name.name);
  }
  const std::string database = databaseOf(name);
  const std::string key = text::foldCase(name.name);
  const std::string typeText(1, type);
  Prepared enter(database_, "INSERT INTO " + schemasOf(database).front() +
                                ".tsql_objects(database, key, name, type, definition) VALUES(?1, ?2, ?3, ?4, ?5)");
  enter.bind(1, database);
  enter.bind(2, key);
  enter.bind(3, name.name);
  enter.bind(4, typeText);
  enter.bind(5, definition);
  enter.step();
}

void Catalog::drop(const ObjectName& name, char type) {
  const std::optional<StoredObject> stored = object(name);
  if (!stored || stored->type != type) {
    const std::string what = type == 'U' ? "table" : type == 'V' ? "view" : "function";
    throw SqlError(
        3701,
        "Cannot drop the " + what + " '" + name.written + "', because it does not exist or you do not have permission.",
        name.place.line, name.written);
  }
  const std::string database = databaseOf(name);
  const std::string key = text::foldCase(name.name);
  if (type == 'U') runSqlite(database_, "DROP TABLE " + table(name)->physical);
  Prepared remove(database_, "DELETE FROM " + stored->schema + ".tsql_objects WHERE database = ?1 AND key = ?2");
  remove.bind(1, database);
  remove.bind(2, key);
  remove.step();
  known_.erase(database + '.' + key);
}

// The id of an object in a file's catalog, as objectId() makes it, in SQLite's notation.
std::string Catalog::idIn(std::string_view schema) const {
  if (schema == temporarySchema) return "-o.id";
  const bool scratch = files_ == Files::scratchAndAccount && schema == mainSchema;
  return scratch ? std::to_string(firstScratchId) + " + o.id" : "o.id";
}

std::string Catalog::sysobjects(std::string_view database) const {
  std::string query;
  for (const std::string& schema : schemasOf(database)) {
    if (!query.empty()) query += " UNION ALL ";
    query.append("SELECT o.name COLLATE ").append(collationName).append(" AS name, ").append(idIn(schema));
    query.append(" AS id, o.type AS xtype, o.type AS type FROM ").append(schema);
    query.append(".tsql_objects AS o WHERE o.database = '").append(database).append("'");
  }
  return query;
}

// SQLite names such an index "table.index", with the table's stored name (physicalName()); one of a key has no text.
std::string Catalog::sysindexes(std::string_view database) const {
  const std::string_view stored =
      database == "orvsystem" ? "i.tbl_name = 'orvsystem..' || o.name" : "i.tbl_name IN (o.name, 'user.' || o.name)";
  std::string query;
  for (const std::string& schema : schemasOf(database)) {
    if (!query.empty()) query += " UNION ALL ";
    query.append("SELECT ").append(idIn(schema)).append(" AS id, substr(i.name, length(i.tbl_name) + 2) COLLATE ");
    query.append(collationName).append(" AS name FROM ").append(schema).append(".sqlite_schema AS i JOIN ");
    query.append(schema).append(".tsql_objects AS o ON ").append(stored);
    query.append(" WHERE i.type = 'index' AND i.sql IS NOT NULL AND o.database = '").append(database).append("'");
  }
  return query;
}

}  // namespace quillon::tsql
