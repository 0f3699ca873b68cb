#include "workbench/presentation/pivot.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <unordered_map>

#include "frame/text.h"
#include "workbench/messages/pivot.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/cost_item_classes.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/pivot_axis.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

constexpr Caption subtotalHeading{"小计", "Subtotal"};
constexpr Caption subtotalOf{" 小计", " subtotal"};
constexpr Caption rowsCaption{"行", "Down"};
constexpr Caption columnsCaption{"列", "Across"};
constexpr Caption figuresCaption{"数值", "Figures"};
constexpr std::string_view betweenHeadings = " · ";
constexpr std::string_view modeOfClasses = "0";
constexpr std::string_view stateNumberColumn = "iState";

// Blank texts are no values.
tsql::Value valueOrNone(const tsql::Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr && text->find_first_not_of(' ') == std::string::npos ? tsql::Value() : value;
}

// "2024-03" of a date.
tsql::Value monthOf(const tsql::Value& date) {
  constexpr std::size_t monthLength = 7;
  const std::string day = plainText(date, "");
  return day.size() < monthLength ? tsql::Value() : tsql::Value(day.substr(0, monthLength));
}

std::string lastDayOf(const std::string& month) {
  constexpr int february = 2, longMonth = 31;
  const int year = wholeNumber<int>(month.substr(0, 4)).value_or(0),
            number = wholeNumber<int>(month.substr(5, 2)).value_or(0);
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  const bool isShort = number == 4 || number == 6 || number == 9 || number == 11;
  const int days = number == february ? (leap ? 29 : 28) : isShort ? longMonth - 1 : longMonth;
  return month + "-" + std::to_string(days);
}

RowCondition equals(const std::string& column, const tsql::Value& value) {
  return {.column = column, .kind = RowCondition::Kind::equals, .values = {plainText(value, "")}};
}

ColumnRole roleOf(const PivotMeasure& measure) {
  if (measure.share != PivotShare::none) return ColumnRole::share;
  if (measure.figure == PivotFigure::unitCost) return ColumnRole::unitCost;
  return measure.figure == PivotFigure::quantity ? ColumnRole::quantity : ColumnRole::money;
}

std::string joinedTexts(std::span<const std::string> texts, std::string_view separator) {
  std::string joined;
  for (const std::string& text : texts)
    joined.append(joined.empty() ? "" : separator).append(text);
  return joined;
}

}  // namespace

class Pivot::Table {
 public:
  Table(const LayoutRequest& request, const PivotArrangement& asked, const PivotOptions& options)
      : Table(request, options, std::make_optional<CostItemClasses>(request.table), asked) {}

  View view(const std::shared_ptr<const Table>& self) const;
  std::size_t rowCount() const { return rows_.size(); }
  const PivotPlan& plan() const { return plan_; }
  PivotRow pivotRow(std::size_t number) const;
  std::vector<RowCondition> where(std::size_t row, std::size_t column) const;
  std::vector<std::pair<std::string, std::string>> heading() const;

 private:
  class Rows;

  // A figure that the statement sums.
  struct Summed {
    std::optional<std::size_t> state;
    PivotFigure figure;  // quantity or amount
  };
  struct RowPlace {
    RowKind kind;
    std::size_t node;
  };
  struct ColumnPlace {
    std::size_t node;
    std::size_t measure;
  };
  // The columns of a row dimension.
  struct KeyColumn {
    std::size_t dimension;
    enum class Part { label, code, name } part;
  };

  Table(const LayoutRequest& request, const PivotOptions& options, std::optional<CostItemClasses> classes,
        const PivotArrangement& asked)
      : language_(request.language),
        options_(options),
        plan_(planPivot(request.report, request.mode, classes->grades(), asked)),
        states_(pivotStates(request.report, request.mode)),
        down_(plan_.rows),
        across_(plan_.columns) {
    conditions_ = request.arrangement.where;
    if (const PivotSource* source = request.report.pivotSource; source != nullptr)
      conditions_.push_back({.column = std::string(source->column), .values = {std::string(source->value)}});
    for (const PivotMeasure& measure : plan_.measures)
      addSummed(measure);
    for (const PivotSortKey& key : plan_.sort) {
      if (!key.dimension) addSummed(key.measure);
    }
    read(request, *classes);
    placeColumns();
    placeRows();
  }

