#include "workbench/tsql/syntax/statement_form.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillon::tsql {
namespace {

// The form with its marks made visible: # a number, {width} a text.
std::string formText(std::string_view batch) {
  const auto form = formOf(batch);
  if (!form) return "none";
  std::string shown;
  bool inText = false;
  for (const char c : form->text) {
    if (c == '\x02') {
      shown += inText ? '}' : '{';
      inText = !inText;
    } else {
      shown += c == '\x01' ? '#' : c;
    }
  }
  return shown;
}

std::vector<Value> constants(std::string_view batch) {
  std::vector<Value> values;
  const StatementForm form = formOf(batch).value();
  for (const Constant& constant : form.constants)
    values.push_back(constant.value);
  return values;
}

TEST(StatementForm, TakesOutWholeNumbersAndNationalTexts) {
  constexpr std::string_view batch = "select a from t where b<12 and c = N'it''s' and n=n'结存'";
  EXPECT_EQ(formText(batch), "select a from t where b<# and c = {4} and n={2}");
  EXPECT_EQ(constants(batch), (std::vector<Value>{std::int64_t{12}, "it's", "结存"}));
  const auto form = formOf(batch);
  EXPECT_EQ(batch.substr(form->constants[1].begin, form->constants[1].end - form->constants[1].begin), "N'it''s'");
}

TEST(StatementForm, TextsOfAnotherWidthAreAnotherForm) {
  EXPECT_EQ(formText("x = N'ab'"), formText("x = N'结存'"));
  EXPECT_NE(formText("x = N'ab'"), formText("x = N'abc'"));
}

TEST(StatementForm, LeavesWhatTellsMoreThanItsType) {
  EXPECT_EQ(formText("a=0 and b=1 and c=007 and d=1234567890 and e=999999999"),
            "a=0 and b=1 and c=007 and d=1234567890 and e=#");
  EXPECT_EQ(formText("a=1.5 or b=2e3 or c=0x12 or d=$5 or e=.5"), "a=1.5 or b=2e3 or c=0x12 or d=$5 or e=.5");
  EXPECT_EQ(formText("c = 'text' and d = 'it''s 5'"), "c = 'text' and d = 'it''s 5'");
}

TEST(StatementForm, LeavesNamesAndWhatTouchesThem) {
  EXPECT_EQ(formText("select cFree1, [5], \"6 N'x'\", #t7, t.c8, [a]]5 N'] from [x y 9]"),
            "select cFree1, [5], \"6 N'x'\", #t7, t.c8, [a]]5 N'] from [x y 9]");
  EXPECT_EQ(formText("a=5And b=xN'y'"), "a=5And b=xN'y'");
}

TEST(StatementForm, KeepsBlanksAndLines) {
  EXPECT_EQ(formText("a  = 5\n and\tb"), "a  = #\n and\tb");
}

TEST(StatementForm, ThereIsNoneOfABatchWithCommentsOrMarks) {
  EXPECT_EQ(formText("select 5 -- five"), "none");
  EXPECT_EQ(formText("select 5 /* five */"), "none");
  EXPECT_EQ(formText("select 6-5/2"), "select #-#/#");
  EXPECT_EQ(formText("select '--', 5"), "select '--', #");
  EXPECT_EQ(formText("select \x01"), "none");
  EXPECT_EQ(formText("select '\x02'"), "none");
  EXPECT_EQ(formText(std::string_view("select \0", 8)), "none");
  EXPECT_EQ(formText(std::string_view("select N'\0'", 11)), "none");
}

TEST(StatementForm, ThereIsNoneOfWhatIsNotClosedOrVeryLong) {
  EXPECT_EQ(formText("select 'x"), "none");
  EXPECT_EQ(formText("select N'x"), "none");
  EXPECT_EQ(formText("select [x"), "none");
  EXPECT_EQ(formText(std::string(70'000, ' ')), "none");
}

}  // namespace
}  // namespace quillon::tsql
