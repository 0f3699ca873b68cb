#include "workbench/tsql/values/datetime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "frame/text.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

constexpr std::int64_t ticksPerSecond = 300;
constexpr std::int64_t ticksPerMinute = 60 * ticksPerSecond;
constexpr std::int64_t ticksPerHour = 60 * ticksPerMinute;
constexpr int firstYear = 1753;
constexpr int lastYear = 9999;

constexpr std::int64_t floorDivide(std::int64_t a, std::int64_t b) {
  return a / b - (a % b < 0 ? 1 : 0);
}

constexpr std::chrono::sys_days firstDay = std::chrono::year(1900) / 1 / 1;

// Days since 1900-01-01.
constexpr std::int64_t dayNumber(int year, int month, int day) {
  return (std::chrono::sys_days(std::chrono::year(year) / month / day) - firstDay).count();
}

int daysIn(int year, int month) {
  const auto last = std::chrono::year(year) / month / std::chrono::last;
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

std::int64_t dayOf(DateTime value) {
  return floorDivide(value.ticks, DateTime::ticksPerDay);
}

constexpr std::int64_t minTicks = dayNumber(firstYear, 1, 1) * DateTime::ticksPerDay;
constexpr std::int64_t maxTicks = (dayNumber(lastYear, 12, 31) + 1) * DateTime::ticksPerDay - 1;

constexpr std::array<std::string_view, 12> monthNames = {"January",   "February", "March",    "April",
                                                         "May",       "June",     "July",     "August",
                                                         "September", "October",  "November", "December"};

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Reads a date and a time from left to right. Each part may stand once; anything left over at the end is an error.
class DateTimeReader {
 public:
  DateTimeReader(std::string_view text, DateOrder order) : text_(text), order_(order) {}

  DateTextResult read() {
    skipBlanks();
    while (position_ < text_.size()) {
      if (!readItem()) return {};
      skipBlanks();
    }
    if (inRange_) {
      if (const auto value = fromParts(parts_)) {
        // Rounding the milliseconds up may carry over into a day that is out of range.
        const DateTime rounded{value->ticks + fractionTicks_};
        if (rounded.ticks <= maxTicks) return {rounded, {}};
      }
    }
    return {{}, DateTextError::outOfRange};
  }

 private:
  struct Number {
    int value = 0;
    std::size_t digits = 0;
  };

  void skipBlanks() {
    while (position_ < text_.size() && text_[position_] == ' ')
      ++position_;
  }
  char peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }
  bool take(char c) {
    if (peek() != c) return false;
    ++position_;
    return true;
  }

  Number readNumber() {
    Number number;
    while (isDigit(peek())) {
      if (number.digits < 8) number.value = number.value * 10 + (peek() - '0');
      ++number.digits;
      ++position_;
    }
    return number;
  }

  std::string_view readWord() {
    const std::size_t from = position_;
    while (isLetter(peek()))
      ++position_;
    return text_.substr(from, position_ - from);
  }

  bool readItem() {
    if (isLetter(peek())) return readMonthName(Number());
    const Number first = readNumber();
    if (first.digits == 0) return false;
    const char separator = peek();
    if (separator == ':') return readTime(first);
    if (separator == '-' || separator == '/' || separator == '.') return readDate(first, separator);
    const std::size_t afterNumber = position_;
    skipBlanks();
    if (isLetter(peek())) {
      const std::size_t wordAt = position_;
      const std::string_view word = readWord();
      position_ = wordAt;
      const bool halfDay = equalIgnoringCase(word, "am") || equalIgnoringCase(word, "pm");
      return halfDay ? readTime(first) : readMonthName(first);
    }
    position_ = afterNumber;
    return readCompactDate(first);
  }

  bool setDate(int year, int month, int day) {
    if (hasDate_) return false;
    hasDate_ = true;
    parts_.year = year;
    parts_.month = month;
    parts_.day = day;
    return true;
  }

  static int fullYear(const Number& year) {
    // Two digits mean 1950 to 2049.
    if (year.digits > 2) return year.value;
    return year.value < 50 ? 2000 + year.value : 1900 + year.value;
  }

  // 20240305, 240305, and a year alone.
  bool readCompactDate(const Number& number) {
    if (number.digits == 8) return setDate(number.value / 10000, number.value / 100 % 100, number.value % 100);
    if (number.digits == 6) {
      return setDate(fullYear({number.value / 10000, 2}), number.value / 100 % 100, number.value % 100);
    }
    return number.digits == 4 && setDate(number.value, 1, 1);
  }

  // Three numbers with the same separator; a year of four digits may stand first or last.
  bool readDate(const Number& first, char separator) {
    ++position_;
    const Number second = readNumber();
    if (second.digits == 0 || second.digits > 2 || !take(separator)) return false;
    const Number third = readNumber();
    if (third.digits == 0) return false;
    if (take('T') && !isDigit(peek())) return false;
    if (first.digits == 4) return third.digits <= 2 && setDate(first.value, second.value, third.value);
    if (first.digits > 2 || (third.digits != 2 && third.digits != 4)) return false;
    switch (order_) {
      case DateOrder::monthFirst:
        return setDate(fullYear(third), first.value, second.value);
      case DateOrder::dayFirst:
        return setDate(fullYear(third), second.value, first.value);
      case DateOrder::yearFirst:
        if (third.digits == 4) return setDate(third.value, first.value, second.value);
        return setDate(fullYear(first), second.value, third.value);
    }
    return false;
  }

  // "Mar 5 2024", "March 5, 2024", "5 Mar 2024"; the day may be missing.
  bool readMonthName(const Number& before) {
    const std::string_view word = readWord();
    int month = 0;
    for (std::size_t i = 0; i < monthNames.size(); ++i) {
      if (equalIgnoringCase(word, monthNames[i]) || equalIgnoringCase(word, monthNames[i].substr(0, 3))) {
        month = static_cast<int>(i) + 1;
      }
    }
    if (month == 0) return false;
    std::array<Number, 2> numbers{before, Number()};
    std::size_t count = before.digits > 0 ? 1 : 0;
    while (count < 2) {
      skipBlanks();
      if (take(',')) skipBlanks();
      const std::size_t from = position_;
      const Number number = readNumber();
      if (number.digits == 0 || peek() == ':') {
        position_ = from;
        break;
      }
      numbers[count++] = number;
    }
    if (count == 0) return false;
    if (count == 1) return numbers[0].digits == 4 && setDate(numbers[0].value, month, 1);
    if (numbers[0].digits == 4) std::swap(numbers[0], numbers[1]);
    if (numbers[0].digits > 2 || (numbers[1].digits != 2 && numbers[1].digits != 4)) return false;
    return setDate(fullYear(numbers[1]), month, numbers[0].value);
  }

  // "8:05", "8:05:30", "8:05:30.457", "8:05:30:457", each with AM or PM; "8 PM"; Z at the end.
  bool readTime(const Number& hour) {
    if (hasTime_ || hour.digits > 2) return false;
    hasTime_ = true;
    parts_.hour = hour.value;
    if (take(':')) {
      const Number minute = readNumber();
      if (minute.digits == 0 || minute.digits > 2) return false;
      parts_.minute = minute.value;
      if (take(':')) {
        const Number second = readNumber();
        if (second.digits == 0 || second.digits > 2) return false;
        parts_.second = second.value;
        if ((peek() == '.' || peek() == ':') && !readFraction()) return false;
      }
    }
    if (take('Z')) return true;
    skipBlanks();
    return !isLetter(peek()) || readHalfDay();
  }

  bool readFraction() {
    const bool decimals = text_[position_++] == '.';
    const Number fraction = readNumber();
    if (fraction.digits == 0 || fraction.digits > 3) return false;
    int milliseconds = fraction.value;
    if (decimals) {
      for (std::size_t i = fraction.digits; i < 3; ++i)
        milliseconds *= 10;
    }
    fractionTicks_ = (milliseconds * 3 + 5) / 10;
    return true;
  }

  bool readHalfDay() {
    const std::string_view word = readWord();
    const bool afternoon = equalIgnoringCase(word, "pm");
    if (!afternoon && !equalIgnoringCase(word, "am")) return false;
    if (afternoon && parts_.hour < 12) parts_.hour += 12;
    if (!afternoon && parts_.hour > 12) inRange_ = false;
    if (!afternoon && parts_.hour == 12) parts_.hour = 0;
    return true;
  }

  std::string_view text_;
  DateOrder order_;
  std::size_t position_ = 0;
  DateTimeParts parts_;
  std::int64_t fractionTicks_ = 0;
  bool hasDate_ = false;
  bool hasTime_ = false;
  bool inRange_ = true;
};

