// The layout `summary`, the cross view: sums by cost item, or class, with the states across.
#pragma once

#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// A line a cost item; grouped by other columns, a line for each of their values and cost item, with subtotals. `request.report`
// has a cross view. Throws as linesView().
View summaryView(const LayoutRequest& request);

}  // namespace quillon::workbench
