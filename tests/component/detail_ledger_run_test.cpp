// clsFXDetail in Quillon.dll against a fake platform: the calls of a run and of a drill-through and their order, and a
// failure at every one of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "automation/late_bound.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/library_test.h"
#include "tests/component/recorded_calls.h"

namespace quillon::component::test {

using automation::LateBound;
using automation::LiveCount;
using automation::makeObject;
using automation::Variant;
using automation::test::ComScope;
namespace {

// The ledger of one item from its cost items' start in January to the first month that is not settled.
std::vector<FakeItem> filterOf(const std::string& from, const std::string& to) {
  return {{"iYear", "2024", ""},  {"cInvCode", "0101", ""}, {"cWhCode", "", ""},    {"cDepCode", "", ""},
          {"cFree1", "blue", ""}, {"cFree2", "", ""},       {"cBatchIA", "B7", ""}, {"dKeepDate", from, to}};
}

// The inventory is checked for its batch and its first free item.
std::vector<std::vector<Variant>> checkedInventory(const std::string& sql) {
  if (!sql.starts_with("select bcheckbatch,")) return {};
  std::vector<Variant> flags(11, Variant(false));
  flags[0] = Variant(true);
  flags[1] = Variant(true);
  return {flags};
}

// The name of a voucher type as the row shows it, and the year of a general-ledger voucher.
FakePlatform& answerLookups(FakePlatform& platform, const std::string& typeCode) {
  platform.rows = [typeCode](const std::string& sql) -> std::vector<std::vector<Variant>> {
    if (sql.starts_with("select VouchType.cVouchType")) return {{typeCode}};
    if (sql.starts_with("Select iYear From IA_SubSidiary ")) return {{2023}, {2024}};
    return {};
  };
  return platform;
}

class DetailLedgerRun : public LibraryTest {
 protected:
  LateBound report() const { return make(classes::fxDetail, "clsFXDetail"); }
};

// --- GETSQL ---------------------------------------------------------------------------------------------------------

TEST_F(DetailLedgerRun, CallsThePlatformInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = checkedInventory;
  const auto e = platform.argument(filterOf("", ""));
  report().call(L"GETSQL", {e});
  const Calls head = {"e.rawFilter",
                      "new ADODB.Connection",
                      "e.Login",
                      "Connection.CursorLocation = 3",
                      "Login.OrvDbName",
                      "Connection.ConnectionString = \"Provider=Fake;Data Source=account\"",
                      "Connection.ConnectionTimeout = 0",
                      "Connection.CommandTimeout = 0",
                      "Connection.Open(\"\", \"\", \"\", -1)",
                      "e.LoginObj",
                      "new OrvPlatform.AccountLogin",
                      "Login.OrvDbName",
                      "Login.SysPassword",
                      "AccountLogin.Init(\"Provider=Fake;Data Source=account\", \";PWD=secret\")",
                      "new OrvPlatform.InventoryEnvironment",
                      "Environment.Init(<AccountLogin>)",
                      "Environment.GetTableNames(ref \"\", ref \"\")",
                      "new OrvPlatform.AccountOptions",
                      "Environment.FillAccountOptions(<AccountOptions>, <AccountLogin>, \"DetailResult\")",
                      "e.DataSource",
                      "DataSource.Type = 2",
                      "DataSource.SQL = \"DetailResult\"",
                      "Filter.FilterList",
                      "FilterList.Item(\"cInvCode\")",
                      "Item.varValue",
                      "Filter.FilterList",
                      "FilterList.Item(\"cDepCode\")",
                      "Item.varValue",
                      "Filter.FilterList",
                      "FilterList.Item(\"cWhCode\")",
                      "Item.varValue",
                      "new IA_Pub.ClsIAPub",
                      "IAPub.GetAccInformation(\"AA\", \"iStrsQuanDecDgt\", ref <Connection>)",
                      "IAPub.GetAccInformation(\"AA\", \"iStrsPriDecDgt\", ref <Connection>)",
                      "AccountOptions.CostingBasis",
                      "AccountOptions.InventoryTable",
                      "AccountOptions.WarehouseTable",
                      "IAPub.GetComputerName",
                      "new OrvPlatform.WorkTableNumber",
                      "WorkTableNumber.Number",
                      "IAPub.GetComputerName",
                      "new OrvPlatform.WorkTableNumber",
                      "WorkTableNumber.Number"};
  ASSERT_LE(head.size(), recorder.calls.size());
  EXPECT_EQ(Calls(recorder.calls.begin(), recorder.calls.begin() + static_cast<std::ptrdiff_t>(head.size())), head);
  EXPECT_EQ(recorder.calls.back(), "Connection.Close");
}

// An argument object of another maker has the login on its filter object, or the member is there and holds nothing.
TEST_F(DetailLedgerRun, TheLoginOfTheEnvironmentMayBeTheFilterObjects) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto runWith = [&](const std::function<void(FakeObject & e)>& change) {
    const auto e = platform.argument(filterOf("", ""));
    const Variant login = e->value(bindings::argument::login);
    const auto filter = automation::toObject(e->value(bindings::argument::rawFilter));
    static_cast<FakeObject*>(filter.get())->property(bindings::argument::loginObj, login);
    change(*e);
    recorder.calls.clear();
    report().call(L"GETSQL", {e});
    EXPECT_EQ(recorder.calls.back(), "Connection.Close");
    Calls asked = callsOn(recorder, {"e.LoginObj", "Filter.LoginObj", "AccountLogin.Init"});
    EXPECT_EQ(asked.back(), "AccountLogin.Init(\"Provider=Fake;Data Source=account\", \";PWD=secret\")");
    asked.pop_back();
    return asked;
  };
  EXPECT_EQ(runWith([](FakeObject&) {}), Calls{"e.LoginObj"});
  EXPECT_EQ(runWith([](FakeObject& e) { e.without(bindings::argument::loginObj); }), Calls{"Filter.LoginObj"});
  for (const Variant& nothing : {Variant(static_cast<IDispatch*>(nullptr)), Variant(), Variant::null()}) {
    EXPECT_EQ(runWith([&](FakeObject& e) {
                e.without(bindings::argument::loginObj).property(bindings::argument::loginObj, nothing);
              }),
              (Calls{"e.LoginObj", "Filter.LoginObj"}));
  }
}

TEST_F(DetailLedgerRun, WithoutALoginForTheEnvironmentBothPlacesAreNamed) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto e = platform.argument(filterOf("", ""));
  e->without(bindings::argument::loginObj);
  const auto tell = [&] {
    try {
      report().call(L"GETSQL", {e});
      FAIL() << "nothing was thrown";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), objectNotSet);
      EXPECT_EQ(error.source(), "Quillon.clsFXDetail.GETSQL");
      EXPECT_EQ(
          error.description(),
          "There is no login to open the accounting environment with: neither e.LoginObj nor e.rawFilter.LoginObj "
          "holds an object.");
    }
  };
  tell();
  static_cast<FakeObject*>(automation::toObject(e->value(bindings::argument::rawFilter)).get())
      ->property(bindings::argument::loginObj, Variant(static_cast<IDispatch*>(nullptr)));
  tell();
}

