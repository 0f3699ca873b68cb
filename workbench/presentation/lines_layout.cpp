#include "workbench/presentation/lines_layout.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "frame/text.h"
#include "workbench/presentation/arranged_view.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/row_conditions.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view stateColumnName = "cState";
constexpr std::string_view stateNumberName = "iState";
constexpr std::string_view expenseMode = "2";

bool isNamed(const ReportColumn& column, std::string_view name) {
  return equalIgnoringCase(column.name, name);
}

bool isAmong(std::span<const std::string_view> names, const ReportColumn& column) {
  return std::ranges::any_of(names, [&column](std::string_view name) { return isNamed(column, name); });
}

bool shownWhenAsked(const ReportColumn& column) {
  return column.role == ColumnRole::userDefined || column.role == ColumnRole::further;
}

// Every row is one state of a ledger line: its opening balance, a receipt, an issue, its closing balance.
bool rowsAreStates(const LayoutRequest& request) {
  return request.report.notInLines != nullptr && !request.report.notInLines(request.mode).empty();
}

void append(std::string& list, const std::string& item) {
  list += (list.empty() ? "" : ", ") + item;
}

// Of `hidden`, those in which rows differ that are equal in all columns shown.
std::vector<ReportColumn> tellingApart(const LayoutRequest& request, std::span<const ReportColumn> shown,
                                       std::span<const ReportColumn> hidden, const std::string& where) {
  std::string keys, differences, flags;
  for (const ReportColumn& column : shown) {
    if (!isNumber(column.role)) append(keys, column.name);
  }
  for (std::size_t i = 0; i < hidden.size(); ++i) {
    const std::string text = "(IsNull(Cast(" + hidden[i].name + " As nvarchar(120)), N''))";
    const std::string name = "differs" + std::to_string(i);
    append(differences, "Case When Min");
    differences.append(text).append(" <> Max").append(text).append(" Then 1 Else 0 End As ").append(name);
    append(flags, "Max(" + name + ")");
  }
  std::vector<ReportColumn> found;
  if (keys.empty() || flags.empty()) return found;
  const auto cursor = request.table.query("Select " + flags + " From (Select " + differences + " From " +
                                          request.table.name() + " Where " + where + " Group By " + keys + ") groups");
  if (!cursor->next()) return found;
  for (std::size_t i = 0; i < hidden.size(); ++i) {
    const auto* flag = std::get_if<std::int64_t>(&cursor->value(i));
    if (flag != nullptr && *flag == 1) found.push_back(hidden[i]);
  }
  return found;
}

struct ShownColumns {
  std::vector<ReportColumn> columns;
  std::size_t leftOut = 0;
};

// Puts the columns `names` of `known` in front.
void lead(std::vector<ReportColumn>& columns, std::span<const std::string> names, std::span<const ReportColumn> known) {
  std::vector<ReportColumn> all;
  for (const std::string& name : names)
    all.push_back(*std::ranges::find(known, name, &ReportColumn::name));
  for (ReportColumn& column : columns) {
    if (std::ranges::find(names, column.name) == names.end()) all.push_back(std::move(column));
  }
  columns = std::move(all);
}

// The names of those of the report's keys that are shown, in their order.
std::vector<std::string> shownKeys(const LayoutRequest& request, std::span<const ReportColumn> shown) {
  std::vector<std::string> keys;
  for (const std::string_view key : request.report.lineKeys) {
    const auto column = std::ranges::find_if(shown, [key](const ReportColumn& each) { return isNamed(each, key); });
    if (column != shown.end()) keys.push_back(column->name);
  }
  return keys;
}

ShownColumns shownColumns(const LayoutRequest& request, const std::string& where) {
  const Arrangement& arrangement = request.arrangement;
  ShownColumns shown;
  if (arrangement.columns.empty()) {
    shown.columns = request.table.filledColumns(request.report.columns, where);
    // Where no row is chosen, the columns are those of all rows.
    if (shown.columns.empty()) shown.columns = request.table.filledColumns(request.report.columns);
    if (request.report.notInLines != nullptr) {
      const auto figures = request.report.notInLines(request.mode);
      std::erase_if(shown.columns, [figures](const ReportColumn& column) { return isAmong(figures, column); });
    }
    if (!request.allColumns) {
      std::vector<ReportColumn> hidden;
      std::ranges::copy_if(shown.columns, std::back_inserter(hidden), shownWhenAsked);
      std::erase_if(shown.columns, shownWhenAsked);
      shown.leftOut = hidden.size();
      if (request.mode == expenseMode) {
        const auto needed = tellingApart(request, shown.columns, hidden, where);
        shown.leftOut -= needed.size();
        const auto firstNumber = std::ranges::find_if(shown.columns, isNumber, &ReportColumn::role);
        shown.columns.insert(firstNumber, needed.begin(), needed.end());
      }
    }
  } else {
    lead(shown.columns, arrangement.columns, request.report.columns);
  }
  if (arrangement.columns.empty()) lead(shown.columns, shownKeys(request, shown.columns), request.report.columns);
  lead(shown.columns, arrangement.groupBy, request.report.columns);
  return shown;
}

