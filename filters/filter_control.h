// clsFilterControl: what the filter dialog of the cost-item detail ledger shows, how its items depend on one another,
// and what it must hold before the ledger can be made. One instance lives for one dialog.
//
// Every member throws AutomationError when the dialog, the login, a component of the platform or the database refuses;
// nothing is caught. What a member did before that stays.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/filter_dialog.h"
#include "frame/module.h"

namespace quillon {

class FilterControl {
 public:
  // `module` must outlive the instance.
  explicit FilterControl(Module& module) : module_(module) {}

  // CallBack_FilterInit: puts the dialog's login into the module, takes data rights off the lookups, offers the years
  // in use, gives iYear and cCaType their defaults and switches warehouse and department by the valuation method of the
  // year in iYear (option cValueStyle). Reads the account through the dialog's own connection.
  void filterInit(FilterDialog& dialog);

  // CallBack_ValueChange: `key` is the changed item's, in its own spelling.
  //   cInvCCode  the lookup of cInvCode offers the inventories of that class
  //   iYear      warehouse and department by the costing basis that the account options answer
  void valueChange(std::string_view key, FilterDialog& dialog);

  // CallBack_FilterClick: checks that warehouse or department, free items and batch have a value where the valuation
  // method or the chosen inventory asks for one. Gives the key of the first item, in list order, that lacks it, after
  // telling the user; Cancel is to be set then. Nothing: the filter is complete.
  std::optional<std::string> filterClick(FilterDialog& dialog);

  // CallBack_ReportViewInit and CallBack_ReportViewChange: the view class by the item cCaType, "IA_FXDetail_FXDef" for
  // "成本项目", "IA_FXDetail_FXClass" for anything else; nothing when there is no such item: the view stays as it is.
  static std::optional<std::string> reportView(FilterDialog& dialog);

 private:
  Module& module_;
};

}  // namespace quillon
