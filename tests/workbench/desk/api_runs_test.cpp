// The interface's runs and what comes of them.
#include <atomic>
#include <fstream>

#include "tests/workbench/desk/desk_test_base.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/presentation/fingerprint_file.h"
#include "workbench/runs/report_layouts.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench::desk {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class Silent final : public RunObserver {
 public:
  void shown(std::string_view /*message*/) override {}
  void noted(std::string_view /*line*/) override {}
};

class DeskRuns : public test::DeskTest {
 protected:
  // An inventory that the ledger has lines of and keeps neither by batch nor by free items, for the detail ledger.
  static Json ledgerValues() {
    const auto account = AccountSource::inFile(accountFile()).open(tsql::OpenMode::existing);
    const auto rows = account->query(
        "Select Top 1 cInvCode, cWhCode From ia_subsidiary Where dKeepDate >= '2024-01-01' And IsNull(cBatchIA, N'') = N'' "
        "And IsNull(cFree1, N'') = N'' And IsNull(cFree2, N'') = N'' "
        "Group By cInvCode, cWhCode Order By Count(*) Desc");
    EXPECT_TRUE(rows->next());
    return {{"cInvCode", {{"value", tsql::toText(rows->value(0)).value_or("")}}},
            {"cWhCode", {{"value", tsql::toText(rows->value(1)).value_or("")}}}};
  }
  static Json valuesFor(const std::string& report) { return report == "fx-detail" ? ledgerValues() : Json::object(); }

  // The same report made without the desk.
  static std::unique_ptr<MadeReport> reportOf(const std::string& report) {
    Silent observer;
    ReportRequest request{
        .report = report, .account = AccountSource::inFile(accountFile()), .language = Language::english};
    const Json values = valuesFor(report);
    for (const auto& [key, value] : values.items())
      request.values.push_back({.key = key, .value = value["value"]});
    return makeReport(request, observer);
  }
  static Json cellsOf(const LaidOutReport& laid, const ViewRow& row) {
    Json cells = Json::array();
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
      const ReportColumn& column = laid.sections[0].view.columns[i].column;
      cells.push_back(tsql::isNull(row.cells[i]) ? Json() : Json(cellText(laid.heading, column, row.cells[i])));
    }
    return {rowKindName(row.kind), row.level, cells};
  }
  // Compares what the desk shows with the layout as the commands write it.
  void expectLayout(const std::string& report, const std::string& run, const Json& asked, LayoutOptions options) {
    SCOPED_TRACE(report + " " + asked.dump());
    const Json shown = view(run, asked);
    const auto made = reportOf(report);
    const LaidOutReport laid = laidOut(*made, Language::english, options, LayoutOutput::table);
    const View& expected = laid.sections.at(0).view;
    ASSERT_EQ(shown["columns"].size(), expected.columns.size());
    for (std::size_t i = 0; i < expected.columns.size(); ++i) {
      EXPECT_EQ(shown["columns"][i]["name"], expected.columns[i].column.name);
      EXPECT_EQ(shown["columns"][i]["caption"], expected.columns[i].caption(Language::english));
      EXPECT_EQ(shown["columns"][i]["key"], expected.columns[i].key);
    }
    EXPECT_EQ(shown["lineCount"], expected.lineCount);
    EXPECT_EQ(shown["columnsLeftOut"], expected.columnsLeftOut);
    std::vector<Json> rows, totals;
    for (const auto reader = expected.rows(); reader->next();)
      rows.push_back(cellsOf(laid, reader->row()));
    for (const ViewRow& row : expected.totals)
      totals.push_back(cellsOf(laid, row));
    const Json all = allRows(run, shown);
    ASSERT_EQ(all.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
      EXPECT_EQ(all[i]["n"], i);
      EXPECT_EQ((Json{all[i]["kind"], all[i]["level"], all[i]["cells"]}), rows[i]) << i;
    }
    ASSERT_EQ(shown["totals"].size(), totals.size());
    for (std::size_t i = 0; i < totals.size(); ++i)
      EXPECT_EQ((Json{shown["totals"][i]["kind"], shown["totals"][i]["level"], shown["totals"][i]["cells"]}),
                totals[i]);
    EXPECT_EQ(ask("DELETE", pathOf(run, shown)).status, 200);
  }

  std::string exported(const std::string& run, const Json& view, const std::string& format) {
    const test::Answer answer = ask("GET", pathOf(run, view) + "/export", {}, {{"format", format}, {"captions", "1"}});
    EXPECT_EQ(answer.status, 200) << answer.response.body;
    EXPECT_EQ(answer.response.headers.at(0).first, "Content-Disposition");
    EXPECT_THAT(answer.response.headers.at(0).second, StartsWith("attachment; filename=\""));
    return streamed(answer);
  }
};

