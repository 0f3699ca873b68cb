// Account files, made and read with the embedded engine.
#include "workbench/account/account.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/schema.h"

namespace quillon::account {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A folder of the test's own, gone with it.
class AccountFile : public ::testing::Test {
 protected:
  AccountFile() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() / ("quillon-" + std::string(test->name()));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  ~AccountFile() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::filesystem::path file(const char* name = "sample.account") const { return folder_ / name; }
  std::vector<std::string> filesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

 private:
  std::filesystem::path folder_;
};

const SampleOptions small = {.rows = 1000, .seed = 3, .years = 2};

std::string firstText(tsql::Connection& connection, std::string_view sql) {
  const auto rows = connection.query(sql);
  return rows->next() ? tsql::toText(rows->value(0)).value_or("NULL") : "no row";
}

template <typename Action>
std::string refusal(Action action) {
  try {
    action();
  } catch (const AccountError& error) {
    return error.what();
  }
  return "accepted";
}

// --- Making ---------------------------------------------------------------------------------------------------------

TEST_F(AccountFile, AppearsWholeAndAlone) {
  createSample(file(), small);
  EXPECT_THAT(filesInFolder(), ElementsAre("sample.account"));
  const auto connection = tsql::Connection::open(file(), tsql::OpenMode::readOnly);
  EXPECT_EQ(firstText(*connection, "Select Count(*) From ia_subsidiary"), "1000");
}

TEST_F(AccountFile, IsNotOverwritten) {
  std::ofstream(file()) << "something else";
  const std::string message = refusal([&] { createSample(file(), small); });
  EXPECT_EQ(message, file().string() + " exists already; choose another name or delete the file first");
  EXPECT_EQ(std::filesystem::file_size(file()), 14U);
}

TEST_F(AccountFile, IsNotMadeInAFolderThatIsNotThere) {
  const std::filesystem::path nowhere = file() / "below" / "sample.account";
  const std::string message = refusal([&] { createSample(nowhere, small); });
  EXPECT_TRUE(message.starts_with("cannot write " + nowhere.string() + ": ")) << message;
}

TEST_F(AccountFile, LeavesNothingWhenMakingItIsInterrupted) {
  struct Interrupted {};
  EXPECT_THROW(createSample(file(), small, [](std::int64_t, std::int64_t) { throw Interrupted(); }), Interrupted);
  EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_F(AccountFile, OptionsAreCheckedBeforeAnythingIsWritten) {
  EXPECT_EQ(refusal([&] { createSample(file(), {.years = 11}); }), "a sample account has 1 to 10 years, not 11");
  EXPECT_THAT(filesInFolder(), IsEmpty());
}

// What a killed run left behind goes once it is a minute old.
TEST_F(AccountFile, TakesAwayWhatAKilledRunLeft) {
  const std::filesystem::path part = file("sample.account.0123cdef.part");
  std::ofstream(part) << "half an account";
  std::ofstream(file("sample.account.0123cdef.part-journal")) << "its journal";
  std::filesystem::last_write_time(part, std::filesystem::file_time_type::clock::now() - std::chrono::minutes(2));
  createSample(file(), small);
  EXPECT_THAT(filesInFolder(), ElementsAre("sample.account"));
}

// A second run makes an account of the same name while the first one writes its own.
TEST_F(AccountFile, OfTwoThatAreMadeAtOnceTheFirstToEndStays) {
  SampleOptions other = small;
  ++other.seed;
  bool made = false;
  const std::string message = refusal([&] {
    createSample(file(), small, [&](std::int64_t, std::int64_t) {
      if (!std::exchange(made, true)) createSample(file(), other);
    });
  });
  EXPECT_EQ(message, file().string() + " exists already; choose another name or delete the file first");
  EXPECT_THAT(filesInFolder(), ElementsAre("sample.account"));
  createSample(file("alone"), other);
  EXPECT_TRUE(testing::contentOf(file()) == testing::contentOf(file("alone")));
}

TEST_F(AccountFile, HasEveryTableColumnAndType) {
  createSample(file(), small);
  const auto connection = tsql::Connection::open(file(), tsql::OpenMode::readOnly);
  for (const TableDefinition& table : tables()) {
    const std::vector<tsql::Column> columns = connection->describe(table.name);
    ASSERT_EQ(columns.size(), table.columns.size()) << table.name;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      EXPECT_EQ(columns[i].name, table.columns[i].name);
      EXPECT_EQ(columns[i].type.name(), table.columns[i].type.substr(0, table.columns[i].type.find(" not null")));
    }
  }
}

TEST_F(AccountFile, HoldsTheSameRowsForTheSameSeed) {
  createSample(file("a"), small);
  createSample(file("b"), small);
  const auto first = tsql::Connection::open(file("a"), tsql::OpenMode::readOnly);
  const auto second = tsql::Connection::open(file("b"), tsql::OpenMode::readOnly);
  for (const TableDefinition& table : tables()) {
    const std::string sql = "Select * From " + std::string(table.name) + " Order By " + std::string(table.primaryKey);
    const auto left = first->query(sql);
    const auto right = second->query(sql);
    std::int64_t rows = 0;
    while (left->next()) {
      ASSERT_TRUE(right->next()) << table.name;
      for (std::size_t i = 0; i < table.columns.size(); ++i)
        ASSERT_EQ(left->value(i), right->value(i)) << table.name;
      ++rows;
    }
    EXPECT_FALSE(right->next());
    EXPECT_GT(rows, 0) << table.name;
  }
}

TEST_F(AccountFile, AddsUpInSqlToo) {
  createSample(file(), {.rows = 3000, .seed = 8, .years = 2});
  const auto connection = tsql::Connection::open(file(), tsql::OpenMode::readOnly);
  EXPECT_EQ(firstText(*connection,
                      "Select Count(*) From ia_subsidiary base Inner Join (Select iSubID, "
                      "Sum(IsNull(iItemInQuantity, 0)) q, Sum(IsNull(iItemInPrice, 0)) a, "
                      "Sum(IsNull(iItemOutQuantity, 0)) oq, Sum(IsNull(iItemOutPrice, 0)) oa "
                      "From ia_subsidiary_Item Group By iSubID) item On item.iSubID = base.AutoID "
                      "Where IsNull(base.iAInQuantity, 0) <> item.q Or IsNull(base.iAInPrice, 0) <> item.a "
                      "Or IsNull(base.iAOutQuantity, 0) <> item.oq Or IsNull(base.iAOutPrice, 0) <> item.oa"),
            "0");
  EXPECT_NE(firstText(*connection, "Select Count(*) From ia_subsidiary_Item"), "0");
  // The second year opens with what the first one closed with.
  const char* closing =
      "Select Sum(IsNull(iAInPrice, 0) - IsNull(iAOutPrice, 0)) From ia_subsidiary Where iYear = 2023";
  const char* opening =
      "Select Sum(IsNull(iAInPrice, 0) - IsNull(iAOutPrice, 0)) From ia_subsidiary Where iYear = 2024 And iMonth = 0";
  EXPECT_EQ(firstText(*connection, closing), firstText(*connection, opening));
}

TEST_F(AccountFile, KnowsItsLanguage) {
  createSample(file(), small);
  const auto connection = tsql::Connection::open(file(), tsql::OpenMode::readOnly);
  EXPECT_EQ(firstText(*connection,
                      "select EnumName from AA_Enum where EnumType =N'IA.VchType' and EnumCode =N'其他出库单' and "
                      "LocaleId = DBO.UDF_GetLocaleID()"),
            "其他出库单");
}

// --- Telling --------------------------------------------------------------------------------------------------------

TEST_F(AccountFile, TellsWhatIsInIt) {
  createSample(file(), {.rows = 2000,
                        .seed = 3,
                        .years = 3,
                        .valuation = Valuation::department,
                        .costItemStartMonth = 5,
                        .startMonth = 2});
  const auto connection = tsql::Connection::open(file(), tsql::OpenMode::readOnly);
  const AccountInfo told = info(*connection);
  EXPECT_EQ(told.accountCode, "001");
  EXPECT_EQ(told.startDate, "2022-02-01");
  EXPECT_EQ(told.valuationMethod, "按部门核算");
  EXPECT_EQ(told.currentYear, 2024);
  ASSERT_EQ(told.years.size(), 3U);
  EXPECT_EQ(told.years[0].year, 2022);
  EXPECT_EQ(told.years[0].costItemStartMonth, 5);
  EXPECT_EQ(told.years[0].settledMonths, 12);
  EXPECT_EQ(told.years[1].costItemStartMonth, 1);
  EXPECT_EQ(told.years[2].year, 2024);
  EXPECT_EQ(told.years[2].costItemStartMonth, 1);
  EXPECT_EQ(told.years[2].settledMonths, 9);
  std::int64_t lines = 0;
  for (const YearInfo& year : told.years) {
    EXPECT_GT(year.ledgerLines, 0);
    lines += year.ledgerLines;
  }
  EXPECT_EQ(lines, 2000);
  ASSERT_EQ(told.tables.size(), tables().size());
  for (const auto& table : told.tables) {
    if (table.name == "ia_subsidiary") {
      EXPECT_EQ(table.rows, 2000);
    }
    if (table.name == "orvsystem..UA_Period") {
      EXPECT_EQ(table.rows, 36);
    }
    if (table.name == "Warehouse") {
      EXPECT_EQ(table.rows, 8);
    }
  }
}

TEST(AccountInformation, RefusesADatabaseThatIsNoAccount) {
  const auto connection = tsql::Connection::openInMemory();
  EXPECT_EQ(refusal([&] { info(*connection); }),
            "this is no account: the table orvsystem..UA_Period is missing; make one with: quillon account new FILE");
}

}  // namespace
}  // namespace quillon::account
