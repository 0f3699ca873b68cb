#include "workbench/presentation/summary_layout.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "workbench/presentation/arranged_view.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/state_sums.h"

namespace quillon::workbench {

namespace {

ViewColumn keyColumn(const Caption& caption, const char* name) {
  return {.column = {.name = name, .chinese = std::string(caption.chinese), .english = std::string(caption.english)},
          .key = true};
}

bool isNothing(const tsql::Value& value) {
  return tsql::toText(value).value_or("").empty();
}

}  // namespace

View summaryView(const LayoutRequest& request) {
  const std::vector<CrossState> states = request.report.crossStates(request.mode);
  const std::string where = conditionText(request.arrangement.where, request.table.columns());
  View view;
  std::string keys;
  for (const std::string& name : request.arrangement.groupBy) {
    const auto column = std::ranges::find(request.report.columns, name, &ReportColumn::name);
    view.columns.push_back({.column = *column, .key = true});
    keys += name + ", ";
  }
  const std::size_t code = view.columns.size();
  keys += "cFXCode, cFXName";
  view.columns.push_back(keyColumn(codeCaption, "cFXCode"));
  view.columns.push_back(keyColumn(costItemCaption, "cFXName"));
  const std::size_t firstSum = view.columns.size();
  for (ViewColumn& column : stateColumns(states))
    view.columns.push_back(std::move(column));

  auto rows = std::make_shared<std::vector<ViewRow>>();
  std::vector<ExactSum> sums(view.columns.size() - firstSum);
  const auto cursor = request.table.query("Select " + keys + stateSums(states) + " From " + request.table.name() +
                                          " Where " + where + " Group By " + keys + " Order By " + keys);
  while (cursor->next()) {
    ViewRow row{.kind = RowKind::line, .level = 0, .cells = std::vector<tsql::Value>(view.columns.size())};
    for (std::size_t i = 0; i < row.cells.size(); ++i)
      row.cells[i] = cursor->value(i);
    if (isNothing(row.cells[code]) && isNothing(row.cells[code + 1]))
      row.cells[code + 1] = std::string(noCostItemCaption.in(request.language));
    for (std::size_t i = 0; i < sums.size(); ++i)
      sums[i].add(row.cells[firstSum + i]);
    rows->push_back(std::move(row));
  }
  view.lineCount = static_cast<std::int64_t>(rows->size());
  view.rows = heldRows(std::move(rows));
  ViewRow total{.kind = RowKind::total, .level = 0, .cells = std::vector<tsql::Value>(view.columns.size())};
  total.cells.front() = std::string(totalCaption.in(request.language));
  for (std::size_t i = 0; i < sums.size(); ++i)
    total.cells[firstSum + i] = sums[i].value();
  view.totals.push_back(std::move(total));

  Arrangement rest = request.arrangement;
  rest.where.clear();
  return arranged(std::move(view), rest, request.language);
}

}  // namespace quillon::workbench
