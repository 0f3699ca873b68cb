#include "workbench/com/exposed_platform.h"

#include <functional>
#include <vector>

#include "automation/class_lookup.h"
#include "component/platform_bindings.h"
#include "tests/workbench/com/ado_fixture.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/com/argument_object.h"
#include "workbench/com/filter_objects.h"
#include "workbench/com/login_object.h"

namespace quillon::workbench {
namespace {

using automation::LateBound;
using automation::Variant;
namespace bindings = component::bindings;

constexpr HResult badIndex = static_cast<HResult>(0x8002000BU);

class ExposedPlatformTest : public test::AdoTest {
 protected:
  static LoginDetails details() {
    return {.accountConnection = "Data Source=\"a.account\"",
            .password = "secret",
            .accountCode = "001",
            .accountingYear = "2024",
            .languageRegion = "zh-CN",
            .languageId = "2052",
            .currentPeriodYear = 2025,
            .businessDate = "2024-03-31"};
  }
  EmbeddedPlatformOptions options() const {
    EmbeddedPlatformOptions result;
    result.account = AccountSource::inFile(file_);
    return result;
  }
  LateBound argument() {
    filter_ = std::make_shared<FilterObject>(reportNamed("sfc-item").registration);
    data_ = std::make_shared<WorkbenchArgument>(filter_, std::make_shared<WorkbenchLogin>(details()), "Result", "Link");
    return {argumentObject(data_), "e"};
  }

  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<WorkbenchArgument> data_;
};

TEST_F(ExposedPlatformTest, TheArgumentGivesItsParts) {
  const LateBound e = argument();
  EXPECT_EQ(e.text(L"Action"), "Link");
  e.put(L"Action", "Vouch");
  EXPECT_EQ(e.text(L"Action"), "Vouch");
  EXPECT_EQ(e.text(L"LangID"), "zh-CN");
  EXPECT_EQ(e.object(L"LoginObj", "LoginObj").text(L"OrvDbName"), "Data Source=\"a.account\"");
  const LateBound source = e.object(L"DataSource", "DataSource");
  EXPECT_EQ(source.text(L"SQL"), "Result");
  source.put(L"Type", 2);
  EXPECT_EQ(data_->dataSourceState().type, 2);
  EXPECT_EQ(source.integer(L"Type"), 2);
}

TEST_F(ExposedPlatformTest, TheLoginsMembersAreTheLoginsDetails) {
  const LateBound login = argument().object(L"Login", "Login");
  EXPECT_EQ(login.text(L"SysPassword"), "secret");
  EXPECT_EQ(login.text(L"cAcc_Id"), "001");
  EXPECT_EQ(login.get(L"iYear").vt, VT_I4);
  EXPECT_EQ(login.integer(L"iYear"), 2024);
  EXPECT_EQ(login.get(L"cIYear").vt, VT_BSTR);
  EXPECT_EQ(login.text(L"cIYear"), "2024");
  EXPECT_EQ(login.text(L"LanguageRegion"), "zh-CN");
  EXPECT_EQ(login.integer(L"LangID"), 2052);
  EXPECT_EQ(login.integer(L"CurPeriodYear"), 2025);
  EXPECT_EQ(login.text(bindings::login::businessDate), "2024-03-31");
  login.put(L"AuthString", "rights");
  EXPECT_EQ(argument().object(L"Login", "Login").text(L"AuthString"), "");
  EXPECT_EQ(login.text(L"AuthString"), "rights");
}

TEST_F(ExposedPlatformTest, FilterItemsAreFoundByKeyInAnyCaseAndByPositionFromOne) {
  const LateBound filter = argument().object(L"rawFilter", "rawFilter");
  const LateBound list = filter.object(L"FilterList", "FilterList");
  EXPECT_EQ(list.integer(L"Count"), filter_->count());
  EXPECT_EQ(list.item(1, "item").text(L"Name"), filter_->entries().front()->item.key);
  EXPECT_EQ(list.item(filter_->count(), "item").text(L"Name"), filter_->entries().back()->item.key);
  EXPECT_EQ(list.item("CINVCODE", "item").text(L"Name"), "cInvCode");
  // FilterList("iYear"), as Basic passes the argument on to the property.
  EXPECT_EQ(filter.object(L"FilterList", "item", {"iYear"}).text(L"Name"), "iYear");
  EXPECT_EQ(codeOf([&] { list.item(0, "item"); }), badIndex);
  EXPECT_EQ(codeOf([&] { list.item(filter_->count() + 1, "item"); }), badIndex);
  EXPECT_EQ(codeOf([&] { list.item("none", "item"); }), badIndex);
}

TEST_F(ExposedPlatformTest, AnItemIsWrittenAndReadThroughItsMembers) {
  const LateBound item = argument().object(L"rawFilter", "f").object(L"FilterList", "item", {"dKeepDate"});
  item.put(L"varValue", "2024-01-01");
  item.put(L"varValue2", "2024-03-31");
  item.put(L"LngGrouptoken", 1);
  const FilterEntry& entry = *filter_->find("dKeepDate");
  EXPECT_EQ(entry.value, "2024-01-01");
  EXPECT_EQ(entry.value2, "2024-03-31");
  EXPECT_EQ(entry.token, 1);
  EXPECT_EQ(automation::toText(item.getById(DISPID_VALUE, L"varValue")), "2024-01-01");
  EXPECT_TRUE(item.flag(L"RangeInput"));
  EXPECT_FALSE(item.flag(L"IsMultSel"));
}

TEST_F(ExposedPlatformTest, AssigningToAnItemOfTheListSetsItsValue) {
  const LateBound filter = argument().object(L"rawFilter", "f");
  const auto assign = [](const LateBound& target, DISPID id, Variant index, Variant value) {
    VARIANT arguments[] = {value, index};  // borrowed, last to first
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{arguments, &put, 2, 1};
    return target.get()->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr,
                                nullptr);
  };
  std::wstring name = bindings::filter::filterList;
  LPOLESTR names[] = {name.data()};
  DISPID filterList = DISPID_UNKNOWN;
  ASSERT_EQ(filter.get()->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &filterList), S_OK);
  // FilterList("cModal") = 2 and, on the list itself, list("iYear") = "2023".
  EXPECT_EQ(assign(filter, filterList, "cModal", 2), S_OK);
  EXPECT_EQ(assign(filter.object(L"FilterList", "list"), DISPID_VALUE, "iYear", "2023"), S_OK);
  EXPECT_EQ(filter_->find("cModal")->value, "2");
  EXPECT_EQ(filter_->find("iYear")->value, "2023");
  EXPECT_EQ(assign(filter, filterList, "none", 2), DISP_E_EXCEPTION);
}

