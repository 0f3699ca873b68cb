#include "frame/summary_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <utility>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using testing::ElementsAre;

// A report whose build is the test's.
class SampleReport final : public SummaryReport {
 public:
  using SummaryReport::SummaryReport;

  std::function<void()> work = [] {};
  std::string builtTable;

 private:
  void build(Filter&, const std::string& resultTable, Module&, Session& session) override {
    builtTable = resultTable;
    session.execute("build");
    work();
  }
};

class SummaryReportTest : public testing::Test {
 protected:
  fakes::FakePlatform platform_;
  Module module_{platform_};
  fakes::FakeArgument argument_{platform_.record, platform_.filter({})};
  std::vector<std::string>& calls_ = platform_.record.calls;
};

TEST_F(SummaryReportTest, SetsTheNamePrefixAnewWithEachInstance) {
  platform_.answers.namingNumber = " 12";
  const SampleReport first(module_);
  EXPECT_EQ(module_.namePrefix, "12");
  platform_.answers.namingNumber = "13 ";
  const SampleReport second(module_);
  EXPECT_EQ(module_.namePrefix, "13");
}

TEST_F(SummaryReportTest, IsNotCreatedWhenTheNamingClassFails) {
  platform_.record.failAt = 1;
  EXPECT_THROW(SampleReport{module_}, AutomationError);
}

TEST_F(SummaryReportTest, RunsInThePlatformsOrder) {
  SampleReport report(module_);
  calls_.clear();
  report.getSql(argument_);
  EXPECT_THAT(calls_, ElementsAre("e.rawFilter", "create Session", "e.Login", "Session.CursorLocation = 3",
                                  "Login.OrvDbName", "Session.ConnectionString = the account's connection",
                                  "Session.ConnectionTimeout = 0", "Session.CommandTimeout = 0",
                                  "Session.open(\"\", \"\", -1)", "e.DataSource", "DataSource.Type = 2",
                                  "DataSource.SQL", "Session.execute build", "Session.state", "Session.close"));
  EXPECT_EQ(report.builtTable, "tmp_result");
  EXPECT_FALSE(module_.session);
}

TEST_F(SummaryReportTest, ABuildThatFailsLeavesTheSessionOpenAndReturnsNormally) {
  SampleReport report(module_);
  report.work = [] { throw AutomationError(fakes::failure, "ADODB.Connection", "no"); };
  report.getSql(argument_);
  EXPECT_EQ(calls_.back(), "Session.execute build");
  ASSERT_TRUE(module_.session);
  EXPECT_NE(module_.session->state(), stateClosed);
}

TEST_F(SummaryReportTest, AFailedBuildGivesASingleBlank) {
  SampleReport report(module_);
  report.getSql(argument_);
  module_.session = platform_.createSession();
  EXPECT_EQ(report.moveDataDetail(), "");
  report.work = [] { throw AutomationError(fakes::failure, "ADODB.Connection", "no"); };
  EXPECT_EQ(report.moveDataDetail(), " ");
  // Whatever goes wrong, not only what an automation object says.
  report.work = [] { throw std::runtime_error("no"); };
  EXPECT_EQ(report.moveDataDetail(), " ");
}

TEST_F(SummaryReportTest, TheBuildAloneFailsBeforeARunAndAfterOne) {
  SampleReport report(module_);
  EXPECT_EQ(report.moveDataDetail(), " ");
  report.getSql(argument_);
  EXPECT_EQ(report.moveDataDetail(), " ");
}

TEST_F(SummaryReportTest, TempTablenameIsAlwaysEmpty) {
  SampleReport report(module_);
  EXPECT_EQ(report.tempTableName(), "");
  report.getSql(argument_);
  EXPECT_EQ(report.tempTableName(), "");
}

TEST_F(SummaryReportTest, KeepsTarnTmpTableAsThePlatformSetsIt) {
  SampleReport report(module_);
  EXPECT_EQ(report.tempTableProperty(), "");
  report.setTempTableProperty("any text");
  report.getSql(argument_);
  EXPECT_EQ(report.tempTableProperty(), "any text");
}

