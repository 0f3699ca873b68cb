#include <stdexcept>
#include <string>

#include "frame/module.h"
#include "reports/sfc_item/sfc_item.h"
#include "workbench/cli/report_runner.h"

namespace quillon::workbench {

namespace {

class NativeRunner final : public ReportRunner {
 public:
  explicit NativeRunner(EmbeddedPlatform& platform) : module_(platform) {}

  void run(std::string_view report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    if (report != "sfc-item") throw std::invalid_argument("there is no report \"" + std::string(report) + "\"");
    SfcItem instance(module_);
    instance.getSql(*argument);
  }

 private:
  Module module_;
};

}  // namespace

std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform) {
  return std::make_unique<NativeRunner>(platform);
}

}  // namespace quillon::workbench
