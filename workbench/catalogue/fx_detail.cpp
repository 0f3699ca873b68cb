#include "workbench/catalogue/registration_items.h"
#include "workbench/catalogue/registrations.h"

namespace quillon::workbench {

namespace {

// A code of a master, looked up there; the ledger is of one inventory in one place.
ItemRegistration reference(const char* key, const char* chinese, const char* english, const char* column,
                           bool required = false) {
  return {.key = key,
          .chinese = chinese,
          .english = english,
          .kind = InputKind::reference,
          .required = required,
          .column = column};
}

ReportRegistration makeRegistration() {
  ReportRegistration report{.name = "fx-detail",
                            .chinese = "明细账（按成本项目）",
                            .english = "Cost-item detail ledger",
                            .identifier = "0D7E5A4C-3A0B-4C1E-9B7B-64E2C1F7A915",
                            .reportClass = "clsFXDetail",
                            .filterControl = "clsFilterControl"};
  append(report.items,
         {{.key = "iYear",
           .chinese = "会计年度",
           .english = "Year",
           .kind = InputKind::choice,
           .required = true,
           .column = "base.iYear"},
          {.key = "cCaType",
           .chinese = "核算方式",
           .english = "Breakdown",
           .kind = InputKind::choice,
           .required = true,
           .defaultValue = "项目分类",
           .choices = {{"项目分类", "按项目分类", "by cost-item class"}, {"成本项目", "按成本项目", "by cost item"}}},
          {.key = "dKeepDate",
           .chinese = "记账日期",
           .english = "Posting date",
           .kind = InputKind::date,
           .range = true,
           .column = "base.dKeepDate"},
          reference("cInvCCode", "存货分类", "Inventory class", "inv.cInvCCode"),
          reference("cInvCode", "存货", "Inventory", "base.cInvCode", true),
          reference("cWhCode", "仓库", "Warehouse", "base.cWhCode"),
          reference("cDepCode", "部门", "Department", "base.cDepCode"),
          {.key = "cBatchIA", .chinese = "批号", .english = "Batch", .multiple = true, .column = "base.cBatchia"}});
  append(report.items, freeItems());
  return report;
}

}  // namespace

const ReportRegistration& fxDetailRegistration() {
  static const ReportRegistration registration = makeRegistration();
  return registration;
}

}  // namespace quillon::workbench
