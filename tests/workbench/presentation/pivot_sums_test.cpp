// Pivots of every report by each of its dimensions on an account of 4,000 lines: totals against statements on the ledger,
// figures against the rows that are listed for them, files against the view.
#include <gmock/gmock.h>

#include <algorithm>
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
#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/view_files.h"
#include "workbench/presentation/xlsx_workbook.h"
#include "workbench/runs/report_layouts.h"

namespace quillon::workbench {
namespace {

using test::numbersByKey;
using test::plainNumber;
using test::ReadView;
using testing::IsEmpty;

// A report as it is made, and what its pivots have to sum.
struct PivotedReport {
  const char* name;
  const char* report;
  std::vector<std::string> settings;
  // Figures as the test sums them itself over the rows of the result table, in the order in which a pivot has them.
  std::vector<std::string> sums;
  // The same over the ledger, all rows together.
  std::string ledger;

  friend void PrintTo(const PivotedReport& report, std::ostream* out) { *out << report.name; }
};

std::string part(const std::string& ofPart, const std::string& ofLine, const std::string& others) {
  return "Sum(Case When cfxCode Is Null And " + others + " Then IsNull(" + ofLine + ", 0) Else IsNull(" + ofPart +
         ", 0) End)";
}

// Opening balance, receipts, issues and closing balance of the ledger's parts.
std::string balances() {
  std::string list = "Select 0";
  for (const auto& [when, sign] :
       {std::pair{"l.cVouType = N'34'", "-"}, std::pair{"l.iMonth > 0 And l.bRdFlag = 1", "+"},
        std::pair{"l.iMonth > 0 And l.bRdFlag = 0", "+"}, std::pair{"(l.cVouType = N'34' Or l.iMonth > 0)", "-"}}) {
    for (const std::string figure : {"Quantity", "Price"})
      list.append(", Sum(Case When ")
          .append(when)
          .append(" Then IsNull(p.iItemIn")
          .append(figure)
          .append(", 0) ")
          .append(sign)
          .append(" IsNull(p.iItemOut")
          .append(figure)
          .append(", 0) Else 0 End)");
  }
  return list +
         " From ia_subsidiary_Item p Inner Join ia_subsidiary l On l.AutoID = p.iSubID Where l.iYear = 2024 And "
         "l.cWhCode <> N''";
}

std::vector<std::string> stateSums() {
  std::vector<std::string> sums;
  for (const char* state : {"1", "2", "3", "4"}) {
    for (const std::string figure : {"iQuantity", "iMoney"})
      sums.push_back("Sum(Case When iState = " + std::string(state) + " Then IsNull(" + figure + ", 0) Else 0 End)");
  }
  return sums;
}

std::vector<PivotedReport> pivotedReports() {
  const std::string issues =
      "Select 0, Sum(l.iAOutQuantity), Sum(l.iAOutPrice) From ia_subsidiary l Where l.bRdFlag = 0 And "
      "l.iYear = 2024 And l.cWhCode Is Not Null";
  const std::string noPart =
      "iItemInQuantity Is Null And iIteminPrice Is Null And iItemoutQuantity Is Null And iItemOutPrice Is Null";
  const std::string noDetail = "iItemQuantity Is Null And iItemPrice Is Null";
  const auto movement = [&](const std::string& flag, const std::string& ofPart, const std::string& ofLine) {
    return "Sum(Case When datatype = 1 And id In (Select AutoID From ia_subsidiary Where bRdFlag = " + flag +
           ") Then Case When cfxCode Is Null And " + noDetail + " Then IsNull(" + ofLine + ", 0) Else IsNull(" +
           ofPart + ", 0) End Else 0 End)";
  };
  return {
      {"balancesByClass", "sfc-item", {"iYear=2024", "cModal=0", "iGrade=2"}, stateSums(), balances()},
      {"balancesByCostItem", "sfc-item", {"iYear=2024", "cModal=1"}, stateSums(), balances()},
      {"balancesByExpenseItem",
       "sfc-item",
       {"iYear=2024", "cModal=2"},
       {"Sum(iQcQuantity)", "Sum(iQcMoney)", "Sum(iInQuantity)", "Sum(iInMoney)", "Sum(iOutQuantity)", "Sum(iOutMoney)",
        "Sum(iQmQuantity)", "Sum(iQmMoney)"},
       balances()},
      {"issuesByClass",
       "outsum-item",
       {"iYear=2024", "cModal=0", "iGrade=1"},
       {"Sum(iQuantity)", "Sum(iMoney)"},
       issues},
      {"issuesByCostItem", "outsum-item", {"iYear=2024", "cModal=1"}, {"Sum(iQuantity)", "Sum(iMoney)"}, issues},
      {"documents",
       "fx-wt",
       {"dKeepDate=2024-03-01..2024-04-30"},
       {part("iItemInQuantity", "iAInQuantity", noPart), part("iIteminPrice", "iAInPrice", noPart),
        part("iItemoutQuantity", "iAOutQuantity", noPart), part("iItemOutPrice", "iAOutPrice", noPart)},
       "Select 0, Sum(IsNull(l.iAInQuantity, 0)), Sum(IsNull(l.iAInPrice, 0)), Sum(IsNull(l.iAOutQuantity, 0)), "
       "Sum(IsNull(l.iAOutPrice, 0)) From ia_subsidiary l Where l.dKeepDate >= '2024-03-01' And l.dKeepDate < "
       "'2024-05-01' And l.cVouType Not In (N'33', N'34') And Not (l.cVouType = N'20' And IsNull(l.iAInPrice, 0) = 0 And "
       "IsNull(l.iDebitDifCost, 0) = 0 And IsNull(l.iCreditDifCost, 0) = 0)"},
      {"ledger",
       "fx-detail",
       {"iYear=2024", "cInvCode=INVENTORY", "cWhCode=WAREHOUSE"},
       {movement("1", "iItemQuantity", "iQuantity"), movement("1", "iItemPrice", "iPrice"),
        movement("0", "iItemQuantity", "iQuantity"), movement("0", "iItemPrice", "iPrice")},
       "Select 0, Sum(IsNull(l.iAInQuantity, 0)), Sum(IsNull(l.iAInPrice, 0)), Sum(IsNull(l.iAOutQuantity, 0)), "
       "Sum(IsNull(l.iAOutPrice, 0)) From ia_subsidiary l Where l.iYear = 2024 And l.cInvCode = N'INVENTORY' And "
       "l.cWhCode = N'WAREHOUSE' And l.iMonth > 0 And l.cVouType Not In (N'33', N'34') And IsNull(l.cBusType, N'') Not In "
       "(N'直运销售', N'直运采购')"},
  };
}

class PivotSums : public testing::TestWithParam<PivotedReport> {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 4000, .seed = 5});
    account_ = tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly);
    // The ledger with the most lines.
    const auto rows = account_->query(
        "Select Top 1 cInvCode, cWhCode, Count(*) From ia_subsidiary Where iYear = 2024 And cWhCode Is Not Null And "
        "IsNull(cBusType, N'') Not In (N'直运销售', N'直运采购') Group By cInvCode, cWhCode Order By 3 Desc, 1, 2");
    rows->next();
    inventory_ = tsql::toText(rows->value(0)).value();
    warehouse_ = tsql::toText(rows->value(1)).value();
  }
  static void TearDownTestSuite() {
    account_.reset();
    file_.reset();
  }

  static std::string placed(std::string text) {
    replaceAll(text, "INVENTORY", inventory_);
    replaceAll(text, "WAREHOUSE", warehouse_);
    return text;
  }

  void SetUp() override {
    std::vector<std::string> settings;
    for (const std::string& setting : GetParam().settings)
      settings.push_back(placed(setting));
    std::ostringstream notes;
    RunNotes observer(notes, Language::english);
    report_ = makeReport({.report = GetParam().report,
                          .account = AccountSource::inFile(file_->path()),
                          .settings = std::move(settings),
                          .dialog = false,
                          .language = Language::english},
                         observer);
    present_ = report_->table().columns();
    choices_ = pivotChoicesOf(*report_, Language::english);
    for (const PivotMeasure& measure : choices_.measures) {
      if (measure.figure != PivotFigure::unitCost) measures_.push_back(measure.name);
    }
    totals_ = numbersByKey(*account_, placed(GetParam().ledger), 1).at("0");
  }

  LayoutOptions options(std::vector<std::string> rows, std::vector<std::string> columns,
                        std::vector<std::string> measures) const {
    return {.pivot = PivotArrangement{std::move(rows), std::move(columns), std::move(measures)}};
  }
  Pivot pivot(std::vector<std::string> rows, std::vector<std::string> columns = {}) const {
    return pivotOf(*report_, Language::english, options(std::move(rows), std::move(columns), measures_), {});
  }

  // The test's own sums of the rows that are listed.
  std::vector<std::string> listed(const std::vector<RowCondition>& where) const {
    std::string list;
    for (const std::string& sum : GetParam().sums)
      list += ", " + sum;
    const auto rows = report_->table().query("Select Count(*)" + list + " From " + report_->table().name() + " Where " +
                                             conditionText(where, present_));
    std::vector<std::string> numbers;
    rows->next();
    for (std::size_t i = 0; i < GetParam().sums.size(); ++i)
      numbers.push_back(plainNumber(rows->value(i + 1)));
    return numbers;
  }

  static inline std::unique_ptr<test::TemporaryFile> file_;
  static inline std::unique_ptr<tsql::Connection> account_;
  static inline std::string inventory_, warehouse_;
  std::unique_ptr<MadeReport> report_;
  std::vector<tsql::Column> present_;
  PivotChoices choices_;
  std::vector<std::string> measures_;
  std::vector<std::string> totals_;
};

