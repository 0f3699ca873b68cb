// A connection that only reads its account and creates in a scratch file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/sql_error.h"

#ifdef __linux__
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace quillon::tsql {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr int readOnly = 3906;

class ScratchConnection : public ::testing::Test {
 protected:
  ScratchConnection() {
    fs::create_directories(folder_);
    const auto connection = Connection::open(account(), OpenMode::createNew);
    connection->execute(
        "Create Table Warehouse (cWhCode nvarchar(10) not null, Primary Key (cWhCode)) Create Index ix On Warehouse "
        "(cWhCode) Insert Into Warehouse Values (N'01') Insert Into Warehouse Values (N'07') Create Table "
        "orvsystem..UA_Period (iYear int)");
    connection->execute("Create View Both As Select cWhCode From Warehouse");
    content_ = contentOf(account());
  }
  ~ScratchConnection() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  // A name with what has a meaning where SQLite takes files with options.
#ifdef _WIN32
  fs::path account() const {
    return folder_ / "the 100% account#.account";
  }
#else
  fs::path account() const {
    return folder_ / "the 100% account?#.account";
  }
#endif
  fs::path scratch() const {
    return folder_ / "scratch";
  }
  std::unique_ptr<Connection> open() const {
    return Connection::openWithScratch(account(), scratch());
  }

  static std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  static std::string rows(Connection& connection, std::string_view query) {
    const auto cursor = connection.query(query);
    std::string text;
    while (cursor->next())
      text += toText(cursor->value(0)).value_or("NULL") + ";";
    return text;
  }
  static int numberOf(Connection& connection, std::string_view batch) {
    try {
      connection.execute(batch);
      return 0;
    } catch (const SqlError& error) {
      return error.number();
    }
  }

  fs::path folder_ = fs::temp_directory_path() / ("quillon-scratch-test-" + std::to_string(std::random_device()()));
  std::string content_;  // of the account file
};

TEST_F(ScratchConnection, CreatesBesideTheAccount) {
  const auto connection = open();
  connection->execute("Select cWhCode, 1 As n Into Result From Warehouse");
  connection->execute("Create Table [7a] (i int identity(5, 1), t nvarchar(5)) Insert Into [7a] (t) Values (N'x')");
  connection->execute("Create Index ix On Result (cWhCode) Create View Shown As Select t From [7a]");
  EXPECT_EQ(
      rows(*connection, "Select r.cWhCode From Result r Inner Join Warehouse w On r.cWhCode = w.cWhCode Order By 1"),
      "01;07;");
  EXPECT_EQ(rows(*connection, "Select i From [7a]"), "5;");
  EXPECT_EQ(rows(*connection, "Select t From Shown"), "x;");
  EXPECT_EQ(rows(*connection, "Select cWhCode From Both"), "01;07;");
  EXPECT_TRUE(contentOf(account()) == content_);
  EXPECT_FALSE(fs::exists(fs::path(account()) += "-journal"));
}

TEST_F(ScratchConnection, KnowsTheObjectsOfBothFiles) {
  const auto connection = open();
  connection->execute("Create Table Result (a int)");
  EXPECT_EQ(rows(*connection, "Select name From sysobjects Where xtype = N'U' Order By name"), "Result;Warehouse;");
  EXPECT_THAT(connection->tables(""), ElementsAre("Result", "Warehouse"));
  EXPECT_THAT(connection->tables("orvsystem"), ElementsAre("UA_Period"));
  for (const char* const name : {"Result", "Warehouse"}) {
    EXPECT_EQ(rows(*connection, std::string("Select name From sysobjects Where id = OBJECT_ID(N'") + name + "')"),
              std::string(name) + ";");
  }
  EXPECT_FALSE(connection->describe("Result").empty());
  EXPECT_FALSE(connection->describe("Warehouse").empty());
  EXPECT_FALSE(connection->describe("Both").empty());
  connection->execute("If Exists(Select id From sysobjects Where id = OBJECT_ID(N'Result')) Drop Table Result");
  EXPECT_EQ(rows(*connection, "Select OBJECT_ID(N'Result')"), "NULL;");
  EXPECT_EQ(numberOf(*connection, "Select * From Result"), 208);
}

TEST_F(ScratchConnection, KnowsTheIndexesOfBothFiles) {
  const auto connection = open();
  connection->execute("Create Table Result (a int Primary Key, b int, Unique (b)) Create Index [by b] On Result (b)");
  EXPECT_EQ(rows(*connection, "Select name From sysindexes Where id = OBJECT_ID(N'Result')"), "by b;");
  EXPECT_EQ(rows(*connection, "Select name From sysindexes Where id = OBJECT_ID(N'Warehouse')"), "ix;");
}

TEST_F(ScratchConnection, KeepsTemporaryTablesToItself) {
  const auto connection = open();
  connection->execute("Create Table #t (a int) Insert Into #t Values (3)");
  EXPECT_EQ(rows(*connection, "Select a From #t"), "3;");
  EXPECT_EQ(rows(*connection, "Select name From tempdb..sysobjects"), "#t;");
  EXPECT_EQ(numberOf(*open(), "Select * From #t"), 208);
}

TEST_F(ScratchConnection, SharesItsTablesWithOthersOnTheSameFiles) {
  const auto one = open();
  const auto two = open();
  one->execute("Create Table Result (a int) Insert Into Result Values (1)");
  EXPECT_EQ(rows(*two, "Select a From Result"), "1;");
  two->execute("Drop Table Result");
  EXPECT_EQ(numberOf(*one, "Select * From Result"), 208);
  EXPECT_EQ(numberOf(*Connection::openWithScratch(account(), folder_ / "other"), "Select * From Result"), 208);
}

TEST_F(ScratchConnection, RefusesEveryChangeOfTheAccount) {
  const auto connection = open();
  for (const char* const batch :
       {"Delete From Warehouse", "Insert Into Warehouse Values (N'09')", "Update Warehouse Set cWhCode = N'1'",
        "Truncate Table Warehouse", "Drop Table Warehouse", "Drop View Both", "Create Index i2 On Warehouse (cWhCode)",
        "Drop Index Warehouse.ix", "Create Table orvsystem..New (a int)", "Select 1 As a Into orvsystem..New",
        "Delete From orvsystem..UA_Period"}) {
    EXPECT_EQ(numberOf(*connection, batch), readOnly) << batch;
  }
  EXPECT_EQ(numberOf(*connection, "Create Table Warehouse (a int)"), 2714) << "the name is taken";
  EXPECT_EQ(numberOf(*connection, "Select 1 As a Into warehouse"), 2714);
  EXPECT_EQ(rows(*connection, "Select cWhCode From Warehouse"), "01;07;");
  EXPECT_TRUE(contentOf(account()) == content_);
}

TEST_F(ScratchConnection, SeesWhatOthersChangeInTheAccount) {
  const auto connection = open();
  EXPECT_EQ(numberOf(*connection, "Select * From Later"), 208);
  Connection::open(account(), OpenMode::existing)->execute("Create Table Later (a int) Insert Into Later Values (1)");
  EXPECT_EQ(rows(*connection, "Select a From Later"), "1;");
}

TEST_F(ScratchConnection, NeedsAnAccount) {
  const fs::path other = folder_ / "other";
  const auto messageOf = [&] {
    try {
      Connection::openWithScratch(other, scratch());
      return std::string("opened");
    } catch (const SqlError& error) {
      return error.message();
    }
  };
  EXPECT_THAT(messageOf(), HasSubstr("there is no such file"));
  std::ofstream(other, std::ios::binary) << "no account";
  EXPECT_THAT(messageOf(), HasSubstr("no account"));
}

#ifdef __linux__
// Reading and writing wait for each other; who waits for too long is told whom for.
TEST_F(ScratchConnection, AWriterWaitsForAnotherAndSaysWhoItIs) {
  int ready[2] = {}, done[2] = {};
  ASSERT_EQ(pipe(ready), 0);
  ASSERT_EQ(pipe(done), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  char signal = 0;
  if (child == 0) {
    const auto connection = Connection::open(account(), OpenMode::existing);
    connection->begin();
    connection->execute("Insert Into Warehouse Values (N'09')");
    bool told = write(ready[1], "r", 1) == 1;
    told = read(done[0], &signal, 1) == 1 && told;
    connection->commit();
    _exit(told ? 0 : 1);
  }
  ASSERT_EQ(read(ready[0], &signal, 1), 1);
  EXPECT_EQ(rows(*open(), "Select cWhCode From Warehouse"), "01;07;") << "a report reads meanwhile";
  const auto connection = Connection::open(account(), OpenMode::existing);
  const auto start = std::chrono::steady_clock::now();
  try {
    connection->execute("Insert Into Warehouse Values (N'10')");
    ADD_FAILURE() << "written";
  } catch (const SqlError& error) {
    EXPECT_EQ(error.number(), 1222);
    EXPECT_THAT(error.message(),
                StartsWith("Lock request time out period exceeded: the account file is in use by process " +
                           std::to_string(child) + " (tsql_engine_te"));
  }
  const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
  EXPECT_GT(waited.count(), 29);
  EXPECT_LT(waited.count(), 45) << "SQLite's wait and the statement's own are one";
  ASSERT_EQ(write(done[1], "d", 1), 1);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  connection->execute("Insert Into Warehouse Values (N'10')");
  EXPECT_EQ(rows(*open(), "Select cWhCode From Warehouse Order By 1"), "01;07;09;10;");
}
#endif

}  // namespace
}  // namespace quillon::tsql
