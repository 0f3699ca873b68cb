// Every call of a report run fails once: what the report then does, what it leaves in the account and with the thread,
// and that the next run on the thread is right.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/module.h"
#include "reports/fx_detail/fx_detail.h"
#include "reports/fx_wt/fx_wt.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"
#include "tests/faults/fault_count.h"
#include "tests/faults/fault_injector.h"
#include "tests/faults/fault_run.h"
#include "tests/faults/scenarios.h"
#include "tests/faults/thread.h"
#include "tests/faults/tiny_account.h"
#include "workbench/platform/argument.h"

namespace quillon::faults {
namespace {

using workbench::WorkbenchArgument;

// Under the address sanitizer a run on the account is many times as dear. There the next run is made only where the
// failing one had changed the account; natively after every fault.
#ifdef __SANITIZE_ADDRESS__
constexpr bool alwaysRunAgain = false;
#else
constexpr bool alwaysRunAgain = true;
#endif

// The statements that were run before the failing call.
std::vector<std::string> statementsBefore(const FaultInjector& injector, std::size_t failAt) {
  std::vector<std::string> statements;
  for (std::size_t i = 0; i < injector.calls().size() && i + 1 != failAt; ++i) {
    if (injector.calls()[i].member == "Session.execute") statements.push_back(injector.calls()[i].text);
  }
  return statements;
}

// --- The reports ------------------------------------------------------------------------------------------------------

// What is stated of a report's failures.
struct Rules {
  bool absorbsBuild = false;  // an error inside the build only leaves the connection open
  bool releasesAll = false;   // after a failed run nothing of the account stays with the thread
};
template <class Report>
constexpr Rules rules{.absorbsBuild = true};
template <>
constexpr Rules rules<FxDetail>{.releasesAll = true};
template <>
constexpr Rules rules<FxWt>{};

class ReportCalls : public testing::Test {
 protected:
  static constexpr std::string_view table = "ReportOfFaults";

  // One run; gives how it ended and, in `resultTable`, where the rows are.
  template <class Report>
  static Ending run(Thread& thread, const TinyAccount& account, const std::vector<Item>& items, std::size_t failAt,
                    std::string& resultTable) {
    WorkbenchArgument inner(filterOf(items), account.login(), std::string(table));
    const std::unique_ptr<ReportArgument> argument = intercepted(thread.injector, inner);
    Ending ending = runWithFault(thread.injector, failAt, [&] {
      Report report(thread.module);
      report.getSql(*argument);
    });
    resultTable = inner.dataSourceState().resultTable;
    return ending;
  }

  // A run without a fault: nothing stays but the result, whose rows it gives, and with the thread what it keeps for the
  // next run.
  template <class Report>
  static std::string cleanRun(Thread& thread, const TinyAccount& account, const std::vector<Item>& items) {
    std::string resultTable;
    const Ending ending = run<Report>(thread, account, items, 0, resultTable);
    EXPECT_FALSE(ending.has_value()) << ending->description();
    const std::vector<std::string> tables = account.newTables();
    EXPECT_EQ(tables, std::vector{resultTable});
    EXPECT_EQ(thread.injector.liveObjects(ObjectKind::session), 0);
    EXPECT_EQ(thread.injector.liveObjects(ObjectKind::filter), 0);
    EXPECT_EQ(thread.injector.liveObjects(ObjectKind::other), 0);
    std::string rows = tables.empty() ? std::string() : account.rows("Select * From " + tables.front());
    account.drop(tables);
    return rows;
  }

