#include "workbench/presentation/arranged_view.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "frame/text.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

std::optional<std::size_t> positionOf(const View& view, std::string_view name) {
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    if (equalIgnoringCase(view.columns[i].column.name, name)) return i;
  }
  return {};
}

// A line with the details beneath it.
struct Line {
  ViewRow row;
  std::vector<ViewRow> details;
};

// What an arranged view is made of.
struct Parts {
  std::vector<ViewRow> before;  // up to the first line
  std::vector<Line> lines;
};

Parts partsOf(const View& view) {
  Parts parts;
  for (const auto rows = view.rows(); rows->next();) {
    const ViewRow& row = rows->row();
    if (row.kind == RowKind::opening && parts.lines.empty()) parts.before.push_back(row);
    if (row.kind == RowKind::line) parts.lines.push_back({row, {}});
    if (row.kind == RowKind::detail && !parts.lines.empty()) parts.lines.back().details.push_back(row);
  }
  return parts;
}

bool meetsAll(const View& view, const ViewRow& row, std::span<const RowCondition> where) {
  return std::ranges::all_of(where, [&](const RowCondition& condition) {
    const auto column = positionOf(view, condition.column);
    return column && meets(row.cells[*column], condition, view.columns[*column].column.role);
  });
}

// Keeps what stands between the lines, since their order stays.
View filtered(View view, std::span<const RowCondition> where) {
  auto rows = std::make_shared<std::vector<ViewRow>>();
  view.lineCount = 0;
  bool chosen = true;
  for (const auto source = view.rows(); source->next();) {
    const ViewRow& row = source->row();
    if (row.kind == RowKind::line) {
      chosen = meetsAll(view, row, where);
      if (chosen) ++view.lineCount;
    }
    if (isSetOff(row.kind) || chosen) rows->push_back(row);
  }
  view.rows = heldRows(std::move(rows));
  view.tableRows.reset();
  return view;
}

View sorted(View view, std::span<const SortKey> keys) {
  std::vector<std::pair<std::size_t, bool>> columns;
  for (const SortKey& key : keys) {
    if (const auto position = positionOf(view, key.column)) columns.emplace_back(*position, key.descending);
  }
  Parts parts = partsOf(view);
  std::ranges::stable_sort(parts.lines, [&columns](const Line& one, const Line& other) {
    for (const auto& [column, descending] : columns) {
      const int order = compareValues(one.row.cells[column], other.row.cells[column]);
      if (order != 0) return descending ? order > 0 : order < 0;
    }
    return false;
  });
  auto rows = std::make_shared<std::vector<ViewRow>>(std::move(parts.before));
  for (Line& line : parts.lines) {
    rows->push_back(std::move(line.row));
    std::ranges::move(line.details, std::back_inserter(*rows));
  }
  view.rows = heldRows(std::move(rows));
  view.tableRows.reset();
  return view;
}

// The columns of `view` with those called `names` in front.
View withLeadingColumns(View view, std::span<const std::string> names) {
  std::vector<std::string> order(names.begin(), names.end());
  for (const ViewColumn& column : view.columns) {
    if (std::ranges::find(names, column.column.name) == names.end()) order.push_back(column.column.name);
  }
  return withColumns(std::move(view), order);
}

class CellsAt final : public ViewRows {
 public:
  CellsAt(std::unique_ptr<ViewRows> rows, std::vector<std::size_t> positions)
      : rows_(std::move(rows)), positions_(std::move(positions)) {}

  bool next() override {
    if (!rows_->next()) return false;
    const ViewRow& whole = rows_->row();
    row_ = {.kind = whole.kind, .level = whole.level, .cells = {}, .ledgerLine = whole.ledgerLine};
    for (const std::size_t position : positions_)
      row_.cells.push_back(whole.cells[position]);
    return true;
  }
  const ViewRow& row() const override { return row_; }

 private:
  std::unique_ptr<ViewRows> rows_;
  std::vector<std::size_t> positions_;
  ViewRow row_;
};

// Sums of the summed columns, one set for each state.
class StateSums {
 public:
  void add(const ViewRow& row, std::span<const std::size_t> summed, std::optional<std::size_t> stateColumn) {
    const tsql::Value state = stateColumn ? row.cells[*stateColumn] : tsql::Value();
    auto entry = std::ranges::find(entries_, state, &Entry::state);
    if (entry == entries_.end()) entry = entries_.insert(entry, {state, std::vector<ExactSum>(summed.size())});
    for (std::size_t i = 0; i < summed.size(); ++i)
      entry->sums[i].add(row.cells[summed[i]]);
  }

  struct Entry {
    tsql::Value state;
    std::vector<ExactSum> sums;
  };
  const std::vector<Entry>& entries() const { return entries_; }

 private:
  std::vector<Entry> entries_;
};

