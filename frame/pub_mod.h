// PubMod: the lookups of account information that all reports share. Each throws AutomationError when the session, the
// public component or the naming class refuses.
#pragma once

#include <string>
#include <string_view>

#include "frame/module.h"

namespace quillon {

// The account's valuation method ("按存货核算", "按仓库核算" or "按部门核算") as it was in `year`. The current year's
// comes from option cValueStyle of system IA (GetAccInformation); an earlier year's from IA_HisOption.cValue, or,
// where that has no row for the year, from the same option.
std::string valueStyle(Module& module, int year, Session& session);

// The month (1 to 12) in which inventory accounting began, when it began in `year`: from AccInformation, cSysID 'IA',
// cName 'dIAStartDate', a date "yyyy-mm-dd". 0 when it began in another year, or when the account does not say.
int inventoryStartMonth(int year, Session& session);

// How many decimal places the account shows, from option `name` of system AA ("iStrsQuanDecDgt" for quantities,
// "iStrsPriDecDgt" for unit costs); 0 when the account does not say. The module's session must be set. Throws
// AutomationError (type mismatch) also for a value that is not a whole number.
int decimalPlaces(Module& module, std::string_view name);

// The fixed first part of every work-table name: the number that the platform's naming class gives, as trimmed
// decimal text.
std::string workTablePrefix(Platform& platform);

}  // namespace quillon