  // --- Reading ---

  void addSummed(const PivotMeasure& measure) {
    const auto add = [&](PivotFigure figure) {
      if (!place(measure.state, figure)) summed_.push_back({measure.state, figure});
    };
    if (measure.figure != PivotFigure::amount) add(PivotFigure::quantity);
    if (measure.figure != PivotFigure::quantity) add(PivotFigure::amount);
  }

  std::optional<std::size_t> place(std::optional<std::size_t> state, PivotFigure figure) const {
    const auto found =
        std::ranges::find_if(summed_, [&](const Summed& each) { return each.state == state && each.figure == figure; });
    if (found == summed_.end()) return {};
    return static_cast<std::size_t>(found - summed_.begin());
  }

  std::string expression(const Summed& summed) const {
    const bool quantity = summed.figure == PivotFigure::quantity;
    if (!summed.state) return orZero(quantity ? "iQuantity" : "iMoney");
    return quantity ? states_[*summed.state].quantity : states_[*summed.state].money;
  }

  // The states that all figures are of, where rows are each of one state; nothing where other rows count, too.
  std::vector<std::string> statesSummed() const {
    std::vector<std::string> numbers;
    for (const Summed& each : summed_) {
      if (!each.state || states_[*each.state].stateNumber.empty()) return {};
      const std::string& number = states_[*each.state].stateNumber;
      if (std::ranges::find(numbers, number) == numbers.end()) numbers.push_back(number);
    }
    return numbers;
  }

  // Columns of the result table that dimensions are read from.
  class KeyList {
   public:
    std::size_t place(const std::string& column) {
      const auto found =
          std::ranges::find_if(names_, [&](const auto& name) { return equalIgnoringCase(name, column); });
      if (found == names_.end()) {
        names_.push_back(column);
        return names_.size() - 1;
      }
      return static_cast<std::size_t>(found - names_.begin());
    }
    const std::vector<std::string>& names() const { return names_; }

   private:
    std::vector<std::string> names_;
  };

  struct KeyPlaces {
    std::size_t code;
    std::optional<std::size_t> name;
  };

  void readNames(const LayoutRequest& request, const ReportDimension& dimension) {
    if (dimension.lookup == nullptr) return;
    std::map<std::string, tsql::Value>& names = namesOf_[dimension.name];
    const auto cursor = request.table.query(entryRows(*dimension.lookup, language_));
    while (cursor->next())
      names.emplace(plainText(cursor->value(0), ""), valueOrNone(cursor->value(1)));
  }

  void read(const LayoutRequest& request, const CostItemClasses& classes) {
    const std::vector<tsql::Column> present = request.table.columns();
    KeyList keys;
    std::vector<KeyPlaces> places;
    for (const PivotAxis* axis : {&down_, &across_}) {
      for (const ReportDimension& dimension : axis->dimensions()) {
        if (!hasColumn(present, dimension.column)) throw UserError(messages::noColumnInMode(dimension.column));
        places.push_back({.code = keys.place(dimension.column), .name = {}});
        if (!dimension.nameColumn.empty() && hasColumn(present, dimension.nameColumn))
          places.back().name = keys.place(dimension.nameColumn);
        readNames(request, dimension);
      }
    }
    const std::size_t keyCount = keys.names().size();
    const bool isClass = request.mode == modeOfClasses;
    std::vector<PivotKey> path(places.size());
    const auto cursor = request.table.query(statement(request, present, keys.names()));
    while (cursor->next()) {
      for (std::size_t i = 0; i < places.size(); ++i)
        path[i] = keyOf(dimension(i), places[i], *cursor, classes, isClass);
      const std::span<const PivotKey> all = path;
      const std::size_t down = down_.leaf(all.first(plan_.rows.size()));
      add(down, across_.leaf(all.subspan(plan_.rows.size())), *cursor, keyCount);
    }
  }

