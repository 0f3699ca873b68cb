#include "reports/sfc_item/filter_translation.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "frame/automation_error.h"
#include "frame/filter_reading.h"
#include "frame/text.h"

namespace quillon::sfc_item {

namespace {

// What a key does with its item's value. An empty value adds nothing, except where it says otherwise.
enum class Form {
  value,           // opening text, value, closing text
  list,            // opening text, quoted list, closing text
  dateBounds,      // the lower bound goes to the opening condition, the upper one to the where text
  balanceState,    // stored; "1" to "4" add a having condition
  closingBalance,  // a having condition from the digits in the value
  whenZero,        // the opening text when the value is "0"
  expiry,          // inventories that have expired are left out when the value is "0"
};

struct FilterKey {
  std::string_view name;
  Form form;
  std::string_view open = {};   // stands before the value; of dateBounds: before the lower bound
  std::string_view close = {};  // stands behind the value; of dateBounds: before the upper bound
};

// The keys that the outbound summary does not have, or has with another meaning.
constexpr std::array filterKeys{
    FilterKey{"cInvClass", Form::value, "And inv.cInvCCode Like '", "%' "},
    FilterKey{"dKeepDate", Form::dateBounds, "And dKeepDate < '", "And base.dKeepDate <= '"},
    FilterKey{"dVouDate", Form::dateBounds, "And dVouDate < '", "And base.dVouDate <= '"},
    FilterKey{"cDepCode", Form::list, "And dep.cDepCode In (", ")  "},
    FilterKey{"cFSType", Form::balanceState},
    FilterKey{"cJudgeQuantity", Form::closingBalance},
    FilterKey{"cJudgeMoney", Form::closingBalance},
    FilterKey{"cJudgeCost", Form::closingBalance},
    FilterKey{"bIncludeExpire", Form::expiry},
    FilterKey{"bIncludeTransVouch", Form::whenZero,
              "And IsNull(base.cBustype, N'') Not In (N'调拨出库', N'调拨入库') "},
};

// Conditions on which movements a warehouse and inventory had, by the value of cFSType.
struct BalanceState {
  std::string_view value;
  std::string_view condition;
};
constexpr std::array balanceStates{
    BalanceState{
        "1",
        "(Sum(IsNull(iInQuantity,0))<>0 OR Sum(IsNull(iOutQuantity,0))<>0 OR Sum(IsNull(iInMoney,0))<>0 OR Sum(IsNull(iOutMoney,0))<>0)"},
    BalanceState{
        "2",
        "(Sum(IsNull(iInQuantity,0))=0 And Sum(IsNull(iOutQuantity,0))=0 And Sum(IsNull(iInMoney,0))=0 And Sum(IsNull(iOutMoney,0))=0)"},
    BalanceState{
        "3",
        "((Sum(IsNull(iInQuantity,0))<>0 OR Sum(IsNull(iInMoney,0))<>0) And (Sum(IsNull(iOutQuantity,0))=0 And Sum(IsNull(iOutMoney,0))=0))"},
    BalanceState{
        "4",
        "((Sum(IsNull(iInQuantity,0))=0 And Sum(IsNull(iInMoney,0))=0) And (Sum(IsNull(iOutQuantity,0))<>0 Or Sum(IsNull(iOutMoney,0))<>0))"},
};

// Conditions on the closing balance: the piece for digit 0, 1 and 2 of the key's value. A unit cost is positive when
// quantity and amount have the same sign, and zero when the amount is.
struct ClosingBalance {
  std::string_view key;
  std::array<std::string_view, 3> pieces;
};
constexpr std::array closingBalances{
    ClosingBalance{"cJudgeQuantity",
                   {"Sum(IsNull(iQmQuantity, 0)) > 0 OR ", "Sum(IsNull(iQmQuantity, 0)) = 0 OR ",
                    "Sum(IsNull(iQmQuantity, 0)) < 0 OR "}},
    ClosingBalance{
        "cJudgeMoney",
        {"Sum(IsNull(iQmMoney, 0)) > 0 OR ", "Sum(IsNull(iQmMoney, 0)) = 0 OR ", "Sum(IsNull(iQmMoney, 0)) < 0 OR "}},
    ClosingBalance{
        "cJudgeCost",
        {"Sum(IsNull(iQmQuantity, 0)) * Sum(IsNull(iQmMoney, 0)) > 0 OR ", "Sum(IsNull(iQmMoney, 0)) = 0 OR ",
         "Sum(IsNull(iQmQuantity, 0)) * Sum(IsNull(iQmMoney, 0)) < 0 OR "}},
};

std::string closingBalanceCondition(std::string_view key, std::string_view value) {
  const auto* const row =
      std::find_if(closingBalances.begin(), closingBalances.end(), [&](const auto& r) { return r.key == key; });
  std::string pieces;
  for (std::size_t digit = 0; digit < row->pieces.size(); ++digit) {
    if (value.find(static_cast<char>('0' + digit)) != std::string_view::npos) pieces += row->pieces[digit];
  }
  if (pieces.empty()) {
    throw AutomationError(hresult::invalidProcedureCall, "Quillon.clsSFC_Item",
                          "The filter item " + std::string(key) + " has the value \"" + std::string(value) +
                              "\"; choose at least one of 0 (positive), 1 (zero) and 2 (negative), or leave it empty.");
  }
  // The blank before the last "OR " stays.
  constexpr std::string_view connective = "OR ";
  return "(" + pieces.substr(0, pieces.size() - connective.size()) + ")";
}

class Translation {
 public:
  explicit Translation(Module& module) : module_(module) {}

  bool add(const FilterValues& item) {
    if (addCommonItem(item, out_)) return true;
    const auto* const key = std::find_if(filterKeys.begin(), filterKeys.end(),
                                         [&](const FilterKey& k) { return equalIgnoringCase(k.name, item.name); });
    if (key == filterKeys.end()) return false;
    apply(*key, item.value, item.value2);
    return true;
  }

  void addFilterObjectsOwn(const std::string& condition) { out_.where += condition; }

  void addMonthCondition() { out_.month = costItemMonthCondition(module_, out_.year); }

  FilterConditions take() { return std::move(out_); }

 private:
  void apply(const FilterKey& key, const std::string& value, const std::string& value2) {
    switch (key.form) {
      case Form::value:
        addCondition(out_.where, key.open, value, key.close);
        break;
      case Form::list:
        addListCondition(out_.where, key.open, value, key.close);
        break;
      case Form::dateBounds:
        addCondition(out_.opening, key.open, value, "' ");
        addCondition(out_.where, key.close, value2, "' ");
        break;
      case Form::balanceState:
        out_.balanceState = value;
        for (const BalanceState& state : balanceStates) {
          if (state.value == value) addHaving(state.condition);
        }
        break;
      case Form::closingBalance:
        if (!value.empty()) addHaving(closingBalanceCondition(key.name, value));
        break;
      case Form::whenZero:
        if (value == "0") out_.where += key.open;
        break;
      case Form::expiry:
        addExpiryCondition(out_.where, value, module_.loginInUse());
        break;
    }
  }

  void addHaving(std::string_view condition) {
    out_.having += out_.having.empty() ? "Having " : " And ";
    out_.having += condition;
  }

  Module& module_;
  FilterConditions out_;
};

}  // namespace

FilterConditions translateFilter(Filter& filter, Module& module) {
  Translation translation(module);
  translation.addFilterObjectsOwn(
      translateItems(filter, [&](const FilterValues& item) { return translation.add(item); }));
  translation.addMonthCondition();
  return translation.take();
}

}  // namespace quillon::sfc_item
