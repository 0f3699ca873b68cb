#include "workbench/cli/sql_prompt.h"

#include <gtest/gtest.h>

#include <deque>
#include <sstream>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {
namespace {

// Somebody who types the lines given, and then leaves.
class Typist final : public LineEditor {
 public:
  explicit Typist(std::deque<TypedLine> lines) : lines_(std::move(lines)) {}

  TypedLine read(const std::string& prompt) override {
    prompts += prompt + '|';
    if (lines_.empty()) return {};
    TypedLine line = lines_.front();
    lines_.pop_front();
    return line;
  }
  void remember(const std::string& line) override { remembered.push_back(line); }

  std::string prompts;
  std::vector<std::string> remembered;

 private:
  std::deque<TypedLine> lines_;
};

TypedLine entered(const std::string& text) {
  return {.end = TypedLine::End::entered, .text = text};
}
constexpr auto interrupted = TypedLine::End::interrupted, interruptedEmpty = TypedLine::End::interruptedEmpty;

struct Conversation {
  std::string out, errors, prompts;
  std::vector<std::string> remembered;
};

Conversation talk(std::deque<TypedLine> lines, const PromptOptions& options = {}) {
  const auto account = tsql::Connection::openInMemory();
  Typist typist(std::move(lines));
  std::ostringstream out, errors;
  runPrompt(*account, typist, out, errors, options);
  return {out.str(), errors.str(), typist.prompts, typist.remembered};
}

constexpr const char* welcome = "A line `go` runs what was typed before it. .help tells more, .quit ends.\n";

TEST(SqlPrompt, RunsABatchWhenGoEndsIt) {
  const Conversation talked =
      talk({entered("Select 1 As a,"), entered(""), entered(" 2 As b"), entered(" Go "), entered("")});
  EXPECT_EQ(talked.out,
            "a  b\n"
            "-  -\n"
            "1  2\n"
            "(1 row)\n\n");
  EXPECT_EQ(talked.errors, std::string(welcome) + "\n") << "no word of the conversation among the results";
  EXPECT_EQ(talked.prompts, "sql> |  -> |  -> |  -> |sql> |sql> |");
  EXPECT_EQ(talked.remembered, (std::vector<std::string>{"Select 1 As a,", " 2 As b"}))
      << "neither the empty line nor go is a statement";
}

TEST(SqlPrompt, GoesOnAfterAnError) {
  const Conversation talked =
      talk({entered("Select 1 As a"), entered("Select i From nowhere"), entered("go"), entered("go"),
            entered("Select 2 As b"), entered("go"), entered(".quit"), entered("Select 3 As c"), entered("go")});
  EXPECT_EQ(talked.errors,
            std::string(welcome) + "quillon: the batch, line 2: error 208: Invalid object name 'nowhere'.\n");
  EXPECT_NE(talked.out.find("b\n-\n2\n"), std::string::npos);
  EXPECT_EQ(talked.out.find("c\n-\n"), std::string::npos) << "nothing is read behind .quit";
}

TEST(SqlPrompt, CtrlCTakesBackTheLineAndThenTheBatch) {
  const Conversation talked = talk({entered("Select 1 As a"),
                                    {.end = interrupted},
                                    entered("Where 1 = 1"),
                                    entered("go"),
                                    entered("Select"),
                                    {.end = interruptedEmpty},
                                    entered("Select 5 As e"),
                                    entered("go")});
  EXPECT_EQ(talked.out, "a\n-\n1\n(1 row)\n\ne\n-\n5\n(1 row)\n\n");
}

TEST(SqlPrompt, HasCommandsOfItsOwn) {
  const Conversation talked =
      talk({entered("Create Table b (i int, c nvarchar(20))"), entered("Create Table a (d decimal(9,2))"),
            entered("go"), entered(".tables"), entered("Select"), entered(".columns b"), entered(" 7 As x"),
            entered("go"), entered(".columns nowhere"), entered(".columns"), entered(".nothing")});
  EXPECT_EQ(talked.out,
            "a\nb\n"
            "column  type\n"
            "------  ------------\n"
            "i       int\n"
            "c       nvarchar(20)\n"
            "x\n-\n7\n(1 row)\n\n");
  EXPECT_EQ(talked.errors, std::string(welcome) +
                               "there is no table nowhere; .tables lists them\n"
                               "name a table: .columns TABLE\n"
                               "there is no command .nothing; .help lists them\n\n");
  EXPECT_EQ(talked.remembered.size(), 4U) << "statements only";
}

TEST(SqlPrompt, ExplainsItself) {
  const Conversation talked = talk({entered(".help")});
  for (const char* const word : {"go ", ".tables ", ".columns TABLE ", ".help ", ".quit ", "Ctrl-C "})
    EXPECT_NE(talked.errors.find(word), std::string::npos) << word;
}

TEST(SqlPrompt, WritesTheOtherFormats) {
  EXPECT_EQ(talk({entered("Select 1 As a, N'x' As b"), entered("go")}, {.format = SqlFormat::csv}).out,
            "a,b\r\n1,x\r\n");
  EXPECT_EQ(talk({entered("Select i From nowhere"), entered("go")}, {.format = SqlFormat::json}).out,
            "{\"error\":{\"number\":208,\"message\":\"Invalid object name 'nowhere'.\"}}\n");
}

}  // namespace
}  // namespace quillon::workbench
