#include "workbench/presentation/report_charts.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {

namespace {

// So many bars are told apart at a glance; the rest is one bar.
constexpr std::size_t mostBars = 12;

constexpr Caption amountMeasure{"金额", "Amount"};
constexpr Caption balanceMeasure{"结存金额", "Balance"};
constexpr Caption monthLabels{"月份", "Month"};
constexpr Caption openingLabel{"期初", "Opening"};
constexpr Caption balanceTitle{"各月结存", "Balance at the end of each month"};
constexpr Caption closingTitle{"期末结存的成本构成", "Cost structure of the closing balance"};

struct StructureTitle {
  std::string_view column;
  Caption title;
};
constexpr StructureTitle closingStructure{"closingAmount", closingTitle};
constexpr std::array<StructureTitle, 2> movementStructures = {
    {{"receiptAmount", {"收入的成本构成", "Cost structure of the receipts"}},
     {"issueAmount", {"发出的成本构成", "Cost structure of the issues"}}}};

using NamedSum = std::pair<std::string, ExactSum>;

// By size, whatever the sign.
tsql::Exact size(const tsql::Exact& value) {
  return {.units = value.units < 0 ? -value.units : value.units, .scale = value.scale};
}

std::optional<Chart> structureChart(std::vector<NamedSum> sums, const Caption& title, Language language) {
  std::erase_if(sums, [](const NamedSum& sum) { return sum.second.isZero(); });
  if (sums.empty()) return std::nullopt;
  std::ranges::stable_sort(sums, [](const NamedSum& a, const NamedSum& b) {
    return tsql::compare(size(a.second.exact()), size(b.second.exact())) > 0;
  });
  Chart chart{.kind = Chart::Kind::bars,
              .title = std::string(title.in(language)),
              .labels = std::string(costItemCaption.in(language)),
              .measure = std::string(amountMeasure.in(language))};
  ExactSum rest;
  const std::size_t shown = sums.size() > mostBars + 1 ? mostBars : sums.size();
  for (std::size_t i = 0; i < sums.size(); ++i) {
    if (i < shown) {
      chart.points.push_back({.label = std::move(sums[i].first), .value = sums[i].second.value()});
    } else {
      rest.add(sums[i].second);
    }
  }
  if (shown < sums.size()) {
    const std::string count = std::to_string(sums.size() - shown);
    chart.points.push_back(
        {.label = language == Language::chinese ? "其余 " + count + " 项" : count + " others", .value = rest.value()});
  }
  return chart;
}

std::string textOf(const tsql::Value& value) {
  return plainText(value, "");
}

// What a row of the summary is called: its last text, the name of the cost item, else the one before it, its code.
std::string rowName(const View& view, const ViewRow& row) {
  std::string name;
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    if (isNumber(view.columns[i].column.role)) continue;
    if (std::string text = textOf(row.cells[i]); !text.empty()) name = std::move(text);
  }
  return name;
}

std::optional<std::size_t> columnNamed(const View& view, std::string_view name) {
  const auto found = std::ranges::find(view.columns, name, [](const ViewColumn& column) { return column.column.name; });
  if (found == view.columns.end()) return std::nullopt;
  return static_cast<std::size_t>(found - view.columns.begin());
}

std::optional<Chart> summaryChart(const View& summary, const StructureTitle& structure, Language language) {
  const auto column = columnNamed(summary, structure.column);
  if (!column) return std::nullopt;
  const auto code = columnNamed(summary, "cFXCode");
  // A view that is grouped has a cost item in several groups, and two cost items may have one name.
  std::map<std::pair<std::string, std::string>, ExactSum> byItem;
  for (const auto rows = summary.rows(); rows->next();) {
    const ViewRow& row = rows->row();
    if (row.kind != RowKind::line) continue;
    byItem[{code ? textOf(row.cells[*code]) : "", rowName(summary, row)}].add(row.cells[*column]);
  }
  std::vector<NamedSum> sums;
  sums.reserve(byItem.size());
  for (const auto& [item, sum] : byItem)
    sums.emplace_back(item.second, sum);
  return structureChart(std::move(sums), structure.title, language);
}

// The balance stands last.
std::optional<std::size_t> balanceColumn(const View& ledger) {
  for (std::size_t i = ledger.columns.size(); i > 0; --i) {
    if (isMoney(ledger.columns[i - 1].column.role)) return i - 1;
  }
  return std::nullopt;
}