TEST_F(DeskRuns, EveryReportRunsAndTellsItsStatements) {
  for (const Report& report : reports()) {
    const std::string& name = report.registration.name;
    SCOPED_TRACE(name);
    const std::string path = done(name, valuesFor(name));
    const Json info = get(path);
    EXPECT_EQ(info["report"], name);
    EXPECT_GT(info["rowCount"], 0);
    EXPECT_EQ(info["error"], nullptr);
    EXPECT_EQ(info["conditions"].empty(), name == "fx-wt") << "which asks for nothing";
    ASSERT_FALSE(info["statements"].empty());
    for (const Json& statement : info["statements"]) {
      EXPECT_FALSE(statement["sql"].get<std::string>().empty());
      EXPECT_TRUE(statement["ms"].is_number());
    }
    EXPECT_THAT(info.dump(), Not(HasSubstr(accountFile().parent_path().string())));
  }
  EXPECT_THAT(get("runs"), SizeIs(4));
}

TEST_F(DeskRuns, EventsTellEachStatementAndTheEnd) {
  const std::string path = done("sfc-item");
  const std::string events = streamed(ask("GET", path + "/events"));
  EXPECT_THAT(events, StartsWith("event: statement\ndata: {\"n\":1,\"sql\":"));
  EXPECT_THAT(events, HasSubstr("event: done\ndata: {\"state\":\"done\",\"rowCount\":"));
  std::size_t count = 0;
  for (auto at = events.find("event: statement"); at != std::string::npos; at = events.find("event: statement", at + 1))
    ++count;
  EXPECT_EQ(count, get(path)["statements"].size());
}

TEST_F(DeskRuns, AReaderOfEventsMayGo) {
  const std::string path = done("sfc-item");
  test::KeptSink sink;
  sink.leavesAfter = 1;
  ask("GET", path + "/events").response.stream(sink);
  EXPECT_THAT(sink.text, HasSubstr("event: statement"));
}

TEST_F(DeskRuns, ARunTakesTheFilterThatItsDialogAccepted) {
  const Json opened = post("dialogs", {{"report", "sfc-item"}, {"lang", "en"}}).json;
  const std::string dialog = "dialogs/" + opened["id"].dump();
  const Json asked = {{"report", "sfc-item"}, {"lang", "en"}, {"dialog", opened["id"]}};
  const test::Answer early = post("runs", asked);
  EXPECT_EQ(early.status, 409);
  EXPECT_EQ(early.code(), "state");
  post(dialog + "/set", {{"key", "cModal"}, {"value", "1"}});
  ASSERT_EQ(post(dialog + "/click").json["accepted"], true);
  const test::Answer started = post("runs", asked);
  ASSERT_EQ(started.status, 201);
  const std::string path = "runs/" + started.json["id"].dump();
  streamed(ask("GET", path + "/events"));
  EXPECT_EQ(get(path)["conditions"][1], (Json{"Report mode", "by cost item"}));
  EXPECT_EQ(post("runs", {{"report", "fx-wt"}, {"dialog", opened["id"]}}).code(), "dialog");
  EXPECT_EQ(post("runs", {{"report", "sfc-item"}, {"dialog", 999}}).status, 404);
}

TEST_F(DeskRuns, ARunThatCannotBeSaysWhy) {
  const std::string path = run("fx-detail");
  const Json info = get(path);
  EXPECT_EQ(info["state"], "failed");
  EXPECT_THAT(info["error"].get<std::string>(), HasSubstr("cInvCode (Inventory): must be given"));
  EXPECT_EQ(post(path + "/views", Json::object()).status, 409);
  const Json wrong = get(run("sfc-item", {{"iYear", {{"value", "1066"}}}}));
  EXPECT_EQ(wrong["state"], "failed");
  EXPECT_THAT(wrong["error"].get<std::string>(), HasSubstr("1066"));
}

TEST_F(DeskRuns, EachLayoutIsThatOfTheCommands) {
  for (const Report& report : reports()) {
    const std::string& name = report.registration.name;
    const std::string run = done(name, valuesFor(name));
    for (const Layout layout : report.layouts) {
      // Details are rows of their own here, as a command shows them in the documents.
      const bool ledger = layout == Layout::ledger;
      expectLayout(name, run, {{"layout", layoutName(layout)}, {"details", true}},
                   {.layout = layout, .details = ledger});
      expectLayout(name, run, {{"layout", layoutName(layout)}, {"details", true}, {"allColumns", true}},
                   {.layout = layout, .allColumns = true, .details = ledger});
    }
  }
}

