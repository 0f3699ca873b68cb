#include "filters/wt_filter_control.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "frame/automation_error.h"
#include "tests/frame/fake_dialog.h"

namespace quillon {
namespace {

using fakes::FakeDialog;
using fakes::ItemValues;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

constexpr const char* voucherReport = "3D1986A9-884B-4835-B4AA-DCCBD2E1487C";

// --- The texts that are set -----------------------------------------------------------------------------------------

const std::string businessTypes =
    "普通采购,委外加工,受托代销,普通销售,委托代销,分期收款,出口发票,直运出口发票,领料,假退料,限额领料,直接供应,配比出库,"
    "委外发料,委外倒冲,委外盘点补差,生产倒冲,生产盘点补差,成品入库,调拨入库,调拨出库,组装入库,组装出库,拆卸入库,"
    "拆卸出库,转换入库,转换出库,"
    "盘盈入库,盘亏出库,降级入库,不合格品,其他入库,其他出库,签回损失,备件领用,委外发料,服务配件领用,一般贸易进口,"
    "进料加工,配件出库,配件退库";

const std::string industrialVoucherTypes =
    "select cVouchType as [单据编码] ,EnumName  As [单据类型] from VouchType inner join aa_enum on "
    "cVouchName=EnumCode where LocaleID='zh-CN' and EnumType='IA.BillforVch'  and cvouchtype in "
    "('05','06','08','09','10','11','20','21','22','25','24','26','27','28','29','32','35','EX26','EX27')"
    " Union select '01','采购入库单(报销记账)'  Union select '011','采购入库单(暂估记账)' "
    " Union select '30','蓝字回冲单(报销)'  Union select '301','蓝字回冲单(暂估)' "
    " Union select '70','代管挂账确认单(报销记账)'  Union select '701','代管挂账确认单(暂估记账)'"
    " Order By [单据编码]";
const std::string otherVoucherTypes =
    "select cVouchType as [单据编码] ,EnumName  As [单据类型] from VouchType inner join aa_enum on "
    "cVouchName=EnumCode where LocaleID='zh-CN' and EnumType='IA.BillforVch'  and cvouchtype in "
    "('05','06','08','09','20','21','22','24','25','26','27','28','29','32','35','EX26','EX27')"
    " Union select '01','采购入库单(报销记账)'  Union select '011','采购入库单(暂估记账)' "
    " Union select '30','蓝字回冲单(报销)'  Union select '301','蓝字回冲单(暂估)' "
    " Union select '70','代管挂账确认单(报销记账)'  Union select '701','代管挂账确认单(暂估记账)'"
    " Order By [单据编码]";

class WtDialog : public testing::Test {
 protected:
  WtDialog() { platform_.answers.options = {{"AA.cSysVersion", "工业"}, {"IA.cValueStyle", "按仓库核算"}}; }

