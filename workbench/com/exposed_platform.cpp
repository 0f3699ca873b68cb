#include "workbench/com/exposed_platform.h"

#include "automation/class_lookup.h"
#include "component/platform_bindings.h"
#include "workbench/com/filter_objects.h"
#include "workbench/com/name_objects.h"
#include "workbench/com/public_component_object.h"
#include "workbench/com/resource_service_object.h"

namespace quillon::workbench {

using automation::ComPtr;
namespace bindings = component::bindings;

PlatformStandIn::PlatformStandIn(EmbeddedPlatform& platform, const std::shared_ptr<SessionMonitor>& monitor)
    : PlatformStandIn(platform) {
  ado_.emplace(monitor);
}

PlatformStandIn::PlatformStandIn(EmbeddedPlatform& platform)
    : publicComponent_(
          automation::classIdOf(bindings::publicComponent),
          [&platform]() -> ComPtr<IUnknown> { return publicComponentObject(platform.createPublicComponent()); }),
      resourceService_(
          automation::classIdOf(bindings::resourceService),
          [&platform]() -> ComPtr<IUnknown> { return resourceServiceObject(platform.createResourceService()); }),
      naming_(automation::classIdOf(bindings::naming),
              [&platform]() -> ComPtr<IUnknown> { return namingObject(platform.namingNumber()); }),
      uniqueNames_(automation::classIdOf(bindings::uniqueNames),
                   [&platform]() -> ComPtr<IUnknown> { return uniqueNamesObject(platform.createUniqueNameSource()); }),
      drillThrough_(automation::classIdOf(bindings::drillThrough),
                    []() -> ComPtr<IUnknown> { return drillThroughObject(); }),
      environment_(platform),
      vouchers_(platform) {}

}  // namespace quillon::workbench
