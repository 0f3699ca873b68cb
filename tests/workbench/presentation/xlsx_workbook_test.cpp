#include "workbench/presentation/xlsx_workbook.h"

#include <gmock/gmock.h>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/presentation/small_result.h"
#include "tests/workbench/presentation/xlsx_sheet.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::DoubleNear;
using testing::Optional;

class XlsxWorkbookTest : public testing::Test {
 protected:
  test::XlsxSheet written(const ReportDocument& document, std::optional<std::int64_t> limit = {}) {
    writeXlsx(file_.path(), document, result_, limit);
    return test::XlsxSheet(file_.path());
  }
  test::XlsxSheet written(Language language, std::optional<std::int64_t> limit = {}) {
    return written(test::documentOf(result_, language), limit);
  }
  std::string refusalOf(const std::filesystem::path& file, const ReportDocument& document,
                        std::optional<std::int64_t> limit = {}) {
    try {
      writeXlsx(file, document, result_, limit);
    } catch (const UserError& error) {
      return error.what();
    }
    return "nothing was refused";
  }

  test::TemporaryFile file_{"-收发存 𠮷.xlsx"};
  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
};

TEST_F(XlsxWorkbookTest, HasHeadingCrossViewRowsAndTotalsInOneSheet) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.name(), "sfc-item");
  EXPECT_EQ(sheet.row(1), "Receipt/issue/balance");
  EXPECT_EQ(sheet.row(2), "Year|2024");
  EXPECT_EQ(sheet.row(4), "By cost item");
  EXPECT_EQ(sheet.row(5),
            "Code|Cost item|Opening balance quantity|Opening balance amount|Receipt quantity|Receipt amount|Issue "
            "quantity|Issue amount|Closing balance quantity|Closing balance amount");
  EXPECT_EQ(sheet.row(6), "01|材料|10|100|5.125|50.5|3|30.25|12.125|120.25");
  EXPECT_EQ(sheet.row(7), "02|人工|0|0|1|1000000|0|0|1|1000000");
  EXPECT_EQ(sheet.row(8), "Total|10|100|6.125|1000050.5|3|30.25|13.125|1000120.25");
  EXPECT_EQ(sheet.row(10), "Rows");
  EXPECT_EQ(sheet.row(11),
            "Warehouse code|Warehouse|Inventory code|Inventory|Free item 1|Cost item code|Cost item|Posting "
            "date|State|Quantity|Amount|Opening quantity|Opening amount|Receipt quantity|Receipt amount|Issue "
            "quantity|Issue amount|Closing quantity|Closing amount");
  EXPECT_EQ(sheet.row(12), "1|原料库|0101|螺栓, \"M8\" <1&2>|红|01|材料|期初结存|10|100|10|100|0|0|0|0|10|100");
  EXPECT_EQ(sheet.filter(), "A11:S17");
  EXPECT_EQ(sheet.row(18), "Total|10|100|6.125|1000050.5|3|30.25|13.125|1000120.25");
  EXPECT_EQ(sheet.row(20), "6 rows");
  EXPECT_EQ(sheet.lastRow(), 20);
}

TEST_F(XlsxWorkbookTest, IsChineseWhenAsked) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::chinese);
  EXPECT_EQ(sheet.row(1), "收发存");
  EXPECT_THAT(sheet.row(5), testing::StartsWith("编码|成本项目|期初结存数量|期初结存金额|收入数量|"));
  EXPECT_THAT(sheet.row(18), testing::StartsWith("合计|10|100|"));
}

TEST_F(XlsxWorkbookTest, NumbersAreNumbersWithAllTheirDecimals) {
  test::fillResult(*account_);
  ReportDocument document = test::documentOf(result_, Language::english);
  document.quantityDecimals = 3;
  const test::XlsxSheet sheet = written(document);
  EXPECT_THAT(sheet.cell("J13").number, Optional(5.125));
  EXPECT_EQ(sheet.cell("J13").format, "#,##0.000") << "quantities have the account's decimals";
  EXPECT_THAT(sheet.cell("K13").number, Optional(50.5));
  EXPECT_EQ(sheet.cell("K13").format, "#,##0.00");
  EXPECT_EQ(sheet.cell("S18").format, "#,##0.00");
  document.quantityDecimals = 0;
  EXPECT_EQ(written(document).cell("J13").format, "#,##0");
}

TEST_F(XlsxWorkbookTest, CodesStayTexts) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.cell("C12").text, "0101");
  EXPECT_FALSE(sheet.cell("C12").number);
}

