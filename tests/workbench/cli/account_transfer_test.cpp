// Accounts exported, imported and compared, from the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <CLI/CLI.hpp>

#include <fstream>
#include <sstream>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account.h"
#include "workbench/account/transfer.h"
#include "workbench/cli/account_command.h"
#include "workbench/cli/account_diff_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/cli/sql_command.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using account::testing::contentOf;
using account::testing::TestFolder;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

class AccountTransfer : public ::testing::Test {
 protected:
  AccountTransfer() { account::createSample(folder_ / "a", {.rows = 1000, .seed = 3, .years = 2}); }

  std::string path(std::string_view name) const { return utf8FromPath(folder_ / name); }
  AccountSource source(std::string_view name) const { return AccountSource::inFile(folder_ / name); }

  // What `quillon account ...` writes to standard output; an exit status other than 0 behind it.
  static std::string shownBy(std::vector<std::string> arguments) {
    CLI::App app;
    addAccountCommand(app);
    arguments.insert(arguments.begin(), "account");
    std::ranges::reverse(arguments);
    ::testing::internal::CaptureStdout();
    std::string status;
    try {
      app.parse(std::move(arguments));
    } catch (const CLI::RuntimeError& end) {
      status = "exit status " + std::to_string(end.get_exit_code()) + "\n";
    } catch (...) {
      ::testing::internal::GetCapturedStdout();
      throw;
    }
    return ::testing::internal::GetCapturedStdout() + status;
  }

  void change(std::string_view name, std::string_view statements) {
    tsql::Connection::open(folder_ / name, tsql::OpenMode::existing)->execute(statements);
  }

  TestFolder folder_;
};

TEST_F(AccountTransfer, ExportsAndImports) {
  const std::string exported = shownBy({"export", path("a"), path("csv")});
  EXPECT_THAT(exported, StartsWith("wrote 42 tables with "));
  EXPECT_THAT(exported, ::testing::EndsWith(" rows to " + path("csv") + "\n"));
  EXPECT_THAT(shownBy({"import", path("b"), path("csv")}), StartsWith("made " + path("b") + ": 42 tables with "));
  EXPECT_THAT(shownBy({"diff", path("a"), path("b")}), StartsWith("equal: 42 tables, "));
}

TEST_F(AccountTransfer, RefusesAnExistingAccountAndLeavesItAsItIs) {
  shownBy({"export", path("a"), path("csv")});
  EXPECT_THROW(shownBy({"import", path("a"), path("csv")}), account::AccountError);
  EXPECT_THROW(shownBy({"script", path("a"), path("csv/schema.sql")}), account::AccountError);
  EXPECT_THAT(shownBy({"import", path("b"), path("csv")}), StartsWith("made "));
}

TEST_F(AccountTransfer, WritesAScriptForAServerThatHasAccounts) {
  EXPECT_THAT(shownBy({"script", path("a"), path("a.sql"), "--account-id", "002", "--batch-size", "007"}),
              StartsWith("wrote 42 tables with "));
  const std::string script = contentOf(folder_ / "a.sql");
  EXPECT_THAT(script, HasSubstr("-- Rows come in batches of at most 7. "));
  EXPECT_THAT(script, HasSubstr("Delete From orvsystem..[UA_Period] Where [cAcc_Id] = N'002'\n"));
  EXPECT_THROW(shownBy({"script", path("a"), path("b.sql"), "--batch-size", "0"}), CLI::ValidationError);
  EXPECT_THROW(shownBy({"script", path("a"), path("b.sql"), "--batch-size", "1001"}), CLI::ValidationError);
  EXPECT_THROW(shownBy({"script", path("a"), path("b.sql"), "--account-id", "12345678901"}), account::AccountError);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "b.sql"));
}

TEST_F(AccountTransfer, WritesAScriptThatRunsOnAnEmptyDatabase) {
  EXPECT_THAT(shownBy({"script", path("a"), path("a.sql")}), StartsWith("wrote 42 tables with "));
  const auto empty = tsql::Connection::openInMemory();
  std::ifstream script(folder_ / "a.sql", std::ios::binary);
  std::ostringstream out, errors;
  EXPECT_EQ(runScript(*empty, script, "the script", SqlFormat::table, out, errors), 0);
  EXPECT_EQ(errors.str(), "");
  account::exportAccount(*empty, folder_ / "two");
  shownBy({"export", path("a"), path("one")});
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "one")) {
    const std::string name = entry.path().filename().string();
    EXPECT_EQ(contentOf(entry.path()), contentOf(folder_ / ("two/" + name))) << name;
  }
}

TEST_F(AccountTransfer, WritesTheScriptToStandardOutput) {
  shownBy({"script", path("a"), path("a.sql")});
  EXPECT_EQ(shownBy({"script", path("a")}), contentOf(folder_ / "a.sql"));
}

