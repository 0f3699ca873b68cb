#include "filters/sfc_filter_control.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/frame/fake_dialog.h"

namespace quillon {
namespace {

using fakes::FakeDialog;
using fakes::ItemValues;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* outboundSummary = "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE";
constexpr const char* receiptIssueBalance = "CA3BAD03-9D4C-463A-827E-E971D5A36C81";

// --- The texts that are sent ---

const std::string voucherTypes2024 =
    "select distinct AA_Enum.EnumName , IA_Subsidiary.cVouType  \r\n"
    "From IA_Subsidiary \r\n"
    "Left Join (select * from VouchType union select N'3201',N'销售出库单') VouchType On IA_Subsidiary.cVouType = "
    "VouchType.cVouchType \r\n"
    "Left Join AA_Enum On VouchType.cVouchName = AA_Enum.EnumCode and AA_Enum.EnumType = N'IA.VchType'\r\n"
    "WHERE (AA_Enum.localeid = dbo.UDF_GetLocaleID()) And IA_Subsidiary.bRdFlag = 0 and "
    "Left(isnull(IA_Subsidiary.cBusType,N''),2)<>N'直运' and ia_subsidiary.iyear = 2024\r\n"
    "Order By IA_Subsidiary.cVouType ";
const std::string otherVoucherType =
    "select EnumName,N'08' as cVouType from AA_Enum  where EnumType =N'IA.VchType' and EnumCode =N'其他出库单' and "
    "LocaleId = dbo.UDF_GetLocaleID() ";
const std::string businessTypes2024 =
    "select distinct AA_Enum.EnumName, IA_Subsidiary.cBusType  \r\n"
    "From IA_Subsidiary \r\n"
    "Left Join AA_Enum on IA_Subsidiary.cBusType = AA_Enum.EnumCode and AA_Enum.EnumType = 'IA.Bustype'\r\n"
    "WHERE (AA_Enum.localeid = dbo.UDF_GetLocaleID()) And IA_Subsidiary.bRdFlag = 0 \r\n"
    " and Left(isnull(IA_Subsidiary.cBusType,N''),2)<>N'直运' and ia_subsidiary.iYear = 2024";
const std::string otherBusinessType =
    "select EnumName,N'其他出库' as cBusType from AA_Enum  where EnumType =N'IA.Bustype' and EnumCode =N'其他出库' and "
    "LocaleId = dbo.UDF_GetLocaleID() ";
const std::string highestGrade = "select IsNull(MAX(iGrade),1) from Ca_FxClassDef";
const std::string pastMethod =
    "select cValue from IA_HisOption where cSysID='IA' and  cName='cValueStyle' and iYear=2023";

class SfcDialog : public testing::Test {
 protected:
  SfcDialog() {
    platform.answers.costItemStartMonth = 1;
    platform.answers.queries = {
        {.part = "MAX(iGrade)", .rows = {{"3"}}},
        {.part = "IA_Subsidiary.cVouType", .rows = {{"其他出库单", "08"}, {"材料出库单", "11"}}},
        {.part = "IA_Subsidiary.cBusType  ", .rows = {{"领料", "领料"}, {"其他出库", "其他出库"}}},
    };
  }

  // A dialog that has gone through its start; the record begins behind it.
  FakeDialog started(const char* identifier, std::vector<ItemValues> items) {
    FakeDialog dialog(platform, identifier, std::move(items));
    control.filterInit(dialog);
    platform.record.calls.clear();
    return dialog;
  }
  // What was changed of the dialog and asked of the account, without what was read of the dialog.
  std::vector<std::string> changes() const {
    std::vector<std::string> changed;
    for (const std::string& call : platform.record.calls) {
      if (call.starts_with("set ") || call.starts_with("Session.query ") || call.find(" = ") != std::string::npos)
        changed.push_back(call);
    }
    return changed;
  }

