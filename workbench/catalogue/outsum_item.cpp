#include "workbench/catalogue/outsum_item.h"

#include <array>

#include "reports/outsum_item/outsum_item.h"
#include "workbench/catalogue/registration_items.h"
#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

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
           .column = "base.cVouType",
           .lookup = &voucherTypes},
          {.key = "cBusType",
           .chinese = "业务类型",
           .english = "Business type",
           .kind = InputKind::choice,
           .multiple = true,
           .column = "base.cBusType",
           .lookup = &businessTypes},
          {.key = "cVouCode",
           .chinese = "单据号",
           .english = "Voucher number",
           .column = "base.cVouCode",
           .example = documentNumber}};
}

std::vector<ItemRegistration> masterItems() {
  return {references("cWhCode", "仓库", "Warehouse", "base.cWhCode", &warehouses),
          beginning("cInvCCode", "存货分类", "Inventory class", "inv.cInvCCode", inventoryClasses),
          references("cInvCode", "存货", "Inventory", "base.cInvCode", &inventories),
          references("cInvPspCode", "父项产品", "Parent product", "base.cPspCode", &inventories),
          references("RdCode", "收发类别", "Receipt/issue type", "base.cRdCode", &receiptIssueTypes),
          references("cDepCode", "核算部门", "Accounting department", "base.cAccDep", &departments),
          reference("cProCode", "生产部门", "Production department", "base.cProCode"),
          references("cWhDep", "单据部门", "Document department", "base.cDepCode", &departments),
          beginning("cCusCCode", "客户分类", "Customer class", "cus.cCCCode", customerClasses),
          references("cCusCode", "客户", "Customer", "base.cCusCode", &customers),
          references("cVenCode", "供应商", "Vendor", "base.cVenCode", &vendors),
          reference("cItem_Class", "项目大类", "Project class", "base.cItem_Class", &projectClasses),
          references("cItemCode", "项目", "Project item", "base.cItemCode", &projectItems),
          references("cOppHead", "对方科目", "Contra account", "base.cOppHead", &ledgerAccounts),
          references("cworkcentername", "工作中心", "Work centre", "base.cworkcentername", &workCentres),
          references("cperson", "业务员", "Person", "base.cPersonCode", &persons),
          references("cMaker", "制单人", "Prepared by", "base.cMaker", &users)};
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

ReportRegistration outsumItemRegistration() {
  ReportRegistration report{.name = "outsum-item",
                            .chinese = "发出汇总表（按成本项目）",
                            .english = "Outbound summary by cost item",
                            .identifier = "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE",
                            .items = summaryReportItems()};
  append(report.items, {source()});
  append(report.items, documentItems());
  append(report.items, masterItems());
  append(report.items, orderItems());
  append(report.items, {{.key = "dIncludeExpire",
                         .chinese = "包含停用存货",
                         .english = "Include discontinued inventory",
                         .kind = InputKind::flag,
                         .choices = yesNo()},
                        batchItem("cBatchIA")});
  append(report.items, freeItems());
  append(report.items, definedFields());
  append(report.items, inventoryFields("inv", true));
  return report;
}

std::vector<ReportColumn> outsumItemColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> all = {
      {"autoid", "流水号", "Ledger line", internal},
      {"cSource", "数据来源", "Source", internal},
      {"dVouDate", "单据日期", "Document date", date},
      {"cVouType", "单据类型", "Voucher type"},
      {"cBusType", "业务类型", "Business type"},
      {"cVouCode", "单据号", "Voucher number"},
      {"dKeepDate", "记账日期", "Posting date", date},
      {"cWhCode", "仓库编码", "Warehouse code"},
      {"cWhName", "仓库", "Warehouse"},
      {"cInvCCode", "存货分类编码", "Inventory class code"},
      {"cInvCode", "存货编码", "Inventory code"},
      {"cInvName", "存货", "Inventory"},
      {"cInvStd", "规格型号", "Model"},
      {"cInvAddCode", "存货代码", "Additional code"},
      {"cbatchia", "批号", "Batch"},
  };
  addFreeItems(all);
  all.insert(all.end(), {
                            {"cFXCode", "成本项目编码", "Cost item code"},
                            {"cFXName", "成本项目", "Cost item"},
                            {"cFxCName", "费用类型", "Expense type"},
                            {"cAmoCode", "费用项目编码", "Expense item code"},
                            {"cAmoName", "费用项目", "Expense item"},
                            {"iQuantity", "数量", "Quantity", quantity},
                            {"iMoney", "金额", "Amount", money},
                            {"iFXMoney", "成本项目金额", "Cost item amount", money},
                            {"cCross", "交叉项", "Cross item", internal},
                            {"cInvPspCode", "父项产品编码", "Parent product code"},
                            {"cInvPspName", "父项产品", "Parent product"},
                            {"RdCode", "收发类别编码", "Receipt/issue type code"},
                            {"RdName", "收发类别", "Receipt/issue type"},
                            {"cCostCenter", "成本中心编码", "Cost centre code"},
                            {"cCostCenterName", "成本中心", "Cost centre"},
                            {"cDepCode", "核算部门编码", "Accounting department code"},
                            {"cDepName", "核算部门", "Accounting department"},
                            {"cProCode", "生产部门编码", "Production department code"},
                            {"cWhDep", "单据部门编码", "Document department code"},
                            {"cWhDepName", "单据部门", "Document department"},
                            {"cCusCCode", "客户分类编码", "Customer class code"},
                            {"cCusCName", "客户分类", "Customer class"},
                            {"cCusCode", "客户编码", "Customer code"},
                            {"cCusName", "客户", "Customer"},
                            {"cVenCode", "供应商编码", "Vendor code"},
                            {"cVenName", "供应商", "Vendor"},
                            {"cItem_Class", "项目大类编码", "Project class code"},
                            {"cItem_ClassName", "项目大类", "Project class"},
                            {"cItemCCode", "项目分类编码", "Project item class code"},
                            {"cItemCName", "项目分类", "Project item class"},
                            {"cItemCode", "项目编码", "Project item code"},
                            {"cItemName", "项目", "Project item"},
                            {"cOppHead", "对方科目编码", "Contra account code"},
                            {"cOppHeadName", "对方科目", "Contra account"},
                            {"strContractCode", "合同号", "Contract"},
                            {"cProordercode", "生产订单号", "Production order"},
                            {"iProorderids", "生产订单行标识", "Production order line", internal},
                            {"cworkprocode", "工序行号", "Operation"},
                            {"cworkcentercode", "工作中心编码", "Work centre code"},
                            {"cworkcentername", "工作中心", "Work centre"},
                            {"cSaleorderCode", "销售订单号", "Sales order"},
                            {"isaleorderids", "销售订单行标识", "Sales order line", internal},
                            {"exoCode", "出口订单号", "Export order"},
                            {"iexrowno", "出口订单行号", "Export order line", internal},
                            {"cImordercode", "进口订单号", "Import order"},
                            {"cpurorderCode", "采购订单号", "Purchase order"},
                            {"centrustordercode", "委外订单号", "Subcontracting order"},
                            {"cBuscode", "业务号", "Business number"},
                            {"cperson", "业务员编码", "Person code"},
                            {"cPersonName", "业务员", "Person"},
                            {"cMaker", "制单人编码", "Prepared by, code"},
                            {"cMakerName", "制单人", "Prepared by"},
                        });
  addUserDefinedFields(all);
  return all;
}

