// The detail ledger as the program shows it, from a ledger that can be checked by hand: `quillon report`, `dialog` and
// `drill`.
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/presentation/html_reader.h"
#include "tests/workbench/presentation/xlsx_evaluation.h"
#include "tests/workbench/presentation/xlsx_sheet.h"
#include "workbench/account/schema.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// One inventory, valued by inventory. It opens with 10 at 100.00; January, which is settled, brings a receipt of 5 at
// 60.00 and an issue of 3 at 32.00, February an issue of 2 at 21.33, which is not posted. A second inventory is kept by
// batch.
class DetailLedger : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    account->execute(
        "Insert Into AccInformation (cSysID, cID, cName, cValue) Values "
        "(N'AA', N'02', N'iStrsQuanDecDgt', N'2'), (N'AA', N'03', N'iStrsPriDecDgt', N'4'), "
        "(N'IA', N'01', N'dIAStartDate', N'2024-01-01'), (N'IA', N'03', N'cValueStyle', N'按存货核算'), "
        "(N'CA', N'11002', N'cCAStartPeriod', N'202401')\n"
        "Insert Into IA_PeriodState Values (2024, 0, 1), (2024, 1, 1), (2024, 2, 0)\n"
        "Insert Into orvsystem..UA_Period Values (N'001', 2024, 1, '2024-01-01', '2024-01-31'), "
        "(N'001', 2024, 2, '2024-02-01', '2024-02-29'), (N'001', 2024, 12, '2024-12-01', '2024-12-31')\n"
        "Insert Into VouchType Values (N'10', N'产成品入库单'), (N'11', N'材料出库单')\n"
        "Insert Into AA_Enum Values (N'IA.vchtype', N'产成品入库单', N'zh-CN', N'产成品入库单'), "
        "(N'IA.vchtype', N'材料出库单', N'zh-CN', N'材料出库单')\n"
        "Insert Into Ca_FxClassDef Values (1, N'01', N'材料', 1), (2, N'02', N'人工', 1)\n"
        "Insert Into Ca_FxDef Values (7, N'A1', N'直接材料', 1, 0), (8, N'B1', N'直接人工', 2, 0)\n"
        "Insert Into gl_AccVouch Values "
        "(91, 2024, 1, N'转', 12, 1, '2024-01-31', N'张', N'领料', N'5001', 32, 0, N'IA', N'IA12'), "
        "(92, 2024, 1, N'转', 12, 2, '2024-01-31', N'张', N'领料', N'1403', 0, 32, N'IA', N'IA12')");
    account->execute(
        "Insert Into Inventory (cInvCode, cInvName, cInvCCode, cComUnitCode, bCheckBatch, bCheckFree1, bCheckFree2, "
        "bCheckFree3, bCheckFree4, bCheckFree5, bCheckFree6, bCheckFree7, bCheckFree8, bCheckFree9, bCheckFree10) "
        "Values (N'M1', N'钢板', N'1', N'KG', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0), "
        "(N'M2', N'铜棒', N'1', N'KG', 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)");
    account->execute(
        "Insert Into ia_subsidiary (AutoID, iYear, iMonth, dVouDate, dKeepDate, cVouType, cVouCode, bRdFlag, bFlag, "
        "cInvCode, iAInQuantity, iInCost, iAInPrice, iAOutQuantity, iOutCost, iAOutPrice, cBusType, cPZdigest, cPZID, "
        "iPZID) Values "
        "(1, 2024, 0, '2023-12-31', '2023-12-31', N'34', N'O-1', 1, 0, N'M1', 10, 10, 100, null, null, null, null, "
        "null, null, null), "
        "(2, 2024, 1, '2024-01-10', '2024-01-10', N'10', N'R-1', 1, 0, N'M1', 5, 12, 60, null, null, null, null, "
        "N'入库', null, null), "
        "(3, 2024, 1, '2024-01-20', '2024-01-20', N'11', N'L-1', 0, 0, N'M1', null, null, null, 3, 10.666667, 32, "
        "N'领料', N'领料', N'IA12', 91), "
        "(4, 2024, 2, '2024-02-05', '2024-02-05', N'11', N'L-2', 0, 0, N'M1', null, null, null, 2, 10.665, 21.33, "
        "N'领料', N'领料', null, null)");
    account->execute(
        "Insert Into ia_subsidiary_Item (AutoID, iSubID, iItemID, iItemDetailID, iYear, iMonth, bRdFlag, "
        "iItemInQuantity, iItemInCost, iItemInPrice, iItemOutQuantity, iItemOutCost, iItemOutPrice) Values "
        "(1, 1, 7, 70, 2024, 0, 1, 10, 6, 60, null, null, null), (2, 1, 8, 80, 2024, 0, 1, 0, null, 40, null, null, "
        "null), "
        "(3, 2, 7, 70, 2024, 1, 1, 5, 8, 40, null, null, null), (4, 2, 8, 80, 2024, 1, 1, 0, null, 20, null, null, "
        "null), "
        "(5, 3, 7, 70, 2024, 1, 0, null, null, null, 3, 6.666667, 20), (6, 3, 8, 80, 2024, 1, 0, null, null, null, 0, "
        "null, 12), "
        "(7, 4, 7, 70, 2024, 2, 0, null, null, null, 2, 6.665, 13.33), (8, 4, 8, 80, 2024, 2, 0, null, null, null, 0, "
        "null, 8)");
  }
  static void TearDownTestSuite() { file_.reset(); }

  static AccountSource source() { return AccountSource::inFile(file_->path()); }

  std::string report(std::vector<std::string> settings, ReportFormat format = ReportFormat::table,
                     Language language = Language::english, LayoutOptions layout = {}) {
    std::ostringstream out;
    notes_.str("");
    runReport({.report = "fx-detail",
               .account = source(),
               .settings = std::move(settings),
               .format = format,
               .language = language,
               .layout = std::move(layout)},
              out, notes_);
    return out.str();
  }

  // Drills from a row of the report on M1.
  static std::string drill(std::vector<std::string> row, const std::string& action,
                           std::vector<std::string> settings = {"cInvCode=M1"},
                           DrillFormat format = DrillFormat::table) {
    std::ostringstream out;
    std::ostringstream notes;
    runDrill({.report = {.report = "fx-detail",
                         .account = source(),
                         .settings = std::move(settings),
                         .language = Language::english},
              .row = std::move(row),
              .action = action,
              .format = format},
             out, notes);
    return out.str();
  }

  template <typename Action>
  static std::string refusalOf(Action action) {
    try {
      action();
    } catch (const std::exception& error) {
      return error.what();
    }
    return "nothing was refused";
  }

  static inline std::unique_ptr<test::TemporaryFile> file_;
  std::ostringstream notes_;
};