TEST_F(SummaryReportTest, AnErrorOutsideTheBuildReachesThePlatform) {
  // Each call of the run but those of the build itself: from e.rawFilter to DataSource.SQL, and closing the session.
  for (std::size_t k = 1; k <= 15; ++k) {
    fakes::FakePlatform platform;
    Module module(platform);
    SampleReport report(module);
    fakes::FakeArgument argument(platform.record, platform.filter({}));
    platform.record.calls.clear();
    platform.record.failAt = k;
    const bool inBuild = k == 13;
    try {
      report.getSql(argument);
      EXPECT_TRUE(inBuild) << "call " << k;
    } catch (const AutomationError& error) {
      EXPECT_FALSE(inBuild);
      EXPECT_EQ(error.code(), fakes::failure);
      EXPECT_EQ(error.source(), "Fake");
      EXPECT_EQ(error.description(), platform.record.calls.back());
    }
    EXPECT_EQ(platform.record.calls.size(), k);
  }
}

// The platform's answer to `call` starts another report on the same thread.
TEST_F(SummaryReportTest, ARunThatAnotherOneTookTheConnectionFromIsNoSuccess) {
  for (const char* call :
       {"e.Login", "Login.OrvDbName", "Session.CommandTimeout = 0", "e.DataSource", "DataSource.SQL"}) {
    SampleReport outer(module_);
    SampleReport inner(module_);
    fakes::FakeArgument innerArgument(platform_.record, platform_.filter({}));
    bool started = false;
    platform_.record.atCall = {call, [&] {
                                 if (std::exchange(started, true)) return;
                                 const Module::Use nested(module_);
                                 inner.getSql(innerArgument);
                               }};
    {
      const Module::Use use(module_);
      EXPECT_THROW(outer.getSql(argument_), AutomationError) << call;
    }
    EXPECT_TRUE(started) << call;
    EXPECT_EQ(inner.builtTable, "tmp_result");
    EXPECT_EQ(outer.builtTable, "") << "it has run its statements on a connection that it had lost";
    EXPECT_FALSE(module_.session) << "the inner one closed its own";
  }
}

TEST_F(SummaryReportTest, ABuildThatAnotherRunTookTheConnectionFromFails) {
  SampleReport outer(module_);
  SampleReport inner(module_);
  fakes::FakeArgument innerArgument(platform_.record, platform_.filter({}));
  outer.work = [&] { inner.getSql(innerArgument); };
  calls_.clear();
  outer.getSql(argument_);
  EXPECT_EQ(std::count(calls_.begin(), calls_.end(), "Session.close"), 1) << "the inner one's";
  EXPECT_EQ(calls_.back(), "Session.close");
}

TEST_F(SummaryReportTest, ExecuteAsksForAFilterAndReleasesEverything) {
  SampleReport report(module_);
  calls_.clear();
  const int before = platform_.record.alive;
  report.execute(argument_);
  EXPECT_THAT(calls_,
              ElementsAre("e.Action", "e.Login", "create DrillThroughHelper", "helper.filterFor(no drill-through)"));
  EXPECT_EQ(platform_.record.alive, before);
  EXPECT_FALSE(module_.session);
  EXPECT_FALSE(module_.login);
}

TEST_F(SummaryReportTest, ExecuteKnowsLinkInAnyLetterCase) {
  SampleReport report(module_);
  for (const char* action : {"Link", "LINK", "link"}) {
    calls_.clear();
    argument_.actionText = action;
    report.execute(argument_);
    EXPECT_EQ(calls_.back(), "helper.filterFor(drill-through)") << action;
  }
  argument_.actionText = "Links";
  report.execute(argument_);
  EXPECT_EQ(calls_.back(), "helper.filterFor(no drill-through)");
}

TEST_F(SummaryReportTest, ExecutePassesOverEachFailingStep) {
  SampleReport report(module_);
  const std::vector<std::vector<std::string>> expected = {
      {"e.Action", "e.Login", "create DrillThroughHelper", "helper.filterFor(no drill-through)"},
      {"e.Action", "e.Login", "create DrillThroughHelper", "helper.filterFor(nothing, drill-through)"},
      // Without a helper there is nobody to ask.
      {"e.Action", "e.Login", "create DrillThroughHelper"},
      {"e.Action", "e.Login", "create DrillThroughHelper", "helper.filterFor(drill-through)"},
  };
  argument_.actionText = "Link";
  const int before = platform_.record.alive;
  for (std::size_t k = 1; k <= expected.size(); ++k) {
    calls_.clear();
    platform_.record.failAt = k;
    report.execute(argument_);
    EXPECT_EQ(calls_, expected[k - 1]) << "failing call " << k;
    EXPECT_EQ(platform_.record.alive, before);
  }
}

}  // namespace
}  // namespace quillon
