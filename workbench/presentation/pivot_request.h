// What is asked of a pivot, and what its names mean for a report: dimensions down and across, and the figures that are shown
// for them.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report_dimensions.h"
#include "workbench/presentation/arrangement.h"

namespace quillon::workbench {

// As a reader names things: by name or by caption in either language.
struct PivotArrangement {
  std::vector<std::string> rows;     // dimensions down, the outermost first
  std::vector<std::string> columns;  // dimensions across; none: the figures alone stand across
  // Figures: quantity, amount, unit cost, of all states or of one ("receiptAmount", 收入金额). Behind a colon, which share
  // of it: row, column, total.
  std::vector<std::string> measures;
  std::vector<SortKey> sort = {};  // by a figure, as it is in the row's total; or by a dimension
};

// "ROWS/COLUMNS/MEASURES", each with commas, and texts of `--sort`. Throws UserError when it has not these three parts.
PivotArrangement parsePivot(std::string_view text, std::span<const std::string> sort = {});

enum class PivotFigure { quantity, amount, unitCost };

// Of what a figure is shown as a part: the total of its row, of its column, or of the whole.
enum class PivotShare { none, row, column, total };

struct PivotMeasure {
  std::string name;  // "amount", "receiptQuantity", "amount:row"
  std::string chinese;
  std::string english;
  PivotFigure figure = PivotFigure::amount;
  PivotShare share = PivotShare::none;
  std::optional<std::size_t> state = {};  // which of pivotStates(); nothing: each row's own

  const std::string& caption(Language language) const { return language == Language::chinese ? chinese : english; }
};

struct PivotSortKey {
  std::optional<std::size_t> dimension = {};  // counted over rows, then columns
  PivotMeasure measure = {};                  // where it is no dimension
  bool descending = false;
};

// The arrangement as a report understands it.
struct PivotPlan {
  std::vector<ReportDimension> rows;
  std::vector<ReportDimension> columns;
  std::vector<PivotMeasure> measures;
  std::vector<PivotSortKey> sort;
};

// The figures that a pivot of the report has in a report mode. `ownState`: the state is among its dimensions, and so each
// row's quantity and amount can be shown as well.
std::vector<PivotMeasure> measuresOf(const Report& report, std::string_view mode, bool ownState);

// What the names of `asked` mean. A figure without a state stands for that of each state, unless the state is a dimension.
// `classGrades`: how deep classes of cost items lie. Throws UserError that says what is unknown and what is nearest to it.
PivotPlan planPivot(const Report& report, std::string_view mode, int classGrades, const PivotArrangement& asked);

}  // namespace quillon::workbench
