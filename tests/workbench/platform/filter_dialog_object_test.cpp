#include "workbench/platform/filter_dialog_object.h"

#include <gmock/gmock.h>

#include <functional>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"

namespace quillon::workbench {
namespace {

std::vector<std::pair<std::string, std::string>> codesAndNames(const std::vector<Choice>& choices) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const Choice& choice : choices) {
    EXPECT_EQ(choice.chinese, choice.english);
    pairs.emplace_back(choice.code, choice.chinese);
  }
  return pairs;
}

AutomationError errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const AutomationError& error) {
    return error;
  }
  ADD_FAILURE() << "nothing was refused";
  return {0, "", ""};
}

TEST(DialogChoices, OfAListAreItsCodes) {
  EXPECT_THAT(codesAndNames(choicesOfList("2022,2023")),
              testing::ElementsAre(std::pair("2022", ""), std::pair("2023", "")));
}

// A year in which cost items have not begun leaves a bare comma behind.
TEST(DialogChoices, OfAListLeaveEmptyPartsOut) {
  EXPECT_THAT(codesAndNames(choicesOfList("2022,,2023,")),
              testing::ElementsAre(std::pair("2022", ""), std::pair("2023", "")));
  EXPECT_THAT(choicesOfList(""), testing::IsEmpty());
}

TEST(DialogChoices, OfAnEnumerationAreItsCodesWithNames) {
  EXPECT_THAT(codesAndNames(choicesOfEnumeration("01{#}02{##}甲{#}乙")),
              testing::ElementsAre(std::pair("01", "甲"), std::pair("02", "乙")));
  EXPECT_THAT(codesAndNames(choicesOfEnumeration("1{##}1")), testing::ElementsAre(std::pair("1", "1")));
  EXPECT_THAT(codesAndNames(choicesOfEnumeration("01{#}02{##}{#}乙")),
              testing::ElementsAre(std::pair("01", ""), std::pair("02", "乙")));
}

TEST(DialogChoices, OfAnEmptyEnumerationAreNone) {
  EXPECT_THAT(choicesOfEnumeration("{##}"), testing::IsEmpty());
}

TEST(DialogChoices, OfWhatIsNoEnumerationAreRefused) {
  for (const char* text : {"", "01{#}02", "01{#}02{##}A", "01{##}A{#}B", "01{##}A{##}B"}) {
    const AutomationError error = errorOf([text] { choicesOfEnumeration(text); });
    EXPECT_EQ(error.code(), hresult::invalidArgument);
    EXPECT_EQ(error.description(), std::string("\"") + text +
                                       "\" is no enumeration: it must be codes separated by {#}, then {##}, then as "
                                       "many names separated by {#}.");
  }
}

ReportRegistration someItems() {
  ReportRegistration report;
  report.identifier = "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE";
  report.items = {{.key = "iYear", .chinese = "会计年度", .english = "Year", .kind = InputKind::choice},
                  {.key = "iGrade", .chinese = "分类级次", .english = "Class grade", .defaultValue = "1"},
                  {.key = "cInvCode", .chinese = "存货", .english = "Inventory", .kind = InputKind::reference}};
  return report;
}

class FilterDialogObjectTest : public testing::Test {
 protected:
  void SetUp() override {
    tsql::Connection::open(file_.path(), tsql::OpenMode::createNew)
        ->execute(
            "Create Table Kinds (cCode nvarchar(10), cName nvarchar(20)); Insert Into Kinds Values (N'05', N'委托'); "
            "Insert Into Kinds Values (N'06', Null)");
    connection_->setConnectionString(connectionString(file_.path()));
    connection_->open("", "", optionsUnspecified);
  }

  FilterDialogObject dialogIn(const std::string& languageRegion) {
    return {filter_, std::make_shared<WorkbenchLogin>(LoginDetails{.languageRegion = languageRegion}), connection_};
  }

  test::TemporaryFile file_{".qacc"};
  std::shared_ptr<AccountSession> connection_ = std::make_shared<AccountSession>();
  std::shared_ptr<FilterObject> filter_ = std::make_shared<FilterObject>(someItems(), InitialValues::none);
  FilterDialogObject dialog_ = dialogIn("zh-CN");
};

TEST_F(FilterDialogObjectTest, GivesItemsByPositionAndByKeyInAnyLetterCase) {
  EXPECT_EQ(dialog_.count(), 3);
  EXPECT_EQ(dialog_.item(1)->name(), "iYear");
  EXPECT_EQ(dialog_.item(3)->name(), "cInvCode");
  EXPECT_EQ(dialog_.item("IGRADE")->name(), "iGrade");
  EXPECT_EQ(dialog_.identifier(), "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE");
  EXPECT_EQ(&dialog_.connection(), connection_.get());
}

TEST_F(FilterDialogObjectTest, CaptionsComeInTheLoginsLanguage) {
  EXPECT_EQ(dialog_.item("iYear")->caption(), "会计年度");
  EXPECT_EQ(dialogIn("en-US").item("iYear")->caption(), "Year");
}

