#include "component/platform_adapter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "component/argument_adapters.h"
#include "component/filter_adapters.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/fake_platform.h"
#include "tests/component/recorded_calls.h"

namespace quillon::component::test {

using automation::ComPtr;
using automation::makeObject;
using automation::Variant;
using automation::test::ComScope;
namespace {

class PlatformAdapterTest : public testing::Test {
 protected:
  // The calls since the last look.
  Calls calls() {
    Calls seen;
    seen.swap(recorder.calls);
    return seen;
  }

  ComScope apartment;
  Recorder recorder;
  FakePlatform fake{recorder};
  LateBoundPlatform platform;
};

TEST_F(PlatformAdapterTest, TheArgumentAndItsDataSource) {
  LateBoundReportArgument e(fake.argument({}));
  EXPECT_EQ(e.action(), "Link");
  EXPECT_EQ(e.languageId(), "2052");
  const auto dataSource = e.dataSource();
  dataSource->setType(2);
  EXPECT_EQ(dataSource->resultTable(), "ResultTable");
  EXPECT_TRUE(e.login());
  EXPECT_TRUE(e.filterLogin());
  EXPECT_TRUE(e.rawFilter());
  EXPECT_EQ(calls(), (Calls{"e.Action", "e.LangID", "e.DataSource", "DataSource.Type = 2", "DataSource.SQL", "e.Login",
                            "e.LoginObj", "e.rawFilter"}));
}

TEST_F(PlatformAdapterTest, TheLogin) {
  LateBoundReportArgument e(fake.argument({}));
  const auto login = e.login();
  calls();
  EXPECT_EQ(login->accountConnection(), "Provider=Fake;Data Source=account");
  EXPECT_EQ(login->password(), "secret");
  EXPECT_EQ(login->accountCode(), "001");
  EXPECT_EQ(login->accountingYear(), "2024");
  EXPECT_EQ(login->accountingYearText(), "2024");
  EXPECT_EQ(login->languageRegion(), "zh-CN");
  EXPECT_EQ(login->languageId(), "2052");
  EXPECT_EQ(login->currentPeriodYear(), 2024);
  EXPECT_EQ(login->businessDate(), "2024-06-30") << "a date value is ISO text";
  login->setAuthString("department=False");
  EXPECT_EQ(calls(), (Calls{"Login.OrvDbName", "Login.SysPassword", "Login.cAcc_Id", "Login.iYear", "Login.cIYear",
                            "Login.LanguageRegion", "Login.LangID", "Login.CurPeriodYear", "Login.CurDate",
                            "Login.AuthString = \"department=False\""}));
}

TEST_F(PlatformAdapterTest, TheLoginsModuleIsEmptyWhereItIsNotTold) {
  EXPECT_EQ(LateBoundReportArgument(fake.argument({})).login()->moduleCode(), "IA");
  fake.moduleCode = std::nullopt;
  EXPECT_EQ(LateBoundReportArgument(fake.argument({})).login()->moduleCode(), "");
}

TEST_F(PlatformAdapterTest, ARowGivesTextsOfItsColumns) {
  fake.row = {{"ID", 815}, {"cVouType", "Sale"}, {"dKeepDate", Variant::fromDate(45351.0)}};
  LateBoundReportArgument e(fake.argument({}));
  const auto row = e.row();
  EXPECT_EQ(row->value("ID"), "815");
  EXPECT_EQ(row->value("cVouType"), "Sale");
  EXPECT_EQ(row->value("dKeepDate"), "2024-02-29");
  EXPECT_EQ(row->value("cPZID"), "") << "Null";
  EXPECT_EQ(calls(), (Calls{"e.RelateData", "Row.GetData(\"ID\")", "Row.GetData(\"cVouType\")",
                            "Row.GetData(\"dKeepDate\")", "Row.GetData(\"cPZID\")"}));
}

TEST_F(PlatformAdapterTest, TheDataSourceTakesATablesName) {
  LateBoundReportArgument e(fake.argument({}));
  const auto dataSource = e.dataSource();
  dataSource->setResultTable("DetailResult");
  EXPECT_EQ(dataSource->resultTable(), "DetailResult");
  EXPECT_EQ(calls(), (Calls{"e.DataSource", "DataSource.SQL = \"DetailResult\"", "DataSource.SQL"}));
}

TEST_F(PlatformAdapterTest, ThePublicComponentAnswersAboutPeriods) {
  fake.lastSettledMonth = 3;
  const auto session = platform.createSession();
  const auto component = platform.createPublicComponent();
  EXPECT_TRUE(component->costItemOpeningsFinished(2024, *session));
  const AccountingPeriod start = component->moduleStart("IA", *session);
  EXPECT_EQ(start.year, 2023);
  EXPECT_EQ(start.month, 5);
  const PeriodDates february = component->datesOfPeriod("001", {.year = 2024, .month = 2}, *session);
  EXPECT_EQ(february.begin, "2024-02-01");
  EXPECT_EQ(february.end, "2024-02-29");
  const AccountingPeriod period = component->periodOfDate("2023-12-31", *session);
  EXPECT_EQ(period.year, 2023);
  EXPECT_EQ(period.month, 12);
  EXPECT_TRUE(component->periodSettled({.year = 2024, .month = 3}, *session));
  EXPECT_FALSE(component->periodSettled({.year = 2024, .month = 4}, *session));
  EXPECT_EQ(component->workstationName(), "DESK_7");
}

TEST_F(PlatformAdapterTest, TheEnvironmentFillsTheAccountOptions) {
  fake.costingBasis = "按部门核算";
  const auto login = platform.createAccountLogin();
  login->initialise("Data Source=account", ";PWD=secret");
  const auto environment = platform.createInventoryEnvironment();
  environment->setLogin(*login);
  const std::string table = environment->resultTable();
  EXPECT_EQ(table, "DetailResult");
  const auto options = environment->accountOptions(*login, table);
  EXPECT_EQ(options->costingBasis(), "按部门核算");
  EXPECT_EQ(options->inventoryTable(), "InventoryView");
  EXPECT_EQ(options->warehouseTable(), "WarehouseView");
}

TEST_F(PlatformAdapterTest, WorkTablesAreNumberedAnew) {
  EXPECT_EQ(platform.workTableNumber(), 501);
  EXPECT_EQ(platform.workTableNumber(), 502);
  fake.withoutNaming();
  constexpr std::size_t many = 1000;
  std::set<std::int32_t> seen;
  for (std::size_t i = 0; i < many; ++i) {
    const std::int32_t number = platform.workTableNumber();
    EXPECT_GE(number, 0);
    seen.insert(number);
  }
  EXPECT_GT(seen.size(), many - 2) << "numbers are drawn: two of so many may be equal, once in some thousand runs";
}

TEST_F(PlatformAdapterTest, TheFilterAndItsItems) {
  LateBoundReportArgument e(fake.argument({{"iYear", "2024", ""}, {"cInvCode", "01\t02", "09"}}));
  const auto filter = e.rawFilter();
  calls();
  EXPECT_EQ(filter->count(), 2);
  const auto second = filter->item(2);
  second->setGroupToken(1);
  EXPECT_EQ(second->name(), "cInvCode");
  EXPECT_EQ(second->value(), "01\t02");
  EXPECT_EQ(second->value2(), "09");
  EXPECT_FALSE(second->rangeInput());
  EXPECT_FALSE(second->multipleSelection());
  EXPECT_EQ(second->sqlText(), "");
  EXPECT_EQ(filter->item("iYear")->value(), "2024");
  EXPECT_EQ(filter->whereWithToken(0), "");
  EXPECT_EQ(calls(), (Calls{"Filter.FilterList", "FilterList.Count", "Filter.FilterList", "FilterList.Item(2)",
                            "Item.LngGrouptoken = 1", "Item.Name", "Item.varValue", "Item.varValue2", "Item.RangeInput",
                            "Item.IsMultSel", "Item.strSqlString", "Filter.FilterList", "FilterList.Item(\"iYear\")",
                            "Item.varValue", "Filter.GetWhereWithToken(0)"}));
}

TEST_F(PlatformAdapterTest, TheDialogAndItsItems) {
  LateBoundFilterDialog dialog(fake.dialog("A-B", {{"iYear", "2024", ""}, {"cInvCode", "01", ""}}));
  EXPECT_EQ(dialog.identifier(), "A-B");
  EXPECT_EQ(dialog.login()->accountCode(), "001");
  EXPECT_EQ(dialog.count(), 2);
  const auto item = dialog.item(2);
  EXPECT_EQ(item->name(), "cInvCode");
  EXPECT_EQ(item->caption(), "caption of cInvCode");
  item->setValue("02");
  EXPECT_EQ(item->value(), "02");
  item->setBounds("03", "04");
  item->setListText("03,04");
  item->setListSource("Select cInvCode From Inventory");
  EXPECT_EQ(dialog.item("iYear")->value(), "2024");
  dialog.setUnavailable("cWhCode", true);
  dialog.setEnumeration("iGrade", "1{##}1");
  dialog.setLookupCondition("cInvCode", "", "#FN[cInvCCode] Like '01%'");
  dialog.setLookupConditionOfValue("cCusCode", "#FN[cCCCode] Like N'%'", true);
  EXPECT_EQ(calls(), (Calls{"Filter.FilterId",
                            "Filter.Login",
                            "Login.cAcc_Id",
                            "Filter.FilterList",
                            "FilterList.Count",
                            "Filter.FilterList",
                            "FilterList.Item(2)",
                            "Item.Name",
                            "Item.Caption",
                            "Item.varValue = \"02\"",
                            "Item.varValue",
                            "Item.varValue = \"03\"",
                            "Item.varValue2 = \"04\"",
                            "Item.ListText = \"03,04\"",
                            "Item.ListSource = \"Select cInvCode From Inventory\"",
                            "Filter.FilterList",
                            "FilterList.Item(\"iYear\")",
                            "Item.varValue",
                            "Filter.SetItemUnavailable(\"cWhCode\", True)",
                            "Filter.SetItemEnumeration(\"iGrade\", \"1{##}1\")",
                            "Filter.SetItemLookupCondition(\"cInvCode\", \"\", \"#FN[cInvCCode] Like '01%'\")",
                            "Filter.SetItemLookupConditionOfValue(\"cCusCode\", \"#FN[cCCCode] Like N'%'\", True)"}));
}

TEST_F(PlatformAdapterTest, TheDialogsConnectionIsAskedForOnceAndPassedOnByReference) {
  LateBoundFilterDialog dialog(fake.dialog("", {}));
  const auto component = platform.createPublicComponent();
  calls();
  EXPECT_EQ(component->currentPeriodYear(dialog.connection()), 2024);
  EXPECT_EQ(component->costItemStartMonth("2024", dialog.connection()), 1);
  EXPECT_EQ(calls(), (Calls{"Filter.DialogConnection", "IAPub.CurPeriodYear(ref <DialogConnection>)",
                            "IAPub.iFxStartMonth(\"2024\", ref <DialogConnection>)"}));
}

TEST_F(PlatformAdapterTest, NoDialogIsBasicsError91) {
  LateBoundFilterDialog dialog{ComPtr<IDispatch>()};
  try {
    dialog.identifier();
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), objectNotSet);
  }
}

