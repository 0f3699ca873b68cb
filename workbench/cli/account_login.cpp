#include "workbench/cli/account_login.h"

namespace quillon::workbench {

SignedInAccount logIn(const AccountSource& source, Language language, const std::string& date) {
  SignedInAccount account{.source = source, .session = std::make_shared<AccountSession>(), .login = nullptr};
  account.session->setAccount(source);
  account.session->open("", "", optionsUnspecified);
  account.login = std::make_shared<WorkbenchLogin>(accountLogin(*account.session, source, language, "", date));
  return account;
}

}  // namespace quillon::workbench