template <class... Arguments>
std::string print(const char* format, Arguments... arguments) {
  std::array<char, 64> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), format, arguments...);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

int milliseconds(const DateTimeParts& parts) {
  return (parts.ticks * 10 + 1) / 3;
}

struct PartName {
  std::string_view name;
  DatePart part;
};

// The long name of a part comes first.
constexpr std::array<PartName, 30> partNames = {{
    {"year", DatePart::year},       {"yy", DatePart::year},
    {"yyyy", DatePart::year},       {"quarter", DatePart::quarter},
    {"qq", DatePart::quarter},      {"q", DatePart::quarter},
    {"month", DatePart::month},     {"mm", DatePart::month},
    {"m", DatePart::month},         {"dayofyear", DatePart::dayOfYear},
    {"dy", DatePart::dayOfYear},    {"y", DatePart::dayOfYear},
    {"day", DatePart::day},         {"dd", DatePart::day},
    {"d", DatePart::day},           {"week", DatePart::week},
    {"wk", DatePart::week},         {"ww", DatePart::week},
    {"weekday", DatePart::weekday}, {"dw", DatePart::weekday},
    {"w", DatePart::weekday},       {"hour", DatePart::hour},
    {"hh", DatePart::hour},         {"minute", DatePart::minute},
    {"mi", DatePart::minute},       {"n", DatePart::minute},
    {"second", DatePart::second},   {"ss", DatePart::second},
    {"s", DatePart::second},        {"millisecond", DatePart::millisecond},
}};

