// Every allocation that the library makes during a report run, a drill-through or a dialog's callback is refused once.
// std::bad_alloc leaves the member, or the build of a summary report absorbs it and leaves the connection open; nothing
// is leaked, and the next run on the thread makes the very calls that it would have made. The platform is one that
// answers without an account, so that all of them can be tried.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "filters/filter_control.h"
#include "filters/sfc_filter_control.h"
#include "filters/wt_filter_control.h"
#include "frame/module.h"
#include "reports/fx_detail/fx_detail.h"
#include "reports/fx_wt/fx_wt.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"
#include "tests/faults/fault_count.h"
#include "tests/faults/fault_injector.h"
#include "tests/faults/intercepted_ports.h"
#include "tests/faults/memory.h"
#include "tests/faults/statement_text.h"
#include "tests/frame/fake_dialog.h"
#include "tests/frame/fakes.h"

namespace quillon::faults {
namespace {

using fakes::ItemValues;

// A thread of the host platform whose objects need no account.
struct Thread {
  explicit Thread(const fakes::Answers& answers) : platform(injector, inner), module(platform) {
    inner.answers = answers;
  }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  FaultInjector injector;
  fakes::FakePlatform inner;
  InterceptedPlatform platform;
  Module module;
};

// What a member of the library does when memory runs out.
enum class Answer {
  passesOn,      // std::bad_alloc leaves it
  absorbsBuild,  // but not once it has the name of the result table: the build then only leaves the connection open
  neverFails,
};

// Which of the platform's objects the library keeps when it has run out of memory.
enum class Keeps {
  whatItGot,  // session and login stay in the module
  nothing,    // session and login are released
};

enum class Ending { done, outOfMemory };

struct Outcome {
  Ending ending = Ending::done;
  std::size_t allocations = 0;
};

template <class Work>
Outcome run(Thread& thread, Work& work, std::size_t failAt) {
  Outcome outcome;
  thread.injector.start(0);
  {
    const AllocationFaults counted(failAt);
    try {
      work.run(thread.module);
    } catch (const std::bad_alloc&) {
      outcome.ending = Ending::outOfMemory;
    }
    outcome.allocations = counted.count();
  }
  thread.injector.stop();
  return outcome;
}

// The calls of a run, a line each, without those that only a thread's first run makes.
std::string callsOf(const FaultInjector& injector) {
  constexpr std::string_view once[] = {"Platform.createPublicComponent", "Platform.createResourceService",
                                       "Platform.createUniqueNameSource", "Platform.namingNumber"};
  std::string text;
  for (const PortCall& call : injector.calls()) {
    if (std::ranges::find(once, call.member) == std::end(once))
      text += call.member + " " + withoutNumbers(call.text) + "\n";
  }
  return text;
}

bool wasCalled(const FaultInjector& injector, std::string_view member) {
  return std::ranges::find(injector.calls(), member, &PortCall::member) != injector.calls().end();
}

// Work is made for a thread; its run() is what the host platform calls, with objects that are there already.
template <class MakeWork>
void surviveRefusedAllocation(const fakes::Answers& answers, Answer answer, Keeps keeps, MakeWork makeWork,
                              std::size_t failAt, const std::string& expectedCalls) {
  const long blocksBefore = liveBlocks();
  {
    Thread thread(answers);
    const FaultInjector& injector = thread.injector;
    {
      auto work = makeWork(thread);
      const int sessionsBefore = injector.liveObjects(ObjectKind::session);
      const int loginsBefore = injector.liveObjects(ObjectKind::login);
      const Outcome outcome = run(thread, *work, failAt);
      EXPECT_GE(outcome.allocations, failAt) << "the run was not the one that was counted";

      const bool inBuild = wasCalled(injector, "DataSource.resultTable") && !wasCalled(injector, "Session.state");
      const bool absorbed = answer == Answer::neverFails || (answer == Answer::absorbsBuild && inBuild);
      EXPECT_EQ(outcome.ending, absorbed ? Ending::done : Ending::outOfMemory);
      EXPECT_EQ(injector.liveObjects(ObjectKind::filter), 0);
      EXPECT_EQ(injector.liveObjects(ObjectKind::other), 0);
      if (keeps == Keeps::nothing) {
        EXPECT_EQ(injector.liveObjects(ObjectKind::session), 0);
        EXPECT_EQ(injector.liveObjects(ObjectKind::login), 0);
      } else {
        EXPECT_EQ(
            injector.liveObjects(ObjectKind::session),
            std::max(sessionsBefore, work->ownSessions() + (wasCalled(injector, "Platform.createSession") ? 1 : 0)));
        EXPECT_GE(injector.liveObjects(ObjectKind::login), loginsBefore);
        EXPECT_LE(injector.liveObjects(ObjectKind::login), 1);
      }
      if (answer == Answer::absorbsBuild && inBuild) {
        EXPECT_NE(thread.module.session, nullptr);
        EXPECT_FALSE(wasCalled(injector, "Session.close"));
      }
    }
    auto next = makeWork(thread);
    EXPECT_EQ(run(thread, *next, 0).ending, Ending::done);
    EXPECT_EQ(callsOf(injector), expectedCalls);
  }
  EXPECT_EQ(liveBlocks(), blocksBefore) << "memory was leaked";
}

template <class MakeWork>
void surviveRefusedAllocations(const std::string& subject, const fakes::Answers& answers, Answer answer, Keeps keeps,
                               MakeWork makeWork) {
  std::size_t allocations = 0;
  std::string expectedCalls;
  // Once more than needed, so that what is made once in a program is there.
  for (int round = 0; round < 2; ++round) {
    Thread thread(answers);
    auto work = makeWork(thread);
    const Outcome outcome = run(thread, *work, 0);
    ASSERT_EQ(outcome.ending, Ending::done);
    allocations = outcome.allocations;
    expectedCalls = callsOf(thread.injector);
  }
  EXPECT_GT(allocations, 0U) << subject;
  FaultCount faultCount(subject, "allocations");
  for (std::size_t failAt = 1; failAt <= allocations; ++failAt) {
    faultCount.tryFault([&] {
      SCOPED_TRACE("allocation " + std::to_string(failAt) + " of " + subject);
      surviveRefusedAllocation(answers, answer, keeps, makeWork, failAt, expectedCalls);
    });
  }
}

// --- Reports ------------------------------------------------------------------------------------------------------------

// GETSQL of a new instance.
template <class Report>
class ReportRun {
 public:
  ReportRun(Thread& thread, std::vector<ItemValues> items)
      : inner_(thread.inner.record, thread.inner.filter(std::move(items))),
        argument_(intercepted(thread.injector, inner_)) {}

