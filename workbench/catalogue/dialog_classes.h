// The classes of the library that serve filter dialogs: what they are called, and how they are made and called directly.
// A class may serve the dialogs of several reports; the dialog's identifier says which report it is of.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/filter_dialog.h"
#include "frame/module.h"

namespace quillon::workbench {

// What CallBack_FilterClick came to.
struct FilterClick {
  std::optional<bool> result = {};            // what the member gave; nothing when it is a procedure
  std::optional<std::string> cancelled = {};  // the item for which the class set Cancel

  bool accepted() const { return result.value_or(true) && !cancelled; }
};

// One instance lives for one dialog. Every member throws AutomationError when the class does.
class CoreDialog {
 public:
  virtual ~CoreDialog() = default;

  virtual void init(FilterDialog& dialog) = 0;                           // CallBack_FilterInit
  virtual void changed(std::string_view key, FilterDialog& dialog) = 0;  // CallBack_ValueChange
  virtual FilterClick click(FilterDialog& dialog) = 0;                   // CallBack_FilterClick
  // CallBack_ReportViewInit and CallBack_ReportViewChange: the view class; nothing when it stays as it is.
  virtual std::optional<std::string> view(FilterDialog& dialog) = 0;
  // InitYear and InitGrade, and the lists that they fill.
  virtual std::vector<std::string> years() = 0;
  virtual std::vector<int> grades() = 0;
};

struct DialogClass {
  std::string_view name;       // "clsSFCFilterControl"
  std::string_view traceName;  // what `quillon trace` calls it
  // The class is asked for the view that shows the report. A report with one view has a class that is not.
  bool hasViews = false;
  // It has lists that are filled on request (years and grades), in the module's session. Another's are empty.
  bool hasLists = false;
  std::unique_ptr<CoreDialog> (*make)(Module& module);  // `module` must outlive what is made
};

// clsSFCFilterControl: the dialogs of both summary reports.
const DialogClass& summaryDialog();
// clsFilterControl: the dialog of the detail ledger.
const DialogClass& detailDialog();
// clsWtFilterControl: the dialog of the cost-item voucher report.
const DialogClass& voucherDialog();

}  // namespace quillon::workbench
