// The check of an account with the keys of the four reports.

#include <gmock/gmock.h>

#include <algorithm>

#include "workbench/account/account.h"
#include "workbench/account/key_check.h"
#include "workbench/account/schema.h"
#include "workbench/catalogue/catalogue.h"

namespace quillon::account {
namespace {

using workbench::joinKeysOfReports;

class JoinKeys : public testing::Test {
 protected:
  void SetUp() override { createTables(*account_); }

  // The table once more without its primary key, as an account from elsewhere may have it, with these rows.
  void unkeyed(const std::string& name, const std::string& columns, const std::string& rows) {
    const auto table = std::ranges::find(tables(), name, &TableDefinition::name);
    ASSERT_NE(table, tables().end()) << name;
    std::string definition;
    for (const ColumnDefinition& column : table->columns)
      definition += (definition.empty() ? "" : ", ") + std::string(column.name) + " " + std::string(column.type);
    account_->execute("Drop Table " + name);
    account_->execute("Create Table " + name + " (" + definition + ")");
    account_->execute("Insert Into " + name + " (" + columns + ") Values " + rows);
  }

  // "table: key (rows) reports"
  std::vector<std::string> broken() {
    std::vector<std::string> lines;
    for (const BrokenKey& key : brokenKeys(*account_, joinKeysOfReports()))
      lines.push_back(key.table + ": " + key.key.english() + " (" + std::to_string(key.rows) + ") " + key.reports);
    return lines;
  }

