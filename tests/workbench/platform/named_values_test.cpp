#include "workbench/platform/named_values.h"

#include <gmock/gmock.h>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/schema.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/missing_value.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

class NamedValues : public testing::Test {
 protected:
  NamedValues() {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    account->execute(
        "Insert Into Warehouse (cWhCode, cWhName) Values (N'01', N'原料库'), (N'07', N'线边库'), (N'08', N'01'), "
        "(N'09', N'Store'), (N'11', N'成品库'), (N'12', N'成品库')");
    account->execute(
        "Insert Into InventoryClass (cInvCCode, cInvCName, iInvCGrade) Values (N'0101', N'钢材', 2), "
        "(N'02', N'01', 1)");
    account->execute("Insert Into VouchType (cVouchType, cVouchName) Values (N'11', N'材料出库单')");
    account->execute(
        "Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, bRdFlag, bFlag, cInvCode, cWhCode, cBatchIA, "
        "cFree1, cFree10) Values (1, 2024, 1, N'01', 1, 0, N'P1', N'07', N'B1', N'红', N'大'), "
        "(2, 2024, 1, N'01', 1, 0, N'P1', N'09', N'B3', null, null), (3, 2024, 1, N'01', 1, 0, N'P2', N'07', N'B4', "
        "null, null), (4, 2024, 1, N'01', 1, 0, N'P1', N'07', N'', null, null)");
    account->execute(
        "Insert Into IA_Subsidiary_QC (AutoID, iYear, iMonth, cVouType, bRdFlag, bFlag, cInvCode, cWhCode, cBatchIA) "
        "Values (1, 2023, 12, N'34', 1, 0, N'P1', N'07', N'B0')");
    session_.setAccount(AccountSource::inFile(file_.path()));
    session_.open("", "", optionsUnspecified);
  }

  // What the item holds after `value` was resolved.
  std::string resolved(const std::string& report, const std::string& key, const std::string& value) {
    FilterObject filter(reportNamed(report).registration, InitialValues::none);
    filter.find(key)->value = value;
    resolveNames(filter, session_, Language::chinese, false);
    return filter.find(key)->value;
  }
  std::string refusal(Language language) {
    FilterObject filter(reportNamed("sfc-item").registration, InitialValues::none);
    filter.find("cWhCode")->value = "成品库";
    try {
      resolveNames(filter, session_, language, false);
    } catch (const UserError& error) {
      return error.text(language);
    }
    return {};
  }
  FilterObject ledger(const std::string& inventory, const std::string& warehouse) {
    FilterObject filter(reportNamed("fx-detail").registration, InitialValues::none);
    filter.find("cInvCode")->value = inventory;
    filter.find("cWhCode")->value = warehouse;
    return filter;
  }

  test::TemporaryFile file_{".qacc"};
  AccountSession session_;
};

TEST_F(NamedValues, BecomeTheCodes) {
  EXPECT_EQ(resolved("fx-detail", "cWhCode", "线边库"), "07");
  EXPECT_EQ(resolved("sfc-item", "cWhCode", "store\t01\t 线边库 "), "09\t01\t07");
  EXPECT_EQ(resolved("sfc-item", "cModal", "按成本项目"), "1");
  EXPECT_EQ(resolved("sfc-item", "cModal", "By Cost Item"), "1");
  EXPECT_EQ(resolved("sfc-item", "bIncludeExpire", "否"), "0");
  EXPECT_EQ(resolved("sfc-item", "cJudgeMoney", "等于零\t小于零"), "1\t2");
  EXPECT_EQ(resolved("fx-wt", "cVouType", "材料出库单"), "11");
}

TEST_F(NamedValues, GiveWayToCodes) {
  EXPECT_EQ(resolved("sfc-item", "cWhCode", "01"), "01");    // the name of 08 as well
  EXPECT_EQ(resolved("sfc-item", "cInvClass", "01"), "01");  // the beginning of 0101, the name of 02
  EXPECT_EQ(resolved("sfc-item", "cInvClass", "钢材"), "0101");
  EXPECT_EQ(resolved("sfc-item", "cModal", "1"), "1");
  EXPECT_EQ(resolved("sfc-item", "cJudgeMoney", "02"), "02");  // two choices of one digit
}

