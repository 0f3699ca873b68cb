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
