#include "workbench/tsql/values/conversion.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

const Type text20 = nVarCharType(20);

// The result as text, or the error as "number: message".
template <class Work>
std::string outcome(Work work) {
  try {
    return toText(work()).value_or("null");
  } catch (const SqlError& error) {
    return std::to_string(error.number()) + ": " + error.message();
  }
}
std::string cast(const Value& value, const Type& from, const Type& to, int style = 0) {
  return outcome([&] { return castValue(value, from, to, style); });
}
std::string cast(const char* text, const Type& to) {
  return cast(Value(std::string(text)), text20, to);
}
Value decimal(std::string_view text) {
  return parseExact(text).value();
}
std::string castDecimal(std::string_view text, const Type& to) {
  const Exact number = parseExact(text).value();
  return cast(number, decimalType(38, number.scale), to);
}
std::string castMoney(std::string_view text, const Type& to, int style = 0) {
  return cast(decimal(text), moneyType(), to, style);
}
std::string castFloat(double number, const Type& to, int style = 0) {
  return cast(number, floatType(), to, style);
}

TEST(TextToInt, TakesDigitsSignsAndBlanks) {
  EXPECT_EQ(cast("12", intType()), "12");
  EXPECT_EQ(cast(" -7 ", intType()), "-7");
  EXPECT_EQ(cast("+3", intType()), "3");
  EXPECT_EQ(cast("", intType()), "0");
  EXPECT_EQ(cast("   ", intType()), "0");
  EXPECT_EQ(cast("-", intType()), "0");
  EXPECT_EQ(cast("-2147483648", intType()), "-2147483648");
  EXPECT_EQ(cast("000000000000000000000000000000000000000000007", intType()), "7");
}

TEST(TextToInt, RefusesTheRest) {
  EXPECT_EQ(cast("12a", intType()),
            "245: Conversion failed when converting the nvarchar value '12a' to data type int.");
  EXPECT_EQ(cast("1.5", intType()),
            "245: Conversion failed when converting the nvarchar value '1.5' to data type int.");
  EXPECT_EQ(cast("甲", intType()), "245: Conversion failed when converting the nvarchar value '甲' to data type int.");
  EXPECT_EQ(cast("1 2", intType()),
            "245: Conversion failed when converting the nvarchar value '1 2' to data type int.");
  EXPECT_EQ(cast(Value(std::string("x")), varCharType(3), intType()),
            "245: Conversion failed when converting the varchar value 'x' to data type int.");
  EXPECT_EQ(cast("2147483648", intType()),
            "248: The conversion of the nvarchar value '2147483648' overflowed an int column.");
  EXPECT_EQ(cast("12a", bigIntType()), "8114: Error converting data type nvarchar to bigint.");
  EXPECT_EQ(cast("9223372036854775808", bigIntType()),
            "8115: Arithmetic overflow error converting expression to data type bigint.");
}

TEST(TextToBit, TakesWordsAndNumbers) {
  EXPECT_EQ(cast("TRUE", bitType()), "1");
  EXPECT_EQ(cast("false ", bitType()), "0");
  EXPECT_EQ(cast("1", bitType()), "1");
  EXPECT_EQ(cast("-5", bitType()), "1");
  EXPECT_EQ(cast("000", bitType()), "0");
  EXPECT_EQ(cast("", bitType()), "0");
  EXPECT_EQ(cast("yes", bitType()),
            "245: Conversion failed when converting the nvarchar value 'yes' to data type bit.");
}

TEST(TextToDecimal, RoundsAndRefusesTheEmptyText) {
  EXPECT_EQ(cast("12.345", decimalType(10, 2)), "12.35");
  EXPECT_EQ(cast(" 7 ", decimalType(5, 1)), "7.0");
  EXPECT_EQ(cast("-.005", decimalType(5, 2)), "-0.01");
  EXPECT_EQ(cast("", decimalType(10, 2)), "8114: Error converting data type nvarchar to numeric.");
  EXPECT_EQ(cast("1e3", decimalType(10, 2)), "8114: Error converting data type nvarchar to numeric.");
  EXPECT_EQ(cast("1,000", decimalType(10, 2)), "8114: Error converting data type nvarchar to numeric.");
  EXPECT_EQ(cast("1000", decimalType(5, 2)),
            "8115: Arithmetic overflow error converting nvarchar to data type numeric.");
}

