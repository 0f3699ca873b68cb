#include "workbench/tsql/engine/value_functions.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

class ValueFunctions : public testing::Test {
 protected:
  ValueFunctions() {
    sqlite3* handle = nullptr;
    EXPECT_EQ(sqlite3_open(":memory:", &handle), SQLITE_OK);
    database_.reset(handle);
    registerValueFunctions(handle);
  }

  void run(const std::string& sql) {
    char* message = nullptr;
    EXPECT_EQ(sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, &message), SQLITE_OK)
        << sql << ": " << message;
    sqlite3_free(message);
  }

  // The first column of all rows as text, joined with blanks; the error as "number: message".
  std::string rows(const std::string& sql, const Type& type) {
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sql << ": " << sqlite3_errmsg(database_.get());
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement, sqlite3_finalize);
    std::string result;
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
      if (!result.empty()) result += ' ';
      result += toText(columnValue(statement, 0, type)).value_or("null");
    }
    if (code != SQLITE_DONE) {
      const auto error = errorFrom(sqlite3_errmsg(database_.get()));
      if (!error) return std::string("SQLite: ") + sqlite3_errmsg(database_.get());
      return std::to_string(error->number()) + ": " + error->message();
    }
    return result;
  }
  std::string expression(const std::string& sql, const Type& type) { return rows("SELECT " + sql, type); }
  std::string text(const std::string& sql) { return expression(sql, nVarCharType(100)); }
  std::string integer(const std::string& sql) { return expression(sql, bigIntType()); }

  static std::string code(const Type& type) { return std::to_string(typeCode(type)); }

  // "units, type" as the exact functions take them.
  static std::string number(std::string_view digits, const Type& type) {
    const Exact parsed = parseExact(digits).value();
    const auto units = rescale(parsed.units, parsed.scale, scaleOf(type), Rounding::cut);
    return sqlLiteral(Value(Exact{*units, scaleOf(type)})) + ", " + code(type);
  }
  std::string binary(const std::string& name, std::string_view a, const Type& ta, std::string_view b, const Type& tb,
                     const Type& result) {
    return expression(name + "(" + number(a, ta) + ", " + number(b, tb) + ", " + code(result) + ")", result);
  }

  sqlite3* database() { return database_.get(); }

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };
  std::unique_ptr<sqlite3, Close> database_;
};

const Type wide = decimalType(38, 6);
const std::string_view largest = "99999999999999999999999999999999.999999";

TEST_F(ValueFunctions, CalculateExactly) {
  EXPECT_EQ(binary("exact_add", "1.5", decimalType(18, 4), "0.25", decimalType(28, 6), decimalType(29, 6)), "1.750000");
  EXPECT_EQ(binary("exact_sub", "0.3", decimalType(1, 1), "0.1", decimalType(1, 1), decimalType(2, 1)), "0.2");
  EXPECT_EQ(binary("exact_mul", "1.005", decimalType(10, 3), "2.5", decimalType(8, 2), decimalType(19, 5)), "2.51250");
  EXPECT_EQ(binary("exact_div", "2", decimalType(10, 2), "3", decimalType(6, 1), decimalType(18, 9)), "0.666666666");
  EXPECT_EQ(binary("exact_div", "-7", intType(), "2", intType(), intType()), "-3");
  EXPECT_EQ(binary("exact_mod", "-7", intType(), "2", intType(), intType()), "-1");
  EXPECT_EQ(binary("exact_div", "20", moneyType(), "3", intType(), moneyType()), "6.6666");
  EXPECT_EQ(expression("exact_neg(" + number("-1.5", moneyType()) + ")", moneyType()), "1.5000");
  EXPECT_EQ(expression("exact_add(NULL, 1, 2, 1, 1)", intType()), "null");
}

