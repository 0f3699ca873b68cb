// Signing in to an account, as a person does before a report or its filter dialog.
#pragma once

#include <memory>
#include <string>

#include "workbench/platform/account_session.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

struct SignedInAccount {
  std::string shownSource;                  // SOURCE as it may be shown
  std::string connection;                   // the connection string, as the login gives it
  std::shared_ptr<AccountSession> session;  // open
  std::shared_ptr<WorkbenchLogin> login;
};

// Signs in to the account that `source` (SOURCE on the command line) names. `date` is the login's, yyyy-mm-dd; empty:
// the last day of the current year. Throws std::exception with one line for the user.
SignedInAccount logIn(const std::string& source, Language language, const std::string& date);

}  // namespace quillon::workbench
