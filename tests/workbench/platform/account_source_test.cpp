#include "workbench/platform/account_source.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

std::string fileOf(const char* text) {
  return utf8FromPath(AccountSource(text).file());
}

bool onServer(const char* text) {
  return AccountSource(text).onServer();
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

TEST(AccountSource, QuotesItsDataSourceAsAnyValueOfAConnectionString) {
  EXPECT_EQ(fileOf("Data Source={a;b.qacc};PWD={s}};c}"), "a;b.qacc");
  EXPECT_EQ(fileOf("Data Source='a;b.qacc'"), "a;b.qacc");
  EXPECT_EQ(fileOf("Data Source=\"a\"\"b.qacc\""), "a\"b.qacc") << "a doubled quote is one";
  EXPECT_EQ(fileOf("Data Source=demo.qacc;PWD=\"a;b\""), "demo.qacc");
  EXPECT_EQ(fileOf("Data Source=demo.qacc;;PWD=secret;"), "demo.qacc") << "an empty place says nothing";
}

TEST(AccountSource, ComesBackFromItsConnectionString) {
  for (const char* name : {"demo.qacc", "with blank.qacc", "a;b=c.qacc", "a\"b\"\".qacc", "{a}.qacc", "账套.qacc"}) {
    EXPECT_EQ(fileOf(connectionString(pathFromUtf8(name)).c_str()), name);
  }
}

TEST(AccountSource, OfAFileTakesItsNameAsItIs) {
  const AccountSource source = AccountSource::inFile(pathFromUtf8("DSN=account"));
  EXPECT_FALSE(source.onServer());
  EXPECT_EQ(utf8FromPath(source.file()), "DSN=account");
  EXPECT_EQ(source.shown(), "DSN=account");
  EXPECT_EQ(source.connectionString(), "Data Source=\"DSN=account\"");
}

TEST(AccountSource, RefusesAFileOnAServer) {
  for (const char* text : {"Driver={Some Driver};Server=here;Database=account", "DSN=account", "Server=here;UID=sa",
                           "Data Source=server;Initial Catalog=account"}) {
    try {
      AccountSource(text).file();
      ADD_FAILURE() << text << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(),
                   "a connection string to a database server cannot be used here; name an account file (made with "
                   "\"quillon account new FILE\")");
    }
  }
}

TEST(AccountSource, IsAServerWhenItHasAServersKeywords) {
  EXPECT_TRUE(onServer("Provider=SQLOLEDB;Data Source=here;Initial Catalog=account;User ID=sa;Password=secret"));
  EXPECT_TRUE(onServer("driver={SQL Server};Server=here;Database=account;UID=sa;PWD=secret"));
  EXPECT_TRUE(onServer("Data Source=here;Initial Catalog=account"));
  EXPECT_TRUE(onServer("Data Source=here;encrypted")) << "a word without a value is not a file's either";
  EXPECT_TRUE(onServer("UID=sa;PWD=secret;Driver={FreeTDS};Server=here")) << "a driver may stand anywhere";
  EXPECT_FALSE(onServer("Data Source=demo.qacc;PWD=secret"));
  EXPECT_FALSE(onServer("Data Source={a;DSN=b}")) << "a keyword in a value is none";
  EXPECT_FALSE(onServer("demo.qacc"));
  EXPECT_FALSE(onServer("server")) << "a keyword has a value";
  EXPECT_FALSE(onServer("PWD=secret;Server=here")) << "a text that begins otherwise is a file's name";
  EXPECT_FALSE(onServer(""));
}

TEST(AccountSource, HasAConnectionString) {
  EXPECT_EQ(AccountSource("demo.qacc").connectionString(), "Data Source=\"demo.qacc\"");
  EXPECT_EQ(AccountSource("DSN=ledger; UID=sa").connectionString(), "DSN=ledger; UID=sa");
}

