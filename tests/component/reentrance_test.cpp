// Calls of the platform that lead back into Quillon.dll on the same thread: one that releases the last reference to the
// object whose member is running, and one that starts another report.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "automation/late_bound.h"
#include "automation/text.h"
#include "component/quillon_interfaces.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/library_test.h"
#include "tests/component/recorded_calls.h"

namespace quillon::component::test {

using automation::ComPtr;
using automation::LateBound;
using automation::LiveCount;
using automation::makeObject;
using automation::Variant;
using automation::test::ComScope;
namespace {

const std::vector<FakeItem> reportItems = {{"cModal", "1", ""},   {"iYear", "2024", ""},   {"cInvCode", "01", ""},
                                           {"cDepCode", "", ""},  {"cWhCode", "", ""},     {"cBatchIA", "", ""},
                                           {"dKeepDate", "", ""}, {"cVouType", "'01'", ""}};
const std::vector<FakeItem> dialogItems = {{"iYear", "", ""},
                                           {"cModal", "", ""},
                                           {"iGrade", "", ""},
                                           {"cVouType", "", ""},
                                           {"cBusType", "", ""},
                                           {"cCaType", "", ""},
                                           {"cInvCode", "01", ""},
                                           {"cWhCode", "", ""},
                                           {"bIncludeTransVouch", "", ""},
                                           {"cInvCCode", "", ""},
                                           {"Inventory.cInvCCode", "", ""}};

class Reentrance : public LibraryTest {
 protected:
};

// A late-bound call that holds no reference to the object.
HRESULT invoke(IDispatch& object, const wchar_t* member, std::vector<Variant> arguments) {
  std::wstring name(member);
  LPOLESTR names[] = {name.data()};
  DISPID id = DISPID_UNKNOWN;
  EXPECT_EQ(object.GetIDsOfNames(IID_NULL, names, 1, LOCALE_NEUTRAL, &id), S_OK);
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  Variant result;
  return object.Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters, result.out(),
                       nullptr, nullptr);
}

// --- The last reference ---------------------------------------------------------------------------------------------

// What a member is given: the argument object of a report, or the filter of a dialog.
using MakeArgument = std::function<ComPtr<FakeObject>(FakePlatform&)>;

ComPtr<FakeObject> reportArgument(FakePlatform& platform) {
  platform.row = voucherRow("32", "7", "");
  return platform.argument(reportItems);
}
MakeArgument dialogOf(const char* report) {
  return [report](FakePlatform& platform) { return platform.dialog(report, dialogItems); };
}

// Calls a member of a new instance, once for each of its calls to the platform, and has that call release the instance.
// Gives how many calls there were.
template <class Interface, class Class>
std::size_t releaseAtEachCall(const QuillonLibrary& library, const MakeArgument& make,
                              const std::function<HRESULT(Interface& object, IDispatch*& argument)>& call) {
  std::size_t calls = 1;
  for (std::size_t at = 1; at <= calls; ++at) {
    SCOPED_TRACE("released at call " + std::to_string(at));
    Recorder recorder;
    {
      const ComScope apartment;
      FakePlatform platform(recorder);
      const ComPtr<FakeObject> argument = make(platform);
      IDispatch* reference = argument.get();
      Interface* const object = library.create<Interface>(__uuidof(Class)).release();
      ULONG left = 0;
      recorder.calls.clear();
      recorder.interruptAt = at;
      recorder.interruption = [&] { left = object->Release(); };
      EXPECT_EQ(call(*object, reference), S_OK);
      EXPECT_FALSE(recorder.interruption) << "the member did not get that far";
      EXPECT_GT(left, 0U) << "the member runs on an object that is gone";
      calls = recorder.calls.size();
    }
    EXPECT_EQ(library.canUnload(), S_OK) << "the instance is still there";
    EXPECT_EQ(recorder.releasedElsewhere, 0);
  }
  return calls;
}

// A member on both roads: by its slot, and by its name with these arguments.
template <class Interface, class Class>
void surviveRelease(const QuillonLibrary& library, const wchar_t* member, const MakeArgument& make,
                    const std::function<HRESULT(Interface& object, IDispatch** argument)>& early,
                    const std::function<std::vector<Variant>(const Variant& argument)>& lateArguments) {
  SCOPED_TRACE(testing::Message() << automation::toUtf8(std::wstring_view(member)));
  const std::size_t bySlot = releaseAtEachCall<Interface, Class>(
      library, make, [&](Interface& object, IDispatch*& argument) { return early(object, &argument); });
  const std::size_t byName =
      releaseAtEachCall<Interface, Class>(library, make, [&](Interface& object, IDispatch*& argument) {
        return invoke(object, member, lateArguments(Variant::reference(argument)));
      });
  EXPECT_EQ(bySlot, byName);
  EXPECT_GT(bySlot, 1U);
}

std::vector<Variant> alone(const Variant& argument) {
  return {argument};
}

template <class Interface, class Class>
void reportSurvivesRelease(const QuillonLibrary& library) {
  using Early = std::function<HRESULT(Interface&, IDispatch**)>;
  surviveRelease<Interface, Class>(library, L"GETSQL", reportArgument,
                                   Early([](Interface& object, IDispatch** e) { return object.GETSQL(e); }), alone);
  surviveRelease<Interface, Class>(library, L"Execute", reportArgument,
                                   Early([](Interface& object, IDispatch** e) { return object.Execute(e); }), alone);
}

TEST_F(Reentrance, AReportLivesUntilItsMemberIsThrough) {
  reportSurvivesRelease<_clsSFC_Item, clsSFC_Item>(library);
  reportSurvivesRelease<_clsOutsum_Item, clsOutsum_Item>(library);
  reportSurvivesRelease<_clsFXDetail, clsFXDetail>(library);
  reportSurvivesRelease<_clsFXWt, clsFXWt>(library);
}

template <class Interface, class Class>
void dialogSurvivesRelease(const QuillonLibrary& library, const char* report, const char* changed) {
  using Early = std::function<HRESULT(Interface&, IDispatch**)>;
  surviveRelease<Interface, Class>(library, L"CallBack_FilterInit", dialogOf(report),
                                   Early([](Interface& object, IDispatch** filter) {
                                     Variant result;
                                     return object.CallBack_FilterInit(filter, &result);
                                   }),
                                   alone);
  surviveRelease<Interface, Class>(library, L"CallBack_ValueChange", dialogOf(report),
                                   Early([changed](Interface& object, IDispatch** filter) {
                                     automation::Bstr key{std::string_view(changed)};
                                     return object.CallBack_ValueChange(key.inOut(), filter);
                                   }),
                                   [changed](const Variant& filter) {
                                     return std::vector<Variant>{changed, filter};
                                   });
}

TEST_F(Reentrance, ADialogsClassLivesUntilItsMemberIsThrough) {
  dialogSurvivesRelease<_clsSFCFilterControl, clsSFCFilterControl>(library, dialog_of::receiptIssueBalance,
                                                                   "cInvCCode");
  dialogSurvivesRelease<_clsFilterControl, clsFilterControl>(library, "", "cInvCCode");
  dialogSurvivesRelease<_clsWtFilterControl, clsWtFilterControl>(library, dialog_of::voucherReport,
                                                                 "Inventory.cInvCCode");
  surviveRelease<_clsFilterControl, clsFilterControl>(
      library, L"CallBack_FilterClick", dialogOf(""),
      [](_clsFilterControl& object, IDispatch** filter) {
        VARIANT_BOOL cancel = VARIANT_FALSE;
        Variant result;
        return object.CallBack_FilterClick(filter, &cancel, &result);
      },
      [](const Variant& filter) {
        return std::vector<Variant>{filter, false};
      });
  surviveRelease<_clsFilterControl, clsFilterControl>(
      library, L"CallBack_ReportViewInit", dialogOf(""),
      [](_clsFilterControl& object, IDispatch** filter) {
        Variant view;
        return object.CallBack_ReportViewInit(filter, &view);
      },
      [](const Variant& filter) {
        return std::vector<Variant>{filter, Variant()};
      });
}

// The holder of the business object calls nobody; the object that it lets go of may hold the last reference to it.
TEST_F(Reentrance, TheHolderOfTheBusinessObjectLivesUntilItsMemberIsThrough) {
  for (const bool bySlot : {true, false}) {
    Recorder recorder;
    const ComScope apartment;
    _ClsBusiness* holder = nullptr;
    bool itHeldTheLast = false;
    {
      ComPtr<_ClsBusiness> instance = library.create<_ClsBusiness>(__uuidof(ClsBusiness));
      holder = instance.get();
      const ComPtr<FakeObject> business = makeObject<FakeObject>(recorder, "Business");
      // Released with the object that holds it.
      const std::shared_ptr<void> goesWithIt(nullptr, [&](void*) { itHeldTheLast = holder->Release() > 0; });
      business->on(L"Holder", [goesWithIt](automation::Call&) { return Variant(); });
      EXPECT_EQ(invoke(*holder, L"Init", {business}), S_OK);
      static_cast<void>(instance.release());
    }
    IDispatch* nothing = nullptr;
    Variant result;
    EXPECT_EQ(bySlot ? holder->Init(&nothing, &result) : invoke(*holder, L"Init", {Variant(nothing)}), S_OK);
    EXPECT_TRUE(itHeldTheLast) << "the member ran on an object that was gone";
    EXPECT_EQ(library.canUnload(), S_OK) << "the instance is still there";
  }
}

// --- Another report -------------------------------------------------------------------------------------------------

struct Report {
  const char* name;
  CLSID id;
  bool absorbsBuild;  // an error inside the build ends it without an error, and without closing
};

const Report reports[] = {{"clsSFC_Item", __uuidof(clsSFC_Item), true},
                          {"clsOutsum_Item", __uuidof(clsOutsum_Item), true},
                          {"clsFXDetail", __uuidof(clsFXDetail), false},
                          {"clsFXWt", __uuidof(clsFXWt), false}};

// What the interrupting call does: runs another report, which may fail amid its statements, or runs the same instance.
enum class Inner { voucherReport, detailLedger, failingReport, sameInstance };

const char* told(Inner inner) {
  switch (inner) {
    case Inner::voucherReport:
      return "a voucher report";
    case Inner::detailLedger:
      return "a detail ledger";
    case Inner::failingReport:
      return "a report that fails";
    default:
      return "the same instance";
  }
}

// One outer call with another report started from its call number `at`; 0 for none.
class InterruptedRun {
 public:
  InterruptedRun(const QuillonLibrary& library, REFCLSID outer, const wchar_t* member, Inner inner, std::size_t at)
      : library_(library), platform_(recorder_) {
    platform_.row = voucherRow("32", "7");
    const ComPtr<FakeObject> e = platform_.argument(reportItems);
    if (member == std::wstring(L"Execute")) LateBound(e, "e").put(bindings::argument::action, "Vouch");
    outer_ = LateBound(library.create<IDispatch>(outer), "outer");
    recorder_.calls.clear();
    recorder_.interruptAt = at;
    recorder_.interruption = [this, inner] { interrupt(inner); };
    try {
      outer_.call(member, {e});
    } catch (const AutomationError& error) {
      code = error.code();
      source = error.source();
    }
    outer_ = {};
  }

