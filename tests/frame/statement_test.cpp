#include "frame/statement.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(Statement, PutsCrLfBetweenItsLines) {
  EXPECT_EQ(joined({"a ", " b", "c"}), "a \r\n b\r\nc");
}

TEST(Statement, LeavesOutLinesThatThisRunDoesNotHave) {
  EXPECT_EQ(joined({"", "a", "", "b", ""}), "a\r\nb");
}

TEST(Statement, CanEndEveryLineWithCrLf) {
  EXPECT_EQ(terminated({"a", "", "b"}), "a\r\nb\r\n");
}

TEST(Statement, CanBeWrittenInPiecesWithNothingBetween) {
  EXPECT_EQ(concatenated({"a ", "", "b\r\n", "c"}), "a b\r\nc");
}

}  // namespace
}  // namespace quillon
