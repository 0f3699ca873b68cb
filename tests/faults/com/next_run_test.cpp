// Quillon.dll on a platform that answers without an account, so that two kinds of faults can be tried in full. Every
// request for memory that the library makes while it is called is refused once: the call then ends with E_OUTOFMEMORY and
// says so, or a summary report's build absorbs it. And every call of the platform fails once. After each, nothing has
// crashed, no memory and no object is leaked, and the next run on the thread makes the very calls that it would have made.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/errors.h"
#include "automation/late_bound.h"
#include "component/quillon_interfaces.h"
#include "tests/automation/com_scope.h"
#include "tests/component/fake_platform.h"
#include "tests/component/quillon_library.h"
#include "tests/faults/com/import_table.h"
#include "tests/faults/fault_count.h"
#include "tests/faults/statement_text.h"

namespace quillon::faults {
namespace {

using automation::ComPtr;
using automation::Variant;
using component::test::FakeItem;
using component::test::FakeObject;
using component::test::FakePlatform;
using component::test::QuillonLibrary;
using component::test::Recorder;

using Ending = std::optional<AutomationError>;

// How a call ends when memory runs out.
enum class Answer {
  passesOn,      // E_OUTOFMEMORY leaves the library
  absorbsBuild,  // but not once it has the name of the result table: the build then only leaves the connection open
  neverFails,    // once the instance is made
};

// The calls of a run, a line each, without those that only a thread's first run makes.
std::string callsOf(const Recorder& recorder) {
  constexpr std::string_view once[] = {"new IA_Pub.ClsIAPub", "new OrvPlatform.ResourceService",
                                       "new OrvPlatform.UniqueName", "new OrvPlatform.Naming", "Naming.Number"};
  std::string text;
  for (const std::string& call : recorder.calls) {
    if (std::ranges::find(once, call) == std::end(once)) text += withoutNumbers(call) + "\n";
  }
  return text;
}

// One call of an instance of `classId`.
struct Member {
  std::string subject;
  CLSID classId;
  Answer answer = Answer::passesOn;
  // What the platform answers.
  std::function<void(FakePlatform&)> answers = [](FakePlatform&) {};
  // The argument object or the filter that the member is given.
  std::function<ComPtr<FakeObject>(FakePlatform&)> object;
  // Called on the instance before; nothing for none.
  std::function<void(const automation::LateBound& instance, IDispatch*& object)> before = {};
  std::function<void(const automation::LateBound& instance, IDispatch*& object)> call;
};

class FaultRuns {
 public:
  explicit FaultRuns(Member member) : member_(std::move(member)), memory_(library_.module()) { enter(); }

  void survive() {
    // An extra run, and one with a refusal: they make what a process or thread makes once.
    run(0);
    run(1);
    const Ending ending = run(0);
    ASSERT_FALSE(ending.has_value()) << member_.subject << ": " << ending->description();
    const std::size_t requests = requests_;
    const std::size_t calls = recorder_.calls.size();
    expected_ = callsOf(recorder_);
    releaseAll();
    blocks_ = AllocationHooks::liveBlocks();
    alive_ = automation::LiveCount::value();
    {
      FaultCount faultCount(member_.subject, "allocations");
      for (std::size_t failAt = 1; failAt <= requests; ++failAt) {
        faultCount.tryFault([&] {
          SCOPED_TRACE("allocation " + std::to_string(failAt) + " of " + member_.subject);
          surviveRefusal(failAt);
          expectTheNextRunToBeRight();
        });
      }
    }
    FaultCount faultCount(member_.subject, "calls");
    for (std::size_t failAt = 1; failAt <= calls; ++failAt) {
      faultCount.tryFault([&] {
        SCOPED_TRACE("call " + std::to_string(failAt) + " of " + member_.subject);
        surviveFailure(failAt);
        expectTheNextRunToBeRight();
      });
    }
  }

