#include "workbench/cli/account_command.h"

#include <gtest/gtest.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
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

// --- Damage ---

// An account whose pages from `page` on, of 8192 bytes each, are full of something else.
class DamagedAccount : public testing::Test {
 protected:
  DamagedAccount() {
    {
      const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
      account::createTables(*account);
      account->execute("Create Table many (a int, t nvarchar(200))");
      account->begin();
      for (int i = 0; i < 2000; ++i)
        account->execute("Insert Into many Values (" + std::to_string(i) + ", Replicate(N'x', 200))");
      account->commit();
    }
    size_ = std::filesystem::file_size(file_.path());
  }

  void overwrite(std::uintmax_t from, std::uintmax_t length) {
    std::fstream file(file_.path(), std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(from));
    file << std::string(static_cast<std::size_t>(length), '\xee');
  }
  std::string integrity(bool& sound) {
    std::ostringstream out;
    sound = checkIntegrity(AccountSource::inFile(file_.path()), out);
    return out.str();
  }

  test::TemporaryFile file_{".qacc"};
  std::uintmax_t size_ = 0;
};

TEST_F(DamagedAccount, IsToldFromASoundOne) {
  bool sound = false;
  EXPECT_EQ(integrity(sound), "the account file is sound\n");
  EXPECT_TRUE(sound);
}

TEST_F(DamagedAccount, IsToldAsDamageWithWhatToDo) {
  overwrite(size_ / 2, size_ / 4);
  try {
    tsql::Connection::open(file_.path(), tsql::OpenMode::readOnly)->execute("Select a, t Into #copy From many");
    ADD_FAILURE() << "read";
  } catch (const tsql::SqlError& error) {
    EXPECT_EQ(
        error.message(),
        "The account file is damaged: what it holds does not fit together. `quillon account check --integrity FILE` "
        "says where; go back to a copy, or export what can still be read.");
  }
  bool sound = true;
  const std::string told = integrity(sound);
  EXPECT_FALSE(sound);
  EXPECT_NE(told.find("The account file is damaged: go back to a copy, or save with `quillon account export`"),
            std::string::npos)
      << told;
}

TEST_F(DamagedAccount, IsToldWhenNotEvenItsTablesCanBeListed) {
  constexpr std::uintmax_t page = 8192;
  overwrite(page / 2, size_ - page / 2);
  bool sound = true;
  integrity(sound);
  EXPECT_FALSE(sound);
}

}  // namespace
}  // namespace quillon::workbench
