// The outbound summary as the program shows it: its dialog's defaults, each format, and totals that are the ledger's.
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/presentation/html_reader.h"
#include "workbench/account/account.h"
#include "workbench/account/schema.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/filter_object.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {
namespace {

class OutboundSummary : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 1600, .seed = 3, .years = 1, .costItemStartMonth = 1});
  }
  static void TearDownTestSuite() { file_.reset(); }

  static ReportOptions options(std::vector<std::string> settings, ReportFormat format) {
    return {.report = "outsum-item",
            .account = AccountSource::inFile(file_->path()),
            .settings = std::move(settings),
            .format = format,
            .language = Language::english};
  }

  std::string run(const ReportOptions& options) {
    std::ostringstream out;
    notes_.str("");
    runReport(options, out, notes_);
    return out.str();
  }
  std::string runWith(std::vector<std::string> settings, ReportFormat format = ReportFormat::table) {
    return run(options(std::move(settings), format));
  }

  std::string laidOut(Layout layout, std::vector<std::string> settings) {
    ReportOptions asked = options(std::move(settings), ReportFormat::table);
    asked.layout.layout = layout;
    return run(asked);
  }

  std::string refusalOf(const ReportOptions& options) {
    try {
      run(options);
    } catch (const std::exception& error) {
      return error.what();
    }
    return "nothing was refused";
  }

  // The one number that a query on the account gives, as the report shows quantities and amounts.
  static std::string ledger(const std::string& sql) {
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly);
    const auto rows = account->query(sql);
    EXPECT_TRUE(rows->next());
    return groupedNumber(tsql::toText(rows->value(0)).value_or("no value"), 2);
  }

  static inline std::unique_ptr<test::TemporaryFile> file_;
  std::ostringstream notes_;
};

// A table with single bars between its cells, and without the dashes of headings and rules.
std::string squeezed(const std::string& text) {
  const std::string barred = std::regex_replace(text, std::regex("  +"), "|");
  return std::regex_replace(barred, std::regex("-{3,} ([^-|\n]+) -{3,}"), "$1");
}

constexpr const char* issuesOfWarehouses =
    " From ia_subsidiary Where bRdFlag = 0 And iYear = 2024 And cWhCode Is Not Null";

TEST_F(OutboundSummary, BeginsWithItsTitleAndTheDialogsDefaults) {
  EXPECT_THAT(squeezed(runWith({})), testing::StartsWith("Outbound summary by cost item\n"
                                                         "Year: 2024\n"
                                                         "Report mode: by cost-item class\n"
                                                         "Class grade: 1\n"
                                                         "\n"
                                                         "By cost item\n"
                                                         "|Issue\n"
                                                         "Code|Cost item|Quantity|Amount\n"));
  EXPECT_EQ(notes_.str(), "");
  ReportOptions chinese = options({"cModal=1", "cSource=1"}, ReportFormat::table);
  chinese.language = Language::chinese;
  EXPECT_THAT(squeezed(run(chinese)), testing::StartsWith("发出汇总表（按成本项目）\n"
                                                          "会计年度：2024\n"
                                                          "报表方式：按成本项目\n"
                                                          "数据来源：有发出分配的记录\n"
                                                          "\n"
                                                          "按成本项目汇总\n"
                                                          "|发出\n"
                                                          "编码|成本项目|数量|金额\n"));
}

// Parts sum to their line, and a line that is not split comes in whole.
TEST_F(OutboundSummary, TotalsAreTheIssuesOfTheLedger) {
  const std::string quantity = ledger(std::string("Select Sum(iAOutQuantity)") + issuesOfWarehouses);
  const std::string money = ledger(std::string("Select Sum(iAOutPrice)") + issuesOfWarehouses);
  const std::string split = ledger(
      "Select Sum(item.iItemOutPrice) From ia_subsidiary_Item item Inner Join ia_subsidiary base On item.iSubID = "
      "base.AutoID Where base.bRdFlag = 0 And base.iYear = 2024 And base.cWhCode Is Not Null");
  ASSERT_NE(money, split) << "the account has lines without cost items";
  const std::string total = "\nTotal|" + quantity + "|" + money + "\n";
  const std::string totalOfLines = "\nTotal|" + quantity + "|" + money + "|" + split + "\n";
  for (const char* mode : {"cModal=0", "cModal=1"}) {
    const std::string summary = squeezed(runWith({mode}));
    EXPECT_THAT(summary, testing::HasSubstr(total));
    EXPECT_THAT(summary, testing::HasSubstr("\n|(no cost item)|"));
    EXPECT_THAT(squeezed(laidOut(Layout::tree, {mode})), testing::HasSubstr(total));
    EXPECT_THAT(squeezed(laidOut(Layout::lines, {mode})), testing::HasSubstr(totalOfLines))
        << "of whole lines and of what cost items have of them";
  }
  EXPECT_THAT(squeezed(runWith({"cModal=2"})), testing::HasSubstr("|" + split + "\n"));
  EXPECT_THAT(squeezed(laidOut(Layout::lines, {"cModal=2"})), testing::HasSubstr("|" + split + "|" + split + "\n"))
      << "by expense item, lines without cost items do not appear";
}