  // What the thread holds after a run whose call `failAt` failed.
  template <class Report>
  static void expectLiveObjects(const Thread& thread, std::size_t failAt, bool closing) {
    const FaultInjector& injector = thread.injector;
    const auto was = [&](std::string_view member) { return answered(injector, failAt, member); };
    EXPECT_EQ(injector.liveObjects(ObjectKind::filter), 0);
    EXPECT_EQ(injector.liveObjects(ObjectKind::other), 0);
    const bool keeps = !rules<Report>.releasesAll;
    EXPECT_EQ(injector.liveObjects(ObjectKind::session), keeps && !closing ? was("Platform.createSession") : 0);
    EXPECT_EQ(injector.liveObjects(ObjectKind::login), keeps ? was("ReportArgument.login") : 0);
    EXPECT_EQ(injector.liveObjects(ObjectKind::sharedComponent), (keeps ? was("Platform.createPublicComponent") : 0) +
                                                                     was("Platform.createResourceService") +
                                                                     was("Platform.createUniqueNameSource"));
  }

  // Whether the run that is tried gives rows.
  enum class Result { rows, empty };

  template <class Report>
  static void surviveCallFailures(const std::string& subject, const TinyAccount& account,
                                  const std::vector<Item>& items, const std::string& namingNumber = {},
                                  Result result = Result::rows) {
    Thread counted(account, namingNumber);
    const std::string expected = cleanRun<Report>(counted, account, items);
    const std::size_t calls = counted.injector.calls().size();
    EXPECT_EQ(std::ranges::count(expected, '\n') == 1 ? Result::empty : Result::rows, result);
    FaultCount faultCount(subject, "calls");
    for (std::size_t failAt = 1; failAt <= calls; ++failAt)
      faultCount.tryFault([&] { surviveCallFailure<Report>(account, items, namingNumber, failAt, expected); });
  }

  template <class Report>
  static void surviveCallFailure(const TinyAccount& account, const std::vector<Item>& items,
                                 const std::string& namingNumber, std::size_t failAt, const std::string& expected) {
    Thread thread(account, namingNumber);
    const FaultInjector& injector = thread.injector;
    std::string resultTable;
    const Ending ending = run<Report>(thread, account, items, failAt, resultTable);
    ASSERT_GE(injector.calls().size(), failAt) << "the run was not the one that was counted";
    const PortCall failed = injector.calls()[failAt - 1];
    SCOPED_TRACE("call " + std::to_string(failAt) + ": " + shown(failed));

    const bool closing = failed.member == "Session.state" || failed.member == "Session.close";
    const bool absorbed =
        rules<Report>.absorbsBuild && answered(injector, failAt, "DataSource.resultTable") == 1 && !closing;
    if (absorbed) {
      EXPECT_FALSE(ending.has_value()) << "the build's error was passed on: " << ending->description();
      EXPECT_EQ(injector.calls().size(), failAt) << "the build went on after a call had failed";
      ASSERT_NE(thread.module.session, nullptr);
      EXPECT_NE(thread.module.session->state(), stateClosed) << "the connection is not left as it was";
    } else {
      expectPassedOn(ending, injector, failAt);
    }
    expectLiveObjects<Report>(thread, failAt, closing);
    const std::vector<std::string> left = account.newTables();
    const Changes changes = changesOf(statementsBefore(injector, failAt));
    EXPECT_EQ(left, changes.tables);
    account.drop(left);

    if (alwaysRunAgain || changes.any) {
      EXPECT_EQ(cleanRun<Report>(thread, account, items), expected);
    }
  }
};

// --- MoveDataDetail on its own -----------------------------------------------------------------------------------------

// The build alone, over the connection that a build which failed at its first call has left open; then once more on the
// same instance, without a fault.
template <class Report>
class MoveDataDetail {
 public:
  // The build begins behind the call `lastBefore`.
  MoveDataDetail(const TinyAccount& account, std::vector<Item> items, std::string_view lastBefore)
      : account_(account), items_(std::move(items)) {
    Run run(*this);
    run.getSql(0);
    const std::vector<PortCall>& calls = run.thread.injector.calls();
    const auto before = std::ranges::find(calls, lastBefore, &PortCall::member);
    if (before == calls.end()) throw std::logic_error("the run does not call " + std::string(lastBefore));
    firstOfBuild_ = static_cast<std::size_t>(before - calls.begin()) + 2;
    expected_ = rows();
  }

