#include "workbench/tsql/values/conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/type_rules.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

std::string_view trim(std::string_view text) {
  return text::trimLeft(text::trimRight(text));
}

// Overflow errors call an integer source "expression" and name any other source type.
std::string_view overflowSource(const Type& from) {
  return from.kind == Kind::decimal || from.kind == Kind::money || isText(from) ? errors::systemName(from)
                                                                                : "expression";
}

SqlError overflowed(const Type& from, const Type& to) {
  // When the target is a decimal, every source is named.
  const std::string_view source = to.kind == Kind::decimal ? errors::systemName(from) : overflowSource(from);
  return errors::overflow(source, errors::systemName(to));
}

// The value of type `to` that has these units.
Value exactValue(Int128 units, const Type& to) {
  if (to.kind == Kind::decimal || to.kind == Kind::money) return Exact{units, scaleOf(to)};
  return units.toInt64();
}

Exact exactOf(const Value& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return {*integer, 0};
  return std::get<Exact>(value);
}

Value exactToExact(const Exact& number, const Type& from, const Type& to) {
  if (to.kind == Kind::bit) return std::int64_t{number.units == Int128() ? 0 : 1};
  // From decimal to an integer the fraction is cut; every other conversion rounds.
  const bool cuts = from.kind == Kind::decimal && (to.kind == Kind::integer || to.kind == Kind::bigInt);
  const auto units = rescale(number.units, number.scale, scaleOf(to), cuts ? Rounding::cut : Rounding::halfAway);
  if (!units || !fits(*units, to)) throw overflowed(from, to);
  return exactValue(*units, to);
}

// The double as a decimal of seventeen digits: with so many, no two doubles have the same digits.
Exact exactFromDouble(double number, int scale, bool& tooLarge) {
  constexpr int decimals = 16;
  std::array<char, 32> buffer{};
  char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(number),
                                  std::chars_format::scientific, decimals)
                        .ptr;
  std::int64_t mantissa = buffer[0] - '0';
  const char* at = buffer.data() + 2;  // past the point
  for (; *at != 'e'; ++at)
    mantissa = mantissa * 10 + (*at - '0');
  ++at;
  if (*at == '+') ++at;
  int exponent = 0;
  std::from_chars(at, end, exponent);
  const auto units = rescale(mantissa, decimals - exponent, scale, Rounding::halfAway);
  tooLarge = !units;
  if (tooLarge) return {};
  return {number < 0 ? -*units : *units, scale};
}

DateTime dateTimeFromDays(const Value& days, const Type& from) {
  double number = 0;
  if (const auto* real = std::get_if<double>(&days)) {
    number = *real;
  } else {
    number = toDouble(exactOf(days));
  }
  const double ticks = std::round(number * static_cast<double>(DateTime::ticksPerDay));
  if (!(std::abs(ticks) < 1e18) || !inRange({static_cast<std::int64_t>(ticks)}))
    throw overflowed(from, {Kind::dateTime});
  return {static_cast<std::int64_t>(ticks)};
}

Value realTo(double number, const Type& from, const Type& to) {
  switch (to.kind) {
    case Kind::integer:
    case Kind::bigInt: {
      const double whole = std::trunc(number);
      // 2^63 is out of range and is itself a double, so the comparison must exclude it.
      constexpr double limit = 9223372036854775808.0;
      if (!(whole >= -limit && whole < limit) || !fits(static_cast<std::int64_t>(whole), to))
        throw overflowed(from, to);
      return static_cast<std::int64_t>(whole);
    }
    case Kind::bit:
      return std::int64_t{number == 0 ? 0 : 1};
    default: {
      bool tooLarge = !std::isfinite(number);
      Exact exact;
      if (!tooLarge) exact = exactFromDouble(number, scaleOf(to), tooLarge);
      if (tooLarge || !fits(exact.units, to)) throw overflowed(from, to);
      return exact;
    }
  }
}

std::int64_t textToInteger(std::string_view text, const Type& from, const Type& to) {
  const auto refuse = [&]() -> SqlError {
    return to.kind == Kind::bigInt ? errors::errorConverting(from, to) : errors::conversionFailed(from, text, to);
  };
  std::string_view digits = trim(text);
  bool negative = false;
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) {
    negative = digits.front() == '-';
    digits.remove_prefix(1);
  }
  if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) throw refuse();
  Int128 number;
  for (const char c : digits) {
    if (!number.fitsInt64()) break;
    number = number * Int128(10) + Int128(c - '0');
  }
  if (negative) number = -number;
  if (!fits(number, to)) {
    if (to.kind == Kind::integer) throw errors::textOverflowsInt(from, text);
    throw errors::overflow("expression", errors::systemName(to));
  }
  return number.toInt64();
}