 private:
  // Makes an instance, if the platform has not made one before, and calls its member. Of what is done for the two,
  // memory request `failAt` is refused and call `failingCall` fails; 0 stands for none.
  Ending run(std::size_t failAt, std::size_t failingCall = 0) {
    const ComPtr<FakeObject> object = member_.object(host_->platform);
    IDispatch* reference = object.get();
    recorder_.calls.clear();
    instanceMade_ = false;
    Ending ending;
    try {
      if (member_.before) {
        const automation::LateBound instance = create();
        member_.before(instance, reference);
        recorder_.calls.clear();
        instanceMade_ = true;
        begin(failAt, failingCall);
        member_.call(instance, reference);
      } else {
        begin(failAt, failingCall);
        const automation::LateBound instance = create();
        instanceMade_ = true;
        member_.call(instance, reference);
      }
    } catch (const AutomationError& error) {
      ending = error;
    }
    requests_ = AllocationHooks::stop();
    recorder_.failAt = 0;
    return ending;
  }

  void begin(std::size_t failAt, std::size_t failingCall) {
    recorder_.failAt = failingCall;
    AllocationHooks::start(failAt);
  }

  automation::LateBound create() {
    HRESULT code = S_OK;
    ComPtr<IDispatch> instance = library_.create<IDispatch>(member_.classId, &code);
    if (FAILED(code)) throw AutomationError(code, "CreateInstance", automation::systemMessage(code));
    return {std::move(instance), "instance"};
  }

  bool called(const std::string& call) const {
    return std::ranges::find(recorder_.calls, call) != recorder_.calls.end();
  }

  // The thread's apartment with the platform's classes in it.
  struct Host {
    explicit Host(Recorder& recorder) : platform(recorder) {}

    automation::test::ComScope apartment;
    FakePlatform platform;
  };

  void enter() {
    host_.emplace(recorder_);
    member_.answers(host_->platform);
  }

  // Has the thread release all that the library keeps for it: when it leaves COM, and not when the library is asked whether
  // it could go.
  void releaseAll() {
    const long kept = automation::LiveCount::value();
    static_cast<void>(library_.canUnload());
    EXPECT_EQ(automation::LiveCount::value(), kept);
    host_.reset();
    EXPECT_EQ(library_.canUnload(), S_OK);
    enter();
  }

  void expectTheNextRunToBeRight() {
    EXPECT_FALSE(run(0).has_value());
    EXPECT_EQ(callsOf(recorder_), expected_);
    releaseAll();
    EXPECT_EQ(AllocationHooks::liveBlocks(), blocks_) << "memory was leaked";
    EXPECT_EQ(automation::LiveCount::value(), alive_) << "an object of the platform is left over";
  }

  // Whether a fault, which has happened, is one that the member absorbs.
  bool absorbs() const {
    const bool inBuild = called("DataSource.SQL") && !called("Connection.State");
    return instanceMade_ &&
           (member_.answer == Answer::neverFails || (member_.answer == Answer::absorbsBuild && inBuild));
  }

  void surviveFailure(std::size_t failingCall) {
    const Ending ending = run(0, failingCall);
    // The build begins when the table's name has been given.
    if (absorbs() && recorder_.calls.back() != "DataSource.SQL") {
      EXPECT_FALSE(ending.has_value()) << ending->description();
      return;
    }
    ASSERT_TRUE(ending.has_value()) << "the error was not passed on";
    EXPECT_EQ(ending->code(), Recorder::failure) << ending->description();
    EXPECT_EQ(recorder_.calls.size(), failingCall) << "the platform was called after a call had failed";
  }

  void surviveRefusal(std::size_t failAt) {
    const Ending ending = run(failAt);
    EXPECT_GE(requests_, failAt) << "the run was not the one that was counted";
    if (!absorbs()) {
      ASSERT_TRUE(ending.has_value()) << "the call went well without its memory";
      EXPECT_EQ(ending->code(), E_OUTOFMEMORY) << ending->description();
      EXPECT_FALSE(ending->description().empty());
      return;
    }
    EXPECT_FALSE(ending.has_value()) << ending->description();
    if (member_.answer == Answer::absorbsBuild) {
      EXPECT_EQ(library_.canUnload(), S_FALSE) << "the connection is not left as it was";
      EXPECT_FALSE(called("Connection.Close"));
    }
  }

