// How the table of a view lies on a page: how wide its columns are and, where a sheet of paper is too narrow for it, into
// which blocks of columns it is split.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "workbench/presentation/report_document.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// What stands left and right of a cell's text, in hundredths of the font's size.
inline constexpr int cellSpace = 100;

// Widths are in hundredths of the font's size, without the space around a cell.
struct PagePlan {
  std::vector<int> screenWidths;  // one a column, each cell and its heading on one line
  std::vector<int> paperWidths;   // headings break between words, long texts into lines
  std::vector<bool> breaks;       // whether paper breaks the column's texts into lines
  std::vector<std::size_t> keys;  // the columns that stay in sight and begin each block
  // The columns of each block, its keys first. One block: the table fits on paper as it is, its columns in their order.
  std::vector<std::vector<std::size_t>> blocks;
  int paperFont = 0;  // tenths of a point

  bool split() const { return blocks.size() > 1; }
};

// Reads the rows of `view` once. The page is A4 landscape with margins of 10 mm.
PagePlan planPage(const ReportDocument& document, const View& view);

// `view` with the numbers of its lines as its first column and key: what stands beside each other in blocks is put together
// by them. The words of a row that is set off and has none under a key go there, too, so that each block has them.
View numberedLines(View view);

// How far the row's words stand in from the left, in steps.
int indentation(const ViewRow& row);

// A cell of a row that is set off. Words that are wider than their column go on over the empty key columns behind it.
struct SpannedCell {
  std::size_t column = 0;  // of the view
  std::size_t span = 1;    // that many of `columns`
  std::string text;
};
// The cells of `row` that stand under `columns`, of which the first `keys` are keys.
std::vector<SpannedCell> spannedCells(const ReportDocument& document, const View& view, const ViewRow& row,
                                      const std::vector<std::size_t>& columns, std::size_t keys);

}  // namespace quillon::workbench