  fakes::FakePlatform platform;
  Module module{platform};
  SfcFilterControl control{module};
};

// --- The start of the dialog ---

TEST_F(SfcDialog, AnyOtherReportGetsConnectionAndDataRightsOnly) {
  for (const char* identifier : {"", "3D1986A9-884B-4835-B4AA-DCCBD2E1487C", "e55f9d31-f4c3-44d2-bdeb-9f83a208caee",
                                 "{CA3BAD03-9D4C-463A-827E-E971D5A36C81}"}) {
    fakes::FakePlatform own;
    Module ownModule(own);
    SfcFilterControl ownControl(ownModule);
    FakeDialog dialog(own, identifier, {{.name = "cModal"}, {.name = "iYear"}});
    ownControl.filterInit(dialog);
    EXPECT_THAT(own.record.calls,
                ElementsAre("create Session", "dialog.login", "Session.CursorLocation = 3", "Login.OrvDbName",
                            "Session.ConnectionString = the account's connection", "Session.ConnectionTimeout = 0",
                            "Session.CommandTimeout = 0", "Session.open(\"\", \"\", -1)", "create ResourceService",
                            "resources.takeLogin", "create PublicComponent",
                            "Login.AuthString = department=False,inventory=False,warehouse=False",
                            "Login.LanguageRegion", "dialog.identifier"));
    EXPECT_EQ(ownControl.languageRegion(), "zh-CN");
    EXPECT_NE(ownModule.session, nullptr);
    EXPECT_NE(ownModule.login, nullptr);
  }
}

TEST_F(SfcDialog, TheOutboundSummaryGetsListsDefaultsAndAvailability) {
  FakeDialog dialog(platform, outboundSummary,
                    {{.name = "iYear"},
                     {.name = "cModal"},
                     {.name = "cSource"},
                     {.name = "iGrade"},
                     {.name = "cVouType"},
                     {.name = "cBusType"},
                     {.name = "cFSType"},
                     {.name = "bIncludeExpire"},
                     {.name = "cmodal"}});
  control.filterInit(dialog);
  const std::vector<std::string> changed = changes();
  EXPECT_THAT(
      std::vector<std::string>(changed.begin() + 5, changed.end()),
      ElementsAre("iYear.list = 2023,2024", "iYear.value = 2024", "cModal.value = 0", "cSource.value = 0",
                  "Session.query " + highestGrade, "set iGrade enumeration 1{#}2{#}3{##}1{#}2{#}3",
                  "iGrade.bounds = 1, 1", "Session.query " + voucherTypes2024,
                  "set cVouType enumeration 08{#}11{##}其他出库单{#}材料出库单", "Session.query " + businessTypes2024,
                  "set cBusType enumeration 领料{#}其他出库{##}领料{#}其他出库", "set cWhCode available",
                  "set cDepCode available", "set cDepCode unavailable"));
}

TEST_F(SfcDialog, TheReceiptIssueBalanceGetsListsDefaultsAndAvailability) {
  FakeDialog dialog(platform, receiptIssueBalance,
                    {{.name = "bIncludeTransVouch"},
                     {.name = "iGrade"},
                     {.name = "bIncludeExpire"},
                     {.name = "cFSType"},
                     {.name = "cModal"},
                     {.name = "iYear"},
                     {.name = "cSource"},
                     {.name = "cVouType"}});
  control.filterInit(dialog);
  const std::vector<std::string> changed = changes();
  EXPECT_THAT(std::vector<std::string>(changed.begin() + 5, changed.end()),
              ElementsAre("bIncludeTransVouch.value = 1", "Session.query " + highestGrade,
                          "set iGrade enumeration 1{#}2{#}3{##}1{#}2{#}3", "iGrade.bounds = 1, 1",
                          "bIncludeExpire.value = 1", "cFSType.value = 0", "cModal.value = 0", "iYear.list = 2023,2024",
                          "iYear.value = 2024", "set cWhCode available", "set cDepCode available",
                          "set cDepCode unavailable", "set bIncludeTransVouch unavailable"));
}

TEST_F(SfcDialog, ValuesThatAreThereStay) {
  const std::vector<ItemValues> items{{.name = "iYear", .value = "2024"},
                                      {.name = "cModal", .value = "2"},
                                      {.name = "cSource", .value = "1"},
                                      {.name = "cFSType", .value = "3"},
                                      {.name = "bIncludeExpire", .value = "0"},
                                      {.name = "bIncludeTransVouch", .value = "0"},
                                      {.name = "iGrade", .value = "2", .value2 = "3"}};
  for (const char* identifier : {outboundSummary, receiptIssueBalance}) {
    FakeDialog dialog(platform, identifier, items);
    control.filterInit(dialog);
    for (const ItemValues& item : items) {
      EXPECT_EQ(dialog.at(item.name).value, item.value) << item.name;
      EXPECT_EQ(dialog.at(item.name).value2, item.value2) << item.name;
    }
  }
}

TEST_F(SfcDialog, TransfersAreOfferedOnlyWhenInventoriesAreValuedAsOne) {
  platform.answers.valuationMethod = "按存货核算";
  FakeDialog dialog(platform, receiptIssueBalance, {{.name = "iYear", .value = "2024"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.with("set "),
              ElementsAre("cWhCode available", "cDepCode available", "cWhCode unavailable", "cDepCode unavailable",
                          "bIncludeTransVouch available"));
}

TEST_F(SfcDialog, TheOutboundSummaryLeavesTransfersAlone) {
  FakeDialog dialog(platform, outboundSummary, {{.name = "iYear", .value = "2024"}, {.name = "bIncludeTransVouch"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.with("set "),
              ElementsAre("cWhCode available", "cDepCode available", "cDepCode unavailable"));
  EXPECT_EQ(dialog.at("bIncludeTransVouch").value, "");
}

TEST_F(SfcDialog, ListsBeforeTheYearAreThoseOfTheLogin) {
  // cVouType comes before iYear, whose value is still empty then.
  FakeDialog dialog(platform, outboundSummary, {{.name = "cVouType"}, {.name = "iYear"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.queries(), Contains(voucherTypes2024));
}

TEST_F(SfcDialog, AnotherYearsMethodComesFromThatYear) {
  platform.answers.queries.push_back({.part = "IA_HisOption", .rows = {{"按部门核算"}}});
  FakeDialog dialog(platform, outboundSummary, {{.name = "iYear", .value = "2023"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.queries(), ElementsAre(pastMethod));
  EXPECT_THAT(platform.record.with("set "),
              ElementsAre("cWhCode available", "cDepCode available", "cWhCode unavailable"));
}

// --- Lists ---

TEST_F(SfcDialog, AYearWithoutIssuesOffersTheOtherIssueOnly) {
  platform.answers.queries = {{.part = "EnumCode =N'其他出库单'", .rows = {{"Other issue", "08"}}},
                              {.part = "EnumCode =N'其他出库'", .rows = {{"Other", "其他出库"}}}};
  FakeDialog dialog(platform, outboundSummary,
                    {{.name = "cVouType"}, {.name = "cBusType"}, {.name = "iYear", .value = "2024"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.queries(),
              ElementsAre(voucherTypes2024, otherVoucherType, businessTypes2024, otherBusinessType));
  EXPECT_THAT(platform.record.calls, Contains("set cVouType enumeration 08{##}Other issue"));
  EXPECT_THAT(platform.record.calls, Contains("set cBusType enumeration 其他出库{##}Other"));
}

TEST_F(SfcDialog, Type3201IsDroppedBeside32) {
  platform.answers.queries = {
      {.part = "IA_Subsidiary.cVouType", .rows = {{"其他出库单", "08"}, {"销售出库单", "32"}, {"销售出库单", "3201"}}}};
  FakeDialog dialog(platform, outboundSummary, {{.name = "cVouType"}, {.name = "iYear", .value = "2024"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.calls, Contains("set cVouType enumeration 08{#}32{##}其他出库单{#}销售出库单"));
}

TEST_F(SfcDialog, Type3201AloneStays) {
  platform.answers.queries = {{.part = "IA_Subsidiary.cVouType", .rows = {{"销售出库单", "3201"}}}};
  FakeDialog dialog(platform, outboundSummary, {{.name = "cVouType"}, {.name = "iYear", .value = "2024"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.calls, Contains("set cVouType enumeration 3201{##}销售出库单"));
}

TEST_F(SfcDialog, ACodeThatComesTwiceIsOneChoice) {
  platform.answers.queries = {
      {.part = "IA_Subsidiary.cBusType  ", .rows = {{"Picking", "领料"}, {"Other", "其他"}, {"Material", "领料"}}}};
  FakeDialog dialog(platform, outboundSummary, {{.name = "cBusType"}, {.name = "iYear", .value = "2024"}});
  control.filterInit(dialog);
  EXPECT_THAT(platform.record.calls, Contains("set cBusType enumeration 领料{#}其他{##}Material{#}Other"));
}

TEST_F(SfcDialog, TheYearListLeavesOutUnstartedAndArchivedYears) {
  platform.answers.queries = {{.part = "ua_period", .rows = {{"987"}, {"2023"}, {"2024"}}}};
  FakeDialog dialog = started("", {});
  control.initYear();
  EXPECT_THAT(control.years(), ElementsAre("0987", "2023", "2024"));
  EXPECT_THAT(
      platform.record.queries(),
      ElementsAre(
          "select Distinct iyear \r\n"
          "from orvsystem..ua_period\r\n"
          "Inner Join AccInformation ON orvsystem..ua_period.iYear >= left(AccInformation.cValue, 4) And csysid = 'CA' "
          "and cid='11002'\r\n"
          "where cacc_id =N'001' And iYear < 9999\r\n"
          "And ((select top 1 cValue from accinformation where csysid = N'aa' and cName = N'ArchiveDate') Is Null\r\n"
          "    Or OrvSystem..UA_Period.iYear > (Select top 1 iYear From OrvSystem..UA_Period Where cacc_id =N'001' And "
          "(select top 1 cValue from accinformation where csysid = N'aa' and cName = N'ArchiveDate') Between dBegin And "
          "dEnd))\r\n"
          "order by iyear\r\n"));
  control.initYear();
  EXPECT_EQ(control.years().size(), 3U);
}

TEST_F(SfcDialog, TheGradeListRunsFromOneToTheHighest) {
  FakeDialog dialog = started("", {});
  control.initGrade();
  EXPECT_THAT(control.grades(), ElementsAre(1, 2, 3));
  EXPECT_THAT(platform.record.queries(), ElementsAre(highestGrade));
  platform.answers.queries = {{.part = "MAX(iGrade)", .rows = {{"1"}}}};
  control.initGrade();
  EXPECT_THAT(control.grades(), ElementsAre(1));
}

TEST_F(SfcDialog, ListsAreReadClientSideStaticAndOptimistic) {
  FakeDialog dialog = started("", {});
  control.initYear();
  EXPECT_EQ(platform.record.lastQueryOptions->cursorType, CursorType::fixed);
  EXPECT_EQ(platform.record.lastQueryOptions->lockType, LockType::optimistic);
  EXPECT_EQ(platform.record.lastQueryOptions->cursorLocation, CursorLocation::client);
  EXPECT_EQ(platform.record.calls.back(), "Recordset.Close");
}

TEST_F(SfcDialog, ListsNeedAStartedDialog) {
  const auto refusal = [this] {
    try {
      control.initYear();
      return std::string("none");
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), hresult::unexpected);
      return error.description();
    }
  };
  const std::string notStarted = "The dialog has no connection to the account yet; call CallBack_FilterInit first.";
  EXPECT_EQ(refusal(), notStarted);

  // A start that got as far as its connection, but to no login.
  FakeDialog dialog(platform, "", {});
  platform.record.failAt = 2;
  EXPECT_THROW(control.filterInit(dialog), AutomationError);
  EXPECT_EQ(platform.record.calls.back(), "dialog.login");
  EXPECT_EQ(refusal(), notStarted);
}

// --- Changes ---

TEST_F(SfcDialog, AnInventoryClassNarrowsTheInventories) {
  for (const char* key : {"cInvClass", "cInvCCode"}) {
    FakeDialog dialog = started(receiptIssueBalance, {{.name = key, .value = "0'1"}, {.name = "iYear"}});
    control.valueChange(key, dialog);
    EXPECT_THAT(changes(), ElementsAre("set cInvCode lookup () #FN[cInvCCode] Like '0'1%'"));
  }
}

TEST_F(SfcDialog, OnlyTheReportByClassHasAGrade) {
  for (const char* mode : {"1", "2", ""}) {
    FakeDialog dialog = started("", {{.name = "cModal", .value = mode}});
    control.valueChange("cModal", dialog);
    EXPECT_THAT(changes(), ElementsAre("set iGrade available", "set iGrade unavailable")) << mode;
  }
  FakeDialog dialog = started("", {{.name = "cModal", .value = "0"}});
  control.valueChange("cModal", dialog);
  EXPECT_THAT(changes(), ElementsAre("set iGrade available"));
}

TEST_F(SfcDialog, ANewYearSwitchesTransfersOfTheReceiptIssueBalance) {
  platform.answers.queries.push_back({.part = "iYear=2023", .rows = {{"按存货核算"}}});
  FakeDialog dialog = started(receiptIssueBalance, {{.name = "iYear"}, {.name = "bIncludeTransVouch", .value = "0"}});
  dialog.at("iYear").value = "2023";
  control.valueChange("iYear", dialog);
  EXPECT_THAT(changes(),
              ElementsAre("Session.query " + pastMethod, "set cWhCode available", "set cDepCode available",
                          "set cWhCode unavailable", "set cDepCode unavailable", "set bIncludeTransVouch available"));
  EXPECT_EQ(dialog.at("bIncludeTransVouch").value, "0");

  platform.record.calls.clear();
  dialog.at("iYear").value = "2024";
  control.valueChange("iYear", dialog);
  EXPECT_THAT(changes(), ElementsAre("set cWhCode available", "set cDepCode available", "set cDepCode unavailable",
                                     "set bIncludeTransVouch unavailable", "bIncludeTransVouch.value = 1"));
}

TEST_F(SfcDialog, ANewYearRefillsTheTypesOfTheOutboundSummary) {
  FakeDialog dialog = started(outboundSummary, {{.name = "iYear", .value = "2023"}});
  dialog.at("iYear").value = "2024";
  control.valueChange("iYear", dialog);
  EXPECT_THAT(
      changes(),
      ElementsAre("set cWhCode available", "set cDepCode available", "set cDepCode unavailable",
                  "Session.query " + businessTypes2024, "set cBusType enumeration 领料{#}其他出库{##}领料{#}其他出库",
                  "Session.query " + voucherTypes2024, "set cVouType enumeration 08{#}11{##}其他出库单{#}材料出库单"));
}

TEST_F(SfcDialog, ANewYearOfAnyOtherReportSwitchesWarehouseAndDepartmentOnly) {
  FakeDialog dialog = started("other", {{.name = "iYear", .value = "2024"}});
  control.valueChange("iYear", dialog);
  EXPECT_THAT(changes(), ElementsAre("set cWhCode available", "set cDepCode available", "set cDepCode unavailable"));
}

TEST_F(SfcDialog, OtherKeysAndOtherSpellingsChangeNothing) {
  FakeDialog dialog = started(outboundSummary, {{.name = "iYear"}, {.name = "cModal", .value = "1"}});
  for (const char* key : {"cWhCode", "iyear", "cmodal", "CINVCLASS", ""})
    control.valueChange(key, dialog);
  EXPECT_THAT(platform.record.calls, IsEmpty());
}

// --- View and confirmation ---

TEST_F(SfcDialog, TheViewFollowsTheMode) {
  const auto view = [this](const char* mode) {
    FakeDialog dialog(platform, "", {{.name = "cModal", .value = mode}});
    return SfcFilterControl::reportView(dialog);
  };
  EXPECT_EQ(view("2"), "ordin");
  for (const char* mode : {"0", "1", "", "02", "x"})
    EXPECT_EQ(view(mode), "cross") << mode;
}

TEST_F(SfcDialog, TheFilterIsAlwaysAccepted) {
  EXPECT_TRUE(SfcFilterControl::filterClick());
}

// --- Failures ---

TEST_F(SfcDialog, AFailureAtAnyCallReachesThePlatformAndLeavesNothingAlive) {
  const std::vector<ItemValues> items{
      {.name = "iYear"}, {.name = "cModal"}, {.name = "iGrade"}, {.name = "cVouType"}, {.name = "cBusType"}};
  const auto run = [&](fakes::FakePlatform& own) {
    own.answers = platform.answers;
    Module ownModule(own);
    SfcFilterControl ownControl(ownModule);
    FakeDialog dialog(own, outboundSummary, items);
    ownControl.filterInit(dialog);
    ownControl.valueChange("iYear", dialog);
  };
  fakes::FakePlatform whole;
  run(whole);
  const std::size_t calls = whole.record.calls.size();
  ASSERT_GT(calls, 80U);
  EXPECT_EQ(whole.record.alive, 0);
  for (std::size_t failing = 1; failing <= calls; ++failing) {
    fakes::FakePlatform own;
    own.record.failAt = failing;
    EXPECT_THROW(run(own), AutomationError) << whole.record.calls[failing - 1];
    EXPECT_EQ(own.record.calls.size(), failing);
    EXPECT_EQ(own.record.alive, 0) << failing;
  }
}

}  // namespace
}  // namespace quillon