TEST_F(ExposedPlatformTest, TheFilterMakesConditionsOfItsOwnItemsOnly) {
  const LateBound filter = argument().object(L"rawFilter", "f");
  for (const auto& entry : filter_->entries())
    entry->token = tokenReport;
  const LateBound item = filter.object(L"FilterList", "item", {"cBatchIA"});
  item.put(L"varValue", "B'1");
  item.put(L"LngGrouptoken", 0);
  EXPECT_EQ(filter.text(L"GetWhereWithToken", {0}), "base.cBatchia = N'B''1'");
  item.put(L"strSqlString", "base.cBatchIA Like N'B%'");
  EXPECT_EQ(filter.text(L"GetWhereWithToken", {0}), "base.cBatchIA Like N'B%'");
}

TEST_F(ExposedPlatformTest, ThePublicComponentTakesItsConnectionInAnyPlace) {
  openConnection().call(
      L"Execute", {"Create Table AccInformation (cSysID nvarchar(10), cID nvarchar(20), cName nvarchar(60), cValue "
                   "nvarchar(255)) Insert Into AccInformation Values (N'IA', N'1', N'cValueStyle', N'按仓库核算') "
                   "Create Table IA_PeriodState (iYear int, iMonth int, bSettled bit) "
                   "Insert Into IA_PeriodState Values (2023, 12, 1) "
                   "Insert Into IA_PeriodState Values (2024, 1, 0) "
                   "Insert Into AccInformation Values (N'CA', N'11002', N'start', N'202403')"});
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound component = automation::createObject(bindings::publicComponent);
  const LateBound connection = openConnection();
  EXPECT_EQ(component.text(L"GetAccInformation", {"IA", "cValueStyle", connection.get()}), "按仓库核算");
  EXPECT_EQ(component.text(L"GetAccInformation", {connection.get(), "IA", "cValueStyle"}), "按仓库核算");
  EXPECT_EQ(component.integer(L"CurPeriodYear", {connection.get()}), 2024);
  EXPECT_EQ(component.integer(L"iFxStartMonth", {"2024", connection.get()}), 3);
  EXPECT_EQ(component.integer(L"iFxStartMonth", {connection.get(), "2024"}), 3);
  EXPECT_EQ(codeOf([&] { component.integer(L"CurPeriodYear", {"2024"}); }), hresult::invalidArgument);
  IDispatch* byReference = connection.get();
  EXPECT_EQ(component.integer(L"CurPeriodYear", {Variant::reference(byReference)}), 2024);
}

