#include "reports/outsum_item/filter_translation.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "frame/filter_reading.h"
#include "frame/quoted_list.h"
#include "frame/text.h"

namespace quillon::outsum_item {

namespace {

// What a key does with its item's value. An empty value adds nothing, except where it says otherwise.
enum class Form {
  source,        // stored; the opening text unless the value is "0", so also when it is empty
  value,         // opening text, value, closing text
  list,          // opening text, quoted list, closing text
  voucherTypes,  // as list, with the types that belong to 05 and 32 added
  dateRange,     // each bound by itself: the lower behind the opening text, the upper behind the closing text
  expiry,        // inventories that have expired are left out when the value is "0"
};

struct FilterKey {
  std::string_view name;
  Form form;
  std::string_view open = {};   // stands before the value
  std::string_view close = {};  // stands behind the value; of dateRange: before the upper bound
};

// The keys that the receipt/issue/balance report does not have, or has with another meaning.
constexpr std::array filterKeys{
    FilterKey{"cSource", Form::source,
              " And base.AutoID In (Select Distinct iSubID From ia_subsidiary_ItemOut with(nolock)) "},
    FilterKey{"dVouDate", Form::dateRange, "And base.dVouDate >= '", "And base.dVouDate <= '"},
    FilterKey{"cVouType", Form::voucherTypes, "And base.cVouType In (", ") "},
    FilterKey{"cBusType", Form::list, "And base.cBustype In (", ") "},
    FilterKey{"cVouCode", Form::value, "And base.cVoucode = N'", "' "},
    FilterKey{"cInvCCode", Form::value, "And inv.cInvCCode Like '", "%' "},
    FilterKey{"cInvPspCode", Form::list, "And base.cPspCode In (", ") "},
    FilterKey{"dKeepDate", Form::dateRange, "And base.dKeepDate >= '", "And base.dKeepDate <= '"},
    FilterKey{"RdCode", Form::list, "And base.cRdCode In (", ") "},
    FilterKey{"cDepCode", Form::list, "And base.cAccDep In (", ") "},
    FilterKey{"cProCode", Form::value, "And base.cProCode = N'", "' "},
    FilterKey{"cWhDep", Form::list, "And base.cDepCode In (", ") "},
    FilterKey{"cCusCCode", Form::value, "And cus.cCCCode Like '", "%' "},
    FilterKey{"cCusCode", Form::list, "And base.cCuscode In (", ") "},
    FilterKey{"cVenCode", Form::list, "And base.cVenCode In (", ") "},
    FilterKey{"cItem_Class", Form::value, "And base.cItem_Class = N'", "' "},
    FilterKey{"cItemCode", Form::list, "And base.citemcode In (", ") "},
    FilterKey{"cOppHead", Form::list, "And base.cOppHead In (", ") "},
    FilterKey{"strContractCode", Form::value, "And base.strContractCode = N'", "' "},
    FilterKey{"cProordercode", Form::value, "And base.cProordercode = N'", "' "},
    FilterKey{"iProorderids", Form::value, "And base.iProorderids = ", " "},
    FilterKey{"cworkprocode", Form::value, "And base.cworkprocode = ", " "},
    FilterKey{"cworkcentername", Form::list, "And base.cworkcentername In (", ") "},
    FilterKey{"cSaleorderCode", Form::value, "And base.cSaleorderCode = N'", "' "},
    FilterKey{"isaleorderids", Form::value, "And base.isaleorderids = ", " "},
    FilterKey{"exoCode", Form::value, "And base.exoCode = N'", "' "},
    FilterKey{"iexrowno", Form::value, "And base.iexrowno = ", " "},
    FilterKey{"cImordercode", Form::value, "And base.cImordercode = N'", "' "},
    FilterKey{"cpurorderCode", Form::value, "And base.cpurorderCode = N'", "' "},
    FilterKey{"centrustordercode", Form::value, "And base.centrustordercode = N'", "' "},
    FilterKey{"cBuscode", Form::value, "And base.cBuscode = N'", "' "},
    FilterKey{"cperson", Form::list, "And base.cPersonCode In (", ") "},
    FilterKey{"cMaker", Form::list, "And base.cMaker In (", ") "},
    FilterKey{"dIncludeExpire", Form::expiry},
    FilterKey{"cInvDefine1", Form::list, "And inv.cInvDefine1 In (", ") "},
    FilterKey{"cInvDefine2", Form::list, "And inv.cInvDefine2 In (", ") "},
    FilterKey{"cInvDefine3", Form::list, "And inv.cInvDefine3 In (", ") "},
    FilterKey{"cInvDefine4", Form::list, "And inv.cInvDefine4 In (", ") "},
    FilterKey{"cInvDefine5", Form::list, "And inv.cInvDefine5 In (", ") "},
    FilterKey{"cInvDefine6", Form::list, "And inv.cInvDefine6 In (", ") "},
    FilterKey{"cInvDefine7", Form::list, "And inv.cInvDefine7 In (", ") "},
    FilterKey{"cInvDefine8", Form::list, "And inv.cInvDefine8 In (", ") "},
    FilterKey{"cInvDefine9", Form::list, "And inv.cInvDefine9 In (", ") "},
    FilterKey{"cInvDefine10", Form::list, "And inv.cInvDefine10 In (", ") "},
    FilterKey{"cInvDefine11", Form::value, "And inv.cInvDefine11 = ", " "},
    FilterKey{"cInvDefine12", Form::value, "And inv.cInvDefine12 = ", " "},
    FilterKey{"cInvDefine13", Form::value, "And inv.cInvDefine13 = ", " "},
    FilterKey{"cInvDefine14", Form::value, "And inv.cInvDefine14 = ", " "},
    FilterKey{"cInvDefine15", Form::value, "And inv.cInvDefine15 = N'", "' "},
    FilterKey{"cInvDefine16", Form::value, "And inv.cInvDefine16 = N'", "' "},
};

// Choosing a type also chooses the types under which the ledger keeps vouchers of the same kind.
std::string voucherTypeList(std::string_view value) {
  std::string list = quotedList(value);
  replaceAll(list, "'05'", "'05','06','5','6'");
  replaceAll(list, "'32'", "'32','3201'");
  return list;
}

void apply(const FilterKey& key, const FilterValues& item, Module& module, FilterConditions& out) {
  const std::string& value = item.value;
  switch (key.form) {
    case Form::source:
      out.source = value;
      if (value != "0") out.where += key.open;
      break;
    case Form::value:
      addCondition(out.where, key.open, value, key.close);
      break;
    case Form::list:
      addListCondition(out.where, key.open, value, key.close);
      break;
    case Form::voucherTypes:
      addCondition(out.where, key.open, voucherTypeList(value), key.close);
      break;
    case Form::dateRange:
      addCondition(out.where, key.open, value, "' ");
      addCondition(out.where, key.close, item.value2, "' ");
      break;
    case Form::expiry:
      addExpiryCondition(out.where, value, module.loginInUse());
      break;
  }
}

}  // namespace

void translateFilter(Filter& filter, Module& module, FilterConditions& conditions) {
  conditions.where = "Where 1 = 1 ";
  conditions.source.clear();
  const std::string filterObjectsOwn = translateItems(filter, [&](const FilterValues& item) {
    if (addCommonItem(item, conditions)) return true;
    const auto* const key = std::find_if(filterKeys.begin(), filterKeys.end(),
                                         [&](const FilterKey& k) { return equalIgnoringCase(k.name, item.name); });
    if (key == filterKeys.end()) return false;
    apply(*key, item, module, conditions);
    return true;
  });
  conditions.where += filterObjectsOwn;
  conditions.monthRestricted = false;
  const std::string month = costItemMonthCondition(module, conditions.year);
  conditions.where += month;
  conditions.monthRestricted = !month.empty();
}

}  // namespace quillon::outsum_item
