// The ports of frame/, each in front of another platform's: every call of the library goes through Outside first, and
// what the library is handed is counted for as long as it holds it. What a platform is handed back is its own object
// again, so that only the library's calls are counted.
#pragma once

#include <functional>
#include <memory>

#include "frame/filter_dialog.h"
#include "frame/platform.h"
#include "tests/faults/outside.h"

namespace quillon::faults {

class WatchedPlatform final : public Platform {
 public:
  // Both outlive the platform and what it made.
  WatchedPlatform(Outside& outside, Platform& inner) : outside_(outside), inner_(inner) {}

  // In place of the inner platform's number for names of work tables, from here on.
  void setNamingNumber(std::string number) { namingNumber_ = std::move(number); }

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

 private:
  Outside& outside_;
  Platform& inner_;
  std::string namingNumber_;
};

// `inner` outlives the argument.
std::unique_ptr<ReportArgument> watched(Outside& outside, ReportArgument& inner);
// `inner` outlives the dialog.
std::unique_ptr<FilterDialog> watched(Outside& outside, FilterDialog& inner);

}  // namespace quillon::faults
