// Whole runs of the summary reports in Quillon.dll against a fake platform: the calls that reach the platform and their
// order, a failure at every one of them, and two threads at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "automation/late_bound.h"
#include "automation/text.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/library_test.h"
#include "tests/component/recorded_calls.h"

namespace quillon::component::test {

using automation::ComPtr;
using automation::LateBound;
using automation::LiveCount;
using automation::makeObject;
using automation::Variant;
using automation::test::ComScope;
namespace {

const std::vector<FakeItem> costItemsOf2024 = {
    {"cModal", "1", ""}, {"iYear", "2024", ""}, {"CINVCODE", "01\t 02 ", ""}};

// What the outbound summary finds of project classes: one with tables, the inventory itself, one without tables.
std::vector<std::vector<Variant>> projectClasses(const std::string& sql) {
  if (!sql.starts_with("Select Distinct base.cItem_Class")) return {};
  return {{"00", "fItem_ProjectClass", "fItem_Project"}, {"CH", "", ""}, {"99", Variant::null(), Variant::null()}};
}

class ReportRun : public LibraryTest {
 protected:
  // Creates a report, as the platform does. Throws AutomationError.
  LateBound report(REFCLSID classId = classes::sfcItem) {
    HRESULT code = S_OK;
    ComPtr<IDispatch> object = library.create<IDispatch>(classId, &code);
    if (FAILED(code)) throw AutomationError(code, "CreateInstance", "");
    return {std::move(object), "report"};
  }
};

TEST_F(ReportRun, CallsThePlatformInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  {
    const LateBound report = this->report();
    report.call(L"GETSQL", {platform.argument(costItemsOf2024)});
  }
  const Calls& calls = recorder.calls;
  const Calls head = {"new OrvPlatform.Naming",
                      "Naming.Number",
                      "e.rawFilter",
                      "new ADODB.Connection",
                      "e.Login",
                      "Connection.CursorLocation = 3",
                      "Login.OrvDbName",
                      "Connection.ConnectionString = \"Provider=Fake;Data Source=account\"",
                      "Connection.ConnectionTimeout = 0",
                      "Connection.CommandTimeout = 0",
                      "Connection.Open(\"\", \"\", \"\", -1)",
                      "e.DataSource",
                      "DataSource.Type = 2",
                      "DataSource.SQL",
                      "Filter.FilterList",
                      "FilterList.Count",
                      "Filter.FilterList",
                      "FilterList.Item(1)",
                      "Item.LngGrouptoken = 1",
                      "Item.Name",
                      "Item.varValue",
                      "Item.varValue2",
                      "Item.RangeInput",
                      "Item.IsMultSel",
                      "Filter.FilterList",
                      "FilterList.Item(2)",
                      "Item.LngGrouptoken = 1",
                      "Item.Name",
                      "Item.varValue",
                      "Item.varValue2",
                      "Item.RangeInput",
                      "Item.IsMultSel",
                      "Filter.FilterList",
                      "FilterList.Item(3)",
                      "Item.LngGrouptoken = 1",
                      "Item.Name",
                      "Item.varValue",
                      "Item.varValue2",
                      "Item.RangeInput",
                      "Item.IsMultSel",
                      "Filter.GetWhereWithToken(0)",
                      "new IA_Pub.ClsIAPub",
                      "IAPub.iFxStartMonth(\"2024\", ref <Connection>)"};
  ASSERT_LE(head.size(), calls.size());
  EXPECT_EQ(Calls(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(head.size())), head);

  const Calls statements = callsOn(recorder, {"Connection.Execute"});
  const std::string insert = "Connection.Execute(\"Insert Into [77u1IA_SFC_Item_DetailTmp]";
  ASSERT_EQ(statements.size(), 12U);
  EXPECT_EQ(statements[0],
            "Connection.Execute(\"If Exists(Select Name From Sysobjects Where Name = '77u1IA_SFC_Item_DetailTmp') Drop "
            "Table [77u1IA_SFC_Item_DetailTmp]\", ref Empty, -1)");
  EXPECT_TRUE(statements[1].starts_with("Connection.Execute(\"Select Top 0 base.autoid,wh.cWhCode, ")) << statements[1];
  EXPECT_NE(statements[1].find("Into ResultTable "), std::string::npos);
  EXPECT_EQ(statements[2],
            "Connection.Execute(\"Select Top 0 * Into [77u1IA_SFC_Item_DetailTmp] From ResultTable\", ref Empty, -1)");
  for (std::size_t i = 3; i <= 7; ++i)
    EXPECT_EQ(statements[i].substr(0, insert.size()), insert) << i;
  EXPECT_NE(statements[3].find("Where 1 = 1 And base.iYear = 2024 And inv.cInvcode In ('01','02') "), std::string::npos)
      << statements[3];
  EXPECT_NE(statements[3].find("N'text 00182' As cState,1 As iState,"), std::string::npos);
  EXPECT_TRUE(statements[8].starts_with("Connection.Execute(\"update old set cfxcode=oldquan.cfxcode"));
  EXPECT_TRUE(statements[9].starts_with("Connection.Execute(\"Insert Into ResultTable"));
  EXPECT_EQ(statements[10],
            "Connection.Execute(\"delete ResultTable where isnull(cfxcode,N'')=N'' and isnull(cfxname,N'')=N''\", ref "
            "Empty, -1)");
  EXPECT_EQ(statements[11],
            "Connection.Execute(\"If OBJECT_ID(N'[77u1IA_SFC_Item_DetailTmp]') is not null Drop Table "
            "[77u1IA_SFC_Item_DetailTmp]\", ref Empty, -1)");
  EXPECT_EQ(Calls(calls.end() - 3, calls.end()), (Calls{statements[11], "Connection.State", "Connection.Close"}));
}

TEST_F(ReportRun, TheOutboundSummarySendsItsStatementsInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = projectClasses;
  const LateBound report = this->report(classes::outsumItem);
  report.call(L"GETSQL", {platform.argument(costItemsOf2024)});
  EXPECT_EQ(report.text(L"TempTablename"), "");

  const Calls statements = callsOn(recorder, {"Connection.Execute", "Recordset.Open"});
  const Calls beginnings = {
      "Connection.Execute(\"If Exists(Select Name From Sysobjects Where Name = '77u1IA_OutSum_Item_DetailTmp') Drop "
      "Table [77u1IA_OutSum_Item_DetailTmp]\", ref Empty, -1)",
      "Connection.Execute(\"select Top 0 base.autoid,",
      "Connection.Execute(\"Select Top 0 * Into ResultTable From [77u1IA_OutSum_Item_DetailTmp]\", ref Empty, -1)",
      "Connection.Execute(\"Insert Into [77u1IA_OutSum_Item_DetailTmp]",
      "Connection.Execute(\"Insert Into [77u1IA_OutSum_Item_DetailTmp]",
      "Recordset.Open(\"Select Distinct base.cItem_Class, fItem.cClasstable, fItem.ctable From "
      "[77u1IA_OutSum_Item_DetailTmp] base",
      "Connection.Execute(\"Update base\r\nSet cItemCCode = tarcls.cItemCCode, cItemCName = tarcls.cItemCName",
      "Connection.Execute(\"Update base\r\nSet cItemCCode = invcls.cInvCCode, cItemCName = invcls.cInvCName",
      "Connection.Execute(\"Insert Into ResultTable",
      "Connection.Execute(\"Update ResultTable set cBusType=AA.EnumName from ResultTable Wt inner join aa_enum AA on ",
      "Connection.Execute(\"Update ResultTable set cvoutype=AA_Enum.EnumName from  ResultTable temp inner join VouchType",
      "Connection.Execute(\"If OBJECT_ID(N'[77u1IA_OutSum_Item_DetailTmp]') is not null Drop Table "
      "[77u1IA_OutSum_Item_DetailTmp]\", ref Empty, -1)"};
  ASSERT_EQ(statements.size(), beginnings.size());
  for (std::size_t i = 0; i < beginnings.size(); ++i)
    EXPECT_TRUE(statements[i].starts_with(beginnings[i])) << statements[i];
  EXPECT_NE(statements[3].find("Where 1 = 1 And base.iYear = 2024 And inv.cInvcode In ('01','02') "), std::string::npos)
      << statements[3];
  EXPECT_EQ(recorder.calls.back(), "Connection.Close");
}

TEST_F(ReportRun, TheStartMonthOfInventoryAccountingIsLookedUpOnTheSession) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.startMonth = 4;
  platform.rows = [](const std::string& sql) -> std::vector<std::vector<Variant>> {
    if (sql == "Select cValue From AccInformation Where cSysID = 'IA' And cName = 'dIAStartDate'")
      return {{Variant::fromDate(45352.0)}};  // 2024-03-01, as a date value
    return {};
  };
  report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
  const auto& calls = recorder.calls;
  const auto open = std::find(calls.begin(), calls.end(),
                              "Recordset.Open(\"Select cValue From AccInformation Where cSysID = 'IA' And cName = "
                              "'dIAStartDate'\", <Connection>, 3, 3, -1)");
  ASSERT_NE(open, calls.end());
  EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), [](const std::string& call) {
    return call.find(" And base.iMonth >= 4 ") != std::string::npos;
  })) << "March is before April, so the month condition is active";
}

