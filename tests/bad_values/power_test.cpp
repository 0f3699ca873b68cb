// How far a value gets that ends its text and goes on as a statement of its own: it can read what the account's connection
// can read, and changes nothing, neither in the account nor beyond its file.
#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "tests/bad_values/run.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::bad_values {
namespace {

ReportTester& tester() {
  static ReportTester shared;
  return shared;
}

// A file that a statement may try to write or read.
const std::filesystem::path& outsideFile() {
  static const std::filesystem::path file = std::filesystem::temp_directory_path() / "quillon-outside.db";
  return file;
}

std::vector<std::string> waysOut() {
  const std::string file = "'" + utf8FromPath(outsideFile()) + "'";
  return {// of the database that keeps the account
          "Attach Database " + file + " As other", "Attach " + file + " As other", "Detach Database temp",
          "Vacuum Into " + file, "Vacuum", "Reindex", "Analyze", "Pragma writable_schema = 1", "Pragma database_list",
          "Select load_extension(" + file + ")", "Select readfile(" + file + ")", "Select writefile(" + file + ", 'x')",
          "Select sqlite_version()", "Select * From sqlite_master", "Delete From sqlite_schema",
          "Select * From temp.sqlite_schema", "Select * From pragma_database_list", "Select * From main.Inventory",
          "Drop Table sqlite_sequence", "Create Virtual Table v Using fts5(a)",
          "Create Trigger t After Delete On Inventory Begin Select 1; End", "Select * From tsql_objects",
          "Delete From tsql_objects", "Drop Table tsql_objects",
          // of SQL Server
          "Exec xp_cmdshell 'dir'", "Execute master..xp_regread 'x'", "Exec sp_configure 'show advanced options', 1",
          "Bulk Insert Inventory From " + file, "Backup Database account To Disk = " + file,
          "Restore Database account From Disk = " + file,
          "Create Database other On (Filename = " + file + ") For Attach",
          "Select * From OpenRowset(Bulk " + file + ", Single_Clob) x", "Select * From OpenQuery(other, 'Select 1')",
          "Use master", "Select * From master..sysobjects", "Select * From other..Inventory",
          "Select * From other.account.dbo.Inventory", "Grant Control To public", "Create Login x With Password = 'y'",
          "Shutdown", "Declare @x int", "While 1 = 1 Select 1", "Waitfor Delay '01:00:00'"};
}

struct Refused : tsql::ResultSink {
  void columns(std::span<const tsql::Column> /*columns*/) override {}
  void row(std::span<const tsql::Value> /*values*/) override {}
  void rowsAffected(std::int64_t /*count*/) override {}
};

TEST(PowerOfAValue, NoStatementLeavesTheAccountFile) {
  constexpr int refusedByStorage = 50000;
  std::filesystem::remove(outsideFile());
  const auto account = tester().open();
  for (const std::string& statement : waysOut()) {
    SCOPED_TRACE(statement);
    Refused sink;
    try {
      account->run(statement, sink);
      ADD_FAILURE() << "it ran";
    } catch (const tsql::SqlError& error) {
      EXPECT_NE(error.number(), refusedByStorage) << error.message();
      EXPECT_FALSE(error.message().empty());
    }
    EXPECT_FALSE(std::filesystem::exists(outsideFile()));
  }
}

// Nor for a statement that gets past the T-SQL front end: the connection opens no other file.
TEST(PowerOfAValue, TheConnectionTakesNoOtherFile) {
  const workbench::AccountSource& source = tester().account().source();
  const auto account = tsql::Connection::openWithScratch(source.file(), source.scratch());
  const std::string attach = "ATTACH DATABASE ':memory:' AS other";
  EXPECT_NE(sqlite3_exec(account->handle(), attach.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
  const std::string into = "VACUUM INTO '" + utf8FromPath(outsideFile()) + "'";
  EXPECT_NE(sqlite3_exec(account->handle(), into.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_FALSE(std::filesystem::exists(outsideFile()));
}

TEST(PowerOfAValue, PastedStatementsLeaveTheAccountFileNeither) {
  const workbench::Report& report = workbench::reportNamed("fx-wt");
  const std::string usual = tester().run(report, {}).rows;
  const std::filesystem::path& file = outsideFile();
  const std::string out = "'" + utf8FromPath(file) + "'";
  for (const std::string& statement :
       {"Attach Database " + out + " As other", "Vacuum Into " + out, "Backup Database account To Disk = " + out,
        std::string("Exec xp_cmdshell 'dir'")}) {
    SCOPED_TRACE(statement);
    const ReportRun run = tester().run(report, {{"cVouCode", "x' " + statement + " --"}});
    EXPECT_EQ(run.failures.size(), 1U);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(tester().run(report, {}).rows, usual);
  }
}

constexpr int databaseIsReadOnly = 3906;

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// What a value looks like that ends the text it is pasted into, alone and inside of one or two brackets.
constexpr std::array pastedDeletions = {"x' Delete From Warehouse --", "x') Delete From Warehouse --",
                                        "x')) Delete From Warehouse --"};

// The items to try: all of them natively. Under Wine, of a report with many, one of each kind, because each run loads the
// library anew there, and a process cannot load it much more than a thousand times.
std::vector<std::string> triedItems(const workbench::Report& report) {
  std::vector<std::string> keys;
  [[maybe_unused]] std::vector<workbench::ItemRegistration> tried;
  for (const workbench::ItemRegistration& item : report.registration.items) {
#ifdef _WIN32
    const auto isAlike = [&item](const workbench::ItemRegistration& known) {
      return known.kind == item.kind && known.range == item.range && known.multiple == item.multiple;
    };
    constexpr std::size_t few = 20;
    if (report.registration.items.size() > few && std::ranges::any_of(tried, isAlike)) continue;
    tried.push_back(item);
#endif
    keys.push_back(item.key);
  }
  return keys;
}

class EveryItem : public testing::TestWithParam<std::string> {};

// In every item of the report. What comes of it is an error, or a condition that no row meets.
TEST_P(EveryItem, ChangesNothingInTheAccount) {
  const workbench::Report& report = workbench::reportNamed(GetParam());
  const std::filesystem::path file = tester().account().source().file();
  const std::string before = contentOf(file);
  int refused = 0, tried = 0;
  for (const std::string& key : triedItems(report)) {
    for (const char* const value : pastedDeletions) {
      SCOPED_TRACE(key + " " + value);
      const ReportRun run = tester().run(report, {{key, value}});
      ++tried;
      for (const workbench::StatementFailure& failure : run.failures) {
        if (failure.number != databaseIsReadOnly) continue;
        ++refused;
        EXPECT_THAT(failure.message,
                    testing::HasSubstr("A quote (') in a filter value ends the text that the value is pasted into"));
      }
    }
  }
  EXPECT_TRUE(contentOf(file) == before);
  // In the summaries more conditions stand on the lines behind: the whole batch is no statement then.
  const bool isSummary = report.dialog->name == "clsSFCFilterControl";
  EXPECT_EQ(refused > 0, !isSummary) << refused << " values came as far as the statement that they want to run";
  RecordProperty("tried", tried);
  RecordProperty("refused", refused);
}

INSTANTIATE_TEST_SUITE_P(OfReport, EveryItem, testing::Values("sfc-item", "outsum-item", "fx-detail", "fx-wt"),
                         [](const auto& report) {
                           std::string name = report.param;
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

// Likewise of each dialog.
TEST(PowerOfAValue, NoDialogChangesTheAccount) {
  const faults::TinyAccount& account = tester().account();
  const std::string before = contentOf(account.source().file());
  for (const workbench::Report& report : workbench::reports()) {
    SCOPED_TRACE(report.registration.name);
    workbench::EmbeddedPlatform platform({.account = account.source()});
    const auto filter = std::make_shared<workbench::FilterObject>(report.registration, workbench::InitialValues::none);
    const auto runner = workbench::makeDialogRunner(
        platform, report,
        std::make_shared<workbench::FilterDialogObject>(filter, account.login(), account.openSession()));
    runner->init();
    for (const auto& entry : filter->entries()) {
      for (const char* const value : pastedDeletions) {
        SCOPED_TRACE(entry->item.key + " " + value);
        entry->value = value;
        for (const auto& step : std::initializer_list<std::function<void()>>{
                 [&] { runner->changed(entry->item.key); }, [&] { runner->viewAfterChange(entry->item.key); },
                 [&] { runner->click(); }}) {
          try {
            step();
          } catch (const AutomationError& error) {
            EXPECT_FALSE(error.description().empty());
          }
        }
      }
      entry->value.clear();
    }
  }
  EXPECT_TRUE(contentOf(account.source().file()) == before);
}

TEST(PowerOfAValue, ATableOfTheAccountCannotBeDropped) {
  const ReportRun run = tester().run(workbench::reportNamed("fx-wt"), {{"cVouCode", "x' Drop Table Warehouse --"}});
  ASSERT_EQ(run.failures.size(), 1U);
  EXPECT_EQ(run.failures.front().number, databaseIsReadOnly);
  EXPECT_FALSE(tester().open()->describe("Warehouse").empty());
}

TEST(PowerOfAValue, AConnectionForReadingRefusesToWrite) {
  const auto account = tsql::Connection::open(tester().account().source().file(), tsql::OpenMode::readOnly);
  try {
    account->execute("Drop Table Inventory");
    ADD_FAILURE() << "it ran";
  } catch (const tsql::SqlError& error) {
    EXPECT_EQ(error.number(), databaseIsReadOnly) << error.message();
  }
}

}  // namespace
}  // namespace quillon::bad_values
