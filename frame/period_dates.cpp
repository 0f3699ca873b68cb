#include "frame/period_dates.h"

namespace quillon {

PeriodDates periodDates(Module& module, std::string_view period) {
  const auto rows = module.sessionInUse().query(
      "select dBegin,dEnd from orvsystem..UA_Period With(NoLock) where CAST( iYear as nvarchar(4)) + '.' + CAST(iId as nvarchar(2)) ='" +
          std::string(period) + "' and cAcc_Id = '" + module.loginInUse().accountCode() + "' ",
      {.cursorType = CursorType::fixed, .lockType = LockType::readOnly, .cursorLocation = {}});
  PeriodDates dates;
  if (!rows->eof()) {
    // A date without its time of day.
    constexpr std::size_t dateLength = 10;
    dates.begin = rows->text(0).value_or("").substr(0, dateLength);
    dates.end = rows->text(1).value_or("").substr(0, dateLength);
  }
  rows->close();
  return dates;
}

}  // namespace quillon
