// Each check finds what a statement of the test's own put into a sample account, and nothing else; a sample as it is made
// has no errors.
#include "workbench/account/ledger_check.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "workbench/account/sample.h"
#include "workbench/account/schema.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::unique_ptr<tsql::Connection> sampleAccount(const SampleOptions& options) {
  auto account = tsql::Connection::openInMemory();
  createTables(*account);
  writeSample(*account, options);
  createIndexes(*account);
  return account;
}

std::string nameOf(Check check) {
  return std::string(infoOf(check).name);
}

// "line-sum 3 12.50" of each check that found something: the errors, or the notes.
std::vector<std::string> foundIn(tsql::Database& account, CheckRank rank, const CheckScope& scope = {}) {
  std::vector<std::string> lines;
  for (const Finding& finding : checkLedger(account, scope)) {
    if (finding.rows == 0 || infoOf(finding.check).rank != rank) continue;
    lines.push_back(nameOf(finding.check) + " " + std::to_string(finding.rows) + " " + checkedNumber(finding.amount));
  }
  return lines;
}

// The first value of the first row as text; "null" for null.
std::string valueOf(tsql::Database& account, const std::string& sql) {
  const auto rows = account.query(sql);
  EXPECT_TRUE(rows->next()) << sql;
  return tsql::toText(rows->value(0)).value_or("null");
}

// Samples as they are made, by valuation method and by where cost items start.
struct SampleCase {
  std::string name;
  SampleOptions options;
};

class CheckOfSamples : public testing::TestWithParam<SampleCase> {};

