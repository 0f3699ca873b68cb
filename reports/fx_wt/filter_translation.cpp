#include "reports/fx_wt/filter_translation.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>

#include "frame/quoted_list.h"
#include "frame/text.h"

namespace quillon::fx_wt {

namespace {

// Grouping tokens: who turns an item into SQL. The filter object gives one condition for each of its own tokens.
constexpr int byReport = 0;
constexpr int byFilterObject = 1;
constexpr int byFilterObjectAsVoucherNumber = 3;
constexpr std::array filterObjectTokens{1, 2, 3};

// What a key does with its item's values. An empty value adds nothing, except where it says otherwise.
enum class Form {
  voucherTypes,   // handed out as a list
  list,           // one of a list
  voucherNumber,  // left to the filter object, with a token of its own
  dates,          // between two dates
  classCode,      // between two values for a range, else beginning with the value
  code,           // one of a list for a multiple selection, between two values for a range, else the value
  department,     // between two values for a range, else the value
  warehouse,      // as code; where an upper bound is given, also the empty value
  batch,          // left to the filter object
};

struct FilterKey {
  std::string_view name;
  Form form;
  std::string_view column = {};
};

constexpr std::array filterKeys{
    FilterKey{"cVouType", Form::voucherTypes},
    FilterKey{"cBusType", Form::list, "base.cBusType"},
    FilterKey{"PzNoId", Form::voucherNumber},
    FilterKey{"dVouDate", Form::dates, "base.dVouDate"},
    FilterKey{"dKeepDate", Form::dates, "base.dKeepDate"},
    FilterKey{"Inventory.cInvCCode", Form::classCode, "Inventory.cInvCCode"},
    FilterKey{"Customer.cCCCode", Form::classCode, "Customer.cCCCode"},
    FilterKey{"Vendor.cVCCode", Form::classCode, "Vendor.cVCCode"},
    FilterKey{"Customer.cCusCode", Form::code, "Customer.cCusCode"},
    FilterKey{"Vendor.cVenCode", Form::code, "Vendor.cVenCode"},
    FilterKey{"Inventory.cInvCode", Form::code, "Inventory.cInvCode"},
    FilterKey{"cDeptID", Form::department, "CAQ_CostCenterMap.cDeptID "},
    FilterKey{"cWhCode", Form::warehouse, "base.cWhCode"},
    FilterKey{"cBatchia", Form::batch},
};

// The user-defined fields of the inventory, in any letter case.
constexpr std::string_view inventoryFieldPrefix = "cinvdefine";

struct ItemValues {
  std::string name;
  std::string value;   // or the lower bound
  std::string value2;  // the upper bound
  bool range = false;
  bool multiple = false;

  bool empty() const { return value.empty() && value2.empty(); }
};

ItemValues read(FilterItem& item) {
  ItemValues values;
  values.name = item.name();
  values.value = item.value();
  values.value2 = item.value2();
  values.range = item.rangeInput();
  values.multiple = item.multipleSelection();
  return values;
}

std::string condition(std::string_view column, std::string_view comparison, std::string_view value,
                      std::string_view close) {
  std::string text = " And ";
  for (const std::string_view piece : {column, comparison, value, close})
    text += piece;
  return text;
}

std::string equals(std::string_view column, const ItemValues& item) {
  return condition(column, "= N'", item.value, "'");
}

std::string inList(std::string_view column, const ItemValues& item) {
  return condition(column, " in (", quotedList(item.value), ")");
}

std::string between(std::string_view column, const ItemValues& item, std::string_view quote = "N'") {
  std::string text;
  if (!item.value.empty()) text += condition(column, ">= " + std::string(quote), item.value, "'");
  if (!item.value2.empty()) text += condition(column, "<= " + std::string(quote), item.value2, "'");
  return text;
}

std::string betweenOrEquals(std::string_view column, const ItemValues& item) {
  return item.range ? between(column, item) : equals(column, item);
}

// The item's own condition; empty when it has none.
std::string conditionOf(const FilterKey& key, const ItemValues& item) {
  const bool given = !item.value.empty();
  switch (key.form) {
    case Form::list:
      return given ? inList(key.column, item) : std::string();
    case Form::dates:
      return between(key.column, item, "'");
    case Form::classCode:
      if (item.range) return between(key.column, item);
      return given ? condition(key.column, " Like N'", item.value, "%'") : std::string();
    case Form::code:
      if (item.multiple) return given ? inList(key.column, item) : std::string();
      [[fallthrough]];
    case Form::department:
      return given || item.range ? betweenOrEquals(key.column, item) : std::string();
    case Form::warehouse:
      if (item.multiple) return given ? inList(key.column, item) + " " : std::string();
      return item.empty() ? std::string() : betweenOrEquals(key.column, item);
    case Form::voucherTypes:
    case Form::voucherNumber:
    case Form::batch:
      break;
  }
  return {};
}

int tokenOf(Form form) {
  if (form == Form::voucherNumber) return byFilterObjectAsVoucherNumber;
  return form == Form::batch ? byFilterObject : byReport;
}

// The column of a key that has no row in the table: of the inventory or of the ledger line.
std::string columnOf(const std::string& name) {
  const std::string_view prefix = std::string_view(name).substr(0, inventoryFieldPrefix.size());
  return (equalIgnoringCase(prefix, inventoryFieldPrefix) ? "inventory." : "base.") + name;
}

// Gives the token to write, or nothing when the item keeps the one that it has.
std::optional<int> translate(const ItemValues& item, FilterConditions& conditions) {
  const auto* const key = std::ranges::find(filterKeys, item.name, &FilterKey::name);
  if (key == filterKeys.end()) {
    if (item.empty()) return std::nullopt;
    conditions.where += betweenOrEquals(columnOf(item.name), item);
    return byReport;
  }
  if (key->form == Form::voucherTypes) conditions.voucherTypes = quotedList(item.value);
  conditions.where += conditionOf(*key, item);
  return tokenOf(key->form);
}

}  // namespace

FilterConditions translateFilter(Filter& filter) {
  FilterConditions conditions;
  // Opening differences and opening balances are no vouchers.
  conditions.where = " base.cVouType not in (N'33',N'34')";
  const int count = filter.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<FilterItem> item = filter.item(position);
    item->setGroupToken(byFilterObject);
    if (const auto token = translate(read(*item), conditions)) item->setGroupToken(*token);
  }
  for (const int token : filterObjectTokens) {
    const std::string own = filter.whereWithToken(token);
    if (!own.empty()) conditions.where += " AND " + own;
  }
  return conditions;
}

}  // namespace quillon::fx_wt
