#include "workbench/platform/nearest_name.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillon::workbench {
namespace {

TEST(Nearness, CountsLettersWrittenLeftOutReplacedAndSwapped) {
  EXPECT_EQ(nearness("report", "report"), 0U);
  EXPECT_EQ(nearness("REPORT", "report"), 0U);
  EXPECT_EQ(nearness("ｒｅｐｏｒｔ", "report"), 0U);
  EXPECT_EQ(nearness("reports", "report"), 1U);
  EXPECT_EQ(nearness("rport", "report"), 1U);
  EXPECT_EQ(nearness("repart", "report"), 1U);
  EXPECT_EQ(nearness("reprot", "report"), 1U);
  EXPECT_EQ(nearness("线边", "线边库"), 1U);
}

TEST(Nearness, EndsWhereItIsNoSlipAnyMore) {
  EXPECT_EQ(nearness("trace", "report"), std::nullopt);
  EXPECT_EQ(nearness("Z", "A"), std::nullopt) << "nothing of it is left";
  EXPECT_EQ(nearness("ZZ", "07"), std::nullopt);
  EXPECT_EQ(nearness("7", "07"), 1U);
  EXPECT_EQ(nearness("", "ab"), std::nullopt);
  EXPECT_EQ(nearness("", ""), 0U);
  EXPECT_EQ(nearness(std::string(10'000, 'x'), "report"), std::nullopt);
}

// A byte that begins no character is compared like any other letter.
TEST(Nearness, TakesAnyBytes) {
  EXPECT_EQ(nearness("\xFF\xC0rep", "\xFF\xC0rap"), 1U);
  EXPECT_EQ(nearness("\xED\xA0\x80", "x"), std::nullopt);
}

TEST(NearestName, IsTheFirstOfTheNearest) {
  const std::vector<std::string> names = {"account", "dialog", "drill", "report"};
  EXPECT_EQ(nearestName("reprot", names), "report");
  EXPECT_EQ(nearestName("dril", names), "drill");
  EXPECT_EQ(nearestName("serve", names), std::nullopt);
  EXPECT_EQ(nearestName("06", std::vector<std::string>{"01", "07"}), "01");
  EXPECT_EQ(suggestion("acount", names).english(), "; did you mean account?");
  EXPECT_EQ(suggestion("serve", names).english(), "");
}

}  // namespace
}  // namespace quillon::workbench