TEST_F(ExposedPlatformTest, UsedYearsComeAsADictionaryWithCountedKeys) {
  openConnection().call(L"Execute", {"Create Table orvsystem..UA_Period (cAcc_Id nvarchar(3), iYear int, iId int) "
                                     "Insert Into orvsystem..UA_Period Values (N'001', 2024, 1) "
                                     "Insert Into orvsystem..UA_Period Values (N'001', 2023, 1) "
                                     "Insert Into orvsystem..UA_Period Values (N'002', 2022, 1)"});
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound connection = openConnection();
  const LateBound years =
      automation::createObject(bindings::publicComponent).object(L"GetIAUsedYears", "years", {"001", connection.get()});
  EXPECT_EQ(years.integer(L"Count"), 2);
  EXPECT_EQ(automation::toText(years.getById(DISPID_VALUE, L"Item", {"1"})), "2023");
  EXPECT_EQ(automation::toText(years.getById(DISPID_VALUE, L"Item", {"2"})), "2024");
  EXPECT_EQ(years.getById(DISPID_VALUE, L"Item", {"3"}).vt, VT_EMPTY);
}

TEST_F(ExposedPlatformTest, TheResourceServiceIsADualInterface) {
  EmbeddedPlatformOptions english = options();
  english.language = Language::english;
  EmbeddedPlatform platform(english);
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound service = automation::createObject(bindings::resourceService);
  automation::ComPtr<bindings::IResourceService> early;
  ASSERT_EQ(service.get()->QueryInterface(bindings::resourceServiceId, reinterpret_cast<void**>(early.out())), S_OK);
  const automation::Bstr key("Mirel.IA.CHHSSQL.00182");
  automation::Bstr text;
  ASSERT_EQ(early->Text(key.get(), text.out()), S_OK);
  EXPECT_EQ(text.utf8(), platform.createResourceService()->text("Mirel.IA.CHHSSQL.00182"));
  EXPECT_NE(text.utf8(), "Mirel.IA.CHHSSQL.00182");
  EXPECT_EQ(service.text(L"Text", {"Mirel.IA.CHHSSQL.00182"}), text.utf8());
  EXPECT_EQ(early->Text(key.get(), nullptr), E_POINTER);

  // FormatText: a key gives its text as Text does, a login changes the language.
  const Variant keyValue("Mirel.IA.CHHSSQL.00182");
  automation::Bstr formatted;
  ASSERT_EQ(early->FormatText(keyValue, Variant::missing(), formatted.out()), S_OK);
  EXPECT_EQ(formatted.utf8(), text.utf8());
  const Variant login(loginObject(std::make_shared<WorkbenchLogin>(details())));
  ASSERT_EQ(early->FormatText(login, Variant::missing(), formatted.out()), S_OK);
  EXPECT_EQ(formatted.utf8(), "");
  automation::Bstr chinese;
  ASSERT_EQ(early->Text(key.get(), chinese.out()), S_OK);
  EXPECT_NE(chinese.utf8(), text.utf8());
  EXPECT_EQ(early->FormatText(keyValue, Variant(1), formatted.out()), DISP_E_TYPEMISMATCH);
}

