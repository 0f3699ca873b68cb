// A statement that takes long, and a person at the client who has waited enough: FreeTDS's driver sends an attention.
#include <gmock/gmock.h>

#include "tests/workbench/tds/wire_test_base.h"
#include "workbench/odbc/odbc_database.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::odbc {
namespace {

using namespace std::chrono_literals;

// Would take years.
constexpr const char* endless =
    "Select Count_Big(*) As n From ia_subsidiary a, ia_subsidiary b, ia_subsidiary c, ia_subsidiary d, ia_subsidiary e, "
    "ia_subsidiary f, ia_subsidiary g, ia_subsidiary h";

class CancelOverTds : public tds::test::WireTest {
 protected:
  // Whether what runs was ended by a request that came `after` its beginning, and how long it took then.
  template <typename Action>
  static std::pair<bool, std::chrono::milliseconds> stopped(std::chrono::milliseconds after, Action action) {
    const auto request = std::make_shared<tsql::StopRequest>();
    std::chrono::steady_clock::time_point asked;
    std::thread person([&] {
      std::this_thread::sleep_for(after);
      asked = std::chrono::steady_clock::now();
      request->request();
    });
    bool ended = false;
    {
      const tsql::StopScope scope(request);
      try {
        action();
      } catch (const tsql::Stopped&) {
        ended = true;
      }
    }
    const auto end = std::chrono::steady_clock::now();
    person.join();
    return {ended, std::chrono::duration_cast<std::chrono::milliseconds>(end - asked)};
  }

  static std::string numberFrom(tsql::Database& database) {
    const auto rows = database.query("Select Count(*) As n From ia_subsidiary Where AutoID > 0");
    EXPECT_TRUE(rows->next());
    std::string number = tsql::toText(rows->value(0)).value_or("null");
    EXPECT_FALSE(rows->next());
    return number;
  }

  // Since the last time.
  int newAttentions() { return endpoint_.attentions() - std::exchange(attentions_, endpoint_.attentions()); }

  std::unique_ptr<tsql::Database> database_ = connect(ConnectionString(connectionString()), {});
  int attentions_ = endpoint_.attentions();
};

TEST_F(CancelOverTds, AStatementThatRunsIsEndedAndTheSessionGoesOn) {
  database_->execute("Create Table #kept (i int) Insert Into #kept Values (7)");
  const std::string before = numberFrom(*database_);
  for (int round = 1; round <= 3; ++round) {
    const auto [ended, took] = stopped(100ms, [&] { database_->query(endless); });
    EXPECT_TRUE(ended);
    EXPECT_LT(took, 10s);
    EXPECT_EQ(newAttentions(), 1);
    EXPECT_EQ(numberFrom(*database_), before);
  }
  const auto rows = database_->query("Select i From #kept");
  ASSERT_TRUE(rows->next()) << "the session has its temporary table";
  EXPECT_EQ(tsql::toText(rows->value(0)), "7");
  EXPECT_EQ(endpoint_.connections(), 1);
}

TEST_F(CancelOverTds, RowsThatAreOnTheirWayEnd) {
  const std::string before = numberFrom(*database_);
  const auto [ended, took] = stopped(100ms, [&] {
    const auto rows = database_->query("Select a.* From ia_subsidiary a, ia_subsidiary b, ia_subsidiary c");
    while (rows->next()) {
    }
  });
  EXPECT_TRUE(ended);
  EXPECT_LT(took, 10s);
  EXPECT_EQ(newAttentions(), 1);
  EXPECT_EQ(numberFrom(*database_), before);
}

// The person who reads only the beginning of a long result.
TEST_F(CancelOverTds, ACursorThatIsLeftEarlyEndsTheStatement) {
  const std::string before = numberFrom(*database_);
  for (int round = 0; round < 3; ++round) {
    const auto rows = database_->query("Select a.* From ia_subsidiary a, ia_subsidiary b, ia_subsidiary c");
    ASSERT_TRUE(rows->next());
  }
  EXPECT_EQ(newAttentions(), 3);
  EXPECT_EQ(numberFrom(*database_), before);
}

// A statement that changes the account has changed nothing when it is ended.
TEST_F(CancelOverTds, AChangeThatIsEndedHasNoEffect) {
  database_->execute("Create Table #many (n bigint)");
  const auto [ended, took] = stopped(100ms, [&] {
    database_->execute(
        "Insert Into #many Select a.AutoID From ia_subsidiary a, ia_subsidiary b, ia_subsidiary c, ia_subsidiary d");
  });
  EXPECT_TRUE(ended);
  EXPECT_LT(took, 10s);
  const auto rows = database_->query("Select Count(*) As n From #many");
  ASSERT_TRUE(rows->next());
  EXPECT_EQ(tsql::toText(rows->value(0)), "0");
}

}  // namespace
}  // namespace quillon::odbc
