// Reports that run at the same time on one account: each finds the rows that it finds alone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <exception>
#include <filesystem>
#include <future>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/cli/report_command.h"

namespace quillon::workbench {
namespace {

constexpr std::size_t atOnce = 8;

class ParallelReports : public testing::TestWithParam<const char*> {
 protected:
  ParallelReports() { account::createSample(file_.path(), {.rows = 2000, .seed = 5, .years = 1}); }

  std::string run() const {
    std::ostringstream out, notes;
    std::vector<std::string> settings;
    if (std::string_view(GetParam()) == "fx-detail") settings = {"cInvCode=0402-00019", "cWhCode=04"};
    runReport({.report = GetParam(),
               .account = AccountSource::inFile(file_.path()),
               .settings = settings,
               .format = ReportFormat::csv},
              out, notes);
    return out.str();
  }

  test::TemporaryFile file_{".account"};
};

TEST_P(ParallelReports, HaveTheRowsOfOneAlone) {
  const std::string alone = run();
  EXPECT_GT(std::ranges::count(alone, '\n'), 2) << "there are rows";
  std::array<std::string, atOnce> rows;
  std::promise<void> start;
  const std::shared_future<void> started = start.get_future().share();
  {
    std::vector<std::jthread> reports;
    reports.reserve(atOnce);
    for (std::string& own : rows) {
      reports.emplace_back([&] {
        started.wait();
        try {
          own = run();
        } catch (const std::exception& error) {
          own = error.what();
        }
      });
    }
    start.set_value();
  }
  for (const std::string& own : rows)
    EXPECT_EQ(own, alone);
  EXPECT_THAT(account::testing::leftoverNames(*tsql::Connection::open(file_.path(), tsql::OpenMode::readOnly)),
              testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, ParallelReports, testing::Values("sfc-item", "outsum-item", "fx-detail", "fx-wt"),
                         [](const auto& report) {
                           std::string name = report.param;
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace quillon::workbench
