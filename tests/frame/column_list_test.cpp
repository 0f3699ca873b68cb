#include "frame/column_list.h"

#include <gtest/gtest.h>

#include <array>

namespace quillon {
namespace {

struct Column {
  std::string_view name;
  std::string_view source;
  bool endsLine = false;
};

constexpr std::array columns{
    Column{"cWhCode", "wh.cWhCode", true},
    Column{"cFree1,cFree2,", "base.cFree1,base.cFree2, "},
    Column{"cDepCode", "base.cAccDep As cDepCode"},
    Column{"cSource", ""},
    Column{"iMoney", "item.iItemOutPrice As imoney"},
};

TEST(ColumnList, ListsOneTextOfEachRowInOrder) {
  constexpr std::array two{columns[0], columns[2]};
  EXPECT_EQ(columnList(two, &Column::name, ","), "cWhCode,cDepCode");
  EXPECT_EQ(columnList(two, &Column::source, ", "), "wh.cWhCode, base.cAccDep As cDepCode");
}

TEST(ColumnList, PutsNothingBehindAListThatBringsItsComma) {
  EXPECT_EQ(columnList(columns, &Column::name, ","), "cWhCode,cFree1,cFree2,cDepCode,cSource,iMoney");
}

TEST(ColumnList, LeavesOutRowsWithoutAText) {
  EXPECT_EQ(columnList(columns, &Column::source, ","),
            "wh.cWhCode,base.cFree1,base.cFree2, base.cAccDep As cDepCode,item.iItemOutPrice As imoney");
}

TEST(ColumnList, TakesTextsAndSeparatorsFromFunctions) {
  const auto bracketed = [](const Column& column) { return "<" + std::string(column.source) + ">"; };
  const auto separator = [](const Column& column) { return column.endsLine ? ",\r\n" : "/"; };
  EXPECT_EQ(columnList(std::array{columns[0], columns[2], columns[4]}, bracketed, separator),
            "<wh.cWhCode>,\r\n<base.cAccDep As cDepCode>/<item.iItemOutPrice As imoney>");
}

TEST(ColumnList, OfNoRowsIsEmpty) {
  EXPECT_EQ(columnList(std::array<Column, 0>{}, &Column::name, ","), "");
}

TEST(ColumnList, KnowsWhetherTextsEndWithTheirNames) {
  EXPECT_TRUE(allEndWithTheirNames(columns, &Column::source));
  EXPECT_FALSE(allEndWithTheirNames(std::array{Column{"cDepCode", "base.cAccDep"}}, &Column::source));
  EXPECT_FALSE(allEndWithTheirNames(std::array{Column{"cDepCode", "Code"}}, &Column::source));
}

}  // namespace
}  // namespace quillon
