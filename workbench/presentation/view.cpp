#include "workbench/presentation/view.h"

#include <algorithm>
#include <utility>

namespace quillon::workbench {

namespace {

class HeldRows final : public ViewRows {
 public:
  explicit HeldRows(std::shared_ptr<const std::vector<ViewRow>> rows) : rows_(std::move(rows)) {}

  bool next() override { return ++position_ <= rows_->size(); }
  const ViewRow& row() const override { return (*rows_)[position_ - 1]; }

 private:
  std::shared_ptr<const std::vector<ViewRow>> rows_;
  std::size_t position_ = 0;
};

bool holdsSomething(const ViewColumn& column, const tsql::Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return !text->empty();
  if (!isNumber(column.column.role)) return !tsql::isNull(value);
  if (const auto* exact = std::get_if<tsql::Exact>(&value)) return exact->units != 0;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer != 0;
  return !tsql::isNull(value);
}

void markFilled(std::vector<bool>& filled, const View& view, const ViewRow& row) {
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    if (!filled[i] && holdsSomething(view.columns[i], row.cells[i])) filled[i] = true;
  }
}

template <typename Items>
Items keptOf(const Items& items, const std::vector<bool>& kept) {
  Items result;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (kept[i]) result.push_back(items[i]);
  }
  return result;
}

// The rows of another view with some of their cells.
class KeptCells final : public ViewRows {
 public:
  KeptCells(std::unique_ptr<ViewRows> rows, std::vector<bool> kept) : rows_(std::move(rows)), kept_(std::move(kept)) {}

  bool next() override {
    if (!rows_->next()) return false;
    row_ = rows_->row();
    row_.cells = keptOf(row_.cells, kept_);
    return true;
  }
  const ViewRow& row() const override { return row_; }

 private:
  std::unique_ptr<ViewRows> rows_;
  std::vector<bool> kept_;
  ViewRow row_;
};

View keeping(View view, const std::vector<bool>& kept) {
  if (std::ranges::find(kept, false) == kept.end()) return view;
  view.columns = keptOf(view.columns, kept);
  view.tableRows.reset();
  for (ViewRow& row : view.totals)
    row.cells = keptOf(row.cells, kept);
  view.rows = [rows = std::move(view.rows), kept]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<KeptCells>(rows(), kept);
  };
  return view;
}

}  // namespace

std::string_view rowKindName(RowKind kind) {
  switch (kind) {
    case RowKind::line:
      return "line";
    case RowKind::detail:
      return "detail";
    case RowKind::group:
      return "group";
    case RowKind::subtotal:
      return "subtotal";
    case RowKind::opening:
      return "opening";
    case RowKind::monthTotal:
      return "monthTotal";
    case RowKind::yearTotal:
      return "yearTotal";
    case RowKind::closing:
      return "closing";
    case RowKind::difference:
      return "difference";
    case RowKind::total:
      break;
  }
  return "total";
}

std::optional<std::int64_t> ledgerLineOf(const tsql::Value& value) {
  const auto* number = std::get_if<std::int64_t>(&value);
  return number == nullptr ? std::nullopt : std::optional(*number);
}

std::function<std::unique_ptr<ViewRows>()> heldRows(std::shared_ptr<const std::vector<ViewRow>> rows) {
  return [rows = std::move(rows)]() -> std::unique_ptr<ViewRows> { return std::make_unique<HeldRows>(rows); };
}

View limited(const View& view, std::int64_t limit) {
  auto rows = std::make_shared<std::vector<ViewRow>>();
  std::vector<bool> filled(view.columns.size());
  const auto source = view.rows();
  for (std::int64_t lines = 0; source->next();) {
    const ViewRow& row = source->row();
    if (row.kind == RowKind::line && lines++ == limit) break;
    if (lines == limit && row.kind == RowKind::group) break;
    rows->push_back(row);
    markFilled(filled, view, row);
  }
  for (const ViewRow& row : view.totals)
    markFilled(filled, view, row);
  for (std::size_t i = 0; i < filled.size(); ++i) {
    if (view.columns[i].key) filled[i] = true;
  }
  View shown = view;
  shown.rows = heldRows(std::move(rows));
  shown.tableRows.reset();
  return keeping(std::move(shown), filled);
}

std::int64_t linesWithin(const View& view, std::int64_t rows) {
  std::int64_t lines = 0, complete = 0, read = 0;
  const auto source = view.rows();
  while (read <= rows || lines == 0) {
    if (!source->next()) return lines;
    const RowKind kind = source->row().kind;
    if (isSetOff(kind) && kind != RowKind::group) continue;
    ++read;
    if (kind == RowKind::detail) continue;
    complete = lines;  // the line before has all that belongs to it
    if (kind == RowKind::line) ++lines;
  }
  return std::max(complete, std::min<std::int64_t>(lines, 1));
}

View withoutEmptyColumns(View view) {
  std::vector<bool> filled(view.columns.size());
  for (const auto source = view.rows(); source->next();)
    markFilled(filled, view, source->row());
  for (const ViewRow& row : view.totals)
    markFilled(filled, view, row);
  return keeping(std::move(view), filled);
}

}  // namespace quillon::workbench