  void survive(const std::string& subject) {
    Run counted(*this);
    counted.getSql(firstOfBuild_);
    expectBuilt(counted);
    const std::size_t calls = counted.thread.injector.calls().size();
    FaultCount faultCount(subject, "calls");
    for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
      faultCount.tryFault([&] {
        SCOPED_TRACE("call " + std::to_string(failAt) + " of " + subject);
        surviveFailure(failAt);
      });
    }
  }

 private:
  struct Run {
    explicit Run(const MoveDataDetail& all)
        : thread(all.account_),
          inner(filterOf(all.items_), all.account_.login(), "ReportOfFaults"),
          argument(intercepted(thread.injector, inner)),
          report(thread.module) {}

    void getSql(std::size_t failAt) {
      runWithFault(thread.injector, failAt, [&] { report.getSql(*argument); });
    }
    Ending move(std::size_t failAt) {
      text = "nothing";
      return runWithFault(thread.injector, failAt, [&] { text = report.moveDataDetail(); });
    }

    Thread thread;
    WorkbenchArgument inner;
    std::unique_ptr<ReportArgument> argument;
    Report report;
    std::string text;  // what the member gave
  };

  // The result table's rows; drops it.
  std::string rows() const {
    EXPECT_EQ(account_.newTables(), std::vector<std::string>{"ReportOfFaults"});
    std::string text = account_.rows("Select * From ReportOfFaults");
    account_.drop({"ReportOfFaults"});
    return text;
  }

  static void expectOpenSession(const Run& run) {
    ASSERT_NE(run.thread.module.session, nullptr);
    EXPECT_NE(run.thread.module.session->state(), stateClosed);
    EXPECT_EQ(run.thread.injector.liveObjects(ObjectKind::session), 1);
  }

  // MoveDataDetail without a fault builds, and closes nothing.
  void expectBuilt(Run& run) const {
    EXPECT_FALSE(run.move(0).has_value());
    EXPECT_EQ(run.text, "");
    expectOpenSession(run);
    EXPECT_EQ(rows(), expected_);
  }

  void surviveFailure(std::size_t failAt) const {
    Run run(*this);
    const FaultInjector& injector = run.thread.injector;
    run.getSql(firstOfBuild_);
    expectOpenSession(run);
    EXPECT_EQ(account_.newTables(), std::vector<std::string>());

    const Ending ending = run.move(failAt);
    if (rules<Report>.absorbsBuild) {
      EXPECT_FALSE(ending.has_value()) << ending->description();
      EXPECT_EQ(run.text, " ");
      EXPECT_EQ(injector.calls().size(), failAt) << "the build went on after a call had failed";
    } else {
      expectPassedOn(ending, injector, failAt);
    }
    expectOpenSession(run);
    const std::vector<std::string> left = account_.newTables();
    const Changes changes = changesOf(statementsBefore(injector, failAt));
    EXPECT_EQ(left, changes.tables);
    account_.drop(left);
    if (alwaysRunAgain || changes.any) expectBuilt(run);
  }