// A table with single bars between its cells; cells that are empty vanish, and so do the dashes of headings and rules.
std::string squeezed(const std::string& text) {
  const std::string barred = std::regex_replace(text, std::regex("  +"), "|");
  const std::string headed = std::regex_replace(barred, std::regex("-+ ([A-Z][a-z-]*( [a-z-]+)*) -+"), "$1");
  return std::regex_replace(headed, std::regex("(^|\n)-[-|]*(?=\n)"), "$1=");
}

TEST_F(DetailLedger, RunsFromTheOpeningToTheClosingBalanceWithSumsOfEachMonth) {
  EXPECT_EQ(squeezed(report({"cInvCode=M1"})),
            "Cost-item detail ledger\n"
            "Year: 2024\n"
            "Breakdown: by cost-item class\n"
            "Inventory: M1 钢板\n"
            "\n"
            "Ledger\n"
            "|Receipts|Issues|Balance\n"
            "Month|Posting date|Ledger voucher|Voucher type|Voucher number|Digest|Quantity|Unit cost|Amount|"
            "Quantity|Unit cost|Amount|Quantity|Unit cost|Amount\n"
            "=\n"
            "|Opening balance|10.00|10.0000|100.00\n"
            "=\n"
            "1|2024-01-10|产成品入库单|R-1|入库|5.00|12.0000|60.00|15.00|10.6667|160.00\n"
            "1|2024-01-20|转 12|材料出库单|L-1|领料|3.00|10.6667|32.00|12.00|10.6667|128.00\n"
            "=\n"
            "1|Month total|5.00|12.0000|60.00|3.00|10.6667|32.00|12.00|10.6667|128.00\n"
            "1|Year to date|5.00|12.0000|60.00|3.00|10.6667|32.00|12.00|10.6667|128.00\n"
            "=\n"
            "2|2024-02-05|材料出库单|L-2|领料|2.00|10.6650|21.33|10.00|10.6670|106.67\n"
            "=\n"
            "2|Month total|0.00|0.00|2.00|10.6650|21.33|10.00|10.6670|106.67\n"
            "2|Year to date|5.00|12.0000|60.00|5.00|10.6660|53.33|10.00|10.6670|106.67\n"
            "|Closing balance|10.00|10.6670|106.67\n"
            "\n"
            "3 lines; 2 more columns are not shown (--all-columns)\n")
      << "document date and business type";
  EXPECT_EQ(notes_.str(), "");
}

