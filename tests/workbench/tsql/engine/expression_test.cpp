// Values and types of single expressions, where a careless translation would give something else in silence.
#include <gtest/gtest.h>

#include "workbench/tsql/engine/engine.h"

namespace quillon::tsql {
namespace {

class Expression : public testing::Test {
 protected:
  void run(const std::string& batch) { connection_->execute(batch); }

  // The first column of all rows, joined with blanks, after its type: "int: 1 2"; an error as its number.
  std::string query(const std::string& batch) {
    try {
      const auto cursor = connection_->query(batch);
      std::string result = cursor->columns()[0].type.name() + ':';
      while (cursor->next())
        result += ' ' + toText(cursor->value(0)).value_or("null");
      return result;
    } catch (const SqlError& error) {
      return std::to_string(error.number());
    }
  }
  std::string value(const std::string& expression) { return query("select " + expression + " as x"); }

 private:
  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
};

TEST_F(Expression, LiteralsHaveTheLeastDecimalType) {
  EXPECT_EQ(value("1/3.0"), "decimal(8,6): 0.333333");
  EXPECT_EQ(value("1.0/3"), "decimal(7,6): 0.333333");
  EXPECT_EQ(value("3*1.25"), "decimal(5,2): 3.75");
  EXPECT_EQ(value("10/4"), "int: 2");
  EXPECT_EQ(value("5.5%2"), "decimal(2,1): 1.5");
  EXPECT_EQ(value("2147483648"), "decimal(10,0): 2147483648");
}

TEST_F(Expression, IndexesAreKnownByTableAndName) {
  run("create table t(i int primary key, j int, unique (j)) create index IX_t on t(j) create unique index other on t(i)");
  run("create table orvsystem..t(i int) create index theirs on orvsystem..t(i)");
  run("create table [sqlite_t](i int) create index ix on [sqlite_t](i)");
  run("create table #t(i int) create index passing on #t(i)");
  EXPECT_EQ(query("select name from sysindexes where id = object_id(N'[t]') order by name"),
            "nvarchar(128): IX_t other");
  EXPECT_EQ(query("select name from sysindexes where id = object_id(N't') and name = N'ix_T'"), "nvarchar(128): IX_t");
  EXPECT_EQ(query("select name from orvsystem..sysindexes where id = object_id(N'orvsystem..t')"),
            "nvarchar(128): theirs");
  EXPECT_EQ(query("select name from sysindexes where id = object_id(N'sqlite_t')"), "nvarchar(128): ix");
  EXPECT_EQ(query("select name from tempdb..sysindexes where id = object_id(N'tempdb..#t')"), "nvarchar(128): passing");
}

TEST_F(Expression, AnErrorIsRaisedWithItsText) {
  try {
    run("if 1 = 0 raiserror(N'not this one', 16, 1) raiserror('It isn''t', 16, 1) select 1 as x");
    FAIL() << "no error";
  } catch (const SqlError& error) {
    EXPECT_EQ(error.number(), 50000);
    EXPECT_EQ(error.message(), "It isn't");
  }
  EXPECT_EQ(query("raiserror(N'%d rows', 16, 1, 5)"), "40510");
  EXPECT_EQ(query("raiserror(N'a message', 10, 1)"), "40510");
  EXPECT_EQ(query("raiserror(N'the end', 20, 1)"), "40510");
  EXPECT_EQ(query("raiserror(50001, 16, 1)"), "40510");
}

TEST_F(Expression, IntNeverGrowsBeyondIts32Bits) {
  run("create table t(i int, j int) insert into t values(2147483647, -2147483648)");
  EXPECT_EQ(value("2147483647+1"), "8115");
  EXPECT_EQ(value("1000000*1000000"), "8115");
  EXPECT_EQ(value("-cast(-2147483648 as int)"), "8115");
  EXPECT_EQ(value("abs(cast(-2147483648 as int))"), "8115");
  EXPECT_EQ(value("-2147483648"), "decimal(10,0): -2147483648");
  EXPECT_EQ(query("select i+1 from t"), "8115");
  EXPECT_EQ(query("select -j from t"), "8115");
  EXPECT_EQ(query("select j-1 from t"), "8115");
  EXPECT_EQ(query("select i from t where i+1 > 5"), "8115");
  EXPECT_EQ(query("select j/-1 from t"), "8115");
  EXPECT_EQ(query("select sum(i) from (select i from t union all select 1) x"), "8115");
  EXPECT_EQ(query("select i+j from t"), "int: -1");
}

TEST_F(Expression, RefusesAnAggregateInAConditionAlsoInASubQueryWithoutTables) {
  run("create table t(i int) insert into t values(1)");
  EXPECT_EQ(query("select i from t where max(i) = 1"), "147");
  EXPECT_EQ(query("select i from t where i in (select max(i))"), "147");
  EXPECT_EQ(query("select i from t where i in (select max(i) from t)"), "int: 1");
}

std::string repeated(std::string_view text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i)
    result += text;
  return result;
}

// Whatever depth the parser accepts, binding and execution must not exhaust the stack.
TEST_F(Expression, RunsTheDeepestStatementThatTheParserTakes) {
  run("create table t(i int) insert into t values(1)");
  EXPECT_EQ(value(repeated("(", 240) + "7" + repeated(")", 240)), "int: 7");
  EXPECT_EQ(value(repeated("- ", 240) + "7"), "int: 7");
  EXPECT_EQ(value(repeated("isnull(", 240) + "7" + repeated(", 0)", 240)), "int: 7");
  EXPECT_EQ(value(repeated("case when 1 = 1 then ", 200) + "7" + repeated(" end", 200)), "int: 7");
  EXPECT_EQ(value(repeated("(select ", 80) + "7" + repeated(")", 80)), "int: 7");
  EXPECT_EQ(value("1" + repeated(" + 1", 2'400)), "int: 2401");
  EXPECT_EQ(query("select i from t where " + repeated("not ", 240) + "i = 1"), "int: 1");
  EXPECT_EQ(query("select i from t where i = 1" + repeated(" and i = 1", 1'200)), "int: 1");
  EXPECT_EQ(query("select i from t where i = 2" + repeated(" or i = 2", 1'199) + " or i = 1"), "int: 1");
  EXPECT_EQ(query("select i from " + repeated("(select i from ", 80) + "t" + repeated(") x", 80)), "int: 1");
  EXPECT_EQ(query("select 1 as i" + repeated(" union select 1", 400)), "int: 1");
}

TEST_F(Expression, NamesTheLimitOfTheStorageThatAStatementExceeds) {
  run("create table t(i int) insert into t values(1)");
  const std::string refused = "40510";
  EXPECT_EQ(query("select 1 from t" + repeated(" cross join t", 70)), "1013");
  std::string joins = "select 1 as i from t";
  for (int i = 0; i < 70; ++i)
    joins += " cross join t t" + std::to_string(i);
  EXPECT_EQ(query(joins), refused);
  EXPECT_EQ(query("select 1 as i" + repeated(" union all select 1", 600)), refused);
  EXPECT_EQ(query("select 1 as i" + repeated(", 1", 3'000)), refused);
}

// Some translations repeat an operand, so that each level of nesting doubles the SQLite statement.
TEST_F(Expression, RefusesNestingThatDoublesTheStatementTooOften) {
  const std::string refused = "40510";
  EXPECT_EQ(value(repeated("nullif(", 10) + "7" + repeated(", 2)", 10)), "int: 7");
  EXPECT_EQ(value(repeated("nullif(", 60) + "7" + repeated(", 2)", 60)), refused);
  EXPECT_EQ(value(repeated("case ", 60) + "7" + repeated(" when 1 then 2 when 3 then 4 else 7 end", 60)), refused);
  run("create table t(i int) insert into t values(1)");
  run("create view v0 as select i from t");
  const auto view = [](int level) { return "v" + std::to_string(level); };
  std::string outcome;
  for (int level = 1; level <= 20 && outcome.empty(); ++level) {
    std::string statement = "create view " + view(level) + " as select a.i from ";
    statement += view(level - 1) + " a, " + view(level - 1) + " b";
    try {
      run(statement);
    } catch (const SqlError& error) {
      outcome = std::to_string(error.number());
    }
  }
  EXPECT_EQ(outcome, refused);
}

TEST_F(Expression, TheSystemDatabaseExistsAndCannotBeCreated) {
  EXPECT_EQ(value("db_id(N'OrvSystem')"), "int: 5");
  EXPECT_EQ(value("db_id('tempdb')"), "int: 2");
  EXPECT_EQ(value("db_id('master')"), "int: null");
  EXPECT_EQ(value("db_id(null)"), "int: null");
  EXPECT_EQ(query("create database orvsystem"), "1801");
  EXPECT_EQ(query("create database [orvsystem] collate Chinese_PRC_CI_AS"), "1801");
  EXPECT_EQ(query("create database other"), "40510");
  run("if db_id(N'orvsystem') is null create database orvsystem collate Chinese_PRC_CI_AS");
}

TEST_F(Expression, FloatLiteralsKeepEveryBit) {
  run("create table t(f float)");
  EXPECT_EQ(value("-1e-300"), "float: -1e-300");
  EXPECT_EQ(value("1.7976931348623157e308"), "float: 1.7976931348623157e+308");
  EXPECT_EQ(value("0.30000000000000004e0"), "float: 0.30000000000000004");
  EXPECT_EQ(value("0.1e0"), "float: 0.1");
  run("insert into t values(4.9406564584124654e-300), (1e22), (123456789.125e0)");
  EXPECT_EQ(query("select f from t"), "float: 4.9406564584124654e-300 1e+22 123456789.125");
}

TEST_F(Expression, DatesNeverLeaveTheirRange) {
  EXPECT_EQ(value("cast('9999-12-31' as datetime)+1"), "517");
  EXPECT_EQ(value("cast('1753-01-01' as datetime)-1"), "517");
  EXPECT_EQ(value("cast('9999-12-30' as datetime)+1"), "datetime: 9999-12-31 00:00:00.000");
  EXPECT_EQ(value("cast(null as datetime)+1"), "datetime: null");
}

TEST_F(Expression, MoneyNeverGrowsBeyond64Bits) {
  run("create table t(m money) insert into t values(900000000000000)");
  EXPECT_EQ(query("select m+m from t"), "8115");
  EXPECT_EQ(query("select m*2 from t"), "8115");
  EXPECT_EQ(query("select m-m from t"), "money: 0.0000");
  EXPECT_EQ(value("cast(1 as money)/3*3"), "money: 0.9999");
  EXPECT_EQ(value("cast(10 as money)*0.1"), "decimal(21,5): 1.00000");
}

TEST_F(Expression, WideDecimalsCompareSortAndSumAsNumbers) {
  run("create table t(id int, a decimal(38,6), b decimal(28,6)) "
      "insert into t values(1,99999999999999999999999999999999.999999,1),"
      "(2,-99999999999999999999999999999999.999999,2),(3,5,5),(4,-5,-5),(5,null,null)");
  EXPECT_EQ(query("select id from t order by a"), "int: 5 2 4 3 1");
  EXPECT_EQ(query("select id from t order by a desc"), "int: 1 3 4 2 5");
  EXPECT_EQ(query("select id from t where a > b order by id"), "int: 1");
  EXPECT_EQ(query("select id from t where a > 4 and a < 1000"), "int: 3");
  EXPECT_EQ(query("select id from t where a between -6 and 6 order by id"), "int: 3 4");
  EXPECT_EQ(query("select id from t where a in (5, -5.0) order by id"), "int: 3 4");
  EXPECT_EQ(query("select max(a) from t"), "decimal(38,6): 99999999999999999999999999999999.999999");
  EXPECT_EQ(query("select min(a) from t"), "decimal(38,6): -99999999999999999999999999999999.999999");
  EXPECT_EQ(query("select sum(a) from t"), "decimal(38,6): 0.000000");
  EXPECT_EQ(query("select avg(b) from t"), "decimal(38,6): 0.750000");
  EXPECT_EQ(query("select count(distinct a) from t"), "int: 4");
  EXPECT_EQ(query("select a+b from t where id=1"), "8115");
  EXPECT_EQ(query("select count(*) from t x inner join t y on x.a=y.a"), "int: 4");
}

TEST_F(Expression, TextBesideANumberIsANumber) {
  EXPECT_EQ(value("'1'+1"), "int: 2");
  EXPECT_EQ(value("'1.5'+1.5"), "decimal(3,1): 3.0");
  EXPECT_EQ(value("'1.5'+1"), "245");
  EXPECT_EQ(value("left(12.50,3)"), "varchar(3): 12.");
  EXPECT_EQ(value("len(12.00)"), "int: 5");
  EXPECT_EQ(value("str(3.14159,6,2)"), "varchar(6):   3.14");
  EXPECT_EQ(value("str(12)"), "varchar(10):         12");
  EXPECT_EQ(query("select '5' as x union select 3 order by x"), "int: 3 5");
}

TEST_F(Expression, DatesCalculate) {
  EXPECT_EQ(value("cast('2024-03-05' as datetime)+1"), "datetime: 2024-03-06 00:00:00.000");
  EXPECT_EQ(value("year('2024-3-5')*100+month('2024-3-5')"), "int: 202403");
  EXPECT_EQ(value("datediff(day,'2024-2-28','2024-3-1')"), "int: 2");
  EXPECT_EQ(value("dateadd(month,1,'2024-1-31')"), "datetime: 2024-02-29 00:00:00.000");
  EXPECT_EQ(value("convert(varchar(10), cast('2024-3-5' as datetime), 120)"), "varchar(10): 2024-03-05");
  EXPECT_EQ(value("case when '2024-01-05' < cast('2024-1-10' as datetime) then 1 else 0 end"), "int: 1");
  EXPECT_EQ(value("datediff(second, getdate(), getdate())"), "int: 0");
}

TEST_F(Expression, NullsAndBranchesTakeTheRightType) {
  EXPECT_EQ(value("isnull(null, 5)"), "int: 5");
  EXPECT_EQ(value("nullif(1, 1)"), "int: null");
  EXPECT_EQ(value("coalesce(null, N'x', 'yy')"), "nvarchar(2): x");
  EXPECT_EQ(value("isnull(cast(null as nvarchar(2)), 12345)"), "8115");
  EXPECT_EQ(value("isnull(cast(null as nvarchar(2)), N'abc')"), "nvarchar(2): ab");
  EXPECT_EQ(value("case when 1=1 then 1 else 2.50 end"), "decimal(3,2): 1.00");
}

}  // namespace
}  // namespace quillon::tsql
