#include "reports/sfc_item/sfc_item.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using fakes::ItemValues;

// The script of a run: the statements and queries that it sends, in order. A file in scripts/ lists each under its
// kind; every line stands in double quotes, so that blanks at its end are seen, and lines are joined with CR LF. An
// empty last line is a CR LF at the statement's end.
std::vector<std::string> expectedScript(const std::string& name) {
  std::ifstream file(QUILLON_SCRIPTS "/" + name + ".txt", std::ios::binary);
  EXPECT_TRUE(file.is_open()) << name;
  std::vector<std::string> script;
  bool first = false;
  for (std::string line; std::getline(file, line);) {
    if (line == "execute" || line == "query") {
      script.push_back("Session." + line + " ");
      first = true;
    } else if (!line.empty()) {
      EXPECT_TRUE(line.size() >= 2 && line.front() == '"' && line.back() == '"') << name << ": " << line;
      script.back() += (first ? "" : "\r\n") + line.substr(1, line.size() - 2);
      first = false;
    }
  }
  return script;
}

class SfcItemTest : public testing::Test {
 protected:
  // Runs the report; gives the statements and queries that it sent.
  std::vector<std::string> run(std::vector<ItemValues> items) {
    fakes::FakeArgument argument(platform_.record, platform_.filter(std::move(items)));
    SfcItem report(module_);
    report.getSql(argument);
    std::vector<std::string> sent;
    for (const std::string& call : platform_.record.calls) {
      if (call.starts_with("Session.execute ") || call.starts_with("Session.query ")) sent.push_back(call);
    }
    return sent;
  }

  // Cost items start in March of 2024, inventory accounting in January.
  void startCostItemsInMarch() {
    platform_.answers.costItemStartMonth = 3;
    platform_.answers.queries.push_back({"dIAStartDate", {{"2024-01-01"}}});
  }

