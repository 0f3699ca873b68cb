#include "filters/filter_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/frame/fake_dialog.h"

namespace quillon {
namespace {

using fakes::FakeDialog;
using fakes::ItemValues;
using fakes::Row;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

constexpr const char* anyIdentifier = "5B3C2B6E-0F8B-4E63-9A57-0C2E6F7B7C11";

// Batch first, then free items 1 to 10.
Row checks(bool batch, const std::vector<int>& freeItems) {
  Row row(11, "False");
  if (batch) row[0] = "True";
  for (const int number : freeItems)
    row[static_cast<std::size_t>(number)] = "True";
  return row;
}

std::vector<ItemValues> allItems() {
  return {{"iYear"},  {"cCaType"}, {"cInvCCode"}, {"cInvCode", "0101"}, {"cWhCode"},  {"cDepCode"},
          {"cFree1"}, {"cFree2"},  {"cFree10"},   {"cBatchIA"},         {"dKeepDate"}};
}

class DetailDialog : public testing::Test {
 protected:
  DetailDialog() { platform.answers.costItemStartMonth = 1; }

  FakeDialog dialog(std::vector<ItemValues> items) { return {platform, anyIdentifier, std::move(items)}; }

  // What was changed of the dialog.
  std::vector<std::string> changes() const {
    std::vector<std::string> changed;
    for (const std::string& call : platform.record.calls) {
      if (call.starts_with("set ") || call.find(" = ") != std::string::npos) changed.push_back(call);
    }
    return changed;
  }

  // Confirms a dialog of these items; gives the item that is refused.
  std::optional<std::string> clicked(std::vector<ItemValues> items) {
    FakeDialog confirmed = dialog(std::move(items));
    platform.record.calls.clear();
    return control.filterClick(confirmed);
  }
  std::vector<std::string> messages() const { return platform.record.with("resources.showMessage"); }

