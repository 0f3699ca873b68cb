// Signing in to an account, as a person does before a report or its filter dialog.
#pragma once

#include <memory>
#include <string>

#include "workbench/account/scratch.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

struct SignedInAccount {
  // Where the tables of the reports on this account lie; null on a server. Outlives the connections.
  std::shared_ptr<account::Scratch> scratch;
  AccountSource source;                     // with the scratch file
  std::shared_ptr<AccountSession> session;  // open
  std::shared_ptr<WorkbenchLogin> login;
};

// Signs in to the account, for reports and their dialogs: an account file is only read. `date` is the login's, yyyy-mm-dd; empty: the last day of the current year. Throws
// std::exception with one line for the user.
SignedInAccount logIn(const AccountSource& source, Language language, const std::string& date);

}  // namespace quillon::workbench
