// The cost-item voucher report as the program shows it: its dialog's lists, its formats, totals that are the ledger's,
// and the documents behind its rows.
#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <regex>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {
namespace {

using Json = nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

class VoucherReport : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 1600, .seed = 3, .years = 1, .costItemStartMonth = 1});
  }
  static void TearDownTestSuite() { file_.reset(); }

  static AccountSource source() { return AccountSource::inFile(file_->path()); }

  static std::string report(std::vector<std::string> settings, ReportFormat format = ReportFormat::table,
                            bool dialog = true, std::optional<Layout> layout = {}) {
    std::ostringstream out;
    std::ostringstream notes;
    runReport({.report = "fx-wt",
               .account = source(),
               .settings = std::move(settings),
               .dialog = dialog,
               .format = format,
               .language = Language::english,
               .layout = {.layout = layout}},
              out, notes);
    EXPECT_EQ(notes.str(), "");
    return out.str();
  }

  // What the dialog shows after its last step.
  static Json dialog(std::vector<std::string> steps) {
    std::ostringstream out, notes;
    runDialog({.report = "fx-wt",
               .account = source(),
               .steps = std::move(steps),
               .format = DialogFormat::json,
               .language = Language::english},
              out, notes);
    std::string shown;
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);)
      shown = line;
    return Json::parse(shown);
  }
  static Json item(const Json& shown, const std::string& key) {
    for (const Json& candidate : shown["items"]) {
      if (candidate["key"] == key) return candidate;
    }
    ADD_FAILURE() << "no item " << key;
    return {};
  }

  static std::string drill(const std::string& action, std::vector<std::string> settings, const std::string& row) {
    std::ostringstream out;
    std::ostringstream notes;
    runDrill({.report = {.report = "fx-wt",
                         .account = source(),
                         .settings = std::move(settings),
                         .language = Language::english},
              .row = {row},
              .action = action},
             out, notes);
    return out.str();
  }

  // The one value that a query on the account gives.
  static std::string ledger(const std::string& sql) {
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly);
    const auto rows = account->query(sql);
    EXPECT_TRUE(rows->next());
    return tsql::toText(rows->value(0)).value_or("no value");
  }

  static inline std::unique_ptr<test::TemporaryFile> file_;
};

// A line of the table with single bars between its cells.
std::string squeezed(const std::string& text) {
  return std::regex_replace(text, std::regex("  +"), "|");
}

// --- The dialog -----------------------------------------------------------------------------------------------------

TEST_F(VoucherReport, OffersTheVoucherTypesOfTheAccountAndTheFlavours) {
  std::map<std::string, std::string> choices;
  std::vector<std::string> codes;
  const Json list = item(dialog({"init"}), "cVouType")["choices"];
  for (const Json& choice : list) {
    codes.push_back(choice["code"]);
    choices[choice["code"]] = choice["name"];
  }
  EXPECT_TRUE(std::ranges::is_sorted(codes));
  EXPECT_THAT(codes, IsSupersetOf({"01", "011", "05", "10", "11", "20", "30", "301", "32", "70", "701", "EX27"}));
  EXPECT_THAT(codes, Not(Contains("33")));
  EXPECT_THAT(codes, Not(Contains("34")));
  EXPECT_EQ(choices["01"], "Purchase receipt (invoiced)");
  EXPECT_EQ(choices["011"], "Purchase receipt (estimated)");
}

TEST_F(VoucherReport, OffersBusinessTypesAsItsClassListsThem) {
  const Json choices = item(dialog({"init"}), "cBusType")["choices"];
  EXPECT_EQ(choices.size(), 41U);
  EXPECT_EQ(choices.front()["code"], "普通采购");
  EXPECT_EQ(choices.back()["code"], "配件退库");
}

TEST_F(VoucherReport, LetsAnAccountByWarehouseChooseWarehousesOnly) {
  const Json shown = dialog({"init", "view", "click"});
  EXPECT_EQ(item(shown, "cWhCode")["available"], true);
  EXPECT_EQ(item(shown, "cDepCode")["available"], false);
  EXPECT_EQ(shown["view"], nullptr) << "its class is not asked for a view";
  EXPECT_EQ(shown["accepted"], true);
}

