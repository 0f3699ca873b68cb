#include "workbench/presentation/arrangement.h"

#include <gmock/gmock.h>

#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;

const std::vector<ReportColumn> known = {{"cWhCode", "仓库编码", "Warehouse code"},
                                         {"cWhName", "仓库", "Warehouse"},
                                         {"iMoney", "金额", "Amount", ColumnRole::money},
                                         {"cItemCName", "项目分类", "Project item class"},
                                         {"cfxCName", "项目分类", "Cost-item class"}};

Arrangement parsed(const ArrangementText& text) {
  return parseArrangement(text, known);
}

std::string refused(const ArrangementText& text) {
  try {
    parsed(text);
  } catch (const UserError& error) {
    return error.what();
  }
  return "";
}

TEST(Arrangement, NamesColumnsByNameAndByEitherCaption) {
  EXPECT_THAT(parsed({.columns = {"cwhcode, 仓库,AMOUNT"}}).columns, ElementsAre("cWhCode", "cWhName", "iMoney"));
  EXPECT_THAT(parsed({.groupBy = {"Warehouse", "金额"}}).groupBy, ElementsAre("cWhName", "iMoney"));
}

TEST(Arrangement, RefusesWhatIsUnknownOrMeansTwo) {
  EXPECT_EQ(refused({.columns = {"Warehuose"}}), "there is no column \"Warehuose\"; did you mean Warehouse?");
  EXPECT_EQ(refused({.sort = {"zzzz"}}), "there is no column \"zzzz\"");
  EXPECT_EQ(refused({.columns = {"项目分类"}}),
            "\"项目分类\" is the caption of two columns, cItemCName and cfxCName; name one of these");
}

TEST(Arrangement, SortsDownwardsByALeadingMinus) {
  const Arrangement arrangement = parsed({.sort = {"-金额,cWhCode"}});
  ASSERT_EQ(arrangement.sort.size(), 2U);
  EXPECT_EQ(arrangement.sort[0].column, "iMoney");
  EXPECT_TRUE(arrangement.sort[0].descending);
  EXPECT_EQ(arrangement.sort[1].column, "cWhCode");
  EXPECT_FALSE(arrangement.sort[1].descending);
}

TEST(Arrangement, TakesFourFormsOfCondition) {
  const Arrangement arrangement = parsed({.where = {"仓库=成品库", "cWhCode=01, 02", "金额=10..20.5", "仓库~库=品"}});
  ASSERT_EQ(arrangement.where.size(), 4U);
  using enum RowCondition::Kind;
  EXPECT_EQ(arrangement.where[0].kind, equals);
  EXPECT_EQ(arrangement.where[0].column, "cWhName");
  EXPECT_THAT(arrangement.where[1].values, ElementsAre("01", "02"));
  EXPECT_EQ(arrangement.where[2].kind, range);
  EXPECT_THAT(arrangement.where[2].values, ElementsAre("10", "20.5"));
  EXPECT_EQ(arrangement.where[3].kind, contains);
  EXPECT_THAT(arrangement.where[3].values, ElementsAre("库=品"));
}

TEST(Arrangement, RefusesATextThatIsNoCondition) {
  for (const char* text : {"仓库", "=3", ""})
    EXPECT_THAT(refused({.where = {text}}), testing::HasSubstr("is no condition; write column=value")) << text;
}

}  // namespace
}  // namespace quillon::workbench
