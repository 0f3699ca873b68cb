#include "workbench/presentation/report_charts.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tests/workbench/presentation/small_result.h"
#include "tests/workbench/presentation/view_of_rows.h"
#include "workbench/presentation/summary_layout.h"
#include "workbench/presentation/svg_chart.h"

namespace quillon::workbench {
namespace {

using test::amount;
using test::viewColumn;
using testing::ElementsAre;
using Values = std::vector<tsql::Value>;

// Label and exact figure, as a statement or a chart gives them.
using Figures = std::vector<std::pair<std::string, std::string>>;

Figures figuresOf(const Chart& chart) {
  Figures figures;
  for (const ChartPoint& point : chart.points)
    figures.emplace_back(point.label, tsql::toText(point.value).value_or(""));
  return figures;
}

Figures asked(tsql::Connection& account, const std::string& statement) {
  Figures figures;
  for (const auto cursor = account.query(statement); cursor->next();)
    figures.emplace_back(tsql::toText(cursor->value(0)).value_or(""), tsql::toText(cursor->value(1)).value_or(""));
  return figures;
}

View summaryOf(const ResultTable& table, const std::string& report, const std::string& mode) {
  return summaryView({.report = reportNamed(report), .table = table, .mode = mode});
}

TEST(StructureChartsTest, ShowTheClosingBalanceByCostItem) {
  const auto account = test::accountWithResult();
  test::fillResult(*account);
  const ResultTable table(*account, "Result");
  const auto charts = structureCharts(summaryOf(table, "sfc-item", "1"), Language::chinese);
  ASSERT_EQ(charts.size(), 1U);
  EXPECT_EQ(charts[0].kind, Chart::Kind::bars);
  EXPECT_EQ(charts[0].title, "期末结存的成本构成");
  EXPECT_EQ(charts[0].labels, "成本项目");
  EXPECT_EQ(
      figuresOf(charts[0]),
      asked(*account, "Select cFXName, Sum(iMoney) From Result Where iState = 4 Group By cFXName Order By 2 Desc"));
  EXPECT_EQ(charts[0].points.size(), 2U);
}

// Twenty cost items: twelve bars, and one for the other eight.
TEST(StructureChartsTest, SumWhatHasNoBarOfItsOwn) {
  const auto account = test::accountWithResult();
  for (int i = 1; i <= 20; ++i) {
    std::ostringstream insert;
    insert << "Insert Into Result (cFXCode, cFXName, iState, iMoney) Values (N'" << i << "', N'项目" << i << "', 4, "
           << i << "00.0" << i % 10 << ')';
    account->execute(insert.str());
  }
  account->execute("Insert Into Result (cFXCode, cFXName, iState, iMoney) Values (N'21', N'冲减', 4, -9999.99)");
  const ResultTable table(*account, "Result");
  const auto charts = structureCharts(summaryOf(table, "sfc-item", "1"), Language::english);
  ASSERT_EQ(charts.size(), 1U);
  const Figures shown = figuresOf(charts[0]);
  ASSERT_EQ(shown.size(), 13U);
  EXPECT_EQ(shown[0], (std::pair<std::string, std::string>{"冲减", "-9999.9900"})) << "size counts, not sign";
  EXPECT_EQ(shown[1].first, "项目20");
  EXPECT_EQ(shown[12].first, "9 others");
  EXPECT_EQ(shown[12].second,
            asked(*account, "Select N'', Sum(iMoney) From Result Where iMoney > 0 And iMoney < 1000")[0].second);
  Figures listed(shown.begin(), shown.end() - 1);
  EXPECT_EQ(listed, asked(*account, "Select Top 12 cFXName, iMoney From Result Order By Abs(iMoney) Desc"));
}

TEST(StructureChartsTest, WithoutAClosingBalanceReceiptsAndIssues) {
  auto account = tsql::Connection::openInMemory();
  account->execute(
      "Create Table Result (cFXCode nvarchar(20), cFXName nvarchar(60), iItemInQuantity decimal(18,6), iIteminPrice money, "
      "iItemoutQuantity decimal(18,6), iItemOutPrice money, iAInQuantity decimal(18,6), iAInPrice money, iAOutQuantity "
      "decimal(18,6), iAOutPrice money)");
  account->execute(
      "Insert Into Result Values (N'01', N'材料', 1, 100.25, 0, 0, 1, 100.25, 0, 0), (N'01', N'材料', 0, 0, 2, 30.10, 0, "
      "0, 2, 30.10), (N'02', N'人工', 0, 0, 1, 40, 0, 0, 1, 40), (Null, Null, Null, Null, Null, Null, 0, 0, 1, 5)");
  const ResultTable table(*account, "Result");
  const auto charts = structureCharts(summaryOf(table, "fx-wt", ""), Language::chinese);
  ASSERT_EQ(charts.size(), 2U);
  EXPECT_EQ(charts[0].title, "收入的成本构成");
  EXPECT_EQ(figuresOf(charts[0]), (Figures{{"材料", "100.2500"}})) << "without zeros";
  EXPECT_EQ(charts[1].title, "发出的成本构成");
  EXPECT_EQ(figuresOf(charts[1]), (Figures{{"人工", "40.0000"}, {"材料", "30.1000"}, {"（无成本项目）", "5.0000"}}));
}

View monthsOfLedger() {
  const auto row = [](RowKind kind, tsql::Value month, const char* words, tsql::Value balance) {
    return ViewRow{.kind = kind, .level = 0, .cells = {std::move(month), words, amount(77), std::move(balance)}};
  };
  return test::viewOf(
      {viewColumn("月份", ColumnRole::text, true), viewColumn("摘要", ColumnRole::text, true),
       viewColumn("金额", ColumnRole::money, false, "收入"), viewColumn("金额", ColumnRole::money, false, "结存")},
      {row(RowKind::opening, {}, "期初结存", amount(10000)), row(RowKind::line, std::int64_t{2}, "购入", amount(15000)),
       row(RowKind::monthTotal, std::int64_t{2}, "本月合计", amount(15000)),
       row(RowKind::yearTotal, std::int64_t{2}, "本年累计", amount(15000)),
       row(RowKind::monthTotal, std::int64_t{5}, "本月合计", amount(12075))},
      {row(RowKind::closing, {}, "期末结存", amount(12075))});
}

std::unique_ptr<tsql::Connection> accountWithLedger() {
  auto account = tsql::Connection::openInMemory();
  account->execute("Create Table ia_subsidiary (AutoID int, bRdFlag int)");
  account->execute("Insert Into ia_subsidiary Values (11, 1), (12, 0)");
  account->execute(
      "Create Table Ledger (id int, datatype int, cfxCode nvarchar(20), cfxName nvarchar(60), cfxCCode nvarchar(20), "
      "cfxCName nvarchar(60), iPrice money, iItemPrice money)");
  // 100 open; 50 come in, 45 of them broken down; 29.25 go out.
  account->execute(
      "Insert Into Ledger Values (Null, 0, N'01', N'材料', N'0', N'直接', 100, 70), (Null, 0, N'02', N'人工', N'0', "
      "N'直接', 100, 30), (11, 1, N'01', N'材料', N'0', N'直接', 50, 45), (12, 1, N'01', N'材料', N'0', N'直接', 29.25, "
      "19.25), (12, 1, N'02', N'人工', N'0', N'直接', 29.25, 10), (Null, 2, N'01', N'材料', N'0', N'直接', 999, 999)");
  return account;
}

TEST(LedgerChartsTest, ShowTheBalanceOverTheMonths) {
  const auto account = accountWithLedger();
  const auto charts = ledgerCharts(monthsOfLedger(), ResultTable(*account, "Ledger"), Language::chinese);
  ASSERT_EQ(charts.size(), 2U);
  EXPECT_EQ(charts[0].kind, Chart::Kind::line);
  EXPECT_EQ(figuresOf(charts[0]),
            (Figures{{"期初", "100.00"}, {"2月", "150.00"}, {"3月", "150.00"}, {"4月", "150.00"}, {"5月", "120.75"}}))
      << "in months without lines the balance stays";
}

TEST(LedgerChartsTest, TheClosingBalanceIsShownWholeByCostItem) {
  const auto account = accountWithLedger();
  const auto charts = ledgerCharts(monthsOfLedger(), ResultTable(*account, "Ledger"), Language::english);
  ASSERT_EQ(charts.size(), 2U);
  Figures expected = asked(*account,
                           "Select cfxName, Sum(Case When id = 12 Then 0 - iItemPrice Else iItemPrice End) From Ledger "
                           "Where datatype < 2 Group By cfxName Order By 2 Desc");
  // 120.75 close, 115.75 of them fall to cost items.
  expected.emplace_back("(no cost item)", "5.0000");
  EXPECT_EQ(figuresOf(charts[1]), expected);
}

TEST(LedgerChartsTest, ALedgerWithoutMonthsHasNoLine) {
  const auto account = accountWithLedger();
  View view = monthsOfLedger();
  view.rows = heldRows(std::make_shared<const std::vector<ViewRow>>());
  const auto charts = ledgerCharts(view, ResultTable(*account, "Ledger"), Language::chinese);
  ASSERT_EQ(charts.size(), 1U);
  EXPECT_EQ(charts[0].kind, Chart::Kind::bars);
}

std::vector<std::string> textsOf(const AxisMarks& marks, Language language) {
  std::vector<std::string> texts;
  for (int mark = marks.first; mark <= marks.last; ++mark)
    texts.push_back(marks.text(mark, axisUnit(marks, language)));
  return texts;
}

TEST(AxisTest, MarksAreRoundFigures) {
  EXPECT_THAT(textsOf(axisMarks(0, 11802758.45), Language::chinese),
              ElementsAre("0", "200", "400", "600", "800", "1,000", "1,200"));
  EXPECT_THAT(textsOf(axisMarks(0, 11802758.45), Language::english), ElementsAre("0", "2", "4", "6", "8", "10", "12"));
  EXPECT_THAT(textsOf(axisMarks(-350, 900), Language::english), ElementsAre("-500", "0", "500", "1,000"));
  EXPECT_THAT(textsOf(axisMarks(0, 0.034), Language::chinese), ElementsAre("0", "0.01", "0.02", "0.03", "0.04"));
  EXPECT_THAT(textsOf(axisMarks(0, 23000), Language::chinese),
              ElementsAre("0", "5,000", "10,000", "15,000", "20,000", "25,000"));
  EXPECT_THAT(textsOf(axisMarks(-7, -3), Language::chinese), ElementsAre("-8", "-6", "-4", "-2", "0"));
}

TEST(AxisTest, TakesInEveryFigureWithFewMarks) {
  for (double figure = 0.01; figure < 1e12; figure *= 1.37) {
    for (const AxisMarks& marks : {axisMarks(0, figure), axisMarks(-figure, 0), axisMarks(-figure / 3, figure)}) {
      EXPECT_LE(marks.last - marks.first, 7);
      EXPECT_GE(marks.last - marks.first, 2);
    }
    EXPECT_GE(axisMarks(0, figure).at(axisMarks(0, figure).last), figure * (1 - 1e-9));
  }
}

TEST(SvgChartTest, ALineCarriesTheFiguresOfItsEndsAndExtremes) {
  const Chart chart{.kind = Chart::Kind::line,
                    .title = "各月结存",
                    .labels = "月份",
                    .measure = "金额",
                    .points = {{"1月", amount(1000000)},
                               {"2月", amount(9000000)},
                               {"3月", amount(5000000)},
                               {"4月", amount(-200000)},
                               {"5月", amount(4000000)}}};
  std::ostringstream out;
  writeSvg(out, {}, chart, "c1");
  for (const char* figure : {">10,000.00</text>", ">90,000.00</text>", ">-2,000.00</text>", ">40,000.00</text>"})
    EXPECT_THAT(out.str(), testing::HasSubstr(figure));
  EXPECT_THAT(out.str(), testing::Not(testing::HasSubstr(">50,000.00</text>")));
  EXPECT_THAT(out.str(), testing::HasSubstr("3月 50,000.00</title>")) << "the others tell it when pointed at";
  EXPECT_THAT(out.str(), testing::HasSubstr("金额（万）"));
}

}  // namespace
}  // namespace quillon::workbench
