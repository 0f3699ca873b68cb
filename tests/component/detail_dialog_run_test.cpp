// clsFilterControl in Quillon.dll against a fake platform: the calls that reach the platform and their order, what the
// callbacks give back, and a failure at every call.
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

// How the account options are reached, from the dialog's login on.
const Calls optionsOpened = {"Filter.Login",
                             "new OrvPlatform.AccountLogin",
                             "Login.OrvDbName",
                             "Login.SysPassword",
                             "AccountLogin.Init(\"Provider=Fake;Data Source=account\", \";PWD=secret\")",
                             "new OrvPlatform.InventoryEnvironment",
                             "Environment.Init(<AccountLogin>)",
                             "Environment.GetTableNames(ref \"\", ref \"\")",
                             "new OrvPlatform.AccountOptions",
                             "Environment.FillAccountOptions(<AccountOptions>, <AccountLogin>, \"DetailResult\")",
                             "AccountOptions.CostingBasis"};

// What the chosen inventory is checked for: the batch (0) and free items by their number.
std::function<std::vector<std::vector<Variant>>(const std::string& sql)> inventoryWith(const std::vector<int>& checks) {
  return [checks](const std::string& sql) -> std::vector<std::vector<Variant>> {
    if (!sql.starts_with("select bcheckbatch,")) return {};
    std::vector<Variant> flags(11, Variant(false));
    for (const int check : checks)
      flags[static_cast<std::size_t>(check)] = Variant(true);
    return {flags};
  };
}

// Everything that the checks look at, empty but for the inventory.
const std::vector<FakeItem> emptyFilter = {{"iYear", "2024", ""}, {"cInvCode", "0101", ""}, {"CWHCODE", "", ""},
                                           {"cdepcode", "", ""},  {"cFree1", "", ""},       {"CFREE10", "", ""},
                                           {"cBatchIA", "", ""}};

class DetailDialogRun : public LibraryTest {
 protected:
  LateBound control() const { return make(classes::filterControl, "clsFilterControl"); }

  // The calls that show the user something.
  static Calls messages(const Recorder& recorder) { return callsOn(recorder, {"ResourceService."}); }
};

TEST_F(DetailDialogRun, PreparesTheDialogInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto dialog = platform.dialog("", {{"IYEAR", "", ""}, {"cCaType", "", ""}, {"iYear", "2024", ""}});
  EXPECT_EQ(control().get(L"CallBack_FilterInit", {dialog}).vt, VT_EMPTY);
  EXPECT_EQ(recorder.calls, (Calls{"Filter.Login",
                                   "new IA_Pub.ClsIAPub",
                                   "Login.AuthString = \"department=False,inventory=False,warehouse=False\"",
                                   "Filter.FilterList",
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
                                   "Item.varValue = \"项目分类\"",
                                   "Filter.FilterList",
                                   "FilterList.Item(3)",
                                   "Item.Name",
                                   "Login.cAcc_Id",
                                   "IAPub.GetIAUsedYears(\"001\", ref <DialogConnection>)",
                                   "Years.Count",
                                   "Years.Item(\"1\")",
                                   "Years.Item(\"2\")",
                                   "IAPub.iFxStartMonth(\"2023\", ref <DialogConnection>)",
                                   "IAPub.iFxStartMonth(\"2024\", ref <DialogConnection>)",
                                   "Item.ListText = \"2023,2024\"",
                                   "Item.varValue",
                                   "Filter.FilterList",
                                   "FilterList.Item(\"iYear\")",
                                   "Item.varValue",
                                   "IAPub.CurPeriodYear(ref <DialogConnection>)",
                                   "IAPub.GetAccInformation(\"IA\", \"cValueStyle\", ref <DialogConnection>)",
                                   "Filter.SetItemUnavailable(\"cWhCode\", False)",
                                   "Filter.SetItemUnavailable(\"cDepCode\", False)",
                                   "Filter.SetItemUnavailable(\"cDepCode\", True)"}));
}

TEST_F(DetailDialogRun, AChangedClassNarrowsTheLookupOfInventories) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  control.call(L"CallBack_ValueChange", {"cInvCCode", platform.dialog("", {{"cInvCCode", "0'1", ""}})});
  EXPECT_EQ(recorder.calls,
            (Calls{"Filter.FilterList", "FilterList.Item(\"cInvCCode\")", "Item.varValue",
                   "Filter.SetItemLookupCondition(\"cInvCode\", \"\", \"#FN[cInvCCode] like N'0'1%'\")"}));
}

