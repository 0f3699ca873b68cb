#include "workbench/presentation/report_document.h"

#include "workbench/platform/resource_texts.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

constexpr int moneyDecimals = 2;

}  // namespace

std::string quantityText(const ReportDocument& document, std::string_view exact) {
  return groupedNumber(exact, document.quantityDecimals);
}

std::string moneyText(std::string_view exact) {
  return groupedNumber(exact, moneyDecimals);
}

std::string cellText(const ReportDocument& document, const ReportColumn& column, const tsql::Value& value) {
  std::string text = plainText(value, "");
  if (text.empty() || !isNumber(column.role)) return text;
  if (column.role == ColumnRole::unitCost) return groupedNumber(text, document.unitCostDecimals);
  return isMoney(column.role) ? moneyText(text) : quantityText(document, text);
}

std::string totalText(const ReportDocument& document, std::size_t column) {
  const std::optional<std::string>& total = document.totals[column];
  if (!total) return column == 0 ? std::string(document.text(totalCaption)) : "";
  return isMoney(document.columns[column].role) ? moneyText(*total) : quantityText(document, *total);
}

std::string rowCountText(const ReportDocument& document, std::optional<std::int64_t> limit) {
  const bool cut = limit && *limit < document.rowCount;
  const std::string all = std::to_string(document.rowCount);
  const std::string leftOut = std::to_string(document.columnsLeftOut);
  if (document.language == Language::chinese) {
    std::string text = "共 " + all + " 行";
    if (cut) text += "，显示前 " + std::to_string(*limit) + " 行";
    if (document.columnsLeftOut > 0) text += "；另有 " + leftOut + " 列未显示（--all-columns）";
    return text;
  }
  std::string text = (cut ? "the first " + std::to_string(*limit) + " of " : "") + all + " rows";
  if (document.columnsLeftOut > 0) text += "; " + leftOut + " more columns are not shown (--all-columns)";
  return text;
}

std::string stateName(const ReportDocument& document, const CrossState& state) {
  return resourceText(state.nameKey, document.language);
}

std::string crossHeading(const ReportDocument& document, const CrossState& state, const Caption& measure) {
  const std::string_view blank = document.language == Language::chinese ? "" : " ";
  return stateName(document, state).append(blank).append(document.text(measure));
}

std::string costItemName(const ReportDocument& document, const CrossRow& row) {
  return row.code.empty() && row.name.empty() ? std::string(document.text(noCostItemCaption)) : row.name;
}

}  // namespace quillon::workbench
