#include "workbench/account/schema.h"

namespace quillon::account {
namespace {

// --- The inventory ledger -------------------------------------------------------------------------------------------

// ia_subsidiary, the ledger itself. IA_Subsidiary_QC (balances at the cost-item start month) and IA_ENSubSidiary (goods
// delivered and not yet settled) have the same columns, since the same conditions run on them.
//   iMonth                 1 to 12; 0 on an opening line, whose voucher type is '34'
//   bRdFlag                1 receipt, 0 issue; a receipt fills the "in" columns, an issue the "out" columns, the others
//                          are null
//   iAInPrice, iAOutPrice  amounts, while iInCost, iOutCost are unit costs
//   cDepCode, cAccDep      the department of the document, the accounting department
//   cPZID, iPZID           the general-ledger voucher: gl_AccVouch.coutNo_ID and the i_id of the voucher's first entry
//   bFlag                  1: the second flavour of voucher types 01, 30 and 70 (receipts at an estimated price)
//   BakID                  the line that this line takes its place behind, null: none
constexpr ColumnDefinition ledgerColumns[] = {
    {"AutoID", "int not null"},
    {"BakID", "int"},
    {"iYear", "int not null"},
    {"iMonth", "int not null"},
    {"dVouDate", "datetime"},
    {"dKeepDate", "datetime"},
    {"cVouType", "nvarchar(10) not null"},
    {"cVouCode", "nvarchar(30)"},
    {"cBusType", "nvarchar(60)"},
    {"cBusCode", "nvarchar(30)"},
    {"bRdFlag", "bit not null"},
    {"bFlag", "bit not null"},
    {"cWhCode", "nvarchar(10)"},
    {"cInvCode", "nvarchar(60)"},
    {"cPspCode", "nvarchar(60)"},
    {"cRdCode", "nvarchar(10)"},
    {"cDepCode", "nvarchar(12)"},
    {"cAccDep", "nvarchar(12)"},
    {"cProCode", "nvarchar(20)"},
    {"cPersonCode", "nvarchar(20)"},
    {"cCusCode", "nvarchar(20)"},
    {"cVenCode", "nvarchar(20)"},
    {"iAInQuantity", "decimal(18,6)"},
    {"iInCost", "decimal(18,6)"},
    {"iAInPrice", "money"},
    {"iAOutQuantity", "decimal(18,6)"},
    {"iOutCost", "decimal(18,6)"},
    {"iAOutPrice", "money"},
    {"iDebitDifCost", "money"},
    {"iCreditDifCost", "money"},
    {"cBatchIA", "nvarchar(60)"},
    {"cFree1", "nvarchar(20)"},
    {"cFree2", "nvarchar(20)"},
    {"cFree3", "nvarchar(20)"},
    {"cFree4", "nvarchar(20)"},
    {"cFree5", "nvarchar(20)"},
    {"cFree6", "nvarchar(20)"},
    {"cFree7", "nvarchar(20)"},
    {"cFree8", "nvarchar(20)"},
    {"cFree9", "nvarchar(20)"},
    {"cFree10", "nvarchar(20)"},
    {"cItem_Class", "nvarchar(10)"},
    {"cItemCName", "nvarchar(60)"},
    {"cItemCode", "nvarchar(60)"},
    {"cName", "nvarchar(255)"},
    {"cOppHead", "nvarchar(40)"},
    {"strContractCode", "nvarchar(64)"},
    {"cProordercode", "nvarchar(30)"},
    {"iProorderids", "int"},
    {"cworkprocode", "nvarchar(20)"},
    {"cworkprocodedis", "nvarchar(60)"},
    {"cworkcentercode", "nvarchar(20)"},
    {"cworkcentername", "nvarchar(60)"},
    {"cSaleorderCode", "nvarchar(30)"},
    {"isaleorderids", "int"},
    {"exoCode", "nvarchar(30)"},
    {"iExRowno", "int"},
    {"cImordercode", "nvarchar(30)"},
    {"cpurorderCode", "nvarchar(30)"},
    {"centrustordercode", "nvarchar(30)"},
    {"cOrderCode", "nvarchar(30)"},
    {"cDemandCode", "nvarchar(30)"},
    {"cdemandmemo", "nvarchar(255)"},
    {"cMaker", "nvarchar(20)"},
    {"cAccounter", "nvarchar(20)"},
    {"cHandler", "nvarchar(20)"},
    {"cMemo", "nvarchar(255)"},
    {"cPZID", "nvarchar(50)"},
    {"iPZID", "int"},
    {"cPZdigest", "nvarchar(120)"},
    {"cDefine1", "nvarchar(20)"},
    {"cDefine2", "nvarchar(20)"},
    {"cDefine3", "nvarchar(20)"},
    {"cDefine4", "datetime"},
    {"cDefine5", "int"},
    {"cDefine6", "datetime"},
    {"cDefine7", "float"},
    {"cDefine8", "nvarchar(10)"},
    {"cDefine9", "nvarchar(10)"},
    {"cDefine10", "nvarchar(60)"},
    {"cDefine11", "nvarchar(120)"},
    {"cDefine12", "nvarchar(120)"},
    {"cDefine13", "nvarchar(120)"},
    {"cDefine14", "nvarchar(120)"},
    {"cDefine15", "int"},
    {"cDefine16", "datetime"},
    {"cDefine22", "nvarchar(60)"},
    {"cDefine23", "nvarchar(60)"},
    {"cDefine24", "nvarchar(60)"},
    {"cDefine25", "nvarchar(60)"},
    {"cDefine26", "float"},
    {"cDefine27", "float"},
    {"cDefine28", "nvarchar(120)"},
    {"cDefine29", "nvarchar(120)"},
    {"cDefine30", "nvarchar(120)"},
    {"cDefine31", "nvarchar(120)"},
    {"cDefine32", "nvarchar(120)"},
    {"cDefine33", "nvarchar(120)"},
    {"cDefine34", "int"},
    {"cDefine35", "int"},
    {"cDefine36", "datetime"},
    {"cDefine37", "datetime"},
};

// The parts of ledger lines by cost item: iItemID is the cost item (Ca_FxDef.ifxID), iItemDetailID its detail
// (Ca_FxMapExpDID.ifxdid). Prices are amounts, costs unit costs, as in the ledger. The detail may be null: the detail
// ledger's work table takes its column from here and has lines without cost items too.
constexpr ColumnDefinition itemColumns[] = {
    {"AutoID", "int not null"},        {"iSubID", "int not null"},  // ia_subsidiary.AutoID
    {"iItemID", "int not null"},       {"iItemDetailID", "int"},    {"iYear", "int not null"},
    {"iMonth", "int not null"},        {"bRdFlag", "bit not null"}, {"iItemInQuantity", "decimal(18,6)"},
    {"iItemInCost", "decimal(18,6)"},  {"iItemInPrice", "money"},   {"iItemOutQuantity", "decimal(18,6)"},
    {"iItemOutCost", "decimal(18,6)"}, {"iItemOutPrice", "money"},
};

constexpr ColumnDefinition openingItemColumns[] = {
    {"AutoID", "int not null"},        {"iSubQcID", "int not null"},  // IA_Subsidiary_QC.AutoID
    {"iItemID", "int not null"},       {"iItemDetailID", "int"},     {"iYear", "int not null"},
    {"iMonth", "int not null"},        {"bRdFlag", "bit not null"},  {"iItemInQuantity", "decimal(18,6)"},
    {"iItemInCost", "decimal(18,6)"},  {"iItemInPrice", "money"},    {"iItemOutQuantity", "decimal(18,6)"},
    {"iItemOutCost", "decimal(18,6)"}, {"iItemOutPrice", "money"},
};

// --- Cost items -----------------------------------------------------------------------------------------------------

// The class tree: the code of a class begins with the code of the class above it (01, 0101, 010101).
constexpr ColumnDefinition costItemClassColumns[] = {
    {"iFxCId", "int not null"},
    {"cFxCCode", "nvarchar(40) not null"},
    {"cFxCName", "nvarchar(128) not null"},
    {"iGrade", "int not null"},
};

// bHasDetails: the details of this cost item are in Ca_FxMapExpDetails.
constexpr ColumnDefinition costItemColumns[] = {
    {"iFxID", "int not null"},       {"cFxCode", "nvarchar(40) not null"}, {"cFxName", "nvarchar(128) not null"},
    {"cFxCID", "int not null"},  // Ca_FxClassDef.iFxCId
    {"bHasDetails", "bit not null"},
};

// The expense type of each cost-item detail; type 0 is material.
constexpr ColumnDefinition detailTypeColumns[] = {
    {"iFxDID", "int not null"},
    {"iFxID", "int not null"},
    {"cAmoType", "int not null"},
};

// What a detail stands for: a material (cInvCode, with its free items) or an expense (cAmoID); the other is null.
constexpr ColumnDefinition detailColumns[] = {
    {"iFxDID", "int not null"}, {"cAmoType", "int not null"}, {"cInvCode", "nvarchar(60)"}, {"cAmoID", "nvarchar(60)"},
    {"cFree1", "nvarchar(20)"}, {"cFree2", "nvarchar(20)"},   {"cFree3", "nvarchar(20)"},   {"cFree4", "nvarchar(20)"},
    {"cFree5", "nvarchar(20)"}, {"cFree6", "nvarchar(20)"},   {"cFree7", "nvarchar(20)"},   {"cFree8", "nvarchar(20)"},
    {"cFree9", "nvarchar(20)"}, {"cFree10", "nvarchar(20)"},
};

// The names of expenses, period by period. iPeriod is year and two-digit month: "202404".
constexpr ColumnDefinition expensePeriodColumns[] = {
    {"cAmoID", "nvarchar(60) not null"},
    {"cAmoType", "int not null"},
    {"iPeriod", "nvarchar(6) not null"},
    {"cAmoName", "nvarchar(255) not null"},
};

constexpr ColumnDefinition expenseTypeColumns[] = {
    {"cAmoType", "int not null"},
    {"localid", "nvarchar(10) not null"},  // "zh-CN", "en-US"
    {"cAmoTypeName", "nvarchar(128) not null"},
};

// --- Masters --------------------------------------------------------------------------------------------------------

constexpr ColumnDefinition inventoryClassColumns[] = {
    {"cInvCCode", "nvarchar(20) not null"},
    {"cInvCName", "nvarchar(60) not null"},
    {"iInvCGrade", "int not null"},
};

// bCheckBatch, bCheckFree1 ..: whether the item is kept by batch and by this free item. dEDate: the day it goes out of
// use. The name may be null: the detail ledger's work table takes its column from here, and its balances have no name.
constexpr ColumnDefinition inventoryColumns[] = {
    {"cInvCode", "nvarchar(60) not null"},
    {"cInvName", "nvarchar(255)"},
    {"cInvAddCode", "nvarchar(255)"},
    {"cInvStd", "nvarchar(255)"},
    {"cInvCCode", "nvarchar(20) not null"},
    {"cGroupCode", "nvarchar(35)"},
    {"cComUnitCode", "nvarchar(35) not null"},
    {"dSDate", "datetime"},
    {"dEDate", "datetime"},
    {"bCheckBatch", "bit not null"},
    {"bCheckFree1", "bit not null"},
    {"bCheckFree2", "bit not null"},
    {"bCheckFree3", "bit not null"},
    {"bCheckFree4", "bit not null"},
    {"bCheckFree5", "bit not null"},
    {"bCheckFree6", "bit not null"},
    {"bCheckFree7", "bit not null"},
    {"bCheckFree8", "bit not null"},
    {"bCheckFree9", "bit not null"},
    {"bCheckFree10", "bit not null"},
    {"cInvDefine1", "nvarchar(20)"},
    {"cInvDefine2", "nvarchar(20)"},
    {"cInvDefine3", "nvarchar(20)"},
    {"cInvDefine4", "nvarchar(60)"},
    {"cInvDefine5", "nvarchar(60)"},
    {"cInvDefine6", "nvarchar(60)"},
    {"cInvDefine7", "nvarchar(120)"},
    {"cInvDefine8", "nvarchar(120)"},
    {"cInvDefine9", "nvarchar(120)"},
    {"cInvDefine10", "nvarchar(120)"},
    {"cInvDefine11", "int"},
    {"cInvDefine12", "int"},
    {"cInvDefine13", "float"},
    {"cInvDefine14", "float"},
    {"cInvDefine15", "datetime"},
    {"cInvDefine16", "datetime"},
};

// Units in groups: each group has one main unit, and others that count iChangRate main units.
constexpr ColumnDefinition unitColumns[] = {
    {"cComUnitCode", "nvarchar(35) not null"}, {"cComUnitName", "nvarchar(20) not null"},
    {"cGroupCode", "nvarchar(35) not null"},   {"bMainUnit", "bit not null"},
    {"iChangRate", "decimal(18,6)"},
};

constexpr ColumnDefinition warehouseColumns[] = {
    {"cWhCode", "nvarchar(10) not null"},
    {"cWhName", "nvarchar(20) not null"},
};

constexpr ColumnDefinition departmentColumns[] = {
    {"cDepCode", "nvarchar(12) not null"},
    {"cDepName", "nvarchar(255) not null"},
};

constexpr ColumnDefinition customerClassColumns[] = {
    {"cCCCode", "nvarchar(20) not null"},
    {"cCCName", "nvarchar(60) not null"},
};

constexpr ColumnDefinition customerColumns[] = {
    {"cCusCode", "nvarchar(20) not null"},
    {"cCusName", "nvarchar(98) not null"},
    {"cCusAbbName", "nvarchar(60)"},
    {"cCCCode", "nvarchar(20)"},
};

constexpr ColumnDefinition vendorClassColumns[] = {
    {"cVCCode", "nvarchar(20) not null"},
    {"cVCName", "nvarchar(60) not null"},
};

constexpr ColumnDefinition vendorColumns[] = {
    {"cVenCode", "nvarchar(20) not null"},
    {"cVenName", "nvarchar(98) not null"},
    {"cVenAbbName", "nvarchar(60)"},
    {"cVCCode", "nvarchar(20)"},
};

constexpr ColumnDefinition personColumns[] = {
    {"cPersonCode", "nvarchar(20) not null"},
    {"cPersonName", "nvarchar(40) not null"},
    {"cDepCode", "nvarchar(12)"},
};

// Receipt and issue types.
constexpr ColumnDefinition receiptIssueTypeColumns[] = {
    {"cRdCode", "nvarchar(10) not null"},
    {"cRdName", "nvarchar(20) not null"},
    {"bRdFlag", "bit not null"},
};

constexpr ColumnDefinition voucherTypeColumns[] = {
    {"cVouchType", "nvarchar(10) not null"},
    {"cVouchName", "nvarchar(60) not null"},
};

constexpr ColumnDefinition workCentreColumns[] = {
    {"WcId", "int not null"},
    {"WcCode", "nvarchar(20) not null"},
    {"Description", "nvarchar(60) not null"},
};

constexpr ColumnDefinition costCentreColumns[] = {
    {"cCostCenter", "nvarchar(20) not null"},
    {"cCostCenterName", "nvarchar(60) not null"},
};

// Which cost centre a work centre (bIsWCID 1) or an accounting department (0) belongs to; cDepCode is the code of
// either. A department that is mapped work centre by work centre has no row of its own.
constexpr ColumnDefinition costCentreMapColumns[] = {
    {"cDepCode", "nvarchar(20) not null"},
    {"bIsWCID", "bit not null"},
    {"cCostCenter", "nvarchar(20) not null"},
};

// The cost centres by department alone: cBusID is the accounting department, cDeptID its cost centre.
constexpr ColumnDefinition departmentCostCentreMapColumns[] = {
    {"cBusID", "nvarchar(12) not null"},
    {"cDeptID", "nvarchar(20) not null"},
};

constexpr ColumnDefinition departmentCostCentreColumns[] = {
    {"cDeptID", "nvarchar(20) not null"},
    {"cDeptName", "nvarchar(60) not null"},
};

// Project-item classes, and the tables in which a class keeps its items and their classes; empty: it has none.
constexpr ColumnDefinition projectClassColumns[] = {
    {"cItem_Class", "nvarchar(10) not null"},
    {"cItem_Name", "nvarchar(60) not null"},
    {"cTable", "nvarchar(50)"},
    {"cClassTable", "nvarchar(50)"},
};

constexpr ColumnDefinition projectItemColumns[] = {
    {"cItemCode", "nvarchar(60) not null"},
    {"cItemName", "nvarchar(255) not null"},
    {"cItemCCode", "nvarchar(40)"},
};

constexpr ColumnDefinition projectItemClassColumns[] = {
    {"cItemCCode", "nvarchar(40) not null"},
    {"cItemCName", "nvarchar(60) not null"},
};

// --- General ledger -------------------------------------------------------------------------------------------------

constexpr ColumnDefinition accountColumns[] = {
    {"iYear", "int not null"},
    {"cCode", "nvarchar(40) not null"},
    {"cCode_Name", "nvarchar(60) not null"},
};

// One row an entry; the entries of a voucher agree in coutNo_ID. md and mc are debit and credit.
constexpr ColumnDefinition voucherEntryColumns[] = {
    {"i_id", "int not null"},
    {"iYear", "int not null"},
    {"iPeriod", "int not null"},
    {"cSign", "nvarchar(8) not null"},
    {"ino_id", "int not null"},
    {"inid", "int not null"},
    {"dbill_date", "datetime not null"},
    {"cBill", "nvarchar(20)"},
    {"cDigest", "nvarchar(120)"},
    {"cCode", "nvarchar(40) not null"},
    {"md", "money not null"},
    {"mc", "money not null"},
    {"coutSysName", "nvarchar(10)"},
    {"coutNo_ID", "nvarchar(50)"},
};

// --- Options, enumerations, periods ---------------------------------------------------------------------------------

constexpr ColumnDefinition optionColumns[] = {
    {"cSysID", "nvarchar(10) not null"}, {"cID", "nvarchar(10) not null"}, {"cName", "nvarchar(60) not null"},
    {"cCaption", "nvarchar(120)"},       {"cValue", "nvarchar(255)"},
};

// What an option was in an earlier year.
constexpr ColumnDefinition pastOptionColumns[] = {
    {"iYear", "int not null"},
    {"cSysID", "nvarchar(10) not null"},
    {"cName", "nvarchar(60) not null"},
    {"cValue", "nvarchar(255)"},
};

constexpr ColumnDefinition enumerationColumns[] = {
    {"EnumType", "nvarchar(60) not null"},
    {"EnumCode", "nvarchar(60) not null"},
    {"LocaleId", "nvarchar(10) not null"},  // "zh-CN", "en-US"
    {"EnumName", "nvarchar(120) not null"},
};

// The state of each month of the inventory ledger: bSettled when it is closed. Month 0 stands for the year's cost-item
// opening balances: settled when they are finished.
constexpr ColumnDefinition periodStateColumns[] = {
    {"iYear", "int not null"},
    {"iMonth", "int not null"},
    {"bSettled", "bit not null"},
};

constexpr ColumnDefinition periodColumns[] = {
    {"cAcc_Id", "nvarchar(10) not null"}, {"iYear", "int not null"},     {"iId", "int not null"},
    {"dBegin", "datetime not null"},      {"dEnd", "datetime not null"},
};

constexpr ColumnDefinition userColumns[] = {
    {"cUser_Id", "nvarchar(20) not null"},
    {"cUser_Name", "nvarchar(40) not null"},
};

constexpr TableDefinition tableDefinitions[] = {
    {"orvsystem..UA_Period", periodColumns, "cAcc_Id, iYear, iId"},
    {"orvsystem..ua_user", userColumns, "cUser_Id"},
    {"AccInformation", optionColumns, "cSysID, cID"},
    {"IA_HisOption", pastOptionColumns, "iYear, cSysID, cName"},
    {"IA_PeriodState", periodStateColumns, "iYear, iMonth"},
    {"AA_Enum", enumerationColumns, "EnumType, EnumCode, LocaleId"},
    {"VouchType", voucherTypeColumns, "cVouchType"},
    {"Rd_Style", receiptIssueTypeColumns, "cRdCode"},
    {"Code", accountColumns, "iYear, cCode"},
    {"Department", departmentColumns, "cDepCode"},
    {"Person", personColumns, "cPersonCode"},
    {"Warehouse", warehouseColumns, "cWhCode"},
    {"ComputationUnit", unitColumns, "cComUnitCode"},
    {"InventoryClass", inventoryClassColumns, "cInvCCode"},
    {"Inventory", inventoryColumns, "cInvCode"},
    {"CustomerClass", customerClassColumns, "cCCCode"},
    {"Customer", customerColumns, "cCusCode"},
    {"VendorClass", vendorClassColumns, "cVCCode"},
    {"Vendor", vendorColumns, "cVenCode"},
    {"sfc_workcenter", workCentreColumns, "WcId"},
    {"CA_CostCenter", costCentreColumns, "cCostCenter"},
    {"CA_CostCenterMap", costCentreMapColumns, "cDepCode, bIsWCID"},
    {"CAQ_CostCenter", departmentCostCentreColumns, "cDeptID"},
    {"CAQ_CostCenterMap", departmentCostCentreMapColumns, "cBusID"},
    {"fItem", projectClassColumns, "cItem_Class"},
    {"fItem_Project", projectItemColumns, "cItemCode"},
    {"fItem_ProjectClass", projectItemClassColumns, "cItemCCode"},
    {"fItem_Research", projectItemColumns, "cItemCode"},
    {"fItem_ResearchClass", projectItemClassColumns, "cItemCCode"},
    {"Ca_FxClassDef", costItemClassColumns, "iFxCId"},
    {"Ca_FxDef", costItemColumns, "iFxID"},
    {"Ca_FxMapExpDID", detailTypeColumns, "iFxDID"},
    {"Ca_FxMapExpDetails", detailColumns, "iFxDID"},
    {"Ca_AmoTypeName", expenseTypeColumns, "cAmoType, localid"},
    {"Ca_CostExpDetail_Period", expensePeriodColumns, "cAmoID, cAmoType, iPeriod"},
    {"gl_AccVouch", voucherEntryColumns, "i_id"},
    {"ia_subsidiary", ledgerColumns, "AutoID"},
    {"ia_subsidiary_Item", itemColumns, "AutoID"},
    {"ia_subsidiary_ItemOut", itemColumns, "AutoID"},
    {"IA_Subsidiary_QC", ledgerColumns, "AutoID"},
    {"IA_Subsidiary_QC_Item", openingItemColumns, "AutoID"},
    {"IA_ENSubSidiary", ledgerColumns, "AutoID"},
};

constexpr IndexDefinition indexDefinitions[] = {
    {"IX_AccInformation_cName", "AccInformation", "cSysID, cName", true},
    {"IX_sfc_workcenter_Description", "sfc_workcenter", "Description", true},
    {"IX_Ca_FxClassDef_cFxCCode", "Ca_FxClassDef", "cFxCCode", true},
    {"IX_Ca_FxDef_cFxCode", "Ca_FxDef", "cFxCode", true},
    {"IX_gl_AccVouch_coutNo_ID", "gl_AccVouch", "coutNo_ID"},
    {"IX_ia_subsidiary_Month", "ia_subsidiary", "iYear, iMonth"},
    {"IX_ia_subsidiary_VouType", "ia_subsidiary", "iYear, cVouType"},
    // With the month: or the months of one inventory would be looked for among the lines of all.
    {"IX_ia_subsidiary_Inventory", "ia_subsidiary", "cInvCode, iYear, iMonth"},
    {"IX_ia_subsidiary_Voucher", "ia_subsidiary", "cPZID"},
    {"IX_ia_subsidiary_Item_Line", "ia_subsidiary_Item", "iSubID"},
    {"IX_ia_subsidiary_ItemOut_Line", "ia_subsidiary_ItemOut", "iSubID"},
    {"IX_IA_Subsidiary_QC_Inventory", "IA_Subsidiary_QC", "cInvCode, iYear"},
    {"IX_IA_Subsidiary_QC_Item_Line", "IA_Subsidiary_QC_Item", "iSubQcID"},
    {"IX_IA_ENSubSidiary_Voucher", "IA_ENSubSidiary", "cPZID"},
};

}  // namespace

std::span<const TableDefinition> tables() {
  return tableDefinitions;
}

std::span<const IndexDefinition> indexes() {
  return indexDefinitions;
}

std::string createStatement(const TableDefinition& table) {
  std::string sql = "Create Table " + std::string(table.name) + " (";
  for (const ColumnDefinition& column : table.columns) {
    sql.append(column.name).append(" ").append(column.type).append(", ");
  }
  return sql.append("Primary Key (").append(table.primaryKey).append("))");
}

std::string createStatement(const IndexDefinition& index) {
  std::string sql = index.unique ? "Create Unique Index " : "Create Index ";
  return sql.append(index.name).append(" On ").append(index.table).append(" (").append(index.columns).append(")");
}

void createTables(tsql::Connection& connection) {
  for (const TableDefinition& table : tables())
    connection.execute(createStatement(table));
  connection.execute("Create Function dbo.UDF_GetLocaleID() Returns nvarchar(10) As Begin Return N'zh-CN' End");
}

void createIndexes(tsql::Connection& connection) {
  for (const IndexDefinition& index : indexes())
    connection.execute(createStatement(index));
}

}  // namespace quillon::account
