#include "frame/inventory_environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

TEST(InventoryEnvironment, IsOpenedWithTheLoginsConnectionAndPassword) {
  fakes::FakePlatform platform;
  fakes::FakeLogin login(platform.record);
  const OpenEnvironment open = openInventoryEnvironment(platform, login);
  EXPECT_EQ(open.resultTable, "tmp_detail");
  EXPECT_EQ(open.options->inventoryTable(), "Inventory_rights");
  EXPECT_THAT(platform.record.calls,
              testing::ElementsAre("create AccountLogin", "Login.OrvDbName", "Login.SysPassword",
                                   "AccountLogin.initialise(the account's connection, ;PWD=secret)",
                                   "create InventoryEnvironment", "InventoryEnvironment.setLogin",
                                   "InventoryEnvironment.resultTable",
                                   "InventoryEnvironment.accountOptions(tmp_detail)", "AccountOptions.inventoryTable"));
}

}  // namespace
}  // namespace quillon
