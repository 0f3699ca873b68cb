#include "workbench/presentation/report_output.h"
#include "workbench/presentation/html_page.h"

#include <gmock/gmock.h>

#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "tests/workbench/presentation/small_result.h"

namespace quillon::workbench {
namespace {

class ReportOutputTest : public testing::Test {
 protected:
  std::string html(Language language, std::optional<std::int64_t> limit = {}) {
    std::ostringstream out;
    writeHtml(out, test::documentOf(result_, language), result_, limit);
    return out.str();
  }
  std::string csv() {
    std::ostringstream out;
    writeCsv(out, result_);
    return out.str();
  }

  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
};

// Checks that tags are closed in order, attributes quoted and every & begins a character's name.
void expectWellFormed(const std::string& page) {
  ASSERT_TRUE(page.starts_with("<!DOCTYPE html>\n"));
  std::vector<std::string> open;
  for (std::size_t at = page.find('\n'); (at = page.find_first_of("<>&", at)) != std::string::npos; ++at) {
    if (page[at] == '&') {
      const std::string_view rest = std::string_view(page).substr(at);
      EXPECT_TRUE(rest.starts_with("&amp;") || rest.starts_with("&lt;") || rest.starts_with("&gt;"))
          << rest.substr(0, 20);
      continue;
    }
    ASSERT_EQ(page[at], '<') << "a bare > at " << page.substr(at, 30);
    const std::size_t end = page.find('>', at);
    ASSERT_NE(end, std::string::npos);
    const std::string tag = page.substr(at + 1, end - at - 1);
    const std::string name = tag.substr(0, tag.find_first_of(" /", 1));
    EXPECT_EQ(std::ranges::count(tag, '"') % 2, 0) << tag;
    if (tag.starts_with('/')) {
      ASSERT_FALSE(open.empty());
      EXPECT_EQ(tag.substr(1), open.back());
      open.pop_back();
    } else if (!tag.ends_with('/')) {
      open.push_back(name);
    }
    at = end;
    if (name == "style") at = page.find("</style>", at) - 1;
  }
  EXPECT_TRUE(open.empty());
}

// The cells of the table of `cssClass`, row by row, heading and totals included.
std::vector<std::vector<std::string>> cellsOf(const std::string& page, const std::string& cssClass) {
  const std::size_t begin = page.find("<table class=\"" + cssClass + "\">");
  const std::string body = page.substr(begin, page.find("</table>", begin) - begin);
  std::vector<std::vector<std::string>> rows;
  for (std::size_t at = 0; (at = body.find('<', at)) != std::string::npos;) {
    const std::size_t end = body.find('>', at);
    const std::string tag = body.substr(at + 1, end - at - 1);
    if (tag == "tr") rows.emplace_back();
    if (tag.starts_with("td") || (tag.starts_with("th") && !tag.starts_with("thead"))) {
      rows.back().push_back(body.substr(end + 1, body.find('<', end) - end - 1));
    }
    at = end;
  }
  return rows;
}

TEST_F(ReportOutputTest, CsvHasAllColumnsAndExactValues) {
  account_->execute(
      "Insert Into Result (autoid, cInvName, cFree1, dKeepDate, iState, iQuantity, iMoney) Values "
      "(1, N'螺栓, \"M8\"', N'', '2024-03-05', 2, 5.125, 50.5)");
  EXPECT_EQ(csv(),
            "autoid,cWhCode,cWhName,cInvCode,cInvName,cFree1,cFree2,dKeepDate,cFXCode,cFXName,cState,iState,iQuantity,"
            "iMoney,iQcQuantity,iQcMoney,iInQuantity,iInMoney,iOutQuantity,iOutMoney,iQmQuantity,iQmMoney,cFSType\r\n"
            "1,,,,\"螺栓, \"\"M8\"\"\",,,2024-03-05,,,,2,5.125000,50.5000,,,,,,,,,\r\n");
}

TEST_F(ReportOutputTest, RowsComeInASettledOrder) {
  test::fillResult(*account_);
  const std::string first = csv();
  account_->execute("Select * Into Copied From Result");
  account_->execute("Delete Result");
  account_->execute("Insert Into Result Select * From Copied Order By iMoney Desc, autoid");
  EXPECT_EQ(csv(), first);
}

TEST_F(ReportOutputTest, JsonIsOneDocument) {
  test::fillResult(*account_);
  std::ostringstream out;
  writeJson(out, test::documentOf(result_, Language::english), result_, reportNamed("sfc-item").columns);
  const auto document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["report"], "sfc-item");
  EXPECT_EQ(document["title"], "Receipt/issue/balance");
  EXPECT_EQ(document["columns"][13], nlohmann::json({"iMoney", "money"}));
  EXPECT_EQ(document["captions"]["cFXName"], "Cost item");
  ASSERT_EQ(document["rows"].size(), 6U);
  EXPECT_EQ(document["rows"][0][13], "100.0000");
  EXPECT_EQ(document["rows"][0][7], nullptr);
  EXPECT_EQ(document["rows"][1][7], "2024-03-05 00:00:00.000");
}

TEST_F(ReportOutputTest, HtmlIsWellFormedAndStandsAlone) {
  test::fillResult(*account_);
  for (const Language language : {Language::chinese, Language::english}) {
    const std::string page = html(language);
    expectWellFormed(page);
    EXPECT_EQ(page.find("http"), std::string::npos) << "nothing comes from elsewhere";
    EXPECT_EQ(page.find("<script"), std::string::npos);
    EXPECT_THAT(page, testing::HasSubstr("螺栓, \"M8\" &lt;1&amp;2&gt;"));
  }
  EXPECT_THAT(html(Language::chinese), testing::HasSubstr("<html lang=\"zh-CN\">"));
}

TEST_F(ReportOutputTest, HtmlCrossViewSumsEachStatePerCostItem) {
  test::fillResult(*account_);
  const auto cells = cellsOf(html(Language::chinese), "cross");
  ASSERT_EQ(cells.size(), 5U);
  EXPECT_THAT(cells[0], testing::ElementsAre("编码", "成本项目", "期初结存", "收入", "发出", "期末结存"));
  EXPECT_THAT(cells[1], testing::ElementsAre("数量", "金额", "数量", "金额", "数量", "金额", "数量", "金额"));
  EXPECT_THAT(cells[2], testing::ElementsAre("01", "材料", "10.00", "100.00", "5.13", "50.50", "3.00", "30.25", "12.13",
                                             "120.25"));
  EXPECT_THAT(cells[3], testing::ElementsAre("02", "人工", "0.00", "0.00", "1.00", "1,000,000.00", "0.00", "0.00",
                                             "1.00", "1,000,000.00"));
  EXPECT_THAT(cells[4], testing::ElementsAre("合计", "10.00", "100.00", "6.13", "1,000,050.50", "3.00", "30.25",
                                             "13.13", "1,000,120.25"));
}

TEST_F(ReportOutputTest, HtmlRowsHideEmptyColumnsAndEndWithTotals) {
  test::fillResult(*account_);
  const auto cells = cellsOf(html(Language::english), "rows");
  ASSERT_EQ(cells.size(), 8U);
  EXPECT_THAT(cells[0],
              testing::ElementsAre("Warehouse code", "Warehouse", "Inventory code", "Inventory", "Free item 1",
                                   "Cost item code", "Cost item", "Posting date", "State", "Quantity", "Amount",
                                   "Opening quantity", "Opening amount", "Receipt quantity", "Receipt amount",
                                   "Issue quantity", "Issue amount", "Closing quantity", "Closing amount"));
  EXPECT_THAT(cells[7], testing::ElementsAre("Total", "", "", "", "", "", "", "", "", "", "", "10.00", "100.00", "6.13",
                                             "1,000,050.50", "3.00", "30.25", "13.13", "1,000,120.25"));
}

TEST_F(ReportOutputTest, QuantitiesHaveTheAccountsDecimals) {
  test::fillResult(*account_);
  ReportDocument document = test::documentOf(result_, Language::english);
  document.quantityDecimals = 3;
  std::ostringstream out;
  writeHtml(out, document, result_, {});
  EXPECT_EQ(cellsOf(out.str(), "cross")[2][4], "5.125");
  EXPECT_EQ(cellsOf(out.str(), "cross")[2][5], "50.50") << "money keeps its two";
}

// Expense rows have no state; their balance columns stand for it.
TEST_F(ReportOutputTest, CrossViewOfExpensesReadsTheBalanceColumns) {
  account_->execute(
      "Insert Into Result (cFXCode, cFXName, cState, iState, iQcMoney, iInMoney, iOutMoney, iQmMoney) "
      "Values (N'01', N'材料', N'', 1, 100, 0, 0, 100), (N'01', N'材料', N'', Null, 0, 50, 30, 20)");
  const CrossView view = result_.crossView(reportNamed("sfc-item").crossStates("2"));
  ASSERT_EQ(view.rows.size(), 1U);
  EXPECT_THAT(view.rows[0].money, testing::ElementsAre("100.0000", "50.0000", "30.0000", "120.0000"));
  EXPECT_THAT(view.total.money, testing::ElementsAre("100.0000", "50.0000", "30.0000", "120.0000"));
}

TEST_F(ReportOutputTest, SaysWhenThereAreNoRows) {
  const std::string page = html(Language::chinese);
  expectWellFormed(page);
  EXPECT_THAT(page, testing::HasSubstr("没有符合条件的数据"));
  EXPECT_EQ(page.find("<table"), std::string::npos);
}

}  // namespace
}  // namespace quillon::workbench
