#include "frame/report_mode.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(ReportMode, IsTheFilterItemReadAsANumber) {
  EXPECT_EQ(reportMode("0"), ReportMode::costItemClass);
  EXPECT_EQ(reportMode("2"), ReportMode::expenseType);
  EXPECT_EQ(reportMode("1"), ReportMode::costItem);
  EXPECT_EQ(reportMode("3"), ReportMode::costItem);
  EXPECT_EQ(reportMode("-1"), ReportMode::costItem);
  EXPECT_EQ(reportMode("20"), ReportMode::costItem);
}

TEST(ReportMode, ReadsANumberHoweverItIsWritten) {
  EXPECT_EQ(reportMode(" 2 "), ReportMode::expenseType);
  EXPECT_EQ(reportMode("02"), ReportMode::expenseType);
  EXPECT_EQ(reportMode("2.0"), ReportMode::expenseType);
  EXPECT_EQ(reportMode("0.5"), ReportMode::costItem);
}

TEST(ReportMode, ATextWithoutANumberCountsAs0) {
  EXPECT_EQ(reportMode(""), ReportMode::costItemClass);
  EXPECT_EQ(reportMode("class"), ReportMode::costItemClass);
}

}  // namespace
}  // namespace quillon