TEST_F(PlatformAdapterTest, ThePublicComponentGetsTheConnectionByReferenceAndLast) {
  const auto session = platform.createSession();
  const auto component = platform.createPublicComponent();
  EXPECT_EQ(component->accountInformation("IA", "cValueStyle", *session), "by inventory");
  EXPECT_EQ(component->currentPeriodYear(*session), 2024);
  EXPECT_EQ(component->costItemStartMonth("2024", *session), 1);
  EXPECT_EQ(component->usedYears("001", *session), (std::vector<std::string>{"2023", "2024"}));
  EXPECT_EQ(calls(), (Calls{"new ADODB.Connection", "new IA_Pub.ClsIAPub",
                            "IAPub.GetAccInformation(\"IA\", \"cValueStyle\", ref <Connection>)",
                            "IAPub.CurPeriodYear(ref <Connection>)", "IAPub.iFxStartMonth(\"2024\", ref <Connection>)",
                            "IAPub.GetIAUsedYears(\"001\", ref <Connection>)", "Years.Count", "Years.Item(\"1\")",
                            "Years.Item(\"2\")"}));
}

TEST_F(PlatformAdapterTest, TheResourceServiceIsCalledThroughItsSlots) {
  const auto service = platform.createResourceService();
  const auto login = LateBoundReportArgument(fake.argument({})).login();
  calls();
  EXPECT_EQ(service->enumName("IA.Bustype", "PO"), "name of PO");
  EXPECT_EQ(service->text("Mirel.IA.CHHSSQL.00182"), "text 00182");
  service->showMessage("Careful", 48);
  service->takeLogin(*login);
  EXPECT_EQ(calls(),
            (Calls{"ResourceService.EnumName(IA.Bustype, PO)", "ResourceService.Text(Mirel.IA.CHHSSQL.00182)",
                   "ResourceService.ShowMessage(Careful, 48, 0, 0)", "ResourceService.FormatText(<Login>, missing)"}));
}

