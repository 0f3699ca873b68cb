// The voucher report by document.
#include "workbench/presentation/vouchers_layout.h"

#include <gmock/gmock.h>

#include <set>

#include "tests/workbench/presentation/ledger_sources.h"
#include "tests/workbench/presentation/made_layout.h"
#include "tests/workbench/presentation/small_ledger.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

using test::MadeLayout;
using test::numbersByKey;
using test::plainNumber;
using test::ReadView;
using test::shown;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

class VouchersLayout : public test::SmallLedger {
 protected:
  static ReadView view(const MadeLayout& made, Arrangement arrangement = {}, bool everyKey = false) {
    return ReadView(vouchersView(made.request(std::move(arrangement)), made.document(), everyKey));
  }
  // The small ledger with another account's worth of changes; for one report each.
  static std::unique_ptr<test::TemporaryFile> changed(const std::string& statements) {
    auto file = std::make_unique<test::TemporaryFile>(".qacc");
    test::makeSmallLedger(file->path());
    tsql::Connection::open(file->path(), tsql::OpenMode::existing)->execute(statements);
    return file;
  }
};

TEST_F(VouchersLayout, DocumentsHaveTheirLinesAndTheseTheirParts) {
  const MadeLayout report = vouchers();
  EXPECT_THAT(shown(view(report),
                    {"cVouTypeName", "cVouType", "cVouCode", "dVouDate", "cInvCode", "iAInQuantity", "iAInPrice",
                     "iAOutQuantity", "iOutCost", "iAOutPrice", "cfxName", "iUnitUsed", "iUnitCost", "iItemPrice"}),
              ElementsAre("group: 产成品入库单|10|R-1|2024-01-10|-|-|60.0000|-|-|-|-|-|-|-",
                          "line: -|-|-|-|M1|5.000000|60.0000|-|-|-|-|-|-|-",
                          "detail: -|-|-|-|-|-|-|-|-|-|直接材料|1.00|8.0000|40.0000",
                          "detail: -|-|-|-|-|-|-|-|-|-|直接人工|-|-|20.0000",
                          "group: 产成品入库单|10|R-2|2024-03-05|-|-|7.5000|-|-|-|-|-|-|-",
                          "line: -|-|-|-|M1|1.000000|7.5000|-|-|-|-|-|-|-",
                          // Its own unit cost and amount, since it has no cost item.
                          "detail: -|-|-|-|-|-|-|-|-|-|（无成本项目）|-|7.500000|7.5000",
                          "group: 材料出库单|11|L-1|2024-01-20|-|-|-|-|-|32.0000|-|-|-|-",
                          "line: -|-|-|-|M1|-|-|3.000000|10.666700|32.0000|-|-|-|-",
                          "detail: -|-|-|-|-|-|-|-|-|-|直接材料|1.00|6.6667|20.0000",
                          "detail: -|-|-|-|-|-|-|-|-|-|直接人工|-|-|12.0000",
                          "group: 材料出库单|11|L-2|2024-02-28|-|-|-|-|-|21.3300|-|-|-|-",
                          "line: -|-|-|-|M1|-|-|2.000000|10.665000|21.3300|-|-|-|-",
                          "detail: -|-|-|-|-|-|-|-|-|-|直接材料|1.00|6.6650|13.3300",
                          "detail: -|-|-|-|-|-|-|-|-|-|直接人工|-|-|8.0000",
                          "total: 合计（4 张单据，4 行）|-|-|-|-|6.000000|67.5000|5.000000|-|53.3300|-|-|-|-"));
}

TEST_F(VouchersLayout, RowsCanBeReadAgain) {
  const MadeLayout report = vouchers();
  const View once = vouchersView(report.request(), report.document());
  EXPECT_EQ(ReadView(once).rows().size(), ReadView(once).rows().size());
  EXPECT_EQ(once.lineCount, 4);
  EXPECT_EQ(limited(once, 1).columns.size() < once.columns.size(), true);
}

