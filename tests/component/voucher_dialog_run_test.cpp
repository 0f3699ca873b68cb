// clsWtFilterControl in Quillon.dll against a fake platform: the calls that reach the platform and their order, what the
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
using automation::Variant;
using automation::test::ComScope;
namespace {

// How this dialog starts.
const Calls dialogOpened = joined(connectionAndRights(), {"Filter.FilterId"});

const std::string businessTypes =
    "普通采购,委外加工,受托代销,普通销售,委托代销,分期收款,出口发票,直运出口发票,领料,假退料,限额领料,直接供应,配比出库,"
    "委外发料,委外倒冲,委外盘点补差,生产倒冲,生产盘点补差,成品入库,调拨入库,调拨出库,组装入库,组装出库,拆卸入库,拆卸出库,"
    "转换入库,转换出库,盘盈入库,盘亏出库,降级入库,不合格品,其他入库,其他出库,签回损失,备件领用,委外发料,服务配件领用,"
    "一般贸易进口,进料加工,配件出库,配件退库";

// The statement that gives the voucher types, with the names that the fake service has for its codes.
std::string voucherTypes(const std::string& types) {
  return "select cVouchType as [name of 单据编码] ,EnumName  As [name of 单据类型] from VouchType inner join aa_enum on "
         "cVouchName=EnumCode where LocaleID='zh-CN' and EnumType='IA.BillforVch'  and cvouchtype in (" +
         types +
         ") Union select '01','name of 采购入库单(报销记账)'  Union select '011','name of 采购入库单(暂估记账)'  Union "
         "select '30','name of 蓝字回冲单(报销)'  Union select '301','name of 蓝字回冲单(暂估)'  Union select "
         "'70','name of 代管挂账确认单(报销记账)'  Union select '701','name of 代管挂账确认单(暂估记账)' Order By [name "
         "of 单据编码]";
}
const std::string typesOfIndustry =
    "'05','06','08','09','10','11','20','21','22','25','24','26','27','28','29','32','35','EX26','EX27'";
const std::string typesOfOthers =
    "'05','06','08','09','20','21','22','24','25','26','27','28','29','32','35','EX26','EX27'";

class VoucherDialogRun : public LibraryTest {
 protected:
  LateBound control() const { return make(classes::wtFilterControl, "clsWtFilterControl"); }
};

TEST_F(VoucherDialogRun, ADialogOfAnotherReportIsConnectedAndFreedOfDataRights) {
  for (const char* identifier : {"another", "3d1986a9-884b-4835-b4aa-dccbd2e1487c", ""}) {
    const ComScope apartment;
    Recorder recorder;
    FakePlatform platform(recorder);
    const auto dialog = platform.dialog(identifier, {{"cVouType", "", ""}, {"cBusType", "", ""}, {"cWhCode", "", ""}});
    EXPECT_EQ(control().get(L"CallBack_FilterInit", {dialog}).vt, VT_EMPTY);
    EXPECT_EQ(recorder.calls, dialogOpened) << identifier;
  }
}

TEST_F(VoucherDialogRun, CallsThePlatformInOrder) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto dialog =
      platform.dialog(dialog_of::voucherReport, {{"cBusType", "", ""}, {"CVOUTYPE", "", ""}, {"cVouType", "", ""}});
  EXPECT_EQ(control().get(L"CallBack_FilterInit", {dialog}).vt, VT_EMPTY);
  EXPECT_EQ(recorder.calls,
            joined(dialogOpened, {"Login.LanguageRegion",
                                  "Filter.FilterList",
                                  "FilterList.Count",
                                  "Filter.FilterList",
                                  "FilterList.Item(1)",
                                  "Item.Name",
                                  "Item.ListSource = \"" + businessTypes + "\"",
                                  "Filter.FilterList",
                                  "FilterList.Item(2)",
                                  "Item.Name",
                                  "Filter.FilterList",
                                  "FilterList.Item(3)",
                                  "Item.Name",
                                  "ResourceService.EnumName(IA.FltField, 单据编码)",
                                  "ResourceService.EnumName(IA.FltField, 单据类型)",
                                  "Filter.DialogConnection",
                                  "IAPub.GetAccInformation(\"AA\", \"cSysVersion\", ref <DialogConnection>)",
                                  "ResourceService.EnumName(IA.BillforVch, 采购入库单(报销记账))",
                                  "ResourceService.EnumName(IA.BillforVch, 采购入库单(暂估记账))",
                                  "ResourceService.EnumName(IA.BillforVch, 蓝字回冲单(报销))",
                                  "ResourceService.EnumName(IA.BillforVch, 蓝字回冲单(暂估))",
                                  "ResourceService.EnumName(IA.BillforVch, 代管挂账确认单(报销记账))",
                                  "ResourceService.EnumName(IA.BillforVch, 代管挂账确认单(暂估记账))",
                                  "Item.ListSource = \"" + voucherTypes(typesOfIndustry) + "\"",
                                  "IAPub.GetAccInformation(\"IA\", \"cValueStyle\", ref <DialogConnection>)",
                                  "Filter.SetItemUnavailable(\"cWhCode\", False)",
                                  "Filter.SetItemUnavailable(\"cDepCode\", False)"}));
}

