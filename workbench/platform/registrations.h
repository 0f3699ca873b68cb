// What the reports register with the platform: their filter items with captions and input kinds in both languages.
#pragma once

#include <string_view>

#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

// Receipt/issue/balance by cost item, "sfc-item". The report's year has no default here: it is the login's.
const ReportRegistration& sfcItemRegistration();

}  // namespace quillon::workbench
