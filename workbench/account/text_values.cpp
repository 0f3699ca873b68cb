#include "workbench/account/text_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "frame/text.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/text.h"

namespace quillon::account {

namespace {

using tsql::Kind;

[[noreturn]] void refuse(std::string_view text, const tsql::TableColumn& column, const std::string& form) {
  throw ValueError(quotedForMessage(text) + " is no " + tsql::declaration(column.type) + "; " +
                   (text.empty() ? "leave the quotes out when there is no value" : form));
}

[[noreturn]] void refuseRange(std::string_view text, const tsql::TableColumn& column) {
  throw ValueError(quotedForMessage(text) + " is out of the range of " + tsql::declaration(column.type) +
                   "; correct the number");
}

tsql::Value wholeNumber(std::string_view text, const tsql::TableColumn& column) {
  bool outOfRange = false;
  const auto number = tsql::text::wholeNumber<std::int64_t>(text, &outOfRange);
  if (outOfRange) refuseRange(text, column);
  const bool bit = column.type.kind == Kind::bit;
  if (!number || (bit && *number != 0 && *number != 1)) {
    refuse(text, column, bit ? "write 0 or 1" : "write digits only, with a minus in front of a negative number");
  }
  if (column.type.kind == Kind::integer && !tsql::fits(tsql::Int128(*number), column.type)) refuseRange(text, column);
  return *number;
}

tsql::Value exactNumber(std::string_view text, const tsql::TableColumn& column) {
  bool tooLarge = false;
  const std::optional<tsql::Exact> number = tsql::parseExact(text, &tooLarge);
  if (tooLarge) refuseRange(text, column);
  if (!number) refuse(text, column, "write digits with a point before the decimals and nothing between the thousands");
  const int scale = tsql::scaleOf(column.type);
  const auto units = tsql::rescale(number->units, number->scale, scale, tsql::Rounding::cut);
  if (!units || !tsql::fits(*units, column.type)) refuseRange(text, column);
  const tsql::Exact value{*units, scale};
  if (tsql::compare(value, *number) != 0) {
    throw ValueError(quotedForMessage(text) + " has more decimals than " + tsql::declaration(column.type) +
                     "; round it to " + std::to_string(scale));
  }
  return value;
}

tsql::Value realNumber(std::string_view text, const tsql::TableColumn& column) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc::result_out_of_range && stopped == end) refuseRange(text, column);
  if (error != std::errc() || stopped != end || !std::isfinite(number))
    refuse(text, column, "write digits with a point before the decimals, or 1.5e-10");
  return number;
}

// A day is written with its year in front: 3/5/2024 is a day of March to one reader and of May to another.
tsql::Value dateTime(std::string_view text, const tsql::TableColumn& column) {
  constexpr std::size_t yearDigits = 4, shortestDate = 8;
  const bool yearFirst = text.size() >= shortestDate && std::all_of(text.begin(), text.begin() + yearDigits, isDigit);
  const tsql::DateTextResult read = yearFirst ? tsql::parseDateTime(text) : tsql::DateTextResult();
  if (read.value) return *read.value;
  if (read.error == tsql::DateTextError::outOfRange)
    throw ValueError(quotedForMessage(text) + " is no day between 1753-01-01 and 9999-12-31; correct the date");
  refuse(text, column, "write it as 2024-03-05 or 2024-03-05 13:14:15.457");
}

tsql::Value plainText(std::string_view text, const tsql::TableColumn& column) {
  if (tsql::text::widerThan(text, column.type.width)) {
    throw ValueError("the text has " + std::to_string(tsql::text::width(text)) + " characters and " +
                     tsql::declaration(column.type) + " takes " + std::to_string(column.type.width) +
                     "; shorten it or widen the column in schema.sql");
  }
  return std::string(text);
}

}  // namespace

std::string quotedForMessage(std::string_view text) {
  constexpr std::int64_t shown = 40;
  constexpr unsigned char firstPrintable = 0x20;
  std::string line = tsql::text::left(text, shown);
  if (line.size() < text.size()) line += "...";
  for (char& character : line) {
    if (static_cast<unsigned char>(character) < firstPrintable) character = ' ';
  }
  return '"' + line + '"';
}

void requireUtf8(std::string_view text) {
  for (std::size_t position = 0; position < text.size();) {
    if (tsql::text::next(text, position) > tsql::text::lastCharacter)
      throw ValueError("the text is not UTF-8; save the file in that encoding");
  }
}

tsql::Value valueFromText(std::string_view text, const tsql::TableColumn& column) {
  requireUtf8(text);
  switch (column.type.kind) {
    case Kind::integer:
    case Kind::bigInt:
    case Kind::bit:
      return wholeNumber(text, column);
    case Kind::decimal:
    case Kind::money:
      return exactNumber(text, column);
    case Kind::real:
      return realNumber(text, column);
    case Kind::dateTime:
      return dateTime(text, column);
    case Kind::nVarChar:
    case Kind::varChar:
      return plainText(text, column);
  }
  return {};
}

}  // namespace quillon::account
