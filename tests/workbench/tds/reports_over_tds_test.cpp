// Whole commands over FreeTDS's driver and a wire: what they show must be what they show of the account's file.
#include <gmock/gmock.h>

#include <map>
#include <sstream>

#include "tests/workbench/tds/wire_test_base.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_diff_command.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/cli/sql_command.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class OverTds : public tds::test::WireTest {
 protected:
  template <typename Command>
  void expectSame(Command command, const std::string& attributes = {}) {
    const std::string embedded = command(file());
    const int before = endpoint_.batches();
    const std::string remote = command(connectionString(attributes));
    EXPECT_EQ(remote, embedded);
    EXPECT_GT(embedded.size(), 100U) << "there is something to compare";
    EXPECT_GT(endpoint_.batches(), before) << "the server was asked";
    EXPECT_TRUE(nobodyStays(endpoint_));
  }

  static std::string shownReport(const std::string& source, const std::string& report,
                                 const std::vector<std::string>& settings, ReportFormat format) {
    std::ostringstream out, notes;
    runReport({.report = report, .account = AccountSource(source), .settings = settings, .format = format}, out, notes);
    return out.str() + notes.str();
  }
  void expectSameReport(const std::string& report, const std::vector<std::string>& settings = {}) {
    const auto before = tables();
    for (const ReportFormat format : {ReportFormat::csv, ReportFormat::json, ReportFormat::table, ReportFormat::html}) {
      expectSame([&](const std::string& source) { return shownReport(source, report, settings, format); });
    }
    EXPECT_EQ(tables(), before) << "work tables and result tables are gone";
  }
  // The first ledger line of a material issue in the month.
  static std::string firstIssueOf(int month) {
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly);
    const auto rows = account->query("Select Min(AutoID) From ia_subsidiary Where cVouType = N'11' And iMonth = " +
                                     std::to_string(month));
    return rows->next() ? tsql::toText(rows->value(0)).value_or("none") : "none";
  }
  void expectSameDrill(const std::string& report, const std::vector<std::string>& settings, const std::string& row) {
    for (const char* const action : {"Vouch", "Voucher"}) {
      expectSame([&](const std::string& source) {
        std::ostringstream out, notes;
        runDrill({.report = {.report = report, .account = AccountSource(source), .settings = settings},
                  .row = {row},
                  .action = action,
                  .format = DrillFormat::json},
                 out, notes);
        return out.str();
      });
    }
  }
};

TEST_F(OverTds, ReceiptIssueBalance) {
  expectSameReport("sfc-item");
  expectSameReport("sfc-item", {"cModal=0", "iGrade=1"});
}

TEST_F(OverTds, OutboundSummary) {
  expectSameReport("outsum-item");
  expectSameReport("outsum-item", {"cModal=2"});
}

TEST_F(OverTds, DetailLedger) {
  expectSameReport("fx-detail", oneInventory());
}

TEST_F(OverTds, CostItemVoucherReport) {
  expectSameReport("fx-wt");
}

TEST_F(OverTds, ARestrictedReportWithTextsOfTheFilter) {
  expectSameReport("fx-wt", {"Inventory." + oneInventory().front()});
}

TEST_F(OverTds, PacketsOfSeveralSizes) {
  std::vector<int> sent;
  for (const char* const size : {"4096", "5001", "32767"}) {
    const int before = endpoint_.packets();
    expectSame([](const std::string& source) { return shownReport(source, "sfc-item", {}, ReportFormat::csv); },
               std::string(";PacketSize=") + size);
    sent.push_back(endpoint_.packets() - before);
  }
  EXPECT_GT(sent.front(), 3 * sent.back()) << "the size was agreed";
}

TEST_F(OverTds, Dialogs) {
  for (const Report& report : reports()) {
    SCOPED_TRACE(report.registration.name);
    expectSame([&report](const std::string& source) {
      std::ostringstream out, notes;
      runDialog({.report = report.registration.name, .account = AccountSource(source), .format = DialogFormat::json},
                out, notes);
      return out.str();
    });
  }
}

// What a person changes in a dialog asks the server, too: for the periods of a year, the batches of an inventory.
TEST_F(OverTds, DialogsInWhichSomethingIsChanged) {
  const std::map<std::string, std::vector<std::string>> changes = {
      {"sfc-item", {"change:cModal=2", "change:iYear=2024"}},
      {"outsum-item", {"change:cModal=2", "change:iYear=2024"}},
      {"fx-wt", {"change:cWhCode=01"}},
      {"fx-detail", {"change:" + oneInventory().front(), "change:cCaType=成本项目"}}};
  for (const Report& report : reports()) {
    SCOPED_TRACE(report.registration.name);
    std::vector<std::string> steps = changes.at(report.registration.name);
    steps.insert(steps.begin(), "init");
    steps.insert(steps.end(), {"view", "click"});
    expectSame([&](const std::string& source) {
      std::ostringstream out, notes;
      runDialog({.report = report.registration.name,
                 .account = AccountSource(source),
                 .steps = steps,
                 .format = DialogFormat::json},
                out, notes);
      return out.str() + notes.str();
    });
  }
}

TEST_F(OverTds, DrillThrough) {
  expectSameDrill("fx-detail", oneInventory(), "RowNo=2");
  expectSameDrill("fx-wt", {"dKeepDate=2024-03-01..2024-03-31"}, "AutoID=" + firstIssueOf(3));
}