TEST_F(PlatformAdapterTest, ATextsArgumentsAreAnArray) {
  const auto service = platform.createResourceService();
  EXPECT_EQ(service->formattedText("Mirel.IA.Mirel71.00228", {"颜色", "b"}), "text with [\"颜色\", \"b\"]");
  EXPECT_EQ(calls().back(), "ResourceService.FormatText(\"Mirel.IA.Mirel71.00228\", [\"颜色\", \"b\"])");
}

TEST_F(PlatformAdapterTest, AnErrorOfTheResourceServiceKeepsItsWords) {
  const auto service = platform.createResourceService();
  calls();
  recorder.failAt = 1;
  try {
    service->text("key");
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), Recorder::failure);
    EXPECT_EQ(error.source(), "Fake");
    EXPECT_EQ(error.description(), "refused: ResourceService.Text(key)");
  }
}

TEST_F(PlatformAdapterTest, WithoutAResourceServiceAKeyIsItsOwnText) {
  fake.withoutResourceService();
  const auto service = platform.createResourceService();
  EXPECT_EQ(service->text("Mirel.IA.CHHSSQL.00182"), "Mirel.IA.CHHSSQL.00182");
  EXPECT_EQ(service->enumName("IA.Bustype", "PO"), "PO");
  EXPECT_EQ(service->formattedText("Mirel.IA.Mirel71.00228", {"colour", "b"}), "Mirel.IA.Mirel71.00228 (colour, b)");
  EXPECT_EQ(service->formattedText("Mirel.IA.Mirel71.00228", {}), "Mirel.IA.Mirel71.00228");
  try {
    service->showMessage("Choose a warehouse.", 48);
    FAIL() << "a message that nobody sees must not pass for shown";
  } catch (const AutomationError& error) {
    EXPECT_TRUE(error.description().ends_with(": Choose a warehouse.")) << error.description();
  }
}

