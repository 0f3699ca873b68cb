// Cost-item voucher report.
#pragma once

#include "workbench/catalogue/report.h"

namespace quillon::workbench {

Report fxWt();

}  // namespace quillon::workbench
