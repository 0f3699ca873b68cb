// Pivots of a small result table whose sums can be added up by hand.
#include "workbench/presentation/pivot.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/workbench/presentation/small_layouts.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/row_conditions.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SmallPivot : public testing::Test {
 protected:
  void SetUp() override {
    test::fillResult(*account_);
    test::addClasses(*account_);
  }

  LayoutRequest request(const std::string& mode, std::vector<RowCondition> where = {}) const {
    return {.report = reportNamed("sfc-item"),
            .table = result_,
            .mode = mode,
            .language = Language::english,
            .arrangement = {.where = std::move(where)}};
  }
  Pivot pivot(std::string_view text, const std::vector<std::string>& sort = {}, PivotForm form = PivotForm::joined,
              const std::string& mode = "1") const {
    return {request(mode), parsePivot(text, sort), {.form = form, .unitCostDecimals = 4}};
  }
  std::vector<std::string> texts(std::string_view text, const std::vector<std::string>& sort = {}) const {
    return test::textsOf(pivot(text, sort).view());
  }
  // The AutoIDs and states of the rows that meet the conditions.
  std::vector<std::string> rowsOf(const std::vector<RowCondition>& where) const {
    std::vector<std::string> rows;
    const auto cursor = account_->query("Select autoid, iState From Result Where " +
                                        conditionText(where, result_.columns()) + " Order By autoid, iState");
    while (cursor->next())
      rows.push_back(plainText(cursor->value(0), "") + "/" + plainText(cursor->value(1), ""));
    return rows;
  }

  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
};

TEST_F(SmallPivot, SumsWhatStandsDownAndAcross) {
  const View view = pivot("Warehouse/Month/Receipt amount").view();
  EXPECT_THAT(test::namesOf(view),
              ElementsAre("cWhCode", "2024-03/receiptAmount", "2024-04/receiptAmount", "total/receiptAmount"));
  EXPECT_EQ(view.columns[1].column.english, "2024-03");
  EXPECT_EQ(view.columns[3].column.chinese, "合计");
  EXPECT_TRUE(view.columns[0].key);
  EXPECT_EQ(view.lineCount, 2);
  EXPECT_THAT(test::textsOf(view),
              ElementsAre("line|1 原料库|50.5000||50.5000", "line|2 成品库||1000000.0000|1000000.0000",
                          "total|Total|50.5000|1000000.0000|1000050.5000"));
}

TEST_F(SmallPivot, WithNothingAcrossHasTheFiguresAlone) {
  const View view = pivot("Warehouse//Closing quantity,Closing amount,Closing unit cost").view();
  EXPECT_THAT(test::namesOf(view), ElementsAre("cWhCode", "closingQuantity", "closingAmount", "closingUnitCost"));
  EXPECT_THAT(test::textsOf(view),
              ElementsAre("line|1 原料库|12.125000|120.2500|9.9175", "line|2 成品库|1.000000|1000000.0000|1000000.0000",
                          "total|Total|13.125000|1000120.2500|76199.6381"))
      << "the unit cost of a total is its amount by its quantity";
}

TEST_F(SmallPivot, HasSubtotalsOnBothAxes) {
  const View view = pivot("Warehouse,Inventory/Cost item,Month/Receipt amount").view();
  EXPECT_THAT(test::namesOf(view),
              ElementsAre("cWhCode", "cInvCode", "01 材料/2024-03/receiptAmount", "01 材料/subtotal/receiptAmount",
                          "02 人工/2024-04/receiptAmount", "02 人工/subtotal/receiptAmount", "total/receiptAmount"));
  EXPECT_EQ(view.columns[3].groupEnglish, "01 材料");
  EXPECT_EQ(view.columns[3].column.english, "Subtotal");
  EXPECT_EQ(view.columns[6].groupEnglish, "");
  EXPECT_THAT(test::textsOf(view), ElementsAre("line|1 原料库|0101 螺栓|50.5000|50.5000|||50.5000",
                                               "subtotal|1 原料库 subtotal||50.5000|50.5000|||50.5000",
                                               "line|2 成品库|0201 电机|||1000000.0000|1000000.0000|1000000.0000",
                                               "subtotal|2 成品库 subtotal||||1000000.0000|1000000.0000|1000000.0000",
                                               "total|Total||50.5000|50.5000|1000000.0000|1000000.0000|1000050.5000"));
}

