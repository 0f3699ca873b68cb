#include "workbench/desk/target.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon::workbench::desk {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST(Target, IsDecoded) {
  const auto target = readTarget("/api/filters/%e6%9c%88+%F0%9F%98%80?a=1%2b1&b=x+y&a=2&&c");
  ASSERT_TRUE(target);
  EXPECT_EQ(target->path, "/api/filters/月+😀");
  EXPECT_THAT(target->query, ElementsAre(Pair("a", "2"), Pair("b", "x y"), Pair("c", "")));
  EXPECT_EQ(readTarget("/")->path, "/");
  EXPECT_THAT(readTarget("/?")->query, IsEmpty());
  EXPECT_EQ(readTarget("/a?b=/../%2F\\")->query.at("b"), "/..//\\");
}

TEST(Target, IsRefusedWhenItHasTwoReadings) {
  for (const char* const target : {"",
                                   "*",
                                   "a",
                                   "?a",
                                   "http://127.0.0.1/",
                                   "//",
                                   "/a//b",
                                   "/a/",
                                   "/.",
                                   "/..",
                                   "/a/../b",
                                   "/%2e",
                                   "/%2E%2e/b",
                                   "/a%2fb",
                                   "/a%5cb",
                                   "/a\\b",
                                   "/a%00",
                                   "/a%0a",
                                   "/a%7f",
                                   "/a#b",
                                   "/a b",
                                   "/a?b c",
                                   "/%",
                                   "/%4",
                                   "/%4g",
                                   "/%zz",
                                   "/a?%",
                                   "/a?b=%1",
                                   "/\xe6\x9c\x88",
                                   "/%e6%9c",
                                   "/%c0%af",
                                   "/%e0%80%af",
                                   "/%ed%a0%80",
                                   "/%f4%90%80%80",
                                   "/%ff",
                                   "/%80",
                                   "/a?b=%c0%80",
                                   "/a?b=%00",
                                   "/a?%fe=b"})
    EXPECT_FALSE(readTarget(target)) << target;
}

}  // namespace
}  // namespace quillon::workbench::desk
