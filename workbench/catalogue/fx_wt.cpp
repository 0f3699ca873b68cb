#include "workbench/catalogue/fx_wt.h"

#include <array>

#include "reports/fx_wt/fx_wt.h"
#include "workbench/catalogue/registration_items.h"
#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

ItemRegistration dates(const char* key, const char* chinese, const char* english, const char* column) {
  return {.key = key, .chinese = chinese, .english = english, .kind = InputKind::date, .range = true, .column = column};
}

// A list that the dialog fills.
ItemRegistration types(const char* key, const char* chinese, const char* english, const char* column,
                       const Lookup& lookup) {
  return {.key = key,
          .chinese = chinese,
          .english = english,
          .kind = InputKind::choice,
          .multiple = true,
          .column = column,
          .lookup = &lookup};
}

// A key that is a column of the ledger.
ItemRegistration ledgerColumn(const char* key, const char* chinese, const char* english,
                              const Lookup* lookup = nullptr) {
  return {.key = key, .chinese = chinese, .english = english, .column = std::string("base.") + key, .lookup = lookup};
}

ReportRegistration fxWtRegistration() {
  ReportRegistration report{.name = "fx-wt",
                            .chinese = "凭证明细表（按成本项目）",
                            .english = "Cost-item voucher report",
                            .identifier = "3D1986A9-884B-4835-B4AA-DCCBD2E1487C"};
  append(report.items,
         {dates("dKeepDate", "记账日期", "Posting date", "base.dKeepDate"),
          dates("dVouDate", "单据日期", "Document date", "base.dVouDate"),
          types("cVouType", "单据类型", "Voucher type", "base.cVouType", voucherTypes),
          types("cBusType", "业务类型", "Business type", "base.cBusType", businessTypes),
          {.key = "cVouCode",
           .chinese = "单据号",
           .english = "Voucher number",
           .column = "base.cVouCode",
           .example = documentNumber},
          beginning("Inventory.cInvCCode", "存货分类", "Inventory class", "Inventory.cInvCCode", inventoryClasses),
          references("Inventory.cInvCode", "存货", "Inventory", "Inventory.cInvCode", &inventories),
          beginning("Customer.cCCCode", "客户分类", "Customer class", "Customer.cCCCode", customerClasses),
          references("Customer.cCusCode", "客户", "Customer", "Customer.cCusCode", &customers),
          beginning("Vendor.cVCCode", "供应商分类", "Vendor class", "Vendor.cVCCode", vendorClasses),
          references("Vendor.cVenCode", "供应商", "Vendor", "Vendor.cVenCode", &vendors),
          references("cWhCode", "仓库", "Warehouse", "base.cWhCode", &warehouses),
          reference("cDepCode", "部门", "Department", "base.cDepCode", &departments),
          reference("cDeptID", "成本中心", "Cost centre", "CAQ_CostCenterMap.cDeptID", &costCentres),
          reference("cRdCode", "收发类别", "Receipt/issue type", "base.cRdCode", &receiptIssueTypes),
          {.key = "PzNoId", .chinese = "凭证标识", .english = "Accounting voucher", .column = "base.cPZID"},
          ledgerColumn("cHandler", "经手人", "Handled by"),
          ledgerColumn("cAccounter", "记账人", "Posted by"),
          ledgerColumn("cItem_Class", "项目大类", "Project class", &projectClasses),
          ledgerColumn("cItemCode", "项目", "Project item", &projectItems),
          ledgerColumn("strContractCode", "合同号", "Contract"),
          ledgerColumn("cproordercode", "生产订单号", "Production order"),
          ledgerColumn("csaleordercode", "销售订单号", "Sales order"),
          ledgerColumn("cpurordercode", "采购订单号", "Purchase order"),
          batchItem("cBatchia")});
  append(report.items, freeItems());
  append(report.items, definedFields());
  append(report.items, inventoryFields("Inventory", false));
  // The report has no list for these: it compares a free item or a field with one value.
  for (ItemRegistration& item : report.items) {
    if (item.key.starts_with("cFree") || item.key.starts_with("cDefine")) item.multiple = false;
  }
  return report;
}