  void run(Module& module) {
    Report report(module);
    report.getSql(*argument_);
  }
  static int ownSessions() { return 0; }

 private:
  fakes::FakeArgument inner_;
  std::unique_ptr<ReportArgument> argument_;
};

template <class Report>
void surviveReport(const std::string& subject, const fakes::Answers& answers, const std::vector<ItemValues>& items,
                   Answer answer, Keeps keeps = Keeps::whatItGot) {
  surviveRefusedAllocations(subject, answers, answer, keeps,
                            [&](Thread& thread) { return std::make_unique<ReportRun<Report>>(thread, items); });
}

// Cost items begin with month 4; one class of project items is known.
fakes::Answers summaryAnswers() {
  fakes::Answers answers;
  answers.costItemStartMonth = 4;
  answers.queries = {
      {.part = "dIAStartDate", .rows = {{"2024-01-01"}}},
      {.part = "base.cItem_Class", .rows = {{"00", "fItem_ProjectClass", "fItem_Project"}, {"ch", "", ""}}}};
  return answers;
}

std::vector<ItemValues> summaryItems(const std::string& mode) {
  return {{.name = "iYear", .value = "2024"},
          {.name = "cModal", .value = mode},
          {.name = "iGrade", .value = "1"},
          {.name = "dKeepDate", .value = "2024-05-01", .value2 = "2024-09-30"},
          {.name = "cInvCode", .value = "0402-00019\t0402-00020"},
          {.name = "cOther", .value = "x", .sql = "(base.cOther = N'a value of some length')"}};
}

TEST(Allocations, SfcItem) {
  surviveReport<SfcItem>("sfc-item by cost-item classes", summaryAnswers(), summaryItems("0"), Answer::absorbsBuild);
  std::vector<ItemValues> balances = summaryItems("1");
  balances.push_back({.name = "cFSType", .value = "1"});
  surviveReport<SfcItem>("sfc-item by cost items with balance conditions", summaryAnswers(), balances,
                         Answer::absorbsBuild);
  surviveReport<SfcItem>("sfc-item by expense items", summaryAnswers(), summaryItems("2"), Answer::absorbsBuild);
}

TEST(Allocations, OutsumItem) {
  surviveReport<OutsumItem>("outsum-item by cost-item classes", summaryAnswers(), summaryItems("0"),
                            Answer::absorbsBuild);
  surviveReport<OutsumItem>("outsum-item by cost items", summaryAnswers(), summaryItems("1"), Answer::absorbsBuild);
  surviveReport<OutsumItem>("outsum-item by expense items", summaryAnswers(), summaryItems("2"), Answer::absorbsBuild);
}

fakes::Answers ledgerAnswers(const std::string& costingBasis) {
  fakes::Answers answers;
  answers.options = {{"AA.iStrsQuanDecDgt", "2"}, {"AA.iStrsPriDecDgt", "4"}};
  answers.costingBasis = costingBasis;
  answers.costItemStartMonth = 4;
  answers.lastSettledMonth = 4;
  answers.queries = {
      {.part = "bcheckbatch",
       .rows = {{"True", "True", "False", "False", "False", "False", "False", "False", "False", "False", "False"}}}};
  return answers;
}

std::vector<ItemValues> ledgerItems(const std::string& from, const std::string& to) {
  return {{.name = "cInvCode", .value = "0402-00019"},
          {.name = "cDepCode", .value = "0301"},
          {.name = "cWhCode", .value = "04"},
          {.name = "iYear", .value = "2024"},
          {.name = "dKeepDate", .value = from, .value2 = to},
          {.name = "cFree1", .value = "red", .sql = "(base.cFree1 = N'a value of some length')"},
          {.name = "cBatchIA", .value = "B1", .sql = "(base.cBatchIA = N'a value of some length')"}};
}

TEST(Allocations, FxDetail) {
  surviveReport<FxDetail>("fx-detail by warehouse", ledgerAnswers("按仓库核算"),
                          ledgerItems("2024-05-01", "2024-05-28"), Answer::passesOn, Keeps::nothing);
  surviveReport<FxDetail>("fx-detail by inventory", ledgerAnswers("按存货核算"), ledgerItems("", ""), Answer::passesOn,
                          Keeps::nothing);
  fakes::Answers started = ledgerAnswers("按部门核算");
  started.costItemStartMonth = 1;
  surviveReport<FxDetail>("fx-detail by department", started, ledgerItems("2024-02-01", ""), Answer::passesOn,
                          Keeps::nothing);
  fakes::Answers notStarted = ledgerAnswers("按仓库核算");
  notStarted.costItemStartMonth = 0;
  surviveReport<FxDetail>("fx-detail of a year without cost items", notStarted, ledgerItems("", ""), Answer::passesOn,
                          Keeps::nothing);
}

fakes::Answers voucherAnswers() {
  fakes::Answers answers;
  answers.options = {{"IA.dIAFirstDate", "2023-01-01"}, {"AA.iStrsQuanDecDgt", "2"}, {"AA.iStrsPriDecDgt", "4"}};
  return answers;
}

TEST(Allocations, FxWt) {
  surviveReport<quillon::FxWt>("fx-wt", voucherAnswers(),
                               {{.name = "dKeepDate", .value = "2024-01-01", .value2 = "2024-12-31"},
                                {.name = "cVouType", .value = "01\t30\t32\t08"},
                                {.name = "Inventory.cInvCode", .value = "0402-00019"},
                                {.name = "cDefine1", .value = "a value of some length"}},
                               Answer::passesOn);
}

// --- Execute ------------------------------------------------------------------------------------------------------------

using Columns = std::map<std::string, std::string, std::less<>>;

class KeptBusiness final : public BusinessObject {};

template <class Report>
class Execution {
 public:
  Execution(Thread& thread, const Columns& columns, const std::string& action)
      : inner_(thread.inner.record, nullptr),
        argument_(intercepted(thread.injector, inner_)),
        business_(std::make_shared<KeptBusiness>()),
        report_(thread.module) {
    inner_.rowColumns = columns;
    inner_.actionText = action;
  }

