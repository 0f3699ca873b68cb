#include "filters/dialog_rules.h"

#include <gmock/gmock.h>

#include "tests/frame/fake_dialog.h"

namespace quillon {
namespace {

using fakes::FakeDialog;
using testing::ElementsAre;

class DialogRules : public testing::Test {
 protected:
  DialogRules() { module.login = std::make_shared<fakes::FakeLogin>(platform.record); }

  fakes::FakePlatform platform;
  Module module{platform};
  FakeDialog dialog{platform, "", {{.name = "iYear"}}};
};

TEST_F(DialogRules, TheDataRightsAreLifted) {
  liftDataRights(module);
  EXPECT_THAT(
      platform.record.calls,
      ElementsAre("create PublicComponent", "Login.AuthString = department=False,inventory=False,warehouse=False"));
}

TEST_F(DialogRules, TheUsedYearsAreJoinedByCommas) {
  platform.answers.usedYears = {"2022", "2023", "2024"};
  platform.answers.costItemStartMonth = 1;
  EXPECT_EQ(usedYearsList(module, dialog), "2022,2023,2024");
  EXPECT_THAT(platform.record.with("GetIAUsedYears"), ElementsAre("(001)"));
}

TEST_F(DialogRules, AYearWithoutBreakdownLeavesNothingAtTheFrontAndABareCommaBehind) {
  platform.answers.usedYears = {"2021", "2022", "2023", "2024", "2025"};
  platform.answers.costItemStartMonths = {{"2022", 4}, {"2024", 1}};
  EXPECT_EQ(usedYearsList(module, dialog), "2022,,2024,");
}

TEST_F(DialogRules, NoYearGivesAnEmptyList) {
  EXPECT_EQ(usedYearsList(module, dialog), "");  // none of the years has a breakdown
  platform.answers.usedYears = {};
  EXPECT_EQ(usedYearsList(module, dialog), "");
}

TEST_F(DialogRules, AnEmptyYearBecomesTheLoginsWhenItIsInUse) {
  platform.answers.costItemStartMonth = 1;
  offerUsedYears(module, dialog, *dialog.item("iYear"));
  EXPECT_EQ(dialog.at("iYear").value, "2024");
  EXPECT_THAT(platform.record.with("iYear."), ElementsAre("list = 2023,2024", "value = 2024"));
  EXPECT_THAT(platform.record.calls, testing::Not(testing::Contains("CurPeriodYear")));
}

TEST_F(DialogRules, AnEmptyYearBecomesTheCurrentOneWhenTheLoginsIsNotInUse) {
  platform.answers.costItemStartMonth = 1;
  platform.answers.usedYears = {"2022", "2023"};
  platform.answers.currentPeriodYear = 2023;
  offerUsedYears(module, dialog, *dialog.item("iYear"));
  EXPECT_THAT(platform.record.with("iYear."), ElementsAre("list = 2022,2023", "value = 2023"));
}

TEST_F(DialogRules, AYearThatIsThereStays) {
  platform.answers.costItemStartMonth = 1;
  dialog.at("iYear").value = "1999";
  offerUsedYears(module, dialog, *dialog.item("iYear"));
  EXPECT_THAT(platform.record.with("iYear."), ElementsAre("list = 2023,2024"));
  EXPECT_EQ(dialog.at("iYear").value, "1999");
}

TEST_F(DialogRules, TheValuationMethodSwitchesWarehouseAndDepartment) {
  const auto calls = [this](std::string_view method) {
    platform.record.calls.clear();
    applyValuationRule(dialog, method);
    return platform.record.calls;
  };
  EXPECT_THAT(calls("按存货核算"), ElementsAre("set cWhCode available", "set cDepCode available",
                                               "set cWhCode unavailable", "set cDepCode unavailable"));
  EXPECT_THAT(calls("按部门核算"),
              ElementsAre("set cWhCode available", "set cDepCode available", "set cWhCode unavailable"));
  for (const char* method : {"按仓库核算", "", "anything else"}) {
    EXPECT_THAT(calls(method),
                ElementsAre("set cWhCode available", "set cDepCode available", "set cDepCode unavailable"));
  }
}

TEST(EnumerationText, JoinsCodesAndNames) {
  EXPECT_EQ(enumerationText({{"01", "A"}, {"02", "B"}}), "01{#}02{##}A{#}B");
  EXPECT_EQ(enumerationText({{"01", "A"}}), "01{##}A");
  EXPECT_EQ(enumerationText({{"", "A"}, {"02", ""}}), "{#}02{##}A{#}");
  EXPECT_EQ(enumerationText({}), "{##}");
}

}  // namespace
}  // namespace quillon
