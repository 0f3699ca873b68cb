#include "workbench/catalogue/native_runner.h"

namespace quillon::workbench {

void NativeReportRunner::run(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) {
  report.make(module_)->getSql(*argument);
}

void NativeReportRunner::execute(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) {
  report.make(module_)->execute(*argument);
}

std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform) {
  return std::make_unique<NativeReportRunner>(platform);
}

std::unique_ptr<DialogRunner> makeDialogRunner(EmbeddedPlatform& platform, const Report& report,
                                               std::shared_ptr<FilterDialogObject> dialog) {
  return std::make_unique<NativeDialogRunner>(platform, report, std::move(dialog));
}

}  // namespace quillon::workbench
