// Outbound summary by cost item.
#pragma once

#include "workbench/catalogue/report.h"

namespace quillon::workbench {

Report outsumItem();

}  // namespace quillon::workbench
