#include "workbench/catalogue/catalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
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
  EXPECT_EQ(keysOf(reportNamed("sfc-item").registration), expected);
  EXPECT_EQ(reportNamed("sfc-item").registration.items.size(), expected.size());
}

TEST(OutsumItemRegistration, HasEveryKeyOnce) {
  std::set<std::string> expected = {
      "cModal",       "iGrade",       "iYear",           "cSource",         "dVouDate",
      "cVouType",     "cBusType",     "cVouCode",        "cWhCode",         "cInvCCode",
      "cInvCode",     "cInvPspCode",  "dKeepDate",       "RdCode",          "cDepCode",
      "cProCode",     "cWhDep",       "cCusCCode",       "cCusCode",        "cVenCode",
      "cItem_Class",  "cItemCode",    "cOppHead",        "strContractCode", "cProordercode",
      "iProorderids", "cworkprocode", "cworkcentername", "cSaleorderCode",  "isaleorderids",
      "exoCode",      "iexrowno",     "cImordercode",    "cpurorderCode",   "centrustordercode",
      "cBuscode",     "cperson",      "cMaker",          "dIncludeExpire",  "cBatchIA"};
  const auto add = [&expected](const std::string& key, int first, int last) {
    for (int number = first; number <= last; ++number)
      expected.insert(key + std::to_string(number));
  };
  add("cFree", 1, 10);
  add("cDefine", 1, 16);
  add("cDefine", 22, 37);
  add("cInvDefine", 1, 16);
  EXPECT_EQ(keysOf(reportNamed("outsum-item").registration), expected);
  EXPECT_EQ(reportNamed("outsum-item").registration.items.size(), expected.size());
}

TEST(FxDetailRegistration, HasEveryKeyOnce) {
  const std::set<std::string> expected = {"iYear",    "cCaType",  "dKeepDate", "cInvCCode", "cInvCode", "cWhCode",
                                          "cDepCode", "cBatchIA", "cFree1",    "cFree2",    "cFree3",   "cFree4",
                                          "cFree5",   "cFree6",   "cFree7",    "cFree8",    "cFree9",   "cFree10"};
  EXPECT_EQ(keysOf(reportNamed("fx-detail").registration), expected);
  EXPECT_EQ(reportNamed("fx-detail").registration.items.size(), expected.size());
}

// One inventory in one place; a ledger of several batches or free items keeps them apart.
TEST(FxDetailRegistration, TakesValuesAsTheReportReadsThem) {
  FilterObject filter(reportNamed("fx-detail").registration);
  const std::set<std::string> single = {"iYear", "cCaType", "cInvCCode", "cInvCode", "cWhCode", "cDepCode"};
  for (const auto& entry : filter.entries()) {
    const std::string& key = entry->item.key;
    EXPECT_EQ(entry->item.range, key == "dKeepDate") << key;
    EXPECT_EQ(entry->item.multiple, key != "dKeepDate" && !single.contains(key)) << key;
    EXPECT_EQ(entry->item.required, key == "iYear" || key == "cCaType" || key == "cInvCode") << key;
  }
}

// The view goes by the value "成本项目" of cCaType.
TEST(FxDetailRegistration, OffersTheBreakdownsOfItsDialog) {
  FilterObject filter(reportNamed("fx-detail").registration);
  const auto& choices = filter.find("cCaType")->item.choices;
  ASSERT_EQ(choices.size(), 2U);
  EXPECT_EQ(choices[0].code, "项目分类");
  EXPECT_EQ(choices[1].code, "成本项目");
  EXPECT_EQ(filter.item("cCaType")->value(), "项目分类");
}

// The report compares keys to the letter.
TEST(FxWtRegistration, HasEveryKeyOnce) {
  std::set<std::string> expected = {"dKeepDate",
                                    "dVouDate",
                                    "cVouType",
                                    "cBusType",
                                    "cVouCode",
                                    "Inventory.cInvCCode",
                                    "Inventory.cInvCode",
                                    "Customer.cCCCode",
                                    "Customer.cCusCode",
                                    "Vendor.cVCCode",
                                    "Vendor.cVenCode",
                                    "cWhCode",
                                    "cDepCode",
                                    "cDeptID",
                                    "cRdCode",
                                    "PzNoId",
                                    "cHandler",
                                    "cAccounter",
                                    "cItem_Class",
                                    "cItemCode",
                                    "strContractCode",
                                    "cproordercode",
                                    "csaleordercode",
                                    "cpurordercode",
                                    "cBatchia"};
  const auto add = [&expected](const std::string& key, int first, int last) {
    for (int number = first; number <= last; ++number)
      expected.insert(key + std::to_string(number));
  };
  add("cFree", 1, 10);
  add("cDefine", 1, 16);
  add("cDefine", 22, 37);
  add("cInvDefine", 1, 16);
  EXPECT_EQ(keysOf(reportNamed("fx-wt").registration), expected);
  EXPECT_EQ(reportNamed("fx-wt").registration.items.size(), expected.size());
}

