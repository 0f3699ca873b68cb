// The filter object port (OrvGeneralFilter): what the user chose in the report's filter dialog, as the report classes
// read it. Every member throws AutomationError when the platform's object refuses or lacks it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace quillon {

// Who turns an item into SQL: the report itself, or the filter object through whereWithToken(0).
inline constexpr int tokenReport = 1;
inline constexpr int tokenFilter = 0;

class FilterItem {
 public:
  virtual ~FilterItem() = default;

  virtual void setGroupToken(int token) = 0;  // LngGrouptoken
  virtual std::string name() = 0;             // Name: the item's key, such as "cInvCode"
  virtual std::string value() = 0;            // varValue: the value or lower bound; several values are TAB-separated
  virtual std::string value2() = 0;           // varValue2: the upper bound; empty when not given
  virtual bool rangeInput() = 0;              // RangeInput
  virtual bool multipleSelection() = 0;       // IsMultSel
  virtual std::string sqlText() = 0;          // strSqlString: the condition that the filter object made of the item
};

class Filter {
 public:
  virtual ~Filter() = default;

  virtual int count() = 0;                                             // FilterList.Count
  virtual std::unique_ptr<FilterItem> item(int position) = 0;          // FilterList(1 .. Count)
  virtual std::unique_ptr<FilterItem> item(std::string_view key) = 0;  // FilterList("cInvCode")
  // The condition that the filter object builds from the items whose token is `token`; empty when there is none.
  virtual std::string whereWithToken(int token) = 0;  // GetWhereWithToken
};

}  // namespace quillon
