// How a report's result table is laid out for a reader: what its rows are ordered by, and the cross view that sums them
// by cost item.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace quillon::workbench {

// A state of the cross view, such as receipts: quantity and money of each row that belong to it, as T-SQL expressions
// over the result table.
struct CrossState {
  std::string_view nameKey;  // the resource key of its name
  std::string quantity;
  std::string money;
};

// `column` as such an expression: a null counts as zero.
std::string orZero(std::string_view column);

// What a report's rows are ordered by: the columns of these that its result table has.
using RowOrder = std::span<const std::string_view>;
// By line number, or by place, inventory, batch, cost item or class, state and ledger line.
inline constexpr std::array<std::string_view, 10> orderByPlace = {
    "RowNo", "cWhCode", "cDepCode", "cInvCode", "cBatchia", "cFXCode", "cAmoCode", "cFxCName", "iState", "autoid"};
// By the day and the ledger line, then by cost item and expense item.
inline constexpr std::array<std::string_view, 4> orderByLine = {"dKeepDate", "AutoID", "cfxCode", "cAmoID"};

}  // namespace quillon::workbench
