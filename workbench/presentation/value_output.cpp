#include "workbench/presentation/value_output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "workbench/presentation/text_cells.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {

namespace {

template <typename Number>
void appendNumber(std::string& text, Number number) {
  std::array<char, 32> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  text.append(digits.data(), result.ptr);
}

bool isPlain(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
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

void appendJsonText(std::string& json, std::string_view text) {
  json += '"';
  while (!text.empty()) {
    const auto plain = static_cast<std::size_t>(std::ranges::find_if_not(text, isPlain) - text.begin());
    json += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    const std::string_view before = text;
    const char32_t character = takeCharacter(text);
    if (character == '"' || character == '\\') {
      json.append(1, '\\').append(1, static_cast<char>(character));
    } else if (character < 0x20 || (character >= 0xD800 && character <= 0xDFFF)) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character));
      json += escape.data();
    } else if (character == 0xFFFD) {
      json += "\xEF\xBF\xBD";
    } else {
      json += before.substr(0, before.size() - text.size());
    }
  }
  json += '"';
}

void appendJsonValue(std::string& json, const tsql::Value& value) {
  if (tsql::isNull(value)) {
    json += "null";
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    appendNumber(json, *integer);
  } else if (const auto* real = std::get_if<double>(&value)) {
    appendNumber(json, *real);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    appendJsonText(json, *text);
  } else {
    json += '"';
    if (const auto* exact = std::get_if<tsql::Exact>(&value)) tsql::appendText(json, *exact);
    if (const auto* time = std::get_if<tsql::DateTime>(&value)) tsql::appendText(json, *time);
    json += '"';
  }
}

void writeJsonText(std::ostream& out, std::string_view text) {
  std::string json;
  appendJsonText(json, text);
  out << json;
}

void writeJsonValue(std::ostream& out, const tsql::Value& value) {
  std::string json;
  appendJsonValue(json, value);
  out << json;
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

std::string percentText(const tsql::Value& part) {
  const auto* exact = std::get_if<tsql::Exact>(&part);
  if (exact == nullptr) return {};
  constexpr int percent = 2, decimals = 2;
  // A scale below that of a hundredth would make the hundredfold.
  const int scale = std::max(exact->scale, percent);
  const tsql::Int128 units = exact->units * tsql::powerOfTen(scale - exact->scale);
  return groupedNumber(tsql::toText(tsql::Exact{.units = units, .scale = scale - percent}), decimals) + "%";
}

void appendPlainText(std::string& text, const tsql::Value& value) {
  if (const auto* exact = std::get_if<tsql::Exact>(&value)) {
    tsql::appendText(text, *exact);
  } else if (const auto* known = std::get_if<std::string>(&value)) {
    text += *known;
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    appendNumber(text, *integer);
  } else if (const auto* real = std::get_if<double>(&value)) {
    appendNumber(text, *real);
  } else if (const auto* time = std::get_if<tsql::DateTime>(&value)) {
    constexpr std::string_view midnight = " 00:00:00.000";
    tsql::appendText(text, *time);
    if (time->ticks % tsql::DateTime::ticksPerDay == 0) text.resize(text.size() - midnight.size());
  }
}

std::string plainText(const tsql::Value& value, std::string_view null) {
  std::string text;
  if (tsql::isNull(value)) text = null;
  appendPlainText(text, value);
  return text;
}

}  // namespace quillon::workbench
