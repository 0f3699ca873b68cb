#include "workbench/presentation/value_output.h"

#include <gtest/gtest.h>

#include <sstream>

#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {
namespace {

std::string jsonText(std::string_view text) {
  std::ostringstream out;
  writeJsonText(out, text);
  return out.str();
}

std::string json(const tsql::Value& value) {
  std::ostringstream out;
  writeJsonValue(out, value);
  return out.str();
}

constexpr std::int64_t tick = 1;
constexpr std::int64_t hour = 60LL * 60 * 300;

TEST(JsonText, EscapesWhatItMust) {
  EXPECT_EQ(jsonText("a\"b\\c"), R"("a\"b\\c")");
  EXPECT_EQ(jsonText("line\nend\t\x01"), R"("line\u000aend\u0009\u0001")");
  EXPECT_EQ(jsonText("成本 𠮷 é"), "\"成本 𠮷 é\"");
}

TEST(JsonText, TakesOverWhatNeedsNoEscape) {
  EXPECT_EQ(jsonText(""), "\"\"");
  EXPECT_EQ(jsonText("plain, {~}\x7f"), "\"plain, {~}\x7f\"");
  EXPECT_EQ(jsonText("\"quoted\""), R"("\"quoted\"")");
  EXPECT_EQ(jsonText("a成b\\"), R"("a成b\\")");
}

TEST(JsonText, KeepsUnpairedSurrogates) {
  EXPECT_EQ(jsonText("a\xED\xA0\x80z"), R"("a\ud800z")");
}

TEST(JsonText, ReplacesWhatIsNoText) {
  EXPECT_EQ(jsonText("a\xFFz"), "\"a\xEF\xBF\xBDz\"");
}

TEST(JsonValue, IsANumberForIntegersAndReals) {
  EXPECT_EQ(json(std::monostate()), "null");
  EXPECT_EQ(json(std::int64_t{-5}), "-5");
  EXPECT_EQ(json(0.1), "0.1");
  EXPECT_EQ(json(3.0), "3");
}

TEST(JsonValue, IsATextForExactNumbersDatesAndTexts) {
  EXPECT_EQ(json(tsql::Exact{123000, 4}), "\"12.3000\"");
  EXPECT_EQ(json(tsql::Exact{-5, 2}), "\"-0.05\"");
  EXPECT_EQ(json(tsql::DateTime{8 * hour + 30 * tick}), "\"1900-01-01 08:00:00.100\"");
  EXPECT_EQ(json(std::string("a\"b")), R"("a\"b")");
}

TEST(PlainText, IsForAReader) {
  EXPECT_EQ(plainText(std::monostate(), "NULL"), "NULL");
  EXPECT_EQ(plainText(std::monostate(), ""), "");
  EXPECT_EQ(plainText(tsql::DateTime{0}, ""), "1900-01-01");
  EXPECT_EQ(plainText(tsql::DateTime{8 * hour}, ""), "1900-01-01 08:00:00.000");
  EXPECT_EQ(plainText(tsql::Exact{125, 2}, ""), "1.25");
}

TEST(GroupedNumber, GroupsAndRoundsHalfAwayFromZero) {
  EXPECT_EQ(groupedNumber("0", 2), "0.00");
  EXPECT_EQ(groupedNumber("1234567.8900", 2), "1,234,567.89");
  EXPECT_EQ(groupedNumber("-1234567.8900", 2), "-1,234,567.89");
  EXPECT_EQ(groupedNumber("999.9950", 2), "1,000.00");
  EXPECT_EQ(groupedNumber("-0.0050", 2), "-0.01");
  EXPECT_EQ(groupedNumber("0.0049", 2), "0.00");
  EXPECT_EQ(groupedNumber("-0.0049", 2), "0.00");
  EXPECT_EQ(groupedNumber("99.5", 0), "100");
  EXPECT_EQ(groupedNumber("123456", 0), "123,456");
  EXPECT_EQ(groupedNumber("1.5", 4), "1.5000");
  EXPECT_EQ(groupedNumber("99999999999999999999999999999999999999", 0),
            "99,999,999,999,999,999,999,999,999,999,999,999,999");
}

TEST(PercentText, RoundsHalvesAwayFromZero) {
  const auto percent = [](const char* part) { return percentText(tsql::Value(tsql::parseExact(part).value())); };
  EXPECT_EQ(percent("0.1234"), "12.34%");
  EXPECT_EQ(percent("-0.12345"), "-12.35%");
  EXPECT_EQ(percent("1"), "100.00%");
  EXPECT_EQ(percent("12.5"), "1,250.00%");
  EXPECT_EQ(percent("0.0000"), "0.00%");
  EXPECT_EQ(percentText({}), "");
}

}  // namespace
}  // namespace quillon::workbench
