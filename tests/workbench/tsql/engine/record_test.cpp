// Records as SQLite stores them: what RecordBuilder makes is what SQLite makes, and RecordFields reads either.
#include "workbench/tsql/engine/record.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/stored_rows.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

using ::testing::ElementsAre;

std::string bytes(const std::vector<int>& values) {
  std::string text;
  for (const int value : values)
    text += static_cast<char>(value);
  return text;
}

// A table of SQLite whose columns take every value as it is.
class Records : public ::testing::Test {
 protected:
  Records() { sqlite3_open(":memory:", &database_); }
  ~Records() override { sqlite3_close(database_); }

  static std::string columns(std::size_t count, const std::string& before = "c") {
    std::string list;
    for (std::size_t i = 0; i < count; ++i)
      list += (i == 0 ? "" : ", ") + before + std::to_string(i);
    return list;
  }

  static Table table(const std::string& before, std::size_t count) {
    Table result;
    result.schema = "main";
    result.stored = "t";
    for (std::size_t i = 0; i < count; ++i)
      result.columns.emplace_back().name = before + std::to_string(i);
    return result;
  }

  // What SQLite stores for a row of these values, which are expressions of its SQL.
  std::string stored(const std::vector<std::string>& values) {
    std::string list;
    for (const std::string& value : values)
      list += (list.empty() ? "" : ", ") + value;
    runSqlite(database_, "DROP TABLE IF EXISTS t; CREATE TABLE t (" + columns(values.size()) +
                             "); INSERT INTO t VALUES (" + list + ")");
    const Savepoint savepoint(database_);
    StoredRows rows(database_, table("c", values.size()), StoredRows::Use::read);
    return std::string(rows.at(1));
  }
  // The record of the same values, taken from the row that was stored.
  std::string built() {
    Prepared row(database_, "SELECT * FROM t");
    RecordBuilder builder;
    if (row.step()) {
      for (int i = 0; i < sqlite3_column_count(row.handle()); ++i)
        builder.add(sqlite3_column_value(row.handle(), i));
    }
    return std::string(builder.record());
  }
  void expectAsStored(const std::vector<std::string>& values) {
    const std::string record = stored(values);
    ASSERT_FALSE(record.empty());
    EXPECT_EQ(built(), record) << values.size() << " values, the first " << values.front().substr(0, 60);
  }

  // Each value of the record as SQLite's quote() writes it.
  std::vector<std::string> valuesOf(std::string_view record) {
    RecordFields fields;
    fields.read(record);
    std::vector<std::string> values;
    for (std::size_t i = 0; i < fields.count(); ++i) {
      Prepared value(database_, "SELECT quote(?1)");
      fields.bind(i, value.handle(), 1);
      values.push_back(value.step() ? value.text(0) : "no row");
      EXPECT_EQ(fields.isNull(i), values.back() == "NULL") << i;
    }
    return values;
  }

  sqlite3* database_ = nullptr;
};

std::vector<std::string> integers() {
  std::vector<std::string> numbers = {"0", "1", "-1", "2"};
  for (const int bit : {7, 15, 23, 31, 47, 55}) {
    const std::int64_t edge = std::int64_t{1} << bit;
    for (const std::int64_t number : {edge - 1, edge, -edge, -edge - 1})
      numbers.push_back(std::to_string(number));
  }
  numbers.emplace_back("9223372036854775807");
  numbers.emplace_back("-9223372036854775807");
  numbers.emplace_back("(-9223372036854775807 - 1)");
  return numbers;
}

std::string text(std::size_t length) {
  return "'" + std::string(length, 'x') + "'";
}

TEST_F(Records, OfOneValueAreThoseOfSqlite) {
  expectAsStored({"NULL"});
  for (const std::string& number : integers())
    expectAsStored({number});
  for (const char* const real : {"0.0", "-0.0", "1.0", "0.5", "-1e300", "1e-320", "9e999", "-9e999"})
    expectAsStored({real});
}

