// Values of account options that reports and dialogs compare with.
#pragma once

#include <string_view>

namespace quillon {

// The account's valuation method: what an inventory's cost is kept by. It comes from option cValueStyle of system IA,
// and as the costing basis from the platform's account options (AccountOptions). Any other text counts as none of them.
inline constexpr std::string_view valuationByInventory = "按存货核算";
inline constexpr std::string_view valuationByWarehouse = "按仓库核算";
inline constexpr std::string_view valuationByDepartment = "按部门核算";

// The edition that the account is one of, option cSysVersion of system AA: the industrial one, or any other text.
inline constexpr std::string_view industrialEdition = "工业";

}  // namespace quillon
