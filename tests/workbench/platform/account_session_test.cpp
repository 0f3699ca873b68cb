#include "workbench/platform/account_session.h"

#include <gmock/gmock.h>

#include <vector>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {
namespace {

class AccountSessionTest : public testing::Test {
 protected:
  void SetUp() override {
    tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    session_.setConnectionString(connectionString(file_.path()));
  }

  void open() { session_.open("", "", optionsUnspecified); }

  static AutomationError errorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const AutomationError& error) {
      return error;
    }
    return {0, "", "nothing failed"};
  }
  static std::uint32_t codeOf(const std::function<void()>& action) {
    return static_cast<std::uint32_t>(errorOf(action).code());
  }
  std::uint32_t codeOfStatement(std::string_view sql) {
    return codeOf([&] { session_.execute(sql); });
  }

  test::TemporaryFile file_{".qacc"};
  AccountSession session_;
};

TEST_F(AccountSessionTest, OpensAndCloses) {
  EXPECT_EQ(session_.state(), stateClosed);
  open();
  EXPECT_EQ(session_.state(), 1);
  session_.close();
  EXPECT_EQ(session_.state(), stateClosed);
}

TEST_F(AccountSessionTest, RefusesWhatNeedsTheOtherState) {
  EXPECT_EQ(codeOf([&] { session_.close(); }), 0x800A0E78U);
  EXPECT_EQ(codeOf([&] { session_.execute("Select 1"); }), 0x800A0E78U);
  EXPECT_EQ(codeOf([&] { session_.query("Select 1", readOnlyQuery); }), 0x800A0E78U);
  open();
  EXPECT_EQ(codeOf([&] { open(); }), 0x800A0E79U);
  EXPECT_EQ(codeOf([&] { session_.setConnectionString("other"); }), 0x800A0E79U);
}

TEST_F(AccountSessionTest, TellsThatAnAccountIsMissing) {
  AccountSession session;
  session.setConnectionString("Data Source=no-such-account.qacc");
  const AutomationError error = errorOf([&] { session.open("", "", optionsUnspecified); });
  EXPECT_EQ(static_cast<std::uint32_t>(error.code()), 0x80004005U);
  EXPECT_EQ(error.source(), "Quillon account");
  EXPECT_THAT(error.description(), testing::HasSubstr("no-such-account.qacc"));
}

TEST_F(AccountSessionTest, RunsStatementsThatSeeEachOther) {
  open();
  session_.execute("Create Table #work (cCode nvarchar(10), iMoney money)");
  EXPECT_EQ(session_.execute("Insert Into #work Values (N'a', 1.5), (N'b', 2.5)"), 2);
  const auto rows = session_.query("Select cCode, iMoney From #work Order By cCode", {});
  EXPECT_EQ(rows->text(0), "a");
  rows->moveNext();
  EXPECT_EQ(rows->text(1), "2.5");
  rows->moveNext();
  EXPECT_TRUE(rows->eof());
}

// A recordset has read everything when it is opened, so statements may run while it is read.
TEST_F(AccountSessionTest, ReadsARecordsetBesideOtherStatements) {
  open();
  session_.execute("Create Table t (i int)");
  session_.execute("Insert Into t Values (1), (2), (3)");
  const auto rows = session_.query("Select i From t Order By i", {});
  session_.execute("Drop Table t");
  rows->moveNext();
  rows->moveNext();
  EXPECT_EQ(rows->text(0), "3");
}

TEST_F(AccountSessionTest, GivesFieldsAsAutomationDoes) {
  open();
  const auto rows = session_.query(
      "Select Cast(12.500000 As decimal(18,6)), Cast(3 As money), Cast('2024-3-5' As datetime), "
      "Cast('2024-03-05 08:30:00' As datetime), Cast(1 As bit), Cast(0 As bit), Null, N' 文 ', -7, "
      "Cast(-0.250 As decimal(9,3)), Cast(100 As decimal(9,0))",
      {});
  const std::vector<std::optional<std::string>> expected = {
      "12.5", "3", "2024-03-05", "2024-03-05 08:30:00", "True", "False", std::nullopt, " 文 ", "-7", "-0.25", "100"};
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(rows->text(static_cast<int>(i)), expected[i]) << "field " << i;
}

