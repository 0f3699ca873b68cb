#include "frame/summary_filter.h"

#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

// What the items add, one after another.
SummaryConditions conditionsOf(const std::vector<FilterValues>& items) {
  SummaryConditions conditions;
  conditions.where.clear();
  for (const FilterValues& item : items)
    EXPECT_TRUE(addCommonItem(item, conditions)) << item.name;
  return conditions;
}

std::string whereOf(const std::string& name, const std::string& value) {
  return conditionsOf({{.name = name, .value = value, .value2 = ""}}).where;
}

TEST(SummaryFilter, StoresModeYearAndGrade) {
  const SummaryConditions conditions = conditionsOf({{"cModal", "2", ""}, {"iYear", "2024", ""}, {"iGrade", "3", ""}});
  EXPECT_EQ(conditions.mode, "2");
  EXPECT_EQ(conditions.year, "2024");
  EXPECT_EQ(conditions.grade, "3");
  EXPECT_EQ(conditions.where, "And base.iYear = 2024 ");
}

TEST(SummaryFilter, TakesEmptyModeYearAndGradeToo) {
  const SummaryConditions conditions = conditionsOf({{"cModal", "", ""}, {"iYear", "", ""}, {"iGrade", "", ""}});
  EXPECT_EQ(conditions.mode, "");
  EXPECT_EQ(conditions.grade, "1");
  EXPECT_EQ(conditions.where, "And base.iYear =  ");
}

TEST(SummaryFilter, AsksForAWarehouseInAnyCase) {
  EXPECT_EQ(whereOf("cWhCode", "01\t02"), "And wh.cWhCode In ('01','02') ");
  EXPECT_EQ(whereOf("cWhCode", ""), "And wh.cWhCode Is Not Null ");
}

TEST(SummaryFilter, PutsListsTextsAndNumbersIntoConditions) {
  EXPECT_EQ(whereOf("cInvCode", "A"), "And inv.cInvcode In ('A') ");
  EXPECT_EQ(whereOf("CINVCODE", "A"), "And inv.cInvcode In ('A') ");
  EXPECT_EQ(whereOf("cFree10", "red\tblue"), "And base.cFree10 In ('red','blue') ");
  EXPECT_EQ(whereOf("cDefine36", "x"), "And base.cDefine36 = N'x' ");
  EXPECT_EQ(whereOf("cDefine26", "1.5"), "And base.cDefine26 = 1.5 ");
  EXPECT_EQ(whereOf("cDefine26", ""), "");
}

TEST(SummaryFilter, LeavesOtherItemsAlone) {
  SummaryConditions conditions;
  for (const char* name : {"cDepCode", "dKeepDate", "cDefine17", "cDefine21", "cBatchIA", ""}) {
    EXPECT_FALSE(addCommonItem({.name = name, .value = "1", .value2 = ""}, conditions)) << name;
  }
  EXPECT_EQ(conditions.where, "Where 1 = 1 ");
}

TEST(SummaryFilter, LeavesExpiredInventoriesOutOnlyForZero) {
  fakes::FakePlatform platform;
  fakes::FakeLogin login(platform.record);
  std::string where;
  addExpiryCondition(where, "1", login);
  addExpiryCondition(where, "", login);
  EXPECT_EQ(where, "");
  addExpiryCondition(where, "0", login);
  EXPECT_EQ(where, "And IsNull(inv.dEDate , '9999-12-31') > ='" + login.businessDate() + "'  ");
}

}  // namespace
}  // namespace quillon
