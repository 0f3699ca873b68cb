#include "workbench/presentation/comparison.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "frame/text.h"
#include "workbench/messages/pivot.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/pivot_axis.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

constexpr Caption comparedSubtotal{" 小计", " subtotal"};
constexpr Caption differenceCaption{"差额", "Difference"};
constexpr Caption percentCaption{"差额%", "Difference, %"};
constexpr Caption oneCaption{"本表", "This"};
constexpr Caption otherCaption{"对比", "Other"};
constexpr Caption anyText{"全部", "all"};
constexpr Caption behindCode{"编码", " code"};

constexpr std::size_t yearLength = 4;
constexpr std::size_t monthLength = 7;

bool hasMonth(const PivotKey& key) {
  const auto* text = std::get_if<std::string>(&key.code);
  return text != nullptr && text->size() == monthLength;
}

std::string yearOfMonth(const PivotKey& month) {
  return std::get<std::string>(month.code).substr(0, yearLength);
}

// "03" of "2024-03".
PivotKey monthNumberOf(const PivotKey& month) {
  return {.code = std::get<std::string>(month.code).substr(yearLength + 1), .name = {}};
}

// The years of the months at one place of the rows.
std::set<std::string> yearsIn(const Pivot& pivot, std::size_t place) {
  std::set<std::string> years;
  for (std::size_t row = 0; row < pivot.rowCount(); ++row) {
    const std::vector<PivotKey> path = pivot.row(row).path;
    if (place < path.size() && hasMonth(path[place])) years.insert(yearOfMonth(path[place]));
  }
  return years;
}

std::string conditionsText(const TextPairs& pairs, Language language) {
  std::string text;
  for (const auto& [caption, value] : pairs)
    text.append(text.empty()                    ? ""
                : language == Language::chinese ? "，"
                                                : ", ")
        .append(caption)
        .append(" ")
        .append(value);
  return text;
}

// Which of `pairs` are not in `others`, and which captions only these have, as what they then are.
TextPairs differing(const TextPairs& pairs, const TextPairs& others, Language language) {
  TextPairs found;
  for (const auto& pair : pairs) {
    if (std::ranges::find(others, pair) == others.end()) found.push_back(pair);
  }
  for (const auto& [caption, text] : others) {
    if (std::ranges::find(pairs, caption, &TextPairs::value_type::first) == pairs.end())
      found.emplace_back(caption, anyText.in(language));
  }
  return found;
}

tsql::Value differenceOf(const tsql::Value& one, const tsql::Value& other, bool isUnitCost) {
  if (tsql::isNull(one) && tsql::isNull(other)) return {};
  if (isUnitCost && (tsql::isNull(one) || tsql::isNull(other))) return {};
  ExactSum difference;
  difference.add(one);
  difference.subtract(other);
  return difference.value();
}

tsql::Value percentOf(const tsql::Value& difference, const tsql::Value& other) {
  if (tsql::isNull(difference) || tsql::isNull(other)) return {};
  ExactSum dividend, divisor;
  dividend.add(difference);
  divisor.add(other);
  if (divisor.exact().units < 0) {
    ExactSum size;
    size.subtract(other);
    divisor = size;
  }
  return quotientOf(dividend, divisor, shareDecimals);
}

}  // namespace

void checkComparison(const PivotArrangement& asked) {
  if (!asked.columns.empty()) throw UserError(messages::comparedAcross());
  for (const std::string& measure : asked.measures) {
    if (measure.find(':') != std::string::npos || measure.find("：") != std::string::npos)
      throw UserError(messages::comparedShare(measure));
  }
}

ComparedNames namesByConditions(const TextPairs& one, const TextPairs& other, Language language) {
  return {.one = conditionsText(differing(one, other, language), language),
          .other = conditionsText(differing(other, one, language), language)};
}

