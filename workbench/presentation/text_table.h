// An aligned table for a terminal, written row by row.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "workbench/platform/language.h"

namespace quillon::workbench {

enum class Align { left, right };

// A column of texts stands left, a column of numbers right: numbers are never cut.
struct TableColumn {
  std::string heading;
  Align align = Align::left;
  // What neighbouring columns have in common ("Receipts" above quantity, price and amount): it stands once, in the middle
  // above their headings. Empty for none.
  std::string group = {};
};

enum class Emphasis { none, strong, faint };

// What the place that a table is written to can show. Without any of it a table is as wide as it needs to be.
struct TableStyle {
  std::optional<std::size_t> width = std::nullopt;  // cells in a line
  bool emphasis = false;                            // bold and dim
  Language language = Language::english;            // of what the table says itself
};

// A table that is wider than its place gets narrower, the longest texts and headings first: they end in "…". No column of
// texts gets narrower than `leastText`, so that a date stays whole, and the first one, which says what a row is, no
// narrower than `leastKey`, so that a document's number does. Where that is not enough, columns of texts are left out,
// the last one first, but never the first one, which only then gets as narrow as the others; a line below the table names
// them. Numbers that do not fit even so run over the edge; texts then keep half of the place.
class TextTable {
 public:
  // Columns are as wide as the heading and the first `sampledRows` rows need; a later cell that is wider pushes its own
  // row only, and a text is cut where that would push it over the edge. So memory does not grow with the rows.
  static constexpr std::size_t sampledRows = 1000;
  static constexpr std::size_t leastText = 10;
  static constexpr std::size_t leastKey = 20;

  TextTable(std::ostream& out, std::vector<TableColumn> columns, const TableStyle& style = {});

  // One cell a column.
  void row(std::vector<std::string> cells, Emphasis emphasis = Emphasis::none);
  // A rule across the table.
  void rule();
  // Writes what is still held back, and which columns were left out. Call it once, last.
  void finish();

 private:
  struct Column {
    TableColumn shown;
    std::size_t width;          // of the heading and the cells
    std::size_t cellWidth = 0;  // of the cells alone
    std::size_t leastText = TextTable::leastText;
    bool leftOut = false;
  };
  struct Row {
    std::vector<std::string> cells;  // none stands for a rule
    Emphasis emphasis = Emphasis::none;
  };

  static std::size_t least(const Column& column);
  // The cells that a line of the columns shown takes, each as wide as `widthOf` says.
  template <typename WidthOf>
  std::size_t lineWidth(WidthOf widthOf) const;
  std::size_t width() const;
  // How many cells `first` and the columns of its group take together; `last` is set behind them.
  std::size_t groupWidth(std::size_t first, std::size_t& last) const;

  void flush();
  void widenGroups();
  std::size_t room() const;
  void fit();
  bool leaveOneOut();
  void writeGroups();
  void writeRule();
  void write(const std::vector<std::string>& cells, Emphasis emphasis);
  void writeLine(const std::vector<std::string>& pieces, Emphasis emphasis);

  std::ostream& out_;
  TableStyle style_;
  std::vector<Column> columns_;
  std::vector<Row> held_;
  bool started_ = false;
  bool narrowed_ = false;
};

}  // namespace quillon::workbench
