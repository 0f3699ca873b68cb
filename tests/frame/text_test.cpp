#include "frame/text.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace quillon {
namespace {

TEST(Text, ComparesWithoutRegardToAsciiLetterCase) {
  EXPECT_TRUE(equalIgnoringCase("cInvCode", "CINVCODE"));
  EXPECT_TRUE(equalIgnoringCase("", ""));
  EXPECT_FALSE(equalIgnoringCase("cInvCode", "cInvCod"));
  EXPECT_FALSE(equalIgnoringCase("cFree1", "cFree2"));
  EXPECT_TRUE(containsIgnoringCase("the warehouse must be given", "Warehouse"));
  EXPECT_TRUE(containsIgnoringCase("仓库不能为空", "仓库"));
  EXPECT_TRUE(containsIgnoringCase("batch", "BATCH"));
  EXPECT_TRUE(containsIgnoringCase("", ""));
  EXPECT_TRUE(containsIgnoringCase("batch", ""));
  EXPECT_FALSE(containsIgnoringCase("warehous", "Warehouse"));
  EXPECT_FALSE(containsIgnoringCase("", "Warehouse"));
  // The characters around the letters are not letters.
  EXPECT_FALSE(equalIgnoringCase("@[`{", "`{@["));
}

TEST(Text, TrimsBlanksOnBothSidesAndNothingElse) {
  EXPECT_EQ(trimBlanks("  a b  "), "a b");
  EXPECT_EQ(trimBlanks("   "), "");
  EXPECT_EQ(trimBlanks(""), "");
  EXPECT_EQ(trimBlanks(" \ta\n "), "\ta\n");
}

TEST(Text, ReplacesEveryOccurrenceOnce) {
  const auto replaced = [](std::string text, std::string_view from, std::string_view to) {
    replaceAll(text, from, to);
    return text;
  };
  EXPECT_EQ(replaced("'05','32','05'", "'05'", "'05','06'"), "'05','06','32','05','06'");
  EXPECT_EQ(replaced("'01','01'", ",'01'", ""), "'01'");
  EXPECT_EQ(replaced("aaa", "aa", "a"), "aa");
  EXPECT_EQ(replaced("abc", "B", "x"), "abc");
  EXPECT_EQ(replaced("", "a", "b"), "");
}

TEST(Text, WholeNumbersAreNothingButANumber) {
  EXPECT_EQ(wholeNumber<int>(" 12 "), 12);
  EXPECT_EQ(wholeNumber<int>("-3"), -3);
  EXPECT_EQ(wholeNumber<std::int16_t>("32767"), 32767);
  for (const char* text : {"", "  ", "12a", "1.5", "+1", "a", "1 2"})
    EXPECT_EQ(wholeNumber<int>(text), std::nullopt) << text;
  EXPECT_EQ(wholeNumber<std::int16_t>("32768"), std::nullopt);
}

TEST(Text, LeadingNumbersEndWhereTheDigitsDo) {
  EXPECT_EQ(leadingNumber("2024"), 2024);
  EXPECT_EQ(leadingNumber(" 2024 "), 2024);
  EXPECT_EQ(leadingNumber("2024.5"), 2024);
  EXPECT_EQ(leadingNumber("03-31"), 3);
  EXPECT_EQ(leadingNumber(""), 0);
  EXPECT_EQ(leadingNumber("a1"), 0);
}

}  // namespace
}  // namespace quillon