  const ReportDimension& dimension(std::size_t number) const {
    return number < plan_.rows.size() ? plan_.rows[number] : plan_.columns[number - plan_.rows.size()];
  }

  std::string statement(const LayoutRequest& request, std::span<const tsql::Column> present,
                        std::span<const std::string> keys) const {
    const PivotSource* source = request.report.pivotSource;
    const std::string names = joinedTexts(keys, ", ");
    std::string text = "Select " + names;
    for (const Summed& each : summed_)
      text.append(", Sum(").append(expression(each)).append(")");
    text.append(" From ").append(source != nullptr ? source->rows(request.table.name()) : request.table.name());
    std::vector<RowCondition> where = conditions_;
    if (std::vector<std::string> states = statesSummed(); !states.empty())
      where.push_back({.column = std::string(stateNumberColumn), .values = std::move(states)});
    return text.append(" Where ").append(conditionText(where, present)).append(" Group By ").append(names);
  }

  PivotKey keyOf(const ReportDimension& dimension, const KeyPlaces& places, const tsql::Cursor& row,
                 const CostItemClasses& classes, bool isClass) {
    const tsql::Value code = valueOrNone(row.value(places.code));
    if (dimension.kind == DimensionKind::month) return {.code = monthOf(code), .name = {}};
    if (dimension.lookup != nullptr) {
      const std::map<std::string, tsql::Value>& names = namesOf_.at(dimension.name);
      const auto name = names.find(plainText(code, ""));
      return {.code = code, .name = name == names.end() ? tsql::Value() : name->second};
    }
    if (dimension.kind != DimensionKind::costItemClass)
      return {.code = code, .name = places.name ? valueOrNone(row.value(*places.name)) : tsql::Value()};
    const std::string shown = plainText(code, "");
    const auto [known, added] = classOf_.try_emplace({shown, dimension.grade});
    if (added) {
      const CostItemClass found = classes.atGrade(shown, isClass || dimension.ofClassCodes, dimension.grade);
      if (!found.code.empty()) known->second = {.code = found.code, .name = valueOrNone(found.name)};
    }
    return known->second;
  }

  static std::uint64_t cell(std::size_t down, std::size_t across) {
    constexpr unsigned half = 32;
    return (static_cast<std::uint64_t>(down) << half) | across;
  }

  // To the cell and to all sums that it is in.
  void add(std::size_t down, std::size_t across, const tsql::Cursor& row, std::size_t firstSum) {
    for (std::size_t r = down;; r = down_.node(r).parent) {
      for (std::size_t c = across;; c = across_.node(c).parent) {
        const auto [found, added] = cells_.try_emplace(cell(r, c), sums_.size());
        if (added) sums_.resize(sums_.size() + summed_.size());
        for (std::size_t i = 0; i < summed_.size(); ++i)
          sums_[found->second + i].add(row.value(firstSum + i));
        if (c == PivotAxis::whole) break;
      }
      if (r == PivotAxis::whole) break;
    }
  }

  // --- Figures ---

  // Whether the rows in a cell are of one state, if the figure asks for that.
  bool addsUp(const PivotMeasure& measure, std::size_t down, std::size_t across) const {
    return measure.state || (down_.node(down).depth >= down_.stateDepth() && down_.stateDepth() > 0) ||
           (across_.node(across).depth >= across_.stateDepth() && across_.stateDepth() > 0);
  }

  const ExactSum* sums(const PivotMeasure& measure, std::size_t down, std::size_t across) const {
    if (!addsUp(measure, down, across)) return nullptr;
    const auto found = cells_.find(cell(down, across));
    return found == cells_.end() ? nullptr : &sums_[found->second];
  }

  // Nothing where no row is in the cell.
  tsql::Value figure(const PivotMeasure& measure, std::size_t down, std::size_t across) const {
    const ExactSum* own = sums(measure, down, across);
    if (own == nullptr) return {};
    if (measure.figure == PivotFigure::unitCost) {
      return unitCostOf(own[*place(measure.state, PivotFigure::amount)],
                        own[*place(measure.state, PivotFigure::quantity)], options_.unitCostDecimals);
    }
    const std::size_t which = *place(measure.state, measure.figure);
    if (measure.share == PivotShare::none) return own[which].value();
    const bool ofRow = measure.share == PivotShare::row, ofColumn = measure.share == PivotShare::column;
    const ExactSum* whole = sums(measure, ofRow ? down : PivotAxis::whole, ofColumn ? across : PivotAxis::whole);
    return whole == nullptr ? tsql::Value() : quotientOf(own[which], whole[which], shareDecimals);
  }

