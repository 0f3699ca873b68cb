#include "reports/sfc_item/filter_translation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon::sfc_item {
namespace {

using fakes::ItemValues;

class FilterTranslation : public testing::Test {
 protected:
  FilterTranslation() {
    module_.session = platform_.createSession();
    module_.login = std::make_shared<fakes::FakeLogin>(platform_.record);
  }

  FilterConditions translate(std::vector<ItemValues> items) {
    filter_ = platform_.filter(std::move(items));
    return translateFilter(*filter_, module_);
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
  std::shared_ptr<fakes::FakeFilter> filter_;
};

TEST_F(FilterTranslation, AnEmptyFilterHasOnlyTheBeginningOfItsCondition) {
  const FilterConditions conditions = translate({});
  EXPECT_EQ(conditions.where, "Where 1 = 1 ");
  EXPECT_EQ(conditions.opening, "");
  EXPECT_EQ(conditions.having, "");
  EXPECT_EQ(conditions.mode, "");
  EXPECT_EQ(conditions.year, "");
  EXPECT_EQ(conditions.balanceState, "");
  EXPECT_EQ(conditions.grade, "");
  EXPECT_EQ(conditions.month, "");
  EXPECT_FALSE(conditions.monthActive());
}

// One key, one value, and what they add behind "Where 1 = 1 ".
struct KeyCase {
  const char* key;
  const char* value;
  const char* where;
};

void PrintTo(const KeyCase& c, std::ostream* out) {
  *out << c.key << " = \"" << c.value << "\"";
}

class WhereText : public FilterTranslation, public testing::WithParamInterface<KeyCase> {};

TEST_P(WhereText, IsWhatTheKeyAdds) {
  const auto& [key, value, where] = GetParam();
  const FilterConditions conditions = translate({{key, value}});
  EXPECT_EQ(conditions.where, std::string("Where 1 = 1 ") + where);
  EXPECT_EQ(conditions.opening, "");
  EXPECT_EQ(conditions.having, "");
  EXPECT_EQ(filter_->items[0].token, 1);
}

INSTANTIATE_TEST_SUITE_P(Keys, WhereText,
                         testing::Values(KeyCase{"iYear", "2024", "And base.iYear = 2024 "},                          //
                                         KeyCase{"cInvClass", "01", "And inv.cInvCCode Like '01%' "},                 //
                                         KeyCase{"cInvCode", "01\t 02 ", "And inv.cInvcode In ('01','02') "},         //
                                         KeyCase{"cWhCode", "10\t20", "And wh.cWhCode In ('10','20') "},              //
                                         KeyCase{"cDepCode", "0501\t0502", "And dep.cDepCode In ('0501','0502')  "},  //
                                         KeyCase{"bIncludeExpire", "0",
                                                 "And IsNull(inv.dEDate , '9999-12-31') > ='2024-06-30'  "},
                                         KeyCase{"cFree1", "红\t蓝", "And base.cFree1 In ('红','蓝') "},  //
                                         KeyCase{"cFree2", "a\tb", "And base.cFree2 In ('a','b') "},      //
                                         KeyCase{"cFree3", "a\tb", "And base.cFree3 In ('a','b') "},      //
                                         KeyCase{"cFree4", "a\tb", "And base.cFree4 In ('a','b') "},      //
                                         KeyCase{"cFree5", "a\tb", "And base.cFree5 In ('a','b') "},      //
                                         KeyCase{"cFree6", "a\tb", "And base.cFree6 In ('a','b') "},      //
                                         KeyCase{"cFree7", "a\tb", "And base.cFree7 In ('a','b') "},      //
                                         KeyCase{"cFree8", "a\tb", "And base.cFree8 In ('a','b') "},      //
                                         KeyCase{"cFree9", "a\tb", "And base.cFree9 In ('a','b') "},      //
                                         KeyCase{"cFree10", "a\tb", "And base.cFree10 In ('a','b') "},    //
                                         KeyCase{"cDefine1", "a\tb", "And base.cDefine1 In ('a','b') "},  //
                                         KeyCase{"cDefine2", "a\tb", "And base.cDefine2 In ('a','b') "},  //
                                         KeyCase{"cDefine3", "a\tb", "And base.cDefine3 In ('a','b') "},  //
                                         KeyCase{"cDefine8", "a\tb", "And base.cDefine8 In ('a','b') "},  //
                                         KeyCase{"cDefine9", "a\tb", "And base.cDefine9 In ('a','b') "},  //
                                         KeyCase{"cDefine10", "a\tb", "And base.cDefine10 In ('a','b') "},
                                         KeyCase{"cDefine11", "a\tb", "And base.cDefine11 In ('a','b') "},
                                         KeyCase{"cDefine12", "a\tb", "And base.cDefine12 In ('a','b') "},
                                         KeyCase{"cDefine13", "a\tb", "And base.cDefine13 In ('a','b') "},
                                         KeyCase{"cDefine14", "a\tb", "And base.cDefine14 In ('a','b') "},
                                         KeyCase{"cDefine22", "a\tb", "And base.cDefine22 In ('a','b') "},
                                         KeyCase{"cDefine23", "a\tb", "And base.cDefine23 In ('a','b') "},
                                         KeyCase{"cDefine24", "a\tb", "And base.cDefine24 In ('a','b') "},
                                         KeyCase{"cDefine25", "a\tb", "And base.cDefine25 In ('a','b') "},
                                         KeyCase{"cDefine28", "a\tb", "And base.cDefine28 In ('a','b') "},
                                         KeyCase{"cDefine29", "a\tb", "And base.cDefine29 In ('a','b') "},
                                         KeyCase{"cDefine30", "a\tb", "And base.cDefine30 In ('a','b') "},
                                         KeyCase{"cDefine31", "a\tb", "And base.cDefine31 In ('a','b') "},
                                         KeyCase{"cDefine32", "a\tb", "And base.cDefine32 In ('a','b') "},
                                         KeyCase{"cDefine33", "a\tb", "And base.cDefine33 In ('a','b') "},
                                         KeyCase{"cDefine4", "2024-01-31", "And base.cDefine4 = N'2024-01-31' "},
                                         KeyCase{"cDefine6", "2024-01-31", "And base.cDefine6 = N'2024-01-31' "},
                                         KeyCase{"cDefine16", "x", "And base.cDefine16 = N'x' "},  //
                                         KeyCase{"cDefine36", "x", "And base.cDefine36 = N'x' "},  //
                                         KeyCase{"cDefine37", "x", "And base.cDefine37 = N'x' "},  //
                                         KeyCase{"cDefine5", "12", "And base.cDefine5 = 12 "},     //
                                         KeyCase{"cDefine7", "1.5", "And base.cDefine7 = 1.5 "},   //
                                         KeyCase{"cDefine15", "12", "And base.cDefine15 = 12 "},   //
                                         KeyCase{"cDefine26", "12", "And base.cDefine26 = 12 "},   //
                                         KeyCase{"cDefine27", "12", "And base.cDefine27 = 12 "},   //
                                         KeyCase{"cDefine34", "12", "And base.cDefine34 = 12 "},   //
                                         KeyCase{"cDefine35", "12", "And base.cDefine35 = 12 "},   //
                                         KeyCase{"bIncludeTransVouch", "0",
                                                 "And IsNull(base.cBustype, N'') Not In (N'调拨出库', N'调拨入库') "}));

INSTANTIATE_TEST_SUITE_P(EmptyValues, WhereText,
                         testing::Values(KeyCase{"cModal", "", ""},                              //
                                         KeyCase{"iYear", "", "And base.iYear =  "},             //
                                         KeyCase{"cInvClass", "", ""},                           //
                                         KeyCase{"cInvCode", "", ""},                            //
                                         KeyCase{"dKeepDate", "", ""},                           //
                                         KeyCase{"dVouDate", "", ""},                            //
                                         KeyCase{"cWhCode", "", "And wh.cWhCode Is Not Null "},  //
                                         KeyCase{"cDepCode", "", ""},                            //
                                         KeyCase{"cFSType", "", ""},                             //
                                         KeyCase{"iGrade", "", ""},                              //
                                         KeyCase{"cJudgeQuantity", "", ""},                      //
                                         KeyCase{"cJudgeMoney", "", ""},                         //
                                         KeyCase{"cJudgeCost", "", ""},                          //
                                         KeyCase{"bIncludeExpire", "", ""},                      //
                                         KeyCase{"cFree1", "", ""},                              //
                                         KeyCase{"cDefine1", "", ""},                            //
                                         KeyCase{"cDefine4", "", ""},                            //
                                         KeyCase{"cDefine5", "", ""},                            //
                                         KeyCase{"bIncludeTransVouch", "", ""}));

INSTANTIATE_TEST_SUITE_P(OtherValues, WhereText,
                         testing::Values(KeyCase{"cModal", "1", ""},              //
                                         KeyCase{"cFSType", "0", ""},             //
                                         KeyCase{"cFSType", "5", ""},             //
                                         KeyCase{"iGrade", "2", ""},              //
                                         KeyCase{"bIncludeExpire", "1", ""},      //
                                         KeyCase{"bIncludeExpire", "00", ""},     //
                                         KeyCase{"bIncludeTransVouch", "1", ""},  //
                                         // One value has no comma, and quotes are the filter's own affair.
                                         KeyCase{"cInvCode", "01", "And inv.cInvcode In ('01') "},
                                         KeyCase{"cInvCode", "O'Brien", "And inv.cInvcode In ('O'Brien') "},
                                         KeyCase{"cInvClass", "O'B", "And inv.cInvCCode Like 'O'B%' "}));

INSTANTIATE_TEST_SUITE_P(LetterCase, WhereText,
                         testing::Values(KeyCase{"CINVCODE", "01", "And inv.cInvcode In ('01') "},
                                         KeyCase{"iyear", "2024", "And base.iYear = 2024 "},
                                         // The column keeps the key's own spelling.
                                         KeyCase{"CFREE10", "a", "And base.cFree10 In ('a') "},
                                         KeyCase{"CDEFINE37", "x", "And base.cDefine37 = N'x' "}));

class UnknownKey : public FilterTranslation, public testing::WithParamInterface<const char*> {};

TEST_P(UnknownKey, IsLeftToTheFilterObject) {
  const FilterConditions conditions = translate({{GetParam(), "x", "", "base.c = N'x'"}, {"cInvCode", "01"}});
  EXPECT_EQ(conditions.where, "Where 1 = 1 And inv.cInvcode In ('01')  AND base.c = N'x'");
  EXPECT_EQ(filter_->items[0].token, 0);
  EXPECT_EQ(filter_->items[1].token, 1);
}

INSTANTIATE_TEST_SUITE_P(Keys, UnknownKey,
                         testing::Values("cBatchIA", "cDefine17", "cDefine18", "cDefine19", "cDefine20", "cDefine21",
                                         "cFree11", "cDefine38", "cInvDefine1", "", "cInvCode "));

TEST_F(FilterTranslation, ASeriesOfUnknownItemsKeepsItsOwnCondition) {
  const FilterConditions conditions =
      translate({{"cBatchIA", "x", "", "base.cBatchIA = N'x'"}, {"new", "", "", "y=1"}});
  EXPECT_EQ(conditions.where, "Where 1 = 1  AND base.cBatchIA = N'x' And y=1");
}

TEST_F(FilterTranslation, StoresTheSettings) {
  const FilterConditions conditions =
      translate({{"cModal", "2"}, {"iYear", "2023"}, {"cFSType", "0"}, {"iGrade", "3"}});
  EXPECT_EQ(conditions.mode, "2");
  EXPECT_EQ(conditions.year, "2023");
  EXPECT_EQ(conditions.balanceState, "0");
  EXPECT_EQ(conditions.grade, "3");
}

TEST_F(FilterTranslation, AnEmptyGradeIsGrade1) {
  EXPECT_EQ(translate({{"iGrade", ""}}).grade, "1");
}

TEST_F(FilterTranslation, ALaterItemOfTheSameKeyReplacesASettingAndAddsACondition) {
  const FilterConditions conditions =
      translate({{"cModal", "1"}, {"iYear", "2023"}, {"cModal", ""}, {"iYear", "2024"}});
  EXPECT_EQ(conditions.mode, "");
  EXPECT_EQ(conditions.year, "2024");
  EXPECT_EQ(conditions.where, "Where 1 = 1 And base.iYear = 2023 And base.iYear = 2024 ");
}

TEST_F(FilterTranslation, ALowerDateBoundChangesOnlyTheOpeningCondition) {
  const FilterConditions keep = translate({{"dKeepDate", "2024-03-01"}});
  EXPECT_EQ(keep.opening, "And dKeepDate < '2024-03-01' ");
  EXPECT_EQ(keep.where, "Where 1 = 1 ");
  const FilterConditions voucher = translate({{"dVouDate", "2024-03-01"}});
  EXPECT_EQ(voucher.opening, "And dVouDate < '2024-03-01' ");
  EXPECT_EQ(voucher.where, "Where 1 = 1 ");
}

TEST_F(FilterTranslation, AnUpperDateBoundChangesOnlyTheWhereText) {
  const FilterConditions keep = translate({{"dKeepDate", "", "2024-03-31"}});
  EXPECT_EQ(keep.opening, "");
  EXPECT_EQ(keep.where, "Where 1 = 1 And base.dKeepDate <= '2024-03-31' ");
  const FilterConditions voucher = translate({{"dVouDate", "", "2024-03-31"}});
  EXPECT_EQ(voucher.opening, "");
  EXPECT_EQ(voucher.where, "Where 1 = 1 And base.dVouDate <= '2024-03-31' ");
}

TEST_F(FilterTranslation, DateBoundsOfBothDatesFollowOneAnother) {
  const FilterConditions conditions =
      translate({{"dVouDate", "2024-3-5", "2024-3-9"}, {"dKeepDate", "2024-03-01", "2024-03-31"}});
  EXPECT_EQ(conditions.opening, "And dVouDate < '2024-3-5' And dKeepDate < '2024-03-01' ");
  EXPECT_EQ(conditions.where, "Where 1 = 1 And base.dVouDate <= '2024-3-9' And base.dKeepDate <= '2024-03-31' ");
}

// One key, one value and the having text.
class HavingText : public FilterTranslation, public testing::WithParamInterface<KeyCase> {};

TEST_P(HavingText, IsWhatTheKeyAdds) {
  const auto& [key, value, having] = GetParam();
  const FilterConditions conditions = translate({{key, value}});
  EXPECT_EQ(conditions.having, having);
  EXPECT_EQ(conditions.where, "Where 1 = 1 ");
}

INSTANTIATE_TEST_SUITE_P(
    BalanceStates, HavingText,
    testing::Values(
        KeyCase{
            "cFSType", "1",
            "Having (Sum(IsNull(iInQuantity,0))<>0 OR Sum(IsNull(iOutQuantity,0))<>0 OR Sum(IsNull(iInMoney,0))<>0 OR Sum(IsNull(iOutMoney,0))<>0)"},
        KeyCase{
            "cFSType", "2",
            "Having (Sum(IsNull(iInQuantity,0))=0 And Sum(IsNull(iOutQuantity,0))=0 And Sum(IsNull(iInMoney,0))=0 And Sum(IsNull(iOutMoney,0))=0)"},
        KeyCase{
            "cFSType", "3",
            "Having ((Sum(IsNull(iInQuantity,0))<>0 OR Sum(IsNull(iInMoney,0))<>0) And (Sum(IsNull(iOutQuantity,0))=0 And Sum(IsNull(iOutMoney,0))=0))"},
        KeyCase{
            "cFSType", "4",
            "Having ((Sum(IsNull(iInQuantity,0))=0 And Sum(IsNull(iInMoney,0))=0) And (Sum(IsNull(iOutQuantity,0))<>0 Or Sum(IsNull(iOutMoney,0))<>0))"},
        KeyCase{"cFSType", "0", ""}, KeyCase{"cFSType", "12", ""}, KeyCase{"cFSType", " 1", ""}));

INSTANTIATE_TEST_SUITE_P(
    ClosingBalances, HavingText,
    testing::Values(
        KeyCase{"cJudgeQuantity", "0", "Having (Sum(IsNull(iQmQuantity, 0)) > 0 )"},
        KeyCase{"cJudgeQuantity", "1", "Having (Sum(IsNull(iQmQuantity, 0)) = 0 )"},
        KeyCase{"cJudgeQuantity", "2", "Having (Sum(IsNull(iQmQuantity, 0)) < 0 )"},
        KeyCase{"cJudgeQuantity", "0\t2",
                "Having (Sum(IsNull(iQmQuantity, 0)) > 0 OR Sum(IsNull(iQmQuantity, 0)) < 0 )"},
        // The pieces come in the order 0, 1, 2, whatever the order in the value.
        KeyCase{
            "cJudgeQuantity", "210",
            "Having (Sum(IsNull(iQmQuantity, 0)) > 0 OR Sum(IsNull(iQmQuantity, 0)) = 0 OR Sum(IsNull(iQmQuantity, 0)) < 0 )"},
        // A digit counts wherever it occurs, and once.
        KeyCase{"cJudgeQuantity", "x11x", "Having (Sum(IsNull(iQmQuantity, 0)) = 0 )"},
        KeyCase{"cJudgeMoney", "0", "Having (Sum(IsNull(iQmMoney, 0)) > 0 )"},
        KeyCase{"cJudgeMoney", "1", "Having (Sum(IsNull(iQmMoney, 0)) = 0 )"},
        KeyCase{"cJudgeMoney", "2", "Having (Sum(IsNull(iQmMoney, 0)) < 0 )"},
        KeyCase{"cJudgeMoney", "12", "Having (Sum(IsNull(iQmMoney, 0)) = 0 OR Sum(IsNull(iQmMoney, 0)) < 0 )"},
        KeyCase{"cJudgeCost", "0", "Having (Sum(IsNull(iQmQuantity, 0)) * Sum(IsNull(iQmMoney, 0)) > 0 )"},
        KeyCase{"cJudgeCost", "1", "Having (Sum(IsNull(iQmMoney, 0)) = 0 )"},
        KeyCase{"cJudgeCost", "2", "Having (Sum(IsNull(iQmQuantity, 0)) * Sum(IsNull(iQmMoney, 0)) < 0 )"},
        KeyCase{
            "cJudgeCost", "012",
            "Having (Sum(IsNull(iQmQuantity, 0)) * Sum(IsNull(iQmMoney, 0)) > 0 OR Sum(IsNull(iQmMoney, 0)) = 0 OR Sum(IsNull(iQmQuantity, 0)) * Sum(IsNull(iQmMoney, 0)) < 0 )"}));

TEST_F(FilterTranslation, HavingConditionsAreJoinedInListOrder) {
  EXPECT_EQ(
      translate({{"cFSType", "1"}, {"cJudgeMoney", "1"}}).having,
      "Having (Sum(IsNull(iInQuantity,0))<>0 OR Sum(IsNull(iOutQuantity,0))<>0 OR Sum(IsNull(iInMoney,0))<>0 OR Sum(IsNull(iOutMoney,0))<>0) And (Sum(IsNull(iQmMoney, 0)) = 0 )");
  EXPECT_EQ(
      translate({{"cJudgeMoney", "1"}, {"cJudgeCost", "1"}, {"cJudgeQuantity", "1"}}).having,
      "Having (Sum(IsNull(iQmMoney, 0)) = 0 ) And (Sum(IsNull(iQmMoney, 0)) = 0 ) And (Sum(IsNull(iQmQuantity, 0)) = 0 )");
}

TEST_F(FilterTranslation, AClosingBalanceWithoutADigitFails) {
  for (const char* key : {"cJudgeQuantity", "cJudgeMoney", "cJudgeCost"}) {
    try {
      translate({{key, "3"}});
      FAIL() << key;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), static_cast<HResult>(0x800A0005U));
      EXPECT_EQ(
          error.description(),
          "The filter item " + std::string(key) +
              " has the value \"3\"; choose at least one of 0 (positive), 1 (zero) and 2 (negative), or leave it empty.");
    }
  }
}