TEST_F(DetailDialogRun, OtherKeysAndOtherSpellingsChangeNothing) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  for (const char* key : {"cinvccode", "cInvClass", "IYEAR", "cCaType", ""})
    control.call(L"CallBack_ValueChange", {key, platform.dialog("", emptyFilter)});
  EXPECT_TRUE(recorder.calls.empty());
}

TEST_F(DetailDialogRun, AChangedYearAsksTheAccountOptions) {
  const std::vector<std::pair<std::string, Calls>> rules = {
      {"按存货核算", {"Filter.SetItemUnavailable(\"cWhCode\", True)", "Filter.SetItemUnavailable(\"cDepCode\", True)"}},
      {"按部门核算", {"Filter.SetItemUnavailable(\"cWhCode\", True)"}},
      {"按仓库核算", {"Filter.SetItemUnavailable(\"cDepCode\", True)"}},
      {"anything else", {"Filter.SetItemUnavailable(\"cDepCode\", True)"}}};
  for (const auto& [costingBasis, locked] : rules) {
    const ComScope apartment;
    Recorder recorder;
    FakePlatform platform(recorder);
    platform.costingBasis = costingBasis;
    control().call(L"CallBack_ValueChange", {"iYear", platform.dialog("", emptyFilter)});
    const Calls freed = {"Filter.SetItemUnavailable(\"cWhCode\", False)",
                         "Filter.SetItemUnavailable(\"cDepCode\", False)"};
    EXPECT_EQ(recorder.calls, joined(joined(optionsOpened, freed), locked)) << costingBasis;
  }
}

TEST_F(DetailDialogRun, TheViewComesBackInTheCallersVariable) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  for (const auto& [breakdown, expected] :
       {std::pair{"成本项目", "IA_FXDetail_FXDef"}, {"项目分类", "IA_FXDetail_FXClass"}, {"", "IA_FXDetail_FXClass"}}) {
    const auto dialog = platform.dialog("", {{"iYear", "", ""}, {"CCATYPE", breakdown, ""}});
    Variant atStart;
    control.call(L"CallBack_ReportViewInit", {dialog, Variant::reference(atStart)});
    EXPECT_EQ(toText(atStart), expected);
    Bstr typed(std::string_view("what was there before"));
    control.call(L"CallBack_ReportViewChange", {"cCaType", dialog, Variant::reference(*typed.inOut())});
    EXPECT_EQ(typed.utf8(), expected);
  }
}

TEST_F(DetailDialogRun, WithoutItsItemTheViewStaysAsItWas) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  const auto dialog = platform.dialog("", {{"iYear", "", ""}});
  Variant untouched;
  control.call(L"CallBack_ReportViewInit", {dialog, Variant::reference(untouched)});
  EXPECT_EQ(untouched.vt, VT_EMPTY);
  Variant before("what was there before");
  control.call(L"CallBack_ReportViewChange", {"cCaType", dialog, Variant::reference(before)});
  EXPECT_EQ(toText(before), "what was there before");
}

