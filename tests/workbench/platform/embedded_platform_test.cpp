#include "workbench/platform/embedded_platform.h"

#include <gmock/gmock.h>

#include <set>
#include <stdexcept>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"

namespace quillon::workbench {
namespace {

// An account with the tables that the components read, and the options that a test writes.
class EmbeddedPlatformTest : public testing::Test {
 protected:
  void SetUp() override {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account->execute(
        "Create Table AccInformation (cSysID nvarchar(10), cID nvarchar(10), cName nvarchar(60), "
        "cValue nvarchar(255))");
    account->execute("Create Table IA_PeriodState (iYear int, iMonth int, bSettled bit)");
    account->execute(
        "Create Table AA_Enum (EnumType nvarchar(60), EnumCode nvarchar(60), LocaleId nvarchar(10), "
        "EnumName nvarchar(120))");
    account->execute(
        "Create Table orvsystem..UA_Period (cAcc_Id nvarchar(10), iYear int, iId int, dBegin datetime, "
        "dEnd datetime)");
    account->execute(
        "Insert Into orvsystem..UA_Period Values "
        "(N'007', 2022, 12, '2022-12-01', '2022-12-31'), "
        "(N'007', 2023, 11, '2023-11-01', '2023-11-30'), (N'007', 2023, 12, '2023-12-01', '2023-12-31'), "
        "(N'007', 9999, 1, '9999-01-01', '9999-12-31')");
    session_.setConnectionString(connectionString(file_.path()));
    session_.open("", "", optionsUnspecified);
  }

  void option(const std::string& system, const std::string& id, const std::string& name, const std::string& value) {
    session_.execute("Insert Into AccInformation Values (N'" + system + "', N'" + id + "', N'" + name + "', N'" +
                     value + "')");
  }

  LoginDetails login(const std::string& year = "", const std::string& date = "") {
    return accountLogin(session_, AccountSource("x"), Language::chinese, year, date);
  }

