#include "reports/outsum_item/statements.h"

#include <array>

#include "frame/column_list.h"
#include "frame/cost_items.h"
#include "frame/display_names.h"
#include "frame/ledger_columns.h"
#include "frame/report_mode.h"
#include "frame/statement.h"

namespace quillon::outsum_item {

namespace {

// --- Columns --------------------------------------------------------------------------------------------------------

// Which of the two lists goes on in a new line behind a column: that of names or that of sources.
enum class NewLine { none, names, sources, both };

// A column of the detail and the result table.
struct Column {
  std::string_view name;
  std::string_view source;  // what it is selected from; empty for a column that is never filled
  // What it is selected from while the table is made, where it later takes longer texts than its source has.
  std::string_view type = {};
  NewLine newLine = NewLine::none;
};

// What describes a ledger line, between its key and its user-defined fields, in the tables' order. A code comes from
// where its filter key looks for it: the warehouse and the inventory from their master, the rest from the ledger line.
constexpr std::array describingColumns{
    Column{"cSource", "", "Cast('' As nVarChar(2)) As cSource"},
    Column{"dVouDate", "base.dVouDate"},
    Column{"cVouType", "base.cVouType", "Cast('' As nVarChar(200)) As cVouType"},
    Column{"cBusType", "base.cBusType", "Cast('' As nVarChar(200)) As cBusType"},
    Column{"cVouCode", "base.cVouCode", "", NewLine::both},
    Column{"cWhCode", "wh.cWhCode"},
    Column{"cWhName", "wh.cWhName"},
    Column{"cInvCCode", "inv.cInvCCode"},
    Column{"cInvCode", "inv.cInvCode"},
    Column{"cInvName", "inv.cInvName"},
    Column{"cInvStd", "inv.cInvStd"},
    Column{"cInvAddCode", "inv.cInvAddCode", "", NewLine::sources},
    Column{"cInvPspCode", "base.cPspCode As cInvPspCode"},
    Column{"cInvPspName", "psp.cInvName As cInvPspName"},
    Column{"dKeepDate", "base.dKeepDate", "", NewLine::both},
    Column{"RdCode", "base.cRdCode As RdCode"},
    Column{"RdName", "Rd_Style.cRdName As RdName"},
    Column{"cCostCenter", "cost.cCostCenter"},
    Column{"cCostCenterName", "cost.cCostCenterName", "", NewLine::both},
    Column{"cDepCode", "base.cAccDep As cDepCode"},
    Column{"cDepName", "dep.cDepName"},
    Column{"cProCode", "base.cProCode"},
    Column{"cWhDep", "base.cDepCode As cWhDep"},
    Column{"cWhDepName", "whdep.cDepName As cWhDepName", "", NewLine::both},
    Column{"cCusCCode", "cus.cCCCode As cCusCCode"},
    Column{"cCusCName", "cuscls.cCCName As cCusCName"},
    Column{"cCusCode", "base.cCusCode"},
    Column{"cCusName", "cus.cCusName"},
    Column{"cVenCode", "base.cVenCode"},
    Column{"cVenName", "ven.cVenName", "", NewLine::both},
    Column{"cItem_Class", "base.cItem_Class"},
    Column{"cItem_ClassName", "fItem.citem_name As cItem_ClassName"},
    // The project item's class is looked up once all rows are there.
    Column{"cItemCCode", "N'' As cItemCCode", "Cast('' As nVarChar(40)) As cItemCCode"},
    Column{"cItemCName", "base.cItemCName"},
    Column{"cItemCode", "base.cItemCode"},
    Column{"cItemName", "base.cName As cItemName", "Cast('' As nVarChar(255)) As cItemName", NewLine::both},
    Column{"cOppHead", "base.cOppHead"},
    Column{"cOppHeadName", "code.ccode_name As cOppHeadName"},
    Column{"strContractCode", "base.strContractCode"},
    Column{"cProordercode", "base.cProordercode"},
    Column{"iProorderids", "base.iProorderids", "", NewLine::sources},
    Column{"cworkprocode", "base.cworkprocode"},
    Column{"cworkcentercode", "base.cworkcentercode"},
    Column{"cworkcentername", "base.cworkcentername", "", NewLine::names},
    Column{"cSaleorderCode", "base.cSaleorderCode"},
    Column{"isaleorderids", "base.isaleorderids", "", NewLine::sources},
    Column{"exoCode", "base.exoCode"},
    Column{"iexrowno", "base.iexrowno"},
    Column{"cImordercode", "base.cImordercode"},
    Column{"cpurorderCode", "base.cpurorderCode"},
    Column{"centrustordercode", "base.centrustordercode"},
    Column{"cBuscode", "base.cBuscode", "", NewLine::both},
    Column{"cperson", "base.cPersonCode As cperson"},
    Column{"cPersonName", "person.cPersonName"},
    Column{"cMaker", "base.cMaker"},
    Column{"cMakerName", "maker.cUser_Name As cMakerName"},
};
static_assert(allEndWithTheirNames(describingColumns, &Column::source) &&
              allEndWithTheirNames(describingColumns, &Column::type));

constexpr std::string_view behindColumn = ", ";
constexpr std::string_view behindLine = ", \r\n";

std::string_view behindSource(const Column& column) {
  return column.newLine == NewLine::sources || column.newLine == NewLine::both ? behindLine : behindColumn;
}

// The three lists end with a comma and a blank.
std::string describingNames() {
  const auto name = [](const Column& column) { return column.source.empty() ? std::string_view() : column.name; };
  const auto separator = [](const Column& column) {
    return column.newLine == NewLine::names || column.newLine == NewLine::both ? behindLine : behindColumn;
  };
  return columnList(describingColumns, name, separator) + ", ";
}
std::string describingSources() {
  return columnList(describingColumns, &Column::source, behindSource) + ", ";
}
std::string describingTypes() {
  const auto type = [](const Column& column) { return column.type.empty() ? column.source : column.type; };
  return columnList(describingColumns, type, behindSource) + ", ";
}

// --- What the statements share --------------------------------------------------------------------------------------

std::string splitTable(const Build& build) {
  return build.conditions.source == "0" ? "ia_subsidiary_Item" : "ia_subsidiary_ItemOut";
}

std::string fromSplit(const Build& build) {
  return joined({
      "from " + splitTable(build) + " item With(NoLock) ",
      "Left Join ia_subsidiary base With(NoLock) ON item.iSubID = base.AutoID",
  });
}

// The tables that describe a ledger line. A master that has two rows for one code doubles the lines that name it:
// docs/known-behaviour.md lists them.
constexpr std::string_view masterJoins =
    "Left Join Warehouse wh With(NoLock) ON wh.cWhCode = base.cWhCode\r\n"
    "Left Join Inventory inv With(NoLock) ON inv.cInvCode = base.cInvCode\r\n"
    "Left Join Inventory psp With(NoLock) ON psp.cInvCode = base.cPspCode\r\n"
    "Left Join Rd_Style With(NoLock) ON Rd_Style.cRdCode = base.cRdCode\r\n"
    "Left Join sfc_workcenter work With(NoLock) ON work.Description = base.cworkcentername\r\n"
    // A cost centre takes in work centres or accounting departments.
    "Left Join CA_CostCenterMap costmap With(NoLock) ON costmap.cDepCode = Case When bISWCID = 1 Then work.WcCode Else base.cAccDep End\r\n"
    "Left Join CA_CostCenter cost With(NoLock) ON cost.cCostCenter = costmap.cCostCenter\r\n"
    "Left Join ComputationUnit unit With(NoLock) ON unit.cComunitCode = inv.cComunitCode\r\n"
    "Left Join Customer cus With(NoLock) ON cus.cCusCode = base.cCusCode\r\n"
    "Left Join CustomerClass cuscls With(NoLock) ON cuscls.cCCCode = cus.cCCCode\r\n"
    "Left Join Vendor ven With(NoLock) ON ven.cVenCode = base.cVenCode\r\n"
    "Left Join Department dep With(NoLock) ON dep.cDepCode = base.cAccDep\r\n"
    "Left Join Department whdep With(NoLock) ON whdep.cDepCode = base.cDepCode\r\n"
    "Left Join Code code With(NoLock) ON code.ccode = base.cOppHead And code.iyear = base.iYear\r\n"
    "Left Join Person person With(NoLock) ON person.cPersonCode = base.cPersonCode\r\n"
    "Left Join orvsystem..ua_user maker With(NoLock) ON maker.cUser_Id = base.cMaker\r\n"
    "Left Join fItem With(NoLock) ON fItem.citem_class = base.cItem_Class";
constexpr std::string_view costItemJoins =
    "Left Join Ca_FxDef With(NoLock) ON item.iItemID = Ca_FxDef.ifxID\r\n"
    "Left Join Ca_FxClassDef With(NoLock) ON Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCID";

// The class of the cost item's class at the chosen grade, for the report by class.
std::string gradeJoin(const Build& build) {
  if (reportMode(build.conditions.mode) != ReportMode::costItemClass) return {};
  return "Left Join Ca_FxClassDef fxcls With(NoLock) ON Ca_FxClassDef.cFxCCode like (fxcls.cFxCCode + '%') And fxcls.iGrade = " +
         build.conditions.grade;
}
std::string costItem(const Build& build) {
  return std::string(costItemColumns(reportMode(build.conditions.mode))) + ", ";
}

std::string outboundOfYear(const Build& build) {
  return "And base.bRdflag = 0 And base.iYear = " + build.conditions.year;
}

// The columns of an insert up to the free items.
std::string insertedLine() {
  return joined({
      "(autoid, " + describingNames(),
      documentFields,
      inventoryFields,
      "cbatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,",
  });
}
// What they are selected from.
std::string selectedLine() {
  return joined({
      "Select base.autoid, ",
      describingSources(),
      lineDocumentFields,
      lineInventoryFields,
      lineBatchAndFreeItems,
  });
}

}  // namespace

bool byExpenseItem(const Build& build) {
  return build.conditions.mode == "2";
}

std::string createDetailTable(const Build& build) {
  return joined({
      "select Top 0 base.autoid,",
      describingTypes(),
      lineDocumentFields,
      lineInventoryFields,
      lineBatchAndFreeItems,
      costItem(build),
      "base.iAOutQuantity As iQuantity, base.iAOutPrice As iMoney, base.iAOutPrice As iFXMoney, Cast('' As nVarChar(40)) As cCross, ",
      "Cast('' As nVarChar(128)) As cFxCName, Cast('' As nVarChar(60)) As cAmoCode, Cast('' As nVarChar(255)) As cAmoName ",
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
      "Insert Into " + build.detail.reference(),
      insertedLine(),
      "cFXCode, cFXName, iQuantity, iMoney, iFXMoney)",
      selectedLine(),
      costItem(build),
      // A part's own quantity and amount; the amount stands a second time as that of the cost item.
      "item.iItemOutQuantity As iQuantity,item.iItemOutPrice As iMoney, item.iItemOutPrice As iFXMoney",
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
      "Insert Into " + build.detail.reference(),
      insertedLine(),
      "cFXCode, cFXName, iQuantity, iMoney, iFXMoney)",
      selectedLine(),
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
      "Insert Into " + build.detail.reference(),
      insertedLine(),
      "cFXCode, cFXName, iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName)",
      selectedLine(),
      costItem(build),
      "item.iItemOutQuantity As iQuantity,item.iItemOutPrice As iMoney, item.iItemOutPrice As iFXMoney,",
      "Ca_AmoTypeName.cAmoTypeName As cfxCName, ",
      expenseItem(capitalWords, "Ca_FxMapExpDetails.cInvCode", "Ca_FxMapExpDetails.cAmoID") + " As cAmoCode, ",
      expenseItem(capitalWords, "Inventory.cInvName", "Ca_CostExpDetail_Period.cAmoName") + " As cAmoName",
      fromSplit(build),
      masterJoins,
      costItemJoins,
      // The material or the expense that a part is, with the expense's name in the line's own month.
      "Left Join Ca_FxMapExpDID With(NoLock) ON item.iItemDetailID = Ca_FxMapExpDID.ifxdid",
      "Left Join Ca_FxMapExpDetails With(NoLock) ON item.iItemDetailID = Ca_FxMapExpDetails.ifxdid And Ca_FxDef.bHasDetails = 1",
      "Left Join Inventory With(NoLock) ON Ca_FxMapExpDetails.cInvCode = Inventory.cInvCode",
      "Left Join Ca_CostExpDetail_Period With(NoLock) ON Ca_FxMapExpDetails.cAmoID = Ca_CostExpDetail_Period.cAmoID",
      "And Ca_FxMapExpDetails.cAmotype = Ca_CostExpDetail_Period.cAmoType And Ca_FxMapExpDetails.cInvCode Is Null",
      "And Ca_CostExpDetail_Period.iPeriod = " + std::string(linePeriod),
      "Left Join Ca_AmoTypeName With(NoLock) ON Ca_AmoTypeName.cAmotype = Ca_FxMapExpDID.cAmotype And Ca_AmoTypeName.localid = N'" +
          std::string(language) + "'",
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
      "Insert Into " + build.resultTable,
      insertedLine(),
      "cFXCode, cFXName, iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName)",
      "Select autoid, " + describingNames(),
      documentFields,
      inventoryFields,
      "isnull(cbatchia,''),cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,",
      "IsNull(cFXCode, N'') As cFXCode, IsNull(cFXName, N'') As cFXName, iQuantity, iMoney, iFXMoney, ",
      "cFxCName, cAmoCode, cAmoName",
      "From " + build.detail.reference(),
  });
}

std::string nameVoucherTypes(const Build& build) {
  // The filter adds type 3201 to 32, and both are shown by the name of 32.
  return quillon::nameVoucherTypes(build.resultTable,
                                   "case when temp.cvoutype = N'3201' then N'32' else temp.cvoutype end");
}

}  // namespace quillon::outsum_item
