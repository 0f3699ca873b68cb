// Receipt/issue/balance by cost item.
#pragma once

#include "workbench/catalogue/report.h"

namespace quillon::workbench {

Report sfcItem();

}  // namespace quillon::workbench
