// Laid out reports as workbooks: what stands where, and that formulas come to the figures that the views have.

#include <gmock/gmock.h>

#include <random>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/presentation/small_result.h"
#include "tests/workbench/presentation/xlsx_evaluation.h"
#include "tests/workbench/presentation/xlsx_sheet.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/lines_layout.h"
#include "workbench/presentation/summary_layout.h"
#include "workbench/presentation/tree_layout.h"
#include "workbench/presentation/xlsx_workbook.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;
using testing::StartsWith;

tsql::Value money(std::int64_t units) {
  return tsql::Exact{.units = units, .scale = 2};
}

ViewColumn textColumn(const std::string& chinese, bool key = false) {
  return {.column = {.name = chinese, .chinese = chinese, .english = chinese}, .key = key};
}

ViewColumn figureColumn(const std::string& group, const std::string& caption, ColumnRole role) {
  return {.column = {.name = group + caption, .chinese = caption, .english = caption, .role = role},
          .groupChinese = group,
          .groupEnglish = group};
}

View viewOf(std::vector<ViewColumn> columns, std::vector<ViewRow> rows, std::vector<ViewRow> totals = {}) {
  View view;
  view.columns = std::move(columns);
  view.totals = std::move(totals);
  view.lineCount = std::ranges::count(rows, RowKind::line, &ViewRow::kind);
  view.rows = heldRows(std::make_shared<const std::vector<ViewRow>>(std::move(rows)));
  return view;
}

class XlsxReportTest : public testing::Test {
 protected:
  void SetUp() override {
    account_->execute(
        "Create Table Ca_FxClassDef (iFxCId int, cFxCCode nvarchar(20), cFxCName nvarchar(60), iGrade int); "
        "Create Table Ca_FxDef (iFxID int, cFxCID int, cFxCode nvarchar(20))");
  }

  static LaidOutReport reportOf(View view, Layout layout = Layout::lines) {
    LaidOutReport report;
    report.heading.title = "明细账";
    report.heading.company = "样例公司";
    report.heading.period = "2024.01-2024.12";
    report.heading.printed = "2024-12-31";
    report.heading.conditions = {{"仓库", "07 线边库"}, {"存货", "0101 螺栓"}};
    report.sections.push_back({.layout = layout, .view = std::move(view)});
    return report;
  }

  test::XlsxEvaluation written(const LaidOutReport& report, const XlsxLimits& limits = {}) {
    writeXlsx(file_.path(), report, limits);
    return test::XlsxEvaluation(file_.path());
  }
  test::XlsxSheet sheetOf(View view) { return written(reportOf(std::move(view))).sheets().at(0); }

  // The exact sum of `expression` over the result table, as this test asks for it.
  double sqlSum(const std::string& expression, const std::string& where = "1 = 1") {
    const auto cursor = account_->query("Select Sum(" + expression + ") From Result Where " + where);
    return cursor->next() ? std::stod(tsql::toText(cursor->value(0)).value_or("0")) : 0;
  }
  LaidOutReport laidOut(Language language, const Arrangement& arrangement = {}) {
    const LayoutRequest request{.report = reportNamed("sfc-item"),
                                .table = result_,
                                .mode = "1",
                                .language = language,
                                .arrangement = arrangement};
    LaidOutReport report;
    report.heading = test::documentOf(result_, language);
    report.sections.push_back({.layout = Layout::summary, .view = summaryView(request)});
    report.sections.push_back({.layout = Layout::tree, .view = treeView(request)});
    report.sections.push_back({.layout = Layout::lines, .view = linesView(request)});
    return report;
  }

  test::TemporaryFile file_{"-明细账.xlsx"};
  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
};

// Lines of a warehouse with their sums above or below them: name, document, quantity, amount.
std::vector<ViewColumn> stockColumns() {
  return {textColumn("项目", true), textColumn("单据"), figureColumn("", "数量", ColumnRole::quantity),
          figureColumn("", "金额", ColumnRole::money)};
}