  std::unique_ptr<tsql::Connection> account_ = tsql::Connection::openInMemory();
};

TEST_F(JoinKeys, AnAccountWithOneRowAKeyIsWhole) {
  account_->execute("Insert Into Warehouse (cWhCode, cWhName) Values (N'01', N'原料库'), (N'02', N'原料库')");
  EXPECT_THAT(broken(), testing::IsEmpty());
}

TEST_F(JoinKeys, ASampleAccountIsWhole) {
  const auto sample = tsql::Connection::openInMemory();
  createTables(*sample);
  writeSample(*sample, {.rows = 1500}, {});
  EXPECT_TRUE(brokenKeys(*sample, joinKeysOfReports()).empty());
}

// One table after the other, each with one key twice, one key three times and one once.
TEST_F(JoinKeys, EachMasterMustHaveOneRowForItsKey) {
  struct Case {
    std::string table;
    std::string key;
    std::string others;  // further columns that may not be null, and a value for them
    std::string values;
    std::string reports;
  };
  const Case cases[] = {
      {"Warehouse", "cWhCode", "cWhName", "N'x'", "sfc-item, outsum-item, fx-detail, fx-wt"},
      {"Rd_Style", "cRdCode", "cRdName, bRdFlag", "N'x', 0", "outsum-item, fx-detail, fx-wt"},
      {"sfc_workcenter", "Description", "WcId, WcCode", "1, N'x'", "outsum-item"},
      {"CA_CostCenter", "cCostCenter", "cCostCenterName", "N'x'", "outsum-item"},
      {"ComputationUnit", "cComUnitCode", "cComUnitName, cGroupCode, bMainUnit", "N'x', N'x', 1",
       "sfc-item, outsum-item, fx-detail, fx-wt"},
      {"Customer", "cCusCode", "cCusName", "N'x'", "outsum-item, fx-detail, fx-wt"},
      {"CustomerClass", "cCCCode", "cCCName", "N'x'", "outsum-item, fx-wt"},
      {"Vendor", "cVenCode", "cVenName", "N'x'", "outsum-item, fx-detail, fx-wt"},
      {"VendorClass", "cVCCode", "cVCName", "N'x'", "fx-wt"},
      {"CAQ_CostCenterMap", "cBusID", "cDeptID", "N'x'", "fx-wt"},
      {"CAQ_CostCenter", "cDeptID", "cDeptName", "N'x'", "fx-wt"},
      {"Department", "cDepCode", "cDepName", "N'x'", "sfc-item, outsum-item, fx-detail, fx-wt"},
      {"Person", "cPersonCode", "cPersonName", "N'x'", "outsum-item"},
      {"orvsystem..ua_user", "cUser_Id", "cUser_Name", "N'x'", "outsum-item"},
      {"fItem", "cItem_Class", "cItem_Name", "N'x'", "outsum-item"},
      {"Ca_FxMapExpDID", "iFxDID", "iFxID, cAmoType", "1, 1", "sfc-item, outsum-item, fx-wt"},
      {"Ca_FxMapExpDetails", "iFxDID", "cAmoType", "1", "sfc-item, outsum-item, fx-wt"},
      {"Ca_FxDef", "iFxID", "cFxCode, cFxName, cFxCID, bHasDetails", "N'x', N'x', 1, 0",
       "sfc-item, outsum-item, fx-detail, fx-wt"},
      {"ia_subsidiary", "AutoID", "iYear, iMonth, cVouType, bRdFlag, bFlag", "2024, 1, N'32', 0, 0",
       "sfc-item, outsum-item, fx-detail, fx-wt"},
      {"IA_Subsidiary_QC", "AutoID", "iYear, iMonth, cVouType, bRdFlag, bFlag", "2024, 1, N'34', 1, 0",
       "sfc-item, fx-detail"},
      {"Inventory", "cInvCode",
       "cInvName, cInvCCode, cComUnitCode, bCheckBatch, bCheckFree1, bCheckFree2, bCheckFree3, bCheckFree4, "
       "bCheckFree5, bCheckFree6, bCheckFree7, bCheckFree8, bCheckFree9, bCheckFree10",
       "N'x', N'x', N'x', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0", "sfc-item, outsum-item, fx-detail, fx-wt"},
  };
  for (const Case& master : cases) {
    account_ = tsql::Connection::openInMemory();
    createTables(*account_);
    std::string rows;
    for (const char* code : {"2", "1", "3", "2", "1", "1"})
      rows += (rows.empty() ? "(" : ", (") + std::string(code) + ", " + master.values + ")";
    unkeyed(master.table, master.key + ", " + master.others, rows);
    EXPECT_THAT(broken(), testing::ElementsAre(master.table + ": " + master.key + " = 1 (3) " + master.reports,
                                               master.table + ": " + master.key + " = 2 (2) " + master.reports));
  }
}

TEST_F(JoinKeys, KeysOfSeveralColumnsAreNamedWhole) {
  unkeyed("Code", "iYear, cCode, cCode_Name",
          "(2024, N'6602', N'a'), (2024, N'6602', N'b'), (2023, N'6602', N'a'), (2024, N'6601', N'c')");
  unkeyed("Ca_CostExpDetail_Period", "cAmoID, cAmoType, iPeriod, cAmoName",
          "(N'F1', 1, N'202401', N'a'), (N'F1', 1, N'202401', N'b'), (N'F1', 1, N'202402', N'a')");
  unkeyed("Ca_AmoTypeName", "cAmoType, localid, cAmoTypeName",
          "(1, N'zh-CN', N'a'), (1, N'zh-CN', N'b'), (1, N'en-US', N'a')");
  EXPECT_THAT(
      broken(),
      testing::ElementsAre(
          "Code: iYear = 2024, cCode = 6602 (2) outsum-item",
          "Ca_CostExpDetail_Period: cAmoID = F1, cAmoType = 1, iPeriod = 202401 (2) sfc-item, outsum-item, fx-wt",
          "Ca_AmoTypeName: cAmoType = 1, localid = zh-CN (2) sfc-item, outsum-item, fx-wt"));
}

// The join takes 01, "01 " and letter case as the account's collation does.
TEST_F(JoinKeys, KeysAreComparedAsTheJoinComparesThem) {
  unkeyed("Warehouse", "cWhCode, cWhName", "(N'A1', N'x'), (N'a1 ', N'y')");
  ASSERT_EQ(broken().size(), 1U);
}

TEST_F(JoinKeys, ANullIsNoKey) {
  account_->execute("Drop Table Customer");
  account_->execute("Create Table Customer (cCusCode nvarchar(20), cCusName nvarchar(98))");
  account_->execute("Insert Into Customer Values (Null, N'x'), (Null, N'y')");
  EXPECT_THAT(broken(), testing::IsEmpty());
}

TEST_F(JoinKeys, AWorkCentreAndADepartmentOfTheSameCodeAreTwoKeys) {
  account_->execute("Insert Into CA_CostCenterMap Values (N'01', 0, N'C1'), (N'01', 1, N'C2')");
  EXPECT_THAT(broken(), testing::IsEmpty());
}

TEST_F(JoinKeys, IssuesMustFindOneCostCentre) {
  account_->execute(
      "Insert Into sfc_workcenter (WcId, WcCode, Description) Values (1, N'W1', N'车床'), (2, N'W2', N'铣床')");
  // W1 is mapped, and of the departments D1.
  account_->execute("Insert Into CA_CostCenterMap Values (N'W1', 1, N'C1'), (N'D1', 0, N'C2')");
  const std::string ledger =
      "Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, bFlag, bRdFlag, cworkcentername, cAccDep) Values ";
  account_->execute(ledger +
                    "(1, 2024, 1, N'11', 0, 0, N'车床', N'D2'), (2, 2024, 1, N'11', 0, 0, N'铣床', N'D1'), "
                    "(3, 2024, 1, N'11', 0, 0, Null, N'D1'), (4, 2024, 1, N'10', 0, 1, N'车床', N'D1')");
  EXPECT_THAT(broken(), testing::IsEmpty()) << "each issue finds one row of the map; line 4 is a receipt";
  account_->execute(ledger + "(5, 2024, 1, N'11', 0, 0, N'车床', N'D1'), (6, 2024, 2, N'11', 0, 0, N'车床', N'D1')");
  EXPECT_THAT(broken(), testing::ElementsAre(
                            "CA_CostCenterMap: work centre W1 and department D1 of the same issues (2) outsum-item"));
}

TEST_F(JoinKeys, AClassMustHaveOneClassAboveItAtEachGrade) {
  account_->execute(
      "Insert Into Ca_FxClassDef (iFxCId, cFxCCode, cFxCName, iGrade) Values (1, N'01', N'a', 1), (2, N'02', N'b', 1), "
      "(3, N'0101', N'c', 2), (4, N'0201', N'd', 2)");
  EXPECT_THAT(broken(), testing::IsEmpty());
  account_->execute("Insert Into Ca_FxClassDef (iFxCId, cFxCCode, cFxCName, iGrade) Values (5, N'010', N'e', 1)");
  EXPECT_THAT(broken(),
              testing::ElementsAre(
                  "Ca_FxClassDef: classes of grade 1 at the beginning of cFxCCode = 010 (2) sfc-item, outsum-item",
                  "Ca_FxClassDef: classes of grade 1 at the beginning of cFxCCode = 0101 (2) sfc-item, outsum-item"));
}

TEST_F(JoinKeys, AClassIsKnownByItsNumber) {
  unkeyed("Ca_FxClassDef", "iFxCId, cFxCCode, cFxCName, iGrade", "(1, N'01', N'a', 1), (1, N'02', N'b', 1)");
  EXPECT_THAT(broken(), testing::ElementsAre("Ca_FxClassDef: iFxCId = 1 (2) sfc-item, outsum-item, fx-detail, fx-wt"));
}

TEST_F(JoinKeys, RefusesADatabaseThatIsNoAccount) {
  account_->execute("Drop Table fItem");
  try {
    brokenKeys(*account_, joinKeysOfReports());
    FAIL();
  } catch (const AccountError& error) {
    EXPECT_STREQ(error.what(),
                 "this is no account: the table fItem is missing; make one with: quillon account new FILE");
  }
}

}  // namespace
}  // namespace quillon::account