TEST_F(VouchersLayout, WhatLinesOfADocumentHaveAlikeStandsOnTheDocument) {
  const auto file = changed(
      "Insert Into Warehouse (cWhCode, cWhName) Values (N'1', N'一库'), (N'2', N'二库')\n"
      "Update ia_subsidiary Set cVouCode = N'R-1', dVouDate = '2024-01-10', cBusType = null Where AutoID = 5\n"
      "Update ia_subsidiary Set cWhCode = Case When AutoID = 2 Then N'1' Else N'2' End Where AutoID In (2, 5)");
  const MadeLayout report("fx-wt", file->path(), {"cVouCode=R-1"}, Language::chinese);
  EXPECT_THAT(shown(view(report), {"cVouTypeName", "cVouCode", "cWhName", "iAInPrice", "cfxName"}),
              ElementsAre("group: 产成品入库单|R-1|-|67.5000|-",  //
                          "line: -|-|一库|60.0000|-", "detail: -|-|-|-|直接材料", "detail: -|-|-|-|直接人工",
                          "line: -|-|二库|7.5000|-", "detail: -|-|-|-|（无成本项目）",
                          "total: 合计（1 张单据，2 行）|-|-|67.5000|-"));
  EXPECT_THAT(
      shown(view(report, {}, true), {"cVouTypeName", "cVouCode", "cWhName", "cInvCode"}),
      ElementsAre("group: 产成品入库单|R-1|-|-", "line: 产成品入库单|R-1|一库|M1", "detail: 产成品入库单|R-1|一库|M1",
                  "detail: 产成品入库单|R-1|一库|M1", "line: 产成品入库单|R-1|二库|M1",
                  "detail: 产成品入库单|R-1|二库|M1", "total: 合计（1 张单据，2 行）|-|-|-"));
}

TEST_F(VouchersLayout, PartsThatCameTogetherDoNotMultiplyTheirLine) {
  // A second part of the same cost item with another unit cost: the report puts both into one row, and with them the
  // line's own figures twice.
  const auto file = changed(
      "Update ia_subsidiary_Item Set iItemInQuantity = 2, iItemInCost = 5, iItemInPrice = 10 Where AutoID = 3\n"
      "Insert Into ia_subsidiary_Item (AutoID, iSubID, iItemID, iItemDetailID, iYear, iMonth, bRdFlag, "
      "iItemInQuantity, iItemInCost, iItemInPrice) Values (9, 2, 7, 70, 2024, 1, 1, 3, 10, 30)");
  const MadeLayout report("fx-wt", file->path(), {"cVouCode=R-1"}, Language::chinese);
  EXPECT_THAT(
      numbersByKey(report.table().account(), "Select cfxCode, iAInPrice, iUnitCost From " + report.table().name(), 1),
      Contains(Pair("A1", ElementsAre("120", "15"))));
  EXPECT_THAT(shown(view(report), {"iAInQuantity", "iAInPrice", "cfxName", "iUnitUsed", "iUnitCost", "iItemPrice"}),
              ElementsAre("group: -|60.0000|-|-|-|-", "line: 5.000000|60.0000|-|-|-|-",
                          "detail: -|-|直接材料|1.00|8.0000|40.0000", "detail: -|-|直接人工|-|-|20.0000",
                          "total: 5.000000|60.0000|-|-|-|-"));
}

TEST_F(VouchersLayout, ConditionChoosesRows) {
  const MadeLayout report = vouchers({}, Language::english);
  EXPECT_THAT(
      shown(view(report, {.where = {{.column = "cVouTypeName", .values = {"材料出库单"}},
                                    {.column = "cfxCode", .values = {"B1"}}}}),
            {"cVouTypeName", "cVouCode", "iAOutPrice", "cfxName", "iItemPrice"}),
      ElementsAre("group: 材料出库单|L-1|32.0000|-|-", "line: -|-|32.0000|-|-", "detail: -|-|-|直接人工|12.0000",
                  "group: 材料出库单|L-2|21.3300|-|-", "line: -|-|21.3300|-|-", "detail: -|-|-|直接人工|8.0000",
                  "total: Total (2 documents, 2 lines)|-|53.3300|-|-"));
}

