#include "workbench/tsql/values/type_rules.h"

#include <gtest/gtest.h>

#include <vector>

#include "workbench/tsql/engine/engine.h"

namespace quillon::tsql {
namespace {

constexpr Arithmetic plus = Arithmetic::add;
constexpr Arithmetic minus = Arithmetic::subtract;
constexpr Arithmetic times = Arithmetic::multiply;
constexpr Arithmetic by = Arithmetic::divide;
constexpr Arithmetic modulo = Arithmetic::remainder;

std::string typeOf(Arithmetic operation, const Operand& left, const Operand& right) {
  return arithmeticType(operation, left, right).name();
}
Operand literal(int digits) {
  return {intType(), digits, false};
}
const Operand null = {intType(), 0, true};

template <class Work>
int errorOf(Work work) {
  try {
    work();
  } catch (const SqlError& error) {
    return error.number();
  }
  return 0;
}

TEST(TypeRules, NamesTypes) {
  EXPECT_EQ(decimalType(18, 6).name(), "decimal(18,6)");
  EXPECT_EQ(nVarCharType(20).name(), "nvarchar(20)");
  EXPECT_EQ(varCharType(Type::maxWidth).name(), "varchar(max)");
  EXPECT_EQ(bitType().name(), "bit");
  EXPECT_EQ(bigIntType().name(), "bigint");
  EXPECT_EQ(floatType().name(), "float");
  EXPECT_EQ(dateTimeType().name(), "datetime");
  EXPECT_EQ(moneyType().name(), "money");
}

TEST(TypeRules, SumsKeepTheLargerScaleAndGainADigit) {
  EXPECT_EQ(typeOf(plus, {decimalType(18, 4)}, {decimalType(28, 6)}), "decimal(29,6)");
  EXPECT_EQ(typeOf(plus, {intType()}, {decimalType(18, 4)}), "decimal(19,4)");
  EXPECT_EQ(typeOf(minus, literal(1), {decimalType(1, 1)}), "decimal(3,1)");
  EXPECT_EQ(typeOf(plus, {decimalType(38, 6)}, {decimalType(38, 6)}), "decimal(38,6)");
  EXPECT_EQ(typeOf(plus, {decimalType(38, 10)}, {decimalType(38, 2)}), "decimal(38,2)");
}

TEST(TypeRules, ProductsAddDigits) {
  EXPECT_EQ(typeOf(times, {decimalType(10, 3)}, {decimalType(8, 2)}), "decimal(19,5)");
  EXPECT_EQ(typeOf(times, {intType()}, {decimalType(18, 4)}), "decimal(29,4)");
  EXPECT_EQ(typeOf(times, {decimalType(38, 6)}, {decimalType(38, 6)}), "decimal(38,6)");
  EXPECT_EQ(typeOf(times, {decimalType(28, 6)}, {decimalType(18, 4)}), "decimal(38,6)");
  EXPECT_EQ(typeOf(times, {decimalType(38, 2)}, {decimalType(38, 2)}), "decimal(38,4)");
}

TEST(TypeRules, QuotientsHaveAtLeastSixDecimals) {
  EXPECT_EQ(typeOf(by, {decimalType(10, 2)}, {decimalType(6, 1)}), "decimal(18,9)");
  EXPECT_EQ(typeOf(by, {decimalType(2, 1)}, literal(1)), "decimal(7,6)");
  EXPECT_EQ(typeOf(by, {decimalType(38, 6)}, {decimalType(38, 6)}), "decimal(38,6)");
  EXPECT_EQ(typeOf(by, {moneyType()}, {decimalType(18, 4)}), "decimal(38,19)");
}

TEST(TypeRules, RemaindersKeepTheSmallerWholePart) {
  EXPECT_EQ(typeOf(modulo, {decimalType(10, 2)}, {decimalType(6, 3)}), "decimal(6,3)");
  EXPECT_EQ(typeOf(modulo, {intType()}, {intType()}), "int");
}

TEST(TypeRules, MoneyStaysMoneyBesideIntAndBecomesDecimalBesideDecimal) {
  EXPECT_EQ(typeOf(times, {moneyType()}, {intType()}), "money");
  EXPECT_EQ(typeOf(by, {moneyType()}, {moneyType()}), "money");
  EXPECT_EQ(typeOf(plus, {moneyType()}, {decimalType(18, 4)}), "decimal(20,4)");
  EXPECT_EQ(typeOf(plus, {moneyType()}, {floatType()}), "float");
}

TEST(TypeRules, TextsJoinAndNumbersAddTheText) {
  EXPECT_EQ(typeOf(plus, {nVarCharType(20)}, {varCharType(20)}), "nvarchar(40)");
  EXPECT_EQ(typeOf(plus, {varCharType(3)}, {varCharType(4)}), "varchar(7)");
  EXPECT_EQ(typeOf(plus, {nVarCharType(3000)}, {nVarCharType(3000)}), "nvarchar(4000)");
  EXPECT_EQ(typeOf(plus, {nVarCharType(Type::maxWidth)}, {nVarCharType(3)}), "nvarchar(max)");
  EXPECT_EQ(typeOf(plus, {nVarCharType(5)}, literal(1)), "int");
  EXPECT_EQ(typeOf(plus, {nVarCharType(5)}, {decimalType(10, 2)}), "decimal(11,2)");
  EXPECT_EQ(arithmeticOperandType(plus, {nVarCharType(5)}, {intType()}), intType());
  EXPECT_EQ(arithmeticOperandType(plus, {intType()}, {decimalType(10, 2)}), intType());
  EXPECT_EQ(arithmeticOperandType(plus, {decimalType(10, 2)}, {floatType()}), floatType());
}

TEST(TypeRules, DatesTakeNumbers) {
  EXPECT_EQ(typeOf(plus, {dateTimeType()}, {intType()}), "datetime");
  EXPECT_EQ(typeOf(minus, {dateTimeType()}, {dateTimeType()}), "datetime");
  EXPECT_EQ(errorOf([] { arithmeticType(times, {dateTimeType()}, {intType()}); }), 8117);
}

TEST(TypeRules, ALiteralNullTakesItsPartnersType) {
  EXPECT_EQ(typeOf(plus, {moneyType()}, null), "money");
  EXPECT_EQ(typeOf(plus, null, {nVarCharType(5)}), "nvarchar(10)");
  EXPECT_EQ(typeOf(plus, null, null), "int");
}

TEST(TypeRules, RefusesWhatHasNoArithmetic) {
  EXPECT_EQ(errorOf([] { arithmeticType(minus, {nVarCharType(5)}, {nVarCharType(5)}); }), 8117);
  EXPECT_EQ(errorOf([] { arithmeticType(minus, {nVarCharType(5)}, {varCharType(5)}); }), 402);
  EXPECT_EQ(errorOf([] { arithmeticType(plus, {bitType()}, {bitType()}); }), 8117);
  EXPECT_EQ(errorOf([] { arithmeticType(modulo, {floatType()}, {intType()}); }), 402);
}

std::string commonOf(std::vector<Operand> branches) {
  return commonType(branches).name();
}

TEST(TypeRules, BranchesTakeTheHighestTypeAndTheWidestOfIt) {
  EXPECT_EQ(commonOf({{nVarCharType(2)}, {nVarCharType(4)}}), "nvarchar(4)");
  EXPECT_EQ(commonOf({{varCharType(9)}, {nVarCharType(4)}}), "nvarchar(9)");
  EXPECT_EQ(commonOf({{intType()}, {decimalType(18, 4)}}), "decimal(18,4)");
  EXPECT_EQ(commonOf({literal(1), {decimalType(3, 2)}}), "decimal(3,2)");
  EXPECT_EQ(commonOf({{decimalType(10, 2)}, {decimalType(6, 4)}}), "decimal(12,4)");
  EXPECT_EQ(commonOf({{decimalType(38, 0)}, {decimalType(38, 10)}}), "decimal(38,0)");
  EXPECT_EQ(commonOf({{moneyType()}, literal(1)}), "money");
  EXPECT_EQ(commonOf({{varCharType(1)}, {intType()}}), "int");
  EXPECT_EQ(commonOf({{dateTimeType()}, {nVarCharType(20)}}), "datetime");
  EXPECT_EQ(commonOf({null, {nVarCharType(3)}}), "nvarchar(3)");
  EXPECT_EQ(commonOf({null, null}), "int");
}

TEST(TypeRules, IsNullTakesTheFirstType) {
  EXPECT_EQ(isNullType({nVarCharType(2)}, {nVarCharType(9)}).name(), "nvarchar(2)");
  EXPECT_EQ(isNullType({bitType()}, literal(1)).name(), "bit");
  EXPECT_EQ(isNullType(null, {moneyType()}).name(), "money");
}

TEST(TypeRules, AggregatesWidenDecimals) {
  EXPECT_EQ(aggregateType(Aggregate::sum, decimalType(28, 6)).name(), "decimal(38,6)");
  EXPECT_EQ(aggregateType(Aggregate::avg, decimalType(10, 2)).name(), "decimal(38,6)");
  EXPECT_EQ(aggregateType(Aggregate::avg, decimalType(20, 8)).name(), "decimal(38,8)");
  EXPECT_EQ(aggregateType(Aggregate::sum, moneyType()).name(), "money");
  EXPECT_EQ(aggregateType(Aggregate::sum, intType()).name(), "int");
  EXPECT_EQ(aggregateType(Aggregate::max, nVarCharType(7)).name(), "nvarchar(7)");
  EXPECT_EQ(aggregateType(Aggregate::count, dateTimeType()).name(), "int");
  for (const Type& type : {nVarCharType(5), bitType(), dateTimeType()}) {
    EXPECT_EQ(errorOf([&] { aggregateType(Aggregate::sum, type); }), 8117) << type.name();
  }
  EXPECT_EQ(errorOf([] { aggregateType(Aggregate::max, bitType()); }), 8117);
}

TEST(TypeRules, LiteralsHaveTheLeastTypeThatHoldsThem) {
  EXPECT_EQ(numberLiteralType("0").name(), "int");
  EXPECT_EQ(numberLiteralType("2147483647").name(), "int");
  EXPECT_EQ(numberLiteralType("2147483648").name(), "decimal(10,0)");
  EXPECT_EQ(numberLiteralType("00000000000001").name(), "int");
  EXPECT_EQ(numberLiteralType("1.50").name(), "decimal(3,2)");
  EXPECT_EQ(numberLiteralType("0.1").name(), "decimal(1,1)");
  EXPECT_EQ(numberLiteralType(".25").name(), "decimal(2,2)");
  EXPECT_EQ(numberLiteralType("1.").name(), "decimal(1,0)");
  EXPECT_EQ(numberLiteralType("0.").name(), "decimal(1,0)");
  EXPECT_EQ(numberLiteralType("1e3").name(), "float");
  EXPECT_EQ(errorOf([] { numberLiteralType("123456789012345678901234567890123456789"); }), 1007);
}

TEST(TypeRules, SomeAssignmentsNeedACast) {
  EXPECT_EQ(errorOf([] { checkAssignment(dateTimeType(), intType()); }), 257);
  EXPECT_EQ(errorOf([] { checkAssignment(moneyType(), nVarCharType(20)); }), 257);
  EXPECT_EQ(errorOf([] { checkAssignment(nVarCharType(20), moneyType()); }), 0);
  EXPECT_EQ(errorOf([] { checkAssignment(dateTimeType(), nVarCharType(20)); }), 0);
}

}  // namespace
}  // namespace quillon::tsql