TEST_F(NamedValues, StayWhenTheyAreNeitherCodeNorName) {
  EXPECT_EQ(resolved("sfc-item", "cWhCode", "线边"), "线边");
  EXPECT_EQ(resolved("sfc-item", "cModal", "nothing"), "nothing");
  EXPECT_EQ(resolved("sfc-item", "cBatchIA", "P1 "), "P1 ");  // a batch has no name
  EXPECT_EQ(resolved("sfc-item", "cFree1", "线边库"), "线边库");
  EXPECT_EQ(resolved("sfc-item", "cWhCode", ""), "");
  EXPECT_EQ(resolved("sfc-item", "cWhCode", "07\t\t"), "07\t\t");
}

TEST_F(NamedValues, AreRefusedForSeveral) {
  EXPECT_EQ(refusal(Language::chinese),
            "过滤项 cWhCode（仓库）：名称为“成品库”的有 2 个，请改写编码：11 成品库、12 成品库");
  EXPECT_EQ(refusal(Language::english),
            "filter item cWhCode (Warehouse): 2 are named \"成品库\"; give the code of one: 11 成品库, 12 成品库");
}

TEST_F(NamedValues, AreCutShortWhenThereAreMany) {
  session_.execute("Delete From Warehouse");
  for (int number = 10; number < 35; ++number)
    session_.execute("Insert Into Warehouse (cWhCode, cWhName) Values (N'" + std::to_string(number) + "', N'成品库')");
  EXPECT_THAT(refusal(Language::english), testing::EndsWith(", 29 成品库, and 5 more"));
  EXPECT_THAT(refusal(Language::chinese), testing::EndsWith("、29 成品库，另有 5 个"));
}

TEST_F(NamedValues, MayBeTheBoundsOfARange) {
  FilterEntry entry;
  entry.item = {.key = "cWhCode", .chinese = "仓库", .english = "Warehouse", .range = true, .lookup = &warehouses};
  entry.value = "原料库";
  entry.value2 = "线边库";
  resolveNames(entry, session_, Language::chinese);
  EXPECT_EQ(entry.value, "01");
  EXPECT_EQ(entry.value2, "07");
}

TEST_F(NamedValues, StayBesideAReadyMadeConditionAndWithoutTheMaster) {
  FilterEntry entry;
  entry.item = {.key = "cWhCode", .chinese = "仓库", .english = "Warehouse", .lookup = &warehouses};
  entry.value = "线边库";
  entry.sql = "1 = 1";
  resolveNames(entry, session_, Language::chinese);
  EXPECT_EQ(entry.value, "线边库");
  session_.execute("Drop Table Warehouse");
  EXPECT_EQ(resolved("sfc-item", "cWhCode", "线边库"), "线边库");
}

TEST_F(NamedValues, WaitForTheChoicesThatTheDialogMakes) {
  FilterObject filter(reportNamed("fx-wt").registration, InitialValues::none);
  FilterEntry& type = *filter.find("cVouType");
  type.value = "材料出库单";
  resolveNames(filter, session_, Language::chinese, true);
  EXPECT_EQ(type.value, "材料出库单");
  type.item.choices = {{"11X", "材料出库单", "Material issue"}};
  resolveOffered(filter, session_, Language::chinese);
  EXPECT_EQ(type.value, "11X");
}

TEST_F(NamedValues, AreTakenWhenADialogIsChanged) {
  FilterObject filter(reportNamed("sfc-item").registration);
  EXPECT_EQ(changeItem(filter, "仓库=线边库", session_, Language::chinese).value, "07");
  EXPECT_EQ(changeItem(filter, "Report Mode=按费用项目", session_, Language::chinese).value, "2");
  EXPECT_THROW(changeItem(filter, "cModal=无", session_, Language::chinese), std::invalid_argument);
}

// A caption says which item is meant in each report and either language.
TEST(Captions, NameOneItemEach) {
  for (const Report& report : reports()) {
    FilterObject filter(report.registration);
    for (const ItemRegistration& item : report.registration.items) {
      for (const Language language : {Language::chinese, Language::english}) {
        const FilterEntry* const found = findItem(filter, item.caption(language));
        ASSERT_NE(found, nullptr) << report.registration.name << ' ' << item.key;
        EXPECT_EQ(found->item.key, item.key) << report.registration.name;
      }
    }
  }
}

