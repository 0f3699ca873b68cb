#include "frame/cost_items.h"

#include "frame/statement.h"

namespace quillon {

std::string expenseItem(const CaseWords& words, std::string_view material, std::string_view expense) {
  return concatenated({words.caseWhen, " Ca_FxMapExpDID.cAmotype = 0 ", words.then, " ", material, " ", words.otherwise,
                       " ", expense, " ", words.end});
}

std::string_view costItemColumns(ReportMode mode) {
  return mode == ReportMode::costItemClass
             ? "IsNull(fxcls.cFxCCode, Ca_FxClassDef.cFxCCode) As cFXCode, IsNull(fxcls.cfxCName, Ca_FxClassDef.cfxCName) As cFXName"
             : "Ca_FxDef.cFxCode, Ca_FxDef.cFxName";
}

}  // namespace quillon
