#include "workbench/tsql/engine/engine.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "workbench/tsql/engine/bulk_writer.h"
#include "workbench/tsql/engine/catalog.h"
#include "workbench/tsql/engine/catalog_functions.h"
#include "workbench/tsql/engine/executor.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/sqlite_memory.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::tsql {
namespace {

// "QLLN": marks a SQLite file as an account.
constexpr std::int64_t applicationId = 0x514c4c4e;

// SQLite asks this while another connection has the file: how often it has asked. At first the pauses are short, so that
// two reports that only meet for a moment do not slow each other down: one millisecond, two, three, and so on.
int waitForFile(void*, int asked) {
  const int growing = std::min(asked, longestPause);
  const std::chrono::milliseconds waited(growing * (growing + 1) / 2 + (asked - growing) * longestPause);
  if (waitIsOver(waited)) return 0;
  sqlite3_sleep(std::min(asked + 1, longestPause));
  return 1;
}

// SQLite asks this every so many of its steps while a statement runs.
constexpr int stepsBetweenQuestions = 10'000;
int endsNow(void*) {
  return stopRequested() ? 1 : 0;
}

// The pages of its cache are many small pieces of memory, between which the process keeps others: the C library of Linux
// keeps them as well, then, unless it is asked for them.
struct CloseDatabase {
  void operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
#ifdef __GLIBC__
    malloc_trim(0);
#endif
  }
};
using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;

DatabaseHandle openDatabase(const std::string& name, int flags) {
  setUpSqliteMemory();
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  DatabaseHandle database(opened);
  if (result != SQLITE_OK) {
    throw SqlError(5120, "Unable to open the account file '" + name + "': " + sqlite3_errstr(result) + ".");
  }
  sqlite3_extended_result_codes(database.get(), 1);
  sqlite3_busy_handler(database.get(), waitForFile, nullptr);
  sqlite3_progress_handler(database.get(), stepsBetweenQuestions, endsNow, nullptr);
  return database;
}

void refuseFurtherFiles(sqlite3* database) {
  sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
}

// A rollback journal without waiting for the disk: the next process undoes what a killed one left half done. An account's
// goes after each change, so that nothing stays beside the account; a scratch file's stays, emptied, and goes with the
// file. The cache is limited to 64 MiB; sorters and temporary tables spill to files.
void setUp(sqlite3* database, const char* journal) {
  runSqlite(database, std::string("PRAGMA journal_mode = ") + journal +
                          "; PRAGMA synchronous = OFF; PRAGMA cache_size = -65536; PRAGMA temp_store = FILE; "
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

void requireAccount(sqlite3* database, const std::string& name, const char* schema = "main") {
  Prepared id(database, std::string("PRAGMA ") + schema + ".application_id");
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
  EmbeddedConnection(DatabaseHandle database, Catalog::Files files)
      : database_(std::move(database)), catalog_(database_.get(), files), executor_(database_.get(), catalog_) {
    registerCatalogFunctions(database_.get(), catalog_);
  }

  void run(std::string_view batch, ResultSink& sink) override { executor_.run(batch, sink); }

  std::int64_t execute(std::string_view batch) override {
    NoResults nothing;
    return executor_.run(batch, nothing);
  }

  std::unique_ptr<Cursor> query(std::string_view batch) override { return executor_.query(batch); }

  // What will write waits for the file now, before it has read anything.
  void begin() override {
    const bool readsOnly = sqlite3_db_readonly(database_.get(), "main") == 1;
    runSqlite(database_.get(), readsOnly ? "BEGIN" : "BEGIN IMMEDIATE");
  }
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

  std::vector<std::int64_t> orderedRows(std::string_view table, std::string_view where, std::string_view order,
                                        std::optional<std::int64_t> limit) override {
    return executor_.orderedRows(table, where, order, limit);
  }
  std::unique_ptr<Cursor> rowsAt(std::string_view table, std::string_view list,
                                 std::vector<std::int64_t> rows) override {
    return executor_.rowsAt(table, list, std::move(rows));
  }

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

std::unique_ptr<Connection> connect(DatabaseHandle database, Catalog::Files files = Catalog::Files::account) {
  refuseFurtherFiles(database.get());
  return std::make_unique<EmbeddedConnection>(std::move(database), files);
}

void layOut(sqlite3* database) {
  runSqlite(database, "PRAGMA application_id = " + std::to_string(applicationId));
  Catalog::create(database);
}

// The form in which SQLite takes a file with options: a percent sign and what stands in front of options are escaped.
std::string fileUri(const std::filesystem::path& file, std::string_view options) {
  const std::u8string path = std::filesystem::absolute(file).generic_u8string();
  std::string uri = path.starts_with(u8'/') ? "file://" : "file:///";
  for (const char8_t c : path) {
    if (c == u8'%' || c == u8'?' || c == u8'#') {
      constexpr std::string_view digits = "0123456789ABCDEF";
      uri += '%';
      uri += digits[c >> 4U];
      uri += digits[c & 15U];
    } else {
      uri += static_cast<char>(c);
    }
  }
  return uri.append("?").append(options);
}

void requireFile(const std::filesystem::path& file, const std::string& name) {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(file, ignored)) return;
  // SQLite would wait for the other end of a pipe.
  throw SqlError(5120, "Unable to open the account file '" + name +
                           (std::filesystem::exists(file, ignored) ? "': it is a folder, a device or a pipe."
                                                                   : "': there is no such file."));
}

}  // namespace

bool isAccountFile(const std::filesystem::path& file) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored)) return false;  // reading a pipe could wait for ever
  constexpr std::string_view signature("SQLite format 3\0", 16);
  constexpr std::size_t idOffset = 68;
  std::array<char, idOffset + 4> head{};
  std::ifstream in(file, std::ios::binary);
  if (!in.read(head.data(), head.size()) || !std::string_view(head.data(), head.size()).starts_with(signature))
    return false;
  std::int64_t id = 0;
  for (std::size_t i = idOffset; i < head.size(); ++i)
    id = id * 256 + static_cast<unsigned char>(head[i]);
  return id == applicationId;
}