// Where a column is declared to have floating-point numbers, SQLite keeps whole ones as integers.
TEST_F(Records, KeepTheColumnsThatAreNotLookedAt) {
  const std::string record = stored({"7", "'text'", "NULL", "x'0102'", "2.5"});
  RecordFields fields;
  fields.read(record, 2);
  EXPECT_EQ(fields.count(), 2U);
  EXPECT_EQ(fields.values(1, 1), "text");
  RecordBuilder builder;
  builder.addNulls(1);
  builder.add(fields, 1, 1);
  builder.addOthers(fields);
  EXPECT_EQ(builder.record(), stored({"NULL", "'text'", "NULL", "x'0102'", "2.5"}));
  // There may be none.
  fields.read(record, 9);
  EXPECT_EQ(fields.count(), 5U);
  builder.clear();
  builder.add(fields, 0, 5);
  builder.addOthers(fields);
  EXPECT_EQ(builder.record(), record);
}

TEST_F(Records, OfFloatingPointColumnsAreThoseOfSqlite) {
  for (const std::string& number : std::initializer_list<std::string>{"0.0",
                                                                      "-0.0",
                                                                      "1.0",
                                                                      "-1.0",
                                                                      "2.0",
                                                                      "127.0",
                                                                      "-128.0",
                                                                      "128.0",
                                                                      "0.5",
                                                                      "1e10",
                                                                      "-1e14",
                                                                      "140737488355327.0",
                                                                      "140737488355328.0",
                                                                      "-140737488355328.0",
                                                                      "-140737488355329.0",
                                                                      "9007199254740993.0",
                                                                      "1e18",
                                                                      "9223372036854775807.0",
                                                                      "1e300",
                                                                      "9e999",
                                                                      "-9e999",
                                                                      "1e-320",
                                                                      "NULL"}) {
    runSqlite(database_, "DROP TABLE IF EXISTS t; CREATE TABLE t (c0 REAL); INSERT INTO t VALUES (" + number + ")");
    Prepared value(database_, "SELECT " + number);
    ASSERT_TRUE(value.step());
    RecordBuilder builder;
    builder.addReal(sqlite3_column_value(value.handle(), 0));
    const Savepoint savepoint(database_);
    EXPECT_EQ(builder.record(), StoredRows(database_, table("c", 1), StoredRows::Use::read).at(1)) << number;
  }
}

