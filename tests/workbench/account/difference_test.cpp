// Comparing two accounts.
#include "workbench/account/difference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "workbench/tsql/engine/engine.h"

namespace quillon::account {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = RowDifference::Kind;

// "table: only in first/only in second/changed", a sentence for each difference of structure, a line for each row.
std::vector<std::string> told(const std::vector<TableComparison>& comparisons) {
  const auto text = [](const tsql::Value& value) { return tsql::toText(value).value_or("NULL"); };
  std::vector<std::string> lines;
  for (const TableComparison& table : comparisons) {
    lines.push_back(table.table + ": " + std::to_string(table.onlyInFirst) + '/' + std::to_string(table.onlyInSecond) +
                    '/' + std::to_string(table.changed) + " of " + std::to_string(table.rows));
    if (table.lastDigits > 0) lines.back() += ", last digits " + std::to_string(table.lastDigits);
    for (const auto& sentences : {table.structure, table.types}) {
      for (const workbench::Message& sentence : sentences)
        lines.push_back(sentence.english());
    }
    for (const RowDifference& row : table.shown) {
      std::string line = row.kind == Kind::onlyInFirst    ? "<"
                         : row.kind == Kind::onlyInSecond ? ">"
                         : row.kind == Kind::lastDigit    ? "~"
                                                          : "=";
      for (const NamedValue& part : row.key)
        line += ' ' + part.column + ' ' + text(part.value);
      for (const ChangedValue& change : row.changes)
        line += ", " + change.column + ' ' + text(change.first) + (change.lastDigit ? '~' : '|') + text(change.second);
      lines.push_back(line);
    }
  }
  return lines;
}

class Difference : public ::testing::Test {
 protected:
  std::vector<std::string> compare(const std::string& first, const std::string& second,
                                   const DifferenceOptions& options = {}) {
    const auto one = tsql::Connection::openInMemory(), two = tsql::Connection::openInMemory();
    one->execute(first);
    two->execute(second);
    return told(compareAccounts(*one, *two, options));
  }
  // Both accounts have the table t with these rows.
  std::vector<std::string> compareRows(const std::string& definition, const std::string& first,
                                       const std::string& second, const DifferenceOptions& options = {}) {
    const std::string create = "Create Table t (" + definition + ") ";
    const auto rows = [](const std::string& values) { return values.empty() ? "" : "Insert Into t Values " + values; };
    return compare(create + rows(first), create + rows(second), options);
  }
};

TEST_F(Difference, HasNothingToSayOfEqualTables) {
  EXPECT_THAT(compareRows("a int Primary Key, b nvarchar(9)", "(1, N'x'), (2, Null)", "(2, Null), (1, N'x')"),
              ElementsAre("t: 0/0/0 of 2"));
  EXPECT_THAT(compareRows("a int Primary Key", "", ""), ElementsAre("t: 0/0/0 of 0"));
  EXPECT_THAT(compare("", ""), IsEmpty());
}

TEST_F(Difference, TellsWhichRowsOneAccountLacks) {
  EXPECT_THAT(compareRows("a int Primary Key, b nvarchar(9)", "(1, N'x'), (2, N'y'), (4, N'z')",
                          "(2, N'y'), (3, N'w'), (4, N'z'), (5, N'v')"),
              ElementsAre("t: 1/2/0 of 3", "< a 1", "> a 3", "> a 5"));
  EXPECT_THAT(compareRows("a int Primary Key", "(1)", ""), ElementsAre("t: 1/0/0 of 1", "< a 1"));
  EXPECT_THAT(compareRows("a int Primary Key", "", "(1)"), ElementsAre("t: 0/1/0 of 0", "> a 1"));
}

TEST_F(Difference, TellsBothValuesOfAChangedRow) {
  EXPECT_THAT(compareRows("a int, b nvarchar(9), c decimal(9,2), d nvarchar(9), Primary Key (b, a)",
                          "(1, N'k', 1.50, N''), (2, N'k', 2, N'x')", "(1, N'k', 1.51, Null), (2, N'k', 2, N'x')"),
              ElementsAre("t: 0/0/1 of 2", "= b k a 1, c 1.50|1.51, d |NULL"));
}

TEST_F(Difference, TellsTextsApartThatSortAlike) {
  EXPECT_THAT(compareRows("a int Primary Key, b nvarchar(9)", "(1, N'abc')", "(1, N'ABC')"),
              ElementsAre("t: 0/0/1 of 1", "= a 1, b abc|ABC"));
  EXPECT_THAT(compareRows("a nvarchar(9) Primary Key", "(N'abc')", "(N'ABC')"),
              ElementsAre("t: 1/1/0 of 1", "< a abc", "> a ABC"));
}

TEST_F(Difference, FindsPartnersBehindRowsThatOneAccountLacks) {
  EXPECT_THAT(
      compareRows("a int Primary Key, b int", "(1, 0), (2, 0), (3, 0), (10, 0), (11, 1)", "(3, 0), (10, 0), (11, 2)"),
      ElementsAre("t: 2/0/1 of 5", "= a 11, b 1|2", "< a 1", "< a 2"));
}

TEST_F(Difference, CountsEqualRowsOfATableWithoutKey) {
  EXPECT_THAT(compareRows("a int, b nvarchar(9)", "(1, N'x'), (1, N'x'), (2, Null)", "(2, Null), (1, N'x'), (3, N'y')"),
              ElementsAre("t: 1/1/0 of 3", "< a 1 b x", "> a 3 b y"));
}

TEST_F(Difference, ShowsTheFirstRowsAndCountsAll) {
  EXPECT_THAT(compareRows("a int Primary Key, b int", "(1, 0), (2, 0), (3, 0)", "(1, 1), (2, 1), (4, 0)", {.shown = 1}),
              ElementsAre("t: 1/1/2 of 3", "= a 1, b 0|1"));
  EXPECT_THAT(compareRows("a int Primary Key, b int", "(1, 0)", "(1, 1)", {.shown = 0}), ElementsAre("t: 0/0/1 of 1"));
}

TEST_F(Difference, TellsMissingTables) {
  EXPECT_THAT(compare("Create Table a (x int) Create Table orvsystem..b (x int)", "Create Table c (x int)"),
              ElementsAre("a: 0/0/0 of 0", "the second account has no such table",  //
                          "c: 0/0/0 of 0", "the first account has no such table",   //
                          "orvsystem..b: 0/0/0 of 0", "the second account has no such table"));
}

TEST_F(Difference, TellsColumnsThatDifferAndComparesTheOthers) {
  EXPECT_THAT(
      compare("Create Table t (a int Primary Key, b nvarchar(9), c int) Insert Into t Values (1, N'x', 5)",
              "Create Table t (A int Primary Key, b nvarchar(10), d int) Insert Into t Values (1, N'y', 6)"),
      ElementsAre("t: 0/0/1 of 1", "the second account has no column c", "the first account has no column d",
                  "column b is nvarchar(9) in the first account and nvarchar(10) in the second", "= a 1, b x|y"));
}

TEST_F(Difference, TellsTypesAndComparesTheirValues) {
  const std::string first = "Create Table t (a decimal(9,2) Primary Key, b int) Insert Into t Values (1.50, 7), (2, 8)";
  const std::string second =
      "Create Table t (a decimal(12,4) Primary Key, B money) Insert Into t Values (1.50, 7), (2, 8)";
  EXPECT_THAT(
      compare(first, second),
      ElementsAre("t: 0/0/0 of 2", "column a is decimal(9,2) in the first account and decimal(12,4) in the second",
                  "column b is int in the first account and money in the second"));
  EXPECT_THAT(
      compare(first, second, {.shown = 1, .exact = true}),
      ElementsAre("t: 2/2/0 of 2", "column a is decimal(9,2) in the first account and decimal(12,4) in the second",
                  "column b is int in the first account and money in the second", "< a 1.50"));
}

TEST_F(Difference, TellsLastDigitsOfQuotientsApart) {
  const std::string table = "a int Primary Key, iInCost decimal(18,6), iInPrice money, f float";
  const std::string first = "(1, 3.333333, 10, 0.1), (2, 3.333333, 10, 0.1), (3, 3.333333, 10, 0.1), (4, 1, 1, 1)";
  const std::string second =
      "(1, 3.333334, 10, 0.1), (2, 3.333334, 10.0001, 0.1), (3, 3.333333, 10, 0.100000000000001), (4, 1, 1, 1)";
  EXPECT_THAT(
      compareRows(table, first, second),
      ElementsAre("t: 0/0/1 of 4, last digits 2", "~ a 1, iInCost 3.333333~3.333334",
                  "= a 2, iInCost 3.333333~3.333334, iInPrice 10.0000|10.0001", "~ a 3, f 0.1~0.100000000000001"));
  EXPECT_THAT(compareRows(table, first, second, {.shown = 0, .exact = true}), ElementsAre("t: 0/0/3 of 4"));
}

TEST_F(Difference, LeavesOtherTablesOutWhenAskedFor) {
  const auto one = tsql::Connection::openInMemory(), two = tsql::Connection::openInMemory();
  one->execute("Create Table Warehouse (cWhCode nvarchar(10), cWhName nvarchar(20)) Create Table other (a int)");
  two->execute("Create Table Warehouse (cWhCode nvarchar(10), cWhName nvarchar(20))");
  two->execute("Insert Into Warehouse Values (N'01', N'x')");
  EXPECT_THAT(told(compareAccounts(*one, *two, {.which = ComparedTables::ofAnAccount})),
              ElementsAre("Warehouse: 0/1/0 of 0", "> cWhCode 01"));
}

}  // namespace
}  // namespace quillon::account
