// clsFXWt in Quillon.dll against a fake platform: what it stores, the calls of a run and of a drill-through and their
// order, and a failure at every one of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "automation/late_bound.h"
#include "automation/text.h"
#include "component/quillon_interfaces.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/library_test.h"
#include "tests/component/recorded_calls.h"

namespace quillon::component::test {

using automation::Bstr;
using automation::ComPtr;
using automation::LateBound;
using automation::LiveCount;
using automation::makeObject;
using automation::Variant;
using automation::test::ComScope;
namespace {

// Two voucher types of one flavour each, an accounting voucher, a batch, and a key that is a column of the ledger.
const std::vector<FakeItem> filterOfTypes = {
    {"cVouType", "011\t30", ""}, {"PzNoId", "", ""}, {"cBatchia", "B7", ""}, {"cFree1", "blue", ""}};

// The calls of an item up to the token that it is left with; an item that keeps its token has no second one.
Calls item(int position, const std::string& leftWith) {
  Calls calls = {"Filter.FilterList",      "FilterList.Item(" + std::to_string(position) + ")",
                 "Item.LngGrouptoken = 1", "Item.Name",
                 "Item.varValue",          "Item.varValue2",
                 "Item.RangeInput",        "Item.IsMultSel"};
  if (!leftWith.empty()) calls.push_back("Item.LngGrouptoken = " + leftWith);
  return calls;
}

Calls joined(const std::vector<Calls>& parts) {
  Calls all;
  for (const Calls& part : parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

const Calls sessionOpened = {"e.rawFilter",
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
                             "e.LangID",
                             "new IA_Pub.ClsIAPub"};

class VoucherReportRun : public LibraryTest {
 protected:
  LateBound report() const { return make(classes::fxWt, "clsFXWt"); }

  static Calls statements(const Recorder& recorder) { return callsOn(recorder, {"Connection.Execute"}); }
};

// --- What the instance stores ---------------------------------------------------------------------------------------

TEST_F(VoucherReportRun, KeepsItsProperties) {
  const ComScope apartment;
  const auto report = library.create<_clsFXWt>(classes::fxWt);
  ASSERT_TRUE(report);
  Bstr language(std::string_view("en-US"));
  Bstr table(std::string_view("表"));
  Bstr base(std::string_view("base"));
  EXPECT_EQ(report->put_msLanguage(language.inOut()), S_OK);
  EXPECT_EQ(report->put_tarn_tmpTable(table.inOut()), S_OK);
  EXPECT_EQ(report->put_m_sBaseTable(base.inOut()), S_OK);
  Bstr read;
  EXPECT_EQ(report->get_msLanguage(read.out()), S_OK);
  EXPECT_EQ(read.utf8(), "en-US");
  EXPECT_EQ(report->get_tarn_tmpTable(read.out()), S_OK);
  EXPECT_EQ(read.utf8(), "表");
  EXPECT_EQ(report->get_m_sBaseTable(read.out()), S_OK);
  EXPECT_EQ(read.utf8(), "base");
  for (const auto put : {&_clsFXWt::put_msLanguage, &_clsFXWt::put_tarn_tmpTable, &_clsFXWt::put_m_sBaseTable})
    EXPECT_EQ((report.get()->*put)(nullptr), E_POINTER);
  for (const auto get : {&_clsFXWt::get_msLanguage, &_clsFXWt::get_tarn_tmpTable, &_clsFXWt::get_m_sBaseTable})
    EXPECT_EQ((report.get()->*get)(nullptr), E_POINTER);
}

TEST_F(VoucherReportRun, GivesBackTheVeryFilterObjectAndReleasesIt) {
  const ComScope apartment;
  Recorder recorder;
  const auto report = library.create<_clsFXWt>(classes::fxWt);
  ASSERT_TRUE(report);
  ComPtr<IDispatch> filter;
  EXPECT_EQ(report->get_objFilter(filter.out()), S_OK);
  EXPECT_FALSE(filter) << "none yet";
  for (const auto put : {&_clsFXWt::putref_objFilter, &_clsFXWt::put_objFilter}) {
    const long before = LiveCount::value();
    {
      const ComPtr<FakeObject> object = makeObject<FakeObject>(recorder, "Filter");
      IDispatch* reference = object.get();
      EXPECT_EQ((report.get()->*put)(&reference), S_OK);
      EXPECT_EQ(report->get_objFilter(filter.out()), S_OK);
      EXPECT_EQ(filter.get(), object.get());
      filter.reset();
    }
    EXPECT_EQ(LiveCount::value(), before + 1) << "the report holds it";
    IDispatch* nothing = nullptr;
    EXPECT_EQ((report.get()->*put)(&nothing), S_OK);
    EXPECT_EQ(LiveCount::value(), before);
    EXPECT_EQ((report.get()->*put)(nullptr), E_POINTER);
  }
  EXPECT_EQ(report->get_objFilter(filter.out()), S_OK);
  EXPECT_FALSE(filter) << "taken back";
  EXPECT_EQ(report->get_objFilter(nullptr), E_POINTER);
  EXPECT_TRUE(recorder.calls.empty()) << "a filter is not called before the build";
}

TEST_F(VoucherReportRun, ARunStoresFilterAndLanguageOfItsArgument) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound report = this->report();
  const ComPtr<FakeObject> e = platform.argument({});
  report.call(L"GETSQL", {e});
  EXPECT_EQ(report.text(L"msLanguage"), "2052");
  EXPECT_EQ(report.object(L"objFilter", "objFilter").get(), e->value(bindings::argument::rawFilter).pdispVal);
  EXPECT_EQ(report.text(L"tarn_tmpTable"), "");
  EXPECT_EQ(report.text(L"m_sBaseTable"), "");
}

// --- GETSQL and MoveDataDetail --------------------------------------------------------------------------------------

TEST_F(VoucherReportRun, CallsThePlatformInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  report().call(L"GETSQL", {platform.argument(filterOfTypes)});
  const Calls head =
      joined({sessionOpened,
              {"Filter.FilterList", "FilterList.Count"},
              item(1, "0"),
              item(2, "3"),
              item(3, "1"),
              item(4, "0"),
              {"Filter.GetWhereWithToken(1)", "Filter.GetWhereWithToken(2)", "Filter.GetWhereWithToken(3)",
               "IAPub.GetAccInformation(\"IA\", \"dIAFirstDate\", ref "
               "<Connection>)",
               "IAPub.GetAccInformation(\"AA\", \"iStrsQuanDecDgt\", ref <Connection>)",
               "IAPub.GetAccInformation(\"AA\", \"iStrsPriDecDgt\", ref <Connection>)", "new OrvPlatform.Naming",
               "Naming.Number", "new OrvPlatform.UniqueName", "UniqueName.UniqueName"}});
  ASSERT_LE(head.size(), recorder.calls.size());
  EXPECT_EQ(Calls(recorder.calls.begin(), recorder.calls.begin() + static_cast<std::ptrdiff_t>(head.size())), head);
  const auto edition =
      std::ranges::find(recorder.calls, "IAPub.GetAccInformation(\"IA\", \"bZYXS\", ref <Connection>)");
  ASSERT_NE(edition, recorder.calls.end());
  EXPECT_TRUE((edition - 1)->starts_with("Connection.Execute(\" select top 0 ")) << *(edition - 1);
  EXPECT_TRUE((edition + 1)->starts_with("Connection.Execute(\"insert into ")) << *(edition + 1);
  EXPECT_EQ(Calls(recorder.calls.end() - 2, recorder.calls.end()), (Calls{"Connection.State", "Connection.Close"}));
}

TEST_F(VoucherReportRun, SendsItsStatementsInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  report().call(L"GETSQL", {platform.argument(filterOfTypes)});
  const Calls sent = statements(recorder);
  const Calls beginnings = {
      "Connection.Execute(\"If Exists(Select Name From Sysobjects Where Name = '77u1FXWtTmp') Drop Table "
      "[77u1FXWtTmp]\", ref Empty, -1)",
      "Connection.Execute(\" select top 0 base.dVouDate,base.cVouCode,base.dKeepDate,",
      "Connection.Execute(\"insert into [77u1FXWtTmp] (dVouDate,cVouCode,dKeepDate,",
      "Connection.Execute(\"Update [77u1FXWtTmp] set cBusType=AA.EnumName from [77u1FXWtTmp] Wt inner join aa_enum AA on ",
      "Connection.Execute(\" select dVouDate,cVouCode,dKeepDate,",
      "Connection.Execute(\"If OBJECT_ID(N'[77u1FXWtTmp]') is not null Drop Table [77u1FXWtTmp]\", ref Empty, -1)"};
  ASSERT_EQ(sent.size(), beginnings.size());
  for (std::size_t i = 0; i < beginnings.size(); ++i)
    EXPECT_TRUE(sent[i].starts_with(beginnings[i])) << i << ": " << sent[i];
  EXPECT_NE(sent[2].find(" where  base.cVouType not in (N'33',N'34') And base.cFree1= N'blue' And "
                         "base.dKeepDate>='2023-01-01' and  ( (cVouType='01' and bFlag=1)  OR (cVouType='30' and "
                         "bFlag<>1) ) And Not (base.cVouType = N'20' "),
            std::string::npos)
      << sent[2];
  EXPECT_NE(sent[2].find("Ca_AmoTypeName.localid=N'2052'"), std::string::npos) << sent[2];
  EXPECT_NE(sent[4].find(" into ResultTable from [77u1FXWtTmp] group by "), std::string::npos) << sent[4];
}

TEST_F(VoucherReportRun, ThePlatformsConditionsStandBehindTheReports) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.conditions = {{1, "token = 1"}, {3, "token = 3"}};
  report().call(L"GETSQL", {platform.argument({})});
  EXPECT_NE(
      statements(recorder).at(2).find(" where  base.cVouType not in (N'33',N'34') AND token = 1 AND token = 3 And "
                                      "base.dKeepDate>='2023-01-01' And Not "),
      std::string::npos)
      << statements(recorder)[2];
}

TEST_F(VoucherReportRun, MoveDataDetailNeedsARunBefore) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound report = this->report();
  try {
    report.call(L"MoveDataDetail");
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), E_UNEXPECTED);
    EXPECT_EQ(error.source(), "Quillon.clsFXWt.MoveDataDetail");
    EXPECT_EQ(error.description(), "The report has no filter or no connection to the account yet; call GETSQL first.");
  }
  EXPECT_TRUE(recorder.calls.empty());
}

