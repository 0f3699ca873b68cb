// Two results of one report side by side: what stands down in a pivot of each is matched by its keys, and every figure is
// shown of the one, of the other, as their difference and in per cent, for lines, subtotals and totals alike. All numbers
// are exact.
//
// What only one of them has is there, too: its quantities and amounts count as zero in the other, a unit cost that is not
// there has no difference. The percentage is the difference by the size of the other's figure, with two decimals, rounded half
// away from zero; there is none where that is zero.
//
// Months are matched by their number where each result is of one year and these differ, so that a year can be held against
// the one before.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "workbench/presentation/arrangement.h"
#include "workbench/presentation/pivot.h"
#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// What a reader calls the two.
struct ComparedNames {
  std::string one;
  std::string other;
};

using TextPairs = std::vector<std::pair<std::string, std::string>>;

// By the conditions in which they differ, each a caption and a text: "Year 2024" and "Year 2023"; both empty where they are
// the same.
ComparedNames namesByConditions(const TextPairs& one, const TextPairs& other, Language language);

class Comparison {
 public:
  // Both pivots are of one report, asked for the same; nothing stands across, and figures are no shares. `sort`: by a
  // column of the view ("difference/amount"), as it is in lines and subtotals, or by a dimension. Throws UserError for
  // another name.
  Comparison(Pivot one, Pivot other, const ComparedNames& names, std::span<const SortKey> sort, Language language,
             PivotForm form = PivotForm::joined);

  // Columns of names, then of each figure one/NAME, other/NAME, difference/NAME and percent/NAME.
  View view() const;

  // What the two are called in it.
  const ComparedNames& names() const;
  // What stands down and in the cells, for the heading of a report.
  std::vector<std::pair<std::string, std::string>> heading() const;

  std::size_t rowCount() const;
  // The rows behind the one's or the other's figure in a row (totals follow the lines) and a column of the view, as
  // Pivot::where() says it; nothing for what is neither's, or has no rows there. Throws std::out_of_range.
  struct Source {
    bool ofOther = false;
    std::vector<RowCondition> where;
  };
  std::optional<Source> where(std::size_t row, std::size_t column) const;

 private:
  class Table;
  std::shared_ptr<const Table> table_;
};

// Throws UserError when pivots of this arrangement cannot be compared.
void checkComparison(const PivotArrangement& asked);

}  // namespace quillon::workbench
