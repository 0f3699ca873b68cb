#include "workbench/cli/trace_command.h"

#include <gmock/gmock.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

std::string casePath(const std::string& file) {
  return std::string(QUILLON_TRACE_CASES) + "/" + file;
}

// Parses `arguments` (in order) as the program does. Gives what the parsing threw, in one word.
std::string parsed(std::vector<std::string> arguments) {
  CLI::App app;
  app.require_subcommand(1);
  addTraceCommand(app);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(std::move(arguments));
    return "done";
  } catch (const CLI::RuntimeError& end) {
    return "status " + std::to_string(end.get_exit_code());
  } catch (const CLI::ParseError&) {
    return "usage";
  } catch (const UserError& error) {
    return error.what();
  }
}

TEST(TraceCommand, TakesEitherACaseOrAReportWithItsFiles) {
  const std::string file = casePath("failing_statement.json");
  EXPECT_EQ(parsed({"trace"}), "usage");
  EXPECT_EQ(parsed({"trace", "sfc-item"}), "usage");
  EXPECT_EQ(parsed({"trace", "sfc-item", "--filter", file}), "usage");
  EXPECT_EQ(parsed({"trace", "--filter", file, "--platform", file}), "usage");
  EXPECT_EQ(parsed({"trace", "sfc-item", "--case", file}), "usage");
  EXPECT_EQ(parsed({"trace", "no-report", "--filter", file, "--platform", file}), "usage");
  EXPECT_EQ(parsed({"trace", "--case"}), "usage");
  testing::internal::CaptureStdout();
  EXPECT_EQ(parsed({"trace", "--case", file}), "done");
  EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::StartsWith("{\"call\":\"set\""));
}

TEST(TraceCommand, RefusesFilesThatItCannotRead) {
  const std::string missing = casePath("missing.json");
  EXPECT_EQ(parsed({"trace", "--case", missing}), "cannot read " + missing + "; check the name and its permissions");
  const std::string lines = casePath("failing_statement.expected.jsonl");
  EXPECT_EQ(parsed({"trace", "--case", lines}), lines + " is not valid JSON: see line 2");
}

}  // namespace
}  // namespace quillon::workbench
