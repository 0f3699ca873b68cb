// Queries that are stored take other forms than queries that are read: rows alone in their group past the sorter, derived
// tables without the groups that nobody joins, an order made of narrow rows. Both give the same rows.
#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/lone_rows.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::vector<std::string> rowsOf(Connection& connection, const std::string& query) {
  std::vector<std::string> rows;
  const auto cursor = connection.query(query);
  while (cursor->next()) {
    std::string& row = rows.emplace_back();
    for (std::size_t i = 0; i < cursor->columns().size(); ++i)
      row += toText(cursor->value(i)).value_or("(null)") + "|";
  }
  return rows;
}

std::vector<std::string> sorted(std::vector<std::string> rows) {
  std::ranges::sort(rows);
  return rows;
}

// A table of fourteen key columns, d1 to d4 decimals to sum among them, whose rows come from few values a column.
class WideGroupings : public ::testing::Test {
 protected:
  static constexpr int keyCount = 14;

  WideGroupings() {
    constexpr std::array<std::string_view, 5> types = {"nvarchar(10)", "int", "decimal(38,2)", "datetime", "float"};
    std::string create = "Create Table Wide (";
    for (int i = 0; i < keyCount; ++i) {
      names_.push_back("c" + std::to_string(i));
      keys_ += (i == 0 ? "c" : ", c") + std::to_string(i);
      create += names_.back() + " " + std::string(types[static_cast<std::size_t>(i) % types.size()]) + ", ";
    }
    connection_->execute(create + "q decimal(18,6), m money, n int, f float)");
    for (const char* figure : {"q", "m", "n", "f"})
      names_.emplace_back(figure);
  }

  // `values`: how many texts, numbers and so on there are for a column; few make groups of many rows.
  void fill(int rows, unsigned values) {
    const std::array<std::vector<Value>, 5> of = {{
        {Value(), std::string("b"), std::string("B "), std::string("ａ"), std::string("A"), std::string("é"),
         std::string("e\xCC\x81"), std::string("x-y"), std::string("xy"), std::string("")},
        {Value(), std::int64_t{-3}, std::int64_t{20}, std::int64_t{0}},
        {Value(), Exact{.units = Int128(-7), .scale = 2},
         Exact{.units = Int128(1'000'000'000'000'000'000) * Int128(900), .scale = 2}},
        {Value(), DateTime{300}, DateTime{-300}},
        {Value(), 0.5, -0.0, 0.0, 2.0},
    }};
    std::mt19937 random(11);
    const auto writer = connection_->bulkWriter("Wide", names_);
    std::vector<Value> row(names_.size());
    for (int n = 0; n < rows; ++n) {
      for (std::size_t i = 0; i < keyCount; ++i) {
        const std::vector<Value>& choice = of[i % of.size()];
        row[i] = choice[random() % std::min<std::size_t>(values, choice.size())];
      }
      row[keyCount] = n % 7 == 0 ? Value() : Value(Exact{.units = Int128(std::int64_t{n} * 1001), .scale = 6});
      row[keyCount + 1] = n % 5 == 0 ? Value() : Value(Exact{.units = Int128(n - 2000), .scale = 4});
      row[keyCount + 2] = n % 3 == 0 ? Value() : Value(std::int64_t{n});
      row[keyCount + 3] = n % 2 == 0 ? Value(-0.0) : Value(static_cast<double>(n) / 4);
      writer->write(row);
    }
  }

  // The rows of the query once read, which SQLite groups by itself, and once stored.
  void expectSame(const std::string& query) {
    const std::size_t from = query.find(" From ");
    ASSERT_NE(from, std::string::npos);
    connection_->execute(query.substr(0, from) + " Into Stored" + query.substr(from));
    EXPECT_THAT(sorted(rowsOf(*connection_, "Select * From Stored")),
                ElementsAreArray(sorted(rowsOf(*connection_, query))));
    connection_->execute("Delete Stored");
    connection_->execute("Insert Into Stored " + query);
    EXPECT_THAT(sorted(rowsOf(*connection_, "Select * From Stored")),
                ElementsAreArray(sorted(rowsOf(*connection_, query))));
    connection_->execute("Drop Table Stored");
  }

