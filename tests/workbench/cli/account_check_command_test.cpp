#include "workbench/cli/account_check_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/account/schema.h"
#include "workbench/cli/account_command.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class AccountCheck : public testing::Test {
 protected:
  void SetUp() override {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
  }

  void run(const std::string& sql) { tsql::Connection::open(file_.path(), tsql::OpenMode::existing)->execute(sql); }

  // What the command writes; `sound` is set to what it gives.
  std::string shown(const CheckOptions& options, bool& sound) {
    std::ostringstream out;
    sound = checkAccount(AccountSource::inFile(file_.path()), options, out);
    return out.str();
  }

  // The exit status of the program.
  int statusOfProgram(const std::vector<std::string>& options = {}) {
    CLI::App app;
    addAccountCommand(app);
    std::vector<std::string> arguments = {"account", "check", utf8FromPath(file_.path())};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::ranges::reverse(arguments);
    testing::internal::CaptureStdout();
    int status = 0;
    try {
      app.parse(arguments);
    } catch (const CLI::RuntimeError& end) {
      status = end.get_exit_code();
    } catch (const CLI::ParseError&) {
      status = 2;
    }
    written_ = testing::internal::GetCapturedStdout();
    return status;
  }

  test::TemporaryFile file_{".qacc"};
  std::string written_;  // by the program
};

TEST_F(AccountCheck, SaysThatAllIsWell) {
  bool sound = false;
  EXPECT_THAT(shown({}, sound), EndsWith("\n"
                                         "every key by which the reports join has one row\n"
                                         "there are no errors in the ledger\n"));
  EXPECT_TRUE(sound);
  EXPECT_EQ(statusOfProgram(), 0);
}

TEST_F(AccountCheck, ListsTheKeysThatSeveralRowsShare) {
  run("Drop Table Warehouse");
  run("Create Table Warehouse (cWhCode nvarchar(10), cWhName nvarchar(20))");
  run("Insert Into Warehouse Values (N'01', N'x'), (N'01', N'y'), (N'02', N'z')");
  run("Insert Into sfc_workcenter (WcId, WcCode, Description) Values (1, N'W1', N'车床'), (2, N'W2', N'车床')");
  bool sound = true;
  EXPECT_EQ(
      shown({.checks = {"join-keys"}}, sound),
      "check      rank   rows  amount  what it finds                                           reports\n"
      "---------  -----  ----  ------  ------------------------------------------------------  "
      "---------------------------------------\n"
      "join-keys  error     2          keys by which reports join and that several rows share  "
      "sfc-item, outsum-item, fx-detail, fx-wt\n"
      "\n"
      "join-keys: keys by which reports join and that several rows share\n"
      "\n"
      "table           key                 rows  reports\n"
      "--------------  ------------------  ----  ---------------------------------------\n"
      "Warehouse       cWhCode = 01           2  sfc-item, outsum-item, fx-detail, fx-wt\n"
      "sfc_workcenter  Description = 车床     2  outsum-item\n"
      "\n"
      "These reports count a ledger line that names such a key once for each of its rows; leave one row a key.\n");
  EXPECT_FALSE(sound);
  EXPECT_EQ(statusOfProgram(), 1);
}

// Two lines without cost items of an inventory that has them in a third one, and a consumable's.
class LedgerOfFourLines : public AccountCheck {
 protected:
  void SetUp() override {
    AccountCheck::SetUp();
    run("Insert Into AccInformation (cSysID, cID, cName, cValue) Values (N'CA', N'11002', N'cCAStartPeriod', N'202401')");
    run("Insert Into Ca_FxClassDef Values (1, N'01', N'material', 1)");
    run("Insert Into Ca_FxDef Values (1, N'CI01', N'metal', 1, 0)");
    const auto line = [this](int number, const std::string& inventory, const std::string& amount) {
      run("Insert Into ia_subsidiary (AutoID, iYear, iMonth, dKeepDate, cVouType, cVouCode, bRdFlag, bFlag, cInvCode, "
          "iAInQuantity, iAInPrice) Values (" +
          std::to_string(number) + ", 2024, 3, '2024-03-05', N'01', N'R" + std::to_string(number) + "', 1, 0, N'" +
          inventory + "', 2, " + amount + ")");
    };
    line(1, "steel", "1000");
    line(2, "steel", "1234.5");
    line(3, "steel", "0.0625");
    line(4, "oil", "7");
    run("Insert Into ia_subsidiary_Item (AutoID, iSubID, iItemID, iYear, iMonth, bRdFlag, iItemInPrice) Values (1, 1, 1, "
        "2024, 3, 1, 1000)");
  }
};

