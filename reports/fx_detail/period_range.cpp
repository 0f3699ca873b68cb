#include "reports/fx_detail/period_range.h"

#include <algorithm>

#include "frame/calendar_date.h"
#include "frame/filter_reading.h"

namespace quillon::fx_detail {

namespace {

constexpr std::string_view inventoryAccounting = "IA";
constexpr int lastPeriod = 12;
constexpr std::string_view keepDate = "The filter item dKeepDate";

// The public component with what each of its period lookups needs.
class Periods {
 public:
  explicit Periods(Module& module)
      : component_(module.publicComponent()), module_(module), session_(module.sessionInUse()) {}

  PeriodDates dates(int year, int month) {
    PeriodDates dates =
        component_.datesOfPeriod(module_.loginInUse().accountCode(), {.year = year, .month = month}, session_);
    constexpr std::string_view meaning = "A bound that GetDateFromPeriod gives for a period";
    return {.begin = isoDate(dates.begin, meaning), .end = isoDate(dates.end, meaning)};
  }
  AccountingPeriod periodOf(const std::string& date) { return component_.periodOfDate(date, session_); }
  // The last month that a report from `first` to `last` may show: it ends with the first one that is not settled.
  int lastShown(int year, int first, int last) {
    for (int month = first; month <= last; ++month) {
      if (!component_.periodSettled({.year = year, .month = month}, session_)) return month;
    }
    return last;
  }

 private:
  PublicComponent& component_;
  Module& module_;
  Session& session_;
};

// False when the range would begin after the year.
bool resolveStart(const std::string& value, int costItemStart, Periods& periods, DetailPeriodRange& range) {
  if (value.empty()) {
    range.startPeriod = costItemStart;
    range.startDate = periods.dates(range.year, costItemStart).begin;
    return true;
  }
  // The date stays as it is given, also when cost items started later.
  range.startDate = isoDate(value, keepDate);
  const AccountingPeriod period = periods.periodOf(range.startDate);
  if (period.year > range.year) return false;
  range.startPeriod = period.year == range.year ? std::max(period.month, costItemStart) : costItemStart;
  return true;
}

// False when the range would end before the year. Of a later year, the month counts.
bool resolveEnd(const std::string& value, Periods& periods, DetailPeriodRange& range) {
  if (value.empty()) {
    range.endDate = periods.dates(range.year, lastPeriod).end;
    range.endPeriod = periods.lastShown(range.year, range.startPeriod, lastPeriod);
    return true;
  }
  range.endDate = isoDate(value, keepDate);
  const AccountingPeriod period = periods.periodOf(range.endDate);
  if (period.year < range.year) return false;
  range.endPeriod = periods.lastShown(range.year, range.startPeriod, period.month);
  return true;
}

}  // namespace

DetailPeriodRange resolvePeriodRange(Filter& filter, Module& module) {
  PublicComponent& component = module.publicComponent();
  Session& session = module.sessionInUse();

  DetailPeriodRange range;
  range.year = yearNumber(filter.item("iYear")->value());

  const int costItemStart = component.costItemStartMonth(std::to_string(range.year), session);
  if (costItemStart == 0) return range;
  if (!component.costItemOpeningsFinished(range.year, session)) return range;

  const AccountingPeriod moduleStart = component.moduleStart(inventoryAccounting, session);
  const bool startedTogether = moduleStart.year == range.year && moduleStart.month == costItemStart;
  range.splitOpening = costItemStart != 1 && !startedTogether;
  range.fxFromMonth = costItemStart == 1 ? 0 : costItemStart;

  Periods periods(module);
  if (!resolveStart(filter.item("dKeepDate")->value(), costItemStart, periods, range)) return range;
  if (!resolveEnd(filter.item("dKeepDate")->value2(), periods, range)) return range;
  range.ok = true;
  return range;
}

}  // namespace quillon::fx_detail
