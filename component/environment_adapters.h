// InventoryEnvironment, AccountLogin and AccountOptions (ports of the core) over the platform's inventory-accounting
// environment: the library calls the ports, the adapters call the objects late-bound. Members take the ports that this file
// implements.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "automation/late_bound.h"
#include "frame/platform.h"

namespace quillon::component {

class LateBoundAccountLogin : public AccountLogin {
 public:
  explicit LateBoundAccountLogin(automation::LateBound login) : login_(std::move(login)) {}

  void initialise(std::string_view connection, std::string_view passwordText) override;

  const automation::ComPtr<IDispatch>& object() const { return login_.object(); }

 private:
  automation::LateBound login_;
};

class LateBoundAccountOptions : public AccountOptions {
 public:
  explicit LateBoundAccountOptions(automation::LateBound options) : options_(std::move(options)) {}

  std::string costingBasis() override;
  std::string inventoryTable() override;
  std::string warehouseTable() override;

 private:
  automation::LateBound options_;
};

class LateBoundInventoryEnvironment : public InventoryEnvironment {
 public:
  explicit LateBoundInventoryEnvironment(automation::LateBound environment) : environment_(std::move(environment)) {}

  void setLogin(AccountLogin& login) override;
  std::string resultTable() override;
  // Creates the options object, which the environment then fills.
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin& login, std::string_view resultTable) override;

 private:
  automation::LateBound environment_;
};

}  // namespace quillon::component
