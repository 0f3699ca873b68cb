#include "workbench/cli/dialog_output.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/workbench/runs/dialog_play_test_base.h"

namespace quillon::workbench {
namespace {

class DialogOutputTest : public test::DialogPlayTest {
 protected:
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
};

TEST_F(DialogOutputTest, TheTableShowsEachItem) {
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

TEST_F(DialogOutputTest, TheTableEndsWithViewMessagesAndConfirmation) {
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

TEST_F(DialogOutputTest, TheTableCutsALongListOfChoices) {
  filter_->find("cModal")->item.choices.assign(30, {"1234", "", ""});
  EXPECT_THAT(table("init"), testing::HasSubstr("1234, 1234, 1234, 1234, 1234, 1234, 1234, 1234, 1234, 123...  yes"));
}

TEST_F(DialogOutputTest, TheObjectHoldsEverything) {
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

TEST_F(DialogOutputTest, TheObjectSaysWhatIsNotKnown) {
  take("init");
  EXPECT_EQ(json("init")["view"], nullptr);
  EXPECT_EQ(json("init")["accepted"], nullptr);
  EXPECT_EQ(json("init")["items"][2]["value"], nlohmann::json::array()) << "no value, and not one empty value";
}

}  // namespace
}  // namespace quillon::workbench
