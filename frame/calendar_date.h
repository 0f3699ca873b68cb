// Calendar dates as texts.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// Takes a date with its year first ("2024-03-05", "2024-3-5", "2024/3/5", "2024.3.5", "20240305"), with or without a
// time of day behind a blank or a "T", and gives it as "yyyy-mm-dd"; the time is left out. Throws AutomationError (type
// mismatch) for anything else and for a day that the calendar does not have. `meaning` says in that error whose value
// it is ("The filter item dKeepDate").
std::string isoDate(std::string_view text, std::string_view meaning);

}  // namespace quillon
