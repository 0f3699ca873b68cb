// Whole commands over ODBC: driver manager, a driver, and behind it a server that runs the statements on an embedded
// account. What they show must be what they show of the same account without ODBC between.
#include <gmock/gmock.h>
#include <CLI/CLI.hpp>

#include <fstream>
#include <memory>
#include <sstream>

#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/odbc/engine_server.h"
#include "tests/workbench/platform/one_inventory.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/account/ledger_check.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_check_command.h"
#include "workbench/cli/account_command.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/cli/sql_command.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class OverOdbc : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 1500, .years = 1});
  }
  static void TearDownTestSuite() { file_.reset(); }

  static std::string file() { return utf8FromPath(file_->path()); }
  static std::vector<std::string> tables() {
    return tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly)->tables("");
  }

  // What the command shows of the account in the file, and of the same account on the server.
  template <typename Command>
  void expectSame(Command command) {
    const std::string embedded = command(file());
    const int before = server_.batches;
    // Fingerprints name the database as they name a file.
    const std::string database = utf8FromPath(file_->path().filename());
    const std::string remote = command("Database=" + database + ";" + odbc::test::EngineServer::connectionString());
    EXPECT_EQ(remote, embedded);
    EXPECT_GT(embedded.size(), 100U) << "there is something to compare";
    EXPECT_GT(server_.batches, before) << "the server was asked";
    EXPECT_EQ(server_.openSessions, 0) << "nothing stays connected";
  }

  void expectSameReport(const std::string& report, const std::vector<std::string>& settings = {}) {
    for (const ReportFormat format : {ReportFormat::csv, ReportFormat::json, ReportFormat::table, ReportFormat::html}) {
      expectSame([&](const std::string& source) {
        std::ostringstream out;
        std::ostringstream notes;
        runReport({.report = report, .account = AccountSource(source), .settings = settings, .format = format}, out,
                  notes);
        return out.str() + notes.str();
      });
    }
  }

  // What running the program with these arguments writes to standard output.
  static std::string shownBy(std::vector<std::string> arguments) {
    CLI::App app;
    addAccountCommand(app);
    std::ranges::reverse(arguments);
    testing::internal::CaptureStdout();
    app.parse(std::move(arguments));
    return testing::internal::GetCapturedStdout();
  }

  // The error of a report that cannot be made.
  static std::string errorOfReport(const std::string& report, const std::string& filterFile = {}) {
    std::ostringstream out;
    std::ostringstream notes;
    try {
      runReport({.report = report,
                 .account = AccountSource(odbc::test::EngineServer::connectionString()),
                 .filterFile = filterFile},
                out, notes);
    } catch (const std::exception& error) {
      return error.what();
    }
    return "nothing failed";
  }

  static std::vector<std::string> oneInventory() { return workbench::test::oneInventory(file_->path()); }

  static inline std::unique_ptr<test::TemporaryFile> file_;
  odbc::test::EngineServer server_{file_->path()};
};

// Whatever a filter value asks for, the workbench itself connects to nothing but the account.
// A server that has another system database and keeps temporary tables elsewhere.
TEST_F(OverOdbc, ReportsOnAnEngineThatIsNotSqlServer) {
  server_.isBabelfish = true;
  const auto reportOn = [](const std::string& source, const std::string& report, std::vector<std::string> settings,
                           std::ostream& notes) {
    std::ostringstream out;
    runReport({.report = report,
               .account = AccountSource(source),
               .settings = std::move(settings),
               .format = ReportFormat::csv,
               .language = Language::english,
               .explain = true},
              out, notes);
    return out.str();
  };
  const std::string server = odbc::test::EngineServer::connectionString() + ";OrvSystem=periods";
  const auto saysSent = [](const std::ostringstream& notes) {
    return notes.str().find("this server is sent:\n") != std::string::npos;
  };
  int rewritten = 0;
  for (const Report& report : reports()) {
    SCOPED_TRACE(report.registration.name);
    const std::vector<std::string> settings =
        report.registration.name == std::string_view("fx-detail") ? oneInventory() : std::vector<std::string>();
    std::ostringstream notes, notesOfFile;
    const std::string rows = reportOn(server, report.registration.name, settings, notes);
    EXPECT_EQ(rows, reportOn(file(), report.registration.name, settings, notesOfFile));
    EXPECT_GT(std::ranges::count(rows, '\n'), 3);
    rewritten += saysSent(notes) ? 1 : 0;
    EXPECT_FALSE(saysSent(notesOfFile));
  }
  EXPECT_EQ(rewritten, 2) << "the detail ledger's temporary tables, and the makers of the outbound summary's documents";
  server_.isBabelfish = false;
}

