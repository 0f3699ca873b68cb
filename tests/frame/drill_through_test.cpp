#include "frame/drill_through.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Columns = std::map<std::string, std::string, std::less<>>;

class DrillThroughTest : public testing::Test {
 protected:
  DrillThroughTest() {
    platform_.answers.options = {{"AA.cSysVersion", "工业"}, {"AA.cValueStyle", "按部门核算"}};
    platform_.answers.queries = {{"EnumName='销售出库单'", {{"32"}}},  {"EnumName='出库调整单'", {{"21"}}},
                                 {"EnumName='入库调整单'", {{"20"}}},  {"EnumName='红字回冲单'", {{"24"}}},
                                 {"EnumName='蓝字回冲单'", {{"30"}}},  {"EnumName='差异结转单'", {{"35"}}},
                                 {"EnumName='计划价调整单'", {{"22"}}}};
  }

  DrillThrough drill(const std::string& action, Columns row, const std::string& moduleCode = "IA") {
    fakes::FakeArgument argument(platform_.record, nullptr);
    argument.actionText = action;
    argument.moduleCode = moduleCode;
    argument.rowColumns = std::move(row);
    return drillThrough(module_, argument);
  }

  // The source document that is shown for a row of this voucher type.
  std::vector<std::string> shown(const std::string& typeName, const std::string& businessType = "") {
    platform_.record.calls.clear();
    EXPECT_EQ(
        drill("Vouch", {{"cVouType", typeName}, {"cVouCode", " 0007 "}, {"ID", "815"}, {"cBusType", businessType}}),
        DrillThrough::sourceVoucher);
    std::vector<std::string> calls = platform_.record.with("clsUniVch.");
    EXPECT_FALSE(calls.empty());
    EXPECT_THAT(calls.front(), testing::StartsWith("Init("));
    calls.erase(calls.begin());
    return calls;
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
};

// --- Rows without a document ----------------------------------------------------------------------------------------

TEST_F(DrillThroughTest, ABalanceHasNoDocument) {
  EXPECT_EQ(drill("Vouch", {{"cVouType", ""}, {"cPZID", "p1"}}), DrillThrough::nothing);
  EXPECT_EQ(drill("", {}), DrillThrough::nothing);
  EXPECT_THAT(platform_.record.with("Session."), IsEmpty());
  EXPECT_FALSE(module_.session);
  EXPECT_EQ(platform_.record.alive, 0);
}

// --- Source documents -----------------------------------------------------------------------------------------------

TEST_F(DrillThroughTest, ShowsTheSourceDocumentInThePlatformsOrder) {
  EXPECT_EQ(drill("Vouch", {{"cVouType", "销售出库单"}, {"cVouCode", "0007"}, {"iPZID", "17"}, {"ID", "815"}}),
            DrillThrough::sourceVoucher);
  EXPECT_THAT(
      platform_.record.calls,
      ElementsAre(
          "create Session", "e.Login", "e.RelateData", "GetData(cVouType)", "Session.CursorLocation = 3",
          "Login.OrvDbName", "Session.ConnectionString = the account's connection", "Session.ConnectionTimeout = 0",
          "Session.CommandTimeout = 0", "Session.open(\"\", \"\", -1)", "create PublicComponent", "e.Action",
          "Session.query select VouchType.cVouchType from VouchType inner join AA_Enum on VouchType.cVouchName=AA_Enum.EnumCode "
          "where AA_Enum.EnumType ='IA.vchtype' and AA_Enum.LocaleId=DBO.UDF_GetLocaleID() and AA_Enum.EnumName='销售出库单'",
          "Recordset.EOF", "Recordset.Fields(0)", "Recordset.Close", "GetData(cVouCode)", "GetData(iPZID)",
          "GetData(ID)", "create PellUniVch.clsUniVch", "GetAccInformation(AA, cSysVersion)", "clsUniVch.Init(工业)",
          "clsUniVch.ShowVoucher(other, 32, \"0007\", 815)"));
}

TEST_F(DrillThroughTest, ReleasesWhatItOpenedWithoutClosingIt) {
  shown("销售出库单");
  EXPECT_THAT(platform_.record.with("Session.close"), IsEmpty());
  EXPECT_FALSE(module_.session);
  EXPECT_FALSE(module_.login);
  EXPECT_EQ(platform_.record.alive, 1);  // the public component, which the module keeps
}

TEST_F(DrillThroughTest, ATypeWithoutANameIsTakenForItsCode) {
  EXPECT_THAT(shown("11"), ElementsAre("ShowVoucher(other, 11, \" 0007 \", 815)"));
}

TEST_F(DrillThroughTest, AnAdjustmentIsShownAsAVoucher) {
  EXPECT_THAT(shown("入库调整单"), ElementsAre("ShowVoucher(adjustment, 20, \" 0007 \", 815)"));
  EXPECT_THAT(shown("出库调整单", "普通销售"), ElementsAre("ShowVoucher(adjustment, 21, \" 0007 \", 815)"));
}

TEST_F(DrillThroughTest, AnIssueAdjustmentByCostItemHasAViewOfItsOwn) {
  EXPECT_THAT(shown("出库调整单", "分项调整"), ElementsAre("ShowProJust(21, \" 0007 \", 815)"));
  EXPECT_THAT(shown("入库调整单", "分项调整"), ElementsAre("ShowVoucher(adjustment, 20, \" 0007 \", 815)"));
}

TEST_F(DrillThroughTest, AWriteBackIsShownAsAVoucher) {
  EXPECT_THAT(shown("红字回冲单"), ElementsAre("ShowVoucher(writeBack, 24, \" 0007 \", 815)"));
  EXPECT_THAT(shown("蓝字回冲单"), ElementsAre("ShowVoucher(writeBack, 30, \" 0007 \", 815)"));
}

TEST_F(DrillThroughTest, ADifferenceCarryOverTakesEditionAndValuationMethod) {
  EXPECT_THAT(shown("差异结转单"), ElementsAre("ShowDifVouchs(35, \" 0007 \", 815, industrial, 按部门核算)"));
  EXPECT_THAT(platform_.record.with("GetAccInformation"), ElementsAre("(AA, cSysVersion)", "(AA, cValueStyle)"));
  platform_.answers.options["AA.cSysVersion"] = "商业";
  EXPECT_THAT(shown("差异结转单"), ElementsAre("ShowDifVouchs(35, \" 0007 \", 815, commercial, 按部门核算)"));
}

TEST_F(DrillThroughTest, APriceAdjustmentIsFoundByItsTrimmedCode) {
  EXPECT_THAT(shown("计划价调整单"), ElementsAre("ShowCostJustVouch(22, \"0007\", 815)"));
}

TEST_F(DrillThroughTest, RefusesARowWithoutALedgerLine) {
  try {
    drill("Vouch", {{"cVouType", "销售出库单"}, {"ID", "none"}});
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::typeMismatch);
    EXPECT_EQ(error.description(), "The row's ID is \"none\", which is not a whole number.");
  }
}

