#include "reports/fx_wt/fx_wt.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "frame/automation_error.h"
#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using fakes::ItemValues;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

// A typed text with the line breaks of a statement.
std::string lines(std::string_view text) {
  std::string statement;
  for (const char c : text) {
    if (c == '\n') statement += '\r';
    statement += c;
  }
  return statement;
}

// The columns of the result table, in their order, up to the line's figures.
const std::string describing = lines(
    "dVouDate,cVouCode,dKeepDate,cAccounter,cBusCode,strContractCode,cproordercode,iproorderids,cworkprocode,"
    "cworkcentercode,cworkcentername,cProCode,csaleordercode,isaleorderids,exoCode,iExRowno,centrustordercode,"
    "cpurordercode,cIMOrderCode,cDemandCode,cdemandmemo,cItem_Class,cItem_Classname,cItemCode,cName,iPzid,cPZdigest,"
    "cBusType,cWhCode,cWhName,cCCCode,cCusName,cVCCode,cVenName,cDepName,cHandler,"
    "cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,\n"
    "cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,\n"
    "cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,\n"
    "cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,"
    "cCCName,cCusCode,cVCName,cVenCode,cAccDep,cInvCCode,cInvCode,cInvName,cInvAddCode,"
    "cFree1,cFree2,cFree3,cFree4,cFree5,cFree6,cFree7,cFree8,cFree9,cFree10,cInvStd,cComUnitName,cAssComUnitName,"
    "cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,\n"
    "cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16, "
    "cRdCode,cRdName,cMemo");
const std::string costItem = "cfxcCode,cfxcName,cfxCode,cfxName,cAmoType,cAmoID,cAmoName";
const std::string keys = "cPzID,AutoID,cVouType,PzNoId,cDeptID,costDepName,cBatchia";

