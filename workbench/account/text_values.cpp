#include "workbench/account/text_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "frame/text.h"
#include "workbench/messages/account.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/text.h"

namespace quillon::account {

namespace {

using workbench::Message;
namespace messages = workbench::messages;

using tsql::Kind;

[[noreturn]] void refuse(std::string_view text, const tsql::TableColumn& column, const Message& form) {
  throw ValueError(messages::valueOfOtherType(quotedForMessage(text), tsql::declaration(column.type),
                                              text.empty() ? messages::leaveQuotesOut() : form));
}

[[noreturn]] void refuseRange(std::string_view text, const tsql::TableColumn& column) {
  throw ValueError(messages::valueOutOfRange(quotedForMessage(text), tsql::declaration(column.type)));
}

tsql::Value wholeNumber(std::string_view text, const tsql::TableColumn& column) {
  bool outOfRange = false;
  const auto number = tsql::text::wholeNumber<std::int64_t>(text, &outOfRange);
  if (outOfRange) refuseRange(text, column);
  const bool bit = column.type.kind == Kind::bit;
  if (!number || (bit && *number != 0 && *number != 1)) {
    refuse(text, column, bit ? messages::writeBit() : messages::writeWholeNumber());
  }
  if (column.type.kind == Kind::integer && !tsql::fits(tsql::Int128(*number), column.type)) refuseRange(text, column);
  return *number;
}

tsql::Value exactNumber(std::string_view text, const tsql::TableColumn& column) {
  bool tooLarge = false;
  const std::optional<tsql::Exact> number = tsql::parseExact(text, &tooLarge);
  if (tooLarge) refuseRange(text, column);
  if (!number) refuse(text, column, messages::writeDecimal());
  const int scale = tsql::scaleOf(column.type);
  const auto units = tsql::rescale(number->units, number->scale, scale, tsql::Rounding::cut);
  if (!units || !tsql::fits(*units, column.type)) refuseRange(text, column);
  const tsql::Exact value{*units, scale};
  if (tsql::compare(value, *number) != 0) {
    throw ValueError(messages::tooManyDecimals(quotedForMessage(text), tsql::declaration(column.type), scale));
  }
  return value;
}

tsql::Value realNumber(std::string_view text, const tsql::TableColumn& column) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc::result_out_of_range && stopped == end) refuseRange(text, column);
  if (error != std::errc() || stopped != end || !std::isfinite(number)) refuse(text, column, messages::writeFloat());
  return number;
}

// A day is written with its year in front: 3/5/2024 is a day of March to one reader and of May to another.
tsql::Value dateTime(std::string_view text, const tsql::TableColumn& column) {
  constexpr std::size_t yearDigits = 4, shortestDate = 8;
  const bool yearFirst = text.size() >= shortestDate && std::all_of(text.begin(), text.begin() + yearDigits, isDigit);
  const tsql::DateTextResult read = yearFirst ? tsql::parseDateTime(text) : tsql::DateTextResult();
  if (read.value) return *read.value;
  if (read.error == tsql::DateTextError::outOfRange) throw ValueError(messages::dayOutOfRange(quotedForMessage(text)));
  refuse(text, column, messages::writeDate());
}

tsql::Value plainText(std::string_view text, const tsql::TableColumn& column) {
  if (tsql::text::widerThan(text, column.type.width)) {
    throw ValueError(messages::textTooLong(tsql::text::width(text), tsql::declaration(column.type), column.type.width));
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
  constexpr unsigned char firstOfSeveral = 0x80;
  for (std::size_t position = 0; position < text.size();) {
    if (static_cast<unsigned char>(text[position]) < firstOfSeveral) {
      ++position;
      continue;
    }
    if (tsql::text::next(text, position) > tsql::text::lastCharacter) throw ValueError(messages::textNotUtf8());
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
