#include <stdexcept>
#include <string>

#include "frame/module.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"
#include "workbench/cli/library_runner.h"

namespace quillon::workbench {

namespace {

class NativeReportRunner final : public ReportRunner {
 public:
  explicit NativeReportRunner(EmbeddedPlatform& platform) : module_(platform) {}

  void run(const ReportRegistration& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    if (report.reportClass == "clsSFC_Item") {
      SfcItem(module_).getSql(*argument);
    } else if (report.reportClass == "clsOutsum_Item") {
      OutsumItem(module_).getSql(*argument);
    } else {
      throw std::invalid_argument("the library has no class " + report.reportClass);
    }
  }

 private:
  Module module_;
};

}  // namespace

std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform) {
  return std::make_unique<NativeReportRunner>(platform);
}

}  // namespace quillon::workbench