TEST_F(DeskRuns, RowsAreSortedFilteredAndGroupedInTheDatabase) {
  const std::string run = done("fx-wt");
  expectLayout("fx-wt", run, {{"layout", "lines"}, {"sort", {{{"column", "iItemOutPrice"}, {"descending", true}}}}},
               {.layout = Layout::lines, .arrangement = {.sort = {"-iItemOutPrice"}}});
  expectLayout("fx-wt", run,
               {{"layout", "lines"},
                {"columns", {"cVouType", "cInvName", "iItemOutPrice"}},
                {"sort", {{{"column", "cInvName"}}, {{"column", "dVouDate"}, {"descending", true}}}},
                {"where", {{{"column", "cInvCode"}, {"kind", "contains"}, {"values", {"1"}}}}}},
               {.layout = Layout::lines,
                .arrangement = {.columns = {"cVouType,cInvName,iItemOutPrice"},
                                .sort = {"cInvName", "-dVouDate"},
                                .where = {"cInvCode~1"}}});
  expectLayout("fx-wt", run,
               {{"layout", "lines"},
                {"groupBy", {"cWhName", "cVouType"}},
                {"where", {{{"column", "dVouDate"}, {"kind", "range"}, {"values", {"2024-01-01", "2024-06-30"}}}}}},
               {.layout = Layout::lines,
                .arrangement = {.groupBy = {"cWhName,cVouType"}, .where = {"dVouDate=2024-01-01..2024-06-30"}}});
  expectLayout("fx-wt", run,
               {{"layout", "vouchers"},
                {"details", true},
                {"groupBy", {"cVouTypeName"}},
                {"where", {{{"column", "cVouType"}, {"kind", "equals"}, {"values", {"10", "11"}}}}}},
               {.layout = Layout::vouchers, .arrangement = {.groupBy = {"cVouTypeName"}, .where = {"cVouType=10,11"}}});
}

TEST_F(DeskRuns, OtherLayoutsAreArrangedToo) {
  const std::string summary = done("sfc-item");
  expectLayout(
      "sfc-item", summary,
      {{"layout", "summary"},
       {"columns", {"cFXName", "closingAmount"}},
       {"sort", {{{"column", "closingAmount"}, {"descending", true}}}}},
      {.layout = Layout::summary, .arrangement = {.columns = {"cFXName,closingAmount"}, .sort = {"-closingAmount"}}});
  const std::string ledger = done("fx-detail", ledgerValues());
  expectLayout("fx-detail", ledger,
               {{"layout", "ledger"}, {"details", true}, {"sort", {{{"column", "iOutPrice"}, {"descending", true}}}}},
               {.layout = Layout::ledger, .arrangement = {.sort = {"-iOutPrice"}}, .details = true});
}

TEST_F(DeskRuns, LongResultsComeInOrderPageByPage) {
  const std::string run = done("sfc-item", {{"cModal", {{"value", "2"}}}});
  const Json shown = view(run, {{"layout", "lines"}, {"sort", {{{"column", "cInvCode"}, {"descending", true}}}}});
  ASSERT_GT(shown["lineCount"], 600) << "more than are there before the rows are ordered";
  EXPECT_EQ(shown["rowCount"], shown["lineCount"]);
  std::size_t code = 0;
  while (shown["columns"][code]["name"] != "cInvCode")
    ++code;
  const Json all = allRows(run, shown);
  for (std::size_t i = 1; i < all.size(); ++i)
    EXPECT_GE(all[i - 1]["cells"][code].get<std::string>(), all[i]["cells"][code].get<std::string>());
  const std::string rows = pathOf(run, shown) + "/rows";
  const Json last = get(rows, {{"offset", std::to_string(all.size() - 1)}});
  ASSERT_THAT(last["rows"], SizeIs(1));
  EXPECT_EQ(last["rows"][0], all.back());
  EXPECT_THAT(get(rows, {{"offset", std::to_string(all.size())}})["rows"], IsEmpty());
  EXPECT_THAT(get(rows, {{"offset", "99999999999"}})["rows"], IsEmpty());
  EXPECT_THAT(get(rows, {{"limit", "0"}})["rows"], IsEmpty());
  EXPECT_EQ(ask("GET", rows, {}, {{"offset", "-1"}}).code(), "form");
}

