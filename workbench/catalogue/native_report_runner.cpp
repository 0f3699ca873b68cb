#include <stdexcept>
#include <string>

#include "frame/module.h"
#include "reports/fx_detail/fx_detail.h"
#include "reports/fx_wt/fx_wt.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"
#include "workbench/catalogue/library_runner.h"

namespace quillon::workbench {

namespace {

class NativeReportRunner final : public ReportRunner {
 public:
  explicit NativeReportRunner(EmbeddedPlatform& platform) : module_(platform) {}

  void run(const ReportRegistration& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    with(report, [&](auto& instance) { instance.getSql(*argument); });
  }
  void execute(const ReportRegistration& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    with(report, [&](auto& instance) { instance.execute(*argument); });
  }

 private:
  // Calls `action` with a new instance of the report's class.
  template <typename Action>
  void with(const ReportRegistration& report, Action action) {
    if (report.reportClass == "clsSFC_Item") {
      SfcItem instance(module_);
      action(instance);
    } else if (report.reportClass == "clsOutsum_Item") {
      OutsumItem instance(module_);
      action(instance);
    } else if (report.reportClass == "clsFXDetail") {
      FxDetail instance(module_);
      action(instance);
    } else if (report.reportClass == "clsFXWt") {
      FxWt instance(module_);
      action(instance);
    } else {
      throw std::invalid_argument("the library has no class " + report.reportClass);
    }
  }

  Module module_;
};

}  // namespace

std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform) {
  return std::make_unique<NativeReportRunner>(platform);
}

}  // namespace quillon::workbench
