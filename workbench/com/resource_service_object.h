// ResourceService (workbench/platform) as the automation object that Quillon.dll calls early-bound: the object takes the
// calls, the port does the work. Scripts reach its members by name.
#pragma once

#include <memory>

#include "automation/com_ptr.h"
#include "frame/platform.h"

namespace quillon::workbench {

// Implements the dual interface IResourceService of component/platform_bindings.h.
automation::ComPtr<IUnknown> resourceServiceObject(std::shared_ptr<ResourceService> service);

}  // namespace quillon::workbench
