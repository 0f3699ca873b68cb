// The layouts that every report but the ledger has, on a small result table whose sums can be added up by hand.
#include <gmock/gmock.h>

#include "tests/workbench/presentation/small_layouts.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/lines_layout.h"
#include "workbench/presentation/summary_layout.h"
#include "workbench/presentation/tree_layout.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;

class SmallLayouts : public testing::Test {
 protected:
  void SetUp() override {
    test::fillResult(*account_);
    test::addClasses(*account_);
  }

  LayoutRequest request(const std::string& mode, Arrangement arrangement = {}) const {
    return {.report = reportNamed("sfc-item"),
            .table = result_,
            .mode = mode,
            .language = Language::english,
            .arrangement = std::move(arrangement)};
  }

  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
};

TEST_F(SmallLayouts, LinesShowTheStatesOwnFigures) {
  const View view = linesView(request("1"));
  EXPECT_THAT(test::namesOf(view), ElementsAre("cWhCode", "cInvCode", "cInvName", "cWhName", "cFree1", "cFXCode",
                                               "cFXName", "dKeepDate", "cState", "iQuantity", "iMoney"));
  EXPECT_EQ(view.lineCount, 6);
  EXPECT_THAT(
      test::textsOf(view),
      ElementsAre("line|1|0101|螺栓, \"M8\" <1&2>|原料库|红|01|材料||期初结存|10.000000|100.0000",
                  "line|1|0101|螺栓|原料库||01|材料|2024-03-05|收入|5.125000|50.5000",
                  "line|1|0101|螺栓|原料库||01|材料|2024-03-06 08:30:00.000|发出|3.000000|30.2500",
                  "line|1|0101|螺栓|原料库||01|材料||期末结存|12.125000|120.2500",
                  "line|2|0201|电机|成品库||02|人工|2024-04-01|收入|1.000000|1000000.0000",
                  "line|2|0201|电机|成品库||02|人工||期末结存|1.000000|1000000.0000",
                  "total|期初结存 Total|||||||||10.000000|100.0000", "total|收入 Total|||||||||6.125000|1000050.5000",
                  "total|发出 Total|||||||||3.000000|30.2500", "total|期末结存 Total|||||||||13.125000|1000120.2500"));
}

TEST_F(SmallLayouts, LinesByExpenseItemShowAllFourStatesAndOneTotal) {
  const View view = linesView(request("2"));
  EXPECT_THAT(test::namesOf(view), testing::IsSupersetOf({"iQcMoney", "iInMoney", "iOutMoney", "iQmMoney"}));
  ASSERT_EQ(view.totals.size(), 1U);
  EXPECT_EQ(plainText(view.totals[0].cells[0], ""), "Total");
}

TEST_F(SmallLayouts, LinesByExpenseItemThatLookAlikeShowTheFieldInWhichTheyDiffer) {
  // Two rows of one cost item that differ in one field, and in nothing that is shown.
  account_->execute(
      "Select cWhName, cInvName, cFXCode, cFXName, cState, N'same' As cDefine2, Case When iState = 2 Then N'A' Else N'B' End "
      "As cDefine1, iState, iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney, iQuantity, "
      "iMoney Into Widened From Result Where iState In (2, 3)");
  account_->execute("Update Widened Set cState = N''");
  const ResultTable widened(*account_, "Widened");
  const auto lines = [&](const std::string& mode) {
    return linesView({.report = reportNamed("sfc-item"), .table = widened, .mode = mode});
  };
  const View view = lines("2");
  EXPECT_THAT(test::namesOf(view), testing::Contains("cDefine1"));
  EXPECT_THAT(test::namesOf(view), testing::Not(testing::Contains("cDefine2")));
  EXPECT_EQ(view.columnsLeftOut, 1U);
  EXPECT_THAT(test::namesOf(lines("1")), testing::Not(testing::Contains("cDefine1")))
      << "a state tells the rows of a ledger line apart";
}

TEST_F(SmallLayouts, LinesAreChosenOrderedAndGrouped) {
  const View view = linesView(request("1", {.columns = {"cFXName", "iMoney", "cState"},
                                            .sort = {{"iMoney", true}},
                                            .groupBy = {"cWhName"},
                                            .where = {{"cState", RowCondition::Kind::equals, {"收入", "发出"}}}}));
  EXPECT_THAT(test::textsOf(view),
              ElementsAre("line|成品库|人工|1000000.0000|收入", "subtotal|成品库 subtotal||1000000.0000|收入",
                          "line|原料库|材料|50.5000|收入", "line|原料库|材料|30.2500|发出",
                          "subtotal|原料库 subtotal||50.5000|收入", "subtotal|原料库 subtotal||30.2500|发出",
                          "total|收入 Total||1000050.5000|", "total|发出 Total||30.2500|"));
  EXPECT_EQ(view.lineCount, 3);
}

TEST_F(SmallLayouts, LimitCutsLinesAndLeavesOutWhatIsThenEmpty) {
  const View view = limited(linesView(request("1")), 1);
  EXPECT_THAT(test::namesOf(view), testing::Not(testing::Contains("dKeepDate"))) << "the first row has no date";
  EXPECT_EQ(test::textsOf(view).size(), 5U) << "one line and four totals";
  EXPECT_EQ(view.lineCount, 6) << "of all";
}