TEST_F(OverTds, AnAccountEqualsItself) {
  std::ostringstream out;
  EXPECT_TRUE(diffAccounts(AccountSource(file()), AccountSource(connectionString()), {.exact = true}, out))
      << out.str();
  EXPECT_THAT(out.str(), StartsWith("equal: 42 tables, "));
}

TEST_F(OverTds, AReportEqualsTheOneOfTheFile) {
  for (const Report& report : reports()) {
    const std::vector<std::string> settings =
        report.registration.name == std::string_view("fx-detail") ? oneInventory() : std::vector<std::string>();
    std::ostringstream out, notes;
    EXPECT_TRUE(compareReports({.report = report.registration.name,
                                .account = AccountSource(file()),
                                .settings = settings,
                                .language = Language::english},
                               AccountSource(connectionString()), out, notes))
        << out.str();
    EXPECT_THAT(out.str(), StartsWith("equal: "));
    EXPECT_EQ(out.str().find("equal: 0 rows"), std::string::npos);
  }
}

// Each type with values at its ends and null, several results in a batch, errors between them with number and line.
TEST_F(OverTds, ScriptsOfStatements) {
  constexpr const char* script =
      "Select Cast('99999999999999999999999999999999.999999' As decimal(38,6)) As a, Cast(-0.5 As money) As b, "
      "Cast(0.1 As float) As c, N'中😀' As d, Cast(Null As int) As e, 9007199254740993 As f, Cast(1 As bit) As g, "
      "Cast('ab中' As varchar(10)) As h, Cast('2024-03-05 13:14:15.457' As datetime) As i\n"
      "Select Cast(-2147483648 As int) As a, Cast(-9223372036854775808 As bigint) As b, Cast(0 As bit) As c, "
      "Cast(-922337203685477.5808 As money) As d, Cast(922337203685477.5807 As money) As e, "
      "Cast('1753-01-01' As datetime) As f, Cast('9999-12-31 23:59:59.997' As datetime) As g, "
      "Cast(-1.5e300 As float) As h, Cast(-0.01 As decimal(3,2)) As i, Cast(-12345678901234567890 As decimal(28,0)) As j\n"
      "Select Cast(Null As bit) As a, Cast(Null As bigint) As b, Cast(Null As decimal(9,2)) As c, Cast(Null As money) As d, "
      "Cast(Null As float) As e, Cast(Null As datetime) As f, Cast(Null As nvarchar(5)) As g, "
      "Cast(Null As nvarchar(max)) As h, Cast(Null As varchar(5)) As i, Cast(Null As varchar(max)) As j\n"
      "go\n"
      "Create Table #kept (i int, t nvarchar(max))\n"
      "Insert Into #kept Values (1, Replicate(N'长', 4000)), (2, N''), (3, Replicate(Cast(N'长😀' As nvarchar(max)), 30000))\n"
      "GO\n"
      "Select i, t From #kept Order By i\n"
      "Update #kept Set i = i + 1 Where i > 5\n"
      "Update #kept Set i = i + 1\n"
      "Select i From #kept Where i < 0\n"
      "go\n"
      "Drop Table #kept\n";
  for (const SqlFormat format : {SqlFormat::json, SqlFormat::table, SqlFormat::csv}) {
    expectSame([format](const std::string& source) {
      std::istringstream in(script);
      std::ostringstream out, errors;
      EXPECT_EQ(runScript(*AccountSource(source).open(tsql::OpenMode::existing), in, "the script", format, out, errors),
                0);
      return out.str() + errors.str();
    });
  }
}

// The driver does not tell the line of an error, which the server does.
TEST_F(OverTds, ErrorsInAScript) {
  std::istringstream in(
      "Select 1 As before\nSelect nothing From nowhere\n"
      "go\n"
      "Select 1 As a Union All Select 1 / 0\n"
      "go\n"
      "Selekt 1\n"
      "go\n"
      "Select 2 As after\n");
  std::ostringstream out, errors;
  EXPECT_EQ(runScript(*AccountSource(connectionString()).open(tsql::OpenMode::existing), in, "the script",
                      SqlFormat::csv, out, errors),
            3);
  EXPECT_EQ(out.str(), "before\r\n1\r\n\r\na\r\n1\r\n\r\nafter\r\n2\r\n");
  EXPECT_EQ(errors.str(),
            "quillon: the script, in the batch that begins in line 1: error 208: Invalid object name 'nowhere'.\n"
            "quillon: the script, in the batch that begins in line 4: error 8134: Divide by zero error encountered.\n"
            "quillon: the script, in the batch that begins in line 6: error 102: Incorrect syntax near 'Selekt'.\n");
}

// The first line for people when a report cannot be made.
std::string errorOfReport(const std::string& connection) {
  std::ostringstream out, notes;
  try {
    runReport({.report = "sfc-item", .account = AccountSource(connection), .language = Language::english}, out, notes);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "nothing failed";
}

TEST_F(OverTds, RefusedLogins) {
  const auto with = [this](const std::string& what, const std::string& instead) {
    std::string text = connectionString();
    return text.replace(text.find(what), what.size(), instead);
  };
  EXPECT_THAT(
      errorOfReport(with("PWD=geheim", "PWD=falsch")),
      testing::AllOf(StartsWith("cannot connect to the database server: "), HasSubstr("Login failed for user 'tester'"),
                     testing::Not(HasSubstr("falsch")), testing::Not(HasSubstr("\n"))));
  EXPECT_THAT(errorOfReport(with("Database=" + databaseName(), "Database=other")),
              HasSubstr("Cannot open database \"other\" requested by the login."));
  EXPECT_TRUE(nobodyStays(endpoint_));
}

}  // namespace
}  // namespace quillon::workbench
