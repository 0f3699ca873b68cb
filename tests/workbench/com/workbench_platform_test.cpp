// QuillonWorkbench.Platform over an embedded account and over an account on a server, for which an ADO of this test's
// own stands: it knows one server, and keeps its account in a file.
#include "workbench/com/workbench_platform.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "automation/class_lookup.h"
#include "component/platform_bindings.h"
#include "tests/component/quillon_library.h"
#include "workbench/account/account.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using automation::LateBound;
using automation::Variant;
namespace bindings = component::bindings;

constexpr CLSID sfcItemClass = {0xe518f10c, 0xf08e, 0x4684, {0xa4, 0x65, 0x50, 0xe6, 0x80, 0x8d, 0x03, 0x1e}};
constexpr CLSID sfcFilterControlClass = {0x7ecd1526, 0x372f, 0x43c7, {0xbe, 0x9c, 0x59, 0x23, 0xa0, 0x79, 0x15, 0xca}};
constexpr const char* server =
    "Provider=SQLOLEDB;Data Source=here;Initial Catalog=account;User ID=reader;Password=secret";

// A connection that finds the account of `server` in a file; it opens nothing else.
class ServerConnection final : public AdoConnection {
 public:
  ServerConnection(std::string file, int& connections) : AdoConnection(nullptr), file_(std::move(file)) {
    ++connections;
  }

  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override {
    if (kind == DISPATCH_PROPERTYPUT && parameters->rgvarg[0].vt == VT_BSTR) {
      const bool known = automation::toUtf8(parameters->rgvarg[0].bstrVal) == server;
      Variant text(known ? file_ : "no such server");
      DISPPARAMS changed = *parameters;
      changed.rgvarg = &text;
      return AdoConnection::Invoke(id, reserved, locale, kind, &changed, result, info, badArgument);
    }
    return AdoConnection::Invoke(id, reserved, locale, kind, parameters, result, info, badArgument);
  }

 private:
  std::string file_;
};

class WorkbenchPlatformTest : public testing::Test {
 protected:
  WorkbenchPlatformTest() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) throw std::runtime_error("no apartment");
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    file_ = std::filesystem::temp_directory_path() / ("quillon-platform-" + name + ".account");
    std::filesystem::remove(file_);
    account::SampleOptions options;
    options.years = 1;
    options.rows = 500;
    account::createSample(file_, options);
  }
  ~WorkbenchPlatformTest() override {
    CoUninitialize();
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
  }

  static LateBound newPlatform() { return {automation::makeObject<WorkbenchPlatform>(), "QuillonWorkbench.Platform"}; }

  // Runs the report on the account that `platform` has open and gives the rows of its result table.
  int runReport(const LateBound& platform) const {
    const LateBound e = platform.object(L"NewArgument", "e", {"sfc-item"});
    const LateBound items = e.object(L"rawFilter", "filter").object(L"FilterList", "filter list");
    items.item("cModal", "item").put(L"varValue", "1");
    {
      const LateBound report(library_.create<IDispatch>(sfcItemClass), "Quillon.clsSFC_Item");
      report.call(L"GETSQL", {Variant(e.object())});
    }
    const std::string table = e.object(L"DataSource", "data source").text(L"SQL");
    const LateBound rows = platform.object(L"Query", "rows", {"Select Count(*) From " + table});
    return rows.object(L"Fields", "fields").item(0, "field").integer(L"Value");
  }

  component::test::QuillonLibrary library_;
  std::filesystem::path file_;
};

std::string errorOf(const LateBound& platform, const wchar_t* member, const char* argument) {
  try {
    platform.call(member, {argument});
  } catch (const AutomationError& error) {
    return error.description();
  }
  return "";
}

TEST_F(WorkbenchPlatformTest, RunsAReportOnAnAccountFile) {
  const LateBound platform = newPlatform();
  platform.call(L"OpenAccount", {utf8FromPath(file_)});
  EXPECT_GT(runReport(platform), 0);
}

