#include "workbench/account/sample_random.h"

#include <gtest/gtest.h>

#include <set>

namespace quillon::account {
namespace {

// The published numbers of both generators.
TEST(Random, SplitMixGivesItsPublishedSequence) {
  std::uint64_t state = 1234567;
  EXPECT_EQ(splitMix(state), 6457827717110365317U);
  EXPECT_EQ(splitMix(state), 3203168211198807973U);
  EXPECT_EQ(splitMix(state), 9817491932198370423U);
  EXPECT_EQ(splitMix(state), 4593380528125082431U);
  EXPECT_EQ(splitMix(state), 16408922859458223821U);
}

TEST(Random, XoshiroGivesItsPublishedSequence) {
  Random random(std::array<std::uint64_t, 4>{1, 2, 3, 4});
  EXPECT_EQ(random.next(), 11520U);
  EXPECT_EQ(random.next(), 0U);
  EXPECT_EQ(random.next(), 1509978240U);
  EXPECT_EQ(random.next(), 1215971899390074240U);
}

TEST(Random, StaysWithinItsBoundsAndReachesThem) {
  Random random(7);
  std::set<std::int64_t> seen;
  for (int i = 0; i < 1000; ++i)
    seen.insert(random.between(-2, 2));
  EXPECT_EQ(seen, (std::set<std::int64_t>{-2, -1, 0, 1, 2}));
  for (int i = 0; i < 1000; ++i)
    ASSERT_EQ(random.below(1), 0);
}

TEST(Random, OneSeedOneSequence) {
  Random first(42);
  Random second(42);
  Random other(43);
  bool differs = false;
  for (int i = 0; i < 100; ++i) {
    const std::uint64_t number = first.next();
    ASSERT_EQ(number, second.next());
    differs = differs || number != other.next();
  }
  EXPECT_TRUE(differs);
}

}  // namespace
}  // namespace quillon::account