TEST_F(AccountTransfer, LeavesNoScriptWhenItCannotBeWritten) {
  change("a", "Create View orvsystem..v As Select iYear From orvsystem..UA_Period");
  EXPECT_THROW(shownBy({"script", path("a"), path("a.sql")}), account::AccountError);
  EXPECT_THAT(folder_.names(), ::testing::Not(::testing::Contains(StartsWith("a.sql"))));
}

TEST_F(AccountTransfer, TellsWhereAccountsDiffer) {
  std::filesystem::copy_file(folder_ / "a", folder_ / "b");
  change("a",
         "Delete From Warehouse Delete From fItem "
         "Insert Into Warehouse Values (N'1', N'甲'), (N'2', N'乙'), (N'3', N'丙')");
  change("b",
         "Delete From Warehouse Delete From fItem "
         "Insert Into Warehouse Values (N'1', N'甲'), (N'2', N'丁'), (N'4', N'a' + NChar(10)) "
         "Drop Table gl_AccVouch");
  EXPECT_EQ(shownBy({"diff", path("a"), path("b")}),
            "Warehouse: 1 only in the first, 1 only in the second, 1 changed\n"
            "  cWhCode = \"2\": cWhName \"乙\" | \"丁\"\n"
            "  only in the first: cWhCode = \"3\"\n"
            "  only in the second: cWhCode = \"4\"\n"
            "gl_AccVouch: 0 only in the first, 0 only in the second, 0 changed\n"
            "  the second account has no such table\n"
            "different: 2 of 42 tables\n"
            "exit status 1\n");
  EXPECT_EQ(shownBy({"diff", path("a"), path("b"), "--limit", "1"}),
            "Warehouse: 1 only in the first, 1 only in the second, 1 changed\n"
            "  cWhCode = \"2\": cWhName \"乙\" | \"丁\"\n"
            "  and 2 more\n"
            "gl_AccVouch: 0 only in the first, 0 only in the second, 0 changed\n"
            "  the second account has no such table\n"
            "different: 2 of 42 tables\n"
            "exit status 1\n");
}

TEST_F(AccountTransfer, ComparesAccountsOnly) {
  tsql::Connection::open(folder_ / "x", tsql::OpenMode::createNew);
  tsql::Connection::open(folder_ / "y", tsql::OpenMode::createNew);
  std::ostringstream out;
  try {
    diffAccounts(source("x"), source("y"), {}, out);
    FAIL() << "compared";
  } catch (const UserError& error) {
    EXPECT_STREQ(error.what(), "neither source has a table of an account; name two accounts");
  }
  EXPECT_THROW(diffAccounts(source("a"), source("none"), {}, out), tsql::SqlError);
}

TEST_F(AccountTransfer, ComparesReports) {
  std::filesystem::copy_file(folder_ / "a", folder_ / "b");
  std::ostringstream equal, different, notes;
  const ReportOptions options{
      .report = "fx-wt", .account = source("a"), .language = Language::english, .layout = {.limit = 1}};
  EXPECT_TRUE(compareReports(options, source("b"), equal, notes));
  EXPECT_THAT(equal.str(), MatchesRegex("equal: .* rows of .* columns\n"));
  EXPECT_THAT(equal.str(), ::testing::Not(StartsWith("equal: 0 ")));
  change("b", "Update Warehouse Set cWhName = N'改'");
  EXPECT_FALSE(compareReports(options, source("b"), different, notes));
  EXPECT_THAT(different.str(), StartsWith("row 1: cWhName \""));
  EXPECT_THAT(different.str(), HasSubstr("\" | \"改\"\nand "));
  EXPECT_THAT(different.str(), HasSubstr(" more\ndifferent: "));
  for (const char* name : {"a", "b"})
    EXPECT_EQ(tsql::Connection::open(folder_ / name, tsql::OpenMode::readOnly)->tables("").size(), 40U) << name;
}

TEST_F(AccountTransfer, ReportsThatDifferMakeTheExitStatusOne) {
  std::filesystem::copy_file(folder_ / "a", folder_ / "b");
  change("b", "Update Warehouse Set cWhName = N'改'");
  const auto statusOf = [&](std::vector<std::string> arguments) {
    CLI::App app;
    addReportCommand(app);
    std::ranges::reverse(arguments);
    ::testing::internal::CaptureStdout();
    int status = 0;
    try {
      app.parse(std::move(arguments));
    } catch (const CLI::RuntimeError& end) {
      status = end.get_exit_code();
    } catch (const CLI::ParseError&) {
      status = 2;
    }
    ::testing::internal::GetCapturedStdout();
    return status;
  };
  EXPECT_EQ(statusOf({"report", "fx-wt", "--account", path("a"), "--compare", path("a")}), 0);
  EXPECT_EQ(statusOf({"report", "fx-wt", "--account", path("a"), "--compare", path("b")}), 1);
  EXPECT_EQ(statusOf({"report", "fx-wt", "--account", path("a"), "--compare", path("a"), "--format", "csv"}), 2);
}

}  // namespace
}  // namespace quillon::workbench