TEST_F(ValueFunctions, CalculateBeyond64Bits) {
  EXPECT_EQ(binary("exact_sub", largest, wide, "0.000001", wide, wide), "99999999999999999999999999999999.999998");
  EXPECT_EQ(binary("exact_add", "9223372036854.775807", wide, "0.000001", wide, wide), "9223372036854.775808");
  EXPECT_EQ(binary("exact_add", largest, wide, "0.000001", wide, wide),
            "8115: Arithmetic overflow error converting expression to data type numeric.");
}

TEST_F(ValueFunctions, RefuseDivisionByZero) {
  EXPECT_EQ(binary("exact_div", "1", intType(), "0", intType(), intType()), "8134: Divide by zero error encountered.");
  EXPECT_EQ(expression("float_div(1.0, 0.0)", floatType()), "8134: Divide by zero error encountered.");
}

TEST_F(ValueFunctions, ACaseGuardsTheDivision) {
  run("CREATE TABLE t(a); INSERT INTO t VALUES(0), (2)");
  EXPECT_EQ(rows("SELECT CASE WHEN a = 0 THEN NULL ELSE exact_div(6, 0, a, 0, 0) END FROM t", intType()), "null 3");
  EXPECT_EQ(rows("SELECT CASE WHEN 1 = 0 THEN exact_div(6, 0, 0, 0, 0) ELSE 1 END", intType()), "1");
}

TEST_F(ValueFunctions, CheckRanges) {
  EXPECT_EQ(integer("exact_check(2147483647, " + code(intType()) + ")"), "2147483647");
  EXPECT_EQ(integer("exact_check(2147483647 + 1, " + code(intType()) + ")"),
            "8115: Arithmetic overflow error converting expression to data type int.");
  EXPECT_EQ(integer("exact_check(9223372036854775807 + 1, " + code(moneyType()) + ")"),
            "8115: Arithmetic overflow error converting expression to data type money.");
  EXPECT_EQ(integer("exact_check(NULL, 0)"), "null");
  EXPECT_EQ(expression("float_check(1e308 * 10)", floatType()),
            "8115: Arithmetic overflow error converting expression to data type float.");
  EXPECT_EQ(integer("date_check(-9999999999999)"), "517: Adding a value to a 'datetime' column caused an overflow.");
  EXPECT_EQ(integer("date_check(300)"), "300");
}

TEST_F(ValueFunctions, CompareAndOrderMixedWidths) {
  EXPECT_EQ(integer("exact_cmp(" + number("2", intType()) + ", " + number("2.0001", decimalType(10, 4)) + ")"), "-1");
  EXPECT_EQ(integer("exact_cmp(" + number(largest, wide) + ", " + number("1", intType()) + ")"), "1");
  run("CREATE TABLE t(a)");
  for (const std::string_view digits : {std::string_view("1"), largest, std::string_view("-5"),
                                        std::string_view("-99999999999999999999999999999999.999999")}) {
    const Exact parsed = parseExact(digits).value();
    run("INSERT INTO t VALUES(" + sqlLiteral(Exact{*rescale(parsed.units, parsed.scale, 6, Rounding::cut), 6}) + ")");
  }
  EXPECT_EQ(rows("SELECT a FROM t ORDER BY exact_key(a)", wide),
            "-99999999999999999999999999999999.999999 -5.000000 1.000000 99999999999999999999999999999999.999999");
  EXPECT_EQ(rows("SELECT max_decimal(a) FROM t", wide), largest);
  EXPECT_EQ(rows("SELECT min_decimal(a) FROM t", wide), "-99999999999999999999999999999999.999999");
  EXPECT_EQ(rows("SELECT sum_decimal(a) FROM t", wide), "-4.000000");
  EXPECT_EQ(rows("SELECT max_decimal(a) FROM t WHERE 0", wide), "null");
}

