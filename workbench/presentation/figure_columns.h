// How layouts head columns of quantities, unit costs and amounts, which stand under what they are of: 收入 above 数量,
// 单价 and 金额.
#pragma once

#include <string>
#include <string_view>

#include "workbench/platform/language.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

inline constexpr Caption receiptsCaption{"收入", "Receipts"};
inline constexpr Caption issuesCaption{"发出", "Issues"};
inline constexpr Caption balanceCaption{"结存", "Balance"};
inline constexpr Caption quantityColumn{"数量", "Quantity"};
inline constexpr Caption unitCostColumn{"单价", "Unit cost"};
inline constexpr Caption amountColumn{"金额", "Amount"};
inline constexpr Caption usagePerUnitColumn{"单位用量", "Usage per unit"};

// A column of a layout's own.
inline ReportColumn layoutColumn(std::string_view name, const Caption& caption, ColumnRole role = ColumnRole::text) {
  return {.name = std::string(name),
          .chinese = std::string(caption.chinese),
          .english = std::string(caption.english),
          .role = role};
}
// The same under the heading `group`.
inline ViewColumn groupedColumn(std::string_view name, const Caption& caption, ColumnRole role, const Caption& group) {
  return {.column = layoutColumn(name, caption, role),
          .groupChinese = std::string(group.chinese),
          .groupEnglish = std::string(group.english)};
}

}  // namespace quillon::workbench
