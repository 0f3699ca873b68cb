#include "workbench/tsql/values/like.h"

#include <gtest/gtest.h>

#include "workbench/tsql/engine/engine.h"

namespace quillon::tsql {
namespace {

bool like(std::string_view text, std::string_view pattern, std::string_view escape = {}) {
  return LikePattern(pattern, escape).matches(text, false);
}

TEST(Like, MatchesAnyTextAndSingleCharacters) {
  EXPECT_TRUE(like("入库单", "_库单"));
  EXPECT_FALSE(like("入库单据", "_库单"));
  EXPECT_TRUE(like("10201", "1%"));
  EXPECT_TRUE(like("abcabd", "%ab_"));
  EXPECT_TRUE(like("abcabd", "%b%b%"));
  EXPECT_FALSE(like("abc", "%b"));
  EXPECT_TRUE(like("", "%"));
  EXPECT_TRUE(like("", ""));
  EXPECT_FALSE(like("", "_"));
  EXPECT_FALSE(like("a", ""));
}

TEST(Like, IgnoresCaseAndWidthButNotAccents) {
  EXPECT_TRUE(like("Abc", "AB%"));
  EXPECT_TRUE(like("ＡB", "ab"));
  EXPECT_FALSE(like("é", "e"));
  EXPECT_TRUE(like("É", "é"));
}

TEST(Like, KnowsSets) {
  EXPECT_TRUE(like("A9x", "A[0-9]%"));
  EXPECT_FALSE(like("AB", "A[0-9]%"));
  EXPECT_TRUE(like("甲1", "[甲乙]%"));
  EXPECT_TRUE(like("A_", "A[_]"));
  EXPECT_FALSE(like("AB", "A[_]"));
  EXPECT_TRUE(like("5%", "5[%]"));
  EXPECT_TRUE(like("A1", "[^C]%"));
  EXPECT_FALSE(like("c1", "[^C]%"));
  EXPECT_FALSE(like("", "[^C]%"));
  EXPECT_TRUE(like("M", "[a-z]"));
  EXPECT_TRUE(like("-", "[-a]"));
  EXPECT_TRUE(like("-", "[a-]"));
  EXPECT_FALSE(like("b", "[a-]"));
  EXPECT_TRUE(like("[", "[[]"));
  EXPECT_TRUE(like("]", "]"));
  EXPECT_FALSE(like("[a", "[a"));
}

TEST(Like, EscapesWildcards) {
  EXPECT_TRUE(like("50%", "50!%", "!"));
  EXPECT_FALSE(like("50x", "50!%", "!"));
  EXPECT_TRUE(like("a_b", "a~_b", "~"));
  EXPECT_THROW(LikePattern("a", "ab"), SqlError);
}

TEST(Like, CountsTrailingBlanksOfNvarcharOnly) {
  EXPECT_FALSE(LikePattern("abc").matches("abc ", false));
  EXPECT_TRUE(LikePattern("abc").matches("abc ", true));
  EXPECT_FALSE(LikePattern("abc ").matches("abc", true));
  EXPECT_TRUE(LikePattern("abc ").matches("abc ", true));
}

}  // namespace
}  // namespace quillon::tsql
