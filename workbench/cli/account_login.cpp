#include "workbench/cli/account_login.h"

#include "workbench/platform/account_source.h"

namespace quillon::workbench {

SignedInAccount logIn(const std::string& source, Language language, const std::string& date) {
  SignedInAccount account;
  account.file = accountFile(source);
  account.connection = connectionString(account.file);
  account.session = std::make_shared<EmbeddedSession>();
  account.session->setConnectionString(account.connection);
  account.session->open("", "", optionsUnspecified);
  account.login =
      std::make_shared<WorkbenchLogin>(accountLogin(*account.session, account.connection, language, "", date));
  return account;
}

}  // namespace quillon::workbench
