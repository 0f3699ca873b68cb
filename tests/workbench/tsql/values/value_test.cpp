#include "workbench/tsql/values/value.h"

#include <gtest/gtest.h>

namespace quillon::tsql {
namespace {

std::string appended(const Value& value) {
  std::string text = "before ";
  appendText(text, value);
  return text;
}

TEST(ValueText, IsExact) {
  EXPECT_EQ(appended(std::int64_t{-9'223'372'036'854'775'807}), "before -9223372036854775807");
  EXPECT_EQ(appended(Exact{-30, 4}), "before -0.0030");
  EXPECT_EQ(appended(0.1), "before 0.1");
  EXPECT_EQ(appended(-1.5e300), "before -1.5e+300");
  EXPECT_EQ(appended(DateTime{45'354 * DateTime::ticksPerDay + 300}), "before 2024-03-05 00:00:01.000");
  EXPECT_EQ(appended(std::string("材料")), "before 材料");
}

TEST(ValueText, OfNullIsNone) {
  EXPECT_EQ(appended({}), "before ");
  EXPECT_EQ(toText(Value()), std::nullopt);
  EXPECT_EQ(toText(Value(std::string())), "");
}

}  // namespace
}  // namespace quillon::tsql