TEST_P(CheckOfSamples, FindsNoErrors) {
  const auto account = sampleAccount(GetParam().options);
  EXPECT_THAT(foundIn(*account, CheckRank::error), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    EachValuation, CheckOfSamples,
    testing::Values(SampleCase{"Inventory", {.rows = 3000, .seed = 2, .valuation = Valuation::inventory}},
                    SampleCase{"Warehouse", {.rows = 3000, .seed = 3, .valuation = Valuation::warehouse}},
                    SampleCase{"Department", {.rows = 3000, .seed = 4, .valuation = Valuation::department}},
                    SampleCase{"FromJanuary", {.rows = 1500, .years = 2, .costItemStartMonth = 1}},
                    SampleCase{"StartedTogether", {.rows = 1500, .years = 2, .costItemStartMonth = 5, .startMonth = 5}},
                    SampleCase{"OneYear", {.rows = 600, .years = 1, .costItemStartMonth = 7, .startMonth = 3}}),
    [](const auto& info) { return info.param.name; });

// One sample of 2023 and 2024 whose cost items start in April 2023; what a test does to it is undone.
class LedgerCheck : public testing::Test {
 protected:
  static void SetUpTestSuite() { account_ = sampleAccount({.rows = 2400, .seed = 5, .years = 2}); }
  static void TearDownTestSuite() { account_.reset(); }
  void SetUp() override { account_->begin(); }
  void TearDown() override { account_->rollback(); }

  static void run(const std::string& sql) { account_->execute(sql); }
  static std::string value(const std::string& sql) { return valueOf(*account_, sql); }
  static std::vector<std::string> errors(const CheckScope& scope = {}) {
    return foundIn(*account_, CheckRank::error, scope);
  }

  // The rows that a check tells: "line | year-month | date | document | inventory | what | amount".
  static std::vector<std::string> rowsOf(Check check) {
    const std::vector<Check> checks = {check};
    std::vector<std::string> lines;
    const std::vector<Finding> findings = checkLedger(*account_, {.checks = checks, .shown = std::nullopt});
    EXPECT_EQ(findings.size(), 1U);
    for (const FoundRow& row : findings.front().shown) {
      std::string line = row.line ? std::to_string(*row.line) : "-";
      line += row.year ? " | " + std::to_string(*row.year) + "-" + std::to_string(row.month.value_or(-1)) : " | -";
      line += " | " + row.date + " | " + row.document + " | " + row.inventory + " | " + row.what.english();
      lines.push_back(line + " | " + (row.amount ? checkedNumber(*row.amount) : "-"));
    }
    EXPECT_EQ(findings.front().rows, static_cast<std::int64_t>(lines.size()));
    return lines;
  }

  // The head of a told row, read by a statement of the test's own.
  static std::string headOf(const std::string& line, const std::string& table = "ia_subsidiary") {
    const auto rows = account_->query("Select AutoID, iYear, iMonth, dKeepDate, cVouCode, cInvCode From " + table +
                                      " Where AutoID = " + line);
    EXPECT_TRUE(rows->next());
    const auto text = [&](std::size_t column) { return tsql::toText(rows->value(column)).value(); };
    return text(0) + " | " + text(1) + "-" + text(2) + " | " + text(3).substr(0, 10) + " | " + text(4) + " | " +
           text(5) + " | ";
  }

  // A receipt of December 2024 and an issue of it that have cost items: what is done to them changes no opening.
  static std::string receipt() { return lineOf("iMonth = 12 And bRdFlag = 1 And iAInQuantity > 0 And iAInPrice > 10"); }
  static std::string issue() { return lineOf("iMonth = 12 And bRdFlag = 0 And iAOutQuantity > 0 And iAOutPrice > 10"); }
  static std::string lineOf(const std::string& condition) {
    return value(
        "Select Min(AutoID) From ia_subsidiary Where iYear = 2024 And IsNull(cBusType, N'') Not Like N'直运%' And "
        "AutoID In (Select iSubID From ia_subsidiary_Item) And " +
        condition);
  }
  static std::string partOf(const std::string& line) {
    return value("Select Min(AutoID) From ia_subsidiary_Item Where iSubID = " + line);
  }
  // An exact number of the account as rows tell it: two decimals at least.
  static std::string told(const std::string& number) {
    std::string text = number;
    while (text.ends_with('0') && text.size() - text.find('.') > 3)
      text.pop_back();
    return text;
  }
  static std::string amount(const std::string& sql) { return told(value(sql)); }

  static inline std::unique_ptr<tsql::Connection> account_;
};

TEST_F(LedgerCheck, NamesEachCheckOnceInItsOrder) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < ledgerChecks().size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(ledgerChecks()[i].check), i);
    names.push_back(nameOf(ledgerChecks()[i].check));
  }
  EXPECT_THAT(names, ElementsAre("line-sum", "issue-sum", "opening-sum", "line-without-items", "opening-without-items",
                                 "never-split", "unknown-item", "stray-item", "class-tree", "amount-without-quantity",
                                 "quantity-without-amount", "opening-balance", "item-opening-balance",
                                 "balance-without-quantity", "period-gap"));
}

TEST_F(LedgerCheck, TellsConsumablesApartFromLinesThatLackCostItems) {
  const std::string lines =
      " From ia_subsidiary Where cInvCode Like N'06%' And IsNull(iAInPrice, 0) + IsNull(iAOutPrice, 0) <> 0 And (iYear = "
      "2024 Or iMonth >= 4)";
  EXPECT_THAT(errors(), IsEmpty());
  EXPECT_THAT(foundIn(*account_, CheckRank::note),
              ElementsAre("never-split " + value("Select Count(*)" + lines) + " " +
                          amount("Select Sum(IsNull(iAInPrice, 0) + IsNull(iAOutPrice, 0))" + lines)));
  EXPECT_GT(std::stoi(value("Select Count(*)" + lines)), 20);
}

// --- Sums -------------------------------------------------------------------------------------------------------------

