// clsSFCFilterControl in Quillon.dll against a fake platform: the calls that reach the platform and their order, what
// the callbacks give back, and a failure at every call.
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
using automation::toText;
using automation::Variant;
using automation::test::ComScope;
namespace {

// How this dialog starts.
const Calls dialogOpened = joined(connectionAndRights(), {"Login.LanguageRegion", "Filter.FilterId"});

// The rows of the lists.
std::vector<std::vector<Variant>> rowsOf(const std::string& sql) {
  if (sql.find("MAX(iGrade)") != std::string::npos) return {{2}};
  if (sql.find("IA_Subsidiary.cVouType  ") != std::string::npos)
    return {{"Other issue", "08"}, {"Sale", "32"}, {"Sale", "3201"}};
  if (sql.find("IA_Subsidiary.cBusType  ") != std::string::npos) return {{"Picking", "11"}};
  if (sql.find("ua_period") != std::string::npos) return {{2023}, {2024}};
  return {};
}

class DialogRun : public LibraryTest {
 protected:
  LateBound control() const { return make(classes::sfcFilterControl, "clsSFCFilterControl"); }
};

TEST_F(DialogRun, ADialogOfAnotherReportIsConnectedAndFreedOfDataRights) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const ComPtr<FakeObject> dialog = platform.dialog("another", {{"iYear", "", ""}});
  EXPECT_EQ(control().get(L"CallBack_FilterInit", {dialog}).vt, VT_EMPTY);
  EXPECT_EQ(recorder.calls, dialogOpened);
}

TEST_F(DialogRun, CallsThePlatformInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = rowsOf;
  control().call(
      L"CallBack_FilterInit",
      {platform.dialog(dialog_of::outboundSummary, {{"iYear", "", ""}, {"cModal", "", ""}, {"iGrade", "", ""}})});
  Calls expected = dialogOpened;
  const Calls behind = {"Filter.FilterList",
                        "FilterList.Count",
                        "Filter.FilterList",
                        "FilterList.Item(1)",
                        "Item.Name",
                        "Filter.DialogConnection",
                        "Login.cAcc_Id",
                        "IAPub.GetIAUsedYears(\"001\", ref <DialogConnection>)",
                        "Years.Count",
                        "Years.Item(\"1\")",
                        "Years.Item(\"2\")",
                        "IAPub.iFxStartMonth(\"2023\", ref <DialogConnection>)",
                        "IAPub.iFxStartMonth(\"2024\", ref <DialogConnection>)",
                        "Item.ListText = \"2023,2024\"",
                        "Item.varValue",
                        "Login.cIYear",
                        "Item.varValue = \"2024\"",
                        "Filter.FilterList",
                        "FilterList.Item(2)",
                        "Item.Name",
                        "Item.varValue",
                        "Item.varValue = \"0\"",
                        "Filter.FilterList",
                        "FilterList.Item(3)",
                        "Item.Name",
                        "new ADODB.Recordset",
                        "Recordset.CursorLocation = 3",
                        "Recordset.Open(\"select IsNull(MAX(iGrade),1) from Ca_FxClassDef\", <Connection>, 3, 3, -1)",
                        "Recordset.EOF",
                        "Recordset.Fields",
                        "Fields.Item(0)",
                        "Field.Value",
                        "Recordset.Close",
                        "Filter.SetItemEnumeration(\"iGrade\", \"1{#}2{##}1{#}2\")",
                        "Item.varValue",
                        "Item.varValue = \"1\"",
                        "Item.varValue2 = \"1\"",
                        "Filter.FilterList",
                        "FilterList.Item(\"iYear\")",
                        "Item.varValue",
                        "IAPub.CurPeriodYear(ref <Connection>)",
                        "IAPub.GetAccInformation(\"IA\", \"cValueStyle\", ref <Connection>)",
                        "Filter.SetItemUnavailable(\"cWhCode\", False)",
                        "Filter.SetItemUnavailable(\"cDepCode\", False)",
                        "Filter.SetItemUnavailable(\"cDepCode\", True)"};
  expected.insert(expected.end(), behind.begin(), behind.end());
  EXPECT_EQ(recorder.calls, expected);
}

TEST_F(DialogRun, TheOutboundSummarysTypesAreEnumerations) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = rowsOf;
  control().call(L"CallBack_FilterInit",
                 {platform.dialog(dialog_of::outboundSummary,
                                  {{"cVouType", "", ""}, {"cBusType", "", ""}, {"iYear", "2024", ""}})});
  EXPECT_EQ(changes(recorder),
            (Calls{"Filter.SetItemEnumeration(\"cVouType\", \"08{#}32{##}Other issue{#}Sale\")",
                   "Filter.SetItemEnumeration(\"cBusType\", \"11{##}Picking\")", "Item.ListText = \"2023,2024\"",
                   "Filter.SetItemUnavailable(\"cWhCode\", False)", "Filter.SetItemUnavailable(\"cDepCode\", False)",
                   "Filter.SetItemUnavailable(\"cDepCode\", True)"}));
}

