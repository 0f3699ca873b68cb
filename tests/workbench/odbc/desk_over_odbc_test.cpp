// The desk on an account that is on a server.
#include <gmock/gmock.h>

#include "tests/workbench/desk/desk_test_base.h"
#include "tests/workbench/odbc/engine_server.h"

namespace quillon::workbench::desk {
namespace {

using testing::HasSubstr;
using testing::Not;

class DeskOverOdbc : public test::DeskTest {
 protected:
  void SetUp() override { api_ = deskOn(AccountSource(odbc::test::EngineServer::connectionString())); }

  std::unique_ptr<DeskApi> deskOn(AccountSource account) const {
    return std::make_unique<DeskApi>(DeskOptions{.account = std::move(account),
                                                 .filters = SavedFilters(filters_.path()),
                                                 .layouts = KeptLayouts(filters_.path())});
  }
  static std::vector<std::string> tables() {
    return tsql::Connection::open(accountFile(), tsql::OpenMode::readOnly)->tables("");
  }
  // A report's lines with their totals.
  Json linesOf(const std::string& report) {
    const std::string run = done(report);
    const Json shown = view(run, {{"layout", "lines"}, {"sort", {{{"column", "cInvName"}, {"descending", true}}}}});
    Json all = {{"rows", allRows(run, shown)}, {"totals", shown["totals"]}, {"count", shown["lineCount"]}};
    ask("DELETE", run);
    return all;
  }

  odbc::test::EngineServer server_{accountFile()};
};

TEST_F(DeskOverOdbc, ShowsTheRowsOfAnAccountFile) {
  const auto before = tables();
  for (const char* report : {"sfc-item", "fx-wt"}) {
    const Json onServer = linesOf(report);
    EXPECT_GT(onServer["count"], 500);
    api_ = deskOn(AccountSource::inFile(accountFile()));
    EXPECT_EQ(linesOf(report), onServer) << report;
    SetUp();
  }
  EXPECT_EQ(tables(), before) << "a run that is closed has left nothing";
  EXPECT_EQ(server_.openSessions, 0);
}

TEST_F(DeskOverOdbc, TheEndOfTheProgramLeavesNoTable) {
  const auto before = tables();
  const std::string run = done("fx-wt");
  view(run, {{"layout", "vouchers"}});
  EXPECT_GT(tables().size(), before.size());
  api_.reset();
  EXPECT_EQ(tables(), before);
  EXPECT_EQ(server_.openSessions, 0);
}

TEST_F(DeskOverOdbc, AStoppedRunLeavesNoTable) {
  const auto before = tables();
  const test::Answer started = post("runs", {{"report", "sfc-item"}, {"values", {{"cModal", {{"value", "2"}}}}}});
  const std::string path = "runs/" + started.json["id"].dump();
  test::KeptSink sink;
  sink.leavesAfter = 1;  // as soon as a statement runs
  ask("GET", path + "/events").response.stream(sink);
  post(path + "/stop");
  EXPECT_THAT(streamed(ask("GET", path + "/events")), HasSubstr("\"state\":\"stopped\""));
  EXPECT_EQ(tables(), before);
}

TEST_F(DeskOverOdbc, TellsNeitherConnectionStringNorPassword) {
  const Json account = get("account");
  EXPECT_THAT(account.dump(), Not(HasSubstr("geheim")));
  EXPECT_THAT(account["name"].get<std::string>(), Not(HasSubstr("=")));
  server_.dieAfter(0);
  const test::Answer refused = ask("GET", "account");
  EXPECT_EQ(refused.status, 503);
  EXPECT_THAT(refused.message(), Not(HasSubstr("geheim")));
  const std::string run = this->run("sfc-item");
  EXPECT_THAT(get(run).dump(), Not(HasSubstr("geheim")));
}

}  // namespace
}  // namespace quillon::workbench::desk
