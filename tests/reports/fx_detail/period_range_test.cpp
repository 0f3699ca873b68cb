#include "reports/fx_detail/period_range.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon::fx_detail {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PeriodRange : public testing::Test {
 protected:
  PeriodRange() {
    module_.session = platform_.createSession();
    module_.login = std::make_shared<fakes::FakeLogin>(platform_.record);
    platform_.record.calls.clear();
    platform_.answers.costItemStartMonth = 3;
    platform_.answers.moduleStart = {.year = 2023, .month = 1};
  }

  DetailPeriodRange resolve(const std::string& from, const std::string& to, const std::string& year = "2024") {
    const auto filter = platform_.filter({{"iYear", year}, {"dKeepDate", from, to}});
    return resolvePeriodRange(*filter, module_);
  }

  std::string errorOf(const std::string& from, const std::string& to, const std::string& year = "2024") {
    try {
      resolve(from, to, year);
      return "no error";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), hresult::typeMismatch);
      return error.description();
    }
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
};

// --- Whether there is anything to report ----------------------------------------------------------------------------

TEST_F(PeriodRange, FailsWhenCostItemsHaveNoStartMonthInTheYear) {
  platform_.answers.costItemStartMonth = 0;
  EXPECT_FALSE(resolve("", "").ok);
  EXPECT_THAT(platform_.record.with("iFxStartMonth"), ElementsAre("(2024)"));
  EXPECT_THAT(platform_.record.with("IsFxFinishQC"), IsEmpty());
}

TEST_F(PeriodRange, FailsWhenTheCostItemsOpeningBalancesAreNotFinished) {
  platform_.answers.costItemOpeningsFinished = false;
  EXPECT_FALSE(resolve("", "").ok);
  EXPECT_THAT(platform_.record.with("IsFxFinishQC"), ElementsAre("(2024)"));
  EXPECT_THAT(platform_.record.with("StartMonthYear"), IsEmpty());
}

TEST_F(PeriodRange, AsksWhenInventoryAccountingStarted) {
  EXPECT_TRUE(resolve("", "").ok);
  EXPECT_THAT(platform_.record.with("StartMonthYear"), ElementsAre("(IA)"));
}

// --- Where opening balances come from -------------------------------------------------------------------------------

TEST_F(PeriodRange, CostItemsThatStartInJanuaryTakeOpeningsFromTheLedger) {
  platform_.answers.costItemStartMonth = 1;
  const DetailPeriodRange range = resolve("", "");
  EXPECT_FALSE(range.splitOpening);
  EXPECT_EQ(range.fxFromMonth, 0);
}

TEST_F(PeriodRange, CostItemsThatStartWithTheAccountTakeOpeningsFromTheLedger) {
  platform_.answers.moduleStart = {.year = 2024, .month = 3};
  const DetailPeriodRange range = resolve("", "");
  EXPECT_FALSE(range.splitOpening);
  EXPECT_EQ(range.fxFromMonth, 3);
}

TEST_F(PeriodRange, CostItemsThatStartLaterHaveOpeningsOfTheirOwn) {
  for (const AccountingPeriod start :
       {AccountingPeriod{.year = 2024, .month = 1}, AccountingPeriod{.year = 2024, .month = 4},
        AccountingPeriod{.year = 2023, .month = 3}}) {
    platform_.answers.moduleStart = start;
    const DetailPeriodRange range = resolve("", "");
    EXPECT_TRUE(range.splitOpening) << start.year << "." << start.month;
    EXPECT_EQ(range.fxFromMonth, 3);
  }
}

// --- The start ------------------------------------------------------------------------------------------------------

TEST_F(PeriodRange, WithoutAStartDateItStartsWhereCostItemsDo) {
  const DetailPeriodRange range = resolve("", "");
  EXPECT_EQ(range.year, 2024);
  EXPECT_EQ(range.startPeriod, 3);
  EXPECT_EQ(range.startDate, "2024-03-01");
  EXPECT_THAT(platform_.record.with("GetDateFromPeriod"), ElementsAre("(001, 2024.3)", "(001, 2024.12)"));
  EXPECT_THAT(platform_.record.with("GetPeriodFromDate"), IsEmpty());
}

TEST_F(PeriodRange, AStartDateInAnEarlierYearStartsWhereCostItemsDo) {
  const DetailPeriodRange range = resolve("2023-11-15", "");
  EXPECT_TRUE(range.ok);
  EXPECT_EQ(range.startPeriod, 3);
  EXPECT_EQ(range.startDate, "2023-11-15");
}

TEST_F(PeriodRange, AStartDateBeforeCostItemsStartKeepsItsDate) {
  const DetailPeriodRange range = resolve("2024-01-20", "");
  EXPECT_TRUE(range.ok);
  EXPECT_EQ(range.startPeriod, 3);
  EXPECT_EQ(range.startDate, "2024-01-20");
}

