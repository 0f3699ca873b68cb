#include "workbench/odbc/wide_text.h"

#include <gmock/gmock.h>

namespace quillon::odbc {
namespace {

using testing::ElementsAre;

TEST(WideText, GoesBothWays) {
  EXPECT_THAT(toWide("a中"), ElementsAre(0x61, 0x4e2d));
  EXPECT_EQ(toUtf8(toWide("a中")), "a中");
  EXPECT_THAT(toWide(""), ElementsAre());
  EXPECT_EQ(toUtf8({}), "");
}

TEST(WideText, WritesCharactersBeyondTheBmpAsPairs) {
  EXPECT_THAT(toWide("😀"), ElementsAre(0xd83d, 0xde00));
  EXPECT_EQ(toUtf8(toWide("😀")), "😀");
}

TEST(WideText, KeepsHalvesOfPairs) {
  const WideText halves = {0xd83d, 0x41, 0xde00, 0xd83d};
  EXPECT_EQ(toUtf8(halves),
            "\xed\xa0\xbd"
            "A"
            "\xed\xb8\x80"
            "\xed\xa0\xbd");
  EXPECT_EQ(toWide(toUtf8(halves)), halves);
}

TEST(WideText, ReplacesBytesThatAreNoUtf8) {
  EXPECT_THAT(toWide("a\xff"
                     "b"),
              ElementsAre(0x61, 0xfffd, 0x62));
}

TEST(WideText, KeepsZeros) {
  EXPECT_THAT(toWide(std::string_view("a\0b", 3)), ElementsAre(0x61, 0, 0x62));
}

}  // namespace
}  // namespace quillon::odbc