// Sunday is day 1 of a week.
int weekdayOf(std::int64_t day) {
  return static_cast<int>((day + 1) - floorDivide(day + 1, 7) * 7) + 1;  // 1900-01-01 was a Monday
}

}  // namespace

DateTimeParts partsOf(DateTime value) {
  const std::int64_t day = dayOf(value);
  const auto timeTicks = static_cast<int>(value.ticks - day * DateTime::ticksPerDay);
  const std::chrono::year_month_day date(firstDay + std::chrono::days(day));
  DateTimeParts parts;
  parts.year = static_cast<int>(date.year());
  parts.month = static_cast<int>(static_cast<unsigned>(date.month()));
  parts.day = static_cast<int>(static_cast<unsigned>(date.day()));
  parts.hour = timeTicks / static_cast<int>(ticksPerHour);
  parts.minute = timeTicks / static_cast<int>(ticksPerMinute) % 60;
  parts.second = timeTicks / static_cast<int>(ticksPerSecond) % 60;
  parts.ticks = timeTicks % static_cast<int>(ticksPerSecond);
  return parts;
}

std::optional<DateTime> fromParts(const DateTimeParts& parts) {
  const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
  if (!within(parts.year, firstYear, lastYear) || !within(parts.month, 1, 12) ||
      !within(parts.day, 1, daysIn(parts.year, parts.month)) || !within(parts.hour, 0, 23) ||
      !within(parts.minute, 0, 59) || !within(parts.second, 0, 59) || !within(parts.ticks, 0, 299)) {
    return {};
  }
  return DateTime{dayNumber(parts.year, parts.month, parts.day) * DateTime::ticksPerDay + parts.hour * ticksPerHour +
                  parts.minute * ticksPerMinute + parts.second * ticksPerSecond + parts.ticks};
}

bool inRange(DateTime value) {
  return value.ticks >= minTicks && value.ticks <= maxTicks;
}

DateTextResult parseDateTime(std::string_view text, DateOrder order) {
  return DateTimeReader(text, order).read();
}

void appendText(std::string& text, DateTime value) {
  const DateTimeParts parts = partsOf(value);
  if (parts.year < 0 || parts.year > lastYear) {  // what a damaged file may hold
    text += print("%04d-%02d-%02d %02d:%02d:%02d.%03d", parts.year, parts.month, parts.day, parts.hour, parts.minute,
                  parts.second, milliseconds(parts));
    return;
  }
  // The number's digits from the one at `place` on, and what follows them.
  const auto put = [&text](int number, int place, std::string_view behind) {
    for (; place > 0; place /= 10)
      text += static_cast<char>('0' + number / place % 10);
    text += behind;
  };
  put(parts.year, 1000, "-");
  put(parts.month, 10, "-");
  put(parts.day, 10, " ");
  put(parts.hour, 10, ":");
  put(parts.minute, 10, ":");
  put(parts.second, 10, ".");
  put(milliseconds(parts), 100, "");
}

std::string toText(DateTime value) {
  std::string text;
  appendText(text, value);
  return text;
}