TEST_F(ReportRun, TempTablenameIsEmptyBeforeAndAfter) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound report = this->report();
  EXPECT_EQ(report.text(L"TempTablename"), "");
  report.call(L"GETSQL", {platform.argument(costItemsOf2024)});
  EXPECT_EQ(report.text(L"TempTablename"), "");
}

TEST_F(ReportRun, ExecuteAsksTheDrillThroughHelperAndTouchesNoTable) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound report = this->report();
  recorder.calls.clear();
  report.call(L"Execute", {platform.argument({})});
  EXPECT_EQ(recorder.calls,
            (Calls{"e.Action", "e.Login", "new OrvPlatform.DrillThrough", "DrillThrough.GetFilter(<Login>, True)"}));
}

TEST_F(ReportRun, ExecuteNeverFails) {
  const ComScope apartment;
  for (std::size_t failAt = 1; failAt <= 4; ++failAt) {
    Recorder recorder;
    FakePlatform platform(recorder);
    const LateBound report = this->report();
    recorder.calls.clear();
    recorder.failAt = failAt;
    EXPECT_NO_THROW(report.call(L"Execute", {platform.argument({})})) << failAt;
    EXPECT_NO_THROW(report.call(L"Execute", {Variant(static_cast<IDispatch*>(nullptr))}));
  }
}