TEST_F(LedgerCheck, FindsLinesThatDoNotSum) {
  const std::string in = receipt(), out = issue();
  const std::string received = amount("Select iAInPrice From ia_subsidiary Where AutoID = " + in);
  const std::string issued = amount("Select iAOutPrice From ia_subsidiary Where AutoID = " + out);
  run("Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 1.25 Where AutoID = " + partOf(in));
  run("Update ia_subsidiary_Item Set iItemOutPrice = iItemOutPrice - 0.0001 Where AutoID = " + partOf(out));
  EXPECT_THAT(errors(), ElementsAre("line-sum 2 -1.2499"));
  std::vector<std::string> expected = {
      headOf(in) + "line " + received + ", cost items " +
          amount("Select Sum(iItemInPrice) From ia_subsidiary_Item Where iSubID = " + in) + " | -1.25",
      headOf(out) + "line " + issued + ", cost items " +
          amount("Select Sum(iItemOutPrice) From ia_subsidiary_Item Where iSubID = " + out) + " | 0.0001"};
  if (std::stoi(in) > std::stoi(out)) std::ranges::reverse(expected);
  EXPECT_EQ(rowsOf(Check::lineSum), expected);
}

TEST_F(LedgerCheck, TakesNoAmountForNothing) {
  const std::string in = receipt();
  const std::string lost = amount("Select iItemInPrice From ia_subsidiary_Item Where AutoID = " + partOf(in));
  run("Update ia_subsidiary_Item Set iItemInPrice = Null Where AutoID = " + partOf(in));
  EXPECT_THAT(errors(), ElementsAre("line-sum 1 " + lost));
  // A line without an amount whose cost items have none is in order.
  run("Update ia_subsidiary_Item Set iItemInPrice = Null, iItemInQuantity = Null Where iSubID = " + in);
  run("Update ia_subsidiary Set iAInPrice = Null, iAInQuantity = Null Where AutoID = " + in);
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LedgerCheck, FindsCostItemsOnTheOtherSide) {
  const std::string in = receipt();
  const std::string whole = amount("Select iAInPrice From ia_subsidiary Where AutoID = " + in);
  const std::string moved = amount("Select iItemInPrice From ia_subsidiary_Item Where AutoID = " + partOf(in));
  run("Update ia_subsidiary_Item Set iItemOutPrice = iItemInPrice, iItemInPrice = Null Where AutoID = " + partOf(in));
  const std::string left = amount("Select Sum(iItemInPrice) From ia_subsidiary_Item Where iSubID = " + in);
  EXPECT_THAT(rowsOf(Check::lineSum), ElementsAre(headOf(in) + "receipt " + whole + ", cost items " + left +
                                                  "; issue 0.00, cost items " + moved + " | 0.00"));
}

TEST_F(LedgerCheck, SaysNothingOfQuantitiesOfCostItems) {
  run("Update ia_subsidiary_Item Set iItemInQuantity = 7 Where iItemInQuantity Is Not Null");
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LedgerCheck, FindsIssuesWhoseOwnSplitDoesNotSum) {
  const std::string part =
      value("Select Min(AutoID) From ia_subsidiary_ItemOut Where iYear = 2024 And iItemOutPrice > 2");
  const std::string line = value("Select iSubID From ia_subsidiary_ItemOut Where AutoID = " + part);
  run("Update ia_subsidiary_ItemOut Set iItemOutPrice = iItemOutPrice - 2 Where AutoID = " + part);
  EXPECT_THAT(errors(), ElementsAre("issue-sum 1 2.00"));
  EXPECT_THAT(
      rowsOf(Check::issueSum),
      ElementsAre(headOf(line) + "line " + amount("Select iAOutPrice From ia_subsidiary Where AutoID = " + line) +
                  ", cost items " +
                  amount("Select Sum(iItemOutPrice) From ia_subsidiary_ItemOut Where iSubID = " + line) + " | 2.00"));
}

TEST_F(LedgerCheck, FindsCostItemOpeningsThatDoNotSum) {
  const std::string line = value("Select Min(iSubQcID) From IA_Subsidiary_QC_Item");
  run("Update IA_Subsidiary_QC_Item Set iItemInPrice = iItemInPrice + 0.01 Where AutoID = (Select Min(AutoID) From "
      "IA_Subsidiary_QC_Item Where iSubQcID = " +
      line + ")");
  EXPECT_THAT(errors(), ElementsAre("opening-sum 1 -0.01"));
  const std::vector<std::string> rows = rowsOf(Check::openingSum);
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_THAT(rows.front(), testing::StartsWith(headOf(line, "IA_Subsidiary_QC") + "line "));
}

