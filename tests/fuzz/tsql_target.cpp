#include <sqlite3.h>

#include <memory>

#include "tests/fuzz/targets.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::fuzz {

namespace {

using tsql::Connection;

// What a batch may cost: enough for every statement that a person writes, little enough for thousands of runs a minute.
constexpr int mostBytesOfValue = 100'000;
constexpr int mostSteps = 200'000;
constexpr int stepsBetweenLooks = 1'000;

constexpr std::string_view schema =
    "Create Table t(a int Not Null Primary Key, b bigint, f bit, d decimal(18,6), m money, r float, dt datetime, "
    "n nvarchar(20), v varchar(10))\n"
    "Insert Into t Values(1, 20000000000, 1, 1.5, 2.25, 0.1, '2024-03-05', N'甲', 'x')\n"
    "Insert Into t Values(2, Null, 0, -7.000001, Null, Null, Null, N'b''c', '')\n"
    "Create Table u(i int Identity(1,1), k nvarchar(20), q decimal(30,10))\n"
    "Insert Into u(k, q) Select n, d From t";

// Ends a statement that takes too many steps.
int countSteps(void* left) {
  return --*static_cast<int*>(left) < 0 ? 1 : 0;
}

// Reads every value, as whoever shows a result does.
class Reader : public tsql::ResultSink {
 public:
  void columns(std::span<const tsql::Column> columns) override {
    width_ = columns.size();
    for (const tsql::Column& column : columns)
      require(!column.type.name().empty(), "a column has a type");
  }
  void row(std::span<const tsql::Value> values) override {
    require(values.size() == width_, "a row has a value for each column");
    for (const tsql::Value& value : values)
      require(tsql::toText(value).has_value() != tsql::isNull(value), "every value but NULL has a text");
  }
  void rowsAffected(std::int64_t count) override { require(count >= 0, "rows are counted"); }

 private:
  std::size_t width_ = 0;
};

}  // namespace

void checkTsql(std::string_view input) {
  static const std::unique_ptr<Connection> connection = [] {
    auto opened = Connection::openInMemory();
    opened->execute(schema);
    sqlite3_limit(opened->handle(), SQLITE_LIMIT_LENGTH, mostBytesOfValue);
    return opened;
  }();
  int looks = mostSteps / stepsBetweenLooks;
  sqlite3_progress_handler(connection->handle(), stepsBetweenLooks, countSteps, &looks);
  // What a batch does to the account is undone, so that an input does the same whatever ran before it.
  connection->begin();
  try {
    Reader reader;
    connection->run(input, reader);
  } catch (const tsql::SqlError& error) {
    require(!error.message().empty(), "an error says what is wrong");
    // Whatever the front end lets through, the storage takes, unless it took too many steps.
    constexpr int refusedByStorage = 50000;
    require(error.number() != refusedByStorage || looks < 0,
            "the storage engine takes what the front end gives it, but: " + error.message());
  }
  sqlite3_progress_handler(connection->handle(), 0, nullptr, nullptr);
  connection->rollback();
  connection->execute("Set Identity_Insert u Off");
}

}  // namespace quillon::fuzz
