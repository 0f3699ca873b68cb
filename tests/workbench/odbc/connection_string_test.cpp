#include "workbench/odbc/connection_string.h"

#include <gtest/gtest.h>

namespace quillon::odbc {
namespace {

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
  EXPECT_TRUE(hasKeyword("DRIVER={x};Server=here", "driver"));
  EXPECT_TRUE(hasKeyword("Server=here; Dsn = x", "DSN"));
  EXPECT_FALSE(hasKeyword("Server={a;DSN=b}", "dsn")) << "a value is no keyword";
  EXPECT_FALSE(hasKeyword("driver", "driver")) << "a keyword has a value";
}

TEST(ConnectionString, HidesThePasswordInAMessage) {
  EXPECT_EQ(withoutPasswordOf("UID=sa;PWD=secret", "login with 'secret' failed"), "login with '***' failed");
  EXPECT_EQ(withoutPasswordOf("UID=sa;Pwd={a;}}b};x=y", "{a;}}b} or a;}b"), "*** or ***");
  EXPECT_EQ(withoutPasswordOf("UID=sa;PWD=;x=y", "nothing to hide"), "nothing to hide");
  EXPECT_EQ(withoutPasswordOf("UID=sa", "sa"), "sa");
}

}  // namespace
}  // namespace quillon::odbc
