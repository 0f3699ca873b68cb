#include "tests/workbench/tds/statements.h"

#include <gtest/gtest.h>

namespace quillon::tds {
namespace {

TEST(TdsStatements, Use) {
  EXPECT_EQ(databaseUsedBy("use a.qacc"), "a.qacc");
  EXPECT_EQ(databaseUsedBy(" USE [a b.qacc] ;\n"), "a b.qacc");
  for (const char* const other :
       {"", "use", "use a b", "use a; drop table b", "user a", "use []", "select 1", "use [", "; use a"})
    EXPECT_EQ(databaseUsedBy(other), std::nullopt) << other;
}

TEST(TdsStatements, SizeOfTexts) {
  EXPECT_TRUE(setsSizeOfTexts("Set TextSize 2147483647"));
  EXPECT_TRUE(setsSizeOfTexts("set textsize 64512\n"));
  for (const char* const other :
       {"Set TextSize", "Set TextSize x", "Set NoCount On", "Set TextSize 1 Drop Table a", ""})
    EXPECT_FALSE(setsSizeOfTexts(other)) << other;
}

TEST(TdsStatements, Version) {
  EXPECT_TRUE(asksForVersion("select @@version as version"));
  EXPECT_FALSE(asksForVersion("Select @@Version"));
}

}  // namespace
}  // namespace quillon::tds