TEST_F(OverOdbc, AFilterValueOpensNoOtherConnection) {
  const test::TemporaryFile filter(".json");
  for (const char* const value : {"x';DSN=other;UID=sa", "x' Use other --", "Data Source=other.account", "DSN=other"}) {
    std::ofstream(filter.path()) << R"({"items":[{"name":"cVouCode","value":")" << value << R"("}]})";
    errorOfReport("fx-wt", utf8FromPath(filter.path()));
  }
  EXPECT_FALSE(server_.connectedWith.empty());
  for (const std::u16string& connection : server_.connectedWith)
    EXPECT_EQ(connection, server_.connectedWith.front());
  EXPECT_EQ(server_.connectedWith.front().find(u"other"), std::u16string::npos);
}

TEST_F(OverOdbc, ReceiptIssueBalance) {
  const auto before = tables();
  expectSameReport("sfc-item");
  expectSameReport("sfc-item", {"cModal=0", "iGrade=1"});
  EXPECT_EQ(tables(), before) << "work tables and result tables are gone";
}

// The drop of the group index by its bare name is refused when all rows are written.
TEST_F(OverOdbc, ABalanceConditionIsNoFailureWhateverTheServersNumberOfTheRefusal) {
  server_.otherNumbers = {{102, 33557097}};
  std::ostringstream out, notes;
  runReport({.report = "sfc-item",
             .account = AccountSource(odbc::test::EngineServer::connectionString()),
             .settings = {"cModal=1", "cFSType=1"},
             .format = ReportFormat::csv},
            out, notes);
  server_.otherNumbers.clear();
  EXPECT_THAT(notes.str(), HasSubstr("错误 33557097"));
  EXPECT_THAT(notes.str(), HasSubstr("所有行都已写出"));
  std::ostringstream embedded;
  runReport({.report = "sfc-item",
             .account = AccountSource(file()),
             .settings = {"cModal=1", "cFSType=1"},
             .format = ReportFormat::csv},
            embedded, notes);
  EXPECT_EQ(out.str(), embedded.str());
  EXPECT_GT(std::ranges::count(out.str(), '\n'), 5);
}

TEST_F(OverOdbc, OutboundSummary) {
  const auto before = tables();
  expectSameReport("outsum-item");
  expectSameReport("outsum-item", {"cModal=2"});
  EXPECT_EQ(tables(), before);
}

TEST_F(OverOdbc, DetailLedger) {
  const auto before = tables();
  expectSameReport("fx-detail", oneInventory());
  EXPECT_EQ(tables(), before);
}

TEST_F(OverOdbc, CostItemVoucherReport) {
  const auto before = tables();
  expectSameReport("fx-wt");
  EXPECT_EQ(tables(), before);
}

TEST_F(OverOdbc, Dialogs) {
  for (const Report& report : reports()) {
    expectSame([&report](const std::string& source) {
      std::ostringstream out, notes;
      runDialog({.report = report.registration.name, .account = AccountSource(source), .format = DialogFormat::json},
                out, notes);
      return out.str();
    });
  }
}

TEST_F(OverOdbc, DrillThrough) {
  const std::vector<std::string> settings = oneInventory();
  for (const char* action : {"Vouch", "Voucher"}) {
    expectSame([&](const std::string& source) {
      std::ostringstream out;
      std::ostringstream notes;
      runDrill({.report = {.report = "fx-detail", .account = AccountSource(source), .settings = settings},
                .row = {"RowNo=3"},
                .action = action,
                .format = DrillFormat::json},
               out, notes);
      return out.str();
    });
  }
}

TEST_F(OverOdbc, AccountInformationAndCheck) {
  expectSame([](const std::string& source) { return shownBy({"account", "info", source}); });
  expectSame([](const std::string& source) {
    std::ostringstream out;
    EXPECT_TRUE(checkAccount(AccountSource(source), {}, out));
    return out.str();
  });
}

