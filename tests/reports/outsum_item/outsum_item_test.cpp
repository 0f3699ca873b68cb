#include "reports/outsum_item/outsum_item.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using fakes::ItemValues;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string detail = "[77u1IA_OutSum_Item_DetailTmp]";

// A typed text with the line breaks of a statement.
std::string lines(std::string_view text) {
  std::string statement;
  for (const char c : text) {
    if (c == '\n') statement += '\r';
    statement += c;
  }
  return statement;
}

// What differs between the modes and sources.
struct Variant {
  std::string splitTable;
  std::string costItemColumns;
  std::string classJoin;  // with its line break
  std::string where;
};

std::string expectedJoins() {
  return "Left Join Warehouse wh With(NoLock) ON wh.cWhCode = base.cWhCode\n"
         "Left Join Inventory inv With(NoLock) ON inv.cInvCode = base.cInvCode\n"
         "Left Join Inventory psp With(NoLock) ON psp.cInvCode = base.cPspCode\n"
         "Left Join Rd_Style With(NoLock) ON Rd_Style.cRdCode = base.cRdCode\n"
         "Left Join sfc_workcenter work With(NoLock) ON work.Description = base.cworkcentername\n"
         "Left Join CA_CostCenterMap costmap With(NoLock) ON costmap.cDepCode = Case When bISWCID = 1 Then work.WcCode "
         "Else base.cAccDep End\n"
         "Left Join CA_CostCenter cost With(NoLock) ON cost.cCostCenter = costmap.cCostCenter\n"
         "Left Join ComputationUnit unit With(NoLock) ON unit.cComunitCode = inv.cComunitCode\n"
         "Left Join Customer cus With(NoLock) ON cus.cCusCode = base.cCusCode\n"
         "Left Join CustomerClass cuscls With(NoLock) ON cuscls.cCCCode = cus.cCCCode\n"
         "Left Join Vendor ven With(NoLock) ON ven.cVenCode = base.cVenCode\n"
         "Left Join Department dep With(NoLock) ON dep.cDepCode = base.cAccDep\n"
         "Left Join Department whdep With(NoLock) ON whdep.cDepCode = base.cDepCode\n"
         "Left Join Code code With(NoLock) ON code.ccode = base.cOppHead And code.iyear = base.iYear\n"
         "Left Join Person person With(NoLock) ON person.cPersonCode = base.cPersonCode\n"
         "Left Join orvsystem..ua_user maker With(NoLock) ON maker.cUser_Id = base.cMaker\n"
         "Left Join fItem With(NoLock) ON fItem.citem_class = base.cItem_Class\n";
}

std::string expectedFrom(const Variant& variant) {
  return "from " + variant.splitTable +
         " item With(NoLock) \n"
         "Left Join ia_subsidiary base With(NoLock) ON item.iSubID = base.AutoID\n" +
         expectedJoins() +
         "Left Join Ca_FxDef With(NoLock) ON item.iItemID = Ca_FxDef.ifxID\n"
         "Left Join Ca_FxClassDef With(NoLock) ON Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCID";
}

std::string expectedMasters() {
  return "wh.cWhCode, wh.cWhName, inv.cInvCCode, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode, \n"
         "base.cPspCode As cInvPspCode, psp.cInvName As cInvPspName, base.dKeepDate, \n"
         "base.cRdCode As RdCode, Rd_Style.cRdName As RdName, cost.cCostCenter, cost.cCostCenterName, \n"
         "base.cAccDep As cDepCode, dep.cDepName, base.cProCode, base.cDepCode As cWhDep, whdep.cDepName As "
         "cWhDepName, \n"
         "cus.cCCCode As cCusCCode, cuscls.cCCName As cCusCName, base.cCusCode, cus.cCusName, base.cVenCode, "
         "ven.cVenName, \n";
}

