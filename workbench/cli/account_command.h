// `quillon account`: makes sample accounts, shows what is in one, checks its keys, and drops the work tables that
// interrupted reports left.
#pragma once

#include <ostream>

#include "workbench/platform/account_source.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// `quillon account check`: lists the keys of the account by which reports join and which several rows share.
// True when there is none. Throws std::exception with one line for the user.
bool checkAccount(const AccountSource& source, std::ostream& out);

void addAccountCommand(CLI::App& app);

}  // namespace quillon::workbench
