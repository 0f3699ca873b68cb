// The layouts of each report on an account of 20,000 lines: their sums against statements on the ledger itself, their
// files against the rows that they show, and the sizes of pages.
#include <gmock/gmock.h>

#include <array>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/workbench/presentation/ledger_sources.h"
#include "tests/workbench/presentation/made_layout.h"
#include "tests/workbench/presentation/xlsx_evaluation.h"
#include "workbench/cli/run_notes.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/html_page.h"
#include "workbench/presentation/value_output.h"
#include "workbench/presentation/view_files.h"
#include "workbench/presentation/xlsx_workbook.h"
#include "workbench/runs/report_layouts.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {
namespace {

using test::numbersByKey;
using test::plainNumber;
using test::ReadView;
using testing::IsEmpty;

using Sums = std::map<std::string, std::vector<std::string>>;

class LayoutSums : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 20000, .seed = 5});
    account_ = tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly);
  }
  static void TearDownTestSuite() {
    account_.reset();
    file_.reset();
  }

  static std::unique_ptr<MadeReport> made(const std::string& report, std::vector<std::string> settings) {
    std::ostringstream notes;
    RunNotes observer(notes, Language::english);
    return makeReport({.report = report,
                       .account = AccountSource::inFile(file_->path()),
                       .settings = std::move(settings),
                       .dialog = false,
                       .language = Language::english},
                      observer);
  }
  static LaidOutReport laid(const MadeReport& report, Layout layout, LayoutOutput output = LayoutOutput::fields,
                            LayoutOptions options = {}) {
    options.layout = layout;
    return laidOut(report, Language::english, options, output);
  }
  static Sums asked(const std::string& statement, std::size_t keys) { return numbersByKey(*account_, statement, keys); }

  static inline std::unique_ptr<test::TemporaryFile> file_;
  static inline std::unique_ptr<tsql::Connection> account_;
};

std::vector<std::string> figures(const ReadView& view, const ViewRow& row, const std::vector<std::string>& columns) {
  std::vector<std::string> numbers;
  numbers.reserve(columns.size());
  for (const std::string& column : columns)
    numbers.push_back(plainNumber(view.value(row, column)));
  return numbers;
}

// --- Receipts, issues and balances ------------------------------------------------------------------------------------

const std::vector<std::string> balanceColumns = {"openingQuantity", "openingAmount", "receiptQuantity",
                                                 "receiptAmount",   "issueQuantity", "issueAmount",
                                                 "closingQuantity", "closingAmount"};

// The figures of the parts `p` of lines `l`, in the order of balanceColumns.
std::string balanceSums() {
  const auto sum = [](const std::string& when, const std::string& figure) {
    return ", Sum(Case When " + when + " Then " + figure + " Else 0 End)";
  };
  std::string list;
  for (const auto& [when, sign] :
       {std::pair{"l.cVouType = N'34'", "-"}, std::pair{"l.iMonth > 0 And l.bRdFlag = 1", "+"},
        std::pair{"l.iMonth > 0 And l.bRdFlag = 0", "+"}, std::pair{"(l.cVouType = N'34' Or l.iMonth > 0)", "-"}}) {
    for (const std::string figure : {"Quantity", "Price"}) {
      std::string both = "IsNull(p.iItemIn" + figure + ", 0) ";
      both.append(sign).append(" IsNull(p.iItemOut").append(figure).append(", 0)");
      list += sum(when, both);
    }
  }
  return list;
}

constexpr const char* partsOfTheYear =
    " From ia_subsidiary_Item p Inner Join ia_subsidiary l On l.AutoID = p.iSubID Inner Join Ca_FxDef item On item.iFxID "
    "= p.iItemID Inner Join Ca_FxClassDef class On class.iFxCId = item.cFxCID Where l.iYear = 2024 And l.cWhCode <> N''";

