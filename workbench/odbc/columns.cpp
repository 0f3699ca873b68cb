#include "workbench/odbc/columns.h"

#include <algorithm>
#include <array>

#include "frame/text.h"
#include "workbench/odbc/wide_text.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::odbc {

namespace {

using tsql::Kind;

constexpr int moneyScale = 4;
constexpr SQLULEN longestText = 0x3fffffff;  // of nvarchar(max), in characters

SQLUSMALLINT odbcColumn(std::size_t column) {
  return static_cast<SQLUSMALLINT>(column + 1);
}

DescribedColumn describeColumn(Batch& batch, std::size_t column, std::string& name) {
  DescribedColumn described;
  std::array<SQLWCHAR, 256> text{};
  SQLSMALLINT length = 0;
  SQLSMALLINT nullable = 0;
  batch.check(SQLDescribeColW(batch.handle(), odbcColumn(column), text.data(), static_cast<SQLSMALLINT>(text.size()),
                              &length, &described.sqlType, &described.size, &described.digits, &nullable));
  name = toUtf8(std::span(text).first(std::min(static_cast<std::size_t>(length), text.size() - 1)));
  if (described.sqlType == SQL_DECIMAL || described.sqlType == SQL_NUMERIC) {
    SQLSMALLINT bytes = 0;
    // A driver that does not know the name leaves the column a decimal.
    const SQLRETURN known = SQLColAttributeW(batch.handle(), odbcColumn(column), SQL_DESC_TYPE_NAME, text.data(),
                                             static_cast<SQLSMALLINT>(sizeof text), &bytes, nullptr);
    if (SQL_SUCCEEDED(known)) {
      const std::string typeName =
          toUtf8(std::span(text).first(std::min(static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR), text.size() - 1)));
      described.isMoney = equalIgnoringCase(typeName, "money") || equalIgnoringCase(typeName, "smallmoney");
    }
  }
  return described;
}

// Reads a value of fixed size; false for null.
template <typename Plain>
bool read(Batch& batch, std::size_t column, SQLSMALLINT type, Plain& plain) {
  SQLLEN length = 0;
  batch.checkQuietly(SQLGetData(batch.handle(), odbcColumn(column), type, &plain, sizeof plain, &length));
  return length != SQL_NULL_DATA;
}

// Reads a text piece by piece: a driver gives as much as fits, with a zero behind it, and how much there was.
std::optional<std::string> readText(Batch& batch, std::size_t column) {
  WideText text;
  std::array<SQLWCHAR, 4096> piece{};
  constexpr std::size_t room = piece.size() - 1;
  while (true) {
    SQLLEN length = 0;
    const SQLRETURN result = batch.checkQuietly(SQLGetData(batch.handle(), odbcColumn(column), SQL_C_WCHAR,
                                                           piece.data(), static_cast<SQLLEN>(sizeof piece), &length));
    if (result == SQL_NO_DATA) break;
    if (length == SQL_NULL_DATA) return std::nullopt;
    const bool more = length == SQL_NO_TOTAL || static_cast<std::size_t>(length) / sizeof(SQLWCHAR) > room;
    const std::size_t count = more ? room : static_cast<std::size_t>(length) / sizeof(SQLWCHAR);
    text.insert(text.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    if (!more) break;
  }
  return toUtf8(text);
}

// Reads an exact number as its digits.
std::optional<std::string> readDigits(Batch& batch, std::size_t column) {
  std::array<char, 64> text{};
  SQLLEN length = 0;
  batch.checkQuietly(SQLGetData(batch.handle(), odbcColumn(column), SQL_C_CHAR, text.data(),
                                static_cast<SQLLEN>(text.size()), &length));
  if (length == SQL_NULL_DATA) return std::nullopt;
  return std::string(text.data());
}

[[noreturn]] void refuseValue(const tsql::Column& column, const std::string& value) {
  throw tsql::SqlError(
      8114, "The column " + column.name + " holds " + value + ", which cannot be read as " + column.type.name() + ".");
}

std::string textOf(const SQL_TIMESTAMP_STRUCT& time) {
  return "a date in the year " + std::to_string(time.year);
}

}  // namespace