class Comparison::Table {
 public:
  Table(Pivot one, Pivot other, const ComparedNames& names, std::span<const SortKey> sort, Language language,
        PivotForm form)
      : sides_{std::move(one), std::move(other)},
        names_{.one = names.one.empty() ? std::string(oneCaption.in(language)) : names.one,
               .other = names.other.empty() ? std::string(otherCaption.in(language)) : names.other},
        language_(language),
        form_(form),
        dimensions_(sides_[0].plan().rows),
        measures_(sides_[0].plan().measures),
        axis_(dimensions_) {
    for (std::size_t i = 0; i < dimensions_.size(); ++i)
      byNumber_.push_back(isByNumber(i));
    for (std::size_t side = 0; side < sides_.size(); ++side)
      read(side);
    placeColumns();
    for (const SortKey& key : sort)
      sort_.push_back(sortKey(key));
    placeRows(PivotAxis::whole);
  }

  View view() const {
    View view;
    for (const KeyColumn& key : keys_)
      view.columns.push_back(keyColumn(key));
    for (const PivotMeasure& measure : measures_) {
      for (std::size_t part = 0; part < partCount; ++part)
        view.columns.push_back(figureColumn(measure, static_cast<Part>(part)));
    }
    const auto lines = std::make_shared<std::vector<ViewRow>>();
    for (const std::size_t node : rows_) {
      ViewRow row = rowOf(node);
      if (row.kind == RowKind::line) ++view.lineCount;
      (row.kind == RowKind::total ? view.totals : *lines).push_back(std::move(row));
    }
    view.rows = heldRows(lines);
    return view;
  }

  std::size_t rowCount() const { return rows_.size(); }
  const ComparedNames& names() const { return names_; }
  TextPairs heading() const { return sides_[0].heading(); }

  std::optional<Source> where(std::size_t row, std::size_t column) const {
    const std::size_t node = rows_.at(row);
    if (column < keys_.size()) return {};
    const std::size_t figure = (column - keys_.size()) / partCount;
    (void)measures_.at(figure);  // throws when there is no such column
    const auto part = static_cast<Part>((column - keys_.size()) % partCount);
    if (part != Part::one && part != Part::other) return {};
    const std::size_t side = part == Part::one ? 0 : 1;
    const Found& found = found_[node];
    if (!found.rows[side]) return {};
    // The pivot's own columns: one a dimension, then the figures.
    return Source{.ofOther = part == Part::other,
                  .where = sides_[side].where(*found.rows[side], dimensions_.size() + figure)};
  }

 private:
  // What is shown of a figure, in this order.
  enum class Part : std::size_t { one, other, difference, percent };
  static constexpr std::size_t partCount = 4;
  static constexpr std::array<std::string_view, partCount> partNames = {"one", "other", "difference", "percent"};

  // The rows of the two pivots that a row is made of.
  struct Found {
    std::array<std::optional<std::size_t>, 2> rows;
  };
  struct KeyColumn {
    std::size_t dimension;
    enum class Text { label, code, name } text;
  };
  struct Order {
    std::optional<std::size_t> dimension;
    std::size_t measure = 0;
    Part part = Part::one;
    bool descending = false;
  };

  // --- Matching ---

  bool isByNumber(std::size_t dimension) const {
    if (dimensions_[dimension].kind != DimensionKind::month) return false;
    const std::set<std::string> one = yearsIn(sides_[0], dimension), other = yearsIn(sides_[1], dimension);
    return one.size() == 1 && other.size() == 1 && one != other;
  }

  void read(std::size_t side) {
    for (std::size_t row = 0; row < sides_[side].rowCount(); ++row) {
      auto [kind, path, figures] = sides_[side].row(row);
      figures_[side].push_back(std::move(figures));
      for (std::size_t i = 0; i < path.size(); ++i) {
        if (byNumber_[i] && hasMonth(path[i])) path[i] = monthNumberOf(path[i]);
      }
      const std::size_t node = axis_.leaf(path);
      if (found_.size() < axis_.nodeCount()) found_.resize(axis_.nodeCount());
      found_[node].rows[side] = row;
    }
  }

  // --- Figures ---

