// Every call of a filter dialog's callbacks fails once: the error is passed on, and the callback, called again on the
// same thread and dialog, leaves the dialog as if nothing had happened.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "filters/filter_control.h"
#include "filters/sfc_filter_control.h"
#include "filters/wt_filter_control.h"
#include "tests/faults/fault_count.h"
#include "tests/faults/fault_injector.h"
#include "tests/faults/fault_run.h"
#include "tests/faults/scenarios.h"
#include "tests/faults/thread.h"
#include "tests/faults/tiny_account.h"
#include "workbench/platform/filter_dialog_object.h"

namespace quillon::faults {
namespace {

using workbench::FilterDialogObject;
using workbench::FilterObject;
using workbench::ReportRegistration;

// A dialog as the user sees it.
template <class Control>
struct Dialog {
  Dialog(Thread& thread, const TinyAccount& account, const ReportRegistration& report)
      : module(thread.module),
        filter(std::make_shared<FilterObject>(report, workbench::InitialValues::none)),
        inner(filter, account.login(), account.openSession()),
        port(intercepted(thread.injector, inner)),
        control(thread.module) {}

  Module& module;
  std::shared_ptr<FilterObject> filter;
  FilterDialogObject inner;
  std::unique_ptr<FilterDialog> port;
  Control control;
};

// What a callback does, and what the user did before it.
template <class Control>
struct Callback {
  std::string subject;
  std::function<void(Dialog<Control>&)> before;
  // Gives what the callback gave, as text.
  std::function<std::string(Dialog<Control>&)> run;
  // What that is when nothing fails.
  std::string gives = {};
};

template <class Control>
void initialise(Dialog<Control>& dialog) {
  dialog.control.filterInit(*dialog.port);
}

template <class Control>
void surviveCallback(const TinyAccount& account, const ReportRegistration& report, const Callback<Control>& callback,
                     std::size_t atLeast = 1) {
  // The dialog holds its own connection.
  constexpr int dialogsOwn = 1;
  constexpr bool opensSession = !std::is_same_v<Control, FilterControl>;

  std::string result;
  const auto run = [&](Thread& thread, Dialog<Control>& dialog, std::size_t failAt) {
    return runWithFault(thread.injector, failAt, [&] { result = callback.run(dialog); });
  };

  Thread counted(account);
  std::string expectedState;
  {
    Dialog<Control> dialog(counted, account, report);
    callback.before(dialog);
    const Ending ending = run(counted, dialog, 0);
    ASSERT_FALSE(ending.has_value()) << ending->description();
    expectedState = stateOf(*dialog.filter);
    EXPECT_EQ(result, callback.gives) << callback.subject;
  }
  const std::string expectedShown = counted.shown;
  const std::size_t calls = counted.injector.calls().size();
  EXPECT_GE(calls, atLeast) << callback.subject;

  FaultCount faultCount(callback.subject, "calls");
  for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
    faultCount.tryFault([&] {
      Thread thread(account);
      const FaultInjector& injector = thread.injector;
      {
        Dialog<Control> dialog(thread, account, report);
        callback.before(dialog);
        const int sharedBefore = injector.liveObjects(ObjectKind::sharedComponent);
        const int sessionsBefore = injector.liveObjects(ObjectKind::session);
        const int loginsBefore = injector.liveObjects(ObjectKind::login);
        const Ending ending = run(thread, dialog, failAt);
        SCOPED_TRACE("call " + std::to_string(failAt) + " of " + callback.subject);
        expectPassedOn(ending, injector, failAt);
        EXPECT_EQ(thread.shown, "") << "the user was told all the same";
        EXPECT_EQ(injector.liveObjects(ObjectKind::other), 0);
        const auto was = [&](std::string_view member) { return answered(injector, failAt, member); };
        EXPECT_EQ(injector.liveObjects(ObjectKind::sharedComponent),
                  sharedBefore + was("Platform.createPublicComponent") + was("Platform.createResourceService"));
        // A new session and a new login replace those of an earlier start.
        EXPECT_EQ(injector.liveObjects(ObjectKind::session),
                  std::max(sessionsBefore, dialogsOwn + was("Platform.createSession")));
        EXPECT_GE(injector.liveObjects(ObjectKind::login), loginsBefore);
        EXPECT_LE(injector.liveObjects(ObjectKind::login), 1);

        const Ending again = run(thread, dialog, 0);
        EXPECT_FALSE(again.has_value()) << again->description();
        EXPECT_EQ(stateOf(*dialog.filter), expectedState);
        EXPECT_EQ(result, callback.gives);
        EXPECT_EQ(thread.shown, expectedShown);
      }
      // A dialog leaves its session open for as long as the thread lives or another takes its place.
      EXPECT_EQ(injector.liveObjects(ObjectKind::session), opensSession ? 1 : 0);
      EXPECT_EQ(injector.liveObjects(ObjectKind::other), 0);
      EXPECT_EQ(account.newTables(), std::vector<std::string>());
    });
  }
}

// The callbacks by the names that the platform calls them.

template <class Control>
Callback<Control> filterInit(const std::string& subject) {
  return {.subject = subject + ", CallBack_FilterInit",
          .before = [](Dialog<Control>&) {},
          .run =
              [](Dialog<Control>& dialog) {
                initialise(dialog);
                return std::string();
              }};
}

// The user changes item `key` to `value` in a dialog that has begun.
template <class Control>
Callback<Control> valueChange(const std::string& subject, const std::string& key, const std::string& value) {
  return {.subject = subject + ", CallBack_ValueChange of " + key,
          .before =
              [key, value](Dialog<Control>& dialog) {
                initialise(dialog);
                dialog.filter->find(key)->value = value;
              },
          .run =
              [key](Dialog<Control>& dialog) {
                dialog.control.valueChange(key, *dialog.port);
                return std::string();
              }};
}

// --- clsSFCFilterControl ------------------------------------------------------------------------------------------------

TEST(DialogCalls, ReceiptIssueBalance) {
  const ReportRegistration report = balanceDialog();
  const std::string subject = "sfc-item dialog";
  surviveCallback(byInventory(), report, filterInit<SfcFilterControl>(subject), 40);
  surviveCallback(byInventory(), report, valueChange<SfcFilterControl>(subject, "cInvClass", "04"), 3);
  surviveCallback(byInventory(), report, valueChange<SfcFilterControl>(subject, "cModal", "1"), 4);
  surviveCallback(byInventory(), report, valueChange<SfcFilterControl>(subject + " by inventory", "iYear", "2024"), 8);
  surviveCallback(byWarehouse(), report, valueChange<SfcFilterControl>(subject + " by warehouse", "iYear", "2023"), 10);
}

TEST(DialogCalls, OutboundSummary) {
  const ReportRegistration report = outboundDialog();
  const std::string subject = "outsum-item dialog";
  surviveCallback(byWarehouse(), report, filterInit<SfcFilterControl>(subject), 60);
  surviveCallback(byWarehouse(), report, valueChange<SfcFilterControl>(subject, "cInvCCode", "04"), 3);
  surviveCallback(byWarehouse(), report, valueChange<SfcFilterControl>(subject, "iYear", "2024"), 40);
  // No issues in that year: the fall-back lists.
  surviveCallback(byDepartment(), report, valueChange<SfcFilterControl>(subject + " without issues", "iYear", "2023"),
                  20);
}

// The dialog of another report only gets its session.
TEST(DialogCalls, AnotherReportsDialogOfTheSummaryReports) {
  ReportRegistration report = balanceDialog();
  report.identifier = "00000000-0000-0000-0000-000000000000";
  surviveCallback(byWarehouse(), report, filterInit<SfcFilterControl>("another report's dialog"), 8);
}

TEST(DialogCalls, ViewsAndListsOfTheSummaryReports) {
  const auto begun = [](Dialog<SfcFilterControl>& dialog) { initialise(dialog); };
  surviveCallback<SfcFilterControl>(
      byWarehouse(), balanceDialog(),
      {.subject = "sfc-item dialog, CallBack_ReportViewInit and -Change",
       .before = begun,
       .run = [](Dialog<SfcFilterControl>& dialog) { return SfcFilterControl::reportView(*dialog.port); },
       .gives = "cross"},
      2);
  surviveCallback<SfcFilterControl>(byWarehouse(), balanceDialog(),
                                    {.subject = "clsSFCFilterControl, InitYear",
                                     .before = begun,
                                     .run =
                                         [](Dialog<SfcFilterControl>& dialog) {
                                           dialog.control.initYear();
                                           return dialog.control.years().at(0);
                                         },
                                     .gives = "2024"},
                                    5);
  surviveCallback<SfcFilterControl>(byWarehouse(), balanceDialog(),
                                    {.subject = "clsSFCFilterControl, InitGrade",
                                     .before = begun,
                                     .run =
                                         [](Dialog<SfcFilterControl>& dialog) {
                                           dialog.control.initGrade();
                                           return std::to_string(dialog.control.grades().size());
                                         },
                                     .gives = "3"},
                                    4);
}

// --- clsWtFilterControl -------------------------------------------------------------------------------------------------

TEST(DialogCalls, VoucherReport) {
  const ReportRegistration report = voucherDialog();
  const std::string subject = "fx-wt dialog";
  surviveCallback(byWarehouse(), report, filterInit<WtFilterControl>(subject), 40);
  surviveCallback(byDepartment(), report, filterInit<WtFilterControl>(subject + " by department"), 40);
  for (const char* key : {"Inventory.cInvCCode", "Customer.cCCCode", "Vendor.cVCCode"})
    surviveCallback(byWarehouse(), report, valueChange<WtFilterControl>(subject, key, "01"), 3);
  ReportRegistration another = report;
  another.identifier = "00000000-0000-0000-0000-000000000000";
  surviveCallback(byWarehouse(), another, filterInit<WtFilterControl>("another report's fx-wt dialog"), 8);
}

// --- clsFilterControl ---------------------------------------------------------------------------------------------------

// The user confirms a dialog with these values; Cancel's cause, the key of an item, is what the callback gives.
Callback<FilterControl> filterClick(const std::string& subject,
                                    const std::vector<std::pair<std::string, std::string>>& values,
                                    const std::string& gives) {
  return {
      .subject = subject + ", CallBack_FilterClick",
      .before =
          [values](Dialog<FilterControl>& dialog) {
            initialise(dialog);
            for (const auto& [key, value] : values)
              dialog.filter->find(key)->value = value;
          },
      .run =
          [](Dialog<FilterControl>& dialog) { return dialog.control.filterClick(*dialog.port).value_or("complete"); },
      .gives = gives};
}

TEST(DialogCalls, DetailLedger) {
  const ReportRegistration report = ledgerDialog();
  const std::string subject = "fx-detail dialog";
  surviveCallback(byWarehouse(), report, filterInit<FilterControl>(subject), 30);
  surviveCallback(byWarehouse(), report, valueChange<FilterControl>(subject, "cInvCCode", "04"), 3);
  surviveCallback(byWarehouse(), report, valueChange<FilterControl>(subject + " by warehouse", "iYear", "2024"), 10);
  surviveCallback(byInventory(), report, valueChange<FilterControl>(subject + " by inventory", "iYear", "2024"), 10);
  surviveCallback<FilterControl>(
      byWarehouse(), report,
      {.subject = subject + ", CallBack_ReportViewInit and -Change",
       .before = initialise<FilterControl>,
       .run = [](Dialog<FilterControl>& dialog) { return FilterControl::reportView(*dialog.port).value_or("none"); },
       .gives = "IA_FXDetail_FXClass"},
      10);
}

TEST(DialogCalls, RefusalsOfTheDetailLedger) {
  const ReportRegistration report = ledgerDialog();
  const std::pair<std::string, std::string> inventory = {"cInvCode", std::string(TinyAccount::inventory)};
  const std::pair<std::string, std::string> freeItem = {"cFree1", "red"};
  const std::string subject = "fx-detail dialog";
  surviveCallback(byWarehouse(), report, filterClick(subject + " without a warehouse", {inventory}, "cWhCode"), 30);
  surviveCallback(byDepartment(), report, filterClick(subject + " without a department", {inventory}, "cDepCode"), 30);
  surviveCallback(byInventory(), report,
                  filterClick(subject + " without a free item", {inventory, {"cBatchIA", "B1"}}, "cFree1"), 30);
  surviveCallback(byInventory(), report, filterClick(subject + " without a batch", {inventory, freeItem}, "cBatchIA"),
                  30);
  surviveCallback(byInventory(), report,
                  filterClick(subject + " complete", {inventory, freeItem, {"cBatchIA", "B1"}}, "complete"), 30);
}

}  // namespace
}  // namespace quillon::faults