// References and user-defined fields, up to the free items.
std::string expectedRest() {
  return "base.cOppHead, code.ccode_name As cOppHeadName, base.strContractCode, base.cProordercode, "
         "base.iProorderids, \n"
         "base.cworkprocode, base.cworkcentercode, base.cworkcentername, base.cSaleorderCode, base.isaleorderids, \n"
         "base.exoCode, base.iexrowno, base.cImordercode, base.cpurorderCode, base.centrustordercode, "
         "base.cBuscode, \n"
         "base.cPersonCode As cperson, person.cPersonName, base.cMaker, maker.cUser_Name As cMakerName, \n"
         "base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,"
         "base.cDefine8,\n"
         "base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,"
         "base.cDefine16,\n"
         "base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,"
         "base.cDefine29,\n"
         "base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,"
         "base.cDefine37,\n"
         "inv.cInvDefine1,inv.cInvDefine2,inv.cInvDefine3,inv.cInvDefine4,inv.cInvDefine5,inv.cInvDefine6,"
         "inv.cInvDefine7,inv.cInvDefine8,\n"
         "inv.cInvDefine9,inv.cInvDefine10,inv.cInvDefine11,inv.cInvDefine12,inv.cInvDefine13,inv.cInvDefine14,"
         "inv.cInvDefine15,inv.cInvDefine16, \n"
         "base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,"
         "base.cFree8,base.cFree9,base.cFree10,\n";
}

std::string expectedColumns() {
  return "autoid, dVouDate, cVouType, cBusType, cVouCode, \n"
         "cWhCode, cWhName, cInvCCode, cInvCode, cInvName, cInvStd, cInvAddCode, cInvPspCode, cInvPspName, "
         "dKeepDate, \n"
         "RdCode, RdName, cCostCenter, cCostCenterName, \n"
         "cDepCode, cDepName, cProCode, cWhDep, cWhDepName, \n"
         "cCusCCode, cCusCName, cCusCode, cCusName, cVenCode, cVenName, \n"
         "cItem_Class, cItem_ClassName, cItemCCode, cItemCName, cItemCode, cItemName, \n"
         "cOppHead, cOppHeadName, strContractCode, cProordercode, iProorderids, cworkprocode, cworkcentercode, "
         "cworkcentername, \n"
         "cSaleorderCode, isaleorderids, exoCode, iexrowno, cImordercode, cpurorderCode, centrustordercode, "
         "cBuscode, \n"
         "cperson, cPersonName, cMaker, cMakerName, \n"
         "cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,\n"
         "cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,\n"
         "cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,\n"
         "cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,\n"
         "cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,\n"
         "cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,"
         "cInvDefine16, \n";
}

std::string expectedInsert(std::string_view figures) {
  return "Insert Into " + detail + "\n(" + expectedColumns() +
         "cbatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,\n" +
         std::string(figures) +
         ")\n"
         "Select base.autoid, \n"
         "base.dVouDate, base.cVouType, base.cBusType, base.cVouCode, \n" +
         expectedMasters() +
         "base.cItem_Class, fItem.citem_name As cItem_ClassName, N'' As cItemCCode, base.cItemCName, base.cItemCode, "
         "base.cName As cItemName, \n" +
         expectedRest();
}

std::string expectedCreate(const Variant& variant) {
  return lines(
      "select Top 0 base.autoid,\n"
      "Cast('' As nVarChar(2)) As cSource, base.dVouDate, Cast('' As nVarChar(200)) As cVouType, Cast('' As "
      "nVarChar(200)) As cBusType, base.cVouCode, \n" +
      expectedMasters() +
      "base.cItem_Class, fItem.citem_name As cItem_ClassName, Cast('' As nVarChar(40)) As cItemCCode, "
      "base.cItemCName, base.cItemCode, Cast('' As nVarChar(255)) As cItemName, \n" +
      expectedRest() + variant.costItemColumns +
      "\n"
      "base.iAOutQuantity As iQuantity, base.iAOutPrice As iMoney, base.iAOutPrice As iFXMoney, Cast('' As "
      "nVarChar(40)) As cCross, \n"
      "Cast('' As nVarChar(128)) As cFxCName, Cast('' As nVarChar(60)) As cAmoCode, Cast('' As nVarChar(255)) As "
      "cAmoName \n"
      "Into " +
      detail + "\n" + expectedFrom(variant) + variant.classJoin);
}

