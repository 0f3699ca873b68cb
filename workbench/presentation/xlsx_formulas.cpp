#include "workbench/presentation/xlsx_formulas.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <utility>

namespace quillon::workbench {

namespace {

constexpr std::size_t outlineLevels = 8;
constexpr std::ptrdiff_t largestSubsetCount = 8;  // of different texts in a column
constexpr std::size_t columnsOfGroup = 64;        // that a group keeps a bit for

// Number of column 0 is "A".
std::string columnLetters(std::size_t column) {
  std::string letters;
  for (++column; column > 0; column = (column - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
  return letters;
}

// Whether the digits of "-1234.5600" are as few as a double keeps.
bool fewDigits(std::string_view number) {
  constexpr std::size_t exactDigits = 15;
  std::string digits;
  std::ranges::copy_if(number, std::back_inserter(digits), [](char c) { return c >= '0' && c <= '9'; });
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string::npos || digits.find_last_not_of('0') - first < exactDigits;
}

bool holdsText(const tsql::Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? !tsql::isNull(value) : !text->empty();
}

// A spreadsheet does not tell the letter case of conditions.
std::string lowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

// Whether a condition can ask for `text` itself: not taken for a number, a pattern or a comparison.
bool isPlainCondition(std::string_view text) {
  return !text.empty() && text.size() < 200 && text.find_first_of("0123456789*?~<>=+-.,\"") == std::string_view::npos;
}

std::size_t levelIndex(int level) {
  return std::min(static_cast<std::size_t>(std::max(level, 0)), outlineLevels - 1);
}

bool summable(const ViewColumn& column) {
  const ColumnRole role = column.column.role;
  return isNumber(role) && role != ColumnRole::unitCost && role != ColumnRole::share;
}

bool sameMeasure(const ViewColumn& one, const ViewColumn& two) {
  return one.column.chinese == two.column.chinese && isMoney(one.column.role) == isMoney(two.column.role);
}

}  // namespace

std::optional<double> cellNumber(const tsql::Value& value) {
  constexpr std::int64_t few = 1'000'000'000'000'000;
  constexpr std::array powers = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
  const auto isFew = [](std::int64_t units) { return units > -few && units < few; };
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    if (isFew(*integer)) return static_cast<double>(*integer);
  } else if (const auto* exact = std::get_if<tsql::Exact>(&value)) {
    // Both are exact as doubles, so their quotient is the double that is nearest.
    const auto scale = static_cast<std::size_t>(exact->scale);
    if (exact->units.fitsInt64() && isFew(exact->units.toInt64()) && scale < powers.size())
      return static_cast<double>(exact->units.toInt64()) / powers.at(scale);
  } else {
    return {};
  }
  return cellNumber(std::string_view(tsql::toText(value).value()));
}

std::optional<double> cellNumber(std::string_view exact) {
  if (!fewDigits(exact)) return {};
  double number = 0;
  std::from_chars(exact.data(), exact.data() + exact.size(), number);
  return number;
}

std::string XlsxPlaces::sheetName(std::int64_t sheet) const {
  return sheet == 0 ? name_ : name_ + " (" + std::to_string(sheet + 1) + ")";
}

std::string XlsxPlaces::cell(std::int64_t row, std::size_t column, std::int64_t home) const {
  const std::int64_t sheet = sheetOf(row);
  const std::string place = columnLetters(column) + std::to_string(firstRow_ + row % capacity_);
  return sheet == home ? place : "'" + sheetName(sheet) + "'!" + place;
}

std::string XlsxPlaces::cellBelow(std::int64_t row, std::int64_t distance, std::size_t column) const {
  return columnLetters(column) + std::to_string(firstRow_ + row % capacity_ + distance);
}

std::vector<std::string> XlsxPlaces::areas(std::int64_t first, std::int64_t last, std::size_t column,
                                           std::int64_t home) const {
  std::vector<std::string> result;
  while (first <= last) {
    const std::int64_t sheet = sheetOf(first);
    const std::int64_t end = std::min(last, (sheet + 1) * capacity_ - 1);
    result.push_back(cell(first, column, home) + ":" + cell(end, column, sheet));
    first = end + 1;
  }
  return result;
}

XlsxFormulas::XlsxFormulas(const View& view, const std::vector<int>& decimals, XlsxPlaces places)
    : view_(view), places_(std::move(places)) {
  for (std::size_t i = 0; i < view_.columns.size(); ++i) {
    if (summable(view_.columns[i])) {
      summed_.push_back(i);
      tolerance_.push_back(0.01 * std::pow(10.0, -decimals[i]));
    }
    if (view_.columns[i].column.role == ColumnRole::text) texts_.push_back(i);
  }
  findRowFormulas();
  start();
}

// A column whose formula names one that is not shown, because it holds nothing, goes without it.
void XlsxFormulas::findRowFormulas() {
  std::map<std::string_view, std::size_t> places;
  for (std::size_t i = 0; i < view_.columns.size(); ++i)
    places.emplace(view_.columns[i].column.name, i);
  for (std::size_t i = 0; i < view_.columns.size(); ++i) {
    if (!view_.columns[i].formula) continue;
    const RowFormula& formula = *view_.columns[i].formula;
    OfRow found{.column = i, .sumOf = {}, .quotient = {}, .decimals = formula.decimals};
    for (const std::string& name : formula.sumOf) {
      if (const auto place = places.find(name); place != places.end()) found.sumOf.push_back(place->second);
    }
    const auto dividend = places.find(formula.dividend), divisor = places.find(formula.divisor);
    if (dividend != places.end() && divisor != places.end()) found.quotient = {dividend->second, divisor->second};
    ofRow_.push_back(std::move(found));
  }
}

// "SUM(C7:F7)", or the cells one by one where others stand between them.
std::string XlsxFormulas::rowSum(const OfRow& formula, const ViewRow& row, std::int64_t above,
                                 std::int64_t distance) const {
  constexpr std::size_t mostArguments = 250;  // a spreadsheet takes 255
  ExactSum exact;
  double real = 0;
  for (const std::size_t column : formula.sumOf) {
    const tsql::Value& value = row.cells[column];
    if (tsql::isNull(value)) continue;
    const auto number = cellNumber(value);
    if (!number) return {};
    exact.add(value);
    real += *number;
  }
  const auto number = cellNumber(row.cells[formula.column]);
  const auto summed = std::ranges::find(summed_, formula.column);
  if (!number || formula.sumOf.empty() || summed == summed_.end()) return {};
  const Figure figure{row.cells[formula.column], *number};
  if (!agrees(figure, exact, real, static_cast<std::size_t>(summed - summed_.begin()))) return {};
  const std::size_t first = formula.sumOf.front(), last = formula.sumOf.back();
  if (last - first + 1 == formula.sumOf.size())
    return "SUM(" + places_.cellBelow(above, distance, first) + ":" + places_.cellBelow(above, distance, last) + ")";
  if (formula.sumOf.size() > mostArguments) return {};
  std::string text;
  for (const std::size_t column : formula.sumOf)
    text.append(text.empty() ? "SUM(" : ",").append(places_.cellBelow(above, distance, column));
  return text + ")";
}

// Rounded as the figure is. Where the double of a quotient falls to the other side of a half, the figure stands alone.
std::string XlsxFormulas::rowQuotient(const OfRow& formula, const ViewRow& row, std::int64_t above,
                                      std::int64_t distance) const {
  const auto number = cellNumber(row.cells[formula.column]);
  const auto dividend = cellNumber(row.cells[formula.quotient->first]);
  const auto divisor = cellNumber(row.cells[formula.quotient->second]);
  if (!number || !dividend || !divisor || *divisor == 0) return {};
  const double power = std::pow(10.0, formula.decimals);
  constexpr double tolerance = 0.01;
  if (std::abs(std::round(*dividend / *divisor * power) - *number * power) > tolerance) return {};
  return "ROUND(" + places_.cellBelow(above, distance, formula.quotient->first) + "/" +
         places_.cellBelow(above, distance, formula.quotient->second) + "," + std::to_string(formula.decimals) + ")";
}

void XlsxFormulas::rowFormulas(Row& formulas, const ViewRow& row, std::int64_t above, std::int64_t distance) const {
  for (const OfRow& formula : ofRow_) {
    std::string& text = formulas[formula.column];
    if (!text.empty()) continue;
    text = formula.quotient ? rowQuotient(formula, row, above, distance) : rowSum(formula, row, above, distance);
  }
}

// What is there is known by standing under the third of three headings, as in 收入, 发出, 结存.
void XlsxFormulas::start() {
  row_ = 0;
  group_ = 0;
  sums_ = {std::vector<ExactSum>(summed_.size()), std::vector<ExactSum>(summed_.size()), {}};
  subtotalled_.reset();
  monthEnded_ = false;
  levels_.resize(outlineLevels);
  for (Range* range : {&all_, &month_, &year_})
    beginRange(*range);
  beginLevels(0);
  marks_.assign(view_.columns.size(), true);
  notInLinesAlone_.assign(view_.columns.size(), false);
  subsetsKept_.assign(texts_.size(), true);
  findBalances();
}

// Receipts, issues and balance are told by their headings: a column alone under each of three, as 收入, 发出 and 结存
// above 数量; or these three beside each other.
void XlsxFormulas::findBalances() {
  constexpr std::string_view balance = "结存";
  balances_.clear();
  const auto column = [this](std::size_t number) -> const ViewColumn& { return view_.columns[summed_[number]]; };
  for (std::size_t third = 2; third < summed_.size(); ++third) {
    std::vector<std::size_t> alike;
    for (std::size_t number = 0; number < summed_.size(); ++number) {
      if (!column(number).groupChinese.empty() && sameMeasure(column(number), column(third))) alike.push_back(number);
    }
    const bool alone = alike.size() == 3 && alike[2] == third &&
                       column(alike[0]).groupChinese != column(alike[1]).groupChinese &&
                       column(alike[1]).groupChinese != column(third).groupChinese;
    const bool beside = column(third).column.chinese == balance &&
                        column(third - 1).groupChinese == column(third).groupChinese &&
                        column(third - 2).groupChinese == column(third).groupChinese;
    if (alone || beside) {
      balances_.push_back({.in = alone ? alike[0] : third - 2, .out = alone ? alike[1] : third - 1, .balance = third});
    }
  }
}

void XlsxFormulas::readGroups() {
  reading_ = true;
  for (const auto rows = view_.rows(); rows->next();)
    ofRow(rows->row());
  closeGroups(0);
  reading_ = false;
  groupMarks_ = marks_;
  if (mixed_) groups_.clear();
  start();
}

void XlsxFormulas::beginRange(Range& range) const {
  range.first = row_;
  range.before = std::make_shared<Sums>(sums_);
  range.cells.assign(summed_.size(), 0);
  range.lines.assign(summed_.size(), 0);
}

void XlsxFormulas::beginLevels(int level) {
  const std::size_t outermost = levelIndex(level);
  beginRange(levels_[outermost]);
  for (std::size_t i = outermost + 1; i < levels_.size(); ++i)
    levels_[i] = levels_[outermost];
}

// A floating-point number has no exact sum: it agrees with nothing, and no sum that it is in does.
XlsxFormulas::Figures XlsxFormulas::figuresOf(const ViewRow& row) const {
  Figures figures(summed_.size());
  for (std::size_t number = 0; number < summed_.size(); ++number) {
    const tsql::Value& value = row.cells[summed_[number]];
    if (const auto real = cellNumber(value)) {
      figures[number] = Figure{value, *real};
    } else if (std::holds_alternative<double>(value)) {
      figures[number] = Figure{std::int64_t{0}, std::nan("")};
    }
  }
  return figures;
}

bool XlsxFormulas::agrees(const Figure& figure, const ExactSum& exact, double real, std::size_t number) const {
  ExactSum difference = exact;
  difference.subtract(figure.exact);
  return difference.isZero() && std::abs(real - figure.real) < tolerance_[number];
}

bool XlsxFormulas::subtotalAgrees(const Figure& figure, const Range& range, std::size_t number) const {
  ExactSum sum = sums_.cells[number];
  sum.subtract(range.before->cells[number].value());
  return agrees(figure, sum, range.cells[number], number);
}

bool XlsxFormulas::lineSumAgrees(const Figure& figure, const Range& range, std::size_t number) const {
  ExactSum sum = sums_.lines[number];
  sum.subtract(range.before->lines[number].value());
  return agrees(figure, sum, range.lines[number], number);
}

// Function 9 leaves out what a filter hides, but not the rows of an outline that is folded, as 109 would; both pass over
// other SUBTOTALs.
std::string XlsxFormulas::subtotal(std::int64_t first, std::int64_t last, std::size_t column) const {
  std::string formula = "SUBTOTAL(9";
  for (const std::string& area : places_.areas(first, last, column, home_))
    formula += "," + area;
  return formula + ")";
}

std::string XlsxFormulas::conditionalSum(std::int64_t first, std::int64_t last, std::size_t column,
                                         const std::vector<std::pair<std::size_t, std::string>>& conditions) const {
  std::vector<std::string> sums = places_.areas(first, last, column, home_);
  for (const auto& [conditionColumn, condition] : conditions) {
    const auto areas = places_.areas(first, last, conditionColumn, home_);
    for (std::size_t i = 0; i < sums.size(); ++i)
      sums[i] += "," + areas[i] + ",\"" + condition + "\"";
  }
  std::string formula;
  for (const std::string& sum : sums)
    formula.append(formula.empty() ? "" : "+").append("SUMIFS(" + sum + ")");
  return formula;
}

void XlsxFormulas::rangeFormulas(Row& formulas, const Figures& figures, const Range& range) const {
  const auto mark = std::ranges::find(marks_, true);
  for (std::size_t number = 0; number < summed_.size(); ++number) {
    const std::size_t column = summed_[number];
    if (!figures[number] || !formulas[column].empty()) continue;
    if (subtotalAgrees(*figures[number], range, number)) {
      formulas[column] = subtotal(range.first, row_ - 1, column);
    } else if (mark != marks_.end() && lineSumAgrees(*figures[number], range, number)) {
      formulas[column] =
          conditionalSum(range.first, row_ - 1, column, {{static_cast<std::size_t>(mark - marks_.begin()), "<>"}});
    }
  }
}

// A row whose words name what lines have in a column, such as 收入, and that sums these lines.
bool XlsxFormulas::subsetFormulas(Row& formulas, const ViewRow& row, const Figures& figures, const Range& range) const {
  const auto mark = std::ranges::find(marks_, true);
  const auto isNamed = [&](const std::string& text) {
    return std::ranges::any_of(texts_, [&](std::size_t column) {
      const auto* words = std::get_if<std::string>(&row.cells[column]);
      return words != nullptr && words->find(text) != std::string::npos;
    });
  };
  for (std::size_t i = 0; i < sums_.subsets.size(); ++i) {
    const Subset& subset = sums_.subsets[i];
    if (!isPlainCondition(subset.text) || !isNamed(subset.text)) continue;
    if (notInLinesAlone_[subset.column] && mark == marks_.end()) continue;
    const Subset* before = i < range.before->subsets.size() ? &range.before->subsets[i] : nullptr;
    const auto agreesOn = [&](std::size_t number) {
      ExactSum exact = subset.exact[number];
      if (before != nullptr) exact.subtract(before->exact[number].value());
      return agrees(*figures[number], exact, subset.real[number] - (before == nullptr ? 0 : before->real[number]),
                    number);
    };
    bool all = true;
    for (std::size_t number = 0; all && number < summed_.size(); ++number)
      all = !figures[number] || agreesOn(number);
    if (!all) continue;
    std::vector<std::pair<std::size_t, std::string>> conditions = {{subset.column, subset.text}};
    if (notInLinesAlone_[subset.column]) conditions.emplace_back(static_cast<std::size_t>(mark - marks_.begin()), "<>");
    for (std::size_t number = 0; number < summed_.size(); ++number) {
      if (figures[number])
        formulas[summed_[number]] = conditionalSum(range.first, row_ - 1, summed_[number], conditions);
    }
    return true;
  }
  return false;
}

// All figures of a total are sums of the same rows, if there is a way.
void XlsxFormulas::sumFormulas(Row& formulas, const ViewRow& row, const Figures& figures, const Range& range) const {
  if (range.first == row_) return;
  bool ofAll = true;
  for (std::size_t number = 0; number < summed_.size(); ++number)
    ofAll = ofAll && (!figures[number] || subtotalAgrees(*figures[number], range, number));
  if (ofAll || !subsetFormulas(formulas, row, figures, range)) rangeFormulas(formulas, figures, range);
}

void XlsxFormulas::balanceFormulas(Row& formulas, const ViewRow& row, const Figures& figures) {
  for (Balance& balance : balances_) {
    const auto& figure = figures[balance.balance];
    const std::size_t column = summed_[balance.balance];
    if (!figure) {
      if (!tsql::isNull(row.cells[column])) balance.above.reset();
      continue;
    }
    if (balance.above && row.kind != RowKind::opening) {
      std::string formula = places_.cell(*balance.above, column, home_);
      bool known = true;
      const auto move = [&](std::size_t number, bool out) {
        if (row.kind != RowKind::line || tsql::isNull(row.cells[summed_[number]])) return;
        known = known && figures[number].has_value();
        if (!known) return;
        if (out) {
          balance.exact.subtract(figures[number]->exact);
        } else {
          balance.exact.add(figures[number]->exact);
        }
        balance.real += out ? -figures[number]->real : figures[number]->real;
        formula += (out ? "-" : "+") + places_.cell(row_, summed_[number], home_);
      };
      move(balance.in, false);
      move(balance.out, true);
      if (known && agrees(*figure, balance.exact, balance.real, balance.balance)) {
        formulas[column] = std::move(formula);
        balance.above = row_;
        continue;
      }
    }
    // Only a ledger, which opens with a balance, has running ones.
    if (!balance.above && row.kind != RowKind::opening) continue;
    balance.above = row_;
    balance.exact = {};
    balance.exact.add(figure->exact);
    balance.real = figure->real;
  }
}

void XlsxFormulas::groupFormulas(Row& formulas, const Figures& figures) {
  const std::size_t group = group_++;
  if (group >= groups_.size()) return;
  const auto mark = std::ranges::find(groupMarks_, true);
  for (std::size_t number = 0; number < std::min(summed_.size(), columnsOfGroup); ++number) {
    if (!figures[number]) continue;
    const std::uint64_t bit = std::uint64_t{1} << number;
    std::string& formula = formulas[summed_[number]];
    if ((groups_[group].subtotals & bit) != 0) {
      formula = subtotal(row_ + 1, groups_[group].last, summed_[number]);
    } else if ((groups_[group].lineSums & bit) != 0 && mark != groupMarks_.end()) {
      formula = conditionalSum(row_ + 1, groups_[group].last, summed_[number],
                               {{static_cast<std::size_t>(mark - groupMarks_.begin()), "<>"}});
    }
  }
}

XlsxFormulas::Row XlsxFormulas::formulasOf(const ViewRow& row, const Figures& figures) {
  Row formulas(row.cells.size());
  switch (row.kind) {
    case RowKind::group:
      if (!reading_) groupFormulas(formulas, figures);
      break;
    case RowKind::subtotal:
      sumFormulas(formulas, row, figures, levels_.at(levelIndex(row.level)));
      break;
    case RowKind::monthTotal:
      balanceFormulas(formulas, row, figures);
      if (month_.first < row_) rangeFormulas(formulas, figures, month_);
      break;
    case RowKind::yearTotal:
    case RowKind::closing:
      balanceFormulas(formulas, row, figures);
      if (year_.first < row_) rangeFormulas(formulas, figures, year_);
      break;
    case RowKind::total:
      sumFormulas(formulas, row, figures, all_);
      break;
    case RowKind::line:
    case RowKind::opening:
      balanceFormulas(formulas, row, figures);
      break;
    case RowKind::detail:
    case RowKind::difference:
      break;
  }
  return formulas;
}

XlsxFormulas::Row XlsxFormulas::ofRow(const ViewRow& row) {
  const Figures figures = figuresOf(row);
  home_ = places_.sheetOf(row_);
  const bool heads = row.kind == RowKind::group, ends = row.kind == RowKind::subtotal;
  // Subtotals that stand together, one a state, sum the same rows.
  if (subtotalled_ && !(ends && row.level == *subtotalled_)) {
    beginLevels(*subtotalled_);
    subtotalled_.reset();
  }
  if (reading_) {
    // A subtotal ends the group of its own level only when it has summed it.
    if (heads || ends) closeGroups(heads ? row.level : row.level + 1);
    if (row.kind == RowKind::line && !open_.empty()) {
      if (open_.back().range.first == row_) nested_ = row.level > open_.back().level;
      if (nested_) closeGroups(row.level);
    }
    mixed_ = mixed_ || !(heads || ends || row.kind == RowKind::line || row.kind == RowKind::detail);
  }
  // What stands between the totals of a month and the next line is in no month; a month may have several totals.
  if (monthEnded_ && row.kind == RowKind::line) {
    beginRange(month_);
    monthEnded_ = false;
  }
  Row formulas = formulasOf(row, figures);
  rowFormulas(formulas, row, row_, 0);
  if (reading_ && ends) closeGroups(row.level);
  noteMarks(row);
  if (reading_ && heads) {
    open_.push_back({groups_.size(), row.level, {}, figures});
    groups_.emplace_back();
  } else {
    add(row, figures, formulas);
  }
  ++row_;
  if (reading_ && heads) beginRange(open_.back().range);
  if (heads) beginLevels(row.level);
  if (ends) subtotalled_ = row.level;
  monthEnded_ = monthEnded_ || row.kind == RowKind::monthTotal || row.kind == RowKind::opening;
  if (row.kind == RowKind::opening) beginRange(year_);
  return formulas;
}

void XlsxFormulas::closeGroups(int level) {
  while (!open_.empty() && open_.back().level >= level)
    closeGroup();
}

void XlsxFormulas::closeGroup() {
  const OpenGroup group = std::move(open_.back());
  open_.pop_back();
  groups_[group.number].last = row_ - 1;
  for (std::size_t number = 0; number < summed_.size(); ++number) {
    const auto& figure = group.figures[number];
    if (!figure) continue;
    const bool kept = number < columnsOfGroup && group.range.first < row_;
    const std::uint64_t bit = kept ? std::uint64_t{1} << number : 0;
    if (kept && subtotalAgrees(*figure, group.range, number)) {
      groups_[group.number].subtotals |= bit;
      continue;
    }
    if (kept && lineSumAgrees(*figure, group.range, number)) groups_[group.number].lineSums |= bit;
    addCell(number, *figure);
  }
}

void XlsxFormulas::addCell(std::size_t number, const Figure& figure) {
  sums_.cells[number].add(figure.exact);
  for (Range* range : {&all_, &month_, &year_})
    range->cells[number] += figure.real;
  for (Range& range : levels_)
    range.cells[number] += figure.real;
  for (OpenGroup& group : open_)
    group.range.cells[number] += figure.real;
}

void XlsxFormulas::add(const ViewRow& row, const Figures& figures, const Row& formulas) {
  for (std::size_t number = 0; number < summed_.size(); ++number) {
    if (!figures[number] || formulas[summed_[number]].starts_with("SUBTOTAL")) continue;
    addCell(number, *figures[number]);
    if (row.kind != RowKind::line) continue;
    sums_.lines[number].add(figures[number]->exact);
    for (Range* range : {&all_, &month_, &year_})
      range->lines[number] += figures[number]->real;
    for (Range& range : levels_)
      range.lines[number] += figures[number]->real;
    for (OpenGroup& group : open_)
      group.range.lines[number] += figures[number]->real;
  }
  if (!reading_) addToSubsets(row, figures);
}

void XlsxFormulas::noteMarks(const ViewRow& row) {
  for (std::size_t column = 0; column < marks_.size(); ++column) {
    const bool holds = holdsText(row.cells[column]), isLine = row.kind == RowKind::line;
    if (marks_[column]) marks_[column] = holds == isLine;
    if (holds && !isLine) notInLinesAlone_[column] = true;
  }
}

void XlsxFormulas::addToSubsets(const ViewRow& row, const Figures& figures) {
  if (row.kind != RowKind::line) return;
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const auto* text = std::get_if<std::string>(&row.cells[texts_[i]]);
    if (!subsetsKept_[i] || text == nullptr || text->empty()) continue;
    const std::string key = lowerCase(*text);
    auto subset = std::ranges::find_if(sums_.subsets,
                                       [&](const Subset& each) { return each.column == texts_[i] && each.key == key; });
    if (subset == sums_.subsets.end()) {
      if (std::ranges::count(sums_.subsets, texts_[i], &Subset::column) == largestSubsetCount) {
        subsetsKept_[i] = false;
        for (Subset& each : sums_.subsets) {
          if (each.column == texts_[i]) each = {.column = texts_[i]};
        }
        continue;
      }
      subset = sums_.subsets.insert(subset, {.column = texts_[i], .key = key, .text = *text});
      subset->exact.resize(summed_.size());
      subset->real.resize(summed_.size());
    }
    for (std::size_t number = 0; number < summed_.size(); ++number) {
      if (!figures[number]) continue;
      subset->exact[number].add(figures[number]->exact);
      subset->real[number] += figures[number]->real;
    }
  }
}

XlsxFormulas::Row XlsxFormulas::ofTotal(const ViewRow& total) {
  home_ = places_.sheetOf(std::max<std::int64_t>(row_ - 1, 0));
  // Each total follows the last row of the view, not the total above it.
  const std::vector<Balance> balances = balances_;
  Row formulas = formulasOf(total, figuresOf(total));
  if (row_ > 0) rowFormulas(formulas, total, row_ - 1, ++totals_);
  balances_ = balances;
  return formulas;
}

}  // namespace quillon::workbench
