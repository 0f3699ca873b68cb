// What tells work tables apart (workbench/platform) as the automation objects that Quillon.dll calls. Member names are those
// of component/platform_bindings.h.
#pragma once

#include <memory>
#include <string>

#include "automation/com_ptr.h"
#include "frame/platform.h"

namespace quillon::workbench {

// The naming source: `number` is what it gives.
automation::ComPtr<IUnknown> namingObject(const std::string& number);
automation::ComPtr<IUnknown> uniqueNamesObject(std::shared_ptr<UniqueNameSource> names);

}  // namespace quillon::workbench
