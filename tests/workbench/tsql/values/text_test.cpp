#include "workbench/tsql/values/text.h"

#include <gtest/gtest.h>

namespace quillon::tsql::text {
namespace {

const std::string gothic = "\xF0\x90\x8C\xB0";  // U+10330, two UTF-16 units
const std::string highHalf = "\xED\xA0\x80";    // U+D800, its first half
const std::string lowHalf = "\xED\xBC\xB0";     // U+DF30, its second

TEST(Text, CountsUtf16Units) {
  EXPECT_EQ(width(""), 0);
  EXPECT_EQ(width("采购入库单"), 5);
  EXPECT_EQ(width("a" + gothic), 3);
  EXPECT_EQ(width("\xff\xfe"), 2);
  EXPECT_TRUE(widerThan("采购", 1));
  EXPECT_FALSE(widerThan("采购", 2));
}

TEST(Text, CutsByCharacter) {
  EXPECT_EQ(left("采购入库单", 2), "采购");
  EXPECT_EQ(left("abc", 9), "abc");
  EXPECT_EQ(left("abc", 0), "");
  EXPECT_EQ(right("A-中", 1), "中");
  EXPECT_EQ(right("abc", 9), "abc");
  EXPECT_EQ(substring("采购入库单", 2, 2), "购入");
  EXPECT_EQ(substring("abc", 3, 9), "c");
  EXPECT_EQ(substring("abc", 4, 1), "");
}

TEST(Text, CountsPositionsBeforeTheFirst) {
  EXPECT_EQ(substring("abcdef", 0, 3), "ab");
  EXPECT_EQ(substring("abcdef", -2, 4), "a");
  EXPECT_EQ(substring("abcdef", -5, 3), "");
}

TEST(Text, SplitsAPairIntoItsHalves) {
  EXPECT_EQ(left(gothic, 1), highHalf);
  EXPECT_EQ(right(gothic, 1), lowHalf);
  EXPECT_EQ(substring("a" + gothic + "b", 3, 2), lowHalf + "b");
}

TEST(Text, ReadsMalformedBytesOneByOne) {
  const std::string text = "\xe4\xb8";  // a character that breaks off
  std::size_t position = 0;
  EXPECT_GT(next(text, position), char32_t{0x10ffff});
  EXPECT_EQ(position, 1U);
  EXPECT_EQ(substring("\xff"
                      "a\xc0\x80",
                      1, 4),
            "\xff"
            "a\xc0\x80");
}

TEST(Text, TrimsBlanksOnly) {
  EXPECT_EQ(trimRight("  a \t  "), "  a \t");
  EXPECT_EQ(trimLeft("  a "), "a ");
  EXPECT_EQ(trimRight("   "), "");
  EXPECT_EQ(trimLeft(""), "");
}

TEST(Text, ChangesTheCaseOfLettersOnly) {
  EXPECT_EQ(upper("a-中é"), "A-中É");
  EXPECT_EQ(lower("A-中ÉЖＡ"), "a-中éжａ");
  EXPECT_EQ(upper("žœÿ"), "ŽŒŸ");
}

TEST(Text, ReplacesWithoutRegardToCase) {
  EXPECT_EQ(replace("abcABC", "B", "-"), "a-cA-C");
  EXPECT_EQ(replace("入库单入库", "入库", "出"), "出单出");
  EXPECT_EQ(replace("abc", "", "x"), "abc");
  EXPECT_EQ(replace("aaa", "aa", "b"), "ba");
}

TEST(Text, FindsFromAPlace) {
  EXPECT_EQ(charIndex("B", "abcb", 1), 2);
  EXPECT_EQ(charIndex("b", "abcb", 3), 4);
  EXPECT_EQ(charIndex("单", "入库单", 1), 3);
  EXPECT_EQ(charIndex("x", "abc", 1), 0);
  EXPECT_EQ(charIndex("a", "abc", -3), 1);
  EXPECT_EQ(charIndex("", "abc", 1), 0);
  EXPECT_EQ(charIndex("b", gothic + "b", 1), 3);
}

TEST(Text, Reverses) {
  EXPECT_EQ(reverse("a库" + gothic), gothic + "库a");
}

TEST(Text, ReadsWholeNumbers) {
  EXPECT_EQ(wholeNumber("12"), 12);
  EXPECT_EQ(wholeNumber("-12"), -12);
  EXPECT_EQ(wholeNumber("007"), 7);
  for (const std::string_view text : {"", "-", "+1", " 1", "1 ", "1.0", "1e3", "0x1", "１"})
    EXPECT_FALSE(wholeNumber(text)) << text;
  EXPECT_FALSE(wholeNumber("2147483648"));
  EXPECT_EQ(wholeNumber<std::int64_t>("2147483648"), 2147483648);
}

TEST(Text, TellsANumberOutOfRangeFromNoNumber) {
  bool outOfRange = false;
  EXPECT_FALSE(wholeNumber("2147483648", &outOfRange));
  EXPECT_TRUE(outOfRange);
  EXPECT_FALSE(wholeNumber("2147483648.5", &outOfRange));
  EXPECT_FALSE(outOfRange);
  EXPECT_EQ(wholeNumber("5", &outOfRange), 5);
  EXPECT_FALSE(outOfRange);
}

TEST(Text, ReadsTheNumberThatATextBeginsWith) {
  EXPECT_EQ(leadingNumber("2024-03-05"), 2024);
  EXPECT_EQ(leadingNumber("6.00"), 6);
  EXPECT_EQ(leadingNumber("-3x"), -3);
  EXPECT_FALSE(leadingNumber("x3"));
  EXPECT_FALSE(leadingNumber("99999999999 days"));
}

TEST(Text, FoldsTheCaseOfAsciiLettersOnly) {
  EXPECT_EQ(foldCase("aBC_1Ä库"), "abc_1Ä库");
}

}  // namespace
}  // namespace quillon::tsql::text