TEST_F(DialogRun, TheReceiptIssueBalanceLocksTransfers) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = rowsOf;
  control().call(L"CallBack_FilterInit", {platform.dialog(dialog_of::receiptIssueBalance,
                                                          {{"bIncludeTransVouch", "", ""}, {"iYear", "2024", ""}})});
  EXPECT_EQ(
      changes(recorder),
      (Calls{"Item.varValue = \"1\"", "Item.ListText = \"2023,2024\"", "Filter.SetItemUnavailable(\"cWhCode\", False)",
             "Filter.SetItemUnavailable(\"cDepCode\", False)", "Filter.SetItemUnavailable(\"cDepCode\", True)",
             "Filter.SetItemUnavailable(\"bIncludeTransVouch\", True)"}));
}

TEST_F(DialogRun, AChangedClassNarrowsTheLookupOfInventories) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  const ComPtr<FakeObject> dialog = platform.dialog("", {{"cInvCCode", "0'1", ""}});
  recorder.calls.clear();
  control.call(L"CallBack_ValueChange", {"cInvCCode", dialog});
  EXPECT_EQ(recorder.calls,
            (Calls{"Filter.FilterList", "FilterList.Item(\"cInvCCode\")", "Item.varValue",
                   "Filter.SetItemLookupCondition(\"cInvCode\", \"\", \"#FN[cInvCCode] Like '0'1%'\")"}));
}

TEST_F(DialogRun, TheFilterIsAcceptedAndCancelLeftAlone) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  const ComPtr<FakeObject> dialog = platform.dialog(dialog_of::outboundSummary, {});
  for (const bool before : {false, true}) {
    Variant cancel(before);
    const Variant result = control.get(L"CallBack_FilterClick", {dialog, Variant::reference(cancel)});
    EXPECT_EQ(result.vt, VT_BOOL);
    EXPECT_EQ(result.boolVal, VARIANT_TRUE);
    EXPECT_EQ(cancel.vt, VT_BOOL);
    EXPECT_EQ(cancel.boolVal != VARIANT_FALSE, before);
  }
  EXPECT_TRUE(recorder.calls.empty()) << "nothing is asked of the dialog";
}

TEST_F(DialogRun, TheViewComesBackInTheCallersVariable) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  for (const auto& [mode, view] : {std::pair{"2", "ordin"}, {"0", "cross"}, {"", "cross"}}) {
    const ComPtr<FakeObject> dialog = platform.dialog(dialog_of::outboundSummary, {{"cModal", mode, ""}});
    Variant atStart;
    control.call(L"CallBack_ReportViewInit", {dialog, Variant::reference(atStart)});
    EXPECT_EQ(toText(atStart), view);
    Variant later("what was there before");
    control.call(L"CallBack_ReportViewChange", {"cModal", dialog, Variant::reference(later)});
    EXPECT_EQ(toText(later), view);
  }
}

