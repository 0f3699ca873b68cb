#include "frame/report_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/fake_dialog.h"
#include "tests/frame/fakes.h"

namespace quillon {
namespace {

using testing::ElementsAre;

class ReportSession : public testing::Test {
 protected:
  fakes::FakePlatform platform_;
  Module module_{platform_};
  fakes::FakeArgument argument_{platform_.record, nullptr};
  std::vector<std::string>& calls_ = platform_.record.calls;
};

TEST_F(ReportSession, OpensAsTheAccountDatabaseExpects) {
  openReportSession(module_, argument_);
  EXPECT_THAT(calls_,
              ElementsAre("create Session", "e.Login", "Session.CursorLocation = 3", "Login.OrvDbName",
                          "Session.ConnectionString = the account's connection", "Session.ConnectionTimeout = 0",
                          "Session.CommandTimeout = 0", "Session.open(\"\", \"\", -1)"));
  EXPECT_TRUE(module_.session);
  EXPECT_TRUE(module_.login);
}

TEST_F(ReportSession, ADialogOpensItsOwnAndHandsTheLoginToTheResources) {
  fakes::FakeDialog dialog(platform_, "", {});
  openDialogSession(module_, dialog);
  EXPECT_THAT(calls_, ElementsAre("create Session", "dialog.login", "Session.CursorLocation = 3", "Login.OrvDbName",
                                  "Session.ConnectionString = the account's connection",
                                  "Session.ConnectionTimeout = 0", "Session.CommandTimeout = 0",
                                  "Session.open(\"\", \"\", -1)", "create ResourceService", "resources.takeLogin"));
  EXPECT_TRUE(module_.session);
  EXPECT_TRUE(module_.login);
}

TEST_F(ReportSession, AnotherRunReplacesSessionAndLogin) {
  openReportSession(module_, argument_);
  const std::weak_ptr<Session> session = module_.session;
  const std::weak_ptr<Login> login = module_.login;
  openReportSession(module_, argument_);
  EXPECT_TRUE(session.expired());
  EXPECT_TRUE(login.expired());
  EXPECT_EQ(platform_.record.alive, 2);
}

TEST_F(ReportSession, ClosesAndReleases) {
  openReportSession(module_, argument_);
  calls_.clear();
  closeReportSession(module_);
  EXPECT_THAT(calls_, ElementsAre("Session.state", "Session.close"));
  EXPECT_FALSE(module_.session);
  EXPECT_TRUE(module_.login);
}

TEST_F(ReportSession, ReleasesAClosedSessionWithoutClosingItAgain) {
  openReportSession(module_, argument_);
  static_cast<fakes::FakeSession&>(*module_.session).lose();
  calls_.clear();
  closeReportSession(module_);
  EXPECT_THAT(calls_, ElementsAre("Session.state"));
  EXPECT_FALSE(module_.session);
}

TEST_F(ReportSession, ReleasesASessionThatCannotBeClosed) {
  openReportSession(module_, argument_);
  calls_.clear();
  platform_.record.failAt = 2;
  EXPECT_THROW(closeReportSession(module_), AutomationError);
  EXPECT_THAT(calls_, ElementsAre("Session.state", "Session.close"));
  EXPECT_FALSE(module_.session);
}

TEST_F(ReportSession, ClosingNothingIsNoError) {
  closeReportSession(module_);
  EXPECT_TRUE(calls_.empty());
}

}  // namespace
}  // namespace quillon