TEST_F(ExposedPlatformTest, MessagesGoToThePlatformsSink) {
  std::string shown;
  EmbeddedPlatformOptions listening = options();
  listening.messages = [&shown](std::string_view text, int flags) {
    shown = std::string(text) + "/" + std::to_string(flags);
  };
  EmbeddedPlatform platform(listening);
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound service = automation::createObject(bindings::resourceService);
  automation::ComPtr<bindings::IResourceService> early;
  ASSERT_EQ(service.get()->QueryInterface(bindings::resourceServiceId, reinterpret_cast<void**>(early.out())), S_OK);
  const automation::Bstr text("年度不能为空");
  EXPECT_EQ(early->ShowMessage(text.get(), 48, 0, 0), S_OK);
  EXPECT_EQ(shown, "年度不能为空/48");
}

TEST_F(ExposedPlatformTest, NamesDifferFromCallToCall) {
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound names = automation::createObject(bindings::uniqueNames);
  EXPECT_NE(names.text(bindings::uniqueName), names.text(bindings::uniqueName));
  const Variant number = automation::createObject(bindings::naming).getById(bindings::namingNumber, L"number");
  EXPECT_EQ(number.vt, VT_I4);
  EXPECT_GE(number.lVal, 0);
}

TEST_F(ExposedPlatformTest, TheDrillThroughHelperGivesAnEmptyFilter) {
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound login(loginObject(std::make_shared<WorkbenchLogin>(details())), "login");
  const LateBound filter =
      automation::createObject(bindings::drillThrough).object(bindings::filterForLogin, "filter", {login.get(), true});
  EXPECT_EQ(filter.object(L"FilterList", "list").integer(L"Count"), 0);
}

TEST_F(ExposedPlatformTest, NothingOfTheStandInsStaysBehind) {
  const long before = automation::LiveCount::value();
  {
    EmbeddedPlatform platform(options());
    const PlatformStandIn standIn(platform, nullptr);
    automation::createObject(bindings::naming);
    automation::createObject(bindings::uniqueNames);
    automation::createObject(bindings::drillThrough);
    automation::createObject(bindings::resourceService);
    automation::createObject(bindings::publicComponent);
  }
  EXPECT_EQ(automation::LiveCount::value(), before);
  EXPECT_FALSE(automation::tryCreateObject(bindings::uniqueNames));
}

TEST_F(ExposedPlatformTest, AnArgumentReleasesAllThatItGave) {
  const long before = automation::LiveCount::value();
  {
    const LateBound e = argument();
    const LateBound list = e.object(L"rawFilter", "f").object(L"FilterList", "list");
    list.item(1, "item").text(L"Name");
    e.object(L"DataSource", "d").text(L"SQL");
    e.object(L"Login", "l").text(L"cAcc_Id");
  }
  EXPECT_EQ(automation::LiveCount::value(), before);
}

// --- The filter in its dialog ---

