// What is told of an account that is on its way.
#include "workbench/account/transfer_progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account.h"
#include "workbench/account/difference.h"
#include "workbench/account/script.h"
#include "workbench/account/transfer.h"

namespace quillon::account {
namespace {

using ::testing::ElementsAre;

TEST(RowCounter, TellsEveryThousandRowsOrSo) {
  std::vector<std::int64_t> told;
  const TransferProgress progress = {.rows = [&told](std::int64_t rows) { told.push_back(rows); }, .indexes = {}};
  RowCounter counter(progress);
  for (int i = 0; i < 3000; ++i)
    counter.row();
  EXPECT_EQ(counter.rows(), 3000);
  EXPECT_THAT(told, ElementsAre(1024, 2048));
}

TEST(RowCounter, CountsWhenNobodyListens) {
  const TransferProgress nobody;
  RowCounter counter(nobody);
  for (int i = 0; i < 2000; ++i)
    counter.row();
  EXPECT_EQ(counter.rows(), 2000);
}

// Each way that an account goes tells its rows.
class TransferIsTold : public ::testing::Test {
 protected:
  TransferIsTold() { createSample(folder_ / "a", {.rows = 3000, .seed = 3, .years = 1}); }

  std::unique_ptr<tsql::Connection> account() const {
    return tsql::Connection::open(folder_ / "a", tsql::OpenMode::readOnly);
  }
  TransferProgress progress() {
    return {.rows = [this](std::int64_t rows) { rows_.push_back(rows); },
            .indexes = [this] { beforeIndexes_ = rows_.size(); }};
  }
  // Of `rows` rows.
  void expectTold(std::int64_t rows) {
    ASSERT_GE(rows_.size(), 3U);
    EXPECT_TRUE(std::ranges::is_sorted(rows_));
    EXPECT_LE(rows_.back(), rows);
    EXPECT_GT(rows_.back(), rows - 1024);
    rows_.clear();
  }

  testing::TestFolder folder_;
  std::vector<std::int64_t> rows_;
  std::size_t beforeIndexes_ = 0;
};

TEST_F(TransferIsTold, OfAnExportAndAnImport) {
  const std::int64_t rows = exportAccount(*account(), folder_ / "csv", progress()).rows;
  expectTold(rows);
  importAccount(folder_ / "b", folder_ / "csv", progress());
  EXPECT_EQ(beforeIndexes_, rows_.size()) << "indexes come after the rows";
  expectTold(rows);
}

TEST_F(TransferIsTold, OfAScriptAndAComparison) {
  std::ostringstream script;
  const std::int64_t rows = writeScript(*account(), script, {}, progress()).rows;
  expectTold(rows);
  compareAccounts(*account(), *account(), {}, progress());
  expectTold(rows);
}

}  // namespace
}  // namespace quillon::account