TEST_F(PeriodRange, AStartDateBehindTheStartOfCostItemsStartsInItsOwnPeriod) {
  const DetailPeriodRange range = resolve("2024/5/7", "");
  EXPECT_EQ(range.startPeriod, 5);
  EXPECT_EQ(range.startDate, "2024-05-07");
  EXPECT_THAT(platform_.record.with("GetPeriodFromDate"), ElementsAre("(2024-05-07)"));
}

TEST_F(PeriodRange, FailsWhenItStartsAfterTheYear) {
  EXPECT_FALSE(resolve("2025-01-01", "").ok);
  EXPECT_THAT(platform_.record.with("GetMonthState"), IsEmpty());
}

// --- The end --------------------------------------------------------------------------------------------------------

TEST_F(PeriodRange, WithoutAnEndDateItEndsWithTheFirstMonthThatIsNotSettled) {
  platform_.answers.lastSettledMonth = 4;
  const DetailPeriodRange range = resolve("", "");
  EXPECT_TRUE(range.ok);
  EXPECT_EQ(range.endPeriod, 5);
  EXPECT_EQ(range.endDate, "2024-12-28");
  EXPECT_THAT(platform_.record.with("GetMonthState"), ElementsAre("(2024.3)", "(2024.4)", "(2024.5)"));
}

TEST_F(PeriodRange, WithoutAnEndDateItEndsWithTheYearWhenEveryMonthIsSettled) {
  EXPECT_EQ(resolve("2024-11-01", "").endPeriod, 12);
  EXPECT_THAT(platform_.record.with("GetMonthState"), ElementsAre("(2024.11)", "(2024.12)"));
}

TEST_F(PeriodRange, WithoutAnEndDateItMayEndWhereItStarts) {
  platform_.answers.lastSettledMonth = 2;
  const DetailPeriodRange range = resolve("", "");
  EXPECT_EQ(range.startPeriod, 3);
  EXPECT_EQ(range.endPeriod, 3);
}

TEST_F(PeriodRange, AnEndDateEndsItInItsOwnPeriod) {
  const DetailPeriodRange range = resolve("", "2024-06-20 23:59:59");
  EXPECT_EQ(range.endPeriod, 6);
  EXPECT_EQ(range.endDate, "2024-06-20");
}

TEST_F(PeriodRange, AnEndDateBehindAMonthThatIsNotSettledEndsItThereButKeepsItsDate) {
  platform_.answers.lastSettledMonth = 3;
  const DetailPeriodRange range = resolve("", "2024-06-20");
  EXPECT_TRUE(range.ok);
  EXPECT_EQ(range.endPeriod, 4);
  EXPECT_EQ(range.endDate, "2024-06-20");
}

TEST_F(PeriodRange, FailsWhenItEndsBeforeTheYear) {
  EXPECT_FALSE(resolve("", "2023-12-31").ok);
}

TEST_F(PeriodRange, OfAnEndDateInALaterYearTheMonthCounts) {
  const DetailPeriodRange range = resolve("", "2025-05-10");
  EXPECT_TRUE(range.ok);
  EXPECT_EQ(range.endPeriod, 5);
  EXPECT_EQ(range.endDate, "2025-05-10");
  EXPECT_THAT(platform_.record.with("GetMonthState"), ElementsAre("(2024.3)", "(2024.4)", "(2024.5)"));
}

TEST_F(PeriodRange, MayEndBeforeItsFirstPeriod) {
  const DetailPeriodRange range = resolve("2024-06-01", "2024-04-30");
  EXPECT_TRUE(range.ok);
  EXPECT_EQ(range.startPeriod, 6);
  EXPECT_EQ(range.endPeriod, 4);
  EXPECT_THAT(platform_.record.with("GetMonthState"), IsEmpty());
}

// --- What is no year or no date -------------------------------------------------------------------------------------

TEST_F(PeriodRange, RefusesAYearThatIsNoNumber) {
  EXPECT_EQ(errorOf("", "", ""), "The filter item iYear has the value \"\"; give it a year, such as 2024.");
  EXPECT_EQ(errorOf("", "", "40000"), "The filter item iYear has the value \"40000\"; give it a year, such as 2024.");
}

TEST_F(PeriodRange, RefusesATextThatIsNoDate) {
  EXPECT_EQ(errorOf("soon", ""),
            "The filter item dKeepDate has the value \"soon\"; give it a date, such as 2024-06-30.");
  EXPECT_EQ(errorOf("", "2024-02-30"),
            "The filter item dKeepDate has the value \"2024-02-30\"; give it a date, such as 2024-06-30.");
}

}  // namespace
}  // namespace quillon::fx_detail