// All codes of classes, so that those above one can be found: its code begins with theirs.
std::vector<std::string> classCodes(tsql::Connection& account) {
  std::vector<std::string> codes;
  const auto rows = account.query("Select cFxCCode From Ca_FxClassDef Order By cFxCCode");
  while (rows->next())
    codes.push_back(tsql::toText(rows->value(0)).value());
  return codes;
}

// What the tree has to show: each node by the codes on the way to it. `leaves` are sums by class, cost item, warehouse
// and inventory.
Sums nodesOf(const Sums& leaves, const std::vector<std::string>& classes) {
  std::map<std::string, std::vector<ExactSum>> nodes;
  for (const auto& [leaf, numbers] : leaves) {
    std::vector<std::string> codes;
    std::istringstream parts(leaf);
    for (std::string code; std::getline(parts, code, '|');)
      codes.push_back(code);
    std::vector<std::string> way;
    for (const std::string& code : classes) {
      if (codes[0].starts_with(code)) way.push_back(code);
    }
    way.insert(way.end(), codes.begin() + 1, codes.end());
    std::string path;
    for (const std::string& code : way) {
      path += "/" + code;
      std::vector<ExactSum>& node = nodes[path];
      node.resize(numbers.size());
      for (std::size_t i = 0; i < numbers.size(); ++i)
        node[i].add(*tsql::parseExact(numbers[i]));
    }
  }
  Sums result;
  for (const auto& [path, sums] : nodes) {
    for (const ExactSum& sum : sums)
      result[path].push_back(plainNumber(sum.value()));
  }
  return result;
}

// The rows of a tree by the codes on the way to them.
Sums rowsOfTree(const ReadView& view, const std::vector<std::string>& columns) {
  Sums rows;
  std::vector<std::string> way;
  for (const ViewRow& row : view.rows()) {
    if (row.kind == RowKind::total) continue;
    const std::string label = view.text(row, "item");
    way.resize(static_cast<std::size_t>(row.level));
    way.push_back(label.substr(0, label.find(' ')));
    std::string path;
    for (const std::string& code : way)
      path += "/" + code;
    EXPECT_FALSE(rows.contains(path)) << path << " stands twice";
    rows[path] = figures(view, row, columns);
  }
  return rows;
}

// Each head of a tree has the sums of the nodes below it.
void expectHeadsSumTheirNodes(const ReadView& view, const std::vector<std::string>& columns) {
  std::map<int, std::vector<ExactSum>> open;  // what is left of the head of each level
  int heads = 0;
  const auto close = [&](int level) {
    for (auto at = open.lower_bound(level); at != open.end(); at = open.erase(at))
      EXPECT_TRUE(std::ranges::all_of(at->second, &ExactSum::isZero)) << "a head of level " << at->first;
  };
  for (const ViewRow& row : view.rows()) {
    if (row.kind == RowKind::total) continue;
    close(row.level);
    for (std::size_t i = 0; i < columns.size() && row.level > 0; ++i)
      open.at(row.level - 1)[i].subtract(view.value(row, columns[i]));
    if (row.kind != RowKind::group) continue;
    ++heads;
    open[row.level].resize(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i)
      open[row.level][i].add(view.value(row, columns[i]));
  }
  close(0);
  EXPECT_GT(heads, 20);
}

// The files hold what the view shows: as many lines, and its totals with all decimals.
void expectFilesHold(const LaidOutReport& report) {
  const ReportSection& section = report.sections.front();
  std::ostringstream csv;
  writeCsv(csv, report.heading, section, {});
  const bool kinds = csv.str().starts_with("rowKind,level,");
  std::int64_t lines = 0;
  std::vector<std::string> last;
  std::istringstream records(csv.str());
  std::string record;
  std::getline(records, record);
  while (std::getline(records, record)) {
    if (!kinds || record.starts_with("line,")) ++lines;
    if (record.starts_with("total,")) last.push_back(record.substr(0, record.find('\r')));
  }
  EXPECT_EQ(lines, section.view.lineCount);
  if (!kinds) return;
  std::vector<std::string> totals;
  for (const ViewRow& row : section.view.totals) {
    std::string text = "total,0";
    for (const tsql::Value& cell : row.cells)
      text += "," + plainText(cell, "");
    if (row.kind == RowKind::total) totals.push_back(text);
  }
  const auto unquoted = [](std::string text) {
    std::erase(text, '"');
    return text;
  };
  std::ranges::transform(last, last.begin(), unquoted);
  EXPECT_EQ(last, totals);
}