TEST_F(VoucherDialogRun, OtherEditionsHaveNeitherFinishedGoodsReceiptsNorMaterialIssues) {
  for (const char* edition : {"商业", "工业 ", ""}) {
    const ComScope apartment;
    Recorder recorder;
    FakePlatform platform(recorder);
    platform.edition = edition;
    const auto dialog = platform.dialog(dialog_of::voucherReport, {{"cVouType", "", ""}});
    control().call(L"CallBack_FilterInit", {dialog});
    EXPECT_EQ(changes(recorder).front(), "Item.ListSource = \"" + voucherTypes(typesOfOthers) + "\"") << edition;
  }
}

TEST_F(VoucherDialogRun, TheValuationMethodDecidesAboutWarehouseAndDepartment) {
  const Calls freed = {"Filter.SetItemUnavailable(\"cWhCode\", False)",
                       "Filter.SetItemUnavailable(\"cDepCode\", False)"};
  const std::vector<std::pair<std::string, Calls>> rules = {
      {"按部门核算", {"Filter.SetItemUnavailable(\"cWhCode\", True)"}},
      {"按仓库核算", {"Filter.SetItemUnavailable(\"cDepCode\", True)"}},
      {"按存货核算", {"Filter.SetItemUnavailable(\"cDepCode\", True)"}},
      {"按存货核算 ", {}},
      {"", {}}};
  for (const auto& [method, locked] : rules) {
    const ComScope apartment;
    Recorder recorder;
    FakePlatform platform(recorder);
    platform.valuationMethod = method;
    control().call(L"CallBack_FilterInit", {platform.dialog(dialog_of::voucherReport, {})});
    EXPECT_EQ(changes(recorder), joined(freed, locked)) << method;
  }
}

TEST_F(VoucherDialogRun, WithoutAResourceServiceCodesStandForTheirNames) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  platform.withoutResourceService();
  control().call(L"CallBack_FilterInit", {platform.dialog(dialog_of::voucherReport, {{"cVouType", "", ""}})});
  EXPECT_TRUE(changes(recorder).front().starts_with(
      "Item.ListSource = \"select cVouchType as [单据编码] ,EnumName  As [单据类型] from VouchType "))
      << changes(recorder).front();
}

TEST_F(VoucherDialogRun, AClassRestrictsTheLookupOfItsCodes) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  struct Lookup {
    std::string changed;
    std::string value;
    std::string told;
  };
  const std::vector<Lookup> lookups = {
      {"Inventory.cInvCCode", "0'1", "\"Inventory.cInvCode\", \" #FN[cInvCCode]='0'1'\", False"},
      {"Customer.cCCCode", "02", "\"Customer.cCusCode\", \" #FN[cCCCode]='02'\", False"},
      {"Vendor.cVCCode", "03", "\"Vendor.cVenCode\", \" #FN[cVCCode]='03'\", False"},
      {"Vendor.cVCCode", "", "\"Vendor.cVenCode\", \" #FN[cVCCode]=''\", True"}};
  for (const auto& [changed, value, told] : lookups) {
    recorder.calls.clear();
    control.call(L"CallBack_ValueChange", {changed, platform.dialog(dialog_of::voucherReport, {{changed, value, ""}})});
    EXPECT_EQ(recorder.calls, (Calls{"Filter.FilterList", "FilterList.Item(\"" + changed + "\")", "Item.varValue",
                                     "Filter.SetItemLookupConditionOfValue(" + told + ")"}));
  }
}

TEST_F(VoucherDialogRun, OtherKeysAndOtherSpellingsChangeNothing) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  const auto dialog = platform.dialog(dialog_of::voucherReport, {{"Vendor.cVCCode", "03", ""}});
  for (const char* key : {"vendor.cvccode", "Vendor.cVenCode", "cVCCode", "cVouType", ""})
    control.call(L"CallBack_ValueChange", {key, dialog});
  EXPECT_TRUE(recorder.calls.empty());
}

TEST_F(VoucherDialogRun, ConfirmingIsAlwaysAcceptedAndCancelLeftAlone) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  for (const bool before : {false, true}) {
    Variant cancel(before);
    const Variant accepted = control.get(L"CallBack_FilterClick",
                                         {platform.dialog(dialog_of::voucherReport, {}), Variant::reference(cancel)});
    EXPECT_EQ(accepted.vt, VT_BOOL);
    EXPECT_EQ(accepted.boolVal, VARIANT_TRUE);
    EXPECT_EQ(cancel.vt, VT_BOOL);
    EXPECT_EQ(cancel.boolVal != VARIANT_FALSE, before);
  }
  EXPECT_TRUE(recorder.calls.empty());
}