TEST_F(FilterTranslation, RestrictsTheMonthsWhenCostItemsStartLaterInTheYear) {
  platform_.answers.costItemStartMonth = 3;
  platform_.answers.queries = {{"dIAStartDate", {{"2024-01-01"}}}};
  const FilterConditions conditions = translate({{"iYear", "2024"}});
  EXPECT_EQ(conditions.month, " And base.iMonth >= 3 ");
  EXPECT_TRUE(conditions.monthActive());
  // The month condition stands apart: the statements on opening balances do without it.
  EXPECT_EQ(conditions.where, "Where 1 = 1 And base.iYear = 2024 ");
}

TEST_F(FilterTranslation, LeavesTheMonthsAloneWhenInventoryAccountingStartsNoEarlier) {
  platform_.answers.costItemStartMonth = 3;
  platform_.answers.queries = {{"dIAStartDate", {{"2024-03-01"}}}};
  EXPECT_FALSE(translate({{"iYear", "2024"}}).monthActive());
}

TEST_F(FilterTranslation, AsksTheFilterObjectThenThePublicComponentAfterTheItems) {
  platform_.answers.costItemStartMonth = 3;
  filter_ = platform_.filter({{"iYear", "2024"}, {"other"}});
  platform_.record.calls.clear();
  translateFilter(*filter_, module_);
  EXPECT_THAT(
      platform_.record.calls,
      testing::ElementsAre(
          "FilterList.Count", "FilterList(1)", "FilterItem.LngGrouptoken = 1", "FilterItem.Name", "FilterItem.varValue",
          "FilterItem.varValue2", "FilterItem.RangeInput", "FilterItem.IsMultSel", "FilterList(2)",
          "FilterItem.LngGrouptoken = 1", "FilterItem.Name", "FilterItem.varValue", "FilterItem.varValue2",
          "FilterItem.RangeInput", "FilterItem.IsMultSel", "FilterItem.LngGrouptoken = 0", "GetWhereWithToken(0)",
          "create PublicComponent", "iFxStartMonth(2024)",
          "Session.query Select cValue From AccInformation Where cSysID = 'IA' And cName = 'dIAStartDate'",
          "Recordset.EOF", "Recordset.Close"));
}

TEST_F(FilterTranslation, TheLoginsDateIsReadOnlyWhenItIsNeeded) {
  translate({{"bIncludeExpire", "1"}});
  EXPECT_TRUE(platform_.record.with("Login.").empty());
  translate({{"bIncludeExpire", "0"}});
  EXPECT_THAT(platform_.record.with("Login."), testing::ElementsAre("date"));
}

}  // namespace
}  // namespace quillon::sfc_item
