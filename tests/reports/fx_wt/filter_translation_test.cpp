#include "reports/fx_wt/filter_translation.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "frame/automation_error.h"
#include "tests/frame/fakes.h"

namespace quillon::fx_wt {
namespace {

using fakes::ItemValues;
using testing::ElementsAre;

class FxWtFilter : public testing::Test {
 protected:
  // The conditions behind the one that every report run has.
  std::string where(std::vector<ItemValues> items) {
    const std::string all = translate(std::move(items)).where;
    const std::string always = " base.cVouType not in (N'33',N'34')";
    EXPECT_TRUE(all.starts_with(always)) << all;
    return all.substr(always.size());
  }
  FilterConditions translate(std::vector<ItemValues> items) {
    filter_ = platform_.filter(std::move(items));
    return translateFilter(*filter_);
  }
  // The token that the first item ends with.
  int token() const { return filter_->items.front().token; }

  fakes::FakePlatform platform_;
  std::shared_ptr<fakes::FakeFilter> filter_;
};

ItemValues item(std::string name, std::string value, std::string value2 = "") {
  return {.name = std::move(name), .value = std::move(value), .value2 = std::move(value2)};
}
ItemValues range(std::string name, std::string value, std::string value2) {
  return {.name = std::move(name), .value = std::move(value), .value2 = std::move(value2), .range = true};
}
ItemValues multiple(std::string name, std::string value) {
  return {.name = std::move(name), .value = std::move(value), .multiple = true};
}

// The two bounds of a range on `column`.
std::string bounds(const std::string& column, const std::string& from, const std::string& to) {
  return " And " + column + ">= N'" + from + "' And " + column + "<= N'" + to + "'";
}

TEST_F(FxWtFilter, WithoutItemsOnlyLeavesOutTypes33And34) {
  const FilterConditions conditions = translate({});
  EXPECT_EQ(conditions.where, " base.cVouType not in (N'33',N'34')");
  EXPECT_EQ(conditions.voucherTypes, "");
  EXPECT_THAT(platform_.record.calls,
              ElementsAre("FilterList.Count", "GetWhereWithToken(1)", "GetWhereWithToken(2)", "GetWhereWithToken(3)"));
}

TEST_F(FxWtFilter, ReadsEachItemOnceAndWritesItsTokenBeforeAndAfter) {
  translate({item("cBusType", "普通采购"), item("cFree1", "")});
  EXPECT_THAT(
      platform_.record.calls,
      ElementsAre("FilterList.Count", "FilterList(1)", "FilterItem.LngGrouptoken = 1", "FilterItem.Name",
                  "FilterItem.varValue", "FilterItem.varValue2", "FilterItem.RangeInput", "FilterItem.IsMultSel",
                  "FilterItem.LngGrouptoken = 0", "FilterList(2)", "FilterItem.LngGrouptoken = 1", "FilterItem.Name",
                  "FilterItem.varValue", "FilterItem.varValue2", "FilterItem.RangeInput", "FilterItem.IsMultSel",
                  "GetWhereWithToken(1)", "GetWhereWithToken(2)", "GetWhereWithToken(3)"));
  EXPECT_EQ(platform_.record.alive, 1) << "the filter only";
}

// --- Keys -----------------------------------------------------------------------------------------------------------

TEST_F(FxWtFilter, VoucherTypesAreHandedOutAsAList) {
  const FilterConditions conditions = translate({item("cVouType", "01\t 011 \t32")});
  EXPECT_EQ(conditions.voucherTypes, "'01','011','32'");
  EXPECT_EQ(conditions.where, " base.cVouType not in (N'33',N'34')");
  EXPECT_EQ(token(), 0);
  EXPECT_EQ(translate({item("cVouType", "")}).voucherTypes, "");
  EXPECT_EQ(token(), 0);
}

TEST_F(FxWtFilter, BusinessTypesAreAList) {
  EXPECT_EQ(where({item("cBusType", "普通采购\t委外加工")}), " And base.cBusType in ('普通采购','委外加工')");
  EXPECT_EQ(token(), 0);
  EXPECT_EQ(where({item("cBusType", "")}), "");
  EXPECT_EQ(token(), 0);
}

TEST_F(FxWtFilter, TheVoucherNumberIsLeftToTheFilterObjectWithTokenThree) {
  ItemValues number = item("PzNoId", "转-0001");
  number.sql = "base.cPzID = N'p1'";
  EXPECT_EQ(where({number}), " AND base.cPzID = N'p1'");
  EXPECT_EQ(token(), 3);
  EXPECT_EQ(where({item("PzNoId", "")}), "");
  EXPECT_EQ(token(), 3);
}

TEST_F(FxWtFilter, DatesAreBoundedOnEachSideThatIsGiven) {
  for (const std::string key : {"dVouDate", "dKeepDate"}) {
    const std::string from = " And base." + key + ">= '2024-01-01'";
    const std::string to = " And base." + key + "<= '2024-03-31'";
    EXPECT_EQ(where({item(key, "2024-01-01", "2024-03-31")}), from + to);
    EXPECT_EQ(where({range(key, "2024-01-01", "2024-03-31")}), from + to);
    EXPECT_EQ(where({item(key, "2024-01-01")}), from);
    EXPECT_EQ(where({item(key, "", "2024-03-31")}), to);
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({item(key, "")}), "");
    EXPECT_EQ(token(), 0);
  }
}

TEST_F(FxWtFilter, ClassCodesAreARangeOrAPrefix) {
  for (const std::string key : {"Inventory.cInvCCode", "Customer.cCCCode", "Vendor.cVCCode"}) {
    EXPECT_EQ(where({range(key, "01", "02")}), bounds(key, "01", "02"));
    EXPECT_EQ(where({range(key, "01", "")}), " And " + key + ">= N'01'");
    EXPECT_EQ(where({range(key, "", "02")}), " And " + key + "<= N'02'");
    EXPECT_EQ(where({range(key, "", "")}), "");
    EXPECT_EQ(where({item(key, "01")}), " And " + key + " Like N'01%'");
    EXPECT_EQ(where({item(key, "", "02")}), "");
    EXPECT_EQ(where({multiple(key, "01")}), " And " + key + " Like N'01%'");
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({item(key, "")}), "");
    EXPECT_EQ(token(), 0);
  }
}