  test::TemporaryFile file_{".qacc"};
  AccountSession session_;
  AccountPublicComponent component_;
};

TEST_F(EmbeddedPlatformTest, AnswersOptionsOfTheAccount) {
  option("IA", "1", "cValueStyle", "按仓库核算");
  option("AA", "1", "cValueStyle", "another system");
  EXPECT_EQ(component_.accountInformation("IA", "cValueStyle", session_), "按仓库核算");
  EXPECT_EQ(component_.accountInformation("ia", "CVALUESTYLE", session_), "按仓库核算");
  EXPECT_EQ(component_.accountInformation("IA", "cNothing", session_), "");
  EXPECT_EQ(component_.accountInformation("IA", "c'Quote", session_), "");
}

TEST_F(EmbeddedPlatformTest, TakesTheCurrentYearFromTheFirstUnsettledMonth) {
  session_.execute("Insert Into IA_PeriodState Values (2022, 0, 0), (2022, 11, 1), (2022, 12, 0), (2023, 1, 0)");
  EXPECT_EQ(component_.currentPeriodYear(session_), 2022);
  session_.execute("Update IA_PeriodState Set bSettled = 1 Where iYear = 2022 And iMonth > 0");
  EXPECT_EQ(component_.currentPeriodYear(session_), 2023) << "month 0 is no month";
}

TEST_F(EmbeddedPlatformTest, TakesTheLastYearWhenAllIsSettled) {
  EXPECT_EQ(component_.currentPeriodYear(session_), 2023);
}

TEST_F(EmbeddedPlatformTest, TakesTheCostItemStartFromItsOption) {
  EXPECT_EQ(component_.costItemStartMonth("2023", session_), 0) << "no option, no cost items";
  option("CA", "11002", "iStartPeriod", "202204");
  EXPECT_EQ(component_.costItemStartMonth("2021", session_), 0);
  EXPECT_EQ(component_.costItemStartMonth("2022", session_), 4);
  EXPECT_EQ(component_.costItemStartMonth("2023", session_), 1);
}

TEST_F(EmbeddedPlatformTest, TakesTheStateOfMonthsAndOpenings) {
  session_.execute("Insert Into IA_PeriodState Values (2022, 0, 1), (2022, 11, 1), (2022, 12, 0), (2023, 0, 0)");
  EXPECT_TRUE(component_.periodSettled({.year = 2022, .month = 11}, session_));
  EXPECT_FALSE(component_.periodSettled({.year = 2022, .month = 12}, session_));
  EXPECT_FALSE(component_.periodSettled({.year = 2022, .month = 10}, session_)) << "there is no such month";
  EXPECT_TRUE(component_.costItemOpeningsFinished(2022, session_));
  EXPECT_FALSE(component_.costItemOpeningsFinished(2023, session_));
  EXPECT_FALSE(component_.costItemOpeningsFinished(2024, session_)) << "there is no such year";
}

TEST_F(EmbeddedPlatformTest, TakesTheStartOfTheModuleFromItsOption) {
  option("IA", "1", "dIAStartDate", "2022-11-01");
  const AccountingPeriod start = component_.moduleStart("IA", session_);
  EXPECT_EQ(start.year, 2022);
  EXPECT_EQ(start.month, 11);
  option("CA", "1", "dCAStartDate", "soon");
  for (const char* system : {"CA", "GL"}) {
    EXPECT_THROW(component_.moduleStart(system, session_), AutomationError) << system;
  }
}

TEST_F(EmbeddedPlatformTest, TurnsPeriodsIntoDates) {
  const PeriodDates dates = component_.datesOfPeriod("007", {.year = 2023, .month = 11}, session_);
  EXPECT_EQ(dates.begin, "2023-11-01");
  EXPECT_EQ(dates.end, "2023-11-30");
  try {
    component_.datesOfPeriod("007", {.year = 2023, .month = 1}, session_);
    ADD_FAILURE() << "nothing was refused";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.description(), "The account 007 has no period 1 in 2023.");
  }
}

TEST_F(EmbeddedPlatformTest, TurnsDatesIntoPeriods) {
  // A year that does not follow the calendar.
  session_.execute("Insert Into orvsystem..UA_Period Values (N'007', 2024, 1, '2024-01-15', '2024-02-14')");
  const auto period = [this](const char* date) {
    const AccountingPeriod found = component_.periodOfDate(date, session_);
    return std::to_string(found.year) + "." + std::to_string(found.month);
  };
  EXPECT_EQ(period("2023-11-01"), "2023.11");
  EXPECT_EQ(period("2023-11-30"), "2023.11");
  EXPECT_EQ(period("2024-01-15"), "2024.1");
  EXPECT_EQ(period("2024-02-14"), "2024.1");
  EXPECT_EQ(period("2019-06-30"), "2019.6") << "before the account's years";
  EXPECT_EQ(period("2025-08-01"), "2025.8") << "after them";
}

TEST_F(EmbeddedPlatformTest, NamesItsWorkstationForTableNames) {
  EXPECT_EQ(component_.workstationName(), "Workbench");
}

TEST_F(EmbeddedPlatformTest, LogsInToTheCurrentYear) {
  const LoginDetails details = login();
  EXPECT_EQ(details.accountConnection, "Data Source=\"x\"");
  EXPECT_EQ(details.password, "");
  EXPECT_EQ(details.accountCode, "007");
  EXPECT_EQ(details.accountingYear, "2023");
  EXPECT_EQ(details.currentPeriodYear, 2023);
  EXPECT_EQ(details.businessDate, "2023-12-31");
  EXPECT_EQ(details.languageRegion, "zh-CN");
  EXPECT_EQ(details.languageId, "2052");
}

TEST_F(EmbeddedPlatformTest, LogsInToAnotherYearAndDate) {
  EXPECT_EQ(login("2022").accountingYear, "2022");
  EXPECT_EQ(login("2022").businessDate, "2022-12-31");
  EXPECT_EQ(login("", "2023-06-30").businessDate, "2023-06-30");
  EXPECT_EQ(accountLogin(session_, AccountSource("x"), Language::english, "", "").languageRegion, "en-US");
}

TEST_F(EmbeddedPlatformTest, RefusesAYearThatTheAccountDoesNotHave) {
  try {
    login("2019");
    FAIL();
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "the account has no year \"2019\"; its years are 2022 to 2023");
  }
  session_.execute("Delete orvsystem..UA_Period");
  EXPECT_THROW(login(), AutomationError);
}

TEST_F(EmbeddedPlatformTest, NamesEnumerationsInItsLanguage) {
  session_.execute(
      "Insert Into AA_Enum Values (N'IA.Bustype', N'调拨出库', N'zh-CN', N'调拨出库'), "
      "(N'IA.Bustype', N'调拨出库', N'en-US', N'Transfer out')");
  EmbeddedPlatform english({.account = AccountSource::inFile(file_.path()), .language = Language::english});
  const auto resources = english.createResourceService();
  EXPECT_EQ(resources->enumName("IA.Bustype", "调拨出库"), "Transfer out");
  EXPECT_EQ(resources->enumName("IA.Bustype", "无"), "无") << "a code without a name is shown itself";
  EXPECT_EQ(resources->text("Mirel.IA.Mirel71.00269"), "Receipt");
}

TEST_F(EmbeddedPlatformTest, PassesMessagesOn) {
  std::string shown;
  EmbeddedPlatform platform({.messages = [&shown](std::string_view text, int flags) {
    shown = std::string(text) + " " + std::to_string(flags);
  }});
  platform.createResourceService()->showMessage("注意", 48);
  EXPECT_EQ(shown, "注意 48");
  EmbeddedPlatform silent({});
  EXPECT_NO_THROW(silent.createResourceService()->showMessage("nobody listens", 48));
}