tsql::Type typeOf(const DescribedColumn& column) {
  switch (column.sqlType) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
      return {.kind = Kind::integer};
    case SQL_BIGINT:
      return {.kind = Kind::bigInt};
    case SQL_BIT:
      return {.kind = Kind::bit};
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      if (column.isMoney) return {.kind = Kind::money};
      return {.kind = Kind::decimal,
              .precision = std::min(static_cast<int>(column.size), tsql::maxPrecision),
              .scale = column.digits};
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return {.kind = Kind::real};
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
      return {.kind = Kind::dateTime};
    default:
      break;
  }
  const bool narrow = column.sqlType == SQL_CHAR || column.sqlType == SQL_VARCHAR || column.sqlType == SQL_LONGVARCHAR;
  const bool limited = column.size > 0 && column.size < longestText;
  return {.kind = narrow ? Kind::varChar : Kind::nVarChar,
          .width = limited ? static_cast<int>(column.size) : tsql::Type::maxWidth};
}

std::vector<tsql::Column> columnsOf(Batch& batch) {
  std::vector<tsql::Column> columns;
  for (std::size_t i = 0; i < static_cast<std::size_t>(batch.columnCount()); ++i) {
    std::string name;
    const DescribedColumn described = describeColumn(batch, i, name);
    columns.push_back({std::move(name), typeOf(described)});
  }
  return columns;
}

tsql::Value valueOf(Batch& batch, std::size_t column, const tsql::Column& described) {
  switch (described.type.kind) {
    case Kind::integer:
    case Kind::bigInt:
    case Kind::bit: {
      SQLBIGINT number = 0;
      if (!read(batch, column, SQL_C_SBIGINT, number)) return {};
      return std::int64_t{number};
    }
    case Kind::real: {
      double number = 0;
      if (!read(batch, column, SQL_C_DOUBLE, number)) return {};
      return number;
    }
    case Kind::dateTime: {
      SQL_TIMESTAMP_STRUCT time{};
      if (!read(batch, column, SQL_C_TYPE_TIMESTAMP, time)) return {};
      const auto value = dateTimeOf(time);
      if (!value) refuseValue(described, textOf(time));
      return *value;
    }
    case Kind::decimal:
    case Kind::money: {
      const auto digits = readDigits(batch, column);
      if (!digits) return {};
      const auto value = exactOf(*digits, described.type);
      if (!value) refuseValue(described, *digits);
      return *value;
    }
    case Kind::nVarChar:
    case Kind::varChar:
      break;
  }
  auto text = readText(batch, column);
  if (!text) return {};
  return std::move(*text);
}

std::optional<tsql::Exact> exactOf(std::string_view text, const tsql::Type& type) {
  const auto number = tsql::parseExact(trimBlanks(text));
  if (!number) return std::nullopt;
  const int scale = type.kind == Kind::money ? moneyScale : type.scale;
  const auto units = tsql::rescale(number->units, number->scale, scale, tsql::Rounding::halfAway);
  // A number with more decimals than its column has is not that column's.
  if (!units || tsql::compare({*units, scale}, *number) != 0) return std::nullopt;
  return tsql::Exact{*units, scale};
}

std::optional<tsql::DateTime> dateTimeOf(const SQL_TIMESTAMP_STRUCT& time) {
  constexpr std::int64_t ticksPerSecond = 300;
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  // A time between two ticks, of a type with more decimals than datetime, goes to the nearer one.
  const std::int64_t ticks = (std::int64_t{time.fraction} * ticksPerSecond + nanoseconds / 2) / nanoseconds;
  const auto second = tsql::fromParts({.year = time.year,
                                       .month = time.month,
                                       .day = time.day,
                                       .hour = time.hour,
                                       .minute = time.minute,
                                       .second = time.second});
  if (!second) return std::nullopt;
  return tsql::DateTime{second->ticks + ticks};
}

}  // namespace quillon::odbc
