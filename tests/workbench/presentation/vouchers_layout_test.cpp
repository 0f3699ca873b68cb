// The voucher report by document.
#include "workbench/presentation/vouchers_layout.h"

#include <gmock/gmock.h>

#include <set>

#include "tests/workbench/presentation/ledger_sources.h"
#include "tests/workbench/presentation/made_layout.h"
#include "tests/workbench/presentation/small_ledger.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/summary_layout.h"

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
  static ReadView view(const MadeLayout& made, Arrangement arrangement = {}, VouchersForm form = VouchersForm::fields) {
    return ReadView(vouchersView(made.request(std::move(arrangement)), made.document(), form));
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
  const View once = vouchersView(report.request(), report.document(), VouchersForm::fields);
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
      shown(view(report, {}, VouchersForm::keyedFields), {"cVouTypeName", "cVouCode", "cWhName", "cInvCode"}),
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
      report.document(), VouchersForm::fields);
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

std::vector<std::string> headingsOf(const View& view) {
  std::vector<std::string> headings;
  for (const ViewColumn& column : view.columns)
    headings.push_back(column.groupChinese + column.column.chinese + (column.key ? "*" : ""));
  return headings;
}

TEST_F(VouchersLayout, ListHasDocumentsLinesAndPartsInTheSameColumns) {
  const MadeLayout report = vouchers();
  const View list = vouchersView(report.request(), report.document(), VouchersForm::list);
  EXPECT_THAT(headingsOf(list), ElementsAre("编码*", "名称*", "日期", "单位用量", "收入数量", "收入单价", "收入金额",
                                            "发出数量", "发出单价", "发出金额", "说明"));
  EXPECT_EQ(list.lineCount, 4);
  EXPECT_THAT(
      shown(ReadView(list), {"code", "name", "dVouDate", "iUnitUsed", "iAInQuantity", "iInCost", "iAInPrice",
                             "iAOutQuantity", "iOutCost", "iAOutPrice", "note"}),
      // Where the type's name or the digest have the words of business and receipt/issue type, these are not repeated.
      ElementsAre("group: R-1|产成品入库单|2024-01-10|-|-|-|60.0000|-|-|-|生产入库",
                  "line: M1|钢板|-|-|5.000000|12.000000|60.0000|-|-|-|-",
                  "detail: A1|直接材料|-|1.00|-|8.0000|40.0000|-|-|-|-", "detail: B1|直接人工|-|-|-|-|20.0000|-|-|-|-",
                  "group: R-2|产成品入库单|2024-03-05|-|-|-|7.5000|-|-|-|生产入库 · 盘盈",
                  "line: M1|钢板|-|-|1.000000|7.500000|7.5000|-|-|-|-",
                  "detail: -|（无成本项目）|-|-|-|7.500000|7.5000|-|-|-|-",
                  "group: L-1|材料出库单|2024-01-20|-|-|-|-|-|-|32.0000|凭证 IA12 · 领料",
                  "line: M1|钢板|-|-|-|-|-|3.000000|10.666700|32.0000|-",
                  "detail: A1|直接材料|-|1.00|-|-|-|-|6.6667|20.0000|-", "detail: B1|直接人工|-|-|-|-|-|-|-|12.0000|-",
                  "group: L-2|材料出库单|2024-02-28|-|-|-|-|-|-|21.3300|领料",
                  // Posted on another day than the document's.
                  "line: M1|钢板|2024-03-01|-|-|-|-|2.000000|10.665000|21.3300|-",
                  "detail: A1|直接材料|-|1.00|-|-|-|-|6.6650|13.3300|-", "detail: B1|直接人工|-|-|-|-|-|-|-|8.0000|-",
                  "total: 合计（4 张单据，4 行）|-|-|-|6.000000|-|67.5000|5.000000|-|53.3300|-"));
  std::vector<int> levels;
  const ReadView read(list);
  for (std::size_t i = 0; i < 3; ++i)
    levels.push_back(read.rows()[i].level);
  EXPECT_THAT(levels, ElementsAre(0, 1, 1)) << "a part belongs to the line above it";
}

TEST_F(VouchersLayout, ListHasEachParticularWhereItBelongs) {
  const auto file = changed(
      "Insert Into Warehouse (cWhCode, cWhName) Values (N'1', N'一库'), (N'2', N'二库')\n"
      "Insert Into Vendor (cVenCode, cVenName) Values (N'V1', N'长河轴承厂')\n"
      "Insert Into ComputationUnit (cComUnitCode, cComUnitName, cGroupCode, bMainUnit) Values (N'KG', N'千克', N'1', 1)\n"
      "Update Inventory Set cInvStd = N'Q235B'\n"
      "Update ia_subsidiary Set cVouCode = N'R-1', dVouDate = '2024-01-10', cBusType = null, cVenCode = N'V1' "
      "Where AutoID In (2, 5)\n"
      "Update ia_subsidiary Set cWhCode = Case When AutoID = 2 Then N'1' Else N'2' End, cBatchia = N'B7', "
      "cFree1 = Case When AutoID = 2 Then N'红' Else null End Where AutoID In (2, 5)");
  const MadeLayout report("fx-wt", file->path(), {"cVouCode=R-1"}, Language::chinese);
  const View list = vouchersView(report.request(), report.document(), VouchersForm::list);
  // Nothing was issued.
  EXPECT_THAT(headingsOf(list), ElementsAre("编码*", "名称*", "日期", "仓库", "单位", "单位用量", "收入数量",
                                            "收入单价", "收入金额", "往来单位", "说明"));
  EXPECT_THAT(shown(ReadView(list), {"code", "dVouDate", "cWhName", "cComUnitName", "partner", "note"}),
              ElementsAre("group: R-1|2024-01-10|-|-|长河轴承厂|生产入库",  //
                          "line: M1|-|一库|千克|-|Q235B · 批号 B7 · 红", "detail: A1|-|-|-|-|-",
                          "detail: B1|-|-|-|-|-",  //
                          "line: M1|2024-03-05|二库|千克|-|盘盈 · Q235B · 批号 B7", "detail: -|-|-|-|-|-",
                          "total: 合计（1 张单据，2 行）|-|-|-|-|-"));
  const MadeLayout english("fx-wt", file->path(), {"cVouCode=R-1"}, Language::english);
  EXPECT_THAT(
      shown(ReadView(vouchersView(english.request(), english.document(), VouchersForm::list)), {"code", "note"}),
      Contains("line: M1|Q235B · batch B7 · 红"));
}

