#include "workbench/runs/dialog_steps.h"

#include <gmock/gmock.h>

#include "tests/workbench/runs/dialog_play_test_base.h"

namespace quillon::workbench {
namespace {

using test::DialogPlayTest;

TEST(DialogStep, IsReadFromItsWord) {
  EXPECT_EQ(dialogStep("init").kind, DialogStep::Kind::init);
  EXPECT_EQ(dialogStep("view").kind, DialogStep::Kind::view);
  EXPECT_EQ(dialogStep("click").kind, DialogStep::Kind::click);
  const DialogStep change = dialogStep("change:dKeepDate=2024-01-01..2024-01-31");
  EXPECT_EQ(change.kind, DialogStep::Kind::change);
  EXPECT_EQ(change.text, "change:dKeepDate=2024-01-01..2024-01-31");
  EXPECT_EQ(change.setting, "dKeepDate=2024-01-01..2024-01-31");
  EXPECT_EQ(dialogStep("change:cModal=").setting, "cModal=") << "clears the item";
}

TEST(DialogStep, IsRefusedWhenThereIsNoSuchStep) {
  for (const char* text : {"", "Init", "confirm", "change", "change:", "change:cModal", "change:=1", "cModal=1"}) {
    try {
      dialogStep(text);
      ADD_FAILURE() << text;
    } catch (const UserError& error) {
      EXPECT_EQ(error.what(),
                "there is no step \"" + std::string(text) + "\"; the steps are: init, view, click, change:KEY=VALUE");
    }
  }
}

TEST_F(DialogPlayTest, CallsTheClassStepByStep) {
  for (const char* step : {"init", "view", "change:CMODAL=2", "click", "init"})
    take(step);
  EXPECT_THAT(runner_.calls,
              testing::ElementsAre("init", "view", "changed cModal", "view after cModal", "click", "init"));
  EXPECT_EQ(filter_->find("cModal")->value, "2");
}

TEST_F(DialogPlayTest, AChangeTakesValuesAsThePersonWritesThem) {
  take("change:cInvCode=0101, 0102");
  EXPECT_EQ(filter_->find("cInvCode")->value, "0101\t0102");
  take("change:cInvCode=0103");
  EXPECT_EQ(filter_->find("cInvCode")->value, "0103") << "a change replaces what was there";
  take("change:dKeepDate=2024-01-01..");
  EXPECT_EQ(filter_->find("dKeepDate")->value, "2024-01-01");
  take("change:cModal=2");
  take("change:cModal=");
  EXPECT_EQ(filter_->find("cModal")->value, "");
}

TEST_F(DialogPlayTest, AChangeThatTheDialogDoesNotAllowIsRefusedInOneLine) {
  EXPECT_EQ(refusalOf("change:cModal=7"),
            "step change:cModal=7: filter item cModal (Report mode): there is no choice \"7\"; choose of 0 (by class), "
            "2 (by expense)");
  EXPECT_EQ(refusalOf("change:cWhCode=01"),
            "step change:cWhCode=01: the report has no filter item \"cWhCode\"; it has cModal, dKeepDate, cInvCode");
  EXPECT_EQ(refusalOf("change:dKeepDate=yesterday"),
            "step change:dKeepDate=yesterday: filter item dKeepDate (Posting date): \"yesterday\" is no date; write it "
            "as yyyy-mm-dd");
  filter_->find("cInvCode")->available = false;
  EXPECT_EQ(refusalOf("change:cInvCode=0101"),
            "step change:cInvCode=0101: filter item cInvCode (Inventory): the dialog does not let it be entered now");
  EXPECT_THAT(runner_.calls, testing::IsEmpty()) << "the class hears of accepted changes only";
}

TEST_F(DialogPlayTest, AFailureOfTheClassNamesTheStep) {
  runner_.failure = "the account is gone";
  EXPECT_EQ(refusalOf("change:cModal=2"), "step change:cModal=2: the account is gone");
}

TEST_F(DialogPlayTest, TheViewIsKnownOnceItWasAskedFor) {
  take("init");
  EXPECT_EQ(play_.view(), std::nullopt);
  take("view");
  EXPECT_EQ(play_.view(), "cross");
  runner_.viewClass = "ordin";
  take("change:cModal=2");
  EXPECT_EQ(play_.view(), "ordin");
  runner_.viewClass = std::nullopt;
  take("view");
  EXPECT_EQ(play_.view(), "ordin") << "a class that leaves the view unchanged leaves it so";
}

TEST_F(DialogPlayTest, AClickIsAcceptedOrNot) {
  take("click");
  EXPECT_EQ(play_.accepted(), true);
  EXPECT_THAT(play_.messages(), testing::IsEmpty());
  runner_.accepts = false;
  take("click");
  EXPECT_EQ(play_.accepted(), false);
  EXPECT_THAT(play_.messages(), testing::ElementsAre("仓库\n必须输入"));
  take("init");
  EXPECT_EQ(play_.accepted(), std::nullopt);
  EXPECT_THAT(play_.messages(), testing::IsEmpty()) << "messages belong to their step";
}

}  // namespace
}  // namespace quillon::workbench