std::optional<std::string> formatDateTime(DateTime value, int style) {
  const DateTimeParts p = partsOf(value);
  const int shortYear = p.year % 100;
  const int halfHour = p.hour % 12 == 0 ? 12 : p.hour % 12;
  const char* half = p.hour < 12 ? "AM" : "PM";
  const std::string month(monthNames[static_cast<std::size_t>(p.month - 1)].substr(0, 3));
  switch (style) {
    case 0:
    case 100:
      return print("%s %2d %04d %2d:%02d%s", month.c_str(), p.day, p.year, halfHour, p.minute, half);
    case 1:
      return print("%02d/%02d/%02d", p.month, p.day, shortYear);
    case 101:
      return print("%02d/%02d/%04d", p.month, p.day, p.year);
    case 2:
      return print("%02d.%02d.%02d", shortYear, p.month, p.day);
    case 102:
      return print("%04d.%02d.%02d", p.year, p.month, p.day);
    case 3:
      return print("%02d/%02d/%02d", p.day, p.month, shortYear);
    case 103:
      return print("%02d/%02d/%04d", p.day, p.month, p.year);
    case 104:
      return print("%02d.%02d.%04d", p.day, p.month, p.year);
    case 105:
      return print("%02d-%02d-%04d", p.day, p.month, p.year);
    case 106:
      return print("%02d %s %04d", p.day, month.c_str(), p.year);
    case 107:
      return print("%s %02d, %04d", month.c_str(), p.day, p.year);
    case 8:
    case 24:
    case 108:
      return print("%02d:%02d:%02d", p.hour, p.minute, p.second);
    case 9:
    case 109:
      return print("%s %2d %04d %2d:%02d:%02d:%03d%s", month.c_str(), p.day, p.year, halfHour, p.minute, p.second,
                   milliseconds(p), half);
    case 110:
      return print("%02d-%02d-%04d", p.month, p.day, p.year);
    case 11:
      return print("%02d/%02d/%02d", shortYear, p.month, p.day);
    case 111:
      return print("%04d/%02d/%02d", p.year, p.month, p.day);
    case 12:
      return print("%02d%02d%02d", shortYear, p.month, p.day);
    case 112:
      return print("%04d%02d%02d", p.year, p.month, p.day);
    case 14:
    case 114:
      return print("%02d:%02d:%02d:%03d", p.hour, p.minute, p.second, milliseconds(p));
    case 20:
    case 120:
      return print("%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour, p.minute, p.second);
    case 21:
    case 25:
    case 121:
      return toText(value);
    case 23:
      return print("%04d-%02d-%02d", p.year, p.month, p.day);
    case 126: {
      const std::string whole =
          print("%04d-%02d-%02dT%02d:%02d:%02d", p.year, p.month, p.day, p.hour, p.minute, p.second);
      return p.ticks == 0 ? whole : whole + print(".%03d", milliseconds(p));
    }
    default:
      return {};
  }
}

std::optional<DatePart> datePartNamed(std::string_view name) {
  if (equalIgnoringCase(name, "ms")) return DatePart::millisecond;
  for (const PartName& candidate : partNames) {
    if (equalIgnoringCase(name, candidate.name)) return candidate.part;
  }
  return {};
}

std::string_view nameOf(DatePart part) {
  return std::find_if(partNames.begin(), partNames.end(), [part](const PartName& name) { return name.part == part; })
      ->name;
}

int datePart(DatePart part, DateTime value) {
  const DateTimeParts parts = partsOf(value);
  const auto dayOfYear = [&] { return static_cast<int>(dayOf(value) - dayNumber(parts.year, 1, 1)) + 1; };
  switch (part) {
    case DatePart::year:
      return parts.year;
    case DatePart::quarter:
      return (parts.month - 1) / 3 + 1;
    case DatePart::month:
      return parts.month;
    case DatePart::dayOfYear:
      return dayOfYear();
    case DatePart::day:
      return parts.day;
    case DatePart::week:
      // The week of 1 January is the first, and each Sunday begins one.
      return (dayOfYear() - 1 + weekdayOf(dayNumber(parts.year, 1, 1)) - 1) / 7 + 1;
    case DatePart::weekday:
      return weekdayOf(dayOf(value));
    case DatePart::hour:
      return parts.hour;
    case DatePart::minute:
      return parts.minute;
    case DatePart::second:
      return parts.second;
    case DatePart::millisecond:
      return milliseconds(parts);
  }
  return 0;
}

std::string dateName(DatePart part, DateTime value) {
  constexpr std::array<const char*, 7> days = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                               "Thursday", "Friday", "Saturday"};
  const int number = datePart(part, value);
  if (part == DatePart::month) return std::string(monthNames[static_cast<std::size_t>(number - 1)]);
  if (part == DatePart::weekday) return days[static_cast<std::size_t>(number - 1)];
  return std::to_string(number);
}

