// Rows put together of the records of others are those that SQLite's own statement makes: into a table without an index
// they are composed, into one with an index SQLite stores them, of the same query.
#include "workbench/tsql/engine/composed_rows.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

using ::testing::IsEmpty;
using ::testing::Not;

// Which road a statement takes: SQLite counts the rows that its own statements change, and no others.
enum class Road { composed, sqlite };
// Whether the rows are stored in the same order, where the statement gives none.
enum class Order { same, any };

// The type and the value, a floating-point number to the bit.
std::string valueOf(sqlite3_stmt* row, int column) {
  const int type = sqlite3_column_type(row, column);
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
  const std::string text(bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
  const bool isReal = type == SQLITE_FLOAT;
  return std::to_string(type) + ':' + text +
         (isReal ? ' ' + std::to_string(std::bit_cast<std::uint64_t>(sqlite3_column_double(row, column))) : "");
}

class ComposedRows : public ::testing::Test {
 protected:
  static constexpr int lineCount = 240;
  // Columns of Line that are copied as they are, and how a target declares all of its columns.
  static constexpr const char* copied = "l.id, l.place, l.kind, l.a, l.b, l.c, l.d, l.e, l.f, l.g, l.h, l.i, l.j, l.k";
  static constexpr const char* lineColumns =
      "id int, place nvarchar(10), kind int, a nvarchar(10), b int, c decimal(18,2), d decimal(30,4), e float, f datetime, "
      "g money, h bit, i varchar(20), j bigint, k nvarchar(200)";
  static constexpr const char* targetColumns = ", name nvarchar(40), n int, x decimal(30,6), y float)";

  ComposedRows() {
    connection_->execute(
        std::string("Create Table Line (") + lineColumns +
        ", rank int);"
        "Create Table Place (code nvarchar(10) not null, name nvarchar(20), grp int, wide decimal(30,4), "
        "share float, Primary Key (code));"
        "Create Table Grp (id int not null, name nvarchar(20), parent int, ratio float, Primary Key (id));"
        "Create Table Pair (x nvarchar(10) not null, y int not null, name nvarchar(20), q int, "
        "Primary Key (x, y));"
        "Create Table Loose (code nvarchar(10), name nvarchar(20), n int)");
    fillLines();
    connection_->execute(
        "Insert Into Place Values (N'a', N'first', 1, 12345678901234567890.1234, 0.5);"
        "Insert Into Place Values (N'b', null, 3, -2, -0.25); Insert Into Place Values (N'zz', N'', null, null, null);"
        "Insert Into Place Values (N'c c', N'Third place', 9, 0, 2);"
        "Insert Into Grp Values (0, N'nil', 0, 0); Insert Into Grp Values (1, N'one', 3, 1.5);"
        "Insert Into Grp Values (2, null, null, null); Insert Into Grp Values (3, N'three', 2, -4);"
        "Insert Into Grp Values (5, N'five', 5, 1e300);"
        "Insert Into Pair Values (N'A', 0, N'a and nil', 10); Insert Into Pair Values (N'a', 1, N'a and one', 11);"
        "Insert Into Pair Values (N'b', 1, N'b and one', 12); Insert Into Pair Values (N'', 2, null, 13);"
        "Insert Into Loose Values (N'a', N'loose a', 7); Insert Into Loose Values (N'b', null, 8);"
        "Insert Into Loose Values (null, N'nobody', 9); Insert Into Loose Values (N'zz', N'loose z', null)");
  }

  void fillLines() {
    const std::vector<std::string> texts = {"null", "N'a'",  "N'A '", "N'\xEF\xBC\xA1'", "N'b'",
                                            "N''",  "N' a'", "N'zZ'", "N'c c'",          "N'\xEF\xBD\x82  '"};
    const std::vector<std::string> exact = {"null", "0", "1", "-1", "127.25", "-128.5", "32768", "99999999.99"};
    std::mt19937 random(23);
    const auto one = [&](const std::vector<std::string>& of) { return of[random() % of.size()]; };
    const auto number = [&](int below) {
      return random() % 6 == 0 ? "null" : std::to_string(static_cast<int>(random() % static_cast<unsigned>(below)));
    };
    for (int id = 0; id < lineCount; ++id) {
      std::string row = std::to_string(id);
      for (const std::string& value :
           {one(texts), number(7), one(texts), number(3), one(exact),
            one({"null", "12345678901234567890.5", "-12345678901234567890.5", "0", "7.25"}),
            one({"null", "0", "0.5", "-3", "1e20", "7"}), one({"null", "'2024-02-29'", "'1900-01-01 12:30'"}),
            one(exact), one({"null", "0", "1"}), one({"null", "'plain'", "''", "'x  '"}),
            one({"null", "0", "9223372036854775807", "-5000000000"}),
            id % 50 == 0 ? "N'" + std::string(200, 'k') + "'" : one(texts), std::to_string(id * 77 % lineCount)})
        row += ", " + value;
      connection_->execute("Insert Into Line Values (" + row + ")");
    }
  }

  // Two tables of the same columns, of which the second has an index.
  void makeTargets(const std::string& columns) {
    connection_->execute("Create Table Made (" + columns);
    connection_->execute("Create Table Stored (" + columns + "; Create Index ix On Stored (id)");
  }
  void makeTargets() { makeTargets(std::string(lineColumns) + targetColumns); }
  void dropTargets() { connection_->execute("Drop Table Made; Drop Table Stored"); }

  // The statement with the table's name for TARGET.
  static std::string named(std::string statement, const std::string& table) {
    const std::string target = "TARGET";
    for (std::size_t at = statement.find(target); at != std::string::npos; at = statement.find(target, at))
      statement.replace(at, target.size(), table);
    return statement;
  }
  void executeOnBoth(const std::string& statement) {
    connection_->execute(named(statement, "Made"));
    connection_->execute(named(statement, "Stored"));
  }

  // The road that the statement took.
  Road road(const std::string& statement) {
    const sqlite3_int64 before = sqlite3_total_changes64(connection_->handle());
    const std::int64_t affected = connection_->execute(statement);
    const sqlite3_int64 changed = sqlite3_total_changes64(connection_->handle()) - before;
    EXPECT_TRUE(changed == 0 || changed >= affected) << statement;
    EXPECT_GT(affected, 0) << "no row, which says nothing: " << statement;
    affected_ = affected;
    return changed == 0 ? Road::composed : Road::sqlite;
  }

  // All rows as they lie in SQLite, in the order of their numbers, and with these where the order matters.
  std::vector<std::string> stored(const std::string& table, Order order = Order::same) {
    std::vector<std::string> rows;
    Prepared all(connection_->handle(), std::string("SELECT ") + (order == Order::same ? "rowid, " : "") + "* FROM " +
                                            table + " ORDER BY rowid");
    while (all.step()) {
      std::string& row = rows.emplace_back();
      for (int i = 0; i < sqlite3_column_count(all.handle()); ++i)
        row += valueOf(all.handle(), i) + '|';
    }
    return rows;
  }
  std::string integrity() {
    Prepared check(connection_->handle(), "PRAGMA integrity_check");
    return check.step() ? check.text(0) : "";
  }

  void expectSameRows(const std::string& what, Order order = Order::same) {
    std::vector<std::string> made = stored("main.Made", order);
    std::vector<std::string> expected = stored("main.Stored", order);
    if (order == Order::any) {
      std::ranges::sort(made);
      std::ranges::sort(expected);
    }
    EXPECT_EQ(made.size(), expected.size()) << what;
    const auto different = std::ranges::mismatch(made, expected);
    if (different.in1 != made.end() && different.in2 != expected.end())
      ADD_FAILURE() << what << "\ncomposed " << *different.in1 << "\nby SQL   " << *different.in2;
    EXPECT_EQ(integrity(), "ok") << what;
  }
  // `query` behind Insert Into and the table's name.
  void expectSame(const std::string& query, Road expected = Road::composed, Order order = Order::same) {
    makeTargets();
    const Road taken = road("Insert Into Made " + query);
    const std::int64_t made = affected_;
    EXPECT_TRUE(taken == expected) << query;
    EXPECT_TRUE(road("Insert Into Stored " + query) == Road::sqlite) << query;
    EXPECT_EQ(made, affected_) << query;
    expectSameRows(query, order);
    dropTargets();
  }
  // Behind the copied columns, the items for name, n, x and y.
  static std::string lines(const std::string& items, const std::string& rest) {
    return std::string("Select ") + copied + ", " + items + " From Line l " + rest;
  }

  int errorOf(const std::string& statement) {
    try {
      connection_->execute(statement);
    } catch (const SqlError& error) {
      return error.number();
    }
    return 0;
  }

  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
  std::int64_t affected_ = 0;
};

TEST_F(ComposedRows, OfOneTableAreTheSame) {
  expectSame(lines("Null, Null, Null, Null", ""));
  expectSame(lines("l.a, l.kind, l.b, l.e", "Where l.b > 0 Or l.a Is Null"));
  expectSame(lines("N'constant', 5, 1.5, 2", "Where l.id <> 7"));
}

TEST_F(ComposedRows, WithMastersByOneKeyAreTheSame) {
  expectSame(lines("p.name, p.grp, Null, p.share", "Left Join Place p On p.code = l.place"));
  expectSame(lines("p.name, p.grp, p.wide, p.grp", "Left Join Place p On p.code = l.place"));
  expectSame(lines("g.name, g.parent, Null, g.ratio", "Left Join Grp g On g.id = l.kind"));
  expectSame(lines("Grp.name, Grp.id, Null, Null", "Left Join Grp On l.kind = Grp.id"));
  expectSame(lines("P.Name, g.parent, Null, G.RATIO",
                   "Left Join Place p On p.code = l.place Left Join Grp g On g.id = l.kind"));
  expectSame(lines("p.name, o.grp, Null, o.share",
                   "Left Join Place p On p.code = l.place Left Join Place o On o.code = l.a Where l.id > 3"));
}

TEST_F(ComposedRows, WithMastersThatNobodyAsksForAreTheSame) {
  expectSame(lines("Null, 1, Null, Null", "Left Join Place p On p.code = l.place"));
  expectSame(lines("g.name, 1, Null, Null", "Left Join Place p On p.code = l.place Left Join Grp g On g.id = l.kind"));
  // Several match.
  expectSame(lines("Null, 1, Null, Null", "Left Join Loose o On o.n > l.kind"));
  expectSame(lines("Null, 1, Null, Null", "Left Join Pair q On q.x = l.a"));
}

// An equality of two columns of the master, or with more of its columns, does not make it one row.
TEST_F(ComposedRows, WithMastersWhoseKeyDependsOnThemselvesAreTheSame) {
  expectSame(lines("Null, 1, Null, Null", "Left Join Grp g On g.id = g.parent And l.h = 1"));
  expectSame(lines("Null, 1, Null, Null", "Left Join Grp g On g.id = Case When l.h = 1 Then g.parent Else g.id End"));
  expectSame(lines("g.name, 1, Null, Null", "Left Join Grp g On g.id = g.parent And l.h = 1"), Road::sqlite);
}

TEST_F(ComposedRows, WithMastersBySeveralKeysAreTheSame) {
  expectSame(lines("q.name, q.q, Null, Null", "Left Join Pair q On q.x = l.a And q.y = l.b"));
  expectSame(lines("q.name, q.q, Null, Null", "Left Join Pair q On q.y = l.b And l.a = q.x Where l.c Is Not Null"));
  expectSame(lines("q.name, q.q, Null, Null", "Left Join Pair q On q.x = l.a And q.y = 1"));
}

TEST_F(ComposedRows, WithMastersOfMastersAreTheSame) {
  expectSame(
      lines("p.name, g.parent, Null, Null", "Left Join Place p On p.code = l.place Left Join Grp g On g.id = p.grp"));
  expectSame(lines(
      "h.name, g.parent, Null, Null",
      "Left Join Place p On p.code = l.place Left Join Grp g On g.id = p.grp Left Join Grp h On h.id = g.parent"));
  expectSame(lines("q.name, g.parent, Null, Null",
                   "Left Join Grp g On g.id = l.kind Left Join Pair q On q.x = l.a And q.y = g.parent"));
  expectSame(
      lines("g.name, p.grp, Null, Null",
            "Left Join Place p On p.code = l.place Left Join Grp g On g.id = Case When p.grp Is Null Then l.kind "
            "Else p.grp End"));
  expectSame(lines("g.name, g.id, Null, Null",
                   "Left Join Place p On p.code = l.place Left Join Grp g On g.id = IsNull(p.grp, l.kind)"));
}

TEST_F(ComposedRows, WithConditionsOnMastersAreTheSame) {
  expectSame(lines("g.name, g.parent, Null, Null", "Left Join Grp g On g.id = l.kind And g.parent > 2"));
  expectSame(
      lines("g.name, g.parent, Null, Null", "Left Join Grp g On g.id = l.kind And g.name Is Not Null And l.h = 1"));
  expectSame(lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = l.place And p.name Like N'%i%'"));
  expectSame(lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = l.place And p.name In (N'FIRST', N'')"));
  expectSame(lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = l.place And 1 = 0"));
}

TEST_F(ComposedRows, WithMastersByLikeAreTheSame) {
  connection_->execute("Delete Loose Where code Is Null");
  // One matches at most; an empty text is like all of them.
  expectSame(lines("o.name, o.n, Null, Null", "Left Join Loose o On l.a Like o.code + N'%'"));
  expectSame(lines("o.name, o.n, Null, Null", "Left Join Loose o On o.code Like l.a + N'%' And l.a > N''"));
  expectSame(lines("o.name, o.n, Null, Null", "Left Join Loose o On o.code Like l.a + N'%'"), Road::sqlite);
}

TEST_F(ComposedRows, WithMastersInWhereAndOrderAreTheSame) {
  const std::string from = "Left Join Place p On p.code = l.place Left Join Grp g On g.id = l.kind ";
  expectSame(lines("p.name, g.parent, Null, p.share", from + "Where p.grp = 1"));
  expectSame(lines("p.name, g.parent, Null, p.share", from + "Where g.name = N'ONE' Or g.id Is Null"));
  expectSame(lines("p.name, g.parent, Null, p.share", from + "Order By g.name Desc, l.rank Desc"));
  expectSame(lines("p.name, g.parent, Null, p.share", from + "Order By IsNull(g.id, l.b), l.rank"));
  expectSame(lines("p.name, g.parent, Null, p.share", from + "Where l.h = 1 Order By l.rank"));
  expectSame(
      lines("p.name, g.parent, Null, p.share", from + "Where g.parent > 2 Order By IsNull(l.b, l.id) Desc, l.rank"));
  // By a column that is stored.
  expectSame(lines("p.name, g.parent, Null, p.share", from + "Order By p.name Desc, l.id Desc"), Road::sqlite);
  expectSame(lines("p.name, g.parent, Null, p.share", from + "Order By l.place, l.id"), Road::sqlite);
}

TEST_F(ComposedRows, WithMastersWithoutAKeyAreTheSame) {
  const std::string list = lines("o.name, o.n, Null, Null", "Left Join Loose o On o.code = l.place");
  expectSame(list);
  // The second row of one of its values.
  connection_->execute("Insert Into Loose Values (N'A', N'again', 70)");
  expectSame(list, Road::sqlite);
  connection_->execute("Delete Loose Where n = 70");
  expectSame(list);
}

TEST_F(ComposedRows, WithALargeMasterWithoutAKeyAreLeftToSqlite) {
  const std::string list = lines("o.name, o.n, Null, Null", "Left Join Loose o On o.code = l.place");
  for (int i = 4; i < 200; ++i)
    connection_->execute("Insert Into Loose Values (N'x" + std::to_string(i) + "', N'', 0)");
  expectSame(list);
  connection_->execute("Insert Into Loose Values (N'more', N'', 0)");
  expectSame(list, Road::sqlite);
}

TEST_F(ComposedRows, WithItemsOfMastersThatMatchNothingAreTheSame) {
  const std::string from = "Left Join Place p On p.code = l.place";
  expectSame(lines("IsNull(p.name, N'none'), IsNull(p.grp, -1), Null, IsNull(p.share, 0.5)", from));
  expectSame(
      lines("Case When p.code Is Null Then N'new' Else p.name End, Case p.grp When 1 Then 10 When 3 Then 30 End, "
            "Null, Case When p.share > 0 Then p.share End",
            from));
  expectSame(lines("IsNull(p.name, l.a), IsNull(l.kind, p.grp), Null, Null", from));
  expectSame(lines("p.name + N'!', p.grp + 1, p.grp, p.grp", from));
}

TEST_F(ComposedRows, WithValuesOfOtherTypesAreTheSame) {
  expectSame(lines("l.i, l.h, l.b, l.b", ""));
  expectSame(lines("l.a, l.kind, l.c, l.c", ""));
  expectSame(lines("l.i, l.b, l.g, l.g", ""));
  expectSame(lines("l.id, l.id, l.kind, l.j", ""));
  expectSame(lines("Null, Null, Null, l.e * -1", ""));
  expectSame(lines("Null, Null, Null, -l.e", "Where l.e = 0"));
  expectSame(lines("Null, Null, Null, l.e / 2", ""));
}

// The same where the target's columns are of other types than those that are copied.
TEST_F(ComposedRows, IntoColumnsOfOtherTypesAreTheSame) {
  const std::string query = std::string("Select ") + copied + ", l.a, l.b, l.c, l.e From Line l";
  const std::string types =
      "id bigint, place varchar(30), kind decimal(9,2), a nvarchar(100), b float, c decimal(38,6), d decimal(38,4), e "
      "float, f datetime, g decimal(30,4), h int, i nvarchar(20), j decimal(25,0), k nvarchar(4000)";
  makeTargets(types + targetColumns);
  connection_->execute("Insert Into Made " + query);
  connection_->execute("Insert Into Stored " + query);
  expectSameRows(query);
  EXPECT_THAT(stored("main.Made"), Not(IsEmpty()));
}

TEST_F(ComposedRows, WithColumnsLeftOutAreTheSame) {
  makeTargets();
  for (const std::string& table : {std::string("Made"), std::string("Stored")}) {
    EXPECT_EQ(
        road("Insert Into " + table +
             " (y, name, k, j, i, h, g, f, e, d, c, b, a, id) Select p.share, p.name, l.k, l.j, l.i, l.h, l.g, l.f, "
             "l.e, l.d, l.c, l.b, l.a, l.id From Line l Left Join Place p On p.code = l.place"),
        table == "Made" ? Road::composed : Road::sqlite);
  }
  expectSameRows("with columns left out");
}

TEST_F(ComposedRows, WithDefaultsAndCountersAreTheSame) {
  makeTargets(std::string(lineColumns) + ", name nvarchar(40) default N'given', n int identity(5,1))");
  executeOnBoth(std::string("Insert Into TARGET (id, place, kind, a, b, c, d, e, f, g, h, i, j, k) Select ") + copied +
                " From Line l Where l.b = 1");
  expectSameRows("with an identity");
}

TEST_F(ComposedRows, OfSeveralTablesAreTheSame) {
  connection_->execute(
      "Create Table Other (id int identity(1,1), o1 nvarchar(10), o2 int, o3 decimal(20,6), o4 float, o5 int);"
      "Insert Into Other Select place, kind, c, e, b From Line Where id < 12");
  const std::string list = std::string("Select ") + copied + ", o.o1, o.o2, o.o3, o.o4 From ";
  expectSame(list + "Line l Inner Join Other o On o.o2 = l.kind", Road::composed, Order::any);
  expectSame(list + "Line l Inner Join Other o On o.o2 = l.kind Order By l.rank, o.o5 + o.id");
  // Several match.
  expectSame(list + "Line l Left Join Other o On o.o2 = l.kind And l.h = 1", Road::sqlite);
  expectSame(list + "Line l Right Join Other o On o.o2 = l.kind And l.h = 1", Road::composed, Order::any);
  expectSame(list + "Line l Full Join Other o On o.o5 = l.kind And l.id < 20", Road::composed, Order::any);
  expectSame(list + "Line l, Other o Where l.id < 5", Road::composed, Order::any);
  expectSame(std::string("Select ") + copied +
             ", g.name, o.id, o.o3, o.o4 From Line l Left Join Other o On o.id = l.kind "
             "Left Join Grp g On g.id = o.o2");
  // Which is looked up by a column of a table whose row may be missing.
  expectSame(
      "Select l.id, l.place, l.kind, l.a, l.b, l.c, l.d, o.o4, l.f, l.g, l.h, l.i, l.j, l.k, o.o1, g.parent, o.o3, "
      "o.o4 From Line l Left Join Other o On o.id = l.kind Left Join Grp g On g.id = o.o2 Where o.o5 > 0 Or o.id Is "
      "Null");
}

TEST_F(ComposedRows, OfTheFirstAndOfDistinctRowsAreTheSame) {
  const std::string from = "Left Join Place p On p.code = l.place Order By l.rank Desc";
  expectSame("Select Top 17 " + lines("p.name, p.grp, Null, Null", from).substr(7));
  expectSame("Select Top 1 " + lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = l.place").substr(7));
  expectSame("Select Distinct " + lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = l.place").substr(7),
             Road::sqlite);
}

TEST_F(ComposedRows, OfQueriesPutTogetherAreTheSame) {
  const std::string one = lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = l.place Where l.b = 1");
  expectSame(one + " Union All " + lines("l.a, l.kind, Null, Null", "Where l.b = 2"), Road::sqlite);
  expectSame(lines("p.name, p.grp, Null, Null",
                   "Left Join Place p On p.code = l.place Where l.kind In (Select id From Grp Where parent > 2)"));
  expectSame(lines("p.name, p.grp, Null, Null",
                   "Left Join Place p On p.code = l.place Where Exists (Select 1 From Grp g Where g.id = l.kind)"));
  expectSame(lines("(Select Max(name) From Grp g Where g.id = l.kind), l.b, Null, Null", ""));
}

// Of an index that has all that a composition asks for, SQLite would read the rows in another order.
TEST_F(ComposedRows, OfATableWithIndexesComeInTheSameOrder) {
  connection_->execute(
      "Create Index ixk On Line (kind); Create Index ixr On Line (rank); Create Index ixb On Line (b, kind, place)");
  for (const char* const rest : {"Where l.kind = 3", "Where l.kind > 2 And l.b = 1", "Where l.b = 1",
                                 "Where l.rank < 50", "Where l.kind = 1 Or l.b = 2", "Order By l.rank",
                                 "Where l.b > 0 Order By l.rank Desc", "Where l.b In (0, 2) And l.kind In (1, 4)",
                                 "Where l.kind = 3 Order By IsNull(l.b, 9)", "Where l.kind Is Null"}) {
    expectSame(lines("Null, 1, Null, Null", rest));
    expectSame(lines("g.name, p.grp, Null, Null",
                     std::string("Left Join Place p On p.code = l.place Left Join Grp g On g.id = p.grp ") + rest));
  }
}

TEST_F(ComposedRows, WithJoinsThatMultiplyTheRowsAreTheSame) {
  const std::string place = "Left Join Place p On p.code = l.place ";
  expectSame(lines("g.name, g.parent, Null, Null", "Inner Join Grp g On g.id = l.kind Order By l.rank"));
  expectSame(lines("Null, 3, Null, Null", place + "Left Join Pair q On q.x = p.code"));
  expectSame(lines("Null, p.grp, Null, Null", place + "Left Join Pair q On q.x = p.code"), Road::sqlite);
  expectSame(lines("Null, 3, Null, Null", place + "Left Join Grp g On g.id = g.parent And p.grp = 1"));
  expectSame(lines("Null, 3, Null, Null", "Left Join Pair q On q.x = l.a And q.y = q.q - 10"));
  expectSame(lines("Null, 3, Null, Null", "Left Join Pair q On q.x = q.name Or q.y = l.b"));
  expectSame(lines("Null, 3, Null, Null", "Left Join Place p On p.code = p.name Left Join Grp g On g.id = l.kind"));
  expectSame(lines("p.name, 3, Null, Null", "Left Join Place p On p.code = N'a'"));
}

TEST_F(ComposedRows, WithViewsNamesAndQueriesOfAllKindsAreTheSame) {
  connection_->execute("Create View Places As Select code, name, grp From Place Where grp > 0");
  expectSame(
      lines("v.name, g.parent, Null, Null", "Left Join Places v On v.code = l.place Left Join Grp g On g.id = v.grp"));
  expectSame(lines("[odd \"p].name, 3, Null, Null", "Left Join Place [odd \"p] On [odd \"p].code = l.place"));
  const std::string place = "Left Join Place p On p.code = l.place ";
  expectSame(lines("p.name, p.grp, Null, Null", place + "Where Not Exists (Select 1 From Pair q Where q.x = p.code)"));
  expectSame(lines("p.name, p.grp, Null, Null",
                   place + "Where l.kind Not In (Select grp From Place p Where grp Is Not Null)"));
  expectSame(lines("Left(p.name, 2), Case When Exists (Select 1 From Pair q Where q.x = p.code) Then 1 End, Null, Null",
                   place));
  expectSame(lines("p.name, Len(p.name), Null, Null", place));
}

TEST_F(ComposedRows, MakeTheSameNewTable) {
  const std::string from =
      " From Line l Left Join Place p On p.code = l.place Left Join Grp g On g.id = p.grp Order By l.rank";
  const std::string items =
      std::string("Select ") + copied + ", p.name, IsNull(g.name, N'') gname, p.wide, l.e * 2 twice";
  const sqlite3_int64 before = sqlite3_total_changes64(connection_->handle());
  EXPECT_EQ(connection_->execute(items + " Into Made" + from), lineCount);
  EXPECT_LT(sqlite3_total_changes64(connection_->handle()) - before, 10) << "the rows were not composed";
  connection_->execute("Select Top 0 * Into Stored From Made; Create Index ix On Stored (id)");
  EXPECT_TRUE(road("Insert Into Stored " + items + from) == Road::sqlite);
  expectSameRows("Select Into");
}

// A whole number of a floating-point column lies in its record as an integer.
TEST_F(ComposedRows, WithMastersByFloatingPointKeysAreTheSame) {
  connection_->execute(
      "Create Table Ratio (f float not null, name nvarchar(20), n int, Primary Key (f));"
      "Insert Into Ratio Values (3.5, N'half of seven', 1); Insert Into Ratio Values (3, N'three', 2);"
      "Insert Into Ratio Values (0, N'zero', 3); Insert Into Ratio Values (-3, N'below', 4);"
      "Insert Into Ratio Values (7, N'seven', 5); Insert Into Ratio Values (0.25, N'quarter', 6);"
      "Insert Into Ratio Values (-1.5, N'half of three', 7)");
  for (const char* const on : {"r.f = l.e", "r.f = l.e / 2", "r.f = l.e * 1", "r.f = -l.e", "r.f = l.kind",
                               "r.f = l.kind / 2", "r.f = l.c", "r.f = IsNull(l.e, l.kind)"})
    expectSame(lines("r.name, r.n, Null, r.f", std::string("Left Join Ratio r On ") + on));
}

TEST_F(ComposedRows, WithMastersByKeysOfOtherKindsAreTheSame) {
  connection_->execute(
      "Create Table Price (d decimal(18,2) not null, name nvarchar(20), n int, Primary Key (d));"
      "Insert Into Price Values (1, N'one', 1); Insert Into Price Values (127.25, N'more', 2);"
      "Insert Into Price Values (0, N'nothing', 3); Insert Into Price Values (-1, N'less', 4);"
      "Create Table Wide (d decimal(30,4) not null, name nvarchar(20), n int, Primary Key (d));"
      "Insert Into Wide Values (12345678901234567890.5, N'wide', 1); Insert Into Wide Values (7.25, N'narrow', 2);"
      "Create Table Day (f datetime not null, name nvarchar(20), n int, Primary Key (f));"
      "Insert Into Day Values ('2024-02-29', N'leap', 1)");
  for (const char* const on : {"r.d = l.c", "r.d = l.b", "r.d = l.g", "r.d = l.h", "r.d = l.c + 1"})
    expectSame(lines("r.name, r.n, Null, Null", std::string("Left Join Price r On ") + on));
  expectSame(lines("r.name, r.n, r.d, Null", "Left Join Wide r On r.d = l.d"));
  expectSame(lines("r.name, r.n, Null, Null", "Left Join Day r On r.f = l.f"));
  expectSame(lines("g.name, g.parent, Null, Null", "Left Join Grp g On g.id = l.h"));
  expectSame(lines("g.name, g.parent, Null, Null", "Left Join Grp g On g.id = l.j"));
  expectSame(lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = l.i"));
  expectSame(lines("p.name, p.grp, Null, Null", "Left Join Place p On p.code = IsNull(l.place, l.a)"));
}

TEST_F(ComposedRows, WithDerivedTablesAmongTheJoinsAreTheSame) {
  expectSame(lines("p.name, d.total, Null, Null",
                   "Left Join (Select place, Count(*) total From Line Group By place) d On d.place = l.place Left Join "
                   "Place p On p.code = d.place"));
  expectSame(lines("g.name, d.total, Null, Null",
                   "Left Join (Select place, Count(*) total, Max(kind) most From Line Group By place) d On d.place = "
                   "l.place Left Join Grp g On g.id = d.most"));
  expectSame(lines("p.name, (Select Top 1 p.grp From Place p Where p.grp = 3), Null, Null",
                   "Left Join Place p On p.code = l.place"));
  expectSame(lines("p.name, (Select Max(g.parent) From Grp g Where g.id = p.grp), Null, Null",
                   "Left Join Place p On p.code = l.place"));
}

// The key is the row's number, which is not in its record.
TEST_F(ComposedRows, OfTablesWhoseKeyIsTheNumberAreTheSame) {
  connection_->execute(std::string("Create Table Keyed (") + lineColumns + ", rank int not null, Primary Key (rank));");
  connection_->execute("Insert Into Keyed Select * From Line Where id > 5");
  const auto keyed = [](const std::string& items, const std::string& rest) {
    return std::string("Select ") + copied + ", " + items + " From Keyed l " + rest;
  };
  expectSame(keyed("Null, l.rank, Null, l.rank", ""));
  expectSame(keyed("g.name, l.rank, Null, g.ratio", "Left Join Grp g On g.id = l.rank"));
  expectSame(keyed("k.name, o.rank, Null, o.e", "Left Join Keyed o On o.rank = l.id Left Join Grp k On k.id = o.kind"));
  expectSame(lines("o.a, o.rank, o.c, o.e", "Left Join Keyed o On o.rank = l.id + 3"));
}

TEST_F(ComposedRows, OfLongTextsAreTheSame) {
  connection_->execute("Create Table Texts (id int not null, t nvarchar(4000), u nvarchar(4000), Primary Key (id))");
  for (int id = 0; id < 7; ++id) {
    std::string text;
    for (int i = 0; i < id * 600; ++i)
      text += i % 2 == 0 ? "\xE5\x85\xA8" : "x";
    connection_->execute("Insert Into Texts Values (" + std::to_string(id) + ", N'" + text + "', " +
                         (id == 3 ? "null" : "N'" + text.substr(0, text.size() / 4 * 4 / 2 / 4 * 4) + "'") + ")");
  }
  const std::string columns =
      std::string(lineColumns) + ", name nvarchar(4000), n int, x nvarchar(4000), y nvarchar(4000))";
  makeTargets(columns);
  const std::string query = lines("s.t, s.id, s.u, s.t", "Left Join Texts s On s.id = l.kind");
  EXPECT_TRUE(road("Insert Into Made " + query) == Road::composed);
  connection_->execute("Insert Into Stored " + query);
  expectSameRows("of look-ups");
  executeOnBoth("Insert Into TARGET Select * From TARGET Where n > 2");
  executeOnBoth("Insert Into TARGET Select * From TARGET");
  expectSameRows("of rows on several pages");
}

TEST_F(ComposedRows, GoOnWithAnIndexThatComesAndGoes) {
  makeTargets();
  connection_->execute("Drop Index ix On Stored");
  const std::string query = lines("p.name, 1, Null, Null", "Left Join Place p On p.code = l.place Where l.b = 1");
  for (const char* const table : {"Made", "Stored"}) {
    const std::string insert = named("Insert Into TARGET " + query, table);
    EXPECT_TRUE(road(insert) == Road::composed);
    connection_->execute(named("Create Index later On TARGET (id)", table));
    EXPECT_TRUE(road(insert) == Road::sqlite);
    connection_->execute(named("Drop Index later On TARGET", table));
    EXPECT_TRUE(road(insert) == Road::composed);
  }
  expectSameRows(query);
}

TEST_F(ComposedRows, AreAddedWhileTheirTableIsRead) {
  makeTargets();
  const std::string query = lines("Null, 1, Null, Null", "Where l.b = 1");
  connection_->execute("Insert Into Made " + query);
  const std::size_t count = stored("main.Made").size();
  std::size_t read = 0;
  {
    const auto cursor = connection_->query("Select id, k From Made Where id < 1000");
    while (read < count && cursor->next()) {
      if (++read % 20 == 0) {
        EXPECT_TRUE(road("Insert Into Made " + query) == Road::composed);
        EXPECT_EQ(errorOf("Insert Into Made " + lines("l.k, 1, Null, Null", "")), 2628);
      }
    }
  }
  EXPECT_EQ(read, count);
  EXPECT_EQ(stored("main.Made").size(), count * (1 + count / 20));
  EXPECT_EQ(integrity(), "ok");
}

TEST_F(ComposedRows, OfTheTableItselfAreTheSame) {
  for (const char* const rest : {"", " Where h = 1", " Where id > 100 Or b Is Null"}) {
    makeTargets();
    executeOnBoth("Insert Into TARGET " + lines("l.a, l.b, Null, l.e", "Where l.id % 3 = 0"));
    const std::string doubled = std::string("Insert Into TARGET Select * From TARGET") + rest;
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(road(named(doubled, "Made")) == Road::composed) << rest;
      EXPECT_TRUE(road(named(doubled, "Stored")) == Road::sqlite) << rest;
    }
    expectSameRows(rest);
    dropTargets();
  }
}

TEST_F(ComposedRows, ThatDependOnTheTableItselfAreTheSame) {
  makeTargets();
  executeOnBoth("Insert Into TARGET " + lines("l.a, l.b, Null, l.e", "Where l.id % 3 = 0"));
  executeOnBoth("Insert Into TARGET Select * From TARGET Where id >= (Select Max(id) From TARGET) - 20");
  executeOnBoth("Insert Into TARGET " + lines("Null, Null, Null, Null", "Where Not l.id In (Select id From TARGET)"));
  executeOnBoth("Insert Into TARGET Select t.* From TARGET t Inner Join TARGET o On o.id = t.kind");
  executeOnBoth("Insert Into TARGET Select Top 5 * From TARGET Order By id Desc, k");
  executeOnBoth("Insert Into TARGET Select t.* From TARGET t, Grp g Where g.id = t.b");
  expectSameRows("of the table itself");
}

TEST_F(ComposedRows, ThatAreRefusedLeaveNothing) {
  makeTargets(
      "id int not null, place nvarchar(10), kind int, a nvarchar(1), b int, c decimal(5,2), d decimal(30,4), e "
      "float, f datetime, g money, h bit, i varchar(20), j bigint, k nvarchar(200), name nvarchar(40), n int not "
      "null, x decimal(20,6), y float)");
  const std::string fits =
      "Select l.id, l.place, l.kind, N'', l.b, 1, l.d, l.e, l.f, l.g, l.h, l.i, l.j, l.k, l.i, l.id, l.c, l.e From Line l";
  const auto with = [&](const std::string& item, const std::string& by, const std::string& rest = "") {
    std::string query = fits;
    return query.replace(query.find(item), item.size(), by) + rest;
  };
  constexpr int nullRefused = 515, truncated = 2628, overflow = 8115;
  const std::vector<std::pair<std::string, int>> refused = {
      {with("l.id, l.c,", "l.kind, l.c,"), nullRefused},
      {with("Select l.id", "Select l.b"), nullRefused},
      {with("l.id, l.c,", "g.parent, l.c,", " Left Join Grp g On g.id = l.kind"), nullRefused},
      {with("l.id, l.c,", "Null, l.c,"), nullRefused},
      {with("N''", "l.k"), truncated},
      {with("N''", "p.name", " Left Join Place p On p.code = l.place"), truncated},
      {with(" 1,", " l.c,"), overflow},
      {with(" 1,", " l.id * 1000,"), overflow},
      {with("l.kind,", "l.j,"), overflow},
  };
  for (const auto& [query, number] : refused) {
    EXPECT_EQ(errorOf("Insert Into Made " + query), number) << query;
    EXPECT_EQ(errorOf("Insert Into Stored " + query), number) << query;
    EXPECT_THAT(stored("main.Made"), IsEmpty()) << query;
  }
  // The same table takes what fits, before and after a refusal.
  EXPECT_EQ(road("Insert Into Made " + fits), Road::composed);
  EXPECT_EQ(errorOf("Insert Into Made " + refused[0].first), nullRefused);
  EXPECT_EQ(road("Insert Into Made " + fits), Road::composed);
  connection_->execute("Insert Into Stored " + fits);
  connection_->execute("Insert Into Stored " + fits);
  expectSameRows(fits);
}

TEST_F(ComposedRows, WithOtherConstantsAreTheSame) {
  makeTargets();
  const auto withItems = [](int n) {
    return lines((n % 2 == 0 ? "N'even', " : "N'odd', ") + std::to_string(n) + ", Null, p.share",
                 "Left Join Place p On p.code = l.place Where l.b = " + std::to_string(n % 3) + " And l.id > " +
                     std::to_string(n * 10));
  };
  const auto withConditions = [](int n) {
    return lines("p.name, " + std::to_string(n) + ", Null, Null",
                 "Left Join Place p On p.code = l.place And p.grp > " + std::to_string(n));
  };
  for (int n = 0; n < 6; ++n) {
    executeOnBoth("Insert Into TARGET " + withItems(n));
    executeOnBoth("Insert Into TARGET " + withConditions(n));
  }
  expectSameRows("with other constants");
}

// A transaction that is rolled back takes them back, and one of several statements goes on.
TEST_F(ComposedRows, AreTakenBackWithTheirTransaction) {
  makeTargets();
  const std::string query = lines("p.name, p.grp, Null, p.share", "Left Join Place p On p.code = l.place");
  connection_->begin();
  EXPECT_EQ(road("Insert Into Made " + query), Road::composed);
  EXPECT_EQ(stored("main.Made").size(), static_cast<std::size_t>(lineCount));
  connection_->rollback();
  EXPECT_THAT(stored("main.Made"), IsEmpty());
  connection_->begin();
  EXPECT_EQ(road("Insert Into Made " + query), Road::composed);
  connection_->execute("Delete Made Where id > 10; Insert Into Stored Select * From Made");
  EXPECT_EQ(road("Insert Into Made " + query), Road::composed);
  connection_->commit();
  EXPECT_EQ(stored("main.Made").size(), static_cast<std::size_t>(lineCount + 11));
  EXPECT_EQ(integrity(), "ok");
}

TEST_F(ComposedRows, IntoTemporaryTablesAreTheSame) {
  makeTargets();
  const std::string query = lines("p.name, p.grp, Null, p.share", "Left Join Place p On p.code = l.place");
  connection_->execute(std::string("Create Table #Own (") + lineColumns + targetColumns);
  EXPECT_EQ(road("Insert Into #Own " + query), Road::composed);
  EXPECT_EQ(road("Insert Into Made Select * From #Own"), Road::composed);
  connection_->execute("Insert Into Stored " + query);
  expectSameRows(query);
}

// Lines enough that they are updated by their keys.
class ComposedUpdates : public ComposedRows {
 protected:
  ComposedUpdates() {
    makeTargets();
    executeOnBoth("Insert Into TARGET " + lines("N'old', 0, Null, Null", ", Grp g, Grp h"));
  }
  void expectSameUpdate(const std::string& update, Road expected = Road::composed) {
    const Road taken = road(named(update, "Made"));
    const std::int64_t made = affected_;
    EXPECT_EQ(taken, expected) << update;
    EXPECT_EQ(road(named(update, "Stored")), Road::sqlite) << update;
    EXPECT_EQ(made, affected_) << update;
    expectSameRows(update);
  }
};

TEST_F(ComposedUpdates, ByKeysGiveTheSameRows) {
  expectSameUpdate("Update t Set name = p.name, n = p.grp From TARGET t Inner Join Place p On p.code = t.place");
  expectSameUpdate(
      "Update t Set n = g.parent, y = g.ratio, k = g.name From TARGET t Inner Join Grp g On g.id = t.kind");
  expectSameUpdate("Update t Set x = q.q, a = q.x From TARGET t, Pair q Where q.x = t.a And q.y = t.b And t.h = 1");
  expectSameUpdate(
      "Update t Set j = p.grp, e = p.grp, d = p.wide, y = p.share From TARGET t Inner Join Place p On p.code "
      "= t.place Where t.id > 5");
  expectSameUpdate("Update t Set place = N'changed', kind = g.id From TARGET t Inner Join Grp g On g.id = t.kind");
}

TEST_F(ComposedUpdates, ToLongerRowsGiveTheSameRows) {
  connection_->execute("Create Table Texts (id int not null, k nvarchar(200), Primary Key (id))");
  for (int id = 0; id < lineCount; id += 2) {
    connection_->execute("Insert Into Texts Values (" + std::to_string(id) + ", N'" +
                         std::string(static_cast<std::size_t>(id) % 200, 'w') + "')");
  }
  expectSameUpdate("Update t Set k = s.k From TARGET t Inner Join Texts s On s.id = t.id");
  connection_->execute("Update Texts Set k = N'short'");
  expectSameUpdate("Update t Set k = s.k From TARGET t Inner Join Texts s On s.id = t.id Where t.kind = 1");
}

TEST_F(ComposedUpdates, ThatAreRefusedLeaveTheRowsAsTheyWere) {
  const std::vector<std::string> before = stored("main.Made");
  connection_->execute("Insert Into Loose Values (N'c c', N'" + std::string(20, 'l') + "', 1)");
  const std::string tooLong = "Update t Set a = o.name From TARGET t Inner Join Loose o On o.code = t.place";
  const std::string tooLarge =
      "Update t Set kind = o.big From TARGET t Inner Join (Select id, 5000000000 big From Grp) o On o.id = t.kind";
  for (const char* const table : {"Made", "Stored"}) {
    EXPECT_EQ(errorOf(named(tooLong, table)), 2628) << table;
    EXPECT_EQ(errorOf(named(tooLarge, table)), 8115) << table;
  }
  EXPECT_EQ(stored("main.Made"), before);
  EXPECT_EQ(stored("main.Stored"), before);
}

TEST_F(ComposedUpdates, OfATableThatCountsGiveTheSameRows) {
  dropTargets();
  makeTargets("id int identity(1,1), place nvarchar(10), kind int, name nvarchar(40) not null, n int)");
  executeOnBoth(
      "Insert Into TARGET (place, kind, name, n) Select l.place, l.kind, N'old', l.b From Line l, Grp g, Grp h");
  executeOnBoth("Delete TARGET Where id % 7 = 0");
  expectSameUpdate("Update t Set n = p.grp From TARGET t Inner Join Place p On p.code = t.place");
  // SQLite says that the name may not be null.
  const std::string refused = "Update t Set name = p.name From TARGET t Inner Join Place p On p.code = t.place";
  EXPECT_EQ(errorOf(named(refused, "Made")), 515);
  EXPECT_EQ(errorOf(named(refused, "Stored")), 515);
  expectSameUpdate("Update t Set name = IsNull(p.name, N'none') From TARGET t Inner Join Place p On p.code = t.place");
  executeOnBoth("Insert Into TARGET (place, kind, name, n) Values (N'next', 1, N'next', 1)");
  expectSameRows("the next number");
}

TEST_F(ComposedUpdates, WithOtherConstantsGiveTheSameRows) {
  const auto update = [](int n) {
    const std::string number = std::to_string(n);
    return "Update t Set name = g.name, n = " + number +
           " From TARGET t Inner Join Grp g On g.id = t.kind Where t.b = " + std::to_string(n % 3) +
           " And g.parent > " + number;
  };
  for (int n = 0; n < 4; ++n)
    executeOnBoth(update(n));
  expectSameRows("with other constants");
}

// The account, which a report's connection may only read, and its scratch file.
class ComposedInScratch : public ::testing::Test {
 protected:
  ComposedInScratch() { std::filesystem::create_directories(folder_); }
  ~ComposedInScratch() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  const std::filesystem::path folder_ = std::filesystem::temp_directory_path() / "quillon_composed_rows_test";
};

TEST_F(ComposedInScratch, RowsOfTheAccountGoIntoTheScratchFileOnly) {
  std::string columns, list;
  for (int i = 0; i < 14; ++i) {
    columns += (i == 0 ? "c" : ", c") + std::to_string(i) + " int";
    list += (i == 0 ? "" : ", ") + std::to_string(i * 100);
  }
  const std::filesystem::path account = folder_ / "account";
  {
    const auto writer = Connection::open(account, OpenMode::createNew);
    writer->execute("Create Table Line (" + columns + "); Create Table Same (" + columns + ")");
    for (int i = 0; i < 30; ++i)
      writer->execute("Insert Into Line Values (" + list + ")");
  }
  const auto connection = Connection::openWithScratch(account, folder_ / "scratch");
  connection->execute("Create Table Made (" + columns + ")");
  const sqlite3_int64 before = sqlite3_total_changes64(connection->handle());
  EXPECT_EQ(connection->execute("Insert Into Made Select * From Line"), 30);
  EXPECT_EQ(sqlite3_total_changes64(connection->handle()), before);
  const auto rows = connection->query("Select Count(*), Sum(c13) From Made");
  ASSERT_TRUE(rows->next());
  EXPECT_EQ(toText(rows->value(0)), "30");
  EXPECT_EQ(toText(rows->value(1)), "39000");
  try {
    connection->execute("Insert Into Same Select * From Line");
    ADD_FAILURE() << "the account was changed";
  } catch (const SqlError& error) {
    EXPECT_EQ(error.number(), 3906);
  }
  EXPECT_EQ(connection->execute("Insert Into Made Select * From Made"), 30) << "the connection goes on";
}

}  // namespace
}  // namespace quillon::tsql
