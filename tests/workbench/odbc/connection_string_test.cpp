#include "workbench/odbc/connection_string.h"

#include <gtest/gtest.h>

namespace quillon::odbc {
namespace {

std::string withoutPassword(std::string_view text) {
  return ConnectionString(text).withoutPassword();
}

// What is read of `text`, as keyword<value>.
std::string readOf(std::string_view text) {
  const ConnectionString parsed(text);
  std::string read;
  for (const auto& [keyword, value] : parsed.attributes())
    read.append(keyword).append("<").append(value).append(">");
  return read;
}

TEST(ConnectionString, IsReadAsAttributes) {
  EXPECT_EQ(readOf("Server=here; Database = a b ;UID="), "Server<here>Database<a b>UID<>");
  EXPECT_EQ(readOf(";; a=b ; ;"), "a<b>") << "empty places say nothing";
  EXPECT_EQ(readOf("a=b=c;d"), "a<b=c><d>");
  EXPECT_EQ(readOf(""), "");
}

TEST(ConnectionString, GivesOneAttributeAndTheOthers) {
  const ConnectionString text("DSN=ledger; OrvSystem = periods ;PWD={a;b}");
  EXPECT_EQ(text.valueOf("orvsystem"), "periods");
  EXPECT_EQ(text.valueOf("pwd"), "a;b");
  EXPECT_EQ(text.valueOf("server"), "");
  EXPECT_EQ(text.without("orvsystem"), "DSN=ledger;PWD={a;b}");
  EXPECT_EQ(text.without("server"), text.text());
  EXPECT_EQ(ConnectionString("OrvSystem=x;DSN=y").without("orvsystem"), "DSN=y");
}

TEST(ConnectionString, ReadsAValueInBracesOrQuotes) {
  EXPECT_EQ(readOf("Driver={a;b}}c};PWD = 'd''e;' ;f=\"g;\"\"h\""), "Driver<a;b}c>PWD<d'e;>f<g;\"h>");
  EXPECT_EQ(readOf("a={b}c;d=e"), "a<b>d<e>") << "what follows the closing mark is passed over";
  EXPECT_EQ(readOf("a={b;c=d"), "a<b;c=d>") << "an open value goes to the end";
  EXPECT_EQ(readOf("a=b{c;d}"), "a<b{c><d}>") << "a mark inside a value is no mark";
}

TEST(ConnectionString, ReadsWhatInDoubleQuotesWrites) {
  for (const char* value : {"", "a", "a;b=c", "\"", "a\"\"b\"", "{a}", " a "}) {
    EXPECT_EQ(readOf("k=" + inDoubleQuotes(value)), "k<" + std::string(value) + ">");
  }
}

TEST(ConnectionString, NamesADriver) {
  EXPECT_TRUE(ConnectionString("Server=here;driver={x}").namesDriver());
  EXPECT_TRUE(ConnectionString("dsn=x").namesDriver());
  EXPECT_TRUE(ConnectionString("FILEDSN=x").namesDriver());
  EXPECT_FALSE(ConnectionString("Server={a;DSN=b}").namesDriver());
}

TEST(ConnectionString, HidesThePassword) {
  EXPECT_EQ(withoutPassword("Data Source=server;UID=sa;PWD=secret;Initial Catalog=a"),
            "Data Source=server;UID=sa;PWD=***;Initial Catalog=a");
  EXPECT_EQ(withoutPassword("PWD=secret"), "PWD=***");
  EXPECT_EQ(withoutPassword("a=b;PWD="), "a=b;PWD=***");
}

TEST(ConnectionString, KnowsThePasswordsKeywordsHoweverTheyAreWritten) {
  EXPECT_EQ(withoutPassword("pwd=secret;x=y"), "PWD=***;x=y");
  EXPECT_EQ(withoutPassword("Password = secret;x=y"), "PWD=***;x=y");
  EXPECT_EQ(withoutPassword("x=y; PASSWORD=secret"), "x=y;PWD=***");
}

TEST(ConnectionString, KnowsQuotedValues) {
  EXPECT_EQ(withoutPassword("PWD=\"a;b\"\"c\";x=y"), "PWD=***;x=y");
  EXPECT_EQ(withoutPassword("PWD='a;b';x=y"), "PWD=***;x=y");
  EXPECT_EQ(withoutPassword("Driver={a;b};PWD={p}};q};x=y"), "Driver={a;b};PWD=***;x=y");
  // A password inside another value is none.
  EXPECT_EQ(withoutPassword("Data Source=\"PWD=x;\";a=b"), "Data Source=\"PWD=x;\";a=b");
}

TEST(ConnectionString, HidesTheRestWhenAQuoteIsNotClosed) {
  EXPECT_EQ(withoutPassword("a=b;PWD=\"secret;c=d"), "a=b;PWD=***");
}

TEST(ConnectionString, LeavesEverythingElseAsItIs) {
  EXPECT_EQ(withoutPassword(""), "");
  EXPECT_EQ(withoutPassword("account.qdb"), "account.qdb");
  EXPECT_EQ(withoutPassword(";;a = b ;"), ";;a = b ;");
  EXPECT_EQ(withoutPassword("PWDX=a;XPWD=b"), "PWDX=a;XPWD=b");
}

TEST(ConnectionString, FindsAKeywordInAnyLetterCase) {
  EXPECT_TRUE(ConnectionString("DRIVER={x};Server=here").has("driver"));
  EXPECT_TRUE(ConnectionString("Server=here; Dsn = x").has("DSN"));
  EXPECT_FALSE(ConnectionString("Server={a;DSN=b}").has("dsn")) << "a value is no keyword";
  EXPECT_FALSE(ConnectionString("driver").has("driver")) << "a keyword has a value";
}

TEST(ConnectionString, HidesThePasswordInAMessage) {
  EXPECT_EQ(ConnectionString("UID=sa;PWD=secret").withoutPasswordIn("login with 'secret' failed"),
            "login with '***' failed");
  EXPECT_EQ(ConnectionString("UID=sa;Pwd={a;}}b};x=y").withoutPasswordIn("{a;}}b} or a;}b"), "*** or ***");
  EXPECT_EQ(ConnectionString("UID=sa;PWD=;x=y").withoutPasswordIn("nothing to hide"), "nothing to hide");
  EXPECT_EQ(ConnectionString("UID=sa").withoutPasswordIn("sa"), "sa");
}

}  // namespace
}  // namespace quillon::odbc
