// `quillon account diff`: compares two accounts.
#pragma once

#include <ostream>

#include "workbench/account/difference.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// Compares two accounts (account::compareAccounts()) and says on `out` that they are equal, or what differs: each table
// with its counts and rows, and a line that sums it up. When one is on a server, the tables of an account are compared,
// whatever `options` say; between two files, all tables. True when the accounts are equal, or agree but for types and
// last digits where these need not be exact.
bool diffAccounts(const AccountSource& first, const AccountSource& second, account::DifferenceOptions options,
                  std::ostream& out, Language language = Language::english);

// Adds the command to `account`. Accounts that differ make the exit status 1.
void addDiffCommand(CLI::App& account);

}  // namespace quillon::workbench
