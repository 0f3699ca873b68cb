// `quillon report --check`: a report says which errors of the ledger touch its rows.
#include <gmock/gmock.h>

#include <memory>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// An account of 2023 and 2024 with a receipt of 2024 whose cost items sum to 1.25 too much, and a split of an issue
// that is 2.00 short.
class ReportCheck : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 1200, .years = 2});
    tsql::Connection::open(file_->path(), tsql::OpenMode::existing)
        ->execute(
            "Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 1.25 Where AutoID = (Select Max(AutoID) From "
            "ia_subsidiary_Item Where bRdFlag = 1)\n"
            "Update ia_subsidiary_ItemOut Set iItemOutPrice = iItemOutPrice - 2 Where AutoID = (Select Max(AutoID) From "
            "ia_subsidiary_ItemOut)");
  }
  static void TearDownTestSuite() { file_.reset(); }

  struct Written {
    std::string report;
    std::string notes;
  };

  static Written run(ReportOptions options) {
    options.account = AccountSource::inFile(file_->path());
    std::ostringstream out, notes;
    runReport(options, out, notes);
    return {out.str(), notes.str()};
  }

  static inline std::unique_ptr<test::TemporaryFile> file_;
};

constexpr const char* linesDoNotSum =
    "1 found: cost items that do not sum to their ledger line, amount -1.25 (quillon account check SOURCE --check "
    "line-sum)";

TEST_F(ReportCheck, TellsWhatTouchesTheReport) {
  const Written written =
      run({.report = "sfc-item", .settings = {"iYear=2024"}, .language = Language::english, .check = true});
  EXPECT_EQ(written.notes, "quillon: " + std::string(linesDoNotSum) + "\n");
  EXPECT_THAT(written.report, HasSubstr("\nCheck: " + std::string(linesDoNotSum) + "\n"));
}

TEST_F(ReportCheck, TellsEachReportItsOwn) {
  const std::string notes =
      run({.report = "outsum-item", .settings = {"iYear=2024"}, .language = Language::english, .check = true}).notes;
  EXPECT_EQ(notes, "quillon: " + std::string(linesDoNotSum) +
                       "\nquillon: 1 found: cost items of issues that do not sum to their ledger line, amount 2.00 "
                       "(quillon account check SOURCE --check issue-sum)\n");
}

TEST_F(ReportCheck, CountsTheYearsOfTheFilter) {
  const auto notesOf = [](const std::string& report, const std::string& setting) {
    return run({.report = report, .settings = {setting}, .language = Language::english, .check = true}).notes;
  };
  EXPECT_EQ(notesOf("sfc-item", "iYear=2023"), "quillon: no errors touch this report\n");
  EXPECT_EQ(notesOf("fx-wt", "dKeepDate=2023-05-01..2023-12-31"), "quillon: no errors touch this report\n");
  EXPECT_THAT(notesOf("fx-wt", "dKeepDate=2023-05-01..2024-12-31"), HasSubstr(linesDoNotSum));
}

TEST_F(ReportCheck, StandsAtTheHeadOfPages) {
  EXPECT_THAT(
      run({.report = "sfc-item", .settings = {"iYear=2024"}, .format = ReportFormat::html, .check = true}).report,
      HasSubstr("发现 1 处：成本项目之和不等于明细账记录，金额 -1.25"));
  EXPECT_THAT(
      run({.report = "sfc-item", .settings = {"iYear=2023"}, .format = ReportFormat::html, .check = true}).report,
      HasSubstr("没有发现触及本报表的错误"));
}

TEST_F(ReportCheck, LeavesWhatProgramsReadAsItIs) {
  for (const ReportFormat format : {ReportFormat::csv, ReportFormat::json}) {
    for (const bool lines : {false, true}) {
      ReportOptions options{.report = "sfc-item", .settings = {"iYear=2024"}, .format = format};
      if (lines) options.layout.layout = Layout::lines;
      const std::string plain = run(options).report;
      options.check = true;
      const Written checked = run(options);
      EXPECT_EQ(checked.report, plain);
      EXPECT_THAT(checked.notes, HasSubstr("发现 1 处"));
    }
  }
}

TEST_F(ReportCheck, IsDoneWhenAsked) {
  const Written written = run({.report = "sfc-item", .settings = {"iYear=2024"}});
  EXPECT_EQ(written.notes, "");
  EXPECT_THAT(written.report, AllOf(Not(HasSubstr("检查")), Not(HasSubstr("发现 1 处"))));
}

}  // namespace
}  // namespace quillon::workbench
