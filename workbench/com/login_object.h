// The login (workbench/platform) as the automation object that Quillon.dll calls: the object takes the calls, the port does
// the work. Member names are those of component/platform_bindings.h.
#pragma once

#include <memory>

#include "automation/com_ptr.h"
#include "frame/platform.h"

namespace quillon::workbench {

// The login object.
automation::ComPtr<IDispatch> loginObject(std::shared_ptr<Login> login);

}  // namespace quillon::workbench