// An account with something wrong for each check of the ledger.
TEST_F(OverOdbc, ChecksThatFindSomething) {
  const test::TemporaryFile broken(".qacc");
  account::createSample(broken.path(), {.rows = 1500, .years = 2});
  tsql::Connection::open(broken.path(), tsql::OpenMode::existing)
      ->execute(
          "Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 1.25 Where iYear = 2024 And iMonth = 7\n"
          "Update ia_subsidiary_ItemOut Set iItemOutPrice = iItemOutPrice + 1 Where iMonth = 8\n"
          "Update IA_Subsidiary_QC_Item Set iItemInPrice = iItemInPrice + 1 Where iItemID = 6\n"
          "Delete From IA_Subsidiary_QC_Item Where iSubQcID < 3\n"
          "Update IA_Subsidiary_QC Set iAInPrice = iAInPrice + 2 Where AutoID = 3\n"
          "Delete From ia_subsidiary_Item Where iYear = 2024 And iMonth = 9\n"
          "Update ia_subsidiary_Item Set iItemID = 777 Where iYear = 2024 And iMonth = 10\n"
          "Update ia_subsidiary_Item Set iItemDetailID = 1001 Where iYear = 2024 And iMonth = 11\n"
          "Update ia_subsidiary_Item Set iSubID = iSubID + 90000000 Where iYear = 2024 And iMonth = 5\n"
          "Update Ca_FxClassDef Set cFxCCode = N'88' + cFxCCode Where cFxCCode = N'010101'\n"
          "Update Ca_FxDef Set cFxCID = 999 Where iFxID = 2\n"
          "Update ia_subsidiary Set iAInQuantity = Null Where iYear = 2024 And iMonth = 6\n"
          "Update ia_subsidiary Set iAOutPrice = Null Where iYear = 2024 And iMonth = 4\n"
          "Update ia_subsidiary Set iAOutPrice = iAOutPrice + 1 Where iYear = 2023 And iMonth = 12\n"
          "Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, bRdFlag, bFlag, cInvCode, iAInPrice) Values "
          "(99000001, 2024, 12, N'20', 1, 0, N'o''clock', 5)\n"
          "Update IA_PeriodState Set bSettled = 0 Where iMonth = 3");
  odbc::test::EngineServer server(broken.path());
  const auto shown = [](const AccountSource& source, CheckFormat format) {
    std::ostringstream out;
    EXPECT_FALSE(checkAccount(source, {.limit = format == CheckFormat::table ? 5 : 0, .format = format}, out));
    return out.str();
  };
  for (const CheckFormat format : {CheckFormat::table, CheckFormat::csv, CheckFormat::json}) {
    EXPECT_EQ(shown(AccountSource(odbc::test::EngineServer::connectionString()), format),
              shown(AccountSource::inFile(broken.path()), format));
  }
  const std::string records = shown(AccountSource::inFile(broken.path()), CheckFormat::csv);
  for (const account::CheckInfo& info : account::ledgerChecks())
    EXPECT_THAT(records, HasSubstr("\r\n" + std::string(info.name) + ",")) << "nothing was found";
  EXPECT_EQ(server.openSessions, 0);
}

TEST_F(OverOdbc, ReportsWithTheirChecks) {
  expectSame([](const std::string& source) {
    std::ostringstream out, notes;
    runReport({.report = "sfc-item", .account = AccountSource(source), .check = true}, out, notes);
    EXPECT_THAT(notes.str(), HasSubstr("quillon: 没有发现触及本报表的错误\n"));
    return out.str() + notes.str();
  });
}

TEST_F(OverOdbc, ScriptsOfStatements) {
  constexpr const char* script =
      "Select Top 3 AutoID, cInvCode, dKeepDate, iAInQuantity, iAInPrice, bRdFlag From ia_subsidiary Order By AutoID\n"
      "Select Cast('12345678901234567890123456789012.345678' As decimal(38,6)) As a, Cast(-0.5 As money) As b, "
      "Cast(0.1 As float) As c, N'中😀' As d, Cast(Null As int) As e, 9007199254740993 As f\n"
      "go\n"
      "Create Table #kept (i int, t nvarchar(max))\n"
      "Insert Into #kept Values (1, Replicate(N'长', 4000)), (2, N'')\n"
      "GO\n"
      "Select i, t From #kept Order By i\n"
      "Update #kept Set i = i + 1 Where i > 5\n"
      "go\n"
      "Select 1 As before\nSelect nothing From nowhere\n"
      "go\n"
      "Drop Table #kept\n";
  for (const SqlFormat format : {SqlFormat::json, SqlFormat::table}) {
    expectSame([format](const std::string& source) {
      std::istringstream in(script);
      std::ostringstream out;
      std::ostringstream errors;
      EXPECT_EQ(runScript(*AccountSource(source).open(tsql::OpenMode::existing), in, "the script", format, out, errors),
                1);
      return out.str() + errors.str();
    });
  }
}