  // A row of the group with that key; one written otherwise is in it by the collation only.
  struct Member {
    int key = 0;
    bool isWrittenOtherwise = false;
  };
  void fillGroups(const std::vector<Member>& members,
                  const Value& quantity = Exact{.units = Int128(1'500'000), .scale = 6}) {
    const auto writer = connection_->bulkWriter("Wide", names_);
    std::vector<Value> row(names_.size());
    std::int64_t n = 0;
    for (const Member& member : members) {
      const std::string key = std::to_string(member.key);
      const std::array<Value, 5> values = {
          Value(member.isWrittenOtherwise ? "\xEF\xBC\xAB " + key + " " : "k " + key),
          Value(std::int64_t{member.key % 5}),
          Value(Exact{.units = Int128(member.key) * Int128(1'000'000'000'000'000'000), .scale = 2}),
          member.key % 3 == 0 ? Value() : Value(DateTime{member.key % 11}), Value(member.key % 4 - 0.5)};
      for (std::size_t i = 0; i < keyCount; ++i)
        row[i] = i >= 5 && i % 5 == 0 ? Value(std::string("the same")) : values[i % values.size()];
      row[keyCount] = quantity;
      row[keyCount + 1] = Exact{.units = Int128(++n), .scale = 4};
      row[keyCount + 2] = n % 4 == 0 ? Value() : Value(n);
      row[keyCount + 3] = static_cast<double>(n) / 4;
      writer->write(row);
    }
  }
  static std::vector<Member> aloneUpTo(int count) {
    std::vector<Member> members(static_cast<std::size_t>(count));
    for (int key = 0; key < count; ++key)
      members[static_cast<std::size_t>(key)].key = key;
    return members;
  }
  // How many groups SQLite's own statement stores; the others are composed.
  std::int64_t groupsOfSqlite(const std::string& query) {
    const std::size_t from = query.find(" From ");
    connection_->execute(query.substr(0, from) + " Into Counted" + query.substr(from));
    connection_->execute("Delete Counted");
    const sqlite3_int64 before = sqlite3_total_changes64(connection_->handle());
    connection_->execute("Insert Into Counted " + query);
    const sqlite3_int64 after = sqlite3_total_changes64(connection_->handle());
    connection_->execute("Drop Table Counted");
    return after - before;
  }

  std::string grouped(const std::string& figures, const std::string& where = "") const {
    return "Select " + keys_ + ", " + figures + " From Wide" + where + " Group By " + keys_;
  }
  static constexpr const char* figures =
      "Sum(q) sq, Sum(m) sm, Sum(n) sn, Sum(f) sf, Count(*) cs, Count(q) cq, Min(m) lm, Max(f) mf, Sum(IsNull(m, 0) + 1) s";

  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
  std::vector<std::string> names_;
  std::string keys_;
};

TEST_F(WideGroupings, OfRowsNearlyAllAloneGiveTheSameRows) {
  fill(4000, 10);
  expectSame(grouped(figures));
}

TEST_F(WideGroupings, OfManyRowsAGroupGiveTheSameRows) {
  fill(4000, 2);
  expectSame(grouped(figures));
}

TEST_F(WideGroupings, OfSomeRowsOnlyGiveTheSameRows) {
  fill(6000, 5);
  expectSame(grouped(figures, " Where n > 1500 Or c1 Is Null"));
}

TEST_F(WideGroupings, WithAnAverageGiveTheSameRows) {
  fill(4000, 10);
  expectSame(grouped("Avg(q) a, Sum(q) s"));
}

TEST_F(WideGroupings, OfFewRowsGiveTheSameRows) {
  fill(40, 3);
  expectSame(grouped(figures));
  connection_->execute("Delete Wide");
  expectSame(grouped(figures));
}