std::int64_t textToBit(std::string_view text, const Type& from, const Type& to) {
  const std::string word = text::lower(trim(text));
  if (word == "true") return 1;
  if (word == "false") return 0;
  std::string_view digits = word;
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
  bool isZero = true;
  for (const char c : digits) {
    if (c < '0' || c > '9') throw errors::conversionFailed(from, text, to);
    isZero = isZero && c == '0';
  }
  return isZero ? 0 : 1;
}

// A currency sign and thousands separators are allowed, signs before or after the currency.
std::optional<Exact> parseMoney(std::string_view text, bool& tooLarge) {
  constexpr std::array<std::string_view, 6> currencies = {"$", "\u00a5", "\uffe5", "\u20ac", "\u00a3", "\uff04"};
  std::string_view rest = trim(text);
  std::string number;
  bool currencySeen = false;
  for (bool more = true; more;) {
    more = false;
    if (!rest.empty() && (rest.front() == '-' || rest.front() == '+')) {
      if (!number.empty()) return {};
      number = rest.front();
      rest.remove_prefix(1);
      more = true;
    }
    for (const std::string_view currency : currencies) {
      if (!currencySeen && rest.starts_with(currency)) {
        currencySeen = true;
        rest.remove_prefix(currency.size());
        more = true;
      }
    }
    rest = text::trimLeft(rest);
  }
  if (rest.empty()) return Exact();
  const std::size_t point = rest.find('.');
  for (std::size_t i = 0; i < rest.size(); ++i) {
    if (rest[i] != ',' || i > point) number += rest[i];
  }
  return parseExact(number, &tooLarge);
}

double textToReal(std::string_view text, const Type& from, const Type& to) {
  std::string_view number = trim(text);
  if (number.empty()) return 0;
  if (number.front() == '+') {
    number.remove_prefix(1);
    if (number.starts_with('-')) throw errors::errorConverting(from, to);
  }
  // Only digits, a point and an exponent: no "inf", no "nan".
  if (number.find_first_not_of("0123456789+-.eE") != std::string_view::npos) throw errors::errorConverting(from, to);
  double result = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), result);
  if (end != number.data() + number.size()) throw errors::errorConverting(from, to);
  if (error == std::errc::result_out_of_range) {
    // A number too small becomes zero, one too large is an error; a negative exponent means too small.
    const std::size_t exponent = number.find_first_of("eE");
    const bool tiny = exponent != std::string_view::npos && number.find('-', exponent) != std::string_view::npos;
    if (!tiny) throw errors::overflow(errors::systemName(from), errors::systemName(to));
    return 0;
  }
  if (error != std::errc()) throw errors::errorConverting(from, to);
  return result;
}

DateOrder orderOfStyle(int style) {
  switch (style % 100) {
    case 3:
    case 4:
    case 5:
    case 6:
    case 13:
    case 14:
      return DateOrder::dayFirst;
    case 2:
    case 11:
    case 12:
    case 20:
    case 21:
    case 26:
      return DateOrder::yearFirst;
    default:
      return DateOrder::monthFirst;
  }
}

DateTime textToDateTime(std::string_view text, const Type& from, int style) {
  const DateTextResult result = parseDateTime(text, orderOfStyle(style));
  if (result.value) return *result.value;
  if (result.error == DateTextError::outOfRange) throw errors::dateOutOfRange(from);
  throw errors::notADate();
}

Value textTo(std::string_view text, const Type& from, const Type& to, int style) {
  switch (to.kind) {
    case Kind::integer:
    case Kind::bigInt:
      return textToInteger(text, from, to);
    case Kind::bit:
      return textToBit(text, from, to);
    case Kind::real:
      return textToReal(text, from, to);
    case Kind::dateTime:
      return textToDateTime(text, from, style);
    default:
      break;
  }
  bool tooLarge = false;
  const std::optional<Exact> number =
      to.kind == Kind::money ? parseMoney(text, tooLarge) : parseExact(trim(text), &tooLarge);
  if (!number) {
    if (tooLarge) throw overflowed(from, to);
    throw to.kind == Kind::money ? errors::badMoneyText() : errors::errorConverting(from, to);
  }
  return exactToExact(*number, from, to);
}

