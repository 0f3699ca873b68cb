#include "workbench/account/leftover_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/account/leftovers.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account {
namespace {

using testing::dropLeftovers;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::leftoverNames;
using ::testing::UnorderedElementsAre;

constexpr const char* kept = "QuillonReport0123456789abcdef0123456789ABCDEF";

TEST(LeftoverTables, WorkTablesAreKnownByTheShapeOfTheirNames) {
  for (const char* name : {"77u1IA_SFC_Item_DetailTmp", "77u1IA_SFC_IX_GroupIndex", "77u1IA_OutSum_Item_DetailTmp",
                           "77u1FXWtTmp", "-5a_BFXWtTmp", "12FXWtTmp", "77u1fxwttmp", "77U1IA_SFC_ITEM_DETAILTMP"}) {
    EXPECT_TRUE(isWorkTableName(name)) << name;
  }
  for (const char* name :
       {"", "FXWtTmp", "7FXWtTmp", "-7FXWtTmp", "u1FXWtTmp", "77u1FXWtTmpX", "77u-1FXWtTmp", "77u 1FXWtTmp",
        "77u1'FXWtTmp", "77部门FXWtTmp", "ia_subsidiary", "Report_IA_SFC_Item_DetailTmp", "77u1", kept}) {
    EXPECT_FALSE(isWorkTableName(name)) << name;
  }
}

TEST(LeftoverTables, ResultTablesAreKnownByTheirNamesInAnyLetterCase) {
  EXPECT_TRUE(isResultTableName(kept));
  EXPECT_TRUE(isResultTableName("quillonreport0123456789abcdef0123456789abcdef"));
  for (const char* name :
       {"QuillonReport", "QuillonReport0123456789abcdef0123456789abcde",
        "QuillonReport0123456789abcdef0123456789abcdef0", "QuillonReportg123456789abcdef0123456789abcdef",
        "MyQuillonReport0123456789abcdef0123456789abcd", "77u1FXWtTmp"}) {
    EXPECT_FALSE(isResultTableName(name)) << name;
  }
}

TEST(LeftoverTables, ThoseOfAnAccountFileHaveNoAge) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table ia_subsidiary (AutoID int)");
  connection->execute("Create Table [77u1IA_SFC_Item_DetailTmp] (a int)");
  connection->execute("Create Table [77u2IA_SFC_IX_GroupIndex] (a int)");
  connection->execute("Create Table [My FXWtTmp] (a int)");
  connection->execute(std::string("Create Table ") + kept + " (a int)");
  const std::vector<LeftoverTable> left = leftoverTables(*connection);
  ASSERT_EQ(left.size(), 3U);
  EXPECT_EQ(left[0].name, "77u1IA_SFC_Item_DetailTmp");
  EXPECT_FALSE(left[0].mayBeWanted());
  EXPECT_FALSE(left[1].mayBeWanted());
  EXPECT_EQ(left[2].name, kept);
  EXPECT_TRUE(left[2].isResult());
  EXPECT_TRUE(left[2].mayBeWanted()) << "somebody kept it";
  EXPECT_THAT(dropLeftovers(*connection), ElementsAre("77u1IA_SFC_Item_DetailTmp", "77u2IA_SFC_IX_GroupIndex", kept));
  EXPECT_THAT(leftoverNames(*connection), IsEmpty());
  EXPECT_THAT(connection->tables(""), UnorderedElementsAre("ia_subsidiary", "My FXWtTmp"));
}

// Rows in memory.
class Rows final : public tsql::Cursor {
 public:
  explicit Rows(std::vector<std::vector<tsql::Value>> rows) : rows_(std::move(rows)) {}
  std::span<const tsql::Column> columns() const override { return {}; }
  bool next() override { return ++row_ <= rows_.size(); }
  const tsql::Value& value(std::size_t column) const override { return rows_.at(row_ - 1).at(column); }

 private:
  std::vector<std::vector<tsql::Value>> rows_;
  std::size_t row_ = 0;
};

// A server that stores names in small letters and knows the tables' age.
class Server final : public tsql::Database {
 public:
  void run(std::string_view, tsql::ResultSink&) override {}
  std::int64_t execute(std::string_view batch) override {
    executed.emplace_back(batch);
    return -1;
  }
  std::unique_ptr<tsql::Cursor> query(std::string_view batch) override {
    EXPECT_EQ(batch,
              "Select name, DateDiff(minute, crdate, GetDate()) From sysobjects Where xtype = N'U' Order By name");
    return std::make_unique<Rows>(
        std::vector<std::vector<tsql::Value>>{{"ia_subsidiary", std::int64_t{900'000}},
                                              {"quillonreport0123456789abcdef0123456789abcdef", std::int64_t{1'440}},
                                              {"quillonreport1123456789abcdef0123456789abcdef", std::int64_t{1'439}},
                                              {"77u1fxwttmp", std::int64_t{3}},
                                              {"78u1fxwttmp", std::int64_t{3'000}}});
  }
  std::vector<tsql::Column> describe(std::string_view) override { return {}; }
  std::vector<std::string> tables(std::string_view) override { return {"77U1fxwttmp", "78u1fxwttmp", "my u1 table"}; }

  std::vector<std::string> executed;
};

TEST(LeftoverTables, ThoseOfAServerAreWantedWhileTheyAreYoungerThanADay) {
  Server server;
  const std::vector<LeftoverTable> left = leftoverTables(server);
  ASSERT_EQ(left.size(), 4U);
  EXPECT_EQ(left[0].name, "77u1fxwttmp");
  EXPECT_EQ(left[0].minutes, 3);
  EXPECT_TRUE(left[0].mayBeWanted()) << "a report may run";
  EXPECT_FALSE(left[1].mayBeWanted());
  EXPECT_TRUE(left[2].isResult());
  EXPECT_FALSE(left[2].mayBeWanted());
  EXPECT_TRUE(left[3].mayBeWanted());
}

TEST(LeftoverTables, ARunDropsItsOwnAlone) {
  Server server;
  dropWorkTablesNamed(server, {"u9", "7U1"});
  EXPECT_THAT(server.executed, ElementsAre("Drop Table [77U1fxwttmp]"));
}

}  // namespace
}  // namespace quillon::account