// --- Cost items -------------------------------------------------------------------------------------------------------

TEST_F(LedgerCheck, FindsLinesThatLackCostItems) {
  const std::string in = receipt();
  const std::string lost = amount("Select iAInPrice From ia_subsidiary Where AutoID = " + in);
  run("Delete From ia_subsidiary_Item Where iSubID = " + in);
  EXPECT_THAT(errors(), ElementsAre("line-without-items 1 " + lost));
  EXPECT_THAT(rowsOf(Check::lineWithoutItems), ElementsAre(headOf(in) + "no cost items | " + lost));
}

// The year alone knows too little: here the inventory has cost items in the other one.
TEST_F(LedgerCheck, FindsThemWhereOnlyAnotherYearHasCostItems) {
  const std::string inventory = value("Select cInvCode From ia_subsidiary Where AutoID = " + receipt());
  const std::string lines = " From ia_subsidiary Where iYear = 2024 And cInvCode = N'" + inventory +
                            "' And IsNull(iAInPrice, 0) + IsNull(iAOutPrice, 0) <> 0";
  run("Delete From ia_subsidiary_Item Where iSubID In (Select AutoID" + lines + ")");
  const std::string expected = "line-without-items " + value("Select Count(*)" + lines) + " " +
                               amount("Select Sum(IsNull(iAInPrice, 0) + IsNull(iAOutPrice, 0))" + lines);
  EXPECT_THAT(errors(), ElementsAre(expected));
  EXPECT_THAT(errors({.years = YearRange{2024, 2024}}), ElementsAre(expected));
}

TEST_F(LedgerCheck, ExpectsNoCostItemsBeforeTheyStart) {
  run("Update AccInformation Set cValue = N'202404' Where cSysID = N'CA' And cID = N'11002'");
  run("Delete From ia_subsidiary_Item Where iYear = 2023 Or iMonth < 4");
  run("Delete From ia_subsidiary_ItemOut Where iYear = 2023 Or iMonth < 4");
  EXPECT_THAT(rowsOf(Check::lineWithoutItems), IsEmpty());
  run("Update AccInformation Set cValue = N'202403' Where cSysID = N'CA' And cID = N'11002'");
  EXPECT_EQ(
      std::to_string(rowsOf(Check::lineWithoutItems).size()),
      value("Select Count(*) From ia_subsidiary Where iYear = 2024 And iMonth = 3 And cInvCode Not Like N'06%' And "
            "IsNull(iAInPrice, 0) + IsNull(iAOutPrice, 0) <> 0"));
}

TEST_F(LedgerCheck, FindsCostItemOpeningsThatLackCostItems) {
  const std::string line = value("Select Min(iSubQcID) From IA_Subsidiary_QC_Item");
  run("Delete From IA_Subsidiary_QC_Item Where iSubQcID = " + line);
  const std::string lost = amount("Select iAInPrice From IA_Subsidiary_QC Where AutoID = " + line);
  EXPECT_THAT(errors(), ElementsAre("opening-without-items 1 " + lost));
  EXPECT_THAT(rowsOf(Check::openingWithoutItems),
              ElementsAre(headOf(line, "IA_Subsidiary_QC") + "no cost items | " + lost));
}

TEST_F(LedgerCheck, FindsUnknownCostItemsAndDetails) {
  const std::string in = receipt();
  const std::string first = partOf(in);
  const std::string second =
      value("Select Min(AutoID) From ia_subsidiary_Item Where AutoID > " + first + " And iSubID = " + in);
  const std::string item = value("Select iItemID From ia_subsidiary_Item Where AutoID = " + second);
  const std::string amounts =
      amount("Select Sum(iItemInPrice) From ia_subsidiary_Item Where AutoID In (" + first + ", " + second + ")");
  run("Update ia_subsidiary_Item Set iItemID = 777 Where AutoID = " + first);
  run("Update ia_subsidiary_Item Set iItemDetailID = 88888 Where AutoID = " + second);
  EXPECT_THAT(errors(), ElementsAre("unknown-item 2 " + amounts));
  const auto amountOf = [](const std::string& part) {
    return amount("Select iItemInPrice From ia_subsidiary_Item Where AutoID = " + part);
  };
  EXPECT_THAT(rowsOf(Check::unknownItem),
              ElementsAre(headOf(in) + "ia_subsidiary_Item: unknown cost item 777 | " + amountOf(first),
                          headOf(in) + "ia_subsidiary_Item: unknown detail 88888 of cost item " + item + " | " +
                              amountOf(second)));
}

