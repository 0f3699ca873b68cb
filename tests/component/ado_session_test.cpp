#include "component/ado_session.h"

#include <gtest/gtest.h>

#include "component/platform_adapter.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/fake_platform.h"

namespace quillon::component::test {

using automation::LiveCount;
using automation::Variant;
using automation::test::ComScope;
namespace {

using Calls = std::vector<std::string>;

class AdoSessionTest : public testing::Test {
 protected:
  void TearDown() override {
    session.reset();
    EXPECT_EQ(LiveCount::value(), classObjects) << "nothing but the class objects of the fake platform";
  }

  // The calls since the last look.
  Calls calls() {
    Calls seen;
    seen.swap(recorder.calls);
    return seen;
  }

  ComScope apartment;
  Recorder recorder;
  FakePlatform platform{recorder};
  long classObjects = LiveCount::value();
  std::shared_ptr<Session> session = LateBoundPlatform().createSession();
};

TEST_F(AdoSessionTest, SetsTheConnectionUpAndOpensIt) {
  session->setCursorLocation(CursorLocation::client);
  session->setConnectionString("Provider=Fake");
  session->setConnectionTimeout(0);
  session->setCommandTimeout(0);
  session->open("", "", optionsUnspecified);
  EXPECT_EQ(session->state(), 1);
  session->close();
  EXPECT_EQ(session->state(), stateClosed);
  EXPECT_EQ(calls(), (Calls{"new ADODB.Connection", "Connection.CursorLocation = 3",
                            "Connection.ConnectionString = \"Provider=Fake\"", "Connection.ConnectionTimeout = 0",
                            "Connection.CommandTimeout = 0", "Connection.Open(\"\", \"\", \"\", -1)",
                            "Connection.State", "Connection.Close", "Connection.State"}));
}

TEST_F(AdoSessionTest, ExecutesWithRecordsAffectedByReference) {
  calls();
  EXPECT_EQ(session->execute("Delete T"), 3);
  EXPECT_EQ(calls(), Calls{"Connection.Execute(\"Delete T\", ref Empty, -1)"});
}

TEST_F(AdoSessionTest, OpensARecordsetOnTheConnection) {
  calls();
  platform.rows = [](const std::string& sql) -> std::vector<std::vector<Variant>> {
    EXPECT_EQ(sql, "Select a, b From T");
    return {{Variant("x"), Variant::null()}, {Variant::fromDate(45356.0), Variant(1.5)}};
  };
  const auto rows = session->query("Select a, b From T", {});
  EXPECT_FALSE(rows->eof());
  EXPECT_EQ(rows->text(0), "x");
  EXPECT_EQ(rows->text(1), std::nullopt);
  rows->moveNext();
  EXPECT_EQ(rows->text(0), "2024-03-05");
  EXPECT_EQ(rows->text(1), "1.5");
  rows->moveNext();
  EXPECT_TRUE(rows->eof());
  rows->close();
  EXPECT_EQ(calls(), (Calls{"new ADODB.Recordset", "Recordset.Open(\"Select a, b From T\", <Connection>, 3, 3, -1)",
                            "Recordset.EOF", "Recordset.Fields", "Fields.Item(0)", "Field.Value", "Recordset.Fields",
                            "Fields.Item(1)", "Field.Value", "Recordset.MoveNext", "Recordset.Fields", "Fields.Item(0)",
                            "Field.Value", "Recordset.Fields", "Fields.Item(1)", "Field.Value", "Recordset.MoveNext",
                            "Recordset.EOF", "Recordset.Close"}));
}

TEST_F(AdoSessionTest, ARecordsetIsOpenedAsItIsAskedFor) {
  calls();
  session->query("Select 1", {.cursorType = CursorType::fixed, .lockType = LockType::readOnly, .cursorLocation = {}});
  session->query("Select 2", {.cursorType = CursorType::forwardOnly,
                              .lockType = LockType::optimistic,
                              .cursorLocation = CursorLocation::client});
  EXPECT_EQ(calls(),
            (Calls{"new ADODB.Recordset", "Recordset.Open(\"Select 1\", <Connection>, 3, 1, -1)", "new ADODB.Recordset",
                   "Recordset.CursorLocation = 3", "Recordset.Open(\"Select 2\", <Connection>, 0, 3, -1)"}));
}

TEST_F(AdoSessionTest, AFailureKeepsAdosOwnWords) {
  calls();
  recorder.failAt = 1;
  try {
    session->execute("Select wrong");
    FAIL() << "nothing was thrown";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), Recorder::failure);
    EXPECT_EQ(error.source(), "Fake");
    EXPECT_EQ(error.description(), "refused: Connection.Execute(\"Select wrong\", ref Empty, -1)");
  }
}

}  // namespace
}  // namespace quillon::component::test
