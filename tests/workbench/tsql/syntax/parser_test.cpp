#include "workbench/tsql/syntax/parser.h"

#include <gtest/gtest.h>

#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

struct Refusal {
  int number = 0;
  std::string message;
  int line = 0;
};

Refusal refusalOf(std::string_view batch) {
  try {
    parseBatch(batch);
  } catch (const SqlError& error) {
    return {error.number(), error.message(), error.line()};
  }
  return {};
}

TEST(Parser, StatementsFollowWithoutSeparators) {
  const auto statements = parseBatch("insert into o values(1) select 1 update t set a=1 delete t; drop table x");
  ASSERT_EQ(statements.size(), 5U);
  EXPECT_EQ(statements[0]->kind, StatementKind::insert);
  EXPECT_EQ(statements[1]->kind, StatementKind::select);
  EXPECT_EQ(statements[2]->kind, StatementKind::update);
  EXPECT_EQ(statements[3]->kind, StatementKind::remove);
  EXPECT_EQ(statements[4]->kind, StatementKind::dropObjects);
}

std::string repeated(std::string_view text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i)
    result += text;
  return result;
}

// Whatever makes a statement deep, walking its tree must not exhaust the stack.
TEST(Parser, RefusesWhatIsNestedTooDeeply) {
  constexpr int tooDeep = 191;
  constexpr int times = 10'000;
  for (const char* const piece :
       {"(", "- ", "+", "not ", "isnull(", "case when ", "cast(", "(1 in (", "exists (select 1 where ", "(select ",
        "1 - -(", "a = 1 and not (", "case 1 when 1 then "}) {
    const Refusal refusal = refusalOf("select 1 where " + repeated(piece, times));
    EXPECT_EQ(refusal.number, tooDeep) << piece;
    EXPECT_EQ(refusal.message,
              "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller "
              "queries.");
  }
  for (const char* const piece : {"1 = 1 and ", "1 = 1 or ", "1 + ", "a * ", "1 = 1 and not 2 = 2 or "})
    EXPECT_EQ(refusalOf("select 1 where " + repeated(piece, times)).number, tooDeep) << piece;
  for (const char* const piece : {"(", "(select * from ", "t join ", "t cross join "})
    EXPECT_EQ(refusalOf("select * from " + repeated(piece, times)).number, tooDeep) << piece;
  for (const char* const piece :
       {"select 1 union all ", "select 1 intersect ", "select 1 except (", "if 1 = 1 ", "begin ", "("})
    EXPECT_EQ(refusalOf(repeated(piece, times)).number, tooDeep) << piece;
}

