// Views that tests make by hand.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "workbench/presentation/view.h"

namespace quillon::workbench::test {

inline ViewColumn viewColumn(const std::string& name, ColumnRole role, bool key = false,
                             const std::string& group = "") {
  return {.column = {.name = name, .chinese = name, .english = name, .role = role},
          .groupChinese = group,
          .groupEnglish = group,
          .key = key};
}

// 12.34 is amount(1234).
inline tsql::Value amount(long long hundredths) {
  return tsql::Exact{.units = hundredths, .scale = 2};
}

inline View viewOf(std::vector<ViewColumn> columns, std::vector<ViewRow> rows, std::vector<ViewRow> totals = {}) {
  View view;
  view.columns = std::move(columns);
  for (const ViewRow& row : rows)
    view.lineCount += row.kind == RowKind::line ? 1 : 0;
  view.rows = heldRows(std::make_shared<const std::vector<ViewRow>>(std::move(rows)));
  view.totals = std::move(totals);
  return view;
}

}  // namespace quillon::workbench::test
