#include "workbench/tsql/values/int128.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillon::tsql {
namespace {

template <class Integer>
class Int128Test : public testing::Test {};

#ifdef __SIZEOF_INT128__
using Implementations = testing::Types<Int128Halves, Int128Native>;
#else
using Implementations = testing::Types<Int128Halves>;
#endif
TYPED_TEST_SUITE(Int128Test, Implementations);

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

TYPED_TEST(Int128Test, KeepsWhatFits64Bits) {
  for (const std::int64_t value : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, most, least}) {
    EXPECT_TRUE(TypeParam(value).fitsInt64());
    EXPECT_EQ(TypeParam(value).toInt64(), value);
    EXPECT_EQ(TypeParam(value).negative(), value < 0);
  }
}

TYPED_TEST(Int128Test, CarriesFromTheLowerHalfAndBorrowsFromTheUpper) {
  const TypeParam beyond = TypeParam(most) + TypeParam(1);
  EXPECT_FALSE(beyond.fitsInt64());
  EXPECT_EQ(beyond.high(), 0);
  EXPECT_EQ(beyond.low(), std::uint64_t{1} << 63);
  EXPECT_EQ(beyond - TypeParam(1), TypeParam(most));
  EXPECT_EQ(TypeParam(least) - TypeParam(1), TypeParam::fromHalves(-1, (std::uint64_t{1} << 63) - 1));
  EXPECT_EQ(-TypeParam(least), beyond);
  EXPECT_EQ(TypeParam::fromHalves(0, ~std::uint64_t{0}) + TypeParam(1), TypeParam::fromHalves(1, 0));
}

TYPED_TEST(Int128Test, MultipliesSignedFactors) {
  // (2^63 - 1)^2 = 2^126 - 2^64 + 1
  EXPECT_EQ(TypeParam(most) * TypeParam(most), TypeParam::fromHalves((std::int64_t{1} << 62) - 1, 1));
  EXPECT_EQ(TypeParam(least) * TypeParam(least), TypeParam::fromHalves(std::int64_t{1} << 62, 0));
  EXPECT_EQ(TypeParam(-3) * TypeParam(7), TypeParam(-21));
  EXPECT_EQ(TypeParam::fromHalves(1, 0) * TypeParam(-2), TypeParam::fromHalves(-2, 0));
}

TYPED_TEST(Int128Test, CutsQuotientsTowardZero) {
  EXPECT_EQ(TypeParam(7) / TypeParam(2), TypeParam(3));
  EXPECT_EQ(TypeParam(-7) / TypeParam(2), TypeParam(-3));
  EXPECT_EQ(TypeParam(7) / TypeParam(-2), TypeParam(-3));
  EXPECT_EQ(TypeParam(-7) % TypeParam(2), TypeParam(-1));
  EXPECT_EQ(TypeParam(7) % TypeParam(-2), TypeParam(1));
}

TYPED_TEST(Int128Test, DividesBeyond64Bits) {
  // 10^38 + 7 by 10^20, and by a divisor that is itself beyond 64 bits.
  TypeParam power = 1;
  for (int i = 0; i < 38; ++i)
    power = power * TypeParam(10);
  TypeParam divisor = 1;
  for (int i = 0; i < 20; ++i)
    divisor = divisor * TypeParam(10);
  EXPECT_EQ((power + TypeParam(7)) / divisor, TypeParam(1'000'000'000'000'000'000));
  EXPECT_EQ((power + TypeParam(7)) % divisor, TypeParam(7));
  EXPECT_EQ(-power / divisor, TypeParam(-1'000'000'000'000'000'000));
  EXPECT_EQ(power / TypeParam(3) * TypeParam(3) + TypeParam(1), power);
}

TYPED_TEST(Int128Test, OrdersByValue) {
  EXPECT_LT(TypeParam::fromHalves(-1, 0), TypeParam(least));
  EXPECT_LT(TypeParam(-1), TypeParam(0));
  EXPECT_GT(TypeParam::fromHalves(1, 0), TypeParam(most));
  EXPECT_LT(TypeParam::fromHalves(0, ~std::uint64_t{0}), TypeParam::fromHalves(1, 0));
}

TYPED_TEST(Int128Test, TellsWhenASumLeaves128Bits) {
  const TypeParam largest = TypeParam::fromHalves(most, ~std::uint64_t{0});
  EXPECT_TRUE(addOverflows(largest, TypeParam(1)));
  EXPECT_FALSE(addOverflows(largest, TypeParam(-1)));
  EXPECT_TRUE(addOverflows(TypeParam::fromHalves(least, 0), TypeParam(-1)));
}

TYPED_TEST(Int128Test, BecomesTheNearestDouble) {
  EXPECT_EQ(toDouble(TypeParam(-3)), -3.0);
  EXPECT_EQ(toDouble(TypeParam::fromHalves(1, 0)), 18446744073709551616.0);
  // 2^64 + 2^11 lies half-way between two doubles and goes to the even one; one more unit tips it over.
  EXPECT_EQ(toDouble(TypeParam::fromHalves(1, 1U << 11)), 18446744073709551616.0);
  EXPECT_EQ(toDouble(TypeParam::fromHalves(1, (1U << 11) + 1)), 18446744073709551616.0 + 4096.0);
  EXPECT_EQ(toDouble(TypeParam::fromHalves(least, 0)), -170141183460469231731687303715884105728.0);
}

}  // namespace
}  // namespace quillon::tsql
