#include "frame/pub_mod.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using testing::ElementsAre;

class PubMod : public testing::Test {
 protected:
  fakes::FakePlatform platform_;
  Module module_{platform_};
  fakes::FakeSession session_{platform_.record, platform_.answers.queries};

  void answer(std::string part, std::vector<fakes::Row> rows) {
    platform_.answers.queries.push_back({std::move(part), std::move(rows)});
  }
};

TEST_F(PubMod, ValueStyleOfTheCurrentYearIsTheCurrentSetting) {
  EXPECT_EQ(valueStyle(module_, 2024, session_), "按仓库核算");
  EXPECT_THAT(platform_.record.calls,
              ElementsAre("create PublicComponent", "CurPeriodYear", "GetAccInformation(IA, cValueStyle)"));
}

TEST_F(PubMod, ValueStyleOfAnotherYearComesFromItsHistory) {
  answer("IA_HisOption", {{"按存货核算"}, {"按部门核算"}});
  EXPECT_EQ(valueStyle(module_, 2023, session_), "按存货核算");
  EXPECT_THAT(platform_.record.queries(),
              ElementsAre("select cValue from IA_HisOption where cSysID='IA' and  cName='cValueStyle' and iYear=2023"));
  EXPECT_EQ(platform_.record.lastQueryOptions->cursorType, CursorType::fixed);
  EXPECT_EQ(platform_.record.lastQueryOptions->lockType, LockType::optimistic);
  EXPECT_EQ(platform_.record.calls.back(), "Recordset.Close");
}

TEST_F(PubMod, ValueStyleOfAYearWithoutHistoryIsTheCurrentSetting) {
  EXPECT_EQ(valueStyle(module_, 2022, session_), "按仓库核算");
  EXPECT_THAT(platform_.record.with("GetAccInformation"), ElementsAre("(IA, cValueStyle)"));
  EXPECT_EQ(platform_.record.calls.back(), "Recordset.Close");
}

TEST_F(PubMod, ValueStyleCreatesThePublicComponentOnce) {
  valueStyle(module_, 2024, session_);
  valueStyle(module_, 2024, session_);
  EXPECT_EQ(platform_.record.with("create PublicComponent").size(), 1U);
}

TEST_F(PubMod, StartMonthIsThatOfTheStartDateInTheYear) {
  answer("dIAStartDate", {{"2024-03-01"}});
  EXPECT_EQ(inventoryStartMonth(2024, session_), 3);
  EXPECT_THAT(platform_.record.queries(),
              ElementsAre("Select cValue From AccInformation Where cSysID = 'IA' And cName = 'dIAStartDate'"));
  EXPECT_EQ(platform_.record.lastQueryOptions->cursorType, CursorType::fixed);
  EXPECT_EQ(platform_.record.lastQueryOptions->lockType, LockType::optimistic);
  EXPECT_EQ(platform_.record.calls.back(), "Recordset.Close");
}

TEST_F(PubMod, StartMonthReadsBothDigits) {
  answer("dIAStartDate", {{"2024-12-01"}});
  EXPECT_EQ(inventoryStartMonth(2024, session_), 12);
}

TEST_F(PubMod, AStartDateInAnotherYearGivesMonth0) {
  answer("dIAStartDate", {{"2023-03-01"}});
  EXPECT_EQ(inventoryStartMonth(2024, session_), 0);
}

TEST_F(PubMod, NoStartDateGivesMonth0) {
  EXPECT_EQ(inventoryStartMonth(2024, session_), 0);
}

TEST_F(PubMod, ANullStartDateGivesMonth0) {
  answer("dIAStartDate", {{std::nullopt}});
  EXPECT_EQ(inventoryStartMonth(2024, session_), 0);
}

TEST_F(PubMod, AStartDateWithoutAMonthGivesMonth0) {
  answer("dIAStartDate", {{"2024"}});
  EXPECT_EQ(inventoryStartMonth(2024, session_), 0);
}

TEST_F(PubMod, DecimalPlacesAreAnOptionOfTheAccount) {
  module_.session = platform_.createSession();
  platform_.answers.options = {{"AA.iStrsQuanDecDgt", " 3 "}, {"AA.iStrsPriDecDgt", ""}};
  EXPECT_EQ(decimalPlaces(module_, "iStrsQuanDecDgt"), 3);
  EXPECT_EQ(decimalPlaces(module_, "iStrsPriDecDgt"), 0);
}

TEST_F(PubMod, DecimalPlacesThatAreNoNumberAreRefused) {
  module_.session = platform_.createSession();
  for (const char* value : {"two", "2.5", "2x"}) {
    platform_.answers.options = {{"AA.iStrsQuanDecDgt", value}};
    try {
      decimalPlaces(module_, "iStrsQuanDecDgt");
      ADD_FAILURE() << "no error for " << value;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), hresult::typeMismatch);
      EXPECT_EQ(error.description(), "The account option iStrsQuanDecDgt of system AA has the value \"" +
                                         std::string(value) + "\"; give it a number of decimal places, such as 2.");
    }
  }
}

TEST_F(PubMod, WorkTablePrefixIsTheTrimmedNamingNumber) {
  platform_.answers.namingNumber = "  1203 ";
  EXPECT_EQ(workTablePrefix(platform_), "1203");
}

}  // namespace
}  // namespace quillon