TEST_F(DetailLedger, ColumnarHasCostItemsAcross) {
  const std::string text = squeezed(report({"cInvCode=M1", "cCaType=成本项目"}, ReportFormat::table, Language::chinese,
                                           {.layout = Layout::columnar}));
  EXPECT_THAT(text, HasSubstr("|收入|发出|结存|直接材料|直接人工\n"));
  EXPECT_THAT(text, HasSubstr("|期初结存|100.00|60.00|40.00\n"));
  EXPECT_THAT(text, HasSubstr("\n1|2024-01-10|产成品入库单|R-1|入库|60.00|160.00|40.00|20.00\n"));
  EXPECT_THAT(text, HasSubstr("\n1|2024-01-20|转 12|材料出库单|L-1|领料|32.00|128.00|-20.00|-12.00\n"))
      << "what is issued goes off its cost items";
  EXPECT_THAT(text, HasSubstr("\n2|2024-02-05|材料出库单|L-2|领料|21.33|106.67|-13.33|-8.00\n"));
  EXPECT_THAT(text, HasSubstr("|期末结存|106.67|66.67|40.00\n"));
  EXPECT_THAT(text, HasSubstr("\n共 3 行"));
}

// A row of the table is a cost item of a line or of a balance; each has all that its line has.
TEST_F(DetailLedger, LinesAreTheRowsOfTheTable) {
  const std::string text = squeezed(report(
      {"cInvCode=M1"}, ReportFormat::table, Language::english,
      {.layout = Layout::lines,
       .arrangement = {.columns = {"RowNo,dKeepDate,cVouCode,iQuantity,iPrice", "cfxName,iItemQuantity,iItemPrice"}}}));
  EXPECT_THAT(text, HasSubstr("\nRows\n"
                              "Line|Posting date|Voucher number|Quantity|Amount|Cost item|Cost item quantity|Cost item "
                              "amount\n"
                              "=\n"
                              "2|10.00|100.00|直接材料|10.00|60.00\n"
                              "2|10.00|100.00|直接人工|0.00|40.00\n"
                              "4|2024-01-10|R-1|5.00|60.00|直接材料|5.00|40.00\n"
                              "4|2024-01-10|R-1|5.00|60.00|直接人工|0.00|20.00\n"
                              "6|2024-01-20|L-1|3.00|32.00|直接材料|3.00|20.00\n"
                              "6|2024-01-20|L-1|3.00|32.00|直接人工|0.00|12.00\n"
                              "8|12.00|128.00|直接材料|12.00|80.00\n"
                              "8|12.00|128.00|直接人工|0.00|48.00\n"
                              "10|2024-02-05|L-2|2.00|21.33|直接材料|2.00|13.33\n"
                              "10|2024-02-05|L-2|2.00|21.33|直接人工|0.00|8.00\n"
                              "12|10.00|106.67|直接材料|10.00|66.67\n"
                              "12|10.00|106.67|直接人工|0.00|40.00\n"
                              "\n"
                              "12 lines\n"))
      << "and no totals, which would add balances to movements";
}