ViewRow stockRow(RowKind kind, int level, const std::string& name, const std::string& document, std::int64_t quantity,
                 std::int64_t amount) {
  return {.kind = kind,
          .level = level,
          .cells = {name, document.empty() ? tsql::Value() : tsql::Value(document), money(quantity), money(amount)}};
}

TEST_F(XlsxReportTest, HeadingStandsInFewLinesThatStayInSight) {
  const test::XlsxSheet sheet = sheetOf(viewOf(stockColumns(), {stockRow(RowKind::line, 0, "原料库", "11-1", 1, 2)}));
  EXPECT_EQ(sheet.name(), "明细");
  EXPECT_EQ(sheet.row(1), "明细账");
  EXPECT_EQ(sheet.row(2), "单位：样例公司　期间：2024.01-2024.12　打印日期：2024-12-31");
  EXPECT_EQ(sheet.row(3), "仓库：07 线边库　存货：0101 螺栓");
  EXPECT_EQ(sheet.row(4), "项目|单据|数量|金额");
  EXPECT_EQ(sheet.row(5), "原料库|11-1|0.01|0.02");
  EXPECT_EQ(sheet.frozen(), "B5") << "below the headings and behind the key";
  EXPECT_EQ(sheet.filter(), "A4:D5");
  EXPECT_EQ(sheet.row(7), "共 1 行");
}

TEST_F(XlsxReportTest, ManyConditionsTakeSeveralLines) {
  LaidOutReport report = reportOf(viewOf(stockColumns(), {stockRow(RowKind::line, 0, "原料库", "11-1", 1, 2)}));
  report.heading.language = Language::english;
  report.heading.conditions = {{"Year", "2024"}, {"Inventory", std::string(80, 'x')}, {"Batch", "B\n7"}};
  const test::XlsxSheet sheet = written(report).sheets().at(0);
  EXPECT_EQ(sheet.row(3), "Year: 2024   Inventory: " + std::string(80, 'x'));
  EXPECT_EQ(sheet.row(4), "Batch: B 7");
  EXPECT_EQ(sheet.frozen(), "B6");
}

TEST_F(XlsxReportTest, EachLayoutHasItsSheetAndSumsAreThoseOfTheTable) {
  test::fillResult(*account_);
  const test::XlsxEvaluation book = written(laidOut(Language::chinese));
  EXPECT_THAT(book.sheets().at(0).names(), ElementsAre("按成本项目汇总", "分级汇总", "明细"));
  EXPECT_THAT(book.disagreements(), IsEmpty());

  const test::XlsxSheet& summary = book.sheets().at(0);
  EXPECT_EQ(summary.row(4), "编码|成本项目|数量|金额|数量|金额|数量|金额|数量|金额");
  EXPECT_EQ(summary.row(3), "期初结存|收入|发出|期末结存");
  EXPECT_THAT(summary.merged(), ElementsAre("C3:D3", "E3:F3", "G3:H3", "I3:J3"));
  EXPECT_EQ(summary.frozen(), "C5");
  EXPECT_EQ(summary.cell("F7").formula, "SUBTOTAL(9,F5:F6)");
  EXPECT_THAT(summary.cell("F7").number, Optional(sqlSum("iMoney", "iState = 2")));
  EXPECT_THAT(summary.cell("I7").number, Optional(sqlSum("iQuantity", "iState = 4")));

  const test::XlsxSheet& tree = book.sheets().at(1);
  EXPECT_EQ(tree.filter(), "");
  EXPECT_THAT(tree.row(5), StartsWith("01 材料|"));
  EXPECT_EQ(tree.level(5), 0);
  EXPECT_EQ(tree.level(6), 1);
  EXPECT_EQ(tree.level(7), 2);
  EXPECT_EQ(tree.cell("E5").formula, "SUBTOTAL(9,E6:E8)");
  EXPECT_THAT(tree.cell("E5").number, Optional(sqlSum("iMoney", "iState = 2 And cFXCode = N'01'")));

  const test::XlsxSheet& lines = book.sheets().at(2);
  EXPECT_THAT(lines.filter(), StartsWith("A3:"));
  EXPECT_THAT(lines.filter(), testing::EndsWith("9"));
}