TEST_F(LedgerOfFourLines, ShowsWhatIsFoundWithItsFirstRows) {
  bool sound = true;
  EXPECT_EQ(
      shown({.checks = {"line-without-items"}, .limit = 1}, sound),
      "check               rank   rows      amount  what it finds                                                "
      "      reports\n"
      "------------------  -----  ----  ----------  -----------------------------------------------------------------"
      "  ---------------------------------------\n"
      "line-without-items  error     2  1,234.5625  lines without cost items, of inventories that have them elsewhere"
      "  sfc-item, outsum-item, fx-detail, fx-wt\n"
      "\n"
      "line-without-items: lines without cost items, of inventories that have them elsewhere\n"
      "\n"
      "line  month    date        document  inventory  what             amount\n"
      "----  -------  ----------  --------  ---------  -------------  --------\n"
      "   2  2024-03  2024-03-05  R2        steel      no cost items  1,234.50\n"
      "and 1 more; --limit 0 shows all\n"
      "\n"
      "The balances by cost item lack these amounts; split these records over their cost items.\n");
  EXPECT_FALSE(sound);
}

TEST_F(LedgerOfFourLines, IsSoundWithNotesAlone) {
  run("Delete From ia_subsidiary Where AutoID In (2, 3)");
  bool sound = false;
  const std::string text = shown({.language = Language::chinese}, sound);
  EXPECT_TRUE(sound);
  EXPECT_THAT(text, HasSubstr("never-split：从不分项的存货的明细账记录\n\n"
                              "流水号  月       日期        单据号  存货编码  说明        金额\n"));
  EXPECT_THAT(text, EndsWith("\n报表连接所用的每个键都只有一行\n账簿中没有错误\n"));
  EXPECT_EQ(statusOfProgram(), 0);
}

TEST_F(LedgerOfFourLines, GivesRecordsToPrograms) {
  bool sound = true;
  EXPECT_EQ(shown({.checks = {"line-without-items", "never-split"}, .format = CheckFormat::csv}, sound),
            "check,rank,line,year,month,date,document,inventory,what,amount,reports\r\n"
            "line-without-items,error,2,2024,3,2024-03-05,R2,steel,no cost items,1234.50,"
            "\"sfc-item, outsum-item, fx-detail, fx-wt\"\r\n"
            "line-without-items,error,3,2024,3,2024-03-05,R3,steel,no cost items,0.0625,"
            "\"sfc-item, outsum-item, fx-detail, fx-wt\"\r\n"
            "never-split,note,4,2024,3,2024-03-05,R4,oil,no cost items,7.00,"
            "\"sfc-item, outsum-item, fx-detail, fx-wt\"\r\n");
  EXPECT_FALSE(sound);
}

TEST_F(LedgerOfFourLines, GivesAnObjectToPrograms) {
  EXPECT_EQ(
      statusOfProgram({"--check", "line-without-items", "--check", "class-tree", "--format", "json", "--limit", "1"}),
      1);
  const auto checks = nlohmann::json::parse(written_).at("checks");
  ASSERT_EQ(checks.size(), 2U);
  EXPECT_EQ(checks[0], nlohmann::json::parse(R"({"name": "line-without-items", "rank": "error",
    "title": "lines without cost items, of inventories that have them elsewhere",
    "advice": "The balances by cost item lack these amounts; split these records over their cost items.",
    "reports": "sfc-item, outsum-item, fx-detail, fx-wt", "rows": 2, "amount": "1234.5625",
    "found": [{"line": 2, "year": 2024, "month": 3, "date": "2024-03-05", "document": "R2", "inventory": "steel",
      "what": "no cost items", "amount": "1234.50"}]})"));
  EXPECT_EQ(checks[1].at("name"), "class-tree");
  EXPECT_EQ(checks[1].at("rows"), 0);
  EXPECT_TRUE(checks[1].at("amount").is_null());
  EXPECT_TRUE(checks[1].at("found").empty());
}

TEST_F(LedgerOfFourLines, TakesNamesOfChecksAndNoOthers) {
  EXPECT_EQ(statusOfProgram({"--check", "line-sum"}), 0);
  EXPECT_THAT(written_, Not(HasSubstr("join-keys")));
  EXPECT_THAT(written_, EndsWith("\nthere are no errors in the ledger\n"));
  EXPECT_EQ(statusOfProgram({"--check", "line-sums"}), 2);
  EXPECT_EQ(statusOfProgram({"--integrity", "--check", "line-sum"}), 2);
  EXPECT_EQ(statusOfProgram({"--integrity"}), 0);
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