void expectPageBelowTwoMegabytes(const LaidOutReport& report) {
  constexpr std::size_t limit = 2'000'000;
  std::ostringstream page;
  writeHtml(page, report);
  EXPECT_LT(page.str().size(), limit);
  EXPECT_GT(page.str().size(), 5000U);
}

class BalanceSums : public LayoutSums, public testing::WithParamInterface<const char*> {};

TEST_P(BalanceSums, AreTheLedgers) {
  const std::string mode = GetParam();
  const auto report = made("sfc-item", {"iYear=2024", "cModal=" + mode, "iGrade=1"});
  const std::vector<std::string> all = asked("Select 0" + balanceSums() + partsOfTheYear, 1).at("0");

  const LaidOutReport summary = laid(*report, Layout::summary);
  const ReadView items(summary.sections.front().view);
  const std::string code = mode == "0" ? "Left(class.cFxCCode, 2)" : "item.cFxCode";
  Sums shown;
  for (const ViewRow& row : items.rows(RowKind::line))
    shown[items.text(row, "cFXCode")] = figures(items, row, balanceColumns);
  EXPECT_EQ(shown, asked("Select " + code + balanceSums() + partsOfTheYear + " Group By " + code, 1));
  EXPECT_EQ(figures(items, items.rows().back(), balanceColumns), all);
  expectFilesHold(summary);

  const LaidOutReport tree = laid(*report, Layout::tree);
  const ReadView nodes(tree.sections.front().view);
  expectHeadsSumTheirNodes(nodes, balanceColumns);
  EXPECT_EQ(figures(nodes, nodes.rows().back(), balanceColumns), all);
  if (mode == "1") {
    const Sums leaves = asked("Select class.cFxCCode, item.cFxCode, l.cWhCode, l.cInvCode" + balanceSums() +
                                  partsOfTheYear + " Group By class.cFxCCode, item.cFxCode, l.cWhCode, l.cInvCode",
                              4);
    EXPECT_GT(leaves.size(), 1000U);
    EXPECT_EQ(rowsOfTree(nodes, balanceColumns), nodesOf(leaves, classCodes(*account_)));
  }
  expectFilesHold(tree);

  const LaidOutReport lines = laid(*report, Layout::lines);
  const ReadView rows(lines.sections.front().view);
  std::vector<std::string> totals, sums;
  if (mode == "2") {
    const std::vector<std::string> columns = {"iQcQuantity",  "iQcMoney",  "iInQuantity", "iInMoney",
                                              "iOutQuantity", "iOutMoney", "iQmQuantity", "iQmMoney"};
    for (const std::string& column : columns) {
      ExactSum sum;
      for (const ViewRow& row : rows.rows(RowKind::line))
        sum.add(rows.value(row, column));
      sums.push_back(plainNumber(sum.value()));
    }
    totals = figures(rows, rows.rows().back(), columns);
  } else {
    EXPECT_FALSE(rows.has("iInQuantity")) << "a row is one state of its line";
    std::map<std::string, std::array<ExactSum, 2>> states;
    for (const ViewRow& row : rows.rows(RowKind::line)) {
      states[rows.text(row, "cState")][0].add(rows.value(row, "iQuantity"));
      states[rows.text(row, "cState")][1].add(rows.value(row, "iMoney"));
    }
    ASSERT_EQ(states.size(), 4U);
    for (const ViewRow& row : rows.rows(RowKind::total)) {
      const std::string words = rows.text(row, lines.sections.front().view.columns.front().column.name);
      for (const ExactSum& sum : states.at(words.substr(0, words.rfind(" Total"))))
        sums.push_back(plainNumber(sum.value()));
      for (const std::string& number : figures(rows, row, {"iQuantity", "iMoney"}))
        totals.push_back(number);
    }
  }
  EXPECT_EQ(totals, all);
  EXPECT_EQ(sums, all);
  expectFilesHold(lines);
  for (const Layout layout : {Layout::summary, Layout::tree, Layout::lines})
    expectPageBelowTwoMegabytes(laid(*report, layout, LayoutOutput::page, {.rowsOfPage = rowsOfAPage}));
}

