// Connections that end at any packet of what the server sends: one error that says so, never a hang, never a part of a
// result called whole.
#include <gmock/gmock.h>
#include <unistd.h>

#include <iostream>
#include <sstream>

#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/tds/wire_test_base.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {
namespace {

using tds::Cut;
using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

class CutOverTds : public tds::test::WireTest {
 protected:
  // What hangs ends the program within this time, with the test's name as the last line.
  void SetUp() override { alarm(longestSeconds); }
  void TearDown() override { alarm(0); }

  struct Outcome {
    std::string shown;  // rows and notes
    std::string error;  // empty when nothing failed
  };
  template <typename Command>
  Outcome outcomeOf(Command command) {
    std::ostringstream out, notes;
    try {
      command(AccountSource(connectionString()), out, notes);
    } catch (const std::exception& error) {
      return {out.str() + notes.str(), error.what()};
    }
    return {out.str() + notes.str(), ""};
  }

  // Runs the command with the connection cut at this packet, counted from 0. Whether it failed.
  template <typename Command>
  bool cutAt(int packet, Cut cut, const Outcome& whole, Command command) {
    SCOPED_TRACE("packet " + std::to_string(packet) + ", cut " + std::to_string(static_cast<int>(cut)));
    endpoint_.cutAfter(packet, cut);
    const Outcome outcome = outcomeOf(command);
    endpoint_.cutNothing();
    EXPECT_TRUE(nobodyStays(endpoint_));
    if (outcome.error.empty()) {
      // The drop of a work table behind the result; or there were fewer packets than before, because the answer to an
      // attention was one with what it ended.
      EXPECT_EQ(outcome.shown, whole.shown) << "what did not fail is whole";
      return false;
    }
    EXPECT_THAT(outcome.error, AnyOf(HasSubstr("the connection to the database server is lost: "),
                                     HasSubstr("cannot connect to the database server: ")));
    EXPECT_THAT(outcome.error, AllOf(Not(HasSubstr("geheim")), Not(HasSubstr("\n"))));
    return true;
  }

  // Which packets are cut, and how.
  enum class Cuts {
    eachInEveryWay,
    eachInOneWay,  // the three ways by turns
    someInOneWay   // every 29th packet
  };

  template <typename Command>
  void cutEverywhere(Cuts cuts, Command command) {
    const int before = endpoint_.packets();
    const Outcome whole = outcomeOf(command);
    const int packets = endpoint_.packets() - before;
    ASSERT_EQ(whole.error, "");
    ASSERT_GT(whole.shown.size(), 100U) << "there is something to lose";
    int runs = 0, failed = 0;
    for (int packet = 0; packet < packets; packet += cuts == Cuts::someInOneWay ? 29 : 1) {
      for (const Cut cut : {Cut::betweenPackets, Cut::withinPacket, Cut::reset}) {
        if (cuts != Cuts::eachInEveryWay && static_cast<int>(cut) != packet % 3) continue;
        ++runs;
        failed += cutAt(packet, cut, whole, command) ? 1 : 0;
      }
    }
    std::cout << packets << " packets, " << runs << " connections cut, " << failed << " told\n";
    EXPECT_GT(failed, runs * 9 / 10);
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
    account::testing::dropLeftovers(*account);
    EXPECT_EQ(outcomeOf(command).shown, whole.shown) << "the server serves on";
  }

  static auto report(const char* name, std::vector<std::string> settings) {
    return
        [name, settings = std::move(settings)](const AccountSource& account, std::ostream& out, std::ostream& notes) {
          runReport({.report = name,
                     .account = account,
                     .settings = settings,
                     .format = ReportFormat::csv,
                     .language = Language::english},
                    out, notes);
        };
  }

  static constexpr unsigned longestSeconds = 600;
};

const std::string oneMonth = "dKeepDate=2024-03-01..2024-03-31";

TEST_F(CutOverTds, ReceiptIssueBalance) {
  cutEverywhere(Cuts::eachInEveryWay, report("sfc-item", {oneMonth}));
}

TEST_F(CutOverTds, OutboundSummary) {
  cutEverywhere(Cuts::eachInEveryWay, report("outsum-item", {oneMonth}));
}

TEST_F(CutOverTds, DetailLedger) {
  cutEverywhere(Cuts::eachInOneWay, report("fx-detail", oneInventory()));
}

TEST_F(CutOverTds, CostItemVoucherReport) {
  cutEverywhere(Cuts::eachInOneWay, report("fx-wt", {oneMonth}));
}

TEST_F(CutOverTds, ALongResult) {
  cutEverywhere(Cuts::someInOneWay, report("fx-wt", {}));
}

TEST_F(CutOverTds, Dialog) {
  cutEverywhere(Cuts::eachInEveryWay, [](const AccountSource& account, std::ostream& out, std::ostream& notes) {
    runDialog({.report = "sfc-item", .account = account, .format = DialogFormat::json}, out, notes);
  });
}

TEST_F(CutOverTds, DrillThrough) {
  cutEverywhere(Cuts::eachInOneWay, [](const AccountSource& account, std::ostream& out, std::ostream& notes) {
    runDrill({.report = {.report = "fx-detail", .account = account, .settings = oneInventory()},
              .row = {"RowNo=2"},
              .format = DrillFormat::json},
             out, notes);
  });
}

}  // namespace
}  // namespace quillon::workbench