// Receipts, issues and balances do not add up, so each has a total of its own.
TEST_F(XlsxReportTest, ATotalOfOneStateSumsTheLinesOfThisState) {
  test::fillResult(*account_);
  LaidOutReport report = laidOut(Language::chinese);
  report.sections.erase(report.sections.begin(), report.sections.begin() + 2);
  const test::XlsxEvaluation book = written(report);
  EXPECT_THAT(book.disagreements(), IsEmpty());
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_THAT(sheet.row(11), StartsWith("收入合计|"));
  EXPECT_EQ(sheet.cell("K11").formula, "SUMIFS(K4:K9,I4:I9,\"收入\")");
  EXPECT_THAT(sheet.cell("K11").number, Optional(sqlSum("iMoney", "iState = 2")));
  EXPECT_EQ(sheet.cell("J13").formula, "SUMIFS(J4:J9,I4:I9,\"期末结存\")");
  EXPECT_THAT(sheet.cell("J13").number, Optional(sqlSum("iQuantity", "iState = 4")));
}

TEST_F(XlsxReportTest, SubtotalsOfOneStateLeaveOutTheSubtotalsBetween) {
  test::fillResult(*account_);
  LaidOutReport report = laidOut(Language::chinese, {.groupBy = {"cWhCode", "cInvCode"}});
  report.sections.erase(report.sections.begin(), report.sections.begin() + 2);
  report.sections.front().grouped = true;
  const test::XlsxEvaluation book = written(report);
  EXPECT_THAT(book.disagreements(), IsEmpty());
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_THAT(sheet.row(8), HasSubstr("0101 小计"));
  EXPECT_EQ(sheet.filter(), "") << "it would tear lines from their sums";
  EXPECT_EQ(sheet.level(4), 2) << "a line folds into the subtotal of its inventory, this into that of its warehouse";
  EXPECT_EQ(sheet.level(8), 1);
  int subtotals = 0;
  for (int row = 4; row <= sheet.lastRow() - 2; ++row) {
    const test::XlsxCell cell = sheet.cell("K" + std::to_string(row));
    if (!cell.bold) continue;
    ++subtotals;
    EXPECT_NE(cell.formula, "") << "row " << row << ": " << sheet.row(row);
  }
  EXPECT_EQ(subtotals, 16) << "four states and two, by inventory and by warehouse, and four of all";
}

TEST_F(XlsxReportTest, TotalsOfACutSheetStayThoseOfAllRows) {
  test::fillResult(*account_);
  LaidOutReport report = laidOut(Language::chinese);
  for (ReportSection& section : report.sections)
    section.limit = 1;
  const test::XlsxEvaluation book = written(report);
  EXPECT_EQ(book.sheets().at(0).cell("F6").formula, "");
  EXPECT_EQ(book.sheets().at(2).cell("K6").formula, "") << "even where the rows shown come to the same";
  EXPECT_THAT(book.sheets().at(0).cell("F6").number, Optional(sqlSum("iMoney", "iState = 2")));
  EXPECT_THAT(book.sheets().at(0).row(8), StartsWith("共 2 行，显示前 1 行"));
}

