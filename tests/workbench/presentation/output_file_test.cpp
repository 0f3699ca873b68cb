#include "workbench/presentation/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <chrono>
#include <memory>
#include <regex>
#include <vector>

#include "tests/workbench/account/test_folder.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/engine/engine.h"
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

  template <typename Action>
  static std::string refusalOf(Action action) {
    try {
      action();
    } catch (const UserError& error) {
      return error.what();
    }
    return "nothing was refused";
  }

  account::testing::TestFolder folder_;
};

// The regular expressions of GoogleTest differ from system to system; these do not.
MATCHER_P(IsPartOf, name, "is a part of " + std::string(name)) {
  return std::regex_match(arg, std::regex(std::string(name) + "\\.[0-9a-f]{8}\\.part"));
}

TEST_F(OutputFileTest, AppearsWhenItIsComplete) {
  OutputFile output(folder_ / "r");
  write(output.path(), "newer");
  EXPECT_THAT(folder_.names(), ElementsAre(IsPartOf("r")));
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

// Two runs that write to one file at the same time: whoever ends last is what the file has, as a whole.
TEST_F(OutputFileTest, SharesItsPartWithNoOtherRun) {
  OutputFile one(folder_ / "r");
  auto two = std::make_unique<OutputFile>(folder_ / "r");
  ASSERT_NE(one.path(), two->path());
  EXPECT_THAT(folder_.names(), ElementsAre(IsPartOf("r"), IsPartOf("r")));
  write(one.path(), "of the first");
  write(two->path(), "of the second run");
  two->complete();
  two.reset();
  EXPECT_EQ(contentOf(folder_ / "r"), "of the second run");
  one.complete();
  EXPECT_EQ(contentOf(folder_ / "r"), "of the first");
  EXPECT_THAT(folder_.names(), ElementsAre("r"));
}

TEST_F(OutputFileTest, RemovesWhatAKilledRunLeft) {
  const auto leave = [this](const std::string& name, std::chrono::seconds ago) {
    write(folder_ / name, "half of it");
    fs::last_write_time(folder_ / name, fs::file_time_type::clock::now() - ago);
  };
  const std::chrono::seconds old{61}, young{30};
  leave("r.0123cdef.part", old);
  leave("r.1123cdef.part", young);
  // Nobody's parts of this file.
  leave("q.0123cdef.part", old);
  leave("r.part", old);
  leave("r.0123cdeg.part", old);
  leave("r.0123cdef.parts", old);
  leave("r.0123cdef0.part", old);
  OutputFile(folder_ / "r").complete();
  EXPECT_THAT(folder_.names(), ElementsAre("q.0123cdef.part", "r", "r.0123cdef.parts", "r.0123cdef0.part",
                                           "r.0123cdeg.part", "r.1123cdef.part", "r.part"));
}

// However long it has waited for its next row.
TEST_F(OutputFileTest, LeavesThePartOfARunThatLives) {
  OutputFile living(folder_ / "r");
  write(living.path(), "half of it");
  fs::last_write_time(living.path(), fs::file_time_type::clock::now() - std::chrono::hours(100));
  {
    OutputFile other(folder_ / "r");
    write(other.path(), "all of the other");
    other.complete();
  }
  EXPECT_EQ(contentOf(living.path()), "half of it");
  living.complete();
  EXPECT_EQ(contentOf(folder_ / "r"), "half of it");
}

TEST_F(OutputFileTest, RefusesAnyAccount) {
  tsql::Connection::open(folder_ / "a", tsql::OpenMode::createNew).reset();
  const std::string content = contentOf(folder_ / "a");
  const std::vector<std::string> names = folder_.names();
  const std::string message =
      "will not write over " + utf8FromPath(folder_ / "a") + ": it is an account; name another file";
  EXPECT_EQ(refusalOf([this] { OutputFile(folder_ / "a"); }), message);
  EXPECT_EQ(refusalOf([this] { refuseToReplace(folder_ / "a", {}); }), message);
  EXPECT_EQ(contentOf(folder_ / "a"), content);
  EXPECT_EQ(folder_.names(), names);
  for (const char* suffix : {"-journal", "-wal", "-shm", "-JOURNAL"}) {
    const fs::path beside = folder_ / (std::string("a") + suffix);
    EXPECT_EQ(refusalOf([&] { OutputFile{beside}; }),
              "will not write over " + utf8FromPath(beside) + ": it belongs to an account; name another file");
  }
  EXPECT_NO_THROW(OutputFile(folder_ / "b-journal")) << "there is no account b";
  // A file of another kind is output like any other, whatever it is called.
  write(folder_ / "b.account", "SQLite format 3");
  EXPECT_NO_THROW(OutputFile(folder_ / "b.account"));
}

TEST_F(OutputFileTest, RefusesAnAccountThatWasMadeMeanwhile) {
  OutputFile output(folder_ / "a");
  write(output.path(), "newer");
  tsql::Connection::open(folder_ / "a", tsql::OpenMode::createNew).reset();
  EXPECT_THROW(output.complete(), UserError);
  EXPECT_TRUE(tsql::isAccountFile(folder_ / "a"));
}

TEST_F(OutputFileTest, RefusesWhatTheCommandReads) {
  write(folder_ / "f.json", "{}");
  const std::vector<fs::path> inputs = {folder_ / "missing", folder_ / "f.json"};
  EXPECT_EQ(
      refusalOf([&] { refuseToReplace(folder_ / "f.json", inputs); }),
      "will not write over " + utf8FromPath(folder_ / "f.json") + ": it is read by this command; name another file");
  fs::create_directory(folder_ / "sub");
  EXPECT_THROW(refuseToReplace(folder_ / "sub/../f.json", inputs), UserError);
  fs::create_hard_link(folder_ / "f.json", folder_ / "hard");
  EXPECT_THROW(refuseToReplace(folder_ / "hard", inputs), UserError);
  write(folder_ / "other.json", "{}");
  EXPECT_NO_THROW(refuseToReplace(folder_ / "other.json", inputs));
  EXPECT_NO_THROW(refuseToReplace(folder_ / "missing", inputs)) << "nothing is destroyed";
}

TEST_F(OutputFileTest, RefusesAFolderAndAFileBelowNoFolder) {
  fs::create_directory(folder_ / "sub");
  EXPECT_THROW(OutputFile(folder_ / "nowhere/r").complete(), UserError);
  expectRefused(folder_ / "nowhere/r");
  EXPECT_EQ(OutputFile(folder_ / "sub").path(), folder_ / "sub") << "whoever writes to it finds that it is no file";
}

#ifndef _WIN32
TEST_F(OutputFileTest, FollowsLinksToWhatItWouldDestroy) {
  tsql::Connection::open(folder_ / "a", tsql::OpenMode::createNew).reset();
  write(folder_ / "f.json", "{}");
  fs::create_symlink("a", folder_ / "to-a");
  fs::create_symlink("to-a", folder_ / "to-to-a");
  fs::create_hard_link(folder_ / "a", folder_ / "hard");
  fs::create_symlink("f.json", folder_ / "to-f");
  for (const char* name : {"to-a", "to-to-a", "hard", "to-a-journal", "hard-wal"})
    EXPECT_THROW(OutputFile(folder_ / name), UserError) << name;
  EXPECT_THROW(refuseToReplace(folder_ / "to-f", std::vector{folder_ / "f.json"}), UserError);
  EXPECT_THROW(refuseToReplace(folder_ / "f.json", std::vector{folder_ / "to-f"}), UserError);
}

// Looking into a pipe would wait for its other end.
TEST_F(OutputFileTest, DoesNotLookIntoAPipe) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  EXPECT_NO_THROW(refuseToReplace(folder_ / "pipe", std::vector{folder_ / "pipe"}));
  EXPECT_EQ(OutputFile(folder_ / "pipe").path(), folder_ / "pipe");
}

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
  EXPECT_EQ(output.path().parent_path(), fs::canonical(folder_ / "sub"));
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