TEST_F(VoucherReport, RestrictsTheLookupOfCodesToTheirClass) {
  EXPECT_EQ(item(dialog({"init", "change:Vendor.cVCCode=02"}), "Vendor.cVenCode")["lookup"], " #FN[cVCCode]='02'");
  EXPECT_EQ(item(dialog({"init", "change:Vendor.cVCCode=02", "change:Vendor.cVCCode="}), "Vendor.cVenCode")["lookup"],
            "");
}

// --- The report -----------------------------------------------------------------------------------------------------

// The ledger lines of two voucher types: estimated purchase receipts and sales issues of both kinds.
constexpr const char* receiptsAndSales =
    "((base.cVouType = N'01' And base.bFlag = 1) Or base.cVouType In (N'32', N'3201'))";

TEST_F(VoucherReport, TotalsOfDocumentsAreTheLedgers) {
  const std::string text = squeezed(report({"cVouType=011,32"}));
  EXPECT_THAT(text, StartsWith("Cost-item voucher report\n"
                               "Voucher type: Purchase receipt (estimated), Sales issue\n"
                               "\n"
                               "Documents\n"));
  const std::string chosen = std::string(" From ia_subsidiary base Where ") + receiptsAndSales;
  const std::string documents =
      ledger("Select Count(*) From (Select Distinct base.cVouType, base.cVouCode" + chosen + ") documents");
  const std::string lines = ledger("Select Count(*)" + chosen);
  std::string totals = "\nTotal (" + groupedNumber(documents, 0) + " documents, " + groupedNumber(lines, 0) + " lines)";
  for (const char* figure : {"iAInQuantity", "iAInPrice", "iAOutQuantity", "iAOutPrice"})
    totals += "|" + groupedNumber(ledger("Select Sum(" + std::string(figure) + ")" + chosen), 2);
  EXPECT_THAT(text, HasSubstr(totals + "\n"));
  EXPECT_THAT(text, HasSubstr("\n" + groupedNumber(lines, 0) + " lines; "));
}

// The lines of a page are few where much stands above and beneath them.
TEST_F(VoucherReport, PageCountsWhatBelongsToItsLines) {
  const std::string page = report({}, ReportFormat::html);
  constexpr std::size_t limit = 2'000'000;
  EXPECT_LT(page.size(), limit);
  std::smatch shown;
  ASSERT_TRUE(std::regex_search(page, shown, std::regex("the first ([0-9]+) of ([0-9,]+) lines \\(all: --limit 0\\)")));
  EXPECT_LT(std::stoi(shown[1]), 1000) << "each with its document and a cost item at least";
  EXPECT_GT(std::stoi(shown[1]), 100);
}

// For programs each row says what it belongs to.
TEST_F(VoucherReport, ShowsTheAmountOfEachPart) {
  std::ostringstream out, notes;
  const std::string first = ledger("Select Min(cVouCode) From ia_subsidiary Where cVouType = N'11' And iMonth = 3");
  runReport({.report = "fx-wt",
             .account = source(),
             .settings = {"cVouType=11", "cVouCode=" + first},
             .format = ReportFormat::csv,
             .language = Language::english,
             .layout = {.layout = Layout::vouchers, .arrangement = {.columns = {"cVouCode,cfxCode", "iItemPrice"}}}},
            out, notes);
  std::string expected = "rowKind,level,cVouCode,cfxCode,iItemPrice\r\ngroup,0," + first + ",,\r\n";
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly);
  const auto rows = account->query(
      "Select base.AutoID, Ca_FxDef.cFxCode, item.iItemOutPrice From ia_subsidiary_Item item Inner Join ia_subsidiary "
      "base On base.AutoID = item.iSubID Inner Join Ca_FxDef On Ca_FxDef.iFxID = item.iItemID Where base.cVouCode = N'" +
      first + "' Order By base.AutoID, Ca_FxDef.cFxCode");
  std::string line;
  while (rows->next()) {
    const std::string id = tsql::toText(rows->value(0)).value();
    if (id != line) expected += "line,1," + first + ",,\r\n";
    line = id;
    expected += "detail,2," + first + "," + tsql::toText(rows->value(1)).value() + "," +
                tsql::toText(rows->value(2)).value() + "\r\n";
  }
  EXPECT_THAT(out.str(), StartsWith(expected));
}