  fakes::FakePlatform platform;
  Module module{platform};
  FilterControl control{module};
};

// --- Preparation ----------------------------------------------------------------------------------------------------

TEST_F(DetailDialog, IsPreparedThroughTheDialogsOwnConnection) {
  platform.answers.valuationMethod = "按仓库核算";
  FakeDialog prepared = dialog(allItems());
  control.filterInit(prepared);
  EXPECT_THAT(changes(), ElementsAre("Login.AuthString = department=False,inventory=False,warehouse=False",
                                     "iYear.list = 2023,2024", "iYear.value = 2024", "cCaType.value = 项目分类",
                                     "set cWhCode available", "set cDepCode available", "set cDepCode unavailable"));
  EXPECT_THAT(platform.record.with("create "), ElementsAre("PublicComponent"));
  EXPECT_FALSE(module.session);
}

TEST_F(DetailDialog, KeepsValuesThatAreThere) {
  std::vector<ItemValues> items = allItems();
  items[0].value = "2023";
  items[1].value = "成本项目";
  FakeDialog prepared = dialog(items);
  control.filterInit(prepared);
  EXPECT_EQ(prepared.at("iYear").value, "2023");
  EXPECT_EQ(prepared.at("cCaType").value, "成本项目");
}

TEST_F(DetailDialog, DefaultsToTheCurrentYearWhenTheLoginsYearIsNotInUse) {
  platform.answers.usedYears = {"2021", "2022"};
  platform.answers.currentPeriodYear = 2022;
  FakeDialog prepared = dialog(allItems());
  control.filterInit(prepared);
  EXPECT_EQ(prepared.at("iYear").value, "2022");
}

TEST_F(DetailDialog, FindsItsItemsInAnyLetterCase) {
  FakeDialog prepared(platform, anyIdentifier, {{"IYEAR"}, {"ccatype"}, {"iYear", "2024"}});
  control.filterInit(prepared);
  EXPECT_EQ(prepared.at("IYEAR").value, "2024");
  EXPECT_EQ(prepared.at("ccatype").value, "项目分类");
}

TEST_F(DetailDialog, AppliesTheValuationMethodOfTheYear) {
  std::vector<ItemValues> items = allItems();
  items[0].value = "2023";
  platform.answers.queries = {{"iYear=2023", {{"按部门核算"}}}};
  FakeDialog prepared = dialog(items);
  control.filterInit(prepared);
  EXPECT_THAT(platform.record.queries(),
              ElementsAre("select cValue from IA_HisOption where cSysID='IA' and  cName='cValueStyle' and iYear=2023"));
  EXPECT_THAT(platform.record.with("set "),
              ElementsAre("cWhCode available", "cDepCode available", "cWhCode unavailable"));
}

TEST_F(DetailDialog, ByInventoryNeitherPlaceIsAvailable) {
  platform.answers.valuationMethod = "按存货核算";
  FakeDialog prepared = dialog(allItems());
  control.filterInit(prepared);
  EXPECT_THAT(platform.record.with("set "),
              ElementsAre("cWhCode available", "cDepCode available", "cWhCode unavailable", "cDepCode unavailable"));
}

// --- Value changes --------------------------------------------------------------------------------------------------

TEST_F(DetailDialog, NarrowsTheInventoryLookupToTheClass) {
  std::vector<ItemValues> items = allItems();
  items[2].value = "01'";
  FakeDialog changed = dialog(items);
  control.valueChange("cInvCCode", changed);
  EXPECT_THAT(platform.record.with("set "), ElementsAre("cInvCode lookup () #FN[cInvCCode] like N'01'%'"));
}

TEST_F(DetailDialog, ANewYearAsksTheAccountOptionsForTheCostingBasis) {
  platform.answers.costingBasis = "按部门核算";
  platform.answers.valuationMethod = "按存货核算";
  FakeDialog changed = dialog(allItems());
  control.valueChange("iYear", changed);
  EXPECT_THAT(
      platform.record.calls,
      ElementsAre("dialog.login", "create AccountLogin", "Login.OrvDbName", "Login.SysPassword",
                  "AccountLogin.initialise(the account's connection, ;PWD=secret)", "create InventoryEnvironment",
                  "InventoryEnvironment.setLogin", "InventoryEnvironment.resultTable",
                  "InventoryEnvironment.accountOptions(tmp_detail)", "AccountOptions.costingBasis",
                  "set cWhCode available", "set cDepCode available", "set cWhCode unavailable"));
}

TEST_F(DetailDialog, ANewYearSwitchesWarehouseAndDepartment) {
  FakeDialog changed = dialog(allItems());
  platform.answers.costingBasis = "按存货核算";
  control.valueChange("iYear", changed);
  EXPECT_THAT(platform.record.with("set "),
              ElementsAre("cWhCode available", "cDepCode available", "cWhCode unavailable", "cDepCode unavailable"));
  for (const char* basis : {"按仓库核算", "", "按批次核算"}) {
    platform.record.calls.clear();
    platform.answers.costingBasis = basis;
    control.valueChange("iYear", changed);
    EXPECT_THAT(platform.record.with("set "),
                ElementsAre("cWhCode available", "cDepCode available", "cDepCode unavailable"))
        << basis;
  }
}

TEST_F(DetailDialog, OtherChangesAndOtherSpellingsDoNothing) {
  FakeDialog changed = dialog(allItems());
  for (const char* key : {"cInvCode", "cInvClass", "cinvccode", "IYEAR", "cCaType", ""})
    control.valueChange(key, changed);
  EXPECT_THAT(platform.record.calls, IsEmpty());
}

// --- View -----------------------------------------------------------------------------------------------------------

TEST_F(DetailDialog, ShowsCostItemsOrTheirClasses) {
  const auto view = [&](const std::string& value) {
    FakeDialog shown(platform, anyIdentifier, {{"iYear", "2024"}, {"CCATYPE", value}});
    return FilterControl::reportView(shown);
  };
  EXPECT_THAT(view("成本项目"), Optional(std::string("IA_FXDetail_FXDef")));
  EXPECT_THAT(view("项目分类"), Optional(std::string("IA_FXDetail_FXClass")));
  EXPECT_THAT(view(""), Optional(std::string("IA_FXDetail_FXClass")));
  EXPECT_THAT(view("成本项目 "), Optional(std::string("IA_FXDetail_FXClass")));
}

TEST_F(DetailDialog, LeavesTheViewWithoutTheItem) {
  FakeDialog shown(platform, anyIdentifier, {{"iYear", "2024"}});
  EXPECT_EQ(FilterControl::reportView(shown), std::nullopt);
}

TEST_F(DetailDialog, FirstShowsClassesWhenNothingWasChosen) {
  FakeDialog prepared = dialog(allItems());
  control.filterInit(prepared);
  EXPECT_THAT(FilterControl::reportView(prepared), Optional(std::string("IA_FXDetail_FXClass")));
}

// --- Confirmation ---------------------------------------------------------------------------------------------------

TEST_F(DetailDialog, AsksForTheChecksOfTheChosenInventory) {
  platform.answers.costingBasis = "按存货核算";
  EXPECT_EQ(clicked(allItems()), std::nullopt);
  EXPECT_THAT(
      platform.record.queries(),
      ElementsAre(
          "select bcheckbatch,bCheckFree1,bCheckFree2,bCheckFree3,bCheckFree4,bCheckFree5,bCheckFree6,bCheckFree7,bCheckFree8,bCheckFree9,bCheckFree10 "
          "from Inventory_rights Inventory where cinvcode=N'0101'"));
  ASSERT_TRUE(platform.record.lastQueryOptions);
  EXPECT_EQ(platform.record.lastQueryOptions->cursorType, CursorType::fixed);
  EXPECT_EQ(platform.record.lastQueryOptions->lockType, LockType::optimistic);
  EXPECT_EQ(platform.record.lastQueryOptions->cursorLocation, CursorLocation::client);
  EXPECT_THAT(platform.record.with("Recordset.Close"), testing::SizeIs(1));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(DetailDialog, ByWarehouseAWarehouseIsNeeded) {
  platform.answers.costingBasis = "按仓库核算";
  EXPECT_THAT(clicked(allItems()), Optional(std::string("cWhCode")));
  EXPECT_THAT(messages(), ElementsAre("(<00217>, 0)"));
  EXPECT_THAT(platform.record.with("resources.text"), ElementsAre("(Mirel.IA.Mirel71.00217)"));
}

TEST_F(DetailDialog, ByWarehouseADepartmentIsNotNeeded) {
  platform.answers.costingBasis = "按仓库核算";
  std::vector<ItemValues> items = allItems();
  items[4].value = "W1";
  EXPECT_EQ(clicked(items), std::nullopt);
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(DetailDialog, ByDepartmentADepartmentIsNeededAndNoWarehouse) {
  platform.answers.costingBasis = "按部门核算";
  EXPECT_THAT(clicked(allItems()), Optional(std::string("cDepCode")));
  EXPECT_THAT(messages(), ElementsAre("(<00218>, 0)"));
  EXPECT_THAT(platform.record.with("resources.text"), ElementsAre("(Mirel.IA.Mirel71.00218)"));
}

TEST_F(DetailDialog, ComparesTheValuationMethodExactly) {
  for (const char* basis : {"按存货核算", "按仓库核算 ", ""}) {
    platform.answers.costingBasis = basis;
    EXPECT_EQ(clicked(allItems()), std::nullopt) << basis;
  }
}

TEST_F(DetailDialog, ACheckedFreeItemIsNeeded) {
  platform.answers.costingBasis = "按存货核算";
  platform.answers.queries = {{"bcheckbatch", {checks(false, {10})}}};
  EXPECT_THAT(clicked(allItems()), Optional(std::string("cFree10")));
  EXPECT_THAT(platform.record.with("resources."),
              ElementsAre("formattedText(Mirel.IA.Mirel71.00228, caption of cFree10)",
                          "showMessage(<00228, caption of cFree10>, 0)"));
}

TEST_F(DetailDialog, EachFreeItemHasItsOwnCheck) {
  platform.answers.costingBasis = "按存货核算";
  for (int number = 1; number <= 10; ++number) {
    platform.answers.queries = {{"bcheckbatch", {checks(false, {number})}}};
    std::vector<ItemValues> items;
    for (int other = 1; other <= 10; ++other)
      items.push_back({"CFREE" + std::to_string(other)});
    items.push_back({"cInvCode", "0101"});
    EXPECT_THAT(clicked(items), Optional("CFREE" + std::to_string(number)));
    items[static_cast<std::size_t>(number) - 1].value = "x";
    EXPECT_EQ(clicked(items), std::nullopt);
  }
}

TEST_F(DetailDialog, ACheckedBatchIsNeeded) {
  platform.answers.costingBasis = "按存货核算";
  platform.answers.queries = {{"bcheckbatch", {checks(true, {})}}};
  EXPECT_THAT(clicked(allItems()), Optional(std::string("cBatchIA")));
  EXPECT_THAT(messages(), ElementsAre("(<00010><13198>, 0)"));
  EXPECT_THAT(platform.record.with("resources.text"),
              ElementsAre("(Mirel.IA.CHHSSQL.00010)", "(Mirel.IA.CHHSSQL.13198)"));
}

TEST_F(DetailDialog, OnlyTheFirstMissingValueIsReported) {
  platform.answers.costingBasis = "按仓库核算";
  platform.answers.queries = {{"bcheckbatch", {checks(true, {1, 2})}}};
  std::vector<ItemValues> items = allItems();
  EXPECT_THAT(clicked(items), Optional(std::string("cWhCode")));
  EXPECT_THAT(messages(), testing::SizeIs(1));
  std::swap(items[4], items[9]);  // the order of the list decides
  EXPECT_THAT(clicked(items), Optional(std::string("cBatchIA")));
  EXPECT_THAT(messages(), ElementsAre("(<00010><13198>, 0)"));
}

TEST_F(DetailDialog, EachConfirmationRepeatsTheChecks) {
  platform.answers.costingBasis = "按仓库核算";
  FakeDialog confirmed = dialog(allItems());
  EXPECT_TRUE(control.filterClick(confirmed));
  confirmed.at("cWhCode").value = "W1";
  EXPECT_FALSE(control.filterClick(confirmed));
  EXPECT_THAT(platform.record.queries(), testing::SizeIs(2));
}

// --- Errors: a dialog that fails at its k-th call, for every k ------------------------------------------------------

TEST_F(DetailDialog, EveryCallMayFail) {
  const std::vector<std::function<void(FilterControl&, FakeDialog&)>> members{
      [](FilterControl& failing, FakeDialog& of) { failing.filterInit(of); },
      [](FilterControl& failing, FakeDialog& of) { failing.valueChange("iYear", of); },
      [](FilterControl& failing, FakeDialog& of) { failing.valueChange("cInvCCode", of); },
      [](FilterControl& failing, FakeDialog& of) { failing.filterClick(of); },
      [](FilterControl&, FakeDialog& of) { FilterControl::reportView(of); },
  };
  for (std::size_t member = 0; member < members.size(); ++member) {
    std::size_t total = 0;
    for (std::size_t k = 0; k <= total; ++k) {
      SCOPED_TRACE("member " + std::to_string(member) + ", failing call " + std::to_string(k));
      fakes::FakePlatform failing;
      failing.answers.queries = {{"bcheckbatch", {checks(true, {2})}}};
      {
        Module ofModule(failing);
        FilterControl of(ofModule);
        FakeDialog shown(failing, anyIdentifier, allItems());
        failing.record.failAt = k;
        if (k == 0) {
          members[member](of, shown);
          total = failing.record.calls.size();
          ASSERT_GE(total, 3U);
        } else {
          EXPECT_THROW(members[member](of, shown), AutomationError);
          EXPECT_EQ(failing.record.calls.size(), k);
        }
      }
      EXPECT_EQ(failing.record.alive, 0);
    }
  }
}

}  // namespace
}  // namespace quillon
