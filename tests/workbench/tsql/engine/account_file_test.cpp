// What is taken for an account file, and what is refused at once.
#include <gtest/gtest.h>
#include <sqlite3.h>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::tsql {
namespace {

namespace fs = std::filesystem;

class AccountFile : public ::testing::Test {
 protected:
  AccountFile() { fs::create_directories(folder_); }
  ~AccountFile() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  static void expectNoFile(const fs::path& file) {
    for (const OpenMode mode : {OpenMode::existing, OpenMode::readOnly}) {
      try {
        Connection::open(file, mode);
        FAIL() << "opened";
      } catch (const SqlError& error) {
        EXPECT_EQ(error.number(), 5120);
        EXPECT_EQ(std::string(error.message()),
                  "Unable to open the account file '" + utf8FromPath(file) + "': it is a folder, a device or a pipe.");
      }
    }
    EXPECT_FALSE(isAccountFile(file));
  }

  const fs::path folder_ =
      fs::temp_directory_path() / ("quillon-account-file-" + std::to_string(std::random_device()()));
};

TEST_F(AccountFile, IsToldByWhatStandsAtItsBeginning) {
  Connection::open(folder_ / "a", OpenMode::createNew).reset();
  EXPECT_TRUE(isAccountFile(folder_ / "a"));
  EXPECT_FALSE(isAccountFile(folder_ / "none"));
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(utf8FromPath(folder_ / "other").c_str(), &other), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(other, "CREATE TABLE t (a)", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(other);
  EXPECT_FALSE(isAccountFile(folder_ / "other"));
  std::ofstream(folder_ / "short") << "SQLite format 3";
  EXPECT_FALSE(isAccountFile(folder_ / "short"));
}

// Whoever wants the only file of that name has made it already.
TEST_F(AccountFile, IsMadeInAnEmptyFileAndInNoOther) {
  std::ofstream(folder_ / "empty").close();
  Connection::open(folder_ / "empty", OpenMode::createNew).reset();
  EXPECT_TRUE(isAccountFile(folder_ / "empty"));
  std::ofstream(folder_ / "other") << "something else";
  for (const fs::path& taken : {folder_ / "empty", folder_ / "other", folder_}) {
    try {
      Connection::open(taken, OpenMode::createNew);
      ADD_FAILURE() << "made " << utf8FromPath(taken);
    } catch (const SqlError& error) {
      EXPECT_EQ(error.number(), 5170);
    }
  }
}

TEST_F(AccountFile, IsNoFolder) {
  expectNoFile(folder_);
}

#ifndef _WIN32
// Whoever opened one of these would wait for ever, or read what has no end.
TEST_F(AccountFile, IsNoPipeAndNoDevice) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  expectNoFile(folder_ / "pipe");
  fs::create_symlink("pipe", folder_ / "link");
  expectNoFile(folder_ / "link");
  expectNoFile("/dev/null");
  expectNoFile("/dev/zero");
}
#endif

}  // namespace
}  // namespace quillon::tsql