TEST_F(LedgerCheck, FindsDetailsOfAnotherCostItemAndTakesPartsWithoutDetail) {
  const std::string part = value("Select Min(AutoID) From ia_subsidiary_ItemOut");
  const std::string line = value("Select iSubID From ia_subsidiary_ItemOut Where AutoID = " + part);
  const std::string item = value("Select iItemID From ia_subsidiary_ItemOut Where AutoID = " + part);
  run("Update ia_subsidiary_Item Set iItemDetailID = Null Where AutoID = " + partOf(receipt()));
  EXPECT_THAT(errors(), IsEmpty());
  run("Update ia_subsidiary_ItemOut Set iItemDetailID = (Select Min(iFxDID) From Ca_FxMapExpDID Where iFxID = 17) Where "
      "AutoID = " +
      part);
  const std::string detail = value("Select iItemDetailID From ia_subsidiary_ItemOut Where AutoID = " + part);
  EXPECT_THAT(rowsOf(Check::unknownItem),
              ElementsAre(headOf(line) + "ia_subsidiary_ItemOut: detail " + detail + " of cost item " + item +
                          " belongs to cost item 17 | " +
                          amount("Select iItemOutPrice From ia_subsidiary_ItemOut Where AutoID = " + part)));
}

TEST_F(LedgerCheck, FindsCostItemsWithoutTheirLine) {
  run("Insert Into ia_subsidiary_Item (AutoID, iSubID, iItemID, iItemDetailID, iYear, iMonth, bRdFlag, iItemInPrice) "
      "Values (99000001, 99000002, 1, Null, 2024, 7, 1, 12.5)");
  run("Insert Into IA_Subsidiary_QC_Item (AutoID, iSubQcID, iItemID, iItemDetailID, iYear, iMonth, bRdFlag, "
      "iItemInPrice) Values (99000003, 99000004, 2, Null, 2023, 0, 1, 0.25)");
  EXPECT_THAT(errors(), ElementsAre("stray-item 2 12.75"));
  EXPECT_THAT(
      rowsOf(Check::strayItem),
      ElementsAre("99000002 | 2024-7 |  |  |  | ia_subsidiary_Item: cost item 1, whose line ia_subsidiary lacks | "
                  "12.50",
                  "99000004 | 2023-0 |  |  |  | IA_Subsidiary_QC_Item: cost item 2, whose line IA_Subsidiary_QC "
                  "lacks | 0.25"));
}

TEST_F(LedgerCheck, FindsWhatStandsOutsideTheClassTree) {
  run("Update Ca_FxDef Set cFxCID = 777 Where cFxCode = N'CI02'");
  run("Insert Into Ca_FxClassDef (iFxCId, cFxCCode, cFxCName, iGrade) Values (501, N'09', N'a', 1), (502, N'0901', "
      "N'b', 2), (503, N'090101', N'c', 3), (504, N'080101', N'd', 3), (505, N'0902', N'e', 3)");
  EXPECT_THAT(errors(), ElementsAre("class-tree 3 0.00"));
  EXPECT_THAT(rowsOf(Check::classTree),
              ElementsAre("- | - |  |  |  | cost item CI02: there is no class 777 | -",
                          "- | - |  |  |  | class 080101 of grade 3: there is no class above it | -",
                          "- | - |  |  |  | class 0902 of grade 3: there is no class above it | -"));
}

