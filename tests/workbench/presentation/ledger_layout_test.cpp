// The detail ledger as it is kept on paper.
#include "workbench/presentation/ledger_layout.h"

#include <gmock/gmock.h>

#include "tests/workbench/presentation/ledger_sources.h"
#include "tests/workbench/presentation/made_layout.h"
#include "tests/workbench/presentation/small_ledger.h"

namespace quillon::workbench {
namespace {

using test::lastYear;
using test::LedgerChoice;
using test::Lines;
using test::MadeLayout;
using test::numbersByKey;
using test::plainNumber;
using test::ReadView;
using test::shown;
using test::ValuedAccount;
using testing::ElementsAre;
using testing::IsEmpty;

class LedgerLayout : public test::SmallLedger {
 protected:
  static ReadView ledger(const MadeLayout& made, bool parts = false, bool allColumns = false) {
    return ReadView(
        ledgerView(made.request({}, allColumns), made.document(), {.beginning = made.beginning(2024), .parts = parts}));
  }
};

TEST_F(LedgerLayout, RunsFromTheOpeningToTheClosingBalance) {
  const MadeLayout report = made();
  const ReadView view = ledger(report);
  EXPECT_THAT(
      shown(view, {"iMonth", "dKeepDate", "cPZCode", "cVouType", "cVouCode", "cPZdigest", "iBalanceQuantity",
                   "iBalanceCost", "iBalancePrice"}),
      ElementsAre("opening: -|-|-|-|-|期初结存|10.00|10.0000|100.00",
                  "line: 1|2024-01-10|-|产成品入库单|R-1|生产入库|15.00|10.6667|160.00",
                  "line: 1|2024-01-20|转 12|材料出库单|L-1|领料|12.00|10.6667|128.00",
                  "month: 1|-|-|-|-|本月合计|12.00|10.6667|128.00", "year: 1|-|-|-|-|本年累计|12.00|10.6667|128.00",
                  "line: 2|2024-03-01|-|材料出库单|L-2|领料|10.00|10.6670|106.67",
                  "month: 2|-|-|-|-|本月合计|10.00|10.6670|106.67", "year: 2|-|-|-|-|本年累计|10.00|10.6670|106.67",
                  "line: 3|2024-03-05|-|产成品入库单|R-2|盘盈|11.00|10.3791|114.17",
                  "month: 3|-|-|-|-|本月合计|11.00|10.3791|114.17", "year: 3|-|-|-|-|本年累计|11.00|10.3791|114.17",
                  "closing: -|-|-|-|-|期末结存|11.00|10.3791|114.17"));
}

TEST_F(LedgerLayout, ReceiptsAndIssuesStandApart) {
  const MadeLayout report = made();
  const ReadView view = ledger(report);
  EXPECT_THAT(shown(view, {"iInQuantity", "iInCost", "iInPrice", "iOutQuantity", "iOutCost", "iOutPrice"}),
              ElementsAre("opening: -|-|-|-|-|-",  //
                          "line: 5.00|12.0000|60.00|-|-|-", "line: -|-|-|3.00|10.6667|32.00",
                          "month: 5.00|12.0000|60.00|3.00|10.6667|32.00",
                          "year: 5.00|12.0000|60.00|3.00|10.6667|32.00",  //
                          "line: -|-|-|2.00|10.6650|21.33", "month: 0.00|-|0.00|2.00|10.6650|21.33",
                          "year: 5.00|12.0000|60.00|5.00|10.6660|53.33",  //
                          "line: 1.00|7.5000|7.50|-|-|-", "month: 1.00|7.5000|7.50|0.00|-|0.00",
                          "year: 6.00|11.2500|67.50|5.00|10.6660|53.33", "closing: -|-|-|-|-|-"));
}

TEST_F(LedgerLayout, ClosingRowCarriesTheFigureOfTheYearsEnd) {
  const MadeLayout report = made();
  // In the table February's balance has the figures of the year's end and stands before the line of March.
  EXPECT_THAT(
      numbersByKey(report.table().account(),
                   "Select Distinct id, iQuantity, iPrice From " + report.table().name() + " Where datatype = 2", 1),
      ElementsAre(testing::Pair("1", ElementsAre("12", "128")), testing::Pair("2", ElementsAre("11", "114.17"))));
  const ReadView view = ledger(report);
  EXPECT_EQ(view.rows().back().kind, RowKind::closing);
  EXPECT_EQ(view.text(view.rows().back(), "iBalancePrice"), "114.17");
  EXPECT_THAT(view.rows(RowKind::difference), IsEmpty());
}

TEST_F(LedgerLayout, PartsStandBeneathTheirLine) {
  const MadeLayout report = made();
  const ReadView view = ledger(report, true);
  Lines details;
  for (const ViewRow& row : view.rows()) {
    if (row.kind == RowKind::line) details.push_back(view.text(row, "cVouCode"));
    if (row.kind == RowKind::detail)
      details.push_back(view.line(
          row, {"cfxCode", "cfxName", "iInQuantity", "iInPrice", "iOutQuantity", "iOutPrice", "iBalancePrice"}));
  }
  EXPECT_THAT(details, ElementsAre("R-1", "01A1|直接材料|5.00|40.00|-|-|-", "02B1|直接人工|0.00|20.00|-|-|-",  //
                                   "L-1", "01A1|直接材料|-|-|3.00|20.00|-", "02B1|直接人工|-|-|0.00|12.00|-",  //
                                   "L-2", "01A1|直接材料|-|-|2.00|13.33|-", "02B1|直接人工|-|-|0.00|8.00|-",   //
                                   "R-2", "-|（无成本项目）|1.00|7.50|-|-|-"));
}

TEST_F(LedgerLayout, WhatPartsLackOfTheirLineStandsUnderNoCostItem) {
  MadeLayout report = made();
  report.doctor("Update Result Set iItemPrice = 39.99 Where cVouCode = N'R-1' And cfxCode = N'01A1'");
  const ReadView view = ledger(report, true);
  const std::vector<ViewRow> details = view.rows(RowKind::detail);
  EXPECT_EQ(view.line(details[2], {"cfxName", "iInQuantity", "iInPrice"}), "（无成本项目）|-|0.01");
}

TEST_F(LedgerLayout, DifferenceFromAMonthBalanceIsShown) {
  MadeLayout report = made();
  report.doctor("Update Result Set iQuantity = 12.5, iPrice = 127.9 Where datatype = 2 And id = 1");
  const ReadView view = ledger(report);
  Lines months;
  for (const ViewRow& row : view.rows()) {
    if (row.kind != RowKind::line)
      months.push_back(view.line(row, {"iMonth", "cPZdigest", "iBalanceQuantity", "iBalanceCost", "iBalancePrice"}));
  }
  EXPECT_THAT(months, ElementsAre("-|期初结存|10.00|10.0000|100.00", "1|本月合计|12.00|10.6667|128.00",
                                  "1|本年累计|12.00|10.6667|128.00", "1|与账面月末结存相差|0.50|-|-0.10",
                                  "2|本月合计|10.00|10.6670|106.67", "2|本年累计|10.00|10.6670|106.67",
                                  "3|本月合计|11.00|10.3791|114.17", "3|本年累计|11.00|10.3791|114.17",
                                  "-|期末结存|11.00|10.3791|114.17"));
}

TEST_F(LedgerLayout, DifferenceFromTheClosingBalanceStandsBeforeIt) {
  MadeLayout report = made();
  report.doctor("Delete From Result Where cVouCode = N'L-2'");
  const ReadView view = ledger(report);
  const std::vector<ViewRow>& rows = view.rows();
  ASSERT_GE(rows.size(), 2U);
  EXPECT_EQ(view.line(rows[rows.size() - 2], {"cPZdigest", "iBalanceQuantity", "iBalanceCost", "iBalancePrice"}),
            "与账面期末结存相差|-2.00|-|-21.33");
  EXPECT_EQ(view.line(rows.back(), {"cPZdigest", "iBalanceQuantity", "iBalancePrice"}), "期末结存|13.00|135.50");
}

TEST_F(LedgerLayout, YearToDateIsNamedByWhatItIs) {
  const auto name = [](std::vector<std::string> settings, const std::string& from, Language language) {
    const MadeLayout report = made(std::move(settings), language);
    const ReadView view(ledgerView(report.request(), report.document(), {.beginning = report.beginning(2024, from)}));
    return view.text(view.rows(RowKind::yearTotal).front(), "cPZdigest");
  };
  EXPECT_EQ(name({}, "", Language::english), "Year to date");
  EXPECT_EQ(name({"dKeepDate=2024-01-01.."}, "2024-01-01", Language::chinese), "本年累计");
  EXPECT_EQ(name({"dKeepDate=2024-02-01.."}, "2024-02-01", Language::chinese), "自2月累计");
  EXPECT_EQ(name({"dKeepDate=2024-02-01.."}, "2024-02-01", Language::english), "Since month 2");
  // The receipt of January 10th is in the opening balance.
  EXPECT_EQ(name({"dKeepDate=2024-01-15.."}, "2024-01-15", Language::chinese), "自2024-01-15累计");
  EXPECT_EQ(name({"dKeepDate=2024-01-15.."}, "2024-01-15", Language::english), "Since 2024-01-15");
}

TEST_F(LedgerLayout, LineThatTheAccountLostIsAnIssueOfItsDatesMonth) {
  MadeLayout report = made();
  report.doctor("Update Result Set id = 99 Where cVouCode = N'R-2'");
  const ReadView view = ledger(report);
  EXPECT_EQ(view.line(view.rows(RowKind::line).back(), {"iMonth", "iInPrice", "iOutPrice"}), "3|-|7.50");
}

TEST_F(LedgerLayout, ColumnsThatSayTheSameOfAllLinesAreLeftOut) {
  const MadeLayout report = made();
  const View view = ledgerView(report.request(), report.document(), {});
  Lines names;
  for (const ViewColumn& column : view.columns)
    names.push_back(column.column.name);
  EXPECT_THAT(names, ElementsAre("iMonth", "dKeepDate", "cPZCode", "cVouType", "cVouCode", "cPZdigest", "iInQuantity",
                                 "iInCost", "iInPrice", "iOutQuantity", "iOutCost", "iOutPrice", "iBalanceQuantity",
                                 "iBalanceCost", "iBalancePrice"));
  EXPECT_EQ(view.lineCount, 4);
  // Document date, receipt/issue type, business type.
  EXPECT_EQ(view.columnsLeftOut, 3U);
  const ReadView all = ledger(report, false, true);
  EXPECT_EQ(all.line(all.rows(RowKind::line)[1], {"cVouDate", "cBusType", "iOutPrice"}), "2024-01-20|领料|32.00");
}

// --- Sample accounts --------------------------------------------------------------------------------------------------

class LedgerLayoutOfSamples : public testing::TestWithParam<ValuedAccount> {
 protected:
  static constexpr std::size_t ledgersOfAnAccount = 70;

