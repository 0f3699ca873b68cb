// `account script` and the programs that its head names: what FreeTDS's tsql and bsqldb make of the script is the account
// that it was made from.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <CLI/CLI.hpp>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/workbench/tds/wire_test_base.h"
#include "workbench/cli/account_command.h"
#include "workbench/cli/account_diff_command.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Sent {
  int status = -1;
  std::string said;
};

// Has the program send the file to a server of its own with that account.
Sent send(const std::string& program, const std::filesystem::path& script, const std::filesystem::path& account) {
  const test::TemporaryFile said(".txt");
  std::string command = "exec bash";
  for (const std::string& word : {std::string(QUILLON_SEND_SCRIPT), std::string(QUILLON_TDS_ENDPOINT), program,
                                  utf8FromPath(script), utf8FromPath(account)})
    command += " '" + word + "'";
  command += " > '" + utf8FromPath(said.path()) + "' 2>&1";
  const int status = std::system(command.c_str());
  std::ostringstream text;
  text << std::ifstream(said.path()).rdbuf();
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text.str()};
}

class ScriptsOverTds : public tds::test::WireTest, public testing::WithParamInterface<const char*> {
 protected:
  static void SetUpTestSuite() {
    WireTest::SetUpTestSuite();
    // What programs like to take for something else, and each type at its ends.
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
    account->execute(
        "Create Table [odd table] (id int Identity(1, 1) Primary Key, t nvarchar(max), s nvarchar(40), v varchar(20), "
        "b bit, l bigint, d decimal(38,6), m money, f float, w datetime)\n"
        "Insert Into [odd table] (t, s, v, b, l, d, m, f, w) Values "
        "(N'a' + NChar(13) + NChar(10) + N'go' + NChar(10) + N'exit' + NChar(10), N'it''s $(x) -- /*', 'plain', 1, "
        "9223372036854775807, 99999999999999999999999999999999.999999, 922337203685477.5807, 1.7976931348623157e308, "
        "N'99991231 23:59:59.997'),\n"
        "(Replicate(Cast(N'长😀\"' As nvarchar(max)), 9000), N' blanks ', '', 0, -9223372036854775807, -0.000001, "
        "-922337203685477.5808, -0.1, N'17530101'),\n"
        "(N'', N'[中文]', ' ', Null, Null, Null, Null, Null, Null),\n"
        "(Null, Null, Null, Null, Null, Null, Null, Null, Null)");
  }

  // What `quillon account script` writes of an account.
  static void writeScript(const std::string& account, const std::filesystem::path& script) {
    CLI::App app;
    addAccountCommand(app);
    testing::internal::CaptureStdout();
    app.parse(std::vector<std::string>{utf8FromPath(script), account, "script", "account"});
    testing::internal::GetCapturedStdout();
  }
};

TEST_P(ScriptsOverTds, TheAccountArrivesWhole) {
  const test::TemporaryFile script(".sql"), made(".qacc");
  writeScript(file(), script.path());
  const Sent sent = send(GetParam(), script.path(), made.path());
  EXPECT_EQ(sent.status, 0) << sent.said;
  EXPECT_THAT(sent.said, Not(HasSubstr("Msg ")));
  EXPECT_THAT(sent.said, Not(HasSubstr("rror")));
  std::ostringstream out;
  EXPECT_TRUE(diffAccounts(AccountSource(file()), AccountSource::inFile(made.path()), {.exact = true}, out))
      << out.str() << sent.said;
  EXPECT_THAT(out.str(), StartsWith("equal: 43 tables, "));
}

// A script of which only a part arrived, and one that arrives twice.
TEST_P(ScriptsOverTds, AScriptThatBrokeOffGoesOn) {
  const test::TemporaryFile script(".sql"), part(".sql"), made(".qacc");
  writeScript(file(), script.path());
  std::ostringstream text;
  text << std::ifstream(script.path()).rdbuf();
  const std::string whole = text.str();
  for (const std::size_t parts : {2U, 1U, 1U}) {
    std::ofstream(part.path()) << whole.substr(
        0, parts == 1 ? whole.size() : whole.rfind("\ngo\n", whole.size() / parts) + 4);
    const Sent sent = send(GetParam(), part.path(), made.path());
    EXPECT_EQ(sent.status, 0) << sent.said;
    EXPECT_THAT(sent.said, Not(HasSubstr("Msg "))) << "part 1 of " << parts;
  }
  std::ostringstream out;
  EXPECT_TRUE(diffAccounts(AccountSource(file()), AccountSource::inFile(made.path()), {.exact = true}, out))
      << out.str();
}

TEST_P(ScriptsOverTds, ATableWithRowsOfItsOwnIsTold) {
  const test::TemporaryFile script(".sql"), made(".qacc");
  writeScript(file(), script.path());
  ASSERT_EQ(send(GetParam(), script.path(), made.path()).status, 0);
  tsql::Connection::open(made.path(), tsql::OpenMode::existing)
      ->execute("Insert Into Warehouse (cWhCode, cWhName) Values (N'99', N'another')");
  const Sent sent = send(GetParam(), script.path(), made.path());
  EXPECT_THAT(sent.said, HasSubstr("Msg 50000"));
  EXPECT_THAT(sent.said, HasSubstr("Warehouse"));
}

TEST_P(ScriptsOverTds, AnErrorIsToldWithNumberSeverityAndLine) {
  const test::TemporaryFile script(".sql"), made(".qacc");
  std::ofstream(script.path())
      << "Create Table kept (i int)\ngo\nInsert Into kept Values (1)\nSelect i From nowhere\ngo\n";
  const Sent sent = send(GetParam(), script.path(), made.path());
  EXPECT_THAT(sent.said, HasSubstr("Invalid object name 'nowhere'."));
  EXPECT_THAT(sent.said, testing::ContainsRegex("Msg 208.*16.*[Ss]tate 1"));
  EXPECT_THAT(sent.said, HasSubstr("Line 2"));
  const auto account = tsql::Connection::open(made.path(), tsql::OpenMode::readOnly);
  EXPECT_EQ(account->tables(""), std::vector<std::string>{"kept"});
}

INSTANTIATE_TEST_SUITE_P(FreeTds, ScriptsOverTds, testing::Values(QUILLON_TSQL, QUILLON_BSQLDB),
                         [](const auto& program) { return std::filesystem::path(program.param).filename().string(); });

}  // namespace
}  // namespace quillon::workbench
