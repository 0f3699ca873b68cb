// What the program does on a terminal: tables that fit it, bold and dim, the pager, progress.
#include "workbench/cli/terminal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>

#include "tests/workbench/account/test_folder.h"
#include "tests/workbench/cli/terminal_program.h"
#include "workbench/account/account.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using account::testing::contentOf;
using account::testing::TestFolder;
using test::TerminalProgram;
using test::TerminalSetup;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

struct Shown {
  int status = 0;
  std::string text;
};

Shown shownOn(const TerminalSetup& setup, const std::vector<std::string>& arguments) {
  TerminalProgram program(arguments, setup);
  const int status = program.end();
  return {status, program.shown()};
}

class OnATerminal : public ::testing::Test {
 protected:
  std::string path(std::string_view name) const { return utf8FromPath(folder_ / name); }
  // A file with a script that gives one row of texts and a number.
  std::string script(const std::string& text) const {
    std::ofstream(folder_ / "script.sql") << text;
    return path("script.sql");
  }
  // A script that gives `rows` rows, and six lines more: how many were inserted and an empty line, the heading and its
  // rule, how many were selected and an empty line.
  std::string longScript(int rows) const {
    std::string values;
    for (int row = 1; row <= rows; ++row)
      values += (row > 1 ? ", (" : "(") + std::to_string(row) + ')';
    return script("Create Table t (i int)\nInsert Into t Values " + values + "\nSelect i From t Order By i\n");
  }
  Shown sql(const TerminalSetup& setup, const std::string& file, std::vector<std::string> options = {}) const {
    std::vector<std::string> arguments = {"sql", "--empty", file};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return shownOn(setup, arguments);
  }

  TestFolder folder_;
};

constexpr const char* oneRow =
    "Select N'成本项目分类明细' As name, N'a remark of many words' As remark, 1234.5 As amount\n";

TEST_F(OnATerminal, TablesFitTheWidth) {
  EXPECT_EQ(sql({.columns = 80, .environment = {{"NO_COLOR", "1"}}}, script(oneRow)).text,
            "name              remark                  amount\n"
            "----------------  ----------------------  ------\n"
            "成本项目分类明细  a remark of many words  1234.5\n"
            "(1 row)\n\n");
  EXPECT_EQ(sql({.columns = 40, .environment = {{"NO_COLOR", "1"}}}, script(oneRow)).text,
            "name              remark          amount\n"
            "----------------  --------------  ------\n"
            "成本项目分类明细  a remark of m…  1234.5\n"
            "(1 row)\n\n")
      << "the first column says what the row is, and is cut last";
  EXPECT_EQ(sql({.columns = 80, .environment = {{"NO_COLOR", "1"}, {"COLUMNS", "25"}}}, script(oneRow)).text,
            "name              amount\n"
            "----------------  ------\n"
            "成本项目分类明细  1234.5\n"
            "Left out, as the terminal is too narrow: 1 column: remark. --wide shows all.\n"
            "(1 row)\n\n");
}

TEST_F(OnATerminal, WideTablesAreShownWhenAsked) {
  EXPECT_EQ(sql({.columns = 25, .environment = {{"NO_COLOR", "1"}}}, script(oneRow), {"--wide"}).text,
            "name              remark                  amount\n"
            "----------------  ----------------------  ------\n"
            "成本项目分类明细  a remark of many words  1234.5\n"
            "(1 row)\n\n");
}

TEST_F(OnATerminal, AFileGetsTheWholeTableWithoutCodes) {
  const Shown shown = sql({.columns = 25, .environment = {{"COLUMNS", "25"}}, .output = path("table")}, script(oneRow));
  EXPECT_EQ(shown.text, "");
  EXPECT_EQ(contentOf(folder_ / "table"),
            "name              remark                  amount\n"
            "----------------  ----------------------  ------\n"
            "成本项目分类明细  a remark of many words  1234.5\n"
            "(1 row)\n\n");
}

TEST_F(OnATerminal, HeadingsAreBoldWhereThatIsWanted) {
  const std::string file = script(oneRow);
  EXPECT_THAT(sql({}, file).text,
              StartsWith("\x1b[1mname              remark                  amount\x1b[0m\n\x1b[2m----"));
  EXPECT_THAT(sql({.environment = {{"NO_COLOR", ""}}}, file).text, HasSubstr("\x1b["));
  EXPECT_THAT(sql({.environment = {{"NO_COLOR", "1"}}}, file).text, Not(HasSubstr("\x1b")));
  EXPECT_THAT(sql({.environment = {{"TERM", "dumb"}}}, file).text, Not(HasSubstr("\x1b")));
}