TEST_F(DetailLedgerRun, AsksThePublicComponentForThePeriodsOfTheYear) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.lastSettledMonth = 2;
  report().call(L"GETSQL", {platform.argument(filterOf("", ""))});
  EXPECT_EQ(callsOn(recorder,
                    {"IAPub.iFx", "IAPub.IsFx", "IAPub.Start", "IAPub.GetDate", "IAPub.GetPeriod", "IAPub.GetMonth"}),
            (Calls{"IAPub.iFxStartMonth(\"2024\", ref <Connection>)", "IAPub.IsFxFinishQC(ref <Connection>, 2024)",
                   "IAPub.StartMonthYear(\"IA\", ref <Connection>, ref 0, ref 0)",
                   "IAPub.GetDateFromPeriod(ref <Connection>, \"001\", 2024, 1, ref 1899-12-30, ref 1899-12-30)",
                   "IAPub.GetDateFromPeriod(ref <Connection>, \"001\", 2024, 12, ref 1899-12-30, ref 1899-12-30)",
                   "IAPub.GetMonthState(ref <Connection>, 2024, 1)", "IAPub.GetMonthState(ref <Connection>, 2024, 2)",
                   "IAPub.GetMonthState(ref <Connection>, 2024, 3)"}));
}

TEST_F(DetailLedgerRun, AsksForThePeriodsOfTheFiltersDates) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  report().call(L"GETSQL", {platform.argument(filterOf("2024-02-29", "2025-01-15"))});
  EXPECT_EQ(callsOn(recorder, {"IAPub.GetDate", "IAPub.GetPeriod"}),
            (Calls{"IAPub.GetPeriodFromDate(ref <Connection>, 2024-02-29, ref 0, ref 0)",
                   "IAPub.GetPeriodFromDate(ref <Connection>, 2025-01-15, ref 0, ref 0)"}));
}

