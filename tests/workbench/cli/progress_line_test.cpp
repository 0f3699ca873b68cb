#include "workbench/cli/progress_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace quillon::workbench {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* erased = "\r\x1b[K";

int timesErased(const std::string& text) {
  int count = 0;
  for (std::size_t at = 0; (at = text.find(erased, at)) != std::string::npos; ++at)
    ++count;
  return count;
}

TEST(ProgressLine, ShowsTheStatementOnOneLine) {
  std::ostringstream terminal;
  {
    ProgressLine line(terminal, 20, Language::english);
    line.statement(7, "Select a\nFrom a_table_with_a_long_name");
  }
  EXPECT_EQ(terminal.str(), "\r\x1b[K7: Select a From a…\r\x1b[K") << "19 cells, and taken away at the end";
}

TEST(ProgressLine, CountsRowsWhileTheyAreWritten) {
  std::ostringstream terminal;
  ProgressLine line(terminal, 80, Language::english);
  line.begin(12'000);
  for (int i = 0; i < 1'500; ++i)
    line.row();
  std::this_thread::sleep_for(3 * ProgressLine::interval);
  line.finish();
  EXPECT_THAT(terminal.str(), StartsWith("\r\x1b[KReading and sorting the result\r\x1b[K"));
  EXPECT_THAT(terminal.str(), HasSubstr("\r\x1b[KRows written: 1,500 of 12,000\r\x1b[K"));
  EXPECT_THAT(terminal.str(), EndsWith(erased));
}

TEST(ProgressLine, TellsTheTimeOfWhatTakesLong) {
  std::ostringstream terminal;
  ProgressLine line(terminal, 80, Language::chinese);
  line.begin(std::nullopt);
  line.row();
  std::this_thread::sleep_for(std::chrono::milliseconds(1'300));
  line.finish();
  EXPECT_THAT(terminal.str(), HasSubstr("\r\x1b[K已写 1 行\r\x1b[K已写 1 行，1."));
  EXPECT_THAT(terminal.str(), HasSubstr(" 秒\r"));
}

TEST(ProgressLine, TellsHowManyRowsASecondAreMoved) {
  std::ostringstream terminal;
  ProgressLine line(terminal, 80, Language::english);
  line.countRows();
  line.counted(1'500'000);
  std::this_thread::sleep_for(std::chrono::milliseconds(1'300));
  line.makingIndexes();
  std::this_thread::sleep_for(2 * ProgressLine::interval);
  line.finish();
  EXPECT_THAT(terminal.str(), StartsWith("\r\x1b[K0 rows\r\x1b[K1,500,000 rows\r\x1b[K1,500,000 rows, 1,"));
  EXPECT_THAT(terminal.str(), EndsWith(" a second\r\x1b[KMaking the indexes\r\x1b[K"));
}

TEST(ProgressLine, TellsHowManyLedgerLinesThereWillBe) {
  std::ostringstream terminal;
  ProgressLine line(terminal, 80, Language::chinese);
  line.countLedgerLines(20'000);
  line.counted(4'096);
  std::this_thread::sleep_for(3 * ProgressLine::interval);
  line.finish();
  EXPECT_EQ(terminal.str(), "\r\x1b[K明细账记录 0 / 20,000\r\x1b[K明细账记录 4,096 / 20,000\r\x1b[K");
}

TEST(ProgressLine, IsRewrittenTenTimesASecondAtMost) {
  std::ostringstream terminal;
  const auto start = std::chrono::steady_clock::now();
  {
    ProgressLine line(terminal, 80, Language::english);
    for (int i = 0; i < 100'000; ++i)
      line.statement(i, "Select 1");
  }
  const auto intervals = (std::chrono::steady_clock::now() - start) / ProgressLine::interval;
  EXPECT_LE(timesErased(terminal.str()), intervals + 2);
}

TEST(ProgressLine, ShowsNothingOnceItIsFinished) {
  std::ostringstream terminal;
  ProgressLine line(terminal, 80, Language::english);
  line.finish();
  line.begin(10);
  line.row();
  std::this_thread::sleep_for(2 * ProgressLine::interval);
  line.clear();
  EXPECT_EQ(terminal.str(), "");
}

TEST(ProgressLine, StaysAwayAfterItWasCleared) {
  std::ostringstream terminal;
  ProgressLine line(terminal, 80, Language::english);
  line.statement(1, "Select 1");
  line.clear();
  terminal << "a message\n";
  std::this_thread::sleep_for(2 * ProgressLine::interval);
  line.finish();
  EXPECT_EQ(terminal.str(), "\r\x1b[K1: Select 1\r\x1b[Ka message\n");
}

}  // namespace
}  // namespace quillon::workbench
