#include "tests/workbench/tds/tokens.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/workbench/tds/code_page.h"
#include "tests/workbench/tds/test_bytes.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tds {
namespace {

using test::hex;
using test::wide;
using tsql::Exact;
using tsql::Int128;

// A column "a" of the type, and a row with the value.
Bytes described(const tsql::Type& type) {
  Bytes bytes;
  const tsql::Column column{"a", type};
  putColumns(bytes, std::span(&column, 1));
  return bytes;
}
Bytes rowOf(const tsql::Type& type, const tsql::Value& value) {
  Bytes bytes;
  const tsql::Column column{"a", type};
  putRow(bytes, std::span(&column, 1), std::span(&value, 1));
  return bytes;
}
Bytes asDescribed(const std::string& type) {
  return hex("81 01 00  00 00 00 00  09 00  " + type + " 01 61 00");
}

TEST(TdsTokens, WholeNumbers) {
  EXPECT_EQ(described(tsql::intType()), asDescribed("26 04"));
  EXPECT_EQ(rowOf(tsql::intType(), std::int64_t{-2}), hex("d1 04 fe ff ff ff"));
  EXPECT_EQ(rowOf(tsql::intType(), {}), hex("d1 00"));
  EXPECT_EQ(described(tsql::bigIntType()), asDescribed("26 08"));
  EXPECT_EQ(rowOf(tsql::bigIntType(), std::int64_t{0x0102030405060708}), hex("d1 08 08 07 06 05 04 03 02 01"));
  EXPECT_EQ(described(tsql::bitType()), asDescribed("68 01"));
  EXPECT_EQ(rowOf(tsql::bitType(), std::int64_t{1}), hex("d1 01 01"));
  EXPECT_EQ(rowOf(tsql::bitType(), {}), hex("d1 00"));
}

TEST(TdsTokens, Decimals) {
  EXPECT_EQ(described(tsql::decimalType(9, 2)), asDescribed("6a 05 09 02"));
  EXPECT_EQ(described(tsql::decimalType(10, 0)), asDescribed("6a 09 0a 00"));
  EXPECT_EQ(described(tsql::decimalType(19, 4)), asDescribed("6a 09 13 04"));
  EXPECT_EQ(described(tsql::decimalType(20, 4)), asDescribed("6a 0d 14 04"));
  EXPECT_EQ(described(tsql::decimalType(28, 4)), asDescribed("6a 0d 1c 04"));
  EXPECT_EQ(described(tsql::decimalType(29, 4)), asDescribed("6a 11 1d 04"));
  EXPECT_EQ(described(tsql::decimalType(38, 38)), asDescribed("6a 11 26 26"));
  EXPECT_EQ(rowOf(tsql::decimalType(9, 2), Exact{Int128(25836), 2}), hex("d1 05 01 ec 64 00 00"));
  EXPECT_EQ(rowOf(tsql::decimalType(9, 2), Exact{Int128(-1), 2}), hex("d1 05 00 01 00 00 00"));
  EXPECT_EQ(rowOf(tsql::decimalType(9, 2), {}), hex("d1 00"));
  EXPECT_EQ(rowOf(tsql::decimalType(20, 0), Exact{Int128::fromHalves(1, 2), 0}),
            hex("d1 0d 01 02 00 00 00 00 00 00 00 01 00 00 00"));
  EXPECT_EQ(rowOf(tsql::decimalType(38, 0), Exact{-Int128::fromHalves(1, 2), 0}),
            hex("d1 11 00 02 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00"));
  EXPECT_THROW(rowOf(tsql::decimalType(9, 0), Exact{Int128(std::int64_t{1} << 32), 0}), tsql::SqlError);
}

TEST(TdsTokens, MoneyHasItsHighHalfFirst) {
  EXPECT_EQ(described(tsql::moneyType()), asDescribed("6e 08"));
  EXPECT_EQ(rowOf(tsql::moneyType(), Exact{Int128(0x0102030405060708), 4}), hex("d1 08 04 03 02 01 08 07 06 05"));
  EXPECT_EQ(rowOf(tsql::moneyType(), Exact{Int128(-5000), 4}), hex("d1 08 ff ff ff ff 78 ec ff ff"));
  EXPECT_EQ(rowOf(tsql::moneyType(), {}), hex("d1 00"));
}

TEST(TdsTokens, Floats) {
  EXPECT_EQ(described(tsql::floatType()), asDescribed("6d 08"));
  EXPECT_EQ(rowOf(tsql::floatType(), 1.5), hex("d1 08 00 00 00 00 00 00 f8 3f"));
  EXPECT_EQ(rowOf(tsql::floatType(), {}), hex("d1 00"));
}

TEST(TdsTokens, DatesAreDaysAndTicks) {
  const auto date = [](std::string_view text) { return tsql::Value(tsql::parseDateTime(text).value.value()); };
  EXPECT_EQ(described(tsql::dateTimeType()), asDescribed("6f 08"));
  EXPECT_EQ(rowOf(tsql::dateTimeType(), date("1900-01-02 00:00:01")), hex("d1 08 01 00 00 00 2c 01 00 00"));
  EXPECT_EQ(rowOf(tsql::dateTimeType(), date("1899-12-31 00:00:01")), hex("d1 08 ff ff ff ff 2c 01 00 00"));
  EXPECT_EQ(rowOf(tsql::dateTimeType(), date("1753-01-01")), hex("d1 08 46 2e ff ff 00 00 00 00"));
  EXPECT_EQ(rowOf(tsql::dateTimeType(), date("9999-12-31 23:59:59.997")), hex("d1 08 7f 24 2d 00 ff 81 8b 01"));
  EXPECT_EQ(rowOf(tsql::dateTimeType(), {}), hex("d1 00"));
}

TEST(TdsTokens, ShortTexts) {
  EXPECT_EQ(described(tsql::nVarCharType(20)), asDescribed("e7 28 00  04 08 d0 00 00"));
  EXPECT_EQ(described(tsql::nVarCharType(4000)), asDescribed("e7 40 1f  04 08 d0 00 00"));
  EXPECT_EQ(rowOf(tsql::nVarCharType(20), std::string("a中")), hex("d1 04 00 61 00 2d 4e"));
  EXPECT_EQ(rowOf(tsql::nVarCharType(20), std::string()), hex("d1 00 00"));
  EXPECT_EQ(rowOf(tsql::nVarCharType(20), {}), hex("d1 ff ff"));
  EXPECT_EQ(described(tsql::varCharType(8000)), asDescribed("a7 40 1f  04 08 d0 00 00"));
  EXPECT_EQ(rowOf(tsql::varCharType(3), std::string("a中")), hex("d1 03 00 61 d6 d0"));
  EXPECT_EQ(rowOf(tsql::varCharType(3), {}), hex("d1 ff ff"));
  EXPECT_THROW(rowOf(tsql::varCharType(2), std::string("a中")), tsql::SqlError) << "three bytes";
}

TEST(TdsTokens, TextsWithoutALimitGoInPieces) {
  EXPECT_EQ(described(tsql::nVarCharType(tsql::Type::maxWidth)), asDescribed("e7 ff ff  04 08 d0 00 00"));
  EXPECT_EQ(described(tsql::varCharType(tsql::Type::maxWidth)), asDescribed("a7 ff ff  04 08 d0 00 00"));
  const tsql::Type type = tsql::nVarCharType(tsql::Type::maxWidth);
  EXPECT_EQ(rowOf(type, std::string("ab")), hex("d1 04 00 00 00 00 00 00 00  04 00 00 00 61 00 62 00  00 00 00 00"));
  EXPECT_EQ(rowOf(type, std::string()), hex("d1 00 00 00 00 00 00 00 00  00 00 00 00"));
  EXPECT_EQ(rowOf(type, {}), hex("d1 ff ff ff ff ff ff ff ff"));
}

TEST(TdsTokens, SeveralColumns) {
  Bytes bytes;
  const std::vector<tsql::Column> columns = {{"i", tsql::intType()}, {"名", tsql::nVarCharType(1)}};
  putColumns(bytes, columns);
  EXPECT_EQ(bytes,
            hex("81 02 00  00 00 00 00 09 00 26 04 01 69 00  00 00 00 00 09 00 e7 02 00 04 08 d0 00 00 01 0d 54"));
  bytes.clear();
  putRow(bytes, columns, std::vector<tsql::Value>{std::int64_t{7}, {}});
  EXPECT_EQ(bytes, hex("d1 04 07 00 00 00 ff ff"));
}

TEST(TdsTokens, TheCodePage) {
  EXPECT_EQ(codePageOf("a中"), hex("61 d6 d0"));
  EXPECT_EQ(codePageOf("😀é"), hex("3f a8 a6")) << "a question mark for what it does not have";
  EXPECT_EQ(codePageOf("\xff"), hex("3f"));
}

TEST(TdsTokens, Errors) {
  Bytes bytes;
  putMessage(bytes, {.number = 208, .severity = 16, .text = "no", .line = 3});
  EXPECT_EQ(bytes,
            hex("aa 20 00  d0 00 00 00  01 10  02 00 " + wide("no") + "07 " + wide("QUILLON") + "00  03 00 00 00"));
  bytes.clear();
  putMessage(bytes, {.number = 5701, .state = 2, .text = ""});
  EXPECT_EQ(bytes, hex("ab 1c 00  45 16 00 00  02 00  00 00  07 " + wide("QUILLON") + "00  01 00 00 00"));
  bytes.clear();
  putMessage(bytes, {.number = 1, .severity = 16, .text = std::string(100'000, 'x')});
  EXPECT_EQ(bytes.size(), 3U + bytes[1] + bytes[2] * 256U) << "however long the text, the length is right";
}

TEST(TdsTokens, ChangesOfTheConnection) {
  Bytes bytes;
  putDatabaseChange(bytes, "b", "");
  EXPECT_EQ(bytes, hex("e3 05 00 01  01 62 00  00"));
  bytes.clear();
  putPacketSizeChange(bytes, 512, 4096);
  EXPECT_EQ(bytes, hex("e3 11 00 04  03 " + wide("512") + "04 " + wide("4096")));
  bytes.clear();
  putCollationChange(bytes);
  EXPECT_EQ(bytes, hex("e3 08 00 07  05 04 08 d0 00 00  00"));
  bytes.clear();
  putLanguageChange(bytes, "e", "");
  EXPECT_EQ(bytes, hex("e3 05 00 02  01 65 00  00"));
  bytes.clear();
  putLoginAck(bytes);
  EXPECT_EQ(bytes, hex("ad 34 00  01  74 00 00 04  15 " + wide("Quillon test endpoint") + "0b 00 0c 38"));
}

TEST(TdsTokens, TheEndOfAStatement) {
  const auto ofDone = [](const Done& done) {
    Bytes bytes;
    putDone(bytes, done);
    return bytes;
  };
  EXPECT_EQ(ofDone({}), hex("fd 00 00 00 00  00 00 00 00 00 00 00 00"));
  EXPECT_EQ(ofDone({.more = true, .rows = 3}), hex("fd 11 00 00 00  03 00 00 00 00 00 00 00"));
  EXPECT_EQ(ofDone({.rows = 0}), hex("fd 10 00 00 00  00 00 00 00 00 00 00 00"));
  EXPECT_EQ(ofDone({.failed = true}), hex("fd 02 00 00 00  00 00 00 00 00 00 00 00"));
  EXPECT_EQ(ofDone({.attention = true}), hex("fd 20 00 00 00  00 00 00 00 00 00 00 00"));
}

}  // namespace
}  // namespace quillon::tds