TEST_F(DetailLedger, IsChineseUnlessAskedOtherwise) {
  const std::string text =
      squeezed(report({"cInvCode=M1", "cCaType=成本项目"}, ReportFormat::table, Language::chinese));
  EXPECT_THAT(text, StartsWith("明细账（按成本项目）\n会计年度：2024\n核算方式：按成本项目\n存货：M1 钢板\n\n"
                               "明细账\n"));
  EXPECT_THAT(text, HasSubstr("\n|期初结存|10.00|10.0000|100.00\n"));
  EXPECT_THAT(text, HasSubstr("\n1|2024-01-10|"));
  EXPECT_THAT(text, HasSubstr("\n1|本月合计|5.00|"));
  EXPECT_THAT(text, HasSubstr("\n1|本年累计|5.00|"));
  EXPECT_THAT(text, HasSubstr("\n|期末结存|10.00|10.6670|106.67\n"));
}

TEST_F(DetailLedger, ShowsNoMoreLinesThanAsked) {
  const std::string text = squeezed(report({"cInvCode=M1"}, ReportFormat::table, Language::english, {.limit = 1}));
  EXPECT_THAT(text, HasSubstr("|R-1|"));
  EXPECT_THAT(text, testing::Not(HasSubstr("|L-1|")));
  EXPECT_THAT(text, HasSubstr("\n|Closing balance|10.00|10.6670|106.67\n")) << "of all lines";
  EXPECT_THAT(text, HasSubstr("the first 1 of 3 lines (all: --limit 0)"));
}

TEST_F(DetailLedger, ArrangesLinesWhoseBalancesRunOverAll) {
  const std::string text = squeezed(
      report({"cInvCode=M1"}, ReportFormat::table, Language::english,
             {.arrangement = {.columns = {"cVouCode,iOutPrice,Balance amount"}, .where = {"Voucher number=L-1,L-2"}}}));
  EXPECT_THAT(text, HasSubstr("\nL-1|32.00|128.00\n"));
  EXPECT_THAT(text, HasSubstr("\nL-2|21.33|106.67\n"));
}

TEST_F(DetailLedger, PageSetsApartWhatIsNoLine) {
  const auto tables = test::tablesOf(report({"cInvCode=M1"}, ReportFormat::html));
  const auto ledger = std::ranges::find(tables, "Ledger", &test::PageTable::caption);
  ASSERT_NE(ledger, tables.end());
  std::vector<std::string> rows;
  for (const test::PageRow& row : ledger->rows) {
    std::string text = row.attributes;
    for (const std::string& cell : row.texts())
      if (!cell.empty()) text += "|" + cell;
    rows.push_back(text);
  }
  EXPECT_THAT(rows, testing::ElementsAre(
                        "class=\"o b\"|Opening balance|10.00|10.0000|100.00",
                        "|1|2024-01-10|产成品入库单|R-1|入库|5.00|12.0000|60.00|15.00|10.6667|160.00",
                        "|1|2024-01-20|转 12|材料出库单|L-1|领料|3.00|10.6667|32.00|12.00|10.6667|128.00",
                        "class=\"o m\"|1|Month total|5.00|12.0000|60.00|3.00|10.6667|32.00|12.00|10.6667|128.00",
                        "class=\"o y\"|1|Year to date|5.00|12.0000|60.00|3.00|10.6667|32.00|12.00|10.6667|128.00",
                        "|2|2024-02-05|材料出库单|L-2|领料|2.00|10.6650|21.33|10.00|10.6670|106.67",
                        "class=\"o m\"|2|Month total|0.00|0.00|2.00|10.6650|21.33|10.00|10.6670|106.67",
                        "class=\"o y\"|2|Year to date|5.00|12.0000|60.00|5.00|10.6660|53.33|10.00|10.6670|106.67",
                        "class=\"o c\"|Closing balance|10.00|10.6670|106.67"));
}

