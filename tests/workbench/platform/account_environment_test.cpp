#include "workbench/platform/account_environment.h"

#include <gtest/gtest.h>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"

namespace quillon::workbench {
namespace {

class AccountEnvironment : public testing::Test {
 protected:
  void SetUp() override {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account->execute("Create Table AccInformation (cSysID nvarchar(10), cName nvarchar(60), cValue nvarchar(255))");
    account->execute(
        "Insert Into AccInformation Values (N'AA', N'cValueStyle', N'another system'), "
        "(N'IA', N'cValueStyle', N'按部门核算')");
  }

  test::TemporaryFile file_{".qacc"};
  EmbeddedPlatform platform_{{}};
};

TEST_F(AccountEnvironment, AnswersFromTheAccountOfTheLogin) {
  WorkbenchLogin login({.accountConnection = connectionString(file_.path())});
  const OpenEnvironment open = openInventoryEnvironment(platform_, login);
  EXPECT_EQ(open.options->costingBasis(), "按部门核算");
  EXPECT_EQ(open.options->inventoryTable(), "Inventory");
  EXPECT_EQ(open.options->warehouseTable(), "Warehouse");
}

TEST_F(AccountEnvironment, NamesAnotherResultTableForEachRun) {
  WorkbenchLogin login({.accountConnection = connectionString(file_.path())});
  const OpenEnvironment first = openInventoryEnvironment(platform_, login);
  EXPECT_EQ(first.resultTable.substr(0, 13), "QuillonReport");
  EXPECT_EQ(first.environment->resultTable(), first.resultTable);
  EXPECT_NE(openInventoryEnvironment(platform_, login).resultTable, first.resultTable);
}

TEST_F(AccountEnvironment, AccountWithoutTheOptionHasNoCostingBasis) {
  {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
    account->execute("Delete AccInformation");
  }
  WorkbenchLogin login({.accountConnection = connectionString(file_.path())});
  EXPECT_EQ(openInventoryEnvironment(platform_, login).options->costingBasis(), "");
}

TEST_F(AccountEnvironment, RefusesALoginThatIsNotInitialised) {
  const auto login = platform_.createAccountLogin();
  const auto environment = platform_.createInventoryEnvironment();
  try {
    environment->accountOptions(*login, "Result1");
    ADD_FAILURE() << "nothing was refused";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::unexpected);
    EXPECT_EQ(error.description(), "The login has not been initialised with a connection string.");
  }
}

TEST_F(AccountEnvironment, RefusesALoginOfAnotherPlatform) {
  class Stranger final : public AccountLogin {
    void initialise(std::string_view, std::string_view) override {}
  } stranger;
  try {
    platform_.createInventoryEnvironment()->accountOptions(stranger, "Result1");
    ADD_FAILURE() << "nothing was refused";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::invalidArgument);
  }
}

}  // namespace
}  // namespace quillon::workbench
