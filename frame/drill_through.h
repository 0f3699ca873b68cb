// From a row of a report to the document behind it: the source document, or the general-ledger voucher that the row was
// posted to. Execute of the detail ledger and of the cost-item voucher report does this.
#pragma once

#include "frame/module.h"

namespace quillon {

// What a drill-through came to.
enum class DrillThrough {
  nothing,        // the row is a balance: it has no document
  notPosted,      // the row has no general-ledger voucher; the user has seen a message that says so
  sourceVoucher,  // the source document was shown
  ledgerVoucher,  // the general-ledger voucher was shown
};

// Opens the document behind the argument's row (RelateData): its source document for the action "Vouch", for any other
// its general-ledger voucher. Gives which of them was opened, or why none was.
//
// Reads of the row cVouType, cVouCode, cBusType, iPZID, cPZID and ID, as the detail ledger's result table has them; the
// platform answers for a column that a report does not have. A voucher type's code comes from VouchType and AA_Enum, a
// voucher's year from IA_SubSidiary or else from IA_ENSubSidiary, edition and valuation method from the options
// cSysVersion and cValueStyle of system AA.
//
// Opens a session in the module, with the argument's login. Both are released at the end, but the session is not closed,
// because the document may be shown through it for longer. Throws AutomationError for everything that fails, also when
// neither ledger knows a year for the voucher.
DrillThrough drillThrough(Module& module, ReportArgument& argument);

}  // namespace quillon
