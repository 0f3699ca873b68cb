// The dialog side of the filter object (OrvGeneralFilter): what the filter-control classes read and change while the
// user fills in a report's filter. The report side, which only reads, is frame/filter.h.
// Every member throws AutomationError when the platform's object refuses or lacks it. All texts are UTF-8.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/platform.h"

namespace quillon {

// An item of the dialog.
class DialogItem {
 public:
  virtual ~DialogItem() = default;

  virtual std::string name() = 0;                     // Name: the item's key, such as "cInvCode"
  virtual std::string caption() = 0;                  // Caption: what the user sees beside the item
  virtual std::string value() = 0;                    // varValue: the value, or the lower bound of a range
  virtual void setValue(std::string_view value) = 0;  // writes varValue
  virtual void setBounds(std::string_view lower, std::string_view upper) = 0;  // writes varValue and varValue2
  virtual void setListText(std::string_view choices) = 0;                      // ListText: comma-separated choices
  // ListSource: comma-separated choices, or an SQL statement whose rows are the choices.
  virtual void setListSource(std::string_view choicesOrStatement) = 0;
};

class FilterDialog {
 public:
  virtual ~FilterDialog() = default;

  virtual std::shared_ptr<Login> login() = 0;
  virtual std::string identifier() = 0;  // a GUID without braces; each report's filter has its own
  virtual Session& connection() = 0;     // the dialog's own open connection; lives as long as the dialog

  virtual int count() = 0;                                                       // FilterList.Count
  virtual std::unique_ptr<DialogItem> item(int position) = 0;                    // FilterList(1 .. Count)
  virtual std::unique_ptr<DialogItem> item(std::string_view key) = 0;            // FilterList("cInvCode")
  virtual void setUnavailable(std::string_view key, bool flag) = 0;              // true: the user cannot enter the item
  virtual void setEnumeration(std::string_view key, std::string_view text) = 0;  // enumerationText() makes the text

  // Restricts the lookup of a reference item to the rows that meet `condition`, where #FN[column] names a column of
  // the looked-up table. The filter-control classes pass an empty second argument.
  virtual void setLookupCondition(std::string_view key, std::string_view secondArgument,
                                  std::string_view condition) = 0;
  // The same, telling whether the value that `condition` compares with is empty.
  virtual void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) = 0;
};

}  // namespace quillon
