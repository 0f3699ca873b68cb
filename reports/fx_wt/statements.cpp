#include "reports/fx_wt/statements.h"

#include <string_view>

#include "frame/ledger_columns.h"
#include "frame/statement.h"

namespace quillon::fx_wt {

namespace {

// --- Columns --------------------------------------------------------------------------------------------------------

// The columns of the work and the result table in their order, by name and below as they are selected. Three groups are
// kept apart by the figures of the line and those of its part.
constexpr std::string_view lineColumns =
    "dVouDate,cVouCode,dKeepDate,cAccounter,cBusCode,strContractCode,cproordercode,iproorderids,cworkprocode,cworkcentercode,cworkcentername,cProCode,"
    "csaleordercode,isaleorderids,exoCode,iExRowno,centrustordercode,cpurordercode,cIMOrderCode,cDemandCode,cdemandmemo,"
    "cItem_Class,cItem_Classname,cItemCode,cName,iPzid,cPZdigest,cBusType,cWhCode,cWhName,cCCCode,cCusName,cVCCode,cVenName,cDepName,cHandler,";
constexpr std::string_view partnerColumns = "cCCName,cCusCode,cVCName,cVenCode,cAccDep,";
constexpr std::string_view inventoryColumns = "cInvCCode,cInvCode,cInvName,cInvAddCode,";
constexpr std::string_view freeItems = "cFree1,cFree2,cFree3,cFree4,cFree5,cFree6,cFree7,cFree8,cFree9,cFree10,";
constexpr std::string_view unitColumns = "cInvStd,cComUnitName,cAssComUnitName,";
constexpr std::string_view memoColumns = "cRdCode,cRdName,cMemo";
constexpr std::string_view lineFigures = "iAInQuantity,iInCost,iAInPrice,iAOutQuantity,iOutCost,iAOutPrice";
constexpr std::string_view costItemColumns = "cfxcCode,cfxcName,cfxCode,cfxName,cAmoType,cAmoID,cAmoName";
constexpr std::string_view partFigures =
    "iItemInQuantity,iIteminCost,iIteminPrice,iItemoutQuantity,iItemoutCost,iItemOutPrice,iUnitUsed,iUnitCost";
constexpr std::string_view keyColumns = "cPzID,AutoID,cVouType,PzNoId,cDeptID,costDepName,cBatchia";

// Everything in front of the figures.
std::string describingColumns() {
  return concatenated({lineColumns, documentFields, partnerColumns, inventoryColumns, freeItems, unitColumns,
                       inventoryFields, memoColumns});
}

// A business type gives way to its name, which may be longer than its code.
constexpr std::string_view selectedLine =
    "base.dVouDate,base.cVouCode,base.dKeepDate,base.cAccounter,base.cBusCode,base.strContractCode,base.cproordercode,base.iproorderids,base.cworkprocode,base.cworkcentercode,base.cworkcentername,base.cProCode,"
    "base.csaleordercode,base.isaleorderids,base.exoCode,base.iExRowno,base.centrustordercode,base.cpurordercode,base.cIMOrderCode,base.cDemandCode,base.cdemandmemo,"
    "base.cItem_Class,base.cItemCName as cItem_Classname,base.cItemCode,base.cName,base.iPzid,base.cPZdigest,cast(base.cBusType as nvarchar(200)) as cBusType,base.cWhCode,Warehouse.cWhName,Customer.cCCCode,Customer.cCusName,Vendor.cVCCode,Vendor.cVenName,Department.cDepName,base.cHandler,";
constexpr std::string_view selectedPartners =
    "CustomerClass.cCCName,base.cCusCode,VendorClass.cVCName,base.cVenCode,base.cAccDep,";
constexpr std::string_view selectedInventory =
    "Inventory.cInvCCode,base.cInvCode,Inventory.cInvName,Inventory.cInvAddCode,"
    "base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,"
    "Inventory.cInvStd,Unit1.cComUnitName,Unit2.cComUnitName as cAssComUnitName,"
    "Inventory.cInvDefine1,Inventory.cInvDefine2,Inventory.cInvDefine3,Inventory.cInvDefine4,Inventory.cInvDefine5,Inventory.cInvDefine6,Inventory.cInvDefine7,Inventory.cInvDefine8,"
    "Inventory.cInvDefine9,Inventory.cInvDefine10,Inventory.cInvDefine11,Inventory.cInvDefine12,Inventory.cInvDefine13,Inventory.cInvDefine14,Inventory.cInvDefine15,Inventory.cInvDefine16,";
constexpr std::string_view selectedMemo = "base.cRdCode,Rd_Style.cRdName,base.cMemo,";
constexpr std::string_view selectedLineFigures =
    "base.iAInQuantity,base.iInCost,base.iAInPrice,base.iAOutQuantity,base.iOutCost,base.iAOutPrice,";
// Type 0 is material, which goes by its inventory; any other type is an expense.
constexpr std::string_view selectedCostItem =
    "Ca_FxClassDef.cFxCCode as cfxcCode,Ca_FxClassDef.cFxCName as cfxcName,Ca_Fxdef.cFxCode as cfxCode,Ca_Fxdef.cFxName as cfxName,"
    "Ca_AmoTypeName.cAmoTypeName as cAmoType,"
    "case when Ca_FxMapExpDID.cAmotype = 0 then Ca_FxMapExpDetails.cInvCode else Ca_FxMapExpDetails.cAmoID end as cAmoID,"
    "case when Ca_FxMapExpDID.cAmotype = 0 then inv.cInvName else Ca_CostExpDetail_Period.cAmoName end as cAmoName,";
// The voucher's number is the platform's to fill in.
constexpr std::string_view selectedKeys =
    "base.cPzID,base.AutoID,base.cVouType,cast(null as nvarchar(50)) as PzNoId,CAQ_CostCenterMap.cDeptID,CAQ_CostCenter.cDeptName as costDepName,base.cBatchia";

// `dividend` by `divisor`, neither of them an exact number any more, with `decimals` decimal places.
std::string quotient(std::string_view dividend, std::string_view divisor, int decimals) {
  return concatenated({"cast(cast(", dividend, " as float)/cast(", divisor, " as float) as decimal(38,",
                       std::to_string(decimals), "))"});
}
// A quantity that can be divided by: null stands for 0.
std::string orNull(std::string_view quantity) {
  return concatenated({"nullif(", quantity, ",0)"});
}

std::string inboundUnitCost(const Build& build) {
  return quotient("base_Item.iItemInPrice", orNull("base_Item.iItemInQuantity"), build.unitCostDecimals);
}
std::string outboundUnitCost(const Build& build) {
  return quotient("base_Item.iItemOutPrice", orNull("base_Item.iItemOutQuantity"), build.unitCostDecimals);
}
// How much of the part goes into one unit of the line.
std::string unitUsage(const Build& build, std::string_view partQuantity, std::string_view lineQuantity) {
  return quotient(orNull(partQuantity), orNull(lineQuantity), build.quantityDecimals);
}

std::string selectedPartFigures(const Build& build) {
  return concatenated({
      "base_Item.iItemInQuantity,",
      inboundUnitCost(build),
      " as iIteminCost,base_Item.iItemInPrice as iIteminPrice,base_Item.iItemOutQuantity as iItemoutQuantity,",
      outboundUnitCost(build),
      " as iItemoutCost,base_Item.iItemOutPrice,",
      "case when base.bRdFlag=1 then ",
      unitUsage(build, "base_Item.iItemInQuantity", "base.iAInQuantity"),
      " else ",
      unitUsage(build, "base_Item.iItemOutQuantity", "base.iAOutQuantity"),
      " end as iUnitUsed,",
      "case when base.bRdFlag=1 then ",
      inboundUnitCost(build),
      " else ",
      outboundUnitCost(build),
      " end as iUnitCost,",
  });
}

std::string selectedColumns(const Build& build) {
  return concatenated({selectedLine, lineDocumentFields, selectedPartners, selectedInventory, selectedMemo,
                       selectedLineFigures, selectedCostItem, selectedPartFigures(build), selectedKeys});
}

// --- Sources --------------------------------------------------------------------------------------------------------

// A master that has two rows for one code doubles the lines that name it: docs/known-behaviour.md lists them.
constexpr std::string_view splitJoin =
    "left join ( select iItemDetailID,iItemID,iSubID,SUM(iItemInQuantity) iItemInQuantity,SUM(iItemInPrice) iItemInPrice,SUM(iItemOutPrice) iItemOutPrice,SUM(iItemOutQuantity) iItemOutQuantity,bRdFlag,iMonth,iYear,iItemInCost,iItemOutCost from ia_subsidiary_Item "
    "group by iItemDetailID,iItemID,iSubID,bRdFlag,iMonth,iYear,iItemInCost,iItemOutCost"
    ") base_Item on base_Item.isubid=base.autoid ";
constexpr std::string_view placeJoins =
    "left join Warehouse on base.cWhCode=Warehouse.cWhCode "
    "left join Department on base.cAccDep=Department.cDepCode "
    "left join CAQ_CostCenterMap on base.cAccDep=CAQ_CostCenterMap.cBusID "
    "left join CAQ_CostCenter on CAQ_CostCenterMap.cDeptID=CAQ_CostCenter.cDeptID ";
// A group may have several units beside the main one; the first by code stands for them.
constexpr std::string_view inventoryJoins =
    "left join Inventory on base.cInvCode=Inventory.cInvCode "
    "left join ComputationUnit Unit1 on Inventory.cComUnitCode=Unit1.cComUnitCode "
    "left join (select cGroupCode,min(cComUnitCode) as cComUnitCode from ComputationUnit where bMainUnit=0 group by cGroupCode) FirstUnit on Inventory.cGroupCode=FirstUnit.cGroupCode "
    "left join ComputationUnit Unit2 on FirstUnit.cComUnitCode=Unit2.cComUnitCode ";
constexpr std::string_view partnerJoins =
    "left join Vendor on base.cVenCode=Vendor.cVenCode "
    "left join VendorClass on Vendor.cVCCode=VendorClass.cVCCode "
    "left join Customer on base.cCusCode=Customer.cCusCode "
    "left join CustomerClass on Customer.cCCCode=CustomerClass.cCCCode "
    "left join Rd_Style on base.cRdCode=Rd_Style.cRdCode ";
// What a part stands for: a material or an expense, with the expense's name in the line's own month.
constexpr std::string_view costItemJoins =
    "left join Ca_Fxdef on base_Item.iItemID=Ca_Fxdef.iFxID "
    "left join Ca_FxClassDef on Ca_Fxdef.cFxCID=Ca_FxClassDef.iFxCId "
    "left join Ca_FxMapExpDID on base_Item.iItemDetailID=Ca_FxMapExpDID.iFxDID "
    "left join Ca_FxMapExpDetails on base_Item.iItemDetailID=Ca_FxMapExpDetails.iFxDID and Ca_Fxdef.bHasDetails=1 "
    "left join Inventory inv on Ca_FxMapExpDetails.cInvCode=inv.cInvCode "
    "left join Ca_CostExpDetail_Period on Ca_FxMapExpDetails.cAmoID=Ca_CostExpDetail_Period.cAmoID "
    "and Ca_FxMapExpDetails.cAmotype=Ca_CostExpDetail_Period.cAmoType and Ca_FxMapExpDetails.cInvCode is null "
    "and Ca_CostExpDetail_Period.iPeriod=Cast(base.iYear as nVarchar(10)) + Case When Len(base.iMonth) = 1 Then '0' else '' End + Cast(base.iMonth as nVarchar(10)) "
    "left join Ca_AmoTypeName on Ca_FxMapExpDID.cAmotype=Ca_AmoTypeName.cAmoType and Ca_AmoTypeName.localid=N'";

std::string fromLedger(const Build& build) {
  return concatenated({" from ia_subsidiary base ", splitJoin, placeJoins, inventoryJoins, partnerJoins, costItemJoins,
                       build.language, "'"});
}

// Receipt adjustments that adjust nothing are left out.
constexpr std::string_view adjustmentsWithAmount =
    " And Not (base.cVouType = N'20' And isnull(base.IAInPrice,0) = 0 And IsNULL(base.iDebitDifCost,0) = 0 And IsNULL(base.iCreditDifCost,0) = 0)";

// --- Grouping -------------------------------------------------------------------------------------------------------

constexpr std::string_view lineSums =
    "Sum(iAInQuantity) as iAInQuantity,sum(iInCost) as iInCost,sum(iAInPrice) as iAInPrice,sum(iAOutQuantity) as iAOutQuantity,sum(iOutCost) as iOutCost,sum(iAOutPrice) as iAOutPrice";
constexpr std::string_view partSums =
    "sum(iItemInQuantity) as iItemInQuantity,sum(iIteminCost) as iIteminCost,sum(iIteminPrice) as iIteminPrice,sum(iItemoutQuantity) as iItemoutQuantity,sum(iItemoutCost) as iItemoutCost,sum(iItemOutPrice) as iItemOutPrice,sum(iUnitUsed) as iUnitUsed,sum(iUnitCost) as iUnitCost";

// Every column, with the figures as they are given.
std::string columns(std::string_view ofLine, std::string_view ofPart) {
  return concatenated({describingColumns(), ",", ofLine, ",", costItemColumns, ",", ofPart, ",", keyColumns});
}

}  // namespace

std::string createWorkTable(const Build& build) {
  return concatenated({" select top 0 ", selectedColumns(build), " into ", build.work.reference(), fromLedger(build)});
}

std::string insertLines(const Build& build) {
  return concatenated({
      "insert into ",
      build.work.reference(),
      " (",
      columns(lineFigures, partFigures),
      ") select ",
      selectedColumns(build),
      fromLedger(build),
      " where ",
      build.condition,
      adjustmentsWithAmount,
      " order by isnull(bakID,base.AutoID)",
  });
}

std::string nameBusinessTypes(const Build& build) {
  return "Update " + build.work.reference() + " set cBusType=AA.EnumName from " + build.work.reference() +
         " Wt inner join aa_enum AA on  Wt.cBusType=AA.EnumCode where AA.EnumType='IA.BusType' and "
         "AA.LocaleId=DBO.UDF_GetLocaleID()";
}

std::string createResult(const Build& build) {
  return concatenated({
      " select ",
      columns(lineSums, partSums),
      " into ",
      build.resultTable,
      " from ",
      build.work.reference(),
      " group by ",
      describingColumns(),
      ",",
      costItemColumns,
      ",",
      keyColumns,
  });
}

}  // namespace quillon::fx_wt