TEST_F(WideGroupings, CountASumAnewThatDoesNotFitIn64Bits) {
  fill(4000, 10);
  connection_->execute("Create Table Large (" + [] {
    std::string columns;
    for (int i = 0; i < keyCount; ++i)
      columns += "c" + std::to_string(i) + " int, ";
    return columns;
  }() + "q decimal(18,0))");
  // Groups of one row each and one group of three whose sum takes more than 64 bits.
  for (int i = 0; i < 3000; ++i) {
    std::string row = std::to_string(std::max(i, 3));
    for (int column = 1; column < keyCount; ++column)
      row += ", " + std::to_string(column);
    connection_->execute("Insert Into Large Values (" + row + ", 999999999999999999)");
  }
  for (int i = 0; i < 10; ++i)
    connection_->execute("Insert Into Large Select * From Large Where c0 = 3");
  const std::string query = "Select " + keys_ + ", Sum(q) q From Large Group By " + keys_;
  connection_->execute("Select * Into Sums From (" + query + ") x");
  connection_->execute("Delete Sums");
  connection_->execute("Insert Into Sums " + query);
  EXPECT_THAT(rowsOf(*connection_, "Select q From Sums Where c0 = 3"), ElementsAre("4095999999999999995904|"));
  EXPECT_THAT(rowsOf(*connection_, "Select Count(*) From Sums Where q = 999999999999999999"), ElementsAre("2996|"));
}

TEST_F(WideGroupings, OfRowsAlikeToTheLastByteAreComposed) {
  std::vector<Member> members = aloneUpTo(2400);
  for (int i = 0; i < 600; ++i)
    members.push_back({.key = 1000 + i % 150});
  fillGroups(members);
  expectSame(grouped(figures));
  EXPECT_EQ(groupsOfSqlite(grouped(figures)), 0);
}

TEST_F(WideGroupings, OfRowsAlikeByTheCollationAreThoseOfSqlite) {
  std::vector<Member> members = aloneUpTo(2400);
  for (int i = 0; i < 100; ++i)
    members.push_back({.key = i, .isWrittenOtherwise = true});
  fillGroups(members);
  expectSame(grouped(figures));
  EXPECT_EQ(groupsOfSqlite(grouped(figures)), 100);
}

TEST_F(WideGroupings, OfRowsAlikeInBothWaysGiveTheSameRows) {
  std::vector<Member> members = aloneUpTo(2400);
  for (int i = 0; i < 300; ++i) {
    members.push_back({.key = i});                                              // all of these twice,
    if (i % 3 == 0) members.push_back({.key = i, .isWrittenOtherwise = true});  // and some of them otherwise
    if (i % 6 == 0) members.push_back({.key = i, .isWrittenOtherwise = true});
  }
  // Two that are alike to the last byte, behind the one that is otherwise.
  for (const bool isWrittenOtherwise : {true, false, true, false})
    members.push_back({.key = 5000, .isWrittenOtherwise = isWrittenOtherwise});
  fillGroups(members);
  expectSame(grouped(figures));
  EXPECT_EQ(groupsOfSqlite(grouped(figures)), 101);
}

TEST_F(WideGroupings, OfSomeRowsAlikeOnlyGiveTheSameRows) {
  std::vector<Member> members = aloneUpTo(4000);
  for (int i = 0; i < 900; ++i)
    members.push_back({.key = i % 300, .isWrittenOtherwise = i % 9 == 0});
  fillGroups(members);
  for (const char* const where : {" Where n > 100 Or c1 = 2", " Where c1 <> 3 And m > 0.01", " Where f < 1100"}) {
    expectSame(grouped(figures, where));
    const std::int64_t left = groupsOfSqlite(grouped(figures, where));
    EXPECT_GT(left, 0) << where;
    EXPECT_LE(left, 300) << where;
  }
}

