// The voucher types that the user chose, as a condition on the ledger lines.
#pragma once

#include <string>

namespace quillon::fx_wt {

// Takes a quoted, comma-separated list of voucher types ('01','011','32'); gives the condition on base.cVouType, with a
// blank before its bracket, or an empty text for an empty list.
//
// Types 01, 30 and 70 come in two flavours, which bFlag of the ledger line distinguishes. The choices 011, 301 and
// 701 mean the second one (bFlag 1), 01, 30 and 70 the first. A type of which both flavours are chosen is taken as it
// is, whatever its bFlag. Choosing 32, 25 or 05 also chooses 3201, 2501 or 06.
std::string voucherTypeCondition(std::string list);

}  // namespace quillon::fx_wt
