#include "workbench/platform/pinyin_initials.h"

#include <gtest/gtest.h>

namespace quillon::workbench {
namespace {

TEST(PinyinInitials, AreThoseOfTheReading) {
  EXPECT_EQ(pinyinInitials(U'线'), "x");
  EXPECT_EQ(pinyinInitials(U'边'), "b");
  EXPECT_EQ(pinyinInitials(U'库'), "k");
  EXPECT_EQ(pinyinInitials(U'倉'), "c");
  EXPECT_EQ(pinyinInitials(U'铝'), "l");
  EXPECT_EQ(pinyinInitials(U'鄂'), "e");
}

TEST(PinyinInitials, AreThoseOfEachReading) {
  EXPECT_EQ(pinyinInitials(U'重'), "cz");
  EXPECT_EQ(pinyinInitials(U'行'), "hx");
  EXPECT_EQ(pinyinInitials(U'单'), "cds");
  EXPECT_EQ(pinyinInitials(U'藏'), "cz");
}

TEST(PinyinInitials, AreKnownAtBothEndsOfTheTableAndBehindIt) {
  EXPECT_EQ(pinyinInitials(U'\u3400'), "q");
  EXPECT_EQ(pinyinInitials(U'\u33ff'), "");
  EXPECT_EQ(pinyinInitials(U'\u9fcd'), "g");      // one of the chemical elements' characters
  EXPECT_EQ(pinyinInitials(U'\U0002b4e7'), "f");  // a rare one of general use
  EXPECT_EQ(pinyinInitials(U'\U0010ffff'), "");
}

TEST(PinyinInitials, AreNoneOfWhatIsNoChineseCharacter) {
  for (const char32_t character : {U'x', U'0', U' ', U'ａ', U'あ', U'（', U'\0'})
    EXPECT_EQ(pinyinInitials(character), "");
}

}  // namespace
}  // namespace quillon::workbench