// --- The pager --------------------------------------------------------------------------------------------------------

TEST_F(OnATerminal, LongOutputGoesThroughThePager) {
  const TerminalSetup setup = {.lines = 10, .environment = {{"NO_COLOR", "1"}, {"PAGER", "sed 's/^/p: /'"}}};
  EXPECT_EQ(sql(setup, longScript(3)).text, "(3 rows)\n\ni\n-\n1\n2\n3\n(3 rows)\n\n") << "a line stays for the shell";
  const Shown paged = sql(setup, longScript(4));
  EXPECT_EQ(paged.text, "p: (4 rows)\np: \np: i\np: -\np: 1\np: 2\np: 3\np: 4\np: (4 rows)\np: \n");
  EXPECT_EQ(paged.status, 0);
  EXPECT_THAT(sql(setup, longScript(4), {"--no-pager"}).text, StartsWith("(4 rows)\n"));
}

TEST_F(OnATerminal, LinesThatWrapCountAsSeveral) {
  const TerminalSetup setup = {
      .columns = 20, .lines = 6, .environment = {{"NO_COLOR", "1"}, {"PAGER", "sed 's/^/p: /'"}}};
  const std::string file = script("Select 1234567890123456789 As a, 1234567890123456789 As b\n");
  EXPECT_THAT(sql(setup, file).text, HasSubstr("p: 1234567890123456789  1234567890123456789\n"));
}

TEST_F(OnATerminal, APagerThatIsNoneIsNotRun) {
  for (const char* const pager : {"", "cat"}) {
    const Shown shown = sql({.lines = 5, .environment = {{"PAGER", pager}}}, longScript(20));
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.text, HasSubstr("20\n(20 rows)\n"));
  }
}

TEST_F(OnATerminal, APagerThatDoesNotExistIsAnError) {
  const Shown shown = sql({.lines = 5, .environment = {{"PAGER", "no-such-pager"}}}, longScript(20));
  EXPECT_EQ(shown.status, 1);
  EXPECT_THAT(shown.text,
              HasSubstr("quillon: there is no pager \"no-such-pager\"; correct PAGER, or give --no-pager\n"));
}

TEST_F(OnATerminal, LessIsThePagerOfWhoNamesNone) {
  TerminalProgram program({"sql", "--empty", longScript(200)}, {.lines = 10});
  program.waitFor("  5");
  program.waitFor(":\x1b[K");
  EXPECT_THAT(program.shown(), Not(HasSubstr("  6")));
  program.type("\x03");  // Ctrl-C is the pager's, which asks again
  program.type("r");     // it forgets one key if Ctrl-C came before it listened
  program.waitFor(":\x1b[K");
  program.type("G");
  program.waitFor("200");
  program.waitFor("(200 rows)");
  program.type("q");
  EXPECT_EQ(program.end(), 0);
}

class ReportOnATerminal : public OnATerminal {
 protected:
  ReportOnATerminal() { account::createSample(folder_ / "a", {.rows = 3000, .seed = 3, .years = 1}); }
  std::vector<std::string> report(std::vector<std::string> options = {}) const {
    std::vector<std::string> arguments = {"report", "sfc-item", "--account", path("a"), "--set", "cModal=1"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
  }
};

TEST_F(ReportOnATerminal, APagerThatIsLeftEarlyIsNoError) {
  for (const std::string format : {"table", "csv", "html"}) {
    SCOPED_TRACE(format);
    const Shown shown = shownOn({.environment = {{"PAGER", "head -c 100 >/dev/null"}}}, report({"--format", format}));
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.text, Not(HasSubstr("quillon:")));
  }
}

TEST_F(ReportOnATerminal, EndsThePagerWhenTheSystemWantsItsEnd) {
  TerminalProgram program(report({"--limit", "50"}), {.lines = 10});
  program.waitFor("--");
  program.waitFor(":");
  program.signal(SIGTERM);
  program.end();
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"a"});
}

TEST_F(ReportOnATerminal, SaysWhichColumnsDoNotFit) {
  const std::vector<std::string> options = report({"--layout", "lines", "--limit", "3", "--no-pager", "--lang", "en"});
  const Shown narrow = shownOn({.columns = 60}, options);
  EXPECT_THAT(narrow.text, HasSubstr("\nLeft out, as the terminal is too narrow: "));
  EXPECT_EQ(narrow.status, 0);
  std::vector<std::string> wide = options;
  wide.emplace_back("--wide");
  EXPECT_THAT(shownOn({.columns = 60}, wide).text, Not(HasSubstr("Left out")));
}

