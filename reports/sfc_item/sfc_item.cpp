#include "reports/sfc_item/sfc_item.h"

namespace quillon {

SfcItem::SfcItem(Module& module) : module_(module) {}
void SfcItem::getSql(ReportArgument&) {}
std::string SfcItem::moveDataDetail() {
  return {};
}
void SfcItem::execute(ReportArgument&) noexcept {
  (void)module_;
}

}  // namespace quillon
