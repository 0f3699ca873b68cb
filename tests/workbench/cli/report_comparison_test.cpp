// Comparing two results row by row.
#include "workbench/cli/report_comparison.h"

#include <gtest/gtest.h>

#include <sstream>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {
namespace {

// What is said of the rows that two queries give, and whether they count as equal.
std::string compared(const std::string& first, const std::string& second, const ComparisonOptions& options = {}) {
  const auto one = tsql::Connection::openInMemory(), two = tsql::Connection::openInMemory();
  const auto firstRows = one->query(first), secondRows = two->query(second);
  std::ostringstream out;
  const bool equal = compareResults(*firstRows, *secondRows, options, out);
  return out.str() + (equal ? "true" : "false");
}

const std::string rows = "Select 1 As a, N'x' As b Union All Select 2, N'y' Union All Select 3, Null";

TEST(ReportComparison, SaysThatResultsAreEqual) {
  EXPECT_EQ(compared(rows, rows), "equal: 3 rows of 2 columns\ntrue");
  EXPECT_EQ(compared("Select 1 As a Where 1 = 0", "Select 1 As a Where 1 = 0"), "equal: 0 rows of 1 columns\ntrue");
}

TEST(ReportComparison, ShowsBothValues) {
  EXPECT_EQ(compared(rows, "Select 1 As a, N'x' As b Union All Select 5, N'Y' Union All Select 3, N''"),
            "row 2: a 2 | 5, b \"y\" | \"Y\"\n"
            "row 3: b null | \"\"\n"
            "different: 2 rows; the first source has 3 rows, the second 3\nfalse");
}

TEST(ReportComparison, ShowsRowsThatOneSourceLacks) {
  EXPECT_EQ(compared(rows, "Select 1 As a, N'x' As b"),
            "row 2, only in the first: a 2, b \"y\"\n"
            "row 3, only in the first: a 3\n"
            "different: 2 rows; the first source has 3 rows, the second 1\nfalse");
  EXPECT_EQ(compared("Select 1 As a, N'x' As b", rows, {.shown = 1}),
            "row 2, only in the second: a 2, b \"y\"\n"
            "and 1 more\n"
            "different: 2 rows; the first source has 1 rows, the second 3\nfalse");
}

TEST(ReportComparison, ShowsColumnsThatDiffer) {
  EXPECT_EQ(compared("Select 1 As a", "Select 1 As b"),
            "the first source has the columns [[\"a\",\"int\"]]\n"
            "the second source has the columns [[\"b\",\"int\"]]\n"
            "different: the columns\nfalse");
  EXPECT_EQ(compared("Select 1 As a", "Select 1 As a, 2 As b"),
            "the first source has the columns [[\"a\",\"int\"]]\n"
            "the second source has the columns [[\"a\",\"int\"],[\"b\",\"int\"]]\n"
            "different: the columns\nfalse");
}

TEST(ReportComparison, MatchesColumnsByNameWhateverTheirCase) {
  EXPECT_EQ(compared("Select 1 As cCode, 2 As iCost", "Select 2 As ICOST, 1 As ccode"),
            "equal: 1 rows of 2 columns\ntrue");
  EXPECT_EQ(compared("Select 1 As cCode, 2 As iCost", "Select 3 As ICOST, 1 As ccode"),
            "row 1: iCost 2 | 3\n"
            "different: 1 rows; the first source has 1 rows, the second 1\nfalse");
}

TEST(ReportComparison, TellsTypesAndComparesTheirValues) {
  EXPECT_EQ(compared("Select 1 As a, Cast(1.5 As decimal(9,2)) As b",
                     "Select Cast(1 As bigint) As a, Cast(1.5 As money) As b"),
            "column a is int in the first source and bigint in the second\n"
            "column b is decimal(9,2) in the first source and money in the second\n"
            "equal: 1 rows of 2 columns\ntrue");
}

TEST(ReportComparison, TellsLastDigitsOfQuotientsApart) {
  const std::string first = "Select 1 As n, 0.333333 As iUnitCost, 5.00 As amount Union All Select 2, 0.333333, 5.00";
  const std::string close = "Select 1 As n, 0.333334 As iUnitCost, 5.00 As amount Union All Select 2, 0.333333, 5.00";
  const std::string other = "Select 1 As n, 0.333334 As iUnitCost, 5.01 As amount Union All Select 2, 0.333334, 5.00";
  EXPECT_EQ(compared(first, close, {.quotients = {"iunitcost"}}),
            "row 1, but for a last digit: iUnitCost \"0.333333\" ≈ \"0.333334\"\n"
            "1 rows agree but for the last digit of a quotient; --exact counts them as different\n"
            "equal: 2 rows of 3 columns\ntrue");
  EXPECT_EQ(compared(first, close),
            "row 1: iUnitCost \"0.333333\" | \"0.333334\"\n"
            "different: 1 rows; the first source has 2 rows, the second 2\nfalse");
  EXPECT_EQ(compared(first, other, {.shown = 1, .quotients = {"iUnitCost"}}),
            "row 1: iUnitCost \"0.333333\" ≈ \"0.333334\", amount \"5.00\" | \"5.01\"\n"
            "row 2, but for a last digit: iUnitCost \"0.333333\" ≈ \"0.333334\"\n"
            "1 rows agree but for the last digit of a quotient; --exact counts them as different\n"
            "different: 1 rows; the first source has 2 rows, the second 2\nfalse");
}

TEST(ReportComparison, CanBeExact) {
  const ComparisonOptions exact{.exact = true, .quotients = {"a"}};
  EXPECT_EQ(compared("Select 1 As a", "Select Cast(1 As bigint) As a", exact),
            "the first source has the columns [[\"a\",\"int\"]]\n"
            "the second source has the columns [[\"a\",\"bigint\"]]\n"
            "different: the columns\nfalse");
  EXPECT_EQ(compared("Select 1 As a", "Select 1 As A", exact),
            "the first source has the columns [[\"a\",\"int\"]]\n"
            "the second source has the columns [[\"A\",\"int\"]]\n"
            "different: the columns\nfalse");
  EXPECT_EQ(compared("Select 0.33 As a", "Select 0.34 As a", exact),
            "row 1: a \"0.33\" | \"0.34\"\n"
            "different: 1 rows; the first source has 1 rows, the second 1\nfalse");
}

}  // namespace
}  // namespace quillon::workbench
