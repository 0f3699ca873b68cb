#include "workbench/odbc/columns.h"

#include <gtest/gtest.h>

namespace quillon::odbc {
namespace {

using tsql::Kind;
using tsql::Type;

TEST(Columns, HaveTheEnginesTypes) {
  EXPECT_EQ(typeOf({.sqlType = SQL_INTEGER, .size = 10}).name(), "int");
  EXPECT_EQ(typeOf({.sqlType = SQL_SMALLINT, .size = 5}).name(), "int");
  EXPECT_EQ(typeOf({.sqlType = SQL_TINYINT, .size = 3}).name(), "int");
  EXPECT_EQ(typeOf({.sqlType = SQL_BIGINT, .size = 19}).name(), "bigint");
  EXPECT_EQ(typeOf({.sqlType = SQL_BIT, .size = 1}).name(), "bit");
  EXPECT_EQ(typeOf({.sqlType = SQL_DECIMAL, .size = 18, .digits = 6}).name(), "decimal(18,6)");
  EXPECT_EQ(typeOf({.sqlType = SQL_NUMERIC, .size = 38, .digits = 0}).name(), "decimal(38,0)");
  EXPECT_EQ(typeOf({.sqlType = SQL_DECIMAL, .size = 19, .digits = 4, .isMoney = true}).name(), "money");
  EXPECT_EQ(typeOf({.sqlType = SQL_FLOAT, .size = 53}).name(), "float");
  EXPECT_EQ(typeOf({.sqlType = SQL_REAL, .size = 24}).name(), "float");
  EXPECT_EQ(typeOf({.sqlType = SQL_TYPE_TIMESTAMP, .size = 23, .digits = 3}).name(), "datetime");
  EXPECT_EQ(typeOf({.sqlType = SQL_TYPE_DATE, .size = 10}).name(), "datetime");
  EXPECT_EQ(typeOf({.sqlType = SQL_WVARCHAR, .size = 60}).name(), "nvarchar(60)");
  EXPECT_EQ(typeOf({.sqlType = SQL_VARCHAR, .size = 20}).name(), "varchar(20)");
}

TEST(Columns, TakeTextsWithoutLimitAsMax) {
  EXPECT_EQ(typeOf({.sqlType = SQL_WVARCHAR, .size = 0}).name(), "nvarchar(max)");
  EXPECT_EQ(typeOf({.sqlType = SQL_WLONGVARCHAR, .size = 0x3fffffff}).name(), "nvarchar(max)");
  EXPECT_EQ(typeOf({.sqlType = SQL_LONGVARCHAR, .size = 0x7fffffff}).name(), "varchar(max)");
}

TEST(Columns, TakeWhatTheEngineDoesNotHaveAsText) {
  EXPECT_EQ(typeOf({.sqlType = SQL_GUID, .size = 36}).name(), "nvarchar(36)");
  constexpr SQLSMALLINT sqlServersTime = -154;
  EXPECT_EQ(typeOf({.sqlType = sqlServersTime, .size = 16}).name(), "nvarchar(16)");
}

std::string exactText(std::string_view text, const Type& type) {
  const auto value = exactOf(text, type);
  return value ? tsql::toText(tsql::Value(*value)).value() : "none";
}

TEST(Columns, ReadExactNumbersDigitByDigit) {
  const Type decimal{.kind = Kind::decimal, .precision = 38, .scale = 6};
  EXPECT_EQ(exactText("12345678901234567890123456789012.345678", decimal), "12345678901234567890123456789012.345678");
  EXPECT_EQ(exactText("-0.1", decimal), "-0.100000");
  EXPECT_EQ(exactText(" 7 ", decimal), "7.000000");
  // SQL Server's driver writes no zero before the point.
  EXPECT_EQ(exactText(".5000", {.kind = Kind::money}), "0.5000");
  EXPECT_EQ(exactText("-922337203685477.5808", {.kind = Kind::money}), "-922337203685477.5808");
}

TEST(Columns, RefuseWhatIsNoNumberOfTheirType) {
  EXPECT_EQ(exactText("1e3", {.kind = Kind::money}), "none");
  EXPECT_EQ(exactText("", {.kind = Kind::money}), "none");
  EXPECT_EQ(exactText("1,5", {.kind = Kind::money}), "none");
  EXPECT_EQ(exactText("0.12345", {.kind = Kind::money}), "none") << "a digit would be lost";
}

std::string timeText(const SQL_TIMESTAMP_STRUCT& time) {
  const auto value = dateTimeOf(time);
  return value ? tsql::toText(tsql::Value(*value)).value() : "none";
}

TEST(Columns, ReadTimesToTheTick) {
  EXPECT_EQ(timeText({2024, 3, 5, 0, 0, 0, 0}), "2024-03-05 00:00:00.000");
  EXPECT_EQ(timeText({2024, 2, 29, 23, 59, 59, 997'000'000}), "2024-02-29 23:59:59.997");
  EXPECT_EQ(timeText({2024, 3, 5, 8, 30, 0, 3'000'000}), "2024-03-05 08:30:00.003");
  EXPECT_EQ(timeText({2024, 12, 31, 23, 59, 59, 999'999'900}), "2025-01-01 00:00:00.000") << "the nearer tick";
  EXPECT_EQ(timeText({1753, 1, 1, 0, 0, 0, 0}), "1753-01-01 00:00:00.000");
  EXPECT_EQ(timeText({1752, 12, 31, 0, 0, 0, 0}), "none");
}

}  // namespace
}  // namespace quillon::odbc