TEST(TextToMoney, TakesCurrencyAndSeparators) {
  EXPECT_EQ(cast("-1.0001", moneyType()), "-1.0001");
  EXPECT_EQ(cast("", moneyType()), "0.0000");
  EXPECT_EQ(cast("$1,234.56", moneyType()), "1234.5600");
  EXPECT_EQ(cast("-￥5", moneyType()), "-5.0000");
  EXPECT_EQ(cast("1.00005", moneyType()), "1.0001");
  EXPECT_EQ(cast("1e2", moneyType()),
            "235: Cannot convert a char value to money. The char value has incorrect syntax.");
  EXPECT_EQ(cast("1.5x", moneyType()),
            "235: Cannot convert a char value to money. The char value has incorrect syntax.");
}

TEST(TextToFloat, TakesExponents) {
  EXPECT_EQ(cast("1e3", floatType()), "1000");
  EXPECT_EQ(cast("+0.5", floatType()), "0.5");
  EXPECT_EQ(cast("", floatType()), "0");
  EXPECT_EQ(cast("1e-999", floatType()), "0");
  EXPECT_EQ(cast("1e999", floatType()), "8115: Arithmetic overflow error converting nvarchar to data type float.");
  for (const char* text : {"inf", "nan", "0x10", "1e", "+-1", "1,5"}) {
    EXPECT_EQ(cast(text, floatType()), "8114: Error converting data type nvarchar to float.") << text;
  }
}

TEST(TextToDateTime, ReportsWhatIsWrong) {
  EXPECT_EQ(cast("2024-3-5", dateTimeType()), "2024-03-05 00:00:00.000");
  EXPECT_EQ(cast("", dateTimeType()), "1900-01-01 00:00:00.000");
  EXPECT_EQ(cast("2024-13-01", dateTimeType()),
            "242: The conversion of a nvarchar data type to a datetime data type resulted in an out-of-range value.");
  EXPECT_EQ(cast("soon", dateTimeType()),
            "241: Conversion failed when converting date and/or time from character string.");
  EXPECT_EQ(cast(Value(std::string("5/3/2024")), text20, dateTimeType(), 103), "2024-03-05 00:00:00.000");
}

TEST(NumberToInt, CutsDecimalsAndFloatsAndRoundsMoney) {
  EXPECT_EQ(castDecimal("2.9", intType()), "2");
  EXPECT_EQ(castDecimal("-2.9", intType()), "-2");
  EXPECT_EQ(castFloat(2.9, intType()), "2");
  EXPECT_EQ(castFloat(-2.9, intType()), "-2");
  EXPECT_EQ(castMoney("2.5000", intType()), "3");
  EXPECT_EQ(castMoney("-2.6000", intType()), "-3");
  EXPECT_EQ(castMoney("2.4999", intType()), "2");
  EXPECT_EQ(castDecimal("2147483648", intType()),
            "8115: Arithmetic overflow error converting numeric to data type int.");
  EXPECT_EQ(castFloat(1e10, intType()), "8115: Arithmetic overflow error converting expression to data type int.");
  EXPECT_EQ(castFloat(9223372036854775808.0, bigIntType()),
            "8115: Arithmetic overflow error converting expression to data type bigint.");
  EXPECT_EQ(cast(std::int64_t{5000000000}, bigIntType(), intType()),
            "8115: Arithmetic overflow error converting expression to data type int.");
}

TEST(NumberToBit, MakesOneOfWhatIsNotZero) {
  EXPECT_EQ(cast(std::int64_t{-1}, intType(), bitType()), "1");
  EXPECT_EQ(castDecimal("0.00", bitType()), "0");
  EXPECT_EQ(castDecimal("0.01", bitType()), "1");
  EXPECT_EQ(castFloat(0.25, bitType()), "1");
}

