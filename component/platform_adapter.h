// Platform (the port through which the core gets all others) over the host platform's classes: creates them by ProgID and
// gives each as the adapter that this folder has for it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "frame/platform.h"

namespace quillon::component {

// Creates the components by ProgID. A component that must be there and is not registered is an AutomationError that
// names it; KeysAsTexts (resource_service_adapter.h) and the
// built-in names (work_table_names.h) take the place of those that may be missing.
class LateBoundPlatform : public Platform {
 public:
  std::shared_ptr<Session> createSession() override;
  std::shared_ptr<PublicComponent> createPublicComponent() override;
  std::shared_ptr<ResourceService> createResourceService() override;
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override;
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override;
  std::string namingNumber() override;
  std::int32_t workTableNumber() override;
  std::unique_ptr<AccountLogin> createAccountLogin() override;
  std::unique_ptr<InventoryEnvironment> createInventoryEnvironment() override;
  std::unique_ptr<SourceVoucherComponent> createSourceVoucherComponent() override;
  std::unique_ptr<LedgerModule> createLedgerModule() override;
  std::unique_ptr<LedgerVoucherComponent> createLedgerVoucherComponent() override;
};

}  // namespace quillon::component