TEST_F(SmallPivot, DoesNotAddStatesUp) {
  const View view = pivot("Warehouse/State/Amount").view();
  EXPECT_THAT(test::namesOf(view),
              ElementsAre("cWhCode", "期初结存/amount", "收入/amount", "发出/amount", "期末结存/amount"))
      << "in the order of the states, without a total over them";
  EXPECT_THAT(test::textsOf(view), ElementsAre("line|1 原料库|100.0000|50.5000|30.2500|120.2500",
                                               "line|2 成品库||1000000.0000||1000000.0000",
                                               "total|Total|100.0000|1000050.5000|30.2500|1000120.2500"));
  EXPECT_THAT(texts("State//Amount"), ElementsAre("line|期初结存|100.0000", "line|收入|1000050.5000",
                                                  "line|发出|30.2500", "line|期末结存|1000120.2500"));
  EXPECT_THAT(texts("Warehouse,State//Quantity,Closing amount").back(), "total|Total|||1000120.2500")
      << "a figure of one state has its total all the same";
}

TEST_F(SmallPivot, NamesNothingAndPutsItLast) {
  EXPECT_THAT(texts("cFree1//Receipt amount,Issue amount"),
              ElementsAre("line|(none)|1000050.5000|30.2500", "total|Total|1000050.5000|30.2500"))
      << "null and an empty text are both nothing";
  EXPECT_THAT(texts("Month//Opening amount,Receipt amount"),
              ElementsAre("line|2024-03|0.0000|50.5000", "line|2024-04|0.0000|1000000.0000",
                          "line|(none)|100.0000|0.0000", "total|Total|100.0000|1000050.5000"));
}

TEST_F(SmallPivot, SharesAreOfRowColumnAndWhole) {
  account_->execute("Update Result Set iMoney = 149.5 Where autoid = 4 And iState = 2");
  const View view = pivot("Warehouse/Month/Receipt amount:row,Receipt amount:column,Receipt amount:total").view();
  EXPECT_EQ(view.columns[1].column.english, "Receipt amount, % of row");
  EXPECT_EQ(view.columns[1].groupEnglish, "2024-03");
  EXPECT_THAT(test::textsOf(view),
              ElementsAre("line|1 原料库|1.0000|1.0000|0.2525||||1.0000|0.2525|0.2525",
                          "line|2 成品库||||1.0000|1.0000|0.7475|1.0000|0.7475|0.7475",
                          "total|Total|0.2525|1.0000|0.2525|0.7475|1.0000|0.7475|1.0000|1.0000|1.0000"));
  ReportDocument document;
  EXPECT_EQ(cellText(document, view.columns[3].column, view.totals[0].cells[3]), "25.25%");
}

TEST_F(SmallPivot, HasNoQuotientByZero) {
  account_->execute("Update Result Set iQuantity = 0, iMoney = 0 Where iState = 2");
  EXPECT_THAT(texts("Warehouse//Receipt unit cost,Receipt amount:total"),
              ElementsAre("line|1 原料库||", "line|2 成品库||", "total|Total||"));
}

TEST_F(SmallPivot, FindsTheClassesOfClassesAndOfCostItems) {
  const auto byClass = [this](const std::string& mode) {
    return test::textsOf(
        pivot("Cost-item class grade 1,Cost-item class grade 2//Receipt amount", {}, PivotForm::joined, mode).view());
  };
  EXPECT_THAT(byClass("0"), ElementsAre("line|0 成本|01 材料|50.5000", "line|0 成本|02 人工|1000000.0000",
                                        "subtotal|0 成本 subtotal||1000050.5000", "total|Total||1000050.5000"));
  account_->execute(
      "Update Result Set cFXCode = N'CI1' Where cFXCode = N'01' Update Result Set cFXCode = N'CI9' Where cFXCode = N'02'");
  EXPECT_THAT(byClass("1"), ElementsAre("line|0 成本|01 材料|50.5000", "subtotal|0 成本 subtotal||50.5000",
                                        "line|(none)|(none)|1000000.0000", "subtotal|(none) subtotal||1000000.0000",
                                        "total|Total||1000050.5000"))
      << "CI9 has no class";
}

