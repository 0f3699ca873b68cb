// Every call that Quillon.dll makes through COM fails once, of the classes that it creates, the names that it looks up
// and the members that it calls: which error a report, a drill-through or a dialog's callback then gives through
// HRESULT and IErrorInfo or EXCEPINFO, what stays in the account and with the thread. The next run of a report is made here where the
// failing one had changed the account; next_run_test.cpp has it after every fault, on a platform without an account.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "automation/late_bound.h"
#include "automation/text.h"
#include "automation/variant.h"
#include "component/platform_bindings.h"
#include "component/quillon_interfaces.h"
#include "tests/faults/com/com_thread.h"
#include "tests/faults/fault_count.h"
#include "tests/faults/scenarios.h"
#include "workbench/com/argument_object.h"
#include "workbench/com/exposed_platform.h"
#include "workbench/com/filter_objects.h"
#include "workbench/platform/filter_dialog_object.h"

namespace quillon::faults {
namespace {

using automation::ComPtr;
using automation::Variant;
using workbench::RowValues;
using workbench::WorkbenchArgument;

// With every second fault the library is called early-bound, with the others late-bound.
bool earlyBound(std::size_t failAt) {
  return failAt % 2 == 1;
}

template <typename Call>
Ending lateBound(Call call) {
  try {
    call();
    return std::nullopt;
  } catch (const AutomationError& error) {
    return error;
  }
}

// Creates an instance as the platform does; a failure is what IErrorInfo says of it.
template <class Interface, class Class>
ComPtr<Interface> create(ComThread& thread, Ending& ending) {
  HRESULT code = S_OK;
  ComPtr<Interface> instance = thread.library.create<Interface>(__uuidof(Class), &code);
  if (FAILED(code)) {
    ComPtr<IErrorInfo> info;
    automation::Bstr source;
    automation::Bstr description;
    if (GetErrorInfo(0, info.out()) == S_OK) {
      static_cast<void>(info->GetSource(source.out()));
      static_cast<void>(info->GetDescription(description.out()));
    }
    ending = AutomationError(code, source.utf8(), description.utf8());
  }
  return instance;
}

// A new instance whose member `early` (slot) or `late` (name) is called with the argument object.
template <class Interface, class Class>
Ending callReport(ComThread& thread, HRESULT (STDMETHODCALLTYPE Interface::*early)(IDispatch**), const wchar_t* late,
                  const ComPtr<IDispatch>& e, std::size_t failAt) {
  Ending ending;
  const ComPtr<Interface> instance = create<Interface, Class>(thread, ending);
  if (!instance) return ending;
  IDispatch* reference = e.get();
  if (earlyBound(failAt)) return endingOf((instance.get()->*early)(&reference), *instance, __uuidof(Interface));
  return lateBound([&] {
    automation::LateBound(ComPtr<IDispatch>(instance), "report").call(late, {Variant::reference(reference)});
  });
}

// --- Reports ------------------------------------------------------------------------------------------------------------

// What is stated of a report's failures.
struct Rules {
  bool absorbsBuild = false;  // an error inside the build only leaves the connection open
  bool releasesAll = false;   // after a failed run nothing of the account stays with the thread
};

const ComCall resultTableRead{CallKind::invoke, "DataSource", "SQL"};

bool closing(const ComCall& call) {
  return call.object == "ADODB.Connection" && (call.member == "State" || call.member == "Close");
}

template <class Interface, class Class>
class ReportFaultRuns {
 public:
  ReportFaultRuns(std::string subject, const TinyAccount& account, std::vector<Item> items, Rules rules)
      : subject_(std::move(subject)),
        account_(account),
        items_(std::move(items)),
        rules_(rules),
        login_(account.login()) {}

  void survive() {
    std::string expected;
    {
      ComThread thread(injector_, account_);
      expected = cleanRun(thread);
    }
    const std::size_t calls = injector_.calls().size();
    const component::test::QuillonLibrary library;
    FaultCount faultCount(subject_, "calls");
    for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
      faultCount.tryFault([&] {
        surviveFailure(failAt, expected);
        EXPECT_EQ(injector_.liveProxies, 0) << "an object of the platform is left over";
        EXPECT_EQ(automation::LiveCount::value(), 0) << "an object of the platform is left over";
        EXPECT_EQ(library.canUnload(), S_OK);
      });
    }
  }