std::vector<std::string> figuresFrom(const ViewRow& row, std::size_t first) {
  std::vector<std::string> numbers;
  numbers.reserve(row.cells.size());
  for (std::size_t i = first; i < row.cells.size(); ++i)
    numbers.push_back(plainNumber(row.cells[i]));
  return numbers;
}

std::vector<std::string> sumOf(const std::vector<ViewRow>& rows, std::size_t first, std::size_t count) {
  std::vector<ExactSum> sums(count);
  for (const ViewRow& row : rows) {
    for (std::size_t i = 0; i < count; ++i)
      sums[i].add(row.cells.at(first + i));
  }
  std::vector<std::string> numbers;
  numbers.reserve(sums.size());
  for (const ExactSum& sum : sums)
    numbers.push_back(plainNumber(sum.value()));
  return numbers;
}

TEST_P(PivotSums, OfEachDimensionAreTheLedgers) {
  EXPECT_GT(choices_.dimensions.size(), 10U);
  for (const ReportDimension& dimension : choices_.dimensions) {
    SCOPED_TRACE(dimension.english);
    if (dimension.kind == DimensionKind::state) continue;  // below
    const Pivot pivot = this->pivot({dimension.name});
    const ReadView view(pivot.view());
    ASSERT_EQ(pivot.rowCount(), view.rows().size());
    const std::vector<ViewRow> lines = view.rows(RowKind::line);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(sumOf(lines, 1, measures_.size()), totals_);
    EXPECT_EQ(figuresFrom(view.rows().back(), 1), totals_);
    // A dimension of many values is looked at here and there.
    constexpr std::size_t looks = 12;
    const std::size_t step = std::max<std::size_t>(lines.size() / looks, 1);
    for (std::size_t row = 0; row < lines.size(); row += step) {
      const std::size_t column = row / step % measures_.size();
      EXPECT_EQ(listed(pivot.where(row, column + 1)).at(column), plainNumber(lines[row].cells[column + 1]))
          << "row " << row << ", " << measures_[column];
    }
  }
}

