// Views that are cut.
#include "workbench/presentation/view.h"

#include <gmock/gmock.h>

#include "tests/workbench/presentation/small_layouts.h"
#include "tests/workbench/presentation/view_of_rows.h"

namespace quillon::workbench {
namespace {

using test::amount;
using test::viewColumn;
using testing::ElementsAre;

ViewRow row(RowKind kind, const char* name) {
  return {.kind = kind, .level = 0, .cells = {name, amount(100)}};
}

// Two documents, the first one of two lines; each line but the last one with two details.
View documents() {
  using enum RowKind;
  return test::viewOf({viewColumn("名称", ColumnRole::text, true), viewColumn("金额", ColumnRole::money)},
                      {row(group, "一"), row(line, "a"), row(detail, "a1"), row(detail, "a2"), row(line, "b"),
                       row(detail, "b1"), row(detail, "b2"), row(subtotal, "小计"), row(group, "二"), row(line, "c")},
                      {row(total, "合计")});
}

TEST(LinesWithin, CountsWhatHeadsLinesAndBelongsToThem) {
  const View view = documents();
  EXPECT_EQ(linesWithin(view, 4), 1) << "the document, its first line and two details";
  EXPECT_EQ(linesWithin(view, 7), 2);
  EXPECT_EQ(linesWithin(view, 8), 2) << "the second document's head, without its line";
  EXPECT_EQ(linesWithin(view, 9), 3) << "a subtotal does not count";
  EXPECT_EQ(linesWithin(view, 1000), 3);
}

TEST(LinesWithin, IsOfWholeLines) {
  EXPECT_EQ(linesWithin(documents(), 5), 1);
  EXPECT_EQ(linesWithin(documents(), 6), 1);
}

TEST(LinesWithin, IsOneLineAtLeast) {
  EXPECT_EQ(linesWithin(documents(), 2), 1);
  EXPECT_EQ(linesWithin(documents(), 0), 1) << "where there is one";
  EXPECT_EQ(linesWithin(test::viewOf({viewColumn("名称", ColumnRole::text)}, {}), 5), 0);
}

TEST(Limited, EndsWithWhatBelongsToTheLastLine) {
  EXPECT_THAT(test::textsOf(limited(documents(), 2)),
              ElementsAre("group|一|1.00", "line|a|1.00", "detail|a1|1.00", "detail|a2|1.00", "line|b|1.00",
                          "detail|b1|1.00", "detail|b2|1.00", "subtotal|小计|1.00", "total|合计|1.00"));
}

}  // namespace
}  // namespace quillon::workbench