  // The calls of the outer one, before and after the interruption.
  Calls before() const { return {calls().begin(), calls().begin() + static_cast<std::ptrdiff_t>(from_)}; }
  Calls after() const { return {calls().begin() + static_cast<std::ptrdiff_t>(to_), calls().end()}; }
  // A report that comes later on the thread.
  void nextReport() {
    recorder_.calls.clear();
    LateBound(library_.create<IDispatch>(__uuidof(clsFXWt)), "next").call(L"GETSQL", {platform_.argument(reportItems)});
    EXPECT_EQ(recorder_.calls.back(), "Connection.Close");
  }

  HRESULT code = S_OK;
  std::string source;

 private:
  const Calls& calls() const { return recorder_.calls; }

  void interrupt(Inner inner) {
    from_ = calls().size();
    const ComPtr<FakeObject> e = platform_.argument(reportItems);
    switch (inner) {
      case Inner::sameInstance:
        outer_.call(L"GETSQL", {e});
        break;
      case Inner::failingReport: {
        constexpr std::size_t amidTheStatements = 80;
        recorder_.failAt = from_ + amidTheStatements;
        LateBound(library_.create<IDispatch>(__uuidof(clsSFC_Item)), "inner").call(L"GETSQL", {e});
        EXPECT_EQ(calls().size(), recorder_.failAt);
        recorder_.failAt = 0;
        break;
      }
      default:
        LateBound(library_.create<IDispatch>(inner == Inner::detailLedger ? __uuidof(clsFXDetail) : __uuidof(clsFXWt)),
                  "inner")
            .call(L"GETSQL", {e});
        EXPECT_EQ(calls().back(), "Connection.Close");
    }
    to_ = calls().size();
  }