  Member member_;
  QuillonLibrary library_;
  Recorder recorder_;
  AllocationHooks memory_;
  std::optional<Host> host_;
  std::size_t requests_ = 0;  // of the last run
  bool instanceMade_ = false;
  // Of a run without a fault: its calls, and the live blocks and objects after everything of it has been released.
  std::string expected_;
  long blocks_ = 0;
  long alive_ = 0;
};

void getSql(const automation::LateBound& report, IDispatch*& e) {
  report.call(L"GETSQL", {Variant::reference(e)});
}
void execute(const automation::LateBound& report, IDispatch*& e) {
  report.call(L"Execute", {Variant::reference(e)});
}
void filterInit(const automation::LateBound& control, IDispatch*& filter) {
  control.get(L"CallBack_FilterInit", {Variant::reference(filter)});
}

// --- Reports ------------------------------------------------------------------------------------------------------------

std::function<ComPtr<FakeObject>(FakePlatform&)> argumentOf(std::vector<FakeItem> items) {
  return [items](FakePlatform& platform) { return platform.argument(items); };
}

// What the outbound summary finds of project classes: one with tables, the inventory itself.
void summaryAnswers(FakePlatform& platform) {
  platform.startMonth = 4;
  platform.rows = [](const std::string& sql) -> std::vector<std::vector<Variant>> {
    if (sql.starts_with("Select Distinct base.cItem_Class"))
      return {{"00", "fItem_ProjectClass", "fItem_Project"}, {"ch", "", ""}};
    return {};
  };
}

std::vector<FakeItem> summaryItems(const char* mode) {
  return {{"cModal", mode, ""},
          {"iYear", "2024", ""},
          {"dKeepDate", "2024-05-01", "2024-09-30"},
          {"cInvCode", "01\t02", ""}};
}

TEST(ComNextRun, SfcItem) {
  for (const char* mode : {"0", "2"}) {
    FaultRuns({.subject = std::string("sfc-item in mode ") + mode,
               .classId = __uuidof(clsSFC_Item),
               .answer = Answer::absorbsBuild,
               .answers = summaryAnswers,
               .object = argumentOf(summaryItems(mode)),
               .call = getSql})
        .survive();
  }
}

TEST(ComNextRun, OutsumItem) {
  for (const char* mode : {"1", "2"}) {
    FaultRuns({.subject = std::string("outsum-item in mode ") + mode,
               .classId = __uuidof(clsOutsum_Item),
               .answer = Answer::absorbsBuild,
               .answers = summaryAnswers,
               .object = argumentOf(summaryItems(mode)),
               .call = getSql})
        .survive();
  }
}

TEST(ComNextRun, FxDetail) {
  FaultRuns({.subject = "fx-detail by warehouse",
             .classId = __uuidof(clsFXDetail),
             .answers = [](FakePlatform& platform) { platform.costingBasis = "按仓库核算"; },
             .object = argumentOf({{"cInvCode", "01", ""},
                                   {"cDepCode", "", ""},
                                   {"cWhCode", "04", ""},
                                   {"iYear", "2024", ""},
                                   {"dKeepDate", "2024-01-01", "2024-01-31"}}),
             .call = getSql})
      .survive();
}

TEST(ComNextRun, FxWt) {
  FaultRuns({.subject = "fx-wt",
             .classId = __uuidof(clsFXWt),
             .object = argumentOf({{"dKeepDate", "2024-01-01", "2024-12-31"}, {"cVouType", "01\t30", ""}}),
             .call = getSql})
      .survive();
}

// --- Execute ------------------------------------------------------------------------------------------------------------

TEST(ComNextRun, DrillThrough) {
  const auto row = [](FakePlatform& platform) {
    platform.row = {{"cVouType", "a voucher type's name"},
                    {"cVouCode", "0017"},
                    {"ID", 17},
                    {"cPZID", "IA20240900038"},
                    {"iPZID", "38"}};
    platform.rows = [](const std::string& sql) -> std::vector<std::vector<Variant>> {
      if (sql.starts_with("select VouchType.cVouchType")) return {{"32"}};
      if (sql.starts_with("Select iYear From IA_SubSidiary")) return {{2024}};
      return {};
    };
  };
  FaultRuns({.subject = "fx-detail, a general-ledger voucher",
             .classId = __uuidof(clsFXDetail),
             .answers = row,
             .object = argumentOf({}),
             .call = execute})
      .survive();
  FaultRuns({.subject = "fx-wt, a source document",
             .classId = __uuidof(clsFXWt),
             .answers = row,
             .object =
                 [](FakePlatform& platform) {
                   ComPtr<FakeObject> e = platform.argument({});
                   e->property(L"Action", "Vouch");
                   return e;
                 },
             .call = execute})
      .survive();
}

// Early-bound: a late-bound call that has no memory for its arguments does not come to the member.
TEST(ComNextRun, ExecuteOfTheSummaryReports) {
  FaultRuns({.subject = "sfc-item, Execute",
             .classId = __uuidof(clsSFC_Item),
             .answer = Answer::neverFails,
             .object = argumentOf({}),
             .call =
                 [](const automation::LateBound& report, IDispatch*& e) {
                   ComPtr<_clsSFC_Item> instance;
                   ASSERT_EQ(report.object()->QueryInterface(__uuidof(_clsSFC_Item),
                                                             reinterpret_cast<void**>(instance.out())),
                             S_OK);
                   const HRESULT code = instance->Execute(&e);
                   if (FAILED(code)) throw AutomationError(code, "Execute", automation::systemMessage(code));
                 }})
      .survive();
}

// --- Dialogs ------------------------------------------------------------------------------------------------------------

std::function<ComPtr<FakeObject>(FakePlatform&)> dialogOf(const char* report, std::vector<FakeItem> items) {
  return [report, items](FakePlatform& platform) { return platform.dialog(report, items); };
}

void listAnswers(FakePlatform& platform) {
  platform.rows = [](const std::string& sql) -> std::vector<std::vector<Variant>> {
    if (sql.find("MAX(iGrade)") != std::string::npos) return {{3}};
    if (sql.find("IA_Subsidiary.cVouType") != std::string::npos) return {{"a voucher type's name", "08"}};
    if (sql.find("IA_Subsidiary.cBusType") != std::string::npos) return {{"a business type's name", "01"}};
    return {};
  };
}

TEST(ComNextRun, Dialogs) {
  const std::vector<FakeItem> summary = {{"iYear", "", ""},    {"cModal", "", ""},   {"iGrade", "", ""},
                                         {"cVouType", "", ""}, {"cBusType", "", ""}, {"bIncludeTransVouch", "", ""}};
  FaultRuns({.subject = "outsum-item dialog, CallBack_FilterInit",
             .classId = __uuidof(clsSFCFilterControl),
             .answers = listAnswers,
             .object = dialogOf("E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE", summary),
             .call = filterInit})
      .survive();
  FaultRuns({.subject = "sfc-item dialog, CallBack_ValueChange of iYear",
             .classId = __uuidof(clsSFCFilterControl),
             .answers = listAnswers,
             .object = dialogOf("CA3BAD03-9D4C-463A-827E-E971D5A36C81", summary),
             .before = filterInit,
             .call =
                 [](const automation::LateBound& control, IDispatch*& filter) {
                   control.call(L"CallBack_ValueChange", {"iYear", Variant::reference(filter)});
                 }})
      .survive();
  FaultRuns({.subject = "fx-wt dialog, CallBack_FilterInit",
             .classId = __uuidof(clsWtFilterControl),
             .object = dialogOf("3D1986A9-884B-4835-B4AA-DCCBD2E1487C", {{"cVouType", "", ""}, {"cBusType", "", ""}}),
             .call = filterInit})
      .survive();
  const std::vector<FakeItem> ledger = {
      {"iYear", "", ""}, {"cCaType", "", ""}, {"cInvCode", "01", ""}, {"cWhCode", "", ""}};
  FaultRuns({.subject = "fx-detail dialog, CallBack_FilterInit",
             .classId = __uuidof(clsFilterControl),
             .object = dialogOf("", ledger),
             .call = filterInit})
      .survive();
  FaultRuns({.subject = "fx-detail dialog, CallBack_FilterClick",
             .classId = __uuidof(clsFilterControl),
             .answers = [](FakePlatform& platform) { platform.costingBasis = "按仓库核算"; },
             .object = dialogOf("", ledger),
             .before = filterInit,
             .call =
                 [](const automation::LateBound& control, IDispatch*& filter) {
                   Variant cancel(false);
                   control.get(L"CallBack_FilterClick", {Variant::reference(filter), Variant::reference(cancel)});
                 }})
      .survive();
  FaultRuns({.subject = "fx-detail dialog, CallBack_ReportViewInit",
             .classId = __uuidof(clsFilterControl),
             .object = dialogOf("", ledger),
             .before = filterInit,
             .call =
                 [](const automation::LateBound& control, IDispatch*& filter) {
                   Variant view;
                   control.call(L"CallBack_ReportViewInit", {Variant::reference(filter), Variant::reference(view)});
                 }})
      .survive();
}

}  // namespace
}  // namespace quillon::faults
