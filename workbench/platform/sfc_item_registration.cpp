#include <array>

#include "workbench/platform/registrations.h"

namespace quillon::workbench {

namespace {

// The closing balance compared with nothing: the digits of the three cJudge items.
std::vector<Choice> signChoices() {
  return {{"0", "大于零", "above zero"}, {"1", "等于零", "zero"}, {"2", "小于零", "below zero"}};
}

std::vector<Choice> yesNo() {
  return {{"0", "否", "no"}, {"1", "是", "yes"}};
}

// The ledger's user-defined fields by what they hold; 17 to 21 belong to document lines and are not in the ledger.
constexpr std::array definedTexts = {1, 2, 3, 8, 9, 10, 11, 12, 13, 14, 22, 23, 24, 25, 28, 29, 30, 31, 32, 33};
constexpr std::array definedDates = {4, 6, 16, 36, 37};
constexpr std::array definedNumbers = {5, 7, 15, 26, 27, 34, 35};
constexpr int freeItems = 10;

ItemRegistration definedField(int number, InputKind kind, bool multiple) {
  const std::string text = std::to_string(number);
  return {.key = "cDefine" + text,
          .chinese = "自定义项" + text,
          .english = "User-defined field " + text,
          .kind = kind,
          .multiple = multiple,
          .column = "base.cDefine" + text};
}

ReportRegistration makeRegistration() {
  ReportRegistration report{.name = "sfc-item",
                            .chinese = "收发存汇总表（按成本项目）",
                            .english = "Receipt/issue/balance by cost item",
                            .identifier = "CA3BAD03-9D4C-463A-827E-E971D5A36C81"};
  report.items = {
      {.key = "iYear",
       .chinese = "会计年度",
       .english = "Year",
       .kind = InputKind::choice,
       .required = true,
       .column = "base.iYear"},
      {.key = "cModal",
       .chinese = "报表方式",
       .english = "Report mode",
       .kind = InputKind::choice,
       .required = true,
       .defaultValue = "0",
       .choices = {{"0", "按成本项目分类", "by cost-item class"},
                   {"1", "按成本项目", "by cost item"},
                   {"2", "按费用项目", "by expense item"}}},
      {.key = "iGrade",
       .chinese = "分类级次",
       .english = "Class grade",
       .kind = InputKind::choice,
       .defaultValue = "1"},
      {.key = "dKeepDate",
       .chinese = "记账日期",
       .english = "Posting date",
       .kind = InputKind::date,
       .range = true,
       .column = "base.dKeepDate"},
      {.key = "dVouDate",
       .chinese = "单据日期",
       .english = "Document date",
       .kind = InputKind::date,
       .range = true,
       .column = "base.dVouDate"},
      {.key = "cInvClass",
       .chinese = "存货分类",
       .english = "Inventory class",
       .kind = InputKind::reference,
       .column = "inv.cInvCCode"},
      {.key = "cInvCode",
       .chinese = "存货",
       .english = "Inventory",
       .kind = InputKind::reference,
       .multiple = true,
       .column = "base.cInvCode"},
      {.key = "cWhCode",
       .chinese = "仓库",
       .english = "Warehouse",
       .kind = InputKind::reference,
       .multiple = true,
       .column = "base.cWhCode"},
      {.key = "cDepCode",
       .chinese = "部门",
       .english = "Department",
       .kind = InputKind::reference,
       .multiple = true,
       .column = "base.cDepCode"},
      {.key = "cFSType",
       .chinese = "收发状态",
       .english = "Movements",
       .kind = InputKind::choice,
       .defaultValue = "0",
       .choices = {{"0", "全部", "all"},
                   {"1", "有收发", "receipts or issues"},
                   {"2", "无收发", "neither"},
                   {"3", "只有收入", "receipts only"},
                   {"4", "只有发出", "issues only"}}},
      {.key = "cJudgeQuantity",
       .chinese = "结存数量",
       .english = "Closing quantity",
       .kind = InputKind::choice,
       .multiple = true,
       .choices = signChoices()},
      {.key = "cJudgeMoney",
       .chinese = "结存金额",
       .english = "Closing amount",
       .kind = InputKind::choice,
       .multiple = true,
       .choices = signChoices()},
      {.key = "cJudgeCost",
       .chinese = "结存单价",
       .english = "Closing unit cost",
       .kind = InputKind::choice,
       .multiple = true,
       .choices = signChoices()},
      {.key = "bIncludeExpire",
       .chinese = "包含停用存货",
       .english = "Include discontinued inventory",
       .kind = InputKind::flag,
       .defaultValue = "1",
       .choices = yesNo()},
      {.key = "bIncludeTransVouch",
       .chinese = "包含调拨业务",
       .english = "Include transfers",
       .kind = InputKind::flag,
       .defaultValue = "1",
       .choices = yesNo()},
      {.key = "cBatchIA", .chinese = "批号", .english = "Batch", .multiple = true, .column = "base.cBatchia"},
  };
  for (int number = 1; number <= freeItems; ++number) {
    const std::string text = std::to_string(number);
    report.items.push_back({.key = "cFree" + text,
                            .chinese = "自由项" + text,
                            .english = "Free item " + text,
                            .multiple = true,
                            .column = "base.cFree" + text});
  }
  for (const int number : definedTexts)
    report.items.push_back(definedField(number, InputKind::text, true));
  for (const int number : definedDates)
    report.items.push_back(definedField(number, InputKind::date, false));
  for (const int number : definedNumbers)
    report.items.push_back(definedField(number, InputKind::number, false));
  return report;
}

}  // namespace

const ReportRegistration& sfcItemRegistration() {
  static const ReportRegistration registration = makeRegistration();
  return registration;
}

}  // namespace quillon::workbench
