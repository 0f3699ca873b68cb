#include "workbench/presentation/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/account/test_folder.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

namespace fs = std::filesystem;
using account::testing::contentOf;
using account::testing::write;
using ::testing::ElementsAre;

class OutputFileTest : public ::testing::Test {
 protected:
  // The file is refused with the message that names it.
  static void expectRefused(const fs::path& file) {
    try {
      OutputFile output(file);
      write(output.path(), "newer");
      output.complete();
      FAIL() << "accepted";
    } catch (const UserError& error) {
      EXPECT_EQ(std::string(error.what()),
                "cannot write " + utf8FromPath(file) + "; check the folder, its permissions and its free space");
    }
  }

  account::testing::TestFolder folder_;
};

TEST_F(OutputFileTest, AppearsWhenItIsComplete) {
  OutputFile output(folder_ / "r");
  write(output.path(), "newer");
  EXPECT_THAT(folder_.names(), ElementsAre("r.part"));
  output.complete();
  EXPECT_THAT(folder_.names(), ElementsAre("r"));
  EXPECT_EQ(contentOf(folder_ / "r"), "newer");
}

TEST_F(OutputFileTest, LeavesTheOlderFileUnlessItIsComplete) {
  write(folder_ / "r", "older");
  {
    const OutputFile output(folder_ / "r");
    write(output.path(), "newer");
    EXPECT_EQ(contentOf(folder_ / "r"), "older");
  }
  EXPECT_EQ(contentOf(folder_ / "r"), "older");
  EXPECT_THAT(folder_.names(), ElementsAre("r"));
}

TEST_F(OutputFileTest, ReplacesTheOlderFile) {
  write(folder_ / "r", "an older and longer one");
  OutputFile output(folder_ / "r");
  write(output.path(), "newer");
  output.complete();
  EXPECT_EQ(contentOf(folder_ / "r"), "newer");
  EXPECT_THAT(folder_.names(), ElementsAre("r"));
}

TEST_F(OutputFileTest, OverwritesWhatAnInterruptedRunLeft) {
  write(folder_ / "r.part", "half of an older and longer one");
  OutputFile output(folder_ / "r");
  write(output.path(), "newer");
  output.complete();
  EXPECT_EQ(contentOf(folder_ / "r"), "newer");
}

TEST_F(OutputFileTest, RefusesAFolderAndAFileBelowNoFolder) {
  fs::create_directory(folder_ / "sub");
  EXPECT_THROW(OutputFile(folder_ / "nowhere/r").complete(), UserError);
  expectRefused(folder_ / "nowhere/r");
  EXPECT_EQ(OutputFile(folder_ / "sub").path(), folder_ / "sub") << "whoever writes to it finds that it is no file";
}

#ifndef _WIN32
TEST_F(OutputFileTest, KeepsTheOlderFilesPermissions) {
  constexpr fs::perms ownersOnly = fs::perms::owner_read | fs::perms::owner_write;
  write(folder_ / "r", "older");
  fs::permissions(folder_ / "r", ownersOnly);
  OutputFile output(folder_ / "r");
  write(output.path(), "newer");
  output.complete();
  EXPECT_EQ(fs::status(folder_ / "r").permissions(), ownersOnly);
}

TEST_F(OutputFileTest, ReplacesTheFileBehindALink) {
  fs::create_directory(folder_ / "sub");
  write(folder_ / "sub/r", "older");
  fs::create_symlink("sub/r", folder_ / "link");
  OutputFile output(folder_ / "link");
  EXPECT_EQ(output.path(), fs::canonical(folder_ / "sub") / "r.part");
  write(output.path(), "newer");
  output.complete();
  EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
  EXPECT_EQ(contentOf(folder_ / "sub/r"), "newer");
}

TEST_F(OutputFileTest, WritesToADeviceAsItIs) {
  OutputFile output("/dev/null");
  EXPECT_EQ(output.path(), "/dev/null");
  output.complete();
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}
#endif

}  // namespace
}  // namespace quillon::workbench
