// New files that appear complete or not at all, whoever writes to the same name meanwhile.
#include "workbench/account/partial_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {
namespace {

namespace fs = std::filesystem;
using testing::contentOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::write;

class PartialFileTest : public ::testing::Test {
 protected:
  template <typename Action>
  static std::string refusalOf(Action action) {
    try {
      action();
    } catch (const AccountError& error) {
      return error.what();
    }
    return "nothing was refused";
  }
  std::string takenName() const {
    return utf8FromPath(folder_ / "f") + " exists already; choose another name or delete the file first";
  }

  testing::TestFolder folder_;
};

TEST_F(PartialFileTest, AppearsWhenItIsComplete) {
  PartialFile file(folder_ / "f");
  write(file.path(), "all of it");
  EXPECT_FALSE(fs::exists(folder_ / "f"));
  file.complete();
  EXPECT_EQ(contentOf(folder_ / "f"), "all of it");
  EXPECT_THAT(folder_.names(), ElementsAre("f"));
}

TEST_F(PartialFileTest, GoesWithItsJournalsWhenItIsNotComplete) {
  {
    const PartialFile file(folder_ / "f");
    write(file.path(), "half of it");
    for (const char* const suffix : {"-journal", "-wal", "-shm"})
      write(fs::path(file.path()).concat(suffix), "SQLite's");
  }
  EXPECT_THAT(folder_.names(), IsEmpty());
}

TEST_F(PartialFileTest, IsNotBegunWhenTheNameIsTaken) {
  write(folder_ / "f", "older");
  EXPECT_EQ(refusalOf([this] { PartialFile(folder_ / "f"); }), takenName());
  EXPECT_THAT(folder_.names(), ElementsAre("f"));
}

// Two runs that make a file of one name at the same time.
TEST_F(PartialFileTest, SharesItsPartWithNoOtherRun) {
  auto one = std::make_unique<PartialFile>(folder_ / "f");
  auto two = std::make_unique<PartialFile>(folder_ / "f");
  ASSERT_NE(one->path(), two->path());
  write(one->path(), "of the first");
  write(two->path(), "of the second run");
  two->complete();
  EXPECT_EQ(refusalOf([&] { one->complete(); }), takenName());
  one.reset();
  two.reset();
  EXPECT_EQ(contentOf(folder_ / "f"), "of the second run");
  EXPECT_THAT(folder_.names(), ElementsAre("f"));
}

TEST_F(PartialFileTest, TakesAwayWhatDeadRunsLeftAndNothingOfThoseThatLive) {
  const auto minutesOld = [](const fs::path& file) {
    fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::minutes(2));
  };
  write(folder_ / "f.0123cdef.part", "half an account");
  write(folder_ / "f.0123cdef.part-journal", "its journal");
  minutesOld(folder_ / "f.0123cdef.part");
  PartialFile living(folder_ / "f");
  EXPECT_EQ(folder_.names().size(), 1U);
  write(living.path(), "half of another one");
  minutesOld(living.path());
  { const PartialFile next(folder_ / "f"); }
  EXPECT_EQ(contentOf(living.path()), "half of another one");
}

TEST_F(PartialFileTest, NeedsAFolder) {
  const fs::path nowhere = folder_ / "nowhere/f";
  EXPECT_THAT(refusalOf([&] { PartialFile{nowhere}; }),
              ::testing::StartsWith("cannot write " + utf8FromPath(nowhere) + ": "));
}

}  // namespace
}  // namespace quillon::account