// --- Amounts and quantities -------------------------------------------------------------------------------------------

TEST_F(LedgerCheck, FindsAmountsWithoutQuantity) {
  const std::string in = receipt();
  run("Update ia_subsidiary Set iAInQuantity = Null Where AutoID = " + in);
  const std::string price = amount("Select iAInPrice From ia_subsidiary Where AutoID = " + in);
  EXPECT_THAT(errors(), ElementsAre("amount-without-quantity 1 " + price));
  EXPECT_THAT(rowsOf(Check::amountWithoutQuantity), ElementsAre(headOf(in) + "no quantity | " + price));
  // Adjustments have none by their nature.
  EXPECT_GT(
      std::stoi(value("Select Count(*) From ia_subsidiary Where cVouType In (N'20', N'21') And IsNull(iAInPrice, 0) "
                      "+ IsNull(iAOutPrice, 0) <> 0")),
      5);
}

TEST_F(LedgerCheck, NotesQuantitiesWithoutAmount) {
  const std::string out = issue();
  run("Update ia_subsidiary Set iAOutPrice = Null Where AutoID = " + out);
  run("Delete From ia_subsidiary_Item Where iSubID = " + out);
  run("Delete From ia_subsidiary_ItemOut Where iSubID = " + out);
  EXPECT_THAT(errors(), IsEmpty());
  EXPECT_THAT(rowsOf(Check::quantityWithoutAmount),
              ElementsAre(headOf(out) + "quantity " +
                          amount("Select iAOutQuantity From ia_subsidiary Where AutoID = " + out) + ", no amount | -"));
}

// --- Balances ---------------------------------------------------------------------------------------------------------

// An opening line of 2024 of an inventory that is kept neither by batch nor by free items.
constexpr const char* plainOpening =
    "Select Min(base.AutoID) From ia_subsidiary base Inner Join Inventory item On item.cInvCode = base.cInvCode Where "
    "base.iYear = 2024 And base.cVouType = N'34' And item.bCheckBatch = 0 And IsNull(base.cFree1, N'') = N'' And "
    "IsNull(base.cFree2, N'') = N'' And IsNull(base.cFree3, N'') = N''";

TEST_F(LedgerCheck, FindsOpeningsThatAreNotTheClosing) {
  const std::string opening = value(plainOpening);
  const std::string of = " From ia_subsidiary Where AutoID = " + opening;
  const std::string quantity = amount("Select iAInQuantity" + of), worth = amount("Select iAInPrice" + of);
  const std::string place = value("Select cWhCode" + of), inventory = value("Select cInvCode" + of);
  run("Update ia_subsidiary Set iAInPrice = iAInPrice - 4, iAInQuantity = iAInQuantity + 1 Where AutoID = " + opening);
  run("Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice - 4 Where AutoID = " + partOf(opening));
  EXPECT_THAT(errors(), ElementsAre("opening-balance 1 -4.00"));
  EXPECT_THAT(rowsOf(Check::openingBalance),
              ElementsAre("- | 2024-0 |  |  | " + inventory + " | warehouse " + place + ", closing " + quantity +
                          " at " + worth + ", opening " + amount("Select iAInQuantity" + of) + " at " +
                          amount("Select iAInPrice" + of) + " | -4.00"));
}