TEST(Parser, TakesStatementsAsDeepAsPeopleAndReportsWriteThem) {
  EXPECT_EQ(refusalOf("select " + repeated("(", 200) + "1" + repeated(")", 200)).number, 0);
  EXPECT_EQ(refusalOf("select 1 where " + repeated("a = 1 or ", 1000) + "a = 2").number, 0);
  EXPECT_EQ(refusalOf("select 1 where a in (" + repeated("'0101',", 100'000) + "'0102')").number, 0);
  // The count starts again with each statement.
  EXPECT_EQ(refusalOf("begin " + repeated("select 1 where a = 1 ", 10'000) + "end").number, 0);
}

TEST(Parser, AnErrorNamesTheTokenAndItsLine) {
  const Refusal reserved = refusalOf("select a\nfrom t\nwhere base.iYear =  And x = 1");
  EXPECT_EQ(reserved.number, 156);
  EXPECT_EQ(reserved.message, "Incorrect syntax near the keyword 'And'.");
  EXPECT_EQ(reserved.line, 3);
  const Refusal plain = refusalOf("select a form t where");
  EXPECT_EQ(plain.number, 102);
  EXPECT_EQ(plain.message, "Incorrect syntax near 't'.");
}

TEST(Parser, ABareNameThatBeginsWithADigitIsASyntaxError) {
  const Refusal refusal = refusalOf(
      "If Exists(Select Name From Sysobjects Where Name = '77u1IA_SFC_IX_GroupIndex') Drop Table "
      "77u1IA_SFC_IX_GroupIndex");
  EXPECT_EQ(refusal.number, 102);
  EXPECT_EQ(refusal.message, "Incorrect syntax near '77'.");
}

TEST(Parser, TellsValuesFromConditions) {
  EXPECT_EQ(refusalOf("select 1 where 2").number, 4145);
  EXPECT_EQ(refusalOf("select (1 = 1)").number, 102);
  EXPECT_EQ(refusalOf("select 1 where (a + 1)").number, 4145);
  EXPECT_EQ(refusalOf("select 1 where ((a + 1) > 2 and not (b = 1 or c is null))").number, 0);
}

TEST(Parser, RefusesByNameWhatTheDialectLeavesOut) {
  const auto contains = [](std::string_view batch, std::string_view name) {
    const Refusal refusal = refusalOf(batch);
    EXPECT_EQ(refusal.number, 40510) << batch;
    EXPECT_NE(refusal.message.find(name), std::string::npos) << refusal.message;
  };
  contains("declare @a int", "DECLARE");
  contains("exec sp_help", "EXEC");
  contains("with x as (select 1 a) select * from x", "WITH");
  contains("alter table t add b int", "ALTER");
  contains("merge into t using s on 1=1", "MERGE");
  contains("select @a", "@a");
  contains("select row_number() over (order by a) from t", "OVER");
  contains("select a from t cross apply f(1)", "CROSS APPLY");
  contains("select top 10 percent a from t", "PERCENT");
  contains("select top 1 with ties a from t order by a", "WITH TIES");
  contains("select a from t order by a offset 1 rows", "OFFSET");
  contains("select a from t for xml auto", "FOR");
  contains("select a collate Chinese_PRC_BIN from t", "COLLATE");
  contains("select a & 1 from t", "&");
  contains("select a from t where a > all (select 1)", "ALL");
  contains("create table t(a smallint)", "smallint");
  contains("create table t(a int check (a > 0))", "CHECK");
  contains("create procedure p as select 1", "PROCEDURE");
  contains("begin tran", "BEGIN");
  contains("set rowcount 5", "rowcount");
  contains("select a from t group by a with rollup", "ROLLUP");
  contains("select * from t pivot (sum(a) for b in (c)) p", "PIVOT");
}

TEST(Parser, TypesOutsideTheirRange) {
  EXPECT_EQ(refusalOf("create table t(a decimal(39,2))").number, 2750);
  EXPECT_EQ(refusalOf("create table t(a decimal(5,6))").number, 183);
  EXPECT_EQ(refusalOf("create table t(a nvarchar(4001))").number, 131);
  EXPECT_EQ(refusalOf("create table t(a nothing)").number, 243);
}

TEST(Parser, ObjectNames) {
  EXPECT_EQ(parseObjectName("[12IA_DetailTmp]").name, "12IA_DetailTmp");
  EXPECT_EQ(parseObjectName("tempdb..#FX_1").database, "tempdb");
  EXPECT_EQ(parseObjectName("tempdb..#FX_1").name, "#FX_1");
  EXPECT_EQ(parseObjectName("dbo.t").database, "");
  EXPECT_EQ(parseObjectName("OrvSystem.dbo.UA_User").database, "OrvSystem");
  EXPECT_THROW(parseObjectName("1abc"), SqlError);
  EXPECT_THROW(parseObjectName("a b"), SqlError);
}

TEST(Parser, JoinsNest) {
  const auto statements = parseBatch("select 1 from a left join b inner join c on c.x = b.x on b.y = a.y");
  const TableSource& outer = *statements[0]->query->core->from[0];
  EXPECT_EQ(outer.join, JoinKind::left);
  EXPECT_EQ(outer.left->table.name, "a");
  ASSERT_NE(outer.right->left, nullptr);
  EXPECT_EQ(outer.right->join, JoinKind::inner);
}

TEST(Parser, IntersectBindsTighterThanUnion) {
  const auto statements = parseBatch("select 1 union select 2 intersect select 3");
  const Query& query = *statements[0]->query;
  EXPECT_EQ(query.operation, SetOperation::unionDistinct);
  EXPECT_EQ(query.right->operation, SetOperation::intersect);
}

}  // namespace
}  // namespace quillon::tsql
