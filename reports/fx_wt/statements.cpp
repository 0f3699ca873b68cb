#include "reports/fx_wt/statements.h"

#include <array>
#include <string_view>

#include "frame/column_list.h"
#include "frame/cost_items.h"
#include "frame/ledger_columns.h"
#include "frame/statement.h"

namespace quillon::fx_wt {

namespace {

// --- Columns --------------------------------------------------------------------------------------------------------

// `dividend` by `divisor`, neither of them an exact number any more, with `decimals` decimal places.
std::string quotient(std::string_view dividend, std::string_view divisor, int decimals) {
  return concatenated({"cast(cast(", dividend, " as float)/cast(", divisor, " as float) as decimal(38,",
                       std::to_string(decimals), "))"});
}
// A quantity to divide by: null in place of 0.
std::string orNull(std::string_view quantity) {
  return concatenated({"nullif(", quantity, ",0)"});
}
// `inbound` for a receipt, `outbound` for an issue.
std::string byDirection(std::string_view inbound, std::string_view outbound) {
  return concatenated({"case when base.bRdFlag=1 then ", inbound, " else ", outbound, " end"});
}

std::string inboundUnitCost(const Build& build) {
  return quotient("base_Item.iItemInPrice", orNull("base_Item.iItemInQuantity"), build.unitCostDecimals);
}
std::string outboundUnitCost(const Build& build) {
  return quotient("base_Item.iItemOutPrice", orNull("base_Item.iItemOutQuantity"), build.unitCostDecimals);
}
std::string unitCost(const Build& build) {
  return byDirection(inboundUnitCost(build), outboundUnitCost(build));
}
// How much of the part goes into one unit of the line.
std::string unitUsage(const Build& build) {
  return byDirection(
      quotient(orNull("base_Item.iItemInQuantity"), orNull("base.iAInQuantity"), build.quantityDecimals),
      quotient(orNull("base_Item.iItemOutQuantity"), orNull("base.iAOutQuantity"), build.quantityDecimals));
}

std::string expenseItemCode(const Build&) {
  return expenseItem(lowerCaseWords, "Ca_FxMapExpDetails.cInvCode", "Ca_FxMapExpDetails.cAmoID");
}
std::string expenseItemName(const Build&) {
  return expenseItem(lowerCaseWords, "inv.cInvName", "Ca_CostExpDetail_Period.cAmoName");
}

constexpr std::string_view masterInventoryFields =
    "Inventory.cInvDefine1,Inventory.cInvDefine2,Inventory.cInvDefine3,Inventory.cInvDefine4,Inventory.cInvDefine5,Inventory.cInvDefine6,Inventory.cInvDefine7,Inventory.cInvDefine8,"
    "Inventory.cInvDefine9,Inventory.cInvDefine10,Inventory.cInvDefine11,Inventory.cInvDefine12,Inventory.cInvDefine13,Inventory.cInvDefine14,Inventory.cInvDefine15,Inventory.cInvDefine16,";

// A column of the work and the result table.
struct Column {
  std::string_view name;
  std::string_view source = {};  // what it is selected from; empty for a computed column
  std::string_view sum = {};     // the sum in the result table; empty for a column that is grouped by
  std::string (*computed)(const Build&) = nullptr;  // gives the expression that the column is selected from
};

// In the tables' order.
constexpr std::array columns{
    Column{"dVouDate", "base.dVouDate"},
    Column{"cVouCode", "base.cVouCode"},
    Column{"dKeepDate", "base.dKeepDate"},
    Column{"cAccounter", "base.cAccounter"},
    Column{"cBusCode", "base.cBusCode"},
    Column{"strContractCode", "base.strContractCode"},
    Column{"cproordercode", "base.cproordercode"},
    Column{"iproorderids", "base.iproorderids"},
    Column{"cworkprocode", "base.cworkprocode"},
    Column{"cworkcentercode", "base.cworkcentercode"},
    Column{"cworkcentername", "base.cworkcentername"},
    Column{"cProCode", "base.cProCode"},
    Column{"csaleordercode", "base.csaleordercode"},
    Column{"isaleorderids", "base.isaleorderids"},
    Column{"exoCode", "base.exoCode"},
    Column{"iExRowno", "base.iExRowno"},
    Column{"centrustordercode", "base.centrustordercode"},
    Column{"cpurordercode", "base.cpurordercode"},
    Column{"cIMOrderCode", "base.cIMOrderCode"},
    Column{"cDemandCode", "base.cDemandCode"},
    Column{"cdemandmemo", "base.cdemandmemo"},
    Column{"cItem_Class", "base.cItem_Class"},
    Column{"cItem_Classname", "base.cItemCName as cItem_Classname"},
    Column{"cItemCode", "base.cItemCode"},
    Column{"cName", "base.cName"},
    Column{"iPzid", "base.iPzid"},
    Column{"cPZdigest", "base.cPZdigest"},
    // A business type gives way to its name, which may be longer than its code.
    Column{"cBusType", "cast(base.cBusType as nvarchar(200)) as cBusType"},
    Column{"cWhCode", "base.cWhCode"},
    Column{"cWhName", "Warehouse.cWhName"},
    Column{"cCCCode", "Customer.cCCCode"},
    Column{"cCusName", "Customer.cCusName"},
    Column{"cVCCode", "Vendor.cVCCode"},
    Column{"cVenName", "Vendor.cVenName"},
    Column{"cDepName", "Department.cDepName"},
    Column{"cHandler", "base.cHandler"},
    Column{documentFields, lineDocumentFields},
    Column{"cCCName", "CustomerClass.cCCName"},
    Column{"cCusCode", "base.cCusCode"},
    Column{"cVCName", "VendorClass.cVCName"},
    Column{"cVenCode", "base.cVenCode"},
    Column{"cAccDep", "base.cAccDep"},
    Column{"cInvCCode", "Inventory.cInvCCode"},
    Column{"cInvCode", "base.cInvCode"},
    Column{"cInvName", "Inventory.cInvName"},
    Column{"cInvAddCode", "Inventory.cInvAddCode"},
    Column{"cFree1", "base.cFree1"},
    Column{"cFree2", "base.cFree2"},
    Column{"cFree3", "base.cFree3"},
    Column{"cFree4", "base.cFree4"},
    Column{"cFree5", "base.cFree5"},
    Column{"cFree6", "base.cFree6"},
    Column{"cFree7", "base.cFree7"},
    Column{"cFree8", "base.cFree8"},
    Column{"cFree9", "base.cFree9"},
    Column{"cFree10", "base.cFree10"},
    Column{"cInvStd", "Inventory.cInvStd"},
    Column{"cComUnitName", "Unit1.cComUnitName"},
    Column{"cAssComUnitName", "Unit2.cComUnitName as cAssComUnitName"},
    Column{inventoryFields, masterInventoryFields},
    Column{"cRdCode", "base.cRdCode"},
    Column{"cRdName", "Rd_Style.cRdName"},
    Column{"cMemo", "base.cMemo"},
    Column{"iAInQuantity", "base.iAInQuantity", "Sum(iAInQuantity) as iAInQuantity"},
    Column{"iInCost", "base.iInCost", "sum(iInCost) as iInCost"},
    Column{"iAInPrice", "base.iAInPrice", "sum(iAInPrice) as iAInPrice"},
    Column{"iAOutQuantity", "base.iAOutQuantity", "sum(iAOutQuantity) as iAOutQuantity"},
    Column{"iOutCost", "base.iOutCost", "sum(iOutCost) as iOutCost"},
    Column{"iAOutPrice", "base.iAOutPrice", "sum(iAOutPrice) as iAOutPrice"},
    Column{"cfxcCode", "Ca_FxClassDef.cFxCCode as cfxcCode"},
    Column{"cfxcName", "Ca_FxClassDef.cFxCName as cfxcName"},
    Column{"cfxCode", "Ca_Fxdef.cFxCode as cfxCode"},
    Column{"cfxName", "Ca_Fxdef.cFxName as cfxName"},
    Column{"cAmoType", "Ca_AmoTypeName.cAmoTypeName as cAmoType"},
    Column{.name = "cAmoID", .computed = expenseItemCode},
    Column{.name = "cAmoName", .computed = expenseItemName},
    Column{"iItemInQuantity", "base_Item.iItemInQuantity", "sum(iItemInQuantity) as iItemInQuantity"},
    Column{.name = "iIteminCost", .sum = "sum(iIteminCost) as iIteminCost", .computed = inboundUnitCost},
    Column{"iIteminPrice", "base_Item.iItemInPrice as iIteminPrice", "sum(iIteminPrice) as iIteminPrice"},
    Column{"iItemoutQuantity", "base_Item.iItemOutQuantity as iItemoutQuantity",
           "sum(iItemoutQuantity) as iItemoutQuantity"},
    Column{.name = "iItemoutCost", .sum = "sum(iItemoutCost) as iItemoutCost", .computed = outboundUnitCost},
    Column{"iItemOutPrice", "base_Item.iItemOutPrice", "sum(iItemOutPrice) as iItemOutPrice"},
    Column{.name = "iUnitUsed", .sum = "sum(iUnitUsed) as iUnitUsed", .computed = unitUsage},
    Column{.name = "iUnitCost", .sum = "sum(iUnitCost) as iUnitCost", .computed = unitCost},
    Column{"cPzID", "base.cPzID"},
    Column{"AutoID", "base.AutoID"},
    Column{"cVouType", "base.cVouType"},
    // The voucher's number is the platform's to fill in.
    Column{"PzNoId", "cast(null as nvarchar(50)) as PzNoId"},
    Column{"cDeptID", "CAQ_CostCenterMap.cDeptID"},
    Column{"costDepName", "CAQ_CostCenter.cDeptName as costDepName"},
    Column{"cBatchia", "base.cBatchia"},
};
static_assert(allEndWithTheirNames(columns, &Column::source) && allEndWithTheirNames(columns, &Column::sum));

std::string selectedColumns(const Build& build) {
  const auto source = [&](const Column& column) {
    return column.computed ? concatenated({column.computed(build), " as ", column.name}) : std::string(column.source);
  };
  return columnList(columns, source, ",");
}
std::string insertedColumns() {
  return columnList(columns, &Column::name, ",");
}
std::string summedColumns() {
  return columnList(
      columns, [](const Column& column) { return column.sum.empty() ? column.name : column.sum; }, ",");
}
std::string groupedColumns() {
  return columnList(
      columns, [](const Column& column) { return column.sum.empty() ? column.name : ""; }, ",");
}

// --- Sources --------------------------------------------------------------------------------------------------------

// The ledger lines with their parts and masters. A master that has two rows for one code doubles the lines that name it:
// docs/known-behaviour.md lists them.
std::string fromLedger(const Build& build) {
  return concatenated({
      " from ia_subsidiary base ",
      "left join ( select iItemDetailID,iItemID,iSubID,SUM(iItemInQuantity) iItemInQuantity,SUM(iItemInPrice) iItemInPrice,SUM(iItemOutPrice) iItemOutPrice,SUM(iItemOutQuantity) iItemOutQuantity,bRdFlag,iMonth,iYear,iItemInCost,iItemOutCost from ia_subsidiary_Item ",
      "group by iItemDetailID,iItemID,iSubID,bRdFlag,iMonth,iYear,iItemInCost,iItemOutCost",
      ") base_Item on base_Item.isubid=base.autoid ",
      "left join Warehouse on base.cWhCode=Warehouse.cWhCode ",
      "left join Department on base.cAccDep=Department.cDepCode ",
      "left join CAQ_CostCenterMap on base.cAccDep=CAQ_CostCenterMap.cBusID ",
      "left join CAQ_CostCenter on CAQ_CostCenterMap.cDeptID=CAQ_CostCenter.cDeptID ",
      "left join Inventory on base.cInvCode=Inventory.cInvCode ",
      "left join ComputationUnit Unit1 on Inventory.cComUnitCode=Unit1.cComUnitCode ",
      // A group may have several units beside the main one; the first by code is shown.
      "left join (select cGroupCode,min(cComUnitCode) as cComUnitCode from ComputationUnit where bMainUnit=0 group by cGroupCode) FirstUnit on Inventory.cGroupCode=FirstUnit.cGroupCode ",
      "left join ComputationUnit Unit2 on FirstUnit.cComUnitCode=Unit2.cComUnitCode ",
      "left join Vendor on base.cVenCode=Vendor.cVenCode ",
      "left join VendorClass on Vendor.cVCCode=VendorClass.cVCCode ",
      "left join Customer on base.cCusCode=Customer.cCusCode ",
      "left join CustomerClass on Customer.cCCCode=CustomerClass.cCCCode ",
      "left join Rd_Style on base.cRdCode=Rd_Style.cRdCode ",
      "left join Ca_Fxdef on base_Item.iItemID=Ca_Fxdef.iFxID ",
      "left join Ca_FxClassDef on Ca_Fxdef.cFxCID=Ca_FxClassDef.iFxCId ",
      // The material or the expense that a part is, with the expense's name in the line's own month.
      "left join Ca_FxMapExpDID on base_Item.iItemDetailID=Ca_FxMapExpDID.iFxDID ",
      "left join Ca_FxMapExpDetails on base_Item.iItemDetailID=Ca_FxMapExpDetails.iFxDID and Ca_Fxdef.bHasDetails=1 ",
      "left join Inventory inv on Ca_FxMapExpDetails.cInvCode=inv.cInvCode ",
      "left join Ca_CostExpDetail_Period on Ca_FxMapExpDetails.cAmoID=Ca_CostExpDetail_Period.cAmoID ",
      "and Ca_FxMapExpDetails.cAmotype=Ca_CostExpDetail_Period.cAmoType and Ca_FxMapExpDetails.cInvCode is null ",
      "and Ca_CostExpDetail_Period.iPeriod=",
      linePeriod,
      " ",
      "left join Ca_AmoTypeName on Ca_FxMapExpDID.cAmotype=Ca_AmoTypeName.cAmoType and Ca_AmoTypeName.localid=N'",
      build.language,
      "'",
  });
}

}  // namespace

std::string createWorkTable(const Build& build) {
  return concatenated({
      " select top 0 ",
      selectedColumns(build),
      " into " + build.work.reference(),
      fromLedger(build),
  });
}

std::string insertLines(const Build& build) {
  return concatenated({
      "insert into " + build.work.reference() + " (",
      insertedColumns(),
      ") select ",
      selectedColumns(build),
      fromLedger(build),
      " where " + build.condition,
      // Receipt adjustments that adjust nothing are left out.
      " And Not (base.cVouType = N'20' And isnull(base.IAInPrice,0) = 0 And IsNULL(base.iDebitDifCost,0) = 0 And IsNULL(base.iCreditDifCost,0) = 0)",
      " order by isnull(bakID,base.AutoID)",
  });
}

std::string createResult(const Build& build) {
  return concatenated({
      " select ",
      summedColumns(),
      " into " + build.resultTable,
      " from " + build.work.reference(),
      " group by ",
      groupedColumns(),
  });
}

}  // namespace quillon::fx_wt