TEST_P(PivotSums, OfTwoAxesAreThoseOfTheRowsListed) {
  const Pivot pivot =
      this->pivot({"cWhCode", "costItemClass1"}, {GetParam().report == std::string("sfc-item") ? "cDepCode" : "month"});
  const View view = pivot.view();
  const ReadView read(view);
  EXPECT_EQ(view.columns.size() % measures_.size(), 2 % measures_.size());
  ASSERT_EQ(pivot.rowCount(), read.rows().size());
  EXPECT_FALSE(read.rows(RowKind::subtotal).empty());
  // Cells, totals of rows and columns, and the grand total alike.
  for (std::size_t row = 0; row < read.rows().size(); ++row) {
    for (std::size_t column = 2; column < view.columns.size(); ++column) {
      const tsql::Value& cell = read.rows()[row].cells[column];
      if (tsql::isNull(cell)) continue;
      EXPECT_EQ(listed(pivot.where(row, column)).at((column - 2) % measures_.size()), plainNumber(cell))
          << "row " << row << ", " << view.columns[column].column.name;
    }
  }
  const std::size_t last = view.columns.size() - measures_.size();
  EXPECT_EQ(figuresFrom(read.rows().back(), last), totals_);
  EXPECT_EQ(sumOf(read.rows(RowKind::line), last, measures_.size()), totals_);
  EXPECT_EQ(sumOf(read.rows(RowKind::subtotal), last, measures_.size()), totals_);
}

