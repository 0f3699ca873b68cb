#include "workbench/platform/account_environment.h"

#include "frame/automation_error.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view environmentSource = "Quillon environment";

class WorkbenchAccountOptions final : public AccountOptions {
 public:
  explicit WorkbenchAccountOptions(std::string costingBasis) : costingBasis_(std::move(costingBasis)) {}

  std::string costingBasis() override { return costingBasis_; }
  std::string inventoryTable() override { return "Inventory"; }
  std::string warehouseTable() override { return "Warehouse"; }

 private:
  std::string costingBasis_;
};

}  // namespace

const std::string& WorkbenchAccountLogin::connection() const {
  if (connection_.empty()) {
    throw AutomationError(hresult::unexpected, std::string(environmentSource),
                          "The login has not been initialised with a connection string.");
  }
  return connection_;
}

std::unique_ptr<AccountOptions> WorkbenchEnvironment::accountOptions(AccountLogin& login, std::string_view) {
  const auto* own = dynamic_cast<WorkbenchAccountLogin*>(&login);
  if (own == nullptr) {
    throw AutomationError(hresult::invalidArgument, std::string(environmentSource),
                          "The login is not one that this platform made.");
  }
  const std::shared_ptr<Session> session = openAccount(makeSession_, own->connection());
  const std::string basis =
      lookUp(*session, "Select cValue From AccInformation Where cSysID = N'IA' And cName = N'cValueStyle'")
          .value_or("");
  session->close();
  return std::make_unique<WorkbenchAccountOptions>(basis);
}

}  // namespace quillon::workbench
