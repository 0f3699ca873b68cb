#include "workbench/presentation/report_document.h"

#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

std::string cellText(const ReportDocument& document, const ReportColumn& column, const tsql::Value& value) {
  constexpr int moneyDecimals = 2;
  std::string text = plainText(value, "");
  if (column.role == ColumnRole::share) return percentText(value);
  if (text.empty() || !isNumber(column.role)) return text;
  if (column.role == ColumnRole::unitCost) return groupedNumber(text, document.unitCostDecimals);
  return groupedNumber(text, isMoney(column.role) ? moneyDecimals : document.quantityDecimals);
}

}  // namespace quillon::workbench