TEST_F(DetailLedgerRun, SendsItsStatementsInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = checkedInventory;
  report().call(L"GETSQL", {platform.argument(filterOf("2024-01-01", "2024-02-29"))});
  const Calls statements = callsOn(recorder, {"Connection.Execute", "Recordset.Open"});
  const std::string dropMain =
      "Connection.Execute(\"if exists(select id from  tempdb..sysobjects where "
      "id=object_id(N'tempdb..#DESK_7_FXDetail_501')) drop table #DESK_7_FXDetail_501\", ref Empty, -1)";
  const std::string dropSecond =
      "Connection.Execute(\"if exists(select id from  tempdb..sysobjects where "
      "id=object_id(N'tempdb..#DESK_7_FXDetail2_502')) drop table #DESK_7_FXDetail2_502\", ref Empty, -1)";
  const std::string insertBalances = "Connection.Execute(\"insert  into #DESK_7_FXDetail_501 (";
  const std::string setBalances =
      "Connection.Execute(\"update #DESK_7_FXDetail_501 set  iQuantity=a.iQuantity,iPrice=a.iPrice  from ";
  const Calls beginnings = {
      dropMain,
      "Connection.Execute(\"select (base.autoid+1) as id,",
      "Recordset.Open(\"select bcheckbatch,bCheckFree1,bCheckFree2,bCheckFree3,bCheckFree4,bCheckFree5,bCheckFree6,"
      "bCheckFree7,bCheckFree8,bCheckFree9,bCheckFree10 from InventoryView inventory where cinvcode=N'0101'\", "
      "<Connection>, 3, 3, -1)",
      insertBalances,
      setBalances,
      "Connection.Execute(\"insert into #DESK_7_FXDetail_501 (cInvCode,cInvName,",
      insertBalances,
      setBalances,
      insertBalances,
      setBalances,
      "Connection.Execute(\"update #DESK_7_FXDetail_501 set iCost=case when ",
      dropSecond,
      "Connection.Execute(\"select IDENTITY(int,1,1) as RowNo,",
      "Connection.Execute(\"Update #DESK_7_FXDetail2_502 set cPZCode=",
      "Connection.Execute(\"Update #DESK_7_FXDetail2_502 set cvoutype=AA_Enum.EnumName from  ",
      "Connection.Execute(\"update #DESK_7_FXDetail2_502 set cvoutype=(select a.EnumName from  ",
      "Connection.Execute(\"select (temp.rowno+1) as rowno,",
      "Connection.Execute(\"update DetailResult set ",
      dropMain,
      dropSecond};
  ASSERT_EQ(statements.size(), beginnings.size());
  for (std::size_t i = 0; i < beginnings.size(); ++i)
    EXPECT_TRUE(statements[i].starts_with(beginnings[i])) << i << ": " << statements[i];
  EXPECT_NE(statements[3].find("N'text 05360' as cPZdigest"), std::string::npos) << statements[3];
  EXPECT_NE(statements[8].find("N'2 text 00298' as cPZdigest"), std::string::npos) << statements[8];
  EXPECT_NE(statements[16].find(" into DetailResult "), std::string::npos) << statements[16];
}

TEST_F(DetailLedgerRun, AsksTheChecksOfAnItemAlsoWhenThereIsNothingToReport) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.startMonth = 0;
  platform.rows = checkedInventory;
  report().call(L"GETSQL", {platform.argument(filterOf("", ""))});
  const Calls statements = callsOn(recorder, {"Connection.Execute", "Recordset.Open"});
  ASSERT_EQ(statements.size(), 6U);
  EXPECT_TRUE(statements[2].starts_with("Recordset.Open(\"select bcheckbatch,")) << statements[2];
  EXPECT_TRUE(statements[3].starts_with("Connection.Execute(\"select id,datatype,cInvCode,")) << statements[3];
  EXPECT_EQ(callsOn(recorder, {"Item.strSqlString"}).size(), 2U) << "of the batch and the first free item";
  EXPECT_EQ(recorder.calls.back(), "Connection.Close");
}