// One run in an apartment of its own, with call `failAt` failing; gives how many calls there were.
std::size_t runOnce(const QuillonLibrary& library, std::size_t failAt, const std::vector<FakeItem>& items,
                    REFCLSID classId = classes::sfcItem) {
  Recorder recorder;
  recorder.failAt = failAt;
  {
    const ComScope apartment;
    FakePlatform platform(recorder);
    platform.startMonth = 4;
    platform.rows = projectClasses;
    HRESULT created = S_OK;
    LateBound report{library.create<IDispatch>(classId, &created), "report"};
    if (!report) {
      EXPECT_EQ(created, Recorder::failure) << failAt;
      EXPECT_LE(failAt, 2U) << "making an instance calls the naming class and nothing else";
    } else {
      try {
        report.call(L"GETSQL", {platform.argument(items)});
        // A run that goes well closes its connection, and so does nobody else.
        const bool closed = !recorder.calls.empty() && recorder.calls.back() == "Connection.Close";
        EXPECT_EQ(closed, failAt == 0 || failAt > recorder.calls.size()) << failAt;
        if (!closed) {
          EXPECT_EQ(recorder.calls.size(), failAt) << "after a failure nothing more is called";
        }
      } catch (const AutomationError& error) {
        EXPECT_EQ(error.code(), Recorder::failure) << failAt;
        // A failing class object cannot say more than its code.
        if (!recorder.calls.back().starts_with("new ")) {
          EXPECT_EQ(error.source(), "Fake");
          EXPECT_EQ(error.description(), "refused: " + recorder.calls.back());
        }
      }
    }
  }
  EXPECT_EQ(LiveCount::value(), 0) << "objects of the platform are left over after a failure at call " << failAt;
  EXPECT_EQ(library.canUnload(), S_OK) << failAt;
  EXPECT_EQ(recorder.releasedElsewhere, 0);
  return recorder.calls.size();
}

