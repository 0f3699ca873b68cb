#include "frame/period_dates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

class PeriodDatesTest : public testing::Test {
 protected:
  PeriodDatesTest() {
    module_.session = session_;
    module_.login = std::make_shared<fakes::FakeLogin>(platform_.record);
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
  std::shared_ptr<fakes::FakeSession> session_ =
      std::make_shared<fakes::FakeSession>(platform_.record, platform_.answers.queries);
};

TEST_F(PeriodDatesTest, AsksTheSystemDatabaseForTheLoginsAccount) {
  periodDates(module_, "2019.3");
  EXPECT_THAT(
      platform_.record.queries(),
      testing::ElementsAre(
          "select dBegin,dEnd from orvsystem..UA_Period With(NoLock) where CAST( iYear as nvarchar(4)) + '.' + CAST(iId as nvarchar(2)) ='2019.3' and cAcc_Id = '001' "));
  EXPECT_EQ(platform_.record.lastQueryOptions->cursorType, CursorType::fixed);
  EXPECT_EQ(platform_.record.lastQueryOptions->lockType, LockType::readOnly);
  EXPECT_EQ(platform_.record.calls.back(), "Recordset.Close");
}

TEST_F(PeriodDatesTest, GivesTheDatesWithoutTheirTimes) {
  platform_.answers.queries = {{"UA_Period", {{"2019-03-01 00:00:00", "2019-03-31 23:59:59"}}}};
  const PeriodDates dates = periodDates(module_, "2019.3");
  EXPECT_EQ(dates.begin, "2019-03-01");
  EXPECT_EQ(dates.end, "2019-03-31");
}

TEST_F(PeriodDatesTest, AnUnknownPeriodHasEmptyDates) {
  const PeriodDates dates = periodDates(module_, "2019.13");
  EXPECT_EQ(dates.begin, "");
  EXPECT_EQ(dates.end, "");
}

}  // namespace
}  // namespace quillon
