#include "workbench/presentation/page_plan.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>

#include "workbench/presentation/html_text.h"

namespace quillon::workbench {

namespace {

constexpr int indentStep = 130;
// Bold letters are wider.
constexpr int boldPercent = 108;
// Longer texts break into lines on paper.
constexpr int longText = 1500;
// 297 mm less two margins of 10 mm are 785 points; some are kept for rules and roundings.
constexpr int paperWidth = 775;
// What is tried until the table fits, and what it is split at when none does.
constexpr std::array<int, 6> paperFonts = {90, 85, 80, 75, 70, 65};
constexpr int splitFont = 75;

int longestWord(std::string_view text) {
  int longest = 0;
  while (!text.empty()) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    longest = std::max(longest, shownWidth(text.substr(0, blank)));
    text.remove_prefix(std::min(blank + 1, text.size()));
  }
  return longest;
}

bool isText(const ViewColumn& column) {
  return !isNumber(column.column.role);
}

// Takes the widths of a view's cells.
class WidthFinder {
 public:
  WidthFinder(const ReportDocument& document, const View& view, const std::vector<std::size_t>& keys)
      : document_(document), view_(view), keys_(keys), widths_(view.columns.size()) {}

  void take(const ViewRow& row) {
    const int indent = indentation(row) * indentStep;
    if (!isSetOff(row.kind)) {
      bool first = true;
      for (std::size_t i = 0; i < widths_.size(); ++i)
        takeCell(i, cellText(document_, view_.columns[i].column, row.cells[i]), 100, first ? indent : 0, first);
      return;
    }
    std::vector<std::size_t> all = keys_;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      if (std::ranges::find(keys_, i) == keys_.end()) all.push_back(i);
    }
    bool first = true;
    std::size_t position = 0;
    for (const SpannedCell& cell : spannedCells(document_, view_, row, all, keys_.size())) {
      if (cell.span == 1) {
        takeCell(cell.column, cell.text, boldPercent, first ? indent : 0, first);
      } else {
        first = false;
        takeWords(shownWidth(cell.text) * boldPercent / 100 + indent, all, position, cell.span);
      }
      position += cell.span;
    }
  }

  const std::vector<int>& widths() const { return widths_; }

 private:
  void takeCell(std::size_t column, const std::string& text, int percent, int indent, bool& first) {
    if (text.empty()) return;
    widths_[column] = std::max(widths_[column], shownWidth(text) * percent / 100 + indent);
    if (isText(view_.columns[column])) first = false;
  }

  // The last of the columns gets what the others leave.
  void takeWords(int width, const std::vector<std::size_t>& columns, std::size_t position, std::size_t span) {
    for (std::size_t i = position; i + 1 < position + span; ++i)
      width -= widths_[columns[i]] + cellSpace;
    int& last = widths_[columns[position + span - 1]];
    last = std::max(last, width);
  }

  const ReportDocument& document_;
  const View& view_;
  const std::vector<std::size_t>& keys_;
  std::vector<int> widths_;
};

std::vector<std::size_t> keysOf(const View& view) {
  std::vector<std::size_t> keys;
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    if (view.columns[i].key) keys.push_back(i);
  }
  if (keys.empty() && !view.columns.empty()) keys.push_back(0);
  return keys;
}

// The columns that are no keys; those that share a heading stay together where a block has room for them.
std::vector<std::vector<std::size_t>> piecesOf(const View& view, const std::vector<std::size_t>& keys,
                                               const std::vector<int>& widths, int room) {
  std::vector<std::vector<std::size_t>> runs;
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    if (std::ranges::find(keys, i) != keys.end()) continue;
    const std::string& group = view.columns[i].groupChinese;
    if (!runs.empty() && !group.empty() && view.columns[runs.back().back()].groupChinese == group) {
      runs.back().push_back(i);
    } else {
      runs.push_back({i});
    }
  }
  std::vector<std::vector<std::size_t>> pieces;
  for (const auto& run : runs) {
    const int width = std::accumulate(run.begin(), run.end(), 0,
                                      [&](int sum, std::size_t column) { return sum + widths[column] + cellSpace; });
    if (width <= room) {
      pieces.push_back(run);
    } else {
      for (const std::size_t column : run)
        pieces.push_back({column});
    }
  }
  return pieces;
}

