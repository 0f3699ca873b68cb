#include "workbench/platform/registrations.h"

#include <gmock/gmock.h>

#include <set>

#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {
namespace {

std::set<std::string> keysOf(const ReportRegistration& report) {
  std::set<std::string> keys;
  for (const ItemRegistration& item : report.items)
    keys.insert(item.key);
  return keys;
}

TEST(SfcItemRegistration, HasEveryKeyOnce) {
  const std::set<std::string> expected = {"cModal",         "iYear",
                                          "cInvClass",      "cInvCode",
                                          "dKeepDate",      "dVouDate",
                                          "cWhCode",        "cDepCode",
                                          "cFSType",        "iGrade",
                                          "cBatchIA",       "cJudgeQuantity",
                                          "cJudgeMoney",    "cJudgeCost",
                                          "cFree1",         "cFree2",
                                          "cFree3",         "cFree4",
                                          "cFree5",         "cFree6",
                                          "cFree7",         "cFree8",
                                          "cFree9",         "cFree10",
                                          "cDefine1",       "cDefine2",
                                          "cDefine3",       "cDefine4",
                                          "cDefine5",       "cDefine6",
                                          "cDefine7",       "cDefine8",
                                          "cDefine9",       "cDefine10",
                                          "cDefine11",      "cDefine12",
                                          "cDefine13",      "cDefine14",
                                          "cDefine15",      "cDefine16",
                                          "cDefine22",      "cDefine23",
                                          "cDefine24",      "cDefine25",
                                          "cDefine26",      "cDefine27",
                                          "cDefine28",      "cDefine29",
                                          "cDefine30",      "cDefine31",
                                          "cDefine32",      "cDefine33",
                                          "cDefine34",      "cDefine35",
                                          "cDefine36",      "cDefine37",
                                          "bIncludeExpire", "bIncludeTransVouch"};
  EXPECT_EQ(keysOf(sfcItemRegistration()), expected);
  EXPECT_EQ(sfcItemRegistration().items.size(), expected.size());
}

TEST(SfcItemRegistration, HasCaptionsInBothLanguages) {
  for (const ItemRegistration& item : sfcItemRegistration().items) {
    EXPECT_FALSE(item.caption(Language::chinese).empty()) << item.key;
    EXPECT_FALSE(item.caption(Language::english).empty()) << item.key;
    EXPECT_NE(item.caption(Language::chinese), item.caption(Language::english)) << item.key;
    for (const Choice& choice : item.choices) {
      EXPECT_FALSE(choice.chinese.empty()) << item.key << ' ' << choice.code;
      EXPECT_FALSE(choice.english.empty()) << item.key << ' ' << choice.code;
    }
  }
}

// The filter object must be able to translate an item that a report leaves to it.
TEST(SfcItemRegistration, NamesTheColumnOfTheBatch) {
  FilterObject filter(sfcItemRegistration());
  filter.find("cBatchIA")->value = "B1";
  EXPECT_EQ(conditionOf(*filter.find("cBatchIA")), "base.cBatchia = N'B1'");
}

TEST(SfcItemRegistration, BeginsAsTheDialogDoes) {
  FilterObject filter(sfcItemRegistration());
  EXPECT_EQ(filter.item("cModal")->value(), "0");
  EXPECT_EQ(filter.item("cFSType")->value(), "0");
  EXPECT_EQ(filter.item("iGrade")->value(), "1");
  EXPECT_EQ(filter.item("bIncludeExpire")->value(), "1");
  EXPECT_EQ(filter.item("bIncludeTransVouch")->value(), "1");
}

TEST(ResourceTexts, NameTheStates) {
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.00182", Language::chinese), "期初结存");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00269", Language::chinese), "收入");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00270", Language::chinese), "发出");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00271", Language::chinese), "期末结存");
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.00182", Language::english), "Opening balance");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00271", Language::english), "Closing balance");
}

TEST(ResourceTexts, OfAnUnknownKeyIsTheKey) {
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.99999", Language::english), "Mirel.IA.CHHSSQL.99999");
}

}  // namespace
}  // namespace quillon::workbench