TEST_F(PlatformAdapterTest, NamesComeFromThePlatform) {
  EXPECT_EQ(platform.namingNumber(), "77");
  const auto names = platform.createUniqueNameSource();
  EXPECT_EQ(names->next(), "u1");
  EXPECT_EQ(names->next(), "u2");
  EXPECT_EQ(calls(), (Calls{"new OrvPlatform.Naming", "Naming.Number", "new OrvPlatform.UniqueName",
                            "UniqueName.UniqueName", "UniqueName.UniqueName"}));
}

TEST_F(PlatformAdapterTest, WithoutANamingClassNamesAreUniqueAndFitIntoBrackets) {
  fake.withoutNaming();
  const auto names = platform.createUniqueNameSource();
  std::set<std::string> seen;
  constexpr std::size_t many = 1000;
  for (std::size_t i = 0; i < many; ++i) {
    const std::string part = names->next();
    EXPECT_EQ(part.size(), 32U);
    EXPECT_EQ(part.find_first_not_of("0123456789abcdef"), std::string::npos) << part;
    seen.insert(part);
  }
  EXPECT_EQ(seen.size(), many);
  const std::string number = platform.namingNumber();
  EXPECT_FALSE(number.empty());
  EXPECT_EQ(number.find_first_not_of("0123456789"), std::string::npos) << number;
  EXPECT_NE(platform.namingNumber(), number);
}

TEST_F(PlatformAdapterTest, TheDrillThroughHelper) {
  const auto helper = platform.createDrillThroughHelper();
  const auto login = LateBoundReportArgument(fake.argument({})).login();
  calls();
  EXPECT_TRUE(helper->filterFor(login.get(), true));
  EXPECT_EQ(calls(), Calls{"DrillThrough.GetFilter(<Login>, True)"});
  EXPECT_TRUE(helper->filterFor(nullptr, false));
  EXPECT_EQ(calls(), Calls{"DrillThrough.GetFilter(Nothing, False)"});
}

TEST_F(PlatformAdapterTest, ALackingMemberIsNamed) {
  LateBoundReportArgument e(makeObject<FakeObject>(recorder, "e"));
  try {
    e.rawFilter();
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(error.description(), "e.rawFilter: The object has no member of this name.");
  }
}

}  // namespace
}  // namespace quillon::component::test
