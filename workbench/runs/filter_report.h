// Which report a filter file is for.
#pragma once

#include <string>
#include <string_view>

#include "workbench/catalogue/report.h"

namespace quillon::workbench {

// The report whose identifier the filter file has; nullptr when it has none that is known. Errors call the file `name`.
// Throws UserError for a text that is no JSON.
const Report* reportOfFilter(std::string_view text, const std::string& name);

}  // namespace quillon::workbench
