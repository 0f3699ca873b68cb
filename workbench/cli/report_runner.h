// The seam between `quillon report` and the report classes: natively they are called directly, in quillon.exe through
// COM as the host platform does. One program links one implementation.
#pragma once

#include <memory>
#include <string_view>

#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"

namespace quillon::workbench {

class ReportRunner {
 public:
  virtual ~ReportRunner() = default;

  // Creates the class of `report` ("sfc-item"), runs its GETSQL with `argument` and releases it. Throws AutomationError
  // when GETSQL fails. A build that the report absorbed returns normally: whoever watches the sessions (the platform's
  // monitor) sees the failing statement, and that the session was not closed.
  virtual void run(std::string_view report, const std::shared_ptr<WorkbenchArgument>& argument) = 0;
};

// `platform` makes the components and outlives the runner. Throws AutomationError when the classes cannot be had.
std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform);

}  // namespace quillon::workbench
