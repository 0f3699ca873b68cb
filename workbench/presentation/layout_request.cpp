#include "workbench/presentation/layout_request.h"

#include <algorithm>

#include "frame/text.h"

namespace quillon::workbench {

std::vector<ReportColumn> columnsPresent(const LayoutRequest& request) {
  const std::vector<tsql::Column> present = request.table.columns();
  std::vector<ReportColumn> columns;
  for (const ReportColumn& column : request.report.columns) {
    const auto isIt = [&column](const tsql::Column& each) { return equalIgnoringCase(each.name, column.name); };
    if (std::ranges::any_of(present, isIt)) columns.push_back(column);
  }
  return columns;
}

}  // namespace quillon::workbench