TEST_F(ReportRun, NothingIsLeftOverWhateverFails) {
  const std::vector<std::vector<FakeItem>> filters = {
      costItemsOf2024,
      {{"cModal", "2", ""}, {"iYear", "2024", ""}, {"dKeepDate", "2024-03-01", "2024-06-30"}},
      {{"cModal", "0", ""}, {"iYear", "2024", ""}, {"bIncludeExpire", "0", ""}, {"cFSType", "1", ""}}};
  for (const CLSID& classId : {classes::sfcItem, classes::outsumItem}) {
    for (const auto& items : filters) {
      const std::size_t total = runOnce(library, 0, items, classId);
      EXPECT_GT(total, 50U);
      for (std::size_t failAt = 1; failAt <= total; ++failAt)
        runOnce(library, failAt, items, classId);
    }
  }
}

TEST_F(ReportRun, AFailedBuildKeepsItsConnectionUntilTheThreadLeavesCom) {
  const std::size_t total = runOnce(library, 0, costItemsOf2024);
  Recorder recorder;
  {
    const ComScope apartment;
    FakePlatform platform(recorder);
    platform.startMonth = 4;      // as in the run that was counted
    recorder.failAt = total - 5;  // one of the last statements
    report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
    EXPECT_EQ(std::count(recorder.calls.begin(), recorder.calls.end(), "Connection.Close"), 0);
    EXPECT_EQ(library.canUnload(), S_FALSE) << "the connection is left open for whoever looks into the failure";
  }
  EXPECT_EQ(LiveCount::value(), 0);
  EXPECT_EQ(library.canUnload(), S_OK);
}

TEST(ReportRunOfItsOwnLibrary, WhatCanBeMadeAgainDoesNotKeepTheDllLoadedButStaysUntilItGoes) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const long classObjects = LiveCount::value();
  std::optional<QuillonLibrary> library(std::in_place);
  const auto run = [&] {
    LateBound(library->create<IDispatch>(classes::sfcItem), "report")
        .call(L"GETSQL", {platform.argument(costItemsOf2024)});
  };
  run();
  const long kept = LiveCount::value();
  EXPECT_GT(kept, classObjects) << "the public component is kept between runs";
  EXPECT_EQ(library->canUnload(), S_OK);
  EXPECT_EQ(LiveCount::value(), kept) << "the answer takes nothing away";
  run();
  EXPECT_EQ(LiveCount::value(), kept);
  for (const char* component : {"new IA_Pub.ClsIAPub", "new OrvPlatform.ResourceService", "new OrvPlatform.UniqueName"})
    EXPECT_EQ(std::count(recorder.calls.begin(), recorder.calls.end(), component), 1) << component;

  library.reset();
  EXPECT_EQ(GetModuleHandleW(L"Quillon.dll"), nullptr);
  EXPECT_EQ(LiveCount::value(), classObjects) << "released when the library went";
  EXPECT_EQ(recorder.releasedElsewhere, 0);
  // Leaving COM afterwards calls nobody who is gone.
}

// The resource service was given the login by a dialog; a report that follows finds the service with it.
TEST_F(ReportRun, TheServiceAndItsLoginSurviveTheQuestionWhetherTheDllMayGo) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  {
    const LateBound dialog(library.create<IDispatch>(classes::sfcFilterControl), "dialog");
    dialog.call(L"CallBack_FilterInit", {platform.dialog("", {})});
  }
  EXPECT_EQ(library.canUnload(), S_FALSE) << "the dialog's connection stays open";
  report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
  for (int question = 0; question < 3; ++question) {
    EXPECT_EQ(library.canUnload(), S_OK);
    report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
  }
  const auto count = [&](const std::string& call) {
    return std::count(recorder.calls.begin(), recorder.calls.end(), call);
  };
  EXPECT_EQ(count("new OrvPlatform.ResourceService"), 1);
  EXPECT_EQ(count("ResourceService.FormatText(<Login>, missing)"), 1) << "nobody gives the login again";
  EXPECT_EQ(count("ResourceService.Text(Mirel.IA.CHHSSQL.00182)"), 4);
  EXPECT_EQ(count("new IA_Pub.ClsIAPub"), 1);
  EXPECT_EQ(count("new OrvPlatform.UniqueName"), 1);
}

