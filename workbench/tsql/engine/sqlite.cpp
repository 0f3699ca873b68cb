#include "workbench/tsql/engine/sqlite.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>

#include "workbench/tsql/engine/lock_holders.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::tsql {
namespace {

// "what: t.a, t.b" gives {"t", "a"}: the table and the first column that SQLite names in a constraint error.
struct ConstraintPlace {
  std::string table, column;
};

ConstraintPlace constraintPlace(std::string_view message) {
  const std::size_t colon = message.find(": ");
  if (colon == std::string_view::npos) return {};
  std::string_view place = message.substr(colon + 2);
  place = place.substr(0, place.find(", "));
  const std::size_t dot = place.rfind('.');
  if (dot == std::string_view::npos) return {std::string(place), {}};
  return {std::string(place.substr(0, dot)), std::string(place.substr(dot + 1))};
}

[[noreturn]] void throwConstraint(int code, const std::string& message) {
  const auto [table, column] = constraintPlace(message);
  switch (code) {
    case SQLITE_CONSTRAINT_NOTNULL:
      throw SqlError(515, "Cannot insert the value NULL into column '" + column + "', table '" + table +
                              "'; column does not allow nulls. INSERT fails.");
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
      throw SqlError(2627,
                     "Violation of PRIMARY KEY constraint. Cannot insert duplicate key in object '" + table + "'.");
    case SQLITE_CONSTRAINT_UNIQUE:
      throw SqlError(2601,
                     "Cannot insert duplicate key row in object '" + table + "' with unique index on '" + column + "'.",
                     0, column);
    case SQLITE_CONSTRAINT_DATATYPE:
      // A value has the wrong type for its column only when a whole number overflowed 64 bits.
      throw SqlError(8115, "Arithmetic overflow error converting expression to data type numeric.");
    default:
      throw SqlError(547, "The statement conflicted with a constraint: " + message);
  }
}

// Whether SQLite refuses the statement for its size: tables in a join, columns, queries in a union, depth of the tree.
bool exceedsLimit(int code, std::string_view message) {
  if (code == SQLITE_TOOBIG) return true;
  constexpr auto limits = std::to_array<std::string_view>(
      {"too many ", "at most ", "Expression tree is too large", "parser stack overflow"});
  return code == SQLITE_ERROR &&
         std::ranges::any_of(limits, [message](std::string_view limit) { return message.starts_with(limit); });
}

// " by process 4711 (quillon)", for the file that SQLite's main database or the account is; empty when nobody can say.
std::string inUseBy(sqlite3* database) {
  for (const char* schema : {"account", "main"}) {
    const char* const file = sqlite3_db_filename(database, schema);
    if (file == nullptr || *file == '\0') continue;
    if (const std::string holders = lockHolders(file); !holders.empty()) return " by " + holders;
  }
  return {};
}

}  // namespace

FileBusy::FileBusy(const std::string& holders)
    : SqlError(1222, "Lock request time out period exceeded: the account file is in use" + holders +
                         ". Wait until that has ended, or end it, then run this again.") {}

SumOverflow::SumOverflow() : SqlError(8115, "Arithmetic overflow error converting expression to data type numeric.") {}

bool waitIsOver(std::chrono::milliseconds waited) {
  constexpr std::chrono::seconds longest(30);
  return waited >= longest || stopRequested();
}

void throwSqliteError(sqlite3* database) {
  const std::string message = sqlite3_errmsg(database);
  const int extended = sqlite3_extended_errcode(database);
  const int code = extended & 0xff;
  if (code == SQLITE_ERROR) {
    if (const auto error = errorFrom(message)) throw *error;
    if (message == "integer overflow") throw SumOverflow();
  }
  if (exceedsLimit(code, message)) {
    throw SqlError(40510, "The embedded engine does not support statements or values of this size (" + message +
                              "). Break the statement up, or run it on a real server.");
  }
  switch (code) {
    case SQLITE_CONSTRAINT:
      throwConstraint(extended, message);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      endIfStopped();
      throw FileBusy(inUseBy(database));
    case SQLITE_INTERRUPT:
      throw Stopped();
    case SQLITE_FULL:
      throw SqlError(1105, "Could not allocate space: the disk that holds the account file is full.");
    case SQLITE_IOERR:
      throw SqlError(
          823,
          "The operating system could not read or write the account file: check the disk, its free space and "
          "the limit on the size of files.");
    case SQLITE_READONLY:
      if (extended == SQLITE_READONLY_ROLLBACK || extended == SQLITE_READONLY_RECOVERY) {
        throw SqlError(
            5120,
            "The account file has to be set right, because a program was ended while it changed it: make the "
            "file and its folder writable, then open it again.");
      }
      throw SqlError(3906, "Failed to update the database because it was opened for reading only.");
    case SQLITE_CORRUPT:
      throw SqlError(damagedFile,
                     "The account file is damaged: what it holds does not fit together. `quillon account check "
                     "--integrity FILE` says where; go back to a copy, or export what can still be read.");
    case SQLITE_NOTADB:
      throw SqlError(
          5172, "The header for the file is not a valid account file header: the file is damaged or is no account.");
    case SQLITE_NOMEM:
      throw SqlError(701, "There is insufficient memory to run this statement.");
    default:
      throw SqlError(50000, "The storage engine refused the statement: " + message);
  }
}

void runSqlite(sqlite3* database, const std::string& sql) {
  if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) throwSqliteError(database);
}

Prepared::Prepared(sqlite3* database, std::string_view sql) : database_(database) {
  if (sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement_, nullptr) != SQLITE_OK) {
    throwSqliteError(database);
  }
}

Prepared::~Prepared() {
  sqlite3_finalize(statement_);
}

bool Prepared::step() {
  const int result = sqlite3_step(statement_);
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) throwSqliteError(database_);
  return false;
}

void Prepared::reset() noexcept {
  sqlite3_reset(statement_);
}

void Prepared::bind(int parameter, std::string_view text) {
  sqlite3_bind_text(statement_, parameter, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

void Prepared::bindCopy(int parameter, std::string_view text) {
  sqlite3_bind_text(statement_, parameter, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void Prepared::bind(int parameter, std::int64_t number) {
  sqlite3_bind_int64(statement_, parameter, number);
}

std::string Prepared::text(int column) const {
  const auto* const data = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  return data == nullptr ? std::string()
                         : std::string(data, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)));
}

std::int64_t Prepared::integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

bool Prepared::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::int64_t countUpTo(sqlite3* database, const std::string& table, std::int64_t most) {
  Prepared count(database, "SELECT count(*) FROM (SELECT 1 FROM " + table + " LIMIT " + std::to_string(most) + ")");
  count.step();
  return count.integer(0);
}

Savepoint::Savepoint(sqlite3* database) : database_(database) {
  runSqlite(database, "SAVEPOINT statement");
}

Savepoint::~Savepoint() {
  // After some errors SQLite has rolled back by itself. Then these two fail because there is nothing left to undo.
  if (!kept_) sqlite3_exec(database_, "ROLLBACK TO statement; RELEASE statement", nullptr, nullptr, nullptr);
}

void Savepoint::keep() {
  runSqlite(database_, "RELEASE statement");
  kept_ = true;
}

}  // namespace quillon::tsql