TEST_F(ReportOnATerminal, TablesOfOtherCommandsArePagedAndFit) {
  const TerminalSetup setup = {
      .columns = 60, .lines = 6, .environment = {{"NO_COLOR", "1"}, {"PAGER", "sed 's/^/p: /'"}}};
  const std::vector<std::vector<std::string>> commands = {
      {"list", "inventory", "--account", path("a")},
      {"dialog", "sfc-item", "--account", path("a")},
      {"drill", "fx-wt", "--account", path("a"), "--set", "dKeepDate=2024-01-01..2024-12-31", "--row", "cVouType=01"},
      {"account", "info", path("a")}};
  for (std::vector<std::string> command : commands) {
    const Shown paged = shownOn(setup, command);
    EXPECT_EQ(paged.status, 0);
    EXPECT_THAT(paged.text, StartsWith("p: ")) << command.front();
    command.emplace_back("--no-pager");
    EXPECT_THAT(shownOn(setup, command).text, Not(HasSubstr("p: "))) << command.front();
  }
  const Shown dialog = shownOn({.columns = 60}, {"dialog", "sfc-item", "--account", path("a"), "--no-pager"});
  EXPECT_THAT(dialog.text, HasSubstr("…"));
}

TEST_F(ReportOnATerminal, APagerThatDoesNotExistIsToldInTheReportsLanguage) {
  const Shown shown = shownOn({.lines = 5, .environment = {{"PAGER", "no-such-pager"}}}, report());
  EXPECT_EQ(shown.status, 1);
  EXPECT_THAT(shown.text, HasSubstr("quillon: 没有分页程序“no-such-pager”；请改正 PAGER，或加上 --no-pager\n"));
}

TEST_F(ReportOnATerminal, ProgressGoesBeforeTheReportComes) {
  const Shown shown = shownOn({.environment = {{"NO_COLOR", "1"}}}, report({"--limit", "3", "--no-pager"}));
  const std::size_t report = shown.text.find("收发存汇总表");
  ASSERT_NE(report, std::string::npos);
  EXPECT_THAT(shown.text, StartsWith("\r\x1b[K1：Select "));
  EXPECT_THAT(shown.text.substr(0, report), ::testing::EndsWith("\r\x1b[K"));
  EXPECT_THAT(shown.text.substr(report), Not(HasSubstr("\x1b[K")));
}

TEST_F(ReportOnATerminal, RowsOfAnAccountOnItsWayAreCounted) {
  const auto onTerminal = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "account");
    return shownOn({}, arguments).text;
  };
  constexpr const char* fromNothing = "\r\x1b[K0 rows";
  for (const std::string& text :
       {onTerminal({"export", path("a"), path("csv")}), onTerminal({"import", path("b"), path("csv")}),
        onTerminal({"script", path("a"), path("a.sql")}), onTerminal({"diff", path("a"), path("b")})}) {
    EXPECT_THAT(text, StartsWith(fromNothing));
    EXPECT_THAT(text, ::testing::MatchesRegex("(.|\n)*\x1b\\[K[a-z]+[^\x1b]+\n")) << "gone before the result comes";
  }
  EXPECT_THAT(onTerminal({"new", path("c"), "--rows", "3000", "--years", "1"}),
              ::testing::AllOf(StartsWith("\r\x1b[K0 of 3,000 ledger lines"), HasSubstr("\r\x1b[Kmade ")));
  EXPECT_THAT(onTerminal({"script", path("a")}), StartsWith("-- ")) << "a script on the terminal is not disturbed";
}

TEST_F(ReportOnATerminal, AFileGetsTheSameBytesAsAPipe) {
  shownOn({.columns = 40, .output = path("one")}, report({"--limit", "20"}));
  const Shown shown = shownOn({.columns = 40}, report({"--limit", "20", "-o", path("two")}));
  EXPECT_EQ(shown.status, 0);
  EXPECT_TRUE(contentOf(folder_ / "one") == contentOf(folder_ / "two"));
  EXPECT_THAT(contentOf(folder_ / "one"), Not(HasSubstr("\x1b")));
  EXPECT_THAT(contentOf(folder_ / "one"), Not(HasSubstr("…")));
}

}  // namespace
}  // namespace quillon::workbench
