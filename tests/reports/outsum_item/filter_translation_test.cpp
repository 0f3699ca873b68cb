#include "reports/outsum_item/filter_translation.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/frame/fakes.h"

namespace quillon::outsum_item {
namespace {

using fakes::ItemValues;
using testing::ElementsAre;

class OutsumFilterTranslation : public testing::Test {
 protected:
  OutsumFilterTranslation() {
    module.session = std::make_shared<fakes::FakeSession>(platform.record, platform.answers.queries);
    module.login = std::make_shared<fakes::FakeLogin>(platform.record);
  }

  FilterConditions translated(std::vector<ItemValues> items) {
    filter = platform.filter(std::move(items));
    FilterConditions conditions;
    translateFilter(*filter, module, conditions);
    return conditions;
  }
  std::string where(std::vector<ItemValues> items) { return translated(std::move(items)).where; }

  fakes::FakePlatform platform;
  Module module{platform};
  std::shared_ptr<fakes::FakeFilter> filter;
};

TEST_F(OutsumFilterTranslation, NoItemsGiveTheBareCondition) {
  const FilterConditions conditions = translated({});
  EXPECT_EQ(conditions.where, "Where 1 = 1 ");
  EXPECT_EQ(conditions.year, "");
  EXPECT_EQ(conditions.mode, "");
  EXPECT_EQ(conditions.source, "");
  EXPECT_EQ(conditions.grade, "");
  EXPECT_FALSE(conditions.monthRestricted);
}

struct KeyCase {
  const char* key;
  const char* value;
  const char* fragment;
};

// The keys that add a fragment of a plain form; those with rules of their own have tests of their own below.
const std::vector<KeyCase> keyCases{
    {"cBusType", "a\tb", "And base.cBustype In ('a','b') "},
    {"cVouCode", "V1", "And base.cVoucode = N'V1' "},
    {"cInvCCode", "01", "And inv.cInvCCode Like '01%' "},
    {"cInvCode", "a\tb", "And inv.cInvcode In ('a','b') "},
    {"cInvPspCode", "a\tb", "And base.cPspCode In ('a','b') "},
    {"RdCode", "a\tb", "And base.cRdCode In ('a','b') "},
    {"cDepCode", "a\tb", "And base.cAccDep In ('a','b') "},
    {"cProCode", "P", "And base.cProCode = N'P' "},
    {"cWhDep", "a\tb", "And base.cDepCode In ('a','b') "},
    {"cCusCCode", "02", "And cus.cCCCode Like '02%' "},
    {"cCusCode", "a\tb", "And base.cCuscode In ('a','b') "},
    {"cVenCode", "a\tb", "And base.cVenCode In ('a','b') "},
    {"cItem_Class", "00", "And base.cItem_Class = N'00' "},
    {"cItemCode", "a\tb", "And base.citemcode In ('a','b') "},
    {"cOppHead", "a\tb", "And base.cOppHead In ('a','b') "},
    {"strContractCode", "C", "And base.strContractCode = N'C' "},
    {"cProordercode", "O", "And base.cProordercode = N'O' "},
    {"iProorderids", "7", "And base.iProorderids = 7 "},
    {"cworkprocode", "10", "And base.cworkprocode = 10 "},
    {"cworkcentername", "a\tb", "And base.cworkcentername In ('a','b') "},
    {"cSaleorderCode", "S", "And base.cSaleorderCode = N'S' "},
    {"isaleorderids", "8", "And base.isaleorderids = 8 "},
    {"exoCode", "E", "And base.exoCode = N'E' "},
    {"iexrowno", "3", "And base.iexrowno = 3 "},
    {"cImordercode", "I", "And base.cImordercode = N'I' "},
    {"cpurorderCode", "U", "And base.cpurorderCode = N'U' "},
    {"centrustordercode", "T", "And base.centrustordercode = N'T' "},
    {"cBuscode", "B", "And base.cBuscode = N'B' "},
    {"cperson", "a\tb", "And base.cPersonCode In ('a','b') "},
    {"cMaker", "a\tb", "And base.cMaker In ('a','b') "},
    {"cFree1", "a\tb", "And base.cFree1 In ('a','b') "},
    {"cFree2", "a\tb", "And base.cFree2 In ('a','b') "},
    {"cFree3", "a\tb", "And base.cFree3 In ('a','b') "},
    {"cFree4", "a\tb", "And base.cFree4 In ('a','b') "},
    {"cFree5", "a\tb", "And base.cFree5 In ('a','b') "},
    {"cFree6", "a\tb", "And base.cFree6 In ('a','b') "},
    {"cFree7", "a\tb", "And base.cFree7 In ('a','b') "},
    {"cFree8", "a\tb", "And base.cFree8 In ('a','b') "},
    {"cFree9", "a\tb", "And base.cFree9 In ('a','b') "},
    {"cFree10", "a\tb", "And base.cFree10 In ('a','b') "},
    {"cDefine1", "a\tb", "And base.cDefine1 In ('a','b') "},
    {"cDefine2", "a\tb", "And base.cDefine2 In ('a','b') "},
    {"cDefine3", "a\tb", "And base.cDefine3 In ('a','b') "},
    {"cDefine8", "a\tb", "And base.cDefine8 In ('a','b') "},
    {"cDefine9", "a\tb", "And base.cDefine9 In ('a','b') "},
    {"cDefine10", "a\tb", "And base.cDefine10 In ('a','b') "},
    {"cDefine11", "a\tb", "And base.cDefine11 In ('a','b') "},
    {"cDefine12", "a\tb", "And base.cDefine12 In ('a','b') "},
    {"cDefine13", "a\tb", "And base.cDefine13 In ('a','b') "},
    {"cDefine14", "a\tb", "And base.cDefine14 In ('a','b') "},
    {"cDefine22", "a\tb", "And base.cDefine22 In ('a','b') "},
    {"cDefine23", "a\tb", "And base.cDefine23 In ('a','b') "},
    {"cDefine24", "a\tb", "And base.cDefine24 In ('a','b') "},
    {"cDefine25", "a\tb", "And base.cDefine25 In ('a','b') "},
    {"cDefine28", "a\tb", "And base.cDefine28 In ('a','b') "},
    {"cDefine29", "a\tb", "And base.cDefine29 In ('a','b') "},
    {"cDefine30", "a\tb", "And base.cDefine30 In ('a','b') "},
    {"cDefine31", "a\tb", "And base.cDefine31 In ('a','b') "},
    {"cDefine32", "a\tb", "And base.cDefine32 In ('a','b') "},
    {"cDefine33", "a\tb", "And base.cDefine33 In ('a','b') "},
    {"cDefine4", "2024-01-31", "And base.cDefine4 = N'2024-01-31' "},
    {"cDefine6", "2024-01-31", "And base.cDefine6 = N'2024-01-31' "},
    {"cDefine16", "2024-01-31", "And base.cDefine16 = N'2024-01-31' "},
    {"cDefine36", "2024-01-31", "And base.cDefine36 = N'2024-01-31' "},
    {"cDefine37", "2024-01-31", "And base.cDefine37 = N'2024-01-31' "},
    {"cDefine5", "5", "And base.cDefine5 = 5 "},
    {"cDefine7", "1.5", "And base.cDefine7 = 1.5 "},
    {"cDefine15", "15", "And base.cDefine15 = 15 "},
    {"cDefine26", "2.6", "And base.cDefine26 = 2.6 "},
    {"cDefine27", "2.7", "And base.cDefine27 = 2.7 "},
    {"cDefine34", "34", "And base.cDefine34 = 34 "},
    {"cDefine35", "35", "And base.cDefine35 = 35 "},
    {"cInvDefine1", "a\tb", "And inv.cInvDefine1 In ('a','b') "},
    {"cInvDefine2", "a\tb", "And inv.cInvDefine2 In ('a','b') "},
    {"cInvDefine3", "a\tb", "And inv.cInvDefine3 In ('a','b') "},
    {"cInvDefine4", "a\tb", "And inv.cInvDefine4 In ('a','b') "},
    {"cInvDefine5", "a\tb", "And inv.cInvDefine5 In ('a','b') "},
    {"cInvDefine6", "a\tb", "And inv.cInvDefine6 In ('a','b') "},
    {"cInvDefine7", "a\tb", "And inv.cInvDefine7 In ('a','b') "},
    {"cInvDefine8", "a\tb", "And inv.cInvDefine8 In ('a','b') "},
    {"cInvDefine9", "a\tb", "And inv.cInvDefine9 In ('a','b') "},
    {"cInvDefine10", "a\tb", "And inv.cInvDefine10 In ('a','b') "},
    {"cInvDefine11", "11", "And inv.cInvDefine11 = 11 "},
    {"cInvDefine12", "12", "And inv.cInvDefine12 = 12 "},
    {"cInvDefine13", "1.3", "And inv.cInvDefine13 = 1.3 "},
    {"cInvDefine14", "1.4", "And inv.cInvDefine14 = 1.4 "},
    {"cInvDefine15", "2024-01-31", "And inv.cInvDefine15 = N'2024-01-31' "},
    {"cInvDefine16", "2024-01-31", "And inv.cInvDefine16 = N'2024-01-31' "},
};

TEST_F(OutsumFilterTranslation, EachKeyAddsItsFragment) {
  for (const KeyCase& row : keyCases) {
    EXPECT_EQ(where({{.name = row.key, .value = row.value}}), std::string("Where 1 = 1 ") + row.fragment) << row.key;
    EXPECT_EQ(filter->items[0].token, tokenReport) << row.key;
  }
}

TEST_F(OutsumFilterTranslation, AKeyIsFoundWhateverItsLetterCase) {
  for (const KeyCase& row : keyCases) {
    std::string upper = row.key;
    for (char& c : upper)
      c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    EXPECT_EQ(where({{.name = upper, .value = row.value}}), std::string("Where 1 = 1 ") + row.fragment) << upper;
  }
}

TEST_F(OutsumFilterTranslation, AnEmptyValueAddsNothingAndIsStillTheReports) {
  for (const KeyCase& row : keyCases) {
    EXPECT_EQ(where({{.name = row.key, .sql = "never"}}), "Where 1 = 1 ") << row.key;
    EXPECT_EQ(filter->items[0].token, tokenReport) << row.key;
  }
}

TEST_F(OutsumFilterTranslation, TheYearIsAddedEvenWhenItIsEmpty) {
  const FilterConditions given = translated({{.name = "iYear", .value = "2024"}});
  EXPECT_EQ(given.where, "Where 1 = 1 And base.iYear = 2024 ");
  EXPECT_EQ(given.year, "2024");
  const FilterConditions empty = translated({{.name = "iYear"}});
  EXPECT_EQ(empty.where, "Where 1 = 1 And base.iYear =  ");
  EXPECT_EQ(empty.year, "");
}

TEST_F(OutsumFilterTranslation, ModeAndGradeAreStoredWithoutAFragment) {
  const FilterConditions conditions = translated({{.name = "cModal", .value = "0"}, {.name = "iGrade", .value = "3"}});
  EXPECT_EQ(conditions.where, "Where 1 = 1 ");
  EXPECT_EQ(conditions.mode, "0");
  EXPECT_EQ(conditions.grade, "3");
}

TEST_F(OutsumFilterTranslation, AnEmptyGradeIsOneAndAnEmptyModeIsStored) {
  FilterConditions conditions;
  conditions.mode = "2";
  translateFilter(*platform.filter({{.name = "iGrade"}, {.name = "cModal"}}), module, conditions);
  EXPECT_EQ(conditions.grade, "1");
  EXPECT_EQ(conditions.mode, "");
}

TEST_F(OutsumFilterTranslation, SourceZeroAddsNothing) {
  const FilterConditions conditions = translated({{.name = "cSource", .value = "0"}});
  EXPECT_EQ(conditions.where, "Where 1 = 1 ");
  EXPECT_EQ(conditions.source, "0");
}

TEST_F(OutsumFilterTranslation, AnyOtherSourceAsksForLinesInTheOutboundSplit) {
  for (const char* value : {"", "1", "00"}) {
    const FilterConditions conditions = translated({{.name = "cSource", .value = value}});
    EXPECT_EQ(conditions.where,
              "Where 1 = 1  And base.AutoID In (Select Distinct iSubID From ia_subsidiary_ItemOut with(nolock)) ");
    EXPECT_EQ(conditions.source, value);
  }
}

TEST_F(OutsumFilterTranslation, AnEmptyWarehouseStillAsksForOne) {
  EXPECT_EQ(where({{.name = "cWhCode"}}), "Where 1 = 1 And wh.cWhCode Is Not Null ");
  EXPECT_EQ(where({{.name = "cWhCode", .value = "01\t 02 "}}), "Where 1 = 1 And wh.cWhCode In ('01','02') ");
}

TEST_F(OutsumFilterTranslation, EachBoundOfADateRangeStandsAlone) {
  EXPECT_EQ(where({{.name = "dVouDate", .value = "2024-01-01"}}), "Where 1 = 1 And base.dVouDate >= '2024-01-01' ");
  EXPECT_EQ(where({{.name = "dVouDate", .value2 = "2024-03-31"}}), "Where 1 = 1 And base.dVouDate <= '2024-03-31' ");
  EXPECT_EQ(where({{.name = "dVouDate", .value = "2024-01-01", .value2 = "2024-03-31"}}),
            "Where 1 = 1 And base.dVouDate >= '2024-01-01' And base.dVouDate <= '2024-03-31' ");
  EXPECT_EQ(where({{.name = "dKeepDate", .value = "2024-01-01"}}), "Where 1 = 1 And base.dKeepDate >= '2024-01-01' ");
  EXPECT_EQ(where({{.name = "dKeepDate", .value2 = "2024-03-31"}}), "Where 1 = 1 And base.dKeepDate <= '2024-03-31' ");
  EXPECT_EQ(where({{.name = "dKeepDate", .value = "2024-01-01", .value2 = "2024-03-31"}}),
            "Where 1 = 1 And base.dKeepDate >= '2024-01-01' And base.dKeepDate <= '2024-03-31' ");
  EXPECT_EQ(where({{.name = "dKeepDate"}}), "Where 1 = 1 ");
}

TEST_F(OutsumFilterTranslation, VoucherTypes05And32AlsoChooseTheTypesThatBelongToThem) {
  EXPECT_EQ(where({{.name = "cVouType", .value = "05"}}), "Where 1 = 1 And base.cVouType In ('05','06','5','6') ");
  EXPECT_EQ(where({{.name = "cVouType", .value = "32"}}), "Where 1 = 1 And base.cVouType In ('32','3201') ");
  EXPECT_EQ(where({{.name = "cVouType", .value = "11\t32\t05\t08"}}),
            "Where 1 = 1 And base.cVouType In ('11','32','3201','05','06','5','6','08') ");
  EXPECT_EQ(where({{.name = "cVouType", .value = "05\t05"}}),
            "Where 1 = 1 And base.cVouType In ('05','06','5','6','05','06','5','6') ");
}

TEST_F(OutsumFilterTranslation, OtherVoucherTypesAreLeftAlone) {
  EXPECT_EQ(where({{.name = "cVouType", .value = "005\t3205\t320"}}),
            "Where 1 = 1 And base.cVouType In ('005','3205','320') ");
  EXPECT_EQ(where({{.name = "cVouType"}}), "Where 1 = 1 ");
}

TEST_F(OutsumFilterTranslation, TheExpiryConditionComesOnlyWithZero) {
  EXPECT_EQ(where({{.name = "dIncludeExpire", .value = "0"}}),
            "Where 1 = 1 And IsNull(inv.dEDate , '9999-12-31') > ='2024-06-30'  ");
  EXPECT_EQ(where({{.name = "dIncludeExpire", .value = "1"}}), "Where 1 = 1 ");
  EXPECT_EQ(where({{.name = "dIncludeExpire"}}), "Where 1 = 1 ");
  EXPECT_EQ(filter->items[0].token, tokenReport);
}

TEST_F(OutsumFilterTranslation, AQuoteInsideAValueStaysAsItIs) {
  EXPECT_EQ(where({{.name = "cVouCode", .value = "a'b"}}), "Where 1 = 1 And base.cVoucode = N'a'b' ");
}

TEST_F(OutsumFilterTranslation, UnknownKeysGoBackToTheFilterObject) {
  // Keys of the receipt/issue/balance report, document fields that the ledger does not keep, the batch, anything else.
  const std::vector<std::string> keys{"bIncludeExpire", "bIncludeTransVouch", "cFSType",   "cInvClass", "cJudgeCost",
                                      "cJudgeMoney",    "cJudgeQuantity",     "cDefine17", "cDefine18", "cDefine19",
                                      "cDefine20",      "cDefine21",          "cBatchIA",  "whatever"};
  for (const std::string& key : keys) {
    EXPECT_EQ(where({{.name = key, .value = "1"}}), "Where 1 = 1 ") << key;
    EXPECT_EQ(filter->items[0].token, tokenFilter) << key;
  }
}

TEST_F(OutsumFilterTranslation, FragmentsFollowTheListAndTheFilterObjectsOwnComesBehind) {
  EXPECT_EQ(where({{.name = "cBatchIA", .value = "B1", .sql = "base.cBatchIA = N'B1'"},
                   {.name = "iYear", .value = "2024"},
                   {.name = "cMaker", .value = "demo"},
                   {.name = "other", .value = "x", .sql = "inv.cInvStd = N'x'"}}),
            "Where 1 = 1 And base.iYear = 2024 And base.cMaker In ('demo')  AND base.cBatchIA = N'B1' And "
            "inv.cInvStd = N'x'");
}

TEST_F(OutsumFilterTranslation, AnItemIsClaimedBeforeItIsRead) {
  translated({{.name = "cVouCode", .value = "V1"}});
  EXPECT_THAT(platform.record.calls,
              ElementsAre("FilterList.Count", "FilterList(1)", "FilterItem.LngGrouptoken = 1", "FilterItem.Name",
                          "FilterItem.varValue", "FilterItem.varValue2", "FilterItem.RangeInput",
                          "FilterItem.IsMultSel", "GetWhereWithToken(0)", "create PublicComponent", "iFxStartMonth()"));
}

TEST_F(OutsumFilterTranslation, ALateStartOfTheBreakdownRestrictsTheMonths) {
  platform.answers.costItemStartMonth = 4;
  platform.answers.queries = {{.part = "AccInformation", .rows = {{"2024-03-01"}}}};
  const FilterConditions conditions =
      translated({{.name = "iYear", .value = "2024"}, {.name = "x", .value = "1", .sql = "inv.cInvStd = N'x'"}});
  EXPECT_EQ(conditions.where, "Where 1 = 1 And base.iYear = 2024  AND inv.cInvStd = N'x' And base.iMonth >= 4 ");
  EXPECT_TRUE(conditions.monthRestricted);
  EXPECT_THAT(platform.record.queries(),
              ElementsAre("Select cValue From AccInformation Where cSysID = 'IA' And cName = 'dIAStartDate'"));
}

TEST_F(OutsumFilterTranslation, NoRestrictionWhenTheBreakdownStartsInJanuaryOrWithTheAccount) {
  platform.answers.queries = {{.part = "AccInformation", .rows = {{"2024-04-01"}}}};
  for (const int start : {0, 1, 3, 4}) {
    platform.answers.costItemStartMonth = start;
    const FilterConditions conditions = translated({{.name = "iYear", .value = "2024"}});
    EXPECT_EQ(conditions.where, "Where 1 = 1 And base.iYear = 2024 ") << start;
    EXPECT_FALSE(conditions.monthRestricted) << start;
  }
}

TEST_F(OutsumFilterTranslation, YearModeAndGradeHoldUntilTheyAreGivenAnew) {
  FilterConditions conditions;
  platform.answers.costItemStartMonth = 4;
  translateFilter(*platform.filter({{.name = "iYear", .value = "2023"},
                                    {.name = "cModal", .value = "2"},
                                    {.name = "iGrade", .value = "2"},
                                    {.name = "cSource", .value = "0"},
                                    {.name = "cMaker", .value = "demo"}}),
                  module, conditions);
  EXPECT_TRUE(conditions.monthRestricted);
  platform.answers.costItemStartMonth = 0;
  translateFilter(*platform.filter({}), module, conditions);
  EXPECT_EQ(conditions.where, "Where 1 = 1 ");
  EXPECT_EQ(conditions.year, "2023");
  EXPECT_EQ(conditions.mode, "2");
  EXPECT_EQ(conditions.grade, "2");
  EXPECT_EQ(conditions.source, "");
  EXPECT_FALSE(conditions.monthRestricted);
}

TEST_F(OutsumFilterTranslation, AFailureAtAnyCallLeavesTheConditionsGoodForAnotherTranslation) {
  const std::vector<ItemValues> items{{.name = "iYear", .value = "2024"},
                                      {.name = "dIncludeExpire", .value = "0"},
                                      {.name = "other", .sql = "inv.cInvStd = N'x'"}};
  platform.answers.costItemStartMonth = 4;
  translated(items);  // creates the public component, which later translations find there
  platform.record.calls.clear();
  const FilterConditions expected = translated(items);
  const std::size_t calls = platform.record.calls.size();
  ASSERT_GT(calls, 20U);
  FilterConditions conditions;
  for (std::size_t failing = 1; failing <= calls; ++failing) {
    platform.record.calls.clear();
    platform.record.failAt = failing;
    EXPECT_THROW(translateFilter(*platform.filter(items), module, conditions), AutomationError) << failing;
    platform.record.failAt = 0;
    translateFilter(*platform.filter(items), module, conditions);
    EXPECT_EQ(conditions.where, expected.where) << failing;
    EXPECT_TRUE(conditions.monthRestricted) << failing;
  }
}

}  // namespace
}  // namespace quillon::outsum_item
