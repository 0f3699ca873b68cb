#include "frame/inventory_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using fakes::Row;
using testing::ElementsAre;

TEST(InventoryChecks, AskForBatchAndFreeItemsOfOneInventory) {
  EXPECT_EQ(
      inventoryChecksQuery("Inventory_rights", "Inventory", "0101"),
      "select bcheckbatch,bCheckFree1,bCheckFree2,bCheckFree3,bCheckFree4,bCheckFree5,bCheckFree6,bCheckFree7,bCheckFree8,bCheckFree9,bCheckFree10 "
      "from Inventory_rights Inventory where cinvcode=N'0101'");
}

TEST(InventoryChecks, AreReadByPosition) {
  fakes::Record record;
  fakes::FakeRecordset rows(record,
                            {Row{"True", "False", "True", "0", "1", "-1", std::nullopt, "", "False", "false", "True"}});
  const InventoryChecks checks = readInventoryChecks(rows);
  EXPECT_TRUE(checks.batch);
  EXPECT_THAT(checks.freeItems, ElementsAre(false, true, false, true, true, false, false, false, false, true));
  EXPECT_EQ(record.calls.back(), "Recordset.Close");
}

TEST(InventoryChecks, AnUnknownInventoryHasNone) {
  fakes::Record record;
  fakes::FakeRecordset rows(record, {});
  const InventoryChecks checks = readInventoryChecks(rows);
  EXPECT_FALSE(checks.batch);
  EXPECT_THAT(checks.freeItems, testing::Each(false));
  EXPECT_THAT(record.calls, ElementsAre("Recordset.EOF", "Recordset.Close"));
}

}  // namespace
}  // namespace quillon