TEST_F(XlsxReportTest, HeadsOfGroupsSumWhatIsBelowThem) {
  using enum RowKind;
  const test::XlsxEvaluation book =
      written(reportOf(viewOf(stockColumns(),
                              {stockRow(group, 0, "原料库", "", 600, 6000), stockRow(group, 1, "螺栓", "", 300, 3000),
                               stockRow(line, 2, "一", "11-1", 100, 1000), stockRow(line, 2, "二", "11-2", 200, 2000),
                               stockRow(group, 1, "螺母", "", 300, 3000), stockRow(line, 2, "三", "11-3", 300, 3000),
                               stockRow(group, 0, "成品库", "", 50, 501), stockRow(line, 1, "四", "11-4", 50, 500)},
                              {stockRow(total, 0, "合计", "", 650, 6501)}),
                       Layout::tree));
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_EQ(sheet.name(), "分级汇总");
  EXPECT_EQ(sheet.cell("C5").formula, "SUBTOTAL(9,C6:C10)");
  EXPECT_EQ(sheet.cell("C6").formula, "SUBTOTAL(9,C7:C8)");
  EXPECT_EQ(sheet.cell("D9").formula, "SUBTOTAL(9,D10:D10)");
  EXPECT_EQ(sheet.cell("C11").formula, "SUBTOTAL(9,C12:C12)");
  EXPECT_EQ(sheet.cell("D11").formula, "") << "the line comes to one cent less";
  EXPECT_THAT(sheet.cell("D11").number, Optional(5.01));
  EXPECT_EQ(sheet.cell("C13").formula, "SUBTOTAL(9,C5:C12)");
  EXPECT_EQ(sheet.cell("D13").formula, "") << "it would count the figure that stands for itself and its line";
  EXPECT_THAT(book.disagreements(), IsEmpty());
  EXPECT_TRUE(sheet.cell("A5").bold && sheet.cell("A5").filled);
  EXPECT_FALSE(sheet.cell("A7").bold);
  EXPECT_EQ(sheet.level(5), 0);
  EXPECT_EQ(sheet.level(6), 1);
  EXPECT_EQ(sheet.level(7), 2);
  EXPECT_EQ(sheet.level(12), 1);
  EXPECT_EQ(sheet.filter(), "");
}

// A document's line and what it is made of are in one column; sums are of lines.
TEST_F(XlsxReportTest, DetailsAreNotCountedTwice) {
  using enum RowKind;
  const test::XlsxEvaluation book =
      written(reportOf(viewOf(stockColumns(),
                              {stockRow(group, 0, "11-1", "", 300, 3000), stockRow(line, 1, "螺栓", "1", 100, 1000),
                               stockRow(detail, 1, "材料", "", 100, 700), stockRow(detail, 1, "人工", "", 100, 200),
                               stockRow(line, 1, "螺母", "2", 200, 2000), stockRow(detail, 1, "材料", "", 200, 2000)},
                              {stockRow(total, 0, "合计", "", 300, 3000)}),
                       Layout::vouchers));
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_EQ(sheet.cell("D5").formula, "SUMIFS(D6:D10,B6:B10,\"<>\")") << "only lines have a number";
  EXPECT_EQ(sheet.cell("D11").formula, "SUMIFS(D5:D10,B5:B10,\"<>\")");
  EXPECT_THAT(book.disagreements(), IsEmpty());
  EXPECT_EQ(sheet.level(6), 1);
  EXPECT_EQ(sheet.level(7), 2);
}

std::vector<ViewColumn> ledgerViewColumns() {
  return {textColumn("日期", true),
          figureColumn("收入", "数量", ColumnRole::quantity),
          figureColumn("收入", "单价", ColumnRole::unitCost),
          figureColumn("收入", "金额", ColumnRole::money),
          figureColumn("发出", "数量", ColumnRole::quantity),
          figureColumn("发出", "金额", ColumnRole::money),
          figureColumn("结存", "数量", ColumnRole::quantity),
          figureColumn("结存", "金额", ColumnRole::money)};
}