TEST_F(DetailLedgerRun, ARunKeepsNothingButTheTexts) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const long classObjects = LiveCount::value();
  for (int run = 0; run < 2; ++run)
    report().call(L"GETSQL", {platform.argument(filterOf("", ""))});
  EXPECT_EQ(LiveCount::value(), classObjects + 1) << "the resource service";
  EXPECT_EQ(callsOn(recorder, {"new IA_Pub.ClsIAPub"}).size(), 2U) << "released by the run that made it";
  EXPECT_EQ(library.canUnload(), S_OK);
}

TEST_F(DetailLedgerRun, WorkTablesHaveNumbersOfTheirOwnWithoutThePlatforms) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.withoutNaming();
  report().call(L"GETSQL", {platform.argument(filterOf("", ""))});
  const Calls statements = callsOn(recorder, {"Connection.Execute"});
  ASSERT_GT(statements.size(), 2U);
  const auto numberBehind = [](const std::string& statement, const std::string& table) {
    const std::size_t at = statement.rfind(table) + table.size();
    return statement.substr(at, statement.find_first_not_of("0123456789", at) - at);
  };
  const std::string main = numberBehind(statements.front(), "#DESK_7_FXDetail_");
  const std::string second = numberBehind(statements.back(), "#DESK_7_FXDetail2_");
  EXPECT_FALSE(main.empty());
  EXPECT_FALSE(second.empty());
  EXPECT_NE(main, second);
}

TEST_F(DetailLedgerRun, AMissingEnvironmentIsNamed) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.withoutEnvironment();
  try {
    report().call(L"GETSQL", {platform.argument(filterOf("", ""))});
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), REGDB_E_CLASSNOTREG);
    EXPECT_NE(error.description().find("OrvPlatform.InventoryEnvironment"), std::string::npos) << error.description();
  }
}

// --- Execute --------------------------------------------------------------------------------------------------------

// The calls of the voucher components when the row of a ledger line of this type is drilled through.
class DrillThroughRun : public DetailLedgerRun {
 protected:
  static void chooseRow(FakePlatform& platform, const std::string& businessType = "") {
    platform.row = {{"cVouType", "the type's name"}, {"cVouCode", " 0007 "}, {"iPZID", 17}, {"ID", 815},
                    {"cBusType", businessType},      {"cPZID", "p1"}};
  }

  Calls sourceVoucher(const std::string& typeCode, const std::string& businessType = "",
                      const std::string& edition = "工业") const {
    const ComScope apartment;
    Recorder recorder;
    FakePlatform platform(recorder);
    platform.edition = edition;
    answerLookups(platform, typeCode);
    chooseRow(platform, businessType);
    const auto e = platform.argument({});
    LateBound(e, "e").put(bindings::argument::action, "Vouch");
    report().call(L"Execute", {e});
    Calls calls = callsOn(recorder, {"UniVch."});
    EXPECT_FALSE(calls.empty());
    EXPECT_EQ(calls.front(), "UniVch.Init(<Login>, ref <Connection>, \"" + edition + "\")");
    calls.erase(calls.begin());
    return calls;
  }
};

TEST_F(DrillThroughRun, ABalanceHasNoDocument) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  report().call(L"Execute", {platform.argument({})});
  EXPECT_EQ(recorder.calls, (Calls{"new ADODB.Connection", "e.Login", "e.RelateData", "Row.GetData(\"cVouType\")"}));
}

