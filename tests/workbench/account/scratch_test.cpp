// The scratch file of a report run: private, gone with its owner, and taken away by the next run when its owner was killed.
#include "workbench/account/scratch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account_error.h"
#include "workbench/tsql/values/utf8_path.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace quillon::account {
namespace {

namespace fs = std::filesystem;
using testing::TestFolder;

#ifdef _WIN32
constexpr const char* folderVariable = "TMP";
// Empty: as if it were not there.
void setVariable(const std::string& value) {
  _putenv_s(folderVariable, value.c_str());
}
#else
constexpr const char* folderVariable = "TMPDIR";
void setVariable(const std::string& value) {
  if (value.empty()) {
    unsetenv(folderVariable);
  } else {
    setenv(folderVariable, value.c_str(), 1);
  }
}
#endif

// The system's folder for temporary files is the test's own meanwhile.
class ScratchFile : public ::testing::Test {
 protected:
  ScratchFile() {
    const char* const before = std::getenv(folderVariable);
    if (before != nullptr) before_ = before;
    setVariable(utf8FromPath(temporary_.path()));
  }
  ~ScratchFile() override { setVariable(before_); }

  TestFolder temporary_;

 private:
  std::string before_;
};

TEST_F(ScratchFile, GoesWithItsOwner) {
  {
    const Scratch scratch;
    EXPECT_EQ(scratch.file().parent_path().parent_path(), temporary_.path());
    EXPECT_FALSE(fs::exists(scratch.file())) << "made by whoever opens it";
    std::ofstream(scratch.file()) << "rows";
    std::ofstream(fs::path(scratch.file()) += "-journal") << "and a journal";
    EXPECT_EQ(temporary_.names().size(), 2U) << "the folder and its lock";
  }
  EXPECT_THAT(temporary_.names(), ::testing::IsEmpty());
}

TEST_F(ScratchFile, IsNobodyElses) {
  const Scratch one, two;
  EXPECT_NE(one.file(), two.file());
#ifndef _WIN32
  EXPECT_EQ(fs::status(one.file().parent_path()).permissions(), fs::perms::owner_all);
#endif
}

TEST_F(ScratchFile, OfALivingOwnerStays) {
  const Scratch living;
  std::ofstream(living.file()) << "rows";
  const Scratch next;
  EXPECT_TRUE(fs::exists(living.file()));
}

TEST_F(ScratchFile, IsNotTakenForOneByItsNameAlone) {
  fs::create_directories(temporary_ / "quillon-run-mine");
  testing::write(temporary_ / "quillon-run-mine.lock.txt", "mine");
  const Scratch next;
  EXPECT_TRUE(fs::exists(temporary_ / "quillon-run-mine"));
  EXPECT_TRUE(fs::exists(temporary_ / "quillon-run-mine.lock.txt"));
}

// A program was killed when it had made the lock and not the folder yet.
TEST_F(ScratchFile, ThatWasNotMadeYetGoesWithItsLock) {
  testing::write(temporary_ / "quillon-run-0123cdef.lock", "");
  const Scratch next;
  EXPECT_FALSE(fs::exists(temporary_ / "quillon-run-0123cdef.lock"));
}

TEST_F(ScratchFile, NeedsAFolderForTemporaryFiles) {
  const fs::path missing = temporary_ / "missing";
  setVariable(utf8FromPath(missing));
  try {
    const Scratch scratch;
    ADD_FAILURE() << "made " << utf8FromPath(scratch.file());
  } catch (const AccountError& error) {
    EXPECT_THAT(error.what(), ::testing::StartsWith("cannot make a folder for this run's tables in "));
  }
}

#ifndef _WIN32
TEST_F(ScratchFile, OfAKilledOwnerIsTakenAwayByTheNext) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const Scratch scratch;
    std::ofstream(scratch.file()) << "rows";
    std::ofstream(fs::path(scratch.file()) += "-journal") << "and a journal";
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  const auto left = std::distance(fs::recursive_directory_iterator(temporary_.path()), {});
  EXPECT_EQ(left, 4) << "the folder, the rows, their journal and the lock";
  {
    const Scratch next;
    const std::string name = next.file().parent_path().filename().string();
    EXPECT_THAT(temporary_.names(), ::testing::ElementsAre(name, name + ".lock"));
  }
  EXPECT_THAT(temporary_.names(), ::testing::IsEmpty());
}
#endif

}  // namespace
}  // namespace quillon::account
