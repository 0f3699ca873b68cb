#include "workbench/presentation/view_files.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/workbench/presentation/small_layouts.h"
#include "workbench/presentation/lines_layout.h"
#include "workbench/presentation/report_table.h"
#include "workbench/presentation/summary_layout.h"

namespace quillon::workbench {
namespace {

class ViewFiles : public testing::Test {
 protected:
  void SetUp() override {
    test::fillResult(*account_);
    heading_ = test::documentOf(result_, Language::english);
  }

  LayoutRequest request(Arrangement arrangement = {}) const {
    return {.report = reportNamed("sfc-item"),
            .table = result_,
            .mode = "1",
            .language = Language::english,
            .arrangement = std::move(arrangement)};
  }
  std::string csv(const ReportSection& section, const CsvStyle& style = {}) const {
    std::ostringstream out;
    writeCsv(out, heading_, section, style);
    return out.str();
  }
  std::string table(ReportSection section, Language language = Language::english) {
    LaidOutReport report;
    report.heading = heading_;
    report.heading.language = language;
    report.sections.push_back(std::move(section));
    std::ostringstream out;
    writeTable(out, report, {});
    return out.str();
  }

  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
  ReportDocument heading_;
};

TEST_F(ViewFiles, CsvOfLinesCanBeLoadedAsItIs) {
  const ReportSection section{
      .layout = Layout::lines,
      .view = linesView(request({.columns = {"cWhName", "iMoney", "dKeepDate"},
                                 .where = {{"iMoney", RowCondition::Kind::range, {"", "60"}}}}))};
  EXPECT_EQ(csv(section),
            "cWhName,iMoney,dKeepDate\r\n原料库,50.5000,2024-03-05\r\n原料库,30.2500,2024-03-06 08:30:00.000\r\n");
  EXPECT_EQ(csv(section, {.captions = true, .bom = true}).substr(0, 32), "\xEF\xBB\xBFWarehouse,Amount,Posting date");
}

TEST_F(ViewFiles, CsvOfSumsSaysWhatEachRowIs) {
  const ReportSection section{.layout = Layout::summary,
                              .view = summaryView(request({.columns = {"cFXCode", "receiptAmount"}}))};
  EXPECT_EQ(csv(section),
            "rowKind,level,cFXCode,receiptAmount\r\nline,0,01,50.5000\r\nline,0,02,1000000.0000\r\n"
            "total,0,Total,1000050.5000\r\n");
  EXPECT_THAT(csv(section, {.captions = true}), testing::StartsWith("rowKind,level,Code,Receipt Amount\r\n"));
}

TEST_F(ViewFiles, JsonNamesColumnsKindsAndTotals) {
  std::ostringstream out;
  writeJson(
      out, heading_,
      {.layout = Layout::summary, .view = summaryView(request({.columns = {"cFXName", "issueAmount"}})), .limit = 1});
  const auto document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["layout"], "summary");
  EXPECT_EQ(document["lines"], 2);
  EXPECT_EQ(document["columns"][1],
            nlohmann::json({{"name", "issueAmount"}, {"caption", "Amount"}, {"group", "Issue"}}));
  ASSERT_EQ(document["rows"].size(), 1U);
  EXPECT_EQ(document["rows"][0], nlohmann::json({{"kind", "line"}, {"level", 0}, {"cells", {"材料", "30.2500"}}}));
  EXPECT_EQ(document["totals"][0]["cells"][1], "30.2500");
}

TEST_F(ViewFiles, TableSaysHowManyLinesThereAre) {
  const std::string lines = table({.layout = Layout::lines, .view = linesView(request()), .limit = 2});
  EXPECT_THAT(lines, testing::HasSubstr("\nthe first 2 of 6 lines (all: --limit 0)\n"));
  EXPECT_THAT(lines, testing::HasSubstr("1,000,050.50")) << "totals are of all";
  EXPECT_THAT(lines, testing::Not(testing::HasSubstr("成品库")));
  EXPECT_THAT(table({.layout = Layout::lines, .view = linesView(request()), .limit = 2}, Language::chinese),
              testing::HasSubstr("\n共 6 行，显示前 2 行（全部：--limit 0）\n"));
}

TEST_F(ViewFiles, TableSaysWhenThereAreNoRows) {
  LaidOutReport report;
  report.heading = heading_;
  std::ostringstream out;
  writeTable(out, report, {});
  EXPECT_EQ(out.str(), "Receipt/issue/balance\nYear: 2024\n\nNo rows meet the conditions\n");
}

}  // namespace
}  // namespace quillon::workbench