TEST_F(DrillThroughRun, TheSourceDocumentIsShownInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  answerLookups(platform, "32");
  chooseRow(platform);
  const auto e = platform.argument({});
  const LateBound argument(e, "e");
  argument.put(bindings::argument::action, "Vouch");
  recorder.calls.clear();
  report().call(L"Execute", {e});
  EXPECT_EQ(recorder.calls,
            (Calls{"new ADODB.Connection",
                   "e.Login",
                   "e.RelateData",
                   "Row.GetData(\"cVouType\")",
                   "Connection.CursorLocation = 3",
                   "Login.OrvDbName",
                   "Connection.ConnectionString = \"Provider=Fake;Data Source=account\"",
                   "Connection.ConnectionTimeout = 0",
                   "Connection.CommandTimeout = 0",
                   "Connection.Open(\"\", \"\", \"\", -1)",
                   "new IA_Pub.ClsIAPub",
                   "e.Action",
                   "new ADODB.Recordset",
                   "Recordset.Open(\"select VouchType.cVouchType from VouchType inner join AA_Enum on "
                   "VouchType.cVouchName=AA_Enum.EnumCode where AA_Enum.EnumType ='IA.vchtype' and "
                   "AA_Enum.LocaleId=DBO.UDF_GetLocaleID() and AA_Enum.EnumName='the type's name'\", <Connection>, 3, "
                   "3, -1)",
                   "Recordset.EOF",
                   "Recordset.Fields",
                   "Fields.Item(0)",
                   "Field.Value",
                   "Recordset.Close",
                   "Row.GetData(\"cVouCode\")",
                   "Row.GetData(\"iPZID\")",
                   "Row.GetData(\"ID\")",
                   "new PellUniVch.clsUniVch",
                   "IAPub.GetAccInformation(\"AA\", \"cSysVersion\", ref <Connection>)",
                   "UniVch.Init(<Login>, ref <Connection>, \"工业\")",
                   "UniVch.ShowVoucher(\"32\", \" 0007 \", 815, ref <Connection>)"}));
}

TEST_F(DrillThroughRun, EveryKindOfSourceDocumentHasItsCall) {
  for (const char* type : {"20", "21", "24", "30", "01", "32"})
    EXPECT_EQ(sourceVoucher(type),
              Calls{"UniVch.ShowVoucher(\"" + std::string(type) + "\", \" 0007 \", 815, ref <Connection>)"});
  EXPECT_EQ(sourceVoucher("21", "分项调整"), Calls{"UniVch.ShowProJust(ref <Connection>, 815)"});
  EXPECT_EQ(sourceVoucher("20", "分项调整"), Calls{"UniVch.ShowVoucher(\"20\", \" 0007 \", 815, ref <Connection>)"});
  EXPECT_EQ(sourceVoucher("35"),
            Calls{"UniVch.ShowDifVouchs(\"35\", \" 0007 \", 815, ref <Connection>, False, \"by inventory\")"});
  EXPECT_EQ(sourceVoucher("35", "", "商业"),
            Calls{"UniVch.ShowDifVouchs(\"35\", \" 0007 \", 815, ref <Connection>, True, \"by inventory\")"});
  EXPECT_EQ(sourceVoucher("22"), Calls{"UniVch.ShowCostJustVouch(\"0007\")"});
}

TEST_F(DrillThroughRun, TheGeneralLedgerVoucherIsShownInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  answerLookups(platform, "32");
  chooseRow(platform);
  report().call(L"Execute", {platform.argument({})});
  const auto action = std::ranges::find(recorder.calls, "e.Action");
  ASSERT_NE(action, recorder.calls.end());
  EXPECT_EQ(Calls(action + 1, recorder.calls.end()),
            (Calls{"Row.GetData(\"cPZID\")",
                   "new ADODB.Recordset",
                   "Recordset.Open(\"Select iYear From IA_SubSidiary Where cPzID = N'p1' and imonth <>0 order by "
                   "iyear\", <Connection>, 3, 3, -1)",
                   "Recordset.EOF",
                   "Recordset.Fields",
                   "Fields.Item(0)",
                   "Field.Value",
                   "Recordset.Close",
                   "new ZzPub.clsPub",
                   "new ZzPz.clsPZ",
                   "ZzPub.oLogIn = <Login>",
                   "Login.OrvDbName",
                   "Login.SysPassword",
                   "Login.cAcc_Id",
                   "Login.CurDate",
                   "ZzPub.InitPubs2(\"Provider=Fake;Data Source=account\", \";PWD=secret\", 2023, \"001\", "
                   "\"2024-06-30\")",
                   "ZzPz.zzLogin = <Login>",
                   "ZzPz.zzSys = <ZzPub>",
                   "Row.GetData(\"iPZID\")",
                   "Login.ModuleCode",
                   "ZzPz.StartUpPz(\"*IACXPZ\", \"存货核算\", \"17\")"}));
}