TEST_F(AccountSessionTest, RefusesFieldsAndRowsThatAreNotThere) {
  open();
  const auto rows = session_.query("Select 1 Where 1 = 0", {});
  EXPECT_TRUE(rows->eof());
  EXPECT_EQ(codeOf([&] { rows->text(0); }), 0x800A0BCDU);
  EXPECT_EQ(codeOf([&] { rows->moveNext(); }), 0x800A0BCDU);
  EXPECT_EQ(codeOf([&] { rows->text(1); }), 0x800A0CC1U);
  rows->close();
  EXPECT_EQ(codeOf([&] { rows->eof(); }), 0x800A0E78U);
  EXPECT_EQ(codeOf([&] { rows->close(); }), 0x800A0E78U);
}

TEST_F(AccountSessionTest, TellsErrorsApartAsAdoDoes) {
  open();
  session_.execute("Create Table t (i int not null Primary Key, c nvarchar(2))");
  session_.execute("Insert Into t Values (1, N'a')");
  EXPECT_EQ(codeOfStatement("Selec 1"), 0x80040E14U) << "syntax";
  EXPECT_EQ(codeOfStatement("Insert Into t (nothing) Values (1)"), 0x80040E14U) << "unknown column";
  EXPECT_EQ(codeOfStatement("Delete nowhere"), 0x80040E37U) << "no such table";
  EXPECT_EQ(codeOfStatement("Insert Into t Values (2, N'abc')"), 0x80040E57U) << "lost text";
  EXPECT_EQ(codeOfStatement("Insert Into t Values (Cast(1000 As decimal(3,0)), N'a')"), 0x80040E57U) << "overflow";
  EXPECT_EQ(codeOfStatement("Insert Into t Values ('abc', N'a')"), 0x80040E07U) << "conversion";
  EXPECT_EQ(codeOfStatement("Insert Into t Values (1, N'b')"), 0x80040E2FU) << "primary key";
  EXPECT_EQ(codeOfStatement("Insert Into t Values (Null, N'b')"), 0x80040E2FU) << "null";
  EXPECT_EQ(codeOf([&] { session_.query("Select * From nowhere", {}); }), 0x80040E37U) << "a query likewise";
}

TEST_F(AccountSessionTest, RemembersTheStatementThatFailed) {
  open();
  EXPECT_FALSE(session_.lastFailure());
  const AutomationError error = errorOf([&] { session_.execute("Drop Table 123abc"); });
  EXPECT_EQ(error.source(), "Quillon account");
  ASSERT_TRUE(session_.lastFailure());
  EXPECT_EQ(session_.lastFailure()->sql, "Drop Table 123abc");
  EXPECT_EQ(session_.lastFailure()->number, 102);
  EXPECT_EQ(session_.lastFailure()->message, error.description());
  session_.execute("Create Table t (i int)");
  EXPECT_EQ(session_.lastFailure()->number, 102) << "a later success does not hide it";
}

TEST_F(AccountSessionTest, AFailureCarriesItsStatement) {
  open();
  constexpr std::string_view batch = "Select 1\nSelect nothing From nowhere";
  try {
    session_.execute(batch);
    FAIL() << "nothing failed";
  } catch (const StatementError& error) {
    EXPECT_EQ(error.failure().sql, batch);
    EXPECT_EQ(error.failure().number, 208);
    EXPECT_EQ(error.failure().line, 2);
    EXPECT_EQ(error.failure().message, error.description());
  }
}

class RecordingMonitor final : public SessionMonitor {
 public:
  void opened() override { log.emplace_back("opened"); }
  void started(std::string_view sql) override { log.push_back("started " + std::string(sql)); }
  void finished(std::string_view, double seconds, std::int64_t rows) override {
    EXPECT_GE(seconds, 0);
    log.push_back("finished " + std::to_string(rows));
  }
  void failed(const StatementFailure& failure) override { log.push_back("failed " + std::to_string(failure.number)); }
  void closed() override { log.emplace_back("closed"); }

  std::vector<std::string> log;
};

TEST_F(AccountSessionTest, TellsAMonitorWhatRuns) {
  RecordingMonitor monitor;
  AccountSession session(&monitor);
  session.setConnectionString(connectionString(file_.path()));
  session.open("", "", optionsUnspecified);
  session.execute("Create Table t (i int)");
  session.execute("Insert Into t Values (1), (2)");
  session.query("Select i From t", {});
  EXPECT_THROW(session.execute("Delete nowhere"), AutomationError);
  session.close();
  EXPECT_THAT(monitor.log,
              testing::ElementsAre("opened", "started Create Table t (i int)", "finished -1",
                                   "started Insert Into t Values (1), (2)", "finished 2", "started Select i From t",
                                   "finished 2", "started Delete nowhere", "failed 208", "closed"));
}

}  // namespace
}  // namespace quillon::workbench
