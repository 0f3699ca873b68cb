#include "workbench/presentation/text_table.h"

#include <gtest/gtest.h>

#include <sstream>

#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {
namespace {

// What is written of `rows`, all of the same `columns`.
std::string written(const std::vector<TableColumn>& columns, const std::vector<std::vector<std::string>>& rows,
                    const TableStyle& style) {
  std::ostringstream out;
  TextTable table(out, columns, style);
  for (const auto& row : rows)
    table.row(row);
  table.finish();
  return out.str();
}

TEST(TextTable, AlignsByCells) {
  std::ostringstream out;
  TextTable table(out, {{"名称"}, {"数量", Align::right}, {"unit"}});
  table.row({"螺栓", "1,200.00", "个"});
  table.row({"Bolt M8", "3.50", ""});
  table.rule();
  table.row({"合计", "1,203.50", ""});
  table.finish();
  EXPECT_EQ(out.str(),
            "名称         数量  unit\n"
            "-------  --------  ----\n"
            "螺栓     1,200.00  个\n"
            "Bolt M8      3.50\n"
            "-------  --------  ----\n"
            "合计     1,203.50\n");
}

TEST(TextTable, ShowsItsHeadingsWithoutRows) {
  std::ostringstream out;
  TextTable table(out, {{"a"}, {"b"}});
  table.finish();
  EXPECT_EQ(out.str(), "a  b\n-  -\n");
}

TEST(TextTable, KeepsARowOnOneLine) {
  std::ostringstream out;
  TextTable table(out, {{"a"}});
  table.row({"one\ntwo"});
  table.finish();
  EXPECT_EQ(out.str(), "a\n-------\none two\n");
}

TEST(TextTable, HoldsNoMoreThanTheSampledRows) {
  std::ostringstream out;
  TextTable table(out, {{"a"}, {"b"}});
  for (std::size_t i = 0; i < TextTable::sampledRows; ++i) {
    EXPECT_EQ(out.str(), "");
    table.row({"x", "y"});
  }
  EXPECT_NE(out.str(), "");
  out.str("");
  table.row({"wider than the column", "y"});
  EXPECT_EQ(out.str(), "wider than the column  y\n");
}

// --- A place of limited width ------------------------------------------------------------------------------------------

TEST(TextTableInAPlace, StaysAsItIsWhereItFits) {
  const std::vector<TableColumn> columns = {{"名称"}, {"数量", Align::right}};
  const std::vector<std::vector<std::string>> rows = {{"不锈钢内六角螺栓", "1,200.00"}};
  const std::string whole = written(columns, rows, {});
  EXPECT_EQ(whole,
            "名称                  数量\n"
            "----------------  --------\n"
            "不锈钢内六角螺栓  1,200.00\n");
  EXPECT_EQ(written(columns, rows, {.width = 26}), whole);
  EXPECT_EQ(written(columns, rows, {.width = 25}),
            "名称                 数量\n"
            "---------------  --------\n"
            "不锈钢内六角螺…  1,200.00\n");
}

TEST(TextTableInAPlace, CutsTheLongestTextsFirst) {
  EXPECT_EQ(written({{"code"}, {"name"}, {"remark"}, {"amount", Align::right}},
                    {{"0101", "a name of twenty-two..", "a longer remark of many words", "1,234.50"},
                     {"0102", "short", "", "1.00"}},
                    {.width = 50}),
            "code  name              remark              amount\n"
            "----  ----------------  ----------------  --------\n"
            "0101  a name of twent…  a longer remark…  1,234.50\n"
            "0102  short                                   1.00\n");
}

TEST(TextTableInAPlace, CutsChineseBetweenCharacters) {
  EXPECT_EQ(written({{"名称"}, {"数量", Align::right}}, {{"内六角圆柱头螺栓", "1,200.00"}}, {.width = 23}),
            "名称               数量\n"
            "-------------  --------\n"
            "内六角圆柱头…  1,200.00\n");
  EXPECT_EQ(written({{"名称"}, {"数量", Align::right}}, {{"内六角圆柱头螺栓", "1,200.00"}}, {.width = 22}),
            "名称              数量\n"
            "------------  --------\n"
            "内六角圆柱…   1,200.00\n");
}

TEST(TextTableInAPlace, CutsHeadingsButNeverNumbers) {
  EXPECT_EQ(written({{"name"}, {"Opening balance quantity", Align::right}, {"Receipt quantity", Align::right}},
                    {{"Bolt", "1,234.50", "12,345,678.90"}}, {.width = 31}),
            "name  Opening b…  Receipt quan…\n"
            "----  ----------  -------------\n"
            "Bolt    1,234.50  12,345,678.90\n");
}

TEST(TextTableInAPlace, LeavesOutTheLastTextsAndSaysSo) {
  const std::vector<TableColumn> columns = {
      {"document number"}, {"date"}, {"warehouse"}, {"amount", Align::right}, {"remark"}};
  const std::vector<std::vector<std::string>> rows = {
      {"11-202403-0014933", "2024-03-05", "raw materials", "1,234,567.89", "bought in the spring"}};
  EXPECT_EQ(written(columns, rows, {.width = 43}),
            "document number    date              amount\n"
            "-----------------  ----------  ------------\n"
            "11-202403-0014933  2024-03-05  1,234,567.89\n"
            "Left out, as the terminal is too narrow: 2 columns: warehouse, remark. --wide shows all.\n");
  EXPECT_EQ(written(columns, rows, {.width = 37}),
            "document number          amount\n"
            "-----------------  ------------\n"
            "11-202403-0014933  1,234,567.89\n"
            "Left out, as the terminal is too narrow: 3 columns: date, warehouse, remark. --wide shows all.\n")
      << "what a row is called is kept before other texts";
  EXPECT_EQ(written(columns, rows, {.width = 30, .language = Language::chinese}),
            "document number         amount\n"
            "----------------  ------------\n"
            "11-202403-00149…  1,234,567.89\n"
            "终端太窄，略去 3 列：date、warehouse、remark。用 --wide 显示全部。\n");
}

TEST(TextTableInAPlace, RunsOverTheEdgeForNumbersThatDoNotFit) {
  const std::vector<TableColumn> columns = {
      {"item"}, {"name"}, {"receipts", Align::right}, {"issues", Align::right}, {"remark"}};
  const std::vector<std::vector<std::string>> rows = {
      {"0101", "Bolt", "12,345,678.90", "12,345,678.90", "bought in the spring"}};
  EXPECT_EQ(written(columns, rows, {.width = 30}),
            "item  name       receipts         issues\n"
            "----  ----  -------------  -------------\n"
            "0101  Bolt  12,345,678.90  12,345,678.90\n"
            "Left out, as the terminal is too narrow: 1 column: remark. --wide shows all.\n")
      << "what says which row it is stays";
  EXPECT_EQ(written(columns, rows, {.width = 34}),
            "item       receipts         issues\n"
            "----  -------------  -------------\n"
            "0101  12,345,678.90  12,345,678.90\n"
            "Left out, as the terminal is too narrow: 2 columns: name, remark. --wide shows all.\n")
      << "it just fits";
}

TEST(TextTableInAPlace, CutsALaterRowThatWouldReachOverTheEdge) {
  std::ostringstream out;
  TextTable table(out, {{"a"}, {"b"}}, {.width = 16});
  for (std::size_t i = 0; i < TextTable::sampledRows; ++i)
    table.row({"twelve cells", "y"});
  out.str("");
  table.row({"twelve cells and", "y"});
  table.row({"12", "yyyyyyyyy"});
  EXPECT_EQ(out.str(),
            "twelve cell…  y\n"
            "12            …\n");
}

TEST(TextTableInAPlace, IsNeverWiderThanItsPlaceWhileNumbersFit) {
  const std::vector<TableColumn> columns = {{"code"},
                                            {"a long heading of a text"},
                                            {"数量", Align::right, "收入"},
                                            {"a long heading of numbers", Align::right, "收入"},
                                            {"名称"},
                                            {"remark", Align::left, "a group with a long name"}};
  const std::vector<std::vector<std::string>> rows = {
      {"0101", "text", "12.00", "1,234.56", "内六角圆柱头螺栓", "some words"},
      {"010101", "", "1,000,000.00", "-1,234,567.89", "", "some words, and some more"}};
  for (std::size_t width = 40; width < 140; ++width) {
    SCOPED_TRACE(width);
    std::istringstream lines(written(columns, rows, {.width = width}));
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("Left out")) continue;
      EXPECT_LE(cellWidth(line), width) << line;
      const auto has = [&line](const char* number) { return (line + ' ').find(number) != std::string::npos; };
      EXPECT_TRUE(!line.starts_with("0101 ") || (has(" 12.00 ") && has(" 1,234.56 "))) << line;
      EXPECT_TRUE(!line.starts_with("010101 ") || (has(" 1,000,000.00 ") && has(" -1,234,567.89 "))) << line;
    }
  }
}

