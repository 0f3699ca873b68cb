// A filter dialog under trace: plays events on the class that serves it and prints what its members give. What the class
// does to the dialog is printed by the trace platform.
#pragma once

#include <memory>
#include <optional>

#include "workbench/catalogue/dialog_classes.h"
#include "workbench/trace/dialog_event.h"
#include "workbench/trace/trace_platform.h"

namespace quillon::workbench {

class TracedDialog {
 public:
  // `platform` outlives the dialog.
  TracedDialog(TracePlatform& platform, const DialogClass& dialogClass, std::shared_ptr<TraceFilter> filter);

  // Throws UserError for an event that the class does not have, and AutomationError when the class does.
  void play(const DialogEvent& event);

 private:
  void view();
  void click();
  void years();
  void grades();
  void requireLists(const DialogEvent& event) const;
  void beStarted();

  TracePlatform& platform_;
  const DialogClass& class_;
  Module module_;
  std::unique_ptr<CoreDialog> control_;
  std::shared_ptr<TraceFilter> filter_;
  std::unique_ptr<FilterDialog> dialog_;
};

}  // namespace quillon::workbench
