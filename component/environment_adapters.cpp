#include "component/environment_adapters.h"

#include "automation/class_lookup.h"
#include "component/adapter_of.h"
#include "component/platform_bindings.h"

namespace quillon::component {

using automation::Bstr;
using automation::createObject;
using automation::LateBound;
using automation::Variant;

void LateBoundAccountLogin::initialise(std::string_view connection, std::string_view passwordText) {
  login_.call(bindings::account_login::initialise, {connection, passwordText});
}

std::string LateBoundAccountOptions::costingBasis() {
  return options_.text(bindings::account_options::costingBasis);
}

std::string LateBoundAccountOptions::inventoryTable() {
  return options_.text(bindings::account_options::inventoryTable);
}

std::string LateBoundAccountOptions::warehouseTable() {
  return options_.text(bindings::account_options::warehouseTable);
}

void LateBoundInventoryEnvironment::setLogin(AccountLogin& login) {
  environment_.call(bindings::inventory_environment::initialise, {adapterOf<LateBoundAccountLogin>(login).object()});
}

std::string LateBoundInventoryEnvironment::resultTable() {
  Bstr table;
  Bstr second;
  environment_.call(bindings::inventory_environment::tableNames,
                    {Variant::reference(*table.inOut()), Variant::reference(*second.inOut())});
  return table.utf8();
}

std::unique_ptr<AccountOptions> LateBoundInventoryEnvironment::accountOptions(AccountLogin& login,
                                                                              std::string_view resultTable) {
  LateBound options = createObject(bindings::accountOptions);
  environment_.call(bindings::inventory_environment::fillOptions,
                    {options.object(), adapterOf<LateBoundAccountLogin>(login).object(), resultTable});
  return std::make_unique<LateBoundAccountOptions>(std::move(options));
}

}  // namespace quillon::component