// What a spreadsheet computes is what the pivot has; all formats take it.
TEST_P(PivotSums, AreInEachFormatTheSame) {
  std::vector<std::string> measures = measures_;
  const std::string amount = measures_.back();
  measures.push_back(std::string(choices_.measures.back().name));
  measures.insert(measures.end(), {amount + ":row", amount + ":column"});
  LayoutOptions asked = options({"cWhCode", "cFXCode"}, {"costItemClass1"}, measures);
  const LaidOutReport laid = laidOut(*report_, Language::english, asked, LayoutOutput::workbook);
  ASSERT_EQ(laid.sections.size(), 1U);
  EXPECT_TRUE(laid.sections[0].grouped);
  const test::TemporaryFile file(".xlsx");
  writeXlsx(file.path(), laid);
  const test::XlsxEvaluation book(file.path());
  EXPECT_THAT(book.disagreements(), IsEmpty());
  EXPECT_THAT(book.sheets().front().names(), testing::ElementsAre("Pivot table"));
  EXPECT_TRUE(book.sheets().front().frozen().starts_with("C")) << "what stands down stays in sight";
  std::map<std::string, int> formulas;
  for (const auto& [place, cell] : book.sheets().front().cells())
    ++formulas[cell.formula.substr(0, cell.formula.find('('))];
  for (const char* function : {"SUM", "SUBTOTAL", "ROUND"})
    EXPECT_GT(formulas[function], 0) << function;

  std::ostringstream page, csv, json;
  writeHtml(page, laid);
  EXPECT_THAT(page.str(), testing::HasSubstr("Pivot table"));
  const LaidOutReport fields = laidOut(*report_, Language::english, asked, LayoutOutput::fields);
  writeCsv(csv, fields.heading, fields.sections[0], {});
  EXPECT_THAT(csv.str(), testing::StartsWith("rowKind,level,cWhCode,cWhName,"));
  std::int64_t lines = 0;
  std::istringstream records(csv.str());
  for (std::string record; std::getline(records, record);)
    lines += record.starts_with("line,") ? 1 : 0;
  EXPECT_EQ(lines, laid.sections[0].view.lineCount);
  writeJson(json, fields.heading, fields.sections[0]);
  EXPECT_THAT(json.str(), testing::HasSubstr("\"layout\":\"pivot\""));
}

