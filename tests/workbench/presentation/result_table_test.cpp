#include "workbench/presentation/result_table.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

// A table of texts, each row of which fills one column, and of columns that hold nothing.
class FilledColumns : public ::testing::Test {
 protected:
  FilledColumns() {
    std::string create = "Create Table Result (n int";
    for (int i = 0; i < texts; ++i) {
      know("t" + std::to_string(i));
      create += ", " + known_.back().name + " nvarchar(10)";
    }
    account_->execute(create + ", cBlank nvarchar(10), iZero decimal(18,2), iOne decimal(38,2), dDay datetime, x int)");
    know("cBlank");
    know("iZero", ColumnRole::quantity);
    know("iOne", ColumnRole::quantity);
    know("dDay", ColumnRole::date);
    know("x", ColumnRole::internal);
    know("cNotThere");
    for (int i = 0; i < texts; ++i)
      account_->execute("Insert Into Result (n, t" + std::to_string(i) + ", cBlank, iZero, x) Values (" +
                        std::to_string(i) + ", N'a', N'  ', 0, 1)");
  }

  void know(std::string name, ColumnRole role = ColumnRole::text) {
    known_.push_back({.name = std::move(name), .chinese = "", .english = "", .role = role});
  }

  static std::vector<std::string> names(const std::vector<ReportColumn>& columns) {
    std::vector<std::string> names;
    names.reserve(columns.size());
    for (const ReportColumn& column : columns)
      names.push_back(column.name);
    return names;
  }

  static constexpr int texts = 20;
  std::unique_ptr<tsql::Connection> account_ = tsql::Connection::openInMemory();
  std::vector<ReportColumn> known_;
};

TEST_F(FilledColumns, AreFoundHoweverLateTheyAreFilled) {
  std::vector<std::string> expected;
  expected.reserve(texts + 2);
  for (int i = 0; i < texts; ++i)
    expected.push_back("t" + std::to_string(i));
  const ResultTable table(*account_, "Result");
  EXPECT_THAT(names(table.filledColumns(known_)), ElementsAreArray(expected));
  account_->execute("Insert Into Result (n, iOne, dDay) Values (99, -1, '2024-03-31')");
  expected.insert(expected.end(), {"iOne", "dDay"});
  EXPECT_THAT(names(table.filledColumns(known_)), ElementsAreArray(expected));
}

TEST_F(FilledColumns, OfSomeRowsAreThoseThatTheseFill) {
  const ResultTable table(*account_, "Result");
  const ResultTable kept(*account_, "Result", orderByPlace, std::make_shared<ResultFacts>());
  for (const ResultTable& each : {table, kept}) {
    EXPECT_THAT(names(each.filledColumns(known_, "n = 3 Or n = 19")), ElementsAre("t3", "t19"));
    EXPECT_THAT(names(each.filledColumns(known_, "n < 0")), IsEmpty());
  }
}

TEST_F(FilledColumns, OfATableThatDoesNotChangeAreFoundOnce) {
  const ResultTable table(*account_, "Result", orderByPlace, std::make_shared<ResultFacts>());
  const std::vector<std::string> found = names(table.filledColumns(known_));
  account_->execute("Delete From Result Where n > 3");
  EXPECT_EQ(names(table.filledColumns(known_)), found);
}

TEST_F(FilledColumns, SumsComeByGroupsInTheirOrder) {
  const ResultTable table(*account_, "Result");
  const auto sums = table.sums("Sum(n), Count(*), t5", "n >= 4 And n < 7", "t5");
  ASSERT_EQ(sums.size(), 2U);
  EXPECT_THAT(sums[0], ElementsAre(std::int64_t{10}, std::int64_t{2}, tsql::Value()));
  EXPECT_THAT(sums[1], ElementsAre(std::int64_t{5}, std::int64_t{1}, tsql::Value(std::string("a"))));
}

TEST_F(FilledColumns, SumsOfATableThatDoesNotChangeAreKept) {
  const ResultTable table(*account_, "Result", orderByPlace, std::make_shared<ResultFacts>());
  const auto sums = table.sums("Sum(n)", everyRow);
  account_->execute("Delete From Result Where n = 19");
  EXPECT_EQ(table.sums("Sum(n)", everyRow), sums);
  EXPECT_THAT(table.sums("Count(*)", everyRow).front(), ElementsAre(std::int64_t{19}));
  EXPECT_THAT(table.sums("Sum(n)", "n < 2").front(), ElementsAre(std::int64_t{1}));
}

}  // namespace
}  // namespace quillon::workbench
