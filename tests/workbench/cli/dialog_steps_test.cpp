#include "workbench/runs/dialog_steps.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "workbench/cli/dialog_output.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

// A filter-control class that keeps what it was called for and answers as a test says.
class FakeRunner final : public DialogRunner {
 public:
  void init() override { calls.emplace_back("init"); }
  void changed(const std::string& key) override {
    calls.push_back("changed " + key);
    if (!failure.empty()) throw AutomationError(hresult::fail, "Fake", failure);
  }
  bool click() override {
    calls.emplace_back("click");
    if (!accepts) messages->push_back("仓库\n必须输入");
    return accepts;
  }
  std::optional<std::string> view() override {
    calls.emplace_back("view");
    return viewClass;
  }
  std::optional<std::string> viewAfterChange(const std::string& key) override {
    calls.push_back("view after " + key);
    return viewClass;
  }

  std::vector<std::string> calls;
  std::vector<std::string>* messages = nullptr;
  std::optional<std::string> viewClass = "cross";
  bool accepts = true;
  std::string failure;
};

ReportRegistration threeItems() {
  ReportRegistration report;
  report.items = {
      {.key = "cModal",
       .chinese = "报表方式",
       .english = "Report mode",
       .kind = InputKind::choice,
       .required = true,
       .choices = {{"0", "按分类", "by class"}, {"2", "按费用", "by expense"}}},
      {.key = "dKeepDate", .chinese = "记账日期", .english = "Posting date", .kind = InputKind::date, .range = true},
      {.key = "cInvCode", .chinese = "存货", .english = "Inventory", .kind = InputKind::reference, .multiple = true}};
  return report;
}

class DialogPlayTest : public testing::Test {
 protected:
  void SetUp() override { runner_.messages = &messages_; }

  void take(const std::string& step) { play_.take(dialogStep(step)); }
  std::string refusalOf(const std::string& step) {
    try {
      take(step);
    } catch (const UserError& error) {
      return error.what();
    }
    return "nothing was refused";
  }
  std::string table(const std::string& step, Language language = Language::english) {
    std::ostringstream out;
    writeDialogTable(out, dialogStep(step), play_, {.language = language});
    return out.str();
  }
  nlohmann::json json(const std::string& step) {
    std::ostringstream out;
    writeDialogJson(out, dialogStep(step), play_, Language::english);
    EXPECT_EQ(out.str().find('\n'), out.str().size() - 1) << "one line";
    return nlohmann::json::parse(out.str());
  }

  std::shared_ptr<FilterObject> filter_ = std::make_shared<FilterObject>(threeItems(), InitialValues::none);
  std::vector<std::string> messages_;
  FakeRunner runner_;
  DialogPlay play_{std::make_shared<FilterDialogObject>(filter_, std::make_shared<WorkbenchLogin>(LoginDetails{}),
                                                        std::make_shared<AccountSession>()),
                   runner_, messages_};
};

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

TEST_F(DialogPlayTest, TheTableShowsEachItem) {
  take("init");
  filter_->find("cModal")->value = "0";
  filter_->find("dKeepDate")->value = "2024-01-01";
  filter_->find("cInvCode")->value = "0101\t0102";
  filter_->find("cInvCode")->lookupCondition = "#FN[cInvCCode] Like '01%'";
  filter_->find("dKeepDate")->available = false;
  EXPECT_EQ(table("init"),
            "Step: init\n"
            "Key        Item          Value          Choices                   Available  Lookup condition\n"
            "---------  ------------  -------------  ------------------------  ---------  -------------------------\n"
            "cModal     Report mode   0              0 by class, 2 by expense  yes\n"
            "dKeepDate  Posting date  2024-01-01 ..                            no\n"
            "cInvCode   Inventory     0101, 0102                               yes        #FN[cInvCCode] Like '01%'\n");
  EXPECT_THAT(table("init", Language::chinese),
              testing::StartsWith("步骤：init\n"
                                  "关键字     条件项    值             选项                可用  参照条件\n"));
}

TEST_F(DialogPlayTest, TheTableEndsWithViewMessagesAndConfirmation) {
  take("view");
  runner_.accepts = false;
  take("click");
  EXPECT_THAT(table("click"), testing::EndsWith("\nView: cross\nMessage: 仓库 必须输入\n"
                                                "Confirmation: refused, the dialog stays open\n"));
  EXPECT_THAT(table("click", Language::chinese),
              testing::EndsWith("\n视图：cross\n提示：仓库 必须输入\n确认：未接受，对话框不关闭\n"));
  runner_.accepts = true;
  take("click");
  EXPECT_THAT(table("click"), testing::EndsWith("\nView: cross\nConfirmation: accepted\n"));
}

TEST_F(DialogPlayTest, TheTableCutsALongListOfChoices) {
  filter_->find("cModal")->item.choices.assign(30, {"1234", "", ""});
  EXPECT_THAT(table("init"), testing::HasSubstr("1234, 1234, 1234, 1234, 1234, 1234, 1234, 1234, 1234, 123...  yes"));
}

TEST_F(DialogPlayTest, TheObjectHoldsEverything) {
  take("view");
  take("click");
  filter_->find("cModal")->value = "2";
  filter_->find("dKeepDate")->value2 = "2024-01-31";
  filter_->find("cInvCode")->value = "0101\t0102";
  filter_->find("cInvCode")->available = false;
  filter_->find("cInvCode")->lookupCondition = "c";
  const nlohmann::json expected = nlohmann::json::parse(R"({
    "step": "click",
    "items": [
      {"key": "cModal", "caption": "Report mode", "kind": "choice", "range": false, "multiple": false, "value": "2",
       "choices": [{"code": "0", "name": "by class"}, {"code": "2", "name": "by expense"}], "available": true,
       "lookup": ""},
      {"key": "dKeepDate", "caption": "Posting date", "kind": "date", "range": true, "multiple": false,
       "value": {"lower": "", "upper": "2024-01-31"}, "choices": [], "available": true, "lookup": ""},
      {"key": "cInvCode", "caption": "Inventory", "kind": "reference", "range": false, "multiple": true,
       "value": ["0101", "0102"], "choices": [], "available": false, "lookup": "c"}],
    "view": "cross", "accepted": true, "messages": []})");
  EXPECT_EQ(json("click"), expected);
}

TEST_F(DialogPlayTest, TheObjectSaysWhatIsNotKnown) {
  take("init");
  EXPECT_EQ(json("init")["view"], nullptr);
  EXPECT_EQ(json("init")["accepted"], nullptr);
  EXPECT_EQ(json("init")["items"][2]["value"], nlohmann::json::array()) << "no value, and not one empty value";
}

}  // namespace
}  // namespace quillon::workbench
