// The ports of frame/ with fault injection: each passes the library's calls on to another platform's port through the
// fault injector, and each object that the library is given counts as live until the library releases it. A platform that
// gets one of its objects back gets the object itself, so that only the library's calls are counted.
#pragma once

#include <functional>
#include <memory>

#include "frame/filter_dialog.h"
#include "frame/platform.h"
#include "tests/faults/fault_injector.h"

namespace quillon::faults {

class InterceptedPlatform final : public Platform {
 public:
  // Both outlive the platform and what it made.
  InterceptedPlatform(FaultInjector& injector, Platform& inner) : injector_(injector), inner_(inner) {}

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
  FaultInjector& injector_;
  Platform& inner_;
  std::string namingNumber_;
};

// `inner` outlives the argument.
std::unique_ptr<ReportArgument> intercepted(FaultInjector& injector, ReportArgument& inner);
// `inner` outlives the dialog.
std::unique_ptr<FilterDialog> intercepted(FaultInjector& injector, FilterDialog& inner);

}  // namespace quillon::faults