  const TinyAccount& account_;
  std::vector<Item> items_;
  std::size_t firstOfBuild_ = 0;
  std::string expected_;
};

// --- Receipt/issue/balance ---------------------------------------------------------------------------------------------

TEST_F(ReportCalls, SfcItemByCostItemClasses) {
  surviveCallFailures<SfcItem>("sfc-item by cost-item classes", byWarehouse(), summaryItems("0"));
}

TEST_F(ReportCalls, SfcItemByCostItems) {
  surviveCallFailures<SfcItem>("sfc-item by cost items", byWarehouse(), summaryItems("1"));
}

TEST_F(ReportCalls, MoveDataDetailOfSfcItem) {
  MoveDataDetail<SfcItem>(byWarehouse(), summaryItems("0"), "DataSource.resultTable")
      .survive("sfc-item, MoveDataDetail");
}

TEST_F(ReportCalls, SfcItemByExpenseTypes) {
  surviveCallFailures<SfcItem>("sfc-item by expense items", byWarehouse(), summaryItems("2"));
}

// The group index is dropped by its bare name, which an account takes when it begins with a letter.
TEST_F(ReportCalls, SfcItemWithBalanceConditions) {
  std::vector<Item> items = summaryItems("1");
  items.push_back({"cFSType", "1"});
  surviveCallFailures<SfcItem>("sfc-item with balance conditions", byWarehouse(), items, "N7");
}

// --- Outbound summary --------------------------------------------------------------------------------------------------

TEST_F(ReportCalls, OutsumItemByCostItemClasses) {
  surviveCallFailures<OutsumItem>("outsum-item by cost-item classes", byWarehouse(), summaryItems("0"));
}

TEST_F(ReportCalls, OutsumItemByCostItems) {
  std::vector<Item> items = summaryItems("1");
  items.push_back({"cSource", "1"});
  surviveCallFailures<OutsumItem>("outsum-item by cost items", byWarehouse(), items);
}

TEST_F(ReportCalls, MoveDataDetailOfOutsumItem) {
  MoveDataDetail<OutsumItem>(byWarehouse(), summaryItems("0"), "DataSource.resultTable")
      .survive("outsum-item, MoveDataDetail");
}

TEST_F(ReportCalls, OutsumItemByExpenseItems) {
  surviveCallFailures<OutsumItem>("outsum-item by expense items", byWarehouse(), summaryItems("2"));
}

// --- Detail ledger -----------------------------------------------------------------------------------------------------

TEST_F(ReportCalls, FxDetailByWarehouse) {
  surviveCallFailures<FxDetail>("fx-detail by warehouse", byWarehouse(),
                                ledgerItems({{"iYear", "2024"},
                                             {"cInvCode", std::string(TinyAccount::inventory)},
                                             {"cWhCode", std::string(TinyAccount::warehouse)},
                                             {"dKeepDate", "2024-05-01", "2024-07-31"}}));
}

TEST_F(ReportCalls, FxDetailByDepartment) {
  const std::string department = byDepartment().value(
      "Select Top 1 cAccDep From ia_subsidiary Where cInvCode = N'0402-00019' And cAccDep Is Not Null");
  surviveCallFailures<FxDetail>(
      "fx-detail by department", byDepartment(),
      ledgerItems({{"iYear", "2024"}, {"cInvCode", std::string(TinyAccount::inventory)}, {"cDepCode", department}}));
}

// Cost items start in 2024: an empty result.
TEST_F(ReportCalls, FxDetailOfAYearWithoutCostItems) {
  surviveCallFailures<FxDetail>("fx-detail of a year without cost items", byWarehouse(),
                                ledgerItems({{"iYear", "2023"},
                                             {"cInvCode", std::string(TinyAccount::inventory)},
                                             {"cWhCode", std::string(TinyAccount::warehouse)}}),
                                {}, Result::empty);
}

TEST_F(ReportCalls, FxDetailByInventory) {
  surviveCallFailures<FxDetail>("fx-detail by inventory", byInventory(),
                                ledgerItems({{"iYear", "2024"}, {"cInvCode", std::string(TinyAccount::inventory)}}));
}

// --- Voucher report ----------------------------------------------------------------------------------------------------

TEST_F(ReportCalls, FxWt) {
  surviveCallFailures<quillon::FxWt>("fx-wt", byWarehouse(), voucherItems());
}

TEST_F(ReportCalls, MoveDataDetailOfFxWt) {
  MoveDataDetail<quillon::FxWt>(byWarehouse(), voucherItems(), "ReportArgument.languageId")
      .survive("fx-wt, MoveDataDetail");
}

}  // namespace
}  // namespace quillon::faults
