#include "frame/text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(Text, ComparesWithoutRegardToAsciiLetterCase) {
  EXPECT_TRUE(equalIgnoringCase("cInvCode", "CINVCODE"));
  EXPECT_TRUE(equalIgnoringCase("", ""));
  EXPECT_FALSE(equalIgnoringCase("cInvCode", "cInvCod"));
  EXPECT_FALSE(equalIgnoringCase("cFree1", "cFree2"));
  // The characters around the letters are not letters.
  EXPECT_FALSE(equalIgnoringCase("@[`{", "`{@["));
}

TEST(Text, TrimsBlanksOnBothSidesAndNothingElse) {
  EXPECT_EQ(trimBlanks("  a b  "), "a b");
  EXPECT_EQ(trimBlanks("   "), "");
  EXPECT_EQ(trimBlanks(""), "");
  EXPECT_EQ(trimBlanks(" \ta\n "), "\ta\n");
}

}  // namespace
}  // namespace quillon
