// The account database's connection: during one report run GETSQL opens it and, after a successful build, closes it; a
// filter dialog opens it at its start and leaves it open.
#pragma once

#include "frame/filter_dialog.h"
#include "frame/module.h"

namespace quillon {

// Opens the module's session with the OrvDbName of the module's login, client-side cursors and no time limit; both must
// be set. Throws AutomationError of the failing call.
void openSession(Module& module);

// Puts a new session and the argument's login into the module and opens the session. Throws AutomationError of the
// failing call; what was set so far stays and is replaced by the next run.
void openReportSession(Module& module, ReportArgument& argument);

// Puts a new session and the dialog's login into the module, opens the session and hands the login to the resource
// service. Throws AutomationError as openReportSession() does.
void openDialogSession(Module& module, FilterDialog& dialog);

// Closes the module's session unless it is closed already, and releases it even when closing throws AutomationError.
// Does nothing when there is none.
void closeReportSession(Module& module);

}  // namespace quillon