// --- Groups of columns, emphasis ---------------------------------------------------------------------------------------

TEST(TextTableGroups, StandOnceAboveTheirColumns) {
  EXPECT_EQ(written({{"日期"},
                     {"数量", Align::right, "收入"},
                     {"金额", Align::right, "收入"},
                     {"数量", Align::right, "发出"},
                     {"金额", Align::right, "发出"},
                     {"note"}},
                    {{"2024-03-05", "5.00", "50.50", "", "", "x"}}, {}),
            "            -- 收入 ---  -- 发出 --\n"
            "日期        数量   金额  数量  金额  note\n"
            "----------  ----  -----  ----  ----  ----\n"
            "2024-03-05  5.00  50.50              x\n");
}

TEST(TextTableGroups, GetTheRoomThatTheirNamesNeed) {
  EXPECT_EQ(written({{"q", Align::right, "receipts of goods"}, {"a", Align::right, "receipts of goods"}, {"x"}},
                    {{"1", "2", "3"}}, {}),
            "receipts of goods\n"
            "q               a  x\n"
            "-  --------------  -\n"
            "1               2  3\n");
  EXPECT_EQ(written({{"q", Align::right, "receipts of goods"}, {"a", Align::right, "receipts of goods"}, {"x"}},
                    {{"1", "2", "3"}}, {.width = 12}),
            "receipts…\n"
            "q       a  x\n"
            "-  ------  -\n"
            "1       2  3\n");
}

TEST(TextTableEmphasis, IsShownWhereThePlaceCan) {
  for (const bool emphasis : {false, true}) {
    std::ostringstream out;
    TextTable table(out, {{"a"}, {"b", Align::right}}, {.emphasis = emphasis});
    table.row({"x", "1"});
    table.row({"month", "2"}, Emphasis::strong);
    table.row({"opening", "3"}, Emphasis::faint);
    table.finish();
    EXPECT_EQ(out.str(), emphasis ? "\x1b[1ma        b\x1b[0m\n"
                                    "\x1b[2m-------  -\x1b[0m\n"
                                    "x        1\n"
                                    "\x1b[1mmonth    2\x1b[0m\n"
                                    "\x1b[2mopening  3\x1b[0m\n"
                                  : "a        b\n"
                                    "-------  -\n"
                                    "x        1\n"
                                    "month    2\n"
                                    "opening  3\n");
  }
}

}  // namespace
}  // namespace quillon::workbench
