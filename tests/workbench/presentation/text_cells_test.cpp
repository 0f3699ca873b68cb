#include "workbench/presentation/text_cells.h"

#include <gtest/gtest.h>

namespace quillon::workbench {
namespace {

TEST(CellWidth, CountsChineseAsTwoCells) {
  EXPECT_EQ(cellWidth(""), 0U);
  EXPECT_EQ(cellWidth("abc"), 3U);
  EXPECT_EQ(cellWidth("成本项目"), 8U);
  EXPECT_EQ(cellWidth("M8×20 螺栓"), 10U);
  EXPECT_EQ(cellWidth("（Ａ）"), 6U) << "full-width signs and letters";
  EXPECT_EQ(cellWidth("𠮷"), 2U) << "a character beyond the basic plane";
  EXPECT_EQ(cellWidth("é"), 1U);
  EXPECT_EQ(cellWidth("e\xCC\x81"), 1U) << "a letter and a combining accent";
}

TEST(CellWidth, CountsWhatFontsDifferInAsOneCell) {
  EXPECT_EQ(cellWidth("①→Ⅷ×α"), 5U);
}

TEST(CellWidth, CountsEmojiAsTwoCellsAndJoinersAsNone) {
  EXPECT_EQ(cellWidth("\xF0\x9F\x9A\x80"), 2U) << "a rocket";
  EXPECT_EQ(cellWidth("\xE2\x80\x8B"), 0U) << "a space of no width";
  EXPECT_EQ(cellWidth("が"), 2U);
  EXPECT_EQ(cellWidth("か\xE3\x82\x99"), 2U) << "the same with a combining mark";
}

TEST(CellWidth, SurvivesBytesThatAreNoText) {
  EXPECT_EQ(cellWidth("a\xFF\x80z"), 4U);
  EXPECT_EQ(cellWidth("\xE4\xB8"), 2U) << "a character that is cut off";
}

TEST(OneLine, ReplacesControlCharacters) {
  EXPECT_EQ(oneLine("a\r\nb\tc\x7F"), "a  b c ");
}

TEST(Shortened, CutsBetweenCharacters) {
  EXPECT_EQ(shortened("short", 10), "short");
  EXPECT_EQ(shortened("1234567890", 10), "1234567890");
  EXPECT_EQ(shortened("12345678901", 10), "1234567...");
  EXPECT_EQ(shortened("成本项目分类", 10), "成本项...");
  EXPECT_EQ(shortened("a成本项目分类", 10), "a成本项...");
}

TEST(Shortened, TakesAnotherMark) {
  EXPECT_EQ(shortened("1234567890", 5, "…"), "1234…");
  EXPECT_EQ(shortened("成本项目", 5, "…"), "成本…");
  EXPECT_EQ(shortened("成本项目", 1, "…"), "…");
  EXPECT_EQ(shortened("成本项目", 0, "…"), "");
  EXPECT_EQ(shortened("123456", 2), "12") << "the mark itself does not fit";
}

}  // namespace
}  // namespace quillon::workbench
