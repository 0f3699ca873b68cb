#include "workbench/catalogue/report_layout.h"

namespace quillon::workbench {

std::string orZero(std::string_view column) {
  return "IsNull(" + std::string(column) + ", 0)";
}

}  // namespace quillon::workbench
