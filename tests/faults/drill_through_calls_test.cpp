// Every call of a drill-through fails once: the error is passed on, session and login are released, and the next
// drill-through on the thread opens its document. And every call of Execute of the summary reports, which never fails.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

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

namespace quillon::faults {
namespace {

using workbench::RowValues;
using workbench::WorkbenchArgument;

class KeptBusiness final : public BusinessObject {};

template <class Report>
Ending execute(Thread& thread, const RowValues& row, const std::string& action, std::size_t failAt) {
  WorkbenchArgument inner(byWarehouse().login(), row, action);
  const std::unique_ptr<ReportArgument> argument = intercepted(thread.injector, inner);
  thread.module.business = std::make_shared<KeptBusiness>();
  return runWithFault(thread.injector, failAt, [&] {
    Report report(thread.module);
    report.execute(*argument);
  });
}

// A drill-through without a fault; gives what it showed. The thread keeps what it can use again.
template <class Report>
std::string cleanDrillThrough(Thread& thread, const RowValues& row, const std::string& action) {
  thread.shown.clear();
  const Ending ending = execute<Report>(thread, row, action, 0);
  EXPECT_FALSE(ending.has_value()) << ending->description();
  EXPECT_EQ(thread.injector.liveObjects(), thread.injector.liveObjects(ObjectKind::sharedComponent));
  return thread.shown;
}

template <class Report>
void surviveDrillThrough(const std::string& subject, const RowValues& row, const std::string& action,
                         const std::string& shown) {
  Thread counted(byWarehouse());
  ASSERT_EQ(cleanDrillThrough<Report>(counted, row, action), shown);
  const std::size_t calls = counted.injector.calls().size();
  FaultCount faultCount(subject, "calls");
  for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
    faultCount.tryFault([&] {
      Thread thread(byWarehouse());
      const FaultInjector& injector = thread.injector;
      const Ending ending = execute<Report>(thread, row, action, failAt);
      SCOPED_TRACE("call " + std::to_string(failAt) + " of " + subject);
      expectPassedOn(ending, injector, failAt);
      EXPECT_EQ(thread.shown, "") << "a document was shown all the same";
      EXPECT_EQ(thread.module.session, nullptr);
      EXPECT_EQ(thread.module.login, nullptr);
      const int kept = answered(injector, failAt, "Platform.createPublicComponent") +
                       answered(injector, failAt, "Platform.createResourceService");
      EXPECT_EQ(injector.liveObjects(ObjectKind::sharedComponent), kept);
      EXPECT_EQ(injector.liveObjects(), kept);
      EXPECT_EQ(byWarehouse().newTables(), std::vector<std::string>());
      EXPECT_EQ(cleanDrillThrough<Report>(thread, row, action), shown);
    });
  }
}

TEST(DrillThroughCalls, SourceVouchers) {
  surviveDrillThrough<FxDetail>("fx-detail, a source document", rowOfType("32"), "Vouch", "ShowVoucher\n");
  surviveDrillThrough<FxDetail>("fx-detail, an issue adjustment", rowOfType("20"), "Vouch", "ShowVoucher\n");
  surviveDrillThrough<FxDetail>("fx-detail, an issue adjustment by cost item",
                                rowOf("cVouType = N'21' And cBusType = N'分项调整' Order By AutoID", "21"), "Vouch",
                                "ShowProJust\n");
  surviveDrillThrough<FxDetail>("fx-detail, a write-back", rowOfType("24"), "Vouch", "ShowVoucher\n");
  surviveDrillThrough<FxDetail>("fx-detail, a planned price adjustment", rowOfType("22"), "Vouch",
                                "ShowCostJustVouch\n");
  // The component finds a difference carry-over by its line, so any will do.
  surviveDrillThrough<FxDetail>("fx-detail, a difference carry-over", rowOf("cVouType = N'20' Order By AutoID", "35"),
                                "Vouch", "ShowDifVouchs\n");
  surviveDrillThrough<quillon::FxWt>("fx-wt, a source document", rowOfType("32"), "Vouch", "ShowVoucher\n");
}

TEST(DrillThroughCalls, LedgerVouchers) {
  const RowValues posted = postedRow();
  surviveDrillThrough<FxDetail>("fx-detail, a general-ledger voucher", posted, "", "StartUpPz\n");
  surviveDrillThrough<quillon::FxWt>("fx-wt, a general-ledger voucher", posted, "", "StartUpPz\n");
  RowValues notPosted = posted;
  for (auto& [column, value] : notPosted) {
    if (column == "cPZID") value.clear();
  }
  const std::string told = [&] {
    Thread thread(byWarehouse());
    return thread.inner.createResourceService()->text("Mirel.IA.CHHSSQL.02787") + "\n";
  }();
  surviveDrillThrough<FxDetail>("fx-detail, a row without a voucher", notPosted, "", told);
}

TEST(DrillThroughCalls, ABalanceHasNoDocument) {
  surviveDrillThrough<FxDetail>("fx-detail, a balance", {{"cVouType", ""}}, "Vouch", "");
}

// A failing step is passed over and the next one runs; the session and the tables are not touched.
template <class Report>
void surviveExecute(const std::string& subject) {
  const std::vector<std::string> steps = {"ReportArgument.action", "ReportArgument.login",
                                          "Platform.createDrillThroughHelper", "DrillThroughHelper.filterFor"};
  FaultCount faultCount(subject, "calls");
  for (std::size_t failAt = 1; failAt <= steps.size(); ++failAt) {
    faultCount.tryFault([&] {
      Thread thread(byWarehouse());
      const FaultInjector& injector = thread.injector;
      WorkbenchArgument inner(byWarehouse().login(), RowValues(), "Link");
      const std::unique_ptr<ReportArgument> argument = intercepted(thread.injector, inner);
      Report report(thread.module);
      EXPECT_FALSE(runWithFault(thread.injector, failAt, [&] { report.execute(*argument); }).has_value());
      std::vector<std::string> called;
      for (const PortCall& call : injector.calls())
        called.push_back(call.member);
      std::vector<std::string> expected = steps;
      // Without the helper there is nobody to ask for a filter; without a login it is asked all the same.
      if (failAt == 3) expected.pop_back();
      EXPECT_EQ(called, expected);
      EXPECT_EQ(injector.liveObjects(), 0);
      EXPECT_EQ(byWarehouse().newTables(), std::vector<std::string>());
    });
  }
}

TEST(DrillThroughCalls, ExecuteOfTheSummaryReportsNeverFails) {
  surviveExecute<SfcItem>("sfc-item, Execute");
  surviveExecute<OutsumItem>("outsum-item, Execute");
}

}  // namespace
}  // namespace quillon::faults
