#include <array>

#include "workbench/catalogue/registration_items.h"
#include "workbench/catalogue/registrations.h"

namespace quillon::workbench {

namespace {

// The inventory master's own fields by what they hold.
constexpr std::array inventoryTexts = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
constexpr std::array inventoryNumbers = {11, 12, 13, 14};
constexpr std::array inventoryDates = {15, 16};

// Which lines come in, and by which of the two split tables a line falls to its cost items.
ItemRegistration source() {
  return {.key = "cSource",
          .chinese = "数据来源",
          .english = "Source",
          .kind = InputKind::choice,
          .defaultValue = "0",
          .choices = {{"0", "全部发出记录", "all issues, split as in the ledger"},
                      {"1", "有发出分配的记录", "issues with an outbound split"}}};
}

std::vector<ItemRegistration> documentItems() {
  return {{.key = "dVouDate",
           .chinese = "单据日期",
           .english = "Document date",
           .kind = InputKind::date,
           .range = true,
           .column = "base.dVouDate"},
          {.key = "dKeepDate",
           .chinese = "记账日期",
           .english = "Posting date",
           .kind = InputKind::date,
           .range = true,
           .column = "base.dKeepDate"},
          {.key = "cVouType",
           .chinese = "单据类型",
           .english = "Voucher type",
           .kind = InputKind::choice,
           .multiple = true,
           .column = "base.cVouType"},
          {.key = "cBusType",
           .chinese = "业务类型",
           .english = "Business type",
           .kind = InputKind::choice,
           .multiple = true,
           .column = "base.cBusType"},
          {.key = "cVouCode", .chinese = "单据号", .english = "Voucher number", .column = "base.cVouCode"}};
}

// A code of a master, looked up there.
ItemRegistration reference(const char* key, const char* chinese, const char* english, const char* column,
                           bool multiple = true) {
  return {.key = key,
          .chinese = chinese,
          .english = english,
          .kind = InputKind::reference,
          .multiple = multiple,
          .column = column};
}

std::vector<ItemRegistration> masterItems() {
  return {reference("cWhCode", "仓库", "Warehouse", "base.cWhCode"),
          reference("cInvCCode", "存货分类", "Inventory class", "inv.cInvCCode", false),
          reference("cInvCode", "存货", "Inventory", "base.cInvCode"),
          reference("cInvPspCode", "父项产品", "Parent product", "base.cPspCode"),
          reference("RdCode", "收发类别", "Receipt/issue type", "base.cRdCode"),
          reference("cDepCode", "核算部门", "Accounting department", "base.cAccDep"),
          reference("cProCode", "生产部门", "Production department", "base.cProCode", false),
          reference("cWhDep", "单据部门", "Document department", "base.cDepCode"),
          reference("cCusCCode", "客户分类", "Customer class", "cus.cCCCode", false),
          reference("cCusCode", "客户", "Customer", "base.cCusCode"),
          reference("cVenCode", "供应商", "Vendor", "base.cVenCode"),
          reference("cItem_Class", "项目大类", "Project class", "base.cItem_Class", false),
          reference("cItemCode", "项目", "Project item", "base.cItemCode"),
          reference("cOppHead", "对方科目", "Contra account", "base.cOppHead"),
          reference("cworkcentername", "工作中心", "Work centre", "base.cworkcentername"),
          reference("cperson", "业务员", "Person", "base.cPersonCode"),
          reference("cMaker", "制单人", "Prepared by", "base.cMaker")};
}

// A text or a number that one document carries.
ItemRegistration single(const char* key, const char* chinese, const char* english, InputKind kind = InputKind::text) {
  return {.key = key, .chinese = chinese, .english = english, .kind = kind, .column = std::string("base.") + key};
}

std::vector<ItemRegistration> orderItems() {
  return {single("strContractCode", "合同号", "Contract"),
          single("cProordercode", "生产订单号", "Production order"),
          single("iProorderids", "生产订单行标识", "Production order line", InputKind::number),
          single("cworkprocode", "工序行号", "Operation", InputKind::number),
          single("cSaleorderCode", "销售订单号", "Sales order"),
          single("isaleorderids", "销售订单行标识", "Sales order line", InputKind::number),
          single("exoCode", "出口订单号", "Export order"),
          single("iexrowno", "出口订单行号", "Export order line", InputKind::number),
          single("cImordercode", "进口订单号", "Import order"),
          single("cpurorderCode", "采购订单号", "Purchase order"),
          single("centrustordercode", "委外订单号", "Subcontracting order"),
          single("cBuscode", "业务号", "Business number")};
}

ReportRegistration makeRegistration() {
  ReportRegistration report{.name = "outsum-item",
                            .chinese = "发出汇总表（按成本项目）",
                            .english = "Outbound summary by cost item",
                            .identifier = "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE",
                            .reportClass = "clsOutsum_Item",
                            .filterControl = "clsSFCFilterControl",
                            .items = summaryReportItems()};
  append(report.items, {source()});
  append(report.items, documentItems());
  append(report.items, masterItems());
  append(report.items, orderItems());
  append(report.items,
         {{.key = "dIncludeExpire",
           .chinese = "包含停用存货",
           .english = "Include discontinued inventory",
           .kind = InputKind::flag,
           .choices = yesNo()},
          {.key = "cBatchIA", .chinese = "批号", .english = "Batch", .multiple = true, .column = "base.cBatchia"}});
  append(report.items, freeItems());
  append(report.items, definedFields());
  const NumberedField inventoryField = {"cInvDefine", "存货自定义项", "Inventory field", "inv.cInvDefine"};
  append(report.items, numberedFields(inventoryField, inventoryTexts, InputKind::text, true));
  append(report.items, numberedFields(inventoryField, inventoryNumbers, InputKind::number, false));
  append(report.items, numberedFields(inventoryField, inventoryDates, InputKind::date, false));
  return report;
}

}  // namespace

const ReportRegistration& outsumItemRegistration() {
  static const ReportRegistration registration = makeRegistration();
  return registration;
}

}  // namespace quillon::workbench