INSTANTIATE_TEST_SUITE_P(Modes, BalanceSums, testing::Values("0", "1", "2"),
                         [](const auto& info) { return std::string("mode") + info.param; });

// --- Issues -----------------------------------------------------------------------------------------------------------

const std::vector<std::string> issueColumns = {"issueQuantity", "issueAmount"};
constexpr const char* issuesOfTheYear = "l.bRdFlag = 0 And l.iYear = 2024 And l.cWhCode Is Not Null";

// What is split goes by its parts, what is not comes whole, without a cost item.
Sums issuesByCostItem(tsql::Connection& account, const std::string& more = "") {
  Sums sums =
      numbersByKey(account,
                   "Select item.cFxCode, Sum(p.iItemOutQuantity), Sum(p.iItemOutPrice) From ia_subsidiary_Item p "
                   "Inner Join ia_subsidiary l On l.AutoID = p.iSubID Inner Join Ca_FxDef item On item.iFxID = "
                   "p.iItemID Where " +
                       std::string(issuesOfTheYear) + more + " Group By item.cFxCode",
                   1);
  sums.merge(numbersByKey(
      account,
      "Select N'', Sum(l.iAOutQuantity), Sum(l.iAOutPrice) From ia_subsidiary l Where " + std::string(issuesOfTheYear) +
          more + " And Not Exists (Select 1 From ia_subsidiary_Item p Where p.iSubID = l.AutoID) Having Count(*) > 0",
      1));
  return sums;
}

TEST_F(LayoutSums, OfIssuesAreTheLedgers) {
  const auto report = made("outsum-item", {"iYear=2024", "cModal=1"});
  const std::string whole =
      std::string("Sum(l.iAOutQuantity), Sum(l.iAOutPrice) From ia_subsidiary l Where ") + issuesOfTheYear;
  const LaidOutReport summary = laid(*report, Layout::summary);
  const ReadView items(summary.sections.front().view);
  Sums shown;
  for (const ViewRow& row : items.rows(RowKind::line))
    shown[items.text(row, "cFXCode")] = figures(items, row, issueColumns);
  EXPECT_EQ(shown, issuesByCostItem(*account_));
  EXPECT_EQ(figures(items, items.rows().back(), issueColumns), asked("Select 0, " + whole, 1).at("0"));
  expectFilesHold(summary);

  const LaidOutReport byWarehouse =
      laid(*report, Layout::tree, LayoutOutput::fields, {.arrangement = {.groupBy = {"cWhCode", "cInvCode"}}});
  const ReadView places(byWarehouse.sections.front().view);
  Sums expected;
  for (const auto& [code, numbers] : asked("Select l.cWhCode, " + whole + " Group By l.cWhCode", 1))
    expected["/" + code] = numbers;
  for (const auto& [codes, numbers] :
       asked("Select l.cWhCode, l.cInvCode, " + whole + " Group By l.cWhCode, l.cInvCode", 2))
    expected["/" + codes.substr(0, codes.find('|')) + "/" + codes.substr(codes.find('|') + 1)] = numbers;
  EXPECT_EQ(rowsOfTree(places, issueColumns), expected);
  const LaidOutReport tree = laid(*report, Layout::tree);
  expectHeadsSumTheirNodes(ReadView(tree.sections.front().view), issueColumns);
  expectFilesHold(tree);

  const LaidOutReport lines = laid(*report, Layout::lines);
  const ReadView rows(lines.sections.front().view);
  EXPECT_EQ(figures(rows, rows.rows().back(), {"iQuantity", "iMoney"}), asked("Select 0, " + whole, 1).at("0"));
  expectFilesHold(lines);
  for (const Layout layout : {Layout::summary, Layout::tree, Layout::lines})
    expectPageBelowTwoMegabytes(laid(*report, layout, LayoutOutput::page, {.rowsOfPage = rowsOfAPage}));
}