void split(PagePlan& plan, const View& view) {
  const int page = paperWidth * 1000 / splitFont;
  // Keys that would take more than half of a page are not all repeated.
  int keyWidth = 0;
  std::size_t kept = 0;
  while (kept < plan.keys.size() && (kept == 0 || keyWidth + plan.paperWidths[plan.keys[kept]] + cellSpace <= page / 2))
    keyWidth += plan.paperWidths[plan.keys[kept++]] + cellSpace;
  plan.keys.resize(kept);
  const int room = page - keyWidth;
  plan.blocks.clear();
  int left = 0;
  for (const auto& piece : piecesOf(view, plan.keys, plan.paperWidths, room)) {
    const int width = std::accumulate(piece.begin(), piece.end(), 0, [&](int sum, std::size_t column) {
      return sum + plan.paperWidths[column] + cellSpace;
    });
    if (plan.blocks.empty() || width > left) {
      plan.blocks.push_back(plan.keys);
      left = room;
    }
    left -= width;
    plan.blocks.back().insert(plan.blocks.back().end(), piece.begin(), piece.end());
  }
}

constexpr Caption numberCaption{"序号", "No."};

// The cell that goes in front of a row: its number, or the words of a row that no key tells apart, which are taken from where
// they stand.
tsql::Value leadingCell(const std::vector<ViewColumn>& columns, ViewRow& row, std::int64_t& lines) {
  if (row.kind == RowKind::line) return ++lines;
  if (!isSetOff(row.kind)) return {};
  tsql::Value* words = nullptr;
  for (std::size_t i = 0; i < row.cells.size(); ++i) {
    if (!isText(columns[i]) || tsql::toText(row.cells[i]).value_or("").empty()) continue;
    if (columns[i].key) return {};
    if (words == nullptr) words = &row.cells[i];
  }
  return words == nullptr ? tsql::Value() : std::exchange(*words, tsql::Value());
}

void putInFront(const std::vector<ViewColumn>& columns, ViewRow& row, std::int64_t& lines) {
  tsql::Value leading = leadingCell(columns, row, lines);
  row.cells.insert(row.cells.begin(), std::move(leading));
}

class NumberedRows final : public ViewRows {
 public:
  NumberedRows(std::unique_ptr<ViewRows> rows, std::vector<ViewColumn> columns)
      : rows_(std::move(rows)), columns_(std::move(columns)) {}

  bool next() override {
    if (!rows_->next()) return false;
    row_ = rows_->row();
    putInFront(columns_, row_, lines_);
    return true;
  }
  const ViewRow& row() const override { return row_; }

 private:
  std::unique_ptr<ViewRows> rows_;
  std::vector<ViewColumn> columns_;
  std::int64_t lines_ = 0;
  ViewRow row_;
};

}  // namespace

View numberedLines(View view) {
  std::int64_t lines = 0;
  for (ViewRow& row : view.totals)
    putInFront(view.columns, row, lines);
  view.rows = [rows = std::move(view.rows), columns = view.columns]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<NumberedRows>(rows(), columns);
  };
  view.columns.insert(view.columns.begin(), {.column = {.name = "",
                                                        .chinese = std::string(numberCaption.chinese),
                                                        .english = std::string(numberCaption.english)},
                                             .key = true});
  return view;
}

int indentation(const ViewRow& row) {
  return row.level + (row.kind == RowKind::detail ? 1 : 0);
}

std::vector<SpannedCell> spannedCells(const ReportDocument& document, const View& view, const ViewRow& row,
                                      const std::vector<std::size_t>& columns, std::size_t keys) {
  std::vector<SpannedCell> cells;
  bool open = false;  // the cell before goes on over empty ones
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const ViewColumn& column = view.columns[columns[i]];
    std::string text = cellText(document, column.column, row.cells[columns[i]]);
    if (open && i < keys && text.empty()) {
      ++cells.back().span;
      continue;
    }
    open = isText(column) && !text.empty() && i < keys;
    cells.push_back({.column = columns[i], .text = std::move(text)});
  }
  return cells;
}

PagePlan planPage(const ReportDocument& document, const View& view) {
  PagePlan plan;
  plan.keys = keysOf(view);
  WidthFinder finder(document, view, plan.keys);
  {
    for (const auto rows = view.rows(); rows->next();)
      finder.take(rows->row());
  }
  for (const ViewRow& row : view.totals)
    finder.take(row);
  std::vector<std::size_t> all;
  int total = 0;
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    const ViewColumn& column = view.columns[i];
    const std::string& caption = column.caption(document.language);
    const int cells = finder.widths()[i];
    plan.screenWidths.push_back(std::max(cells, shownWidth(caption) * boldPercent / 100));
    plan.breaks.push_back(isText(column) && cells > longText);
    plan.paperWidths.push_back(std::max(plan.breaks[i] ? longText : cells, longestWord(caption) * boldPercent / 100));
    total += plan.paperWidths[i] + cellSpace;
    all.push_back(i);
  }
  const auto* const font =
      std::ranges::find_if(paperFonts, [total](int tenths) { return total * tenths <= paperWidth * 1000; });
  plan.paperFont = font == paperFonts.end() ? splitFont : *font;
  plan.blocks = {all};
  if (font == paperFonts.end()) split(plan, view);
  return plan;
}

}  // namespace quillon::workbench