std::string expectedSplitLines(const Variant& variant) {
  return lines(expectedInsert("cFXCode, cFXName, iQuantity, iMoney, iFXMoney") + variant.costItemColumns +
               "\n"
               "item.iItemOutQuantity As iQuantity,item.iItemOutPrice As iMoney, item.iItemOutPrice As iFXMoney\n" +
               expectedFrom(variant) + variant.classJoin + "\n" + variant.where +
               "\n"
               "And base.bRdflag = 0 And base.iYear = 2024");
}

std::string expectedUnsplitLines(const Variant& variant) {
  return lines(expectedInsert("cFXCode, cFXName, iQuantity, iMoney, iFXMoney") +
               "null as cFxCode, null as cFxName, base.iAOutQuantity As iQuantity,base.iAOutPrice As iMoney, null As "
               "iFXMoney\n"
               "from ia_subsidiary base With(NoLock) \n" +
               expectedJoins() + variant.where +
               "\n"
               "And base.bRdflag = 0 And base.iYear = 2024\n"
               "And Not Exists(Select 1 From " +
               variant.splitTable + " item With(NoLock) Where item.iSubID = base.AutoID)");
}

std::string expectedExpenseItems(const Variant& variant) {
  return lines(
      expectedInsert("cFXCode, cFXName, iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName") +
      variant.costItemColumns +
      "\n"
      "item.iItemOutQuantity As iQuantity,item.iItemOutPrice As iMoney, item.iItemOutPrice As iFXMoney,\n"
      "Ca_AmoTypeName.cAmoTypeName As cfxCName, \n"
      "Case When Ca_FxMapExpDID.cAmotype = 0 Then Ca_FxMapExpDetails.cInvCode Else Ca_FxMapExpDetails.cAmoID End As "
      "cAmoCode, \n"
      "Case When Ca_FxMapExpDID.cAmotype = 0 Then Inventory.cInvName Else Ca_CostExpDetail_Period.cAmoName End As "
      "cAmoName\n" +
      expectedFrom(variant) +
      "\n"
      "Left Join Ca_FxMapExpDID With(NoLock) ON item.iItemDetailID = Ca_FxMapExpDID.ifxdid\n"
      "Left Join Ca_FxMapExpDetails With(NoLock) ON item.iItemDetailID = Ca_FxMapExpDetails.ifxdid And "
      "Ca_FxDef.bHasDetails = 1\n"
      "Left Join Inventory With(NoLock) ON Ca_FxMapExpDetails.cInvCode = Inventory.cInvCode\n"
      "Left Join Ca_CostExpDetail_Period With(NoLock) ON Ca_FxMapExpDetails.cAmoID = Ca_CostExpDetail_Period.cAmoID\n"
      "And Ca_FxMapExpDetails.cAmotype = Ca_CostExpDetail_Period.cAmoType And Ca_FxMapExpDetails.cInvCode Is Null\n"
      "And Ca_CostExpDetail_Period.iPeriod = Cast(base.iYear as nVarchar(10)) + Case When Len(base.iMonth) = 1 Then "
      "'0' else '' End + Cast(base.iMonth as nVarchar(10))\n"
      "Left Join Ca_AmoTypeName With(NoLock) ON Ca_AmoTypeName.cAmotype = Ca_FxMapExpDID.cAmotype And "
      "Ca_AmoTypeName.localid = N'zh-CN'\n" +
      variant.where +
      "\n"
      "And base.bRdflag = 0 And base.iYear = 2024");
}

std::string expectedReportRows() {
  return lines("Insert Into tmp_result\n(" + expectedColumns() +
               "cbatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,\n"
               "cFXCode, cFXName, iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName)\n"
               "Select " +
               expectedColumns() +
               "isnull(cbatchia,''),cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,\n"
               "IsNull(cFXCode, N'') As cFXCode, IsNull(cFXName, N'') As cFXName, iQuantity, iMoney, iFXMoney, \n"
               "cFxCName, cAmoCode, cAmoName\n"
               "From " +
               detail);
}

const std::string dropBefore =
    "If Exists(Select Name From Sysobjects Where Name = '77u1IA_OutSum_Item_DetailTmp') Drop Table "
    "[77u1IA_OutSum_Item_DetailTmp]";