  void run(Module& module) {
    module.business = business_;
    report_.execute(*argument_);
  }
  static int ownSessions() { return 0; }

 private:
  fakes::FakeArgument inner_;
  std::unique_ptr<ReportArgument> argument_;
  std::shared_ptr<BusinessObject> business_;
  Report report_;
};

template <class Report>
void surviveExecution(const std::string& subject, const Columns& columns, const std::string& action, Answer answer) {
  fakes::Answers answers;
  answers.queries = {{.part = "from VouchType", .rows = {{columns.contains("type") ? columns.at("type") : "32"}}},
                     {.part = "Select iYear From IA_ENSubSidiary", .rows = {{"2024"}}}};
  surviveRefusedAllocations(subject, answers, answer, Keeps::nothing, [&](Thread& thread) {
    return std::make_unique<Execution<Report>>(thread, columns, action);
  });
}

TEST(Allocations, DrillThrough) {
  Columns row = {{"cVouType", "the name of a voucher type"},
                 {"cVouCode", "0000000000000000000017"},
                 {"cBusType", "分项调整"},
                 {"ID", "17"},
                 {"cPZID", "IA20240900038-0000017"},
                 {"iPZID", "38"}};
  for (const char* type : {"20", "21", "24", "35", "22", "32"}) {
    row["type"] = type;
    surviveExecution<FxDetail>("fx-detail, source document of type " + std::string(type), row, "Vouch",
                               Answer::passesOn);
  }
  surviveExecution<FxDetail>("fx-detail, a general-ledger voucher", row, "", Answer::passesOn);
  surviveExecution<quillon::FxWt>("fx-wt, a general-ledger voucher", row, "", Answer::passesOn);
}

// Execute of the summary reports takes memory only for the action's text, which a short one does not need.
TEST(Allocations, ExecuteOfTheSummaryReportsTakesNone) {
  Thread thread({});
  Execution<SfcItem> sfcItem(thread, {}, "Link");
  EXPECT_EQ(run(thread, sfcItem, 0).allocations, 0U);
  Execution<OutsumItem> outsumItem(thread, {}, "Link");
  EXPECT_EQ(run(thread, outsumItem, 0).allocations, 0U);
}

// --- Dialogs ------------------------------------------------------------------------------------------------------------

template <class Control>
class DialogRun {
 public:
  using Callback = void (*)(Control& control, FilterDialog& dialog);