DateTime dateAdd(DatePart part, std::int64_t count, DateTime value) {
  // More than any part of the calendar spans, and small enough to multiply without overflow.
  constexpr std::int64_t mostMilliseconds = (maxTicks - minTicks) / 3 * 10;
  if (count > mostMilliseconds || count < -mostMilliseconds) throw errors::dateArithmeticOverflow();
  const auto addMonths = [&](std::int64_t months) {
    const DateTimeParts parts = partsOf(value);
    const std::int64_t month = parts.year * 12LL + parts.month - 1 + months;
    if (month < firstYear * 12LL || month >= (lastYear + 1) * 12LL) throw errors::dateArithmeticOverflow();
    const int year = static_cast<int>(month / 12);
    const int monthOfYear = static_cast<int>(month % 12) + 1;
    const int day = std::min(parts.day, daysIn(year, monthOfYear));
    const std::int64_t time = value.ticks - dayOf(value) * DateTime::ticksPerDay;
    return DateTime{dayNumber(year, monthOfYear, day) * DateTime::ticksPerDay + time};
  };
  const auto addTicks = [&](std::int64_t unit) {
    // Whatever lies beyond this many ticks is out of range in either direction.
    constexpr std::int64_t most = 200'000'000'000'000'000;
    if (count > most / unit || count < -most / unit) throw errors::dateArithmeticOverflow();
    return DateTime{value.ticks + count * unit};
  };
  DateTime result;
  switch (part) {
    case DatePart::year:
      return addMonths(count * 12);
    case DatePart::quarter:
      return addMonths(count * 3);
    case DatePart::month:
      return addMonths(count);
    case DatePart::dayOfYear:
    case DatePart::day:
    case DatePart::weekday:
      result = addTicks(DateTime::ticksPerDay);
      break;
    case DatePart::week:
      result = addTicks(7 * DateTime::ticksPerDay);
      break;
    case DatePart::hour:
      result = addTicks(ticksPerHour);
      break;
    case DatePart::minute:
      result = addTicks(ticksPerMinute);
      break;
    case DatePart::second:
      result = addTicks(ticksPerSecond);
      break;
    case DatePart::millisecond:
      result.ticks = value.ticks + floorDivide(count * 3 + 5, 10);
      break;
  }
  if (!inRange(result)) throw errors::dateArithmeticOverflow();
  return result;
}

std::int64_t dateDiff(DatePart part, DateTime start, DateTime end) {
  const auto months = [](DateTime value) {
    const DateTimeParts parts = partsOf(value);
    return parts.year * 12LL + parts.month - 1;
  };
  const auto crossed = [&](std::int64_t unit) { return floorDivide(end.ticks, unit) - floorDivide(start.ticks, unit); };
  switch (part) {
    case DatePart::year:
      return floorDivide(months(end), 12) - floorDivide(months(start), 12);
    case DatePart::quarter:
      return floorDivide(months(end), 3) - floorDivide(months(start), 3);
    case DatePart::month:
      return months(end) - months(start);
    case DatePart::dayOfYear:
    case DatePart::day:
    case DatePart::weekday:
      return crossed(DateTime::ticksPerDay);
    case DatePart::week:
      // Weeks begin on Sunday, and day 0 was a Monday.
      return floorDivide(dayOf(end) + 1, 7) - floorDivide(dayOf(start) + 1, 7);
    case DatePart::hour:
      return crossed(ticksPerHour);
    case DatePart::minute:
      return crossed(ticksPerMinute);
    case DatePart::second:
      return crossed(ticksPerSecond);
    case DatePart::millisecond:
      return floorDivide(end.ticks * 10 + 1, 3) - floorDivide(start.ticks * 10 + 1, 3);
  }
  return 0;
}

DateTime currentDateTime() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &seconds);
#else
  localtime_r(&seconds, &local);
#endif
  const auto part =
      std::chrono::duration_cast<std::chrono::milliseconds>(now - std::chrono::system_clock::from_time_t(seconds));
  const std::int64_t whole = dayNumber(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) * DateTime::ticksPerDay +
                             local.tm_hour * ticksPerHour + local.tm_min * ticksPerMinute +
                             std::min(local.tm_sec, 59) * ticksPerSecond;
  return {whole + std::clamp<std::int64_t>(part.count(), 0, 999) * 3 / 10};
}

}  // namespace quillon::tsql