TEST_F(SmallLayouts, SummaryHasALineACostItem) {
  const View view = summaryView(request("1"));
  EXPECT_THAT(test::namesOf(view),
              ElementsAre("cFXCode", "cFXName", "openingQuantity", "openingAmount", "receiptQuantity", "receiptAmount",
                          "issueQuantity", "issueAmount", "closingQuantity", "closingAmount"));
  EXPECT_THAT(
      test::textsOf(view),
      ElementsAre("line|01|材料|10.000000|100.0000|5.125000|50.5000|3.000000|30.2500|12.125000|120.2500",
                  "line|02|人工|0.000000|0.0000|1.000000|1000000.0000|0.000000|0.0000|1.000000|1000000.0000",
                  "total|Total||10.000000|100.0000|6.125000|1000050.5000|3.000000|30.2500|13.125000|1000120.2500"));
}

TEST_F(SmallLayouts, SummaryGroupsByOtherColumns) {
  const View view = summaryView(request("1", {.columns = {"cFXName", "receiptAmount"}, .groupBy = {"cWhName"}}));
  EXPECT_THAT(test::textsOf(view), ElementsAre("line|成品库|人工|1000000.0000",
                                               "subtotal|成品库 subtotal||1000000.0000", "line|原料库|材料|50.5000",
                                               "subtotal|原料库 subtotal||50.5000", "total|Total||1000050.5000"));
}

TEST_F(SmallLayouts, SummaryGivesWhatHasNoCostItemAName) {
  account_->execute("Insert Into Result (iState, cState, iQuantity, iMoney) Values (2, N'收入', 2, 7)");
  EXPECT_THAT(
      test::textsOf(summaryView(request("1"))),
      testing::Contains("line||(no cost item)|0.000000|0.0000|2.000000|7.0000|0.000000|0.0000|0.000000|0.0000"));
}

// Expense rows have no state; their balance columns stand for it.
TEST_F(SmallLayouts, SummaryOfExpensesReadsTheBalanceColumns) {
  account_->execute("Delete From Result");
  account_->execute(
      "Insert Into Result (cFXCode, cFXName, cState, iState, iQcMoney, iInMoney, iOutMoney, iQmMoney) "
      "Values (N'01', N'材料', N'', 1, 100, 0, 0, 100), (N'01', N'材料', N'', Null, 0, 50, 30, 20)");
  const View view = summaryView(
      request("2", {.columns = {"cFXCode", "openingAmount", "receiptAmount", "issueAmount", "closingAmount"}}));
  EXPECT_THAT(test::textsOf(view), ElementsAre("line|01|100.0000|50.0000|30.0000|120.0000",
                                               "total|Total|100.0000|50.0000|30.0000|120.0000"));
}

TEST_F(SmallLayouts, TreeNestsClassesPlacesAndInventories) {
  const View byClass = treeView(request("0", {.columns = {}}));
  EXPECT_THAT(
      test::textsOf(withoutEmptyColumns(byClass)),
      ElementsAre("group|0 成本|10.000000|100.0000|6.125000|1000050.5000|3.000000|30.2500|13.125000|1000120.2500",
                  "group1|01 材料|10.000000|100.0000|5.125000|50.5000|3.000000|30.2500|12.125000|120.2500",
                  "group2|1 原料库|10.000000|100.0000|5.125000|50.5000|3.000000|30.2500|12.125000|120.2500",
                  "line3|0101 螺栓|0.000000|0.0000|5.125000|50.5000|3.000000|30.2500|12.125000|120.2500",
                  "line3|0101 螺栓, \"M8\" <1&2>|10.000000|100.0000|0.000000|0.0000|0.000000|0.0000|0.000000|0.0000",
                  "group1|02 人工|0.000000|0.0000|1.000000|1000000.0000|0.000000|0.0000|1.000000|1000000.0000",
                  "group2|2 成品库|0.000000|0.0000|1.000000|1000000.0000|0.000000|0.0000|1.000000|1000000.0000",
                  "line3|0201 电机|0.000000|0.0000|1.000000|1000000.0000|0.000000|0.0000|1.000000|1000000.0000",
                  "total|Total|10.000000|100.0000|6.125000|1000050.5000|3.000000|30.2500|13.125000|1000120.2500"));
  EXPECT_EQ(byClass.lineCount, 3);
}

TEST_F(SmallLayouts, TreeHasCostItemsBelowTheirOwnClasses) {
  account_->execute("Update Result Set cFXCode = N'CI1', cFXName = N'钢材' Where cFXCode = N'01'");
  account_->execute("Update Result Set cFXCode = N'XX', cFXName = N'unknown' Where cFXCode = N'02'");
  const std::vector<std::string> rows = test::textsOf(treeView(request("1")));
  std::vector<std::string> labels;
  labels.reserve(rows.size());
  for (const std::string& row : rows)
    labels.push_back(row.substr(0, row.find('|', row.find('|') + 1)));
  EXPECT_THAT(labels, ElementsAre("group|0 成本", "group1|01 材料", "group2|CI1 钢材", "group3|1 原料库",
                                  "line4|0101 螺栓", "line4|0101 螺栓, \"M8\" <1&2>", "group|XX unknown",
                                  "group1|2 成品库", "line2|0201 电机", "total|Total"))
      << "a cost item that the account does not know stands at the top";
}

TEST_F(SmallLayouts, TreeTakesOtherLevelsAndAnOrder) {
  const View view = treeView(request("1", {.sort = {{"receiptAmount", true}}, .groupBy = {"cWhCode", "cFXCode"}}));
  std::vector<std::string> labels;
  for (const std::string& row : test::textsOf(view))
    labels.push_back(row.substr(0, row.find('|', row.find('|') + 1)));
  EXPECT_THAT(labels, ElementsAre("group|2 成品库", "line1|02 人工", "group|1 原料库", "line1|01 材料", "total|Total"));
}

}  // namespace
}  // namespace quillon::workbench
