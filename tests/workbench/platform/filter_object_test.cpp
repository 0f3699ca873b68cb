#include "workbench/platform/filter_object.h"

#include <gtest/gtest.h>

namespace quillon::workbench {
namespace {

FilterEntry entry(InputKind kind, std::string value, std::string value2 = {}) {
  FilterEntry result;
  result.item = {.key = "cKey", .chinese = "键", .english = "Key", .kind = kind, .column = "base.cKey"};
  result.value = std::move(value);
  result.value2 = std::move(value2);
  return result;
}

TEST(FilterCondition, IsEmptyWhenNothingWasEntered) {
  for (const InputKind kind : {InputKind::text, InputKind::number, InputKind::date, InputKind::flag}) {
    EXPECT_EQ(conditionOf(entry(kind, "")), "");
  }
}

TEST(FilterCondition, ComparesTextsAsNationalTexts) {
  EXPECT_EQ(conditionOf(entry(InputKind::text, "甲")), "base.cKey = N'甲'");
  EXPECT_EQ(conditionOf(entry(InputKind::reference, "01")), "base.cKey = N'01'");
}

TEST(FilterCondition, DoublesQuotes) {
  EXPECT_EQ(conditionOf(entry(InputKind::text, "O'Neill's")), "base.cKey = N'O''Neill''s'");
  EXPECT_EQ(conditionOf(entry(InputKind::text, "a'\tb")), "base.cKey In (N'a''', N'b')");
}

TEST(FilterCondition, ListsSeveralValues) {
  EXPECT_EQ(conditionOf(entry(InputKind::text, "a\tb\tc")), "base.cKey In (N'a', N'b', N'c')");
}

TEST(FilterCondition, BoundsARange) {
  EXPECT_EQ(conditionOf(entry(InputKind::date, "2024-01-01", "2024-03-31")),
            "(base.cKey >= '2024-01-01' And base.cKey <= '2024-03-31')");
  EXPECT_EQ(conditionOf(entry(InputKind::date, "", "2024-03-31")), "base.cKey <= '2024-03-31'");
  FilterEntry lower = entry(InputKind::number, "-1.5");
  lower.item.range = true;
  EXPECT_EQ(conditionOf(lower), "base.cKey >= -1.5");
}

TEST(FilterCondition, WritesNumbersAndFlagsBare) {
  EXPECT_EQ(conditionOf(entry(InputKind::number, "12.50")), "base.cKey = 12.50");
  EXPECT_EQ(conditionOf(entry(InputKind::flag, "1")), "base.cKey = 1");
}

TEST(FilterCondition, RefusesANumberThatIsNone) {
  for (const char* value : {"abc", "1 Or 1=1", "1e5", ".", "-"}) {
    try {
      conditionOf(entry(InputKind::number, value));
      ADD_FAILURE() << value << " was taken as a number";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.code(), hresult::typeMismatch);
      EXPECT_EQ(error.description(), std::string("The filter item cKey takes a number, not \"") + value + "\".");
    }
  }
}

TEST(FilterCondition, OfReadyMadeTextIsThatText) {
  FilterEntry ready = entry(InputKind::text, "ignored");
  ready.sql = "inv.cInvStd Like N'M8%'";
  EXPECT_EQ(conditionOf(ready), "inv.cInvStd Like N'M8%'");
}

ReportRegistration threeItems() {
  ReportRegistration report;
  report.items = {
      {.key = "cFirst", .chinese = "", .english = "", .column = "base.cFirst", .defaultValue = "one"},
      {.key = "cSecond", .chinese = "", .english = "", .multiple = true, .column = "base.cSecond"},
      {.key = "dThird", .chinese = "", .english = "", .kind = InputKind::date, .range = true, .column = "base.dThird"}};
  return report;
}

TEST(FilterObject, GivesItemsByPositionAndByKeyInAnyLetterCase) {
  FilterObject filter(threeItems());
  ASSERT_EQ(filter.count(), 3);
  EXPECT_EQ(filter.item(1)->name(), "cFirst");
  EXPECT_EQ(filter.item(3)->name(), "dThird");
  EXPECT_EQ(filter.item("CSECOND")->name(), "cSecond");
  EXPECT_TRUE(filter.item("dthird")->rangeInput());
  EXPECT_TRUE(filter.item(2)->multipleSelection());
}

TEST(FilterObject, BeginsWithDefaults) {
  FilterObject filter(threeItems());
  EXPECT_EQ(filter.item("cFirst")->value(), "one");
  EXPECT_EQ(filter.item("cSecond")->value(), "");
}

TEST(FilterObject, RefusesAnItemThatItDoesNotHave) {
  FilterObject filter(threeItems());
  const auto refusal = [](auto action) {
    try {
      action();
    } catch (const AutomationError& error) {
      EXPECT_EQ(static_cast<std::uint32_t>(error.code()), 0x8002000BU);
      return error.description();
    }
    return std::string("nothing was refused");
  };
  EXPECT_EQ(refusal([&] { filter.item(0); }), "The filter has no item number 0.");
  EXPECT_EQ(refusal([&] { filter.item(4); }), "The filter has no item number 4.");
  EXPECT_EQ(refusal([&] { filter.item("cFourth"); }), "The filter has no item \"cFourth\".");
}

TEST(FilterObject, JoinsTheConditionsOfOneToken) {
  FilterObject filter(threeItems());
  filter.find("cSecond")->value = "x\ty";
  filter.find("dThird")->value2 = "2024-12-31";
  EXPECT_EQ(filter.whereWithToken(tokenFilter),
            "base.cFirst = N'one' And base.cSecond In (N'x', N'y') And base.dThird <= '2024-12-31'");
  filter.item("cSecond")->setGroupToken(tokenReport);
  EXPECT_EQ(filter.whereWithToken(tokenFilter), "base.cFirst = N'one' And base.dThird <= '2024-12-31'");
  EXPECT_EQ(filter.whereWithToken(tokenReport), "base.cSecond In (N'x', N'y')");
}

TEST(FilterObject, HasNoConditionForATokenWithoutItems) {
  FilterObject filter(threeItems());
  EXPECT_EQ(filter.whereWithToken(3), "");
}

TEST(FilterObject, ItemsStayValidWithoutTheFilter) {
  auto filter = std::make_unique<FilterObject>(threeItems());
  const auto item = filter->item("cFirst");
  filter.reset();
  EXPECT_EQ(item->value(), "one");
  EXPECT_EQ(item->sqlText(), "base.cFirst = N'one'");
}

}  // namespace
}  // namespace quillon::workbench
