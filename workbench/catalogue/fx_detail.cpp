#include "workbench/catalogue/fx_detail.h"

#include <array>

#include "reports/fx_detail/fx_detail.h"
#include "workbench/catalogue/registration_items.h"
#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

// The ledger is of one inventory.
ItemRegistration inventory() {
  ItemRegistration item = reference("cInvCode", "存货", "Inventory", "base.cInvCode", &inventories);
  item.required = true;
  return item;
}

ReportRegistration fxDetailRegistration() {
  ReportRegistration report{.name = "fx-detail",
                            .chinese = "明细账（按成本项目）",
                            .english = "Cost-item detail ledger",
                            .identifier = "0D7E5A4C-3A0B-4C1E-9B7B-64E2C1F7A915"};
  append(report.items,
         {{.key = "iYear",
           .chinese = "会计年度",
           .english = "Year",
           .kind = InputKind::choice,
           .required = true,
           .column = "base.iYear",
           .lookup = &years},
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
          beginning("cInvCCode", "存货分类", "Inventory class", "inv.cInvCCode", inventoryClasses),
          inventory(),
          reference("cWhCode", "仓库", "Warehouse", "base.cWhCode", &warehouses),
          reference("cDepCode", "部门", "Department", "base.cDepCode", &departments),
          batchItem("cBatchIA")});
  append(report.items, freeItems());
  return report;
}

// The inventory is the same in all rows and stands in the heading.
std::vector<ReportColumn> fxDetailColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> all = {
      {"RowNo", "行号", "Line"},
      {"dKeepDate", "记账日期", "Posting date", date},
      {"cVouDate", "单据日期", "Document date", further},
      {"cVouType", "单据类型", "Voucher type"},
      {"cVouCode", "单据号", "Voucher number"},
      {"cPZCode", "凭证号", "Ledger voucher"},
      {"cPZdigest", "摘要", "Digest"},
      {"bRdFlag", "收发类别", "Receipt/issue type"},
      {"cBusType", "业务类型", "Business type"},
      {"cWhCode", "仓库编码", "Warehouse code", further},
      {"cWhName", "仓库", "Warehouse"},
      {"cVenCode", "供应商编码", "Vendor code", further},
      {"cVenName", "供应商", "Vendor", further},
      {"cCusCode", "客户编码", "Customer code", further},
      {"cCusName", "客户", "Customer", further},
      {"cItem_class", "项目大类编码", "Project class code", further},
      {"cItemCName", "项目大类", "Project class", further},
      {"cItemCode", "项目编码", "Project item code", further},
      {"cName", "项目", "Project item", further},
      {"cBusCode", "业务号", "Business number", further},
      {"strContractCode", "合同号", "Contract", further},
      {"cproordercode", "生产订单号", "Production order", further},
      {"iproorderids", "生产订单行标识", "Production order line", internal},
      {"cworkprocodedis", "工序", "Operation", further},
      {"cworkcentercode", "工作中心编码", "Work centre code", further},
      {"csaleordercode", "销售订单号", "Sales order", further},
      {"isaleorderids", "销售订单行标识", "Sales order line", internal},
      {"exoCode", "出口订单号", "Export order", further},
      {"iExRowno", "出口订单行号", "Export order line", internal},
      {"centrustordercode", "委外订单号", "Subcontracting order", further},
      {"cOrderCode", "采购订单号", "Purchase order", further},
      {"cAccounter", "记账人", "Posted by", further},
      {"cBatchia", "批号", "Batch"},
  };
  addFreeItems(all);
  addUserDefinedFields(all);
  all.insert(all.end(), {
                            {"iQuantity", "数量", "Quantity", movement},
                            {"iCost", "单价", "Unit cost", unitCost},
                            {"iPrice", "金额", "Amount", amount},
                        });
  for (ReportColumn& column : all)
    column.ofLine = true;
  all.insert(all.end(), {
                            {"cfxCCode", "项目分类编码", "Cost-item class code", further},
                            {"cfxCName", "项目分类", "Cost-item class"},
                            {"cfxCode", "成本项目编码", "Cost item code"},
                            {"cfxName", "成本项目", "Cost item"},
                            {"iItemQuantity", "成本项目数量", "Cost item quantity", movement},
                            {"iItemCost", "成本项目单价", "Cost item unit cost", unitCost},
                            {"iItemPrice", "成本项目金额", "Cost item amount", amount},
                            {"id", "流水号", "Ledger line", internal},
                            {"datatype", "行类型", "Row kind", internal},
                            {"cInvCode", "存货编码", "Inventory code", internal},
                            {"cInvName", "存货", "Inventory", internal},
                            {"cInvAddCode", "存货代码", "Additional code", internal},
                            {"cInvStd", "规格型号", "Model", internal},
                            {"cUnitName", "计量单位", "Unit", internal},
                            {"cPZID", "凭证标识", "Ledger voucher key", internal},
                            {"iPZID", "凭证分录标识", "Ledger voucher entry", internal},
                        });
  return all;
}

