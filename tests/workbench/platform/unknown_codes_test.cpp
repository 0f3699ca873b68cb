#include "workbench/platform/unknown_codes.h"

#include <gmock/gmock.h>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/schema.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/lookup.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UnknownCodes : public testing::Test {
 protected:
  UnknownCodes() {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    account->execute("Insert Into Warehouse (cWhCode, cWhName) Values (N'01', N'原料库'), (N'07', N'线边库')");
    account->execute("Insert Into Department (cDepCode, cDepName) Values (N'D''1', N'一车间')");
    account->execute("Insert Into orvsystem..ua_user (cUser_Id, cUser_Name) Values (N'demo', N'演示')");
    account->execute(
        "Insert Into sfc_workcenter (WcId, WcCode, Description) Values (1, N'W1', N'装配'), (2, N'W2', N'涂装线')");
    session_.setAccount(AccountSource::inFile(file_.path()));
    session_.open("", "", optionsUnspecified);
  }

  std::vector<std::string> lines(const std::string& report, const std::string& key, const std::string& value) {
    FilterObject filter(reportNamed(report).registration);
    filter.find(key)->value = value;
    std::vector<std::string> english;
    for (const Message& line : unknownCodes(filter, session_))
      english.push_back(line.english());
    return english;
  }

  test::TemporaryFile file_{".qacc"};
  AccountSession session_;
};

TEST_F(UnknownCodes, AreToldWithTheNearestCodeOrName) {
  EXPECT_THAT(lines("sfc-item", "cWhCode", "Q7"),
              ElementsAre("filter item cWhCode: the account has no warehouse Q7; did you mean 07 线边库?"));
  EXPECT_THAT(lines("sfc-item", "cWhCode", "线边"),
              ElementsAre("filter item cWhCode: the account has no warehouse 线边; did you mean 07 线边库?"));
  EXPECT_THAT(lines("fx-detail", "cWhCode", "原料库"),
              ElementsAre("filter item cWhCode: the account has no warehouse 原料库; did you mean 01 原料库?"));
  EXPECT_THAT(lines("outsum-item", "cMaker", "dmeo"),
              ElementsAre("filter item cMaker: the account has no user dmeo; did you mean demo 演示?"));
  EXPECT_THAT(lines("outsum-item", "cworkcentername", "涂装"),
              ElementsAre("filter item cworkcentername: the account has no work centre 涂装; did you mean 涂装线?"));
}

TEST_F(UnknownCodes, AreToldWithoutASuggestionWhereNothingIsNear) {
  EXPECT_THAT(lines("sfc-item", "cWhCode", "ZZ"), ElementsAre("filter item cWhCode: the account has no warehouse ZZ"));
  EXPECT_THAT(lines("fx-wt", "Customer.cCusCode", "C1"),
              ElementsAre("filter item Customer.cCusCode: the account has no customer C1"));
}

TEST_F(UnknownCodes, AreToldOneByOne) {
  EXPECT_THAT(lines("sfc-item", "cWhCode", "01\tZZ\t 07 \t\tYY"),
              ElementsAre("filter item cWhCode: the account has no warehouse ZZ",
                          "filter item cWhCode: the account has no warehouse YY"));
}

TEST_F(UnknownCodes, AreNoneWhereTheAccountHasThem) {
  EXPECT_THAT(lines("sfc-item", "cWhCode", "01"), IsEmpty());
  EXPECT_THAT(lines("sfc-item", "cDepCode", "d'1"), IsEmpty()) << "codes are compared as the account compares them";
  EXPECT_THAT(lines("sfc-item", "cWhCode", ""), IsEmpty());
}

// A quote in a code stays in the code.
TEST_F(UnknownCodes, AreAskedForWithoutPower) {
  EXPECT_THAT(lines("sfc-item", "cWhCode", "x' Delete From Warehouse --"),
              ElementsAre("filter item cWhCode: the account has no warehouse x' Delete From Warehouse --"));
  EXPECT_THAT(lines("sfc-item", "cWhCode", "01"), IsEmpty());
}

// The items take the beginning of a code, bounds, or no code at all.
TEST_F(UnknownCodes, AreNotLookedForWhereNoWholeCodeIsMeant) {
  for (const auto& [report, key] : std::vector<std::pair<std::string, std::string>>{{"sfc-item", "cInvClass"},
                                                                                    {"outsum-item", "cInvCCode"},
                                                                                    {"outsum-item", "cCusCCode"},
                                                                                    {"fx-wt", "Inventory.cInvCCode"},
                                                                                    {"fx-wt", "Customer.cCCCode"},
                                                                                    {"fx-wt", "Vendor.cVCCode"},
                                                                                    {"sfc-item", "dKeepDate"},
                                                                                    {"sfc-item", "cBatchIA"},
                                                                                    {"fx-wt", "cVouCode"}}) {
    EXPECT_THAT(lines(report, key, "ZZ"), IsEmpty()) << key;
  }
  FilterObject filter(reportNamed("sfc-item").registration);
  FilterEntry& warehouse = *filter.find("cWhCode");
  warehouse.value = "ZZ";
  warehouse.item.range = true;
  EXPECT_THAT(unknownCodes(filter, session_), IsEmpty());
  warehouse.item.range = false;
  warehouse.sql = "wh.cWhCode Like N'0%'";
  EXPECT_THAT(unknownCodes(filter, session_), IsEmpty());
}

TEST_F(UnknownCodes, AreNotToldWhenTheMasterCannotBeAsked) {
  session_.execute("Drop Table Warehouse");
  EXPECT_THAT(lines("sfc-item", "cWhCode", "ZZ"), IsEmpty());
}

TEST_F(UnknownCodes, AreLookedForInTablesAndColumnsOfTheAccount) {
  int masters = 0;
  for (const Report& report : reports()) {
    for (const ItemRegistration& item : report.registration.items) {
      if (item.lookup == nullptr || item.kind != InputKind::reference || item.beginning) continue;
      ++masters;
      EXPECT_FALSE(hasCode(*item.lookup, "none of its codes", false, session_)) << item.key;
      EXPECT_NO_THROW(findEntries(*item.lookup, {.limit = 1}, session_)) << item.key;
    }
  }
  EXPECT_EQ(masters, 27);
}

}  // namespace
}  // namespace quillon::workbench