TEST_F(LedgerCheck, ComparesBatchesAndFreeItemsAndPlacesApart) {
  const std::string batch = value(
      "Select Min(AutoID) From ia_subsidiary Where iYear = 2024 And cVouType = N'34' And cBatchIA Is Not Null And iAInPrice "
      "> 0");
  const std::string worth = amount("Select iAInPrice From ia_subsidiary Where AutoID = " + batch);
  run("Update ia_subsidiary Set cBatchIA = N'other' Where AutoID = " + batch);
  // The old batch has lost its opening, the new one has one that nothing closed with.
  const std::vector<std::string> rows = rowsOf(Check::openingBalance);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(rows, testing::Contains(testing::HasSubstr("batch other, ")));
  EXPECT_THAT(rows, testing::Contains(testing::EndsWith(" | -" + worth)));
  EXPECT_THAT(rows, testing::Contains(testing::EndsWith(" | " + worth)));
  EXPECT_THAT(errors(), ElementsAre("opening-balance 2 0.00"));

  run("Update ia_subsidiary Set cWhCode = N'77' Where AutoID = " + value(plainOpening));
  EXPECT_THAT(errors(), ElementsAre("opening-balance 4 0.00"));
  // What an inventory is not kept by does not tell its balances apart.
  run("Update ia_subsidiary Set cFree9 = N'x' Where cVouType = N'34' And cInvCode In (Select cInvCode From Inventory "
      "Where bCheckFree9 = 0)");
  EXPECT_THAT(errors(), ElementsAre("opening-balance 4 0.00"));
}

// A place means nothing between a year that had none and one that has.
TEST_F(LedgerCheck, ComparesWithoutPlaceWhereTheValuationMethodChanged) {
  run("Update ia_subsidiary Set cWhCode = N'77' Where iYear = 2024 And cVouType = N'34'");
  EXPECT_FALSE(rowsOf(Check::openingBalance).empty());
  run("Update IA_HisOption Set cValue = N'按存货核算' Where iYear = 2023 And cName = N'cValueStyle'");
  EXPECT_THAT(rowsOf(Check::openingBalance), IsEmpty());
}

TEST_F(LedgerCheck, LeavesDirectShipmentsOutOfBalances) {
  run("Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, cBusType, bRdFlag, bFlag, cInvCode, iAInQuantity, "
      "iAInPrice) Values (99000001, 2023, 12, N'25', N'直运采购', 1, 0, N'0601-00001', 1, 5)");
  EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LedgerCheck, FindsCostItemOpeningsThatAreNotTheBalance) {
  const std::string line = value("Select Min(iSubQcID) From IA_Subsidiary_QC_Item");
  run("Update IA_Subsidiary_QC Set iAInPrice = iAInPrice + 3 Where AutoID = " + line);
  run("Update IA_Subsidiary_QC_Item Set iItemInPrice = iItemInPrice + 3 Where AutoID = (Select Min(AutoID) From "
      "IA_Subsidiary_QC_Item Where iSubQcID = " +
      line + ")");
  // An inventory that never has cost items needs no entry.
  run("Delete From IA_Subsidiary_QC Where cInvCode Like N'06%'");
  EXPECT_THAT(errors(), ElementsAre("item-opening-balance 1 3.00"));
  const std::vector<std::string> rows = rowsOf(Check::itemOpeningBalance);
  ASSERT_EQ(rows.size(), 1U);
  const std::string entered = amount("Select iAInPrice From IA_Subsidiary_QC Where AutoID = " + line);
  EXPECT_THAT(rows.front(),
              testing::AllOf(testing::StartsWith("- | 2023-4 |  |  | " +
                                                 value("Select cInvCode From IA_Subsidiary_QC Where AutoID = " + line)),
                             testing::EndsWith(" at " + entered + " | 3.00")));
  EXPECT_THAT(errors({.years = YearRange{2024, 2024}}), IsEmpty());
}

TEST_F(LedgerCheck, NotesBalancesOfNothing) {
  run("Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, bRdFlag, bFlag, cWhCode, cInvCode, iAInPrice) Values "
      "(99000001, 2024, 12, N'20', 1, 0, N'01', N'none', 5)");
  EXPECT_THAT(errors(), IsEmpty());
  EXPECT_THAT(rowsOf(Check::balanceWithoutQuantity),
              ElementsAre("- | 2024-12 |  |  | none | warehouse 01, closing without quantity at 5.00 | 5.00"));
}

// --- Periods ----------------------------------------------------------------------------------------------------------