TEST_F(DialogRun, EarlyBoundCallersGetTheSame) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto control = library.create<_clsSFCFilterControl>(classes::sfcFilterControl);
  ASSERT_TRUE(control);
  const ComPtr<FakeObject> object = platform.dialog("", {{"cModal", "2", ""}});
  IDispatch* dialog = object.get();
  Bstr key(std::string_view("cModal"));

  VARIANT_BOOL cancel = VARIANT_FALSE;
  Variant result;
  EXPECT_EQ(control->CallBack_FilterClick(&dialog, &cancel, result.out()), S_OK);
  EXPECT_EQ(cancel, VARIANT_FALSE);
  EXPECT_EQ(result.vt, VT_BOOL);
  EXPECT_EQ(result.boolVal, VARIANT_TRUE);

  // A variant's old value is freed; one that refers to a variable passes the view on to that variable.
  Variant view("what was there before");
  EXPECT_EQ(control->CallBack_ReportViewInit(&dialog, &view), S_OK);
  EXPECT_EQ(toText(view), "ordin");
  Variant variable;
  Variant reference = Variant::reference(variable);
  EXPECT_EQ(control->CallBack_ReportViewChange(key.inOut(), &dialog, &reference), S_OK);
  EXPECT_EQ(toText(variable), "ordin");

  EXPECT_EQ(control->CallBack_FilterClick(&dialog, &cancel, nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_ReportViewInit(&dialog, nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_FilterInit(&dialog, nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_ValueChange(nullptr, &dialog), E_POINTER);
}

TEST_F(DialogRun, AMissingDialogIsBasicsError91) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  const Variant nothing(static_cast<IDispatch*>(nullptr));
  Variant view;
  const auto codeOf = [](const auto& action) -> HRESULT {
    try {
      action();
      return S_OK;
    } catch (const AutomationError& error) {
      return error.code();
    }
  };
  EXPECT_EQ(codeOf([&] { control.call(L"CallBack_FilterInit", {nothing}); }), objectNotSet);
  EXPECT_EQ(codeOf([&] { control.call(L"CallBack_ValueChange", {"cModal", nothing}); }), objectNotSet);
  EXPECT_EQ(codeOf([&] {
              control.call(L"CallBack_ReportViewInit", {nothing, Variant::reference(view)});
            }),
            objectNotSet);
  EXPECT_EQ(view.vt, VT_EMPTY);
}

TEST_F(DialogRun, ListsAreReadOnTheDialogsConnection) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.rows = rowsOf;
  const LateBound control = this->control();
  try {
    control.call(L"InitYear");
    FAIL() << "there is no connection yet";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.source(), "Quillon.clsSFCFilterControl.InitYear");
    EXPECT_EQ(error.description(), "The dialog has no connection to the account yet; call CallBack_FilterInit first.");
  }
  control.call(L"CallBack_FilterInit", {platform.dialog("", {})});
  recorder.calls.clear();
  control.call(L"InitYear");
  control.call(L"InitGrade");
  const auto opened = [](const std::string& call) { return call.starts_with("Recordset.Open("); };
  EXPECT_EQ(std::ranges::count_if(recorder.calls, opened), 2);
  EXPECT_TRUE(std::ranges::all_of(recorder.calls, [&](const std::string& call) {
    return !opened(call) || call.ends_with(", <Connection>, 3, 3, -1)");
  }));
  EXPECT_EQ(library.canUnload(), S_FALSE) << "the dialog is still there";
}

// A whole dialog in an apartment of its own, with call `failAt` failing; gives how many calls there were.
std::size_t runDialog(const QuillonLibrary& library, std::size_t failAt, const char* report) {
  const long before = LiveCount::value();
  Recorder recorder;
  recorder.failAt = failAt;
  {
    const ComScope apartment;
    FakePlatform platform(recorder);
    platform.rows = rowsOf;
    const LateBound control(library.create<IDispatch>(classes::sfcFilterControl), "clsSFCFilterControl");
    const ComPtr<FakeObject> dialog = platform.dialog(report, {{"iYear", "", ""},
                                                               {"cModal", "", ""},
                                                               {"cSource", "", ""},
                                                               {"iGrade", "", ""},
                                                               {"cVouType", "", ""},
                                                               {"cBusType", "", ""},
                                                               {"cInvClass", "01", ""},
                                                               {"bIncludeTransVouch", "", ""}});
    Variant view;
    Variant cancel(false);
    try {
      control.call(L"CallBack_FilterInit", {dialog});
      control.call(L"CallBack_ReportViewInit", {dialog, Variant::reference(view)});
      for (const char* key : {"iYear", "cModal", "cInvClass"}) {
        control.call(L"CallBack_ValueChange", {key, dialog});
        control.call(L"CallBack_ReportViewChange", {key, dialog, Variant::reference(view)});
      }
      control.call(L"InitYear");
      control.call(L"InitGrade");
      control.call(L"CallBack_FilterClick", {dialog, Variant::reference(cancel)});
      EXPECT_TRUE(failAt == 0 || failAt > recorder.calls.size()) << failAt << ": the failure was swallowed";
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

TEST_F(DialogRun, NothingIsLeftOverWhateverFails) {
  for (const char* report : {dialog_of::outboundSummary, dialog_of::receiptIssueBalance}) {
    const std::size_t total = runDialog(library, 0, report);
    EXPECT_GT(total, 120U);
    for (std::size_t failAt = 1; failAt <= total; ++failAt)
      runDialog(library, failAt, report);
  }
}

TEST_F(DialogRun, TheConnectionStaysUntilItIsReplacedOrTheThreadLeavesCom) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  control().call(L"CallBack_FilterInit", {platform.dialog("", {})});
  EXPECT_EQ(library.canUnload(), S_FALSE) << "the report that follows replaces the connection";
  const long withOne = LiveCount::value();
  control().call(L"CallBack_FilterInit", {platform.dialog("", {})});
  EXPECT_EQ(LiveCount::value(), withOne) << "the second dialog's connection took the first one's place";
}

}  // namespace
}  // namespace quillon::component::test