 private:
  Ending run(ComThread& thread, std::size_t failAt, std::string& resultTable) {
    const auto argument = std::make_shared<WorkbenchArgument>(filterOf(items_), login_, "ReportOfFaults");
    thread.log->statements.clear();
    Ending ending;
    {
      const ComPtr<IDispatch> e = intercepted(injector_, "e", workbench::argumentObject(argument));
      injector_.start(failAt);
      ending = callReport<Interface, Class>(thread, &Interface::GETSQL, L"GETSQL", e, failAt);
      injector_.stop();
    }
    resultTable = argument->dataSourceState().resultTable;
    return ending;
  }

  // A run without a fault: nothing stays but the result, whose rows it gives, and the library can be unloaded.
  std::string cleanRun(ComThread& thread) {
    std::string resultTable;
    const Ending ending = run(thread, 0, resultTable);
    EXPECT_FALSE(ending.has_value()) << ending->description();
    const std::vector<std::string> tables = account_.newTables();
    EXPECT_EQ(tables, std::vector{resultTable});
    std::string rows = tables.empty() ? std::string() : account_.rows("Select * From " + tables.front());
    account_.drop(tables);
    EXPECT_EQ(thread.library.canUnload(), S_OK);
    return rows;
  }

  void surviveFailure(std::size_t failAt, const std::string& expected) {
    ComThread thread(injector_, account_);
    const ComFaultInjector& injector = injector_;
    std::string resultTable;
    const Ending ending = run(thread, failAt, resultTable);
    ASSERT_GE(injector.calls().size(), failAt) << "the run was not the one that was counted";
    const ComCall failed = injector.calls()[failAt - 1];
    SCOPED_TRACE("call " + std::to_string(failAt) + ": " + failed.shown());

    if (rules_.absorbsBuild && answered(injector, failAt, resultTableRead) == 1 && !closing(failed)) {
      EXPECT_FALSE(ending.has_value()) << "the build's error was passed on: " << ending->description();
      EXPECT_EQ(injector.calls().size(), failAt) << "the build went on after a call had failed";
    } else {
      expectPassedOn(ending, injector, failAt);
    }

    const auto made = [&](const char* progId) { return answered(injector, failAt, {CallKind::create, progId, ""}); };
    const bool keeps = !rules_.releasesAll;
    const int session = keeps && !closing(failed) ? made("ADODB.Connection") : 0;
    const int login = keeps ? answered(injector, failAt, {CallKind::invoke, "e", "Login"}) : 0;
    const int shared =
        (keeps ? made("IA_Pub.ClsIAPub") : 0) + made("OrvPlatform.ResourceService") + made("OrvPlatform.UniqueName");
    EXPECT_EQ(injector.liveProxies, session + login + shared);
    // A connection that was left open cannot be made again; all else can. Asking takes nothing away.
    EXPECT_EQ(thread.library.canUnload(), session == 0 ? S_OK : S_FALSE);
    EXPECT_EQ(injector_.liveProxies, session + login + shared);

    const std::vector<std::string> left = account_.newTables();
    const Changes changes = changesOf(thread.log->statements);
    EXPECT_EQ(left, changes.tables);
    account_.drop(left);
    if (changes.any) {
      EXPECT_EQ(cleanRun(thread), expected);
    }
  }