std::string withSeparators(std::string number) {
  std::size_t position = number.find('.');
  if (position == std::string::npos) position = number.size();
  const std::size_t first = number.starts_with('-') ? 1 : 0;
  while (position > first + 3) {
    position -= 3;
    number.insert(position, 1, ',');
  }
  return number;
}

std::string moneyToText(const Exact& money, int style) {
  if (style == 2) return toText(money);
  const Int128 units = rescale(money.units, 4, 2, Rounding::halfAway).value_or(Int128());
  const std::string text = toText(Exact{units, 2});
  return style == 1 ? withSeparators(text) : text;
}

// "1.5e+010": SQL Server writes three digits of exponent.
std::string withLongExponent(std::string text) {
  const std::size_t e = text.find('e');
  if (e != std::string::npos && text.size() - e - 2 < 3) text.insert(e + 2, 3 - (text.size() - e - 2), '0');
  return text;
}

std::string printReal(const char* format, double value) {
  std::array<char, 64> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), format, value);
  return withLongExponent(std::string(buffer.data(), static_cast<std::size_t>(length)));
}

std::string realToText(double value, int style) {
  if (style == 1) return printReal("%.7e", value);
  if (style == 2) return printReal("%.15e", value);
  return floatToText(value);
}

// The text of a value that is not a text itself. A number that the target is too short for is never cut to fewer digits.
std::string toTextAs(const Value& value, const Type& from, const Type& to, int style) {
  std::string result;
  switch (from.kind) {
    case Kind::money:
      result = moneyToText(std::get<Exact>(value), style);
      if (text::widerThan(result, to.width)) throw errors::noRoomForMoney(to);
      return result;
    case Kind::dateTime: {
      auto formatted = formatDateTime(std::get<DateTime>(value), style);
      if (!formatted) throw errors::badStyle(style, from, to);
      return text::left(*formatted, to.width);
    }
    case Kind::real:
      result = realToText(std::get<double>(value), style);
      break;
    default:
      result = tsql::toText(value).value_or(std::string());
  }
  if (text::widerThan(result, to.width)) {
    const bool integral = from.kind == Kind::integer || from.kind == Kind::bigInt;
    if (integral && to.kind == Kind::varChar) return "*";
    throw overflowed(from, to);
  }
  return result;
}

}  // namespace

Value castValue(const Value& value, const Type& from, const Type& to, int style) {
  if (isNull(value)) return value;
  if (isText(from)) {
    const auto& text = std::get<std::string>(value);
    if (!isText(to)) return textTo(text, from, to, style);
    return text::widerThan(text, to.width) ? text::left(text, to.width) : text;
  }
  if (isText(to)) return toTextAs(value, from, to, style);
  if (from.kind == to.kind && from.kind != Kind::decimal) return value;
  if (to.kind == Kind::dateTime) return dateTimeFromDays(value, from);
  if (from.kind == Kind::dateTime) {
    const double days =
        static_cast<double>(std::get<DateTime>(value).ticks) / static_cast<double>(DateTime::ticksPerDay);
    if (to.kind == Kind::real) return days;
    // A date becomes the nearest whole day: from noon on, the next one.
    const bool wholeDays = to.kind == Kind::integer || to.kind == Kind::bigInt;
    return realTo(wholeDays ? std::floor(days + 0.5) : days, from, to);
  }
  if (from.kind == Kind::real) return realTo(std::get<double>(value), from, to);
  const Exact exact = exactOf(value);
  if (to.kind == Kind::real) return toDouble(exact);
  return exactToExact(exact, from, to);
}

Value assignValue(const Value& value, const Type& from, const Type& to, std::string_view table,
                  std::string_view column) {
  if (!isNull(value) && isText(from) && isText(to)) {
    const auto& text = std::get<std::string>(value);
    if (!text::widerThan(text, to.width)) return value;
    std::string kept = text::left(text, to.width);
    // Blanks beyond the width are cut without an error.
    if (text::trimRight(text).size() > kept.size()) throw errors::wouldBeTruncated(table, column, kept);
    return kept;
  }
  return castValue(value, from, to);
}

std::string floatToText(double value) {
  return printReal("%.6g", value);
}

bool isNumericText(std::string_view text) {
  if (trim(text).empty()) return false;
  bool tooLarge = false;
  if (parseMoney(text, tooLarge)) return true;
  try {
    textToReal(text, {Kind::nVarChar}, {Kind::real});
    return true;
  } catch (const SqlError&) {
    return false;
  }
}

}  // namespace quillon::tsql