constexpr std::array<CodeAndName, 7> codeNames = {{{"cWhCode", "cWhName"},
                                                   {"cVenCode", "cVenName"},
                                                   {"cCusCode", "cCusName"},
                                                   {"cItem_class", "cItemCName"},
                                                   {"cItemCode", "cName"},
                                                   {"cfxCCode", "cfxCName"},
                                                   {"cfxCode", "cfxName"}}};

// Balances do not add up, so a pivot is of the movements. Whether one is a receipt stands in the ledger alone.
std::string movements(std::string_view table) {
  return "(Select temp.*, line.bRdFlag As ledgerReceipt From " + std::string(table) +
         " temp left join ia_subsidiary line on line.AutoID = temp.id Where temp.datatype = 1) movements";
}

// A row is a part of a line, or a line that is not broken down and has no more rows. A line that is gone from the ledger
// counts as an issue, as in the ledger's layouts.
std::vector<CrossState> movementStates() {
  const auto of = [](std::string_view receipt, std::string_view part, std::string_view line) {
    return "Case When " + std::string(receipt) +
           " Then Case When cfxCode Is Null And iItemQuantity Is Null And iItemPrice Is Null Then " + orZero(line) +
           " Else " + orZero(part) + " End Else 0 End";
  };
  constexpr std::string_view receipt = "IsNull(ledgerReceipt, 0) = 1", issue = "IsNull(ledgerReceipt, 0) = 0";
  return {{receiptKey, of(receipt, "iItemQuantity", "iQuantity"), of(receipt, "iItemPrice", "iPrice")},
          {issueKey, of(issue, "iItemQuantity", "iQuantity"), of(issue, "iItemPrice", "iPrice")}};
}

constexpr PivotSource pivotSource = {.rows = movements, .column = "datatype", .value = "1", .states = movementStates};

// The keys by which the build joins, in its order.
std::vector<account::JoinKey> fxDetailKeys() {
  return {{"ia_subsidiary", "AutoID"}, {"IA_Subsidiary_QC", "AutoID"}, {"Inventory", "cInvCode"},
          {"Ca_FxDef", "iFxID"},       {"Ca_FxClassDef", "iFxCId"},    {"ComputationUnit", "cComUnitCode"},
          {"Warehouse", "cWhCode"},    {"Department", "cDepCode"},     {"Vendor", "cVenCode"},
          {"Customer", "cCusCode"},    {"Rd_Style", "cRdCode"}};
}

// What a drill-through reads of a row.
constexpr std::array<std::string_view, 6> documentColumns = {"cVouType", "cVouCode", "cBusType",
                                                             "iPZID",    "cPZID",    "ID"};
constexpr std::array<std::string_view, 2> sourceDocumentColumns = {"cVouType", "ID"};
constexpr std::array<std::string_view, 3> ledgerVoucherColumns = {"cVouType", "cPZID", "iPZID"};

// The checks of the ledger that touch its rows.
std::vector<account::Check> fxDetailChecks() {
  using enum account::Check;
  return {lineSum,
          openingSum,
          lineWithoutItems,
          openingWithoutItems,
          neverSplit,
          unknownItem,
          classTree,
          amountWithoutQuantity,
          quantityWithoutAmount,
          openingBalance,
          itemOpeningBalance,
          balanceWithoutQuantity,
          periodGap};
}

}  // namespace

Report fxDetail() {
  return {.registration = fxDetailRegistration(),
          .reportClass = "clsFXDetail",
          .make = makeCoreReport<FxDetail>,
          .dialog = &detailDialog(),
          .columns = fxDetailColumns(),
          .layouts = {Layout::ledger, Layout::columnar, Layout::lines},
          .lineOrder = orderByLedger,
          .lineKeys = {"RowNo"},
          .isLedger = true,
          .codeNames = codeNames,
          .pivotSource = &pivotSource,
          .joinKeys = fxDetailKeys(),
          .ledgerChecks = fxDetailChecks(),
          .ledgerLine = "Case When datatype = 1 Then id End",
          .documentColumns = documentColumns,
          .sourceDocumentColumns = sourceDocumentColumns,
          .ledgerVoucherColumns = ledgerVoucherColumns};
}

}  // namespace quillon::workbench