  std::string subject_;
  const TinyAccount& account_;
  std::vector<Item> items_;
  Rules rules_;
  std::shared_ptr<Login> login_;
  ComFaultInjector injector_;
};

constexpr Rules absorbing{.absorbsBuild = true};
constexpr Rules releasing{.releasesAll = true};

TEST(ComCalls, SfcItem) {
  using FaultRuns = ReportFaultRuns<_clsSFC_Item, clsSFC_Item>;
  FaultRuns("sfc-item by cost-item classes", byWarehouse(), summaryItems("0"), absorbing).survive();
  FaultRuns("sfc-item by cost items", byWarehouse(), summaryItems("1"), absorbing).survive();
  FaultRuns("sfc-item by expense items", byWarehouse(), summaryItems("2"), absorbing).survive();
}

TEST(ComCalls, OutsumItem) {
  using FaultRuns = ReportFaultRuns<_clsOutsum_Item, clsOutsum_Item>;
  FaultRuns("outsum-item by cost-item classes", byWarehouse(), summaryItems("0"), absorbing).survive();
  FaultRuns("outsum-item by cost items", byWarehouse(), summaryItems("1"), absorbing).survive();
  FaultRuns("outsum-item by expense items", byWarehouse(), summaryItems("2"), absorbing).survive();
}

TEST(ComCalls, FxDetail) {
  using FaultRuns = ReportFaultRuns<_clsFXDetail, clsFXDetail>;
  const Item inventory = {"cInvCode", std::string(TinyAccount::inventory)};
  const Item warehouse = {"cWhCode", std::string(TinyAccount::warehouse)};
  FaultRuns("fx-detail by warehouse", byWarehouse(),
            ledgerItems({{"iYear", "2024"}, inventory, warehouse, {"dKeepDate", "2024-05-01", "2024-05-31"}}),
            releasing)
      .survive();
  FaultRuns("fx-detail by inventory", byInventory(), ledgerItems({{"iYear", "2024"}, inventory}), releasing).survive();
}

TEST(ComCalls, FxWt) {
  ReportFaultRuns<_clsFXWt, clsFXWt>("fx-wt", byWarehouse(), voucherItems(), {}).survive();
}

// --- Execute ------------------------------------------------------------------------------------------------------------

template <class Interface, class Class>
Ending execute(ComThread& thread, ComFaultInjector& injector, const std::shared_ptr<WorkbenchArgument>& argument,
               std::size_t failAt) {
  const ComPtr<IDispatch> e = intercepted(injector, "e", workbench::argumentObject(argument));
  thread.shown.clear();
  injector.start(failAt);
  Ending ending = callReport<Interface, Class>(thread, &Interface::Execute, L"Execute", e, failAt);
  injector.stop();
  return ending;
}

// The error is passed on, and the next drill-through opens its document. Each fault has a thread of its own, because a
// thread keeps the public component and the resource service.
template <class Interface, class Class>
void surviveDrillThrough(const std::string& subject, const RowValues& row, const std::string& action,
                         const std::string& shown) {
  ComFaultInjector injector;
  const auto argument = std::make_shared<WorkbenchArgument>(byWarehouse().login(), row, action);
  const auto expectShown = [&](ComThread& thread) {
    EXPECT_FALSE((execute<Interface, Class>(thread, injector, argument, 0)).has_value());
    EXPECT_EQ(thread.shown, shown);
    EXPECT_EQ(thread.library.canUnload(), S_OK);
  };
  {
    ComThread thread(injector, byWarehouse());
    expectShown(thread);
  }
  const std::size_t calls = injector.calls().size();
  const long alive = automation::LiveCount::value();
  FaultCount faultCount(subject, "calls");
  for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
    faultCount.tryFault([&] {
      {
        ComThread thread(injector, byWarehouse());
        const Ending ending = execute<Interface, Class>(thread, injector, argument, failAt);
        ASSERT_GE(injector.calls().size(), failAt) << "the run was not the one that was counted";
        SCOPED_TRACE("call " + std::to_string(failAt) + ": " + injector.calls()[failAt - 1].shown());
        expectPassedOn(ending, injector, failAt);
        EXPECT_EQ(thread.shown, "") << "a document was shown all the same";
        EXPECT_EQ(injector.liveProxies,
                  answered(injector, failAt, {CallKind::create, "IA_Pub.ClsIAPub", ""}) +
                      answered(injector, failAt, {CallKind::create, "OrvPlatform.ResourceService", ""}));
        EXPECT_EQ(byWarehouse().newTables(), std::vector<std::string>());
        expectShown(thread);
      }
      EXPECT_EQ(injector.liveProxies, 0);
      EXPECT_EQ(automation::LiveCount::value(), alive);
    });
  }
}

