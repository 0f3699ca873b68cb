#include "workbench/cli/account_command.h"

#include <gtest/gtest.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/schema.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

class AccountCheck : public testing::Test {
 protected:
  void SetUp() override {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
  }

  // The exit status of the program.
  int statusOfProgram() {
    CLI::App app;
    addAccountCommand(app);
    try {
      app.parse(std::vector<std::string>{utf8FromPath(file_.path()), "check", "account"});
    } catch (const CLI::RuntimeError& end) {
      return end.get_exit_code();
    }
    return 0;
  }

  test::TemporaryFile file_{".qacc"};
};

TEST_F(AccountCheck, SaysThatAllIsWell) {
  std::ostringstream out;
  EXPECT_TRUE(checkAccount(AccountSource::inFile(file_.path()), out));
  EXPECT_EQ(out.str(), "every key by which the reports join has one row\n");
  EXPECT_EQ(statusOfProgram(), 0);
}

TEST_F(AccountCheck, ListsTheKeysThatSeveralRowsShare) {
  {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
    account->execute("Drop Table Warehouse");
    account->execute("Create Table Warehouse (cWhCode nvarchar(10), cWhName nvarchar(20))");
    account->execute("Insert Into Warehouse Values (N'01', N'x'), (N'01', N'y'), (N'02', N'z')");
    account->execute(
        "Insert Into sfc_workcenter (WcId, WcCode, Description) Values (1, N'W1', N'车床'), (2, N'W2', N'车床')");
  }
  std::ostringstream out;
  EXPECT_FALSE(checkAccount(AccountSource::inFile(file_.path()), out));
  EXPECT_EQ(
      out.str(),
      "table           key                 rows  reports\n"
      "--------------  ------------------  ----  ---------------------------------------\n"
      "Warehouse       cWhCode = 01           2  sfc-item, outsum-item, fx-detail, fx-wt\n"
      "sfc_workcenter  Description = 车床     2  outsum-item\n"
      "\n"
      "These reports count a ledger line that names such a key once for each of its rows; leave one row a key.\n");
  EXPECT_EQ(statusOfProgram(), 1);
}

}  // namespace
}  // namespace quillon::workbench