TEST_F(VouchersLayout, OrderAndSubtotals) {
  const MadeLayout report = vouchers();
  const Arrangement arrangement{.sort = {{.column = "cVouCode", .descending = true}, {.column = "iItemOutPrice"}},
                                .groupBy = {"cVouTypeName"}};
  EXPECT_THAT(shown(view(report, arrangement), {"cVouTypeName", "cVouCode", "iAInQuantity", "iAInPrice",
                                                "iAOutQuantity", "iAOutPrice", "cfxName"}),
              ElementsAre("group: 材料出库单|L-2|-|-|-|21.3300|-", "line: -|-|-|-|2.000000|21.3300|-",
                          "detail: -|-|-|-|-|-|直接人工", "detail: -|-|-|-|-|-|直接材料",  //
                          "group: 材料出库单|L-1|-|-|-|32.0000|-", "line: -|-|-|-|3.000000|32.0000|-",
                          "detail: -|-|-|-|-|-|直接人工", "detail: -|-|-|-|-|-|直接材料",
                          "subtotal: 材料出库单 小计|-|-|-|5.000000|53.3300|-",  //
                          "group: 产成品入库单|R-2|-|7.5000|-|-|-", "line: -|-|1.000000|7.5000|-|-|-",
                          "detail: -|-|-|-|-|-|（无成本项目）",  //
                          "group: 产成品入库单|R-1|-|60.0000|-|-|-", "line: -|-|5.000000|60.0000|-|-|-",
                          "detail: -|-|-|-|-|-|直接材料", "detail: -|-|-|-|-|-|直接人工",
                          "subtotal: 产成品入库单 小计|-|6.000000|67.5000|-|-|-",
                          "total: 合计（4 张单据，4 行）|-|6.000000|67.5000|5.000000|53.3300|-"));
  EXPECT_THAT(shown(view(report, {.groupBy = {"cWhCode"}}), {"cWhCode", "iAInPrice"}),
              Contains("subtotal: 仓库编码为空 小计|67.5000"));
  EXPECT_THROW(view(report, {.groupBy = {"cfxCode"}}), UserError);
}

TEST_F(VouchersLayout, ChosenColumns) {
  const MadeLayout report = vouchers();
  const View lines = vouchersView(
      report.request({.columns = {"cVouCode", "iAInPrice", "cInvCCode"}, .groupBy = {"cVouTypeName", "cInvCCode"}}),
      report.document());
  std::vector<std::string> names;
  for (const ViewColumn& column : lines.columns)
    names.push_back(column.column.name);
  EXPECT_THAT(names, ElementsAre("cVouTypeName", "cInvCCode", "cVouCode", "iAInPrice"));
  // No column of the parts, and no parts.
  EXPECT_THAT(
      shown(ReadView(lines), {"cVouTypeName", "cInvCCode", "cVouCode", "iAInPrice"}),
      ElementsAre("group: 材料出库单|-|L-1|-", "line: -|1|-|-", "group: 材料出库单|-|L-2|-", "line: -|1|-|-",
                  "subtotal: 材料出库单|1 小计|-|-", "subtotal: 材料出库单 小计|-|-|-",
                  "group: 产成品入库单|-|R-1|60.0000", "line: -|1|-|60.0000",  //
                  "group: 产成品入库单|-|R-2|7.5000", "line: -|1|-|7.5000", "subtotal: 产成品入库单|1 小计|-|67.5000",
                  "subtotal: 产成品入库单 小计|-|-|67.5000", "total: 合计（4 张单据，4 行）|-|-|67.5000"));
  EXPECT_THAT(shown(view(report, {.columns = {"iAInPrice", "cVouCode"}}), {"iAInPrice", "cVouCode"}),
              Contains("total: 67.5000|合计（4 张单据，4 行）"));
}

// A line that is not broken down counts with its own figures, so that the cross view's total is that of all lines.
TEST_F(VouchersLayout, CrossViewHasTheWholeOfLinesWithoutCostItem) {
  const MadeLayout report = vouchers();
  const CrossView cross = report.table().crossView(reportNamed("fx-wt").crossStates(""));
  ASSERT_EQ(cross.rows.size(), 3U);
  EXPECT_EQ(cross.rows[0].code, "");
  EXPECT_THAT(cross.rows[0].quantity, ElementsAre("1.000000", "0.000000"));
  EXPECT_THAT(cross.rows[0].money, ElementsAre("7.5000", "0.0000"));
  EXPECT_THAT(cross.total.money, ElementsAre("67.5000", "53.3300"));
}

// --- A sample account -------------------------------------------------------------------------------------------------

class VouchersLayoutOfASample : public testing::Test {
 protected:
  static constexpr const test::ValuedAccount& sample = test::valuedAccounts[1];
  // What the report shows of the ledger.
  static constexpr const char* reported =
      "line.dKeepDate >= '2023-01-01' And line.cVouType Not In (N'33', N'34') And Not (line.cVouType = N'20' And "
      "IsNull(line.iAInPrice, 0) = 0 And IsNull(line.iDebitDifCost, 0) = 0 And IsNull(line.iCreditDifCost, 0) = 0)";
};