TEST_F(DeskRuns, ColumnsThatAreNotShownAreNamed) {
  const std::string run = done("fx-wt");
  const Json shown = view(run, {{"layout", "lines"}, {"columns", {"cInvCode", "iItemOutPrice"}}});
  ASSERT_THAT(shown["columns"], SizeIs(2));
  ASSERT_FALSE(shown["hidden"].empty());
  std::set<std::string> hidden;
  for (const Json& column : shown["hidden"])
    hidden.insert(column["name"]);
  EXPECT_TRUE(hidden.contains("cInvName"));
  EXPECT_FALSE(hidden.contains("cInvCode"));
}

TEST_F(DeskRuns, AnExportThatFailsBeforeItsFirstByteSaysWhy) {
  const std::string run = done("sfc-item");
  const Json shown = view(run, Json::object());
  for (const char* format : {"csv", "xlsx", "html"}) {
    const test::Answer answer = ask("GET", pathOf(run, shown) + "/export", {}, {{"format", format}});
    EXPECT_TRUE(answer.response.headWaits);
    EXPECT_FALSE(streamed(answer).empty());
  }
  const test::Answer late = ask("GET", pathOf(run, shown) + "/export", {}, {{"format", "csv"}});
  ASSERT_EQ(late.status, 200);
  EXPECT_EQ(ask("DELETE", run).status, 200);
  test::KeptSink sink;
  try {
    late.response.stream(sink);
    ADD_FAILURE() << "the run is closed";
  } catch (const StreamRefused& refused) {
    EXPECT_EQ(refused.answer().status, 404);
    EXPECT_THAT(refused.answer().body, HasSubstr("it may have been closed"));
  }
  EXPECT_THAT(sink.text, IsEmpty());
}

TEST_F(DeskRuns, PartsAreFoldedAwayAndOut) {
  const std::string run = done("fx-detail", ledgerValues());
  const Json open = view(run, {{"layout", "ledger"}, {"details", true}});
  const Json folded = view(run, {{"layout", "ledger"}});
  const Json all = allRows(run, open), some = allRows(run, folded);
  ASSERT_LT(some.size(), all.size());
  std::size_t at = 0;
  for (const Json& row : some) {
    EXPECT_EQ(row["cells"], all[at++]["cells"]);
    const Json details = get(pathOf(run, folded) + "/details", {{"n", row["n"].dump()}})["rows"];
    EXPECT_EQ(details.size(), row.value("details", 0));
    for (const Json& detail : details) {
      EXPECT_EQ(detail, (Json{{"kind", "detail"}, {"level", all[at]["level"]}, {"cells", all[at]["cells"]}}));
      ++at;
    }
  }
  EXPECT_EQ(at, all.size());
}

TEST_F(DeskRuns, ColumnsThatOnlyPartsFillAreMarkedAndNotExported) {
  const std::string run = done("fx-detail", ledgerValues());
  const auto ofDetails = [](const Json& shown) {
    std::vector<std::string> names;
    for (const Json& column : shown["columns"]) {
      if (column.contains("ofDetails")) names.push_back(column["name"]);
    }
    return names;
  };
  const auto head = [&](const Json& shown) {
    const std::string csv = exported(run, shown, "csv");
    return csv.substr(0, csv.find('\n'));
  };
  const Json folded = view(run, {{"layout", "ledger"}});
  EXPECT_EQ(ofDetails(folded), (std::vector<std::string>{"cfxCode", "cfxName"}));
  EXPECT_THAT(head(folded), Not(HasSubstr("Cost item")));
  const Json chosen = view(run, {{"layout", "ledger"}, {"columns", {"dKeepDate", "cfxName", "iInPrice"}}});
  EXPECT_EQ(ofDetails(chosen), (std::vector<std::string>{"cfxName"}));
  EXPECT_THAT(head(chosen), Not(HasSubstr("Cost item")));
  const Json open = view(run, {{"layout", "ledger"}, {"details", true}});
  EXPECT_THAT(ofDetails(open), IsEmpty());
  EXPECT_THAT(head(open), HasSubstr("Cost item"));
  EXPECT_THAT(ofDetails(view(run, {{"layout", "lines"}})), IsEmpty());
}

