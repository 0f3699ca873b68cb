#include "reports/fx_detail/fx_detail.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/frame/fakes.h"
#include "tests/reports/fx_detail/script_file.h"

namespace quillon {
namespace {

using fakes::ItemValues;
using fakes::Row;
using fx_detail::Basis;
using fx_detail::expectedScript;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string basisText(Basis basis) {
  if (basis == Basis::department) return "按部门核算";
  return basis == Basis::warehouse ? "按仓库核算" : "按存货核算";
}

// Batch first, then free items 1 to 10.
Row checks(bool batch, const std::vector<int>& freeItems) {
  Row row(11, "False");
  if (batch) row[0] = "True";
  for (const int number : freeItems)
    row[static_cast<std::size_t>(number)] = "True";
  return row;
}

std::vector<ItemValues> filterItems(const std::string& from, const std::string& to) {
  return {{"iYear", "2024"},
          {"cInvCode", "0101"},
          {"cWhCode", "W1"},
          {"cDepCode", "D1"},
          {"dKeepDate", from, to},
          {"cFree1", "blue", "", "base.cFree1=N'blue'"},
          {"cFree2", "red", "", "base.cFree2=N'red'"},
          {"cFree3", "", "", ""},
          {"cFree10", "x", "", "base.cFree10=N'x'"},
          {"cBatchIA", "B7", "", "base.cbatchia=N'B7'"}};
}

void answerDecimalPlaces(fakes::FakePlatform& platform) {
  platform.answers.options = {{"AA.iStrsQuanDecDgt", "2"}, {"AA.iStrsPriDecDgt", "4"}};
}

// Cost items start in January; February is the first month that is not settled.
void startInJanuary(fakes::FakePlatform& platform) {
  answerDecimalPlaces(platform);
  platform.answers.costItemStartMonth = 1;
  platform.answers.moduleStart = {.year = 2023, .month = 5};
  platform.answers.lastSettledMonth = 1;
}

// Cost items start in March, the account started in January; every month is settled.
void startInMarch(fakes::FakePlatform& platform) {
  answerDecimalPlaces(platform);
  platform.answers.costItemStartMonth = 3;
  platform.answers.moduleStart = {.year = 2024, .month = 1};
  platform.answers.queries = {{"bcheckbatch", {checks(true, {2})}}};
}

class FxDetailTest : public testing::TestWithParam<Basis> {
 protected:
  // Runs the report; gives the statements and queries that it sent.
  std::vector<std::string> run(std::vector<ItemValues> items) {
    fakes::FakeArgument argument(platform_.record, platform_.filter(std::move(items)));
    FxDetail report(module_);
    report.getSql(argument);
    std::vector<std::string> sent;
    for (const std::string& call : platform_.record.calls) {
      if (call.starts_with("Session.execute ") || call.starts_with("Session.query ")) sent.push_back(call);
    }
    return sent;
  }