TEST_F(VouchersLayoutOfASample, AgreesWithTheLedger) {
  const auto account = tsql::Connection::open(test::sampleOf(sample), tsql::OpenMode::readOnly);
  const MadeLayout report("fx-wt", test::sampleOf(sample), {}, Language::english);
  const View view = vouchersView(report.request(), report.document());
  const auto documents = numbersByKey(
      *account,
      std::string("Select line.cVouType, line.cVouCode, Sum(IsNull(line.iAInPrice, 0)), Sum(IsNull(line.iAOutPrice, "
                  "0)) From ia_subsidiary line Where ") +
          reported + " Group By line.cVouType, line.cVouCode",
      2);
  const auto whole =
      numbersByKey(
          *account,
          std::string("Select 0, Count(*), Sum(line.iAInQuantity), Sum(line.iAInPrice), Sum(line.iAOutQuantity), "
                      "Sum(line.iAOutPrice) From ia_subsidiary line Where ") +
              reported,
          1)
          .at("0");

  std::map<std::string, std::vector<std::string>> shownDocuments;
  std::vector<ExactSum> lines(4);
  ExactSum parts;
  std::int64_t count = 0;
  constexpr std::array<std::string_view, 4> figures = {"iAInQuantity", "iAInPrice", "iAOutQuantity", "iAOutPrice"};
  const ReadView read(view);
  for (const ViewRow& row : read.rows()) {
    if (row.kind == RowKind::group) {
      shownDocuments[read.text(row, "cVouType") + "|" + read.text(row, "cVouCode")] = {
          plainNumber(read.value(row, "iAInPrice")), plainNumber(read.value(row, "iAOutPrice"))};
    } else if (row.kind == RowKind::line) {
      ++count;
      for (std::size_t i = 0; i < figures.size(); ++i)
        lines[i].add(read.value(row, figures[i]));
    } else if (row.kind == RowKind::detail) {
      parts.add(read.value(row, "iItemPrice"));
    }
  }
  EXPECT_EQ(shownDocuments, documents);
  EXPECT_EQ(view.lineCount, count);
  std::vector<std::string> shownWhole = {std::to_string(count)};
  for (const ExactSum& sum : lines)
    shownWhole.push_back(plainNumber(sum.value()));
  EXPECT_EQ(shownWhole, whole);
  // In a sample the parts make their line, and a line without any has its own amount.
  ExactSum amounts = lines[1];
  amounts.add(lines[3]);
  EXPECT_EQ(plainNumber(parts.value()), plainNumber(amounts.value()));

  const ViewRow& total = read.rows().back();
  EXPECT_EQ(total.kind, RowKind::total);
  for (std::size_t i = 0; i < figures.size(); ++i)
    EXPECT_EQ(plainNumber(read.value(total, figures[i])), whole[i + 1]);
  const CrossView cross = report.table().crossView(reportNamed("fx-wt").crossStates(""));
  EXPECT_EQ(cross.total.money, (std::vector<std::string>{tsql::toText(read.value(total, "iAInPrice")).value(),
                                                         tsql::toText(read.value(total, "iAOutPrice")).value()}));
}

TEST_F(VouchersLayoutOfASample, ComeByTypeDayAndNumber) {
  const MadeLayout report("fx-wt", test::sampleOf(sample), {"dVouDate=2024-03-01..2024-04-30"}, Language::english);
  const ReadView read(vouchersView(report.request(), report.document()));
  std::vector<std::string> before;
  std::set<std::string> types;
  for (const ViewRow& row : read.rows(RowKind::group)) {
    const std::vector<std::string> key = {read.text(row, "cVouType"), read.text(row, "dVouDate"),
                                          read.text(row, "cVouCode")};
    EXPECT_LT(before, key);
    before = key;
    types.insert(read.text(row, "cVouTypeName"));
  }
  EXPECT_GT(types.size(), 5U);
  // 3201 goes by the name of 32.
  EXPECT_THAT(types, Contains("销售出库单"));
  EXPECT_THAT(types, Each(Not(StartsWith("32"))));
}

}  // namespace
}  // namespace quillon::workbench