TEST_F(DetailLedger, WorkbookHasTheLedgerAndItsRows) {
  const test::TemporaryFile workbook(".xlsx");
  std::ostringstream out;
  std::ostringstream notes;
  runReport({.report = "fx-detail",
             .account = source(),
             .settings = {"cInvCode=M1"},
             .format = ReportFormat::xlsx,
             .outputFile = utf8FromPath(workbook.path()),
             .language = Language::english,
             .layout = {.company = "Works One"}},
            out, notes);
  EXPECT_EQ(out.str(), "");
  const test::XlsxEvaluation book(workbook.path());
  EXPECT_THAT(book.disagreements(), testing::IsEmpty());
  const test::XlsxSheet& ledger = book.sheets().at(0);
  EXPECT_THAT(ledger.names(), testing::ElementsAre("Ledger", "Rows", "Fingerprint"));
  EXPECT_THAT(ledger.row(2), StartsWith("Company: Works One   Period: 2024   Printed: "));
  EXPECT_EQ(ledger.row(3), "Year: 2024   Breakdown: by cost-item class   Inventory: M1 钢板");
  EXPECT_EQ(ledger.row(4), "Receipts|Issues|Balance");
  EXPECT_THAT(ledger.row(5), StartsWith("Month|Posting date|Ledger voucher|Voucher type|Voucher number|Digest|"));
  // 45301 is 2024-01-10; a price has the decimals of its column, whatever a division gives.
  EXPECT_EQ(ledger.row(7), "1|45301|产成品入库单|R-1|入库|5|12|60|15|10.6667|160");
  EXPECT_EQ(ledger.cell("B7").format, "yyyy-mm-dd");
  EXPECT_EQ(ledger.cell("H7").format, "#,##0.0000") << "a unit cost";
  EXPECT_EQ(ledger.cell("O8").formula, "O7-L8") << "the balance runs";
  EXPECT_EQ(ledger.cell("I9").formula, "SUBTOTAL(9,I7:I8)") << "a month's receipts";
  EXPECT_FALSE(ledger.cell("B7").filled);
  EXPECT_TRUE(ledger.cell("B6").filled) << "a balance is set off";

  const test::XlsxSheet& rows = book.sheets().at(1);
  EXPECT_EQ(rows.row(4),
            "Line|Posting date|Voucher type|Voucher number|Ledger voucher|Digest|Business type|Quantity|Unit cost|"
            "Amount|Cost-item class|Cost item code|Cost item|Cost item quantity|Cost item unit cost|Cost item amount");
  EXPECT_EQ(rows.row(7), "4|45301|产成品入库单|R-1|入库|5|12|60|材料|01A1|直接材料|5|8|40");
  EXPECT_EQ(rows.row(8), "4|45301|产成品入库单|R-1|入库|5|12|60|人工|02B1|直接人工|0|20") << "every key on every row";
  EXPECT_EQ(rows.filter(), "A4:P16");
}

TEST_F(DetailLedger, GivesEveryRowItsFiguresInJson) {
  const nlohmann::json document = nlohmann::json::parse(report({"cInvCode=M1"}, ReportFormat::json));
  EXPECT_EQ(document["report"], "fx-detail");
  const auto column = [&](const char* name) {
    for (std::size_t i = 0; i < document["columns"].size(); ++i) {
      if (document["columns"][i][0] == name) return i;
    }
    throw std::out_of_range(name);
  };
  const std::vector<int> lines = {2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12};
  ASSERT_EQ(document["rows"].size(), lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i)
    EXPECT_EQ(document["rows"][i][column("rowno")], lines[i]);
  EXPECT_EQ(document["rows"][1][column("iPrice")], "100.00") << "not only in the line's first row";
  EXPECT_EQ(document["rows"][1][column("iItemPrice")], "40.00");
  EXPECT_EQ(document["rows"][6][column("datatype")], 2);
  EXPECT_EQ(document["captions"]["iItemPrice"], "Cost item amount");
}

TEST_F(DetailLedger, KeepsToADateRange) {
  const std::string text = squeezed(report({"cInvCode=M1", "dKeepDate=2024-01-15..2024-01-31"}));
  EXPECT_THAT(text, HasSubstr("\n|Opening balance|15.00|10.6667|160.00\n"));
  EXPECT_THAT(text, testing::Not(HasSubstr("R-1")));
  EXPECT_THAT(text, HasSubstr("\n1|2024-01-20|"));
  EXPECT_THAT(text, HasSubstr("\n1|Month total|0.00|0.00|3.00|10.6667|32.00|12.00|10.6667|128.00\n"));
  EXPECT_THAT(text, HasSubstr("\n1|Since 2024-01-15|0.00|0.00|3.00|10.6667|32.00|12.00|10.6667|128.00\n"));
  EXPECT_THAT(text, HasSubstr("\n|Closing balance|12.00|10.6667|128.00\n"));
  EXPECT_THAT(text, testing::Not(HasSubstr("\n2|")));
}

