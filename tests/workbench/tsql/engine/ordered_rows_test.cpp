// Rows that are ordered once and then read by their numbers.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OrderedRows : public ::testing::Test {
 protected:
  OrderedRows() {
    connection_->execute(
        "Create Table Lines (cCode nvarchar(10), iMoney decimal(18,2), iNumber int) "
        "Insert Into Lines Values (N'b', 10.50, 1) Insert Into Lines Values (N'A', 9.25, 2) "
        "Insert Into Lines Values (N'B', 9.25, 3) Insert Into Lines Values (null, 100, 4)");
  }

  std::vector<std::int64_t> ordered(const std::string& where, const std::string& order) {
    return connection_->orderedRows("Lines", where, order);
  }
  // The values of `list`, a text a row.
  std::vector<std::string> read(const std::string& list, const std::vector<std::int64_t>& rows) {
    const auto cursor = connection_->rowsAt("Lines", list, rows);
    std::vector<std::string> texts;
    while (cursor->next()) {
      std::string text;
      for (std::size_t i = 0; i < cursor->columns().size(); ++i)
        text += (i == 0 ? "" : " ") + toText(cursor->value(i)).value_or("null");
      texts.push_back(text);
    }
    return texts;
  }

  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
};

TEST_F(OrderedRows, ComeInTheOrderOfAQuery) {
  for (const std::string order :
       {"cCode, iNumber", "cCode Desc, iNumber", "iMoney, cCode Desc", "iMoney Desc, iNumber"}) {
    std::vector<std::string> queried;
    for (const auto cursor = connection_->query("Select iNumber From Lines Order By " + order); cursor->next();)
      queried.push_back(toText(cursor->value(0)).value());
    EXPECT_EQ(read("iNumber", ordered("1 = 1", order)), queried) << order;
  }
}

TEST_F(OrderedRows, AreThoseThatMeetTheCondition) {
  EXPECT_THAT(read("iNumber, cCode, iMoney", ordered("cCode = N'b'", "iMoney")), ElementsAre("3 B 9.25", "1 b 10.50"));
  EXPECT_THAT(ordered("iMoney > 1000", "iMoney"), IsEmpty());
}

TEST_F(OrderedRows, AreReadInTheOrderGivenWithTheirTypes) {
  const std::vector<std::int64_t> rows = ordered("1 = 1", "iNumber");
  EXPECT_THAT(read("iNumber", {rows[3], rows[0]}), ElementsAre("4", "1"));
  const auto cursor = connection_->rowsAt("Lines", "iMoney, cCode", {rows[0]});
  EXPECT_EQ(cursor->columns()[0].type.name(), "decimal(18,2)");
  EXPECT_EQ(cursor->columns()[1].name, "cCode");
}

TEST_F(OrderedRows, ThatAreGoneAreLeftOut) {
  const std::vector<std::int64_t> rows = ordered("1 = 1", "iNumber");
  connection_->execute("Delete From Lines Where iNumber = 2");
  EXPECT_THAT(read("iNumber", rows), ElementsAre("1", "3", "4"));
}

TEST_F(OrderedRows, AreFoundBesideColumnsOfTheirNumbersName) {
  connection_->execute("Create Table Odd (rowid nvarchar(3), iNumber int) Insert Into Odd Values (N'x', 7)");
  const auto rows = connection_->orderedRows("Odd", "rowid = N'x'", "rowid");
  const auto cursor = connection_->rowsAt("Odd", "iNumber", rows);
  ASSERT_TRUE(cursor->next());
  EXPECT_EQ(toText(cursor->value(0)), "7");
}

TEST_F(OrderedRows, AreRefusedAsAQueryIs) {
  EXPECT_THROW(ordered("nothing = 1", "iNumber"), SqlError);
  EXPECT_THROW(ordered("1 = 1", "nothing"), SqlError);
  EXPECT_THROW(connection_->orderedRows("Nothing", "1 = 1", "iNumber"), SqlError);
  EXPECT_THROW(connection_->rowsAt("Lines", "nothing", {1}), SqlError);
}

}  // namespace
}  // namespace quillon::tsql