// What spreadsheets compute from a workbook's formulas is what the ledger has.
TEST_F(LayoutSums, OfAWorkbookAreTheLedgers) {
  const auto report = made("outsum-item", {"iYear=2024", "cModal=1"});
  const test::TemporaryFile file(".xlsx");
  writeXlsx(file.path(),
            laid(*report, Layout::tree, LayoutOutput::workbook, {.arrangement = {.where = {"cWhCode=05"}}}));
  const test::XlsxEvaluation book(file.path());
  EXPECT_THAT(book.disagreements(), IsEmpty());
  EXPECT_GT(book.formulaCount(), 40U);
  ASSERT_THAT(book.sheets().front().names(), testing::ElementsAre("By cost item", "Nested sums", "Rows"));
  const test::XlsxSheet& summary = book.sheets().at(0);
  std::map<std::string, double> shown;
  for (int row = 1; row <= summary.lastRow(); ++row) {
    const std::string place = std::to_string(row);
    if (const auto amount = summary.cell("D" + place).number) shown[summary.cell("A" + place).text] = *amount;
  }
  double total = 0;
  std::map<std::string, double> expected;
  for (const auto& [code, numbers] : issuesByCostItem(*account_, " And l.cWhCode = N'05'")) {
    expected[code] = std::stod(numbers[1]);
    total += expected[code];
  }
  expected["Total"] = total;
  ASSERT_EQ(shown.size(), expected.size());
  for (const auto& [code, amount] : expected)
    EXPECT_NEAR(shown.at(code), amount, 0.00005) << code;
}

// --- Documents --------------------------------------------------------------------------------------------------------

TEST_F(LayoutSums, OfDocumentsAreTheLedgers) {
  const auto report = made("fx-wt", {"dKeepDate=2024-03-01..2024-04-30"});
  const std::string chosen =
      " From ia_subsidiary l Where l.dKeepDate >= '2024-03-01' And l.dKeepDate < '2024-05-01' And l.cVouType Not In "
      "(N'33', N'34') And Not (l.cVouType = N'20' And IsNull(l.iAInPrice, 0) = 0 And IsNull(l.iDebitDifCost, 0) = 0 And "
      "IsNull(l.iCreditDifCost, 0) = 0)";
  const LaidOutReport vouchers = laid(*report, Layout::vouchers);
  const ReadView documents(vouchers.sections.front().view);
  const std::vector<std::string> columns = {"iAInQuantity", "iAInPrice", "iAOutQuantity", "iAOutPrice"};
  EXPECT_EQ(
      figures(documents, documents.rows().back(), columns),
      asked("Select 0, Sum(l.iAInQuantity), Sum(l.iAInPrice), Sum(l.iAOutQuantity), Sum(l.iAOutPrice)" + chosen, 1)
          .at("0"));
  EXPECT_EQ(std::to_string(vouchers.sections.front().view.lineCount),
            asked("Select 0, Count(*)" + chosen, 1).at("0").at(0));
  expectFilesHold(vouchers);

  const LaidOutReport lines = laid(*report, Layout::lines);
  const ReadView rows(lines.sections.front().view);
  EXPECT_EQ(
      figures(rows, rows.rows().back(), {"iItemInQuantity", "iIteminPrice", "iItemoutQuantity", "iItemOutPrice"}),
      asked("Select 0, Sum(p.iItemInQuantity), Sum(p.iItemInPrice), Sum(p.iItemOutQuantity), Sum(p.iItemOutPrice) From "
            "ia_subsidiary_Item p Where p.iSubID In (Select l.AutoID" +
                chosen + ")",
            1)
          .at("0"));
  expectFilesHold(lines);
  for (const Layout layout : {Layout::vouchers, Layout::lines}) {
    const LaidOutReport page = laid(*report, layout, LayoutOutput::page, {.rowsOfPage = rowsOfAPage});
    expectPageBelowTwoMegabytes(page);
    EXPECT_TRUE(page.sections.front().cut()) << "there is more than a page shows";
  }
}