TEST_F(DeskRuns, ARowOpensItsDocument) {
  const std::string run = done("fx-wt");
  for (const char* layout : {"lines", "vouchers"}) {
    const Json shown = view(run, {{"layout", layout}, {"columns", Json::array()}});
    const Json rows = allRows(run, shown);
    const auto opens = std::ranges::find_if(rows, [](const Json& row) { return row["opens"] == true; });
    ASSERT_NE(opens, rows.end()) << layout;
    const test::Answer answer = post(pathOf(run, shown) + "/document", {{"n", (*opens)["n"]}});
    ASSERT_EQ(answer.status, 200) << answer.response.body;
    const Json& documents = answer.json["documents"];
    ASSERT_FALSE(documents.empty());
    EXPECT_FALSE(documents[0]["title"].get<std::string>().empty());
    EXPECT_FALSE(documents[0]["fields"].empty());
    ASSERT_FALSE(documents[0]["rows"].empty());
    EXPECT_EQ(documents[0]["rows"][0].size(), documents[0]["columns"].size());
    EXPECT_TRUE(documents.size() == 2 || !answer.json["messages"].empty()) << "the voucher, or why there is none";
  }
}

TEST_F(DeskRuns, ALedgersLineOpensTheSameDocumentInEachLayout) {
  const std::string run = done("fx-detail", ledgerValues());
  std::vector<std::string> documents;
  for (const char* layout : {"ledger", "columnar"}) {
    const Json shown = view(run, {{"layout", layout}});
    const Json rows = allRows(run, shown);
    EXPECT_EQ(rows[0]["kind"], "opening");
    EXPECT_EQ(rows[0]["opens"], false);
    EXPECT_EQ(post(pathOf(run, shown) + "/document", {{"n", 0}}).code(), "document");
    const auto line = std::ranges::find_if(rows, [](const Json& row) { return row["kind"] == "line"; });
    ASSERT_EQ((*line)["opens"], true);
    documents.push_back(post(pathOf(run, shown) + "/document", {{"n", (*line)["n"]}}).json.dump());
  }
  EXPECT_EQ(documents[0], documents[1]);
  EXPECT_EQ(post("runs/1/views/1/document", {{"n", 999999}}).code(), "unknown");
  EXPECT_EQ(post("runs/1/views/1/document").code(), "form");
}

TEST_F(DeskRuns, RowsOfASummaryOpenNothing) {
  const std::string run = done("sfc-item");
  const Json shown = view(run, {{"layout", "lines"}});
  EXPECT_EQ(allRows(run, shown)[0]["opens"], false);
  EXPECT_EQ(post(pathOf(run, shown) + "/document", {{"n", 0}}).code(), "document");
}

TEST_F(DeskRuns, AnExportIsWhatIsShown) {
  const std::string run = done("fx-wt");
  const Json shown = view(run, {{"layout", "lines"},
                                {"columns", {"cInvCode", "iItemOutPrice"}},
                                {"sort", {{{"column", "iItemOutPrice"}, {"descending", true}}}}});
  const Json rows = allRows(run, shown);
  const std::string csv = exported(run, shown, "csv");
  EXPECT_THAT(csv, StartsWith("\xEF\xBB\xBF"));
  std::vector<std::string> lines;
  std::istringstream in(csv);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line.substr(0, line.find('\r')));
  ASSERT_EQ(lines.size(), rows.size() + 1);
  EXPECT_THAT(lines[0], HasSubstr(shown["columns"][0]["caption"].get<std::string>()));
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_THAT(lines[i + 1], StartsWith(rows[i]["cells"][0].get<std::string>() + ",")) << i;
  EXPECT_THAT(exported(run, shown, "html"), HasSubstr("<table"));
  EXPECT_THAT(exported(run, shown, "xlsx"), StartsWith("PK"));
  EXPECT_EQ(ask("GET", pathOf(run, shown) + "/export", {}, {{"format", "doc"}}).code(), "format");
}

