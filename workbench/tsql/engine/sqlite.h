// SQLite's C interface with errors as SqlError: every failure has SQL Server's number and text.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "workbench/tsql/values/sql_error.h"

struct sqlite3;
struct sqlite3_stmt;

namespace quillon::tsql {

// SQLite's own sum() overflowed 64 bits. A sum of decimals is then computed in 128: see aggregate() in emitter.h.
class SumOverflow : public SqlError {
 public:
  SumOverflow();
};

// SQL Server's number for a file whose content does not fit together.
inline constexpr int damagedFile = 824;

// Another connection has had the file for too long: SQL Server's 1222, with the programs that have it.
class FileBusy : public SqlError {
 public:
  explicit FileBusy(const std::string& holders);
};

// Whether a connection that has waited so long for a file that another one has gives up: after half a minute, and when the
// program is asked to end.
bool waitIsOver(std::chrono::milliseconds waited);
inline constexpr int longestPause = 25;  // milliseconds from one look at the file to the next

// Throws what the last failure of the handle means in SQL Server's numbers and texts: an error raised by one of the
// engine's own functions as it stands, SQLite's constraint errors as 515, 2627, 8115, its limits as 40510.
[[noreturn]] void throwSqliteError(sqlite3* database);

// Runs SQLite statements that give no rows.
void runSqlite(sqlite3* database, const std::string& sql);

// How many rows the table has, counted up to `most`; `table` as SQLite's SQL names it.
std::int64_t countUpTo(sqlite3* database, const std::string& table, std::int64_t most);

class Prepared {
 public:
  Prepared(sqlite3* database, std::string_view sql);
  ~Prepared();
  Prepared(const Prepared&) = delete;
  Prepared& operator=(const Prepared&) = delete;

  bool step();  // true: there is a row
  void reset() noexcept;
  void bind(int parameter, std::string_view text);  // the text must live until the next reset; parameters count from 1
  void bindCopy(int parameter, std::string_view text);  // keeps a text of its own
  void bind(int parameter, std::int64_t number);
  std::string text(int column) const;  // columns count from 0; empty for NULL
  std::int64_t integer(int column) const;
  bool isNull(int column) const;
  sqlite3_stmt* handle() const noexcept { return statement_; }

 private:
  sqlite3* database_;
  sqlite3_stmt* statement_ = nullptr;
};

// Undoes everything since its construction unless keep() was called.
class Savepoint {
 public:
  explicit Savepoint(sqlite3* database);
  ~Savepoint();
  Savepoint(const Savepoint&) = delete;
  Savepoint& operator=(const Savepoint&) = delete;
  void keep();

 private:
  sqlite3* database_;
  bool kept_ = false;
};

}  // namespace quillon::tsql
