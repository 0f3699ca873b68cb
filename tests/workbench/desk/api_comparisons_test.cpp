// The interface's comparisons: the figures of two runs side by side, the rows behind them, files.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/workbench/desk/desk_test_base.h"

namespace quillon::workbench::desk {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class DeskComparisons : public test::DeskTest {
 protected:
  static Json kept(const std::string& from, const std::string& to) {
    return {{"cModal", {{"value", "1"}}}, {"dKeepDate", {{"value", from}, {"value2", to}}}};
  }
  static std::int64_t idOf(const std::string& run) { return std::stoll(run.substr(run.find('/') + 1)); }
  test::Answer compare(const std::string& run, const std::string& other, Json asked) {
    asked["lang"] = "en";
    asked["other"] = idOf(other);
    return post(run + "/comparisons", asked);
  }
  Json compared(const std::string& run, const std::string& other, const Json& asked) {
    const test::Answer answer = compare(run, other, asked);
    EXPECT_EQ(answer.status, 201) << answer.response.body;
    return answer.json;
  }
  static std::int64_t hundredths(const Json& cell) {
    if (cell.is_null()) return 0;
    std::string digits = cell.get<std::string>();
    std::erase_if(digits, [](char c) { return c == ',' || c == '.'; });
    return std::stoll(digits);
  }
  // The figure of each row of the run's own pivot, by the names of its row.
  std::map<std::string, Json> figuresOf(const std::string& run, const Json& asked) {
    const test::Answer answer = post(run + "/pivots", asked);
    EXPECT_EQ(answer.status, 201) << answer.response.body;
    std::map<std::string, Json> figures;
    for (const Json& row : allRows(run, answer.json))
      figures[row["cells"][0].dump() + row["cells"][1].dump()] = row["cells"][2];
    return figures;
  }
};

TEST_F(DeskComparisons, HaveTheFiguresOfBothRunsOnEveryLevel) {
  const std::string one = done("outsum-item", kept("2024-01-01", "2024-04-30")),
                    other = done("outsum-item", kept("2024-03-01", "2024-06-30"));
  const Json asked = {{"rows", {"costItemClass1", "month"}}, {"measures", {"amount"}}, {"lang", "en"}};
  const Json shown = compared(one, other, asked);
  EXPECT_EQ(shown["layout"], "pivot");
  EXPECT_EQ(shown["comparedWith"], idOf(other));
  std::vector<std::string> captions;
  for (const Json& column : shown["columns"])
    captions.push_back(column["caption"]);
  EXPECT_THAT(captions, ElementsAre("Cost-item class grade 1", "Month", HasSubstr("2024-01-01"),
                                    HasSubstr("2024-06-30"), "Difference", "Difference, %"));
  const auto ones = figuresOf(one, asked), others = figuresOf(other, asked);
  std::size_t both = 0, alone = 0;
  std::map<std::string, int> kinds;
  for (const Json& row : allRows(one, shown)) {
    const Json& cells = row["cells"];
    const std::string name = cells[0].dump() + cells[1].dump();
    const auto mine = ones.find(name), theirs = others.find(name);
    EXPECT_EQ(cells[2], mine == ones.end() ? Json() : mine->second) << name;
    EXPECT_EQ(cells[3], theirs == others.end() ? Json() : theirs->second) << name;
    EXPECT_EQ(hundredths(cells[4]), hundredths(cells[2]) - hundredths(cells[3])) << name;
    ++(mine != ones.end() && theirs != others.end() ? both : alone);
    ++kinds[row["kind"]];
  }
  EXPECT_GT(both, 3U);
  EXPECT_GT(alone, 3U) << "rows of one side are there";
  EXPECT_GT(kinds["subtotal"], 1);
  EXPECT_EQ(kinds["total"], 1);
  EXPECT_EQ(both + alone, static_cast<std::size_t>(kinds["line"] + kinds["subtotal"] + kinds["total"]));
}

TEST_F(DeskComparisons, AreOrderedByTheDifferenceAndFolded) {
  const std::string one = done("outsum-item", kept("2024-01-01", "2024-04-30")),
                    other = done("outsum-item", kept("2024-03-01", "2024-06-30"));
  const Json shown = compared(one, other,
                              {{"rows", {"cWhCode", "cFXCode"}},
                               {"measures", {"amount"}},
                               {"sort", {{{"column", "difference/amount"}, {"descending", true}}}}});
  std::vector<std::int64_t> differences;
  std::int64_t firstSubtotal = -1;
  for (const Json& row : allRows(one, shown)) {
    if (row["kind"] != "subtotal") continue;
    if (firstSubtotal < 0) firstSubtotal = row["n"];
    EXPECT_TRUE(row.contains("first"));
    differences.push_back(hundredths(row["cells"][4]));
  }
  ASSERT_GT(differences.size(), 3U);
  EXPECT_TRUE(std::ranges::is_sorted(differences, std::greater<>()));
  EXPECT_EQ(ask("PUT", pathOf(one, shown) + "/folds", Json{{"rows", {firstSubtotal}}}.dump()).status, 200);
  const test::Answer file = ask("GET", pathOf(one, shown) + "/export", {}, {{"format", "csv"}, {"captions", "1"}});
  ASSERT_EQ(file.status, 200) << file.response.body;
  std::istringstream in(streamed(file));
  std::int64_t lines = 0;
  for (std::string line; std::getline(in, line);)
    ++lines;
  EXPECT_EQ(lines, 1 + static_cast<std::int64_t>(allRows(one, shown).size()) - firstSubtotal);
}

TEST_F(DeskComparisons, RowsBehindAFigureAreOfItsRun) {
  const std::string one = done("outsum-item", kept("2024-01-01", "2024-04-30")),
                    other = done("outsum-item", kept("2024-03-01", "2024-06-30"));
  const Json shown = compared(one, other, {{"rows", {"costItemClass1"}}, {"measures", {"amount"}}});
  const Json rows = allRows(one, shown);
  const auto sumBehind = [&](std::size_t n, const std::string& column, const std::string& run) {
    const Json answer = get(pathOf(one, shown) + "/where", {{"n", std::to_string(n)}, {"column", column}});
    EXPECT_EQ(answer["run"], run == one ? Json() : Json(idOf(other)));
    const Json listed = view(run, {{"layout", "lines"}, {"where", answer["where"]}, {"columns", {"iMoney"}}});
    std::int64_t sum = 0;
    for (const Json& line : allRows(run, listed))
      sum += hundredths(line["cells"][0]);
    return sum;
  };
  for (std::size_t n = 0; n < rows.size(); ++n) {
    if (!rows[n]["cells"][1].is_null()) {
      EXPECT_EQ(sumBehind(n, "1", one), hundredths(rows[n]["cells"][1])) << n;
    }
    if (!rows[n]["cells"][2].is_null()) {
      EXPECT_EQ(sumBehind(n, "2", other), hundredths(rows[n]["cells"][2])) << n;
    }
  }
  EXPECT_EQ(ask("GET", pathOf(one, shown) + "/where", {}, {{"n", "0"}, {"column", "3"}}).status, 404);
  EXPECT_EQ(ask("GET", pathOf(one, shown) + "/where", {}, {{"n", "0"}, {"column", "9"}}).status, 404);
}

TEST_F(DeskComparisons, OfARunWithoutRowsShowTheOther) {
  const std::string one = done("outsum-item", kept("2024-01-01", "2024-04-30")),
                    none = done("outsum-item", Json{{"cModal", {{"value", "1"}}}, {"cVouCode", {{"value", "zz"}}}});
  ASSERT_EQ(get(none)["rowCount"], 0);
  const Json asked = {{"rows", {"cWhCode"}}, {"measures", {"amount"}}};
  const Json here = allRows(one, compared(one, none, asked)), there = allRows(none, compared(none, one, asked));
  ASSERT_GT(here.size(), 2U);
  ASSERT_EQ(here.size(), there.size());
  for (std::size_t i = 0; i < here.size(); ++i) {
    EXPECT_EQ(here[i]["cells"][1], there[i]["cells"][2]);
    EXPECT_EQ(hundredths(here[i]["cells"][3]), -hundredths(there[i]["cells"][3]));
  }
}

TEST_F(DeskComparisons, WhatCannotBeComparedIsRefused) {
  const std::string one = done("outsum-item", kept("2024-01-01", "2024-04-30")), sums = done("sfc-item");
  const Json asked = {{"rows", {"cWhCode"}}, {"measures", {"amount"}}};
  EXPECT_EQ(post(one + "/comparisons", asked).status, 400) << "without the other";
  EXPECT_EQ(compare(one, "runs/999", asked).status, 404);
  const test::Answer mixed = compare(one, sums, asked);
  EXPECT_EQ(mixed.status, 422);
  EXPECT_THAT(mixed.message(), HasSubstr("same report"));
  EXPECT_EQ(compare(one, one, {{"rows", {"cWhCode"}}, {"columns", {"month"}}, {"measures", {"amount"}}}).code(),
            "value");
  EXPECT_EQ(compare(one, one, {{"rows", {"cWhCode"}}, {"measures", {"amount:row"}}}).code(), "value");
  EXPECT_EQ(
      compare(one, one, {{"rows", {"cWhCode"}}, {"measures", {"amount"}}, {"sort", {{{"column", "amount"}}}}}).code(),
      "value");
  EXPECT_EQ(ask("GET", one + "/comparisons").status, 404);
  // A run that is closed leaves the view that shows it, but no file of it.
  const std::string other = done("outsum-item", kept("2024-03-01", "2024-06-30"));
  const Json shown = compared(one, other, asked);
  const std::size_t rows = allRows(one, shown).size();
  EXPECT_EQ(ask("DELETE", other).status, 200);
  EXPECT_EQ(allRows(one, shown).size(), rows);
  EXPECT_EQ(ask("GET", pathOf(one, shown) + "/export", {}, {{"format", "csv"}}).status, 404);
}

}  // namespace
}  // namespace quillon::workbench::desk