TEST_F(VoucherReportRun, ABuildThatFailedCanBeMadeAgainOnTheConnectionThatItLeft) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound report = this->report();
  const auto e = platform.argument({});
  recorder.calls.clear();
  constexpr std::size_t amidTheStatements = 30;
  recorder.failAt = amidTheStatements;
  EXPECT_THROW(report.call(L"GETSQL", {e}), AutomationError);
  recorder.failAt = 0;
  recorder.calls.clear();
  EXPECT_EQ(report.text(L"MoveDataDetail"), "");
  EXPECT_EQ(statements(recorder).size(), 6U);
  EXPECT_EQ(std::ranges::count(recorder.calls, "new ADODB.Connection"), 0);
  EXPECT_EQ(std::ranges::count(recorder.calls, "Connection.Close"), 0) << "only GETSQL closes";
}

TEST_F(VoucherReportRun, WithoutNamingOfThePlatformTheReportIsMadeAllTheSame) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.withoutNaming();
  platform.withoutResourceService();
  report().call(L"GETSQL", {platform.argument(filterOfTypes)});
  EXPECT_EQ(statements(recorder).size(), 6U);
  EXPECT_EQ(recorder.calls.back(), "Connection.Close");
}

TEST_F(VoucherReportRun, AMissingVariableIsAnErrorAndNoCrash) {
  const ComScope apartment;
  const auto report = library.create<_clsFXWt>(classes::fxWt);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->MoveDataDetail(nullptr), E_POINTER);
  IDispatch* nothing = nullptr;
  for (IDispatch** e : {static_cast<IDispatch**>(nullptr), &nothing}) {
    EXPECT_EQ(report->GETSQL(e), objectNotSet);
    EXPECT_EQ(report->Execute(e), objectNotSet);
  }
}

