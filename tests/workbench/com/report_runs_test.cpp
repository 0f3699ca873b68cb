// Quillon.dll in long use: what 200 report runs leave behind in the process. The library is taken from the file beside
// the test, as CoCreateInstance would load it.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "automation/late_bound.h"
#include "automation/win32.h"
#include "tests/component/quillon_library.h"
#include "tests/long_life/process_level.h"
#include "tests/workbench/account/leftovers.h"
#include "workbench/account/account.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/com/argument_object.h"
#include "workbench/com/exposed_platform.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/filter_input.h"

namespace quillon::workbench {
namespace {

constexpr CLSID sfcItemClass = {0xe518f10c, 0xf08e, 0x4684, {0xa4, 0x65, 0x50, 0xe6, 0x80, 0x8d, 0x03, 0x1e}};

class ReportRunsTest : public testing::Test {
 protected:
  ReportRunsTest() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) throw std::runtime_error("no apartment");
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    file_ = std::filesystem::temp_directory_path() / ("quillon-runs-" + name + ".account");
    std::filesystem::remove(file_);
    account::SampleOptions options;
    options.years = 1;
    options.rows = 500;
    account::createSample(file_, options);
    account_ = tsql::Connection::open(file_, tsql::OpenMode::existing);

    EmbeddedPlatformOptions platformOptions;
    platformOptions.account = AccountSource::inFile(file_);
    platform_ = std::make_unique<EmbeddedPlatform>(platformOptions);
    standIn_ = std::make_unique<PlatformStandIn>(*platform_, nullptr);
  }
  ~ReportRunsTest() override {
    standIn_.reset();
    account_.reset();
    CoUninitialize();
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
  }

  // One run as the platform makes it, with `settings` in the filter; its result table is dropped. Gives its row count.
  int run(const std::vector<std::string>& settings) {
    const std::string table = "Result" + uniqueNamePart();
    {
      const automation::LateBound report(library_.create<IDispatch>(sfcItemClass), "Quillon.clsSFC_Item");
      const std::unique_ptr<Session> session = openSession();
      const auto login = std::make_shared<WorkbenchLogin>(
          accountLogin(*session, AccountSource::inFile(file_), Language::chinese, "", ""));
      const auto filter = std::make_shared<FilterObject>(reportNamed("sfc-item").registration);
      prepareFilter(*filter, *login, *session);
      setFilterItems(*filter, settings);
      const automation::ComPtr<IDispatch> e = argumentObject(std::make_shared<WorkbenchArgument>(filter, login, table));
      report.call(L"GETSQL", {automation::Variant(e)});
    }
    const std::unique_ptr<Session> session = openSession();
    const std::unique_ptr<Recordset> rows = session->query("Select Count(*) From " + table, {});
    const int count = std::stoi(rows->text(0).value_or("0"));
    rows->close();
    session->execute("Drop Table " + table);
    return count;
  }
  std::unique_ptr<Session> openSession() const {
    auto session = std::make_unique<AccountSession>();
    session->setConnectionString(connectionString(file_));
    session->open("", "", optionsUnspecified);
    return session;
  }

  component::test::QuillonLibrary library_;
  std::filesystem::path file_;
  std::unique_ptr<tsql::Connection> account_;
  std::unique_ptr<EmbeddedPlatform> platform_;
  std::unique_ptr<PlatformStandIn> standIn_;
};

TEST_F(ReportRunsTest, TwoHundredRunsLeaveNothing) {
  EXPECT_GT(run({"cModal=1"}), 0);
  const long objects = automation::LiveCount::value();
  const std::uint32_t handlesBefore = long_life::processLevel().handles;
  for (int round = 0; round < 200; ++round) {
    EXPECT_GT(run({"cModal=" + std::to_string(round % 3)}), 0);
  }
  EXPECT_EQ(automation::LiveCount::value(), objects);
  EXPECT_LE(long_life::processLevel().handles, handlesBefore);
  EXPECT_EQ(library_.canUnload(), S_OK);
}

TEST_F(ReportRunsTest, RunsThatStopAtTheGroupIndexLeaveOneConnection) {
  EXPECT_GT(run({"cModal=1", "cFSType=1"}), 0);
  const long objects = automation::LiveCount::value();
  const std::uint32_t handlesBefore = long_life::processLevel().handles;
  for (int round = 0; round < 20; ++round)
    EXPECT_GT(run({"cModal=1", "cFSType=1"}), 0);
  EXPECT_EQ(automation::LiveCount::value(), objects);
  EXPECT_LE(long_life::processLevel().handles, handlesBefore);
  // The connection that the last build left open keeps the library loaded, until the next run replaces and closes it.
  EXPECT_EQ(library_.canUnload(), S_FALSE);
  EXPECT_GT(run({"cModal=1"}), 0);
  EXPECT_EQ(library_.canUnload(), S_OK);
  // Each run left its detail table and its group index, as the drop of the index by its bare name is refused.
  EXPECT_EQ(account::testing::leftoverNames(*account_).size(), 2U * 21U);
  EXPECT_EQ(account::testing::dropLeftovers(*account_).size(), 2U * 21U);
}

}  // namespace
}  // namespace quillon::workbench
