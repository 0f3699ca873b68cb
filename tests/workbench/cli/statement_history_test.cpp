#include "workbench/cli/statement_history.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

#include "tests/workbench/account/test_folder.h"

namespace quillon::workbench {
namespace {

using account::testing::contentOf;
using account::testing::TestFolder;
using Lines = std::vector<std::string>;

mode_t rightsOf(const std::filesystem::path& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
}

TEST(StatementHistory, IsThereAgainInTheNextSession) {
  const TestFolder folder;
  const auto file = folder / "quillon" / "history";
  {
    StatementHistory history(file);
    EXPECT_EQ(history.lines(), Lines());
    history.add("Select 1");
    history.add("Select N'成本'");
    history.add("Select N'成本'");
    history.add("Select 1");
  }
  EXPECT_EQ(StatementHistory(file).lines(), (Lines{"Select 1", "Select N'成本'", "Select 1"}));
}

TEST(StatementHistory, IsNobodyElses) {
  const TestFolder folder;
  const auto file = folder / "quillon" / "history";
  const mode_t before = umask(0);
  StatementHistory(file).add("Select 1");
  umask(before);
  EXPECT_EQ(rightsOf(file), 0600U);
  EXPECT_EQ(rightsOf(file.parent_path()), 0700U);
}

TEST(StatementHistory, KeepsNoPassword) {
  const TestFolder folder;
  StatementHistory history(folder / "history");
  history.add("Create Login x With PassWord = 'secret'");
  history.add("Select 1");
  EXPECT_EQ(contentOf(folder / "history"), "Select 1\n");
}

TEST(StatementHistory, ForgetsTheOldest) {
  const TestFolder folder;
  {
    std::ofstream file(folder / "history");
    for (std::size_t i = 0; i <= 2 * StatementHistory::longest; ++i)
      file << "Select " << i << '\n';
  }
  const StatementHistory history(folder / "history");
  ASSERT_EQ(history.lines().size(), StatementHistory::longest);
  EXPECT_EQ(history.lines().front(), "Select 1001");
  EXPECT_EQ(history.lines().back(), "Select 2000");
  EXPECT_TRUE(contentOf(folder / "history").starts_with("Select 1001\n"));
  EXPECT_EQ(folder.names(), Lines{"history"});
}

TEST(StatementHistory, DoesWithoutAFile) {
  StatementHistory none{std::filesystem::path()};
  none.add("Select 1");
  const TestFolder folder;
  std::ofstream(folder / "file") << "x";
  StatementHistory refused(folder / "file" / "below");
  refused.add("Select 1");
  EXPECT_EQ(folder.names(), Lines{"file"});
}

TEST(StatementHistoryFile, IsInTheStateFolder) {
  const char* const home = std::getenv("HOME");
  const std::string before = home == nullptr ? "" : home;
  setenv("XDG_STATE_HOME", "/state", 1);
  EXPECT_EQ(statementHistoryFile(), "/state/quillon/sql_history");
  setenv("XDG_STATE_HOME", "not absolute", 1);
  setenv("HOME", "/home/somebody", 1);
  EXPECT_EQ(statementHistoryFile(), "/home/somebody/.local/state/quillon/sql_history");
  unsetenv("XDG_STATE_HOME");
  unsetenv("HOME");
  EXPECT_EQ(statementHistoryFile(), "");
  if (!before.empty()) setenv("HOME", before.c_str(), 1);
}

}  // namespace
}  // namespace quillon::workbench