// --- Execute --------------------------------------------------------------------------------------------------------

TEST_F(VoucherReportRun, ARowOpensItsSourceDocumentByTheTypesCode) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.row = voucherRow("32", "0007");
  const auto e = platform.argument({});
  LateBound(e, "e").put(bindings::argument::action, "Vouch");
  report().call(L"Execute", {e});
  EXPECT_EQ(Calls(recorder.calls.end() - 2, recorder.calls.end()),
            (Calls{"UniVch.Init(<Login>, ref <Connection>, \"工业\")",
                   "UniVch.ShowVoucher(\"32\", \"0007\", 815, ref <Connection>)"}));
}

TEST_F(VoucherReportRun, ARowOpensItsAccountingVoucher) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = [](const std::string& sql) -> std::vector<std::vector<Variant>> {
    if (sql.starts_with("Select iYear From IA_ENSubSidiary ")) return {{2024}};
    return {};
  };
  platform.row = voucherRow("32", "0007");
  report().call(L"Execute", {platform.argument({})});
  EXPECT_EQ(recorder.calls.back(), "ZzPz.StartUpPz(\"*IACXPZ\", \"存货核算\", \"17\")");
}

// --- Whatever fails -------------------------------------------------------------------------------------------------

// What the report is asked for, in an apartment of its own.
enum class Member { getSql, sourceVoucher, ledgerVoucher };