TEST_F(VoucherReport, TotalsOfLinesAreThoseOfTheCostItems) {
  const std::string chosen = std::string(
                                 " From ia_subsidiary_Item item Inner Join ia_subsidiary base On item.iSubID = "
                                 "base.AutoID Where ") +
                             receiptsAndSales;
  std::string totals = "\nTotal";
  for (const char* figure : {"iItemInQuantity", "iItemInPrice", "iItemOutQuantity", "iItemOutPrice"})
    totals += "|" + groupedNumber(ledger("Select Sum(item." + std::string(figure) + ")" + chosen), 2);
  EXPECT_THAT(squeezed(report({"cVouType=011,32"}, ReportFormat::table, true, Layout::lines)), HasSubstr(totals + "\n"))
      << "a line's own figures stand on each of its parts, so these are not summed";
}

TEST_F(VoucherReport, JsonHasEveryColumnWithItsCaption) {
  const Json document = Json::parse(report({"cVouType=11"}, ReportFormat::json));
  EXPECT_EQ(document["report"], "fx-wt");
  EXPECT_EQ(document["captions"]["iUnitUsed"], "Usage per unit");
  std::vector<std::string> columns;
  for (const Json& column : document["columns"])
    columns.push_back(column[0]);
  EXPECT_EQ(columns.front(), "dVouDate");
  EXPECT_EQ(columns.back(), "cBatchia");
  std::vector<std::string> known;
  for (const ReportColumn& column : reportNamed("fx-wt").columns)
    known.push_back(column.name);
  EXPECT_THAT(known, testing::UnorderedElementsAreArray(columns));
  const auto type = static_cast<std::size_t>(std::ranges::find(columns, "cVouType") - columns.begin());
  EXPECT_FALSE(document["rows"].empty());
  for (const Json& row : document["rows"])
    EXPECT_EQ(row[type], "11");
}

TEST_F(VoucherReport, RowsStandByDayAndLedgerLineAndCostItem) {
  const Json document = Json::parse(report({"cVouType=011,11"}, ReportFormat::json));
  std::vector<std::size_t> positions;
  for (const char* name : {"dKeepDate", "AutoID", "cfxCode"}) {
    for (std::size_t i = 0; i < document["columns"].size(); ++i)
      if (document["columns"][i][0] == name) positions.push_back(i);
  }
  ASSERT_EQ(positions.size(), 3U);
  std::vector<Json> keys;
  for (const Json& row : document["rows"])
    keys.push_back(Json::array({row[positions[0]], row[positions[1]], row[positions[2]]}));
  EXPECT_GT(keys.size(), 100U);
  EXPECT_TRUE(std::ranges::is_sorted(keys));
}

TEST_F(VoucherReport, WithoutItsDialogHasTheSameRows) {
  EXPECT_EQ(report({"cVouType=011"}, ReportFormat::csv, false), report({"cVouType=011"}, ReportFormat::csv));
}

TEST_F(VoucherReport, RefusesAVoucherTypeThatTheDialogDoesNotOffer) {
  try {
    report({"cVouType=33"});
    FAIL() << "nothing was refused";
  } catch (const std::exception& error) {
    EXPECT_THAT(error.what(), HasSubstr("filter item cVouType (Voucher type): there is no choice \"33\""));
  }
}

// --- The documents --------------------------------------------------------------------------------------------------

TEST_F(VoucherReport, OpensTheSourceDocumentOfARowByTheNumberOfItsLine) {
  const std::string first = ledger("Select Min(cVouCode) From ia_subsidiary Where cVouType = N'11' And iMonth = 3");
  const std::string shown = drill("Vouch", {"cVouType=11", "cVouCode=" + first}, "cVouCode=" + first);
  EXPECT_THAT(shown, StartsWith("Source document\nOpened by: ShowVoucher\nVoucher type: 11\n"));
  EXPECT_THAT(shown, HasSubstr("\nVoucher number: " + first + "\n"));
}

TEST_F(VoucherReport, OpensTheAccountingVoucherOfAPostedRow) {
  const std::string posted = ledger(
      "Select Min(base.cVouCode) From ia_subsidiary base Inner Join ia_subsidiary_Item item On item.iSubID = "
      "base.AutoID Inner Join Ca_FxDef On Ca_FxDef.iFxID = item.iItemID Where base.cPZID Is Not Null And "
      "base.cVouType = N'11' And Ca_FxDef.cFxCode = N'CI09'");
  EXPECT_THAT(drill("Link", {"cVouType=11", "cVouCode=" + posted}, "cfxCode=CI09"),
              StartsWith("General-ledger voucher\nOpened by: StartUpPz\n"));
}

}  // namespace
}  // namespace quillon::workbench