TEST_F(WideGroupings, SumRowsAlikeBeyond64Bits) {
  std::vector<Member> members = aloneUpTo(2400);
  for (int i = 0; i < 40; ++i)
    members.push_back({.key = 7});
  members.push_back({.key = 8, .isWrittenOtherwise = true});
  fillGroups(members, Exact{.units = Int128(999'999'999'999'999'999), .scale = 6});
  const std::string query = grouped("Sum(q) total, Sum(m) sm, Count(*) cs");
  connection_->execute("Select * Into Totals From (" + query + ") x; Select * Into Indexed From Totals");
  connection_->execute("Delete Totals; Delete Indexed; Create Index ix On Indexed (c0)");
  const sqlite3_int64 before = sqlite3_total_changes64(connection_->handle());
  EXPECT_EQ(connection_->execute("Insert Into Totals " + query), 2400);
  EXPECT_LT(sqlite3_total_changes64(connection_->handle()) - before, 10) << "the groups were not composed";
  EXPECT_EQ(connection_->execute("Insert Into Indexed " + query), 2400);
  EXPECT_THAT(sorted(rowsOf(*connection_, "Select * From Totals")),
              ElementsAreArray(sorted(rowsOf(*connection_, "Select * From Indexed"))));
  EXPECT_THAT(rowsOf(*connection_, "Select total From Totals Where c0 = N'k 7'"),
              ElementsAre("40999999999999.999959|"));
}

TEST_F(WideGroupings, OfAConditionThatIsKeptGiveTheSameRowsForOtherConstants) {
  std::vector<Member> members = aloneUpTo(3000);
  for (int i = 0; i < 300; ++i)
    members.push_back({.key = i, .isWrittenOtherwise = i % 2 == 0});
  fillGroups(members);
  for (const int n : {0, 50, 700})
    expectSame(grouped(figures, " Where n > " + std::to_string(n)));
}

TEST_F(WideGroupings, AreLeftToSqliteInATableWithAnIndex) {
  std::vector<Member> members = aloneUpTo(2400);
  for (int i = 0; i < 100; ++i)
    members.push_back({.key = i});
  fillGroups(members);
  connection_->execute("Select Top 0 " + keys_ + ", q Into Indexed From Wide; Create Index ix On Indexed (c0)");
  const sqlite3_int64 before = sqlite3_total_changes64(connection_->handle());
  EXPECT_EQ(connection_->execute("Insert Into Indexed Select " + keys_ + ", Min(q) From Wide Group By " + keys_), 2400);
  EXPECT_EQ(sqlite3_total_changes64(connection_->handle()) - before, 2400);
  EXPECT_THAT(sorted(rowsOf(*connection_, "Select * From Indexed")),
              ElementsAreArray(sorted(rowsOf(*connection_, grouped("Min(q) q")))));
}

TEST_F(WideGroupings, OfATableWithoutRowNumbersGiveTheSameRows) {
  std::string columns;
  for (int i = 0; i < keyCount; ++i)
    columns += "c" + std::to_string(i) + " int, ";
  connection_->execute("Drop Table Wide; Create Table Wide (" + columns +
                       "rowid int, oid int, _rowid_ int, q decimal(18,6), m money, n int, f float)");
  connection_->execute("Insert Into Wide (c0, n) Values (1, 2); Insert Into Wide (c0, n) Values (1, 3)");
  expectSame(grouped(figures));
}

WideGrouping byColumns(std::vector<std::string> keys) {
  return {.number = "t.rowid", .from = "main.\"Wide\" AS t", .where = "", .keys = std::move(keys), .sql = ""};
}

TEST_F(WideGroupings, FindTheRowsThatAreAlone) {
  connection_->execute("Insert Into Wide (c0, n) Values (N'twin', 0)");
  for (int i = 1; i < 3000; ++i)
    connection_->execute("Insert Into Wide (c0, n) Values (N'x" + std::to_string(i) + "', " + std::to_string(i) + ")");
  connection_->execute("Insert Into Wide (c0, n) Values (N'TWIN ', 0)");
  LoneRows rows;
  ASSERT_TRUE(rows.find(connection_->handle(), byColumns({"t.c1", "t.c0", "t.n"})));
  EXPECT_FALSE(rows.isAlone(1));
  EXPECT_TRUE(rows.isAlone(2));
  EXPECT_TRUE(rows.isAlone(3000));
  EXPECT_FALSE(rows.isAlone(3001));
}

TEST_F(WideGroupings, FindTheRowsThatAreAlikeToTheLastByte) {
  std::vector<Member> members = aloneUpTo(3000);  // whose numbers are their keys and one
  members.push_back({.key = 10});
  members.push_back({.key = 20, .isWrittenOtherwise = true});
  members.push_back({.key = 30});
  members.push_back({.key = 30, .isWrittenOtherwise = true});
  members.push_back({.key = 10});
  fillGroups(members);
  WideGrouping grouping = byColumns({"t.c1", "t.c0", "t.c2"});
  Table table;
  table.schema = "main";
  table.stored = "Wide";
  for (const std::string& name : names_)
    table.columns.emplace_back().name = name;
  grouping.table = std::make_shared<const Table>(table);
  grouping.columns = {0, 1, 2};
  LoneRows rows;
  ASSERT_TRUE(rows.find(connection_->handle(), grouping));
  const Savepoint savepoint(connection_->handle());
  ASSERT_TRUE(rows.gather(connection_->handle(), grouping));
  EXPECT_TRUE(rows.isAlone(10));
  EXPECT_FALSE(rows.isTogether(10));
  for (const std::int64_t number : {11, 3001, 3005}) {
    EXPECT_FALSE(rows.isAlone(number)) << number;
    EXPECT_TRUE(rows.isTogether(number)) << number;
    EXPECT_EQ(rows.groupNumber(number), rows.groupNumber(11)) << number;
  }
  for (const std::int64_t number : {21, 3002, 31, 3003, 3004}) {
    EXPECT_FALSE(rows.isAlone(number)) << number;
    EXPECT_FALSE(rows.isTogether(number)) << number;
  }
  // Rows of a view are not read as they are stored.
  connection_->execute("Create View Seen As Select * From Wide");
  table.stored = "Seen";
  grouping.table = std::make_shared<const Table>(table);
  EXPECT_FALSE(rows.gather(connection_->handle(), grouping));
}

TEST_F(WideGroupings, LeaveTablesToTheSorterInWhichFewRowsAreAlone) {
  fill(3000, 1);
  LoneRows rows;
  EXPECT_FALSE(rows.find(connection_->handle(), byColumns({"t.c0", "t.c1"})));
}

TEST_F(WideGroupings, LeaveSmallTablesToTheSorter) {
  connection_->execute("Insert Into Wide (n) Values (1)");
  LoneRows rows;
  EXPECT_FALSE(rows.find(connection_->handle(), byColumns({"t.n"})));
}

// A table of 3,000 rows and the lists from which it is named.
class MatchedUpdates : public ::testing::Test {
 protected:
  static constexpr int rowCount = 3000;

  MatchedUpdates() {
    connection_->execute(
        "Create Table Goods (n int, kind nvarchar(10), part int, name nvarchar(20));"
        "Create Table Names (list nvarchar(10), code nvarchar(10), part int, name nvarchar(40), price int);"
        "Insert Into Names Values (N'kinds', N'A', 1, N'first', 7); Insert Into Names Values (N'kinds', N'b ', 2, N'second', null);"
        "Insert Into Names Values (N'kinds', N'c', 3, null, 9); Insert Into Names Values (N'kinds', null, 4, N'nobody', 1);"
        "Insert Into Names Values (N'others', N'A', 5, N'wrong', 1); Insert Into Names Values (N'kinds', N'd', 6, N'a name of more than twenty letters', 1)");
    const std::vector<std::string> columns = {"n", "kind", "part", "name"};
    const std::array<Value, 6> kinds = {Value(std::string("a")),   Value(std::string("Ｂ")),
                                        Value(std::string("c  ")), Value(),
                                        Value(std::string("z")),   Value(std::string("é"))};
    const auto writer = connection_->bulkWriter("Goods", columns);
    for (int n = 0; n < rowCount; ++n) {
      const std::vector<Value> row = {std::int64_t{n}, kinds[static_cast<std::size_t>(n) % kinds.size()],
                                      n % 10 == 0 ? Value() : Value(std::int64_t{n % 7}), std::string("old")};
      writer->write(row);
    }
  }

  // The number of rows changed, and which names there are how often afterwards.
  std::vector<std::string> changed(const std::string& update) {
    std::vector<std::string> result = {std::to_string(connection_->execute(update))};
    for (std::string& row : rowsOf(*connection_, "Select name, Count(*) From Goods Group By name Order By name"))
      result.push_back(std::move(row));
    return result;
  }

  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
};

TEST_F(MatchedUpdates, TakeEachRowsNameByTheCollation) {
  EXPECT_THAT(changed("Update Goods Set name = l.name From Goods g Inner Join Names l On g.kind = l.code "
                      "Where l.list = N'kinds'"),
              ElementsAre("1500", "(null)|500|", "first|500|", "old|1500|", "second|500|"));
}

TEST_F(MatchedUpdates, TakeConditionsOnBothSides) {
  EXPECT_THAT(
      changed("Update g Set name = l.name From Goods g, Names l Where g.kind = l.code And l.list = N'kinds' And "
              "g.n < 600 And l.price Is Not Null"),
      ElementsAre("200", "(null)|100|", "first|100|", "old|2800|"));
}

TEST_F(MatchedUpdates, TakeSeveralKeysAndExpressionsOfTheTable) {
  // n is a multiple of 6 and one more than one of 7, 71 times; of these 14 are multiples of 10, which have no part.
  EXPECT_THAT(changed("Update g Set name = l.name From Goods g Inner Join Names l On g.part = l.part And "
                      "Case When g.kind = N'z' Then N'd' Else g.kind End = l.code Where l.price = 7"),
              ElementsAre("57", "first|57|", "old|2943|"));
}

TEST_F(MatchedUpdates, RefuseATextThatIsTooLongOnlyWhereARowTakesIt) {
  const char* const update =
      "Update g Set name = l.name From Goods g Inner Join Names l On g.kind = l.code Where l.list = N'kinds'";
  EXPECT_EQ(connection_->execute(update), 1500);
  connection_->execute("Update Goods Set kind = N'd' Where n = 5");
  EXPECT_THROW(connection_->execute(update), SqlError);
}

// SQLite chooses then, as it does for small tables.
TEST_F(MatchedUpdates, AreLeftToSqliteWhereTwoRowsMatch) {
  connection_->execute("Insert Into Names Values (N'kinds', N'a', 1, N'other', 7)");
  connection_->execute("Select * Into Few From Goods Where n < 60");
  connection_->execute(
      "Update g Set name = l.name From Goods g Inner Join Names l On g.kind = l.code Where l.list = N'kinds'");
  connection_->execute(
      "Update g Set name = l.name From Few g Inner Join Names l On g.kind = l.code Where l.list = N'kinds'");
  EXPECT_THAT(rowsOf(*connection_, "Select n, name From Goods Where n < 60 Order By n"),
              ElementsAreArray(rowsOf(*connection_, "Select n, name From Few Order By n")));
}

TEST_F(MatchedUpdates, OfATableFromItselfTakeTheRowsThatMatch) {
  EXPECT_EQ(
      connection_->execute("Update g Set name = o.kind From Goods g Inner Join Goods o On g.n = o.n Where o.n < 6"), 6);
  EXPECT_THAT(rowsOf(*connection_, "Select name From Goods Where n < 6 Order By n"),
              ElementsAre("a|", "Ｂ|", "c  |", "(null)|", "z|", "é|"));
}

// With so many columns that SQLite's index of the other side would have them all. A line without a code takes one of a line
// of its number and state, and code and name of the same one.
TEST_F(MatchedUpdates, OfATableFromItselfTakeOneOfSeveralRows) {
  std::string columns;
  for (int i = 0; i < 70; ++i)
    columns += "c" + std::to_string(i) + " int, ";
  for (const bool hasIndex : {false, true}) {
    connection_->execute("Create Table Lines (id int, state int, " + columns + "code nvarchar(10), name nvarchar(20))");
    if (hasIndex) connection_->execute("Create Index ByCode On Lines (code)");
    for (const char* const row :
         {"1, 1, null, null", "1, 1, N'a', N'name of a'", "1, 1, N'b', N'name of b'", "1, 2, N'', N'stays'",
          "2, 1, N'c', N'name of c'", "2, 1, null, null", "null, 1, null, N'stays'", "null, 1, N'd', N'name of d'"}) {
      connection_->execute("Insert Into Lines (id, state, code, name) Values (" + std::string(row) + ")");
    }
    EXPECT_EQ(connection_->execute("Update old Set code = o.code, name = o.name From Lines old Inner Join Lines o On "
                                   "old.id = o.id And old.state = o.state "
                                   "Where IsNull(old.code, N'') = N'' And IsNull(o.code, N'') <> N''"),
              2);
    EXPECT_THAT(rowsOf(*connection_, "Select id, state, code, name From Lines Order By id, state, code"),
                ElementsAre("(null)|1|(null)|stays|", "(null)|1|d|name of d|", "1|1|a|name of a|",
                            AnyOf("1|1|a|name of a|", "1|1|b|name of b|"), "1|1|b|name of b|", "1|2||stays|",
                            "2|1|c|name of c|", "2|1|c|name of c|"));
    connection_->execute("Drop Table Lines");
  }
}

// Lines with their parts, as the voucher report joins them.
class JoinedGroups : public ::testing::Test {
 protected:
  JoinedGroups() {
    connection_->execute(
        "Create Table Line (id int, day int, place int, bak int);"
        "Create Table Part (line int, item int, q decimal(18,2));"
        "Create Table Place (id int, name nvarchar(10))");
    std::mt19937 random(5);
    for (int i = 0; i < 60; ++i) {
      const std::string bak = i % 4 == 0 ? std::to_string(200 - i) : "null";
      connection_->execute("Insert Into Line Values (" + std::to_string(i) + ", " + std::to_string(i % 9) + ", " +
                           (i % 5 == 0 ? "null" : std::to_string(i % 3)) + ", " + bak + ")");
    }
    for (int i = 0; i < 200; ++i) {
      connection_->execute("Insert Into Part Values (" + (i % 11 == 0 ? "null" : std::to_string(random() % 70)) + ", " +
                           std::to_string(random() % 3) + ", " + std::to_string(random() % 100) + ")");
    }
    connection_->execute("Insert Into Place Values (1, N'one'); Insert Into Place Values (2, N'two')");
  }

  std::string translated(const std::string& query) { return connection_->translate(query); }

  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
};

constexpr const char* restriction = "\" IN (SELECT";
constexpr const char* sumsOfParts = "(Select line, item, Sum(q) q From Part Group By line, item) p";

TEST_F(JoinedGroups, LeaveOutWhatNoLineOfTheQueryHas) {
  const std::string query = "Select l.id, p.item, p.q From Line l Left Join " + std::string(sumsOfParts) +
                            " On p.line = l.id Where l.day In (2, 3)";
  EXPECT_THAT(translated(query),
              HasSubstr("\"Part\".\"line\" IN (SELECT \"l\".\"id\" FROM main.\"Line\" AS \"l\" WHERE"));
  // The same without a condition that the derived table could use.
  const std::string plain = "Select l.id, p.item, p.q From Line l Left Join " + std::string(sumsOfParts) +
                            " On p.line = l.id Where l.day + 0 In (2, 3)";
  EXPECT_THAT(translated(plain), Not(HasSubstr(restriction)));
  EXPECT_THAT(sorted(rowsOf(*connection_, query)), ElementsAreArray(sorted(rowsOf(*connection_, plain))));
  EXPECT_THAT(rowsOf(*connection_, query), Not(IsEmpty()));
}

TEST_F(JoinedGroups, KeepAllGroupsWhereALineMayBeMissing) {
  const std::string condition = " On p.line = l.id Where l.day = 2";
  for (const std::string& from : {"Line l Full Join " + std::string(sumsOfParts) + condition,
                                  std::string(sumsOfParts) + " Left Join Line l" + condition,
                                  "Line l Right Join " + std::string(sumsOfParts) + condition,
                                  "Place x Left Join (Line l Left Join " + std::string(sumsOfParts) +
                                      " On p.line = l.id) On x.id = p.item Where l.day Is Null"}) {
    EXPECT_THAT(translated("Select l.id, p.q From " + from), Not(HasSubstr(restriction))) << from;
  }
}

TEST_F(JoinedGroups, KeepAllGroupsOfOtherColumnsAndConditions) {
  for (const std::string& rest : {
           std::string(" On p.q = l.id Where l.day = 2"),          // a sum
           std::string(" On p.line <> l.id Where l.day = 2"),      // no equality
           std::string(" On p.line = l.id Where p.item = 2"),      // a condition on the groups
           std::string(" On p.line = l.id Where l.day = p.item"),  // a condition on both
           std::string(" On p.line = l.id Where 6 / l.day = 2"),   // a division, which may fail
           std::string(" On p.line = l.id Or l.id = 3 Where l.day = 2"),
       }) {
    const std::string sql = translated("Select l.id, p.q From Line l Left Join " + std::string(sumsOfParts) + rest);
    EXPECT_THAT(sql, Not(HasSubstr(restriction))) << rest;
  }
}

// The order that rows get which are stored: by the numbers that an identity would count.
TEST_F(JoinedGroups, AreStoredInTheOrderOfTheirLines) {
  connection_->execute("Create Table Stored (id int, name nvarchar(10), item int)");
  const std::string list =
      "Select l.id, x.name, p.item From Line l Left Join Place x On x.id = l.place Left Join "
      "Part p On p.line = l.id Where l.day > 1 ";
  const std::string order = "Order By IsNull(l.bak, l.id) Desc, l.day";
  EXPECT_THAT(translated("Insert Into Stored " + list + order), HasSubstr("CROSS JOIN main.\"Line\" AS \"l\" ON"));
  connection_->execute("Insert Into Stored " + list + order);
  // Read, the query is ordered by SQLite itself, row by row.
  EXPECT_THAT(rowsOf(*connection_, "Select * From Stored"), ElementsAreArray(rowsOf(*connection_, list + order)));
}

TEST_F(JoinedGroups, AreOrderedRowByRowWhereTheOrderIsNotThatOfLines) {
  connection_->execute("Create Table Stored (id int, item int)");
  for (const char* rest :
       {"Left Join Part p On p.line = l.id Order By p.item", "Join Part p On p.line = l.id Order By l.id",
        "Left Join Part p On p.line = l.id Order By 2", "Order By l.day"}) {
    const bool alone = std::string_view(rest).starts_with("Order");
    const std::string query =
        std::string("Insert Into Stored Select l.id, ") + (alone ? "l.day" : "p.item") + " From Line l " + rest;
    EXPECT_THAT(translated(query), Not(HasSubstr("CROSS JOIN"))) << rest;
  }
}

// Lines of many columns, whose rows are put together of stored ones.
class CopiedLines : public ::testing::Test {
 protected:
  CopiedLines() {
    std::string columns;
    for (int i = 0; i < columnCount; ++i)
      columns += "c" + std::to_string(i) + " int, ";
    for (const char* table : {"Line", "Stored"})
      connection_->execute("Create Table " + std::string(table) + " (" + columns + "f float)");
    connection_->execute("Insert Into Line (c0, c1, f) Values (1, 1, 2.5)");
  }

  static constexpr int columnCount = 14;
  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
};

// SQLite makes a key of one column of whole numbers, whatever they stand for, the number of its rows, which is not among
// what it stores of them.
TEST_F(CopiedLines, HaveTheKeysOfDatesAndDecimals) {
  std::string list;
  for (int i = 0; i < columnCount; ++i)
    list += ", c" + std::to_string(i);
  for (const auto& [type, key] : {std::pair("decimal(10,0)", "7"), std::pair("money", "7.0000"),
                                  std::pair("datetime", "2020-01-02 00:00:00.000")}) {
    connection_->execute("Create Table Keyed (id " + std::string(type) + " Primary Key, n int" +
                         std::string(" Default 3, ") + "c0 int, c1 int, c2 int, c3 int, c4 int, c5 int, c6 int, " +
                         "c7 int, c8 int, c9 int, c10 int, c11 int, c12 int, c13 int)");
    std::string insert = "Insert Into Keyed (id, n";
    insert.append(list).append(") Select '").append(key).append("', 5").append(list).append(" From Line");
    connection_->execute(insert);
    EXPECT_THAT([&] { connection_->execute(insert); }, ::testing::Throws<SqlError>()) << type;
    EXPECT_THAT(rowsOf(*connection_, "Select id, n, c1 From Keyed"), ElementsAre(std::string(key) + "|5|1|"));
    connection_->execute("Select * Into Copy From Keyed");
    EXPECT_THAT(rowsOf(*connection_, "Select id, n, c1 From Copy"), ElementsAre(std::string(key) + "|5|1|"));
    // SQLite would make a number of it.
    EXPECT_THAT([&] { connection_->execute("Insert Into Keyed (n) Values (1)"); }, ::testing::Throws<SqlError>())
        << type;
    EXPECT_THAT([&] { connection_->execute("Update Keyed Set id = null"); }, ::testing::Throws<SqlError>()) << type;
    connection_->execute("Drop Table Keyed Drop Table Copy");
  }
}

}  // namespace
}  // namespace quillon::tsql
