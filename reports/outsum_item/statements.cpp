#include "reports/outsum_item/statements.h"

#include "frame/ledger_columns.h"
#include "frame/report_mode.h"
#include "frame/statement.h"

namespace quillon::outsum_item {

namespace {

// --- Columns --------------------------------------------------------------------------------------------------------

// The columns of the detail and the result table in their order, as they are selected from a ledger line and its
// masters. A code comes from where its filter key looks for it: the warehouse and the inventory from their master, the
// rest from the ledger line. Where the tables are made, the columns that later take longer texts get their width.
constexpr std::string_view documentColumns = "base.dVouDate, base.cVouType, base.cBusType, base.cVouCode, ";
constexpr std::string_view documentColumnTypes =
    "Cast('' As nVarChar(2)) As cSource, base.dVouDate, Cast('' As nVarChar(200)) As cVouType, "
    "Cast('' As nVarChar(200)) As cBusType, base.cVouCode, ";
constexpr std::string_view masterColumns =
    "wh.cWhCode, wh.cWhName, inv.cInvCCode, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode, "
    "\r\n"
    "base.cPspCode As cInvPspCode, psp.cInvName As cInvPspName, base.dKeepDate, "
    "\r\n"
    "base.cRdCode As RdCode, Rd_Style.cRdName As RdName, cost.cCostCenter, cost.cCostCenterName, "
    "\r\n"
    "base.cAccDep As cDepCode, dep.cDepName, base.cProCode, base.cDepCode As cWhDep, whdep.cDepName As cWhDepName, "
    "\r\n"
    "cus.cCCCode As cCusCCode, cuscls.cCCName As cCusCName, base.cCusCode, cus.cCusName, base.cVenCode, ven.cVenName, ";
// The project item's class is looked up once all rows are there.
constexpr std::string_view projectItemColumns =
    "base.cItem_Class, fItem.citem_name As cItem_ClassName, N'' As cItemCCode, base.cItemCName, base.cItemCode, "
    "base.cName As cItemName, ";
constexpr std::string_view projectItemColumnTypes =
    "base.cItem_Class, fItem.citem_name As cItem_ClassName, Cast('' As nVarChar(40)) As cItemCCode, base.cItemCName, "
    "base.cItemCode, Cast('' As nVarChar(255)) As cItemName, ";
constexpr std::string_view referenceColumns =
    "base.cOppHead, code.ccode_name As cOppHeadName, base.strContractCode, base.cProordercode, base.iProorderids, "
    "\r\n"
    "base.cworkprocode, base.cworkcentercode, base.cworkcentername, base.cSaleorderCode, base.isaleorderids, "
    "\r\n"
    "base.exoCode, base.iexrowno, base.cImordercode, base.cpurorderCode, base.centrustordercode, base.cBuscode, "
    "\r\n"
    "base.cPersonCode As cperson, person.cPersonName, base.cMaker, maker.cUser_Name As cMakerName, ";
constexpr std::string_view lineInventoryFields =
    "inv.cInvDefine1,inv.cInvDefine2,inv.cInvDefine3,inv.cInvDefine4,inv.cInvDefine5,inv.cInvDefine6,inv.cInvDefine7,"
    "inv.cInvDefine8,"
    "\r\n"
    "inv.cInvDefine9,inv.cInvDefine10,inv.cInvDefine11,inv.cInvDefine12,inv.cInvDefine13,inv.cInvDefine14,"
    "inv.cInvDefine15,inv.cInvDefine16, ";

// The columns by their names, in the tables' order; cSource and cCross stay empty.
constexpr std::string_view columns =
    "autoid, dVouDate, cVouType, cBusType, cVouCode, "
    "\r\n"
    "cWhCode, cWhName, cInvCCode, cInvCode, cInvName, cInvStd, cInvAddCode, cInvPspCode, cInvPspName, dKeepDate, "
    "\r\n"
    "RdCode, RdName, cCostCenter, cCostCenterName, "
    "\r\n"
    "cDepCode, cDepName, cProCode, cWhDep, cWhDepName, "
    "\r\n"
    "cCusCCode, cCusCName, cCusCode, cCusName, cVenCode, cVenName, "
    "\r\n"
    "cItem_Class, cItem_ClassName, cItemCCode, cItemCName, cItemCode, cItemName, "
    "\r\n"
    "cOppHead, cOppHeadName, strContractCode, cProordercode, iProorderids, cworkprocode, cworkcentercode, "
    "cworkcentername, "
    "\r\n"
    "cSaleorderCode, isaleorderids, exoCode, iexrowno, cImordercode, cpurorderCode, centrustordercode, cBuscode, "
    "\r\n"
    "cperson, cPersonName, cMaker, cMakerName, ";

// --- Sources --------------------------------------------------------------------------------------------------------

// The tables that describe a ledger line. A master that has two rows for one code doubles the lines that name it:
// docs/known-behaviour.md lists them.
constexpr std::string_view masterJoins =
    "Left Join Warehouse wh With(NoLock) ON wh.cWhCode = base.cWhCode"
    "\r\n"
    "Left Join Inventory inv With(NoLock) ON inv.cInvCode = base.cInvCode"
    "\r\n"
    "Left Join Inventory psp With(NoLock) ON psp.cInvCode = base.cPspCode"
    "\r\n"
    "Left Join Rd_Style With(NoLock) ON Rd_Style.cRdCode = base.cRdCode"
    "\r\n"
    "Left Join sfc_workcenter work With(NoLock) ON work.Description = base.cworkcentername"
    "\r\n"
    // A cost centre takes in work centres or accounting departments.
    "Left Join CA_CostCenterMap costmap With(NoLock) ON costmap.cDepCode = Case When bISWCID = 1 Then work.WcCode Else "
    "base.cAccDep End"
    "\r\n"
    "Left Join CA_CostCenter cost With(NoLock) ON cost.cCostCenter = costmap.cCostCenter"
    "\r\n"
    "Left Join ComputationUnit unit With(NoLock) ON unit.cComunitCode = inv.cComunitCode"
    "\r\n"
    "Left Join Customer cus With(NoLock) ON cus.cCusCode = base.cCusCode"
    "\r\n"
    "Left Join CustomerClass cuscls With(NoLock) ON cuscls.cCCCode = cus.cCCCode"
    "\r\n"
    "Left Join Vendor ven With(NoLock) ON ven.cVenCode = base.cVenCode"
    "\r\n"
    "Left Join Department dep With(NoLock) ON dep.cDepCode = base.cAccDep"
    "\r\n"
    "Left Join Department whdep With(NoLock) ON whdep.cDepCode = base.cDepCode"
    "\r\n"
    "Left Join Code code With(NoLock) ON code.ccode = base.cOppHead And code.iyear = base.iYear"
    "\r\n"
    "Left Join Person person With(NoLock) ON person.cPersonCode = base.cPersonCode"
    "\r\n"
    "Left Join orvsystem..ua_user maker With(NoLock) ON maker.cUser_Id = base.cMaker"
    "\r\n"
    "Left Join fItem With(NoLock) ON fItem.citem_class = base.cItem_Class";
constexpr std::string_view costItemJoins =
    "Left Join Ca_FxDef With(NoLock) ON item.iItemID = Ca_FxDef.ifxID"
    "\r\n"
    "Left Join Ca_FxClassDef With(NoLock) ON Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCID";
// What a part of a line stands for: a material or an expense, with the expense's name in the line's own month.
constexpr std::string_view expenseItemJoins =
    "Left Join Ca_FxMapExpDID With(NoLock) ON item.iItemDetailID = Ca_FxMapExpDID.ifxdid"
    "\r\n"
    "Left Join Ca_FxMapExpDetails With(NoLock) ON item.iItemDetailID = Ca_FxMapExpDetails.ifxdid And "
    "Ca_FxDef.bHasDetails = 1"
    "\r\n"
    "Left Join Inventory With(NoLock) ON Ca_FxMapExpDetails.cInvCode = Inventory.cInvCode"
    "\r\n"
    "Left Join Ca_CostExpDetail_Period With(NoLock) ON Ca_FxMapExpDetails.cAmoID = Ca_CostExpDetail_Period.cAmoID"
    "\r\n"
    "And Ca_FxMapExpDetails.cAmotype = Ca_CostExpDetail_Period.cAmoType And Ca_FxMapExpDetails.cInvCode Is Null"
    "\r\n"
    "And Ca_CostExpDetail_Period.iPeriod = Cast(base.iYear as nVarchar(10)) + Case When Len(base.iMonth) = 1 Then '0' "
    "else '' End + Cast(base.iMonth as nVarchar(10))";

std::string splitTable(const Build& build) {
  return build.conditions.source == "0" ? "ia_subsidiary_Item" : "ia_subsidiary_ItemOut";
}

std::string fromSplit(const Build& build) {
  return joined({"from " + splitTable(build) + " item With(NoLock) ",
                 "Left Join ia_subsidiary base With(NoLock) ON item.iSubID = base.AutoID"});
}

// The cost item of a row, or in mode 0 its class at the chosen grade; a class that has none above it at that grade
// stands for itself.
bool byClass(const Build& build) {
  return reportMode(build.conditions.mode) == ReportMode::costItemClass;
}
std::string_view costItemColumns(const Build& build) {
  return byClass(build) ? "IsNull(fxcls.cFxCCode, Ca_FxClassDef.cFxCCode) As cFXCode, IsNull(fxcls.cfxCName, "
                          "Ca_FxClassDef.cfxCName) As cFXName, "
                        : "Ca_FxDef.cFxCode, Ca_FxDef.cFxName, ";
}
std::string gradeJoin(const Build& build) {
  if (!byClass(build)) return {};
  return "Left Join Ca_FxClassDef fxcls With(NoLock) ON Ca_FxClassDef.cFxCCode like (fxcls.cFxCCode + '%') And "
         "fxcls.iGrade = " +
         build.conditions.grade;
}

std::string outboundOfYear(const Build& build) {
  return "And base.bRdflag = 0 And base.iYear = " + build.conditions.year;
}

// The head of an insert; `figures` names the columns behind the free items.
std::string insertInto(const std::string& table, std::string_view figures) {
  return joined({
      "Insert Into " + table,
      "(" + std::string(columns),
      documentFields,
      inventoryFields,
      "cbatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,",
      std::string(figures) + ")",
  });
}

// What every insert selects of a ledger line, up to its free items.
std::string selectLine() {
  return joined({
      "Select base.autoid, ",
      documentColumns,
      masterColumns,
      projectItemColumns,
      referenceColumns,
      lineDocumentFields,
      lineInventoryFields,
      lineBatchAndFreeItems,
  });
}

constexpr std::string_view figureTypes =
    "base.iAOutQuantity As iQuantity, base.iAOutPrice As iMoney, base.iAOutPrice As iFXMoney, "
    "Cast('' As nVarChar(40)) As cCross, ";
constexpr std::string_view expenseItemTypes =
    "Cast('' As nVarChar(128)) As cFxCName, Cast('' As nVarChar(60)) As cAmoCode, "
    "Cast('' As nVarChar(255)) As cAmoName ";
// A part's own quantity and amount; the amount stands a second time as that of the cost item.
constexpr std::string_view splitFigures =
    "item.iItemOutQuantity As iQuantity,item.iItemOutPrice As iMoney, item.iItemOutPrice As iFXMoney";
// Type 0 is material, which goes by its inventory; any other type is an expense.
constexpr std::string_view expenseItemColumns =
    "Ca_AmoTypeName.cAmoTypeName As cfxCName, "
    "\r\n"
    "Case When Ca_FxMapExpDID.cAmotype = 0 Then Ca_FxMapExpDetails.cInvCode Else Ca_FxMapExpDetails.cAmoID End "
    "As cAmoCode, "
    "\r\n"
    "Case When Ca_FxMapExpDID.cAmotype = 0 Then Inventory.cInvName Else Ca_CostExpDetail_Period.cAmoName End "
    "As cAmoName";

std::string expenseTypeJoin(std::string_view language) {
  return "Left Join Ca_AmoTypeName With(NoLock) ON Ca_AmoTypeName.cAmotype = Ca_FxMapExpDID.cAmotype And "
         "Ca_AmoTypeName.localid = N'" +
         std::string(language) + "'";
}

}  // namespace

bool byExpenseItem(const Build& build) {
  return build.conditions.mode == "2";
}

std::string createDetailTable(const Build& build) {
  return joined({
      "select Top 0 base.autoid,",
      documentColumnTypes,
      masterColumns,
      projectItemColumnTypes,
      referenceColumns,
      lineDocumentFields,
      lineInventoryFields,
      lineBatchAndFreeItems,
      costItemColumns(build),
      figureTypes,
      expenseItemTypes,
      "Into " + build.detail.reference(),
      fromSplit(build),
      masterJoins,
      costItemJoins,
      gradeJoin(build),
  });
}

std::string createResultTable(const Build& build) {
  return "Select Top 0 * Into " + build.resultTable + " From " + build.detail.reference();
}

std::string insertSplitLines(const Build& build) {
  return joined({
      insertInto(build.detail.reference(), "cFXCode, cFXName, iQuantity, iMoney, iFXMoney"),
      selectLine(),
      costItemColumns(build),
      splitFigures,
      fromSplit(build),
      masterJoins,
      costItemJoins,
      gradeJoin(build),
      build.conditions.where,
      outboundOfYear(build),
  });
}

std::string insertUnsplitLines(const Build& build) {
  return joined({
      insertInto(build.detail.reference(), "cFXCode, cFXName, iQuantity, iMoney, iFXMoney"),
      selectLine(),
      "null as cFxCode, null as cFxName, base.iAOutQuantity As iQuantity,base.iAOutPrice As iMoney, null As iFXMoney",
      "from ia_subsidiary base With(NoLock) ",
      masterJoins,
      build.conditions.where,
      outboundOfYear(build),
      "And Not Exists(Select 1 From " + splitTable(build) + " item With(NoLock) Where item.iSubID = base.AutoID)",
  });
}

std::string insertExpenseItems(const Build& build, std::string_view language) {
  return joined({
      insertInto(build.detail.reference(),
                 "cFXCode, cFXName, iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName"),
      selectLine(),
      costItemColumns(build),
      std::string(splitFigures) + ",",
      expenseItemColumns,
      fromSplit(build),
      masterJoins,
      costItemJoins,
      expenseItemJoins,
      expenseTypeJoin(language),
      build.conditions.where,
      outboundOfYear(build),
  });
}

std::string queryProjectItemClasses(const Build& build) {
  return joined({
      "Select Distinct base.cItem_Class, fItem.cClasstable, fItem.ctable From " + build.detail.reference() + " base",
      "Left Join fItem On base.cItem_Class = fItem.citem_class",
      "Where base.cItem_Class Is not null",
  });
}

std::string nameInventoryItemClasses(const Build& build, std::string_view itemClass) {
  return joined({
      "Update base",
      "Set cItemCCode = invcls.cInvCCode, cItemCName = invcls.cInvCName",
      "From " + build.detail.reference() + " base",
      "Inner Join Inventory inv On base.cItemCode = inv.cInvCode",
      "Inner Join InventoryClass invcls On inv.cInvCCode = invcls.cInvCCode",
      "Where base.cItem_Class  = N'" + std::string(itemClass) + "'",
  });
}

std::string nameProjectItemClasses(const Build& build, std::string_view itemClass, std::string_view itemTable,
                                   std::string_view classTable) {
  return joined({
      "Update base",
      "Set cItemCCode = tarcls.cItemCCode, cItemCName = tarcls.cItemCName",
      "From " + build.detail.reference() + " base",
      "Inner Join " + std::string(itemTable) + " tar On base.cItemCode = tar.cItemCode",
      "Inner Join " + std::string(classTable) + " tarcls On tar.cItemCCode = tarcls.cItemCCode",
      "Where base.cItem_Class  = N'" + std::string(itemClass) + "'",
  });
}

std::string insertReportRows(const Build& build) {
  return joined({
      insertInto(build.resultTable, "cFXCode, cFXName, iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName"),
      "Select " + std::string(columns),
      documentFields,
      inventoryFields,
      "isnull(cbatchia,''),cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,",
      "IsNull(cFXCode, N'') As cFXCode, IsNull(cFXName, N'') As cFXName, iQuantity, iMoney, iFXMoney, ",
      "cFxCName, cAmoCode, cAmoName",
      "From " + build.detail.reference(),
  });
}

std::string nameBusinessTypes(const Build& build) {
  return "Update " + build.resultTable + " set cBusType=AA.EnumName from " + build.resultTable +
         " Wt inner join aa_enum AA on  Wt.cBusType=AA.EnumCode where AA.EnumType='IA.BusType' and "
         "AA.LocaleId=DBO.UDF_GetLocaleID()";
}

std::string nameVoucherTypes(const Build& build) {
  return joined({
      // The filter adds type 3201 to 32, and it goes by the name of 32.
      "Update " + build.resultTable + " set cvoutype=AA_Enum.EnumName from  " + build.resultTable +
          " temp inner join VouchType on case when temp.cvoutype = N'3201' then N'32' else temp.cvoutype "
          "end=VouchType.cVouchType",
      "inner join AA_Enum on VouchType.cVouchName=AA_Enum.EnumCode where AA_Enum.EnumType ='IA.vchtype' and "
      "AA_Enum.LocaleId=DBO.UDF_GetLocaleID()",
  });
}

}  // namespace quillon::outsum_item
