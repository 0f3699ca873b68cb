// What the detail ledger and its dialog create of the inventory-accounting environment, as automation objects that
// Quillon.dll calls: account login, environment, account options, and the numbers of work tables. The objects take the
// calls, the ports of workbench/platform do the work.
#pragma once

#include "automation/class_factory.h"
#include "workbench/platform/embedded_platform.h"

namespace quillon::workbench {

// Makes the ProgIDs of these objects mean what `platform` makes, in this thread's apartment and for as long as it
// lives. `platform` outlives it, but what was made may live longer. Throws AutomationError.
class EnvironmentStandIn {
 public:
  explicit EnvironmentStandIn(EmbeddedPlatform& platform);

 private:
  automation::InProcessClass workTableNumber_;
  automation::InProcessClass accountLogin_;
  automation::InProcessClass environment_;
  automation::InProcessClass accountOptions_;
};

}  // namespace quillon::workbench