// Amounts in cents; quantities are the same in units. A negative number stands for nothing.
ViewRow ledgerRow(RowKind kind, const std::string& date, std::int64_t in, std::int64_t out, std::int64_t balance) {
  const auto cell = [](std::int64_t number) { return number < 0 ? tsql::Value() : money(number); };
  return {
      .kind = kind,
      .level = 0,
      .cells = {date, cell(in), cell(in < 0 ? -1 : 100), cell(in), cell(out), cell(out), cell(balance), cell(balance)}};
}

TEST_F(XlsxReportTest, ALedgerComputesBalancesAndMonths) {
  using enum RowKind;
  const test::XlsxEvaluation book = written(
      reportOf(viewOf(ledgerViewColumns(),
                      {ledgerRow(opening, "上年结转", -1, -1, 1000), ledgerRow(line, "01-05", 500, -1, 1500),
                       ledgerRow(line, "01-09", -1, 300, 1200), ledgerRow(monthTotal, "本月合计", 500, 300, 1200),
                       ledgerRow(yearTotal, "本年累计", 500, 300, 1200), ledgerRow(line, "02-01", 70, -1, 1270),
                       ledgerRow(monthTotal, "本月合计", 70, 0, 1270), ledgerRow(yearTotal, "本年累计", 570, 300, 1270),
                       ledgerRow(difference, "差额", -1, -1, 3)},
                      {ledgerRow(difference, "差额", -1, -1, 3), ledgerRow(closing, "期末结存", -1, -1, 1270),
                       ledgerRow(closing, "期末结存", -1, -1, 1270)}),
               Layout::ledger));
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_EQ(sheet.row(4), "收入|发出|结存");
  EXPECT_THAT(sheet.merged(), ElementsAre("B4:D4", "E4:F4", "G4:H4"));
  EXPECT_EQ(sheet.frozen(), "B6");
  EXPECT_EQ(sheet.cell("G6").formula, "") << "the opening balance is what the ledger begins with";
  EXPECT_EQ(sheet.cell("G7").formula, "G6+B7");
  EXPECT_EQ(sheet.cell("H8").formula, "H7-F8");
  EXPECT_EQ(sheet.cell("B9").formula, "SUBTOTAL(9,B7:B8)");
  EXPECT_EQ(sheet.cell("C9").formula, "") << "prices do not add up";
  EXPECT_EQ(sheet.cell("H9").formula, "H8");
  EXPECT_EQ(sheet.cell("F10").formula, "SUBTOTAL(9,F7:F9)");
  EXPECT_EQ(sheet.cell("G11").formula, "G10+B11");
  EXPECT_EQ(sheet.cell("D12").formula, "SUBTOTAL(9,D11:D11)");
  EXPECT_EQ(sheet.cell("D13").formula, "SUBTOTAL(9,D7:D12)");
  EXPECT_EQ(sheet.cell("H14").formula, "");
  EXPECT_EQ(sheet.cell("H15").formula, "");
  EXPECT_EQ(sheet.cell("H16").formula, "H13") << "a difference is no balance";
  EXPECT_EQ(sheet.cell("H17").formula, "H13");
  EXPECT_TRUE(sheet.cell("H15").red);
  EXPECT_THAT(book.disagreements(), IsEmpty());
  EXPECT_TRUE(sheet.cell("A9").bold);
  EXPECT_EQ(sheet.filter(), "");
}

