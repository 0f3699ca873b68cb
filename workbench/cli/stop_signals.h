// Ctrl-C, a closed window, a closed pipe, and the system's wish that the program end.
#pragma once

#include <optional>

#include "workbench/platform/language.h"

namespace quillon::workbench {

// From now on these ask what runs to end (tsql::requestStop), so that everything is put away that a run has made: SIGINT,
// SIGTERM, SIGHUP and a closed pipe; on Windows Ctrl-C, Ctrl-Break, a closed window, the end of the session. A second one
// ends the program at once.
void watchStopSignals();

// Why the run was asked to end.
struct StopCause {
  int exitStatus = 0;  // 128 and the signal's number; 0 for a closed pipe: whoever read has what he wanted
  Caption name = {};   // for the user: "Ctrl-C"; empty for a closed pipe, which nobody needs to be told of
};
std::optional<StopCause> stopCause();
// Takes the wish back, for a program that ends what it was doing and goes on.
void forgetStopCause();

}  // namespace quillon::workbench