TEST(NumberToDecimal, RoundsHalfAwayFromZero) {
  EXPECT_EQ(castDecimal("1.005", decimalType(38, 2)), "1.01");
  EXPECT_EQ(castDecimal("-1.005", decimalType(38, 2)), "-1.01");
  EXPECT_EQ(castDecimal("1.0049", decimalType(38, 2)), "1.00");
  EXPECT_EQ(castDecimal("2.675", decimalType(38, 0)), "3");
  EXPECT_EQ(castFloat(2.675, decimalType(38, 3)), "2.675");
  EXPECT_EQ(castFloat(-0.125, decimalType(38, 2)), "-0.13");
  EXPECT_EQ(castFloat(1e10, decimalType(38, 3)), "10000000000.000");
  EXPECT_EQ(castFloat(0.1, decimalType(38, 3)), "0.100");
  EXPECT_EQ(castFloat(1.0 / 3.0, decimalType(38, 6)), "0.333333");
  EXPECT_EQ(castFloat(1e-30, decimalType(38, 6)), "0.000000");
  EXPECT_EQ(castDecimal("-1.00005", moneyType()), "-1.0001");
  EXPECT_EQ(cast(std::int64_t{1000}, intType(), decimalType(5, 2)),
            "8115: Arithmetic overflow error converting int to data type numeric.");
  EXPECT_EQ(castFloat(1e40, decimalType(38, 0)),
            "8115: Arithmetic overflow error converting float to data type numeric.");
  EXPECT_EQ(castDecimal("999.996", decimalType(5, 2)),
            "8115: Arithmetic overflow error converting numeric to data type numeric.");
}