TEST_F(WorkbenchPlatformTest, RunsAReportOnAServerThroughTheMachinesAdo) {
  int connections = 0;
  const automation::InProcessClass machinesConnection(
      automation::classIdOf(bindings::connection), [&]() -> automation::ComPtr<IUnknown> {
        return automation::makeObject<ServerConnection>(connectionString(file_), connections);
      });
  const automation::InProcessClass machinesRecordset(
      automation::classIdOf(bindings::recordset),
      []() -> automation::ComPtr<IUnknown> { return automation::makeObject<AdoRecordset>(nullptr); });

  const LateBound platform = newPlatform();
  platform.call(L"OpenAccount", {server});
  EXPECT_GT(runReport(platform), 0);
  EXPECT_EQ(platform.object(L"NewArgument", "e", {"sfc-item"}).object(L"Login", "login").text(L"OrvDbName"), server);
  EXPECT_EQ(connections, 2) << "the platform's own and the report's";
  EXPECT_EQ(platform.integer(L"FailureNumber"), 0);
}

TEST_F(WorkbenchPlatformTest, AnAccountThatCannotBeOpenedMayBeFollowedByAnother) {
  const LateBound platform = newPlatform();
  EXPECT_NE(errorOf(platform, L"OpenAccount", "no-such.account").find("no-such.account"), std::string::npos);
  EXPECT_EQ(errorOf(platform, L"NewArgument", "sfc-item"),
            "No account is open: call OpenAccount with an account file first.");
  platform.call(L"OpenAccount", {utf8FromPath(file_)});
  EXPECT_NE(errorOf(platform, L"OpenAccount", "another.account").find("An account is open already"), std::string::npos);
  EXPECT_GT(runReport(platform), 0);
}

TEST_F(WorkbenchPlatformTest, SaysWhatAReportAbsorbed) {
  const LateBound platform = newPlatform();
  platform.call(L"OpenAccount", {utf8FromPath(file_)});
  EXPECT_EQ(platform.integer(L"FailureNumber"), 0);
  EXPECT_NE(errorOf(platform, L"Query", "Select * From NoSuchTable"), "");
  EXPECT_EQ(platform.integer(L"FailureNumber"), 208);
  EXPECT_EQ(platform.text(L"FailureStatement"), "Select * From NoSuchTable");
}

TEST_F(WorkbenchPlatformTest, ADialogFillsInTheFilterOfItsArgument) {
  const LateBound platform = newPlatform();
  platform.call(L"OpenAccount", {utf8FromPath(file_)});
  for (const char* report : {"sfc-item", "outsum-item"}) {
    const LateBound e = platform.object(L"NewDialog", "e", {report});
    const LateBound filter = e.object(L"rawFilter", "filter");
    const auto item = [&](const char* key) { return filter.object(L"FilterList", "list").item(key, "item"); };
    EXPECT_EQ(item("iYear").text(L"varValue"), "");
    EXPECT_EQ(item("cModal").text(L"varValue"), "");
    {
      const LateBound control(library_.create<IDispatch>(sfcFilterControlClass), "Quillon.clsSFCFilterControl");
      control.call(L"CallBack_FilterInit", {Variant(filter.object())});
    }
    EXPECT_EQ(item("iYear").text(L"varValue"), e.object(L"Login", "login").text(L"cIYear"));
    EXPECT_EQ(item("cModal").text(L"varValue"), "0");
    EXPECT_EQ(item("iGrade").text(L"varValue2"), "1");
    EXPECT_FALSE(item("cDepCode").flag(L"Available"));
    EXPECT_EQ(e.object(L"Login", "login").text(L"AuthString"), "department=False,inventory=False,warehouse=False");
  }
}

TEST_F(WorkbenchPlatformTest, ADialogNeedsAnAccountFile) {
  const automation::InProcessClass machinesConnection(
      automation::classIdOf(bindings::connection), [&]() -> automation::ComPtr<IUnknown> {
        static int connections = 0;
        return automation::makeObject<ServerConnection>(connectionString(file_), connections);
      });
  const LateBound platform = newPlatform();
  platform.call(L"OpenAccount", {server});
  EXPECT_EQ(errorOf(platform, L"NewDialog", "sfc-item"),
            "A dialog needs an account file; on a server, fill in the filter yourself.");
}

TEST_F(WorkbenchPlatformTest, RefusesAReportThatItDoesNotHave) {
  const LateBound platform = newPlatform();
  platform.call(L"OpenAccount", {utf8FromPath(file_)});
  EXPECT_NE(errorOf(platform, L"NewArgument", "no-report").find("\"no-report\""), std::string::npos);
}

}  // namespace
}  // namespace quillon::workbench