// The figures of the line stand on each of its rows, so that only those of the cost item are summed.
std::vector<ReportColumn> fxWtColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> all = {
      {"AutoID", "流水号", "Ledger line", internal},
      {"dKeepDate", "记账日期", "Posting date", date},
      {"dVouDate", "单据日期", "Document date", date},
      {"cVouType", "单据类型编码", "Voucher type code"},
      {"cVouCode", "单据号", "Voucher number"},
      {"cBusType", "业务类型", "Business type"},
      {"cPzID", "凭证标识", "Accounting voucher"},
      {"iPzid", "凭证分录", "Accounting voucher entry", internal},
      {"PzNoId", "凭证号", "Accounting voucher number"},
      {"cPZdigest", "凭证摘要", "Voucher digest"},
      {"cWhCode", "仓库编码", "Warehouse code", further},
      {"cWhName", "仓库", "Warehouse"},
      {"cInvCCode", "存货分类编码", "Inventory class code", further},
      {"cInvCode", "存货编码", "Inventory code"},
      {"cInvName", "存货", "Inventory"},
      {"cInvStd", "规格型号", "Model"},
      {"cInvAddCode", "存货代码", "Additional code", further},
      {"cComUnitName", "主计量单位", "Unit"},
      {"cAssComUnitName", "辅计量单位", "Second unit", further},
      {"cBatchia", "批号", "Batch"},
  };
  addFreeItems(all);
  all.insert(all.end(), {
                            {"iAInQuantity", "收入数量", "Receipt quantity", movement},
                            {"iInCost", "收入单价", "Receipt unit cost", unitCost},
                            {"iAInPrice", "收入金额", "Receipt amount", amount},
                            {"iAOutQuantity", "发出数量", "Issue quantity", movement},
                            {"iOutCost", "发出单价", "Issue unit cost", unitCost},
                            {"iAOutPrice", "发出金额", "Issue amount", amount},
                            {"cfxcCode", "项目分类编码", "Cost-item class code", further},
                            {"cfxcName", "项目分类", "Cost-item class", further},
                            {"cfxCode", "成本项目编码", "Cost item code"},
                            {"cfxName", "成本项目", "Cost item"},
                            {"cAmoType", "费用类型", "Expense type"},
                            {"cAmoID", "费用项目编码", "Expense item code"},
                            {"cAmoName", "费用项目", "Expense item"},
                            {"iItemInQuantity", "成本项目收入数量", "Cost item receipt quantity", quantity},
                            {"iIteminCost", "成本项目收入单价", "Cost item receipt unit cost", internal},
                            {"iIteminPrice", "成本项目收入金额", "Cost item receipt amount", money},
                            {"iItemoutQuantity", "成本项目发出数量", "Cost item issue quantity", quantity},
                            {"iItemoutCost", "成本项目发出单价", "Cost item issue unit cost", internal},
                            {"iItemOutPrice", "成本项目发出金额", "Cost item issue amount", money},
                            {"iUnitCost", "成本项目单价", "Cost item unit cost", unitCost},
                            {"iUnitUsed", "单位用量", "Usage per unit", movement},
                            {"cRdCode", "收发类别编码", "Receipt/issue type code", further},
                            {"cRdName", "收发类别", "Receipt/issue type"},
                            {"cAccDep", "核算部门编码", "Accounting department code", further},
                            {"cDepName", "核算部门", "Accounting department"},
                            {"cDeptID", "成本中心编码", "Cost centre code", further},
                            {"costDepName", "成本中心", "Cost centre"},
                            {"cProCode", "生产部门编码", "Production department code", further},
                            {"cVCCode", "供应商分类编码", "Vendor class code", further},
                            {"cVCName", "供应商分类", "Vendor class", further},
                            {"cVenCode", "供应商编码", "Vendor code", further},
                            {"cVenName", "供应商", "Vendor"},
                            {"cCCCode", "客户分类编码", "Customer class code", further},
                            {"cCCName", "客户分类", "Customer class", further},
                            {"cCusCode", "客户编码", "Customer code", further},
                            {"cCusName", "客户", "Customer"},
                            {"cItem_Class", "项目大类编码", "Project class code", further},
                            {"cItem_Classname", "项目大类", "Project class", further},
                            {"cItemCode", "项目编码", "Project item code", further},
                            {"cName", "项目", "Project item", further},
                            {"cHandler", "经手人", "Handled by", further},
                            {"cAccounter", "记账人", "Posted by", further},
                            {"cMemo", "备注", "Memo", further},
                            {"cBusCode", "业务号", "Business number", further},
                            {"strContractCode", "合同号", "Contract", further},
                            {"cproordercode", "生产订单号", "Production order", further},
                            {"iproorderids", "生产订单行标识", "Production order line", internal},
                            {"cworkprocode", "工序行号", "Operation", further},
                            {"cworkcentercode", "工作中心编码", "Work centre code", further},
                            {"cworkcentername", "工作中心", "Work centre", further},
                            {"csaleordercode", "销售订单号", "Sales order", further},
                            {"isaleorderids", "销售订单行标识", "Sales order line", internal},
                            {"exoCode", "出口订单号", "Export order", further},
                            {"iExRowno", "出口订单行号", "Export order line", internal},
                            {"centrustordercode", "委外订单号", "Subcontracting order", further},
                            {"cpurordercode", "采购订单号", "Purchase order", further},
                            {"cIMOrderCode", "进口订单号", "Import order", further},
                            {"cDemandCode", "需求跟踪号", "Demand", further},
                            {"cdemandmemo", "需求跟踪说明", "Demand memo", further},
                        });
  addUserDefinedFields(all);
  return all;
}