TEST_F(EmbeddedPlatformTest, PutsArgumentsIntoTheirPlaces) {
  const auto chinese = EmbeddedPlatform({}).createResourceService();
  EXPECT_EQ(chinese->formattedText("Mirel.IA.Mirel71.00228", {"自由项1"}), "自由项1不能为空");
  const auto english = EmbeddedPlatform({.language = Language::english}).createResourceService();
  EXPECT_EQ(english->formattedText("Mirel.IA.Mirel71.00228", {"Free item 1"}), "Free item 1 must be given");
  EXPECT_EQ(english->formattedText("Mirel.IA.Mirel71.00217", {"unused"}), english->text("Mirel.IA.Mirel71.00217"));
}

TEST(WorkTables, AreNumberedAnew) {
  EmbeddedPlatform platform({});
  const std::int32_t first = platform.workTableNumber();
  EXPECT_NE(platform.workTableNumber(), first);
}

TEST(UniqueNames, AreNeverTheSame) {
  std::set<std::string> seen;
  constexpr int count = 1000;
  EmbeddedPlatform one({});
  EmbeddedPlatform other({});
  const auto names = one.createUniqueNameSource();
  const auto otherNames = other.createUniqueNameSource();
  for (int i = 0; i < count; ++i) {
    seen.insert(names->next());
    seen.insert(otherNames->next());
  }
  EXPECT_EQ(seen.size(), 2U * count);
}

// The parts stand unquoted in statement texts and inside square brackets; with prefix and suffix the name must stay
// within SQL Server's 128 characters.
TEST(UniqueNames, AreValidInTableNames) {
  const std::string allowed = "0123456789abcdefghijklmnopqrstuvwxyz";
  EXPECT_EQ(uniqueNamePart().find_first_not_of(allowed), std::string::npos);
  EmbeddedPlatform platform({});
  const std::string number = platform.namingNumber();
  EXPECT_EQ(number.find_first_not_of("0123456789"), std::string::npos);
  EXPECT_LE((number + uniqueNamePart() + "IA_SFC_IX_GroupIndex").size(), 128U);
}

TEST(WorkbenchArgument, HandsOutWhatItWasGiven) {
  const auto login = std::make_shared<WorkbenchLogin>(
      LoginDetails{.accountCode = "007", .accountingYear = "2024", .languageRegion = "en-US", .languageId = "1033"});
  WorkbenchArgument argument(nullptr, login, "Result1", "Link");
  EXPECT_EQ(argument.login()->accountCode(), "007");
  EXPECT_EQ(argument.filterLogin()->accountingYearText(), "2024");
  EXPECT_EQ(argument.action(), "Link");
  EXPECT_EQ(argument.languageId(), "en-US") << "as accounts name their languages";
  const auto source = argument.dataSource();
  source->setType(2);
  EXPECT_EQ(source->resultTable(), "Result1");
  EXPECT_EQ(argument.dataSourceState().type, 2) << "what the report writes stays with the argument";
  source->setResultTable("Result2");
  EXPECT_EQ(argument.dataSourceState().resultTable, "Result2");
  EXPECT_THROW(argument.row(), AutomationError) << "nobody acted on a row";
}

TEST(WorkbenchArgument, HandsOutTheRowOfADrillThrough) {
  const auto login = std::make_shared<WorkbenchLogin>(LoginDetails{});
  WorkbenchArgument argument(login, {{"id", "17"}, {"cVouType", "材料出库单"}}, "Vouch");
  EXPECT_EQ(argument.action(), "Vouch");
  EXPECT_EQ(argument.row()->value("ID"), "17") << "columns are found in any letter case";
  EXPECT_EQ(argument.row()->value("cVouType"), "材料出库单");
  EXPECT_EQ(argument.row()->value("cPZID"), "") << "a column that the report does not have is empty";
  EXPECT_EQ(login->moduleCode(), "IA");
}

TEST(WorkbenchArgument, GivesTheNumberOfALedgerLineAsTheRowsId) {
  const auto login = std::make_shared<WorkbenchLogin>(LoginDetails{});
  EXPECT_EQ(WorkbenchArgument(login, {{"AutoID", "815"}}, "Vouch").row()->value("ID"), "815");
  EXPECT_EQ(WorkbenchArgument(login, {{"AutoID", "815"}, {"id", ""}}, "Vouch").row()->value("ID"), "");
  EXPECT_EQ(WorkbenchArgument(login, {{"AutoID", "815"}}, "Vouch").row()->value("RowNo"), "");
}

}  // namespace
}  // namespace quillon::workbench
