#include "frame/inventory_environment.h"

#include "frame/platform.h"

namespace quillon {

OpenEnvironment openInventoryEnvironment(Platform& platform, Login& login) {
  OpenEnvironment open;
  open.login = platform.createAccountLogin();
  const std::string connection = login.accountConnection();
  open.login->initialise(connection, ";PWD=" + login.password());
  open.environment = platform.createInventoryEnvironment();
  open.environment->setLogin(*open.login);
  open.resultTable = open.environment->resultTable();
  open.options = open.environment->accountOptions(*open.login, open.resultTable);
  return open;
}

}  // namespace quillon
