#include "workbench/tsql/values/agreement.h"

#include <gtest/gtest.h>

#include "workbench/tsql/values/exact.h"

namespace quillon::tsql {
namespace {

Value exactly(std::string_view text) {
  return *parseExact(text);
}

Agreement amounts(const Value& one, const Value& other) {
  return agreementOf(one, other, false);
}

Agreement quotients(const Value& one, const Value& other) {
  return agreementOf(one, other, true);
}

TEST(Agreement, IsThatOfTheNumberHoweverItIsDeclared) {
  EXPECT_EQ(amounts(exactly("1.50"), exactly("1.500000")), Agreement::same);
  EXPECT_EQ(amounts(std::int64_t{12}, exactly("12.00")), Agreement::same);
  EXPECT_EQ(amounts(12.5, exactly("12.50")), Agreement::same);
  EXPECT_EQ(amounts(exactly("-0.00"), std::int64_t{0}), Agreement::same);
  EXPECT_EQ(amounts(exactly("1.50"), exactly("1.51")), Agreement::different);
  EXPECT_EQ(amounts(std::int64_t{12}, exactly("12.01")), Agreement::different);
  // Too large for common decimals.
  EXPECT_EQ(amounts(exactly("99999999999999999999999999999999999999"), exactly("0.000001")), Agreement::different);
  EXPECT_EQ(quotients(exactly("99999999999999999999999999999999999999"), exactly("0.000001")), Agreement::different);
}

TEST(Agreement, OfQuotientsMayLackOneUnitOfTheLastDecimal) {
  EXPECT_EQ(quotients(exactly("3.333333"), exactly("3.333334")), Agreement::lastDigit);
  EXPECT_EQ(quotients(exactly("3.333334"), exactly("3.333333")), Agreement::lastDigit);
  EXPECT_EQ(quotients(exactly("-3.333333"), exactly("-3.333334")), Agreement::lastDigit);
  EXPECT_EQ(quotients(exactly("3.333333"), exactly("3.333335")), Agreement::different);
  EXPECT_EQ(amounts(exactly("3.333333"), exactly("3.333334")), Agreement::different);
  // The decimals that both have count.
  EXPECT_EQ(quotients(exactly("3.33"), exactly("3.335000")), Agreement::lastDigit);
  EXPECT_EQ(quotients(exactly("3.33"), exactly("3.340001")), Agreement::different);
}

TEST(Agreement, OfFloatingPointNumbersMayLackOneUnitOfTheFifteenthDigit) {
  EXPECT_EQ(amounts(0.1 + 0.2, 0.3), Agreement::lastDigit);
  EXPECT_EQ(amounts(1.0 / 3, 0.333333333333333), Agreement::lastDigit);
  EXPECT_EQ(amounts(-1.0 / 3, exactly("-0.333333333333333")), Agreement::lastDigit);
  EXPECT_EQ(amounts(1.00000000000001, 1.00000000000002), Agreement::lastDigit);
  EXPECT_EQ(amounts(1.00000000000001, 1.00000000000003), Agreement::different);
  EXPECT_EQ(amounts(9.99999999999998, 9.99999999999995), Agreement::different);
  EXPECT_EQ(amounts(0.0, 1e-300), Agreement::different);
  EXPECT_EQ(amounts(0.0, -0.0), Agreement::same);
  EXPECT_EQ(amounts(1.0, -1.0), Agreement::different);
}

TEST(Agreement, OfTextsDatesAndNullsIsToTheLetter) {
  EXPECT_EQ(quotients(std::string("a"), std::string("a")), Agreement::same);
  EXPECT_EQ(quotients(std::string("a"), std::string("A")), Agreement::different);
  EXPECT_EQ(quotients(std::string("1"), std::int64_t{1}), Agreement::different);
  EXPECT_EQ(quotients(DateTime{5}, DateTime{5}), Agreement::same);
  EXPECT_EQ(quotients(DateTime{5}, DateTime{6}), Agreement::different);
  EXPECT_EQ(quotients(Value(), Value()), Agreement::same);
  EXPECT_EQ(quotients(Value(), std::int64_t{0}), Agreement::different);
}

TEST(Agreement, PlainTextIsThatOfTheNumber) {
  EXPECT_EQ(plainText(exactly("1.500")), "1.5");
  EXPECT_EQ(plainText(exactly("100.00")), "100");
  EXPECT_EQ(plainText(exactly("-0.050")), "-0.05");
  EXPECT_EQ(plainText(std::int64_t{100}), "100");
  EXPECT_EQ(plainText(std::string("1.00")), "1.00");
  EXPECT_EQ(plainText(Value()), std::nullopt);
}

}  // namespace
}  // namespace quillon::tsql