class GroupedRows final : public ViewRows {
 public:
  GroupedRows(const View& view, std::unique_ptr<ViewRows> rows, std::size_t levels,
              std::optional<std::size_t> stateColumn, Language language)
      : columns_(view.columns),
        rows_(std::move(rows)),
        levels_(levels),
        stateColumn_(stateColumn),
        language_(language) {
    for (std::size_t i = levels; i < columns_.size(); ++i) {
      const ColumnRole role = columns_[i].column.role;
      if (isSummed(role) || (stateColumn && (role == ColumnRole::movement || role == ColumnRole::amount)))
        summed_.push_back(i);
    }
    sums_.resize(levels);
  }

  bool next() override {
    if (waiting_.empty()) read();
    if (waiting_.empty()) return false;
    row_ = std::move(waiting_.front());
    waiting_.erase(waiting_.begin());
    return true;
  }
  const ViewRow& row() const override { return row_; }

 private:
  void read() {
    if (ended_) return;
    if (!rows_->next()) {
      ended_ = true;
      close(0);
      return;
    }
    const ViewRow& row = rows_->row();
    if (row.kind == RowKind::line) {
      close(firstChange(row));
      key_.assign(row.cells.begin(), row.cells.begin() + static_cast<std::ptrdiff_t>(levels_));
      for (StateSums& sums : sums_)
        sums.add(row, summed_, stateColumn_);
    }
    waiting_.push_back(row);
  }

  std::size_t firstChange(const ViewRow& row) const {
    if (key_.empty()) return levels_;
    for (std::size_t level = 0; level < levels_; ++level) {
      if (compareValues(key_[level], row.cells[level]) != 0) return level;
    }
    return levels_;
  }

  // Puts the subtotals of the groups from `level` inwards behind, the innermost first.
  void close(std::size_t level) {
    if (key_.empty()) return;
    for (std::size_t inner = levels_; inner-- > level;) {
      for (const StateSums::Entry& entry : sums_[inner].entries()) {
        ViewRow row{.kind = RowKind::subtotal,
                    .level = static_cast<int>(inner),
                    .cells = std::vector<tsql::Value>(columns_.size())};
        std::copy_n(key_.begin(), inner, row.cells.begin());
        row.cells[inner] = subtotalLabel(inner);
        if (stateColumn_) row.cells[*stateColumn_] = entry.state;
        for (std::size_t i = 0; i < summed_.size(); ++i)
          row.cells[summed_[i]] = entry.sums[i].value();
        waiting_.push_back(std::move(row));
      }
      sums_[inner] = {};
    }
  }

  std::string subtotalLabel(std::size_t level) const {
    std::string name = plainText(key_[level], "");
    if (name.empty()) name = columns_[level].caption(language_) + (language_ == Language::chinese ? "为空" : " empty");
    return name + std::string(Caption{" 小计", " subtotal"}.in(language_));
  }

  std::vector<ViewColumn> columns_;
  std::unique_ptr<ViewRows> rows_;
  std::size_t levels_;
  std::optional<std::size_t> stateColumn_;
  Language language_;
  std::vector<std::size_t> summed_;
  std::vector<StateSums> sums_;   // one a level
  std::vector<tsql::Value> key_;  // of the line before; empty before the first
  std::vector<ViewRow> waiting_;
  ViewRow row_;
  bool ended_ = false;
};

}  // namespace

View withColumns(View view, std::span<const std::string> names) {
  std::vector<std::size_t> positions;
  for (const std::string& name : names) {
    if (const auto position = positionOf(view, name)) positions.push_back(*position);
  }
  const auto chosen = [&positions](const auto& items) {
    std::decay_t<decltype(items)> result;
    for (const std::size_t position : positions)
      result.push_back(items[position]);
    return result;
  };
  view.columns = chosen(view.columns);
  view.tableRows.reset();
  for (ViewRow& row : view.totals)
    row.cells = chosen(row.cells);
  view.rows = [rows = std::move(view.rows), positions]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<CellsAt>(rows(), positions);
  };
  return view;
}

View grouped(View view, std::size_t levels, std::optional<std::size_t> stateColumn, Language language) {
  view.rows = [whole = view, levels, stateColumn, language]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<GroupedRows>(whole, whole.rows(), levels, stateColumn, language);
  };
  view.tableRows.reset();
  return view;
}

View arranged(View view, const Arrangement& arrangement, Language language) {
  if (!arrangement.where.empty()) view = filtered(std::move(view), arrangement.where);
  std::vector<SortKey> keys;
  for (const std::string& column : arrangement.groupBy)
    keys.push_back({column});
  keys.insert(keys.end(), arrangement.sort.begin(), arrangement.sort.end());
  if (!keys.empty()) view = sorted(std::move(view), keys);
  if (!arrangement.columns.empty()) {
    std::vector<std::string> names = arrangement.groupBy;
    for (const std::string& name : arrangement.columns) {
      if (std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    view = withColumns(std::move(view), names);
  } else if (!arrangement.groupBy.empty()) {
    view = withLeadingColumns(std::move(view), arrangement.groupBy);
  }
  if (!arrangement.groupBy.empty()) view = grouped(std::move(view), arrangement.groupBy.size(), {}, language);
  return view;
}

}  // namespace quillon::workbench