// One call of the member, with call `failAt` to the platform failing; gives how many calls there were.
std::size_t runOnce(const QuillonLibrary& library, std::size_t failAt, Member member) {
  const long before = LiveCount::value();
  Recorder recorder;
  {
    const ComScope apartment;
    FakePlatform platform(recorder);
    platform.rows = [](const std::string& sql) -> std::vector<std::vector<Variant>> {
      if (sql.starts_with("Select iYear From IA_SubSidiary ")) return {{2024}};
      return {};
    };
    platform.row = voucherRow("32", "7");
    const auto e = platform.argument(filterOfTypes);
    if (member == Member::sourceVoucher) LateBound(e, "e").put(bindings::argument::action, "Vouch");
    const LateBound report(library.create<IDispatch>(classes::fxWt), "clsFXWt");
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
  }
  EXPECT_EQ(LiveCount::value(), before) << "objects of the platform are left over after a failure at call " << failAt;
  EXPECT_EQ(library.canUnload(), S_OK) << failAt;
  EXPECT_EQ(recorder.releasedElsewhere, 0);
  return recorder.calls.size();
}

TEST_F(VoucherReportRun, NothingIsLeftOverWhateverFails) {
  for (const Member member : {Member::getSql, Member::sourceVoucher, Member::ledgerVoucher}) {
    const std::size_t total = runOnce(library, 0, member);
    EXPECT_GT(total, 20U);
    for (std::size_t failAt = 1; failAt <= total; ++failAt)
      runOnce(library, failAt, member);
  }
}

TEST_F(VoucherReportRun, AFailedBuildKeepsItsConnectionAndASuccessfulOneDoesNot) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  report().call(L"GETSQL", {platform.argument({})});
  EXPECT_EQ(library.canUnload(), S_OK);
  recorder.calls.clear();
  constexpr std::size_t amidTheStatements = 26;
  recorder.failAt = amidTheStatements;
  EXPECT_THROW(report().call(L"GETSQL", {platform.argument({})}), AutomationError);
  EXPECT_TRUE(recorder.calls.back().starts_with("Connection.Execute")) << recorder.calls.back();
  recorder.failAt = 0;
  EXPECT_EQ(library.canUnload(), S_FALSE) << "the connection is left open for whoever looks into the failure";
  report().call(L"GETSQL", {platform.argument({})});
  EXPECT_EQ(library.canUnload(), S_OK) << "the next run has replaced it";
}

}  // namespace
}  // namespace quillon::component::test