TEST(ComCalls, DrillThrough) {
  surviveDrillThrough<_clsFXDetail, clsFXDetail>("fx-detail, a source document", rowOfType("32"), "Vouch",
                                                 "ShowVoucher\n");
  surviveDrillThrough<_clsFXDetail, clsFXDetail>(
      "fx-detail, an issue adjustment by cost item",
      rowOf("cVouType = N'21' And cBusType = N'分项调整' Order By AutoID", "21"), "Vouch", "ShowProJust\n");
  surviveDrillThrough<_clsFXDetail, clsFXDetail>("fx-detail, a planned price adjustment", rowOfType("22"), "Vouch",
                                                 "ShowCostJustVouch\n");
  surviveDrillThrough<_clsFXDetail, clsFXDetail>("fx-detail, a difference carry-over",
                                                 rowOf("cVouType = N'20' Order By AutoID", "35"), "Vouch",
                                                 "ShowDifVouchs\n");
  surviveDrillThrough<_clsFXWt, clsFXWt>("fx-wt, a source document", rowOfType("24"), "Vouch", "ShowVoucher\n");
  surviveDrillThrough<_clsFXDetail, clsFXDetail>("fx-detail, a general-ledger voucher", postedRow(), "", "StartUpPz\n");
  surviveDrillThrough<_clsFXWt, clsFXWt>("fx-wt, a general-ledger voucher", postedRow(), "", "StartUpPz\n");
}

// Execute of a summary report passes over a failing step. Only the making of its instance can fail.
template <class Interface, class Class>
void surviveExecute(const std::string& subject) {
  ComFaultInjector injector;
  ComThread thread(injector, byWarehouse());
  const auto argument = std::make_shared<WorkbenchArgument>(byWarehouse().login(), RowValues(), "Link");
  EXPECT_FALSE((execute<Interface, Class>(thread, injector, argument, 0)).has_value());
  const std::size_t calls = injector.calls().size();
  const ComCall lastOfMaking{CallKind::invoke, "OrvPlatform.Naming", "Item"};
  const auto making = std::ranges::find(injector.calls(), lastOfMaking);
  ASSERT_NE(making, injector.calls().end());
  const auto made = static_cast<std::size_t>(making - injector.calls().begin()) + 1;
  FaultCount faultCount(subject, "calls");
  for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
    faultCount.tryFault([&] {
      const Ending ending = execute<Interface, Class>(thread, injector, argument, failAt);
      if (failAt <= made) {
        expectPassedOn(ending, injector, failAt);
      } else {
        EXPECT_FALSE(ending.has_value()) << ending->description();
      }
      EXPECT_EQ(injector.liveProxies, 0);
      EXPECT_EQ(thread.library.canUnload(), S_OK);
    });
  }
}

TEST(ComCalls, ExecuteOfTheSummaryReports) {
  surviveExecute<_clsSFC_Item, clsSFC_Item>("sfc-item, Execute");
  surviveExecute<_clsOutsum_Item, clsOutsum_Item>("outsum-item, Execute");
}

// --- Dialogs ------------------------------------------------------------------------------------------------------------

// A dialog with the instance that serves it.
template <class Interface, class Class>
class Dialog {
 public:
  Dialog(ComThread& thread, ComFaultInjector& injector, const TinyAccount& account,
         const workbench::ReportRegistration& report)
      : filter(std::make_shared<workbench::FilterObject>(report, workbench::InitialValues::none)),
        object_(intercepted(injector, "Filter",
                            workbench::dialogObject(std::make_shared<workbench::FilterDialogObject>(
                                filter, account.login(), account.openSession())))),
        reference_(object_.get()) {
    Ending ending;
    control_ = create<Interface, Class>(thread, ending);
    if (ending) throw AutomationError(*ending);
  }

  // Each callback gives how it ended and leaves in `given` what it gave.
  Ending init(bool early) {
    Variant result;
    if (early) return ended(control_->CallBack_FilterInit(&reference_, &result));
    return late([&](const automation::LateBound& control) { control.get(L"CallBack_FilterInit", {reference()}); });
  }
  Ending change(const char* key, bool early) {
    if (early) {
      automation::Bstr text{std::string_view(key)};
      return ended(control_->CallBack_ValueChange(text.inOut(), &reference_));
    }
    return late([&](const automation::LateBound& control) {
      control.call(L"CallBack_ValueChange", {key, reference()});
    });
  }
  Ending click(bool early) {
    VARIANT_BOOL cancel = VARIANT_FALSE;
    Variant result;
    Variant cancelled(false);
    const Ending ending = early ? ended(control_->CallBack_FilterClick(&reference_, &cancel, &result))
                                : late([&](const automation::LateBound& control) {
                                    control.get(L"CallBack_FilterClick", {reference(), Variant::reference(cancelled)});
                                  });
    given = (early ? cancel != VARIANT_FALSE : automation::toFlag(cancelled)) ? "refused" : "accepted";
    return ending;
  }
  Ending view(bool early) {
    Variant viewClass("before");
    const Ending ending =
        early ? ended(control_->CallBack_ReportViewInit(&reference_, &viewClass))
              : late([&](const automation::LateBound& control) {
                  control.call(L"CallBack_ReportViewInit", {reference(), Variant::reference(viewClass)});
                });
    given = automation::toText(viewClass);
    return ending;
  }