TEST_F(VouchersLayout, ListLeavesOutWhatTheDocumentsOfATypeDoNotHave) {
  const MadeLayout report = vouchers();
  const View list = vouchersView(report.request({.where = {{.column = "cVouTypeName", .values = {"产成品入库单"}}}}),
                                 report.document(), VouchersForm::list);
  EXPECT_THAT(headingsOf(list),
              ElementsAre("编码*", "名称*", "日期", "单位用量", "收入数量", "收入单价", "收入金额", "说明"));
}

TEST_F(VouchersLayout, WhoAsksForColumnsOrderOrGroupsGetsFields) {
  const MadeLayout report = vouchers();
  const auto columns = [&report](Arrangement arrangement, bool all = false) {
    const View view = vouchersView(report.request(std::move(arrangement), all), report.document(), VouchersForm::list);
    return headingsOf(view);
  };
  EXPECT_THAT(columns({.columns = {"cVouCode", "iAInPrice"}}), ElementsAre("单据号*", "收入金额"));
  EXPECT_THAT(columns({.sort = {{.column = "cVouCode"}}}), Contains("存货编码*"));
  EXPECT_THAT(columns({.groupBy = {"cRdName"}}), Contains("存货编码*"));
  EXPECT_THAT(columns({}, true), Contains("存货分类编码"));
}

// A line that is not broken down counts with its own figures, so that the cross view's total is that of all lines.
TEST_F(VouchersLayout, CrossViewHasTheWholeOfLinesWithoutCostItem) {
  const MadeLayout report = vouchers();
  const ReadView cross(summaryView(report.request()));
  ASSERT_EQ(cross.rows(RowKind::line).size(), 3U);
  EXPECT_EQ(cross.line(cross.rows().front(),
                       {"cFXCode", "cFXName", "receiptQuantity", "receiptAmount", "issueQuantity", "issueAmount"}),
            "-|（无成本项目）|1.000000|7.5000|0.000000|0.0000");
  EXPECT_EQ(cross.line(cross.rows().back(), {"receiptAmount", "issueAmount"}), "67.5000|53.3300");
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
  const View view = vouchersView(report.request(), report.document(), VouchersForm::fields);
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
  const ReadView cross(summaryView(report.request()));
  EXPECT_EQ(cross.line(cross.rows().back(), {"receiptAmount", "issueAmount"}),
            read.line(total, {"iAInPrice", "iAOutPrice"}));
}

// The list shows what the fields show: each figure of them stands in a column of its own, or of its line's direction.
TEST_F(VouchersLayoutOfASample, ListHasTheFiguresOfTheFields) {
  const MadeLayout report("fx-wt", test::sampleOf(sample), {"dVouDate=2024-03-01..2024-04-30"}, Language::english);
  const ReadView fields(vouchersView(report.request(), report.document(), VouchersForm::fields));
  const ReadView list(vouchersView(report.request(), report.document(), VouchersForm::list));
  ASSERT_EQ(list.rows().size(), fields.rows().size());
  std::size_t parts = 0;
  bool receipt = false;
  for (std::size_t i = 0; i < list.rows().size(); ++i) {
    const ViewRow& row = list.rows()[i];
    const ViewRow& same = fields.rows()[i];
    ASSERT_EQ(row.kind, same.kind);
    ASSERT_EQ(list.text(row, "iUnitUsed"), fields.text(same, "iUnitUsed"));
    if (row.kind == RowKind::line) receipt = !fields.text(same, "iAInPrice").empty();
    if (row.kind == RowKind::detail) {
      ++parts;
      ASSERT_EQ(list.line(row, {"code", "name"}), fields.line(same, {"cfxCode", "cfxName"}));
      ASSERT_EQ(list.line(row, {receipt ? "iInCost" : "iOutCost", receipt ? "iAInPrice" : "iAOutPrice"}),
                fields.line(same, {"iUnitCost", "iItemPrice"}));
      ASSERT_EQ(list.line(row, {receipt ? "iOutCost" : "iInCost", receipt ? "iAOutPrice" : "iAInPrice"}), "-|-");
      ASSERT_EQ(list.line(row, {"iAInQuantity", "iAOutQuantity"}), "-|-");
    } else {
      const auto figures = {"iAInQuantity", "iInCost", "iAInPrice", "iAOutQuantity", "iOutCost", "iAOutPrice"};
      for (const std::string_view figure : figures)
        ASSERT_EQ(list.text(row, figure), fields.text(same, figure));
    }
  }
  EXPECT_GT(parts, 1000U);
}

TEST_F(VouchersLayoutOfASample, ComeByTypeDayAndNumber) {
  const MadeLayout report("fx-wt", test::sampleOf(sample), {"dVouDate=2024-03-01..2024-04-30"}, Language::english);
  const ReadView read(vouchersView(report.request(), report.document(), VouchersForm::fields));
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
