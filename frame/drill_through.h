// From a row of a report to the document behind it: the source document, or the general-ledger voucher that the row was
// posted to. The detail ledger and the cost-item voucher report open their rows so.
#pragma once

#include "frame/module.h"

namespace quillon {

// What a drill-through came to.
enum class DrillThrough {
  nothing,        // the row is a balance: it has no document
  notPosted,      // the row has no general-ledger voucher, which the user has been told
  sourceVoucher,  // the source document was shown
  ledgerVoucher,  // the general-ledger voucher was shown
};

// Opens the document behind the argument's row: its source document for the action "Vouch", for any other its
// general-ledger voucher. Reads of the row cVouType, cVouCode, cBusType, iPZID, cPZID and ID, as the detail ledger's
// result table has them; the platform answers for a column that a report does not have. Opens a session in the module, with the argument's login; it is released at the end, but not closed, because
// the document may be shown through it for longer. Throws AutomationError for everything that fails, also when the
// ledgers know no year for the voucher.
DrillThrough drillThrough(Module& module, ReportArgument& argument);

}  // namespace quillon
