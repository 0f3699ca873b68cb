#include "reports/sfc_item/statements.h"

#include "frame/cost_items.h"
#include "frame/ledger_columns.h"
#include "frame/statement.h"

namespace quillon::sfc_item {

namespace {

// Columns of the ledger line and its masters, as they are selected.
constexpr std::string_view lineColumns =
    "base.autoid,wh.cWhCode, wh.cWhName, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode as cInvAddCode, unit.ccomunitcode As cUnitCode, unit.cComUnitName As cUnitName, ";
constexpr std::string_view lineDepartmentAndDates = "dep.cDepCode, dep.cDepName, base.dKeepDate, base.dVouDate, ";

// Columns of the result and detail tables, by their bare names.
constexpr std::string_view departmentDatesAndCostItem = "cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName, ";

// Where the rows come from: the cost items of the ledger lines; or, once the cost-item breakdown has a start month of
// its own, the opening balances that were entered for that month.
constexpr std::string_view fromLedgerCostItems =
    "from ia_subsidiary_Item item With(NoLock) \r\n"
    "Left Join ia_subsidiary base With(NoLock) ON item.iSubID = base.AutoID";
constexpr std::string_view fromOpeningCostItems =
    "from IA_Subsidiary_QC_Item item With(NoLock) \r\n"
    "Left Join IA_Subsidiary_QC base With(NoLock) ON item.isubqcid = base.AutoID";
constexpr std::string_view fromLedgerLines = "from ia_subsidiary base With(NoLock) ";
constexpr std::string_view fromOpeningLines = "from IA_Subsidiary_QC base With(NoLock) ";

constexpr std::string_view masterJoins =
    "Left Join Warehouse wh With(NoLock) ON wh.cWhCode = base.cWhCode\r\n"
    "left join Inventory inv With(NoLock) ON base.cInvCode = inv.cInvCode\r\n"
    "left join ComputationUnit unit With(NoLock) on inv.cComunitCode = unit.ccomunitcode \r\n"
    "left join Department dep With(NoLock) on dep.cDepCode = base.cDepCode";
constexpr std::string_view costItemJoin = "Left Join Ca_FxDef With(Nolock) ON item.iItemID = Ca_FxDef.ifxID";

// Opening balances are ledger lines of voucher type 34.
std::string openingLinesOf(const std::string& year) {
  return "And base.cvoutype = N'34' And base.iYear = " + year;
}
std::string movementsOf(const std::string& year) {
  return "And base.iMonth > 0 And base.iYear = " + year;
}

}  // namespace

std::string createResultTable(const Build& build) {
  const bool byClass = build.mode == ReportMode::costItemClass;
  return joined({
      "Select Top 0 " + std::string(lineColumns),
      lineBatchAndFreeItems,
      inventoryFields,
      // The department follows the document fields on their last line.
      std::string(lineDocumentFields) + std::string(lineDepartmentAndDates),
      byClass ? "fxcls.cFxCCode As cFXCode, fxcls.cfxCName As cFXName, " : "Ca_FxDef.cFxCode, Ca_FxDef.cFxName, ",
      "base.IAInQuantity As iQcQuantity, base.IAInPrice As iQcMoney, base.IAInQuantity As iInQuantity, base.IAInPrice As iInMoney, ",
      "base.IAInQuantity As iOutQuantity, base.IAInPrice As iOutMoney, base.IAInQuantity As iQmQuantity, base.IAInPrice As iQmMoney, ",
      "Cast('' As nVarChar(2)) as cJudgeQuantity, Cast('' As nVarChar(2)) as cJudgeMoney, Cast('' As nVarChar(2)) as cJudgeCost, ",
      "Cast('' As nVarChar(40)) as cState, Cast('' As int) as iState, base.IAInQuantity As iQuantity, base.IAInPrice As iMoney ,Cast('' As nVarChar(10)) as cFSType ,",
      "Cast('' As nVarChar(128)) as cFxCName, Cast('' As nVarChar(60)) As cAmoCode, Cast('' As nVarChar(255)) As cAmoName ",
      "Into " + build.resultTable + " ",
      fromLedgerCostItems,
      masterJoins,
      // The table stays empty: this join only has to give the columns their types.
      "Left Join Ca_FxDef With(Nolock) ON item.iItemDetailID = Ca_FxDef.ifxID",
      byClass ? "left join Ca_FxClassDef fxcls With(NoLock) on Ca_FxDef.cFxCID = fxcls.iFxCID" : "",
  });
}

std::string createDetailTable(const Build& build) {
  return "Select Top 0 * Into " + build.detail.reference() + " From " + build.resultTable;
}

// --- Cost-item filler -----------------------------------------------------------------------------------------------

namespace {

constexpr std::string_view fillerColumns =
    "(autoid,cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName, ";
constexpr std::string_view fillerAmounts =
    "cState, iState, iQuantity, iMoney,\r\n"
    "iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney)";

std::string costItem(const Build& build) {
  return std::string(costItemColumns(build.mode)) + ",";
}
constexpr std::string_view noCostItemColumns = "N'' As cFXCode, N'' As cFXName,";

// The class of a cost item, and that class's ancestor at the chosen grade.
std::string classJoins(const Build& build) {
  if (build.mode != ReportMode::costItemClass) return {};
  return joined({
      "left join Ca_FxClassDef With(NoLock) on Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCID",
      "left join Ca_FxClassDef fxcls With(NoLock) on Ca_FxClassDef.cFxCCode like (fxcls.cFxCCode + '%') And fxcls.iGrade = " +
          build.conditions.grade,
  });
}

std::string openingState(const StateTexts& states) {
  return "N'" + states.opening + "' As cState,1 As iState,";
}
std::string movementState(const StateTexts& states) {
  return "Case When base.bRdFlag = 1 Then N'" + states.receipt + "' Else N'" + states.issue +
         "' End As cState,Case When base.bRdFlag = 1 Then 2 Else 3 End As iState,";
}

}  // namespace

std::string insertCostItemOpenings(const Build& build, const StateTexts& states) {
  const FilterConditions& conditions = build.conditions;
  return joined({
      "Insert Into " + build.detail.reference(),
      fillerColumns,
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      departmentDatesAndCostItem,
      fillerAmounts,
      "Select " + std::string(lineColumns),
      lineBatchAndFreeItems,
      inventoryFields,
      lineDocumentFields,
      lineDepartmentAndDates,
      costItem(build),
      openingState(states),
      "(IsNull(item.iItemInquantity, 0) - IsNull(item.iItemOutquantity, 0)) As iQuantity, (IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0)) As iMoney ,",
      "0 As iQcQuantity, 0 As iQcMoney, ",
      "0 As iInQuantity, 0 As iInMoney, 0 As iOutQuantity, 0 As iOutMoney, ",
      "(IsNull(item.iItemInquantity, 0) - IsNull(item.iItemOutquantity, 0)) As iQmQuantity , (IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0))  As iQmMoney",
      conditions.monthActive() ? fromOpeningCostItems : fromLedgerCostItems,
      masterJoins,
      costItemJoin,
      classJoins(build),
      conditions.where,
      " " + openingLinesOf(conditions.year),
  });
}

std::string insertCostItemMovements(const Build& build, const StateTexts& states) {
  const FilterConditions& conditions = build.conditions;
  return joined({
      "Insert Into " + build.detail.reference(),
      fillerColumns,
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      departmentDatesAndCostItem,
      fillerAmounts,
      "Select " + std::string(lineColumns),
      lineBatchAndFreeItems,
      inventoryFields,
      lineDocumentFields,
      lineDepartmentAndDates,
      costItem(build),
      movementState(states),
      "(IsNull(item.iItemInQuantity, 0) + IsNull(item.iItemOutQuantity, 0)) As iQuantity, (IsNull(item.iItemInPrice, 0) + IsNull(item.iItemOutPrice, 0)) As iMoney ,",
      // The money column has no "As": it takes its place by position.
      "0 As iQcQuantity, 0 As iQcMoney, 0 As iInQuantity, 0 iInMoney, ",
      "0 As iOutQuantity, 0 As iOutMoney, ",
      "(IsNull(item.iItemInquantity, 0) - IsNull(item.iItemOutquantity, 0)) As iQmQuantity, (IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0))  As iQmMoney",
      fromLedgerCostItems,
      masterJoins,
      costItemJoin,
      classJoins(build),
      conditions.where,
      conditions.month,
      " " + movementsOf(conditions.year),
  });
}

std::string insertLineOpenings(const Build& build, const StateTexts& states) {
  const FilterConditions& conditions = build.conditions;
  return joined({
      "Insert Into " + build.detail.reference(),
      fillerColumns,
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      departmentDatesAndCostItem,
      fillerAmounts,
      "Select " + std::string(lineColumns),
      lineBatchAndFreeItems,
      inventoryFields,
      lineDocumentFields,
      lineDepartmentAndDates,
      noCostItemColumns,
      openingState(states),
      "null As  iQuantity, null As iMoney ,",
      "(IsNull(base.IaInQuantity, 0) - IsNull(base.IaOutQuantity, 0)) As iQcQuantity, (IsNull(base.iainprice, 0) - IsNull(base.iaoutprice, 0)) As iQcMoney, ",
      "0 As iInQuantity, 0 As iInMoney, 0 As iOutQuantity, 0 As iOutMoney, ",
      "(IsNull(base.IaInQuantity, 0) - IsNull(base.IaOutQuantity, 0)) As iQmQuantity, (IsNull(base.iainprice, 0) - IsNull(base.iaoutprice, 0))  As iQmMoney",
      conditions.monthActive() ? fromOpeningLines : fromLedgerLines,
      masterJoins,
      conditions.where,
      " " + openingLinesOf(conditions.year),
  });
}

std::string insertLineMovements(const Build& build, const StateTexts& states) {
  const FilterConditions& conditions = build.conditions;
  return joined({
      "Insert Into " + build.detail.reference(),
      fillerColumns,
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      departmentDatesAndCostItem,
      fillerAmounts,
      "Select " + std::string(lineColumns),
      lineBatchAndFreeItems,
      inventoryFields,
      lineDocumentFields,
      lineDepartmentAndDates,
      noCostItemColumns,
      movementState(states),
      // The rows of the line's cost items hold its movement; here it would count a second time.
      "null As  iQuantity, null As iMoney ,",
      "0 As iQcQuantity, 0 As iQcMoney, IsNull(base.IaInQuantity, 0) As iInQuantity, IsNull(base.iainprice, 0) As iInMoney, ",
      "IsNull(base.IaOutQuantity, 0) As iOutQuantity, IsNull(base.iaoutprice, 0) As iOutMoney, ",
      "(IsNull(base.IaInQuantity, 0) - IsNull(base.IaOutQuantity, 0)) As iQmQuantity, (IsNull(base.iainprice, 0) - IsNull(base.iaoutprice, 0))  As iQmMoney",
      fromLedgerLines,
      masterJoins,
      conditions.where,
      conditions.month,
      " " + movementsOf(conditions.year),
  });
}

std::string turnIntoOpenings(const Build& build, const StateTexts& states) {
  return joined({
      "Update " + build.detail.reference() + " Set cState = N'" + states.opening + "', iState = 1,",
      "iQuantity = Case When left(iState, 1) = N'2' Then iQuantity else - iQuantity end,",
      "iMoney = Case When Left(iState, 1) = N'2' Then iMoney else - iMoney end,",
      "iQcQuantity = IsNull(iInQuantity, 0) - IsNull(iOutQuantity, 0),",
      "iQcMoney = IsNull(iInMoney, 0) - IsNull(iOutMoney, 0),",
      "iInQuantity = 0, iInMoney = 0, iOutQuantity = 0, iOutMoney = 0",
      "Where IsNull(iState, 0) <> 1",
      build.conditions.opening,
  });
}

std::string insertClosings(const Build& build, const StateTexts& states) {
  return joined({
      "Insert Into " + build.detail.reference(),
      fillerColumns,
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      departmentDatesAndCostItem,
      "cState, iState, iQuantity, iMoney)",
      "Select autoid, cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName, ",
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      departmentDatesAndCostItem,
      "N'" + states.closing + "', 4 As iState,",
      "iQuantity = iQmQuantity,",
      "iMoney = iQmMoney ",
      "From " + build.detail.reference() + "  where isnull(cfxcode,N'')<>N''  ",
  });
}

std::string copyCostItemsToWholeLines(const Build& build) {
  const std::string detail = build.detail.reference();
  return joined({
      "update old set cfxcode=oldquan.cfxcode,cfxname=oldquan.cfxname ",
      "From " + detail + " old inner join " + detail +
          " oldquan on old.autoid=oldquan.autoid and old.iState=oldquan.iState ",
      "where isnull(old.cfxcode,N'')=N'' and ISNULL(oldquan.cfxcode,N'')<>N''",
  });
}

// --- Expense-type filler --------------------------------------------------------------------------------------------

namespace {

constexpr std::string_view expenseColumns =
    " (cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName, ";
constexpr std::string_view expenseAmounts =
    "iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney, cFxCName, cAmoCode, cAmoName)";

constexpr std::string_view selectedExpenseLine =
    "Select wh.cWhCode, wh.cWhName, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode, unit.ccomunitcode As cUnitCode, unit.cComUnitName As cUnitName, \r\n"
    // The free items are those of the expense mapping, not of the ledger line.
    "base.cBatchia,Ca_FxMapExpDetails.cFree1,Ca_FxMapExpDetails.cFree2,Ca_FxMapExpDetails.cFree3,Ca_FxMapExpDetails.cFree4,Ca_FxMapExpDetails.cFree5,Ca_FxMapExpDetails.cFree6,Ca_FxMapExpDetails.cFree7,Ca_FxMapExpDetails.cFree8,Ca_FxMapExpDetails.cFree9,Ca_FxMapExpDetails.cFree10,";
constexpr std::string_view expenseTypeColumn = "Ca_AmoTypeName.cAmoTypeName as cfxCName,  ";

// Warehouse, inventory, unit and department, the cost item and its class, then what the expense mapping knows of it.
// `period` restricts Ca_CostExpDetail_Period.
std::string expenseJoins(std::string_view period, std::string_view language) {
  return joined({
      masterJoins,
      costItemJoin,
      "left join Ca_FxClassDef With(NoLock) on Ca_FxDef.cFxCID =Ca_FxClassDef.iFxCId",
      "left join Ca_FxMapExpDetails With(NoLock) on item.iItemDetailID=Ca_FxMapExpDetails.ifxdid and Ca_FxDef.bHasDetails=1",
      "left join Ca_CostExpDetail_Period With(NoLock) on isnull(Ca_FxMapExpDetails.cAmoID,N'')=Ca_CostExpDetail_Period.cAmoID and",
      "Ca_FxMapExpDetails.cInvCode is null and Ca_FxMapExpDetails.cAmotype=Ca_CostExpDetail_Period.cAmoType and",
      "Ca_CostExpDetail_Period.iPeriod = " + std::string(period),
      "left join Inventory With(NoLock) ON CA_FxMapExpDetails.cInvCode = Inventory.cInvCode",
      "Left Join Ca_FxMapExpDID With(Nolock) ON item.iItemDetailID = Ca_FxMapExpDID.ifxdid",
      "Left Join Ca_AmoTypeName With(Nolock) ON Ca_AmoTypeName.cAmotype = Ca_FxMapExpDID.cAmotype and localid=N'" +
          std::string(language) + "'",
  });
}

}  // namespace

std::string queryExpensePeriod(const Build& build) {
  return "select cValue from accinformation where csysid = 'CA' and cid='11002' and Left(cValue,4) = '" +
         build.conditions.year + "'";
}

std::string insertExpenseOpenings(const Build& build, std::string_view openingText, std::string_view language,
                                  std::string_view period) {
  const FilterConditions& conditions = build.conditions;
  return terminated({
      "Insert Into " + build.detail.reference() + std::string(expenseColumns),
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      "cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName, cState, iState,",
      expenseAmounts,
      selectedExpenseLine,
      lineInventoryFields,
      lineDocumentFields,
      lineDepartmentAndDates,
      "Ca_FxDef.cFxCode, Ca_FxDef.cFxName,N'" + std::string(openingText) + "' As cState,1 As iState,",
      "(IsNull(item.iItemInQuantity, 0) - IsNull(item.iItemOutQuantity, 0)) As iQcQuantity, (IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0)) As iQcMoney, ",
      "0 As iInQuantity, 0 As iInMoney, 0 As iOutQuantity, 0 As iOutMoney, ",
      "(IsNull(item.iItemInQuantity, 0) - IsNull(item.iItemOutQuantity, 0)) As iQmQuantity, (IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0))  As iQmMoney,",
      expenseTypeColumn,
      expenseItem(lowerCaseWords, "Ca_FxMapExpDetails.cInvCode", "Ca_FxMapExpDetails.cAmoID") + " as cAmoCode, ",
      expenseItem(lowerCaseWords, "Inventory.cInvName", "Ca_CostExpDetail_Period.cAmoName") + " as cAmoName",
      conditions.monthActive() ? fromOpeningCostItems : fromLedgerCostItems,
      expenseJoins("'" + std::string(period) + "'", language),
      conditions.where,
      openingLinesOf(conditions.year),
  });
}

std::string insertExpenseMovements(const Build& build, std::string_view language) {
  const FilterConditions& conditions = build.conditions;
  return terminated({
      "Insert Into " + build.detail.reference() + std::string(expenseColumns),
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      // No state: it stays null, and the state text is emptied at the end.
      departmentDatesAndCostItem,
      expenseAmounts,
      selectedExpenseLine,
      lineInventoryFields,
      lineDocumentFields,
      lineDepartmentAndDates,
      "Ca_FxDef.cFxCode, Ca_FxDef.cFxName,",
      "0 As iQcQuantity, 0 As iQcMoney, IsNull(item.iItemInQuantity, 0) As iInQuantity, item.iItemInPrice As iInMoney, ",
      "IsNull(item.iItemOutQuantity, 0) As iOutQuantity, item.iItemOutPrice As iOutMoney, ",
      "(IsNull(IsNull(item.iItemInQuantity, 0), 0) - IsNull(IsNull(item.iItemOutQuantity, 0), 0)) As iQmQuantity, (IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0))  As iQmMoney,",
      expenseTypeColumn,
      // Two blanks stand before this "end".
      expenseItem(lowerCaseWords, "Ca_FxMapExpDetails.cInvCode", "Ca_FxMapExpDetails.cAmoID ") + " as cAmoCode, ",
      expenseItem(lowerCaseWords, "Inventory.cInvName", "Ca_CostExpDetail_Period.cAmoName") + " as cAmoName",
      "from ia_subsidiary base With(NoLock) ",
      "Left Join ia_subsidiary_Item item With(NoLock) ON item.iSubID = base.AutoID",
      // Each line's own year and month.
      expenseJoins(linePeriod, language),
      conditions.where,
      conditions.month,
      movementsOf(conditions.year),
  });
}

std::string turnIntoExpenseOpenings(const Build& build) {
  return terminated({
      "Update " + build.detail.reference(),
      "Set iQcQuantity = IsNull(iInQuantity, 0) - IsNull(iOutQuantity, 0),",
      "iQcMoney = IsNull(iInMoney, 0) - IsNull(iOutMoney, 0),",
      "iInQuantity = 0, iInMoney = 0, iOutQuantity = 0, iOutMoney = 0",
      // A digit may touch the word after it: "<> 1And" reads as "<> 1 And".
      "Where IsNull(iState, 0) <> 1" + build.conditions.opening,
  });
}

std::string clearExpenseStates(const Build& build) {
  return terminated({"Update " + build.detail.reference() + " Set cState = N''"});
}

// --- Report rows ----------------------------------------------------------------------------------------------------

std::string createGroupIndex(const Build& build, const WorkTable& groupIndex) {
  return "Select cWhCode, cInvCode Into " + groupIndex.reference() + " From " + build.detail.reference() +
         " Group By cWhCode, cInvCode " + build.conditions.having;
}

std::string insertReportRows(const Build& build, const WorkTable* groupIndex) {
  const FilterConditions& conditions = build.conditions;
  return joined({
      "Insert Into " + build.resultTable,
      "(autoid, cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName, ",
      batchAndFreeItems,
      inventoryFields,
      documentFields,
      "cDepCode, cDepName, cFXCode, cFXName, cState, iState, iQuantity, iMoney, ",
      "iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney, cFSType, cFxCName, cAmoCode, cAmoName)",
      "Select src.autoid,src.cWhCode, cWhName, src.cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName, ",
      groupedBatchAndFreeItems,
      inventoryFields,
      documentFields,
      "cDepCode, cDepName, cFXCode, cFXName, cState, iState,Sum(iQuantity) As iQuantity, Sum(iMoney) As iMoney, ",
      "Sum(iQcQuantity), Sum(iQcMoney), Sum(iInQuantity), Sum(iInMoney), Sum(iOutQuantity), Sum(iOutMoney), ",
      "Sum(IsNull(iQcQuantity, 0) + IsNull(iInQuantity, 0) - IsNull(iOutQuantity, 0)) As iQmQuantity,",
      "Sum(IsNull(iQcMoney, 0) + IsNull(iInMoney, 0) - IsNull(iOutMoney, 0)) As iQmMoney,",
      "N'" + conditions.balanceState + "' As cFSType, cFxCName, cAmoCode, cAmoName",
      "From " + build.detail.reference() + " src",
      groupIndex
          ? "Inner Join " + groupIndex->reference() + " t2 On src.cWhCode = t2.cWhcode And src.cInvCode = t2.cInvCode"
          : "",
      "group by  src.autoid,src.cWhCode, cWhName, src.cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName, ",
      groupedBatchAndFreeItems,
      inventoryFields,
      documentFields,
      "cDepCode, cDepName, cFXCode, cFXName,cState, iState, cFxCName, cAmoCode, cAmoName ",
      // By expense item the having text tests each output row; in the other modes the group index has applied it.
      build.mode == ReportMode::expenseType ? conditions.having : "",
  });
}

std::string deleteRowsWithoutCostItem(const Build& build) {
  return "delete " + build.resultTable + " where isnull(cfxcode,N'')=N'' and isnull(cfxname,N'')=N''";
}

}  // namespace quillon::sfc_item
