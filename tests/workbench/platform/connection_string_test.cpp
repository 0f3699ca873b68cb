#include "workbench/platform/connection_string.h"

#include <gtest/gtest.h>

namespace quillon::workbench {
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

}  // namespace
}  // namespace quillon::workbench
