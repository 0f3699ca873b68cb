// clsWtFilterControl: what the filter dialog of the cost-item voucher report shows and how its items depend on one
// another. One instance lives for one dialog.
//
// Every member throws AutomationError when the dialog, the login or a component of the platform refuses; nothing is
// caught. What a member did before that stays.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "frame/filter_dialog.h"
#include "frame/module.h"

namespace quillon {

class WtFilterControl {
 public:
  // `module` must outlive the instance.
  explicit WtFilterControl(Module& module) : module_(module) {}

  // msLanguage: the platform's to keep; no member looks at it.
  const std::string& language() const { return language_; }
  void setLanguage(std::string value) { language_ = std::move(value); }

  // CallBack_FilterInit: opens the module's session with the dialog's login and takes data rights off the lookups. For
  // the dialog of this report, which its identifier names, it then gives cBusType and cVouType their list sources, a
  // comma-separated list and a statement, and switches cWhCode and cDepCode by the account's valuation method (option
  // cValueStyle of system IA). The statement's texts come in the login's LanguageRegion.
  void filterInit(FilterDialog& dialog);

  // CallBack_ValueChange: `key` is the changed item's, in its own spelling. A class restricts the lookup of its codes to
  // itself: Inventory.cInvCCode that of Inventory.cInvCode, Customer.cCCCode that of Customer.cCusCode, Vendor.cVCCode
  // that of Vendor.cVenCode.
  void valueChange(std::string_view key, FilterDialog& dialog);

  // CallBack_FilterClick: the member's result, which accepts the filter; Cancel is never set.
  static constexpr bool filterClick() { return true; }

 private:
  void offerChoices(FilterDialog& dialog);
  std::string voucherTypesStatement(FilterDialog& dialog, std::string_view languageRegion);

  Module& module_;
  std::string language_;
};

}  // namespace quillon
