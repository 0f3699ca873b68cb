// A report's result table as a pivot: sums by what stands down and across, with subtotals and grand totals on both axes. One
// grouped statement of the account makes the sums; totals are sums of these. All numbers are exact.
//
// A unit cost is amount by quantity, of a total as of a cell, with the decimals asked for, and nothing where the quantity is
// zero. A share has four decimals, so two in per cent. Both are rounded half away from zero.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/pivot_axis.h"
#include "workbench/presentation/pivot_request.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// More columns of figures than these are refused: a year by days has room.
inline constexpr std::size_t mostPivotColumns = 400;
inline constexpr int shareDecimals = 4;

enum class PivotForm {
  joined,  // for people: code and name in one column, words for totals
  apart,   // for programs: code and name in a column each; the kind of a row says what it is
};

struct PivotOptions {
  PivotForm form = PivotForm::joined;
  int unitCostDecimals = 4;
};

// A row before it is laid out.
struct PivotRow {
  RowKind kind = RowKind::line;
  std::vector<PivotKey> path;        // a value for each dimension down; fewer of a subtotal, none of the total
  std::vector<tsql::Value> figures;  // one a figure, over all that stands across
};

class Pivot {
 public:
  // Reads the whole result. Of the request's arrangement its conditions count. Throws UserError for a name that the report
  // does not have, and when there would be more than mostPivotColumns; tsql::SqlError when the account refuses the statement.
  Pivot(const LayoutRequest& request, const PivotArrangement& asked, const PivotOptions& options = {});

  // Lines, a subtotal behind the lines of each outer value, and the total; the columns likewise. Nothing of the request or
  // of the account is used after that. Figures of several states are not added up: where a figure is of each row's own
  // state, totals over states are missing.
  View view() const;

  // How many rows the view has, its totals included.
  std::size_t rowCount() const;
  // One of them, counted from 0; throws std::out_of_range.
  PivotRow row(std::size_t number) const;
  // What was asked for, as the report understands it.
  const PivotPlan& plan() const;
  // The rows of the result table behind the figure in a row (totals follow the lines) and a column of the view, a column of
  // names standing for the whole row: these conditions together with those of the request, all of which are given.
  // Of a share, those that its figure sums. Both counted from 0; throws std::out_of_range.
  std::vector<RowCondition> where(std::size_t row, std::size_t column) const;

  // What stands down, across and in the cells, for the heading of a report.
  std::vector<std::pair<std::string, std::string>> heading() const;

 private:
  class Table;
  std::shared_ptr<const Table> table_;
};

// What a pivot of the request's report can be asked for.
struct PivotChoices {
  std::vector<ReportDimension> dimensions;  // whose columns the result table has
  std::vector<PivotMeasure> measures;
};
// Reads the classes of cost items. Throws tsql::SqlError.
PivotChoices pivotChoices(const LayoutRequest& request);

}  // namespace quillon::workbench