  // --- Places ---

  // The children of a node as they stand: by the sort keys that speak of them, then in their own order.
  std::vector<std::size_t> children(const PivotAxis& axis, std::size_t node, std::size_t firstDimension) const {
    std::vector<std::size_t> numbers;
    for (const auto& [key, number] : axis.node(node).children)
      numbers.push_back(number);
    const std::size_t dimension = firstDimension + axis.node(node).depth;
    for (std::size_t i = plan_.sort.size(); i-- > 0;) {
      const PivotSortKey& key = plan_.sort[i];
      if (key.dimension) {
        if (*key.dimension == dimension)
          reorder(numbers, key.descending, [&](std::size_t one, std::size_t other) {
            return PivotKeyOrder()(axis.node(one).key, axis.node(other).key);
          });
      } else if (&axis == &down_) {
        const auto total = [&](std::size_t number) { return figure(key.measure, number, PivotAxis::whole); };
        reorder(numbers, key.descending,
                [&](std::size_t one, std::size_t other) { return compareValues(total(one), total(other)) < 0; });
      }
    }
    return numbers;
  }

  template <typename Less>
  static void reorder(std::vector<std::size_t>& numbers, bool descending, const Less& less) {
    std::ranges::stable_sort(
        numbers, [&](std::size_t one, std::size_t other) { return descending ? less(other, one) : less(one, other); });
  }

  // Whether any figure has totals over what lies below the nodes of a depth.
  bool hasTotals(const PivotAxis& axis, std::size_t depth) const {
    const auto hasState = [](const PivotMeasure& measure) { return measure.state.has_value(); };
    return axis.stateDepth() <= depth || std::ranges::any_of(plan_.measures, hasState);
  }

  void placeColumns() {
    std::vector<std::size_t> nodes;
    placeNodes(across_, PivotAxis::whole, plan_.rows.size(), nodes);
    const std::size_t count = nodes.size() * plan_.measures.size();
    if (count > mostPivotColumns) {
      std::vector<std::string> names;
      for (const ReportDimension& each : plan_.columns)
        names.push_back(each.caption(language_));
      throw UserError(messages::tooManyPivotColumns(groupedCount(static_cast<std::int64_t>(count)), mostPivotColumns,
                                                    joinedTexts(names, language_ == Language::chinese ? "、" : ", ")));
    }
    for (const std::size_t node : nodes) {
      for (std::size_t measure = 0; measure < plan_.measures.size(); ++measure)
        columns_.push_back({node, measure});
    }
  }

  // Leaves, each node behind what lies below it.
  void placeNodes(const PivotAxis& axis, std::size_t node, std::size_t firstDimension,
                  std::vector<std::size_t>& nodes) const {
    for (const std::size_t child : children(axis, node, firstDimension))
      placeNodes(axis, child, firstDimension, nodes);
    if (axis.isLeaf(node) || hasTotals(axis, axis.node(node).depth)) nodes.push_back(node);
  }

  void placeRows() {
    for (std::size_t i = 0; i < plan_.rows.size(); ++i) {
      using enum KeyColumn::Part;
      const ReportDimension& dimension = plan_.rows[i];
      const bool named = dimension.kind == DimensionKind::costItemClass || dimension.lookup != nullptr ||
                         (!dimension.nameColumn.empty() && dimension.kind != DimensionKind::state);
      if (options_.form == PivotForm::joined || !named) {
        keys_.push_back({i, label});
      } else {
        keys_.insert(keys_.end(), {{i, code}, {i, name}});
      }
    }
    std::vector<std::size_t> nodes;
    placeNodes(down_, PivotAxis::whole, 0, nodes);
    for (const std::size_t node : nodes) {
      const bool line = down_.isLeaf(node);
      lineCount_ += line ? 1 : 0;
      rows_.push_back({line ? RowKind::line : node == PivotAxis::whole ? RowKind::total : RowKind::subtotal, node});
    }
  }