TEST_F(DeskRuns, PagesAndWorkbooksHaveTheRunsFingerprint) {
  const std::string run = done("outsum-item", {{"cWhCode", {{"value", "01"}}}});
  const test::TemporaryFile file(".export");
  const auto fingerprintsOf = [&](const Json& shown, const std::string& format) {
    std::ofstream(file.path(), std::ios::binary) << exported(run, shown, format);
    return readFingerprints(file.path());
  };
  const Json lines = view(run, {{"layout", "lines"}, {"columns", {"cInvCode"}}});
  const RunFingerprint fingerprint = fingerprintsOf(lines, "html").at(0);
  EXPECT_EQ(fingerprint.report, "outsum-item");
  EXPECT_EQ(fingerprint.accountName, get("account")["name"]) << "without its folder";
  EXPECT_EQ(fingerprint.rows, get(run)["rowCount"]);
  EXPECT_THAT(fingerprint.filter, Contains(FingerprintItem{.name = "cWhCode", .value = "01", .multiple = true}));
  // It is that of the run, whatever is shown of it.
  const Json chosen = view(run, {{"layout", "lines"},
                                 {"lang", "zh"},
                                 {"where", {{{"column", "iMoney"}, {"kind", "range"}, {"values", {"100", ""}}}}}});
  for (const Json& shown : {lines, chosen, view(run, {{"layout", "summary"}})}) {
    for (const char* format : {"html", "xlsx"})
      EXPECT_EQ(canonicalText(fingerprintsOf(shown, format).at(0)), canonicalText(fingerprint)) << format;
  }
  EXPECT_THAT(exported(run, lines, "html"), HasSubstr(fingerprintDigest(canonicalText(fingerprint))));
  EXPECT_THAT(exported(run, lines, "csv"), Not(HasSubstr(fingerprintDigest(canonicalText(fingerprint)))));
}

TEST_F(DeskRuns, FoldedPartsAreNotExported) {
  const std::string run = done("fx-wt");
  const Json shown = view(run, {{"layout", "vouchers"}});
  EXPECT_THAT(exported(run, shown, "csv"), Not(HasSubstr("\ndetail,")));
  EXPECT_THAT(exported(run, view(run, {{"layout", "vouchers"}, {"details", true}}), "csv"), HasSubstr("\ndetail,"));
}

TEST_F(DeskRuns, ArrangementsThatDoNotFitAreRefused) {
  const std::string run = done("fx-wt");
  const auto code = [&](const Json& asked) {
    const test::Answer answer = post(run + "/views", asked);
    return std::to_string(answer.status) + " " + answer.code();
  };
  EXPECT_EQ(code({{"layout", "tree"}}), "422 layout");
  EXPECT_EQ(code({{"layout", "nothing"}}), "422 layout");
  EXPECT_EQ(code({{"layout", "lines"}, {"columns", {"nothing"}}}), "422 value");
  EXPECT_EQ(code({{"layout", "lines"}, {"sort", {{{"column", "nothing"}}}}}), "422 value");
  EXPECT_EQ(code({{"layout", "lines"}, {"where", {{{"column", "dVouDate"}, {"values", {"soon"}}}}}}), "422 value");
  EXPECT_EQ(code({{"layout", "vouchers"}, {"groupBy", {"cfxCode"}}}), "422 value");
  EXPECT_EQ(code({{"columns", "cInvCode"}}), "400 form");
  EXPECT_EQ(code({{"where", {{{"column", "cInvCode"}, {"kind", "like"}, {"values", {"1"}}}}}}), "400 form");
  EXPECT_EQ(code({{"where", {{{"column", "cInvCode"}, {"kind", "range"}, {"values", {"1"}}}}}}), "400 form");
  EXPECT_EQ(ask("GET", run + "/views/9/rows").status, 404);
  EXPECT_EQ(ask("GET", run + "/views/x/rows").status, 404);
}

TEST_F(DeskRuns, NothingThatIsFoundIsAnAnswer) {
  const std::string run = done("fx-wt", {{"cVouCode", {{"value", "there is none"}}}});
  const Json shown = view(run, {{"layout", "lines"}});
  EXPECT_EQ(shown["lineCount"], 0);
  EXPECT_THAT(allRows(run, shown), IsEmpty());
  const std::string some = done("fx-wt");
  const Json none = view(some, {{"layout", "lines"}, {"where", {{{"column", "cInvCode"}, {"values", {"none"}}}}}});
  EXPECT_EQ(none["lineCount"], 0);
  EXPECT_THAT(allRows(some, none), IsEmpty());
}

TEST_F(DeskRuns, SeveralRunAtOnceAndEachHasItsOwnResult) {
  std::vector<std::string> paths;
  for (const char* report : {"sfc-item", "outsum-item", "fx-wt", "sfc-item"}) {
    const test::Answer started = post("runs", {{"report", report}, {"lang", "en"}});
    ASSERT_EQ(started.status, 201);
    paths.push_back("runs/" + started.json["id"].dump());
  }
  for (const std::string& path : paths)
    streamed(ask("GET", path + "/events"));
  EXPECT_EQ(get(paths[0])["state"], "done") << get(paths[0])["error"];
  EXPECT_EQ(get(paths[0])["rowCount"], get(paths[3])["rowCount"]);
  const Json one = view(paths[0], {{"layout", "summary"}}), other = view(paths[3], {{"layout", "summary"}});
  EXPECT_EQ(one["totals"], other["totals"]);
  EXPECT_EQ(ask("DELETE", paths[0]).status, 200);
  EXPECT_EQ(ask("GET", paths[0]).status, 404);
  EXPECT_EQ(allRows(paths[3], other).size(), other["rowCount"]);
}