  static std::vector<ItemValues> allConditions(const std::string& mode) {
    return {{"cModal", mode},
            {"iYear", "2024"},
            {"iGrade", "2"},
            {"dKeepDate", "2024-04-01", "2024-06-30"},
            {"cFSType", "1"},
            {"cJudgeMoney", "1"},
            {"cBatchIA", "B1", "", "base.cBatchIA = N'B1'"}};
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
};

TEST_F(SfcItemTest, SendsTheScriptByCostItem) {
  EXPECT_EQ(run({{"cModal", "1"}, {"iYear", "2024"}}), expectedScript("cost_items"));
}

TEST_F(SfcItemTest, SendsTheScriptByCostItemWithAllConditions) {
  startCostItemsInMarch();
  EXPECT_EQ(run(allConditions("1")), expectedScript("cost_items_all_conditions"));
}

TEST_F(SfcItemTest, SendsTheScriptByClass) {
  EXPECT_EQ(run({{"cModal", "0"}, {"iYear", "2024"}, {"iGrade", ""}}), expectedScript("cost_item_classes"));
}

TEST_F(SfcItemTest, SendsTheScriptByClassWithAllConditions) {
  startCostItemsInMarch();
  EXPECT_EQ(run(allConditions("0")), expectedScript("cost_item_classes_all_conditions"));
}

TEST_F(SfcItemTest, SendsTheScriptByExpenseType) {
  EXPECT_EQ(run({{"cModal", "2"}, {"iYear", "2024"}}), expectedScript("expense_types"));
}

TEST_F(SfcItemTest, SendsTheScriptByExpenseTypeWithAllConditions) {
  startCostItemsInMarch();
  platform_.answers.queries.push_back({"cid='11002'", {{"202403"}}});
  EXPECT_EQ(run({{"cModal", "2"},
                 {"iYear", "2024"},
                 {"dKeepDate", "2024-04-01", "2024-06-30"},
                 {"cJudgeQuantity", "02"},
                 {"cBatchIA", "B1", "", "base.cBatchIA = N'B1'"}}),
            expectedScript("expense_types_all_conditions"));
}

TEST_F(SfcItemTest, AnyOtherModeReportsByCostItem) {
  EXPECT_EQ(run({{"cModal", "3"}, {"iYear", "2024"}}), expectedScript("cost_items"));
}

TEST_F(SfcItemTest, EveryRowHoldsTheFiltersBalanceState) {
  const auto script = run({{"cModal", "1"}, {"iYear", "2024"}, {"cFSType", "0"}});
  EXPECT_THAT(script, testing::Contains(testing::HasSubstr("\r\nN'0' As cFSType, cFxCName, cAmoCode, cAmoName\r\n")));
}

TEST_F(SfcItemTest, ByExpenseTypeTheHavingTextNeedsNoGroupIndex) {
  const auto script = run({{"cModal", "2"}, {"iYear", "2024"}, {"cJudgeQuantity", "1"}});
  EXPECT_THAT(script, testing::Not(testing::Contains(testing::HasSubstr("IA_SFC_IX_GroupIndex"))));
  EXPECT_THAT(platform_.record.with("uniqueNames.next"), testing::SizeIs(1));
}

TEST_F(SfcItemTest, ReadsTheExpensePeriodFromAStaticReadOnlyRecordsetAndClosesIt) {
  platform_.answers.queries.push_back({"cid='11002'", {{"202403"}}});
  fakes::FakeArgument argument(platform_.record, platform_.filter({{"cModal", "2"}, {"iYear", "2024"}}));
  SfcItem report(module_);
  report.getSql(argument);
  EXPECT_THAT(platform_.record.with("Recordset."), testing::ElementsAre("EOF", "Fields(0)", "Close"));
  ASSERT_TRUE(platform_.record.lastQueryOptions);
  EXPECT_EQ(platform_.record.lastQueryOptions->cursorType, CursorType::fixed);
  EXPECT_EQ(platform_.record.lastQueryOptions->lockType, LockType::readOnly);
  EXPECT_FALSE(platform_.record.lastQueryOptions->cursorLocation);
}

TEST_F(SfcItemTest, ClosesTheSessionAfterACompleteBuild) {
  run({{"cModal", "1"}, {"iYear", "2024"}});
  EXPECT_EQ(platform_.record.calls.back(), "Session.close");
  EXPECT_FALSE(module_.session);
}

TEST_F(SfcItemTest, FetchesEachStateTextOnce) {
  run({{"cModal", "1"}, {"iYear", "2024"}, {"dKeepDate", "2024-04-01"}});
  EXPECT_THAT(platform_.record.with("resources.text"),
              testing::ElementsAre("(Mirel.IA.CHHSSQL.00182)", "(Mirel.IA.Mirel71.00269)", "(Mirel.IA.Mirel71.00270)",
                                   "(Mirel.IA.Mirel71.00271)"));
}

TEST_F(SfcItemTest, AClosingBalanceWithoutADigitAbortsTheBuildBeforeItsFirstStatement) {
  EXPECT_TRUE(run({{"cModal", "1"}, {"iYear", "2024"}, {"cJudgeMoney", "9"}}).empty());
  EXPECT_TRUE(module_.session);
}

// --- The error trap: a run that fails at its k-th call, for every k. ---

class ErrorTrap : public testing::TestWithParam<const char*> {
 protected:
  static std::vector<ItemValues> items() {
    return {{"cModal", GetParam()}, {"iYear", "2024"}, {"dKeepDate", "2024-04-01"}, {"cFSType", "1"}, {"other"}};
  }
  static void prepare(fakes::FakePlatform& platform) {
    platform.answers.costItemStartMonth = 3;
    platform.answers.queries = {{"dIAStartDate", {{"2024-01-01"}}}, {"cid='11002'", {{"202403"}}}};
  }
};

TEST_P(ErrorTrap, EveryCallMayFail) {
  std::size_t buildBegin = 0;
  std::size_t buildEnd = 0;
  std::size_t total = 0;
  {
    fakes::FakePlatform platform;
    prepare(platform);
    Module module(platform);
    SfcItem report(module);
    fakes::FakeArgument argument(platform.record, platform.filter(items()));
    platform.record.calls.clear();
    report.getSql(argument);
    const auto& calls = platform.record.calls;
    total = calls.size();
    buildBegin =
        static_cast<std::size_t>(std::find(calls.begin(), calls.end(), "FilterList.Count") - calls.begin()) + 1;
    buildEnd = total - 1;  // Session.state and Session.close follow
    ASSERT_EQ(calls[total - 2], "Session.state");
  }
  ASSERT_GT(total, 60U);

  for (std::size_t k = 1; k <= total; ++k) {
    SCOPED_TRACE("failing call " + std::to_string(k));
    fakes::FakePlatform platform;
    prepare(platform);
    const int before = platform.record.alive;
    {
      Module module(platform);
      {
        SfcItem report(module);
        fakes::FakeArgument argument(platform.record, platform.filter(items()));
        platform.record.calls.clear();
        platform.record.failAt = k;
        const bool inBuild = k >= buildBegin && k < buildEnd;
        try {
          report.getSql(argument);
          EXPECT_TRUE(inBuild);
        } catch (const AutomationError& error) {
          EXPECT_FALSE(inBuild);
          EXPECT_EQ(error.description(), platform.record.calls.back());
        }
        // Nothing runs after the failing call: no clean-up, no closing.
        EXPECT_EQ(platform.record.calls.size(), k);
        if (inBuild) {
          ASSERT_TRUE(module.session);
          EXPECT_EQ(module.session->state(), 1);
        }
      }
      // The instance is gone. What is left belongs to the module: at most session, login, public component, resources
      // and naming source, each once.
      const int left = (module.session ? 1 : 0) + (module.login ? 1 : 0);
      EXPECT_GE(platform.record.alive - before, left);
      EXPECT_LE(platform.record.alive - before, left + 3);
      EXPECT_LE(module.session.use_count(), 1);
      EXPECT_LE(module.login.use_count(), 1);

      // The next run finds nothing in its way.
      platform.record.failAt = 0;
      SfcItem again(module);
      fakes::FakeArgument argument(platform.record, platform.filter(items()));
      again.getSql(argument);
      EXPECT_EQ(platform.record.calls.back(), "Session.close");
      EXPECT_FALSE(module.session);
    }
    EXPECT_EQ(platform.record.alive, before);
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, ErrorTrap, testing::Values("0", "1", "2"));

}  // namespace
}  // namespace quillon
