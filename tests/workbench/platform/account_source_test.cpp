#include "workbench/platform/account_source.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/workbench/platform/temporary_file.h"

namespace quillon::workbench {
namespace {

std::string fileOf(std::string_view source) {
  return utf8FromPath(accountFile(source));
}

TEST(AccountSource, IsAFileName) {
  EXPECT_EQ(fileOf("账套.qacc"), "账套.qacc");
  EXPECT_EQ(fileOf("a=b;c.qacc"), "a=b;c.qacc");
}

TEST(AccountSource, IsTheDataSourceOfAConnectionString) {
  EXPECT_EQ(fileOf("Data Source=demo.qacc"), "demo.qacc");
  EXPECT_EQ(fileOf("data source = demo.qacc ; PWD=secret"), "demo.qacc");
  EXPECT_EQ(fileOf("Data Source=\"a;b=c.qacc\";PWD=secret"), "a;b=c.qacc");
  EXPECT_EQ(fileOf("PWD=secret;Data Source=demo.qacc"), "PWD=secret;Data Source=demo.qacc")
      << "a text that does not begin with a connection keyword is a file's name";
}

TEST(AccountSource, ComesBackFromItsConnectionString) {
  for (const char* name : {"demo.qacc", "with blank.qacc", "a;b=c.qacc", "账套.qacc"}) {
    EXPECT_EQ(fileOf(connectionString(pathFromUtf8(name))), name);
  }
}

TEST(AccountSource, RefusesAServersConnectionString) {
  for (const char* source : {"Driver={Some Driver};Server=here;Database=account", "DSN=account", "Server=here;UID=sa",
                             "Data Source=server;Initial Catalog=account"}) {
    try {
      accountFile(source);
      ADD_FAILURE() << source << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_NE(std::string(error.what()).find("name an account file"), std::string::npos) << error.what();
    }
  }
}

TEST(AccountSource, IsAServerWhenItHasAServersKeywords) {
  EXPECT_TRUE(namesServer("Provider=SQLOLEDB;Data Source=here;Initial Catalog=account;User ID=sa;Password=secret"));
  EXPECT_TRUE(namesServer("driver={SQL Server};Server=here;Database=account;UID=sa;PWD=secret"));
  EXPECT_TRUE(namesServer("Data Source=here;Initial Catalog=account"));
  EXPECT_TRUE(namesServer("UID=sa;PWD=secret;Driver={FreeTDS};Server=here")) << "a driver may stand anywhere";
  EXPECT_FALSE(namesServer("Data Source=demo.qacc;PWD=secret"));
  EXPECT_FALSE(namesServer("demo.qacc"));
  EXPECT_FALSE(namesServer("PWD=secret;Server=here")) << "a text that begins otherwise is a file's name";
  EXPECT_FALSE(namesServer(""));
}

TEST(AccountSource, HasAConnectionString) {
  EXPECT_EQ(accountConnection("demo.qacc"), "Data Source=\"demo.qacc\"");
  EXPECT_EQ(accountConnection("DSN=ledger;UID=sa"), "DSN=ledger;UID=sa");
}

TEST(AccountSource, OpensAFile) {
  const test::TemporaryFile file(".qacc");
  tsql::Connection::open(file.path(), tsql::OpenMode::createNew)->execute("Create Table t (i int)");
  EXPECT_EQ(openDatabase(utf8FromPath(file.path()), tsql::OpenMode::readOnly)->describe("t").size(), 1U);
  EXPECT_THROW(openDatabase("no-such-account.qacc", tsql::OpenMode::existing), tsql::SqlError);
}

TEST(AccountSource, RefusesAServersConnectionStringThatIsNotOdbcs) {
  for (const char* source : {"Provider=SQLOLEDB;Data Source=here;Password=secret", "Server=here;PWD=secret"}) {
    try {
      openDatabase(source, tsql::OpenMode::existing);
      ADD_FAILURE() << source << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(),
                   "the connection string names no ODBC driver; write Driver={ODBC Driver 17 for SQL "
                   "Server};Server=...;Database=...;UID=...;PWD=..., or DSN=...");
    }
  }
}

TEST(AccountSource, RefusesNoName) {
  EXPECT_THROW(accountFile(""), std::invalid_argument);
  EXPECT_THROW(accountFile("Data Source="), std::invalid_argument);
}

TEST(AccountSource, NeverRepeatsAPassword) {
  try {
    accountFile("Server=here;PWD=secret");
    FAIL();
  } catch (const std::invalid_argument& error) {
    EXPECT_EQ(std::string(error.what()).find("secret"), std::string::npos);
  }
}

}  // namespace
}  // namespace quillon::workbench