const std::string createResult = "Select Top 0 * Into tmp_result From [77u1IA_OutSum_Item_DetailTmp]";
const std::string nameBusinessTypes =
    "Update tmp_result set cBusType=AA.EnumName from tmp_result Wt inner join aa_enum AA on  Wt.cBusType=AA.EnumCode "
    "where AA.EnumType='IA.BusType' and AA.LocaleId=DBO.UDF_GetLocaleID()";
const std::string nameVoucherTypes =
    "Update tmp_result set cvoutype=AA_Enum.EnumName from  tmp_result temp inner join VouchType on case when "
    "temp.cvoutype = N'3201' then N'32' else temp.cvoutype end=VouchType.cVouchType\r\n"
    "inner join AA_Enum on VouchType.cVouchName=AA_Enum.EnumCode where AA_Enum.EnumType ='IA.vchtype' and "
    "AA_Enum.LocaleId=DBO.UDF_GetLocaleID()";
const std::string dropAfter =
    "If OBJECT_ID(N'[77u1IA_OutSum_Item_DetailTmp]') is not null Drop Table [77u1IA_OutSum_Item_DetailTmp]";

const std::string byCostItem = "Ca_FxDef.cFxCode, Ca_FxDef.cFxName, ";
const std::string byClass =
    "IsNull(fxcls.cFxCCode, Ca_FxClassDef.cFxCCode) As cFXCode, IsNull(fxcls.cfxCName, Ca_FxClassDef.cfxCName) As "
    "cFXName, ";
const std::string classJoinGrade2 =
    "\nLeft Join Ca_FxClassDef fxcls With(NoLock) ON Ca_FxClassDef.cFxCCode like (fxcls.cFxCCode + '%') And "
    "fxcls.iGrade = 2";
const std::string outboundSplitOnly =
    " And base.AutoID In (Select Distinct iSubID From ia_subsidiary_ItemOut with(nolock)) ";

class OutsumItemBuild : public testing::Test {
 protected:
  // Runs the report; gives the statements that it executed, in order.
  std::vector<std::string> statementsOf(std::vector<ItemValues> items) {
    OutsumItem report(module);
    fakes::FakeArgument argument(platform.record, platform.filter(std::move(items)));
    report.getSql(argument);
    return platform.record.statements();
  }
  static std::vector<ItemValues> filterOf(const char* mode, const char* source) {
    return {{.name = "iYear", .value = "2024"},
            {.name = "cModal", .value = mode},
            {.name = "iGrade", .value = "2"},
            {.name = "cSource", .value = source}};
  }

  fakes::FakePlatform platform;
  Module module{platform};
};

TEST_F(OutsumItemBuild, ByCostItemFromTheSplitOfAllLines) {
  const Variant variant{.splitTable = "ia_subsidiary_Item",
                        .costItemColumns = byCostItem,
                        .classJoin = "",
                        .where = "Where 1 = 1 And base.iYear = 2024 "};
  EXPECT_THAT(
      statementsOf(filterOf("1", "0")),
      ElementsAre(dropBefore, expectedCreate(variant), createResult, expectedSplitLines(variant),
                  expectedUnsplitLines(variant), expectedReportRows(), nameBusinessTypes, nameVoucherTypes, dropAfter));
  EXPECT_EQ(platform.record.calls.back(), "Session.close");
  EXPECT_EQ(module.session, nullptr);
}

TEST_F(OutsumItemBuild, ByCostItemFromTheOutboundSplit) {
  const Variant variant{.splitTable = "ia_subsidiary_ItemOut",
                        .costItemColumns = byCostItem,
                        .classJoin = "",
                        .where = "Where 1 = 1 And base.iYear = 2024 " + outboundSplitOnly};
  EXPECT_THAT(
      statementsOf(filterOf("1", "1")),
      ElementsAre(dropBefore, expectedCreate(variant), createResult, expectedSplitLines(variant),
                  expectedUnsplitLines(variant), expectedReportRows(), nameBusinessTypes, nameVoucherTypes, dropAfter));
}