TEST_P(PivotSums, AreCutToAPage) {
  LayoutOptions asked = options({"cFXCode"}, {}, measures_);
  asked.rowsOfPage = 1;
  const LaidOutReport laid = laidOut(*report_, Language::english, asked, LayoutOutput::page);
  EXPECT_EQ(laid.sections[0].limit, 1);
  EXPECT_GT(laid.sections[0].view.lineCount, 1);
  EXPECT_EQ(figuresFrom(laid.sections[0].view.totals.back(), 1), totals_) << "the total stays that of all lines";
}

INSTANTIATE_TEST_SUITE_P(Reports, PivotSums, testing::ValuesIn(pivotedReports()),
                         [](const auto& info) { return std::string(info.param.name); });

class StatePivots : public PivotSums {};

TEST_P(StatePivots, HaveEachRowsOwnFigures) {
  for (const ReportDimension& dimension : choices_.dimensions) {
    if (dimension.kind == DimensionKind::state) continue;
    SCOPED_TRACE(dimension.english);
    const Pivot pivot =
        pivotOf(*report_, Language::english, options({dimension.name}, {"State"}, {"Quantity", "Amount"}), {});
    const ReadView view(pivot.view());
    // In the order of the states, as the totals.
    EXPECT_EQ(figuresFrom(view.rows().back(), 1), totals_);
    EXPECT_EQ(listed(pivot.where(view.rows().size() - 1, 4)).at(3), totals_[3]);
  }
}

INSTANTIATE_TEST_SUITE_P(Reports, StatePivots, testing::Values(pivotedReports()[0], pivotedReports()[1]),
                         [](const auto& info) { return std::string(info.param.name); });

// Reports that have the class of a cost item beside it. In the detail ledger the cost item's code begins with its class.
class PivotsOfParts : public PivotSums {};

TEST_P(PivotsOfParts, HaveTheSumsOfTheLedgersPartsByClass) {
  const auto side = [](const std::string& flag, const std::string& ofPart, const std::string& ofLine) {
    return ", Sum(Case When l.bRdFlag = " + flag + " Then Case When p.iSubID Is Null Then IsNull(l." + ofLine +
           ", 0) Else IsNull(p." + ofPart + ", 0) End Else 0 End)";
  };
  const std::string rest =
      side("1", "iItemInQuantity", "iAInQuantity") + side("1", "iItemInPrice", "iAInPrice") +
      side("0", "iItemOutQuantity", "iAOutQuantity") + side("0", "iItemOutPrice", "iAOutPrice") +
      " From ia_subsidiary l Left Join ia_subsidiary_Item p On p.iSubID = l.AutoID Left Join Ca_FxDef i On i.iFxID = "
      "p.iItemID Left Join Ca_FxClassDef c On c.iFxCId = i.cFxCID" +
      GetParam().ledger.substr(GetParam().ledger.find(" Where "));
  for (const int grade : {1, 2, 3}) {
    SCOPED_TRACE(grade);
    const std::string code = "Left(IsNull(c.cFxCCode, N''), " + std::to_string(2 * grade) + ")";
    std::string query = "Select ";
    query.append(code).append(rest).append(" Group By ").append(code);
    const auto expected = numbersByKey(*account_, placed(query), 1);
    ASSERT_GT(expected.size(), 1U);
    const Pivot pivot = pivotOf(*report_, Language::english,
                                options({"costItemClass" + std::to_string(grade)}, {}, measures_), {PivotForm::apart});
    std::map<std::string, std::vector<std::string>> found;
    for (const ViewRow& row : ReadView(pivot.view()).rows(RowKind::line))
      found[tsql::toText(row.cells[0]).value_or("")] = figuresFrom(row, 2);
    EXPECT_EQ(found, expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Reports, PivotsOfParts, testing::Values(pivotedReports()[5], pivotedReports()[6]),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace quillon::workbench