// Every row is an issue.
std::vector<CrossState> outsumItemStates(std::string_view) {
  return {{issueKey, orZero("iQuantity"), orZero("iMoney")}};
}

constexpr std::array<CodeAndName, 18> codeNames = {{{"cWhCode", "cWhName"},
                                                    {"cInvCode", "cInvName"},
                                                    {"cFXCode", "cFXName"},
                                                    {"cAmoCode", "cAmoName"},
                                                    {"cInvPspCode", "cInvPspName"},
                                                    {"RdCode", "RdName"},
                                                    {"cCostCenter", "cCostCenterName"},
                                                    {"cDepCode", "cDepName"},
                                                    {"cWhDep", "cWhDepName"},
                                                    {"cCusCCode", "cCusCName"},
                                                    {"cCusCode", "cCusName"},
                                                    {"cVenCode", "cVenName"},
                                                    {"cItem_Class", "cItem_ClassName"},
                                                    {"cItemCCode", "cItemCName"},
                                                    {"cItemCode", "cItemName"},
                                                    {"cOppHead", "cOppHeadName"},
                                                    {"cperson", "cPersonName"},
                                                    {"cMaker", "cMakerName"}}};

constexpr std::array<CodeNames, 2> codesNamedElsewhere = {
    {{"cInvCCode", &inventoryClasses}, {"cProCode", &departments}}};

// The keys by which the build joins, in its order.
std::vector<account::JoinKey> outsumItemKeys() {
  return {{"ia_subsidiary", "AutoID"},
          {"Warehouse", "cWhCode"},
          {"Inventory", "cInvCode"},
          {"Rd_Style", "cRdCode"},
          {"sfc_workcenter", "Description"},
          {"CA_CostCenterMap", "cDepCode, bIsWCID"},
          {"CA_CostCenter", "cCostCenter"},
          {"ComputationUnit", "cComUnitCode"},
          {"Customer", "cCusCode"},
          {"CustomerClass", "cCCCode"},
          {"Vendor", "cVenCode"},
          {"Department", "cDepCode"},
          {"Code", "iYear, cCode"},
          {"Person", "cPersonCode"},
          {"orvsystem..ua_user", "cUser_Id"},
          {"fItem", "cItem_Class"},
          {"Ca_FxDef", "iFxID"},
          {"Ca_FxClassDef", "iFxCId"},
          {"Ca_FxMapExpDID", "iFxDID"},
          {"Ca_FxMapExpDetails", "iFxDID"},
          {"Ca_CostExpDetail_Period", "cAmoID, cAmoType, iPeriod"},
          {"Ca_AmoTypeName", "cAmoType, localid"},
          account::oneCostCentreAnIssue(),
          account::oneClassAGrade()};
}

// The checks of the ledger that touch its rows.
std::vector<account::Check> outsumItemChecks() {
  using enum account::Check;
  return {lineSum,     issueSum,  lineWithoutItems,      neverSplit,
          unknownItem, classTree, amountWithoutQuantity, quantityWithoutAmount};
}

}  // namespace

Report outsumItem() {
  return {
      .registration = outsumItemRegistration(),
      .reportClass = "clsOutsum_Item",
      .make = makeCoreReport<OutsumItem>,
      .dialog = &summaryDialog(),
      .columns = outsumItemColumns(),
      .layouts = {Layout::summary, Layout::tree, Layout::lines},
      .lineOrder = orderByDocument,
      .lineKeys = {"cVouCode", "cInvCode"},
      .treeLevels = summaryTreeLevels,
      .crossStates = outsumItemStates,
      .codeNames = codeNames,
      .codesNamedElsewhere = codesNamedElsewhere,
      .joinKeys = outsumItemKeys(),
      .ledgerChecks = outsumItemChecks(),
  };
}

}  // namespace quillon::workbench
