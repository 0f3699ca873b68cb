#include "workbench/tsql/engine/engine.h"

#include <sqlite3.h>

#include <system_error>

#include "workbench/tsql/engine/bulk_writer.h"
#include "workbench/tsql/engine/catalog.h"
#include "workbench/tsql/engine/catalog_functions.h"
#include "workbench/tsql/engine/executor.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::tsql {
namespace {

// "QLLN": marks a SQLite file as an account.
constexpr std::int64_t applicationId = 0x514c4c4e;
constexpr int busyMilliseconds = 20'000;

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;

DatabaseHandle openDatabase(const std::string& name, int flags) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  DatabaseHandle database(opened);
  if (result != SQLITE_OK) {
    throw SqlError(5120, "Unable to open the account file '" + name + "': " + sqlite3_errstr(result) + ".");
  }
  sqlite3_extended_result_codes(database.get(), 1);
  sqlite3_busy_timeout(database.get(), busyMilliseconds);
  // No statement may attach another file.
  sqlite3_limit(database.get(), SQLITE_LIMIT_ATTACHED, 0);
  return database;
}

// A rollback journal without waiting for the disk: the next process undoes what a killed one left half done, and large
// work tables are written once. The cache is limited to 64 MiB; sorters and temporary tables spill to files.
void setUp(sqlite3* database) {
  runSqlite(
      database,
      "PRAGMA journal_mode = TRUNCATE; PRAGMA synchronous = OFF; PRAGMA cache_size = -65536; PRAGMA temp_store = FILE; "
      "PRAGMA foreign_keys = OFF");
}

// A read-only connection cannot undo a change that a killed program left half done, and refuses the file. A writing
// connection undoes it with its first read.
void undoHalfDoneChanges(const std::string& name, const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::file_size(std::filesystem::path(file).concat("-journal"), error) == 0 || error) return;
  const DatabaseHandle database = openDatabase(name, SQLITE_OPEN_READWRITE);
  Prepared(database.get(), "PRAGMA schema_version").step();
}

void requireAccount(sqlite3* database, const std::string& name) {
  Prepared id(database, "PRAGMA application_id");
  if (!id.step() || id.integer(0) != applicationId) {
    throw SqlError(5172, "The file '" + name + "' is no account file. Make one with `quillon account new`.");
  }
}

class NoResults : public ResultSink {
 public:
  void columns(std::span<const Column>) override {}
  void row(std::span<const Value>) override {}
  void rowsAffected(std::int64_t) override {}
};

class EmbeddedConnection : public Connection {
 public:
  explicit EmbeddedConnection(DatabaseHandle database)
      : database_(std::move(database)), catalog_(database_.get()), executor_(database_.get(), catalog_) {
    registerCatalogFunctions(database_.get(), catalog_);
  }

  void run(std::string_view batch, ResultSink& sink) override { executor_.run(batch, sink); }

  std::int64_t execute(std::string_view batch) override {
    NoResults nothing;
    return executor_.run(batch, nothing);
  }

  std::unique_ptr<Cursor> query(std::string_view batch) override { return executor_.query(batch); }

  void begin() override { runSqlite(database_.get(), "BEGIN"); }
  void commit() override { runSqlite(database_.get(), "COMMIT"); }
  void rollback() override {
    runSqlite(database_.get(), "ROLLBACK");
    catalog_.forget();
  }

  std::unique_ptr<BulkWriter> bulkWriter(std::string_view table, std::span<const std::string> columns) override {
    catalog_.refresh();
    return makeBulkWriter(database_.get(), catalog_, table, columns);
  }

  std::vector<Column> describe(std::string_view table) override {
    catalog_.refresh();
    return executor_.describe(table);
  }

  std::vector<std::string> tables(std::string_view database) override { return catalog_.tables(database); }

  void observe(std::function<void(const StatementReport&)> observer) override {
    executor_.observe(std::move(observer));
  }
  std::string translate(std::string_view statement) override { return executor_.translate(statement); }
  sqlite3* handle() override { return database_.get(); }

 private:
  DatabaseHandle database_;
  Catalog catalog_;
  Executor executor_;
};

std::unique_ptr<Connection> connect(DatabaseHandle database) {
  return std::make_unique<EmbeddedConnection>(std::move(database));
}

void layOut(sqlite3* database) {
  runSqlite(database, "PRAGMA application_id = " + std::to_string(applicationId));
  Catalog::create(database);
}

}  // namespace

std::unique_ptr<Connection> Connection::open(const std::filesystem::path& file, OpenMode mode) {
  const std::string name = utf8FromPath(file);
  std::error_code ignored;
  const bool exists = std::filesystem::exists(file, ignored);
  if (mode == OpenMode::createNew && exists) {
    throw SqlError(
        5170, "Cannot create file '" + name + "' because it already exists. Change the file path or remove the file.");
  }
  if (mode != OpenMode::createNew && !exists) {
    throw SqlError(5120, "Unable to open the account file '" + name + "': there is no such file.");
  }
  const int flags = mode == OpenMode::createNew  ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                    : mode == OpenMode::readOnly ? SQLITE_OPEN_READONLY
                                                 : SQLITE_OPEN_READWRITE;
  if (mode == OpenMode::readOnly) undoHalfDoneChanges(name, file);
  DatabaseHandle database = openDatabase(name, flags);
  if (mode == OpenMode::createNew) {
    runSqlite(database.get(), "PRAGMA page_size = 8192");
  } else {
    requireAccount(database.get(), name);
  }
  setUp(database.get());
  registerValueFunctions(database.get());
  if (mode == OpenMode::createNew) layOut(database.get());
  return connect(std::move(database));
}

std::unique_ptr<Connection> Connection::openInMemory() {
  DatabaseHandle database = openDatabase(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  registerValueFunctions(database.get());
  layOut(database.get());
  return connect(std::move(database));
}

}  // namespace quillon::tsql
