#include "workbench/presentation/value_output.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

namespace {

std::string shortestReal(double value) {
  std::array<char, 32> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), result.ptr};
}

// Adds one to the last digit of `digits`, which may grow by one digit at the front.
void increment(std::string& digits) {
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    if (*digit != '9') {
      ++*digit;
      return;
    }
    *digit = '0';
  }
  digits.insert(digits.begin(), '1');
}

}  // namespace

void writeJsonText(std::ostream& out, std::string_view text) {
  out << '"';
  while (!text.empty()) {
    const std::string_view before = text;
    const char32_t character = takeCharacter(text);
    if (character == '"' || character == '\\') {
      out << '\\' << static_cast<char>(character);
    } else if (character < 0x20 || (character >= 0xD800 && character <= 0xDFFF)) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character));
      out << escape.data();
    } else if (character == 0xFFFD) {
      out << "\xEF\xBF\xBD";
    } else {
      out << before.substr(0, before.size() - text.size());
    }
  }
  out << '"';
}

void writeJsonValue(std::ostream& out, const tsql::Value& value) {
  if (tsql::isNull(value)) {
    out << "null";
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    out << *integer;
  } else if (const auto* real = std::get_if<double>(&value)) {
    out << shortestReal(*real);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    writeJsonText(out, *text);
  } else {
    out << '"' << tsql::toText(value).value() << '"';
  }
}

void writeJsonColumns(std::ostream& out, std::span<const tsql::Column> columns) {
  out << '[';
  const char* separator = "";
  for (const tsql::Column& column : columns) {
    out << separator << '[';
    writeJsonText(out, column.name);
    out << ",\"" << column.type.name() << "\"]";
    separator = ",";
  }
  out << ']';
}

std::string groupedNumber(std::string_view text, int decimals) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const auto point = text.find('.');
  std::string digits(text.substr(0, point));
  std::string fraction(point == std::string_view::npos ? std::string_view() : text.substr(point + 1));
  const auto places = static_cast<std::size_t>(decimals);
  const bool roundUp = fraction.size() > places && fraction[places] >= '5';
  fraction.resize(places, '0');
  digits += fraction;
  if (roundUp) increment(digits);

  const std::size_t whole = digits.size() - places;
  std::string result;
  if (negative && digits.find_first_not_of('0') != std::string::npos) result += '-';
  for (std::size_t i = 0; i < whole; ++i) {
    if (i > 0 && (whole - i) % 3 == 0) result += ',';
    result += digits[i];
  }
  if (places > 0) result += '.' + digits.substr(whole);
  return result;
}

std::string groupedCount(std::int64_t number) {
  return groupedNumber(std::to_string(number), 0);
}

std::string plainText(const tsql::Value& value, std::string_view null) {
  if (tsql::isNull(value)) return std::string(null);
  if (const auto* real = std::get_if<double>(&value)) return shortestReal(*real);
  std::string text = tsql::toText(value).value();
  constexpr std::string_view midnight = " 00:00:00.000";
  if (std::holds_alternative<tsql::DateTime>(value) && text.ends_with(midnight)) {
    text.resize(text.size() - midnight.size());
  }
  return text;
}

}  // namespace quillon::workbench
