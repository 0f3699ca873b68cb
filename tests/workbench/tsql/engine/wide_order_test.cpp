// Orders by more keys than SQLite is given at once: the same rows in the same order as by all of them.
#include <gmock/gmock.h>

#include <array>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/declared_table.h"

namespace quillon::tsql {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr int columnCount = 24;

std::string columnName(int column) {
  return "c" + std::to_string(column);
}

// A table whose columns go round in texts, whole numbers, decimals beyond 64 bits, dates and floating-point numbers.
class WideOrder : public ::testing::Test {
 protected:
  WideOrder() {
    constexpr std::array<std::string_view, 5> types = {"nvarchar(10)", "int", "decimal(38,2)", "datetime", "float"};
    std::string create = "Create Table Wide (n int";
    for (int column = 0; column < columnCount; ++column) {
      names_.push_back(columnName(column));
      create += ", " + columnName(column) + " ";
      create += types[static_cast<std::size_t>(column) % types.size()];
    }
    connection_->execute(create + ")");
    names_.insert(names_.begin(), "n");
  }

  // Rows of few different values, null among them; with `alike`, the first twelve columns are the same in all.
  void fill(int rows, bool alike) {
    const std::array<std::vector<Value>, 5> values = {{
        {Value(), std::string("b"), std::string("B"), std::string("a"), std::string("")},
        {Value(), std::int64_t{-3}, std::int64_t{20}},
        {Value(), Exact{.units = Int128(-7), .scale = 2},
         Exact{.units = Int128(1'000'000'000'000'000'000) * Int128(-900), .scale = 2},
         Exact{.units = Int128(1'000'000'000'000'000'000) * Int128(900), .scale = 2}},
        {Value(), DateTime{300}, DateTime{-300}},
        {Value(), 0.5, -2.0},
    }};
    std::mt19937 random(7);
    const auto writer = connection_->bulkWriter("Wide", names_);
    std::vector<Value> row(names_.size());
    for (int n = 0; n < rows; ++n) {
      row[0] = std::int64_t{n};
      for (std::size_t i = 1; i < row.size(); ++i) {
        const std::vector<Value>& of = values[(i - 1) % values.size()];
        row[i] = alike && i <= 12 ? of.back() : of[random() % of.size()];
      }
      writer->write(row);
    }
  }

  // SQLite orders by all keys where the first so many rows are asked for.
  std::vector<std::int64_t> byAllKeys(const std::string& where, const std::string& order) {
    return numbers("Select Top 1000000 n From Wide Where " + where + " Order By " + order);
  }
  std::vector<std::int64_t> numbers(const std::string& statement) {
    std::vector<std::int64_t> found;
    for (const auto cursor = connection_->query(statement); cursor->next();)
      found.push_back(std::get<std::int64_t>(cursor->value(0)));
    return found;
  }
  std::vector<std::int64_t> numbersAt(const std::vector<std::int64_t>& rows) {
    std::vector<std::int64_t> found;
    for (const auto cursor = connection_->rowsAt("Wide", "n", rows); cursor->next();)
      found.push_back(std::get<std::int64_t>(cursor->value(0)));
    return found;
  }

  // Every column, some descending, the number last, so that the order is definite.
  static std::string order() {
    std::string keys;
    for (int column = 0; column < columnCount; ++column)
      keys += columnName(column) + (column % 3 == 1 ? " Desc, " : ", ");
    return keys + "n Desc";
  }