// Receipts and issues of a month stand in rows of their own there, and cost items across.
TEST_F(XlsxReportTest, AColumnarLedgerComputesBalancesAndMonths) {
  using enum RowKind;
  const auto amount = [](const char* caption) { return figureColumn("金额", caption, ColumnRole::money); };
  const auto row = [](RowKind kind, const char* name, std::int64_t in, std::int64_t out, std::int64_t balance,
                      std::int64_t item) {
    const auto cell = [](std::int64_t number) { return number == 0 ? tsql::Value() : money(number); };
    return ViewRow{.kind = kind, .level = 0, .cells = {name, cell(in), cell(out), cell(balance), cell(item)}};
  };
  const test::XlsxEvaluation book = written(
      reportOf(viewOf({textColumn("日期", true), amount("收入"), amount("发出"), amount("结存"),
                       figureColumn("成本项目", "材料", ColumnRole::money)},
                      {row(opening, "期初", 0, 0, 1000, 900), row(line, "01-05", 500, 0, 1500, 400),
                       row(line, "01-06", 0, 200, 1300, -100), row(monthTotal, "本月收入", 500, 0, 0, 400),
                       row(monthTotal, "本月发出", 0, 200, 0, -100), row(monthTotal, "月末结存", 0, 0, 1300, 1200),
                       row(line, "02-05", 100, 0, 1400, 100), row(monthTotal, "本月收入", 100, 0, 0, 100)},
                      {row(closing, "期末结存", 0, 0, 1400, 1300)}),
               Layout::columnar));
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_EQ(sheet.cell("D7").formula, "D6+B7");
  EXPECT_EQ(sheet.cell("D8").formula, "D7-C8");
  EXPECT_EQ(sheet.cell("B9").formula, "SUBTOTAL(9,B7:B8)");
  EXPECT_EQ(sheet.cell("C10").formula, "SUBTOTAL(9,C7:C9)");
  EXPECT_EQ(sheet.cell("D11").formula, "D8");
  EXPECT_EQ(sheet.cell("D12").formula, "D11+B12");
  EXPECT_EQ(sheet.cell("B13").formula, "SUBTOTAL(9,B12:B12)");
  EXPECT_EQ(sheet.cell("D14").formula, "D12");
  EXPECT_THAT(book.disagreements(), IsEmpty());
}

TEST_F(XlsxReportTest, ABalanceThatDoesNotFollowStandsForItself) {
  using enum RowKind;
  const test::XlsxEvaluation book = written(
      reportOf(viewOf(ledgerViewColumns(),
                      {ledgerRow(opening, "期初", -1, -1, 1000), ledgerRow(line, "01-05", 500, -1, 1501),
                       ledgerRow(line, "01-09", -1, 300, 1201), ledgerRow(monthTotal, "本月合计", 500, 301, 1201),
                       ledgerRow(difference, "差额", -1, -1, 1)}),
               Layout::ledger));
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_EQ(sheet.cell("H7").formula, "");
  EXPECT_THAT(sheet.cell("H7").number, Optional(15.01));
  EXPECT_EQ(sheet.cell("H8").formula, "H7-F8") << "it goes on from there";
  EXPECT_EQ(sheet.cell("D9").formula, "SUBTOTAL(9,D7:D8)");
  EXPECT_EQ(sheet.cell("F9").formula, "");
  EXPECT_TRUE(sheet.cell("H10").red && sheet.cell("H10").bold);
  EXPECT_THAT(book.disagreements(), IsEmpty());
}

TEST_F(XlsxReportTest, RowsPastTheLastOneOfASheetGoOnOnAnother) {
  using enum RowKind;
  std::vector<ViewRow> rows = {ledgerRow(opening, "期初", -1, -1, 0)};
  for (std::int64_t i = 1; i <= 7; ++i)
    rows.push_back(ledgerRow(line, "01-0" + std::to_string(i), 100, -1, 100 * i));
  rows.push_back(ledgerRow(monthTotal, "本月合计", 700, -1, 700));
  LaidOutReport report = reportOf(viewOf(ledgerViewColumns(), rows), Layout::ledger);
  report.sections.push_back(report.sections.front());
  const test::XlsxEvaluation book = written(report, {.rowsOfSheet = 12});  // 5 above and 2 below: 5 rows on each
  EXPECT_THAT(book.sheets().at(0).names(), ElementsAre("明细账", "明细账 (2)", "明细账 2", "明细账 2 (2)"));
  EXPECT_THAT(book.disagreements(), IsEmpty());
  const test::XlsxSheet& first = book.sheets().at(0);
  const test::XlsxSheet& second = book.sheets().at(1);
  EXPECT_EQ(first.lastRow(), 10);
  EXPECT_EQ(second.row(5), first.row(5));
  EXPECT_EQ(second.frozen(), first.frozen());
  EXPECT_EQ(second.width(8), first.width(8));
  EXPECT_EQ(second.cell("H6").formula, "'明细账'!H10+D6");
  EXPECT_EQ(second.cell("D9").formula, "SUBTOTAL(9,'明细账'!D7:D10,D6:D8)");
  EXPECT_EQ(second.row(11), "共 7 行");
}

