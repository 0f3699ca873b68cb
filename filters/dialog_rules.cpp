#include "filters/dialog_rules.h"

#include <memory>

#include "frame/text.h"

namespace quillon {

void liftDataRights(Module& module) {
  module.publicComponent();
  module.loginInUse().setAuthString("department=False,inventory=False,warehouse=False");
}

std::string usedYearsList(Module& module, FilterDialog& dialog) {
  PublicComponent& component = module.publicComponent();
  Session& connection = dialog.connection();
  std::string list;
  for (const std::string& year : component.usedYears(module.loginInUse().accountCode(), connection)) {
    if (!list.empty()) list += ',';
    if (component.costItemStartMonth(year, connection) != 0) list += year;
  }
  return list;
}

void offerUsedYears(Module& module, FilterDialog& dialog, DialogItem& item) {
  const std::string years = usedYearsList(module, dialog);
  item.setListText(years);
  if (!item.value().empty()) return;
  const std::string loginYear = module.loginInUse().accountingYearText();
  item.setValue(years.find(loginYear) != std::string::npos
                    ? loginYear
                    : std::to_string(module.publicComponent().currentPeriodYear(dialog.connection())));
}

void applyValuationRule(FilterDialog& dialog, std::string_view valuationMethod) {
  dialog.setUnavailable("cWhCode", false);
  dialog.setUnavailable("cDepCode", false);
  if (valuationMethod == valuationByInventory) {
    dialog.setUnavailable("cWhCode", true);
    dialog.setUnavailable("cDepCode", true);
  } else if (valuationMethod == valuationByDepartment) {
    dialog.setUnavailable("cWhCode", true);
  } else {
    dialog.setUnavailable("cDepCode", true);
  }
}

std::string enumerationText(const std::vector<Choice>& choices) {
  constexpr std::string_view separator = "{#}";
  std::string codes;
  std::string names;
  for (const Choice& choice : choices) {
    if (&choice != &choices.front()) {
      codes += separator;
      names += separator;
    }
    codes += choice.code;
    names += choice.name;
  }
  return codes + "{##}" + names;
}

}  // namespace quillon
