// The embedded engine: T-SQL batches on a SQLite file. One Connection is one T-SQL connection with its own #temp
// tables; several connections may share a file. Not for use from two threads at once.
//
// What only reads and what changes the account wait for each other, for half a minute at most; then SqlError 1222 says
// which programs have the file. After requestStop() (values/stop.h) a statement that runs ends with Stopped.
//
// This header and stored_schema.h are the face of the engine: whoever stands outside workbench/tsql includes these two
// and values/, and nothing else of it.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/values/database.h"

struct sqlite3;

namespace quillon::tsql {

// One statement that ran: its text, what it cost, the rows it gave or changed.
struct StatementReport {
  std::string_view sql;
  double seconds = 0;
  std::int64_t rows = 0;
};

// Writes rows without a statement for each, for generators and imports. For speed, the caller puts many rows into one
// transaction.
class BulkWriter {
 public:
  virtual ~BulkWriter() = default;
  // One value a column, in the order given to bulkWriter(). A value must be of its column's form (an Exact of the
  // column's scale, a std::int64_t for int, bigint and bit, ...); anything else, and a text that is too long, throws
  // SqlError.
  virtual void write(std::span<const Value> values) = 0;
};

enum class OpenMode { existing, createNew, readOnly };

// What SQLite puts behind an account file's name to call the files that it keeps beside it.
inline constexpr std::array<std::string_view, 3> besideAccountFile = {"-journal", "-wal", "-shm"};

// Whether `file` is an account file, by what stands at its beginning. False for one that is not there or cannot be read.
bool isAccountFile(const std::filesystem::path& file);

class Connection : public Database {
 public:
  // Throws SqlError when the file is missing (existing, readOnly), is there already with something in it (createNew) or is
  // no account file; a folder, a device or a pipe is none, and is not touched.
  static std::unique_ptr<Connection> open(const std::filesystem::path& file, OpenMode mode);
  // Connects to the account for a report, without a write to it. What is created, tables, indexes, views and functions,
  // lies in the file `scratch`, which several connections may share and which is made when it is not there; a name
  // without a database is looked for in it first. SqlError 3906 refuses every change of the account. Throws as open()
  // does.
  static std::unique_ptr<Connection> openWithScratch(const std::filesystem::path& account,
                                                     const std::filesystem::path& scratch);
  // What is damaged in an account file, a line each; empty when nothing is. Reads all of it. Throws as open() does.
  static std::vector<std::string> damage(const std::filesystem::path& file);
  // An empty database in memory; `orvsystem` is there and empty.
  static std::unique_ptr<Connection> openInMemory();

  virtual void begin() = 0;  // begins a transaction; there is one at a time
  virtual void commit() = 0;
  virtual void rollback() = 0;
  virtual std::unique_ptr<BulkWriter> bulkWriter(std::string_view table, std::span<const std::string> columns) = 0;

  // The rows of a table that meet `where`, a T-SQL condition, in the order of `order`, a T-SQL list of its columns: numbers
  // by which rowsAt() finds them, until the table changes. So a long result is ordered once and then read page by page.
  // With `limit`, which is at least 1, only the beginning of that order: at most so many rows, and at least one if there
  // is one. It ends where the next rows would have to be compared with many others.
  virtual std::vector<std::int64_t> orderedRows(std::string_view table, std::string_view where, std::string_view order,
                                                std::optional<std::int64_t> limit) = 0;
  std::vector<std::int64_t> orderedRows(std::string_view table, std::string_view where, std::string_view order) {
    return orderedRows(table, where, order, std::nullopt);
  }
  // Of these rows, in the order given, the values of `list`, a T-SQL select list. One that is gone is left out.
  virtual std::unique_ptr<Cursor> rowsAt(std::string_view table, std::string_view list,
                                         std::vector<std::int64_t> rows) = 0;

  // Called after each statement; an empty function switches it off.
  virtual void observe(std::function<void(const StatementReport&)> observer) = 0;
  // The SQLite statement that a T-SQL statement becomes, for tests and benchmarks.
  virtual std::string translate(std::string_view statement) = 0;
  virtual sqlite3* handle() = 0;
};

}  // namespace quillon::tsql
