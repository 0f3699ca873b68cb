// PublicComponent (workbench/platform) as the automation object IA_Pub.ClsIAPub that Quillon.dll calls: the object takes the
// calls, the port does the work. Member names are those of component/platform_bindings.h.
#pragma once

#include <memory>

#include "automation/com_ptr.h"
#include "frame/platform.h"

namespace quillon::workbench {

// The operations take the connection that the caller passes.
automation::ComPtr<IUnknown> publicComponentObject(std::shared_ptr<PublicComponent> component);

}  // namespace quillon::workbench
