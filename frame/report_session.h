// The account database's connection: during one report run GETSQL opens it and, after a successful build, closes it; a
// filter dialog opens it at its start and leaves it open.
#pragma once

#include <memory>

#include "frame/filter_dialog.h"
#include "frame/module.h"

namespace quillon {

// Opens the session with the login's OrvDbName, client-side cursors and no time limit. Throws AutomationError of the
// failing call.
void openSession(Session& session, Login& login);

// Puts a new session and the argument's login into the module and opens the session, which it gives. Throws
// AutomationError of the failing call; what was set so far stays and is replaced by the next run.
std::shared_ptr<Session> openReportSession(Module& module, ReportArgument& argument);

// Puts a new session and the dialog's login into the module, opens the session and hands the login to the resource
// service. Throws AutomationError as openReportSession() does.
void openDialogSession(Module& module, FilterDialog& dialog);

// Throws throwTakenOver() unless the module's session is still `session`, the one that a run has opened.
void requireSession(const Module& module, const std::shared_ptr<Session>& session);

// Closes the module's session unless it is closed already, and releases it even when closing throws AutomationError.
// Does nothing when there is none.
void closeReportSession(Module& module);

}  // namespace quillon
