// Opening an account file after a program was killed while it changed the file: SQLite's journal beside it says how to
// undo the change.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/sqlite.h"

namespace quillon::tsql {
namespace {

namespace fs = std::filesystem;

class InterruptedChange : public ::testing::Test {
 protected:
  // An account with one row and an unfinished change to a table, as a kill at that moment leaves them.
  void SetUp() override {
    removeAll();
    fs::create_directories(folder_);
    const auto connection = Connection::open(folder_ / "running", OpenMode::createNew);
    connection->execute("Create Table t (i int) Insert Into t Values (1)");
    connection->begin();
    connection->execute("Update t Set i = 2 Insert Into t Values (3)");
    fs::copy_file(folder_ / "running", account());
    fs::copy_file(folder_ / "running-journal", journal());
    connection->rollback();
    ASSERT_GT(fs::file_size(journal()), 0U);
  }
  void TearDown() override { removeAll(); }
  void removeAll() const {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  fs::path account() const { return folder_ / "account"; }
  fs::path journal() const { return folder_ / "account-journal"; }

  // All rows, one after the other.
  std::string rows(OpenMode mode) const {
    const auto connection = Connection::open(account(), mode);
    const auto cursor = connection->query("Select i From t Order By i");
    std::string text;
    while (cursor->next())
      text += toText(cursor->value(0)).value_or("NULL") + ";";
    return text;
  }

  const fs::path folder_ = fs::temp_directory_path() / "quillon-interrupted-change";
};

TEST_F(InterruptedChange, IsUndoneByTheNextConnection) {
  EXPECT_EQ(rows(OpenMode::existing), "1;");
}

TEST_F(InterruptedChange, IsUndoneForAConnectionThatOnlyReads) {
  EXPECT_EQ(rows(OpenMode::readOnly), "1;");
  EXPECT_FALSE(fs::exists(journal()));
}

TEST_F(InterruptedChange, IsTheOnlyOneThatLeavesAJournal) {
  Connection::open(folder_ / "running", OpenMode::existing)->execute("Insert Into t Values (4)");
  EXPECT_FALSE(fs::exists(folder_ / "running-journal"));
}

TEST_F(InterruptedChange, IsAnErrorWhenItCannotBeUndone) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open_v2(account().string().c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  sqlite3_extended_result_codes(database, 1);
  try {
    Prepared(database, "Select * From t").step();
    ADD_FAILURE() << "read";
  } catch (const SqlError& error) {
    EXPECT_EQ(
        error.message(),
        "The account file has to be set right, because a program was ended while it changed it: make the file and "
        "its folder writable, then open it again.");
  }
  sqlite3_close(database);
}

}  // namespace
}  // namespace quillon::tsql