// --- General-ledger vouchers ----------------------------------------------------------------------------------------

constexpr const char* ledgerQuery = "Select iYear From IA_SubSidiary Where cPzID = N'p1' and imonth <>0 order by iyear";
constexpr const char* secondLedgerQuery =
    "Select iYear From IA_ENSubSidiary Where cPzID = N'p1' and imonth <>0 order by iyear";

Columns postedRow() {
  return {{"cVouType", "销售出库单"}, {"cPZID", "p1"}, {"iPZID", "17"}};
}

TEST_F(DrillThroughTest, ForAnUnpostedRowTheUserSeesAMessage) {
  EXPECT_EQ(drill("Link", {{"cVouType", "销售出库单"}, {"iPZID", "17"}}), DrillThrough::notPosted);
  EXPECT_THAT(platform_.record.with("resources."),
              ElementsAre("text(Mirel.IA.CHHSSQL.02787)", "showMessage(<02787>, 48)"));
  EXPECT_THAT(platform_.record.queries(), IsEmpty());
  EXPECT_THAT(platform_.record.with("create Zz"), IsEmpty());
}

TEST_F(DrillThroughTest, ShowsTheLedgerVoucherInThePlatformsOrder) {
  platform_.answers.queries = {{"From IA_SubSidiary ", {{"2024"}, {"2025"}}}};
  module_.business = std::make_shared<BusinessObject>();
  EXPECT_EQ(drill("", postedRow()), DrillThrough::ledgerVoucher);
  const auto& calls = platform_.record.calls;
  const auto action = std::find(calls.begin(), calls.end(), "e.Action");
  EXPECT_THAT(
      std::vector<std::string>(action, calls.end()),
      ElementsAre("e.Action", "GetData(cPZID)", std::string("Session.query ") + ledgerQuery, "Recordset.EOF",
                  "Recordset.Fields(0)", "Recordset.Close", "create ZzPub.clsPub", "create ZzPz.clsPZ",
                  "clsPub.g_business", "clsPub.oLogIn", "Login.OrvDbName", "Login.SysPassword",
                  "clsPub.InitPubs2(the account's connection, ;PWD=secret, 2024)", "clsPZ.zzLogin", "clsPZ.zzSys",
                  "GetData(iPZID)", "Login.module code", "clsPZ.StartUpPz(*IACXPZ, 存货核算, 17)"));
}

