// Cost-item detail ledger.
#pragma once

#include "workbench/catalogue/report.h"

namespace quillon::workbench {

Report fxDetail();

}  // namespace quillon::workbench