TEST_F(XlsxReportTest, NumbersThatACellCannotHoldAreTextsAndInNoFormula) {
  using enum RowKind;
  const tsql::Value large = tsql::Exact{.units = 9'223'372'036'854'775'807, .scale = 2};
  ViewRow row = stockRow(line, 0, "一", "11-1", 100, 0);
  row.cells[3] = large;
  ViewRow sums = stockRow(total, 0, "合计", "", 300, 0);
  sums.cells[3] = large;
  const test::XlsxEvaluation book =
      written(reportOf(viewOf(stockColumns(), {row, stockRow(line, 0, "二", "11-2", 200, 0)}, {sums})));
  const test::XlsxSheet& sheet = book.sheets().at(0);
  EXPECT_EQ(sheet.cell("D5").text, "92233720368547758.07");
  EXPECT_EQ(sheet.cell("D7").text, "92233720368547758.07");
  EXPECT_EQ(sheet.cell("C7").formula, "SUBTOTAL(9,C5:C6)");
}

TEST_F(XlsxReportTest, NumbersHaveTheDecimalsOfTheirColumn) {
  LaidOutReport report = reportOf(viewOf(ledgerViewColumns(), {ledgerRow(RowKind::line, "01-05", 500, 1, 1)}));
  report.heading.quantityDecimals = 3;
  report.heading.unitCostDecimals = 6;
  const test::XlsxSheet sheet = written(report).sheets().at(0);
  EXPECT_EQ(sheet.cell("B6").format, "#,##0.000");
  EXPECT_EQ(sheet.cell("C6").format, "#,##0.000000");
  EXPECT_EQ(sheet.cell("D6").format, "#,##0.00");
}

TEST_F(XlsxReportTest, ColumnsAreAsWideAsWhatTheyShow) {
  using enum RowKind;
  const test::XlsxSheet sheet =
      sheetOf(viewOf(stockColumns(),
                     {stockRow(line, 0, "内六角圆柱头螺钉", std::string(300, 'x'), 1, 123456789012),
                      stockRow(line, 0, "一", "", 1, 1)},
                     {stockRow(total, 0, "合计", "", 2, 123456789013)}));
  EXPECT_GE(sheet.width(1), 16) << "eight Chinese characters take two cells each";
  EXPECT_LT(sheet.width(1), 22);
  EXPECT_NEAR(sheet.width(2), 48, 1) << "a long text does not push all else out of sight";
  EXPECT_GE(sheet.width(4), std::string("1,234,567,890.13").size());
  EXPECT_LT(sheet.width(3), 10);
}

TEST_F(XlsxReportTest, PagesAreLandscapeWithHeadingsOnEach) {
  std::vector<ViewColumn> columns = ledgerViewColumns();
  ViewRow row = ledgerRow(RowKind::line, "01-05", 500, 1, 1);
  LaidOutReport report = reportOf(viewOf(columns, {row}));
  report.heading.company = "甲&乙";
  std::string pages = written(report).sheets().at(0).pages();
  EXPECT_THAT(pages, HasSubstr("paperSize=\"9\" fitToHeight=\"0\" orientation=\"landscape\""));
  EXPECT_THAT(pages, HasSubstr("第 &P 页，共 &N 页"));
  EXPECT_THAT(pages, HasSubstr("&L甲&&乙&R明细账"));
  EXPECT_THAT(pages, HasSubstr("repeated '明细'!$4:$5"));
  for (int i = 0; i < 10; ++i) {
    columns.push_back(textColumn("说明"));
    row.cells.emplace_back(std::string(60, 'x'));
  }
  pages = written(reportOf(viewOf(columns, {row}))).sheets().at(0).pages();
  EXPECT_THAT(pages, HasSubstr("fitToWidth=\"2\"")) << "on one page it could not be read";
  EXPECT_THAT(pages, HasSubstr("repeated '明细'!$A:$A,'明细'!$4:$5"));
}

