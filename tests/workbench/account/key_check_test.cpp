#include "workbench/account/key_check.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "workbench/account/schema.h"

namespace quillon::account {
namespace {

// "table: key (rows) reports" of what is broken in an account without primary keys where each of these keys has two
// rows.
std::vector<std::string> brokenIn(std::span<const ReportKeys> reports) {
  const auto account = tsql::Connection::openInMemory();
  createTables(*account);
  for (const std::string table : {"Warehouse", "Department", "Customer", "Vendor"}) {
    account->execute("Drop Table " + table);
    account->execute("Create Table " + table + " (code nvarchar(10), place nvarchar(10))");
    account->execute("Insert Into " + table + " Values (N'1', N'a'), (N'1', N'b')");
  }
  std::vector<std::string> lines;
  for (const BrokenKey& key : brokenKeys(*account, reports))
    lines.push_back(key.table + ": " + key.key.english() + " (" + std::to_string(key.rows) + ") " + key.reports);
  return lines;
}

TEST(KeyCheck, NamesTheReportsThatJoinByAKey) {
  const std::vector<JoinKey> one = {{"Warehouse", "code"}, {"Department", "code"}};
  const std::vector<JoinKey> two = {{"Department", "code"}};
  const std::vector<ReportKeys> reports = {{"one", one}, {"two", two}};
  EXPECT_THAT(brokenIn(reports),
              testing::ElementsAre("Warehouse: code = 1 (2) one", "Department: code = 1 (2) one, two"));
}

// A key of a later report stands before the next one that it shares with an earlier, or at the end.
TEST(KeyCheck, KeepsTheOrderOfEachReport) {
  const std::vector<JoinKey> one = {{"Warehouse", "code"}, {"Department", "code"}};
  const std::vector<JoinKey> two = {
      {"Warehouse", "code"}, {"Customer", "code"}, {"Department", "code"}, {"Vendor", "code"}};
  const std::vector<ReportKeys> reports = {{"one", one}, {"two", two}};
  EXPECT_THAT(brokenIn(reports), testing::ElementsAre("Warehouse: code = 1 (2) one, two", "Customer: code = 1 (2) two",
                                                      "Department: code = 1 (2) one, two", "Vendor: code = 1 (2) two"));
}

TEST(KeyCheck, TakesColumnsTogether) {
  const std::vector<JoinKey> keys = {{"Warehouse", "code, place"}};
  const std::vector<ReportKeys> reports = {{"one", keys}};
  EXPECT_THAT(brokenIn(reports), testing::IsEmpty());
}

TEST(KeyCheck, WithoutReportsFindsNothing) {
  EXPECT_THAT(brokenIn({}), testing::IsEmpty());
}

}  // namespace
}  // namespace quillon::account
