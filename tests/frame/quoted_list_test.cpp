#include "frame/quoted_list.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(QuotedList, QuotesEachTrimmedPart) {
  EXPECT_EQ(quotedList("01\t 02 "), "'01','02'");
}

TEST(QuotedList, OnePartHasNoComma) {
  EXPECT_EQ(quotedList("01"), "'01'");
}

TEST(QuotedList, AnEmptyPartGivesTwoQuotes) {
  EXPECT_EQ(quotedList("01\t\t02"), "'01','','02'");
  EXPECT_EQ(quotedList("\t01"), "'','01'");
  EXPECT_EQ(quotedList("01\t"), "'01',''");
  EXPECT_EQ(quotedList("\t"), "'',''");
  EXPECT_EQ(quotedList("  "), "''");
}

TEST(QuotedList, AnEmptyValueGivesAnEmptyList) {
  EXPECT_EQ(quotedList(""), "");
}

TEST(QuotedList, AQuoteInsideIsPassedOnUnchanged) {
  EXPECT_EQ(quotedList("O'Brien\tx"), "'O'Brien','x'");
}

TEST(QuotedList, CommasAndInnerBlanksBelongToThePart) {
  EXPECT_EQ(quotedList("a, b\t主材 一"), "'a, b','主材 一'");
}

}  // namespace
}  // namespace quillon
