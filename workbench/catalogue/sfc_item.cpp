#include "workbench/catalogue/registration_items.h"
#include "workbench/catalogue/registrations.h"

namespace quillon::workbench {

namespace {

// The closing balance compared with nothing: the digits of the three cJudge items.
std::vector<Choice> signChoices() {
  return {{"0", "大于零", "above zero"}, {"1", "等于零", "zero"}, {"2", "小于零", "below zero"}};
}

ReportRegistration makeRegistration() {
  ReportRegistration report{.name = "sfc-item",
                            .chinese = "收发存汇总表（按成本项目）",
                            .english = "Receipt/issue/balance by cost item",
                            .identifier = "CA3BAD03-9D4C-463A-827E-E971D5A36C81",
                            .reportClass = "clsSFC_Item",
                            .filterControl = "clsSFCFilterControl",
                            .items = summaryReportItems()};
  append(report.items,
         {
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
         });
  append(report.items, freeItems());
  append(report.items, definedFields());
  return report;
}

}  // namespace

const ReportRegistration& sfcItemRegistration() {
  static const ReportRegistration registration = makeRegistration();
  return registration;
}

}  // namespace quillon::workbench