TEST_F(ReportRun, ThePublicComponentIsMadeOnceForAllRunsOfAThread) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  for (int run = 0; run < 3; ++run)
    report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
  const auto made = [&](const std::string& name) {
    return std::count(recorder.calls.begin(), recorder.calls.end(), "new " + name);
  };
  EXPECT_EQ(made("IA_Pub.ClsIAPub"), 1);
  EXPECT_EQ(made("OrvPlatform.ResourceService"), 1);
  EXPECT_EQ(made("OrvPlatform.UniqueName"), 1);
  EXPECT_EQ(made("OrvPlatform.Naming"), 3) << "each instance sets the prefix anew";
  EXPECT_EQ(made("ADODB.Connection"), 3) << "each run opens its own";
}

TEST_F(ReportRun, TwoApartmentsNeverSeeEachOthersObjects) {
  std::atomic<int> ready = 0;
  const auto meet = [&ready](int all) {
    ++ready;
    while (ready < all)
      std::this_thread::yield();
  };
  Recorder recorders[2];
  const auto run = [&](int index) {
    Recorder& recorder = recorders[index];
    const ComScope apartment;
    FakePlatform platform(recorder);
    const LateBound holder(library.create<IDispatch>(classes::business), "ClsBusiness");
    holder.call(L"Init", {makeObject<FakeObject>(recorder, "Business")});
    meet(2);
    for (int i = 0; i < 10; ++i)
      report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
    // Ends with a build that fails, so that a connection stays with the thread.
    constexpr std::size_t amidTheStatements = 50;
    recorder.failAt = recorder.calls.size() + amidTheStatements;
    report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
    meet(4);
    EXPECT_EQ(library.canUnload(), S_FALSE);
  };
  std::thread first(run, 0);
  std::thread second(run, 1);
  first.join();
  second.join();
  for (const Recorder& recorder : recorders) {
    EXPECT_EQ(recorder.releasedElsewhere, 0) << "an object was released on another thread than its own";
    EXPECT_EQ(std::count(recorder.calls.begin(), recorder.calls.end(), "new ADODB.Connection"), 11);
    EXPECT_EQ(std::count(recorder.calls.begin(), recorder.calls.end(), "new IA_Pub.ClsIAPub"), 1);
  }
  EXPECT_EQ(recorders[0].calls, recorders[1].calls) << "the two did the same, each on its own";
  EXPECT_EQ(LiveCount::value(), 0);
  EXPECT_EQ(library.canUnload(), S_OK);
}

TEST_F(ReportRun, AThreadThatEndsWithoutLeavingComTakesItsObjectsWithIt) {
  // Nobody may release them any more; they must outlive the test.
  static Recorder recorder;
  const long before = LiveCount::value();
  std::thread careless([&] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    const LateBound holder(library.create<IDispatch>(classes::business), "ClsBusiness");
    holder.call(L"Init", {makeObject<FakeObject>(recorder, "Business")});
  });
  careless.join();
  EXPECT_EQ(LiveCount::value(), before + 1) << "the object is neither released elsewhere nor under the loader's lock";
  EXPECT_EQ(library.canUnload(), S_OK) << "the thread is gone and needs the library no more";
}

TEST_F(ReportRun, WithoutNamingAndTextsOfThePlatformTheReportIsMadeAllTheSame) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.withoutNaming();
  platform.withoutResourceService();
  report().call(L"GETSQL", {platform.argument(costItemsOf2024)});
  EXPECT_EQ(recorder.calls.back(), "Connection.Close");
  EXPECT_TRUE(std::any_of(recorder.calls.begin(), recorder.calls.end(), [](const std::string& call) {
    return call.find("N'Mirel.IA.CHHSSQL.00182' As cState") != std::string::npos;
  })) << "a key stands for its text";
}

TEST_F(ReportRun, AnErrorOutsideTheBuildLeavesGetsqlAsItCame) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound report = this->report();
  recorder.calls.clear();
  recorder.failAt = 9;  // Connection.Open
  try {
    report.call(L"GETSQL", {platform.argument(costItemsOf2024)});
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), Recorder::failure);
    EXPECT_EQ(error.source(), "Fake");
    EXPECT_EQ(error.description(), "refused: Connection.Open(\"\", \"\", \"\", -1)");
  }
}

}  // namespace
}  // namespace quillon::component::test