std::string orderOf(const LayoutRequest& request, std::span<const ReportColumn> shown,
                    std::span<const tsql::Column> present) {
  std::string order;
  std::vector<std::string> named;
  const auto orderBy = [&](std::string_view name, bool descending) {
    const bool there = std::ranges::any_of(present, [name](const auto& c) { return equalIgnoringCase(c.name, name); });
    if (!there || std::ranges::any_of(named, [name](const auto& other) { return equalIgnoringCase(other, name); }))
      return;
    named.emplace_back(name);
    append(order, std::string(name) + (descending ? " Desc" : ""));
  };
  const auto descends = [&request](const std::string& name) {
    const auto key = std::ranges::find(request.arrangement.sort, name, &SortKey::column);
    return key != request.arrangement.sort.end() && key->descending;
  };
  for (const std::string& name : request.arrangement.groupBy)
    orderBy(name, descends(name));
  for (const SortKey& key : request.arrangement.sort)
    orderBy(key.column, key.descending);
  for (const std::string_view name : request.report.lineOrder)
    orderBy(name, false);
  // Rows that are alike so far differ in what is shown, or it does not matter which comes first.
  for (const ReportColumn& column : shown)
    orderBy(column.name, false);
  return order;
}

// Rows as a cursor gives them, all of them lines.
class CursorRows final : public ViewRows {
 public:
  // With `ledgerLines`, a further column behind the cells says which ledger line a row is of.
  CursorRows(std::unique_ptr<tsql::Cursor> cursor, std::size_t columns, bool ledgerLines)
      : cursor_(std::move(cursor)), ledgerLines_(ledgerLines) {
    row_.cells.resize(columns);
  }

  bool next() override {
    if (!cursor_->next()) return false;
    for (std::size_t i = 0; i < row_.cells.size(); ++i)
      row_.cells[i] = cursor_->value(i);
    if (ledgerLines_) row_.ledgerLine = ledgerLineOf(cursor_->value(row_.cells.size()));
    return true;
  }
  const ViewRow& row() const override { return row_; }

 private:
  std::unique_ptr<tsql::Cursor> cursor_;
  bool ledgerLines_;
  ViewRow row_;
};

// The row `sums` of the columns `summed`, with the word for it in the first column that can hold one.
ViewRow totalRow(std::span<const ViewColumn> columns, std::span<const std::size_t> summed,
                 std::span<const tsql::Value> sums, const std::string& label) {
  ViewRow row{.kind = RowKind::total, .level = 0, .cells = std::vector<tsql::Value>(columns.size())};
  for (std::size_t i = 0; i < summed.size(); ++i)
    row.cells[summed[i]] = sums[i];
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (isNumber(columns[i].column.role)) continue;
    row.cells[i] = label;
    break;
  }
  return row;
}

// Gives `view` its totals and, from the same reading, how many lines there are.
void addTotals(const LayoutRequest& request, View& view, const std::string& where) {
  const bool byState = rowsAreStates(request);
  std::vector<std::size_t> summed;
  std::string list;
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    const ReportColumn& column = view.columns[i].column;
    const bool ofState = column.role == ColumnRole::movement || column.role == ColumnRole::amount;
    if (!isSummed(column.role) && !(byState && ofState)) continue;
    summed.push_back(i);
    append(list, "Sum(IsNull(" + column.name + ", 0))");
  }
  if (summed.empty()) {
    view.lineCount = request.table.rowCount(where);
    return;
  }
  append(list, "Count(*)");
  if (byState) append(list, std::string(stateColumnName));
  const std::string states =
      byState ? std::string(stateNumberName).append(", ").append(stateColumnName) : std::string();
  const std::string word(totalCaption.in(request.language));
  const std::string between = request.language == Language::chinese ? "" : " ";
  for (const std::vector<tsql::Value>& sums : request.table.sums(list, where, states)) {
    view.lineCount += std::get<std::int64_t>(sums[summed.size()]);
    std::string caption = byState ? tsql::toText(sums.back()).value_or("") : "";
    if (!caption.empty()) caption += between;
    view.totals.push_back(totalRow(view.columns, summed, sums, caption.append(word)));
  }
}

}  // namespace

View linesView(const LayoutRequest& request) {
  const std::vector<tsql::Column> present = request.table.columns();
  const std::string where = conditionText(request.arrangement.where, present);
  const ShownColumns shown = shownColumns(request, where);

  View view;
  view.columnsLeftOut = shown.leftOut;
  std::string list;
  std::optional<std::size_t> stateColumn;
  for (const ReportColumn& column : shown.columns) {
    if (rowsAreStates(request) && isNamed(column, stateColumnName)) stateColumn = view.columns.size();
    const bool key =
        view.columns.size() < request.arrangement.groupBy.size() || isAmong(request.report.lineKeys, column);
    view.columns.push_back({.column = column, .key = key});
    append(list, column.name);
  }
  addTotals(request, view, where);
  const bool ledgerLines = request.ledgerLines && !request.report.ledgerLine.empty();
  if (ledgerLines) list.append(", ").append(request.report.ledgerLine).append(" As ledgerLine");
  view.tableRows = TableRows{.table = request.table.name(),
                             .list = list,
                             .where = where,
                             .order = orderOf(request, shown.columns, present),
                             .ledgerLines = ledgerLines};
  const std::string statement =
      "Select " + list + " From " + request.table.name() + " Where " + where + " Order By " + view.tableRows->order;
  view.rows = [table = request.table, statement, columns = view.columns.size(),
               ledgerLines]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<CursorRows>(table.query(statement), columns, ledgerLines);
  };
  const std::size_t levels = request.arrangement.groupBy.size();
  return levels == 0 ? view : grouped(std::move(view), levels, stateColumn, request.language);
}

}  // namespace quillon::workbench
