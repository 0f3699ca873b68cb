#include "workbench/trace/trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "workbench/platform/json_file.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

using Json = nlohmann::ordered_json;

std::string casePath(const std::string& file) {
  return std::string(QUILLON_TRACE_CASES) + "/" + file;
}

struct Traced {
  std::vector<Json> lines;
  std::string notes;
  int status = 0;
};

std::vector<Json> parsedLines(std::istream& text) {
  std::vector<Json> lines;
  for (std::string line; std::getline(text, line);)
    lines.push_back(Json::parse(line));
  return lines;
}

Traced traced(const Json& filter, const Json& platform, const std::string& report = "sfc-item",
              const std::vector<std::string>& events = {}) {
  std::stringstream out;
  std::stringstream notes;
  Traced result;
  result.status = trace(report, filter, platform, out, notes, events);
  result.lines = parsedLines(out);
  result.notes = notes.str();
  return result;
}

// A filter that needs nothing of the platform.
const Json byCostItem = Json::parse(R"({"items":[{"name":"cModal","value":"1"},{"name":"iYear","value":"2024"}]})");

std::string executed(const Json& line) {
  return line.value("call", "") == "execute" ? line["sql"].get<std::string>() : std::string();
}

// --- Whole runs: CASE.json beside the lines that it prints, CASE.expected.jsonl. ---

class TraceCase : public testing::TestWithParam<const char*> {};

