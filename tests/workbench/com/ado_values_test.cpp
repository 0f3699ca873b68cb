#include "workbench/com/ado_values.h"

#include <gtest/gtest.h>

#include "frame/automation_error.h"

namespace quillon::workbench {
namespace {

using tsql::Exact;
using tsql::Int128;
using tsql::Kind;
using tsql::Type;

constexpr Type decimalType{.kind = Kind::decimal, .precision = 38, .scale = 6};

std::string textOf(const tsql::Value& value, const Type& type) {
  return automation::toText(adoValue(value, type));
}

TEST(AdoValuesTest, IntegersKeepTheirKind) {
  EXPECT_EQ(adoValue(std::int64_t{7}, {.kind = Kind::integer}).vt, VT_I4);
  EXPECT_EQ(adoValue(std::int64_t{-7}, {.kind = Kind::integer}).lVal, -7);
  EXPECT_EQ(adoValue(std::int64_t{1}, {.kind = Kind::bit}).vt, VT_BOOL);
  EXPECT_EQ(adoValue(std::int64_t{1}, {.kind = Kind::bit}).boolVal, VARIANT_TRUE);
  EXPECT_EQ(adoValue(std::int64_t{0}, {.kind = Kind::bit}).boolVal, VARIANT_FALSE);
}

TEST(AdoValuesTest, ABigintIsExactToItsLastDigit) {
  const automation::Variant value = adoValue(std::int64_t{9223372036854775807LL}, {.kind = Kind::bigInt});
  EXPECT_EQ(value.vt, VT_DECIMAL);
  EXPECT_EQ(automation::toText(value), "9223372036854775807");
  EXPECT_EQ(textOf(std::int64_t{-9223372036854775807LL - 1}, {.kind = Kind::bigInt}), "-9223372036854775808");
}

TEST(AdoValuesTest, ADecimalKeepsItsSignAndScale) {
  const automation::Variant value = adoValue(Exact{Int128(-1234567), 6}, decimalType);
  EXPECT_EQ(value.vt, VT_DECIMAL);
  EXPECT_EQ(value.decVal.scale, 6);
  EXPECT_EQ(value.decVal.sign, DECIMAL_NEG);
  EXPECT_EQ(value.decVal.Lo64, 1234567U);
  EXPECT_EQ(automation::toText(value), "-1.234567");
}

TEST(AdoValuesTest, ADecimalOf96BitsStillFits) {
  const Exact highest{Int128::fromHalves(0xffffffffLL, ~std::uint64_t{0}), 0};
  const automation::Variant value = adoValue(highest, decimalType);
  EXPECT_EQ(value.decVal.Hi32, 0xffffffffU);
  EXPECT_EQ(value.decVal.Lo64, ~std::uint64_t{0});
}

TEST(AdoValuesTest, ZerosAtTheEndMakeRoom) {
  // 2^96 * 1000 with three decimals: one digit more than fits, until the zeros go.
  const Exact value{Int128::fromHalves(0xffffffffLL, ~std::uint64_t{0}) * Int128(1000), 3};
  const automation::Variant result = adoValue(value, decimalType);
  EXPECT_EQ(result.decVal.scale, 0);
  EXPECT_EQ(result.decVal.Hi32, 0xffffffffU);
}

TEST(AdoValuesTest, ADecimalThatDoesNotFitIsRefusedNotRounded) {
  const Exact value{Int128::fromHalves(0x100000000LL, 1), 0};
  try {
    adoValue(value, decimalType);
    FAIL() << "2^96 + 1 was accepted";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), static_cast<HResult>(0x80040E57U));
  }
}

TEST(AdoValuesTest, MoneyIsCurrency) {
  const automation::Variant value = adoValue(Exact{Int128(-123456), 4}, {.kind = Kind::money});
  EXPECT_EQ(value.vt, VT_CY);
  EXPECT_EQ(value.cyVal.int64, -123456);
  EXPECT_EQ(automation::toText(value), "-12.3456");
}

TEST(AdoValuesTest, DatesCountFrom1899) {
  constexpr std::int64_t day = tsql::DateTime::ticksPerDay;
  EXPECT_EQ(adoValue(tsql::DateTime{0}, {.kind = Kind::dateTime}).vt, VT_DATE);
  EXPECT_EQ(adoValue(tsql::DateTime{0}, {.kind = Kind::dateTime}).date, 2.0);
  // 2024-03-05 is 45354 days after 1900-01-01; half a day is noon.
  EXPECT_EQ(textOf(tsql::DateTime{45354 * day}, {.kind = Kind::dateTime}), "2024-03-05");
  EXPECT_EQ(textOf(tsql::DateTime{45354 * day + day / 2}, {.kind = Kind::dateTime}), "2024-03-05 12:00:00");
}

TEST(AdoValuesTest, ATimeBeforeTheFirstDayIsAPositiveFraction) {
  constexpr std::int64_t day = tsql::DateTime::ticksPerDay;
  // 1899-12-28 06:00: two days before 1899-12-30, a quarter of a day on.
  EXPECT_EQ(adoValue(tsql::DateTime{-4 * day + day / 4}, {.kind = Kind::dateTime}).date, -2.25);
  EXPECT_EQ(textOf(tsql::DateTime{-4 * day + day / 4}, {.kind = Kind::dateTime}), "1899-12-28 06:00:00");
}

TEST(AdoValuesTest, TextsNullsAndRealsComeAsTheyAre) {
  EXPECT_EQ(textOf(std::string("材料费"), {.kind = Kind::nVarChar, .width = 20}), "材料费");
  EXPECT_EQ(adoValue(std::monostate(), {.kind = Kind::money}).vt, VT_NULL);
  EXPECT_EQ(adoValue(0.5, {.kind = Kind::real}).vt, VT_R8);
  EXPECT_EQ(adoValue(0.5, {.kind = Kind::real}).dblVal, 0.5);
}

TEST(AdoValuesTest, TypesHaveAdosNumbers) {
  const auto number = [](const Type& type) { return static_cast<int>(adoType(type)); };
  EXPECT_EQ(number({.kind = Kind::integer}), 3);
  EXPECT_EQ(number({.kind = Kind::real}), 5);
  EXPECT_EQ(number({.kind = Kind::money}), 6);
  EXPECT_EQ(number({.kind = Kind::bit}), 11);
  EXPECT_EQ(number({.kind = Kind::bigInt}), 20);
  EXPECT_EQ(number({.kind = Kind::decimal}), 131);
  EXPECT_EQ(number({.kind = Kind::dateTime}), 135);
  EXPECT_EQ(number({.kind = Kind::varChar, .width = 8000}), 200);
  EXPECT_EQ(number({.kind = Kind::varChar, .width = Type::maxWidth}), 201);
  EXPECT_EQ(number({.kind = Kind::nVarChar, .width = 60}), 202);
  EXPECT_EQ(number({.kind = Kind::nVarChar, .width = Type::maxWidth}), 203);
}

}  // namespace
}  // namespace quillon::workbench
