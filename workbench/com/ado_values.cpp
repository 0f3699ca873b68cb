#include "workbench/com/ado_values.h"

#include "frame/automation_error.h"

namespace quillon::workbench {

namespace {

constexpr HResult dataOverflow = static_cast<HResult>(0x80040E57U);

automation::Variant decimalValue(const tsql::Exact& number) {
  constexpr std::int64_t highest = 0xffffffffLL;  // of the upper 32 of DECIMAL's 96 bits
  const bool negative = number.units.negative();
  tsql::Int128 magnitude = negative ? -number.units : number.units;
  int scale = number.scale;
  // Zeros at the end carry no value; without them more numbers fit.
  while (magnitude.high() > highest && scale > 0 && magnitude % tsql::Int128(10) == tsql::Int128(0)) {
    magnitude = magnitude / tsql::Int128(10);
    --scale;
  }
  constexpr int deepest = 28;  // the largest scale of DECIMAL
  if (magnitude.high() > highest || magnitude.high() < 0 || scale > deepest) {
    throw AutomationError(
        dataOverflow, "ADODB.Field",
        "The value has more digits than an automation Decimal holds; convert it to text in the query.");
  }
  automation::Variant result;
  result.decVal.Hi32 = static_cast<ULONG>(magnitude.high());
  result.decVal.Lo64 = magnitude.low();
  result.decVal.scale = static_cast<BYTE>(scale);
  result.decVal.sign = negative ? DECIMAL_NEG : 0;
  result.vt = VT_DECIMAL;  // shares the DECIMAL's reserved word, so it is written last
  return result;
}

automation::Variant currencyValue(const tsql::Exact& number) {
  automation::Variant result;
  result.cyVal.int64 = number.units.toInt64();  // both count ten-thousandths in 64 bits
  result.vt = VT_CY;
  return result;
}

// Automation counts days since 1899-12-30 and writes a time of day as a positive fraction, also before that day.
automation::Variant dateValue(const tsql::DateTime& time) {
  constexpr std::int64_t daysToEpoch = 2;  // from 1899-12-30 to 1900-01-01
  std::int64_t days = time.ticks / tsql::DateTime::ticksPerDay;
  std::int64_t rest = time.ticks % tsql::DateTime::ticksPerDay;
  if (rest < 0) {
    --days;
    rest += tsql::DateTime::ticksPerDay;
  }
  days += daysToEpoch;
  const double fraction = static_cast<double>(rest) / static_cast<double>(tsql::DateTime::ticksPerDay);
  return automation::Variant::fromDate(days < 0 ? static_cast<double>(days) - fraction
                                                : static_cast<double>(days) + fraction);
}

automation::Variant integerValue(std::int64_t number, tsql::Kind kind) {
  switch (kind) {
    case tsql::Kind::bit:
      return {number != 0};
    case tsql::Kind::bigInt:
      return decimalValue({tsql::Int128(number), 0});
    default:
      return {static_cast<int>(number)};
  }
}

}  // namespace

AdoType adoType(const tsql::Type& type) {
  const bool unlimited = type.width == tsql::Type::maxWidth;
  switch (type.kind) {
    case tsql::Kind::integer:
      return AdoType::integer;
    case tsql::Kind::bigInt:
      return AdoType::bigInt;
    case tsql::Kind::bit:
      return AdoType::boolean;
    case tsql::Kind::decimal:
      return AdoType::numeric;
    case tsql::Kind::money:
      return AdoType::currency;
    case tsql::Kind::real:
      return AdoType::real;
    case tsql::Kind::dateTime:
      return AdoType::dateTime;
    case tsql::Kind::varChar:
      return unlimited ? AdoType::longText : AdoType::text;
    case tsql::Kind::nVarChar:
      break;
  }
  return unlimited ? AdoType::longWideText : AdoType::wideText;
}

automation::Variant adoValue(const tsql::Value& value, const tsql::Type& type) {
  if (tsql::isNull(value)) return automation::Variant::null();
  if (const auto* number = std::get_if<std::int64_t>(&value)) return integerValue(*number, type.kind);
  if (const auto* real = std::get_if<double>(&value)) return {*real};
  if (const auto* exact = std::get_if<tsql::Exact>(&value)) {
    return type.kind == tsql::Kind::money ? currencyValue(*exact) : decimalValue(*exact);
  }
  if (const auto* time = std::get_if<tsql::DateTime>(&value)) return dateValue(*time);
  return {std::get<std::string>(value)};
}

}  // namespace quillon::workbench
