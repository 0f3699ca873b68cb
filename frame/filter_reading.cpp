#include "frame/filter_reading.h"

#include <memory>
#include <string_view>

#include "frame/automation_error.h"
#include "frame/pub_mod.h"
#include "frame/text.h"

namespace quillon {

std::int16_t yearNumber(const std::string& year) {
  const auto number = wholeNumber<std::int16_t>(year);
  if (!number) {
    throw AutomationError(hresult::typeMismatch, "Quillon",
                          "The filter item iYear has the value \"" + year + "\"; give it a year, such as 2024.");
  }
  return *number;
}

std::string translateItems(Filter& filter, const std::function<bool(const FilterValues& item)>& translate) {
  const int count = filter.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<FilterItem> item = filter.item(position);
    item->setGroupToken(tokenReport);
    FilterValues values;
    values.name = item->name();
    values.value = item->value();
    values.value2 = item->value2();
    // Read as the platform expects of a report; nothing depends on them.
    item->rangeInput();
    item->multipleSelection();
    if (!translate(values)) item->setGroupToken(tokenFilter);
  }
  const std::string own = filter.whereWithToken(tokenFilter);
  return own.empty() ? std::string() : " AND " + own;
}

std::string costItemMonthCondition(Module& module, const std::string& year) {
  Session& session = module.sessionInUse();
  const int start = module.publicComponent().costItemStartMonth(year, session);
  if (start <= 1 || start <= inventoryStartMonth(yearNumber(year), session)) return {};
  return " And base.iMonth >= " + std::to_string(start) + " ";
}

}  // namespace quillon