  std::shared_ptr<workbench::FilterObject> filter;
  std::string given;

 private:
  Ending ended(HRESULT code) { return endingOf(code, *control_, __uuidof(Interface)); }
  Variant reference() { return Variant::reference(reference_); }
  template <typename Call>
  Ending late(Call call) {
    return lateBound([&] { call(automation::LateBound(ComPtr<IDispatch>(control_), "control")); });
  }

  ComPtr<IDispatch> object_;
  IDispatch* reference_;
  ComPtr<Interface> control_;
};

// What stays as it is when a callback fails: what the caller handed in for a result.
struct Given {
  std::string whenItFails;
  std::string whenNothingFails;
};

template <class Interface, class Class>
struct Callback {
  std::string subject;
  std::function<void(Dialog<Interface, Class>&)> before;
  std::function<Ending(Dialog<Interface, Class>&, bool early)> run;
  Given given = {};
};

template <class Interface, class Class>
void surviveCallback(const TinyAccount& account, const workbench::ReportRegistration& report,
                     const Callback<Interface, Class>& callback) {
  using OneDialog = Dialog<Interface, Class>;
  ComFaultInjector injector;
  const auto run = [&](ComThread& thread, OneDialog& dialog, std::size_t failAt) {
    thread.shown.clear();
    injector.start(failAt);
    Ending ending = callback.run(dialog, earlyBound(failAt));
    injector.stop();
    return ending;
  };

  std::string expected;
  std::string expectedShown;
  {
    ComThread thread(injector, account);
    OneDialog dialog(thread, injector, account, report);
    callback.before(dialog);
    const Ending ending = run(thread, dialog, 0);
    ASSERT_FALSE(ending.has_value()) << ending->description();
    EXPECT_EQ(dialog.given, callback.given.whenNothingFails);
    expected = stateOf(*dialog.filter);
    expectedShown = thread.shown;
  }
  const std::size_t calls = injector.calls().size();
  EXPECT_GT(calls, 0U);
  const component::test::QuillonLibrary library;

  FaultCount faultCount(callback.subject, "calls");
  for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
    faultCount.tryFault([&] {
      {
        ComThread thread(injector, account);
        OneDialog dialog(thread, injector, account, report);
        callback.before(dialog);
        const Ending ending = run(thread, dialog, failAt);
        ASSERT_GE(injector.calls().size(), failAt) << "the run was not the one that was counted";
        SCOPED_TRACE("call " + std::to_string(failAt) + ": " + injector.calls()[failAt - 1].shown());
        expectPassedOn(ending, injector, failAt);
        EXPECT_EQ(dialog.given, callback.given.whenItFails);
        EXPECT_EQ(thread.shown, "") << "the user was told all the same";
        EXPECT_EQ(library.canUnload(), S_FALSE) << "the instance is there";

        // What was set of the dialog before the failure stays, so the user opens it anew.
        OneDialog next(thread, injector, account, report);
        callback.before(next);
        const Ending again = run(thread, next, 0);
        EXPECT_FALSE(again.has_value()) << again->description();
        EXPECT_EQ(stateOf(*next.filter), expected);
        EXPECT_EQ(next.given, callback.given.whenNothingFails);
        EXPECT_EQ(thread.shown, expectedShown);
      }
      EXPECT_EQ(injector.liveProxies, 0) << "an object of the platform is left over";
      EXPECT_EQ(automation::LiveCount::value(), 0) << "an object of the platform is left over";
      EXPECT_EQ(library.canUnload(), S_OK);
    });
  }
}

template <class Interface, class Class>
Callback<Interface, Class> filterInit(const std::string& subject) {
  return {.subject = subject + ", CallBack_FilterInit",
          .before = [](Dialog<Interface, Class>&) {},
          .run = [](Dialog<Interface, Class>& dialog, bool early) { return dialog.init(early); }};
}