TEST_F(ValueFunctions, RoundExactNumbers) {
  const Type type = decimalType(10, 4);
  EXPECT_EQ(expression("exact_round(" + number("2.345", type) + ", 2)", type), "2.3500");
  EXPECT_EQ(expression("exact_round(" + number("2.349", type) + ", 2, 1)", type), "2.3400");
  EXPECT_EQ(
      expression("exact_floor(" + number("-2.1", type) + ", " + code(decimalType(10, 0)) + ")", decimalType(10, 0)),
      "-3");
  EXPECT_EQ(
      expression("exact_ceiling(" + number("2.1", type) + ", " + code(decimalType(10, 0)) + ")", decimalType(10, 0)),
      "3");
  EXPECT_EQ(expression("exact_abs(" + number("-2.1", type) + ")", type), "2.1000");
  EXPECT_EQ(expression("exact_sign(" + number("-2.1", type) + ")", type), "-1.0000");
}

TEST_F(ValueFunctions, RoundFloats) {
  EXPECT_EQ(expression("float_round(2.5, 0)", floatType()), "3");
  EXPECT_EQ(expression("float_round(-2.56, 1)", floatType()), "-2.6");
  EXPECT_EQ(expression("float_round(1234.5, -2)", floatType()), "1200");
  EXPECT_EQ(expression("float_round(2.9, 0, 1)", floatType()), "2");
  EXPECT_EQ(expression("float_round(2.5, 999)", floatType()), "2.5");
  EXPECT_EQ(expression("float_floor(-0.5)", floatType()), "-1");
  EXPECT_EQ(expression("float_ceiling(0.5)", floatType()), "1");
  EXPECT_EQ(expression("float_sqrt(-1)", floatType()), "3623: An invalid floating point operation occurred.");
  EXPECT_EQ(expression("float_power(2.0, 10)", floatType()), "1024");
  EXPECT_EQ(expression("float_sign(-3.5)", floatType()), "-1");
}

TEST_F(ValueFunctions, AggregateExactly) {
  run("CREATE TABLE t(g, a); INSERT INTO t VALUES(1, 1), (1, 2), (1, 2), (1, NULL), (2, NULL)");
  EXPECT_EQ(rows("SELECT sum_int(a) FROM t GROUP BY g", intType()), "5 null");
  EXPECT_EQ(rows("SELECT avg_int(a) FROM t GROUP BY g", intType()), "1 null");
  EXPECT_EQ(rows("SELECT sum_int(DISTINCT a) FROM t", intType()), "3");
  EXPECT_EQ(rows("SELECT avg_decimal_6(a) FROM t", decimalType(38, 6)), "1.666666");
  EXPECT_EQ(rows("SELECT avg_money(-a) FROM t", moneyType()), "-0.0001");
  EXPECT_EQ(rows("SELECT sum_money(a) FROM t WHERE 0", moneyType()), "null");
  EXPECT_EQ(rows("SELECT sum_int(a) FROM (SELECT 2147483647 AS a UNION ALL SELECT 1)", intType()),
            "8115: Arithmetic overflow error converting expression to data type int.");
  EXPECT_EQ(rows("SELECT sum_money(a) FROM (SELECT 9223372036854775807 AS a UNION ALL SELECT 1)", moneyType()),
            "8115: Arithmetic overflow error converting expression to data type money.");
  EXPECT_EQ(rows("SELECT sum_money(a) FROM (SELECT 9223372036854775807 AS a UNION ALL SELECT 1 UNION ALL SELECT -2)",
                 moneyType()),
            "922337203685477.5806");
}

TEST_F(ValueFunctions, ASumBeyond38DigitsIsAnError) {
  const std::string units = sqlLiteral(Exact{powerOfTen(38) - Int128(1), 0});
  EXPECT_EQ(rows("SELECT sum_decimal(" + units + ") FROM (SELECT 1 UNION ALL SELECT 2)", decimalType(38, 0)),
            "8115: Arithmetic overflow error converting expression to data type numeric.");
}