TEST_F(OutsumItemBuild, ByClassFromTheSplitOfAllLines) {
  const Variant variant{.splitTable = "ia_subsidiary_Item",
                        .costItemColumns = byClass,
                        .classJoin = classJoinGrade2,
                        .where = "Where 1 = 1 And base.iYear = 2024 "};
  EXPECT_THAT(
      statementsOf(filterOf("0", "0")),
      ElementsAre(dropBefore, expectedCreate(variant), createResult, expectedSplitLines(variant),
                  expectedUnsplitLines(variant), expectedReportRows(), nameBusinessTypes, nameVoucherTypes, dropAfter));
}

TEST_F(OutsumItemBuild, ByClassFromTheOutboundSplit) {
  const Variant variant{.splitTable = "ia_subsidiary_ItemOut",
                        .costItemColumns = byClass,
                        .classJoin = classJoinGrade2,
                        .where = "Where 1 = 1 And base.iYear = 2024 " + outboundSplitOnly};
  EXPECT_THAT(
      statementsOf(filterOf("0", "")),
      ElementsAre(dropBefore, expectedCreate(variant), createResult, expectedSplitLines(variant),
                  expectedUnsplitLines(variant), expectedReportRows(), nameBusinessTypes, nameVoucherTypes, dropAfter));
}

TEST_F(OutsumItemBuild, ByExpenseItemFromTheSplitOfAllLines) {
  const Variant variant{.splitTable = "ia_subsidiary_Item",
                        .costItemColumns = byCostItem,
                        .classJoin = "",
                        .where = "Where 1 = 1 And base.iYear = 2024 "};
  EXPECT_THAT(statementsOf(filterOf("2", "0")),
              ElementsAre(dropBefore, expectedCreate(variant), createResult, expectedExpenseItems(variant),
                          expectedReportRows(), nameBusinessTypes, nameVoucherTypes, dropAfter));
}

TEST_F(OutsumItemBuild, ByExpenseItemFromTheOutboundSplit) {
  const Variant variant{.splitTable = "ia_subsidiary_ItemOut",
                        .costItemColumns = byCostItem,
                        .classJoin = "",
                        .where = "Where 1 = 1 And base.iYear = 2024 " + outboundSplitOnly};
  EXPECT_THAT(statementsOf(filterOf("2", "1")),
              ElementsAre(dropBefore, expectedCreate(variant), createResult, expectedExpenseItems(variant),
                          expectedReportRows(), nameBusinessTypes, nameVoucherTypes, dropAfter));
}

TEST_F(OutsumItemBuild, AFilterWithoutASourceReadsTheOutboundSplit) {
  const std::vector<std::string> statements =
      statementsOf({{.name = "iYear", .value = "2024"}, {.name = "cModal", .value = "1"}});
  ASSERT_EQ(statements.size(), 9U);
  EXPECT_THAT(statements[3], HasSubstr("from ia_subsidiary_ItemOut item With(NoLock) "));
  EXPECT_THAT(statements[3], Not(HasSubstr("base.AutoID In (")));
}

TEST_F(OutsumItemBuild, OnlyTheTextTwoAsksForExpenseItemsAndOnlyTheNumberZeroForClasses) {
  const auto splitStatement = [this](const char* mode) {
    platform.record.calls.clear();
    return statementsOf(filterOf(mode, "0"))[3];
  };
  for (const char* mode : {"1", "3", "12"}) {
    EXPECT_THAT(splitStatement(mode), HasSubstr("\r\nCa_FxDef.cFxCode, Ca_FxDef.cFxName, \r\n")) << mode;
    EXPECT_THAT(splitStatement(mode), Not(HasSubstr("cAmoTypeName"))) << mode;
  }
  for (const char* mode : {"0", "00", ""})
    EXPECT_THAT(splitStatement(mode), HasSubstr("fxcls.iGrade = 2")) << mode;
}

TEST_F(OutsumItemBuild, ConditionsStandBetweenTheJoinsAndTheYear) {
  std::vector<ItemValues> items = filterOf("1", "0");
  items.push_back({.name = "cMaker", .value = "demo"});
  items.push_back({.name = "other", .sql = "inv.cInvStd = N'x'"});
  const std::vector<std::string> statements = statementsOf(items);
  const std::string condition =
      "\r\nWhere 1 = 1 And base.iYear = 2024 And base.cMaker In ('demo')  AND inv.cInvStd = N'x'\r\n"
      "And base.bRdflag = 0 And base.iYear = 2024";
  EXPECT_THAT(statements[3], testing::EndsWith(condition));
  EXPECT_THAT(statements[4], HasSubstr(condition + "\r\nAnd Not Exists("));
}

