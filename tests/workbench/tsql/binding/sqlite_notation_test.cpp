#include "workbench/tsql/binding/sqlite_notation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

std::string encoded(Int128 units) {
  const WideUnits bytes = encodeUnits(units);
  return {bytes.data(), bytes.size()};
}

TEST(SqliteNotation, TypesComeBackFromTheirCodes) {
  for (const Type& type :
       {intType(), bigIntType(), bitType(), decimalType(38, 6), decimalType(1, 0), moneyType(), floatType(),
        dateTimeType(), nVarCharType(1), nVarCharType(Type::maxWidth), varCharType(8000)}) {
    EXPECT_EQ(typeFromCode(typeCode(type)), type) << type.name();
  }
}

TEST(SqliteNotation, WideUnitsSortAsBytes) {
  const Int128 power = powerOfTen(30);
  const std::string low = encoded(-power);
  const std::string middle = encoded(Int128(-1));
  const std::string high = encoded(power);
  EXPECT_EQ(low.size(), 16U);
  EXPECT_LT(low, middle);
  EXPECT_LT(middle, high);
  EXPECT_EQ(decodeUnits(low), -power);
  EXPECT_EQ(decodeUnits(high), power);
  EXPECT_THROW(decodeUnits("short"), SqlError);
}

TEST(SqliteNotation, QuotesNamesAndWritesLiterals) {
  EXPECT_EQ(quoteName("a\"b"), "\"a\"\"b\"");
  EXPECT_EQ(sqlLiteral(Value()), "NULL");
  EXPECT_EQ(sqlLiteral(std::int64_t{-5}), "-5");
  EXPECT_EQ(sqlLiteral(2.0), "2.0");
  EXPECT_EQ(sqlLiteral(Exact{Int128(-15), 4}), "-15");
  EXPECT_EQ(sqlLiteral(DateTime{-300}), "-300");
  EXPECT_EQ(sqlLiteral(std::string("it's")), "'it''s'");
}

TEST(SqliteNotation, FindsColumnsCallsAndParameters) {
  std::vector<std::string> found;
  for (const SqlName& name :
       namesIn("text_like(\"a\".\"b c\", 'it''s \"x\".\"y\"?') AND float_2(?12) OR \"t\".rowid = a"))
    found.push_back(std::to_string(static_cast<int>(name.kind)) + ' ' + std::string(name.text));
  const std::vector<std::string> expected = {"1 text_like", "0 \"a\".\"b c\"", "1 float_2", "2 ?", "0 \"t\".rowid"};
  EXPECT_EQ(found, expected);
  EXPECT_TRUE(namesIn("'?").empty());
}

TEST(SqliteNotation, FindsEachColumnOnce) {
  const std::vector<std::string> expected = {"\"a\".\"x\"", "\"q\"\".\".\"y\""};
  EXPECT_EQ(columnsIn("\"a\".\"x\" = \"q\"\".\".\"y\" OR (\"a\".\"x\" IS NULL)"), expected);
}

TEST(SqliteNotation, PutsOtherTextForColumns) {
  EXPECT_EQ(withColumnsReplaced("\"a\".\"x\" = \"b\".\"x\" AND '\"a\".\"x\"' <> \"a\".\"x\"",
                                {"\"b\".\"x\"", "\"a\".\"x\""}, {"?1", "(?2)"}),
            "(?2) = ?1 AND '\"a\".\"x\"' <> (?2)");
}

}  // namespace
}  // namespace quillon::tsql