TEST_F(ExposedPlatformTest, AFilterInADialogTakesWhatTheDialogMakesOfIt) {
  const auto filter = std::make_shared<FilterObject>(reportNamed("sfc-item").registration, InitialValues::none);
  const auto login = std::make_shared<WorkbenchLogin>(details());
  const auto session = std::make_shared<AccountSession>();
  session->setConnectionString(connectionString(file_));
  session->open("", "", optionsUnspecified);
  const LateBound dialog(dialogObject(std::make_shared<FilterDialogObject>(filter, login, session)), "dialog");
  const LateBound list = dialog.object(L"FilterList", "FilterList");
  const auto item = [&](const char* key) { return list.item(key, "item"); };

  EXPECT_EQ(dialog.text(L"FilterId"), "CA3BAD03-9D4C-463A-827E-E971D5A36C81");
  dialog.object(L"Login", "Login").put(L"AuthString", "department=False");
  EXPECT_EQ(login->authString(), "department=False");
  EXPECT_EQ(dialog.object(L"Login", "Login").text(L"AuthString"), "department=False");
  EXPECT_EQ(item("iYear").text(L"Caption"), filter->entry("iYear")->item.chinese);

  EXPECT_TRUE(item("cWhCode").flag(L"Available"));
  dialog.call(L"SetItemUnavailable", {"cWhCode", true});
  EXPECT_FALSE(item("cWhCode").flag(L"Available"));
  EXPECT_FALSE(filter->entry("cWhCode")->available);

  dialog.call(L"SetItemEnumeration", {"iGrade", "1{#}2{##}one{#}two"});
  EXPECT_EQ(item("iGrade").text(L"Choices"), "1{#}2{##}one{#}two");
  item("iYear").put(L"ListText", "2023,2024");
  EXPECT_EQ(item("iYear").text(L"Choices"), "2023{#}2024{##}{#}");
  item("cFSType").put(L"ListSource", "Select N'08', N'Other issue'");
  EXPECT_EQ(item("cFSType").text(L"Choices"), "08{##}Other issue");

  dialog.call(L"SetItemLookupCondition", {"cInvCode", "", "#FN[cInvCCode] Like '01%'"});
  EXPECT_EQ(item("cInvCode").text(L"LookupCondition"), "#FN[cInvCCode] Like '01%'");
  dialog.call(L"SetItemLookupConditionOfValue", {"cInvCode", "#FN[cInvCCode] Like N'02%'", false});
  EXPECT_EQ(item("cInvCode").text(L"LookupCondition"), "#FN[cInvCCode] Like N'02%'");
  dialog.call(L"SetItemLookupConditionOfValue", {"cInvCode", "#FN[cInvCCode] Like N'%'", true});
  EXPECT_EQ(item("cInvCode").text(L"LookupCondition"), "");

  const LateBound rows = dialog.object(L"DialogConnection", "connection").object(L"Execute", "rows", {"Select 1"});
  EXPECT_EQ(dialog.object(L"DialogConnection", "connection").integer(L"State"), 1);
  EXPECT_FALSE(rows.flag(L"EOF"));
}

TEST_F(ExposedPlatformTest, AFilterInNoDialogSaysSo) {
  const LateBound filter = argument().object(L"rawFilter", "rawFilter");
  EXPECT_EQ(filter.text(L"FilterId"), filter_->identifier());
  const LateBound item = filter.object(L"FilterList", "FilterList").item("iGrade", "item");
  EXPECT_EQ(item.text(L"LookupCondition"), "");
  for (const auto& action :
       std::vector<std::function<void()>>{[&] { filter.get(L"Login"); }, [&] { filter.get(L"DialogConnection"); },
                                          [&] {
                                            filter.call(L"SetItemUnavailable", {"iGrade", true});
                                          },
                                          [&] { item.get(L"Caption"); }, [&] { item.put(L"ListText", "1"); }}) {
    try {
      action();
      ADD_FAILURE() << "nothing was refused";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.description(),
                "This filter is not in a dialog: take the one of the argument that NewDialog makes.");
    }
  }
}

}  // namespace
}  // namespace quillon::workbench