// --- Project items --------------------------------------------------------------------------------------------------

const std::string classQuery =
    "Select Distinct base.cItem_Class, fItem.cClasstable, fItem.ctable From [77u1IA_OutSum_Item_DetailTmp] base\r\n"
    "Left Join fItem On base.cItem_Class = fItem.citem_class\r\n"
    "Where base.cItem_Class Is not null";

TEST_F(OutsumItemBuild, ProjectItemClassesAreNamedClassByClassBeforeTheCopy) {
  platform.answers.queries = {
      {.part = "Select Distinct base.cItem_Class",
       .rows = {{"00", "fItem_ProjectClass", "fItem_Project"}, {"Ch", std::nullopt, std::nullopt}}}};
  const std::vector<std::string> statements = statementsOf(filterOf("1", "0"));
  ASSERT_EQ(statements.size(), 11U);
  EXPECT_EQ(statements[5],
            "Update base\r\n"
            "Set cItemCCode = tarcls.cItemCCode, cItemCName = tarcls.cItemCName\r\n"
            "From [77u1IA_OutSum_Item_DetailTmp] base\r\n"
            "Inner Join fItem_Project tar On base.cItemCode = tar.cItemCode\r\n"
            "Inner Join fItem_ProjectClass tarcls On tar.cItemCCode = tarcls.cItemCCode\r\n"
            "Where base.cItem_Class  = N'00'");
  EXPECT_EQ(statements[6],
            "Update base\r\n"
            "Set cItemCCode = invcls.cInvCCode, cItemCName = invcls.cInvCName\r\n"
            "From [77u1IA_OutSum_Item_DetailTmp] base\r\n"
            "Inner Join Inventory inv On base.cItemCode = inv.cInvCode\r\n"
            "Inner Join InventoryClass invcls On inv.cInvCCode = invcls.cInvCCode\r\n"
            "Where base.cItem_Class  = N'Ch'");
  EXPECT_EQ(statements[7], expectedReportRows());
  EXPECT_THAT(platform.record.queries(), ElementsAre(classQuery));
}

TEST_F(OutsumItemBuild, ProjectItemClassesWithoutTablesArePassedOver) {
  platform.answers.queries = {{.part = "Select Distinct base.cItem_Class",
                               .rows = {{"90", std::nullopt, std::nullopt},
                                        {"91", "", ""},
                                        {"92", "classes", "  "},
                                        {"93", std::nullopt, "items"},
                                        {"", std::nullopt, std::nullopt}}}};
  const std::vector<std::string> statements = statementsOf(filterOf("2", "0"));
  ASSERT_EQ(statements.size(), 8U);
  EXPECT_EQ(statements[4], expectedReportRows());
}

// --- The run --------------------------------------------------------------------------------------------------------

TEST_F(OutsumItemBuild, ARunOpensTheSessionWritesTheTypeAndCloses) {
  statementsOf(filterOf("1", "0"));
  EXPECT_EQ(platform.record.with("Session.").front(), "CursorLocation = 3");
  std::vector<std::string> opening(platform.record.calls.begin(), platform.record.calls.begin() + 13);
  EXPECT_THAT(opening,
              ElementsAre("naming number", "e.rawFilter", "create Session", "e.Login", "Session.CursorLocation = 3",
                          "Login.OrvDbName", "Session.ConnectionString = the account's connection",
                          "Session.ConnectionTimeout = 0", "Session.CommandTimeout = 0", "Session.open(\"\", \"\", -1)",
                          "e.DataSource", "DataSource.Type = 2", "DataSource.SQL"));
}

TEST_F(OutsumItemBuild, TheTableTextsAreEmptyAndStored) {
  OutsumItem report(module);
  EXPECT_EQ(report.tempTableName(), "");
  EXPECT_EQ(report.tempTableProperty(), "");
  report.setTempTableProperty("kept");
  fakes::FakeArgument argument(platform.record, platform.filter(filterOf("1", "0")));
  report.getSql(argument);
  EXPECT_EQ(report.tempTableName(), "");
  EXPECT_EQ(report.tempTableProperty(), "kept");
}

