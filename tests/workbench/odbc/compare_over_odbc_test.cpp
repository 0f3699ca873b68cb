// Comparing accounts and reports on a server with those in a file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/workbench/odbc/engine_server.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/cli/account_diff_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// Two accounts in files; the first one also stands on a server.
class CompareOverOdbc : public testing::Test {
 protected:
  CompareOverOdbc() {
    account::createSample(first_.path(), {.rows = 1000, .years = 1});
    account::createSample(second_.path(), {.rows = 1000, .years = 1});
  }

  static AccountSource server() { return AccountSource(odbc::test::EngineServer::connectionString()); }

  test::TemporaryFile first_{".qacc"};
  test::TemporaryFile second_{".qacc"};
  odbc::test::EngineServer running_{first_.path()};
};

TEST_F(CompareOverOdbc, AnAccountEqualsItsCopyOnAServer) {
  std::ostringstream out;
  EXPECT_TRUE(diffAccounts(AccountSource::inFile(second_.path()), server(), {}, out)) << out.str();
  EXPECT_THAT(out.str(), StartsWith("equal: 42 tables, "));
  EXPECT_GT(running_.batches, 42);
}

TEST_F(CompareOverOdbc, ChangedAndMissingRowsAreFound) {
  tsql::Connection::open(second_.path(), tsql::OpenMode::existing)
      ->execute(
          "Delete From fItem Delete From Warehouse Insert Into Warehouse Values (N'00', N'甲') "
          "Create Table other (a int)");
  std::ostringstream out;
  EXPECT_FALSE(diffAccounts(AccountSource::inFile(second_.path()), server(), {.shown = 0}, out));
  EXPECT_THAT(out.str(), HasSubstr("Warehouse: 1 only in the first, "));
  EXPECT_THAT(out.str(), HasSubstr("fItem: 0 only in the first, "));
  EXPECT_THAT(out.str(), HasSubstr("different: 2 of 42 tables\n"));
}

TEST_F(CompareOverOdbc, AReportEqualsTheOneOfTheServer) {
  for (const char* report : {"sfc-item", "fx-wt"}) {
    std::ostringstream out, notes;
    EXPECT_TRUE(compareReports(
        {.report = report, .account = AccountSource::inFile(second_.path()), .language = Language::english}, server(),
        out, notes))
        << out.str();
    EXPECT_THAT(out.str(), StartsWith("equal: ")) << report;
    EXPECT_EQ(out.str().find("equal: 0 rows"), std::string::npos) << report;
  }
}

}  // namespace
}  // namespace quillon::workbench