TEST(Captions, SetItems) {
  FilterObject filter(reportNamed("sfc-item").registration);
  const std::vector<std::string> settings = {"仓库=07", "DEPARTMENT = 05", "记账日期=2024-03-01..2024-03-31"};
  setFilterItems(filter, settings);
  EXPECT_EQ(filter.find("cWhCode")->value, "07");
  EXPECT_EQ(filter.find("cDepCode")->value, "05");
  EXPECT_EQ(filter.find("dKeepDate")->value2, "2024-03-31");
  // One item, however it is called.
  EXPECT_THROW(setFilterItems(filter, std::vector<std::string>{"年=1"}), std::invalid_argument);
  EXPECT_THROW(setFilterItems(filter, std::vector<std::string>{"会计年度=2024", "iYear=2023"}), std::invalid_argument);
}

TEST(Captions, OfSeveralItemsAreRefusedAndKeysWin) {
  FilterObject filter(reportNamed("sfc-item").registration);
  filter.add({.key = "one", .chinese = "同名", .english = "Same"});
  filter.add({.key = "two", .chinese = "同名", .english = "one"});
  try {
    findItem(filter, "同名");
    FAIL() << "two items are called so";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "several filter items are called \"同名\"; write the key of one: one, two");
  }
  EXPECT_EQ(findItem(filter, "one")->item.key, "one");
  EXPECT_EQ(findItem(filter, "no such item"), nullptr);
}

TEST_F(NamedValues, AreOfferedAfterTheMessageThatAnItemIsEmpty) {
  FilterObject filter = ledger("P1", "");
  EXPECT_EQ(valuesToGive(filter, "批号不能为空", session_, Language::chinese), "可选的批号（cBatchIA）：B0、B1、B3");
  EXPECT_EQ(valuesToGive(filter, "Batch must be given", session_, Language::english),
            "to be given for cBatchIA (Batch): B0, B1, B3");
  EXPECT_EQ(valuesToGive(filter, "the batch must be given", session_, Language::english),
            "to be given for cBatchIA (Batch): B0, B1, B3");
  EXPECT_EQ(valuesToGive(filter, "仓库不能为空", session_, Language::chinese),
            "可选的仓库（cWhCode）：07 线边库、09 Store");
  FilterObject inWarehouse = ledger("P1", "07");
  EXPECT_EQ(valuesToGive(inWarehouse, "批号不能为空", session_, Language::chinese), "可选的批号（cBatchIA）：B0、B1");
  FilterObject without = ledger("P3", "07");
  EXPECT_EQ(valuesToGive(without, "批号不能为空", session_, Language::chinese), "账套中没有可选的批号");
  EXPECT_EQ(valuesToGive(without, "Batch must be given", session_, Language::english),
            "the account has nothing to give for cBatchIA (Batch)");
}

TEST_F(NamedValues, AreOfferedForTheItemThatTheMessageIsAbout) {
  FilterObject filter = ledger("P1", "07");
  EXPECT_EQ(valuesToGive(filter, "自由项10不能为空", session_, Language::chinese), "可选的自由项10（cFree10）：大");
  EXPECT_EQ(valuesToGive(filter, "自由项1不能为空", session_, Language::chinese), "可选的自由项1（cFree1）：红");
  EXPECT_EQ(valuesToGive(filter, "仓库不能为空", session_, Language::chinese), std::nullopt);  // it is given
  EXPECT_EQ(valuesToGive(filter, "", session_, Language::chinese), std::nullopt);
}

TEST_F(NamedValues, AreOfferedTwentyAtMost) {
  for (int number = 10; number < 32; ++number) {
    const std::string text = std::to_string(number);
    std::string statement =
        "Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, bRdFlag, bFlag, cInvCode, cBatchIA) Values (";
    statement.append(text).append(", 2024, 1, N'01', 1, 0, N'P9', N'L").append(text).append("')");
    session_.execute(statement);
  }
  FilterObject filter = ledger("P9", "");
  EXPECT_THAT(*valuesToGive(filter, "批号不能为空", session_, Language::chinese),
              testing::EndsWith("、L29，另有 2 个"));
}

}  // namespace
}  // namespace quillon::workbench