TEST_F(ValueFunctions, Convert) {
  const std::string text20 = code(nVarCharType(20));
  EXPECT_EQ(expression("cast_to('12.345', " + text20 + ", " + code(decimalType(10, 2)) + ")", decimalType(10, 2)),
            "12.35");
  EXPECT_EQ(integer("cast_to('x', " + text20 + ", " + code(intType()) + ")"),
            "245: Conversion failed when converting the nvarchar value 'x' to data type int.");
  EXPECT_EQ(text("cast_to('采购入库单', " + text20 + ", " + code(nVarCharType(2)) + ")"), "采购");
  EXPECT_EQ(text("store_to('采购', " + text20 + ", " + code(nVarCharType(2)) + ", 't', 'a')"), "采购");
  EXPECT_EQ(text("store_to('采购入', " + text20 + ", " + code(nVarCharType(2)) + ", 't', 'a')"),
            "2628: String or binary data would be truncated in table 't', column 'a'. Truncated value: '采购'.");
  EXPECT_EQ(text("cast_to(0, " + code(dateTimeType()) + ", " + text20 + ", 120)"), "1900-01-01 00:00:00");
}

TEST_F(ValueFunctions, WorkOnTexts) {
  EXPECT_EQ(text("text_left('采购入库单', 2)"), "采购");
  EXPECT_EQ(text("text_left('a', -1)"), "537: Invalid length parameter passed to the left function.");
  EXPECT_EQ(text("text_right('abc', 2)"), "bc");
  EXPECT_EQ(text("text_substring('abc', 2, 5)"), "bc");
  EXPECT_EQ(integer("text_len(' 甲 乙  ')"), "4");
  EXPECT_EQ(integer("text_width('甲  ')"), "3");
  EXPECT_EQ(text("text_replace('aBa', 'b', '-')"), "a-a");
  EXPECT_EQ(integer("text_charindex('B', 'ab')"), "2");
  EXPECT_EQ(text("text_stuff('abcdef', 2, 3, 'X')"), "aXef");
  EXPECT_EQ(text("text_stuff('abcdef', 2, 3, NULL)"), "aef");
  EXPECT_EQ(text("text_stuff('abc', 4, 1, 'X')"), "null");
  EXPECT_EQ(text("text_replicate('ab', 3)"), "ababab");
  EXPECT_EQ(text("text_replicate('ab', -1)"), "null");
  EXPECT_EQ(text("'[' || text_space(2) || ']'"), "[  ]");
  EXPECT_EQ(text("text_char(65)"), "A");
  EXPECT_EQ(text("text_nchar(24211)"), "库");
  EXPECT_EQ(integer("text_unicode('库')"), "24211");
  EXPECT_EQ(integer("text_ascii('A')"), "65");
  EXPECT_EQ(text("text_str(3.14159, 8, 3)"), "   3.142");
  EXPECT_EQ(text("text_str(1234.5, 3, 0)"), "***");
  EXPECT_EQ(text("text_str(123.456, 5, 3)"), "123.5");
  EXPECT_EQ(text("text_quotename('a]b')"), "[a]]b]");
  EXPECT_EQ(integer("text_isnumeric('1.5')"), "1");
  EXPECT_EQ(integer("text_isnumeric(NULL)"), "0");
  EXPECT_EQ(integer("text_patindex('%[0-9]%', 'ab1')"), "3");
  EXPECT_EQ(integer("text_patindex('b%', 'ab')"), "0");
  EXPECT_EQ(text("text_left(NULL, 2)"), "null");
}

TEST_F(ValueFunctions, MatchPatternsConstantAndComputed) {
  run("CREATE TABLE t(s, p); INSERT INTO t VALUES('Abc', 'a%'), ('b', 'B'), (NULL, '%'), ('x', NULL), ('5%', '5!%')");
  EXPECT_EQ(rows("SELECT text_like(s, 'AB%') FROM t", intType()), "1 0 null 0 0");
  EXPECT_EQ(rows("SELECT text_like(s, p) FROM t", intType()), "1 1 null null 0");
  EXPECT_EQ(rows("SELECT text_like(s, p, '!') FROM t WHERE s = '5%'", intType()), "1");
  EXPECT_EQ(integer("text_like('a ', 'a')"), "0");
  EXPECT_EQ(integer("text_like_varchar('a ', 'a')"), "1");
  EXPECT_EQ(integer("text_like('a', 'a', 'xy')"),
            "506: The invalid escape character \"xy\" was specified in a LIKE predicate.");
}