TEST_F(XlsxWorkbookTest, NumbersThatACellCannotHoldAreTexts) {
  account_->execute(
      "Insert Into Result (autoid, iMoney, iQuantity) Values "
      "(1, 922337203685477.5807, 123456789.123456), (2, 12345678901.2345, 999999999999.999999)");
  const test::XlsxSheet sheet = written(Language::english);  // one cost item: its first row is row 11
  EXPECT_EQ(sheet.cell("B11").text, "922337203685477.5807");
  EXPECT_FALSE(sheet.cell("B11").number);
  EXPECT_THAT(sheet.cell("A11").number, Optional(123456789.123456)) << "fifteen digits are held";
  EXPECT_THAT(sheet.cell("B12").number, Optional(12345678901.2345));
  EXPECT_EQ(sheet.cell("A12").text, "999999999999.999999");
}

TEST_F(XlsxWorkbookTest, DatesAreDates) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_FALSE(sheet.cell("H12").number) << "null";
  EXPECT_THAT(sheet.cell("H13").number, Optional(45356.0)) << "2024-03-05, in days since 1899-12-30";
  EXPECT_EQ(sheet.cell("H13").format, "yyyy-mm-dd");
  EXPECT_THAT(sheet.cell("H14").number, Optional(DoubleNear(45357.0 + 8.5 / 24, 1e-9))) << "half past eight";
  EXPECT_EQ(sheet.cell("H14").format, "yyyy-mm-dd hh:mm:ss");
}

TEST_F(XlsxWorkbookTest, DatesThatExcelDoesNotKnowAreTexts) {
  account_->execute(
      "Insert Into Result (autoid, dKeepDate) Values (1, '1899-12-31'), (2, '1900-01-01'), (3, '9999-12-31')");
  const test::XlsxSheet sheet = written(Language::english);  // one cost item: its first row is row 11
  EXPECT_EQ(sheet.cell("A11").text, "1899-12-31");
  EXPECT_THAT(sheet.cell("A12").number, Optional(1.0));
  EXPECT_THAT(sheet.cell("A13").number, Optional(2958465.0));
}

TEST_F(XlsxWorkbookTest, TextsAreWhatXmlCanHold) {
  account_->execute(
      "Insert Into Result (autoid, cInvName) Values (1, N'two' + Char(13) + Char(10) + N'lines'), "
      "(2, N'bell' + Char(7)), (3, N'_x0041_'), (4, N'_x00_'), (5, N'a\xED\xA0\x80z')");
  const test::XlsxSheet sheet = written(Language::english);  // one cost item: its first row is row 11
  EXPECT_EQ(sheet.cell("A11").text, "two_x000D_\nlines");
  EXPECT_EQ(sheet.cell("A12").text, "bell_x0007_");
  EXPECT_EQ(sheet.cell("A13").text, "_x005F_x0041_") << "else a reader would take it for A";
  EXPECT_EQ(sheet.cell("A14").text, "_x00_");
  EXPECT_EQ(sheet.cell("A15").text, "a\xEF\xBF\xBDz");
}

TEST_F(XlsxWorkbookTest, IsCutAtTheLimitAndTotalsAreNot) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::english, 2);
  EXPECT_EQ(sheet.filter(), "A11:S13");
  EXPECT_THAT(sheet.row(14), testing::StartsWith("Total|10|100|6.125|1000050.5|"));
  EXPECT_EQ(sheet.row(16), "the first 2 of 6 rows");
}

TEST_F(XlsxWorkbookTest, SaysWhenThereAreNoRows) {
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.row(4), "No rows meet the conditions");
  EXPECT_EQ(sheet.lastRow(), 4);
}

TEST_F(XlsxWorkbookTest, RefusesMoreRowsThanASheetHas) {
  test::fillResult(*account_);
  ReportDocument document = test::documentOf(result_, Language::english);
  document.rowCount = 1'048'563;  // 14 rows stand above and below them: one too many
  EXPECT_EQ(refusalOf(file_.path(), document),
            "the report has 1048563 rows and a sheet has room for 1048562; write --format csv, or fewer rows with "
            "--limit or a narrower filter");
  EXPECT_FALSE(std::filesystem::exists(file_.path()));
  EXPECT_EQ(refusalOf(file_.path(), document, 6), "nothing was refused");
}

TEST_F(XlsxWorkbookTest, SaysWhichFileCannotBeWritten) {
  test::fillResult(*account_);
  const std::filesystem::path file = file_.path() / "report.xlsx";
  EXPECT_EQ(refusalOf(file, test::documentOf(result_, Language::english)),
            "cannot write " + utf8FromPath(file) + "; check the folder, its permissions and its free space");
}

}  // namespace
}  // namespace quillon::workbench
