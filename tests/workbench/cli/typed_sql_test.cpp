// `quillon sql` with somebody at the terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/workbench/account/test_folder.h"
#include "tests/workbench/cli/terminal_program.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using account::testing::contentOf;
using account::testing::TestFolder;
using test::TerminalProgram;
using ::testing::HasSubstr;
using ::testing::Not;

class TypedSql : public ::testing::Test {
 protected:
  // Locales differ in what they would take for a character.
  std::unique_ptr<TerminalProgram> start(const std::string& locale = "C", std::vector<std::string> options = {}) const {
    std::vector<std::string> arguments = {"sql", "--empty"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return std::make_unique<TerminalProgram>(
        arguments,
        test::TerminalSetup{
            .environment = {{"XDG_STATE_HOME", utf8FromPath(folder_.path())}, {"NO_COLOR", "1"}, {"LC_ALL", locale}}});
  }

  // Types a line and `go` as someone who waits for the prompts. What is typed ahead the terminal itself shows, and a Ctrl-C
  // throws it away.
  static void run(TerminalProgram& program, const std::string& statement) {
    program.waitFor("sql> ");
    program.type(statement + '\n');
    program.waitFor("  -> ");
    program.type("go\n");
    program.waitFor("go\n");
  }

  // Ctrl-D means nothing special before the line is being edited.
  static void leave(TerminalProgram& program) {
    program.waitFor("sql> ");
    program.waitForKeys();
    program.type("\x04");
  }

  TestFolder folder_;
};

TEST_F(TypedSql, TakesChineseInAnyLocale) {
  for (const char* const locale : {"C", "C.UTF-8", "no_SUCH"}) {
    SCOPED_TRACE(locale);
    const auto program = start(locale);
    program->waitFor("sql> ");
    program->type("Select N'成本𠮷' As 项目x\x7f\n");  // the last letter is taken back
    program->waitFor("  -> ");
    program->type("go\n");
    program->waitFor("项目\n------\n成本𠮷\n(1 row)\n");
    leave(*program);
    EXPECT_EQ(program->end(), 0);
  }
}

TEST_F(TypedSql, FetchesEarlierLinesOfThisSessionAndOthers) {
  {
    const auto program = start();
    program->waitFor("sql> ");
    program->type("Select 41 + 1 As 项目\ngo\n");
    program->waitFor("(1 row)");
    program->type(".help\n.quit\n");
    EXPECT_EQ(program->end(), 0);
  }
  EXPECT_EQ(contentOf(folder_ / "quillon" / "sql_history"), "Select 41 + 1 As 项目\n");
  const auto program = start();
  program->waitFor("sql> ");
  program->waitForKeys();
  program->type("\x1b[A\n");
  program->waitFor("-> ");
  program->type("go\n");
  program->waitFor("项目\n----\n  42\n(1 row)");
  leave(*program);
  EXPECT_EQ(program->end(), 0);
}

TEST_F(TypedSql, CtrlCTakesTheLineBack) {
  const auto program = start();
  program->waitFor("sql> ");
  program->type("Select junk");
  program->waitFor("junk");
  program->type("\x03");
  program->waitFor("^C\nsql> ");
  program->type("Select 5 As five\ngo\n");
  program->waitFor("five\n----\n   5\n");
  leave(*program);
  EXPECT_EQ(program->end(), 0);
}

// A terminal throws away what was typed when Ctrl-C comes: also what the program was told of and has not read yet.
TEST_F(TypedSql, CtrlCComesWhileTheLineIsStillBeingRead) {
  const auto program = start();
  program->waitFor("sql> ");
  for (int time = 0; time < 200; ++time) {
    program->waitForKeys();
    program->type("Select " + std::string(200, 'x'));
    program->waitFor("x");
    program->type("\x03");
    program->waitFor("^C\nsql> ");
  }
  program->waitForKeys();
  program->type("\x04");
  EXPECT_EQ(program->end(), 0);
}

TEST_F(TypedSql, CtrlCStopsTheStatement) {
  const auto program = start();
  run(*program, "Create Table t (i int); Insert Into t Values (1), (2), (3), (4), (5), (6), (7), (8), (9), (10)");
  for (int statement = 0; statement < 2; ++statement) {
    run(*program, "Select Count(*) As n From t a, t b, t c, t d, t e, t f, t g, t h, t i, t j");
    // The echo comes before the line editor has given the terminal back: until then Ctrl-C is for the line.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    program->type("\x03");
    program->waitFor("stopped\n");
  }
  run(*program, "Select Count(*) As n From t");
  program->waitFor("n\n--\n10\n");
  leave(*program);
  EXPECT_EQ(program->end(), 0);
}

TEST_F(TypedSql, EndsWhenTheSystemWantsItsEnd) {
  const auto program = start();
  program->waitFor("sql> ");
  program->signal(SIGTERM);
  EXPECT_EQ(program->end(), 143);
}

TEST_F(TypedSql, ALeftPagerDoesNotEndIt) {
  const auto program = std::make_unique<TerminalProgram>(
      std::vector<std::string>{"sql", "--empty"},
      test::TerminalSetup{
          .lines = 8,
          .environment = {{"XDG_STATE_HOME", ""}, {"HOME", ""}, {"NO_COLOR", "1"}, {"PAGER", "head -n 3"}}});
  run(*program, "Create Table t (i int); Insert Into t Values (1), (2), (3), (4), (5), (6), (7), (8), (9), (10)");
  run(*program, "Select 1 As a From t a, t b, t c, t d, t e, t f");
  run(*program, "Select 5 As five");
  program->waitFor("five\n");
  leave(*program);
  EXPECT_EQ(program->end(), 0);
  EXPECT_THAT(program->shown(), Not(HasSubstr("stopped")));
}

}  // namespace
}  // namespace quillon::workbench