// --- The ledger of one inventory --------------------------------------------------------------------------------------

TEST_F(LayoutSums, OfALedgerAreTheLedgers) {
  // The one with the most lines.
  std::string inventory, warehouse;
  {
    const auto rows = account_->query(
        "Select Top 1 cInvCode, cWhCode, Count(*) From ia_subsidiary Where iYear = 2024 And cWhCode Is Not Null And "
        "IsNull(cBusType, N'') Not In (N'直运销售', N'直运采购') Group By cInvCode, cWhCode Order By 3 Desc, 1, 2");
    ASSERT_TRUE(rows->next());
    inventory = tsql::toText(rows->value(0)).value();
    warehouse = tsql::toText(rows->value(1)).value();
  }
  const auto report = made("fx-detail", {"iYear=2024", "cInvCode=" + inventory, "cWhCode=" + warehouse});
  const std::string chosen = " From ia_subsidiary l Where l.iYear = 2024 And l.cInvCode = N'" + inventory +
                             "' And l.cWhCode = N'" + warehouse +
                             "' And l.cVouType <> N'33' And IsNull(l.cBusType, N'') Not In (N'直运销售', N'直运采购')";
  const LaidOutReport ledger = laid(*report, Layout::ledger);
  const ReadView book(ledger.sections.front().view);
  EXPECT_EQ(figures(book, book.rows().back(), {"iBalanceQuantity", "iBalancePrice"}),
            asked("Select 0, Sum(IsNull(l.iAInQuantity, 0) - IsNull(l.iAOutQuantity, 0)), Sum(IsNull(l.iAInPrice, 0) - "
                  "IsNull(l.iAOutPrice, 0))" +
                      chosen,
                  1)
                .at("0"));
  EXPECT_THAT(book.rows(RowKind::difference), IsEmpty());
  expectFilesHold(ledger);

  const LaidOutReport columnar = laid(*report, Layout::columnar);
  const View& view = columnar.sections.front().view;
  const ReadView across(view);
  Sums shown;
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    if (view.columns[i].groupEnglish.starts_with("Cost-item classes"))
      shown[view.columns[i].column.english] = {plainNumber(across.rows().back().cells[i])};
  }
  EXPECT_EQ(shown,
            asked("Select class.cFxCName, Sum(IsNull(p.iItemInPrice, 0) - IsNull(p.iItemOutPrice, 0)) From "
                  "ia_subsidiary_Item p Inner Join Ca_FxDef item On item.iFxID = p.iItemID Inner Join Ca_FxClassDef "
                  "class On class.iFxCId = item.cFxCID Where p.iSubID In (Select l.AutoID" +
                      chosen + ") Group By class.cFxCName",
                  1));
  expectFilesHold(columnar);
  const LaidOutReport lines = laid(*report, Layout::lines);
  EXPECT_THAT(lines.sections.front().view.totals, IsEmpty()) << "balances and movements do not add up";
  expectFilesHold(lines);
  for (const Layout layout : {Layout::ledger, Layout::columnar, Layout::lines})
    expectPageBelowTwoMegabytes(laid(*report, layout, LayoutOutput::page, {.rowsOfPage = rowsOfAPage}));
}

}  // namespace
}  // namespace quillon::workbench
