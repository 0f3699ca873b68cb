#include "workbench/platform/lookup.h"

#include <gmock/gmock.h>

#include <set>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/schema.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/account_session.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Lookups : public testing::Test {
 protected:
  Lookups() {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    for (const char* const sql :
         {"Insert Into Warehouse (cWhCode, cWhName) Values (N'01', N'原材料库'), (N'07', N'线边库'), (N'09', "
          "N'线边库'), (N'A1', N'重型件库'), (N'A2', N'Store 07')",
          "Insert Into Inventory (cInvCode, cInvName, cInvCCode, cComUnitCode, bCheckBatch, bCheckFree1, bCheckFree2, "
          "bCheckFree3, bCheckFree4, bCheckFree5, bCheckFree6, bCheckFree7, bCheckFree8, bCheckFree9, bCheckFree10) "
          "Select N'P-1', N'离心泵（单级） Q235', N'01', N'1', 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 "
          "Union Select N'P_2', null, N'01', N'1', 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0",
          "Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, bRdFlag, bFlag, cInvCode, cBatchIA) Values "
          "(1, 2024, 1, N'01', 1, 0, N'P-1', N'B1'), (2, 2024, 1, N'01', 1, 0, N'P-1', N'B1'), "
          "(3, 2024, 1, N'01', 1, 0, N'P_2', N'B1'), (4, 2024, 1, N'01', 1, 0, N'P-1', N''), "
          "(5, 2024, 1, N'01', 1, 0, N'P-1', null)",
          "Insert Into IA_Subsidiary_QC (AutoID, iYear, iMonth, cVouType, bRdFlag, bFlag, cInvCode, cBatchIA) Values "
          "(1, 2023, 12, N'34', 1, 0, N'P-1', N'B0')",
          "Insert Into VouchType (cVouchType, cVouchName) Values (N'01', N'采购入库单'), (N'99', N'手工单')",
          "Insert Into AA_Enum (EnumType, EnumCode, LocaleId, EnumName) Values "
          "(N'IA.BillforVch', N'采购入库单', N'zh-CN', N'采购入库单'), "
          "(N'IA.BillforVch', N'采购入库单', N'en-US', N'Purchase receipt'), "
          "(N'IA.BillforVch', N'采购入库单(暂估记账)', N'en-US', N'Purchase receipt (estimated)'), "
          "(N'IA.BusType', N'领料', N'zh-CN', N'领料'), (N'IA.BusType', N'领料', N'en-US', N'Material issue')",
          "Insert Into fItem (cItem_Class, cItem_Name, cTable) Values (N'00', N'工程', N'fItem_Project'), "
          "(N'01', N'研发', N'fItem_Research'), (N'02', N'其他', null), (N'CH', N'存货', N'Inventory')",
          "Insert Into fItem_Project (cItemCode, cItemName) Values (N'G1', N'净水厂')",
          "Insert Into fItem_Research (cItemCode, cItemName) Values (N'Y1', N'新泵')"})
      account->execute(sql);
    session_.setAccount(AccountSource::inFile(file_.path()));
    session_.open("", "", optionsUnspecified);
  }

  // What is found, "code name".
  std::vector<std::string> found(const Lookup& lookup, const LookupQuery& query = {}) {
    std::vector<std::string> texts;
    for (const LookupRow& row : findEntries(lookup, query, session_).rows)
      texts.push_back(entryText(row));
    return texts;
  }

  test::TemporaryFile file_{".qacc"};
  AccountSession session_;
};

TEST_F(Lookups, FindByAPartOfCodeOrName) {
  EXPECT_THAT(found(warehouses, {.search = "07"}), ElementsAre("07 线边库", "A2 Store 07"));
  EXPECT_THAT(found(warehouses, {.search = "边"}), ElementsAre("07 线边库", "09 线边库"));
  EXPECT_THAT(found(warehouses, {.search = "STORE"}), ElementsAre("A2 Store 07"));
  EXPECT_THAT(found(warehouses, {.search = "ａ１"}), ElementsAre("A1 重型件库"));
  EXPECT_THAT(found(warehouses, {.search = "zz"}), IsEmpty());
}

TEST_F(Lookups, FindByPinyinInitialsOfAnyReading) {
  EXPECT_THAT(found(warehouses, {.search = "xbk"}), ElementsAre("07 线边库", "09 线边库"));
  EXPECT_THAT(found(warehouses, {.search = "XB"}), ElementsAre("07 线边库", "09 线边库"));
  EXPECT_THAT(found(warehouses, {.search = "线bk"}), ElementsAre("07 线边库", "09 线边库"));
  EXPECT_THAT(found(warehouses, {.search = "zxj"}), ElementsAre("A1 重型件库"));
  EXPECT_THAT(found(warehouses, {.search = "cxj"}), ElementsAre("A1 重型件库"));
  EXPECT_THAT(found(inventories, {.search = "lxbdjq235"}), ElementsAre("P-1 离心泵（单级） Q235"));
  EXPECT_THAT(found(inventories, {.search = "（dj）"}), ElementsAre("P-1 离心泵（单级） Q235"));
  // A code has no initials, and its signs count.
  EXPECT_THAT(found(inventories, {.search = "p1"}), IsEmpty());
}