// The same columns as they are selected, with `quantity` and `cost` decimal places.
std::string selected(const std::string& quantity, const std::string& cost) {
  const std::string inCost =
      "cast(cast(base_Item.iItemInPrice as float)/cast(nullif(base_Item.iItemInQuantity,0) as float) as decimal(38," +
      cost + "))";
  const std::string outCost =
      "cast(cast(base_Item.iItemOutPrice as float)/cast(nullif(base_Item.iItemOutQuantity,0) as float) as "
      "decimal(38," +
      cost + "))";
  return lines(
             "base.dVouDate,base.cVouCode,base.dKeepDate,base.cAccounter,base.cBusCode,base.strContractCode,"
             "base.cproordercode,base.iproorderids,base.cworkprocode,base.cworkcentercode,base.cworkcentername,"
             "base.cProCode,base.csaleordercode,base.isaleorderids,base.exoCode,base.iExRowno,base.centrustordercode,"
             "base.cpurordercode,base.cIMOrderCode,base.cDemandCode,base.cdemandmemo,base.cItem_Class,"
             "base.cItemCName as cItem_Classname,base.cItemCode,base.cName,base.iPzid,base.cPZdigest,"
             "cast(base.cBusType as nvarchar(200)) as cBusType,base.cWhCode,Warehouse.cWhName,Customer.cCCCode,"
             "Customer.cCusName,Vendor.cVCCode,Vendor.cVenName,Department.cDepName,base.cHandler,"
             "base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,"
             "base.cDefine8,\n"
             "base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,"
             "base.cDefine15,base.cDefine16,\n"
             "base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,"
             "base.cDefine28,base.cDefine29,\n"
             "base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,"
             "base.cDefine36,base.cDefine37,"
             "CustomerClass.cCCName,base.cCusCode,VendorClass.cVCName,base.cVenCode,base.cAccDep,"
             "Inventory.cInvCCode,base.cInvCode,Inventory.cInvName,Inventory.cInvAddCode,"
             "base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,"
             "base.cFree9,base.cFree10,"
             "Inventory.cInvStd,Unit1.cComUnitName,Unit2.cComUnitName as cAssComUnitName,"
             "Inventory.cInvDefine1,Inventory.cInvDefine2,Inventory.cInvDefine3,Inventory.cInvDefine4,"
             "Inventory.cInvDefine5,Inventory.cInvDefine6,Inventory.cInvDefine7,Inventory.cInvDefine8,"
             "Inventory.cInvDefine9,Inventory.cInvDefine10,Inventory.cInvDefine11,Inventory.cInvDefine12,"
             "Inventory.cInvDefine13,Inventory.cInvDefine14,Inventory.cInvDefine15,Inventory.cInvDefine16,"
             "base.cRdCode,Rd_Style.cRdName,base.cMemo,"
             "base.iAInQuantity,base.iInCost,base.iAInPrice,base.iAOutQuantity,base.iOutCost,base.iAOutPrice,"
             "Ca_FxClassDef.cFxCCode as cfxcCode,Ca_FxClassDef.cFxCName as cfxcName,Ca_Fxdef.cFxCode as cfxCode,"
             "Ca_Fxdef.cFxName as cfxName,Ca_AmoTypeName.cAmoTypeName as cAmoType,"
             "case when Ca_FxMapExpDID.cAmotype = 0 then Ca_FxMapExpDetails.cInvCode else Ca_FxMapExpDetails.cAmoID "
             "end as cAmoID,"
             "case when Ca_FxMapExpDID.cAmotype = 0 then inv.cInvName else Ca_CostExpDetail_Period.cAmoName end as "
             "cAmoName,"
             "base_Item.iItemInQuantity,") +
         inCost +
         " as iIteminCost,base_Item.iItemInPrice as iIteminPrice,base_Item.iItemOutQuantity as iItemoutQuantity," +
         outCost + " as iItemoutCost,base_Item.iItemOutPrice,case when base.bRdFlag=1 then " +
         "cast(cast(nullif(base_Item.iItemInQuantity,0) as float)/cast(nullif(base.iAInQuantity,0) as float) as "
         "decimal(38," +
         quantity + ")) else " +
         "cast(cast(nullif(base_Item.iItemOutQuantity,0) as float)/cast(nullif(base.iAOutQuantity,0) as float) as "
         "decimal(38," +
         quantity + ")) end as iUnitUsed,case when base.bRdFlag=1 then " + inCost + " else " + outCost +
         " end as iUnitCost,"
         "base.cPzID,base.AutoID,base.cVouType,cast(null as nvarchar(50)) as PzNoId,CAQ_CostCenterMap.cDeptID,"
         "CAQ_CostCenter.cDeptName as costDepName,base.cBatchia";
}

