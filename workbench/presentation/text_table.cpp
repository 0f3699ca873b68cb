#include "workbench/presentation/text_table.h"

#include <algorithm>
#include <string_view>

#include "workbench/messages/common.h"
#include "workbench/messages/report.h"
#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view gap = "  ";
constexpr std::string_view cutMark = "…";
constexpr std::size_t leastHeading = 6;  // above numbers that need less

constexpr std::string_view bold = "\x1b[1m", dim = "\x1b[2m", plain = "\x1b[0m";

}  // namespace

TextTable::TextTable(std::ostream& out, std::vector<TableColumn> columns, const TableStyle& style)
    : out_(out), style_(style) {
  for (TableColumn& column : columns) {
    column.heading = oneLine(column.heading);
    column.group = oneLine(column.group);
    const std::size_t width = cellWidth(column.heading);
    columns_.push_back({.shown = std::move(column), .width = width});
  }
  const auto key = std::ranges::find(columns_, Align::left, [](const Column& column) { return column.shown.align; });
  if (key != columns_.end()) key->leastText = leastKey;
}

void TextTable::row(std::vector<std::string> cells, Emphasis emphasis) {
  std::ranges::transform(cells, cells.begin(), oneLine);
  if (started_) {
    write(cells, emphasis);
    return;
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    Column& column = columns_[i];
    column.cellWidth = std::max(column.cellWidth, cellWidth(cells[i]));
    column.width = std::max(column.width, column.cellWidth);
  }
  held_.push_back({std::move(cells), emphasis});
  if (held_.size() == sampledRows) flush();
}

void TextTable::rule() {
  if (started_) {
    writeRule();
  } else {
    held_.emplace_back();
  }
}

void TextTable::finish() {
  flush();
  std::string names;
  std::size_t count = 0;
  for (const Column& column : columns_) {
    if (!column.leftOut) continue;
    if (count++ > 0) names += messages::listSeparator.in(style_.language);
    if (!column.shown.group.empty()) names += column.shown.group + ' ';
    names += column.shown.heading;
  }
  if (count == 0) return;
  const Message line = count == 1 ? messages::columnLeftOut(names) : messages::columnsLeftOut(count, names);
  out_ << line.in(style_.language) << '\n';
}

// --- Widths -----------------------------------------------------------------------------------------------------------

std::size_t TextTable::least(const Column& column) {
  if (column.shown.align == Align::left) return std::min(column.width, column.leastText);
  return std::max(column.cellWidth, std::min(column.width, leastHeading));
}

template <typename WidthOf>
std::size_t TextTable::lineWidth(WidthOf widthOf) const {
  std::size_t width = 0, shown = 0;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].leftOut) continue;
    width += widthOf(i);
    ++shown;
  }
  return shown == 0 ? 0 : width + (shown - 1) * gap.size();
}

std::size_t TextTable::width() const {
  return lineWidth([this](std::size_t i) { return columns_[i].width; });
}

std::size_t TextTable::groupWidth(std::size_t first, std::size_t& last) const {
  std::size_t width = columns_[first].width;
  for (last = first + 1; last < columns_.size(); ++last) {
    if (columns_[last].leftOut) continue;
    if (columns_[first].shown.group.empty() || columns_[last].shown.group != columns_[first].shown.group) break;
    width += gap.size() + columns_[last].width;
  }
  return width;
}

// What a group's name needs beyond its columns, the last of them gets.
void TextTable::widenGroups() {
  for (std::size_t first = 0, behind = 0; first < columns_.size(); first = behind) {
    const std::size_t columns = groupWidth(first, behind);
    const std::size_t name = cellWidth(columns_[first].shown.group);
    if (name > columns) columns_[behind - 1].width += name - columns;
  }
}

bool TextTable::leaveOneOut() {
  const auto isText = [](const Column& column) { return !column.leftOut && column.shown.align == Align::left; };
  const auto first = std::ranges::find_if(columns_, isText);
  const auto last = std::find_if(columns_.rbegin(), columns_.rend(), isText);
  if (last == columns_.rend() || &*last == &*first) return false;
  last->leftOut = true;
  return true;
}

// The cells that the table is brought to, where its numbers allow it. Numbers that do not fit beside the first column of
// texts run over the edge whatever else is shown: then texts keep half of the place, so that rows can be told apart.
std::size_t TextTable::room() const {
  std::size_t numbers = 0;
  std::optional<std::size_t> firstText;
  for (const Column& column : columns_) {
    if (column.shown.align == Align::right) {
      numbers += gap.size() + least(column);
    } else if (!firstText) {
      firstText = std::min(least(column), leastText);
    }
  }
  const bool fits = firstText.value_or(0) + numbers <= *style_.width;
  return fits ? *style_.width : numbers + *style_.width / 2;
}