  // --- Texts ---

  std::string labelOf(const PivotAxis& axis, std::size_t node) const {
    return pivotLabel(axis.dimensions()[axis.node(node).depth - 1], axis.node(node).key, language_);
  }

  ViewColumn keyColumn(const KeyColumn& key) const {
    const ReportDimension& dimension = plan_.rows[key.dimension];
    ReportColumn column{.name = dimension.name, .chinese = dimension.chinese, .english = dimension.english};
    if (key.part == KeyColumn::Part::code) {
      column.chinese += "编码";
      column.english += " code";
    } else if (key.part == KeyColumn::Part::name) {
      column.name = dimension.nameColumn.empty() ? dimension.name + "Name" : dimension.nameColumn;
    }
    return {.column = std::move(column), .key = true};
  }

  // The name of a column of figures: its values, then the figure, with slashes between: "2024-03/amount".
  std::string nameOf(const ColumnPlace& column) const {
    std::string name;
    for (const std::size_t node : across_.path(column.node))
      name.append(labelOf(across_, node)).append("/");
    if (column.node == PivotAxis::whole && !plan_.columns.empty()) name = "total/";
    if (column.node != PivotAxis::whole && !across_.isLeaf(column.node)) name += "subtotal/";
    return name + plan_.measures[column.measure].name;
  }

  std::vector<std::string> headings(const ColumnPlace& column, Language language) const {
    std::vector<std::string> texts;
    for (const std::size_t node : across_.path(column.node))
      texts.push_back(labelOf(across_, node));
    if (!plan_.columns.empty() && column.node == PivotAxis::whole) {
      texts.emplace_back(totalCaption.in(language));
    } else if (!across_.isLeaf(column.node)) {
      texts.emplace_back(subtotalHeading.in(language));
    }
    if (plan_.measures.size() > 1 || plan_.columns.empty())
      texts.push_back(plan_.measures[column.measure].caption(language));
    return texts;
  }

  ViewColumn figureColumn(const ColumnPlace& place) const {
    const PivotMeasure& measure = plan_.measures[place.measure];
    const std::vector<std::string> chinese = headings(place, Language::chinese),
                                   english = headings(place, Language::english);
    const auto group = [](std::span<const std::string> texts) {
      return joinedTexts(texts.first(texts.size() - 1), betweenHeadings);
    };
    return {.column = {.name = nameOf(place),
                       .chinese = chinese.back(),
                       .english = english.back(),
                       .role = roleOf(measure)},
            .groupChinese = group(chinese),
            .groupEnglish = group(english),
            .formula = formulaOf(place)};
  }

  // How the figures of a column follow from others beside them.
  std::optional<RowFormula> formulaOf(const ColumnPlace& place) const {
    const PivotMeasure& measure = plan_.measures[place.measure];
    const auto shown = [&](PivotFigure figure) -> std::optional<std::size_t> {
      for (std::size_t i = 0; i < plan_.measures.size(); ++i) {
        const PivotMeasure& each = plan_.measures[i];
        if (each.figure == figure && each.share == PivotShare::none && each.state == measure.state) return i;
      }
      return {};
    };
    if (measure.figure == PivotFigure::unitCost) {
      const auto amount = shown(PivotFigure::amount), quantity = shown(PivotFigure::quantity);
      if (!amount || !quantity) return {};
      return RowFormula{.dividend = nameOf({place.node, *amount}),
                        .divisor = nameOf({place.node, *quantity}),
                        .decimals = options_.unitCostDecimals};
    }
    if (measure.share != PivotShare::none) {
      const auto figure = shown(measure.figure);
      if (!figure || measure.share != PivotShare::row) return {};
      return RowFormula{.dividend = nameOf({place.node, *figure}),
                        .divisor = nameOf({PivotAxis::whole, *figure}),
                        .decimals = shareDecimals};
    }
    if (across_.isLeaf(place.node)) return {};
    RowFormula sum;
    for (const std::size_t child : children(across_, place.node, plan_.rows.size()))
      sum.sumOf.push_back(nameOf({child, place.measure}));
    return sum;
  }