TEST_F(DetailLedger, OfAnImpossibleRangeIsEmpty) {
  EXPECT_THAT(report({"cInvCode=M1", "dKeepDate=2025-01-01.."}), HasSubstr("\nNo rows meet the conditions\n"));
  EXPECT_THAT(report({"cInvCode=M1", "dKeepDate=2025-01-01.."}, ReportFormat::html),
              HasSubstr("No rows meet the conditions"));
  EXPECT_THAT(report({"cInvCode=M1", "dKeepDate=2025-01-01.."}, ReportFormat::csv),
              StartsWith("id,datatype,cInvCode,"));
}

TEST_F(DetailLedger, LeavesNoTableBehind) {
  const auto tables = [] { return tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly)->tables(""); };
  const auto before = tables();
  report({"cInvCode=M1"});
  report({"cInvCode=M1", "dKeepDate=2025-01-01.."});
  drill({"RowNo=6"}, "Vouch");
  EXPECT_EQ(tables(), before);
}

TEST_F(DetailLedger, NeedsAnInventoryAndWhatItIsKeptBy) {
  EXPECT_EQ(refusalOf([this] { report({}); }), "filter item cInvCode (Inventory): must be given");
  EXPECT_EQ(refusalOf([this] { report({"cInvCode=M2"}); }),
            "the report's dialog does not accept the filter; change it, or give --no-dialog");
  EXPECT_EQ(notes_.str(), "Batch must be given\nquillon: the account has nothing to give for cBatchIA (Batch)\n");
  EXPECT_THAT(report({"cInvCode=M2", "cBatchIA=B1"}), HasSubstr("\nBatch: B1\n"));
}

TEST_F(DetailLedger, DialogTellsWhatIsMissing) {
  std::ostringstream out;
  runDialog({.report = "fx-detail",
             .account = source(),
             .steps = {"init", "change:cInvCCode=01", "change:cInvCode=M2", "change:cCaType=成本项目", "click"},
             .format = DialogFormat::json,
             .language = Language::english},
            out, notes_);
  std::vector<nlohmann::json> steps;
  std::istringstream lines(out.str());
  for (std::string line; std::getline(lines, line);)
    steps.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(steps.size(), 5U);
  const auto item = [&steps](std::size_t step, const std::string& key) {
    for (const auto& entry : steps[step]["items"]) {
      if (entry["key"] == key) return entry;
    }
    throw std::out_of_range(key);
  };
  EXPECT_EQ(item(0, "iYear")["value"], "2024");
  EXPECT_EQ(item(0, "cCaType")["value"], "项目分类");
  EXPECT_EQ(item(0, "cWhCode")["available"], false) << "valued by inventory";
  EXPECT_EQ(item(0, "cDepCode")["available"], false);
  EXPECT_EQ(item(1, "cInvCode")["lookup"], "#FN[cInvCCode] like N'01%'");
  EXPECT_EQ(steps[2]["view"], "IA_FXDetail_FXClass");
  EXPECT_EQ(steps[3]["view"], "IA_FXDetail_FXDef");
  EXPECT_EQ(steps[4]["accepted"], false);
  EXPECT_EQ(steps[4]["messages"], nlohmann::json({"Batch must be given"}));
}

TEST_F(DetailLedger, DrillOpensTheDocumentOfALine) {
  EXPECT_EQ(squeezed(drill({"RowNo=6"}, "Vouch")),
            "Source document\n"
            "Opened by: ShowVoucher\n"
            "Voucher type: 11\n"
            "Voucher name: 11\n"
            "Voucher number: L-1\n"
            "Document date: 2024-01-20\n"
            "Posting date: 2024-01-20\n"
            "Business type: 领料\n"
            "\n"
            "Ledger line|Inventory code|Inventory|Batch|Cost item code|Cost item|Quantity|Amount\n"
            "=\n"
            "3|M1|钢板|A1|直接材料|3.00|20.00\n"
            "3|M1|钢板|B1|直接人工|0.00|12.00\n");
}

