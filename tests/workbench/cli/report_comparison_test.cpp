// Comparing two results row by row.
#include "workbench/cli/report_comparison.h"

#include <gtest/gtest.h>

#include <sstream>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {
namespace {

// What is said of the rows that two queries give, and whether they count as equal.
std::string compared(const std::string& first, const std::string& second, std::int64_t shown = 10) {
  const auto one = tsql::Connection::openInMemory(), two = tsql::Connection::openInMemory();
  const auto firstRows = one->query(first), secondRows = two->query(second);
  std::ostringstream out;
  const bool equal = compareResults(*firstRows, *secondRows, shown, out);
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
  EXPECT_EQ(compared("Select 1 As a, N'x' As b", rows, 1),
            "row 2, only in the second: a 2, b \"y\"\n"
            "and 1 more\n"
            "different: 2 rows; the first source has 1 rows, the second 3\nfalse");
}

TEST(ReportComparison, ShowsColumnsThatDiffer) {
  EXPECT_EQ(compared("Select 1 As a", "Select Cast(1 As bigint) As a"),
            "the first source has the columns [[\"a\",\"int\"]]\n"
            "the second source has the columns [[\"a\",\"bigint\"]]\n"
            "different: the columns\nfalse");
}

}  // namespace
}  // namespace quillon::workbench
