// Golden scripts: every call to the database and every effect on a dialog, in order and to the byte, of each report,
// dialog and drill-through.
//
// A folder scripts/golden holds cases: NAME.json is what `quillon trace --case` takes, NAME.expected.jsonl beside it the
// lines that it prints. A case is found by being there. The order of keys within a line does not count; everything else
// does, each blank of a statement included.
//
// The expected lines are kept by hand. A line changes only together with the behaviour that it holds, never because the
// program now prints another one.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/json_file.h"
#include "workbench/trace/trace.h"

namespace quillon::workbench {
namespace {

using Json = nlohmann::ordered_json;
using Line = nlohmann::json;  // which does not keep the order of keys

constexpr const char* caseEnd = ".json";
constexpr const char* expectedEnd = ".expected.jsonl";

// The rooms that have golden scripts: that of each report, and the dialogs'.
std::vector<std::string> rooms() {
  std::vector<std::string> all;
  for (const Report& report : reports()) {
    std::string folder = "reports/" + report.registration.name;
    std::replace(folder.begin(), folder.end(), '-', '_');
    all.push_back(std::move(folder));
  }
  all.emplace_back("filters");
  return all;
}

std::filesystem::path folderOf(const std::string& room) {
  return std::filesystem::path(QUILLON_TESTS) / room / "scripts" / "golden";
}

// The names of the files of a room that end with `end`, without it, in order; none when there is no such folder.
std::set<std::string> namesIn(const std::string& room, const std::string& end) {
  std::set<std::string> names;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(folderOf(room), missing)) {
    const std::string file = entry.path().filename().string();
    if (file.ends_with(end)) names.insert(file.substr(0, file.size() - end.size()));
  }
  return names;
}

struct GoldenCase {
  std::string room;
  std::string name;
};

void PrintTo(const GoldenCase& golden, std::ostream* out) {
  *out << golden.room << "/" << golden.name;
}

std::vector<GoldenCase> allCases() {
  std::vector<GoldenCase> cases;
  for (const std::string& room : rooms()) {
    for (const std::string& name : namesIn(room, caseEnd))
      cases.push_back({.room = room, .name = name});
  }
  return cases;
}

// For instance reports_fx_detail_a_whole_settled_year.
std::string testName(const testing::TestParamInfo<GoldenCase>& info) {
  std::string name = info.param.room + "_" + info.param.name;
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
}

std::vector<Line> parsedLines(std::istream& text) {
  std::vector<Line> lines;
  for (std::string line; std::getline(text, line);)
    lines.push_back(Line::parse(line));
  return lines;
}

// What stands around the first byte in which two long lines differ.
std::string firstDifference(const std::string& actual, const std::string& expected) {
  const auto difference = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end()).first;
  const auto at = static_cast<std::size_t>(std::distance(actual.begin(), difference));
  constexpr std::size_t before = 60;
  constexpr std::size_t shown = 140;
  const std::size_t begin = at < before ? 0 : at - before;
  return "byte " + std::to_string(at + 1) + "\n  prints:   ..." + actual.substr(begin, shown) + "\n  expected: ..." +
         expected.substr(begin, shown);
}

void expectSameLines(const std::vector<Line>& actual, const std::vector<Line>& expected) {
  const auto shown = [](const Line& line) { return line.dump(-1, ' ', false, Line::error_handler_t::replace); };
  for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
    EXPECT_TRUE(actual[i] == expected[i])
        << "line " << i + 1 << ", " << firstDifference(shown(actual[i]), shown(expected[i]));
  }
  EXPECT_EQ(actual.size(), expected.size()) << "the number of lines";
}

class GoldenScript : public testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenScript, PrintsTheExpectedLines) {
  const std::filesystem::path folder = folderOf(GetParam().room);
  const Json description = readJsonFile((folder / (GetParam().name + caseEnd)).string());
  std::ifstream file(folder / (GetParam().name + expectedEnd), std::ios::binary);
  ASSERT_TRUE(file.is_open()) << "no expected lines beside the case";
  const std::vector<Line> expected = parsedLines(file);
  ASSERT_FALSE(expected.empty());

  std::stringstream out;
  std::stringstream notes;
  const int status = trace(description.at("report"), description.at("filter"), description.at("platform"), out, notes,
                           description.value("events", std::vector<std::string>()));
  expectSameLines(parsedLines(out), expected);
  EXPECT_EQ(status, expected.back().contains("error") ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(All, GoldenScript, testing::ValuesIn(allCases()), testName);

// A folder that moved away takes its cases with it: then nothing would be compared, and nothing would fail.
TEST(GoldenScripts, StandInEveryRoom) {
  for (const std::string& room : rooms()) {
    const std::set<std::string> cases = namesIn(room, caseEnd);
    EXPECT_FALSE(cases.empty()) << "no case in " << folderOf(room);
    EXPECT_EQ(cases, namesIn(room, expectedEnd)) << "cases and expected lines of " << room;
  }
}

}  // namespace
}  // namespace quillon::workbench
