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
  mode,          // stored as the report mode, also when empty
  grade,         // stored; an empty value stores "1"
  year,          // opening text, value, closing text; stored as the report year; also when empty
  source,        // stored; the opening text unless the value is "0", so also when it is empty
  value,         // opening text, value, closing text
  list,          // opening text, quoted list, closing text
  voucherTypes,  // as list, with the types that belong to 05 and 32 added
  dateRange,     // each bound by itself: the lower behind the opening text, the upper behind the closing text
  warehouse,     // as list; an empty value still asks for a warehouse
  expiry,        // opening text, the login's date, closing text when the value is "0"
};

struct FilterKey {
  std::string_view name;
  Form form;
  std::string_view open = {};   // stands before the value
  std::string_view close = {};  // stands behind the value; of dateRange: before the upper bound
};

// In the order in which an item's name is compared; the first match applies. Document fields 17 to 21 and cBatchIA have
// no row: the filter object translates them itself.
constexpr std::array filterKeys{
    FilterKey{"cModal", Form::mode},
    FilterKey{"iGrade", Form::grade},
    FilterKey{"iYear", Form::year, "And base.iYear = ", " "},
    FilterKey{"cSource", Form::source,
              " And base.AutoID In (Select Distinct iSubID From ia_subsidiary_ItemOut with(nolock)) "},
    FilterKey{"dVouDate", Form::dateRange, "And base.dVouDate >= '", "And base.dVouDate <= '"},
    FilterKey{"cVouType", Form::voucherTypes, "And base.cVouType In (", ") "},
    FilterKey{"cBusType", Form::list, "And base.cBustype In (", ") "},
    FilterKey{"cVouCode", Form::value, "And base.cVoucode = N'", "' "},
    FilterKey{"cWhCode", Form::warehouse, "And wh.cWhCode In (", ") "},
    FilterKey{"cInvCCode", Form::value, "And inv.cInvCCode Like '", "%' "},
    FilterKey{"cInvCode", Form::list, "And inv.cInvcode In (", ") "},
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
    FilterKey{"dIncludeExpire", Form::expiry, "And IsNull(inv.dEDate , '9999-12-31') > ='", "'  "},
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

void append(std::string& to, std::string_view open, std::string_view middle, std::string_view close) {
  to += open;
  to += middle;
  to += close;
}

void apply(const FilterKey& key, const FilterValues& item, Module& module, FilterConditions& out) {
  const std::string& value = item.value;
  switch (key.form) {
    case Form::mode:
      out.mode = value;
      break;
    case Form::grade:
      out.grade = value.empty() ? "1" : value;
      break;
    case Form::year:
      append(out.where, key.open, value, key.close);
      out.year = value;
      break;
    case Form::source:
      out.source = value;
      if (value != "0") out.where += key.open;
      break;
    case Form::value:
      if (!value.empty()) append(out.where, key.open, value, key.close);
      break;
    case Form::list:
      if (!value.empty()) append(out.where, key.open, quotedList(value), key.close);
      break;
    case Form::voucherTypes:
      if (!value.empty()) append(out.where, key.open, voucherTypeList(value), key.close);
      break;
    case Form::dateRange:
      if (!value.empty()) append(out.where, key.open, value, "' ");
      if (!item.value2.empty()) append(out.where, key.close, item.value2, "' ");
      break;
    case Form::warehouse:
      if (value.empty()) {
        out.where += "And wh.cWhCode Is Not Null ";
      } else {
        append(out.where, key.open, quotedList(value), key.close);
      }
      break;
    case Form::expiry:
      if (value == "0") append(out.where, key.open, module.login->businessDate(), key.close);
      break;
  }
}

}  // namespace

void translateFilter(Filter& filter, Module& module, FilterConditions& conditions) {
  conditions.where = "Where 1 = 1 ";
  conditions.source.clear();
  const std::string filterObjectsOwn = translateItems(filter, [&](const FilterValues& item) {
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