const std::string source =
    " from ia_subsidiary base "
    "left join ( select iItemDetailID,iItemID,iSubID,SUM(iItemInQuantity) iItemInQuantity,"
    "SUM(iItemInPrice) iItemInPrice,SUM(iItemOutPrice) iItemOutPrice,SUM(iItemOutQuantity) iItemOutQuantity,"
    "bRdFlag,iMonth,iYear,iItemInCost,iItemOutCost from ia_subsidiary_Item "
    "group by iItemDetailID,iItemID,iSubID,bRdFlag,iMonth,iYear,iItemInCost,iItemOutCost"
    ") base_Item on base_Item.isubid=base.autoid "
    "left join Warehouse on base.cWhCode=Warehouse.cWhCode "
    "left join Department on base.cAccDep=Department.cDepCode "
    "left join CAQ_CostCenterMap on base.cAccDep=CAQ_CostCenterMap.cBusID "
    "left join CAQ_CostCenter on CAQ_CostCenterMap.cDeptID=CAQ_CostCenter.cDeptID "
    "left join Inventory on base.cInvCode=Inventory.cInvCode "
    "left join ComputationUnit Unit1 on Inventory.cComUnitCode=Unit1.cComUnitCode "
    "left join (select cGroupCode,min(cComUnitCode) as cComUnitCode from ComputationUnit where bMainUnit=0 "
    "group by cGroupCode) FirstUnit on Inventory.cGroupCode=FirstUnit.cGroupCode "
    "left join ComputationUnit Unit2 on FirstUnit.cComUnitCode=Unit2.cComUnitCode "
    "left join Vendor on base.cVenCode=Vendor.cVenCode "
    "left join VendorClass on Vendor.cVCCode=VendorClass.cVCCode "
    "left join Customer on base.cCusCode=Customer.cCusCode "
    "left join CustomerClass on Customer.cCCCode=CustomerClass.cCCCode "
    "left join Rd_Style on base.cRdCode=Rd_Style.cRdCode "
    "left join Ca_Fxdef on base_Item.iItemID=Ca_Fxdef.iFxID "
    "left join Ca_FxClassDef on Ca_Fxdef.cFxCID=Ca_FxClassDef.iFxCId "
    "left join Ca_FxMapExpDID on base_Item.iItemDetailID=Ca_FxMapExpDID.iFxDID "
    "left join Ca_FxMapExpDetails on base_Item.iItemDetailID=Ca_FxMapExpDetails.iFxDID and Ca_Fxdef.bHasDetails=1 "
    "left join Inventory inv on Ca_FxMapExpDetails.cInvCode=inv.cInvCode "
    "left join Ca_CostExpDetail_Period on Ca_FxMapExpDetails.cAmoID=Ca_CostExpDetail_Period.cAmoID "
    "and Ca_FxMapExpDetails.cAmotype=Ca_CostExpDetail_Period.cAmoType and Ca_FxMapExpDetails.cInvCode is null "
    "and Ca_CostExpDetail_Period.iPeriod=Cast(base.iYear as nVarchar(10)) + Case When Len(base.iMonth) = 1 Then '0' "
    "else '' End + Cast(base.iMonth as nVarchar(10)) "
    "left join Ca_AmoTypeName on Ca_FxMapExpDID.cAmotype=Ca_AmoTypeName.cAmoType and "
    "Ca_AmoTypeName.localid=N'zh-CN'";

// The statements of a run whose condition on the lines is `condition`.
std::vector<std::string> statements(const std::string& condition, const std::string& quantity = "2",
                                    const std::string& cost = "4") {
  const std::string work = "[77u1FXWtTmp]";
  return {
      "If Exists(Select Name From Sysobjects Where Name = '77u1FXWtTmp') Drop Table " + work,
      " select top 0 " + selected(quantity, cost) + " into " + work + source,
      "insert into " + work + " (" + describing + ",iAInQuantity,iInCost,iAInPrice,iAOutQuantity,iOutCost,iAOutPrice," +
          costItem +
          ",iItemInQuantity,iIteminCost,iIteminPrice,iItemoutQuantity,iItemoutCost,iItemOutPrice,iUnitUsed,iUnitCost," +
          keys + ") select " + selected(quantity, cost) + source + " where " + condition +
          " And Not (base.cVouType = N'20' And isnull(base.IAInPrice,0) = 0 And IsNULL(base.iDebitDifCost,0) = 0 And "
          "IsNULL(base.iCreditDifCost,0) = 0)"
          " order by isnull(bakID,base.AutoID)",
      "Update " + work + " set cBusType=AA.EnumName from " + work +
          " Wt inner join aa_enum AA on  Wt.cBusType=AA.EnumCode where AA.EnumType='IA.BusType' and "
          "AA.LocaleId=DBO.UDF_GetLocaleID()",
      " select " + describing +
          ",Sum(iAInQuantity) as iAInQuantity,sum(iInCost) as iInCost,sum(iAInPrice) as iAInPrice,"
          "sum(iAOutQuantity) as iAOutQuantity,sum(iOutCost) as iOutCost,sum(iAOutPrice) as iAOutPrice," +
          costItem +
          ",sum(iItemInQuantity) as iItemInQuantity,sum(iIteminCost) as iIteminCost,"
          "sum(iIteminPrice) as iIteminPrice,sum(iItemoutQuantity) as iItemoutQuantity,"
          "sum(iItemoutCost) as iItemoutCost,sum(iItemOutPrice) as iItemOutPrice,sum(iUnitUsed) as iUnitUsed,"
          "sum(iUnitCost) as iUnitCost," +
          keys + " into tmp_result from " + work + " group by " + describing + "," + costItem + "," + keys,
      "If OBJECT_ID(N'" + work + "') is not null Drop Table " + work,
  };
}