// Only these have a list form; a key that stands for a column is compared with one value.
TEST(FxWtRegistration, TakesValuesAsTheReportReadsThem) {
  const std::set<std::string> multiple = {
      "cVouType", "cBusType", "Inventory.cInvCode", "Customer.cCusCode", "Vendor.cVenCode", "cWhCode", "cBatchia"};
  for (const ItemRegistration& item : reportNamed("fx-wt").registration.items) {
    EXPECT_EQ(item.range, item.key == "dKeepDate" || item.key == "dVouDate") << item.key;
    EXPECT_EQ(item.multiple, multiple.contains(item.key)) << item.key;
    EXPECT_FALSE(item.required) << item.key;
  }
}

TEST(FxWtRegistration, LetsTheFilterObjectTranslateBatchAndAccountingVoucher) {
  FilterObject filter(reportNamed("fx-wt").registration);
  filter.find("cBatchia")->value = "B1";
  filter.find("PzNoId")->value = "IA20240100001";
  EXPECT_EQ(conditionOf(*filter.find("cBatchia")), "base.cBatchia = N'B1'");
  EXPECT_EQ(conditionOf(*filter.find("PzNoId")), "base.cPZID = N'IA20240100001'");
}

// The lists of voucher and business types are filled for the year, which so must have its value by then.
TEST(OutsumItemRegistration, HasTheYearBeforeWhatDependsOnIt) {
  const auto& items = reportNamed("outsum-item").registration.items;
  const auto at = [&items](const char* key) { return std::ranges::find(items, key, &ItemRegistration::key); };
  EXPECT_LT(at("iYear"), at("cVouType"));
  EXPECT_LT(at("iYear"), at("cBusType"));
}

TEST(OutsumItemRegistration, TakesValuesAsTheReportReadsThem) {
  FilterObject filter(reportNamed("outsum-item").registration);
  const std::set<std::string> ranges = {"dVouDate", "dKeepDate"};
  const std::set<std::string> single = {
      "cModal",        "iGrade",         "iYear",        "cSource",        "cVouCode",
      "cInvCCode",     "cProCode",       "cCusCCode",    "cItem_Class",    "strContractCode",
      "cProordercode", "iProorderids",   "cworkprocode", "cSaleorderCode", "isaleorderids",
      "exoCode",       "iexrowno",       "cImordercode", "cpurorderCode",  "centrustordercode",
      "cBuscode",      "dIncludeExpire", "cDefine4",     "cDefine5",       "cDefine6",
      "cDefine7",      "cDefine15",      "cDefine16",    "cDefine26",      "cDefine27",
      "cDefine34",     "cDefine35",      "cDefine36",    "cDefine37",      "cInvDefine11",
      "cInvDefine12",  "cInvDefine13",   "cInvDefine14", "cInvDefine15",   "cInvDefine16"};
  for (const auto& entry : filter.entries()) {
    const std::string& key = entry->item.key;
    EXPECT_EQ(entry->item.range, ranges.contains(key)) << key;
    EXPECT_EQ(entry->item.multiple, !ranges.contains(key) && !single.contains(key)) << key;
  }
}

TEST(Registrations, HaveCaptionsInBothLanguages) {
  for (const Report& report : reports()) {
    for (const ItemRegistration& item : report.registration.items) {
      EXPECT_FALSE(item.caption(Language::chinese).empty()) << item.key;
      EXPECT_FALSE(item.caption(Language::english).empty()) << item.key;
      EXPECT_NE(item.caption(Language::chinese), item.caption(Language::english)) << item.key;
      for (const Choice& choice : item.choices) {
        EXPECT_FALSE(choice.chinese.empty()) << item.key << ' ' << choice.code;
        EXPECT_FALSE(choice.english.empty()) << item.key << ' ' << choice.code;
      }
    }
  }
}