  static std::unique_ptr<tsql::Connection> account() {
    return tsql::Connection::open(test::sampleOf(GetParam()), tsql::OpenMode::readOnly);
  }
};

// Receipts and issues by month, straight from the ledger's lines.
std::map<std::string, std::vector<std::string>> movements(tsql::Database& account, const std::string& condition) {
  return numbersByKey(account,
                      "Select iMonth, Sum(Case When bRdFlag = 1 Then IsNull(iAInQuantity, 0) Else 0 End), Sum(Case "
                      "When bRdFlag = 1 Then IsNull(iAInPrice, 0) Else 0 End), Sum(Case When bRdFlag = 1 Then 0 Else "
                      "IsNull(iAOutQuantity, 0) End), Sum(Case When bRdFlag = 1 Then 0 Else IsNull(iAOutPrice, 0) "
                      "End) From ia_subsidiary line Where line.iMonth > 0 And " +
                          condition + " Group By iMonth",
                      1);
}

std::vector<std::string> balanceUntil(tsql::Database& account, const std::string& condition, int month) {
  return numbersByKey(account,
                      "Select 0, Sum(IsNull(iAInQuantity, 0) - IsNull(iAOutQuantity, 0)), Sum(IsNull(iAInPrice, 0) - "
                      "IsNull(iAOutPrice, 0)) From ia_subsidiary line Where line.iMonth <= " +
                          std::to_string(month) + " And " + condition,
                      1)["0"];
}

std::vector<std::string> balanceOf(const ReadView& view, const ViewRow& row) {
  return {plainNumber(view.value(row, "iBalanceQuantity")), plainNumber(view.value(row, "iBalancePrice"))};
}

// What the table has at the end of each month, each group once.
std::map<std::string, std::vector<std::string>> monthEnds(const ResultTable& table) {
  return numbersByKey(table.account(),
                      "Select id, Sum(iQuantity), Sum(iPrice) From (Select Distinct id, cBatchia, cFree1, cFree2, "
                      "cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, iQuantity, iPrice From " +
                          table.name() + " Where datatype = 2) balances Group By id",
                      1);
}

TEST_P(LedgerLayoutOfSamples, AgreeWithTheLedgerAndWithTheMonthBalances) {
  const auto connection = account();
  const std::vector<LedgerChoice> choices = test::someLedgers(GetParam(), lastYear, ledgersOfAnAccount);
  ASSERT_EQ(choices.size(), ledgersOfAnAccount);
  int monthsCompared = 0;
  int linesBehindTheLastBalance = 0;
  for (const LedgerChoice& choice : choices) {
    SCOPED_TRACE(choice.place + " " + choice.inventory);
    const MadeLayout report("fx-detail", test::sampleOf(GetParam()), choice.settings(GetParam(), lastYear));
    const std::string condition = choice.condition(GetParam(), lastYear, "line");
    const View view = ledgerView(report.request(), report.document(), {});
    const ReadView read(view);
    EXPECT_THAT(read.rows(RowKind::difference), IsEmpty());

    std::map<std::string, std::vector<std::string>> shownMovements;
    std::map<int, std::vector<std::string>> shownBalances = {{0, balanceOf(read, read.rows().front())}};
    for (const ViewRow& row : read.rows(RowKind::monthTotal)) {
      const std::string month = read.text(row, "iMonth");
      for (const char* column : {"iInQuantity", "iInPrice", "iOutQuantity", "iOutPrice"})
        shownMovements[month].push_back(plainNumber(read.value(row, column)));
      shownBalances[std::stoi(month)] = balanceOf(read, row);
      EXPECT_EQ(balanceOf(read, row), balanceUntil(*connection, condition, std::stoi(month)));
    }
    EXPECT_EQ(shownMovements, movements(*connection, condition));
    EXPECT_EQ(shownBalances[0], balanceUntil(*connection, condition, 0));
    constexpr int lastMonth = 12;
    EXPECT_EQ(read.rows().back().kind, RowKind::closing);
    EXPECT_EQ(balanceOf(read, read.rows().back()), balanceUntil(*connection, condition, lastMonth));

    const auto ofTable = monthEnds(report.table());
    ASSERT_FALSE(ofTable.empty());
    int last = 0;
    for (const auto& [month, figures] : ofTable)
      last = std::max(last, std::stoi(month));
    for (const auto& [month, figures] : ofTable) {
      if (std::stoi(month) == last) continue;
      EXPECT_EQ(std::prev(shownBalances.upper_bound(std::stoi(month)))->second, figures) << month;
      ++monthsCompared;
    }
    EXPECT_EQ(balanceOf(read, read.rows().back()), ofTable.at(std::to_string(last)));
    for (const ViewRow& row : read.rows(RowKind::line))
      linesBehindTheLastBalance += std::stoi(read.text(row, "iMonth")) > last ? 1 : 0;
    EXPECT_EQ(view.lineCount, static_cast<std::int64_t>(read.rows(RowKind::line).size()));
  }
  EXPECT_GT(monthsCompared, 400);
  EXPECT_GT(linesBehindTheLastBalance, 100);
}

// Cost items begin with April; what was before is an opening that was entered.
TEST_P(LedgerLayoutOfSamples, OfTheYearInWhichCostItemsBegin) {
  constexpr int year = lastYear - 1;
  constexpr std::size_t few = 10;
  const auto connection = account();
  for (const LedgerChoice& choice : test::someLedgers(GetParam(), year, few)) {
    SCOPED_TRACE(choice.place + " " + choice.inventory);
    const MadeLayout report("fx-detail", test::sampleOf(GetParam()), choice.settings(GetParam(), year));
    const ReadView read(ledgerView(report.request(), report.document(), {.beginning = report.beginning(year)}));
    EXPECT_THAT(read.rows(RowKind::difference), IsEmpty());
    constexpr int lastMonth = 12;
    EXPECT_EQ(balanceOf(read, read.rows().back()),
              balanceUntil(*connection, choice.condition(GetParam(), year, "line"), lastMonth));
    for (const ViewRow& row : read.rows(RowKind::yearTotal))
      EXPECT_EQ(read.text(row, "cPZdigest"), "Since month 4");
  }
}

// The parts of a line and what none of them has make the line.
TEST_P(LedgerLayoutOfSamples, PartsMakeTheirLine) {
  constexpr std::size_t few = 10;
  for (const LedgerChoice& choice : test::someLedgers(GetParam(), lastYear, few)) {
    SCOPED_TRACE(choice.place + " " + choice.inventory);
    const MadeLayout report("fx-detail", test::sampleOf(GetParam()), choice.settings(GetParam(), lastYear));
    const ReadView read(ledgerView(report.request(), report.document(), {.parts = true}));
    ExactSum rest;
    for (const ViewRow& row : read.rows()) {
      if (row.kind != RowKind::detail) {
        EXPECT_TRUE(rest.isZero()) << read.text(row, "cVouCode");
      }
      if (row.kind == RowKind::line) {
        rest.add(read.value(row, "iInPrice"));
        rest.add(read.value(row, "iOutPrice"));
      } else if (row.kind == RowKind::detail) {
        rest.subtract(read.value(row, "iInPrice"));
        rest.subtract(read.value(row, "iOutPrice"));
      }
    }
    EXPECT_TRUE(rest.isZero());
  }
}

INSTANTIATE_TEST_SUITE_P(Valuations, LedgerLayoutOfSamples, testing::ValuesIn(test::valuedAccounts),
                         test::nameOfAccount);

}  // namespace
}  // namespace quillon::workbench
