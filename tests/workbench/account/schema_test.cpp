// The schema has every table and column that the statements of the reports and dialogs name.
#include "workbench/account/schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace quillon::account {
namespace {

std::string lower(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
  return result;
}

const TableDefinition* findTable(std::string_view name) {
  const auto found = std::ranges::find(tables(), lower(name), [](const auto& table) { return lower(table.name); });
  return found == tables().end() ? nullptr : &*found;
}

const ColumnDefinition* findColumn(const TableDefinition& table, std::string_view name) {
  const auto found =
      std::ranges::find(table.columns, lower(name), [](const auto& column) { return lower(column.name); });
  return found == table.columns.end() ? nullptr : &*found;
}

std::vector<std::string> numbered(const std::string& prefix, int from, int to) {
  std::vector<std::string> names;
  for (int i = from; i <= to; ++i)
    names.push_back(prefix + std::to_string(i));
  return names;
}

void expectColumns(std::string_view tableName, const std::vector<std::string>& columns) {
  const TableDefinition* table = findTable(tableName);
  ASSERT_NE(table, nullptr) << tableName;
  for (const std::string& column : columns) {
    EXPECT_NE(findColumn(*table, column), nullptr) << tableName << "." << column;
  }
}

const std::vector<std::string> ledgerColumns = {"AutoID",          "BakID",           "iYear",
                                                "iMonth",          "dVouDate",        "dKeepDate",
                                                "cVouType",        "cVouCode",        "cBusType",
                                                "cBusCode",        "bRdFlag",         "bFlag",
                                                "cWhCode",         "cInvCode",        "cPspCode",
                                                "cRdCode",         "cDepCode",        "cAccDep",
                                                "cProCode",        "cPersonCode",     "cCusCode",
                                                "cVenCode",        "iAInQuantity",    "iInCost",
                                                "iAInPrice",       "iAOutQuantity",   "iOutCost",
                                                "iAOutPrice",      "iDebitDifCost",   "iCreditDifCost",
                                                "cBatchIA",        "cItem_Class",     "cItemCName",
                                                "cItemCode",       "cName",           "cOppHead",
                                                "cMaker",          "strContractCode", "cProordercode",
                                                "iProorderids",    "cworkprocode",    "cworkprocodedis",
                                                "cworkcentercode", "cworkcentername", "cSaleorderCode",
                                                "isaleorderids",   "exoCode",         "iexrowno",
                                                "cImordercode",    "cpurorderCode",   "centrustordercode",
                                                "cOrderCode",      "cDemandCode",     "cdemandmemo",
                                                "cAccounter",      "cHandler",        "cMemo",
                                                "cPZID",           "iPZID",           "cPZdigest"};

TEST(Schema, TheLedgersHaveTheirColumns) {
  for (const char* table : {"ia_subsidiary", "IA_Subsidiary_QC", "IA_ENSubSidiary"}) {
    expectColumns(table, ledgerColumns);
    expectColumns(table, numbered("cFree", 1, 10));
    expectColumns(table, numbered("cDefine", 1, 16));
    expectColumns(table, numbered("cDefine", 22, 37));
  }
  const std::vector<std::string> parts = {"iItemID",          "iItemDetailID",   "iYear",        "iMonth",
                                          "bRdFlag",          "iItemInQuantity", "iItemInCost",  "iItemInPrice",
                                          "iItemOutQuantity", "iItemOutCost",    "iItemOutPrice"};
  for (const char* table : {"ia_subsidiary_Item", "ia_subsidiary_ItemOut", "IA_Subsidiary_QC_Item"}) {
    expectColumns(table, parts);
  }
  expectColumns("ia_subsidiary_Item", {"iSubID"});
  expectColumns("ia_subsidiary_ItemOut", {"iSubID"});
  expectColumns("IA_Subsidiary_QC_Item", {"isubqcid"});
}

TEST(Schema, TheCostItemTablesHaveTheirColumns) {
  expectColumns("Ca_FxDef", {"ifxID", "cFxCode", "cFxName", "cFxCID", "bHasDetails"});
  expectColumns("Ca_FxClassDef", {"iFxCId", "cFxCCode", "cfxCName", "iGrade"});
  expectColumns("Ca_FxMapExpDID", {"ifxdid", "cAmotype"});
  expectColumns("Ca_FxMapExpDetails", {"ifxdid", "cAmotype", "cInvCode", "cAmoID"});
  expectColumns("Ca_FxMapExpDetails", numbered("cFree", 1, 10));
  expectColumns("Ca_CostExpDetail_Period", {"cAmoID", "cAmoType", "iPeriod", "cAmoName"});
  expectColumns("Ca_AmoTypeName", {"cAmotype", "localid", "cAmoTypeName"});
}

TEST(Schema, TheMastersHaveTheirColumns) {
  expectColumns("Inventory", {"cInvCode", "cInvName", "cInvStd", "cInvAddCode", "cInvCCode", "cComunitCode",
                              "cGroupCode", "dEDate", "bCheckBatch"});
  expectColumns("Inventory", numbered("bCheckFree", 1, 10));
  expectColumns("Inventory", numbered("cInvDefine", 1, 16));
  expectColumns("InventoryClass", {"cInvCCode", "cInvCName"});
  expectColumns("ComputationUnit", {"ccomunitcode", "cComUnitName", "cGroupCode", "bMainUnit"});
  expectColumns("Warehouse", {"cWhCode", "cWhName"});
  expectColumns("Department", {"cDepCode", "cDepName"});
  expectColumns("Customer", {"cCusCode", "cCusName", "cCCCode"});
  expectColumns("CustomerClass", {"cCCCode", "cCCName"});
  expectColumns("Vendor", {"cVenCode", "cVenName", "cVCCode"});
  expectColumns("VendorClass", {"cVCCode", "cVCName"});
  expectColumns("Person", {"cPersonCode", "cPersonName"});
  expectColumns("Rd_Style", {"cRdCode", "cRdName"});
  expectColumns("VouchType", {"cVouchType", "cVouchName"});
  expectColumns("Code", {"ccode", "ccode_name", "iyear"});
  expectColumns("sfc_workcenter", {"Description", "WcCode"});
  expectColumns("CA_CostCenterMap", {"cDepCode", "bISWCID", "cCostCenter"});
  expectColumns("CA_CostCenter", {"cCostCenter", "cCostCenterName"});
  expectColumns("CAQ_CostCenterMap", {"cBusID", "cDeptID"});
  expectColumns("CAQ_CostCenter", {"cDeptID", "cDeptName"});
  expectColumns("fItem", {"citem_class", "citem_name", "ctable", "cClasstable"});
}

TEST(Schema, OptionsPeriodsAndVouchersHaveTheirColumns) {
  expectColumns("AccInformation", {"cSysID", "cID", "cName", "cValue"});
  expectColumns("IA_HisOption", {"cSysID", "cName", "iYear", "cValue"});
  expectColumns("IA_PeriodState", {"iYear", "iMonth", "bSettled"});
  expectColumns("AA_Enum", {"EnumType", "EnumCode", "EnumName", "LocaleId"});
  expectColumns("gl_AccVouch", {"csign", "ino_id", "coutNo_ID", "iyear", "iperiod"});
  expectColumns("orvsystem..UA_Period", {"cAcc_Id", "iYear", "iId", "dBegin", "dEnd"});
  expectColumns("orvsystem..ua_user", {"cUser_Id", "cUser_Name"});
}

// A statement unites this table with a row of two columns.
TEST(Schema, VoucherTypesHaveTwoColumns) {
  ASSERT_NE(findTable("VouchType"), nullptr);
  EXPECT_EQ(findTable("VouchType")->columns.size(), 2U);
}

// The detail ledger reads these names from the ledger without saying which table, beside the tables listed here.
TEST(Schema, UnqualifiedNamesAreUnambiguous) {
  const std::vector<std::string> unqualified = {
      "dVouDate",      "dKeepDate",     "cVouType",          "cVouCode",        "cPZdigest",      "cPZID",
      "iPZID",         "cBusCode",      "citem_class",       "citemcname",      "caccounter",     "strcontractcode",
      "cproordercode", "iproorderids",  "cworkprocodedis",   "cworkcentercode", "csaleordercode", "isaleorderids",
      "exoCode",       "iExRowno",      "centrustordercode", "cOrderCode",      "iainQuantity",   "iInCost",
      "iainPrice",     "iaoutQuantity", "ioutCost",          "iaoutPrice",      "cItemCode",      "cName",
      "bFlag"};
  for (const char* name : {"ia_subsidiary_Item", "Inventory", "ComputationUnit", "Warehouse", "Department", "Vendor",
                           "Customer", "Rd_Style", "Ca_FxDef", "Ca_FxClassDef"}) {
    for (const std::string& column : unqualified) {
      EXPECT_EQ(findColumn(*findTable(name), column), nullptr) << name << "." << column;
    }
    for (const std::string& column : numbered("cDefine", 1, 37)) {
      EXPECT_EQ(findColumn(*findTable(name), column), nullptr) << name << "." << column;
    }
  }
  // Read beside the inventory master alone.
  EXPECT_EQ(findColumn(*findTable("Inventory"), "cDepCode"), nullptr);
  EXPECT_EQ(findColumn(*findTable("Inventory"), "cWhCode"), nullptr);
  // The inventory's own user-defined fields, read beside the ledger.
  for (const std::string& column : numbered("cInvDefine", 1, 16)) {
    EXPECT_EQ(findColumn(*findTable("ia_subsidiary"), column), nullptr) << column;
  }
}

TEST(Schema, TypesAreWhatTheStatementsExpect) {
  const auto type = [](std::string_view table, std::string_view column) {
    return std::string(findColumn(*findTable(table), column)->type);
  };
  EXPECT_EQ(type("ia_subsidiary", "iAInQuantity"), "decimal(18,6)");
  EXPECT_EQ(type("ia_subsidiary", "iAInPrice"), "money");
  EXPECT_EQ(type("ia_subsidiary", "iInCost"), "decimal(18,6)");
  EXPECT_EQ(type("ia_subsidiary", "dKeepDate"), "datetime");
  EXPECT_EQ(type("ia_subsidiary", "bRdFlag"), "bit not null");
  EXPECT_EQ(type("ia_subsidiary_Item", "iItemOutPrice"), "money");
  EXPECT_EQ(type("Ca_FxDef", "cFxCode"), "nvarchar(40) not null");
  EXPECT_EQ(type("Ca_FxDef", "cFxName"), "nvarchar(128) not null");
  EXPECT_EQ(type("Warehouse", "cWhName"), "nvarchar(20) not null");  // the ledger report gives it 20 characters
  EXPECT_EQ(type("Rd_Style", "cRdName"), "nvarchar(20) not null");   // and this one, too
  EXPECT_EQ(type("Ca_CostExpDetail_Period", "iPeriod"), "nvarchar(6) not null");
  EXPECT_EQ(type("ia_subsidiary", "cDefine5"), "int");
  EXPECT_EQ(type("ia_subsidiary", "cDefine7"), "float");
  EXPECT_EQ(type("ia_subsidiary", "cDefine4"), "datetime");
}

TEST(Schema, NoNameStandsTwice) {
  std::set<std::string> tableNames;
  for (const TableDefinition& table : tables()) {
    EXPECT_TRUE(tableNames.insert(lower(table.name)).second) << table.name;
    std::set<std::string> columnNames;
    for (const ColumnDefinition& column : table.columns) {
      EXPECT_TRUE(columnNames.insert(lower(column.name)).second) << table.name << "." << column.name;
    }
  }
}

TEST(Schema, KeysAndIndexesNameColumnsOfTheirTable) {
  const auto expectKnown = [](std::string_view tableName, std::string_view list) {
    const TableDefinition* table = findTable(tableName);
    ASSERT_NE(table, nullptr) << tableName;
    for (std::size_t begin = 0; begin < list.size();) {
      const std::size_t end = std::min(list.find(", ", begin), list.size());
      EXPECT_NE(findColumn(*table, list.substr(begin, end - begin)), nullptr) << tableName << " (" << list << ")";
      begin = end + 2;
    }
  };
  for (const TableDefinition& table : tables())
    expectKnown(table.name, table.primaryKey);
  std::set<std::string> names;
  for (const IndexDefinition& index : indexes()) {
    expectKnown(index.table, index.columns);
    EXPECT_TRUE(names.insert(lower(index.name)).second) << index.name;
  }
}

TEST(Schema, CreateStatementsReadAsTheDefinitions) {
  EXPECT_EQ(createStatement(*findTable("Warehouse")),
            "Create Table Warehouse (cWhCode nvarchar(10) not null, cWhName nvarchar(20) not null, "
            "Primary Key (cWhCode))");
  EXPECT_EQ(createStatement(IndexDefinition{"IX_a", "t", "b, c", true}), "Create Unique Index IX_a On t (b, c)");
  EXPECT_EQ(createStatement(IndexDefinition{"IX_a", "t", "b"}), "Create Index IX_a On t (b)");
}

}  // namespace
}  // namespace quillon::account
