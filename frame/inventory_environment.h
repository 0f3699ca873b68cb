// The inventory-accounting environment: what the platform's own objects know of an account's costing basis and of the
// tables that the detail ledger and its filter dialog read and write.
// Every member throws AutomationError with the failing call's own code, source and description. All texts are UTF-8.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace quillon {

class Login;
class Platform;

// The login that the environment works with.
class AccountLogin {
 public:
  virtual ~AccountLogin() = default;

  // `connection` is the ADO connection string of the account database, `passwordText` ";PWD=" and the password.
  virtual void initialise(std::string_view connection, std::string_view passwordText) = 0;
};

class AccountOptions {
 public:
  virtual ~AccountOptions() = default;

  // The valuation method (frame/account_options.h).
  virtual std::string costingBasis() = 0;
  // The inventory and the warehouse table as statements name them; or views of them that the user's data rights limit.
  virtual std::string inventoryTable() = 0;
  virtual std::string warehouseTable() = 0;
};

class InventoryEnvironment {
 public:
  virtual ~InventoryEnvironment() = default;

  // Comes before the other members.
  virtual void setLogin(AccountLogin& login) = 0;
  // The table that the detail ledger makes and fills: the first of the two names that the environment gives.
  virtual std::string resultTable() = 0;
  // The options of the account that `login` names; `resultTable` is what resultTable() has given.
  virtual std::unique_ptr<AccountOptions> accountOptions(AccountLogin& login, std::string_view resultTable) = 0;
};

// An environment with its login, and what it has answered. They are released together.
struct OpenEnvironment {
  std::unique_ptr<AccountLogin> login;
  std::unique_ptr<InventoryEnvironment> environment;
  std::string resultTable;
  std::unique_ptr<AccountOptions> options;
};

// Creates the platform's objects for the account that `login` names by OrvDbName and SysPassword, and reads result table
// and options from them. Throws AutomationError when the platform or the login refuses.
OpenEnvironment openInventoryEnvironment(Platform& platform, Login& login);

}  // namespace quillon