  void expectSameOrders(const std::string& where) {
    const std::vector<std::int64_t> expected = byAllKeys(where, order());
    ASSERT_FALSE(expected.empty());
    // The table's columns as they stand are read by the numbers of the rows, what is computed as SQLite sorts it.
    EXPECT_EQ(numbers("Select n, * From Wide Where " + where + " Order By " + order()), expected);
    EXPECT_EQ(numbers("Select n + 0 As m, * From Wide Where " + where + " Order By " + order()), expected);
    EXPECT_EQ(numbersAt(connection_->orderedRows("Wide", where, order())), expected);
    for (const std::int64_t limit : {1, 2, 40, 100'000}) {
      const auto first = numbersAt(connection_->orderedRows("Wide", where, order(), limit));
      ASSERT_FALSE(first.empty());
      ASSERT_LE(std::ssize(first), limit);
      EXPECT_TRUE(std::equal(first.begin(), first.end(), expected.begin())) << limit;
    }
  }

  // Against what the row alone shows.
  void expectTheValuesOf(const std::string& list) {
    std::vector<std::vector<Value>> rows;
    std::string statement = "Select ";
    statement.append(list).append(" From Wide Order By ").append(order());
    for (const auto cursor = connection_->query(statement); cursor->next();) {
      rows.emplace_back();
      for (std::size_t i = 0; i < cursor->columns().size(); ++i)
        rows.back().push_back(cursor->value(i));
    }
    EXPECT_THAT(rows, SizeIs(50));
    for (const std::vector<Value>& row : rows) {
      const std::string where = "n = " + toText(row.front()).value();
      std::string single = "Select ";
      single.append(list).append(" From Wide Where ").append(where);
      const auto cursor = connection_->query(single);
      ASSERT_TRUE(cursor->next());
      for (std::size_t i = 0; i < row.size(); ++i)
        EXPECT_EQ(row[i], cursor->value(i)) << where << ", column " << i;
    }
  }

  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
  std::vector<std::string> names_;
};

TEST_F(WideOrder, OfRowsThatDifferSoonIsThatOfAllKeys) {
  fill(3000, false);
  expectSameOrders("1 = 1");
  expectSameOrders("c1 = 20 Or c4 = 0.5");
}

TEST_F(WideOrder, OfFewRowsThatAreAlikeIsThatOfAllKeys) {
  fill(400, true);
  expectSameOrders("1 = 1");
}

TEST_F(WideOrder, OfManyRowsThatAreAlikeIsThatOfAllKeys) {
  fill(500, false);
  fill(2000, true);
  expectSameOrders("1 = 1");
}

TEST_F(WideOrder, TakesKeysThatAreNotShown) {
  fill(300, true);
  std::string keys;
  for (int column = 0; column < columnCount; ++column)
    keys += (column == 0 ? "" : ", ") + columnName(column);
  EXPECT_EQ(numbers("Select n From Wide Order By " + keys + ", n"), byAllKeys("1 = 1", keys + ", n"));
  EXPECT_EQ(numbers("Select n, c20, c21, c22, c23 From Wide Order By " + keys + ", n"),
            byAllKeys("1 = 1", keys + ", n"));
  EXPECT_EQ(numbers("Select n + 0 As m, c20, c21, c22, c23 From Wide Order By " + keys + ", n"),
            byAllKeys("1 = 1", keys + ", n"));
}

TEST_F(WideOrder, GivesTheValuesOfEachRow) {
  fill(50, true);
  for (const char* const list :
       {"n, c0, c1, c2, c3, c4, c20, c21, c22, c23", "n, c0, c1, c2, c3, c4, c20, c21, c22, c23, c0 + N'' As x", "*"})
    expectTheValuesOf(list);
}

// The number of the row is a column, or a key of dates that SQLite keeps as such.
TEST_F(WideOrder, GivesTheKeyOfEachRow) {
  fill(40, false);
  std::string columns;
  for (int column = 0; column < columnCount; ++column)
    columns += ", " + columnName(column);
  const std::vector<std::int64_t> expected = byAllKeys("1 = 1", order());
  for (const auto& [type, key] : {std::pair("int", "n"), std::pair("datetime", "DateAdd(day, n, '2020-01-01')")}) {
    connection_->execute("Select n" + columns + " Into Keyed From Wide Where 1 = 0");
    std::string create = "Create Table Numbered (id " + std::string(type) + " Primary Key, n int";
    for (const Column& column : connection_->describe("Keyed")) {
      if (column.name != "n") create.append(", ").append(column.name).append(" ").append(declaration(column.type));
    }
    connection_->execute(create + ")");
    std::string insert = "Insert Into Numbered (id, n";
    insert.append(columns).append(") Select ").append(key).append(", n").append(columns).append(" From Wide");
    connection_->execute(insert);
    std::vector<std::int64_t> found;
    for (const auto cursor = connection_->query("Select n, id, * From Numbered Order By " + order()); cursor->next();) {
      found.push_back(std::get<std::int64_t>(cursor->value(0)));
      const auto single = connection_->query("Select id From Numbered Where n = " + std::to_string(found.back()));
      ASSERT_TRUE(single->next());
      EXPECT_EQ(cursor->value(1), single->value(0));
    }
    EXPECT_EQ(found, expected);
    connection_->execute("Drop Table Keyed Drop Table Numbered");
  }
}

// Rows that are deleted while others are read do not come any more.
TEST_F(WideOrder, GoesOnWhereRowsAreDeleted) {
  fill(30, false);
  const std::vector<std::int64_t> expected = byAllKeys("1 = 1", order());
  const auto cursor = connection_->query("Select n, * From Wide Order By " + order());
  ASSERT_TRUE(cursor->next());
  EXPECT_EQ(std::get<std::int64_t>(cursor->value(0)), expected[0]);
  connection_->execute("Delete Wide Where n = " + std::to_string(expected[1]));
  ASSERT_TRUE(cursor->next());
  EXPECT_EQ(std::get<std::int64_t>(cursor->value(0)), expected[2]);
}

TEST_F(WideOrder, OfNoRowsGivesNone) {
  EXPECT_THAT(numbers("Select n, * From Wide Order By " + order()), ElementsAre());
  EXPECT_THAT(numbers("Select n + 0 As m, * From Wide Order By " + order()), ElementsAre());
  EXPECT_THAT(connection_->orderedRows("Wide", "1 = 1", order()), ElementsAre());
  EXPECT_THAT(connection_->orderedRows("Wide", "1 = 1", order(), 5), ElementsAre());
}

}  // namespace
}  // namespace quillon::tsql