// A folder for temporary files that no other program uses.
class TemporaryFolderOfOurOwn {
 public:
  TemporaryFolderOfOurOwn() : before_(std::filesystem::temp_directory_path()), folder_("") {
    std::filesystem::create_directory(folder_.path());
    use(folder_.path());
  }
  ~TemporaryFolderOfOurOwn() {
    use(before_);
    std::error_code ignored;
    std::filesystem::remove_all(folder_.path(), ignored);
  }
  TemporaryFolderOfOurOwn(const TemporaryFolderOfOurOwn&) = delete;
  TemporaryFolderOfOurOwn& operator=(const TemporaryFolderOfOurOwn&) = delete;

 private:
  static void use(const std::filesystem::path& folder) {
#ifdef _WIN32
    _wputenv_s(L"TMP", folder.c_str());
#else
    setenv("TMPDIR", folder.c_str(), 1);
#endif
  }

  std::filesystem::path before_;
  test::TemporaryFile folder_;
};

std::size_t scratchFolders() {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::temp_directory_path()))
    count += static_cast<std::size_t>(entry.path().filename().string().starts_with("quillon-run-"));
  return count;
}

std::size_t bytesOfTemporaryFiles() {
  std::size_t bytes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(std::filesystem::temp_directory_path()))
    bytes += entry.is_regular_file() ? static_cast<std::size_t>(entry.file_size()) : 0;
  return bytes;
}

TEST_F(DeskRuns, OfAStoppedRunNoRowStays) {
  const TemporaryFolderOfOurOwn temporary;
  const test::Answer started = post("runs", {{"report", "sfc-item"}, {"values", {{"cModal", {{"value", "2"}}}}}});
  const std::string path = "runs/" + started.json["id"].dump();
  test::KeptSink sink;
  sink.leavesAfter = 1;  // as soon as a statement runs
  ask("GET", path + "/events").response.stream(sink);
  EXPECT_GT(scratchFolders(), 0U);
  post(path + "/stop");
  ASSERT_THAT(streamed(ask("GET", path + "/events")), HasSubstr("\"state\":\"stopped\""));
  EXPECT_EQ(bytesOfTemporaryFiles(), 0U) << "of what it made before";
  EXPECT_EQ(ask("DELETE", path).status, 200);
  EXPECT_EQ(scratchFolders(), 0U);
}

TEST_F(DeskRuns, AStoppedRunStaysAndTheOthersGoOn) {
  const test::Answer first = post("runs", {{"report", "sfc-item"}, {"values", {{"cModal", {{"value", "2"}}}}}});
  const test::Answer second = post("runs", {{"report", "sfc-item"}});
  const std::string path = "runs/" + first.json["id"].dump();
  test::KeptSink sink;
  sink.leavesAfter = 1;  // as soon as a statement runs
  ask("GET", path + "/events").response.stream(sink);
  EXPECT_EQ(post(path + "/stop").status, 200);
  EXPECT_THAT(streamed(ask("GET", path + "/events")), HasSubstr("\"state\":\"stopped\""));
  EXPECT_EQ(get(path)["error"], nullptr);
  EXPECT_EQ(post(path + "/views", Json::object()).status, 409);
  EXPECT_EQ(post(path + "/stop").status, 200) << "a second time";
  const std::string other = "runs/" + second.json["id"].dump();
  streamed(ask("GET", other + "/events"));
  EXPECT_EQ(get(other)["state"], "done") << get(other)["error"];
  EXPECT_EQ(post(other + "/stop").status, 200);
  EXPECT_EQ(get(other)["state"], "done") << "what has ended stays as it is";
  EXPECT_GT(view(other, {{"layout", "lines"}})["lineCount"], 0);
}

TEST_F(DeskRuns, ClosingARunTakesItsTablesAlong) {
  const TemporaryFolderOfOurOwn temporary;
  const std::size_t before = scratchFolders();
  const std::string run = done("fx-wt");
  view(run, {{"layout", "vouchers"}});
  EXPECT_GT(scratchFolders(), before);
  EXPECT_EQ(ask("DELETE", run).status, 200);
  EXPECT_EQ(scratchFolders(), before);
  done("sfc-item");
  EXPECT_GT(scratchFolders(), before);
  api_.reset();
  EXPECT_EQ(scratchFolders(), before) << "so does the end of the program";
}