// The filter-control class tells its two reports apart by these.
TEST(Registrations, HaveTheirIdentifiersAndClasses) {
  EXPECT_EQ(reportNamed("sfc-item").registration.identifier, "CA3BAD03-9D4C-463A-827E-E971D5A36C81");
  EXPECT_EQ(reportNamed("sfc-item").reportClass, "clsSFC_Item");
  EXPECT_EQ(reportNamed("sfc-item").dialog->name, "clsSFCFilterControl");
  EXPECT_EQ(reportNamed("outsum-item").registration.identifier, "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE");
  EXPECT_EQ(reportNamed("outsum-item").reportClass, "clsOutsum_Item");
  EXPECT_EQ(reportNamed("outsum-item").dialog->name, "clsSFCFilterControl");
  EXPECT_EQ(reportNamed("fx-detail").reportClass, "clsFXDetail");
  EXPECT_EQ(reportNamed("fx-detail").dialog->name, "clsFilterControl");
  EXPECT_EQ(reportNamed("fx-wt").registration.identifier, "3D1986A9-884B-4835-B4AA-DCCBD2E1487C");
  EXPECT_EQ(reportNamed("fx-wt").reportClass, "clsFXWt");
  EXPECT_EQ(reportNamed("fx-wt").dialog->name, "clsWtFilterControl");
}

// The filter object must be able to translate an item that a report leaves to it.
TEST(Registrations, NameTheColumnOfTheBatch) {
  for (const char* report : {"sfc-item", "outsum-item", "fx-detail"}) {
    FilterObject filter(reportNamed(report).registration);
    filter.find("cBatchIA")->value = "B1";
    EXPECT_EQ(conditionOf(*filter.find("cBatchIA")), "base.cBatchia = N'B1'");
  }
}

TEST(SfcItemRegistration, BeginsAsTheDialogDoes) {
  FilterObject filter(reportNamed("sfc-item").registration);
  EXPECT_EQ(filter.item("cModal")->value(), "0");
  EXPECT_EQ(filter.item("cFSType")->value(), "0");
  EXPECT_EQ(filter.item("iGrade")->value(), "1");
  EXPECT_EQ(filter.item("bIncludeExpire")->value(), "1");
  EXPECT_EQ(filter.item("bIncludeTransVouch")->value(), "1");
}

TEST(OutsumItemRegistration, BeginsAsTheDialogDoes) {
  FilterObject filter(reportNamed("outsum-item").registration);
  EXPECT_EQ(filter.item("cModal")->value(), "0");
  EXPECT_EQ(filter.item("cSource")->value(), "0");
  EXPECT_EQ(filter.item("iGrade")->value(), "1");
  EXPECT_EQ(filter.item("dIncludeExpire")->value(), "");
}

TEST(ResourceTexts, NameTheStates) {
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.00182", Language::chinese), "期初结存");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00269", Language::chinese), "收入");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00270", Language::chinese), "发出");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00271", Language::chinese), "期末结存");
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.00182", Language::english), "Opening balance");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00271", Language::english), "Closing balance");
}

// The detail ledger puts a month's number and a blank before the second of them.
TEST(ResourceTexts, NameTheBalancesOfTheDetailLedger) {
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.05360", Language::chinese), "期初结存");
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.05360", Language::english), "Opening balance");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00298", Language::chinese), "月末结存");
  EXPECT_EQ(resourceText("Mirel.IA.Mirel71.00298", Language::english), "month-end balance");
}

TEST(ResourceTexts, RefuseInBothLanguages) {
  for (const char* key : {"Mirel.IA.CHHSSQL.02787", "Mirel.IA.Mirel71.00217", "Mirel.IA.Mirel71.00218"}) {
    EXPECT_NE(resourceText(key, Language::chinese), key);
    EXPECT_NE(resourceText(key, Language::english), key);
    EXPECT_NE(resourceText(key, Language::english), resourceText(key, Language::chinese));
  }
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.00010", Language::chinese) +
                resourceText("Mirel.IA.CHHSSQL.13198", Language::chinese),
            "批号不能为空");
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.00010", Language::english) +
                resourceText("Mirel.IA.CHHSSQL.13198", Language::english),
            "Batch must be given");
}

TEST(ResourceTexts, OfAnUnknownKeyIsTheKey) {
  EXPECT_EQ(resourceText("Mirel.IA.CHHSSQL.99999", Language::english), "Mirel.IA.CHHSSQL.99999");
}

}  // namespace
}  // namespace quillon::workbench