  // Starts a dialog with these items; gives the calls that it made.
  std::vector<std::string> start(std::vector<ItemValues> items, const char* identifier = voucherReport) {
    FakeDialog dialog(platform_, identifier, std::move(items));
    control_.filterInit(dialog);
    return platform_.record.calls;
  }
  // What the calls set on the dialog's items.
  std::vector<std::string> availability() const {
    std::vector<std::string> found;
    for (const std::string& call : platform_.record.calls) {
      if (call.starts_with("set ")) found.push_back(call);
    }
    return found;
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
  WtFilterControl control_{module_};
};

// --- Start ----------------------------------------------------------------------------------------------------------

TEST_F(WtDialog, OpensTheConnectionAndTakesDataRightsOffThenReadsTheIdentifier) {
  EXPECT_THAT(start({{"cVouType"}, {"cBusType"}, {"cWhCode"}}, "another report"),
              ElementsAre("create Session", "dialog.login", "Session.CursorLocation = 3", "Login.OrvDbName",
                          "Session.ConnectionString = the account's connection", "Session.ConnectionTimeout = 0",
                          "Session.CommandTimeout = 0", "Session.open(\"\", \"\", -1)", "create ResourceService",
                          "resources.takeLogin", "create PublicComponent",
                          "Login.AuthString = department=False,inventory=False,warehouse=False", "dialog.identifier"));
  EXPECT_TRUE(module_.session);
}

TEST_F(WtDialog, TakesItsIdentifierToTheLetter) {
  start({{"cVouType"}}, "3d1986a9-884b-4835-b4aa-dccbd2e1487c");
  EXPECT_THAT(platform_.record.with("cVouType.source"), IsEmpty());
  EXPECT_THAT(availability(), IsEmpty());
}

TEST_F(WtDialog, OffersBusinessTypesAsAList) {
  EXPECT_THAT(start({{"cBusType"}}), Contains("cBusType.source = " + businessTypes));
}

TEST_F(WtDialog, OffersVoucherTypesOfTheIndustrialEditionAsAStatement) {
  EXPECT_THAT(start({{"cVouType"}}), Contains("cVouType.source = " + industrialVoucherTypes));
  EXPECT_THAT(platform_.record.calls, Contains("GetAccInformation(AA, cSysVersion)"));
}

TEST_F(WtDialog, OffersVoucherTypesOfAnyOtherEditionWithout10And11) {
  for (const char* edition : {"商业", ""}) {
    platform_.answers.options["AA.cSysVersion"] = edition;
    platform_.record.calls.clear();
    EXPECT_THAT(start({{"cVouType"}}), Contains("cVouType.source = " + otherVoucherTypes)) << edition;
  }
}

TEST_F(WtDialog, NamesTheFlavoursOfVoucherTypesAndTheHeadingsByTheEnumerations) {
  start({{"cVouType"}});
  EXPECT_THAT(platform_.record.with("resources.enumName"),
              ElementsAre("(IA.FltField, 单据编码)", "(IA.FltField, 单据类型)", "(IA.BillforVch, 采购入库单(报销记账))",
                          "(IA.BillforVch, 采购入库单(暂估记账))", "(IA.BillforVch, 蓝字回冲单(报销))",
                          "(IA.BillforVch, 蓝字回冲单(暂估))", "(IA.BillforVch, 代管挂账确认单(报销记账))",
                          "(IA.BillforVch, 代管挂账确认单(暂估记账))"));
}

TEST_F(WtDialog, LeavesOtherItemsAndOtherSpellingsAlone) {
  start({{"cvoutype"}, {"CBUSTYPE"}, {"cInvCode"}, {"cWhCode", "01"}});
  for (const std::string& call : platform_.record.calls)
    EXPECT_EQ(call.find(".source = "), std::string::npos) << call;
  EXPECT_THAT(platform_.record.calls, Not(Contains("cWhCode.value = ")));
}

TEST_F(WtDialog, WalksTheItemsBeforeItSwitchesWarehouseAndDepartment) {
  const std::vector<std::string> calls = start({{"cVouType"}, {"cBusType"}});
  const auto at = [&](const std::string& call) {
    const auto found = std::find(calls.begin(), calls.end(), call);
    EXPECT_NE(found, calls.end()) << call;
    return found - calls.begin();
  };
  EXPECT_LT(at("cVouType.source = " + industrialVoucherTypes), at("cBusType.source = " + businessTypes));
  EXPECT_LT(at("cBusType.source = " + businessTypes), at("GetAccInformation(IA, cValueStyle)"));
  EXPECT_LT(at("GetAccInformation(IA, cValueStyle)"), at("set cWhCode available"));
}

TEST_F(WtDialog, SwitchesWarehouseAndDepartmentByTheValuationMethod) {
  const auto switched = [&](const std::string& method) {
    platform_.answers.options["IA.cValueStyle"] = method;
    platform_.record.calls.clear();
    start({});
    return availability();
  };
  const std::vector<std::string> onlyDepartment{"set cWhCode available", "set cDepCode available",
                                                "set cWhCode unavailable"};
  const std::vector<std::string> onlyWarehouse{"set cWhCode available", "set cDepCode available",
                                               "set cDepCode unavailable"};
  const std::vector<std::string> both{"set cWhCode available", "set cDepCode available"};
  EXPECT_THAT(switched("按部门核算"), ElementsAreArray(onlyDepartment));
  EXPECT_THAT(switched("按仓库核算"), ElementsAreArray(onlyWarehouse));
  EXPECT_THAT(switched("按存货核算"), ElementsAreArray(onlyWarehouse));
  EXPECT_THAT(switched(""), ElementsAreArray(both));
  EXPECT_THAT(switched("按批次核算"), ElementsAreArray(both));
}

// --- Changes --------------------------------------------------------------------------------------------------------

TEST_F(WtDialog, AClassRestrictsTheLookupOfItsCodes) {
  FakeDialog dialog(platform_, voucherReport,
                    {{"Inventory.cInvCCode", "0101"}, {"Customer.cCCCode", "02"}, {"Vendor.cVCCode", "o'3"}});
  control_.valueChange("Inventory.cInvCCode", dialog);
  control_.valueChange("Customer.cCCCode", dialog);
  control_.valueChange("Vendor.cVCCode", dialog);
  EXPECT_THAT(availability(), ElementsAre("set Inventory.cInvCode lookup  #FN[cInvCCode]='0101'",
                                          "set Customer.cCusCode lookup  #FN[cCCCode]='02'",
                                          "set Vendor.cVenCode lookup  #FN[cVCCode]='o'3'"));
}

TEST_F(WtDialog, AnEmptyClassIsPassedAsEmpty) {
  FakeDialog dialog(platform_, voucherReport, {{"Inventory.cInvCCode"}, {"Customer.cCCCode"}, {"Vendor.cVCCode"}});
  control_.valueChange("Inventory.cInvCCode", dialog);
  control_.valueChange("Customer.cCCCode", dialog);
  control_.valueChange("Vendor.cVCCode", dialog);
  EXPECT_THAT(availability(), ElementsAre("set Inventory.cInvCode lookup  #FN[cInvCCode]='' empty",
                                          "set Customer.cCusCode lookup  #FN[cCCCode]='' empty",
                                          "set Vendor.cVenCode lookup  #FN[cVCCode]='' empty"));
}

TEST_F(WtDialog, OtherChangesDoNothing) {
  FakeDialog dialog(platform_, voucherReport, {{"cInvCCode", "01"}, {"inventory.cinvccode", "01"}, {"cVouType", "01"}});
  for (const char* key : {"cInvCCode", "inventory.cinvccode", "cVouType", ""})
    control_.valueChange(key, dialog);
  EXPECT_THAT(platform_.record.calls, IsEmpty());
}

TEST_F(WtDialog, AcceptsEveryFilter) {
  EXPECT_TRUE(WtFilterControl::filterClick());
}

TEST_F(WtDialog, KeepsTheLanguageThatItIsGiven) {
  EXPECT_EQ(control_.language(), "");
  control_.setLanguage("en-US");
  EXPECT_EQ(control_.language(), "en-US");
}

// --- Failures -------------------------------------------------------------------------------------------------------

TEST_F(WtDialog, EveryCallMayFail) {
  const auto play = [](fakes::FakePlatform& platform) {
    Module module(platform);
    WtFilterControl control(module);
    FakeDialog dialog(platform, voucherReport, {{"cVouType"}, {"cBusType"}, {"Vendor.cVCCode", "01"}});
    control.filterInit(dialog);
    control.valueChange("Vendor.cVCCode", dialog);
  };
  fakes::FakePlatform whole;
  play(whole);
  ASSERT_GT(whole.record.calls.size(), 40U);
  for (std::size_t k = 1; k <= whole.record.calls.size(); ++k) {
    SCOPED_TRACE(whole.record.calls[k - 1]);
    fakes::FakePlatform platform;
    platform.record.failAt = k;
    try {
      play(platform);
      ADD_FAILURE() << "no error";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.description(), whole.record.calls[k - 1]);
    }
    EXPECT_EQ(platform.record.calls.size(), k);
    EXPECT_EQ(platform.record.alive, 0);
  }
}

}  // namespace
}  // namespace quillon