  tsql::Value figure(std::size_t node, std::size_t measure, Part part) const {
    const auto of = [&](std::size_t side) {
      const std::optional<std::size_t> row = found_[node].rows[side];
      return row ? figures_[side][*row][measure] : tsql::Value();
    };
    if (part == Part::one) return of(0);
    if (part == Part::other) return of(1);
    const tsql::Value other = of(1);
    const tsql::Value difference = differenceOf(of(0), other, measures_[measure].figure == PivotFigure::unitCost);
    return part == Part::difference ? difference : percentOf(difference, other);
  }

  // --- Places ---

  void placeColumns() {
    for (std::size_t i = 0; i < dimensions_.size(); ++i) {
      using enum KeyColumn::Text;
      const ReportDimension& dimension = dimensions_[i];
      const bool named = dimension.kind == DimensionKind::costItemClass || dimension.lookup != nullptr ||
                         (!dimension.nameColumn.empty() && dimension.kind != DimensionKind::state);
      if (form_ == PivotForm::joined || !named) {
        keys_.push_back({i, label});
      } else {
        keys_.insert(keys_.end(), {{i, code}, {i, name}});
      }
    }
  }

  static std::string nameOf(const PivotMeasure& measure, Part part) {
    return std::string(partNames[static_cast<std::size_t>(part)]) + "/" + measure.name;
  }

