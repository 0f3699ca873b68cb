#include "workbench/tsql/values/exact.h"

#include <gtest/gtest.h>

#include <limits>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

Exact number(std::string_view text) {
  const auto parsed = parseExact(text);
  EXPECT_TRUE(parsed) << text;
  return parsed.value_or(Exact());
}

// The number of the error that `work` throws; 0 when it throws none.
template <class Work>
int errorOf(Work work) {
  try {
    work();
  } catch (const SqlError& error) {
    return error.number();
  }
  return 0;
}

TEST(Exact, ReadsAndWritesText) {
  for (const char* text : {"0", "-7", "12.50", "0.000001", "-0.0500", "99999999999999999999999999999999999999",
                           "-1234567890123456789012345678.0123456789"}) {
    EXPECT_EQ(toText(number(text)), text);
  }
  EXPECT_EQ(toText(number("+.5")), "0.5");
  EXPECT_EQ(toText(number("7.")), "7");
  EXPECT_EQ(toText(number("007")), "7");
}

TEST(Exact, IsAppendedWithAllItsDecimals) {
  std::string text = "x";
  appendText(text, {.units = 0, .scale = 4});
  appendText(text, {.units = -5, .scale = 0});
  appendText(text, {.units = Int128(std::numeric_limits<std::int64_t>::min()), .scale = 19});
  appendText(text, {.units = Int128(1'000'000'000'000'000'000) * Int128(-1'000), .scale = 2});
  EXPECT_EQ(text, "x0.0000-5-0.9223372036854775808-10000000000000000000.00");
}

TEST(Exact, RefusesWhatIsNoNumber) {
  for (const char* text : {"", "-", ".", "1.2.3", "1e3", "12a", " 1", "1,000", "--1"}) {
    EXPECT_FALSE(parseExact(text)) << text;
  }
}

TEST(Exact, TellsTooManyDigitsFromNoNumber) {
  bool tooLarge = false;
  EXPECT_FALSE(parseExact("123456789012345678901234567890123456789", &tooLarge));
  EXPECT_TRUE(tooLarge);
  tooLarge = false;
  EXPECT_FALSE(parseExact("x", &tooLarge));
  EXPECT_FALSE(tooLarge);
}

TEST(Exact, AddsInTheLargerScale) {
  EXPECT_EQ(toText(add(number("1.5000"), number("0.250000"), decimalType(29, 6))), "1.750000");
  EXPECT_EQ(toText(subtract(number("-0.0005"), number("3.000000"), decimalType(29, 6))), "-3.000500");
  EXPECT_EQ(toText(subtract(add(number("0.1"), number("0.2"), decimalType(3, 1)), number("0.3"), decimalType(4, 1))),
            "0.0");
  EXPECT_EQ(toText(add(number("99999999999999999999999999999999.999998"), number("0.000001"), decimalType(38, 6))),
            "99999999999999999999999999999999.999999");
}

TEST(Exact, RoundsASumWhoseScaleIsReduced) {
  EXPECT_EQ(toText(add(number("10000000000000000000000000000000000000"), number("0.5"), decimalType(38, 0))),
            "10000000000000000000000000000000000001");
}

TEST(Exact, RefusesASumThatDoesNotFit) {
  EXPECT_EQ(errorOf([] { add(number("2147483647"), number("1"), intType()); }), 8115);
  EXPECT_EQ(errorOf([] { subtract(number("-2147483648"), number("1"), intType()); }), 8115);
  EXPECT_EQ(errorOf([] { add(number("99.9"), number("0.1"), decimalType(3, 1)); }), 8115);
  EXPECT_EQ(errorOf([] { add(number("922337203685477.5807"), number("0.0001"), moneyType()); }), 8115);
}

TEST(Exact, MultipliesExactlyAndRoundsOnlyAReducedScale) {
  EXPECT_EQ(toText(multiply(number("1.005"), number("2.50"), decimalType(19, 5))), "2.51250");
  EXPECT_EQ(toText(multiply(number("-0.001"), number("0.01"), decimalType(19, 5))), "-0.00001");
  EXPECT_EQ(toText(multiply(number("0.0500"), number("0.0010"), moneyType())), "0.0001");
  EXPECT_EQ(toText(multiply(number("0.0400"), number("0.0010"), moneyType())), "0.0000");
  // Beyond what 128 bits hold with the decimals of both factors.
  EXPECT_EQ(
      toText(multiply(number("10000000000000000001.000000"), number("1000000000000.0000000005"), decimalType(38, 6))),
      "10000000000000000001005000000000.000000");
}

TEST(Exact, CutsQuotients) {
  EXPECT_EQ(toText(divide(number("2.00"), number("3.0"), decimalType(18, 9))), "0.666666666");
  EXPECT_EQ(toText(divide(number("-2.00"), number("3.0"), decimalType(18, 9))), "-0.666666666");
  EXPECT_EQ(toText(divide(number("20.0000"), number("3"), moneyType())), "6.6666");
  EXPECT_EQ(toText(divide(number("100.0000"), number("339.0000"), moneyType())), "0.2949");
  EXPECT_EQ(toText(divide(number("7"), number("2"), intType())), "3");
  EXPECT_EQ(toText(divide(number("-7"), number("2"), intType())), "-3");
  EXPECT_EQ(toText(divide(number("1234567890123456789012345678.5"), number("0.0000000003"), decimalType(38, 0))),
            "4115226300411522630041152261666666666");
}

TEST(Exact, CutsQuotientsOfOperandsWithMoreDecimalsThanTheResult) {
  EXPECT_EQ(toText(divide(number("0.00001999"), number("10"), decimalType(38, 6))), "0.000001");
  EXPECT_EQ(toText(divide(number("12345678901234567890123456789.123456789"), number("10"), decimalType(38, 6))),
            "1234567890123456789012345678.912345");
}

TEST(Exact, RefusesToDivideByZero) {
  EXPECT_EQ(errorOf([] { divide(number("1"), number("0.00"), decimalType(10, 2)); }), 8134);
  EXPECT_EQ(errorOf([] { remainder(number("5"), number("0"), intType()); }), 8134);
}

TEST(Exact, GivesRemaindersTheDividendsSign) {
  EXPECT_EQ(toText(remainder(number("-7"), number("2"), intType())), "-1");
  EXPECT_EQ(toText(remainder(number("7"), number("-2"), intType())), "1");
  EXPECT_EQ(toText(remainder(number("5.25"), number("0.5"), decimalType(3, 2))), "0.25");
}

TEST(Exact, ComparesAcrossScales) {
  EXPECT_EQ(compare(number("2"), number("2.0000")), 0);
  EXPECT_LT(compare(number("2"), number("2.0001")), 0);
  EXPECT_GT(compare(number("-1"), number("-1.5")), 0);
  EXPECT_GT(
      compare(number("99999999999999999999999999999999999999"), number("0.00000000000000000000000000000000000001")), 0);
  EXPECT_LT(
      compare(number("-99999999999999999999999999999999999999"), number("0.00000000000000000000000000000000000001")),
      0);
  EXPECT_GT(
      compare(number("0.00000000000000000000000000000000000001"), number("-99999999999999999999999999999999999999")),
      0);
}

TEST(Exact, RescalesHalfAwayFromZeroOrCuts) {
  EXPECT_EQ(rescale(2345, 3, 2, Rounding::halfAway), Int128(235));
  EXPECT_EQ(rescale(-2345, 3, 2, Rounding::halfAway), Int128(-235));
  EXPECT_EQ(rescale(2344, 3, 2, Rounding::halfAway), Int128(234));
  EXPECT_EQ(rescale(2349, 3, 2, Rounding::cut), Int128(234));
  EXPECT_EQ(rescale(5, 0, 3, Rounding::cut), Int128(5000));
  EXPECT_EQ(rescale(1, 0, 39, Rounding::cut), std::nullopt);
  EXPECT_EQ(rescale(5, 39, 0, Rounding::halfAway), Int128(0));
}

TEST(Exact, RoundsToDigitsAndKeepsTheScale) {
  const Type type = decimalType(10, 4);
  EXPECT_EQ(toText(round(number("2.3450"), 2, Rounding::halfAway, type)), "2.3500");
  EXPECT_EQ(toText(round(number("-2.3450"), 2, Rounding::halfAway, type)), "-2.3500");
  EXPECT_EQ(toText(round(number("2.3449"), 2, Rounding::halfAway, type)), "2.3400");
  EXPECT_EQ(toText(round(number("2.3499"), 2, Rounding::cut, type)), "2.3400");
  EXPECT_EQ(toText(round(number("1234.5678"), -2, Rounding::halfAway, type)), "1200.0000");
  EXPECT_EQ(toText(round(number("50.0000"), -2, Rounding::halfAway, type)), "100.0000");
  EXPECT_EQ(toText(round(number("1.5000"), 9, Rounding::halfAway, type)), "1.5000");
  EXPECT_EQ(toText(round(number("1.5000"), -99, Rounding::halfAway, type)), "0.0000");
  EXPECT_EQ(errorOf([] { round(number("9.9"), 0, Rounding::halfAway, decimalType(2, 1)); }), 8115);
}

TEST(Exact, FindsTheIntegralNeighbours) {
  EXPECT_EQ(toText(floor(number("-2.10"), decimalType(10, 0))), "-3");
  EXPECT_EQ(toText(floor(number("2.90"), decimalType(10, 0))), "2");
  EXPECT_EQ(toText(ceiling(number("2.10"), decimalType(10, 0))), "3");
  EXPECT_EQ(toText(ceiling(number("-2.90"), decimalType(10, 0))), "-2");
  EXPECT_EQ(toText(floor(number("-2.0000"), moneyType())), "-2.0000");
}

TEST(Exact, BecomesTheNearestDouble) {
  EXPECT_EQ(toDouble(number("0.1")), 0.1);
  EXPECT_EQ(toDouble(number("-2.675")), -2.675);
  EXPECT_EQ(toDouble(number("1234567890123456789.123456")), 1234567890123456789.123456);
}

}  // namespace
}  // namespace quillon::tsql