TEST_F(VoucherDialogRun, EarlyBoundCallersGetTheSame) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const auto control = library.create<_clsWtFilterControl>(classes::wtFilterControl);
  ASSERT_TRUE(control);
  Bstr language(std::string_view("en-US"));
  Bstr read;
  EXPECT_EQ(control->get_msLanguage(read.out()), S_OK);
  EXPECT_EQ(read.utf8(), "");
  EXPECT_EQ(control->put_msLanguage(language.inOut()), S_OK);
  EXPECT_EQ(control->get_msLanguage(read.out()), S_OK);
  EXPECT_EQ(read.utf8(), "en-US");

  const ComPtr<FakeObject> object =
      platform.dialog(dialog_of::voucherReport, {{"cVouType", "", ""}, {"Vendor.cVCCode", "03", ""}});
  IDispatch* dialog = object.get();
  Variant result("what was there before");
  EXPECT_EQ(control->CallBack_FilterInit(&dialog, result.out()), S_OK);
  EXPECT_EQ(result.vt, VT_EMPTY);
  EXPECT_EQ(changes(recorder).front(), "Item.ListSource = \"" + voucherTypes(typesOfIndustry) + "\"")
      << "the statement is in the login's language";
  Bstr key(std::string_view("Vendor.cVCCode"));
  EXPECT_EQ(control->CallBack_ValueChange(key.inOut(), &dialog), S_OK);
  EXPECT_EQ(recorder.calls.back(),
            "Filter.SetItemLookupConditionOfValue(\"Vendor.cVenCode\", \" #FN[cVCCode]='03'\", False)");
  VARIANT_BOOL cancel = VARIANT_FALSE;
  EXPECT_EQ(control->CallBack_FilterClick(&dialog, &cancel, result.out()), S_OK);
  EXPECT_EQ(cancel, VARIANT_FALSE);
  EXPECT_EQ(result.vt, VT_BOOL);
  EXPECT_EQ(result.boolVal, VARIANT_TRUE);

  EXPECT_EQ(control->get_msLanguage(nullptr), E_POINTER);
  EXPECT_EQ(control->put_msLanguage(nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_FilterInit(&dialog, nullptr), E_POINTER);
  EXPECT_EQ(control->CallBack_ValueChange(nullptr, &dialog), E_POINTER);
  EXPECT_EQ(control->CallBack_FilterClick(&dialog, &cancel, nullptr), E_POINTER);
}

TEST_F(VoucherDialogRun, AMissingDialogIsBasicsError91) {
  const ComScope apartment;
  Recorder recorder;
  FakePlatform platform(recorder);
  const LateBound control = this->control();
  const Variant nothing(static_cast<IDispatch*>(nullptr));
  const auto codeOf = [](const auto& action) -> HRESULT {
    try {
      action();
      return S_OK;
    } catch (const AutomationError& error) {
      return error.code();
    }
  };
  EXPECT_EQ(codeOf([&] { control.call(L"CallBack_FilterInit", {nothing}); }), objectNotSet);
  EXPECT_EQ(codeOf([&] { control.call(L"CallBack_ValueChange", {"Vendor.cVCCode", nothing}); }), objectNotSet);
}

// A whole dialog in an apartment of its own, with call `failAt` failing; gives how many calls there were.
std::size_t runDialog(const QuillonLibrary& library, std::size_t failAt) {
  const long before = LiveCount::value();
  Recorder recorder;
  recorder.failAt = failAt;
  {
    const ComScope apartment;
    FakePlatform platform(recorder);
    platform.valuationMethod = "按部门核算";
    const LateBound control(library.create<IDispatch>(classes::wtFilterControl), "clsWtFilterControl");
    const std::vector<std::string> classes = {"Inventory.cInvCCode", "Customer.cCCCode", "Vendor.cVCCode"};
    std::vector<FakeItem> items = {{"cBusType", "", ""}, {"cVouType", "", ""}};
    for (const std::string& key : classes)
      items.push_back({key, "01", ""});
    const ComPtr<FakeObject> dialog = platform.dialog(dialog_of::voucherReport, items);
    Variant cancel(false);
    try {
      control.call(L"CallBack_FilterInit", {dialog});
      for (const std::string& key : classes)
        control.call(L"CallBack_ValueChange", {key, dialog});
      control.call(L"CallBack_FilterClick", {dialog, Variant::reference(cancel)});
      EXPECT_EQ(failAt, 0U) << "the failure was swallowed";
      EXPECT_EQ(library.canUnload(), S_FALSE) << "the dialog's connection stays open";
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

TEST_F(VoucherDialogRun, NothingIsLeftOverWhateverFails) {
  const std::size_t total = runDialog(library, 0);
  EXPECT_GT(total, 40U);
  for (std::size_t failAt = 1; failAt <= total; ++failAt)
    runDialog(library, failAt);
}

}  // namespace
}  // namespace quillon::component::test