TEST_F(DetailLedger, DrillOpensTheVoucherThatALineIsPostedTo) {
  EXPECT_EQ(squeezed(drill({"RowNo=6"}, "Voucher")),
            "General-ledger voucher\n"
            "Opened by: StartUpPz\n"
            "Voucher class: 转\n"
            "Voucher number: 12\n"
            "Date: 2024-01-31\n"
            "Period: 1\n"
            "Prepared by: 张\n"
            "Menu: *IACXPZ\n"
            "Module: 存货核算\n"
            "\n"
            "Digest|Account code|Account|Debit|Credit\n"
            "=\n"
            "领料|5001|32.00|0.00\n"
            "领料|1403|0.00|32.00\n");
}

TEST_F(DetailLedger, DrillTellsWhyNothingIsOpened) {
  EXPECT_EQ(drill({"RowNo=10"}, "Voucher"), "This row has not been posted to the general ledger\n");
  for (const char* balance : {"RowNo=2", "RowNo=8"}) {
    EXPECT_EQ(drill({balance}, "Vouch"),
              "Nothing was opened: opening balances and month-end balances have no document\n");
  }
}

TEST_F(DetailLedger, DrillFindsARowByItsColumns) {
  EXPECT_THAT(drill({"cVouCode=R-1", "cfxName=直接人工"}, "Vouch"), HasSubstr("Voucher number: R-1\n"));
  const std::string opened = drill({"cVouType=材料出库单", "id=4"}, "Vouch", {}, DrillFormat::json);
  EXPECT_EQ(nlohmann::json::parse(opened),
            nlohmann::json::parse(
                R"({"action":"Vouch","row":{"cVouType":"材料出库单","id":"4"},"messages":[],"opened":[{
                "member":"ShowVoucher","title":"Source document","heading":{"cVouType":"11","cVouName":"11",
                "cVouCode":"L-2","dVouDate":"2024-02-05","dKeepDate":"2024-02-05","cBusType":"领料","cRdName":"",
                "cWhName":"","cDepName":"","cVenName":"","cCusName":"","cMaker":""},"lines":[
                {"AutoID":"4","cInvCode":"M1","cInvName":"钢板","cBatchIA":"","cFxCode":"A1","cFxName":"直接材料",
                "iQuantity":"2","iPrice":"13.33"},
                {"AutoID":"4","cInvCode":"M1","cInvName":"钢板","cBatchIA":"","cFxCode":"B1","cFxName":"直接人工",
                "iQuantity":"0","iPrice":"8"}]}]})"));
}

TEST_F(DetailLedger, DrillRefusesARowThatIsNone) {
  EXPECT_EQ(refusalOf([] { drill({"RowNo=3"}, "Vouch"); }), "no row of the report has RowNo=3");
  EXPECT_EQ(refusalOf([] { drill({"cNothing=3"}, "Vouch"); }),
            "the rows of the report have no column \"cNothing\"; quillon report ... --format csv shows their columns");
  EXPECT_EQ(refusalOf([] { drill({"RowNo=6"}, "Vouch", {}); }),
            "RowNo counts the rows of a report that is run with a filter: give its filter too (--set, --filter)");
  EXPECT_EQ(refusalOf([] { drill({"6"}, "Vouch"); }), "\"6\" names no column of a row; write column=value");
  EXPECT_EQ(refusalOf([] {
              drill({"cVouType=材料出库单", "id=99"}, "Vouch", {});
            }),
            "The ledger has no line of document  (type 11, line 99); run the report again.");
  EXPECT_EQ(refusalOf([] {
              drill({"cVouType=材料出库单", "cPZID=X", "iPZID=1"}, "Voucher", {});
            }),
            "No ledger line is posted to voucher X, so that its year is not known; refresh the report.");
}

}  // namespace
}  // namespace quillon::workbench
