// The generator's memory does not grow with the ledger.
#include <gtest/gtest.h>

#include "tests/workbench/account/allocation_counter.h"
#include "workbench/account/sample.h"

namespace quillon::account {
namespace {

// Takes rows and forgets them.
class Sink : public tsql::Connection {
 public:
  std::unique_ptr<tsql::BulkWriter> bulkWriter(std::string_view, std::span<const std::string>) override {
    class Writer : public tsql::BulkWriter {
      void write(std::span<const tsql::Value>) override {}
    };
    return std::make_unique<Writer>();
  }
  void run(std::string_view, tsql::ResultSink&) override {}
  std::int64_t execute(std::string_view) override { return 0; }
  std::unique_ptr<tsql::Cursor> query(std::string_view) override { return nullptr; }
  void begin() override {}
  void commit() override {}
  void rollback() override {}
  std::vector<tsql::Column> describe(std::string_view) override { return {}; }
  std::vector<std::string> tables(std::string_view) override { return {}; }
  void observe(std::function<void(const tsql::StatementReport&)>) override {}
  std::string translate(std::string_view) override { return {}; }
  std::vector<std::int64_t> orderedRows(std::string_view, std::string_view, std::string_view,
                                        std::optional<std::int64_t>) override {
    return {};
  }
  std::unique_ptr<tsql::Cursor> rowsAt(std::string_view, std::string_view, std::vector<std::int64_t>) override {
    return nullptr;
  }
  sqlite3* handle() override { return nullptr; }
};

std::size_t peakOf(const SampleOptions& options) {
  Sink sink;
  const std::size_t before = testing::bytesInUse();
  testing::restartPeak();
  writeSample(sink, options);
  return testing::peakBytes() - before;
}

// More ledger lines come with more inventories: a company that grows fivefold, about a kilobyte for each of them.
TEST(SampleMemory, GrowsWithTheCompanyAndNotWithTheLines) {
  const std::size_t small = peakOf({.rows = 20'000});
  const std::size_t large = peakOf({.rows = 100'000});
  constexpr std::size_t moreInventories = 80'000 / (27 * 3);
  EXPECT_GT(small, 0U);
  EXPECT_LT(large - small, moreInventories * 2048);
}

// From 12,000 inventories on the company stays as it is, whatever the number of lines.
TEST(SampleMemory, IsTheSameForTwiceTheLinesOfTheLargestCompany) {
  const std::size_t once = peakOf({.rows = 330'000, .years = 1});
  const std::size_t twice = peakOf({.rows = 660'000, .years = 1});
  EXPECT_LT(twice, once + 65'536);
  EXPECT_LT(once, 24U * 1024 * 1024);
}

}  // namespace
}  // namespace quillon::account
