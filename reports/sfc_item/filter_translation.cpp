#include "reports/sfc_item/filter_translation.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "frame/automation_error.h"
#include "frame/filter_reading.h"
#include "frame/quoted_list.h"
#include "frame/text.h"

namespace quillon::sfc_item {

namespace {

// What a key does with its item's value. An empty value adds nothing, except where it says otherwise.
enum class Form {
  mode,            // stored as the report mode, also when empty
  year,            // opening text, value, closing text; stored as the report year; also when empty
  value,           // opening text, value, closing text
  list,            // opening text, quoted list, closing text
  dateBounds,      // the lower bound goes to the opening condition, the upper one to the where text
  warehouse,       // as list; an empty value still asks for a warehouse
  balanceState,    // stored; "1" to "4" add a having condition
  grade,           // stored; an empty value stores "1"
  closingBalance,  // a having condition from the digits in the value
  whenZero,        // the opening text when the value is "0"
  expiry,          // opening text, the login's date, closing text when the value is "0"
};

struct FilterKey {
  std::string_view name;
  Form form;
  std::string_view open = {};   // stands before the value; of dateBounds: before the lower bound
  std::string_view close = {};  // stands behind the value; of dateBounds: before the upper bound
};

// In the order in which an item's name is compared; the first match applies. Document fields 17 to 21 and cBatchIA
// have no row: the filter object translates them itself.
constexpr std::array filterKeys{
    FilterKey{"cModal", Form::mode},
    FilterKey{"iYear", Form::year, "And base.iYear = ", " "},
    FilterKey{"cInvClass", Form::value, "And inv.cInvCCode Like '", "%' "},
    FilterKey{"cInvCode", Form::list, "And inv.cInvcode In (", ") "},
    FilterKey{"dKeepDate", Form::dateBounds, "And dKeepDate < '", "And base.dKeepDate <= '"},
    FilterKey{"dVouDate", Form::dateBounds, "And dVouDate < '", "And base.dVouDate <= '"},
    FilterKey{"cWhCode", Form::warehouse, "And wh.cWhCode In (", ") "},
    FilterKey{"cDepCode", Form::list, "And dep.cDepCode In (", ")  "},
    FilterKey{"cFSType", Form::balanceState},
    FilterKey{"iGrade", Form::grade},
    FilterKey{"cJudgeQuantity", Form::closingBalance},
    FilterKey{"cJudgeMoney", Form::closingBalance},
    FilterKey{"cJudgeCost", Form::closingBalance},
    FilterKey{"bIncludeExpire", Form::expiry, "And IsNull(inv.dEDate , '9999-12-31') > ='", "'  "},
    FilterKey{"cFree1", Form::list, "And base.cFree1 In (", ") "},
    FilterKey{"cFree2", Form::list, "And base.cFree2 In (", ") "},
    FilterKey{"cFree3", Form::list, "And base.cFree3 In (", ") "},
    FilterKey{"cFree4", Form::list, "And base.cFree4 In (", ") "},
    FilterKey{"cFree5", Form::list, "And base.cFree5 In (", ") "},
    FilterKey{"cFree6", Form::list, "And base.cFree6 In (", ") "},
    FilterKey{"cFree7", Form::list, "And base.cFree7 In (", ") "},
    FilterKey{"cFree8", Form::list, "And base.cFree8 In (", ") "},
    FilterKey{"cFree9", Form::list, "And base.cFree9 In (", ") "},
    FilterKey{"cFree10", Form::list, "And base.cFree10 In (", ") "},
    FilterKey{"cDefine1", Form::list, "And base.cDefine1 In (", ") "},
    FilterKey{"cDefine2", Form::list, "And base.cDefine2 In (", ") "},
    FilterKey{"cDefine3", Form::list, "And base.cDefine3 In (", ") "},
    FilterKey{"cDefine8", Form::list, "And base.cDefine8 In (", ") "},
    FilterKey{"cDefine9", Form::list, "And base.cDefine9 In (", ") "},
    FilterKey{"cDefine10", Form::list, "And base.cDefine10 In (", ") "},
    FilterKey{"cDefine11", Form::list, "And base.cDefine11 In (", ") "},
    FilterKey{"cDefine12", Form::list, "And base.cDefine12 In (", ") "},
    FilterKey{"cDefine13", Form::list, "And base.cDefine13 In (", ") "},
    FilterKey{"cDefine14", Form::list, "And base.cDefine14 In (", ") "},
    FilterKey{"cDefine22", Form::list, "And base.cDefine22 In (", ") "},
    FilterKey{"cDefine23", Form::list, "And base.cDefine23 In (", ") "},
    FilterKey{"cDefine24", Form::list, "And base.cDefine24 In (", ") "},
    FilterKey{"cDefine25", Form::list, "And base.cDefine25 In (", ") "},
    FilterKey{"cDefine28", Form::list, "And base.cDefine28 In (", ") "},
    FilterKey{"cDefine29", Form::list, "And base.cDefine29 In (", ") "},
    FilterKey{"cDefine30", Form::list, "And base.cDefine30 In (", ") "},
    FilterKey{"cDefine31", Form::list, "And base.cDefine31 In (", ") "},
    FilterKey{"cDefine32", Form::list, "And base.cDefine32 In (", ") "},
    FilterKey{"cDefine33", Form::list, "And base.cDefine33 In (", ") "},
    FilterKey{"cDefine4", Form::value, "And base.cDefine4 = N'", "' "},
    FilterKey{"cDefine6", Form::value, "And base.cDefine6 = N'", "' "},
    FilterKey{"cDefine16", Form::value, "And base.cDefine16 = N'", "' "},
    FilterKey{"cDefine36", Form::value, "And base.cDefine36 = N'", "' "},
    FilterKey{"cDefine37", Form::value, "And base.cDefine37 = N'", "' "},
    FilterKey{"cDefine5", Form::value, "And base.cDefine5 = ", " "},
    FilterKey{"cDefine7", Form::value, "And base.cDefine7 = ", " "},
    FilterKey{"cDefine15", Form::value, "And base.cDefine15 = ", " "},
    FilterKey{"cDefine26", Form::value, "And base.cDefine26 = ", " "},
    FilterKey{"cDefine27", Form::value, "And base.cDefine27 = ", " "},
    FilterKey{"cDefine34", Form::value, "And base.cDefine34 = ", " "},
    FilterKey{"cDefine35", Form::value, "And base.cDefine35 = ", " "},
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
      case Form::mode:
        out_.mode = value;
        break;
      case Form::year:
        append(out_.where, key.open, value, key.close);
        out_.year = value;
        break;
      case Form::value:
        if (!value.empty()) append(out_.where, key.open, value, key.close);
        break;
      case Form::list:
        if (!value.empty()) append(out_.where, key.open, quotedList(value), key.close);
        break;
      case Form::dateBounds:
        if (!value.empty()) append(out_.opening, key.open, value, "' ");
        if (!value2.empty()) append(out_.where, key.close, value2, "' ");
        break;
      case Form::warehouse:
        if (value.empty()) {
          out_.where += "And wh.cWhCode Is Not Null ";
        } else {
          append(out_.where, key.open, quotedList(value), key.close);
        }
        break;
      case Form::balanceState:
        out_.balanceState = value;
        for (const BalanceState& state : balanceStates) {
          if (state.value == value) addHaving(state.condition);
        }
        break;
      case Form::grade:
        out_.grade = value.empty() ? "1" : value;
        break;
      case Form::closingBalance:
        if (!value.empty()) addHaving(closingBalanceCondition(key.name, value));
        break;
      case Form::whenZero:
        if (value == "0") out_.where += key.open;
        break;
      case Form::expiry:
        if (value == "0") append(out_.where, key.open, module_.login->businessDate(), key.close);
        break;
    }
  }

  static void append(std::string& to, std::string_view open, std::string_view middle, std::string_view close) {
    to += open;
    to += middle;
    to += close;
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