class FxWtRun : public testing::Test {
 protected:
  FxWtRun() { prepare(platform_); }

  static void prepare(fakes::FakePlatform& platform) {
    platform.answers.options = {{"IA.dIAFirstDate", "2023-01-01"},
                                {"IA.bZYXS", "False"},
                                {"AA.iStrsQuanDecDgt", "2"},
                                {"AA.iStrsPriDecDgt", "4"}};
  }

  std::vector<std::string> run(std::vector<ItemValues> items) {
    fakes::FakeArgument argument(platform_.record, platform_.filter(std::move(items)));
    FxWt(module_).getSql(argument);
    return platform_.record.statements();
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
};

const std::string always = " base.cVouType not in (N'33',N'34')";
const std::string sinceStart = " And base.dKeepDate>='2023-01-01'";

TEST_F(FxWtRun, SendsItsStatementsInOrder) {
  EXPECT_THAT(run({}), ElementsAreArray(statements(always + sinceStart)));
}

TEST_F(FxWtRun, PutsTheVoucherTypesBehindTheOtherConditions) {
  EXPECT_THAT(run({{.name = "cVouType", .value = "01\t32"}, {.name = "cFree1", .value = "red"}}),
              ElementsAreArray(statements(always + " And base.cFree1= N'red'" + sinceStart +
                                          " and  (base.cVouType in ('32','3201') or  (cVouType='01' and bFlag<>1) )")));
}

TEST_F(FxWtRun, RoundsToTheAccountsDecimalPlaces) {
  platform_.answers.options["AA.iStrsQuanDecDgt"] = "6";
  platform_.answers.options["AA.iStrsPriDecDgt"] = "";
  EXPECT_THAT(run({}), ElementsAreArray(statements(always + sinceStart, "6", "0")));
}

TEST_F(FxWtRun, OpensTheSessionThenReadsTheArgumentThenBuildsAndCloses) {
  run({});
  EXPECT_THAT(
      platform_.record.calls,
      ElementsAre("e.rawFilter", "create Session", "e.Login", "Session.CursorLocation = 3", "Login.OrvDbName",
                  "Session.ConnectionString = the account's connection", "Session.ConnectionTimeout = 0",
                  "Session.CommandTimeout = 0", "Session.open(\"\", \"\", -1)", "e.DataSource", "DataSource.Type = 2",
                  "DataSource.SQL", "e.LangID", "create PublicComponent", "FilterList.Count", "GetWhereWithToken(1)",
                  "GetWhereWithToken(2)", "GetWhereWithToken(3)", "GetAccInformation(IA, dIAFirstDate)",
                  "GetAccInformation(AA, iStrsQuanDecDgt)", "GetAccInformation(AA, iStrsPriDecDgt)", "naming number",
                  "create UniqueNameSource", "uniqueNames.next", HasSubstr("Session.execute If Exists("),
                  HasSubstr("Session.execute  select top 0 "), "GetAccInformation(IA, bZYXS)",
                  HasSubstr("Session.execute insert into "), HasSubstr("Session.execute Update "),
                  HasSubstr("Session.execute  select "), HasSubstr("Session.execute If OBJECT_ID("), "Session.state",
                  "Session.close"));
  EXPECT_FALSE(module_.session);
}

TEST_F(FxWtRun, KeepsThePrefixOfWorkTablesThatTheModuleHas) {
  module_.namePrefix = "55";
  EXPECT_THAT(run({}), Contains(HasSubstr("Drop Table [55u1FXWtTmp]")));
  EXPECT_THAT(platform_.record.calls, Not(Contains("naming number")));
}

TEST_F(FxWtRun, NamesAWorkTableOfItsOwnForEachRun) {
  run({});
  EXPECT_THAT(run({}), Contains(HasSubstr("Drop Table [77u2FXWtTmp]")));
}

TEST_F(FxWtRun, KeepsWhatTheArgumentGave) {
  const auto filter = platform_.filter({});
  fakes::FakeArgument argument(platform_.record, filter);
  FxWt report(module_);
  EXPECT_EQ(report.language(), "");
  EXPECT_FALSE(report.filter());
  report.getSql(argument);
  EXPECT_EQ(report.language(), "zh-CN");
  EXPECT_EQ(report.filter(), filter);
  EXPECT_EQ(report.tempTableProperty(), "");
  EXPECT_EQ(report.baseTable(), "");
}

TEST_F(FxWtRun, HoldsItsProperties) {
  FxWt report(module_);
  report.setLanguage("en-US");
  report.setTempTableProperty("t1");
  report.setBaseTable("t2");
  const auto filter = platform_.filter({});
  report.setFilter(filter);
  EXPECT_EQ(report.language(), "en-US");
  EXPECT_EQ(report.tempTableProperty(), "t1");
  EXPECT_EQ(report.baseTable(), "t2");
  EXPECT_EQ(report.filter(), filter);
}

TEST_F(FxWtRun, BuildsOnlyWithAFilterAndASession) {
  FxWt report(module_);
  EXPECT_THROW(report.moveDataDetail(), AutomationError);
  report.setFilter(platform_.filter({}));
  try {
    report.moveDataDetail();
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::unexpected);
    EXPECT_EQ(error.description(), "The report has no filter or no connection to the account yet; call GETSQL first.");
  }
  module_.session = platform_.createSession();
  EXPECT_EQ(report.moveDataDetail(), "");
}