TEST_F(SmallPivot, StandsInTheOrderThatIsAskedFor) {
  EXPECT_THAT(texts("Warehouse//Receipt amount", {"-Receipt amount"}).front(), "line|2 成品库|1000000.0000");
  EXPECT_THAT(texts("Warehouse//Receipt amount", {"-Warehouse"}).front(), "line|2 成品库|1000000.0000");
  EXPECT_THAT(test::namesOf(pivot("Warehouse/Month/Receipt amount", {"-Month"}).view()),
              ElementsAre("cWhCode", "2024-04/receiptAmount", "2024-03/receiptAmount", "total/receiptAmount"));
  EXPECT_THAT(texts("Warehouse//Receipt amount", {"issueQuantity"}),
              ElementsAre("line|2 成品库|1000000.0000", "line|1 原料库|50.5000", "total|Total|1000050.5000"))
      << "a figure that is not shown may order the rows";
}

TEST_F(SmallPivot, ForProgramsKeepsCodeAndNameApart) {
  const View view = pivot("Warehouse,Month//Receipt amount", {}, PivotForm::apart).view();
  EXPECT_THAT(test::namesOf(view), ElementsAre("cWhCode", "cWhName", "month", "receiptAmount"));
  EXPECT_THAT(test::textsOf(view), ElementsAre("line|1|原料库|2024-03|50.5000", "subtotal|1|原料库||50.5000",
                                               "line|2|成品库|2024-04|1000000.0000", "subtotal|2|成品库||1000000.0000",
                                               "total|Total|||1000050.5000"));
}

TEST_F(SmallPivot, IsReadOftenAndWithoutTheAccount) {
  const View view = pivot("Warehouse//Receipt amount").view();
  account_->execute("Drop Table Result");
  EXPECT_EQ(test::textsOf(view), test::textsOf(view));
}

TEST_F(SmallPivot, CountsOnlyTheRowsThatAreChosen) {
  const Pivot chosen(request("1", {{.column = "cInvCode", .values = {"0201"}}}),
                     parsePivot("Warehouse//Receipt amount"));
  EXPECT_THAT(test::textsOf(chosen.view()), ElementsAre("line|2 成品库|1000000.0000", "total|Total|1000000.0000"));
  EXPECT_THAT(rowsOf(chosen.where(1, 1)), ElementsAre("4/2"));
}

TEST_F(SmallPivot, SaysWhichRowsStandBehindAFigure) {
  const Pivot byMonth = pivot("Warehouse/Month/Receipt amount,Issue amount");
  ASSERT_EQ(byMonth.rowCount(), 3U);
  EXPECT_THAT(rowsOf(byMonth.where(0, 1)), ElementsAre("2/2")) << "a cell";
  EXPECT_THAT(rowsOf(byMonth.where(0, 2)), ElementsAre("3/3")) << "of the other state, on a day with a time";
  EXPECT_THAT(rowsOf(byMonth.where(0, 0)), ElementsAre("2/2", "3/3")) << "a whole row";
  EXPECT_THAT(rowsOf(byMonth.where(2, 1)), ElementsAre("2/2")) << "the total of a column";
  EXPECT_THAT(rowsOf(byMonth.where(1, 5)), ElementsAre("4/2")) << "the total of a row";
  EXPECT_THAT(rowsOf(byMonth.where(2, 5)), ElementsAre("2/2", "4/2")) << "the grand total";
  EXPECT_THROW(byMonth.where(3, 0), std::out_of_range);
  EXPECT_THROW(byMonth.where(0, 7), std::out_of_range);
}