  Order sortKey(const SortKey& key) const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < dimensions_.size(); ++i) {
      const ReportDimension& each = dimensions_[i];
      for (const std::string& name : {each.name, each.chinese, each.english}) {
        if (equalIgnoringCase(name, key.column)) return {.dimension = i, .descending = key.descending};
      }
      names.push_back(each.name);
    }
    for (std::size_t measure = 0; measure < measures_.size(); ++measure) {
      for (std::size_t part = 0; part < partCount; ++part) {
        names.push_back(nameOf(measures_[measure], static_cast<Part>(part)));
        if (equalIgnoringCase(names.back(), key.column))
          return {.dimension = {}, .measure = measure, .part = static_cast<Part>(part), .descending = key.descending};
      }
    }
    throw UserError(messages::noSuchComparedSort(key.column, suggestion(key.column, names)));
  }

  // The children of a node as they stand: by what is sorted by, then in their own order.
  std::vector<std::size_t> children(std::size_t node) const {
    std::vector<std::size_t> numbers;
    for (const auto& [key, number] : axis_.node(node).children)
      numbers.push_back(number);
    for (std::size_t i = sort_.size(); i-- > 0;) {
      const Order& order = sort_[i];
      if (order.dimension) {
        // Their own order is that of their keys.
        if (*order.dimension == axis_.node(node).depth && order.descending) std::ranges::reverse(numbers);
        continue;
      }
      std::vector<std::pair<tsql::Value, std::size_t>> valued;
      valued.reserve(numbers.size());
      for (const std::size_t number : numbers)
        valued.emplace_back(figure(number, order.measure, order.part), number);
      std::ranges::stable_sort(valued, [&order](const auto& one, const auto& other) {
        return order.descending ? compareValues(other.first, one.first) < 0 : compareValues(one.first, other.first) < 0;
      });
      std::ranges::transform(valued, numbers.begin(), [](const auto& each) { return each.second; });
    }
    return numbers;
  }

  // Each node behind what lies below it. A pivot has no row where nothing can be summed up.
  void placeRows(std::size_t node) {
    for (const std::size_t child : children(node))
      placeRows(child);
    if (node < found_.size() && (found_[node].rows[0] || found_[node].rows[1])) rows_.push_back(node);
  }

  // --- Texts ---

  ViewColumn keyColumn(const KeyColumn& key) const {
    const ReportDimension& dimension = dimensions_[key.dimension];
    ReportColumn column{.name = dimension.name, .chinese = dimension.chinese, .english = dimension.english};
    if (key.text == KeyColumn::Text::code) {
      column.chinese += behindCode.chinese;
      column.english += behindCode.english;
    } else if (key.text == KeyColumn::Text::name) {
      column.name = dimension.nameColumn.empty() ? dimension.name + "Name" : dimension.nameColumn;
    }
    return {.column = std::move(column), .key = true};
  }

  ViewColumn figureColumn(const PivotMeasure& measure, Part part) const {
    const auto caption = [&](Language language) -> std::string {
      switch (part) {
        case Part::one:
          return names_.one;
        case Part::other:
          return names_.other;
        case Part::difference:
          return std::string(differenceCaption.in(language));
        case Part::percent:
          break;
      }
      return std::string(percentCaption.in(language));
    };
    ReportColumn column{
        .name = nameOf(measure, part), .chinese = caption(Language::chinese), .english = caption(Language::english)};
    if (part == Part::percent) {
      column.role = ColumnRole::share;
    } else if (measure.figure == PivotFigure::unitCost) {
      column.role = ColumnRole::unitCost;
    } else {
      column.role = measure.figure == PivotFigure::quantity ? ColumnRole::quantity : ColumnRole::money;
    }
    return {.column = std::move(column), .groupChinese = measure.chinese, .groupEnglish = measure.english};
  }

  ViewRow rowOf(std::size_t node) const {
    const std::vector<std::size_t> path = axis_.path(node);
    ViewRow row;
    if (node == PivotAxis::whole) {
      row.kind = RowKind::total;
    } else if (!axis_.isLeaf(node)) {
      row.kind = RowKind::subtotal;
      row.level = static_cast<int>(path.size()) - 1;
    }
    for (const KeyColumn& key : keys_)
      row.cells.push_back(key.dimension < path.size() ? keyCell(key, path[key.dimension], node) : tsql::Value());
    if (row.kind == RowKind::total) row.cells.front() = std::string(totalCaption.in(language_));
    for (std::size_t measure = 0; measure < measures_.size(); ++measure) {
      for (std::size_t part = 0; part < partCount; ++part)
        row.cells.push_back(figure(node, measure, static_cast<Part>(part)));
    }
    return row;
  }

  tsql::Value keyCell(const KeyColumn& key, std::size_t at, std::size_t node) const {
    const PivotKey& value = axis_.node(at).key;
    const auto textOrNone = [](const tsql::Value& text) {
      return tsql::isNull(text) ? tsql::Value() : tsql::Value(plainText(text, ""));
    };
    std::string label = pivotLabel(dimensions_[key.dimension], value, language_);
    if (key.text == KeyColumn::Text::code) return textOrNone(value.code);
    if (key.text == KeyColumn::Text::name)
      return value.isNone() ? tsql::Value(std::move(label)) : textOrNone(value.name);
    const bool summed = at == node && !axis_.isLeaf(node) && form_ == PivotForm::joined;
    return summed ? label.append(comparedSubtotal.in(language_)) : label;
  }

  std::array<Pivot, 2> sides_;
  ComparedNames names_;
  Language language_;
  PivotForm form_;
  std::vector<ReportDimension> dimensions_;
  std::vector<PivotMeasure> measures_;
  std::vector<bool> byNumber_;  // of each dimension: months go by their number
  PivotAxis axis_;
  std::array<std::vector<std::vector<tsql::Value>>, 2> figures_;  // of each row of the two
  std::vector<Found> found_;                                      // of each node
  std::vector<KeyColumn> keys_;
  std::vector<Order> sort_;
  std::vector<std::size_t> rows_;  // the nodes, as they stand
};

Comparison::Comparison(Pivot one, Pivot other, const ComparedNames& names, std::span<const SortKey> sort,
                       Language language, PivotForm form)
    : table_(std::make_shared<const Table>(std::move(one), std::move(other), names, sort, language, form)) {}

View Comparison::view() const {
  return table_->view();
}

const ComparedNames& Comparison::names() const {
  return table_->names();
}

std::vector<std::pair<std::string, std::string>> Comparison::heading() const {
  return table_->heading();
}

std::size_t Comparison::rowCount() const {
  return table_->rowCount();
}

std::optional<Comparison::Source> Comparison::where(std::size_t row, std::size_t column) const {
  return table_->where(row, column);
}

}  // namespace quillon::workbench