TEST_F(DeskRuns, TheAccountIsNotWrittenTo) {
  const auto contentOf = [] {
    std::ifstream in(accountFile(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  const std::string before = contentOf();
  for (const Report& report : reports())
    done(report.registration.name, valuesFor(report.registration.name));
  EXPECT_TRUE(contentOf() == before);
}

TEST_F(DeskRuns, RunsAndViewsAreLimited) {
  open({.runs = 1, .run = {.views = 2}});
  const std::string run = done("sfc-item");
  EXPECT_EQ(post("runs", {{"report", "sfc-item"}}).code(), "limit");
  const Json first = view(run, {{"layout", "summary"}}), second = view(run, {{"layout", "tree"}});
  get(pathOf(run, first) + "/rows");
  view(run, {{"layout", "lines"}});
  EXPECT_EQ(ask("GET", pathOf(run, first) + "/rows").status, 200);
  EXPECT_EQ(ask("GET", pathOf(run, second) + "/rows").status, 404) << "the one that was used longest ago";
}

TEST_F(DeskRuns, FewRunAtTheSameTime) {
  open({.running = 1});
  const test::Answer first = post("runs", {{"report", "sfc-item"}, {"values", {{"cModal", {{"value", "2"}}}}}});
  ASSERT_EQ(first.status, 201);
  const test::Answer second = post("runs", {{"report", "sfc-item"}});
  EXPECT_EQ(second.status, 429);
  EXPECT_EQ(second.code(), "limit");
  streamed(ask("GET", "runs/" + first.json["id"].dump() + "/events"));
  EXPECT_EQ(post("runs", {{"report", "sfc-item"}}).status, 201);
}

TEST_F(DeskRuns, AViewThatNobodyUsesIsClosed) {
  open({.run = {.idleView = std::chrono::seconds(0)}, .sweep = std::chrono::milliseconds(5)});
  const std::string run = done("sfc-item");
  const test::Answer opened = post(run + "/views", Json::object());
  ASSERT_EQ(opened.status, 201) << opened.response.body;
  const std::string path = pathOf(run, opened.json);
  int status = 200;
  for (int i = 0; i < 400 && status != 404; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    status = ask("GET", path + "/rows").status;
  }
  EXPECT_EQ(status, 404);
  EXPECT_EQ(get(run)["state"], "done") << "the run stays until it is closed";
}

TEST_F(DeskRuns, AnErrorOfTheAccountShowsNoPath) {
  const std::filesystem::path gone = accountFile().parent_path() / "quillon-no-such.account";
  api_ = std::make_unique<DeskApi>(DeskOptions{.account = AccountSource::inFile(gone),
                                               .filters = SavedFilters(filters_.path()),
                                               .layouts = KeptLayouts(layouts_.path())});
  const test::Answer account = ask("GET", "account");
  EXPECT_EQ(account.status, 503);
  EXPECT_THAT(account.message(), HasSubstr("quillon-no-such.account"));
  EXPECT_THAT(account.message(), Not(HasSubstr(gone.parent_path().string())));
  EXPECT_EQ(post("dialogs", {{"report", "sfc-item"}}).status, 503);
  const Json info = get(run("sfc-item"));
  EXPECT_EQ(info["state"], "failed");
  EXPECT_THAT(info["error"].get<std::string>(), Not(HasSubstr(gone.parent_path().string())));
}

TEST_F(DeskRuns, WrongRequestsAreRefused) {
  EXPECT_EQ(ask("POST", "runs", "nothing").code(), "json");
  EXPECT_EQ(ask("POST", "runs", "{}").code(), "form");
  EXPECT_EQ(post("runs", {{"report", "nothing"}}).status, 404);
  EXPECT_EQ(post("runs", {{"report", "sfc-item"}, {"dialog", "1"}}).code(), "form");
  for (const char* path : {"runs/1", "runs/x", "runs/1/views", "runs/1/events", "runs/1/views/1/rows"})
    EXPECT_EQ(ask("GET", path).status, 404) << path;
  const std::string run = done("sfc-item");
  EXPECT_EQ(ask("PUT", run).status, 404);
  EXPECT_EQ(ask("GET", run + "/stop").status, 404);
  EXPECT_EQ(ask("GET", run + "/views").status, 404);
  EXPECT_EQ(ask("GET", run + "/nothing").status, 404);
}

}  // namespace
}  // namespace quillon::workbench::desk
