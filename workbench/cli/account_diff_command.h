// `quillon account diff`: compares two accounts.
#pragma once

#include <cstddef>
#include <ostream>

#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// Compares two accounts and says on `out` that they are equal, or what differs: each table with its counts, at most
// `shown` of its rows, and a line that sums it up. When one is on a server, the tables of an account are compared;
// between two files, all tables. True when the accounts are equal.
bool diffAccounts(const AccountSource& first, const AccountSource& second, std::size_t shown, std::ostream& out,
                  Language language = Language::english);

// Adds the command to `account`. Accounts that differ make the exit status 1.
void addDiffCommand(CLI::App& account);

}  // namespace quillon::workbench