TEST_F(FxWtFilter, CodesAreAListARangeOrASingleValue) {
  for (const std::string key : {"Customer.cCusCode", "Vendor.cVenCode", "Inventory.cInvCode"}) {
    EXPECT_EQ(where({multiple(key, "A\t B ")}), " And " + key + " in ('A','B')");
    EXPECT_EQ(where({multiple(key, "")}), "");
    EXPECT_EQ(where({range(key, "A", "B")}), bounds(key, "A", "B"));
    EXPECT_EQ(where({range(key, "A", "")}), " And " + key + ">= N'A'");
    EXPECT_EQ(where({range(key, "", "B")}), " And " + key + "<= N'B'");
    EXPECT_EQ(where({range(key, "", "")}), "");
    EXPECT_EQ(where({item(key, "A")}), " And " + key + "= N'A'");
    EXPECT_EQ(where({item(key, "", "B")}), "");
    ItemValues both = range(key, "A", "B");
    both.multiple = true;
    EXPECT_EQ(where({both}), " And " + key + " in ('A')") << "a multiple selection comes before a range";
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({item(key, "")}), "");
    EXPECT_EQ(token(), 0);
  }
}

TEST_F(FxWtFilter, TheCostCentreIsARangeOrASingleValue) {
  EXPECT_EQ(where({range("cDeptID", "CC01", "CC03")}),
            " And CAQ_CostCenterMap.cDeptID >= N'CC01' And CAQ_CostCenterMap.cDeptID <= N'CC03'");
  EXPECT_EQ(where({range("cDeptID", "CC01", "")}), " And CAQ_CostCenterMap.cDeptID >= N'CC01'");
  EXPECT_EQ(where({range("cDeptID", "", "CC03")}), " And CAQ_CostCenterMap.cDeptID <= N'CC03'");
  EXPECT_EQ(where({item("cDeptID", "CC01")}), " And CAQ_CostCenterMap.cDeptID = N'CC01'");
  EXPECT_EQ(token(), 0);
  EXPECT_EQ(where({item("cDeptID", "")}), "");
  EXPECT_EQ(token(), 0);
}

TEST_F(FxWtFilter, TheWarehouseIsAListARangeOrASingleValue) {
  EXPECT_EQ(where({multiple("cWhCode", "01\t02")}), " And base.cWhCode in ('01','02') ");
  EXPECT_EQ(where({multiple("cWhCode", "")}), "");
  EXPECT_EQ(where({range("cWhCode", "01", "02")}), " And base.cWhCode>= N'01' And base.cWhCode<= N'02'");
  EXPECT_EQ(where({range("cWhCode", "01", "")}), " And base.cWhCode>= N'01'");
  EXPECT_EQ(where({range("cWhCode", "", "02")}), " And base.cWhCode<= N'02'");
  EXPECT_EQ(where({range("cWhCode", "", "")}), "");
  EXPECT_EQ(where({item("cWhCode", "01")}), " And base.cWhCode= N'01'");
  EXPECT_EQ(where({item("cWhCode", "", "02")}), " And base.cWhCode= N''") << "only two empty values ask for nothing";
  EXPECT_EQ(token(), 0);
  EXPECT_EQ(where({item("cWhCode", "")}), "");
  EXPECT_EQ(token(), 0);
}