  ViewRow row(std::size_t number) const {
    const RowPlace& place = rows_[number];
    const PivotAxis::Node& node = down_.node(place.node);
    const std::vector<std::size_t> path = down_.path(place.node);
    ViewRow row{.kind = place.kind,
                .level = place.kind == RowKind::subtotal ? static_cast<int>(node.depth) - 1 : 0,
                .cells = {}};
    for (const KeyColumn& key : keys_)
      row.cells.push_back(key.dimension < path.size() ? keyCell(key, path[key.dimension], place) : tsql::Value());
    if (place.kind == RowKind::total) row.cells.front() = std::string(totalCaption.in(language_));
    for (const ColumnPlace& column : columns_)
      row.cells.push_back(figure(plan_.measures[column.measure], place.node, column.node));
    return row;
  }

  tsql::Value keyCell(const KeyColumn& key, std::size_t node, const RowPlace& place) const {
    const PivotKey& value = down_.node(node).key;
    if (key.part == KeyColumn::Part::code) return textOrNone(value.code);
    if (key.part == KeyColumn::Part::name) return value.isNone() ? labelOf(down_, node) : textOrNone(value.name);
    std::string text = labelOf(down_, node);
    const bool summed = place.kind == RowKind::subtotal && node == place.node && options_.form == PivotForm::joined;
    return summed ? text.append(subtotalOf.in(language_)) : text;
  }

  static tsql::Value textOrNone(const tsql::Value& value) {
    return tsql::isNull(value) ? tsql::Value() : tsql::Value(plainText(value, ""));
  }

  // --- The rows behind a figure ---

  void restrictTo(const ReportDimension& dimension, const PivotKey& key, std::vector<RowCondition>& where) const {
    if (dimension.kind == DimensionKind::costItemClass) {
      RowCondition condition{.column = dimension.column, .kind = RowCondition::Kind::equals};
      const PivotKeyOrder less;
      for (const auto& [item, found] : classOf_) {
        if (item.second == dimension.grade && !less(found, key) && !less(key, found))
          condition.values.push_back(item.first);
      }
      where.push_back(std::move(condition));
      return;
    }
    if (dimension.kind == DimensionKind::month && !tsql::isNull(key.code)) {
      const std::string month = plainText(key.code, "");
      where.push_back(
          {.column = dimension.column, .kind = RowCondition::Kind::range, .values = {month + "-01", lastDayOf(month)}});
      return;
    }
    where.push_back(equals(dimension.column, key.code));
    if (!dimension.nameColumn.empty() && dimension.kind != DimensionKind::state)
      where.push_back(equals(dimension.nameColumn, key.name));
  }

  void restrictTo(const PivotAxis& axis, std::size_t node, std::vector<RowCondition>& where) const {
    for (const std::size_t each : axis.path(node))
      restrictTo(axis.dimensions()[axis.node(each).depth - 1], axis.node(each).key, where);
  }

  Language language_;
  PivotOptions options_;
  PivotPlan plan_;
  std::vector<CrossState> states_;
  std::vector<RowCondition> conditions_;
  PivotAxis down_;
  PivotAxis across_;
  std::vector<Summed> summed_;
  // Where the sums of a cell begin, by its nodes.
  std::unordered_map<std::uint64_t, std::size_t> cells_;
  std::vector<ExactSum> sums_;
  // Of the dimensions whose codes a lookup names.
  std::map<std::string, std::map<std::string, tsql::Value>> namesOf_;
  // The class of a cost item, or of a class, at a grade.
  std::map<std::pair<std::string, int>, PivotKey> classOf_;
  std::vector<ColumnPlace> columns_;
  std::vector<KeyColumn> keys_;
  std::vector<RowPlace> rows_;
  std::int64_t lineCount_ = 0;
};

// The rows but for the total, each made when it is read.
class Pivot::Table::Rows final : public ViewRows {
 public:
  explicit Rows(std::shared_ptr<const Table> table) : table_(std::move(table)) {}