TEST_F(DetailDialogRun, ConfirmingReadsTheInventorysChecksInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  Variant cancel(false);
  const auto dialog = platform.dialog("", {{"cInvCode", "0101", ""}, {"cFree1", "", ""}});
  platform.rows = inventoryWith({1});
  EXPECT_EQ(control.get(L"CallBack_FilterClick", {dialog, Variant::reference(cancel)}).vt, VT_EMPTY);
  EXPECT_EQ(cancel.vt, VT_BOOL);
  EXPECT_EQ(cancel.boolVal, VARIANT_TRUE);
  Calls behind = {"AccountOptions.InventoryTable",
                  "Filter.FilterList",
                  "FilterList.Item(\"cInvCode\")",
                  "Item.varValue",
                  "Filter.DialogConnection",
                  "new ADODB.Recordset",
                  "Recordset.CursorLocation = 3",
                  "Recordset.Open(\"select bcheckbatch,bCheckFree1,bCheckFree2,bCheckFree3,bCheckFree4,bCheckFree5,"
                  "bCheckFree6,bCheckFree7,bCheckFree8,bCheckFree9,bCheckFree10 from InventoryView Inventory where "
                  "cinvcode=N'0101'\", <DialogConnection>, 3, 3, -1)",
                  "Recordset.EOF"};
  for (int field = 0; field <= 10; ++field)
    behind.insert(behind.end(), {"Recordset.Fields", "Fields.Item(" + std::to_string(field) + ")", "Field.Value"});
  behind.insert(behind.end(),
                {"Recordset.Close", "Filter.FilterList", "FilterList.Count", "Filter.FilterList", "FilterList.Item(1)",
                 "Item.Name", "Item.varValue", "Filter.FilterList", "FilterList.Item(2)", "Item.Name", "Item.varValue",
                 "new OrvPlatform.ResourceService", "Item.Caption",
                 "ResourceService.FormatText(\"Mirel.IA.Mirel71.00228\", [\"caption of cFree1\"])",
                 "ResourceService.ShowMessage(text with [\"caption of cFree1\"], 0, 0, 0)"});
  EXPECT_EQ(recorder.calls, joined(optionsOpened, behind));
}

// What the user is told, and whether the dialog stays open.
struct Refusal {
  std::string costingBasis;
  std::vector<int> checks;  // 0 is the batch
  Calls told;
};

TEST_F(DetailDialogRun, OnlyTheFirstEmptyItemIsTold) {
  const Calls warehouse = {"ResourceService.Text(Mirel.IA.Mirel71.00217)",
                           "ResourceService.ShowMessage(text 00217, 0, 0, 0)"};
  const Calls department = {"ResourceService.Text(Mirel.IA.Mirel71.00218)",
                            "ResourceService.ShowMessage(text 00218, 0, 0, 0)"};
  const Calls batch = {"ResourceService.Text(Mirel.IA.CHHSSQL.00010)", "ResourceService.Text(Mirel.IA.CHHSSQL.13198)",
                       "ResourceService.ShowMessage(text 00010text 13198, 0, 0, 0)"};
  const auto freeItem = [](const std::string& name) {
    const std::string list = "[\"caption of " + name + "\"]";
    return Calls{"ResourceService.FormatText(\"Mirel.IA.Mirel71.00228\", " + list + ")",
                 "ResourceService.ShowMessage(text with " + list + ", 0, 0, 0)"};
  };
  const std::vector<Refusal> refusals = {{"按仓库核算", {}, warehouse},
                                         {"按仓库核算", {0, 1, 10}, warehouse},
                                         {"按部门核算", {0, 1, 10}, department},
                                         {"按存货核算", {0, 1, 10}, freeItem("cFree1")},
                                         {"按存货核算", {0, 10}, freeItem("CFREE10")},
                                         {"按存货核算", {0}, batch},
                                         {"按存货核算", {2, 9}, {}},  // the filter has no such items
                                         {"按存货核算", {}, {}},
                                         {"按仓库核算 ", {}, {}}};  // compared exactly
  for (const auto& [costingBasis, checks, told] : refusals) {
    const ComScope apartment;
    Recorder recorder;
    FakePlatform platform(recorder);
    platform.costingBasis = costingBasis;
    platform.rows = inventoryWith(checks);
    Variant cancel(false);
    control().call(L"CallBack_FilterClick", {platform.dialog("", emptyFilter), Variant::reference(cancel)});
    EXPECT_EQ(messages(recorder), told) << costingBasis << checks.size();
    EXPECT_EQ(cancel.boolVal != VARIANT_FALSE, !told.empty());
  }
}