TEST_F(OverOdbc, ARefusedStatementIsToldWithNumberLineAndStatement) {
  const test::TemporaryFile filter(".json");
  std::ofstream(filter.path()) << R"({"items":[{"name":"cNoColumn","value":"1"}]})";
  const std::string error = errorOfReport("sfc-item", utf8FromPath(filter.path()));
  EXPECT_THAT(error, AllOf(StartsWith("the build stopped: error 207 in line "),
                           HasSubstr(" of the batch: Invalid column name 'cNoColumn'., at: Insert Into ["),
                           Not(HasSubstr("geheim")), Not(HasSubstr("\n"))));
  EXPECT_THAT(shownBy({"account", "clean", odbc::test::EngineServer::connectionString()}),
              testing::StrEq("no tables of reports were left\n"));
}

// A server that is killed at any point of a report.
TEST_F(OverOdbc, AKilledServerIsOneErrorAndNothingStaysConnected) {
  int batches = server_.batches;
  EXPECT_EQ(errorOfReport("sfc-item"), "nothing failed");
  batches = server_.batches - batches;
  ASSERT_GT(batches, 10);
  // With the last of them the result table is dropped: the report is out by then.
  for (int lived = 0; lived + 1 < batches; ++lived) {
    server_.dieAfter(lived);
    EXPECT_THAT(errorOfReport("sfc-item"),
                AllOf(testing::AnyOf(HasSubstr("the connection to the database server is lost: The server was killed."),
                                     HasSubstr("cannot connect to the database server: There is no server.")),
                      Not(HasSubstr("geheim")), Not(HasSubstr("\n"))))
        << "after " << lived << " batches";
    EXPECT_EQ(server_.openSessions, 0);
  }
  server_.dieAfter(-1);
  const auto account = AccountSource(file()).open(tsql::OpenMode::existing);
  account::testing::dropLeftovers(*account);
}

// A person who asks for a stop at any point of a report: it ends, and the server has none of its tables.
TEST_F(OverOdbc, AStoppedReportLeavesNoTable) {
  for (const char* const report : {"sfc-item", "fx-wt"}) {
    SCOPED_TRACE(report);
    const auto before = tables();
    int batches = server_.batches;
    ASSERT_EQ(errorOfReport(report), "nothing failed");
    batches = server_.batches - batches;
    int stopped = 0;
    for (int lived = 0; lived < batches; ++lived) {
      server_.askForStopAfter(lived);
      const std::string error = errorOfReport(report);
      tsql::forgetStop();
      EXPECT_THAT(error, testing::AnyOf(HasSubstr("stopped before its end"), testing::StrEq("nothing failed")));
      stopped += error == "nothing failed" ? 0 : 1;
      EXPECT_EQ(tables(), before) << "after " << lived << " batches";
      EXPECT_EQ(server_.openSessions, 0);
    }
    EXPECT_GT(stopped, batches / 2);
  }
}

TEST_F(OverOdbc, ASessionTellsALostConnectionAsAdoDoes) {
  AccountSession session;
  session.setConnectionString(odbc::test::EngineServer::connectionString());
  session.setConnectionTimeout(0);
  session.setCommandTimeout(0);
  session.open("", "", optionsUnspecified);
  const auto codeOf = [&session](std::string_view sql) {
    try {
      session.execute(sql);
    } catch (const AutomationError& error) {
      return static_cast<std::uint32_t>(error.code());
    }
    return 0U;
  };
  EXPECT_EQ(codeOf("Delete nowhere"), 0x80040E37U);
  EXPECT_EQ(codeOf("Insert Into AA_Enum Values (1)"), 0x80040E14U);
  const auto rows = session.query("Select Top 2 AutoID From ia_subsidiary Order By AutoID", readOnlyQuery);
  server_.dieAfter(0);
  EXPECT_EQ(codeOf("Select 1"), 0x80004005U);
  EXPECT_EQ(session.lastFailure()->number, 0);
  EXPECT_FALSE(rows->eof()) << "rows that were read stay";
  EXPECT_EQ(session.state(), 1) << "as with ADO, who opened it closes it";
  session.close();
  EXPECT_EQ(server_.openSessions, 0);
}

}  // namespace
}  // namespace quillon::workbench
