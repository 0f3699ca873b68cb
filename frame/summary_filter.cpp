#include "frame/summary_filter.h"

#include <algorithm>
#include <array>

#include "frame/quoted_list.h"
#include "frame/text.h"

namespace quillon {

namespace {

// What a key does with its item's value. An empty value adds nothing, except where it says otherwise.
enum class Form {
  mode,       // stored, also when empty
  year,       // opening text, value, closing text; stored; also when empty
  grade,      // stored; an empty value stores "1"
  warehouse,  // as list; an empty value still asks for a warehouse
  value,      // opening text, value, closing text
  list,       // opening text, quoted list, closing text
};

struct FilterKey {
  std::string_view name;
  Form form;
  std::string_view open = {};   // stands before the value
  std::string_view close = {};  // stands behind it
};

// Document fields 17 to 21 and cBatchIA have no row: the filter object translates them itself.
constexpr std::array filterKeys{
    FilterKey{"cModal", Form::mode},
    FilterKey{"iGrade", Form::grade},
    FilterKey{"iYear", Form::year, "And base.iYear = ", " "},
    FilterKey{"cWhCode", Form::warehouse, "And wh.cWhCode In (", ") "},
    FilterKey{"cInvCode", Form::list, "And inv.cInvcode In (", ") "},
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
};

void append(std::string& to, std::string_view open, std::string_view middle, std::string_view close) {
  to += open;
  to += middle;
  to += close;
}

}  // namespace

void addCondition(std::string& where, std::string_view open, std::string_view value, std::string_view close) {
  if (!value.empty()) append(where, open, value, close);
}

void addListCondition(std::string& where, std::string_view open, std::string_view value, std::string_view close) {
  if (!value.empty()) append(where, open, quotedList(value), close);
}

void addExpiryCondition(std::string& where, std::string_view value, Login& login) {
  if (value == "0") append(where, "And IsNull(inv.dEDate , '9999-12-31') > ='", login.businessDate(), "'  ");
}

bool addCommonItem(const FilterValues& item, SummaryConditions& conditions) {
  const auto* const key =
      std::ranges::find_if(filterKeys, [&](const FilterKey& k) { return equalIgnoringCase(k.name, item.name); });
  if (key == filterKeys.end()) return false;
  const std::string& value = item.value;
  switch (key->form) {
    case Form::mode:
      conditions.mode = value;
      break;
    case Form::year:
      append(conditions.where, key->open, value, key->close);
      conditions.year = value;
      break;
    case Form::grade:
      conditions.grade = value.empty() ? "1" : value;
      break;
    case Form::warehouse:
      if (value.empty()) conditions.where += "And wh.cWhCode Is Not Null ";
      addListCondition(conditions.where, key->open, value, key->close);
      break;
    case Form::value:
      addCondition(conditions.where, key->open, value, key->close);
      break;
    case Form::list:
      addListCondition(conditions.where, key->open, value, key->close);
      break;
  }
  return true;
}

}  // namespace quillon
