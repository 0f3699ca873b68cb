// Which periods and dates of a year the detail ledger covers, and where its cost items' opening balances come from.
#pragma once

#include <cstdint>
#include <string>

#include "frame/module.h"

namespace quillon::fx_detail {

struct DetailPeriodRange {
  std::int16_t year = 0;
  int startPeriod = 0;    // the first month with movements and a month balance, 1 to 12
  int endPeriod = 0;      // the last month with a month balance; before `startPeriod` when there is none
  std::string startDate;  // bounds of the movements, "yyyy-mm-dd"
  std::string endDate;
  int fxFromMonth = 0;        // the month in which cost items started; 0 for January
  bool splitOpening = false;  // opening balances: those that were entered when cost items started, and what moved since
  bool ok = false;            // false: nothing to report for this year and these dates; the rest means nothing then
};

// Resolves the filter items iYear and dKeepDate (from value to value2, either may be empty) against the periods of the
// account: iFxStartMonth, IsFxFinishQC, StartMonthYear of "IA", GetDateFromPeriod, GetPeriodFromDate and GetMonthState
// of the public component. Nothing to report is no error: cost items that have no start month in the year or whose
// opening balances are not finished, a range that begins after the year or ends before it. The module's session and
// login must be set. Throws AutomationError when the filter, the component or the session refuses, and for a year or a
// date that is none.
DetailPeriodRange resolvePeriodRange(Filter& filter, Module& module);

}  // namespace quillon::fx_detail