TEST_F(FxWtFilter, TheBatchIsLeftToTheFilterObject) {
  ItemValues batch = item("cBatchia", "B1");
  EXPECT_EQ(where({batch}), "");
  EXPECT_EQ(token(), 1);
  batch.sql = "cBatchia = N'B1'";
  EXPECT_EQ(where({batch}), " AND cBatchia = N'B1'");
}

TEST_F(FxWtFilter, InventoryFieldsAreARangeOrASingleValueInAnyLetterCase) {
  for (const std::string key : {"cInvDefine1", "cinvdefine16", "CINVDEFINE7"}) {
    EXPECT_EQ(where({item(key, "x")}), " And inventory." + key + "= N'x'");
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({multiple(key, "x\ty")}), " And inventory." + key + "= N'x\ty'") << "there is no list";
    EXPECT_EQ(where({range(key, "x", "z")}), bounds("inventory." + key, "x", "z"));
    EXPECT_EQ(where({range(key, "x", "")}), " And inventory." + key + ">= N'x'");
    EXPECT_EQ(where({range(key, "", "z")}), " And inventory." + key + "<= N'z'");
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({item(key, "")}), "");
    EXPECT_EQ(token(), 1);
    EXPECT_EQ(where({range(key, "", "")}), "");
    EXPECT_EQ(token(), 1);
  }
}

TEST_F(FxWtFilter, AnyOtherKeyIsAColumnOfTheLedger) {
  for (const std::string key : {"cFree1", "cDefine22", "cHandler", "somethingNew"}) {
    EXPECT_EQ(where({item(key, "x")}), " And base." + key + "= N'x'");
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({item(key, "", "z")}), " And base." + key + "= N''");
    EXPECT_EQ(where({range(key, "x", "z")}), bounds("base." + key, "x", "z"));
    EXPECT_EQ(where({range(key, "x", "")}), " And base." + key + ">= N'x'");
    EXPECT_EQ(where({range(key, "", "z")}), " And base." + key + "<= N'z'");
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({item(key, "")}), "");
    EXPECT_EQ(token(), 1);
  }
}

TEST_F(FxWtFilter, AKeyInOtherLettersIsAColumnOfTheLedger) {
  for (const std::string key : {"cvoutype", "CBusType", "pznoid", "dvoudate", "DKEEPDATE", "inventory.cInvCCode",
                                "Customer.cCusCODE", "cDeptId", "cWHCode", "cBatchIA"}) {
    const FilterConditions conditions = translate({item(key, "x")});
    EXPECT_EQ(conditions.where, " base.cVouType not in (N'33',N'34') And base." + key + "= N'x'");
    EXPECT_EQ(conditions.voucherTypes, "");
    EXPECT_EQ(token(), 0);
    EXPECT_EQ(where({item(key, "")}), "");
    EXPECT_EQ(token(), 1);
  }
}

// --- Together -------------------------------------------------------------------------------------------------------

TEST_F(FxWtFilter, ConditionsStandInTheOrderOfTheItemsAndTheFilterObjectsOwnBehindThem) {
  ItemValues number = item("PzNoId", "1");
  number.sql = "base.iPzID = 1";
  ItemValues batch = item("cBatchia", "B1");
  batch.sql = "cBatchia = N'B1'";
  ItemValues translated = item("cFree1", "red");
  translated.sql = "never asked for";
  EXPECT_EQ(where({number, translated, batch, item("cBusType", "领料")}),
            " And base.cFree1= N'red' And base.cBusType in ('领料') AND cBatchia = N'B1' AND base.iPzID = 1");
}

TEST_F(FxWtFilter, ValuesAreNotEscaped) {
  EXPECT_EQ(where({item("cFree1", "it's")}), " And base.cFree1= N'it's'");
  EXPECT_EQ(where({item("cBusType", "a'b\t")}), " And base.cBusType in ('a'b','')");
}

TEST_F(FxWtFilter, EveryCallMayFail) {
  translate({item("cVouType", "01"), item("PzNoId", "1"), item("cFree1", "red")});
  const std::size_t total = platform_.record.calls.size();
  ASSERT_GT(total, 20U);
  for (std::size_t k = 1; k <= total; ++k) {
    platform_.record.calls.clear();
    platform_.record.failAt = k;
    EXPECT_THROW(translate({item("cVouType", "01"), item("PzNoId", "1"), item("cFree1", "red")}), AutomationError);
    EXPECT_EQ(platform_.record.calls.size(), k);
  }
}

}  // namespace
}  // namespace quillon::fx_wt