  bool next() override {
    if (next_ == table_->rows_.size() || table_->rows_[next_].kind == RowKind::total) return false;
    row_ = table_->row(next_++);
    return true;
  }
  const ViewRow& row() const override { return row_; }

 private:
  std::shared_ptr<const Table> table_;
  std::size_t next_ = 0;
  ViewRow row_;
};

View Pivot::Table::view(const std::shared_ptr<const Table>& self) const {
  View view;
  for (const KeyColumn& key : keys_)
    view.columns.push_back(keyColumn(key));
  for (const ColumnPlace& column : columns_)
    view.columns.push_back(figureColumn(column));
  view.lineCount = lineCount_;
  if (!rows_.empty() && rows_.back().kind == RowKind::total) view.totals.push_back(row(rows_.size() - 1));
  view.rows = [self]() -> std::unique_ptr<ViewRows> { return std::make_unique<Rows>(self); };
  return view;
}

PivotRow Pivot::Table::pivotRow(std::size_t number) const {
  const RowPlace& place = rows_.at(number);
  PivotRow row{.kind = place.kind, .path = {}, .figures = {}};
  for (const std::size_t node : down_.path(place.node))
    row.path.push_back(down_.node(node).key);
  for (const PivotMeasure& measure : plan_.measures)
    row.figures.push_back(figure(measure, place.node, PivotAxis::whole));
  return row;
}

std::vector<RowCondition> Pivot::Table::where(std::size_t row, std::size_t column) const {
  const RowPlace& place = rows_.at(row);
  std::vector<RowCondition> where = conditions_;
  restrictTo(down_, place.node, where);
  std::vector<std::string> states = statesSummed();
  if (column >= keys_.size()) {
    const ColumnPlace& figures = columns_.at(column - keys_.size());
    restrictTo(across_, figures.node, where);
    const PivotMeasure& measure = plan_.measures[figures.measure];
    states.clear();
    if (measure.state && !states_[*measure.state].stateNumber.empty())
      states.push_back(states_[*measure.state].stateNumber);
  }
  if (!states.empty()) where.push_back({.column = std::string(stateNumberColumn), .values = std::move(states)});
  return where;
}

std::vector<std::pair<std::string, std::string>> Pivot::Table::heading() const {
  const auto captions = [this](const auto& items) {
    std::vector<std::string> texts;
    texts.reserve(items.size());
    for (const auto& item : items)
      texts.push_back(item.caption(language_));
    return joinedTexts(texts, language_ == Language::chinese ? "、" : "; ");
  };
  std::vector<std::pair<std::string, std::string>> lines = {
      {std::string(rowsCaption.in(language_)), captions(plan_.rows)}};
  if (!plan_.columns.empty()) lines.emplace_back(columnsCaption.in(language_), captions(plan_.columns));
  lines.emplace_back(figuresCaption.in(language_), captions(plan_.measures));
  return lines;
}

Pivot::Pivot(const LayoutRequest& request, const PivotArrangement& asked, const PivotOptions& options)
    : table_(std::make_shared<const Table>(request, asked, options)) {}

View Pivot::view() const {
  return table_->view(table_);
}

std::size_t Pivot::rowCount() const {
  return table_->rowCount();
}

PivotRow Pivot::row(std::size_t number) const {
  return table_->pivotRow(number);
}

const PivotPlan& Pivot::plan() const {
  return table_->plan();
}

std::vector<RowCondition> Pivot::where(std::size_t row, std::size_t column) const {
  return table_->where(row, column);
}

std::vector<std::pair<std::string, std::string>> Pivot::heading() const {
  return table_->heading();
}

PivotChoices pivotChoices(const LayoutRequest& request) {
  const std::vector<tsql::Column> present = request.table.columns();
  PivotChoices choices{
      .dimensions = dimensionsOf(request.report, request.mode, CostItemClasses(request.table).grades()),
      .measures = measuresOf(request.report, request.mode, false)};
  std::erase_if(choices.dimensions,
                [&present](const ReportDimension& dimension) { return !hasColumn(present, dimension.column); });
  return choices;
}

}  // namespace quillon::workbench