TEST_F(SmallPivot, SaysWhichRowsHaveNothing) {
  EXPECT_THAT(rowsOf(pivot("Month//Opening amount").where(0, 1)), ElementsAre("1/1"));
  EXPECT_THAT(rowsOf(pivot("cFree1,Warehouse//Issue amount").where(0, 2)), ElementsAre("3/3"));
  EXPECT_THAT(rowsOf(pivot("State,Month//Amount").where(0, 2)), ElementsAre("1/1"));
}

TEST_F(SmallPivot, SaysWhichRowsAreOfAClass) {
  const Pivot byClass = pivot("Cost-item class grade 1//Receipt amount", {}, PivotForm::joined, "0");
  EXPECT_THAT(rowsOf(byClass.where(0, 1)), ElementsAre("2/2", "4/2"));
}

TEST_F(SmallPivot, HasNoMoreColumnsThanCanBeRead) {
  std::string insert = "Insert Into Result (autoid, cWhCode, cInvCode, iState, iQuantity, iMoney) Values ";
  for (int i = 0; i < 133; ++i)
    insert += std::string(i == 0 ? "" : ", ") + "(9, N'1', N'I" + std::to_string(i) + "', 2, 1, 1)";
  account_->execute(insert);
  try {
    pivot("Warehouse/Inventory/Receipt quantity,Receipt amount,Receipt unit cost");
    ADD_FAILURE() << "408 columns were made";
  } catch (const UserError& error) {
    EXPECT_EQ(
        error.message().in(Language::english),
        "the pivot would have 408 columns of figures, and 400 are the most; put Inventory down instead of across, "
        "ask for fewer figures, or choose fewer rows with --where");
  }
  EXPECT_EQ(pivot("Warehouse/Inventory/Receipt quantity,Receipt amount").view().columns.size(), 1 + 2 * 136U);
}

TEST_F(SmallPivot, RefusesAColumnThatTheModeDoesNotHave) {
  EXPECT_THROW(pivot("Department//Amount"), UserError);
}

TEST_F(SmallPivot, OffersWhatTheTableHas) {
  const PivotChoices choices = pivotChoices(request("1"));
  std::vector<std::string> names;
  for (const ReportDimension& dimension : choices.dimensions)
    names.push_back(dimension.name);
  EXPECT_THAT(names, ElementsAre("cWhCode", "cInvCode", "cFree1", "cFree2", "cFXCode", "costItemClass1",
                                 "costItemClass2", "dKeepDate", "month", "cState"));
  EXPECT_EQ(choices.measures.size(), 12U);
}

TEST_F(SmallPivot, SaysWhatItShows) {
  const auto heading = pivot("Warehouse,Cost item/Month/Amount").heading();
  EXPECT_THAT(heading,
              ElementsAre(testing::Pair("Down", "Warehouse; Cost item"), testing::Pair("Across", "Month"),
                          testing::Pair("Figures", "Opening amount; Receipt amount; Issue amount; Closing amount")));
  EXPECT_EQ(pivot("Warehouse//Amount").heading().size(), 2U);
}

TEST_F(SmallPivot, SaysHowItsFiguresFollowFromOthers) {
  const View view =
      pivot("Warehouse/Month/Receipt quantity,Receipt amount,Receipt unit cost,Receipt amount:row").view();
  ASSERT_EQ(view.columns.size(), 13U);
  EXPECT_FALSE(view.columns[2].formula);
  EXPECT_EQ(view.columns[3].formula->dividend, "2024-03/receiptAmount");
  EXPECT_EQ(view.columns[3].formula->divisor, "2024-03/receiptQuantity");
  EXPECT_EQ(view.columns[4].formula->divisor, "total/receiptAmount");
  EXPECT_THAT(view.columns[10].formula->sumOf, ElementsAre("2024-03/receiptAmount", "2024-04/receiptAmount"));
  EXPECT_THAT(view.columns[11].formula->sumOf, IsEmpty());
}

}  // namespace
}  // namespace quillon::workbench
