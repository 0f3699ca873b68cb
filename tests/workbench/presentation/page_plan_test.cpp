#include "workbench/presentation/page_plan.h"

#include <gmock/gmock.h>

#include <set>

#include "tests/workbench/presentation/view_of_rows.h"
#include "workbench/presentation/html_text.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {
namespace {

using test::amount;
using test::viewColumn;
using Values = std::vector<tsql::Value>;

// A view of one line: a key and `count` amounts of the same size, three under each heading.
View amounts(std::size_t count) {
  std::vector<ViewColumn> columns = {viewColumn("单号", ColumnRole::text, true)};
  Values cells = {"01-0001"};
  for (std::size_t i = 0; i < count; ++i) {
    columns.push_back(viewColumn("金额", ColumnRole::money, false, "第" + std::to_string(i / 3) + "组"));
    cells.push_back(amount(123456789));
  }
  return test::viewOf(std::move(columns), {{RowKind::line, 0, std::move(cells)}});
}

int widthOf(const PagePlan& plan, const std::vector<std::size_t>& columns) {
  int width = 0;
  for (const std::size_t column : columns)
    width += plan.paperWidths[column] + 100;
  return width;
}

TEST(PagePlanTest, LettersBecomeSmallerBeforeATableIsSplit) {
  int font = 90;
  bool split = false;
  for (std::size_t count = 3; count < 60; ++count) {
    const PagePlan plan = planPage({}, amounts(count));
    if (plan.split()) split = true;
    EXPECT_EQ(plan.split(), split) << "wider tables stay split";
    if (split) continue;
    EXPECT_LE(plan.paperFont, font);
    font = plan.paperFont;
  }
  EXPECT_TRUE(split);
  EXPECT_EQ(font, 65);
}

TEST(PagePlanTest, EachBlockFitsThePaper) {
  const PagePlan plan = planPage({}, amounts(59));
  ASSERT_TRUE(plan.split());
  std::multiset<std::size_t> columns;
  for (const auto& block : plan.blocks) {
    EXPECT_EQ(block.front(), 0U) << "the key";
    EXPECT_LE(widthOf(plan, block) * plan.paperFont, 785 * 1000);
    columns.insert(block.begin() + 1, block.end());
    // Columns with a heading in common stand together: groups begin at 1, 4, 7...
    EXPECT_EQ((block[1] - 1) % 3, 0U);
  }
  EXPECT_EQ(columns.size(), 59U);
  EXPECT_EQ(std::set<std::size_t>(columns.begin(), columns.end()).size(), 59U);
}

TEST(PagePlanTest, LongTextsBreakOnPaperAndNumbersNever) {
  std::string longText;
  for (int i = 0; i < 60; ++i)
    longText += "很长";
  const View view =
      test::viewOf({viewColumn("单号", ColumnRole::text, true), viewColumn("摘要", ColumnRole::text),
                    viewColumn("金额", ColumnRole::money)},
                   {{RowKind::line, 0, Values{"1", longText, tsql::Exact{.units = tsql::powerOfTen(37), .scale = 2}}}});
  const PagePlan plan = planPage({}, view);
  EXPECT_FALSE(plan.split());
  EXPECT_THAT(plan.breaks, testing::ElementsAre(false, true, false));
  EXPECT_GE(plan.paperWidths[1], 1000) << "room for ten characters at least";
  EXPECT_GT(plan.paperWidths[2], 38 * 50);
  EXPECT_EQ(plan.screenWidths[1], 12000);
}

TEST(PagePlanTest, KeysThatFillThePageAreNotAllRepeated) {
  std::vector<ViewColumn> columns;
  Values cells;
  for (int i = 0; i < 12; ++i) {
    columns.push_back(viewColumn("编码", ColumnRole::text, true));
    cells.emplace_back("一二三四五六七八九十一二三四");
  }
  const PagePlan plan = planPage({}, test::viewOf(std::move(columns), {{RowKind::line, 0, std::move(cells)}}));
  ASSERT_TRUE(plan.split());
  EXPECT_GE(plan.keys.size(), 1U);
  for (const auto& block : plan.blocks)
    EXPECT_LE(widthOf(plan, block) * plan.paperFont, 785 * 1000);
  EXPECT_LE(widthOf(plan, plan.keys) * plan.paperFont, 785 * 500);
}

TEST(PagePlanTest, WordsOfATotalNeedTheWidthOfTheirKeysTogether) {
  const View view = test::viewOf({viewColumn("a", ColumnRole::text, true), viewColumn("b", ColumnRole::text, true),
                                  viewColumn("c", ColumnRole::money)},
                                 {{RowKind::line, 0, Values{"一二三", "四五", amount(1)}}},
                                 {{RowKind::total, 0, Values{"一共十个字的一行合计", {}, amount(1)}}});
  const PagePlan plan = planPage({}, view);
  EXPECT_EQ(plan.screenWidths[0], 300) << "is not made as wide as the words";
  EXPECT_EQ(plan.screenWidths[0] + 100 + plan.screenWidths[1], 1080);
}

TEST(HtmlTextTest, TextBetweenTagsHoldsNoTags) {
  EXPECT_EQ(escaped("a<b> & \"c\"\n\x7f"), "a&lt;b&gt; &amp; \"c\"  ");
}

TEST(HtmlTextTest, NothingEndsAStyleString) {
  EXPECT_EQ(styleString("a\"b\\c</style>\n&"), R"("a\000022b\00005cc\00003c/style\00003e \000026")");
}

TEST(HtmlTextTest, FullWidthCharactersAreAsWideAsTheFont) {
  EXPECT_EQ(shownWidth("金额"), 200);
  EXPECT_GE(shownWidth("1234567890"), 560) << "digits of common fonts";
  EXPECT_LT(shownWidth("1234567890"), 700);
}

}  // namespace
}  // namespace quillon::workbench
