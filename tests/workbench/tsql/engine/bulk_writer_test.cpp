// Rows written without a statement for each.
#include "workbench/tsql/engine/bulk_writer.h"

#include <gtest/gtest.h>

namespace quillon::tsql {
namespace {

class BulkWriting : public ::testing::Test {
 protected:
  BulkWriting() : connection_(Connection::openInMemory()) {
    connection_->execute("Create Table t (n int not null, c nvarchar(4), d decimal(9,2))");
    writer_ = connection_->bulkWriter("t", std::vector<std::string>{"n", "c", "d"});
  }

  void write(std::vector<Value> row) { writer_->write(row); }
  int errorOf(std::vector<Value> row) {
    try {
      write(std::move(row));
    } catch (const SqlError& error) {
      return error.number();
    }
    return 0;
  }
  // "n c d", a line a row.
  std::string rows() {
    std::string text;
    const auto cursor = connection_->query("Select n, c, d From t Order By n");
    while (cursor->next()) {
      for (std::size_t i = 0; i < 3; ++i)
        text += toText(cursor->value(i)).value_or("NULL") + (i < 2 ? ' ' : '\n');
    }
    return text;
  }

  std::unique_ptr<Connection> connection_;
  std::unique_ptr<BulkWriter> writer_;
};

TEST_F(BulkWriting, TellsNullFromTheValueOfTheRowBefore) {
  write({std::int64_t{1}, {}, {}});
  write({std::int64_t{2}, std::string("a"), Exact{5, 2}});
  write({std::int64_t{3}, {}, {}});
  write({std::int64_t{4}, {}, {}});
  write({std::int64_t{5}, std::string("b"), {}});
  write({std::int64_t{6}, {}, Exact{-7, 2}});
  EXPECT_EQ(rows(), "1 NULL NULL\n2 a 0.05\n3 NULL NULL\n4 NULL NULL\n5 b NULL\n6 NULL -0.07\n");
}

TEST_F(BulkWriting, GoesOnBehindARowThatIsRefused) {
  constexpr int truncated = 2628, nullRefused = 515, otherForm = 206, otherCount = 213;
  write({std::int64_t{1}, std::string("a"), Exact{5, 2}});
  EXPECT_EQ(errorOf({std::int64_t{2}, {}, Exact{5, 3}}), otherForm);
  EXPECT_EQ(errorOf({std::int64_t{3}, std::string("abcde"), {}}), truncated);
  EXPECT_EQ(errorOf({{}, std::string("b"), {}}), nullRefused);
  EXPECT_EQ(errorOf({std::int64_t{4}}), otherCount);
  write({std::int64_t{5}, {}, Exact{6, 2}});
  write({std::int64_t{6}, std::string("c"), {}});
  EXPECT_EQ(rows(), "1 a 0.05\n5 NULL 0.06\n6 c NULL\n");
}

}  // namespace
}  // namespace quillon::tsql
