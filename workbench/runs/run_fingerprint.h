// The fingerprint of a report that was made, and the same report made once more from a fingerprint.
#pragma once

#include <memory>

#include "workbench/presentation/run_fingerprint.h"
#include "workbench/runs/report_run.h"

namespace quillon::workbench {

// Reads the result table once, with one statement. Sums are those of every column of quantities and amounts over all rows;
// where each row is of one state, those of the rows' own quantity and amount stand once for each state.
// Throws tsql::SqlError when the account refuses the statement.
RunFingerprint fingerprintOf(const MadeReport& report);

// What a fingerprint calls the account that is signed in to: its code, and the name of its file or database.
RunFingerprint fingerprintOfAccount(const SignedInAccount& account);

// The filter that the fingerprint is of, to be run as it is. Throws UserError for one that its report cannot have.
std::shared_ptr<FilterObject> filterOf(const RunFingerprint& fingerprint);

}  // namespace quillon::workbench
