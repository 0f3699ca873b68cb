// `quillon list` on an account of a few warehouses, and on one of many.
#include "workbench/cli/list_command.h"

#include <gmock/gmock.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/schema.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {
namespace {

class ListCommand : public testing::Test {
 protected:
  ListCommand() {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    account->execute(
        "Insert Into Warehouse (cWhCode, cWhName) Values (N'01', N'原材料库'), (N'07', N'线边库'), (N'09', "
        "N'A, \"B\"')");
  }

  std::string list(ListOptions options) {
    options.account = AccountSource::inFile(file_.path());
    std::ostringstream out;
    runList(options, out);
    return out.str();
  }

  test::TemporaryFile file_{".qacc"};
};

TEST_F(ListCommand, ShowsATableWithTheCount) {
  EXPECT_EQ(list({.kind = "warehouses"}),
            "编码  名称\n"
            "----  --------\n"
            "01    原材料库\n"
            "07    线边库\n"
            "09    A, \"B\"\n"
            "共 3 项\n");
  EXPECT_EQ(list({.kind = "Warehouses", .search = "xbk", .language = Language::english}),
            "Code  Name\n"
            "----  ------\n"
            "07    线边库\n"
            "1 entry\n");
}

TEST_F(ListCommand, SaysWhenThereIsMore) {
  EXPECT_THAT(list({.kind = "warehouses", .limit = 2}),
              testing::EndsWith("07    线边库\n共 3 项，显示 2 项；用 --search 查找，--limit 0 显示全部\n"));
  EXPECT_THAT(
      list({.kind = "warehouses", .offset = 2, .limit = 2, .language = Language::english}),
      testing::EndsWith("09    A, \"B\"\n1 of 3 entries; look for one with --search, or see all with --limit 0\n"));
}

TEST_F(ListCommand, WritesForPrograms) {
  EXPECT_EQ(list({.kind = "warehouses", .limit = 0, .format = ListFormat::csv}),
            "code,name\r\n01,原材料库\r\n07,线边库\r\n09,\"A, \"\"B\"\"\"\r\n");
  const auto document = nlohmann::json::parse(list({.kind = "WAREHOUSES", .limit = 2, .format = ListFormat::json}));
  EXPECT_EQ(document, nlohmann::json::parse(R"({"kind":"warehouses","count":3,"rows":[
      {"code":"01","name":"原材料库"},{"code":"07","name":"线边库"}]})"));
  EXPECT_EQ(list({.kind = "customers", .format = ListFormat::json}),
            "{\"kind\":\"customers\",\"count\":0,\"rows\":[]}\n");
}

TEST_F(ListCommand, RefusesAKindThatThereIsNot) {
  try {
    list({.kind = "wharehouse"});
    FAIL() << "there is no such list";
  } catch (const UserError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith("there is no list of \"wharehouse\"; did you mean warehouses?; there "
                                                  "are: warehouses, departments, inventory, "));
  }
}

TEST_F(ListCommand, IsQuickWithFiftyThousandEntries) {
  const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
  constexpr int entries = 50'000;
  constexpr int atOnce = 500;
  for (int first = 0; first < entries; first += atOnce) {
    std::string sql = "Insert Into Customer (cCusCode, cCusName) Values ";
    for (int number = first; number < first + atOnce; ++number) {
      sql += (number > first ? ", (N'" : "(N'") + std::to_string(100'000 + number) + "', N'重庆机械设备（第" +
             std::to_string(number) + "号）公司')";
    }
    account->execute(sql);
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(list({.kind = "customers", .search = "cqjx 49999"}), testing::EndsWith("公司\n共 1 项\n"));
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  RecordProperty("seconds", std::to_string(seconds.count()));
  EXPECT_LT(seconds.count(), 5.0);  // a fifth of a second where nothing else runs
}

}  // namespace
}  // namespace quillon::workbench
