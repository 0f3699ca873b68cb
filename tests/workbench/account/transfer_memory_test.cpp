// Taking an account elsewhere needs no more memory for more rows.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/workbench/account/allocation_counter.h"
#include "tests/workbench/account/test_folder.h"
#include "workbench/account/difference.h"
#include "workbench/account/schema.h"
#include "workbench/account/script.h"
#include "workbench/account/transfer.h"

namespace quillon::account {
namespace {

// Forgets what is written to it.
class Nothing : public std::streambuf {
  int overflow(int character) override { return character; }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

std::unique_ptr<tsql::Connection> accountOf(std::int64_t rows) {
  auto connection = tsql::Connection::openInMemory();
  createTables(*connection);
  connection->execute("Create Table t (n int Primary Key, c nvarchar(60), d decimal(18,6))");
  const auto writer = connection->bulkWriter("t", std::vector<std::string>{"n", "c", "d"});
  for (std::int64_t i = 0; i < rows; ++i)
    writer->write(std::vector<tsql::Value>{i, std::string("库存商品 go, \"x\"\n"), tsql::Exact{i, 6}});
  return connection;
}

template <typename Action>
std::size_t peakOf(Action action) {
  const std::size_t before = testing::bytesInUse();
  testing::restartPeak();
  action();
  return testing::peakBytes() - before;
}

constexpr std::int64_t fewRows = 500, manyRows = 20'000;
constexpr std::size_t slack = 65'536;

template <typename Action>
void expectSamePeak(Action action) {
  const auto few = accountOf(fewRows), many = accountOf(manyRows);
  const std::size_t small = peakOf([&] { action(*few); });
  const std::size_t large = peakOf([&] { action(*many); });
  EXPECT_GT(small, 0U);
  EXPECT_LT(large, small + slack);
}

TEST(TransferMemory, OfAnExportIsTheSameForMoreRows) {
  const testing::TestFolder folder;
  int run = 0;
  expectSamePeak([&](tsql::Connection& account) { exportAccount(account, folder / std::to_string(run++)); });
}

TEST(TransferMemory, OfAnImportIsTheSameForMoreRows) {
  const testing::TestFolder folder;
  exportAccount(*accountOf(fewRows), folder / "few");
  exportAccount(*accountOf(manyRows), folder / "many");
  const std::size_t small = peakOf([&] { importAccount(folder / "a", folder / "few"); });
  const std::size_t large = peakOf([&] { importAccount(folder / "b", folder / "many"); });
  EXPECT_GT(small, 0U);
  EXPECT_LT(large, small + slack);
}

TEST(TransferMemory, OfAScriptIsTheSameForMoreRows) {
  Nothing nothing;
  std::ostream out(&nothing);
  expectSamePeak([&](tsql::Connection& account) { writeScript(account, out); });
}

// The first account has a row more at the beginning, so that all rows wait for their partners.
std::size_t peakOfComparison(std::int64_t rows) {
  const auto first = accountOf(rows), second = accountOf(rows);
  first->execute("Insert Into t Values (-1, Null, Null)");
  return peakOf([&] { compareAccounts(*first, *second, {}); });
}

TEST(TransferMemory, OfAComparisonIsTheSameForMoreRowsThatHavePartners) {
  const std::size_t small = peakOfComparison(fewRows);
  EXPECT_GT(small, 0U);
  EXPECT_LT(peakOfComparison(manyRows), small + slack);
}

}  // namespace
}  // namespace quillon::account