TEST_F(LedgerCheck, FindsMonthsLeftOpen) {
  run("Update IA_PeriodState Set bSettled = 0 Where iYear = 2023 And iMonth = 11 Or iYear = 2024 And iMonth In (0, 3)");
  EXPECT_THAT(rowsOf(Check::periodGap),
              ElementsAre("- | 2023-11 |  |  |  | not settled, while 202312 is | -",
                          "- | 2024-0 |  |  |  | the cost-item openings are not finished, while 202409 is settled | -",
                          "- | 2024-3 |  |  |  | not settled, while 202404 is | -"));
  EXPECT_THAT(errors({.years = YearRange{2023, 2023}}), ElementsAre("period-gap 1 0.00"));
}

TEST_F(LedgerCheck, WaitsForCostItemOpeningsUntilTheirMonthIsSettled) {
  run("Update IA_PeriodState Set bSettled = 0 Where iYear = 2024 Or iMonth = 0 Or iMonth > 3");
  EXPECT_THAT(rowsOf(Check::periodGap), IsEmpty());
  run("Update IA_PeriodState Set bSettled = 1 Where iYear = 2023 And iMonth = 4");
  EXPECT_THAT(
      rowsOf(Check::periodGap),
      ElementsAre("- | 2023-0 |  |  |  | the cost-item openings are not finished, while 202304 is settled | -"));
}

// --- Scope ------------------------------------------------------------------------------------------------------------

TEST_F(LedgerCheck, CountsTheYearsThatAreAskedFor) {
  const std::string early = value("Select Min(iSubID) From ia_subsidiary_Item Where iYear = 2023 And iItemInPrice > 0");
  run("Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 1 Where AutoID = " + partOf(early));
  run("Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 2 Where AutoID = " + partOf(receipt()));
  run("Update ia_subsidiary Set iAInPrice = iAInPrice - 4 Where AutoID = " + value(plainOpening));
  EXPECT_THAT(errors(), ElementsAre("line-sum 3 -7.00", "opening-balance 1 -4.00"));
  EXPECT_THAT(errors({.years = YearRange{2023, 2023}}), ElementsAre("line-sum 1 -1.00"));
  EXPECT_THAT(errors({.years = YearRange{2024, 2024}}), ElementsAre("line-sum 2 -6.00", "opening-balance 1 -4.00"));
  EXPECT_THAT(errors({.years = YearRange{2030, 2031}}), IsEmpty());
}

TEST_F(LedgerCheck, CountsAllAndTellsAsManyAsAsked) {
  run("Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 1 Where iYear = 2024 And iMonth = 12 And bRdFlag = 1");
  const std::vector<Check> checks = {Check::lineSum, Check::neverSplit};
  for (const std::int64_t shown : {0, 1, 3}) {
    const std::vector<Finding> findings = checkLedger(*account_, {.checks = checks, .shown = shown});
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(
        std::to_string(findings[0].rows),
        value("Select Count(Distinct iSubID) From ia_subsidiary_Item Where iYear = 2024 And iMonth = 12 And bRdFlag "
              "= 1"));
    EXPECT_EQ(static_cast<std::int64_t>(findings[0].shown.size()), shown);
    EXPECT_EQ(static_cast<std::int64_t>(findings[1].shown.size()), shown);
  }
}

TEST_F(LedgerCheck, FindsNothingInAnEmptyAccount) {
  const auto empty = tsql::Connection::openInMemory();
  createTables(*empty);
  const std::vector<Finding> findings = checkLedger(*empty, {});
  EXPECT_EQ(findings.size(), ledgerChecks().size());
  EXPECT_TRUE(std::ranges::all_of(findings, [](const Finding& finding) { return finding.rows == 0; }));
}

TEST_F(LedgerCheck, WritesNumbersWithTheDecimalsTheyNeed) {
  const auto text = [](std::int64_t units, int scale) { return checkedNumber({.units = units, .scale = scale}); };
  EXPECT_EQ(text(0, 4), "0.00");
  EXPECT_EQ(text(-125000, 4), "-12.50");
  EXPECT_EQ(text(1, 4), "0.0001");
  EXPECT_EQ(text(7, 0), "7.00");
  EXPECT_EQ(text(1234500, 6), "1.2345");
}

}  // namespace
}  // namespace quillon::account
