// `quillon serve`: the desk, for a browser on this machine.
#pragma once

#include <ostream>

#include "workbench/messages/language.h"
#include "workbench/platform/account_source.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

struct ServeOptions {
  AccountSource account = {};
  unsigned short port = 0;  // 0: the system chooses
  bool open = false;        // the link in the user's browser
  int idleMinutes = 0;      // without use, the desk ends after so many; 0: never
  Language language = Language::chinese;
};

// Serves until the program is asked to end or the desk has been idle for too long. `out` gets one line, the link that opens
// the desk once; `notes` what else the user must know. Throws std::exception with one line for the user: when the account
// cannot be opened, when the port cannot be had, and when it was asked to end.
void runServe(const ServeOptions& options, std::ostream& out, std::ostream& notes);

void addServeCommand(CLI::App& app);

}  // namespace quillon::workbench