TEST_F(DrillThroughRun, TheGeneralLedgersOwnUsersHaveItsMenu) {
  for (const auto& [module, opened] :
       {std::pair<std::optional<std::string>, std::string>{"ZZ", "ZzPz.StartUpPz(\"ZZ0101\", \"\", \"17\")"},
        {" zz9", "ZzPz.StartUpPz(\"ZZ0101\", \"\", \"17\")"},
        {std::nullopt, "ZzPz.StartUpPz(\"*IACXPZ\", \"存货核算\", \"17\")"}}) {
    const ComScope apartment;
    Recorder recorder;
    FakePlatform platform(recorder);
    answerLookups(platform, "32");
    chooseRow(platform);
    platform.moduleCode = module;
    report().call(L"Execute", {platform.argument({})});
    EXPECT_EQ(recorder.calls.back(), opened) << module.value_or("a login without a module");
  }
}

TEST_F(DrillThroughRun, TheBusinessObjectReachesTheGeneralLedger) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  answerLookups(platform, "32");
  chooseRow(platform);
  const LateBound holder(library.create<IDispatch>(classes::business), "ClsBusiness");
  holder.call(L"Init", {makeObject<FakeObject>(recorder, "Business")});
  report().call(L"Execute", {platform.argument({})});
  EXPECT_EQ(callsOn(recorder, {"ZzPub."}),
            (Calls{"ZzPub.g_business = <Business>", "ZzPub.oLogIn = <Login>",
                   "ZzPub.InitPubs2(\"Provider=Fake;Data Source=account\", \";PWD=secret\", 2023, \"001\", "
                   "\"2024-06-30\")"}));
  holder.call(L"Init", {Variant(static_cast<IDispatch*>(nullptr))});
}

TEST_F(DrillThroughRun, ARowThatIsNotPostedIsToldToTheUser) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  chooseRow(platform);
  platform.row["cPZID"] = Variant::null();
  report().call(L"Execute", {platform.argument({})});
  EXPECT_EQ(
      callsOn(recorder, {"ResourceService.", "Recordset", "new Zz"}),
      (Calls{"ResourceService.Text(Mirel.IA.CHHSSQL.02787)", "ResourceService.ShowMessage(text 02787, 48, 0, 0)"}));
}

TEST_F(DrillThroughRun, WithoutAChosenRowItSaysSo) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto errorOf = [&](const ComPtr<FakeObject>& e) {
    try {
      report().call(L"Execute", {e});
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.source(), "Quillon.clsFXDetail.Execute");
      EXPECT_EQ(error.code(), objectNotSet);
      return error.description();
    }
    return std::string("nothing was thrown");
  };
  const std::string told =
      "No row of the report is chosen: e.RelateData holds no object, so there is no document to open.";
  const auto e = platform.argument({});
  e->without(bindings::argument::row);
  EXPECT_EQ(errorOf(e), told);
  for (const Variant& nothing : {Variant(static_cast<IDispatch*>(nullptr)), Variant(), Variant::null()}) {
    e->without(bindings::argument::row).property(bindings::argument::row, nothing);
    EXPECT_EQ(errorOf(e), told);
  }
  EXPECT_TRUE(callsOn(recorder, {"Connection."}).empty()) << "nothing is opened for it";
}

TEST_F(DrillThroughRun, ARowThatLacksAColumnSaysWhich) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto errorOf = [&](const ComPtr<FakeObject>& e) {
    LateBound(e, "e").put(bindings::argument::action, "Vouch");
    try {
      report().call(L"Execute", {e});
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.source(), "Quillon.clsFXDetail.Execute");
      return error.description();
    }
    return std::string("nothing was thrown");
  };
  // The row answers Null, Empty or nothing but blanks for the column that a document is found by.
  for (const Variant& nothing : {Variant::null(), Variant(), Variant(" ")}) {
    platform.row = {{"cVouType", "32"}, {"cVouCode", "0007"}, {"ID", nothing}};
    EXPECT_EQ(errorOf(platform.argument({})),
              "The chosen row has nothing in its column \"ID\", by which its document is found.");
  }
  platform.row["ID"] = "none";
  EXPECT_EQ(errorOf(platform.argument({})), "The row's ID is \"none\", which is not a whole number.");
  // The row knows no columns at all, or says so without a word.
  const auto e = platform.argument({});
  e->without(bindings::argument::row).property(bindings::argument::row, makeObject<FakeObject>(recorder, "Row"));
  EXPECT_EQ(
      errorOf(e),
      "The chosen row gives no value for its column \"cVouType\": RelateData.GetData: The object has no member of "
      "this name.");
  // A row that has words of its own keeps them.
  const auto row = makeObject<FakeObject>(recorder, "Row");
  row->on(bindings::report_row::value, [](automation::Call& call) -> Variant {
    throw AutomationError(hresult::itemNotFound, "Quillon.clsFXDetail", "no column " + call.text(0));
  });
  e->without(bindings::argument::row).property(bindings::argument::row, row);
  EXPECT_EQ(errorOf(e), "no column cVouType");
}

