// The layout `tree`: the sums of the states, nested by cost-item class, cost item, place and inventory.
#pragma once

#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// Each node is a row with its sums and its nodes below it: a row of kind `group`, the innermost ones of kind `line`. The classes
// stand above the cost items as the account nests them. A grouping by columns takes the place of these levels, a sort orders the
// nodes below each other. A level that no row fills is left out. Throws as linesView().
View treeView(const LayoutRequest& request);

}  // namespace quillon::workbench
