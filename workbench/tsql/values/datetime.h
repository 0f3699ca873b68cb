// Calendar arithmetic on DateTime (ticks of 1/300 s since 1900-01-01). The range is 1753-01-01 to 9999-12-31.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

struct DateTimeParts {
  int year = 1900;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int ticks = 0;  // 0..299
};

DateTimeParts partsOf(DateTime value);
// nullopt when a part is out of its range or the date is before 1753.
std::optional<DateTime> fromParts(const DateTimeParts& parts);
bool inRange(DateTime value);

enum class DateTextError { notADate, outOfRange };
struct DateTextResult {
  std::optional<DateTime> value;
  DateTextError error = DateTextError::notADate;  // when there is no value
};
// The order in which a date of three numbers is read when the year is not first: month, day, year, unless the style of
// Convert asks for another.
enum class DateOrder { monthFirst, dayFirst, yearFirst };

// A date, a time or both as text: year first with -, / or . ("2024-3-5", "2024/03/05 8:05"), "20240305", ISO 8601 with
// T, month first ("3/5/2024"), times "8:05", "8:05:30.457", "8:05 PM"; blanks around and the empty text are 1900-01-01.
// Milliseconds round to 1/300 s.
DateTextResult parseDateTime(std::string_view text, DateOrder order = DateOrder::monthFirst);

// "2024-03-05 13:14:15.457"
std::string toText(DateTime value);
void appendText(std::string& text, DateTime value);
// Convert's styles; 0 is "Mar  5 2024  1:14PM". nullopt for a style that is not known.
std::optional<std::string> formatDateTime(DateTime value, int style);

enum class DatePart { year, quarter, month, dayOfYear, day, week, weekday, hour, minute, second, millisecond };
// "year", "yy", "yyyy", "month", "mm", "m", ... in any letter case.
std::optional<DatePart> datePartNamed(std::string_view name);
std::string_view nameOf(DatePart part);  // the long name: "year", "dayofyear", ...
int datePart(DatePart part, DateTime value);
std::string dateName(DatePart part, DateTime value);  // "March", "Tuesday"; all else as a number
// Throws SqlError 517 when the result leaves the range.
DateTime dateAdd(DatePart part, std::int64_t count, DateTime value);
// The boundaries crossed from `start` to `end`.
std::int64_t dateDiff(DatePart part, DateTime start, DateTime end);
// The local time, to the tick.
DateTime currentDateTime();

}  // namespace quillon::tsql