  // `before` is what the host platform called earlier.
  DialogRun(Thread& thread, const std::string& identifier, const std::vector<ItemValues>& items, Callback before,
            Callback callback)
      : inner_(thread.inner, identifier, items),
        dialog_(intercepted(thread.injector, inner_)),
        control_(thread.module),
        callback_(callback) {
    before(control_, *dialog_);
  }

  void run(Module&) { callback_(control_, *dialog_); }
  static int ownSessions() { return 1; }

 private:
  fakes::FakeDialog inner_;
  std::unique_ptr<FilterDialog> dialog_;
  Control control_;
  Callback callback_;
};

template <class Control>
void surviveDialog(const std::string& subject, const fakes::Answers& answers, const std::string& identifier,
                   const std::vector<ItemValues>& items, typename DialogRun<Control>::Callback before,
                   typename DialogRun<Control>::Callback callback) {
  surviveRefusedAllocations(subject, answers, Answer::passesOn, Keeps::whatItGot, [&](Thread& thread) {
    return std::make_unique<DialogRun<Control>>(thread, identifier, items, before, callback);
  });
}

template <class Control>
void nothingBefore(Control&, FilterDialog&) {}
template <class Control>
void begin(Control& control, FilterDialog& dialog) {
  control.filterInit(dialog);
}

constexpr const char* balance = "CA3BAD03-9D4C-463A-827E-E971D5A36C81";
constexpr const char* outbound = "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE";
constexpr const char* voucherReport = "3D1986A9-884B-4835-B4AA-DCCBD2E1487C";

fakes::Answers listAnswers() {
  fakes::Answers answers;
  answers.costItemStartMonth = 1;
  answers.queries = {
      {.part = "MAX(iGrade)", .rows = {{"3"}}},
      {.part = "Distinct iyear", .rows = {{"2023"}, {"2024"}}},
      {.part = "IA_Subsidiary.cVouType", .rows = {{"a voucher type's name", "08"}, {"another name", "32"}}},
      {.part = "EnumName,N'其他出库'", .rows = {{"another business type's name", "其他出库"}}}};
  return answers;
}

std::vector<ItemValues> summaryDialogItems() {
  return {{.name = "iYear"},          {.name = "cModal"},
          {.name = "cFSType"},        {.name = "cSource"},
          {.name = "bIncludeExpire"}, {.name = "bIncludeTransVouch"},
          {.name = "iGrade"},         {.name = "cVouType"},
          {.name = "cBusType"},       {.name = "cInvClass", .value = "a class of some length"}};
}

TEST(Allocations, DialogsOfTheSummaryReports) {
  using Control = SfcFilterControl;
  const std::vector<ItemValues> items = summaryDialogItems();
  surviveDialog<Control>("sfc-item dialog, CallBack_FilterInit", listAnswers(), balance, items, nothingBefore<Control>,
                         begin<Control>);
  surviveDialog<Control>("outsum-item dialog, CallBack_FilterInit", listAnswers(), outbound, items,
                         nothingBefore<Control>, begin<Control>);
  surviveDialog<Control>("sfc-item dialog, CallBack_ValueChange of cInvClass", listAnswers(), balance, items,
                         begin<Control>,
                         [](Control& control, FilterDialog& dialog) { control.valueChange("cInvClass", dialog); });
  surviveDialog<Control>("outsum-item dialog, CallBack_ValueChange of iYear", listAnswers(), outbound, items,
                         begin<Control>,
                         [](Control& control, FilterDialog& dialog) { control.valueChange("iYear", dialog); });
  surviveDialog<Control>("clsSFCFilterControl, InitYear", listAnswers(), balance, items, begin<Control>,
                         [](Control& control, FilterDialog&) { control.initYear(); });
  // The start of another report's dialog has not listed the grades yet.
  surviveDialog<Control>("clsSFCFilterControl, InitGrade", listAnswers(), "", items, begin<Control>,
                         [](Control& control, FilterDialog&) { control.initGrade(); });
}

TEST(Allocations, DialogOfTheVoucherReport) {
  using Control = WtFilterControl;
  const std::vector<ItemValues> items = {{.name = "cBusType"},
                                         {.name = "cVouType"},
                                         {.name = "cWhCode"},
                                         {.name = "cDepCode"},
                                         {.name = "Customer.cCCCode", .value = "a class of some length"}};
  surviveDialog<Control>("fx-wt dialog, CallBack_FilterInit", listAnswers(), voucherReport, items,
                         nothingBefore<Control>, begin<Control>);
  surviveDialog<Control>(
      "fx-wt dialog, CallBack_ValueChange of Customer.cCCCode", listAnswers(), voucherReport, items, begin<Control>,
      [](Control& control, FilterDialog& dialog) { control.valueChange("Customer.cCCCode", dialog); });
}

TEST(Allocations, DialogOfTheDetailLedger) {
  using Control = FilterControl;
  const std::vector<ItemValues> items = {{.name = "iYear"},
                                         {.name = "cCaType"},
                                         {.name = "cInvCCode", .value = "a class of some length"},
                                         {.name = "cInvCode", .value = "0402-00019-0000000001"},
                                         {.name = "cWhCode", .value = "04"},
                                         {.name = "cFree1"}};
  fakes::Answers answers = ledgerAnswers("按仓库核算");
  answers.usedYears = {"2020", "2021", "2022", "2023", "2024"};
  surviveDialog<Control>("fx-detail dialog, CallBack_FilterInit", answers, "", items, nothingBefore<Control>,
                         begin<Control>);
  surviveDialog<Control>("fx-detail dialog, CallBack_ValueChange of cInvCCode", answers, "", items, begin<Control>,
                         [](Control& control, FilterDialog& dialog) { control.valueChange("cInvCCode", dialog); });
  surviveDialog<Control>("fx-detail dialog, CallBack_FilterClick", answers, "", items, begin<Control>,
                         [](Control& control, FilterDialog& dialog) { control.filterClick(dialog); });
  surviveDialog<Control>("fx-detail dialog, CallBack_ReportViewInit and -Change", answers, "", items, begin<Control>,
                         [](Control&, FilterDialog& dialog) { Control::reportView(dialog); });
}

}  // namespace
}  // namespace quillon::faults
