// The layout `lines`: the rows of a result table, chosen, ordered and grouped by the database, read one by one.
#pragma once

#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// Shown are the columns that hold something in the chosen rows. Left out, unless the reader names them or asks for all, are
// figures of a whole ledger line where a row is one state of it, user-defined fields and what documents carry beside; but
// where rows by expense item look alike without a field, they show it. Rows come in the report's order of lines. Totals are
// of all chosen rows; where a row has a state there is one a state, since quantities of different states do not add up.
// Throws UserError for a condition that does not fit its column, tsql::SqlError when the account refuses a statement.
View linesView(const LayoutRequest& request);

}  // namespace quillon::workbench
