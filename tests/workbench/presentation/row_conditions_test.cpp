#include "workbench/presentation/row_conditions.h"

#include <gmock/gmock.h>

#include "tests/workbench/presentation/small_layouts.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

using enum RowCondition::Kind;

const std::vector<tsql::Column> columns = {{"cWhName", {.kind = tsql::Kind::nVarChar, .width = 60}},
                                           {"iMoney", {.kind = tsql::Kind::money}},
                                           {"dKeepDate", {.kind = tsql::Kind::dateTime}}};

std::string sql(RowCondition condition) {
  return conditionText(std::vector{std::move(condition)}, columns);
}

TEST(RowConditions, AreTextsOfTSql) {
  EXPECT_EQ(conditionText({}, columns), "1 = 1");
  EXPECT_EQ(sql({"cWhName", equals, {"成品库"}}), "(cWhName = N'成品库')");
  EXPECT_EQ(sql({"cWhName", equals, {"O'Neil", ""}}), "(cWhName = N'O''Neil' Or cWhName Is Null Or cWhName = N'')");
  EXPECT_EQ(sql({"cWhName", contains, {"品"}}), "(CharIndex(N'品', IsNull(cWhName, N'')) > 0)");
  EXPECT_EQ(sql({"iMoney", equals, {"1,000.50"}}), "(iMoney = 1000.50)");
  EXPECT_EQ(sql({"iMoney", range, {"10", ""}}), "(iMoney >= 10)");
  EXPECT_EQ(sql({"dKeepDate", range, {"2024-01-01", "2024-01-31"}}),
            "(dKeepDate >= '2024-01-01 00:00:00.000' And dKeepDate < '2024-02-01 00:00:00.000')")
      << "the last day is in it to its end";
}

TEST(RowConditions, RefuseValuesThatDoNotFitTheColumn) {
  const auto refused = [](RowCondition condition) {
    try {
      sql(std::move(condition));
    } catch (const UserError& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_EQ(refused({"iMoney", equals, {"1 Or 1 = 1"}}), "\"1 Or 1 = 1\" is no number, which column iMoney holds");
  EXPECT_EQ(refused({"dKeepDate", equals, {"2024-02-31"}}),
            "\"2024-02-31\" is no date, which column dKeepDate holds; write it as 2024-03-31");
  EXPECT_EQ(refused({"iMoney", range, {"20", "10"}}), "the range of iMoney ends before it begins: 20..10");
  EXPECT_EQ(refused({"cNone", equals, {"1"}}), "this report has no column cNone in this mode");
}

// Each condition chooses the same rows in the database and in memory.
TEST(RowConditions, ChooseTheSameRowsInTheDatabaseAndInMemory) {
  const auto account = test::accountWithResult();
  test::fillResult(*account);
  const std::vector<ReportColumn> known = reportNamed("sfc-item").columns;
  const std::vector<RowCondition> conditions = {
      {"cWhName", equals, {"成品库"}},
      {"cWhName", equals, {"原料库", "成品库"}},
      {"cInvName", contains, {"m8"}},
      {"cInvName", contains, {"Ｍ８"}},
      {"cFree1", equals, {""}},
      {"cFree1", equals, {"红", ""}},
      {"iMoney", equals, {"50.5"}},
      {"iMoney", range, {"30.25", "100"}},
      {"iMoney", range, {"", "50"}},
      {"dKeepDate", equals, {"2024-03-06"}},
      {"dKeepDate", equals, {""}},
      {"dKeepDate", range, {"2024-03-05", "2024-03-06"}},
      {"dKeepDate", range, {"2024-03-06", ""}},
  };
  for (const RowCondition& condition : conditions) {
    SCOPED_TRACE(condition.column + " " + testing::PrintToString(condition.values));
    const auto declared = account->describe("Result");
    std::vector<std::string> inDatabase, inMemory;
    const auto chosen = account->query("Select autoid, iState From Result Where " +
                                       conditionText(std::vector{condition}, declared) + " Order By autoid, iState");
    while (chosen->next())
      inDatabase.push_back(plainText(chosen->value(0), "") + plainText(chosen->value(1), ""));
    const auto column = std::ranges::find(known, condition.column, &ReportColumn::name);
    const auto all =
        account->query("Select autoid, iState, " + condition.column + " From Result Order By autoid, iState");
    while (all->next()) {
      if (meets(all->value(2), condition, column->role))
        inMemory.push_back(plainText(all->value(0), "") + plainText(all->value(1), ""));
    }
    EXPECT_FALSE(inDatabase.empty());
    EXPECT_LT(inDatabase.size(), 7U);
    EXPECT_EQ(inMemory, inDatabase);
  }
}

}  // namespace
}  // namespace quillon::workbench
