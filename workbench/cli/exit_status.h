// The exit status of the program `quillon`: 0 for success, 1 for an error that was told, 2 for wrong usage.
#pragma once

#include <CLI/CLI.hpp>

#include "workbench/cli/usage_message.h"

namespace quillon::workbench {

// Ends the program with `exitStatus` when everything to be said has been said. An error that has still to be said is a
// UserError (workbench/platform/user_error.h); wrong usage is refuseUsage(), and whatever else CLI11 throws while it
// parses.
[[noreturn]] inline void endWith(int exitStatus) {
  throw CLI::RuntimeError(exitStatus);
}

// Ends a command that was called wrongly: `reason` says how.
[[noreturn]] inline void refuseUsage(const Message& reason) {
  throw CLI::ParseError(usageText(reason), CLI::ExitCodes::ValidationError);
}

}  // namespace quillon::workbench
