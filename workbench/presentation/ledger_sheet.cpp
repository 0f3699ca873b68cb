#include "workbench/presentation/ledger_sheet.h"

#include <algorithm>
#include <set>
#include <utility>

#include "frame/calendar_date.h"
#include "frame/text.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/resource_texts.h"
#include "workbench/presentation/figure_columns.h"

namespace quillon::workbench {

namespace {

constexpr Caption monthCaption{"月份", "Month"};
constexpr Caption monthEndDifferenceCaption{"与账面月末结存相差", "The books' month-end balance differs by"};
constexpr Caption closingDifferenceCaption{"与账面期末结存相差", "The books' closing balance differs by"};
constexpr Caption yearToDateCaption{"本年累计", "Year to date"};

constexpr std::string_view digestName = "cPZdigest";
constexpr std::string_view typeName = "bRdFlag";
constexpr int amountDecimals = 2;

ReportColumn columnNamed(std::span<const ReportColumn> known, std::string_view name) {
  const auto found =
      std::ranges::find_if(known, [name](const auto& column) { return equalIgnoringCase(column.name, name); });
  if (found != known.end()) return *found;
  return {.name = std::string(name), .chinese = std::string(name), .english = std::string(name)};
}

std::string cellWords(const tsql::Value& value) {
  return tsql::toText(value).value_or("");
}

tsql::Value withDecimals(ExactSum sum, int decimals) {
  sum.add(tsql::Exact{.units = 0, .scale = decimals});
  return sum.value();
}

}  // namespace

LedgerSheet::LedgerSheet(const LedgerBook& book, const ReportDocument& document, std::span<const ReportColumn> known,
                         bool allColumns)
    : book_(book), document_(document), type_(book.column(typeName)) {
  columns_.push_back({.column = layoutColumn("iMonth", monthCaption), .key = true});
  sources_.push_back({.kind = Source::Kind::month});
  put(known, "dKeepDate", Source::Kind::cell, true);
  put(known, "cPZCode", Source::Kind::cell, false);
  put(known, "cVouType", Source::Kind::cell, false);
  put(known, "cVouCode", Source::Kind::cell, true);
  put(known, digestName, Source::Kind::digest, true);
  putVarying(known);
  for (const ReportColumn& column : book.columns) {
    if (has(column.name)) continue;
    if (allColumns) {
      put(known, column.name, Source::Kind::cell, false);
    } else {
      ++leftOut_;
    }
  }
}

void LedgerSheet::put(std::span<const ReportColumn> known, std::string_view name, Source::Kind kind, bool key) {
  const std::span<const std::string_view> groups = groupColumnNames();
  const auto group = std::ranges::find_if(groups, [name](auto column) { return equalIgnoringCase(column, name); });
  columns_.push_back({.column = columnNamed(known, name), .key = key});
  sources_.push_back({.kind = kind, .cell = book_.column(name), .group = {}});
  if (group != groups.end()) sources_.back().group = static_cast<std::size_t>(group - groups.begin());
}

void LedgerSheet::putVarying(std::span<const ReportColumn> known) {
  if (varies(book_.column("cWhCode"), {})) put(known, "cWhName", Source::Kind::cell, false);
  const std::span<const std::string_view> groups = groupColumnNames();
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (varies(book_.column(groups[i]), i)) put(known, groups[i], Source::Kind::cell, false);
  }
}

bool LedgerSheet::varies(std::optional<std::size_t> cell, std::optional<std::size_t> group) const {
  std::set<std::string> values;
  if (cell) {
    for (const LedgerLine& line : book_.lines)
      values.insert(cellWords(line.cells[*cell]));
  }
  if (group) {
    for (const LedgerGroup& of : book_.groups)
      values.insert(of[*group]);
    // Without a value where the ledger is not kept by it, which is no value of its own.
    if (std::ranges::all_of(book_.groups, [&](const auto& of) { return of[*group].empty(); })) values.erase("");
  }
  return values.size() > 1;
}

bool LedgerSheet::has(std::string_view name) const {
  return std::ranges::any_of(columns_,
                             [name](const auto& column) { return equalIgnoringCase(column.column.name, name); });
}

std::vector<tsql::Value> LedgerSheet::lineCells(const LedgerLine& line) const {
  std::vector<tsql::Value> cells;
  for (const Source& source : sources_) {
    if (source.kind == Source::Kind::month) {
      cells.emplace_back(std::int64_t{line.month});
      continue;
    }
    cells.push_back(source.cell ? line.cells[*source.cell] : tsql::Value());
    if (source.kind == Source::Kind::digest && type_ && cellWords(cells.back()).empty())
      cells.back() = line.cells[*type_];
  }
  return cells;
}

std::vector<tsql::Value> LedgerSheet::namedCells(const std::string& name, std::optional<int> month,
                                                 std::optional<std::size_t> group) const {
  std::vector<tsql::Value> cells(sources_.size());
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    const Source& source = sources_[i];
    if (source.kind == Source::Kind::month) {
      if (month) cells[i] = std::int64_t{*month};
    } else if (source.kind == Source::Kind::digest) {
      cells[i] = name;
    } else if (group && source.group) {
      cells[i] = book_.groups[*group][*source.group];
    }
  }
  return cells;
}

tsql::Value LedgerSheet::quantity(const ExactSum& sum) const {
  return withDecimals(sum, document_.quantityDecimals);
}

tsql::Value LedgerSheet::amount(const ExactSum& sum) const {
  return withDecimals(sum, amountDecimals);
}

tsql::Value LedgerSheet::unitCost(const Figures& figures) const {
  return unitCostOf(figures.amount, figures.quantity, document_.unitCostDecimals);
}

std::string LedgerSheet::openingName() const {
  return resourceText(openingBalanceKey, document_.language);
}

std::string LedgerSheet::closingName() const {
  return resourceText(closingBalanceKey, document_.language);
}

std::string LedgerSheet::monthEndDifferenceName() const {
  return std::string(text(monthEndDifferenceCaption));
}

std::string LedgerSheet::closingDifferenceName() const {
  return std::string(text(closingDifferenceCaption));
}

LedgerBeginning ledgerBeginning(int year, const std::string& from, Login& login, Session& session) {
  AccountPublicComponent component;
  const int costItemStart = component.costItemStartMonth(std::to_string(year), session);
  if (from.empty()) return {.month = costItemStart};
  constexpr std::string_view meaning = "The first posting date";
  const std::string day = isoDate(from, meaning);
  const AccountingPeriod period = component.periodOfDate(day, session);
  const int month = period.year == year ? std::max(period.month, costItemStart) : costItemStart;
  const PeriodDates dates = component.datesOfPeriod(login.accountCode(), {.year = year, .month = month}, session);
  return {.month = month, .day = day > isoDate(dates.begin, meaning) ? day : ""};
}

std::string sinceBeginningName(const LedgerBeginning& beginning, Language language) {
  const bool chinese = language == Language::chinese;
  if (!beginning.day.empty()) return chinese ? "自" + beginning.day + "累计" : "Since " + beginning.day;
  if (beginning.month == 1) return std::string(yearToDateCaption.in(language));
  const std::string month = std::to_string(beginning.month);
  return chinese ? "自" + month + "月累计" : "Since month " + month;
}

}  // namespace quillon::workbench