TEST_F(OutboundSummary, CsvAndJsonHaveEveryColumnInItsOrder) {
  constexpr const char* head =
      "autoid,cSource,dVouDate,cVouType,cBusType,cVouCode,cWhCode,cWhName,cInvCCode,cInvCode,cInvName,cInvStd,"
      "cInvAddCode,cInvPspCode,cInvPspName,dKeepDate,RdCode,RdName,cCostCenter,cCostCenterName,cDepCode,cDepName,"
      "cProCode,cWhDep,cWhDepName,cCusCCode,cCusCName,cCusCode,cCusName,cVenCode,cVenName,cItem_Class,cItem_ClassName,"
      "cItemCCode,cItemCName,cItemCode,cItemName,";
  EXPECT_THAT(runWith({"cModal=1"}, ReportFormat::csv), testing::StartsWith(head));
  const auto document = nlohmann::json::parse(runWith({"cModal=2"}, ReportFormat::json));
  EXPECT_EQ(document["report"], "outsum-item");
  EXPECT_EQ(document["title"], "Outbound summary by cost item");
  EXPECT_EQ(document["captions"]["cAmoName"], "Expense item");
  EXPECT_EQ(document["captions"]["iFXMoney"], "Cost item amount");
  EXPECT_EQ(document["columns"].back()[0], "cAmoName");
  ASSERT_GT(document["rows"].size(), 0U);
  EXPECT_EQ(document["rows"][0].size(), document["columns"].size());
}

TEST_F(OutboundSummary, HtmlHasTheSameTotals) {
  const std::string money = ledger(std::string("Select Sum(iAOutPrice)") + issuesOfWarehouses);
  const std::string page = runWith({}, ReportFormat::html);
  EXPECT_THAT(page, testing::HasSubstr("<h1>Outbound summary by cost item</h1>"));
  const auto tables = test::tablesOf(page);
  const auto summary = std::ranges::find(tables, "By cost item", &test::PageTable::caption);
  ASSERT_NE(summary, tables.end());
  EXPECT_THAT(summary->head.at(0).texts(), testing::ElementsAre("Code", "Cost item", "Issue")) << "one state";
  EXPECT_THAT(summary->head.at(1).texts(), testing::ElementsAre("Quantity", "Amount"));
  EXPECT_TRUE(summary->rows.back().inFoot);
  EXPECT_EQ(summary->rows.back().texts().back(), money);
}

// Every column of the result table has a caption, and no caption stands for a column that is not there.
TEST_F(OutboundSummary, CaptionsAreThoseOfTheColumns) {
  const auto document = nlohmann::json::parse(runWith({}, ReportFormat::json));
  EXPECT_EQ(document["captions"].size(), document["columns"].size());
  EXPECT_EQ(reportNamed("outsum-item").columns.size(), document["columns"].size());
}

TEST_F(OutboundSummary, ChoicesAreThoseOfTheDialog) {
  ReportOptions other = options({"cVouType=01"}, ReportFormat::csv);
  EXPECT_THAT(refusalOf(other), testing::StartsWith("filter item cVouType (Voucher type): there is no choice \"01\"; "
                                                    "choose of "))
      << "a receipt";
  other.dialog = false;
  EXPECT_THAT(run(other), testing::EndsWith(",cAmoName\r\n")) << "no dialog, no list: the report finds nothing";
  EXPECT_THAT(refusalOf(options({"iGrade=9"}, ReportFormat::csv)),
              "filter item iGrade (Class grade): there is no choice \"9\"; choose of 1, 2, 3");
}

TEST_F(OutboundSummary, TellsOfAnItemThatTheDialogWouldNotOffer) {
  runWith({"cDepCode=01"}, ReportFormat::csv);
  EXPECT_EQ(
      notes_.str(),
      "quillon: the report's dialog would not let cDepCode (Accounting department) be entered in this account; it "
      "is applied as it was given\n");
  runWith({"cWhCode=01"}, ReportFormat::csv);
  EXPECT_EQ(notes_.str(), "") << "the account is valued by warehouse";
}

// Cost items begin next year: the dialog offers that year and begins with this one.
TEST(OutboundSummaryBeforeCostItems, BeginsWithTheCurrentYear) {
  const test::TemporaryFile file(".qacc");
  {
    const auto account = tsql::Connection::open(file.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    account->execute(
        "Insert Into orvsystem..UA_Period (cAcc_Id, iYear, iId, dBegin, dEnd) Values "
        "(N'001', 2024, 12, '2024-12-01', '2024-12-31'), (N'001', 2025, 12, '2025-12-01', '2025-12-31')");
    account->execute("Insert Into IA_PeriodState (iYear, iMonth, bSettled) Values (2024, 12, 0)");
    account->execute(
        "Insert Into AccInformation (cSysID, cID, cName, cValue) Values (N'CA', N'11002', N'x', N'202501')");
  }
  ReportOptions options{
      .report = "outsum-item", .account = AccountSource::inFile(file.path()), .language = Language::english};
  std::ostringstream out;
  std::ostringstream notes;
  runReport(options, out, notes);
  EXPECT_EQ(out.str(),
            "Outbound summary by cost item\n"
            "Year: 2024\n"
            "Report mode: by cost-item class\n"
            "Class grade: 1\n"
            "\n"
            "No rows meet the conditions\n");
  options.settings = {"iYear=2024"};
  try {
    runReport(options, out, notes);
    ADD_FAILURE() << "a user could not choose this year";
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "filter item iYear (Year): there is no choice \"2024\"; choose of 2025");
  }
}

TEST_F(OutboundSummary, WithoutItsDialogHasTheSameRows) {
  ReportOptions plain = options({}, ReportFormat::csv);
  const std::string rows = run(plain);
  plain.dialog = false;
  EXPECT_EQ(run(plain), rows);
}

}  // namespace
}  // namespace quillon::workbench
