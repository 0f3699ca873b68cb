// Files that are held: each run's own, and left over when no run holds them.
#include "workbench/account/held_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <utility>

#include "tests/workbench/account/test_folder.h"

#ifndef _WIN32
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace quillon::account {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;
using testing::contentOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::write;

class HeldFileTest : public ::testing::Test {
 protected:
  HeldFile make() const { return {folder_ / "f-", ".own"}; }
  std::vector<HeldFile> left(seconds age = seconds::zero()) const {
    return HeldFile::left(folder_ / "f-", ".own", age);
  }

  testing::TestFolder folder_;
};

TEST_F(HeldFileTest, IsThereAndCanBeWritten) {
  HeldFile file = make();
  EXPECT_TRUE(std::regex_match(file.path().filename().string(), std::regex("f-[0-9a-f]{8}\\.own")));
  write(file.path(), "rows");
  EXPECT_EQ(contentOf(file.path()), "rows");
  file.remove();
  EXPECT_THAT(folder_.names(), IsEmpty());
}

TEST_F(HeldFileTest, IsNobodyElses) {
  const HeldFile one = make(), two = make();
  EXPECT_NE(one.path(), two.path());
}

TEST_F(HeldFileTest, StaysWhenItsRunLetsGo) {
  fs::path path;
  {
    const HeldFile file = make();
    path = file.path();
    EXPECT_THAT(left(), IsEmpty()) << "its run lives";
  }
  std::vector<HeldFile> found = left();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().path(), path);
  EXPECT_THAT(left(), IsEmpty()) << "whoever found it holds it now";
  found.front().remove();
  EXPECT_THAT(folder_.names(), IsEmpty());
}

TEST_F(HeldFileTest, IsHeldThroughAMove) {
  HeldFile file = make();
  const HeldFile moved = std::move(file);
  EXPECT_THAT(left(), IsEmpty());
}

// As whoever looks whether it is an account does, and SQLite with an account that grows.
TEST_F(HeldFileTest, IsHeldAfterOthersOfItsProcessHaveClosedIt) {
  const HeldFile file = make();
  write(file.path(), "rows");
  EXPECT_EQ(contentOf(file.path()), "rows");
  EXPECT_THAT(left(), IsEmpty());
}

TEST_F(HeldFileTest, IsFoundByItsWholeNameAndItsAge) {
  const auto leave = [this](const std::string& name, seconds ago) {
    write(folder_ / name, "");
    fs::last_write_time(folder_ / name, fs::file_time_type::clock::now() - ago);
  };
  leave("f-0123cdef.own", seconds(61));
  leave("f-1123cdef.own", seconds(30));
  leave("f-0123cdeg.own", seconds(61));
  leave("f-0123cdef0.own", seconds(61));
  leave("f-0123cdef.owned", seconds(61));
  leave("g-0123cdef.own", seconds(61));
  const std::vector<HeldFile> found = left(seconds(60));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front().path().filename(), "f-0123cdef.own");
  EXPECT_EQ(left().size(), 1U) << "the younger one";
}

TEST_F(HeldFileTest, GetsANameThatIsFree) {
  HeldFile file = make();
  write(file.path(), "newer");
  EXPECT_FALSE(file.rename(folder_ / "name", HeldFile::Taken::refused));
  EXPECT_EQ(contentOf(folder_ / "name"), "newer");
  file.remove();
  EXPECT_THAT(folder_.names(), ElementsAre("name"));
}

TEST_F(HeldFileTest, GetsANameThatIsTakenOnlyWhenItMay) {
  write(folder_ / "name", "older");
  HeldFile file = make();
  write(file.path(), "newer");
  EXPECT_EQ(file.rename(folder_ / "name", HeldFile::Taken::refused), std::errc::file_exists);
  EXPECT_EQ(contentOf(folder_ / "name"), "older");
  EXPECT_EQ(folder_.names().size(), 2U);
  EXPECT_FALSE(file.rename(folder_ / "name", HeldFile::Taken::replaced));
  EXPECT_EQ(contentOf(folder_ / "name"), "newer");
  EXPECT_THAT(folder_.names(), ElementsAre("name"));
}

TEST_F(HeldFileTest, NeedsAFolder) {
  EXPECT_THROW(HeldFile(folder_ / "nowhere/f-", ".own"), std::system_error);
  EXPECT_THAT(HeldFile::left(folder_ / "nowhere/f-", ".own", seconds::zero()), IsEmpty());
}

#ifndef _WIN32
TEST_F(HeldFileTest, OfAKilledProgramIsLeft) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const HeldFile file = make();
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(left().size(), 1U);
}

// Opening what has such a name neither follows a link nor waits for the other end of a pipe.
TEST_F(HeldFileTest, IsNoLinkAndNoPipe) {
  write(folder_ / "mine", "mine");
  fs::create_symlink("mine", folder_ / "f-0123cdef.own");
  ASSERT_EQ(mkfifo((folder_ / "f-1123cdef.own").c_str(), 0600), 0);
  EXPECT_THAT(left(), IsEmpty());
}
#endif

}  // namespace
}  // namespace quillon::account
