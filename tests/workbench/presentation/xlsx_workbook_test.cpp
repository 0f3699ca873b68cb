#include "workbench/presentation/xlsx_workbook.h"

#include <gmock/gmock.h>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/presentation/small_result.h"
#include "tests/workbench/presentation/xlsx_sheet.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/lines_layout.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::DoubleNear;
using testing::Optional;

// The cells of a sheet of lines; xlsx_report_test.cpp has what stands around them.
class XlsxWorkbookTest : public testing::Test {
 protected:
  // The result table's lines below heading and conditions, in which `document` has the last word.
  LaidOutReport lines(const ReportDocument& document) {
    LaidOutReport report;
    report.heading = document;
    report.sections.push_back(
        {.layout = Layout::lines,
         .view = linesView(
             {.report = reportNamed("sfc-item"), .table = result_, .mode = "1", .language = document.language})});
    return report;
  }
  test::XlsxSheet written(const ReportDocument& document) {
    writeXlsx(file_.path(), lines(document));
    return test::XlsxSheet(file_.path());
  }
  test::XlsxSheet written(Language language) { return written(test::documentOf(result_, language)); }

  test::TemporaryFile file_{"-收发存 𠮷.xlsx"};
  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
};

TEST_F(XlsxWorkbookTest, HasHeadingLinesAndTotals) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.name(), "Rows");
  EXPECT_EQ(sheet.row(1), "Receipt/issue/balance");
  EXPECT_EQ(sheet.row(2), "Year: 2024");
  EXPECT_EQ(sheet.row(3),
            "Warehouse code|Inventory code|Inventory|Warehouse|Free item 1|Cost item code|Cost item|Posting "
            "date|State|Quantity|Amount");
  EXPECT_EQ(sheet.row(4), "1|0101|螺栓, \"M8\" <1&2>|原料库|红|01|材料|期初结存|10|100");
  EXPECT_EQ(sheet.filter(), "A3:K9");
  EXPECT_EQ(sheet.row(10), "期初结存 Total|10|100");
  EXPECT_EQ(sheet.row(11), "收入 Total|6.125|1000050.5");
  EXPECT_EQ(sheet.row(12), "发出 Total|3|30.25");
  EXPECT_EQ(sheet.row(13), "期末结存 Total|13.125|1000120.25");
  EXPECT_EQ(sheet.row(15), "6 lines");
  EXPECT_EQ(sheet.lastRow(), 15);
}

TEST_F(XlsxWorkbookTest, IsChineseWhenAsked) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::chinese);
  EXPECT_EQ(sheet.row(1), "收发存");
  EXPECT_THAT(sheet.row(3), testing::StartsWith("仓库编码|存货编码|存货|仓库|自由项1|"));
  EXPECT_EQ(sheet.row(10), "期初结存合计|10|100");
}

TEST_F(XlsxWorkbookTest, NumbersAreNumbersWithAllTheirDecimals) {
  test::fillResult(*account_);
  ReportDocument document = test::documentOf(result_, Language::english);
  document.quantityDecimals = 3;
  const test::XlsxSheet sheet = written(document);
  EXPECT_THAT(sheet.cell("J5").number, Optional(5.125));
  EXPECT_EQ(sheet.cell("J5").format, "#,##0.000") << "quantities have the account's decimals";
  EXPECT_THAT(sheet.cell("K5").number, Optional(50.5));
  EXPECT_EQ(sheet.cell("K5").format, "#,##0.00");
  EXPECT_EQ(sheet.cell("K13").format, "#,##0.00");
  document.quantityDecimals = 0;
  EXPECT_EQ(written(document).cell("J5").format, "#,##0");
}

TEST_F(XlsxWorkbookTest, CodesStayTexts) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.cell("B4").text, "0101");
  EXPECT_FALSE(sheet.cell("B4").number);
}

TEST_F(XlsxWorkbookTest, NumbersThatACellCannotHoldAreTexts) {
  account_->execute(
      "Insert Into Result (autoid, iMoney, iQuantity) Values "
      "(1, 922337203685477.5807, 123456789.123456), (2, -12345678901.2345, 999999999999.999999)");
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.cell("B4").text, "922337203685477.5807");
  EXPECT_FALSE(sheet.cell("B4").number);
  EXPECT_THAT(sheet.cell("A4").number, Optional(123456789.123456)) << "fifteen digits are held";
  EXPECT_THAT(sheet.cell("B5").number, Optional(-12345678901.2345));
  EXPECT_EQ(sheet.cell("A5").text, "999999999999.999999");
}

TEST_F(XlsxWorkbookTest, DatesAreDates) {
  test::fillResult(*account_);
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_FALSE(sheet.cell("H4").number) << "null";
  EXPECT_THAT(sheet.cell("H5").number, Optional(45356.0)) << "2024-03-05, in days since 1899-12-30";
  EXPECT_EQ(sheet.cell("H5").format, "yyyy-mm-dd");
  EXPECT_THAT(sheet.cell("H6").number, Optional(DoubleNear(45357.0 + 8.5 / 24, 1e-9))) << "half past eight";
  EXPECT_EQ(sheet.cell("H6").format, "yyyy-mm-dd hh:mm:ss");
}

TEST_F(XlsxWorkbookTest, DatesThatExcelDoesNotKnowAreTexts) {
  account_->execute(
      "Insert Into Result (autoid, dKeepDate) Values (1, '1899-12-31'), (2, '1900-01-01'), (3, '9999-12-31')");
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.cell("A4").text, "1899-12-31");
  EXPECT_THAT(sheet.cell("A5").number, Optional(1.0));
  EXPECT_THAT(sheet.cell("A6").number, Optional(2958465.0));
}

TEST_F(XlsxWorkbookTest, TextsAreWhatXmlCanHold) {
  account_->execute(
      "Insert Into Result (autoid, cInvName) Values (1, N'two' + Char(13) + Char(10) + N'lines'), "
      "(2, N'bell' + Char(7)), (3, N'_x0041_'), (4, N'_x00_'), (5, N'a\xED\xA0\x80z')");
  const test::XlsxSheet sheet = written(Language::english);
  EXPECT_EQ(sheet.cell("A4").text, "two_x000D_\nlines");
  EXPECT_EQ(sheet.cell("A5").text, "bell_x0007_");
  EXPECT_EQ(sheet.cell("A6").text, "_x005F_x0041_") << "else a reader would take it for A";
  EXPECT_EQ(sheet.cell("A7").text, "_x00_");
  EXPECT_EQ(sheet.cell("A8").text, "a\xEF\xBF\xBDz");
}

TEST_F(XlsxWorkbookTest, SaysWhichFileCannotBeWritten) {
  test::fillResult(*account_);
  const std::filesystem::path file = file_.path() / "report.xlsx";
  try {
    writeXlsx(file, lines(test::documentOf(result_, Language::english)));
    ADD_FAILURE() << "nothing was refused";
  } catch (const UserError& error) {
    EXPECT_EQ(error.what(),
              "cannot write " + utf8FromPath(file) + "; check the folder, its permissions and its free space");
  }
}

}  // namespace
}  // namespace quillon::workbench
