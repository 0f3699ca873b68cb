// The seam between the program's commands and the library's classes: natively they are called directly, in quillon.exe
// through COM as the host platform does. One program links one implementation.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/catalogue/report.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_dialog_object.h"

namespace quillon::workbench {

class ReportRunner {
 public:
  virtual ~ReportRunner() = default;

  // Creates the report's class, runs its GETSQL with `argument` and releases it. Throws AutomationError
  // when GETSQL fails. A build that the report absorbed returns normally: whoever watches the sessions (the platform's
  // monitor) sees the failing statement, and that the session was not closed.
  virtual void run(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) = 0;
  // The same for Execute: opens the document behind the argument's row. What was opened and what the user was told the
  // platform knows.
  virtual void execute(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) = 0;
};

// `platform` makes the components and outlives the runner. Throws AutomationError when the classes cannot be had.
std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform);

// One dialog with the instance of the filter-control class that serves it. Every member throws AutomationError when the
// class does.
class DialogRunner {
 public:
  virtual ~DialogRunner() = default;

  virtual void init() = 0;                           // CallBack_FilterInit
  virtual void changed(const std::string& key) = 0;  // CallBack_ValueChange, `key` in the item's own spelling
  virtual bool click() = 0;                          // CallBack_FilterClick: whether the class lets the dialog close
  // CallBack_ReportViewInit, and CallBack_ReportViewChange after a change of item `key`: the view class; nullopt when
  // the class leaves it as it was.
  virtual std::optional<std::string> view() = 0;
  virtual std::optional<std::string> viewAfterChange(const std::string& key) = 0;
};

// The dialog of `report` on `dialog`. `platform` makes the components and outlives the runner. Throws as above.
std::unique_ptr<DialogRunner> makeDialogRunner(EmbeddedPlatform& platform, const Report& report,
                                               std::shared_ptr<FilterDialogObject> dialog);

}  // namespace quillon::workbench