TEST_F(Lookups, FindEntriesThatHaveAllWords) {
  EXPECT_THAT(found(warehouses, {.search = " xbk  09 "}), ElementsAre("09 线边库"));
  EXPECT_THAT(found(warehouses, {.search = "07　库"}), ElementsAre("07 线边库"));
  EXPECT_THAT(found(warehouses, {.search = "   "}), SizeIs(5));
}

TEST_F(Lookups, PutWhatWasMeantExactlyFirst) {
  session_.execute("Insert Into Warehouse (cWhCode, cWhName) Values (N'00', N'库 a1'), (N'0A', N'a1')");
  EXPECT_THAT(found(warehouses, {.search = "a1"}), ElementsAre("0A a1", "A1 重型件库", "00 库 a1"));
}

TEST_F(Lookups, ComePageByPageWithTheCountOfAll) {
  const LookupPage page = findEntries(warehouses, {.offset = 1, .limit = 2}, session_);
  EXPECT_EQ(page.count, 5U);
  EXPECT_THAT(page.rows, ElementsAre(LookupRow{"07", "线边库"}, LookupRow{"09", "线边库"}));
  EXPECT_THAT(findEntries(warehouses, {.offset = 4, .limit = 2}, session_).rows,
              ElementsAre(LookupRow{"A2", "Store 07"}));
  EXPECT_THAT(findEntries(warehouses, {.offset = 9}, session_).rows, IsEmpty());
  EXPECT_THAT(findEntries(warehouses, {.limit = 0}, session_).rows, IsEmpty());
}

TEST_F(Lookups, NameTypesInTheLanguage) {
  EXPECT_THAT(found(voucherTypes), ElementsAre("01 采购入库单", "99 手工单"));
  EXPECT_THAT(found(voucherTypes, {.language = Language::english}),
              ElementsAre("01 Purchase receipt", "011 Purchase receipt (estimated)", "99 手工单"));
  EXPECT_THAT(found(businessTypes), ElementsAre("领料"));
  EXPECT_THAT(found(businessTypes, {.language = Language::english}), ElementsAre("领料 Material issue"));
}

TEST_F(Lookups, TellABatchWithEachOfItsInventories) {
  EXPECT_THAT(found(batches), ElementsAre("B0 P-1 离心泵（单级） Q235", "B1 P_2", "B1 P-1 离心泵（单级） Q235"));
  EXPECT_THAT(found(batches, {.search = "lxb b0"}), ElementsAre("B0 P-1 离心泵（单级） Q235"));
}

TEST_F(Lookups, HaveTheItemsOfAllProjectClasses) {
  EXPECT_THAT(found(projectItems), ElementsAre("G1 净水厂", "P_2", "P-1 离心泵（单级） Q235", "Y1 新泵"));
  session_.execute("Update fItem Set cTable = N''");
  EXPECT_THAT(found(projectItems), IsEmpty());
  EXPECT_FALSE(hasCode(projectItems, "G1", false, session_));
  EXPECT_THAT(entriesNamed(projectItems, "净水厂", Language::chinese, session_), IsEmpty());
}

TEST_F(Lookups, KnowCodesAndTheirBeginnings) {
  EXPECT_TRUE(hasCode(warehouses, "a1", false, session_));
  EXPECT_FALSE(hasCode(warehouses, "A", false, session_));
  EXPECT_TRUE(hasCode(warehouses, "A", true, session_));
  EXPECT_TRUE(hasCode(inventories, "P_", true, session_));
  EXPECT_FALSE(hasCode(warehouses, "_", true, session_));
  EXPECT_FALSE(hasCode(warehouses, "%", true, session_));
  EXPECT_FALSE(hasCode(warehouses, "' Or 1=1 --", false, session_));
}

TEST_F(Lookups, KnowTheEntriesOfAName) {
  EXPECT_THAT(entriesNamed(warehouses, "线边库", Language::chinese, session_),
              ElementsAre(LookupRow{"07", "线边库"}, LookupRow{"09", "线边库"}));
  EXPECT_THAT(entriesNamed(warehouses, "store 07", Language::chinese, session_),
              ElementsAre(LookupRow{"A2", "Store 07"}));
  EXPECT_THAT(entriesNamed(warehouses, "线边", Language::chinese, session_), IsEmpty());
}

TEST_F(Lookups, CanBeAskedOfAnyAccountAndAreFoundByTheirKind) {
  std::set<std::string_view> kinds;
  for (const Lookup* const lookup : lookups()) {
    EXPECT_TRUE(kinds.insert(lookup->kind).second) << lookup->kind;
    EXPECT_EQ(lookupOf(lookup->kind), lookup);
    EXPECT_NO_THROW(findEntries(*lookup, {}, session_)) << lookup->kind;
    EXPECT_NO_THROW(hasCode(*lookup, "1", true, session_)) << lookup->kind;
    EXPECT_FALSE(lookup->example.empty()) << lookup->kind;
  }
  EXPECT_EQ(lookupOf("WAREHOUSES"), &warehouses);
  EXPECT_EQ(lookupOf("warehouse"), nullptr);
}

// Whatever a filter item looks up can be listed.
TEST_F(Lookups, AreThoseOfTheFilterItems) {
  for (const Report& report : reports()) {
    for (const ItemRegistration& item : report.registration.items) {
      if (item.lookup == nullptr) continue;
      EXPECT_EQ(lookupOf(item.lookup->kind), item.lookup) << report.registration.name << ' ' << item.key;
    }
  }
}

}  // namespace
}  // namespace quillon::workbench