  fakes::FakePlatform platform_;
  Module module_{platform_};
};

// --- Scripts, on every costing basis --------------------------------------------------------------------------------

TEST_P(FxDetailTest, TakesOpeningBalancesFromTheLedger) {
  platform_.answers.costingBasis = basisText(GetParam());
  startInJanuary(platform_);
  EXPECT_THAT(run(filterItems("", "")),
              testing::ElementsAreArray(expectedScript("openings_from_the_ledger", GetParam())));
}

TEST_P(FxDetailTest, AssemblesOpeningBalancesWhenCostItemsStartedLater) {
  platform_.answers.costingBasis = basisText(GetParam());
  startInMarch(platform_);
  EXPECT_THAT(run(filterItems("2024-04-10", "2024-05-20")),
              testing::ElementsAreArray(expectedScript("entered_openings", GetParam())));
}

TEST_P(FxDetailTest, MakesAnEmptyResultOfAnImpossibleRange) {
  platform_.answers.costingBasis = basisText(GetParam());
  startInJanuary(platform_);
  EXPECT_THAT(run(filterItems("2025-01-01", "")),
              testing::ElementsAreArray(expectedScript("impossible_range", GetParam())));
}

INSTANTIATE_TEST_SUITE_P(EveryBasis, FxDetailTest,
                         testing::Values(Basis::inventory, Basis::warehouse, Basis::department));

// --- The rest does not depend on the basis --------------------------------------------------------------------------

using FxDetailRun = FxDetailTest;

TEST_F(FxDetailRun, ComparesTheCostingBasisExactly) {
  startInJanuary(platform_);
  platform_.answers.costingBasis = "按仓库核算 ";
  EXPECT_THAT(run(filterItems("", "")),
              testing::ElementsAreArray(expectedScript("openings_from_the_ledger", Basis::inventory)));
}

TEST_F(FxDetailRun, CallsThePlatformInItsOrder) {
  startInJanuary(platform_);
  run(filterItems("2025-01-01", ""));
  std::vector<std::string> calls = platform_.record.calls;
  const auto first = std::find_if(calls.begin(), calls.end(),
                                  [](const std::string& call) { return call.starts_with("Session.execute"); });
  calls.erase(first, calls.end());
  EXPECT_THAT(calls, ElementsAre("e.rawFilter", "create Session", "e.Login", "Session.CursorLocation = 3",
                                 "Login.OrvDbName", "Session.ConnectionString = the account's connection",
                                 "Session.ConnectionTimeout = 0", "Session.CommandTimeout = 0",
                                 "Session.open(\"\", \"\", -1)", "e.LoginObj", "create AccountLogin", "Login.OrvDbName",
                                 "Login.SysPassword", "AccountLogin.initialise(the account's connection, ;PWD=secret)",
                                 "create InventoryEnvironment", "InventoryEnvironment.setLogin",
                                 "InventoryEnvironment.resultTable", "InventoryEnvironment.accountOptions(tmp_detail)",
                                 "e.DataSource", "DataSource.Type = 2", "DataSource.SQL = tmp_detail",
                                 "FilterList(\"cInvCode\")", "FilterItem.varValue", "FilterList(\"cDepCode\")",
                                 "FilterItem.varValue", "FilterList(\"cWhCode\")", "FilterItem.varValue",
                                 "create PublicComponent", "GetAccInformation(AA, iStrsQuanDecDgt)",
                                 "GetAccInformation(AA, iStrsPriDecDgt)", "AccountOptions.costingBasis",
                                 "AccountOptions.inventoryTable", "AccountOptions.warehouseTable", "GetComputerName",
                                 "work table number", "GetComputerName", "work table number"));
}

TEST_F(FxDetailRun, ReadsTheChecksOfTheInventoryBeforeThePeriodsAndCloses) {
  startInJanuary(platform_);
  run(filterItems("", ""));
  const auto& calls = platform_.record.calls;
  const auto closed = std::find(calls.begin(), calls.end(), "Recordset.Close");
  const auto started = std::find(calls.begin(), calls.end(), "iFxStartMonth(2024)");
  ASSERT_NE(closed, calls.end());
  EXPECT_LT(closed, started);
  ASSERT_TRUE(platform_.record.lastQueryOptions);
  EXPECT_EQ(platform_.record.lastQueryOptions->cursorType, CursorType::fixed);
  EXPECT_EQ(platform_.record.lastQueryOptions->lockType, LockType::optimistic);
  EXPECT_FALSE(platform_.record.lastQueryOptions->cursorLocation);
}

TEST_F(FxDetailRun, ClosesAndReleasesAtTheEnd) {
  startInJanuary(platform_);
  run(filterItems("", ""));
  EXPECT_THAT(platform_.record.calls[platform_.record.calls.size() - 2], "Session.state");
  EXPECT_EQ(platform_.record.calls.back(), "Session.close");
  EXPECT_FALSE(module_.session);
  EXPECT_FALSE(module_.login);
  module_.publicComponent();
  EXPECT_EQ(platform_.record.calls.back(), "create PublicComponent");
}

TEST_F(FxDetailRun, AConnectionThatIsClosedAlreadyIsNotClosedAgain) {
  startInJanuary(platform_);
  fakes::FakeArgument argument(platform_.record, platform_.filter(filterItems("", "")));
  FxDetail report(module_);
  // The platform closes it behind the report's back, at the last statement.
  platform_.record.atCall = {"drop table #BENCH_FXDetail2_102",
                             [&] { dynamic_cast<fakes::FakeSession&>(*module_.session).lose(); }};
  report.getSql(argument);
  EXPECT_EQ(platform_.record.calls.back(), "Session.state");
}

TEST_F(FxDetailRun, RepeatsAllStepsOnASecondCall) {
  startInJanuary(platform_);
  fakes::FakeArgument argument(platform_.record, platform_.filter(filterItems("", "")));
  FxDetail report(module_);
  report.getSql(argument);
  const std::size_t once = platform_.record.calls.size();
  report.getSql(argument);
  EXPECT_EQ(platform_.record.calls.size(), 2 * once - 1);  // the texts' service was created before
  EXPECT_THAT(platform_.record.statements(), Contains(HasSubstr("into #BENCH_FXDetail_103 from")));
  EXPECT_THAT(platform_.record.statements(), Contains(HasSubstr("into #BENCH_FXDetail2_104 from")));
}

TEST_F(FxDetailRun, AnAccountWithoutTheOptionHasNoDecimalPlaces) {
  startInJanuary(platform_);
  platform_.answers.options = {{"AA.iStrsQuanDecDgt", ""}, {"AA.iStrsPriDecDgt", " 6 "}};
  EXPECT_THAT(
      run(filterItems("2025-01-01", "")),
      Contains(HasSubstr("cast(iQuantity as decimal(38,0)) as iQuantity,cast(iCost as decimal(38,6)) as iCost,")));
}

TEST_F(FxDetailRun, RefusesDecimalPlacesThatAreNoNumber) {
  startInJanuary(platform_);
  platform_.answers.options = {{"AA.iStrsQuanDecDgt", "two"}, {"AA.iStrsPriDecDgt", "4"}};
  try {
    run(filterItems("", ""));
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::typeMismatch);
    EXPECT_EQ(error.description(),
              "The account option iStrsQuanDecDgt of system AA has the value \"two\"; give it a number of decimal "
              "places, such as 2.");
  }
}

// --- Batch and free items -------------------------------------------------------------------------------------------

constexpr std::string_view ledgerOnly =
    " and Base.cvoutype<>N'33' and isnull(Base.cBustype,N'') not in (N'直运销售',N'直运采购') ";

TEST_F(FxDetailRun, AnInventoryWithoutChecksKeepsToTheFixedCondition) {
  startInJanuary(platform_);
  platform_.answers.queries = {{"bcheckbatch", {checks(false, {})}}};
  EXPECT_THAT(run(filterItems("", "")),
              Contains(HasSubstr("and base.cinvCode=N'0101' and 1=1" + std::string(ledgerOnly))));
  EXPECT_THAT(platform_.record.with("FilterItem.strSqlString"), testing::IsEmpty());
}

TEST_F(FxDetailRun, AnUnknownInventoryKeepsToTheFixedCondition) {
  startInJanuary(platform_);
  EXPECT_THAT(run(filterItems("", "")),
              Contains(HasSubstr("and base.cinvCode=N'0101' and 1=1" + std::string(ledgerOnly))));
}

TEST_F(FxDetailRun, FreeItemsComeInTheirOrderAndTheBatchLast) {
  startInJanuary(platform_);
  platform_.answers.queries = {{"bcheckbatch", {checks(true, {10, 1})}}};
  EXPECT_THAT(
      run(filterItems("", "")),
      Contains(HasSubstr("N'0101' and 1=1 and base.cFree1=N'blue' and base.cFree10=N'x' and base.cbatchia=N'B7'" +
                         std::string(ledgerOnly))));
}

TEST_F(FxDetailRun, AnItemWithoutAConditionAddsNone) {
  startInJanuary(platform_);
  platform_.answers.queries = {{"bcheckbatch", {checks(false, {3})}}};
  EXPECT_THAT(run(filterItems("", "")), Contains(HasSubstr("N'0101' and 1=1" + std::string(ledgerOnly))));
  EXPECT_THAT(platform_.record.with("FilterItem.strSqlString"), testing::SizeIs(1));
}

// --- Month balances -------------------------------------------------------------------------------------------------

TEST_F(FxDetailRun, ASingleMonthEndsWithTheRange) {
  startInJanuary(platform_);
  platform_.answers.lastSettledMonth = 12;
  const auto script = run(filterItems("2024-06-05", "2024-06-20"));
  EXPECT_THAT(script, Contains(AllOf(HasSubstr("'6 <00298>' as cPZdigest,2,6,6, "),
                                     HasSubstr("where dKeepDate<=N'2024-06-20' and Base.iYear=2024"))));
  EXPECT_THAT(script, Not(Contains(HasSubstr(" base.imonth<"))));
}

TEST_F(FxDetailRun, ARangeThatEndsBeforeItsFirstMonthHasNoMonthBalance) {
  startInMarch(platform_);
  // Cost items start in March: that is the first month, whatever the dates.
  const auto script = run(filterItems("2024-01-10", "2024-02-20"));
  EXPECT_THAT(script, Not(Contains(HasSubstr("as cPZdigest,2,"))));
  EXPECT_THAT(script,
              Contains(HasSubstr("where dKeepDate>=N'2024-01-10' and dKeepDate<=N'2024-02-20' and base.imonth>=3")));
}

TEST_F(FxDetailRun, CostItemsThatStartedTogetherWithTheAccountNeedNoEnteredOpenings) {
  startInMarch(platform_);
  platform_.answers.moduleStart = {.year = 2024, .month = 3};
  const auto script = run(filterItems("", ""));
  EXPECT_THAT(script, Not(Contains(HasSubstr("IA_Subsidiary_QC"))));
  EXPECT_THAT(script, Not(Contains(HasSubstr("and base.imonth>=3group by"))));
}

TEST_F(FxDetailRun, ValuesArePastedAsTheyAre) {
  startInJanuary(platform_);
  auto items = filterItems("", "");
  items[1].value = "01'01";
  EXPECT_THAT(run(std::move(items)), Contains(HasSubstr(" and Base.cinvCode=N'01'01' ")));
}

// --- Errors: a run that fails at its k-th call, for every k ---------------------------------------------------------

class FxDetailFailure : public testing::TestWithParam<bool> {
 protected:
  static void prepare(fakes::FakePlatform& platform) { GetParam() ? startInMarch(platform) : startInJanuary(platform); }
  static std::vector<ItemValues> items() {
    return GetParam() ? filterItems("2024-04-10", "2024-05-20") : filterItems("", "");
  }
};

TEST_P(FxDetailFailure, LeavesTheRunAndIsReleasedWithTheInstance) {
  std::size_t total = 0;
  {
    fakes::FakePlatform platform;
    prepare(platform);
    Module module(platform);
    fakes::FakeArgument argument(platform.record, platform.filter(items()));
    FxDetail(module).getSql(argument);
    total = platform.record.calls.size();
  }
  ASSERT_GT(total, 60U);

  for (std::size_t k = 1; k <= total; ++k) {
    SCOPED_TRACE("failing call " + std::to_string(k));
    fakes::FakePlatform platform;
    prepare(platform);
    {
      Module module(platform);
      module.resources();  // kept for the life of the module
      platform.record.calls.clear();
      const int before = platform.record.alive;
      {
        FxDetail report(module);
        fakes::FakeArgument argument(platform.record, platform.filter(items()));
        platform.record.failAt = k;
        try {
          report.getSql(argument);
          // The service of texts exists already: one call less.
          EXPECT_EQ(k, total);
        } catch (const AutomationError& error) {
          EXPECT_EQ(error.code(), fakes::failure);
          EXPECT_EQ(error.description(), platform.record.calls.back());
          // Nothing runs after the failing call: no clean-up, no closing.
          EXPECT_EQ(platform.record.calls.size(), k);
        }
      }
      EXPECT_FALSE(module.session);
      EXPECT_FALSE(module.login);
      EXPECT_EQ(platform.record.alive, before);

      // The next run finds nothing in its way.
      platform.record.failAt = 0;
      fakes::FakeArgument argument(platform.record, platform.filter(items()));
      FxDetail(module).getSql(argument);
      EXPECT_EQ(platform.record.calls.back(), "Session.close");
    }
    EXPECT_EQ(platform.record.alive, 0);
  }
}

TEST_F(FxDetailRun, AnInstanceLeavesTheRunOfAnotherAlone) {
  startInJanuary(platform_);
  fakes::FakeArgument argument(platform_.record, platform_.filter(filterItems("", "")));
  {
    FxDetail failed(module_);
    platform_.record.failAt = 12;
    EXPECT_THROW(failed.getSql(argument), AutomationError);
    module_.session = platform_.createSession();
  }
  EXPECT_TRUE(module_.session);
  EXPECT_TRUE(module_.login);
}

TEST_F(FxDetailRun, OpensTheDocumentBehindARow) {
  fakes::FakeArgument argument(platform_.record, nullptr);
  argument.actionText = "Vouch";
  argument.rowColumns = {{"cVouType", "32"}, {"cVouCode", "7"}, {"ID", "815"}};
  FxDetail report(module_);
  EXPECT_EQ(report.execute(argument), DrillThrough::sourceVoucher);
  EXPECT_THAT(platform_.record.calls, Contains(HasSubstr("ShowVoucher")));
}

INSTANTIATE_TEST_SUITE_P(BothOpenings, FxDetailFailure, testing::Bool());

}  // namespace
}  // namespace quillon
