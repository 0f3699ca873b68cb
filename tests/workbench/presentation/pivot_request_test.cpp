// What the names of a pivot mean, and what is said about those that mean nothing.
#include "workbench/presentation/pivot_request.h"

#include <gmock/gmock.h>

#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int grades = 2;

PivotPlan planned(const std::string& report, std::string_view mode, std::string_view text,
                  const std::vector<std::string>& sort = {}) {
  return planPivot(reportNamed(report), mode, grades, parsePivot(text, sort));
}

std::string refused(const std::string& report, std::string_view mode, std::string_view text,
                    const std::vector<std::string>& sort = {}, Language language = Language::english) {
  try {
    planned(report, mode, text, sort);
  } catch (const UserError& error) {
    return error.message().in(language);
  }
  return "";
}

std::vector<std::string> names(const auto& items) {
  std::vector<std::string> texts;
  texts.reserve(items.size());
  for (const auto& item : items)
    texts.push_back(item.name);
  return texts;
}

TEST(PivotRequest, HasThreePartsOfWhichThoseAcrossMayBeMissing) {
  const PivotArrangement asked = parsePivot(" 仓库 , 成本项目/月份/金额,数量", std::vector<std::string>{"-金额,仓库"});
  EXPECT_THAT(asked.rows, ElementsAre("仓库", "成本项目"));
  EXPECT_THAT(asked.columns, ElementsAre("月份"));
  EXPECT_THAT(asked.measures, ElementsAre("金额", "数量"));
  ASSERT_EQ(asked.sort.size(), 2U);
  EXPECT_EQ(asked.sort[0].column, "金额");
  EXPECT_TRUE(asked.sort[0].descending);
  EXPECT_FALSE(asked.sort[1].descending);
  EXPECT_THAT(parsePivot("a//b").columns, IsEmpty());
}

TEST(PivotRequest, NamesDimensionsByNameCaptionAndColumn) {
  for (const char* written : {"cWhCode", "仓库", "warehouse", "cWhName", "仓库编码"})
    EXPECT_THAT(names(planned("outsum-item", "1", std::string(written) + "//amount").rows), ElementsAre("cWhCode"));
  EXPECT_THAT(names(planned("outsum-item", "1", "月份/单据月份/金额").columns), ElementsAre("documentMonth"));
  EXPECT_THAT(names(planned("outsum-item", "1", "Receipt-issue type/Cost-item class grade 2/金额").columns),
              ElementsAre("costItemClass2"));
}

TEST(PivotRequest, OfOneStateNeedsNoStateNamed) {
  EXPECT_THAT(names(planned("outsum-item", "1", "仓库//数量,金额,单价").measures),
              ElementsAre("quantity", "amount", "unitCost"));
  EXPECT_THAT(names(planned("outsum-item", "1", "仓库//发出金额,issueQuantity").measures),
              ElementsAre("amount", "quantity"));
}

TEST(PivotRequest, OfSeveralStatesMeansEachWhereNoneIsNamed) {
  const PivotPlan all = planned("sfc-item", "1", "Warehouse//Amount");
  EXPECT_THAT(names(all.measures), ElementsAre("openingAmount", "receiptAmount", "issueAmount", "closingAmount"));
  EXPECT_EQ(all.measures[1].chinese, "收入金额");
  EXPECT_EQ(all.measures[1].english, "Receipt amount");
  EXPECT_THAT(names(planned("fx-wt", "", "仓库//单价").measures), ElementsAre("receiptUnitCost", "issueUnitCost"));
  EXPECT_THAT(names(planned("fx-detail", "", "月份//数量").measures), ElementsAre("receiptQuantity", "issueQuantity"));
}

TEST(PivotRequest, OfTheStateItselfMeansEachRowsOwn) {
  const PivotPlan own = planned("sfc-item", "1", "State/Warehouse/Amount,closingAmount");
  EXPECT_THAT(names(own.measures), ElementsAre("amount", "closingAmount"));
  EXPECT_FALSE(own.measures[0].state);
  EXPECT_EQ(own.measures[1].state, 3U);
}

TEST(PivotRequest, TakesSharesBehindAColon) {
  const PivotPlan shares = planned("outsum-item", "1", "仓库/月份/金额:行,金额：列,Amount:total%,数量:row");
  EXPECT_THAT(names(shares.measures), ElementsAre("amount:row", "amount:column", "amount:total", "quantity:row"));
  EXPECT_EQ(shares.measures[0].chinese, "金额占行%");
  EXPECT_EQ(shares.measures[2].english, "Amount, % of total");
  EXPECT_EQ(shares.measures[1].share, PivotShare::column);
}

TEST(PivotRequest, RefusesWhatIsUnknownWithWhatIsNearest) {
  EXPECT_EQ(refused("outsum-item", "1", "Warehuose//Amount"),
            "outsum-item has no dimension \"Warehuose\"; did you mean Warehouse?");
  EXPECT_EQ(refused("outsum-item", "1", "仓库//金鹅", {}, Language::chinese),
            "outsum-item 没有数值“金鹅”；您要的是 金额 吗？");
  EXPECT_EQ(refused("outsum-item", "1", "仓库//Amount:rows"),
            "\"rows\" is no share of Amount; write Amount:row, Amount:column or Amount:total");
  EXPECT_EQ(refused("outsum-item", "1", "仓库//单价:row"),
            "unit costs do not add up, so there are no shares of them: 单价:row");
  EXPECT_EQ(refused("outsum-item", "1", "仓库//金额", {"Amuont"}),
            "a pivot cannot be ordered by \"Amuont\": it is neither a chosen dimension nor a figure; did you mean "
            "amount?");
  EXPECT_EQ(refused("sfc-item", "2", "State//Amount"), "sfc-item has no dimension \"State\"");
}

TEST(PivotRequest, RefusesWhatHasNoMeaningTogether) {
  EXPECT_EQ(
      refused("outsum-item", "1", "仓库/金额"),
      "\"仓库/金额\" is no pivot; write down/across/figures, such as Warehouse/Month/Amount; across may be empty: "
      "Warehouse//Amount");
  EXPECT_EQ(refused("outsum-item", "1", "/月份/金额"), "a pivot needs at least one dimension down");
  EXPECT_EQ(refused("outsum-item", "1", "仓库/月份/"), "a pivot needs at least one figure, such as Amount");
  EXPECT_EQ(refused("outsum-item", "1", "仓库/cWhName/金额"),
            "the dimension \"cWhName\" is used twice; it can stand down or across, once");
  EXPECT_EQ(refused("outsum-item", "1", "仓库//金额,amount"), "the figure \"amount\" is asked for twice");
  EXPECT_EQ(
      refused("sfc-item", "1", "仓库/收发状态/金额", {"-金额"}),
      "rows cannot be ordered by \"金额\": states do not add up, so rows have no total of it; order by the figure of "
      "one state, such as Closing amount");
}

TEST(PivotRequest, IsOrderedByDimensionsAndFigures) {
  const PivotPlan plan = planned("sfc-item", "1", "仓库/收发状态/金额", {"-期末金额,State"});
  ASSERT_EQ(plan.sort.size(), 2U);
  EXPECT_EQ(plan.sort[0].measure.name, "closingAmount");
  EXPECT_TRUE(plan.sort[0].descending);
  EXPECT_EQ(plan.sort[1].dimension, 1U);
  EXPECT_EQ(planned("sfc-item", "1", "仓库//收入金额,发出金额", {"-Amount"}).sort[0].measure.name, "receiptAmount");
}

}  // namespace
}  // namespace quillon::workbench
