// The detail ledger in columns: one line a document, cost items across.
#include "workbench/presentation/columnar_layout.h"

#include <gmock/gmock.h>

#include "tests/workbench/presentation/ledger_sources.h"
#include "tests/workbench/presentation/made_layout.h"
#include "tests/workbench/presentation/small_ledger.h"

namespace quillon::workbench {
namespace {

using test::LedgerChoice;
using test::MadeLayout;
using test::numbersByKey;
using test::plainNumber;
using test::ReadView;
using test::shown;
using test::ValuedAccount;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ColumnarLayout : public test::SmallLedger {
 protected:
  static ReadView columnar(const MadeLayout& made, const LedgerRequest& request = {}) {
    return ReadView(columnarView(made.request(), made.document(), request));
  }
};

TEST_F(ColumnarLayout, CostItemsStandAcross) {
  const MadeLayout report = made();
  EXPECT_THAT(
      shown(columnar(report), {"iMonth", "cVouCode", "cPZdigest", "iInPrice", "iOutPrice", "iBalancePrice", "01A1",
                               "02B1", "noCostItem"}),
      ElementsAre("opening: -|-|期初结存|-|-|100.00|60.00|40.00|-", "line: 1|R-1|生产入库|60.00|-|160.00|40.00|20.00|-",
                  "line: 1|L-1|领料|-|32.00|128.00|-20.00|-12.00|-", "month: 1|-|本月收入|60.00|-|-|40.00|20.00|-",
                  "month: 1|-|本月发出|-|32.00|-|-20.00|-12.00|-", "month: 1|-|月末结存|-|-|128.00|80.00|48.00|-",
                  "line: 2|L-2|领料|-|21.33|106.67|-13.33|-8.00|-",  //
                  "month: 2|-|本月收入|0.00|-|-|-|-|-", "month: 2|-|本月发出|-|21.33|-|-13.33|-8.00|-",
                  "month: 2|-|月末结存|-|-|106.67|66.67|40.00|-",
                  "line: 3|R-2|盘盈|7.50|-|114.17|-|-|7.50",  //
                  "month: 3|-|本月收入|7.50|-|-|-|-|7.50",    //
                  "month: 3|-|本月发出|-|0.00|-|-|-|-", "month: 3|-|月末结存|-|-|114.17|66.67|40.00|7.50",
                  "closing: -|-|期末结存|-|-|114.17|66.67|40.00|7.50"));
}

TEST_F(ColumnarLayout, ClassesStandAcrossWhenTheBreakdownIsByClass) {
  const MadeLayout report = made({}, Language::english);
  const View view = columnarView(report.request(), report.document(), {.breakdown = Breakdown::costItemClass});
  std::vector<std::string> names;
  for (const ViewColumn& column : view.columns) {
    if (!column.groupChinese.empty()) names.push_back(column.group(Language::english) + "/" + column.column.english);
  }
  EXPECT_THAT(names, ElementsAre("Amount/Receipts", "Amount/Issues", "Amount/Balance",
                                 "Cost-item classes (issues negative)/材料", "Cost-item classes (issues negative)/人工",
                                 "Cost-item classes (issues negative)/(no cost item)"));
  const ReadView read(view);
  EXPECT_EQ(read.line(read.rows().back(), {"01", "02", "noCostItem"}), "66.67|40.00|7.50");
  EXPECT_EQ(breakdownOf("项目分类"), Breakdown::costItemClass);
  EXPECT_EQ(breakdownOf("成本项目"), Breakdown::costItem);
}

TEST_F(ColumnarLayout, NothingStandsAcrossForNoCostItemWhereAllHaveOne) {
  const MadeLayout report = made({"dKeepDate=2024-01-01..2024-02-28"});
  EXPECT_FALSE(columnar(report).has("noCostItem"));
}

TEST_F(ColumnarLayout, DifferenceOfACostItemIsShown) {
  MadeLayout report = made();
  report.doctor("Update Result Set iItemPrice = 80.5 Where datatype = 2 And id = 1 And cfxCode = N'01A1'");
  const ReadView view = columnar(report);
  // The balance as a whole agrees: what materials have too much falls to no cost item.
  EXPECT_THAT(shown(view, {"iMonth", "cPZdigest", "iBalancePrice", "01A1", "02B1", "noCostItem"}),
              Contains("difference: 1|与账面月末结存相差|0.00|0.50|-|-0.50"));
  EXPECT_EQ(view.rows(RowKind::difference).size(), 1U);
}

TEST_F(ColumnarLayout, DifferenceOfTheWholeIsShown) {
  MadeLayout report = made();
  report.doctor("Update Result Set iPrice = 128.25 Where datatype = 2 And id = 1");
  EXPECT_THAT(shown(columnar(report), {"iMonth", "cPZdigest", "iBalancePrice", "01A1", "02B1", "noCostItem"}),
              Contains("difference: 1|与账面月末结存相差|0.25|-|-|0.25"));
}

TEST_F(ColumnarLayout, CostItemThatTheMonthBalanceLacksIsNotCompared) {
  MadeLayout report = made();
  report.doctor("Delete From Result Where datatype = 2 And id = 1 And cfxCode = N'01A1'");
  EXPECT_THAT(columnar(report).rows(RowKind::difference), IsEmpty());
}

// --- Sample accounts --------------------------------------------------------------------------------------------------

class ColumnarLayoutOfSamples : public testing::TestWithParam<ValuedAccount> {};

// "month|receipt|cost item": what the parts of the ledger's lines have, those without cost item as "".
std::map<std::string, std::vector<std::string>> partsOf(tsql::Database& account, const std::string& condition) {
  auto sums = numbersByKey(
      account,
      "Select line.iMonth, line.bRdFlag, class.cFxCCode + item.cFxCode, Sum(Case When line.bRdFlag = 1 Then "
      "IsNull(part.iItemInPrice, 0) Else 0 - IsNull(part.iItemOutPrice, 0) End) From ia_subsidiary line inner join "
      "ia_subsidiary_Item part on part.iSubID = line.AutoID inner join Ca_FxDef item on item.iFxID = part.iItemID "
      "inner join Ca_FxClassDef class on class.iFxCId = item.cFxCID Where line.iMonth > 0 And " +
          condition + " Group By line.iMonth, line.bRdFlag, class.cFxCCode + item.cFxCode",
      3);
  const auto without = numbersByKey(
      account,
      "Select line.iMonth, line.bRdFlag, N'', Sum(Case When line.bRdFlag = 1 Then IsNull(line.iAInPrice, 0) Else 0 - "
      "IsNull(line.iAOutPrice, 0) End) From ia_subsidiary line Where line.iMonth > 0 And Not Exists (Select 1 From "
      "ia_subsidiary_Item part Where part.iSubID = line.AutoID) And " +
          condition + " Group By line.iMonth, line.bRdFlag",
      3);
  sums.insert(without.begin(), without.end());
  std::erase_if(sums, [](const auto& sum) { return sum.second.front() == "0"; });
  return sums;
}

TEST_P(ColumnarLayoutOfSamples, AgreeWithThePartsOfTheLedger) {
  constexpr std::size_t ledgers = 25;
  const auto account = tsql::Connection::open(test::sampleOf(GetParam()), tsql::OpenMode::readOnly);
  std::size_t compared = 0;
  for (const int year : {test::lastYear - 1, test::lastYear}) {
    for (const LedgerChoice& choice : test::someLedgers(GetParam(), year, ledgers)) {
      SCOPED_TRACE(std::to_string(year) + " " + choice.place + " " + choice.inventory);
      const MadeLayout report("fx-detail", test::sampleOf(GetParam()), choice.settings(GetParam(), year));
      const View view = columnarView(report.request(), report.document(), {});
      const ReadView read(view);
      EXPECT_THAT(read.rows(RowKind::difference), IsEmpty());
      std::vector<std::string> across;
      for (const ViewColumn& column : view.columns) {
        if (column.groupEnglish.starts_with("Cost items")) across.push_back(column.column.name);
      }

      std::map<std::string, std::vector<std::string>> shown;
      std::map<std::string, ExactSum> running;
      for (const ViewRow& row : read.rows()) {
        const bool movement = row.kind == RowKind::line;
        ExactSum ofRow;
        for (const std::string& item : across) {
          const tsql::Value& cell = read.value(row, item);
          ofRow.add(cell);
          if (movement || row.kind == RowKind::opening) running[item].add(cell);
          const bool balance = row.kind == RowKind::closing || !tsql::isNull(read.value(row, "iBalancePrice"));
          if (!movement && balance) {
            EXPECT_EQ(plainNumber(cell), plainNumber(running[item].value())) << item;
          }
          if (row.kind != RowKind::monthTotal || balance || plainNumber(cell) == "0") continue;
          const bool receipt = !tsql::isNull(read.value(row, "iInPrice"));
          shown[read.text(row, "iMonth") + (receipt ? "|1|" : "|0|") + (item == "noCostItem" ? "" : item)] = {
              plainNumber(cell)};
        }
        // Across, the cost items make what stands before them.
        if (movement || row.kind == RowKind::monthTotal) {
          ExactSum whole;
          whole.add(read.value(row, "iInPrice"));
          whole.subtract(read.value(row, "iOutPrice"));
          if (!movement) whole.add(read.value(row, "iBalancePrice"));
          EXPECT_EQ(plainNumber(ofRow.value()), plainNumber(whole.value()));
        } else {
          EXPECT_EQ(plainNumber(ofRow.value()), plainNumber(read.value(row, "iBalancePrice")));
        }
      }
      constexpr int costItemStart = 4;
      const std::string months = year == test::lastYear ? "" : " And line.iMonth >= " + std::to_string(costItemStart);
      EXPECT_EQ(shown, partsOf(*account, choice.condition(GetParam(), year, "line") + months));
      compared += shown.size();
    }
  }
  EXPECT_GT(compared, 500U);
}

INSTANTIATE_TEST_SUITE_P(Valuations, ColumnarLayoutOfSamples, testing::ValuesIn(test::valuedAccounts),
                         test::nameOfAccount);

}  // namespace
}  // namespace quillon::workbench
