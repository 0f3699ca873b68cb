// The workbench's platform as automation objects: Quillon.dll creates them by ProgID as it creates the host platform's, and
// they pass each call on to the ports of workbench/platform, which do the work. (component/*_adapter.h go the other way:
// they make ports of automation objects.) What the platform hands in stands in argument_object.h, filter_objects.h and
// login_object.h.
#pragma once

#include <memory>
#include <optional>

#include "automation/class_factory.h"
#include "workbench/com/ado.h"
#include "workbench/com/environment_objects.h"
#include "workbench/com/voucher_objects.h"
#include "workbench/platform/embedded_platform.h"

namespace quillon::workbench {

// Makes, in this thread's apartment and for as long as it lives, ADO's ProgIDs mean the embedded account and the
// platform's ProgIDs (IA_Pub.ClsIAPub, resource and message service, naming, unique names, drill-through helper,
// environment, voucher components) mean the components that `platform` makes. Neither the registry nor another process
// sees any of it, and a platform that is installed on the machine is left alone.
class PlatformStandIn {
 public:
  // `platform` outlives the stand-in. What was made may live longer, for Quillon.dll keeps components while it is
  // loaded; it does not refer to `platform`. `monitor` watches every session that is opened; it may be null. Throws
  // AutomationError.
  PlatformStandIn(EmbeddedPlatform& platform, const std::shared_ptr<SessionMonitor>& monitor);
  // For an account on a server: ADO's ProgIDs keep meaning the ADO that the machine has.
  explicit PlatformStandIn(EmbeddedPlatform& platform);

 private:
  std::optional<EmbeddedAdo> ado_;
  automation::InProcessClass publicComponent_;
  automation::InProcessClass resourceService_;
  automation::InProcessClass naming_;
  automation::InProcessClass uniqueNames_;
  automation::InProcessClass drillThrough_;
  EnvironmentStandIn environment_;
  VoucherStandIn vouchers_;
};

}  // namespace quillon::workbench
