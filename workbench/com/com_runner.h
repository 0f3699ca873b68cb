// The library's classes called through COM as the host platform calls them: by ProgID, late-bound, with the workbench's
// platform in place of the host. The target quillon_com_runner makes these what makeReportRunner and makeDialogRunner
// give.
#pragma once

#include <memory>

#include "workbench/catalogue/library_runner.h"

namespace quillon::workbench {

// `platform` makes the components and outlives the runner. Both throw AutomationError when the classes cannot be had.
std::unique_ptr<ReportRunner> makeComReportRunner(EmbeddedPlatform& platform);
std::unique_ptr<DialogRunner> makeComDialogRunner(EmbeddedPlatform& platform, const Report& report,
                                                  std::shared_ptr<FilterDialogObject> dialog);

}  // namespace quillon::workbench