// A text of 57 bytes is the longest, one of 58 the shortest whose type has two bytes; the types of two bytes end at 8,185.
TEST_F(Records, OfTextsAndBytesOfAllLengthsAreThoseOfSqlite) {
  for (const std::size_t length : std::initializer_list<std::size_t>{0, 1, 56, 57, 58, 59, 500, 4000, 5000, 8184, 8185,
                                                                     8186, 8187, 20'000, 1'100'000}) {
    expectAsStored({text(length)});
    expectAsStored({"CAST(" + text(length) + " AS BLOB)"});
    expectAsStored({"7", text(length), "NULL", text(length), "-300"});
  }
  expectAsStored({"'é全\U0001F600'", "x'00ff80'", "'a' || char(0) || 'b'"});
}

// The header's length counts its own bytes: 127 is the greatest of one byte, 16,383 that of two.
TEST_F(Records, OfManyColumnsAreThoseOfSqlite) {
  for (const std::size_t count : std::initializer_list<std::size_t>{2, 100, 125, 126, 127, 128, 200, 1000}) {
    std::vector<std::string> values;
    for (std::size_t i = 0; i < count; ++i)
      values.push_back(i % 3 == 0 ? "NULL" : std::to_string(i * i));
    expectAsStored(values);
    for (std::size_t i = 0; i < count; ++i)
      values[i] = text(i % 90);
    expectAsStored(values);
  }
}

// Longer headers than any row of SQLite's has: its tables end at 2,000 columns.
TEST_F(Records, OfAHeaderWhoseLengthHasThreeBytesAreRead) {
  RecordBuilder builder;
  RecordFields fields;
  for (const std::size_t count : std::initializer_list<std::size_t>{16'381, 16'382, 16'383}) {
    builder.clear();
    builder.addNulls(count);
    fields.read(builder.record());
    EXPECT_EQ(fields.count(), count);
    EXPECT_EQ(fields.values(0, count), "");
  }
}

TEST_F(Records, AreThoseOfSqliteForRandomValues) {
  std::mt19937_64 random(3);
  const auto below = [&](unsigned limit) { return static_cast<std::size_t>(random() % limit); };
  for (int row = 0; row < 300; ++row) {
    std::vector<std::string> values;
    for (std::size_t left = 1 + below(40); left > 0; --left) {
      switch (below(5)) {
        case 0:
          values.emplace_back("NULL");
          break;
        case 1:
          values.push_back(std::to_string(static_cast<std::int64_t>(random()) >> below(64)));
          if (values.back() == "-9223372036854775808") values.back() = "0";
          break;
        case 2:
          values.push_back(text(below(200)));
          break;
        case 3:
          values.push_back("randomblob(" + std::to_string(1 + below(200)) + ")");
          break;
        default:
          values.push_back(std::to_string(static_cast<double>(below(100'000)) / 7));
      }
    }
    expectAsStored(values);
  }
}

TEST_F(Records, GiveEachValueBack) {
  std::vector<std::string> values = integers();
  values.back() = "-9223372036854775808";
  std::vector<std::string> given = integers();
  for (const std::string& value :
       {std::string("NULL"), std::string("0.5"), std::string("-1.25"), std::string("''"), text(57), text(58),
        text(9000), std::string("X''"), std::string("X'00FF80'"), std::string("'é全'")}) {
    values.push_back(value);
    given.push_back(value);
  }
  EXPECT_EQ(valuesOf(stored(given)), values);
  EXPECT_EQ(valuesOf(built()), values);
}

TEST_F(Records, GiveRealNumbersBackToTheBit) {
  const std::string record = stored({"-0.0", "1e-320", "9e999", "-9e999", "0.1"});
  RecordFields fields;
  fields.read(record);
  std::vector<std::uint64_t> read;
  for (std::size_t i = 0; i < fields.count(); ++i) {
    Prepared value(database_, "SELECT ?1");
    fields.bind(i, value.handle(), 1);
    ASSERT_TRUE(value.step());
    ASSERT_EQ(sqlite3_column_type(value.handle(), 0), SQLITE_FLOAT) << i;
    read.push_back(std::bit_cast<std::uint64_t>(sqlite3_column_double(value.handle(), 0)));
  }
  constexpr double infinite = std::numeric_limits<double>::infinity();
  EXPECT_THAT(read, ElementsAre(std::bit_cast<std::uint64_t>(-0.0), std::bit_cast<std::uint64_t>(1e-320),
                                std::bit_cast<std::uint64_t>(infinite), std::bit_cast<std::uint64_t>(-infinite),
                                std::bit_cast<std::uint64_t>(0.1)));
}

TEST_F(Records, ArePutTogetherOfRangesOfOthers) {
  const std::string first = stored({"1", "'two'", "NULL", "3000", "x'04'", text(70)});
  const std::string second = stored({"-5", "0.5", "''"});
  RecordFields one, other;
  one.read(first);
  other.read(second);
  RecordBuilder builder;
  builder.add(one, 1, 3);
  builder.add(other, 0, 2);
  builder.addNulls(2);
  builder.add(one, 5, 1);
  builder.add(one, 0, 1);
  builder.add(other, 2, 1);
  builder.add(one, 4, 0);
  const std::string record(builder.record());
  EXPECT_THAT(valuesOf(record), ElementsAre("'two'", "NULL", "3000", "-5", "0.5", "NULL", "NULL", text(70), "1", "''"));
  EXPECT_EQ(record, stored({"'two'", "NULL", "3000", "-5", "0.5", "NULL", "NULL", text(70), "1", "''"}));
  // All of one is that one.
  builder.clear();
  builder.add(one, 0, one.count());
  EXPECT_EQ(builder.record(), first);
}

// SQLite leaves a row as it is when its table gets another column.
TEST_F(Records, HaveNullForColumnsThatAreNotInThem) {
  const std::string record = stored({"7", "'x'"});
  RecordFields fields;
  fields.read(record);
  EXPECT_EQ(fields.count(), 2U);
  EXPECT_FALSE(fields.isNull(1));
  EXPECT_TRUE(fields.isNull(2));
  EXPECT_TRUE(fields.isNull(100));
  RecordBuilder builder;
  builder.add(fields, 1, 3);
  builder.add(fields, 2, 1);
  builder.add(fields, 50, 2);
  EXPECT_THAT(valuesOf(builder.record()), ElementsAre("'x'", "NULL", "NULL", "NULL", "NULL", "NULL"));
}

TEST_F(Records, OfNothingHaveNoColumns) {
  RecordBuilder builder;
  RecordFields fields;
  EXPECT_EQ(fields.count(), 0U);
  EXPECT_TRUE(fields.isNull(0));
  EXPECT_EQ(builder.record(), bytes({1}));
  fields.read(builder.record());
  EXPECT_EQ(fields.count(), 0U);
}

TEST_F(Records, AreReadAnewByTheSameObject) {
  const std::string longer = stored({"1", "2", "'three'"});
  const std::string shorter = stored({"'a'"});
  RecordFields fields;
  fields.read(longer);
  fields.read(shorter);
  EXPECT_EQ(fields.count(), 1U);
  EXPECT_EQ(fields.values(0, 1), "a");
}

class DamagedRecords : public ::testing::TestWithParam<std::vector<int>> {};

TEST_P(DamagedRecords, AreRefused) {
  // A copy of its own size, so that whatever is read past its end is found out.
  const std::string record = bytes(GetParam());
  const std::unique_ptr<char[]> exact(new char[record.size()]);
  std::ranges::copy(record, exact.get());
  RecordFields fields;
  try {
    fields.read({exact.get(), record.size()});
    ADD_FAILURE() << "it was read, with " << fields.count() << " columns";
  } catch (const SqlError& error) {
    EXPECT_EQ(error.number(), damagedFile);
  }
}

INSTANTIATE_TEST_SUITE_P(All, DamagedRecords,
                         ::testing::Values(std::vector<int>{},         // nothing
                                           std::vector<int>{0},        // a header without its own length
                                           std::vector<int>{0x81},     // a length that is cut
                                           std::vector<int>{3, 1},     // a header longer than the record
                                           std::vector<int>{0x80, 1},  // a header shorter than its length
                                           std::vector<int>{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 1},
                                           std::vector<int>{2, 1},                       // a number without its byte
                                           std::vector<int>{2, 6, 0, 0, 0, 0, 0, 0, 0},  // and without one of eight
                                           std::vector<int>{3, 8, 0x11, 'a'},            // a text of two letters
                                           std::vector<int>{2, 0x81},             // a type that is cut by the end
                                           std::vector<int>{2, 0x81, 0x01, 'x'},  // and by the values
                                           std::vector<int>{3, 0, 0x81, 0, 'x', 'y'},
                                           std::vector<int>{2, 0x80, 1, 'x'},  // the same, were it a number of one byte
                                           std::vector<int>{3, 0x80, 0},       // null in two bytes
                                           std::vector<int>{10, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff,
                                                            'x'},                             // the longest text
                                           std::vector<int>{2, 10}, std::vector<int>{2, 11},  // types without a meaning
                                           std::vector<int>{4, 9, 11, 0x0f, 'a'}));

// Of a record that is cut or changed anywhere, what is read lies in it.
TEST_F(Records, ThatAreDamagedAnywhereAreRefusedOrLieWithin) {
  const std::string whole = stored({"1", "'some text'", "NULL", "3000", text(70), "0.5", "x'0102'", "-7000000000"});
  std::mt19937 random(17);
  int refused = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string record = whole;
    if (round % 2 == 0) record.resize(random() % record.size());
    for (std::size_t changes = random() % 4; changes > 0 && !record.empty(); --changes)
      record[random() % std::min<std::size_t>(record.size(), 12)] = static_cast<char>(random());
    const std::unique_ptr<char[]> exact(new char[record.size()]);
    std::ranges::copy(record, exact.get());
    RecordFields fields;
    try {
      fields.read({exact.get(), record.size()});
    } catch (const SqlError& error) {
      ASSERT_EQ(error.number(), damagedFile);
      ++refused;
      continue;
    }
    ASSERT_EQ(valuesOf({exact.get(), record.size()}).size(), fields.count());
    RecordBuilder builder;
    builder.add(fields, 0, fields.count());
    builder.record();
  }
  EXPECT_GT(refused, 1000);
  EXPECT_LT(refused, 19'999);
}

}  // namespace
}  // namespace quillon::tsql