TEST_F(XlsxReportTest, SaysWhenThereAreNoRows) {
  LaidOutReport report = reportOf({});
  report.sections.clear();
  report.heading.title = "收/发:存";
  const test::XlsxSheet sheet = written(report).sheets().at(0);
  EXPECT_EQ(sheet.name(), "收 发 存") << "a sheet's name has no such signs";
  EXPECT_EQ(sheet.row(5), "没有符合条件的数据");
}

// Trees of any shape, with details that count in the same columns and figures that are off: whatever formula is written
// comes to the figure that the view has, and where all adds up there is one.
TEST_F(XlsxReportTest, AnyFormulaComesToItsFigure) {
  using enum RowKind;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    std::mt19937 random(seed);
    const auto below = [&random](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    const bool details = seed % 3 == 0, wrong = seed % 4 == 0;
    std::vector<ViewRow> rows;
    std::int64_t quantity = 0, amount = 0;
    std::vector<std::size_t> open;
    for (int i = 0; i < 60; ++i) {
      const int level = below(4);
      const bool afterHead = !rows.empty() && rows.back().kind == group;  // no group is empty
      while (!afterHead && open.size() > static_cast<std::size_t>(level))
        open.pop_back();
      if (open.size() < 3 && (rows.empty() || below(3) == 0)) {
        open.push_back(rows.size());
        rows.push_back(stockRow(group, static_cast<int>(open.size()) - 1, "组", "", 0, wrong && below(5) == 0 ? 7 : 0));
        continue;
      }
      const std::int64_t q = below(100000) - 20000, a = below(1000000) - 300000;
      rows.push_back(stockRow(line, static_cast<int>(open.size()), "行", "11-" + std::to_string(i), q, a));
      quantity += q;
      amount += a;
      for (const std::size_t head : open) {
        for (const std::size_t column : {std::size_t{2}, std::size_t{3}}) {
          ExactSum sum;
          sum.add(rows[head].cells[column]);
          sum.add(money(column == 2 ? q : a));
          rows[head].cells[column] = sum.value();
        }
      }
      for (int count = details ? below(3) : 0; count > 0; --count)
        rows.push_back(stockRow(detail, 0, "料", "", below(1000), a));
    }
    const test::XlsxEvaluation book = written(
        reportOf(viewOf(stockColumns(), rows, {stockRow(total, 0, "合计", "", quantity, amount)}), Layout::tree));
    EXPECT_THAT(book.disagreements(), IsEmpty()) << "seed " << seed;
    const test::XlsxSheet& sheet = book.sheets().at(0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::string place = std::to_string(i + 5);
      const test::XlsxCell cell = sheet.cell("D" + place);
      EXPECT_THAT(cell.number, Optional(std::stod(tsql::toText(rows[i].cells[3]).value())));
      const bool heads = rows[i].kind == group && i + 1 < rows.size() && rows[i + 1].kind != group;
      if (!wrong && heads && rows[i + 1].level > rows[i].level) {
        EXPECT_NE(cell.formula, "") << "seed " << seed << ", row " << place;
      }
    }
    if (!wrong) {
      EXPECT_NE(sheet.cell("C" + std::to_string(rows.size() + 5)).formula, "") << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace quillon::workbench
