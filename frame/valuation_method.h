// The account's valuation method: what an inventory's cost is kept by. It comes from option cValueStyle of system IA,
// and as the costing basis from the account options. Any other text counts as neither.
#pragma once

#include <string_view>

namespace quillon {

inline constexpr std::string_view valuationByInventory = "按存货核算";
inline constexpr std::string_view valuationByWarehouse = "按仓库核算";
inline constexpr std::string_view valuationByDepartment = "按部门核算";

}  // namespace quillon