// A run of its own, on a platform of its own.
struct TrappedRun {
  explicit TrappedRun(const char* mode, std::size_t failAt = 0) {
    platform.answers.queries = {
        {.part = "Select Distinct base.cItem_Class", .rows = {{"00", "classes", "items"}, {"ch", "", ""}}}};
    platform.record.failAt = failAt;
    Module module(platform);
    OutsumItem report(module);
    fakes::FakeArgument argument(platform.record, platform.filter({{.name = "iYear", .value = "2024"},
                                                                   {.name = "cModal", .value = mode},
                                                                   {.name = "iGrade", .value = "2"},
                                                                   {.name = "cSource", .value = "0"}}));
    report.getSql(argument);
    calls = platform.record.calls;
    sessionIsLeftOpen = module.session && module.session->state() != stateClosed;
  }

  fakes::FakePlatform platform;
  std::vector<std::string> calls;
  bool sessionIsLeftOpen = false;
};

TEST(OutsumItemErrorTrap, AbsorbsAnErrorAtEveryCallOfTheBuildAndLeavesTheSessionOpen) {
  for (const char* mode : {"0", "1", "2"}) {
    const std::vector<std::string> calls = TrappedRun(mode).calls;
    const auto lastBefore = std::find(calls.begin(), calls.end(), "DataSource.SQL");
    ASSERT_NE(lastBefore, calls.end());
    const auto firstOfBuild = static_cast<std::size_t>(lastBefore - calls.begin()) + 2;
    const std::size_t lastOfBuild = calls.size() - 2;  // behind it the session's state is read and it is closed
    ASSERT_GT(lastOfBuild, firstOfBuild + 40);
    for (std::size_t failing = firstOfBuild; failing <= lastOfBuild; ++failing) {
      const TrappedRun run(mode, failing);
      EXPECT_EQ(run.calls.size(), failing) << "steps after the failing one";
      EXPECT_TRUE(run.calls.back() == calls[failing - 1]) << mode << " " << failing;
      EXPECT_TRUE(run.sessionIsLeftOpen) << mode << " " << failing;
      EXPECT_EQ(run.platform.record.alive, 0) << mode << " " << failing;
    }
  }
}

TEST_F(OutsumItemBuild, AFailedMoveDataDetailGivesABlank) {
  OutsumItem report(module);
  EXPECT_EQ(report.moveDataDetail(), " ");  // without GETSQL there is neither filter nor session
  fakes::FakeArgument argument(platform.record, platform.filter(filterOf("1", "0")));
  platform.answers.queries = {};
  report.getSql(argument);
  EXPECT_EQ(report.moveDataDetail(), " ");  // the session is closed and released
  module.session = std::make_shared<fakes::FakeSession>(platform.record, platform.answers.queries);
  EXPECT_EQ(report.moveDataDetail(), "");
}

TEST_F(OutsumItemBuild, ErrorsOutsideTheBuildReachThePlatform) {
  for (std::size_t failing = 2; failing <= 13; ++failing) {
    fakes::FakePlatform failingPlatform;
    {
      Module failingModule(failingPlatform);
      OutsumItem report(failingModule);
      failingPlatform.record.failAt = failing;
      fakes::FakeArgument argument(failingPlatform.record, failingPlatform.filter(filterOf("1", "0")));
      EXPECT_THROW(report.getSql(argument), AutomationError) << failing;
    }
    EXPECT_EQ(failingPlatform.record.alive, 0) << failing;
  }
}

TEST_F(OutsumItemBuild, ExecuteTouchesNoTable) {
  OutsumItem report(module);
  fakes::FakeArgument argument(platform.record, platform.filter({}));
  argument.actionText = "LINK";
  report.execute(argument);
  EXPECT_THAT(platform.record.calls, testing::Contains("helper.filterFor(drill-through)"));
  EXPECT_THAT(platform.record.statements(), testing::IsEmpty());
}

}  // namespace
}  // namespace quillon