// By the seventeen digits that the C library prints, each time rounded by hand.
TEST(NumberToDecimal, OfAFloatCountsSeventeenDigits) {
  std::mt19937_64 random(17);
  for (int i = 0; i < 20'000; ++i) {
    const double number = static_cast<double>(static_cast<std::int64_t>(random() % 2'000'000'001) - 1'000'000'000) /
                          static_cast<double>(1 + random() % 9'999);
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.16e", std::abs(number));
    const std::string digits = std::string(1, buffer[0]) + std::string(buffer.data() + 2, 16);
    const int exponent = std::atoi(buffer.data() + 19);
    const int dropped = 16 - exponent - 4;  // of the digits, for four decimals
    std::int64_t power = 1;
    for (int digit = 0; digit < dropped; ++digit)
      power *= 10;
    const std::int64_t mantissa = std::atoll(digits.c_str());
    std::int64_t units = dropped > 17 ? 0 : mantissa / power + (mantissa % power >= power - mantissa % power ? 1 : 0);
    if (number < 0) units = -units;
    const Value value = castValue(number, floatType(), decimalType(26, 4), 0);
    ASSERT_EQ(std::get<Exact>(value).units, Int128(units)) << buffer.data();
  }
}

TEST(NumberToText, KeepsTheDigitsOfItsType) {
  EXPECT_EQ(castDecimal("1.5000", text20), "1.5000");
  EXPECT_EQ(castDecimal("0.0000", text20), "0.0000");
  EXPECT_EQ(cast(std::int64_t{-7}, intType(), text20), "-7");
  EXPECT_EQ(cast(std::int64_t{1}, bitType(), text20), "1");
  EXPECT_EQ(castMoney("12.3456", text20), "12.35");
  EXPECT_EQ(castMoney("-0.0060", text20), "-0.01");
  EXPECT_EQ(castMoney("1234567.0000", text20), "1234567.00");
  EXPECT_EQ(castMoney("1234567.8900", text20, 1), "1,234,567.89");
  EXPECT_EQ(castMoney("-123.4500", text20, 1), "-123.45");
  EXPECT_EQ(castMoney("12.3456", text20, 2), "12.3456");
}

TEST(NumberToText, WritesFloatsWithSixDigits) {
  EXPECT_EQ(castFloat(1.5, text20), "1.5");
  EXPECT_EQ(castFloat(100, text20), "100");
  EXPECT_EQ(castFloat(-2.25, text20), "-2.25");
  EXPECT_EQ(castFloat(123456789, text20), "1.23457e+008");
  EXPECT_EQ(castFloat(1e-5, text20), "1e-005");
  EXPECT_EQ(castFloat(1.0 / 3.0, text20), "0.333333");
  EXPECT_EQ(castFloat(12345.678, nVarCharType(30), 1), "1.2345678e+004");
}

TEST(NumberToText, NeverDropsADigit) {
  EXPECT_EQ(cast(std::int64_t{123}, intType(), nVarCharType(2)),
            "8115: Arithmetic overflow error converting expression to data type nvarchar.");
  EXPECT_EQ(cast(std::int64_t{123}, intType(), varCharType(2)), "*");
  EXPECT_EQ(castDecimal("1.50", nVarCharType(3)),
            "8115: Arithmetic overflow error converting numeric to data type nvarchar.");
  EXPECT_EQ(castMoney("1.5000", nVarCharType(3)),
            "234: There is insufficient result space to convert a money value to nvarchar.");
}

TEST(DateToText, FollowsTheStyle) {
  const Value date = parseDateTime("2024-03-05 13:14:15").value.value();
  EXPECT_EQ(cast(date, dateTimeType(), nVarCharType(30)), "Mar  5 2024  1:14PM");
  EXPECT_EQ(cast(date, dateTimeType(), nVarCharType(10), 120), "2024-03-05");
  EXPECT_EQ(cast(date, dateTimeType(), nVarCharType(6)), "Mar  5");
  EXPECT_EQ(cast(date, dateTimeType(), nVarCharType(30), 77),
            "281: 77 is not a valid style number when converting from datetime to a character string.");
}

TEST(DateAndNumber, CountDaysSince1900) {
  EXPECT_EQ(cast(std::int64_t{45356}, intType(), dateTimeType()), "2024-03-07 00:00:00.000");
  EXPECT_EQ(castFloat(1.5, dateTimeType()), "1900-01-02 12:00:00.000");
  const Value noon = parseDateTime("1900-01-02 12:00").value.value();
  EXPECT_EQ(cast(noon, dateTimeType(), floatType()), "1.5");
  EXPECT_EQ(cast(noon, dateTimeType(), intType()), "2");
  EXPECT_EQ(castFloat(1e9, dateTimeType()),
            "8115: Arithmetic overflow error converting expression to data type datetime.");
}

TEST(TextToText, CutsInACastAndRefusesInAnAssignment) {
  EXPECT_EQ(cast("采购入库单", nVarCharType(2)), "采购");
  const auto assign = [](const char* text, const Type& to) {
    return outcome([&] { return assignValue(Value(std::string(text)), text20, to, "t", "a"); });
  };
  EXPECT_EQ(assign("一二三", nVarCharType(3)), "一二三");
  EXPECT_EQ(assign("一二三  ", nVarCharType(3)), "一二三");
  EXPECT_EQ(assign("一二  三  ", nVarCharType(3)),
            "2628: String or binary data would be truncated in table 't', column 'a'. Truncated value: '一二 '.");
  EXPECT_EQ(assign("12a", intType()),
            "245: Conversion failed when converting the nvarchar value '12a' to data type int.");
  EXPECT_EQ(outcome([] { return assignValue(Value(std::string("abcd")), text20, nVarCharType(3)); }),
            "8152: String or binary data would be truncated.");
}

TEST(Null, StaysNull) {
  EXPECT_EQ(cast(Value(), text20, intType()), "null");
  EXPECT_EQ(cast(Value(), intType(), text20), "null");
}

TEST(IsNumeric, IsOneForTextsThatConvertToAnyNumberType) {
  for (const char* text : {"1", "-1.5", " 7 ", "1e3", "$5", "1,000", "-", "."}) {
    EXPECT_EQ(isNumericText(text), std::string_view(text) != ".") << text;
  }
  for (const char* text : {"", " ", "abc", "1a", "1 2"})
    EXPECT_FALSE(isNumericText(text)) << text;
}

}  // namespace
}  // namespace quillon::tsql
