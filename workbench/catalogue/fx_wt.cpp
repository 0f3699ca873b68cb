#include <array>

#include "workbench/catalogue/registration_items.h"
#include "workbench/catalogue/registrations.h"

namespace quillon::workbench {

namespace {

// The inventory master's own fields by what they hold.
constexpr std::array inventoryTexts = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
constexpr std::array inventoryNumbers = {11, 12, 13, 14};
constexpr std::array inventoryDates = {15, 16};

ItemRegistration dates(const char* key, const char* chinese, const char* english, const char* column) {
  return {.key = key, .chinese = chinese, .english = english, .kind = InputKind::date, .range = true, .column = column};
}

// A list that the dialog fills.
ItemRegistration types(const char* key, const char* chinese, const char* english, const char* column) {
  return {.key = key,
          .chinese = chinese,
          .english = english,
          .kind = InputKind::choice,
          .multiple = true,
          .column = column};
}

// A code of a master, looked up there.
ItemRegistration reference(const char* key, const char* chinese, const char* english, const char* column,
                           bool multiple) {
  return {.key = key,
          .chinese = chinese,
          .english = english,
          .kind = InputKind::reference,
          .multiple = multiple,
          .column = column};
}

// A key that is a column of the ledger.
ItemRegistration ledgerColumn(const char* key, const char* chinese, const char* english) {
  return {.key = key, .chinese = chinese, .english = english, .column = std::string("base.") + key};
}

ReportRegistration makeRegistration() {
  ReportRegistration report{.name = "fx-wt",
                            .chinese = "凭证明细表（按成本项目）",
                            .english = "Cost-item voucher report",
                            .identifier = "3D1986A9-884B-4835-B4AA-DCCBD2E1487C",
                            .reportClass = "clsFXWt",
                            .filterControl = "clsWtFilterControl"};
  append(report.items,
         {dates("dKeepDate", "记账日期", "Posting date", "base.dKeepDate"),
          dates("dVouDate", "单据日期", "Document date", "base.dVouDate"),
          types("cVouType", "单据类型", "Voucher type", "base.cVouType"),
          types("cBusType", "业务类型", "Business type", "base.cBusType"),
          ledgerColumn("cVouCode", "单据号", "Voucher number"),
          reference("Inventory.cInvCCode", "存货分类", "Inventory class", "Inventory.cInvCCode", false),
          reference("Inventory.cInvCode", "存货", "Inventory", "Inventory.cInvCode", true),
          reference("Customer.cCCCode", "客户分类", "Customer class", "Customer.cCCCode", false),
          reference("Customer.cCusCode", "客户", "Customer", "Customer.cCusCode", true),
          reference("Vendor.cVCCode", "供应商分类", "Vendor class", "Vendor.cVCCode", false),
          reference("Vendor.cVenCode", "供应商", "Vendor", "Vendor.cVenCode", true),
          reference("cWhCode", "仓库", "Warehouse", "base.cWhCode", true),
          reference("cDepCode", "部门", "Department", "base.cDepCode", false),
          reference("cDeptID", "成本中心", "Cost centre", "CAQ_CostCenterMap.cDeptID", false),
          reference("cRdCode", "收发类别", "Receipt/issue type", "base.cRdCode", false),
          {.key = "PzNoId", .chinese = "凭证标识", .english = "Accounting voucher", .column = "base.cPZID"},
          ledgerColumn("cHandler", "经手人", "Handled by"),
          ledgerColumn("cAccounter", "记账人", "Posted by"),
          ledgerColumn("cItem_Class", "项目大类", "Project class"),
          ledgerColumn("cItemCode", "项目", "Project item"),
          ledgerColumn("strContractCode", "合同号", "Contract"),
          ledgerColumn("cproordercode", "生产订单号", "Production order"),
          ledgerColumn("csaleordercode", "销售订单号", "Sales order"),
          ledgerColumn("cpurordercode", "采购订单号", "Purchase order"),
          {.key = "cBatchia", .chinese = "批号", .english = "Batch", .multiple = true, .column = "base.cBatchia"}});
  append(report.items, freeItems());
  append(report.items, definedFields());
  const NumberedField inventoryField = {"cInvDefine", "存货自定义项", "Inventory field", "Inventory.cInvDefine"};
  append(report.items, numberedFields(inventoryField, inventoryTexts, InputKind::text, false));
  append(report.items, numberedFields(inventoryField, inventoryNumbers, InputKind::number, false));
  append(report.items, numberedFields(inventoryField, inventoryDates, InputKind::date, false));
  // The report has no list for these: it compares a free item or a field with one value.
  for (ItemRegistration& item : report.items) {
    if (item.key.starts_with("cFree") || item.key.starts_with("cDefine")) item.multiple = false;
  }
  return report;
}

}  // namespace

const ReportRegistration& fxWtRegistration() {
  static const ReportRegistration registration = makeRegistration();
  return registration;
}

}  // namespace quillon::workbench