TEST_P(TraceCase, PrintsTheExpectedLines) {
  const Json description = readJsonFile(casePath(std::string(GetParam()) + ".json"));
  const Traced result = traced(description["filter"], description["platform"], description["report"],
                               description.value("events", std::vector<std::string>()));
  std::ifstream file(casePath(std::string(GetParam()) + ".expected.jsonl"), std::ios::binary);
  ASSERT_TRUE(file.is_open());
  const std::vector<Json> expected = parsedLines(file);
  ASSERT_EQ(result.lines.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(result.lines[i], expected[i]) << "line " << i + 1;
  EXPECT_EQ(result.status, expected.back().contains("error") ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, TraceCase,
                         testing::Values("cost_item_classes", "expense_types_of_a_bare_platform", "failing_statement",
                                         "outbound_summary_by_class", "dialog_of_the_outbound_summary",
                                         "dialog_of_the_receipt_issue_balance", "dialog_of_another_report",
                                         "detail_ledger_by_department", "detail_ledger_by_warehouse",
                                         "detail_ledger_of_an_impossible_range", "detail_ledger_of_a_bare_platform",
                                         "source_document", "ledger_voucher", "row_without_a_ledger_voucher",
                                         "balance_row", "dialog_of_the_detail_ledger",
                                         "dialog_of_the_detail_ledger_without_its_items", "voucher_report",
                                         "voucher_report_with_a_failing_statement", "dialog_of_the_voucher_report",
                                         "dialog_of_the_voucher_report_under_another_identifier"));

// --- Dialogs ---

TEST(TraceDialog, BeginsAnywhereWithItsConnectionOpen) {
  const Json platform = Json::parse(R"({"queries":{"MAX":[[2]]}})");
  const Traced result = traced(Json::object(), platform, "dialog-sfc", {"grade"});
  ASSERT_EQ(result.lines.size(), 2U);
  EXPECT_EQ(result.lines[0]["sql"], "select IsNull(MAX(iGrade),1) from Ca_FxClassDef");
  EXPECT_EQ(result.lines[1], Json::parse(R"({"effect":"gradeList","keys":[1,2]})"));
}

TEST(TraceDialog, RefusesWhatIsNoEvent) {
  for (const char* event : {"", "open", "change", "change:", "change:=1", "set:iYear", "view:cModal"}) {
    EXPECT_THROW(traced(Json::object(), Json::object(), "dialog-sfc", {event}), UserError) << event;
  }
  EXPECT_THROW(traced(byCostItem, Json::object(), "sfc-item", {"init"}), UserError);
}

TEST(TraceDialog, OfALedgerReportHasNoListsOfItsOwn) {
  for (const char* dialog : {"dialog-detail", "dialog-wt"}) {
    for (const char* event : {"year", "grade"})
      EXPECT_THROW(traced(Json::object(), Json::object(), dialog, {event}), UserError) << dialog << " " << event;
  }
}

// --- The form of the output ---

TEST(Trace, PrintsOneObjectALineWithoutBlankLines) {
  std::stringstream out;
  std::stringstream notes;
  EXPECT_EQ(trace("sfc-item", byCostItem, Json::object(), out, notes), 0);
  std::string line;
  ASSERT_TRUE(std::getline(out, line));
  EXPECT_EQ(line, R"({"call":"set","name":"CursorLocation","value":3})");
  while (std::getline(out, line)) {
    EXPECT_TRUE(line.starts_with("{\"call\":\"")) << line;
    EXPECT_TRUE(line.ends_with("}")) << line;
  }
  EXPECT_EQ(notes.str(), "");
}

TEST(Trace, WritesTextAsUtf8) {
  const Json platform = Json::parse(R"({"resources":{"Mirel.IA.CHHSSQL.00182":"期初结存"}})");
  std::stringstream out;
  std::stringstream notes;
  trace("sfc-item", byCostItem, platform, out, notes);
  EXPECT_NE(out.str().find("N'期初结存' As cState,1 As iState,"), std::string::npos);
}

TEST(Trace, AnErrorThatLeavesTheMemberIsTheLastLine) {
  const Traced result = traced(byCostItem, Json::parse(R"({"fail":["^\\(open\\)$"]})"));
  EXPECT_EQ(result.status, 1);
  ASSERT_EQ(result.lines.size(), 6U);
  EXPECT_EQ(result.lines[4], Json::parse(R"({"call":"open","user":"","password":"","options":-1})"));
  const Json& error = result.lines[5]["error"];
  EXPECT_EQ(error["hresult"], "0x80040e14");
  EXPECT_EQ(error["source"], "Quillon trace");
  EXPECT_EQ(error["description"], R"(refused, because the platform's description lets "^\(open\)$" fail)");
}

TEST(Trace, AnAbsorbedFailureEndsTheTraceAndIsNoted) {
  const Traced result = traced(byCostItem, Json::parse(R"({"fail":["^delete"]})"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(executed(result.lines.back()), "delete  where isnull(cfxcode,N'')=N'' and isnull(cfxname,N'')=N''");
  EXPECT_EQ(result.notes,
            "quillon: the build stopped and left its session open: a statement was refused, because the platform's "
            "description lets \"^delete\" fail\n");
}

TEST(Trace, AQueryMayFailToo) {
  const Traced result =
      traced(byCostItem, Json::parse(R"({"publicComponent":{"iFxStartMonth":{"2024":3}},"fail":["dIAStartDate"]})"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.lines.back()["call"], "query");
}

TEST(Trace, AFilterThatCannotBeTranslatedIsNoted) {
  const Traced result = traced(Json::parse(R"({"items":[{"name":"cJudgeMoney","value":"9"}]})"), Json::object());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.lines.back()["call"], "open");
  EXPECT_EQ(result.notes, "quillon: the build stopped and left its session open: the filter could not be translated\n");
}

// --- What the platform answers ---

TEST(Trace, NamesWorkTablesFromPrefixAndUniqueParts) {
  const Json filter = Json::parse(
      R"({"items":[{"name":"cModal","value":"1"},{"name":"iYear","value":"2024"},{"name":"cFSType","value":"2"}]})");
  const Traced result = traced(filter, Json::parse(R"({"naming":{"prefix":" 77 ","unique":["a"]}})"));
  EXPECT_EQ(executed(result.lines[5]),
            "If Exists(Select Name From Sysobjects Where Name = '77aIA_SFC_Item_DetailTmp') Drop Table "
            "[77aIA_SFC_Item_DetailTmp]");
  // The second part is not in the list.
  EXPECT_EQ(executed(result.lines[result.lines.size() - 3]),
            "If Exists(Select Name From Sysobjects Where Name = '77u2IA_SFC_IX_GroupIndex') Drop Table "
            "77u2IA_SFC_IX_GroupIndex");
}

TEST(Trace, AnswersAQueryWithTheFirstPatternThatIsFound) {
  const Json filter = Json::parse(R"({"items":[{"name":"cModal","value":"2"},{"name":"iYear","value":"2024"}]})");
  const Traced result = traced(
      filter,
      Json::parse(R"({"queries":{"nothing":[["1"]],"cid='1[0-9]+2'":[[202405]],"accinformation":[["202406"]]}})"));
  EXPECT_NE(executed(result.lines[9]).find("Ca_CostExpDetail_Period.iPeriod = '202405'"), std::string::npos);
}

TEST(Trace, UsesTheLoginsDateAndTheFilterObjectsOwnConditions) {
  const Json filter = Json::parse(
      R"({"items":[{"name":"cModal","value":"1"},{"name":"bIncludeExpire","value":"0"},
                   {"name":"x","sql":"a = 1"},{"name":"y"},{"name":"z","sql":"b = 2"}]})");
  const Traced result = traced(filter, Json::parse(R"({"login":{"date":"2024-06-30"}})"));
  EXPECT_NE(
      executed(result.lines[8])
          .find("\r\nWhere 1 = 1 And IsNull(inv.dEDate , '9999-12-31') > ='2024-06-30'   AND a = 1 And b = 2\r\n"),
      std::string::npos);
}

// --- Descriptions that cannot be used ---

std::string refusal(const Json& filter, const Json& platform) {
  std::stringstream out;
  try {
    trace("sfc-item", filter, platform, out, out);
    return "accepted";
  } catch (const UserError& error) {
    EXPECT_EQ(out.str(), "");
    return error.what();
  }
}

std::string filterRefusal(const char* text) {
  return refusal(Json::parse(text), Json::object());
}
std::string platformRefusal(const char* text) {
  return refusal(byCostItem, Json::parse(text));
}

TEST(Trace, RefusesAFilterThatItCannotRead) {
  EXPECT_EQ(filterRefusal(R"([])"), "the filter's description cannot be used: the file must be an object");
  EXPECT_EQ(filterRefusal(R"({"items":{}})"), "the filter's description cannot be used: items must be an array");
  EXPECT_EQ(filterRefusal(R"({"items":[{"value":"1"}]})"),
            "the filter's description cannot be used: items[0].name must be the item's key");
  EXPECT_EQ(filterRefusal(R"({"items":[{"name":"a"},{"name":"b","value":[]}]})"),
            "the filter's description cannot be used: items[1].value must be a text, a number, true, false or null");
  EXPECT_EQ(filterRefusal(R"({"items":[{"name":"a","range":1}]})"),
            "the filter's description cannot be used: items[0].range must be true or false");
}

TEST(Trace, RefusesAPlatformThatItCannotRead) {
  EXPECT_EQ(platformRefusal(R"({"login":7})"), "the platform's description cannot be used: login must be an object");
  EXPECT_EQ(platformRefusal(R"({"login":{"iYear":"x"}})"),
            "the platform's description cannot be used: login.iYear must be a whole number");
  EXPECT_EQ(platformRefusal(R"({"publicComponent":{"iFxStartMonth":{"2024":"March"}}})"),
            "the platform's description cannot be used: publicComponent.iFxStartMonth.2024 must be a whole number");
  EXPECT_EQ(platformRefusal(R"({"naming":{"unique":"u"}})"),
            "the platform's description cannot be used: naming.unique must be an array");
  EXPECT_EQ(platformRefusal(R"({"queries":{"a":[1]}})"),
            "the platform's description cannot be used: queries.a must be an array of rows, each an array of fields");
  EXPECT_EQ(platformRefusal(R"({"fail":[1]})"),
            "the platform's description cannot be used: fail must be an array of regular expressions");
  EXPECT_THAT(
      platformRefusal(R"({"fail":["("]})"),
      testing::StartsWith("the platform's description cannot be used: fail: \"(\" is not a regular expression"));
}

TEST(Trace, RefusesADetailLedgersPlatformThatItCannotRead) {
  EXPECT_EQ(platformRefusal(R"({"publicComponent":{"IsFxFinishQC":{"2024":1}}})"),
            "the platform's description cannot be used: publicComponent.IsFxFinishQC.2024 must be true or false");
  EXPECT_EQ(platformRefusal(R"({"publicComponent":{"StartMonthYear":[1]}})"),
            "the platform's description cannot be used: publicComponent.StartMonthYear must be an array of two whole "
            "numbers");
  EXPECT_EQ(platformRefusal(R"({"publicComponent":{"GetDateFromPeriod":{"2024.1":"2024-01-01"}}})"),
            "the platform's description cannot be used: publicComponent.GetDateFromPeriod.2024.1 must be an array of "
            "two dates");
  EXPECT_EQ(platformRefusal(R"({"publicComponent":{"GetPeriodFromDate":{"2024-03-05":[2024,"3"]}}})"),
            "the platform's description cannot be used: publicComponent.GetPeriodFromDate.2024-03-05 must be a whole "
            "number");
  EXPECT_EQ(platformRefusal(R"({"naming":{"numbers":["a"]}})"),
            "the platform's description cannot be used: naming.numbers must be a whole number");
  EXPECT_EQ(platformRefusal(R"({"accountOptions":7})"),
            "the platform's description cannot be used: accountOptions must be an object");
}

TEST(Trace, OpensTheDocumentOfTheReportThatTheRowNames) {
  const Json row = Json::parse(R"({"Action":"Vouch","row":{"cVouType":"32","cVouCode":"1","ID":"7"}})");
  const Traced unnamed = traced(row, Json::object(), "execute");
  EXPECT_THAT(unnamed.lines, testing::Not(testing::IsEmpty()));
  for (const char* report : {"fx-detail", "fx-wt"}) {
    Json named = row;
    named["report"] = report;
    EXPECT_EQ(traced(named, Json::object(), "execute").lines, unnamed.lines) << report;
  }
  for (const char* report : {"sfc-item", "no-report"}) {
    Json named = row;
    named["report"] = report;
    EXPECT_THROW(traced(named, Json::object(), "execute"), UserError) << report;
  }
}

TEST(Trace, RefusesARowThatItCannotRead) {
  try {
    traced(Json::parse(R"({"Action":"Vouch","row":{"ID":[1]}})"), Json::object(), "execute");
    FAIL() << "no error";
  } catch (const UserError& error) {
    EXPECT_STREQ(error.what(),
                 "the row's description cannot be used: row.ID must be a text, a number, true, false or null");
  }
}

TEST(Trace, AnErrorOfTheDetailLedgerIsTheLastLine) {
  const Json filter = Json::parse(
      R"({"items":[{"name":"iYear","value":"2024"},{"name":"cInvCode"},{"name":"cWhCode"},{"name":"cDepCode"}]})");
  const Traced result = traced(filter, Json::parse(R"({"fail":["^select .base.autoid"]})"), "fx-detail");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.lines.back()["error"]["hresult"], "0x80040e14");
  EXPECT_EQ(result.notes, "");
}

TEST(Trace, RefusesAReportThatItDoesNotKnow) {
  std::stringstream out;
  EXPECT_THROW(trace("no-report", byCostItem, Json::object(), out, out), UserError);
}

}  // namespace
}  // namespace quillon::workbench
