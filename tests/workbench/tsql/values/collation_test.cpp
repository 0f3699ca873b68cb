#include "workbench/tsql/values/collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace quillon::tsql {
namespace {

void expectOrder(const std::vector<std::string>& texts) {
  for (std::size_t i = 0; i < texts.size(); ++i) {
    for (std::size_t j = 0; j < texts.size(); ++j) {
      const int expected = i < j ? -1 : i > j ? 1 : 0;
      EXPECT_EQ(compareText(texts[i], texts[j]), expected) << '"' << texts[i] << "\" and \"" << texts[j] << '"';
    }
  }
}

TEST(Collation, IgnoresLetterCase) {
  EXPECT_TRUE(equalText("ABC", "abc"));
  EXPECT_TRUE(equalText("Жук", "жУК"));
  EXPECT_FALSE(equalText("abc", "abd"));
}

TEST(Collation, IgnoresTrailingBlanks) {
  EXPECT_TRUE(equalText("甲", "甲  "));
  EXPECT_TRUE(equalText("", "  "));
  EXPECT_FALSE(equalText("甲", " 甲"));
  EXPECT_TRUE(equalText("a\xE3\x80\x80", "a"));  // an ideographic blank is a blank of full width
}

TEST(Collation, IgnoresWidthAndKanaForm) {
  EXPECT_TRUE(equalText("ＡＢＣ", "abc"));
  EXPECT_TRUE(equalText("（１）", "(1)"));
  EXPECT_TRUE(equalText("ｶ", "カ"));
  EXPECT_TRUE(equalText("か", "カ"));
  EXPECT_TRUE(equalText("－", "-"));
}

TEST(Collation, KeepsAccentsApart) {
  EXPECT_FALSE(equalText("e", "é"));
  EXPECT_TRUE(equalText("É", "é"));
  EXPECT_TRUE(equalText("e\xCC\x81", "é"));  // the accent as a character of its own
  EXPECT_FALSE(equalText("ガ", "カ"));
}

TEST(Collation, GivesEqualTextsOneFingerprint) {
  const std::vector<std::string> parts = {"a",  "A", "ａ",           "é",    "e\xCC\x81", "e",  "-",
                                          "'",  " ", "\xE3\x80\x80", "ｶ",    "か",        "カ", "ガ",
                                          "安", "1", "１",           "\xFF", "\xCC\x81",  "_"};
  std::mt19937 random(3);
  std::vector<std::string> texts = {""};
  for (int i = 0; i < 600; ++i) {
    std::string& text = texts.emplace_back();
    for (unsigned part = random() % 4; part > 0; --part)
      text += parts[random() % parts.size()];
  }
  int equal = 0;
  int alike = 0;
  for (const std::string& a : texts) {
    for (const std::string& b : texts) {
      const bool same = textFingerprint(a) == textFingerprint(b);
      if (equalText(a, b)) {
        ++equal;
        EXPECT_TRUE(same) << '"' << a << "\" and \"" << b << '"';
      } else if (same) {
        ++alike;
      }
    }
  }
  EXPECT_GT(equal, 1000);
  // Texts that differ in accents, hyphens and apostrophes alone.
  EXPECT_LT(alike, 100'000);
  EXPECT_NE(textFingerprint("ab"), textFingerprint("ba"));
  EXPECT_NE(textFingerprint(" a"), textFingerprint("a"));
}

TEST(Collation, AccentsDecideOnlyBetweenEqualLetters) {
  expectOrder({"ea", "éa", "eb", "éb"});
}

TEST(Collation, SortsSymbolsDigitsLettersChinese) {
  expectOrder({"", "_", "!", "0", "10", "9", "a", "b", "B1", "C", "ω", "я", "安徽", "北京", "广州", "上海"});
}

TEST(Collation, SortsChineseByPinyin) {
  // an, chang, chu, di, fa, gong, ku, ling, mo, qi, ren, tui, wai, zhi
  expectOrder({"安", "长", "出", "低", "发", "工", "库", "零", "模", "期", "人", "退", "外", "直"});
}

TEST(Collation, SortsPrefixesFirst) {
  expectOrder({"01", "0101", "010101", "02", "10", "A1", "A10", "A9"});
}

TEST(Collation, HyphenAndApostropheCountLast) {
  expectOrder({"a0", "a1", "a'1", "a-1", "a2"});
  expectOrder({"ab", "a-c"});
  EXPECT_FALSE(equalText("a-b", "ab"));
  EXPECT_FALSE(equalText("a-", "a"));
  EXPECT_FALSE(equalText("-", ""));
  EXPECT_NE(compareText("co-op", "coo-p"), 0);
}

// The order must be total for any bytes: an index relies on it.
TEST(Collation, IsATotalOrderOnAnyBytes) {
  const std::vector<std::string> pieces = {
      "a",    "A",    "é",        "e\xCC\x81", "\xCC\x81",         "-", "'", " ", "0", "_", "甲", "\xED\xA0\x80",
      "\xff", "\x80", "\xe4\xb8", "Ａ",        "\xf0\x90\x8c\xb0", "e"};
  std::mt19937 random(20240305);
  std::vector<std::string> texts;
  for (int i = 0; i < 120; ++i) {
    std::string text;
    for (std::size_t length = random() % 5; length > 0; --length)
      text += pieces[random() % pieces.size()];
    texts.push_back(text);
  }
  const auto sign = [](int value) { return (value > 0) - (value < 0); };
  std::vector<std::vector<int>> order(texts.size(), std::vector<int>(texts.size()));
  for (std::size_t i = 0; i < texts.size(); ++i) {
    for (std::size_t j = 0; j < texts.size(); ++j)
      order[i][j] = sign(compareText(texts[i], texts[j]));
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    ASSERT_EQ(order[i][i], 0);
    for (std::size_t j = 0; j < texts.size(); ++j) {
      ASSERT_EQ(order[i][j], -order[j][i]) << texts[i] << " and " << texts[j];
      for (std::size_t k = 0; k < texts.size(); ++k) {
        if (order[i][j] <= 0 && order[j][k] <= 0) {
          const int expected = order[i][j] == 0 && order[j][k] == 0 ? 0 : -1;
          ASSERT_EQ(order[i][k], expected) << texts[i] << ", " << texts[j] << " and " << texts[k];
        }
      }
    }
  }
}

TEST(Collation, WeighsEqualCharactersAlike) {
  EXPECT_EQ(characterWeight(U'a'), characterWeight(U'Ａ'));
  EXPECT_NE(characterWeight(U'-'), characterWeight(U'\''));
  EXPECT_LT(characterWeight(U'0'), characterWeight(U'9'));
}

}  // namespace
}  // namespace quillon::tsql
