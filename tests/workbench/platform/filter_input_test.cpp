#include "workbench/platform/filter_input.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "workbench/catalogue/catalogue.h"

namespace quillon::workbench {
namespace {

FilterObject filterWith(const std::vector<std::string>& settings) {
  FilterObject filter(reportNamed("sfc-item").registration);
  filter.find("iYear")->value = "2024";
  setFilterItems(filter, settings);
  checkFilter(filter);
  return filter;
}

std::string refusalOf(const std::vector<std::string>& settings) {
  try {
    filterWith(settings);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "nothing was refused";
}

TEST(FilterSettings, SetAValueByItsKeyInAnyLetterCase) {
  FilterObject filter = filterWith({"CMODAL=1", "iYear=2024"});
  EXPECT_EQ(filter.find("cModal")->value, "1");
  EXPECT_EQ(filter.find("iYear")->value, "2024");
}

TEST(FilterSettings, ReadARange) {
  FilterObject filter = filterWith({"dKeepDate=2024-01-01..2024-03-31"});
  EXPECT_EQ(filter.find("dKeepDate")->value, "2024-01-01");
  EXPECT_EQ(filter.find("dKeepDate")->value2, "2024-03-31");
  filter = filterWith({"dKeepDate=2024-01-01.."});
  EXPECT_EQ(filter.find("dKeepDate")->value, "2024-01-01");
  EXPECT_EQ(filter.find("dKeepDate")->value2, "");
  filter = filterWith({"dKeepDate=..2024-03-31"});
  EXPECT_EQ(filter.find("dKeepDate")->value, "");
  EXPECT_EQ(filter.find("dKeepDate")->value2, "2024-03-31");
  filter = filterWith({"dKeepDate=2024-03-05"});
  EXPECT_EQ(filter.find("dKeepDate")->value, "2024-03-05");
  EXPECT_EQ(filter.find("dKeepDate")->value2, "2024-03-05");
}

TEST(FilterSettings, ReadSeveralValues) {
  EXPECT_EQ(filterWith({"cInvCode=0101, 0102 ,0103"}).find("cInvCode")->value, "0101\t0102\t0103");
  EXPECT_EQ(filterWith({"cInvCode=0101", "cinvcode=0102"}).find("cInvCode")->value, "0101\t0102");
}

TEST(FilterSettings, ReplaceWhatStoodThereBefore) {
  FilterObject filter(reportNamed("sfc-item").registration);
  filter.find("cInvCode")->value = "from a file";
  setFilterItems(filter, std::vector<std::string>{"cInvCode=0101"});
  EXPECT_EQ(filter.find("cInvCode")->value, "0101");
}

TEST(FilterSettings, ClearAnItem) {
  FilterObject filter(reportNamed("sfc-item").registration);
  filter.find("cInvCode")->value = "from a file";
  setFilterItems(filter, std::vector<std::string>{"cInvCode="});
  EXPECT_EQ(filter.find("cInvCode")->value, "");
}

TEST(FilterSettings, AreRefusedInOneClearLine) {
  EXPECT_EQ(refusalOf({"cModal"}), "\"cModal\" sets no filter item; write key=value");
  EXPECT_THAT(refusalOf({"cNothing=1"}),
              testing::StartsWith("the report has no filter item \"cNothing\"; it has iYear, cModal, "));
  EXPECT_EQ(refusalOf({"cModal=1", "cModal=2"}), "filter item cModal (Report mode): is set twice");
  EXPECT_EQ(refusalOf({"cModal=3"}),
            "filter item cModal (Report mode): there is no choice \"3\"; choose of 0 (by cost-item class), 1 (by cost "
            "item), 2 (by expense item)");
  EXPECT_EQ(refusalOf({"cModal="}), "filter item cModal (Report mode): must be given");
  EXPECT_EQ(refusalOf({"dKeepDate=2024-02-30"}),
            "filter item dKeepDate (Posting date): \"2024-02-30\" is no date; write it as yyyy-mm-dd");
  EXPECT_EQ(refusalOf({"dKeepDate=2024-02-29..03/31/2024"}),
            "filter item dKeepDate (Posting date): \"03/31/2024\" is no date; write it as yyyy-mm-dd");
  EXPECT_EQ(refusalOf({"cDefine5=many"}),
            "filter item cDefine5 (User-defined field 5): \"many\" is no number; write digits with a point");
  EXPECT_EQ(refusalOf({"bIncludeExpire=yes"}),
            "filter item bIncludeExpire (Include discontinued inventory): there is no choice \"yes\"; choose of 0 "
            "(no), 1 (yes)");
}

TEST(FilterSettings, KnowLeapDays) {
  EXPECT_EQ(filterWith({"dKeepDate=2024-02-29"}).find("dKeepDate")->value, "2024-02-29");
  EXPECT_EQ(filterWith({"dKeepDate=2000-2-29"}).find("dKeepDate")->value, "2000-2-29");
  EXPECT_THAT(refusalOf({"dKeepDate=2023-02-29"}), testing::HasSubstr("is no date"));
  EXPECT_THAT(refusalOf({"dKeepDate=1900-02-29"}), testing::HasSubstr("is no date"));
}

TEST(FilterSettings, RefuseARangeThatEndsBeforeItBegins) {
  EXPECT_EQ(
      refusalOf({"dKeepDate=2024-03-31..2024-03-01"}),
      "filter item dKeepDate (Posting date): the range begins at 2024-03-31 and ends before it, at 2024-03-01; write "
      "the lower bound first");
  // By the calendar, not by the letters.
  EXPECT_EQ(filterWith({"dKeepDate=2024-9-30..2024-10-01"}).find("dKeepDate")->value2, "2024-10-01");
  EXPECT_THAT(refusalOf({"dKeepDate=2024-10-01..2024-9-30"}), testing::HasSubstr("ends before it"));
  EXPECT_EQ(filterWith({"dKeepDate=2024-03-01..2024-3-1"}).find("dKeepDate")->value2, "2024-3-1");
}

// What checkItem() says of a range of `kind` from `lower` to `upper`.
std::string refusalOfRange(InputKind kind, const std::string& lower, const std::string& upper) {
  FilterEntry entry;
  entry.item = {.key = "k", .chinese = "k", .english = "K", .kind = kind, .range = true};
  entry.value = lower;
  entry.value2 = upper;
  try {
    checkItem(entry);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "";
}

TEST(FilterSettings, CompareBoundsThatAreNumbersByTheirValue) {
  for (const auto& [lower, upper] : std::vector<std::pair<std::string, std::string>>{
           {"9", "10"},
           {"-10", "-9"},
           {"-1", "1"},
           {"1.05", "1.5"},
           {"007", "8"},
           {"99999999999999999999999999999999999998", "99999999999999999999999999999999999999"}}) {
    EXPECT_EQ(refusalOfRange(InputKind::number, lower, upper), "") << lower << ".." << upper;
    EXPECT_THAT(refusalOfRange(InputKind::number, upper, lower), testing::HasSubstr("ends before it"));
  }
  EXPECT_EQ(refusalOfRange(InputKind::number, "0.10", "0.1"), "");
  EXPECT_EQ(refusalOfRange(InputKind::number, "0", "-0"), "");
}

// Nobody knows whether the column of a text is one of numbers: either order will do.
TEST(FilterSettings, CompareBoundsThatAreTextsAsTheAccountSortsThem) {
  for (const InputKind kind : {InputKind::text, InputKind::reference}) {
    EXPECT_EQ(refusalOfRange(kind, "a", "B"), "");
    EXPECT_EQ(refusalOfRange(kind, "安", "张"), "");  // by pinyin
    EXPECT_THAT(refusalOfRange(kind, "张", "安"), testing::HasSubstr("begins at 张 and ends before it, at 安"));
    EXPECT_THAT(refusalOfRange(kind, "b", "A"), testing::HasSubstr("ends before it"));
    EXPECT_EQ(refusalOfRange(kind, "9", "10"), "");
    EXPECT_EQ(refusalOfRange(kind, "010", "9"), "");
    EXPECT_THAT(refusalOfRange(kind, "9", "08"), testing::HasSubstr("ends before it"));
    EXPECT_EQ(refusalOfRange(kind, "b", ""), "");
    EXPECT_EQ(refusalOfRange(kind, "", "a"), "");
  }
}

TEST(FilterSettings, RefuseARangeWhereNoneCanBeGiven) {
  EXPECT_EQ(
      refusalOf({"cInvCode=0101..0102"}),
      "filter item cInvCode (Inventory): takes no range; write its values with commas between them (a text that holds "
      "\"..\" goes into a filter file)");
  EXPECT_EQ(
      refusalOf({"cDefine5=1..9"}),
      "filter item cDefine5 (User-defined field 5): takes no range; write one value (a text that holds \"..\" goes "
      "into a filter file)");
  EXPECT_THAT(refusalOf({"cModal=0..1"}), testing::HasSubstr("takes no range"));
  EXPECT_THAT(refusalOf({"bIncludeExpire=.."}), testing::HasSubstr("takes no range"));
  FilterObject filter = filterWith({});
  filter.find("cDefine1")->value = "a..b";  // as a filter file gives it
  EXPECT_NO_THROW(checkFilter(filter));
}

// A column of whole numbers has 32 bits; the account would end the report with an overflow.
TEST(FilterSettings, HoldWholeNumbersToTheRangeOfTheirColumn) {
  EXPECT_EQ(filterWith({"cDefine5=2147483647"}).find("cDefine5")->value, "2147483647");
  EXPECT_EQ(filterWith({"cDefine5=-2147483648"}).find("cDefine5")->value, "-2147483648");
  EXPECT_EQ(refusalOf({"cDefine5=2147483648"}),
            "filter item cDefine5 (User-defined field 5): \"2147483648\" is no whole number from -2147483648 to "
            "2147483647");
  EXPECT_THAT(refusalOf({"cDefine34=99999999999999999999"}), testing::HasSubstr("is no whole number from"));
  EXPECT_THAT(refusalOf({"cDefine15=7.5"}), testing::HasSubstr("is no whole number from"));
  EXPECT_EQ(filterWith({"cDefine7=99999999999.5"}).find("cDefine7")->value, "99999999999.5");  // a float
  // A field of the ledger that a filter file adds is a text item; its column is what it is.
  FilterObject filter = filterWith({});
  FilterEntry& added = filter.add({.key = "AutoID", .chinese = "AutoID", .english = "AutoID", .column = "base.AutoID"});
  added.value = "17";
  EXPECT_NO_THROW(checkFilter(filter));
  added.value = "17x";
  EXPECT_THROW(checkFilter(filter), std::invalid_argument);
}

TEST(FilterSettings, HoldWholeNumbersOfEveryReportToTheRangeOfTheirColumn) {
  std::vector<std::string> held;
  for (const Report& report : reports()) {
    FilterObject filter(report.registration);
    for (const auto& entry : filter.entries()) {
      if (entry->item.kind != InputKind::number) continue;
      entry->value = "2147483648";
      try {
        checkItem(*entry);
      } catch (const std::invalid_argument&) {
        held.push_back(report.registration.name + " " + entry->item.key);
      }
    }
  }
  EXPECT_THAT(held, testing::IsSupersetOf({"outsum-item iProorderids", "outsum-item cworkprocode",
                                           "outsum-item isaleorderids", "outsum-item iexrowno", "outsum-item cDefine35",
                                           "outsum-item cInvDefine11", "fx-wt cInvDefine12", "fx-wt cDefine5"}));
  EXPECT_THAT(held, testing::Not(testing::Contains("fx-wt cDefine26")));
}

TEST(FilterSettings, SuggestTheItemThatWasMeant) {
  EXPECT_THAT(refusalOf({"cInvCdoe=1"}),
              testing::StartsWith("the report has no filter item \"cInvCdoe\"; did you mean cInvCode? it has iYear, "));
}

TEST(EnteredDate, IsGivenWithAllItsDigits) {
  EXPECT_EQ(enteredDate("2024-3-5"), "2024-03-05");
  EXPECT_EQ(enteredDate("2024-12-31"), "2024-12-31");
  for (const char* none : {"", "2024-02-30", "2024-13-01", "24-01-01", "2024/01/01", "2024-01-01 10:00", "1752-12-31",
                           "2024-01", "today", "２０２４-01-01"})
    EXPECT_EQ(enteredDate(none), std::nullopt) << none;
}

// A closing-balance value without one of the digits 0, 1 and 2 would end the build without a word.
TEST(FilterSettings, TakeClosingBalanceDigitsInEveryForm) {
  EXPECT_EQ(filterWith({"cJudgeQuantity=02"}).find("cJudgeQuantity")->value, "02");
  EXPECT_EQ(filterWith({"cJudgeQuantity=0,2"}).find("cJudgeQuantity")->value, "0\t2");
  EXPECT_EQ(filterWith({"cJudgeQuantity="}).find("cJudgeQuantity")->value, "");
  EXPECT_EQ(refusalOf({"cJudgeMoney=3"}),
            "filter item cJudgeMoney (Closing amount): there is no choice \"3\"; choose of 0 (above zero), 1 (zero), 2 "
            "(below zero)");
}

// Codes of several characters stand for themselves, never for their digits.
TEST(FilterSettings, TakeLongCodesWhole) {
  FilterObject filter(reportNamed("outsum-item").registration);
  filter.find("iYear")->value = "2024";
  filter.find("cVouType")->item.choices = {{"08", "其他", "other"}, {"32", "销售", "sale"}};
  setFilterItems(filter, std::vector<std::string>{"cVouType=32,08"});
  checkFilter(filter);
  EXPECT_EQ(filter.find("cVouType")->value, "32\t08");
  setFilterItems(filter, std::vector<std::string>{"cVouType=3208"});
  try {
    checkFilter(filter);
    ADD_FAILURE() << "nothing was refused";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(),
                 "filter item cVouType (Voucher type): there is no choice \"3208\"; choose of 08 (other), 32 (sale)");
  }
}

// The dialog sets both bounds of the grade.
TEST(FilterSettings, TakeTheSameValueTwiceForASingleOne) {
  FilterObject filter = filterWith({});
  filter.find("iGrade")->value2 = "1";
  checkFilter(filter);
  filter.find("iGrade")->value2 = "2";
  EXPECT_THROW(checkFilter(filter), std::invalid_argument);
}

TEST(FilterDescription, IsForAReader) {
  FilterObject filter = filterWith({"cModal=2", "dKeepDate=2024-01-01..", "cInvCode=0101,0102", "cJudgeQuantity=02"});
  EXPECT_EQ(describeEntry(*filter.find("cModal"), Language::chinese), "按费用项目");
  EXPECT_EQ(describeEntry(*filter.find("cModal"), Language::english), "by expense item");
  EXPECT_EQ(describeEntry(*filter.find("dKeepDate"), Language::english), "2024-01-01 .. ");
  EXPECT_EQ(describeEntry(*filter.find("dVouDate"), Language::english), "");
  EXPECT_EQ(describeEntry(*filter.find("cInvCode"), Language::english), "0101, 0102");
  EXPECT_EQ(describeEntry(*filter.find("cJudgeQuantity"), Language::english), "above zero, below zero");
}

}  // namespace
}  // namespace quillon::workbench
