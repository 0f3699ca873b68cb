// The first and last day of an accounting period, from the system database.
//
// Both summary reports keep this lookup, though no step of their builds needs it and no member of theirs hands it out:
// they take their bounds from the filter as dates. It stays for what is built on them. The detail ledger does not use it
// either, because it asks the platform's public component, whose periods may differ (GetDateFromPeriod).
#pragma once

#include <string>
#include <string_view>

#include "frame/module.h"

namespace quillon {

// `period` is the year, a point and the month number without a leading zero ("2019.3"). Reads
// orvsystem..UA_Period.dBegin and .dEnd for the session login's account code (cAcc_Id) on the module's session; both
// must be set. Both dates are empty when the account has no such period. Throws AutomationError when the login or the
// session refuses.
PeriodDates periodDates(Module& module, std::string_view period);

}  // namespace quillon