std::unique_ptr<Connection> Connection::open(const std::filesystem::path& file, OpenMode mode) {
  const std::string name = utf8FromPath(file);
  std::error_code ignored;
  if (mode == OpenMode::createNew && std::filesystem::exists(file, ignored) &&
      std::filesystem::file_size(file, ignored) != 0) {
    throw SqlError(
        5170, "Cannot create file '" + name + "' because it already exists. Change the file path or remove the file.");
  }
  if (mode != OpenMode::createNew) requireFile(file, name);
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
  setUp(database.get(), "DELETE");
  registerValueFunctions(database.get());
  if (mode == OpenMode::createNew) layOut(database.get());
  return connect(std::move(database));
}

std::unique_ptr<Connection> Connection::openWithScratch(const std::filesystem::path& account,
                                                        const std::filesystem::path& scratch) {
  const std::string name = utf8FromPath(account);
  requireFile(account, name);
  undoHalfDoneChanges(name, account);
  DatabaseHandle database =
      openDatabase(utf8FromPath(scratch), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI);
  // Of a new file. Rows of work tables are wide.
  runSqlite(database.get(), "PRAGMA page_size = 16384");
  setUp(database.get(), "TRUNCATE");
  registerValueFunctions(database.get());
  {
    const std::string uri = fileUri(account, "mode=ro");
    Prepared attach(database.get(), "ATTACH ?1 AS account");
    attach.bind(1, uri);
    attach.step();
  }
  requireAccount(database.get(), name, "account");
  runSqlite(database.get(), "PRAGMA account.cache_size = -65536");
  Catalog::create(database.get());
  return connect(std::move(database), Catalog::Files::scratchAndAccount);
}

std::vector<std::string> Connection::damage(const std::filesystem::path& file) {
  const std::string name = utf8FromPath(file);
  requireFile(file, name);
  undoHalfDoneChanges(name, file);
  const DatabaseHandle database = openDatabase(name, SQLITE_OPEN_READONLY);
  requireAccount(database.get(), name);
  registerValueFunctions(database.get());
  std::vector<std::string> found;
  try {
    Prepared check(database.get(), "PRAGMA integrity_check");
    while (check.step()) {
      if (std::string line = check.text(0); line != "ok") found.push_back(std::move(line));
    }
  } catch (const SqlError& error) {
    if (error.number() != damagedFile) throw;
    found.emplace_back("the list of its tables cannot be read");
  }
  return found;
}

std::unique_ptr<Connection> Connection::openInMemory() {
  DatabaseHandle database = openDatabase(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  registerValueFunctions(database.get());
  layOut(database.get());
  return connect(std::move(database));
}

}  // namespace quillon::tsql