std::optional<std::int64_t> monthOf(const View& ledger, const ViewRow& row) {
  for (std::size_t i = 0; i < ledger.columns.size(); ++i) {
    const auto* month = std::get_if<std::int64_t>(&row.cells[i]);
    if (ledger.columns[i].key && month != nullptr) return *month;
  }
  return std::nullopt;
}

std::optional<Chart> balanceChart(const View& ledger, std::size_t balance, Language language) {
  Chart chart{.kind = Chart::Kind::line,
              .title = std::string(balanceTitle.in(language)),
              .labels = std::string(monthLabels.in(language)),
              .measure = std::string(balanceMeasure.in(language))};
  const auto monthLabel = [language](std::int64_t month) {
    return std::to_string(month) + (language == Language::chinese ? "月" : "");
  };
  std::optional<std::int64_t> last;
  for (const auto rows = ledger.rows(); rows->next();) {
    const ViewRow& row = rows->row();
    if (tsql::isNull(row.cells[balance])) continue;
    if (row.kind == RowKind::opening)
      chart.points.push_back({.label = std::string(openingLabel.in(language)), .value = row.cells[balance]});
    if (row.kind != RowKind::monthTotal) continue;
    const auto month = monthOf(ledger, row);
    if (!month) continue;
    // In a month without lines the balance stays what it was.
    while (last && ++*last < *month)
      chart.points.push_back({.label = monthLabel(*last), .value = chart.points.back().value});
    chart.points.push_back({.label = monthLabel(*month), .value = row.cells[balance]});
    last = month;
  }
  if (chart.points.size() < 2) return std::nullopt;
  return chart;
}

std::optional<Chart> closingChart(const View& ledger, std::size_t balance, const ResultTable& table,
                                  Language language) {
  const auto closing = std::ranges::find(ledger.totals, RowKind::closing, &ViewRow::kind);
  if (closing == ledger.totals.end()) return std::nullopt;
  const auto cursor = table.query(
      "Select temp.cfxCode, temp.cfxName, temp.cfxCCode, temp.cfxCName, Sum(Case When temp.datatype = 0 Or "
      "line.bRdFlag = 1 Then IsNull(temp.iItemPrice, 0) Else -IsNull(temp.iItemPrice, 0) End) From " +
      table.name() +
      " temp left join ia_subsidiary line on line.AutoID = temp.id and temp.datatype = 1 Where temp.datatype < 2 "
      "Group By temp.cfxCode, temp.cfxName, temp.cfxCCode, temp.cfxCName "
      "Order By temp.cfxCCode, temp.cfxCode, temp.cfxCName, temp.cfxName");
  std::vector<NamedSum> sums;
  ExactSum without;
  without.add(closing->cells[balance]);
  while (cursor->next()) {
    const std::array<std::string, 4> names = {textOf(cursor->value(1)), textOf(cursor->value(0)),
                                              textOf(cursor->value(3)), textOf(cursor->value(2))};
    const auto* const name = std::ranges::find_if(names, [](const std::string& text) { return !text.empty(); });
    if (name == names.end()) continue;
    ExactSum sum;
    sum.add(cursor->value(4));
    without.subtract(sum.value());
    sums.emplace_back(*name, sum);
  }
  sums.emplace_back(std::string(noCostItemCaption.in(language)), without);
  return structureChart(std::move(sums), closingTitle, language);
}

void append(std::vector<Chart>& charts, std::optional<Chart> chart) {
  if (chart) charts.push_back(std::move(*chart));
}

}  // namespace

std::vector<Chart> structureCharts(const View& summary, Language language) {
  std::vector<Chart> charts;
  if (columnNamed(summary, closingStructure.column)) {
    append(charts, summaryChart(summary, closingStructure, language));
    return charts;
  }
  for (const StructureTitle& structure : movementStructures)
    append(charts, summaryChart(summary, structure, language));
  return charts;
}

std::vector<Chart> ledgerCharts(const View& ledger, const ResultTable& table, Language language) {
  std::vector<Chart> charts;
  const auto balance = balanceColumn(ledger);
  if (!balance) return charts;
  append(charts, balanceChart(ledger, *balance, language));
  append(charts, closingChart(ledger, *balance, table, language));
  return charts;
}

}  // namespace quillon::workbench