// What the row of a line that is not broken down has in place of a part's figure.
std::string partOrLine(std::string_view ofPart, std::string_view ofLine) {
  return "Case When cfxCode Is Null And iItemInQuantity Is Null And iIteminPrice Is Null And iItemoutQuantity Is Null "
         "And iItemOutPrice Is Null Then " +
         orZero(ofLine) + " Else " + orZero(ofPart) + " End";
}

// A row is a part of a receipt or of an issue. A line that is not broken down has one row, which counts with the line's
// own figures, so that the total is that of all lines.
std::vector<CrossState> fxWtStates(std::string_view) {
  return {{receiptKey, partOrLine("iItemInQuantity", "iAInQuantity"), partOrLine("iIteminPrice", "iAInPrice")},
          {issueKey, partOrLine("iItemoutQuantity", "iAOutQuantity"), partOrLine("iItemOutPrice", "iAOutPrice")}};
}

constexpr std::array<CodeAndName, 15> codeNames = {{{"cWhCode", "cWhName"},
                                                    {"cInvCode", "cInvName"},
                                                    {"cfxcCode", "cfxcName"},
                                                    {"cfxCode", "cfxName"},
                                                    {"cAmoID", "cAmoName"},
                                                    {"cRdCode", "cRdName"},
                                                    {"cAccDep", "cDepName"},
                                                    {"cDeptID", "costDepName"},
                                                    {"cVCCode", "cVCName"},
                                                    {"cVenCode", "cVenName"},
                                                    {"cCCCode", "cCCName"},
                                                    {"cCusCode", "cCusName"},
                                                    {"cItem_Class", "cItem_Classname"},
                                                    {"cItemCode", "cName"},
                                                    {"cworkcentercode", "cworkcentername"}}};

constexpr std::array<CodeNames, 3> codesNamedElsewhere = {
    {{"cVouType", &voucherTypes}, {"cInvCCode", &inventoryClasses}, {"cProCode", &departments}}};

// The keys by which the build joins, in its order.
std::vector<account::JoinKey> fxWtKeys() {
  return {{"ia_subsidiary", "AutoID"},
          {"Warehouse", "cWhCode"},
          {"Inventory", "cInvCode"},
          {"Rd_Style", "cRdCode"},
          {"CAQ_CostCenterMap", "cBusID"},
          {"CAQ_CostCenter", "cDeptID"},
          {"ComputationUnit", "cComUnitCode"},
          {"Customer", "cCusCode"},
          {"CustomerClass", "cCCCode"},
          {"Vendor", "cVenCode"},
          {"VendorClass", "cVCCode"},
          {"Department", "cDepCode"},
          {"Ca_FxDef", "iFxID"},
          {"Ca_FxClassDef", "iFxCId"},
          {"Ca_FxMapExpDID", "iFxDID"},
          {"Ca_FxMapExpDetails", "iFxDID"},
          {"Ca_CostExpDetail_Period", "cAmoID, cAmoType, iPeriod"},
          {"Ca_AmoTypeName", "cAmoType, localid"}};
}

// What a drill-through reads of a row. It asks for ID, too, which the platform answers from AutoID.
constexpr std::array<std::string_view, 6> documentColumns = {"cVouType", "cVouCode", "cBusType",
                                                             "iPZID",    "cPZID",    "AutoID"};
constexpr std::array<std::string_view, 2> sourceDocumentColumns = {"cVouType", "AutoID"};
constexpr std::array<std::string_view, 3> ledgerVoucherColumns = {"cVouType", "cPZID", "iPZID"};

// The checks of the ledger that touch its rows.
std::vector<account::Check> fxWtChecks() {
  using enum account::Check;
  return {lineSum, lineWithoutItems, neverSplit, unknownItem, classTree, amountWithoutQuantity, quantityWithoutAmount};
}

}  // namespace

Report fxWt() {
  return {.registration = fxWtRegistration(),
          .reportClass = "clsFXWt",
          .make = makeCoreReport<FxWt>,
          .dialog = &voucherDialog(),
          .columns = fxWtColumns(),
          .order = orderByLine,
          .layouts = {Layout::vouchers, Layout::lines},
          .lineOrder = orderByDocument,
          .lineKeys = {"cVouCode", "cInvCode"},
          .crossStates = fxWtStates,
          .codeNames = codeNames,
          .codesNamedElsewhere = codesNamedElsewhere,
          .joinKeys = fxWtKeys(),
          .ledgerChecks = fxWtChecks(),
          .ledgerLine = "AutoID",
          .documentColumns = documentColumns,
          .sourceDocumentColumns = sourceDocumentColumns,
          .ledgerVoucherColumns = ledgerVoucherColumns};
}

}  // namespace quillon::workbench
