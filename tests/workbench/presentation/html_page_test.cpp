#include "workbench/presentation/html_page.h"

#include <gmock/gmock.h>

#include <map>
#include <sstream>

#include "tests/workbench/presentation/html_reader.h"
#include "tests/workbench/presentation/view_of_rows.h"
#include "workbench/presentation/sha256.h"

namespace quillon::workbench {
namespace {

using test::amount;
using test::viewColumn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Values = std::vector<tsql::Value>;

ReportDocument heading(Language language = Language::chinese) {
  ReportDocument document;
  document.language = language;
  document.title = language == Language::chinese ? "收发存汇总表" : "Receipts and issues";
  document.company = "华东 \"一厂\" <东> & 子";
  document.period = "2024";
  document.printed = "2024-12-31";
  document.conditions = {{language == Language::chinese ? "仓库" : "Warehouse", "07 <线边库>"}};
  return document;
}

std::string pageOf(const LaidOutReport& report) {
  std::ostringstream out;
  writeHtml(out, report);
  return out.str();
}

LaidOutReport withView(View view, std::optional<std::int64_t> limit = {}, Language language = Language::chinese) {
  LaidOutReport report{.heading = heading(language), .sections = {}, .charts = {}};
  report.sections.push_back({.layout = Layout::lines, .view = std::move(view), .limit = limit});
  return report;
}

// A ledger in miniature: a row of each kind.
View ledger() {
  return test::viewOf(
      {viewColumn("月份", ColumnRole::text, true), viewColumn("摘要", ColumnRole::text, true),
       viewColumn("金额", ColumnRole::money, false, "收入"), viewColumn("金额", ColumnRole::money, false, "结存")},
      {{RowKind::opening, 0, Values{"期初结存", {}, {}, amount(10000)}},
       {RowKind::group, 1, Values{"第一组的名称", {}, {}, {}}},
       {RowKind::line, 2, Values{"1", "购入 <A&B>", amount(5050), amount(15050)}},
       {RowKind::detail, 2, Values{{}, "材料", amount(5050), {}}},
       {RowKind::subtotal, 1, Values{{}, "小计", amount(5050), {}}},
       {RowKind::monthTotal, 0, Values{"1", "本月合计", amount(5050), amount(15050)}},
       {RowKind::yearTotal, 0, Values{"1", "本年累计", amount(5050), amount(15050)}},
       {RowKind::difference, 0, Values{"1", "相差", {}, amount(-1)}}},
      {{RowKind::total, 0, Values{"合计", {}, amount(123456789), {}}},
       {RowKind::closing, 0, Values{"期末结存", {}, {}, amount(15050)}}});
}

TEST(HtmlPageTest, LetsInNothingButItsOwnSheet) {
  for (const Language language : {Language::chinese, Language::english}) {
    const std::string page = pageOf(withView(ledger(), {}, language));
    EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n"));
    EXPECT_THAT(page, HasSubstr(language == Language::chinese ? "<html lang=\"zh-CN\">" : "<html lang=\"en\">"));
    const std::string sheet = test::between(page, "<style>", "</style>");
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src 'sha256-" + sha256Base64(sheet) + "'; "));
    EXPECT_EQ(test::countOf(page, "<style"), 1U);
    for (const char* foreign : {"<script", " style=", "http:", "https:", "@import", "url(", "<link", " onclick"})
      EXPECT_THAT(page, Not(HasSubstr(foreign)));
    for (const char* tag : {"table", "section", "div", "main", "dl", "body"})
      EXPECT_EQ(test::countOf(page, std::string("<") + tag), test::countOf(page, std::string("</") + tag)) << tag;
  }
}

TEST(HtmlPageTest, HeadingAndMarginsSayWhoseReportItIs) {
  const std::string page = pageOf(withView(ledger()));
  EXPECT_THAT(page, HasSubstr("<h1>收发存汇总表</h1>"));
  EXPECT_THAT(page, HasSubstr("<dt>单位</dt><dd>华东 \"一厂\" &lt;东&gt; &amp; 子</dd>"));
  EXPECT_THAT(page, HasSubstr("<dt>仓库</dt><dd>07 &lt;线边库&gt;</dd>"));
  const std::string margins = test::between(page, "@page {\n  font", "\n}\n");
  EXPECT_THAT(margins, HasSubstr(R"(@top-left { content: "华东 \000022一厂\000022 \00003c东\00003e \000026 子"; })"));
  EXPECT_THAT(margins, HasSubstr("@top-right { content: \"2024\"; }"));
  EXPECT_THAT(margins, HasSubstr("@bottom-left { content: \"打印日期 2024-12-31\"; }"));
  EXPECT_THAT(margins, HasSubstr(R"(@bottom-right { content: "第 " counter(page) " 页，共 " counter(pages) " 页"; })"));
}

TEST(HtmlPageTest, ColumnsShareHeadings) {
  const auto tables = test::tablesOf(pageOf(withView(ledger())));
  ASSERT_EQ(tables.size(), 1U);
  EXPECT_EQ(tables[0].caption, "明细");
  ASSERT_EQ(tables[0].head.size(), 2U);
  EXPECT_THAT(tables[0].head[0].texts(), ElementsAre("月份", "摘要", "收入", "结存"));
  EXPECT_EQ(tables[0].head[0].cells[0].attributes, "scope=col class=\"k k0\" rowspan=2");
  EXPECT_EQ(tables[0].head[0].cells[2].attributes, "scope=colgroup colspan=1");
  EXPECT_THAT(tables[0].head[1].texts(), ElementsAre("金额", "金额"));
}

TEST(HtmlPageTest, QuantitiesAndPricesHaveTheAccountsDecimals) {
  LaidOutReport report = withView(test::viewOf(
      {viewColumn("数量", ColumnRole::quantity), viewColumn("单价", ColumnRole::unitCost),
       viewColumn("金额", ColumnRole::money)},
      {{RowKind::line, 0,
        Values{tsql::Exact{.units = 5125, .scale = 3}, tsql::Exact{.units = 98536585, .scale = 7}, amount(5050)}}}));
  report.heading.quantityDecimals = 3;
  report.heading.unitCostDecimals = 5;
  EXPECT_THAT(test::tablesOf(pageOf(report)).at(0).rows.at(0).texts(), ElementsAre("5.125", "9.85366", "50.50"))
      << "money keeps its two";
}

// A block has the keys in front, out of sight on the screen; so has to be what stands above them.
TEST(HtmlPageTest, HeadingsOfKeysArePutAwayWithThem) {
  const auto tables =
      test::tablesOf(pageOf(withView(test::viewOf({viewColumn("编码", ColumnRole::text, true, "成本构成"),
                                                   viewColumn("金额", ColumnRole::money, false, "成本构成")},
                                                  {{RowKind::line, 0, Values{"CI01", amount(100)}}}))));
  const test::PageRow& first = tables.at(0).head.at(0);
  EXPECT_THAT(first.texts(), ElementsAre("成本构成", "成本构成"));
  EXPECT_EQ(first.cells[0].attributes, "scope=colgroup colspan=1 class=\"k k0 kl\"");
  EXPECT_EQ(first.cells[1].attributes, "scope=colgroup colspan=1");
}

TEST(HtmlPageTest, NeighboursOfOneGroupHaveOneHeading) {
  const auto tables = test::tablesOf(pageOf(withView(
      test::viewOf({viewColumn("编码", ColumnRole::text, true), viewColumn("数量", ColumnRole::quantity, false, "收入"),
                    viewColumn("金额", ColumnRole::money, false, "收入"), viewColumn("备注", ColumnRole::text)},
                   {{RowKind::line, 0, Values{"01", amount(100), amount(200), "无"}}}))));
  EXPECT_THAT(tables.at(0).head[0].texts(), ElementsAre("编码", "收入", "备注"));
  EXPECT_EQ(tables[0].head[0].cells[1].attributes, "scope=colgroup colspan=2");
  EXPECT_THAT(tables[0].head[1].texts(), ElementsAre("数量", "金额"));
  EXPECT_THAT(tables[0].rows.at(0).texts(), ElementsAre("01", "1.00", "2.00", "无"));
}

TEST(HtmlPageTest, AHeadingOverKeysEndsWithThem) {
  const auto tables = test::tablesOf(pageOf(withView(test::viewOf(
      {viewColumn("编码", ColumnRole::text, true, "项目"), viewColumn("名称", ColumnRole::text, false, "项目")},
      {{RowKind::line, 0, Values{"01", "材料"}}}))));
  EXPECT_THAT(tables.at(0).head[0].texts(), ElementsAre("项目", "项目"));
  EXPECT_EQ(tables[0].head[0].cells[0].attributes, "scope=colgroup colspan=1 class=\"k k0 kl\"");
}

TEST(HtmlPageTest, RowsAreToldApart) {
  const auto tables = test::tablesOf(pageOf(withView(ledger())));
  std::vector<std::string> classes;
  for (const test::PageRow& row : tables.at(0).rows)
    classes.push_back(row.attributes);
  EXPECT_THAT(classes, ElementsAre("class=\"o b\"", "class=\"o g\"", "", "class=d", "class=\"o s\"", "class=\"o m\"",
                                   "class=\"o y\"", "class=\"o x\"", "class=\"o t\"", "class=\"o c\""));
  const auto& rows = tables[0].rows;
  EXPECT_THAT(rows[2].texts(), ElementsAre("1", "购入 &lt;A&amp;B&gt;", "50.50", "150.50"));
  EXPECT_EQ(rows[2].cells[0].attributes, "class=i2");
  EXPECT_EQ(rows[3].cells[1].attributes, "class=\"k k1 kl i3\"") << "a detail stands one step further in";
  EXPECT_EQ(rows[7].cells[3].text, "-0.01");
  EXPECT_EQ(rows[7].cells[3].attributes, "class=n");
}

TEST(HtmlPageTest, WordsGoOnOverEmptyKeys) {
  const auto tables = test::tablesOf(pageOf(withView(ledger())));
  const auto& rows = tables.at(0).rows;
  EXPECT_THAT(rows[1].texts(), ElementsAre("第一组的名称", "", ""));
  EXPECT_EQ(rows[1].cells[0].attributes, "colspan=2 class=\"k k0 kl i1\"");
  EXPECT_THAT(rows[5].texts(), ElementsAre("1", "本月合计", "50.50", "150.50"))
      << "keys that are there keep their cells";
}

TEST(HtmlPageTest, TotalsStandAtTheFoot) {
  const auto tables = test::tablesOf(pageOf(withView(ledger())));
  const auto& rows = tables.at(0).rows;
  EXPECT_FALSE(rows[7].inFoot);
  EXPECT_TRUE(rows[8].inFoot);
  EXPECT_THAT(rows[8].texts(), ElementsAre("合计", "1,234,567.89", ""));
  EXPECT_THAT(rows[9].texts(), ElementsAre("期末结存", "", "150.50"));
}

View manyLines(std::size_t count, std::size_t columnCount, const std::string& text = "内容") {
  std::vector<ViewColumn> columns = {viewColumn("单号", ColumnRole::text, true)};
  for (std::size_t i = 1; i < columnCount; ++i) {
    columns.push_back(i % 2 == 0 ? viewColumn("金额" + std::to_string(i), ColumnRole::money)
                                 : viewColumn("名称" + std::to_string(i), ColumnRole::text));
  }
  std::vector<ViewRow> rows(count);
  for (std::size_t row = 0; row < count; ++row) {
    rows[row].cells.emplace_back("01-" + std::to_string(100000 + row));
    for (std::size_t i = 1; i < columnCount; ++i)
      rows[row].cells.push_back(i % 2 == 0 ? amount(static_cast<long long>(row) * 1000 + static_cast<long long>(i))
                                           : tsql::Value(text));
  }
  ViewRow total{.kind = RowKind::total, .cells = Values(columnCount)};
  total.cells[0] = "合计";
  total.cells[2] = amount(4242);
  return test::viewOf(std::move(columns), std::move(rows), {std::move(total)});
}

TEST(HtmlPageTest, SaysHowManyLinesThereAre) {
  EXPECT_THAT(pageOf(withView(manyLines(1234, 4))), HasSubstr("<p class=note>共 1,234 行</p>"));
  const std::string cut = pageOf(withView(manyLines(1234, 4), 100));
  EXPECT_THAT(cut, HasSubstr("<p class=note>共 1,234 行，显示前 100 行（全部：--limit 0）</p>"));
  const auto tables = test::tablesOf(cut);
  ASSERT_EQ(tables.at(0).rows.size(), 101U);
  EXPECT_EQ(tables[0].rows[99].cells[0].text, "01-100099");
  EXPECT_THAT(tables[0].rows[100].texts(), ElementsAre("合计", "", "42.42", "")) << "totals are of all lines";
  EXPECT_THAT(pageOf(withView(manyLines(1234, 4), 100, Language::english)),
              HasSubstr("<p class=note>the first 100 of 1,234 lines (all: --limit 0)</p>"));
  View view = manyLines(3, 4);
  view.columnsLeftOut = 7;
  EXPECT_THAT(pageOf(withView(view, {}, Language::english)),
              HasSubstr("3 lines; 7 more columns are not shown (--all-columns)"));
}

TEST(HtmlPageTest, SaysWhenThereAreNoRows) {
  const std::string page = pageOf({.heading = heading(), .sections = {}, .charts = {}});
  EXPECT_THAT(page, HasSubstr("<p class=note>没有符合条件的数据</p>"));
  EXPECT_TRUE(test::tablesOf(page).empty());
}

TEST(HtmlPageTest, AWideTableIsSplitIntoBlocksThatBeginWithTheKeys) {
  const auto tables = test::tablesOf(pageOf(withView(manyLines(50, 60))));
  ASSERT_GT(tables.size(), 2U);
  EXPECT_THAT(tables[0].attributes, HasSubstr("aria-hidden=true")) << "the keys stand in each block, too";
  EXPECT_EQ(tables[0].rows[7].texts(), (std::vector<std::string>{"8", "01-100007"}));
  std::vector<std::string> captions;
  std::vector<std::string> line;
  for (std::size_t block = 1; block < tables.size(); ++block) {
    const test::PageTable& table = tables[block];
    EXPECT_EQ(table.caption,
              "明细（第 " + std::to_string(block) + " 部分，共 " + std::to_string(tables.size() - 1) + " 部分）");
    ASSERT_EQ(table.rows.size(), 51U);
    const auto texts = table.rows[7].texts(), heads = table.head[0].texts();
    ASSERT_GT(texts.size(), 2U);
    EXPECT_EQ(texts[0], "8");
    EXPECT_EQ(texts[1], "01-100007");
    captions.insert(captions.end(), heads.begin() + 2, heads.end());
    line.insert(line.end(), texts.begin() + 2, texts.end());
    EXPECT_EQ(table.rows.back().cells[1].text, "合计") << "in each block";
    EXPECT_EQ(table.rows.back().cells[1].tag, "th");
    EXPECT_EQ(table.rows.back().attributes, "class=\"o t\"");
  }
  ASSERT_EQ(captions.size(), 59U) << "each column once";
  for (std::size_t i = 0; i < captions.size(); ++i) {
    EXPECT_THAT(captions[i], testing::EndsWith(std::to_string(i + 1)));
    EXPECT_EQ(line[i], i % 2 == 0 ? "内容" : "70." + std::string(i + 1 < 10 ? "0" : "") + std::to_string(i + 1));
  }
}

// Beside what it belongs to a detail keeps its place; where it has nothing to say, paper is spared.
TEST(HtmlPageTest, ADetailStandsInTheBlocksThatItHasFiguresIn) {
  View view = manyLines(1, 60);
  const auto source = view.rows();
  ASSERT_TRUE(source->next());
  ViewRow detail{.kind = RowKind::detail, .level = 0, .cells = Values(60)};
  detail.cells[58] = amount(7700);
  view.rows = heldRows(std::make_shared<const std::vector<ViewRow>>(std::vector<ViewRow>{source->row(), detail}));
  const auto tables = test::tablesOf(pageOf(withView(view)));
  ASSERT_GT(tables.size(), 2U);
  EXPECT_EQ(tables[1].rows[1].attributes, "class=e");
  EXPECT_THAT(tables[1].rows[1].texts(), ElementsAre(""));
  EXPECT_EQ(tables.back().rows[1].attributes, "class=d");
  EXPECT_THAT(tables.back().rows[1].texts(), testing::Contains("77.00"));
  for (const test::PageTable& table : tables)
    EXPECT_EQ(table.rows.size(), 3U);
}

// The words stand in a column that is no key: they go in front, so that each block has them.
TEST(HtmlPageTest, BlocksWithoutKeysAreNumbered) {
  View view = manyLines(20, 60);
  view.columns[0].key = false;
  const auto tables = test::tablesOf(pageOf(withView(view, {}, Language::english)));
  ASSERT_GT(tables.size(), 2U);
  EXPECT_EQ(tables[1].head[0].cells[0].text, "No.");
  for (const test::PageTable& table : tables) {
    EXPECT_EQ(table.rows[19].cells[0].text, "20");
    EXPECT_EQ(table.rows[20].cells[0].text, "合计");
  }
  EXPECT_EQ(tables[1].rows[20].cells[1].text, "");
}

TEST(HtmlPageTest, APageOfTwoThousandLinesAndFortyColumnsStaysBelowTwoMegabytes) {
  constexpr std::size_t limit = 2000000;
  EXPECT_LT(pageOf(withView(manyLines(20000, 40, "热轧钢板"), 2000)).size(), limit);
}

// A page of documents has details with few cells; what is empty is not written cell by cell.
TEST(HtmlPageTest, EmptyCellsOfDetailsAndSparseLinesAreOneCell) {
  std::vector<ViewColumn> columns = {viewColumn("单号", ColumnRole::text, true)};
  for (int i = 0; i < 8; ++i)
    columns.push_back(viewColumn("文本", ColumnRole::text));
  columns.push_back(viewColumn("金额", ColumnRole::money));
  ViewRow line{.kind = RowKind::line, .level = 0, .cells = Values(10)};
  line.cells[0] = "01";
  line.cells[9] = amount(150);
  ViewRow detail{.kind = RowKind::detail, .level = 0, .cells = Values(10)};
  detail.cells[1] = "材料";
  detail.cells[9] = amount(50);
  const auto tables = test::tablesOf(pageOf(withView(test::viewOf(std::move(columns), {line, detail}))));
  const auto& rows = tables.at(0).rows;
  EXPECT_EQ(rows[0].attributes, "class=f");
  EXPECT_THAT(rows[0].texts(), ElementsAre("01", "", "1.50"));
  EXPECT_EQ(rows[0].cells[1].attributes, "colspan=8");
  EXPECT_EQ(rows[0].cells[2].attributes, "class=n");
  EXPECT_THAT(rows[1].texts(), ElementsAre("", "材料", "", "0.50"));
  EXPECT_EQ(rows[1].cells[2].attributes, "colspan=7");
}

TEST(HtmlPageTest, ChartsStandBesideTheirFigures) {
  LaidOutReport report = withView(ledger());
  report.charts.push_back({.kind = Chart::Kind::bars,
                           .title = "成本构成 <期末>",
                           .labels = "成本项目",
                           .measure = "金额",
                           .points = {{"材料 & 配件", amount(12345678)}, {"人工", amount(-4550)}}});
  report.charts.push_back({.kind = Chart::Kind::line,
                           .title = "各月结存",
                           .labels = "月份",
                           .measure = "结存金额",
                           .points = {{"1月", amount(1000)}, {"2月", amount(3000)}, {"3月", amount(2000)}}});
  const std::string page = pageOf(report);
  EXPECT_LT(page.find("<figure>"), page.find("<section>"));
  const auto tables = test::tablesOf(page);
  ASSERT_EQ(tables.size(), 3U);
  ASSERT_EQ(tables[0].rows.size(), 3U);
  EXPECT_THAT(tables[0].rows[0].texts(), ElementsAre("材料 &amp; 配件", "123,456.78"));
  EXPECT_THAT(tables[0].rows[2].texts(), ElementsAre("合计", "123,411.28"));
  EXPECT_EQ(tables[1].rows.size(), 3U) << "balances of months have no sum";
  EXPECT_THAT(page, HasSubstr("<title id=\"c1t\">成本构成 &lt;期末&gt;</title>"));
  EXPECT_THAT(page, HasSubstr("<desc id=\"c1d\">材料 &amp; 配件 123,456.78；人工 -45.50</desc>"));
  EXPECT_THAT(page, HasSubstr("aria-labelledby=\"c2t c2d\""));
  EXPECT_EQ(test::countOf(page, "<rect class=\"bar\""), 2U);
  EXPECT_EQ(test::countOf(page, "<circle class=\"point\""), 3U);
  EXPECT_THAT(page, HasSubstr(">-45.50</text>")) << "each bar carries its figure";
}

TEST(HtmlPageTest, ASummaryStandsBeforeItsCharts) {
  LaidOutReport report = withView(ledger());
  report.sections[0].layout = Layout::summary;
  report.charts.push_back({.title = "图", .labels = "项目", .measure = "金额", .points = {{"一", amount(1)}}});
  const std::string page = pageOf(report);
  EXPECT_GT(page.find("<figure>"), page.find("</section>"));
}

}  // namespace
}  // namespace quillon::workbench
