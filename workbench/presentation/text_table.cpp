#include "workbench/presentation/text_table.h"

#include <algorithm>

#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view gap = "  ";

}  // namespace

TextTable::TextTable(std::ostream& out, std::vector<TableColumn> columns) : out_(out), columns_(std::move(columns)) {
  for (TableColumn& column : columns_) {
    column.heading = oneLine(column.heading);
    widths_.push_back(cellWidth(column.heading));
  }
}

void TextTable::row(std::vector<std::string> cells) {
  std::ranges::transform(cells, cells.begin(), oneLine);
  if (started_) {
    write(cells);
    return;
  }
  for (std::size_t i = 0; i < cells.size(); ++i)
    widths_[i] = std::max(widths_[i], cellWidth(cells[i]));
  held_.push_back(std::move(cells));
  if (held_.size() == sampledRows) flush();
}

void TextTable::rule() {
  if (started_) {
    write({});
  } else {
    held_.emplace_back();
  }
}

void TextTable::finish() {
  flush();
}

void TextTable::flush() {
  if (started_) return;
  started_ = true;
  std::vector<std::string> headings;
  for (const TableColumn& column : columns_)
    headings.push_back(column.heading);
  write(headings);
  write({});
  for (const auto& cells : held_)
    write(cells);
  held_.clear();
}

void TextTable::write(const std::vector<std::string>& cells) {
  std::string line;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (i > 0) line += gap;
    if (cells.empty()) {
      line.append(widths_[i], '-');
      continue;
    }
    const std::size_t width = cellWidth(cells[i]);
    const std::size_t padding = width < widths_[i] ? widths_[i] - width : 0;
    if (columns_[i].align == Align::right) line.append(padding, ' ');
    line += cells[i];
    if (columns_[i].align == Align::left) line.append(padding, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out_ << line << '\n';
}

}  // namespace quillon::workbench
