// The interface's pivots: what they can be asked for, the rows behind their figures, folding, files.
#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "tests/workbench/desk/desk_test_base.h"

namespace quillon::workbench::desk {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class DeskPivots : public test::DeskTest {
 protected:
  static Json byCostItem() { return {{"cModal", {{"value", "1"}}}}; }

  Json pivot(const std::string& run, Json asked) {
    asked["lang"] = "en";
    const test::Answer answer = post(run + "/pivots", asked);
    EXPECT_EQ(answer.status, 201) << answer.response.body;
    return answer.json;
  }
  // A figure with two decimals, in hundredths.
  static std::int64_t hundredths(const Json& cell) {
    if (cell.is_null()) return 0;
    std::string digits = cell.get<std::string>();
    std::erase_if(digits, [](char c) { return c == ',' || c == '.'; });
    return std::stoll(digits);
  }
  std::int64_t sumBehind(const std::string& run, const Json& shown, std::size_t row, std::size_t column,
                         const std::string& summed) {
    const Json where =
        get(pathOf(run, shown) + "/where", {{"n", std::to_string(row)}, {"column", std::to_string(column)}})["where"];
    const Json listed = view(run, {{"layout", "lines"}, {"where", where}});
    // A column that holds nothing in these rows is not shown.
    const auto isSummed = [&summed](const Json& column) { return column["name"] == summed; };
    const Json& columns = listed["columns"];
    const auto found = std::ranges::find_if(columns, isSummed);
    if (found == columns.end()) return 0;
    const auto place = static_cast<std::size_t>(found - columns.begin());
    std::int64_t sum = 0;
    for (const Json& line : allRows(run, listed))
      sum += hundredths(line["cells"][place]);
    return sum;
  }
  std::vector<std::string> csvLines(const std::string& run, const Json& shown) {
    const test::Answer answer = ask("GET", pathOf(run, shown) + "/export", {}, {{"format", "csv"}});
    EXPECT_EQ(answer.status, 200) << answer.response.body;
    EXPECT_THAT(answer.response.headers.at(0).second, HasSubstr("-pivot.csv"));
    std::vector<std::string> lines;
    std::istringstream in(streamed(answer));
    for (std::string line; std::getline(in, line);)
      lines.push_back(line);
    return lines;
  }
};

TEST_F(DeskPivots, TheChoicesAreThoseOfTheReport) {
  const std::string run = done("sfc-item");
  const Json choices = get(run + "/pivots");
  const auto named = [](const Json& list, const std::string& name) {
    return std::ranges::find_if(list, [&name](const Json& one) { return one["name"] == name; });
  };
  ASSERT_NE(named(choices["dimensions"], "cWhCode"), choices["dimensions"].end());
  EXPECT_EQ((*named(choices["dimensions"], "cWhCode"))["caption"], "Warehouse");
  EXPECT_EQ((*named(choices["dimensions"], "cWhCode"))["state"], false);
  EXPECT_EQ((*named(choices["dimensions"], "cState"))["state"], true);
  EXPECT_EQ((*named(choices["measures"], "closingAmount"))["caption"], "Closing amount");
  EXPECT_EQ((*named(choices["measures"], "closingUnitCost"))["shares"], false);
  EXPECT_EQ(named(choices["measures"], "amount"), choices["measures"].end());
  EXPECT_NE(named(choices["ownMeasures"], "amount"), choices["ownMeasures"].end());
  EXPECT_EQ(ask("DELETE", run + "/pivots").status, 404);
}

TEST_F(DeskPivots, RowsBehindEachFigureSumToIt) {
  const std::string run = done("outsum-item", byCostItem());
  const Json shown =
      pivot(run, {{"rows", {"costItemClass1", "cBusType"}}, {"columns", {"month"}}, {"measures", {"amount"}}});
  EXPECT_EQ(shown["layout"], "pivot");
  EXPECT_EQ(shown["totals"], Json::array());
  const Json rows = allRows(run, shown);
  EXPECT_EQ(rows.back()["kind"], "total");
  const std::size_t columns = shown["columns"].size();
  ASSERT_GT(columns, 3);
  for (std::size_t row = 0; row < rows.size(); ++row) {
    // A cell of each row, another in each, and all of the total.
    for (std::size_t column = 2; column < columns; ++column) {
      if (row + 1 < rows.size() && column != 2 + row % (columns - 2)) continue;
      EXPECT_EQ(sumBehind(run, shown, row, column, "iMoney"), hundredths(rows[row]["cells"][column]))
          << row << ' ' << column;
    }
  }
}

TEST_F(DeskPivots, FiguresOfAStateHaveRowsOfThatState) {
  const std::string run = done("sfc-item");
  const Json shown = pivot(run, {{"rows", {"cWhCode"}}, {"measures", {"receiptAmount", "closingAmount"}}});
  const Json rows = allRows(run, shown);
  for (const std::size_t row : {std::size_t{0}, rows.size() - 1}) {
    for (const std::size_t column : {std::size_t{1}, std::size_t{2}})
      EXPECT_EQ(sumBehind(run, shown, row, column, "iMoney"), hundredths(rows[row]["cells"][column]));
  }
  // What a condition is of is told, though its column is never shown, and its values in words.
  const Json where = get(pathOf(run, shown) + "/where", {{"n", "0"}, {"column", "1"}})["where"];
  const Json listed = view(run, {{"layout", "lines"}, {"where", where}});
  EXPECT_EQ(listed["conditions"].back(), (Json{{"name", "iState"}, {"caption", "State"}, {"words", {"Receipt"}}}));
  EXPECT_FALSE(listed["conditions"].front().contains("words")) << "a warehouse's code is shown as it is";
  const std::string chinese = done("sfc-item", Json::object(), "zh");
  const Json several = {{{"column", "iState"}, {"kind", "equals"}, {"values", {"1", "3", "9"}}}};
  EXPECT_EQ(view(chinese, {{"layout", "lines"}, {"lang", "zh"}, {"where", several}})["conditions"],
            (Json::array({{{"name", "iState"}, {"caption", "收发状态"}, {"words", {"期初结存", "发出", "9"}}}})));
}

TEST_F(DeskPivots, ConditionsAndOrderCount) {
  const std::string run = done("outsum-item", byCostItem());
  const Json where = {{{"column", "dKeepDate"}, {"kind", "range"}, {"values", {"2024-01-01", "2024-06-30"}}}};
  const Json shown = pivot(run, {{"rows", {"cWhCode"}},
                                 {"measures", {"amount"}},
                                 {"sort", {{{"column", "amount"}, {"descending", true}}}},
                                 {"where", where}});
  const Json rows = allRows(run, shown);
  ASSERT_GT(rows.size(), 2);
  for (std::size_t row = 1; row + 1 < rows.size(); ++row)
    EXPECT_GE(hundredths(rows[row - 1]["cells"][1]), hundredths(rows[row]["cells"][1]));
  EXPECT_EQ(sumBehind(run, shown, rows.size() - 1, 1, "iMoney"), hundredths(rows.back()["cells"][1]));
}

TEST_F(DeskPivots, SubtotalsSayWhatTheySumAndFilesLeaveOutWhatIsFolded) {
  const std::string run = done("outsum-item", byCostItem());
  const Json shown =
      pivot(run, {{"rows", {"costItemClass1", "cWhCode", "cInvCCode"}}, {"measures", {"amount", "quantity"}}});
  const Json rows = allRows(run, shown);
  std::vector<Json> outer, inner;
  for (const Json& row : rows) {
    if (row["kind"] != "subtotal") {
      EXPECT_FALSE(row.contains("first")) << row;
      continue;
    }
    std::int64_t sum = 0;
    for (std::size_t each = row["first"]; each < row["n"]; ++each) {
      if (rows[each]["kind"] == "line") sum += hundredths(rows[each]["cells"][3]);
    }
    EXPECT_EQ(sum, hundredths(row["cells"][3])) << row;
    (row["level"] == 0 ? outer : inner).push_back(row);
  }
  ASSERT_GT(outer.size(), 1);
  ASSERT_GT(inner.size(), outer.size());

  EXPECT_EQ(csvLines(run, shown).size(), rows.size() + 1);
  const auto fold = [&](const Json& numbers) {
    return ask("PUT", pathOf(run, shown) + "/folds", Json{{"rows", numbers}}.dump());
  };
  // The second outer value, and one within it, which makes no difference.
  EXPECT_EQ(fold({inner.back()["n"], outer.back()["n"]}).status, 200);
  const std::size_t first = outer.back()["first"], behind = outer.back()["n"];
  const std::vector<std::string> lines = csvLines(run, shown);
  ASSERT_EQ(lines.size(), rows.size() + 1 - (behind - first));
  EXPECT_THAT(lines[first + 1], StartsWith("subtotal,0,"));
  EXPECT_THAT(lines.back(), StartsWith("total,"));
  EXPECT_EQ(fold(Json::array()).status, 200);
  EXPECT_EQ(csvLines(run, shown).size(), rows.size() + 1);

  EXPECT_EQ(fold({0}).status, 404) << "a line sums nothing";
  EXPECT_EQ(fold({"1"}).code(), "form");
}

TEST_F(DeskPivots, WhatDoesNotFitIsRefused) {
  const std::string run = done("outsum-item", byCostItem());
  EXPECT_EQ(post(run + "/pivots").code(), "value");
  EXPECT_EQ(post(run + "/pivots", {{"rows", {"cWhCode"}}}).code(), "value");
  const test::Answer unknown = post(run + "/pivots", {{"rows", {"noSuch"}}, {"measures", {"amount"}}});
  EXPECT_EQ(unknown.status, 422);
  EXPECT_THAT(unknown.message(), HasSubstr("noSuch"));
  EXPECT_EQ(post(run + "/pivots", {{"rows", "cWhCode"}}).code(), "form");

  const Json shown = pivot(run, {{"rows", {"cWhCode"}}, {"measures", {"amount"}}});
  const auto behind = [&](const std::string& path, const std::string& row, const std::string& column) {
    return ask("GET", path + "/where", {}, {{"n", row}, {"column", column}}).status;
  };
  EXPECT_EQ(behind(pathOf(run, shown), "9999", "1"), 404);
  EXPECT_EQ(behind(pathOf(run, shown), "0", "2"), 404);
  EXPECT_EQ(behind(pathOf(run, view(run, {{"layout", "lines"}})), "0", "0"), 404);
}

}  // namespace
}  // namespace quillon::workbench::desk
