#include "workbench/tsql/syntax/lexer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

using testing::ElementsAre;

std::vector<std::string> texts(std::string_view batch) {
  std::vector<std::string> result;
  for (const Token& token : tokenize(batch)) {
    if (token.kind != TokenKind::end) result.push_back(token.text);
  }
  return result;
}

int errorOf(std::string_view batch) {
  try {
    tokenize(batch);
  } catch (const SqlError& error) {
    return error.number();
  }
  return 0;
}

TEST(Lexer, ANumberMayTouchTheWordAfterIt) {
  EXPECT_THAT(texts("<> 1And"), ElementsAre("<>", "1", "And"));
  EXPECT_THAT(texts("1else 2end"), ElementsAre("1", "else", "2", "end"));
  EXPECT_THAT(texts("77u1IA_x"), ElementsAre("77", "u1IA_x"));
}

TEST(Lexer, OperatorsMayHoldBlanks) {
  EXPECT_THAT(texts("a > = b < > c ! = d <\n= e !< f !> g"),
              ElementsAre("a", ">=", "b", "<>", "c", "<>", "d", "<=", "e", ">=", "f", "<=", "g"));
  EXPECT_THAT(texts("a < -1 > b"), ElementsAre("a", "<", "-", "1", ">", "b"));
}

TEST(Lexer, NumbersOfEachKind) {
  const auto tokens = tokenize("12 1.50 .5 7. 1e3 1.5E-2 $3.25 0x1F");
  EXPECT_EQ(tokens[0].kind, TokenKind::integer);
  EXPECT_EQ(tokens[1].kind, TokenKind::decimal);
  EXPECT_EQ(tokens[2].kind, TokenKind::decimal);
  EXPECT_EQ(tokens[3].kind, TokenKind::decimal);
  EXPECT_EQ(tokens[4].kind, TokenKind::real);
  EXPECT_EQ(tokens[5].kind, TokenKind::real);
  EXPECT_EQ(tokens[6].kind, TokenKind::money);
  EXPECT_EQ(tokens[7].kind, TokenKind::binary);
}

TEST(Lexer, DoubledQuotesStandForThemselves) {
  const auto tokens = tokenize("N'it''s' '''' [a]]b] \"c\"\"d\"");
  EXPECT_EQ(tokens[0].kind, TokenKind::nationalText);
  EXPECT_EQ(tokens[0].value, "it's");
  EXPECT_EQ(tokens[1].value, "'");
  EXPECT_EQ(tokens[2].value, "a]b");
  EXPECT_EQ(tokens[3].value, "c\"d");
}

TEST(Lexer, CommentsNestAndLinesAreCounted) {
  const auto tokens = tokenize("a /* x /* y */ z\n */ b -- c\n d");
  ASSERT_EQ(tokens.size(), 4U);
  EXPECT_EQ(tokens[1].text, "b");
  EXPECT_EQ(tokens[1].line, 2);
  EXPECT_EQ(tokens[2].line, 3);
}

TEST(Lexer, NamesHoldChineseLettersAndHashes) {
  EXPECT_THAT(texts("#PC_1 @v 备注 tempdb..#t"), ElementsAre("#PC_1", "@v", "备注", "tempdb", ".", ".", "#t"));
}

TEST(Lexer, AnUnclosedQuoteOrCommentIsAnError) {
  EXPECT_EQ(errorOf("select 'a"), 105);
  EXPECT_EQ(errorOf("select [a"), 105);
  EXPECT_EQ(errorOf("select /* a"), 113);
  EXPECT_EQ(errorOf("select \\ a"), 102);
  EXPECT_EQ(errorOf("a ! b"), 102);
}

TEST(Lexer, ANameHoldsNoZeroCharacterButATextDoes) {
  using namespace std::string_literals;
  EXPECT_EQ(errorOf("select [a\0b]"s), 102);
  EXPECT_EQ(errorOf("select \"\0\""s), 102);
  EXPECT_EQ(tokenize("'a\0b'"s).front().value, "a\0b"s);
}

TEST(Lexer, ReservedWordsInAnyLetterCase) {
  EXPECT_TRUE(isReserved("Select"));
  EXPECT_TRUE(isReserved("LEFT"));
  EXPECT_FALSE(isReserved("item"));
  EXPECT_FALSE(isReserved("code"));
  EXPECT_FALSE(isReserved("person"));
}

}  // namespace
}  // namespace quillon::tsql
