// A connection to a database that takes T-SQL: the embedded engine (engine.h) or a server (workbench/odbc). Batches go
// in, typed rows come out. Not for use from two threads at once.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

struct Column {
  std::string name;
  Type type;
};

// Receives the results of a batch in order. A member that throws ends the batch.
class ResultSink {
 public:
  virtual ~ResultSink() = default;
  virtual void columns(std::span<const Column> columns) = 0;  // a result set begins
  virtual void row(std::span<const Value> values) = 0;        // valid only during the call
  virtual void rowsAffected(std::int64_t count) = 0;  // after a statement without rows, and at the end of a result set
};

// Rows read one by one.
class Cursor {
 public:
  virtual ~Cursor() = default;
  virtual std::span<const Column> columns() const = 0;
  virtual bool next() = 0;  // false past the last row
  virtual const Value& value(std::size_t column) const = 0;
};

class Database {
 public:
  virtual ~Database() = default;

  // Runs a batch of statements. The first error ends it with SqlError; the statements before it keep their effect, the
  // failing one has none.
  virtual void run(std::string_view batch, ResultSink& sink) = 0;
  // The same without results. Gives the rows affected by the last statement that counts rows, -1 when none does.
  virtual std::int64_t execute(std::string_view batch) = 0;
  // Runs the batch and gives the rows of its first result set. Destroy the cursor before the next statement runs.
  virtual std::unique_ptr<Cursor> query(std::string_view batch) = 0;

  // The declared columns of a table or view ("orvsystem..UA_Period", "[a b]"); empty when there is no such table.
  virtual std::vector<Column> describe(std::string_view table) = 0;
  // The names of the user tables of a database ("" is the account database, "orvsystem" the system database).
  virtual std::vector<std::string> tables(std::string_view database) = 0;
};

}  // namespace quillon::tsql
