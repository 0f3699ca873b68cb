#include "workbench/runs/run_monitor.h"

#include <gtest/gtest.h>

#include <sstream>

#include "workbench/cli/run_notes.h"

namespace quillon::workbench {
namespace {

TEST(ErrorText, HasNumberAndLineWhereThereAreSome) {
  EXPECT_EQ(errorText(207, 3, "Invalid column name 'x'.").english(),
            "error 207 in line 3 of the batch: Invalid column name 'x'.");
  EXPECT_EQ(errorText(207, 0, "Invalid column name 'x'.").english(), "error 207: Invalid column name 'x'.");
  EXPECT_EQ(errorText(0, 3, "something").english(), "line 3 of the batch: something");
  EXPECT_EQ(errorText(0, 0, "the connection is lost").english(), "the connection is lost");
}

TEST(ErrorText, HasTheStatementOnOneLine) {
  EXPECT_EQ(errorText(StatementFailure{"Select a\nFrom t", 207, "Invalid column name 'a'.", 1}).english(),
            "error 207 in line 1 of the batch: Invalid column name 'a'., at: Select a From t");
}

TEST(ErrorText, IsThatOfTheStatementWhateverThrewIt) {
  const StatementError refused(0, {"Select a", 207, "Invalid column name 'a'.", 1});
  EXPECT_EQ(errorText(static_cast<const std::exception&>(refused)).english(),
            "error 207 in line 1 of the batch: Invalid column name 'a'., at: Select a");
  const tsql::SqlError direct(207, "Invalid column name 'a'.", 1);
  EXPECT_EQ(errorText(direct).english(), "error 207 in line 1 of the batch: Invalid column name 'a'.");
  const tsql::SqlError atOpening(5120, "Unable to open the account file 'x'.");
  EXPECT_EQ(errorText(atOpening).english(), "Unable to open the account file 'x'.");
}

TEST(RunMonitor, ExplainsWhatTheServerSaysBeside) {
  std::ostringstream explanation;
  RunNotes notes(explanation, Language::english, nullptr, &explanation);
  RunMonitor monitor(notes);
  monitor.started("Select Sum(i) From t");
  monitor.told({.state = "01003", .number = 8153, .line = 1, .text = "Warning: Null value is eliminated."});
  EXPECT_EQ(explanation.str(), "[1] the server says: Warning: Null value is eliminated. (number 8153, line 1)\n");
}

}  // namespace
}  // namespace quillon::workbench