// --- Whatever fails -------------------------------------------------------------------------------------------------

// What the report is asked for, in an apartment of its own.
enum class Member { getSql, sourceVoucher, ledgerVoucher, notPosted };

// One call of the member, with call `failAt` to the platform failing; gives how many calls there were.
std::size_t runOnce(const QuillonLibrary& library, std::size_t failAt, Member member,
                    const std::vector<FakeItem>& items = {}) {
  const long before = LiveCount::value();
  Recorder recorder;
  {
    const ComScope apartment;
    FakePlatform platform(recorder);
    platform.rows = member == Member::getSql ? checkedInventory : answerLookups(platform, "35").rows;
    if (member == Member::getSql) {
      platform.startMonth = items.empty() ? 1 : 2;  // the account began in another year: opening balances are assembled
    } else {
      platform.row = voucherRow("the type's name", "7", member == Member::notPosted ? "" : "p1");
    }
    const auto e = platform.argument(items.empty() ? filterOf("", "") : items);
    if (member == Member::sourceVoucher) LateBound(e, "e").put(bindings::argument::action, "Vouch");
    const LateBound holder(library.create<IDispatch>(classes::business), "ClsBusiness");
    holder.call(L"Init", {makeObject<FakeObject>(recorder, "Business")});
    const LateBound report(library.create<IDispatch>(classes::fxDetail), "clsFXDetail");
    recorder.calls.clear();
    recorder.failAt = failAt;
    try {
      report.call(member == Member::getSql ? L"GETSQL" : L"Execute", {e});
      EXPECT_EQ(failAt, 0U) << "the failure was swallowed";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), Recorder::failure) << failAt;
      EXPECT_EQ(recorder.calls.size(), failAt) << "after a failure nothing more is called";
      // A failing class object cannot say more than its code.
      if (!recorder.calls.back().starts_with("new ")) {
        EXPECT_EQ(error.source(), "Fake");
        EXPECT_EQ(error.description(), "refused: " + recorder.calls.back());
      }
    }
    holder.call(L"Init", {Variant(static_cast<IDispatch*>(nullptr))});
  }
  EXPECT_EQ(LiveCount::value(), before) << "objects of the platform are left over after a failure at call " << failAt;
  EXPECT_EQ(library.canUnload(), S_OK) << failAt;
  EXPECT_EQ(recorder.releasedElsewhere, 0);
  return recorder.calls.size();
}

TEST_F(DetailLedgerRun, NothingIsLeftOverWhateverFailsInARun) {
  for (const auto& items : {std::vector<FakeItem>{}, filterOf("2024-02-10", "2024-04-20")}) {
    const std::size_t total = runOnce(library, 0, Member::getSql, items);
    EXPECT_GT(total, 80U);
    for (std::size_t failAt = 1; failAt <= total; ++failAt)
      runOnce(library, failAt, Member::getSql, items);
  }
}

TEST_F(DetailLedgerRun, NothingIsLeftOverWhateverFailsInADrillThrough) {
  for (const Member member : {Member::sourceVoucher, Member::ledgerVoucher, Member::notPosted}) {
    const std::size_t total = runOnce(library, 0, member);
    EXPECT_GT(total, 10U);
    for (std::size_t failAt = 1; failAt <= total; ++failAt)
      runOnce(library, failAt, member);
  }
}

TEST_F(DetailLedgerRun, AnInstanceThatFailedHoldsNothingOnceItIsGone) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const long classObjects = LiveCount::value();
  {
    const auto e = platform.argument(filterOf("", ""));
    const LateBound report = this->report();
    constexpr std::size_t amidTheStatements = 60;
    recorder.failAt = amidTheStatements;
    EXPECT_THROW(report.call(L"GETSQL", {e}), AutomationError);
  }
  EXPECT_LE(LiveCount::value(), classObjects + 1) << "no more than the resource service";
  EXPECT_EQ(library.canUnload(), S_OK);
}

}  // namespace
}  // namespace quillon::component::test