void TextTable::fit() {
  if (!style_.width || width() <= *style_.width) return;
  const std::size_t room = this->room();
  narrowed_ = true;
  const auto tooWide = [&] { return lineWidth([this](std::size_t i) { return least(columns_[i]); }) > room; };
  while (tooWide() && leaveOneOut()) {
  }
  if (tooWide()) {
    for (Column& column : columns_)
      column.leastText = leastText;
  }
  std::vector<std::size_t> wanted, leastOf;
  for (const Column& column : columns_) {
    wanted.push_back(column.width);
    leastOf.push_back(least(column));
  }
  for (std::size_t longest = std::ranges::max(wanted); width() > room && longest > 0; --longest) {
    for (std::size_t i = 0; i < columns_.size(); ++i)
      columns_[i].width = std::max(leastOf[i], std::min(wanted[i], longest));
  }
  // Several columns got narrower in the last step; some of them need not have.
  for (std::size_t i = 0; i < columns_.size() && width() < room; ++i) {
    if (!columns_[i].leftOut && columns_[i].width < wanted[i]) ++columns_[i].width;
  }
}

// --- Lines ------------------------------------------------------------------------------------------------------------

void TextTable::flush() {
  if (started_) return;
  started_ = true;
  widenGroups();
  fit();
  writeGroups();
  std::vector<std::string> headings;
  for (const Column& column : columns_)
    headings.push_back(column.leftOut ? "" : shortened(column.shown.heading, column.width, cutMark));
  write(headings, Emphasis::strong);
  writeRule();
  for (const Row& row : held_) {
    if (row.cells.empty()) {
      writeRule();
    } else {
      write(row.cells, row.emphasis);
    }
  }
  held_.clear();
}

void TextTable::writeGroups() {
  if (std::ranges::all_of(columns_, [](const Column& column) { return column.shown.group.empty(); })) return;
  std::vector<std::string> pieces;
  for (std::size_t first = 0, behind = 0; first < columns_.size(); first = behind) {
    if (columns_[first].leftOut) {
      behind = first + 1;
      continue;
    }
    const std::size_t width = groupWidth(first, behind);
    const std::string name = shortened(columns_[first].shown.group, width, cutMark);
    const std::size_t room = width - cellWidth(name);
    const std::size_t left = room / 2, right = room - left;
    // Dashes show how far the group reaches.
    constexpr std::size_t leastForDashes = 4;
    if (!name.empty() && room >= leastForDashes) {
      pieces.push_back(std::string(left - 1, '-') + ' ' + name + ' ' + std::string(right - 1, '-'));
    } else {
      pieces.push_back(std::string(left, ' ') + name + std::string(right, ' '));
    }
  }
  writeLine(pieces, Emphasis::strong);
}

void TextTable::writeRule() {
  std::vector<std::string> pieces;
  for (const Column& column : columns_) {
    if (!column.leftOut) pieces.emplace_back(column.width, '-');
  }
  writeLine(pieces, Emphasis::faint);
}

void TextTable::write(const std::vector<std::string>& cells, Emphasis emphasis) {
  const auto wanted = [&](std::size_t i) { return std::max(columns_[i].width, cellWidth(cells[i])); };
  const bool cut = narrowed_ || (style_.width && lineWidth(wanted) > *style_.width);
  std::vector<std::string> pieces;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    if (column.leftOut) continue;
    const bool text = column.shown.align == Align::left;
    std::string cell = cut && text ? shortened(cells[i], column.width, cutMark) : cells[i];
    const std::size_t width = cellWidth(cell);
    const std::size_t padding = width < column.width ? column.width - width : 0;
    cell.insert(text ? cell.size() : 0, padding, ' ');
    pieces.push_back(std::move(cell));
  }
  writeLine(pieces, emphasis);
}

void TextTable::writeLine(const std::vector<std::string>& pieces, Emphasis emphasis) {
  std::string line;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (i > 0) line += gap;
    line += pieces[i];
  }
  line.erase(line.find_last_not_of(' ') + 1);
  if (style_.emphasis && emphasis != Emphasis::none && !line.empty())
    line = std::string(emphasis == Emphasis::strong ? bold : dim).append(line).append(plain);
  out_ << line << '\n';
}

}  // namespace quillon::workbench
