// Views as a reader wants them arranged.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "workbench/platform/language.h"
#include "workbench/presentation/arrangement.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// `view` arranged: `where` chooses among its lines, which keep their details, `sort` orders them, `groupBy` puts them under
// subtotals, `columns` chooses columns. It is held in memory for that. When the order of lines changes, what stands between
// them (groups, subtotals, month sums) goes; opening and totals stay where they are. Throws as meets().
View arranged(View view, const Arrangement& arrangement, Language language);

// The columns of `view` alone that are named, in that order; a name that it does not have is passed over.
View withColumns(View view, std::span<const std::string> names);

// `view`, whose lines come ordered by the first `levels` columns, with subtotals of its summed columns behind each group. Where
// `stateColumn` is a column, rows of different states are not added up: there is a subtotal for each.
View grouped(View view, std::size_t levels, std::optional<std::size_t> stateColumn, Language language);

}  // namespace quillon::workbench