TEST_F(FxWtRun, OpensTheDocumentBehindARow) {
  fakes::FakeArgument argument(platform_.record, nullptr);
  argument.actionText = "Vouch";
  argument.rowColumns = {{"cVouType", "32"}, {"cVouCode", "7"}, {"ID", "815"}};
  EXPECT_EQ(FxWt(module_).execute(argument), DrillThrough::sourceVoucher);
  EXPECT_THAT(platform_.record.calls, Contains(HasSubstr("ShowVoucher")));
}

TEST_F(FxWtRun, AFailingCallLeavesWithItsErrorAndTheSessionAsItIs) {
  run({{.name = "cVouType", .value = "01"}});
  const std::vector<std::string> calls = platform_.record.calls;
  ASSERT_GT(calls.size(), 30U);
  std::size_t opened = 0;
  while (calls[opened] != "create Session")
    ++opened;
  for (std::size_t k = 1; k <= calls.size(); ++k) {
    SCOPED_TRACE(calls[k - 1]);
    fakes::FakePlatform platform;
    prepare(platform);
    {
      Module module(platform);
      platform.record.failAt = k;
      fakes::FakeArgument argument(platform.record, platform.filter({{.name = "cVouType", .value = "01"}}));
      FxWt report(module);
      try {
        report.getSql(argument);
        ADD_FAILURE() << "no error";
      } catch (const AutomationError& error) {
        EXPECT_EQ(error.description(), calls[k - 1]);
      }
      EXPECT_EQ(platform.record.calls.size(), k) << "nothing is done behind the failing call";
      // The session comes with the call after its creation; only closing, when it was the last thing to do, releases it.
      const bool closing = calls[k - 1] == "Session.state" || calls[k - 1] == "Session.close";
      EXPECT_EQ(module.session != nullptr, k > opened + 1 && !closing);
    }
    EXPECT_EQ(platform.record.alive, 0);
  }
}

}  // namespace
}  // namespace quillon
