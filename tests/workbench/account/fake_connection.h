// A connection that keeps the rows written to it, for tests of the generator without an engine underneath. It holds
// each row against the schema: a value of the wrong form, a text that is too long or a missing required value throws.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/schema.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account::testing {

using Row = std::vector<tsql::Value>;

struct RecordedTable {
  std::vector<std::string> columns;
  std::vector<Row> rows;

  std::size_t column(std::string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (columns[i] == name) return i;
    }
    throw std::out_of_range("no column " + std::string(name));
  }
};

// Told of each row: the table, the columns that were written, their values.
using RowListener = std::function<void(const std::string& table, const std::vector<std::string>& columns,
                                       std::span<const tsql::Value>)>;

class FakeConnection : public tsql::Connection {
 public:
  explicit FakeConnection(RowListener listener) : listener_(std::move(listener)) {}

  std::unique_ptr<tsql::BulkWriter> bulkWriter(std::string_view table, std::span<const std::string> columns) override;

  void run(std::string_view, tsql::ResultSink&) override { refuse(); }
  std::int64_t execute(std::string_view) override { refuse(); }
  std::unique_ptr<tsql::Cursor> query(std::string_view) override { refuse(); }
  void begin() override { refuse(); }
  void commit() override { refuse(); }
  void rollback() override { refuse(); }
  std::vector<tsql::Column> describe(std::string_view) override { refuse(); }
  std::vector<std::string> tables(std::string_view) override { refuse(); }
  void observe(std::function<void(const tsql::StatementReport&)>) override { refuse(); }
  std::string translate(std::string_view) override { refuse(); }
  std::vector<std::int64_t> orderedRows(std::string_view, std::string_view, std::string_view,
                                        std::optional<std::int64_t>) override {
    refuse();
  }
  std::unique_ptr<tsql::Cursor> rowsAt(std::string_view, std::string_view, std::vector<std::int64_t>) override {
    refuse();
  }
  sqlite3* handle() override { refuse(); }

 private:
  [[noreturn]] static void refuse() { throw std::logic_error("the generator only writes rows"); }

  RowListener listener_;
};

// Everything that a sample with these options writes, by table name.
struct RecordedSample {
  std::map<std::string, RecordedTable, std::less<>> tables;

  // Empty when nothing was written to it.
  const RecordedTable& table(std::string_view name) const;
};

}  // namespace quillon::account::testing