template <class Interface, class Class>
void begin(Dialog<Interface, Class>& dialog) {
  const Ending ending = dialog.init(true);
  EXPECT_FALSE(ending.has_value()) << ending->description();
}

template <class Interface, class Class>
Callback<Interface, Class> valueChange(const std::string& subject, const char* key, const std::string& value) {
  return {.subject = subject + ", CallBack_ValueChange of " + key,
          .before =
              [key, value](Dialog<Interface, Class>& dialog) {
                begin(dialog);
                dialog.filter->find(key)->value = value;
              },
          .run = [key](Dialog<Interface, Class>& dialog, bool early) { return dialog.change(key, early); }};
}

TEST(ComCalls, DialogsOfTheSummaryReports) {
  const auto init = [](const std::string& subject) {
    return filterInit<_clsSFCFilterControl, clsSFCFilterControl>(subject);
  };
  const auto change = [](const std::string& subject, const char* key, const std::string& value) {
    return valueChange<_clsSFCFilterControl, clsSFCFilterControl>(subject, key, value);
  };
  surviveCallback(byInventory(), balanceDialog(), init("sfc-item dialog"));
  surviveCallback(byInventory(), balanceDialog(), change("sfc-item dialog", "cInvClass", "04"));
  surviveCallback(byInventory(), balanceDialog(), change("sfc-item dialog", "cModal", "1"));
  surviveCallback(byInventory(), balanceDialog(), change("sfc-item dialog", "iYear", "2023"));
  surviveCallback(byWarehouse(), outboundDialog(), init("outsum-item dialog"));
  surviveCallback(byWarehouse(), outboundDialog(), change("outsum-item dialog", "iYear", "2023"));
  surviveCallback<_clsSFCFilterControl, clsSFCFilterControl>(
      byWarehouse(), balanceDialog(),
      {.subject = "sfc-item dialog, CallBack_ReportViewInit",
       .before = begin<_clsSFCFilterControl, clsSFCFilterControl>,
       .run = [](auto& dialog, bool early) { return dialog.view(early); },
       .given = {.whenItFails = "before", .whenNothingFails = "cross"}});
}

TEST(ComCalls, DialogOfTheVoucherReport) {
  surviveCallback(byWarehouse(), voucherDialog(), filterInit<_clsWtFilterControl, clsWtFilterControl>("fx-wt dialog"));
  surviveCallback(byWarehouse(), voucherDialog(),
                  valueChange<_clsWtFilterControl, clsWtFilterControl>("fx-wt dialog", "Vendor.cVCCode", "01"));
}

TEST(ComCalls, DialogOfTheDetailLedger) {
  using OneDialog = Dialog<_clsFilterControl, clsFilterControl>;
  surviveCallback(byWarehouse(), ledgerDialog(), filterInit<_clsFilterControl, clsFilterControl>("fx-detail dialog"));
  surviveCallback(byWarehouse(), ledgerDialog(),
                  valueChange<_clsFilterControl, clsFilterControl>("fx-detail dialog", "cInvCCode", "04"));
  surviveCallback(byWarehouse(), ledgerDialog(),
                  valueChange<_clsFilterControl, clsFilterControl>("fx-detail dialog", "iYear", "2024"));
  surviveCallback<_clsFilterControl, clsFilterControl>(
      byWarehouse(), ledgerDialog(),
      {.subject = "fx-detail dialog, CallBack_ReportViewInit",
       .before = begin<_clsFilterControl, clsFilterControl>,
       .run = [](OneDialog& dialog, bool early) { return dialog.view(early); },
       .given = {.whenItFails = "before", .whenNothingFails = "IA_FXDetail_FXClass"}});
  surviveCallback<_clsFilterControl, clsFilterControl>(
      byInventory(), ledgerDialog(),
      {.subject = "fx-detail dialog without a free item, CallBack_FilterClick",
       .before =
           [](OneDialog& dialog) {
             begin(dialog);
             dialog.filter->find("cInvCode")->value = TinyAccount::inventory;
           },
       .run = [](OneDialog& dialog, bool early) { return dialog.click(early); },
       .given = {.whenItFails = "accepted", .whenNothingFails = "refused"}});
}

}  // namespace
}  // namespace quillon::faults
