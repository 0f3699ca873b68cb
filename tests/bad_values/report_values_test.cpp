// What each report makes of bad filter values: they are pasted into its statements as they stand, or doubled quotes and
// all where the filter object writes the condition; they find exactly the rows that have them; and where they make a
// statement invalid there is one clear error, nothing is left behind and the next run is right.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>

#include "frame/text.h"
#include "tests/bad_values/run.h"
#include "tests/bad_values/values.h"

namespace quillon::bad_values {
namespace {

using testing::HasSubstr;
using workbench::Report;

ReportTester& tester() {
  static ReportTester shared;
  return shared;
}

// Whoever gets it knows what was wrong: one text with a number of SQL Server's, not of the storage behind.
void expectOneClearError(const ReportRun& run) {
  constexpr int refusedByStorage = 50000;
  ASSERT_LE(run.failures.size(), 1U);
  if (run.failures.empty()) {
    ASSERT_TRUE(run.error) << "nothing was refused";
    EXPECT_FALSE(run.error->empty());
    return;
  }
  EXPECT_FALSE(run.failures[0].message.empty());
  EXPECT_NE(run.failures[0].number, 0) << run.failures[0].message;
  EXPECT_NE(run.failures[0].number, refusedByStorage) << run.failures[0].message;
}

void expectNothingLeftAndTheNextRunRight(const Report& report, const std::string& expected) {
  EXPECT_THAT(tester().account().newTables(), testing::IsEmpty());
  const ReportRun next = tester().run(report, {});
  EXPECT_THAT(next.failures, testing::IsEmpty());
  EXPECT_FALSE(next.error) << *next.error;
  EXPECT_EQ(next.rows, expected);
}

// --- How a value gets into the statements ----------------------------------------------------------------------------

// Items of the summary reports whose value decides something and is pasted nowhere.
constexpr std::array neverPasted = {"cModal",  "cJudgeQuantity", "cJudgeMoney",        "cJudgeCost",
                                    "cSource", "bIncludeExpire", "bIncludeTransVouch", "dIncludeExpire"};

enum class Pasted { asItStands, doubled, never };

Pasted howPasted(const Report& report, const std::string& key) {
  if (std::ranges::find(neverPasted, key) != neverPasted.end()) return Pasted::never;
  const bool batch = equalIgnoringCase(key, "cBatchIA");
  if (report.registration.name == "fx-detail") {
    // A ledger of one inventory: its class only helps the dialog, the breakdown is the view's, and year and dates are
    // looked up. The account is valued without regard to the place, and the inventory checked for these items only.
    if (key == "cInvCode") return Pasted::asItStands;
    return batch || key == "cFree1" || key == "cFree2" ? Pasted::doubled : Pasted::never;
  }
  if (report.registration.name == "fx-wt" && (batch || key == "PzNoId")) return Pasted::doubled;
  return batch ? Pasted::doubled : Pasted::asItStands;
}

std::string doubled(std::string text) {
  replaceAll(text, "'", "''");
  return text;
}

// The characters around a value where it is first sent.
struct Surroundings {
  std::string before;
  std::string after;
};

std::optional<Surroundings> findSent(const std::vector<std::string>& sent, const std::string& value) {
  constexpr std::size_t around = 16;
  for (const std::string& sql : sent) {
    const std::size_t at = sql.find(value);
    if (at == std::string::npos) continue;
    const std::size_t begin = at < around ? 0 : at - around;
    return Surroundings{sql.substr(begin, at - begin), sql.substr(at + value.size(), 1)};
  }
  return std::nullopt;
}

bool anyHas(const std::vector<std::string>& sent, const std::string& text) {
  return std::ranges::any_of(sent, [&](const std::string& sql) { return sql.find(text) != std::string::npos; });
}

class ReportItems : public testing::TestWithParam<const Report*> {};

// The items to try: all of them natively. Under Wine, where a run takes many times as long and only the way of a value
// differs, one of each kind.
std::vector<workbench::ItemRegistration> itemsOf(const Report& report) {
#ifdef _WIN32
  std::vector<workbench::ItemRegistration> items;
  for (const workbench::ItemRegistration& item : report.registration.items) {
    const bool isOther = std::ranges::none_of(items, [&](const workbench::ItemRegistration& known) {
      return known.kind == item.kind && known.range == item.range && known.multiple == item.multiple &&
             howPasted(report, known.key) == howPasted(report, item.key);
    });
    if (isOther) items.push_back(item);
  }
  return items;
#else
  return report.registration.items;
#endif
}

// All that is bad in one value, on every item of the report, lower and upper bounds included.
TEST_P(ReportItems, TakeEveryValueAsItStands) {
  const Report& report = *GetParam();
  const std::string usual = tester().run(report, {}).rows;
  ASSERT_THAT(usual, HasSubstr("|\n"));
  const std::string bad = "a'b\"\x01\n\0[%_]\xed\xa0\xbd\u202eא--/*"s;
  const std::string plain = "UsualValue";
  for (const workbench::ItemRegistration& item : itemsOf(report)) {
    SCOPED_TRACE(item.key);
    for (const bool upper : {false, true}) {
      if (upper && !item.range) continue;
      const auto settingOf = [&](const std::string& text) {
        return std::vector{upper ? Setting{item.key, "", text} : Setting{item.key, text}};
      };
      const ReportRun usualRun = tester().run(report, settingOf(plain));
      const ReportRun badRun = tester().run(report, settingOf(bad));
      const std::optional<Surroundings> place = findSent(usualRun.sent, plain);
      const Pasted how = howPasted(report, item.key);
      ASSERT_EQ(place.has_value(), how != Pasted::never);
      if (how == Pasted::never) {
        EXPECT_FALSE(anyHas(badRun.sent, bad));
        continue;
      }
      const std::string expected = place->before + (how == Pasted::doubled ? doubled(bad) : bad) + place->after;
      EXPECT_TRUE(anyHas(badRun.sent, expected)) << expected;
      if (how == Pasted::asItStands) {
        expectOneClearError(badRun);
      } else {
        EXPECT_THAT(badRun.failures, testing::IsEmpty());
      }
    }
  }
  expectNothingLeftAndTheNextRunRight(report, usual);
}

std::vector<const Report*> everyReport() {
  std::vector<const Report*> all;
  for (const Report& report : workbench::reports())
    all.push_back(&report);
  return all;
}

INSTANTIATE_TEST_SUITE_P(All, ReportItems, testing::ValuesIn(everyReport()), [](const auto& report) {
  std::string name = report.param->registration.name;
  std::erase(name, '-');
  return name;
});

// --- Which rows a value finds ----------------------------------------------------------------------------------------

// Writes `text` into the columns that the tests filter by, on every line of the ledger.
void writeEverywhere(const std::string& text) {
  const auto account = tester().account().open();
  const std::string sql = constant(text);
  account->execute("Update ia_subsidiary Set cFree2 = " + sql + ", cBatchIA = " + sql + ", cDefine1 = " + sql);
}

class ReportValues : public testing::TestWithParam<BadValue> {};

struct Question {
  const Report* report;
  const char* key;
  bool byFilterObject;
};
const std::array questions{
    Question{&workbench::reportNamed("fx-wt"), "cFree2", false},
    Question{&workbench::reportNamed("fx-wt"), "cBatchia", true},
#ifndef _WIN32
    Question{&workbench::reportNamed("outsum-item"), "cDefine1", false},
    Question{&workbench::reportNamed("outsum-item"), "cBatchIA", true},
#endif
};

TEST_P(ReportValues, FindTheRowsThatHaveThem) {
  constexpr std::size_t widest = 20;  // of cFree2
  const std::string& value = GetParam().text;
  for (const Question& question : questions) {
    SCOPED_TRACE(question.report->registration.name + " " + question.key);
    std::string denoted = value;
    const bool valid = question.byFilterObject || denotes(value, denoted);
    const bool fits = denoted.size() <= widest;
    writeEverywhere(fits && valid ? denoted : "other");
    const std::string all = tester().run(*question.report, {}).rows;
    const ReportRun run = tester().run(*question.report, {{question.key, value}});
    if (valid) {
      EXPECT_THAT(run.failures, testing::IsEmpty());
      EXPECT_EQ(run.rows == all, fits) << run.rows;
      const ReportRun others = tester().run(*question.report, {{question.key, value + "z"}});
      EXPECT_THAT(others.failures, testing::IsEmpty());
      EXPECT_NE(others.rows, all);
    } else {
      expectOneClearError(run);
    }
    expectNothingLeftAndTheNextRunRight(*question.report, all);
  }
}

INSTANTIATE_TEST_SUITE_P(Each, ReportValues, testing::ValuesIn(badValues()),
                         [](const auto& value) { return value.param.name; });

// A class code stands at the beginning of a pattern, so that its own wildcards work.
TEST(ReportPatterns, KeepTheirWildcards) {
  struct Pattern {
    const char* value;
    const char* code;
    bool found;
  };
  const Report& report = workbench::reportNamed("fx-wt");
  const auto account = tester().account().open();
  account->execute("Select cInvCode, cInvCCode Into ClassesBefore From Inventory");
  for (const auto& [value, code, found] :
       {Pattern{"5%0", "5xx01", true}, Pattern{"5%0", "6xx01", false}, Pattern{"a_b", "axbc", true},
        Pattern{"a_b", "ab", false}, Pattern{"[a-c]", "b1", true}, Pattern{"[a-c]", "d1", false}}) {
    SCOPED_TRACE(std::string(value) + " on " + code);
    account->execute("Update Inventory Set cInvCCode = " + constant(code));
    const std::string all = tester().run(report, {}).rows;
    const ReportRun run = tester().run(report, {{"Inventory.cInvCCode", value}});
    EXPECT_THAT(run.failures, testing::IsEmpty());
    EXPECT_EQ(run.rows == all, found);
  }
  account->execute(
      "Update Inventory Set cInvCCode = ClassesBefore.cInvCCode From Inventory Inner Join ClassesBefore On "
      "ClassesBefore.cInvCode = Inventory.cInvCode\n"
      "Drop Table ClassesBefore");
}

}  // namespace
}  // namespace quillon::bad_values
