// The embedded engine: T-SQL batches on a SQLite file. One Connection is one T-SQL connection with its own #temp
// tables; several connections may share a file. Not for use from two threads at once.
#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/value.h"

struct sqlite3;

namespace quillon::tsql {

// A failure with SQL Server's own number and text. `line` counts from 1 within the batch; 0 when it has no place.
class SqlError : public std::exception {
 public:
  SqlError(int number, std::string message, int line = 0, std::string token = {});
  int number() const noexcept { return number_; }
  const std::string& message() const noexcept { return message_; }
  int line() const noexcept { return line_; }
  const std::string& token() const noexcept { return token_; }  // the offending token; empty when there is none
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  int number_;
  std::string message_;
  int line_;
  std::string token_;
};

struct Column {
  std::string name;
  Type type;
};

// Takes what a batch gives, in order. All members may throw; that ends the batch.
class ResultSink {
 public:
  virtual ~ResultSink() = default;
  virtual void columns(std::span<const Column> columns) = 0;  // a result set begins
  virtual void row(std::span<const Value> values) = 0;        // valid only during the call
  virtual void rowsAffected(std::int64_t count) = 0;          // a statement without rows, or the end of a result set
};

// One statement that ran: its text, what it cost, the rows it gave or changed.
struct StatementReport {
  std::string_view sql;
  double seconds = 0;
  std::int64_t rows = 0;
};

// Rows read one by one.
class Cursor {
 public:
  virtual ~Cursor() = default;
  virtual std::span<const Column> columns() const = 0;
  virtual bool next() = 0;  // false past the last row
  virtual const Value& value(std::size_t column) const = 0;
};

// Writes rows past the front end, fast, for generators and imports. One transaction around many rows is the caller's.
class BulkWriter {
 public:
  virtual ~BulkWriter() = default;
  // One value a column, in the order given to bulkWriter(). A value must be of its column's form (an Exact of the
  // column's scale, a std::int64_t for int, bigint and bit, ...); anything else, and a text that is too long, throws
  // SqlError.
  virtual void write(std::span<const Value> values) = 0;
};

enum class OpenMode { existing, createNew, readOnly };

class Connection {
 public:
  // Throws SqlError when the file is missing (existing, readOnly), is there already (createNew) or is no account file.
  static std::unique_ptr<Connection> open(const std::filesystem::path& file, OpenMode mode);
  // An empty database in memory; `orvsystem` is there and empty.
  static std::unique_ptr<Connection> openInMemory();

  virtual ~Connection() = default;

  // Runs a batch of statements. The first error stops it (SqlError); what ran before it stays, the failing statement
  // leaves no trace.
  virtual void run(std::string_view batch, ResultSink& sink) = 0;
  // The same without results: gives the rows affected by the last statement that counts rows (-1 when none does).
  virtual std::int64_t execute(std::string_view batch) = 0;
  // Runs the batch; gives the rows of its first result set. The cursor must end before the next statement runs.
  virtual std::unique_ptr<Cursor> query(std::string_view batch) = 0;

  virtual void begin() = 0;  // a transaction around what follows; not nested
  virtual void commit() = 0;
  virtual void rollback() = 0;
  virtual std::unique_ptr<BulkWriter> bulkWriter(std::string_view table, std::span<const std::string> columns) = 0;

  // The declared columns of a table or view ("orvsystem..UA_Period", "[a b]"); empty when there is no such table.
  virtual std::vector<Column> describe(std::string_view table) = 0;
  // The names of the user tables of a database ("" is the account database, "orvsystem" the system database).
  virtual std::vector<std::string> tables(std::string_view database) = 0;

  // Called after each statement; an empty function switches it off.
  virtual void observe(std::function<void(const StatementReport&)> observer) = 0;
  // The SQL that the front end would hand to SQLite for one statement, for tests and benchmarks.
  virtual std::string translate(std::string_view statement) = 0;
  virtual sqlite3* handle() = 0;
};

}  // namespace quillon::tsql
