#include "workbench/runs/account_login.h"

namespace quillon::workbench {

SignedInAccount logIn(const AccountSource& source, Language language, const std::string& date) {
  SignedInAccount account{
      .scratch = nullptr, .source = source, .session = std::make_shared<AccountSession>(), .login = nullptr};
  if (!source.onServer()) {
    account.scratch = std::make_shared<account::Scratch>();
    account.source = source.withScratch(account.scratch->file());
  }
  account.session->setAccount(account.source);
  account.session->open("", "", optionsUnspecified);
  account.login = std::make_shared<WorkbenchLogin>(accountLogin(*account.session, account.source, language, "", date));
  return account;
}

}  // namespace quillon::workbench