TEST_F(FilterDialogObjectTest, ValuesAreThoseThatTheReportReads) {
  dialog_.item("cInvCode")->setValue("0101");
  EXPECT_EQ(filter_->item("cInvCode")->value(), "0101");
  EXPECT_EQ(dialog_.item("cInvCode")->value(), "0101");
  dialog_.item("iGrade")->setBounds("1", "2");
  EXPECT_EQ(filter_->item("iGrade")->value(), "1");
  EXPECT_EQ(filter_->item("iGrade")->value2(), "2");
}

TEST_F(FilterDialogObjectTest, AnItemWithoutInitialValueIsEmptyWhateverItsDefault) {
  EXPECT_EQ(dialog_.item("iGrade")->value(), "");
  EXPECT_EQ(FilterObject(someItems()).item("iGrade")->value(), "1");
}

TEST_F(FilterDialogObjectTest, ListTextAndEnumerationBecomeChoices) {
  dialog_.item("iYear")->setListText("2023,2024");
  EXPECT_THAT(codesAndNames(filter_->entry("iYear")->item.choices),
              testing::ElementsAre(std::pair("2023", ""), std::pair("2024", "")));
  dialog_.setEnumeration("iGrade", "1{#}2{##}一{#}二");
  EXPECT_THAT(codesAndNames(filter_->entry("iGrade")->item.choices),
              testing::ElementsAre(std::pair("1", "一"), std::pair("2", "二")));
}

TEST_F(FilterDialogObjectTest, AListSourceIsAListOrAStatement) {
  dialog_.item("cInvCode")->setListSource("领料,调拨出库");
  EXPECT_THAT(codesAndNames(filter_->entry("cInvCode")->item.choices),
              testing::ElementsAre(std::pair("领料", ""), std::pair("调拨出库", "")));
  dialog_.item("cInvCode")->setListSource("select cCode As [编码], cName As [名称] from Kinds Order By [编码]");
  EXPECT_THAT(codesAndNames(filter_->entry("cInvCode")->item.choices),
              testing::ElementsAre(std::pair("05", "委托"), std::pair("06", "")));
  dialog_.item("cInvCode")->setListSource(" Select cCode From Kinds Where cCode = N'06'");
  EXPECT_THAT(codesAndNames(filter_->entry("cInvCode")->item.choices), testing::ElementsAre(std::pair("06", "")));
}

TEST_F(FilterDialogObjectTest, AListSourceThatFailsIsAnErrorOfTheAccount) {
  EXPECT_EQ(errorOf([&] { dialog_.item("cInvCode")->setListSource("select x from NoTable"); }).source(),
            "Quillon account");
}

TEST_F(FilterDialogObjectTest, ItemsAreAvailableUntilTheDialogSaysOtherwise) {
  EXPECT_TRUE(filter_->entry("iGrade")->available);
  dialog_.setUnavailable("iGrade", true);
  EXPECT_FALSE(filter_->entry("iGrade")->available);
  dialog_.setUnavailable("igrade", false);
  EXPECT_TRUE(filter_->entry("iGrade")->available);
}

TEST_F(FilterDialogObjectTest, LookupConditionsAreKeptAsTheyCome) {
  dialog_.setLookupCondition("cInvCode", "", "#FN[cInvCCode] Like '0'1%'");
  EXPECT_EQ(filter_->entry("cInvCode")->lookupCondition, "#FN[cInvCCode] Like '0'1%'");
  dialog_.setLookupConditionOfValue("cInvCode", " #FN[cInvCCode]='01'", false);
  EXPECT_EQ(filter_->entry("cInvCode")->lookupCondition, " #FN[cInvCCode]='01'");
  dialog_.setLookupConditionOfValue("cInvCode", " #FN[cInvCCode]=''", true);
  EXPECT_EQ(filter_->entry("cInvCode")->lookupCondition, "");
}

TEST_F(FilterDialogObjectTest, AnItemThatIsNotThereIsABadIndex) {
  const std::vector<std::function<void()>> actions = {
      [&] { dialog_.item("cNothing"); },
      [&] { dialog_.setUnavailable("cNothing", true); },
      [&] { dialog_.setEnumeration("cNothing", "1{##}1"); },
      [&] { dialog_.setLookupCondition("cNothing", "", "x"); },
      [&] { dialog_.setLookupConditionOfValue("cNothing", "x", false); },
  };
  for (const auto& action : actions) {
    const AutomationError error = errorOf(action);
    EXPECT_EQ(static_cast<std::uint32_t>(error.code()), 0x8002000BU);
    EXPECT_EQ(error.description(), "The filter has no item \"cNothing\".");
  }
  EXPECT_EQ(errorOf([&] { dialog_.item(4); }).description(), "The filter has no item number 4.");
}

TEST(WorkbenchLogin, KeepsTheRightsThatADialogAsksFor) {
  WorkbenchLogin login({});
  EXPECT_EQ(login.authString(), "");
  login.setAuthString("department=False,inventory=False,warehouse=False");
  EXPECT_EQ(login.authString(), "department=False,inventory=False,warehouse=False");
}

}  // namespace
}  // namespace quillon::workbench
