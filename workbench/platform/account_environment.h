// The inventory-accounting environment over an account: the login, environment and account-options objects that the
// detail ledger and its filter dialog create.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/inventory_environment.h"
#include "workbench/platform/account_lookup.h"

namespace quillon::workbench {

class WorkbenchAccountLogin final : public AccountLogin {
 public:
  // The password is not needed: a server's stands in the connection string, a file has none.
  void initialise(std::string_view connection, std::string_view) override { connection_ = connection; }

  // Throws AutomationError (unexpected) before the login is initialised.
  const std::string& connection() const;

 private:
  std::string connection_;
};

class WorkbenchEnvironment final : public InventoryEnvironment {
 public:
  // `makeSession` makes the sessions that the account is read on; they are closed at once. `resultTable` is the name of
  // the detail ledger's result table.
  WorkbenchEnvironment(SessionMaker makeSession, std::string resultTable)
      : makeSession_(std::move(makeSession)), resultTable_(std::move(resultTable)) {}

  // Ignored: the environment's answers do not depend on the login.
  void setLogin(AccountLogin&) override {}
  std::string resultTable() override { return resultTable_; }
  // The costing basis is option cValueStyle of system IA, the tables are the account's own: its user has every right.
  // Throws AutomationError for a login that is no WorkbenchAccountLogin or not initialised, and when the account cannot
  // be read.
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin& login, std::string_view resultTable) override;

 private:
  SessionMaker makeSession_;
  std::string resultTable_;
};

}  // namespace quillon::workbench