// Basic's "Cancel = True" is false for a 7: a variable that only counts as True must not stay as it is.
TEST_F(DetailDialogRun, ARefusalSetsCancelToExactlyTrueOnBothRoads) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.costingBasis = "按仓库核算";
  const auto dialog = platform.dialog("", emptyFilter);
  for (const Variant& before : {Variant(7), Variant(1), Variant(0), Variant("7"), Variant(true), Variant(false)}) {
    Variant cancel = before;
    control().call(L"CallBack_FilterClick", {dialog, Variant::reference(cancel)});
    EXPECT_EQ(cancel.vt, VT_BOOL) << toText(before);
    EXPECT_EQ(cancel.boolVal, VARIANT_TRUE) << toText(before);
  }
  for (const VARIANT_BOOL before : {VARIANT_BOOL{7}, VARIANT_BOOL{1}, VARIANT_TRUE, VARIANT_FALSE}) {
    VARIANT_BOOL cancel = before;
    Variant reference;
    reference.vt = VT_BOOL | VT_BYREF;
    reference.pboolVal = &cancel;
    control().call(L"CallBack_FilterClick", {dialog, reference});
    EXPECT_EQ(cancel, VARIANT_TRUE) << before;

    cancel = before;
    const auto earlyBound = library.create<_clsFilterControl>(__uuidof(clsFilterControl));
    IDispatch* filter = dialog.get();
    Variant result;
    EXPECT_EQ(earlyBound->CallBack_FilterClick(&filter, &cancel, &result), S_OK);
    EXPECT_EQ(cancel, VARIANT_TRUE) << before;
  }
}

TEST_F(DetailDialogRun, ACompleteFilterIsAcceptedAndCancelLeftAlone) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.costingBasis = "按仓库核算";
  platform.rows = inventoryWith({0, 1});
  const auto dialog = platform.dialog(
      "", {{"cInvCode", "0101", ""}, {"cWhCode", "01", ""}, {"cFree1", "blue", ""}, {"cBatchIA", "B7", ""}});
  const LateBound control = this->control();
  for (const bool before : {false, true}) {
    Variant cancel(before);
    control.call(L"CallBack_FilterClick", {dialog, Variant::reference(cancel)});
    EXPECT_EQ(cancel.boolVal != VARIANT_FALSE, before);
  }
  Variant seven(7);
  control.call(L"CallBack_FilterClick", {dialog, Variant::reference(seven)});
  EXPECT_EQ(seven.vt, VT_I4);
  EXPECT_EQ(seven.lVal, 7);
  EXPECT_TRUE(messages(recorder).empty());
}

TEST_F(DetailDialogRun, WithoutAMessageServiceARefusalIsAnError) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.withoutResourceService();
  platform.rows = inventoryWith({1});
  Variant cancel(false);
  try {
    control().call(L"CallBack_FilterClick", {platform.dialog("", emptyFilter), Variant::reference(cancel)});
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_TRUE(error.description().ends_with(": Mirel.IA.Mirel71.00228 (caption of cFree1)")) << error.description();
  }
}

