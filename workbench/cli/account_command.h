// `quillon account`: makes sample accounts, shows what is in one, checks its keys and its file, and drops the tables that
// interrupted reports left.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "workbench/platform/account_source.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// `quillon account check`: lists the keys of the account by which reports join and which several rows share.
// True when there is none. Throws std::exception with one line for the user.
bool checkAccount(const AccountSource& source, std::ostream& out);

// `quillon account check --integrity`: lists what is damaged in an account file, having read all of it. True when nothing
// is. Throws std::exception with one line for the user.
bool checkIntegrity(const AccountSource& source, std::ostream& out);

// `quillon account clean`: drops the tables that interrupted reports left. `agrees` is asked about those that may be in
// use or wanted. Throws std::exception with one line for the user.
void cleanAccount(const AccountSource& source, const std::function<bool(const std::string&)>& agrees,
                  std::ostream& out);

void addAccountCommand(CLI::App& app);

}  // namespace quillon::workbench
