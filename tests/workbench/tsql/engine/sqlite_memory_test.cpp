#include "workbench/tsql/engine/sqlite_memory.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <filesystem>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "workbench/tsql/engine/bulk_writer.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::tsql {
namespace {

namespace fs = std::filesystem;

constexpr sqlite3_uint64 mebibyte = 1U << 20U;

TEST(SqliteMemory, KeepsWhatABlockHoldsWhileItGrowsAndShrinks) {
  setUpSqliteMemory();
  const std::string text = "what stands at the beginning";
  void* block = sqlite3_malloc64(text.size());
  ASSERT_NE(block, nullptr);
  text.copy(static_cast<char*>(block), text.size());
  for (const sqlite3_uint64 size :
       {sqlite3_uint64{1000}, mebibyte - 8, mebibyte, mebibyte + 8, 5 * mebibyte, 70 * mebibyte, 2 * mebibyte,
        sqlite3_uint64{64}, 3 * mebibyte, sqlite3_uint64{32}}) {
    block = sqlite3_realloc64(block, size);
    ASSERT_NE(block, nullptr) << size;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 8, 0U) << size;
    EXPECT_GE(sqlite3_msize(block), size);
    EXPECT_EQ(std::string(static_cast<char*>(block), text.size()), text) << size;
    static_cast<char*>(block)[size - 1] = 'x';
  }
  sqlite3_free(block);
}

#ifdef __GLIBC__
class SortMemory : public ::testing::Test {
 protected:
  SortMemory() { fs::create_directories(folder_); }
  ~SortMemory() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  static std::int64_t heap() { return static_cast<std::int64_t>(mallinfo2().uordblks); }

  const fs::path folder_ =
      fs::temp_directory_path() / ("quillon-sort-memory-" + std::to_string(std::random_device()()));
};

// Between the pages of a cache it would leave places there as it grows.
TEST_F(SortMemory, IsNotInTheHeap) {
  constexpr std::int64_t rows = 20'000;
  const std::string text(400, 'x');
  const auto connection = Connection::open(folder_ / "account", OpenMode::createNew);
  connection->begin();
  connection->execute("Create Table Lines (iNumber int not null, cText nvarchar(400))");
  {
    const auto writer = connection->bulkWriter("Lines", std::vector<std::string>{"iNumber", "cText"});
    for (std::int64_t row = 0; row < rows; ++row)
      writer->write(std::vector<Value>{rows - row, text});
  }
  connection->commit();
  connection->query("Select Count(cText) From Lines")->next();  // its pages are in the cache
  {
    // The C library takes blocks of this size from the heap, too, once it has seen one go.
    const std::vector<char> large(24 * mebibyte, 'x');
    EXPECT_EQ(large.back(), 'x');
  }

  const std::int64_t before = heap();
  const auto cursor = connection->query("Select iNumber, cText From Lines Order By iNumber");
  ASSERT_TRUE(cursor->next());
  EXPECT_EQ(std::get<std::int64_t>(cursor->value(0)), 1);
  EXPECT_LT(heap() - before, 1 << 20);
}
#endif

}  // namespace
}  // namespace quillon::tsql