TEST_F(DetailDialogRun, EarlyBoundCallersGetTheSame) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.costingBasis = "按仓库核算";
  const auto control = library.create<_clsFilterControl>(classes::filterControl);
  ASSERT_TRUE(control);
  const ComPtr<FakeObject> object = platform.dialog("", {{"iYear", "2024", ""},
                                                         {"cCaType", "成本项目", ""},
                                                         {"cInvCCode", "01", ""},
                                                         {"cInvCode", "0101", ""},
                                                         {"cWhCode", "", ""}});
  IDispatch* dialog = object.get();
  Variant result("what was there before");
  EXPECT_EQ(control->CallBack_FilterInit(&dialog, result.out()), S_OK);
  EXPECT_EQ(result.vt, VT_EMPTY);
  Bstr key(std::string_view("cInvCCode"));
  EXPECT_EQ(control->CallBack_ValueChange(key.inOut(), &dialog), S_OK);
  EXPECT_EQ(recorder.calls.back(), "Filter.SetItemLookupCondition(\"cInvCode\", \"\", \"#FN[cInvCCode] like N'01%'\")");

  VARIANT_BOOL cancel = VARIANT_FALSE;
  EXPECT_EQ(control->CallBack_FilterClick(&dialog, &cancel, result.out()), S_OK);
  EXPECT_EQ(cancel, VARIANT_TRUE);
  EXPECT_EQ(result.vt, VT_EMPTY);

  // A variant's old value is freed; one that refers to a variable passes the view on to that variable.
  Variant view("what was there before");
  EXPECT_EQ(control->CallBack_ReportViewInit(&dialog, &view), S_OK);
  EXPECT_EQ(toText(view), "IA_FXDetail_FXDef");
  Variant variable;
  Variant reference = Variant::reference(variable);
  EXPECT_EQ(control->CallBack_ReportViewChange(key.inOut(), &dialog, &reference), S_OK);
  EXPECT_EQ(toText(variable), "IA_FXDetail_FXDef");

  EXPECT_EQ(control->CallBack_FilterInit(&dialog, nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_FilterClick(&dialog, nullptr, result.out()), E_POINTER);
  EXPECT_EQ(control->CallBack_FilterClick(&dialog, &cancel, nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_ValueChange(nullptr, &dialog), E_POINTER);
  EXPECT_EQ(control->CallBack_ReportViewInit(&dialog, nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_ReportViewChange(key.inOut(), &dialog, nullptr), E_POINTER);
}

TEST_F(DetailDialogRun, AMissingDialogIsBasicsError91) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  const Variant nothing(static_cast<IDispatch*>(nullptr));
  Variant view;
  Variant cancel(false);
  const auto codeOf = [](const auto& action) -> HRESULT {
    try {
      action();
      return S_OK;
    } catch (const AutomationError& error) {
      return error.code();
    }
  };
  EXPECT_EQ(codeOf([&] { control.call(L"CallBack_FilterInit", {nothing}); }), objectNotSet);
  EXPECT_EQ(codeOf([&] { control.call(L"CallBack_ValueChange", {"iYear", nothing}); }), objectNotSet);
  EXPECT_EQ(codeOf([&] {
              control.call(L"CallBack_FilterClick", {nothing, Variant::reference(cancel)});
            }),
            objectNotSet);
  EXPECT_EQ(cancel.boolVal, VARIANT_FALSE);
  EXPECT_EQ(codeOf([&] {
              control.call(L"CallBack_ReportViewInit", {nothing, Variant::reference(view)});
            }),
            objectNotSet);
  EXPECT_EQ(codeOf([&] {
              control.call(L"CallBack_ReportViewChange", {"cCaType", nothing, Variant::reference(view)});
            }),
            objectNotSet);
  EXPECT_EQ(view.vt, VT_EMPTY);
}

// A whole dialog in an apartment of its own, with call `failAt` failing; gives how many calls there were.
std::size_t runDialog(const QuillonLibrary& library, std::size_t failAt, const std::vector<int>& checks,
                      const std::string& costingBasis) {
  const long before = LiveCount::value();
  Recorder recorder;
  recorder.failAt = failAt;
  {
    const ComScope apartment;
    FakePlatform platform(recorder);
    platform.costingBasis = costingBasis;
    platform.rows = inventoryWith(checks);
    const LateBound control(library.create<IDispatch>(classes::filterControl), "clsFilterControl");
    std::vector<FakeItem> items = emptyFilter;
    items.insert(items.end(), {{"cCaType", "", ""}, {"cInvCCode", "01", ""}});
    const ComPtr<FakeObject> dialog = platform.dialog("", items);
    Variant view;
    Variant cancel(false);
    try {
      control.call(L"CallBack_FilterInit", {dialog});
      control.call(L"CallBack_ReportViewInit", {dialog, Variant::reference(view)});
      for (const char* key : {"iYear", "cInvCCode", "cCaType"}) {
        control.call(L"CallBack_ValueChange", {key, dialog});
        control.call(L"CallBack_ReportViewChange", {key, dialog, Variant::reference(view)});
      }
      control.call(L"CallBack_FilterClick", {dialog, Variant::reference(cancel)});
      EXPECT_EQ(failAt, 0U) << "the failure was swallowed";
      EXPECT_EQ(cancel.boolVal, VARIANT_TRUE);
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), Recorder::failure) << failAt;
      EXPECT_EQ(recorder.calls.size(), failAt) << "after a failure nothing more is called";
      EXPECT_EQ(cancel.boolVal, VARIANT_FALSE) << "a failed check is not a refusal";
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

TEST_F(DetailDialogRun, NothingIsLeftOverWhateverFails) {
  const std::vector<std::pair<std::vector<int>, std::string>> refused = {
      {{}, "按仓库核算"}, {{10}, "按存货核算"}, {{0}, "按存货核算"}};
  for (const auto& [checks, costingBasis] : refused) {
    const std::size_t total = runDialog(library, 0, checks, costingBasis);
    EXPECT_GT(total, 150U);
    for (std::size_t failAt = 1; failAt <= total; ++failAt)
      runDialog(library, failAt, checks, costingBasis);
  }
}

}  // namespace
}  // namespace quillon::component::test
