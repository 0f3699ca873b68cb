#include "workbench/cli/account_login.h"

#include "workbench/odbc/connection_string.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {

SignedInAccount logIn(const std::string& source, Language language, const std::string& date) {
  SignedInAccount account;
  account.shownSource = odbc::withoutPassword(source);
  account.connection = accountConnection(source);
  account.session = std::make_shared<AccountSession>();
  account.session->setConnectionString(account.connection);
  account.session->open("", "", optionsUnspecified);
  account.login =
      std::make_shared<WorkbenchLogin>(accountLogin(*account.session, account.connection, language, "", date));
  return account;
}

}  // namespace quillon::workbench
