// A dialog whose class a test plays.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/platform/user_error.h"
#include "workbench/runs/dialog_steps.h"

namespace quillon::workbench::test {

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

inline ReportRegistration threeItems() {
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

  std::shared_ptr<FilterObject> filter_ = std::make_shared<FilterObject>(threeItems(), InitialValues::none);
  std::vector<std::string> messages_;
  FakeRunner runner_;
  DialogPlay play_{std::make_shared<FilterDialogObject>(filter_, std::make_shared<WorkbenchLogin>(LoginDetails{}),
                                                        std::make_shared<AccountSession>()),
                   runner_, messages_};
};

}  // namespace quillon::workbench::test
