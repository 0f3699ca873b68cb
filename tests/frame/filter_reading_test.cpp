#include "frame/filter_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using testing::ElementsAre;

class FilterReading : public testing::Test {
 protected:
  FilterReading() { module_.session = platform_.createSession(); }

  fakes::FakePlatform platform_;
  Module module_{platform_};

  std::string monthCondition(int costItemStart, std::vector<fakes::Row> inventoryStart, const std::string& year) {
    platform_.answers.costItemStartMonth = costItemStart;
    platform_.answers.queries = {{"dIAStartDate", std::move(inventoryStart)}};
    return costItemMonthCondition(module_, year);
  }
};

TEST_F(FilterReading, ClaimsAnItemBeforeItReadsItsName) {
  const auto filter = platform_.filter({{"cInvCode", "01"}});
  platform_.record.calls.clear();
  translateItems(*filter, [](const FilterValues&) { return true; });
  EXPECT_THAT(platform_.record.calls,
              ElementsAre("FilterList.Count", "FilterList(1)", "FilterItem.LngGrouptoken = 1", "FilterItem.Name",
                          "FilterItem.varValue", "FilterItem.varValue2", "FilterItem.RangeInput",
                          "FilterItem.IsMultSel", "GetWhereWithToken(0)"));
}

TEST_F(FilterReading, GivesBackAnItemThatTheReportDoesNotKnow) {
  const auto filter = platform_.filter({{"a", "", "", "base.a = 1"}, {"b", "", "", "base.b = 2"}, {"c", "", "", "x"}});
  const std::string own = translateItems(*filter, [](const FilterValues& item) { return item.name == "c"; });
  EXPECT_EQ(own, " AND base.a = 1 And base.b = 2");
  EXPECT_EQ(filter->items[0].token, 0);
  EXPECT_EQ(filter->items[1].token, 0);
  EXPECT_EQ(filter->items[2].token, 1);
}

TEST_F(FilterReading, AddsNothingWhenTheFilterObjectHasNoConditionOfItsOwn) {
  const auto filter = platform_.filter({});
  EXPECT_EQ(translateItems(*filter, [](const FilterValues&) { return true; }), "");
}

TEST_F(FilterReading, ReleasesEachItem) {
  const auto filter = platform_.filter({{"a"}, {"b"}});
  const int before = platform_.record.alive;
  translateItems(*filter, [](const FilterValues&) { return true; });
  EXPECT_EQ(platform_.record.alive, before);
}

TEST_F(FilterReading, RestrictsTheMonthsWhenCostItemsStartLaterThanInventoryAccounting) {
  EXPECT_EQ(monthCondition(3, {{"2024-01-01"}}, "2024"), " And base.iMonth >= 3 ");
  EXPECT_EQ(monthCondition(3, {{"2023-05-01"}}, "2024"), " And base.iMonth >= 3 ");
  EXPECT_EQ(monthCondition(12, {}, "2024"), " And base.iMonth >= 12 ");
}

TEST_F(FilterReading, DoesNotRestrictTheMonthsWhenBothStartTogetherOrCostItemsFirst) {
  EXPECT_EQ(monthCondition(3, {{"2024-03-01"}}, "2024"), "");
  EXPECT_EQ(monthCondition(3, {{"2024-04-01"}}, "2024"), "");
}

TEST_F(FilterReading, DoesNotRestrictTheMonthsWhenCostItemsStartWithTheYearOrNotAtAll) {
  EXPECT_EQ(monthCondition(1, {}, "2024"), "");
  EXPECT_EQ(monthCondition(0, {}, "2024"), "");
  // The account's start date does not matter then, so it is not asked for.
  EXPECT_TRUE(platform_.record.queries().empty());
}

TEST_F(FilterReading, AsksThePublicComponentForTheYearAsItStands) {
  monthCondition(0, {}, "");
  EXPECT_THAT(platform_.record.with("iFxStartMonth"), ElementsAre("()"));
}

TEST_F(FilterReading, AYearThatIsNoNumberIsATypeMismatch) {
  try {
    monthCondition(3, {}, "last");
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::typeMismatch);
    EXPECT_EQ(error.description(), "The filter item iYear has the value \"last\"; give it a year, such as 2024.");
  }
}

}  // namespace
}  // namespace quillon