TEST_F(DrillThroughTest, WithoutABusinessObjectNoneIsHandedOver) {
  platform_.answers.queries = {{"From IA_SubSidiary ", {{"2024"}}}};
  drill("", postedRow());
  EXPECT_THAT(platform_.record.with("clsPub."), ElementsAre("oLogIn", testing::StartsWith("InitPubs2")));
}

TEST_F(DrillThroughTest, TakesTheYearFromTheSecondLedgerWhenTheFirstHasNone) {
  platform_.answers.queries = {{"From IA_ENSubSidiary ", {{"2023"}}}};
  EXPECT_EQ(drill("", postedRow()), DrillThrough::ledgerVoucher);
  EXPECT_THAT(platform_.record.queries(), ElementsAre(ledgerQuery, secondLedgerQuery));
  EXPECT_THAT(platform_.record.with("clsPub.InitPubs2"), ElementsAre("(the account's connection, ;PWD=secret, 2023)"));
}

TEST_F(DrillThroughTest, RefusesAVoucherThatNoLedgerKnows) {
  try {
    drill("", postedRow());
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.description(),
              "No ledger line is posted to voucher p1, so that its year is not known; refresh the report.");
  }
  EXPECT_THAT(platform_.record.with("create Zz"), IsEmpty());
}

TEST_F(DrillThroughTest, AUserOfTheGeneralLedgerOpensItThere) {
  platform_.answers.queries = {{"From IA_SubSidiary ", {{"2024"}}}};
  for (const char* code : {"ZZ", "zz01", " Zz "}) {
    platform_.record.calls.clear();
    drill("", postedRow(), code);
    EXPECT_THAT(platform_.record.with("clsPZ.StartUpPz"), ElementsAre("(ZZ0101, , 17)")) << code;
  }
}

TEST_F(DrillThroughTest, OnlyTheExactWordAsksForTheSourceDocument) {
  platform_.answers.queries = {{"From IA_SubSidiary ", {{"2024"}}}};
  EXPECT_EQ(drill("vouch", postedRow()), DrillThrough::ledgerVoucher);
}

// --- Errors: a drill-through that fails at its k-th call, for every k -----------------------------------------------

TEST_F(DrillThroughTest, EveryCallMayFail) {
  for (const bool source : {true, false}) {
    const auto prepare = [&](fakes::FakePlatform& platform) {
      platform.answers.queries = {{"EnumName='差异结转单'", {{"35"}}}, {"From IA_ENSubSidiary ", {{"2024"}}}};
    };
    const Columns row{{"cVouType", "差异结转单"}, {"cVouCode", "1"}, {"ID", "815"}, {"cPZID", "p1"}, {"iPZID", "17"}};
    std::size_t total = 0;
    for (std::size_t k = 0; k <= total; ++k) {
      SCOPED_TRACE((source ? "source document, failing call " : "ledger voucher, failing call ") + std::to_string(k));
      fakes::FakePlatform platform;
      prepare(platform);
      {
        Module module(platform);
        fakes::FakeArgument argument(platform.record, nullptr);
        argument.actionText = source ? "Vouch" : "Link";
        argument.rowColumns = row;
        platform.record.failAt = k;
        if (k == 0) {
          drillThrough(module, argument);
          total = platform.record.calls.size();
          ASSERT_GT(total, 20U);
        } else {
          try {
            drillThrough(module, argument);
            ADD_FAILURE() << "no error";
          } catch (const AutomationError& error) {
            EXPECT_EQ(error.description(), platform.record.calls.back());
            EXPECT_EQ(platform.record.calls.size(), k);
          }
        }
        EXPECT_FALSE(module.session);
        EXPECT_FALSE(module.login);
      }
      EXPECT_EQ(platform.record.alive, 0);
    }
  }
}

}  // namespace
}  // namespace quillon