TEST_F(ValueFunctions, WorkOnDates) {
  const std::string date = std::to_string(parseDateTime("2024-03-05 13:14:15").value.value().ticks);
  EXPECT_EQ(integer("date_part('year', " + date + ")"), "2024");
  EXPECT_EQ(text("date_name('month', " + date + ")"), "March");
  EXPECT_EQ(expression("date_add('month', 1, " + date + ")", dateTimeType()), "2024-04-05 13:14:15.000");
  EXPECT_EQ(integer("date_diff('day', 0, " + date + ")"), "45354");
  EXPECT_EQ(integer("date_diff('millisecond', 0, " + date + ")").substr(0, 4), "535:");
}

TEST_F(ValueFunctions, TheCollationGroupsAndOrders) {
  run(std::string("CREATE TABLE t(s TEXT COLLATE ") + collationName + ")");
  run("INSERT INTO t VALUES('b'), ('A'), ('a '), ('ａ'), ('上海'), ('北京')");
  EXPECT_EQ(rows("SELECT count(*) FROM t GROUP BY s", intType()), "3 1 1 1");
  EXPECT_EQ(rows("SELECT s FROM t WHERE s IN ('B', '上海 ') ORDER BY s", nVarCharType(9)), "b 上海");
  EXPECT_EQ(rows("SELECT count(DISTINCT s) FROM t", intType()), "4");
}

TEST_F(ValueFunctions, ValuesGoInAndComeOutUnchanged) {
  const Value values[] = {Value(),        std::int64_t{-5},      0.1, Exact{powerOfTen(30), 6}, Exact{Int128(-15), 4},
                          DateTime{-300}, std::string("it's 库")};
  const Type types[] = {intType(),   intType(),      floatType(),    decimalType(38, 6),
                        moneyType(), dateTimeType(), nVarCharType(9)};
  for (std::size_t i = 0; i < std::size(values); ++i) {
    sqlite3_stmt* statement = nullptr;
    const std::string sql = "SELECT ?1, " + sqlLiteral(values[i]);
    ASSERT_EQ(sqlite3_prepare_v2(database(), sql.c_str(), -1, &statement, nullptr), SQLITE_OK) << sql;
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement, sqlite3_finalize);
    EXPECT_EQ(bindValue(statement, 1, values[i]), SQLITE_OK);
    ASSERT_EQ(sqlite3_step(statement), SQLITE_ROW);
    EXPECT_EQ(columnValue(statement, 0, types[i]), values[i]) << sql;
    EXPECT_EQ(columnValue(statement, 1, types[i]), values[i]) << sql;
  }
}

TEST_F(ValueFunctions, GiveTheValueOfASingleRowOnly) {
  run("CREATE TABLE t(i INTEGER); INSERT INTO t VALUES(7)");
  EXPECT_EQ(integer("single_row(i) FROM t"), "7");
  EXPECT_EQ(integer("single_row(i) FROM t WHERE i = 1"), "null");
  run("INSERT INTO t VALUES(NULL)");
  EXPECT_EQ(integer("single_row(i) FROM t").substr(0, 4), "512:");
}

TEST_F(ValueFunctions, RefuseNullWhereAValueIsRequired) {
  EXPECT_EQ(integer("required(7, 'c', 't')"), "7");
  EXPECT_EQ(integer("required(NULL, 'c', 't')"),
            "515: Cannot insert the value NULL into column 'c', table 't'; column does not allow nulls. INSERT fails.");
}

TEST_F(ValueFunctions, LeaveSqlitesOwnErrorsAlone) {
  EXPECT_FALSE(errorFrom("near \"x\": syntax error"));
  EXPECT_FALSE(errorFrom(""));
}

}  // namespace
}  // namespace quillon::tsql