  const QuillonLibrary& library_;
  Recorder recorder_;
  const ComScope apartment_;
  FakePlatform platform_;
  LateBound outer_;
  std::size_t from_ = 0;
  std::size_t to_ = 0;
};

std::size_t indexOf(const Calls& calls, const std::string& call) {
  return static_cast<std::size_t>(std::ranges::find(calls, call) - calls.begin()) + 1;
}

bool usesAConnection(const std::string& call) {
  return call.starts_with("Connection.") || call.starts_with("Recordset.Open");
}

TEST_F(Reentrance, AnInterruptedReportEndsWithAnErrorOrAsAFailingBuildDoes) {
  int tried = 0;
  for (const Report& report : reports) {
    for (const Inner inner : {Inner::voucherReport, Inner::detailLedger, Inner::failingReport, Inner::sameInstance}) {
      SCOPED_TRACE(std::string(report.name) + ", interrupted by " + told(inner));
      Calls clean;
      {
        const InterruptedRun run(library, report.id, L"GETSQL", inner, 0);
        ASSERT_EQ(run.code, S_OK);
        clean = run.after();
      }
      const std::size_t opened = indexOf(clean, "new ADODB.Connection");
      const std::size_t tableRead = indexOf(clean, "DataSource.SQL");
      const std::size_t closing = indexOf(clean, "Connection.State");
      ASSERT_LT(opened, closing);
      ASSERT_LT(closing, clean.size() + 1);
      for (std::size_t at = 1; at <= clean.size(); ++at) {
        SCOPED_TRACE("at call " + std::to_string(at) + ": " + clean[at - 1]);
        InterruptedRun run(library, report.id, L"GETSQL", inner, at);
        const Calls after = run.after();
        ++tried;
        if (at <= opened || at >= closing) {
          EXPECT_EQ(run.code, S_OK) << "it has no connection yet, or none any more";
        } else {
          EXPECT_EQ(std::ranges::count_if(after, usesAConnection), 0)
              << "it went on on a connection that is not its own";
          if (report.absorbsBuild && at > tableRead) {
            EXPECT_EQ(run.code, S_OK);
          } else {
            EXPECT_EQ(run.code, E_UNEXPECTED);
            EXPECT_EQ(run.source, "Quillon." + std::string(report.name) + ".GETSQL");
          }
        }
        run.nextReport();
      }
      EXPECT_EQ(library.canUnload(), S_OK);
    }
  }
  EXPECT_GT(tried, 1000);
}

TEST_F(Reentrance, ADocumentThatIsInterruptedIsShownOrEndsWithAnError) {
  for (const Inner inner : {Inner::voucherReport, Inner::detailLedger, Inner::failingReport}) {
    Calls clean;
    {
      const InterruptedRun run(library, __uuidof(clsFXWt), L"Execute", inner, 0);
      ASSERT_EQ(run.code, S_OK);
      clean = run.after();
    }
    const std::string& shown = clean.back();
    ASSERT_TRUE(shown.starts_with("UniVch.Show")) << shown;
    const std::size_t opened = indexOf(clean, "new ADODB.Connection");
    for (std::size_t at = 1; at <= clean.size(); ++at) {
      SCOPED_TRACE(std::string(told(inner)) + " at call " + std::to_string(at) + ": " + clean[at - 1]);
      InterruptedRun run(library, __uuidof(clsFXWt), L"Execute", inner, at);
      if (at <= opened || at == clean.size()) {
        EXPECT_EQ(run.code, S_OK);
      } else {
        EXPECT_EQ(run.code, E_UNEXPECTED);
        EXPECT_EQ(run.source, "Quillon.clsFXWt.Execute");
        EXPECT_EQ(std::ranges::count_if(run.after(), usesAConnection), 0);
      }
      run.nextReport();
    }
    EXPECT_EQ(library.canUnload(), S_OK);
  }
}

}  // namespace
}  // namespace quillon::component::test
