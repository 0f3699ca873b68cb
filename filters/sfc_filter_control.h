// clsSFCFilterControl: what the filter dialogs of the receipt/issue/balance report and of the outbound summary show and
// how their items depend on one another. One instance lives for one dialog.
//
// Every member throws AutomationError when the dialog, the login, the public component or the session refuses; nothing
// is caught. What a member did before that stays.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "filters/dialog_rules.h"
#include "frame/filter_dialog.h"
#include "frame/module.h"

namespace quillon {

class SfcFilterControl {
 public:
  // `module` must outlive the instance.
  explicit SfcFilterControl(Module& module) : module_(module) {}

  // CallBack_FilterInit: opens the module's session with the dialog's login, takes data rights off the lookups, then
  // fills the lists, defaults and availability of the report that the dialog's identifier names. For any other report
  // nothing more happens. Comes before every other member that reads the account.
  void filterInit(FilterDialog& dialog);

  // CallBack_ValueChange: `key` is the changed item's, in its own spelling.
  //   cInvClass, cInvCCode  the lookup of cInvCode offers the inventories of that class
  //   cModal                iGrade is available only for the report by class, "0"
  //   iYear                 availability and lists of the new year
  void valueChange(std::string_view key, FilterDialog& dialog);

  // CallBack_FilterClick: the member's result, which accepts the filter; Cancel is never set.
  static constexpr bool filterClick() { return true; }

  // CallBack_ReportViewInit and CallBack_ReportViewChange: the view class, "ordin" when cModal is "2", else "cross".
  static std::string reportView(FilterDialog& dialog);

  // InitYear: the account's years from the start of cost accounting (AccInformation, CA 11002) on, without those up to
  // the archive date (AA ArchiveDate), as four digits, in order.
  void initYear();
  // InitGrade: the grades of the cost-item classes, from 1 to the highest (Ca_FxClassDef.iGrade).
  void initGrade();

  const std::vector<std::string>& years() const { return years_; }
  const std::vector<int>& grades() const { return grades_; }
  // The login's LanguageRegion at dialog start.
  const std::string& languageRegion() const { return languageRegion_; }

 private:
  void initOutboundSummary(FilterDialog& dialog);
  void initReceiptIssueBalance(FilterDialog& dialog);
  void offerGrades(FilterDialog& dialog, DialogItem& item);
  void offerVoucherTypes(FilterDialog& dialog, int year);
  void offerBusinessTypes(FilterDialog& dialog, int year);
  // Looks up the valuation method of the year in item iYear and applies its rule; gives the method.
  std::string followValuationOfYear(FilterDialog& dialog);
  void changeYear(FilterDialog& dialog);
  int yearOfLists(FilterDialog& dialog);
  std::vector<Choice> choices(std::string_view sql, std::string_view whenEmpty);
  Session& session();

  Module& module_;
  std::string languageRegion_;
  std::vector<std::string> years_;
  std::vector<int> grades_;
};

}  // namespace quillon