TEST(AccountSource, IsShownWithoutThePassword) {
  EXPECT_EQ(AccountSource("demo.qacc").shown(), "demo.qacc");
  EXPECT_EQ(AccountSource("Data Source=demo.qacc;PWD=x").shown(), "Data Source=demo.qacc;PWD=***");
  const AccountSource server("DSN=ledger;UID=sa;PWD={a;b};c=d");
  EXPECT_EQ(server.shown(), "DSN=ledger;UID=sa;PWD=***;c=d");
  EXPECT_EQ(server.text(), "DSN=ledger;UID=sa;PWD={a;b};c=d");
}

TEST(AccountSource, OpensAFile) {
  const test::TemporaryFile file(".qacc");
  tsql::Connection::open(file.path(), tsql::OpenMode::createNew)->execute("Create Table t (i int)");
  EXPECT_EQ(AccountSource::inFile(file.path()).open(tsql::OpenMode::readOnly)->describe("t").size(), 1U);
  EXPECT_THROW(AccountSource("no-such-account.qacc").open(tsql::OpenMode::existing), tsql::SqlError);
}

// Whoever opens the connection string of a report's login has the same files.
TEST(AccountSource, CarriesItsScratchFileInTheConnectionString) {
  const test::TemporaryFile file(".qacc");
  const test::TemporaryFile scratch(".scratch");
  tsql::Connection::open(file.path(), tsql::OpenMode::createNew)->execute("Create Table t (i int)");
  const AccountSource source = AccountSource::inFile(file.path()).withScratch(scratch.path());
  EXPECT_EQ(source.connectionString(),
            "Data Source=\"" + utf8FromPath(file.path()) + "\";Scratch=\"" + utf8FromPath(scratch.path()) + "\"");
  EXPECT_EQ(source.shown(), utf8FromPath(file.path()));
  source.open(tsql::OpenMode::existing)->execute("Select 7 As i Into made");
  const AccountSource again(source.connectionString());
  EXPECT_FALSE(again.onServer());
  EXPECT_EQ(again.open(tsql::OpenMode::existing)->describe("made").size(), 1U);
  EXPECT_TRUE(AccountSource::inFile(file.path()).open(tsql::OpenMode::readOnly)->describe("made").empty());
}

TEST(AccountSource, IsOnlyReadWhenItSaysSo) {
  const test::TemporaryFile file(".qacc");
  tsql::Connection::open(file.path(), tsql::OpenMode::createNew)->execute("Create Table t (i int)");
  const AccountSource source = AccountSource::inFile(file.path()).withScratch(file.path()).readOnly();
  EXPECT_EQ(source.connectionString(), "Data Source=\"" + utf8FromPath(file.path()) + "\";Mode=Read");
  const AccountSource again("data source=" + utf8FromPath(file.path()) + ";mode=read");
  EXPECT_EQ(again.open(tsql::OpenMode::existing)->describe("t").size(), 1U);
  EXPECT_THROW(again.open(tsql::OpenMode::existing)->execute("Drop Table t"), tsql::SqlError);
  EXPECT_TRUE(AccountSource("Data Source=a;Mode=Share").onServer()) << "another mode is not a file's";
  EXPECT_EQ(AccountSource("DSN=ledger").readOnly().connectionString(), "DSN=ledger");
}

TEST(AccountSource, RefusesAServersConnectionStringThatIsNotOdbcs) {
  for (const char* text : {"Provider=SQLOLEDB;Data Source=here;Password=secret", "Server=here;PWD=secret"}) {
    try {
      AccountSource(text).open(tsql::OpenMode::existing);
      ADD_FAILURE() << text << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(),
                   "the connection string names no ODBC driver; write Driver={ODBC Driver 17 for SQL "
                   "Server};Server=...;Database=...;UID=...;PWD=..., or DSN=...");
    }
  }
}

TEST(AccountSource, RefusesNoName) {
  for (const AccountSource& source : {AccountSource(), AccountSource(""), AccountSource("Data Source=")}) {
    try {
      source.open(tsql::OpenMode::existing);
      ADD_FAILURE() << source.text() << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "no account is named; name an account file");
    }
  }
}

}  // namespace
}  // namespace quillon::workbench
