#include "frame/calendar_date.h"

#include <charconv>
#include <chrono>
#include <cstddef>

#include "frame/automation_error.h"
#include "frame/text.h"

namespace quillon {

namespace {

// Takes up to `most` digits off the front; -1 when there are fewer than `least`.
int takeNumber(std::string_view& text, std::size_t least, std::size_t most) {
  std::size_t length = 0;
  while (length < text.size() && length < most && isDigit(text[length]))
    ++length;
  if (length < least) return -1;
  int number = 0;
  std::from_chars(text.data(), text.data() + length, number);
  text.remove_prefix(length);
  return number;
}

bool take(std::string_view& text, char expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(1);
  return true;
}

std::string padded(int number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width - digits.size(), '0') + digits;
}

// What may stand behind the day: nothing, or a time of day that holds at least its hour.
bool isTimeOfDay(std::string_view text) {
  if (text.empty()) return true;
  if (!take(text, 'T') && !take(text, ' ')) return false;
  return !text.empty() && isDigit(text.front()) && text.find_first_not_of("0123456789:.") == std::string_view::npos;
}

}  // namespace

std::string isoDate(std::string_view text, std::string_view meaning) {
  std::string_view rest = trimBlanks(text);
  const int year = takeNumber(rest, 4, 4);
  int month = -1;
  int day = -1;
  if (!rest.empty() && isDigit(rest.front())) {
    month = takeNumber(rest, 2, 2);
    day = takeNumber(rest, 2, 2);
  } else if (!rest.empty() && std::string_view("-/.").find(rest.front()) != std::string_view::npos) {
    const char separator = rest.front();
    rest.remove_prefix(1);
    month = takeNumber(rest, 1, 2);
    if (take(rest, separator)) day = takeNumber(rest, 1, 2);
  }
  const bool exists =
      year > 0 && month > 0 && day > 0 &&
      std::chrono::year_month_day(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                  std::chrono::day(static_cast<unsigned>(day)))
          .ok();
  if (!exists || !isTimeOfDay(rest)) {
    throw AutomationError(
        hresult::typeMismatch, "Quillon",
        std::string(meaning) + " has the value \"" + std::string(text) + "\"; give it a date, such as 2024-06-30.");
  }
  return padded(year, 4) + "-" + padded(month, 2) + "-" + padded(day, 2);
}

}  // namespace quillon
