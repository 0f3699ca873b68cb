// Two small result tables side by side, whose differences can be reckoned by hand; and larger ones, whose differences SQL of
// the test's own makes.
#include "workbench/presentation/comparison.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/workbench/presentation/small_layouts.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/row_conditions.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

ComparedNames years() {
  return {.one = "Year 2024", .other = "Year 2023"};
}

class SmallComparison : public testing::Test {
 protected:
  // The other result is of the year before: warehouse 1 received 40.40 in March, warehouse 2 is not there, warehouse 3 is.
  void SetUp() override {
    for (tsql::Connection* account : {one_.get(), other_.get()}) {
      test::fillResult(*account);
      test::addClasses(*account);
    }
    other_->execute(
        "Delete From Result Where cWhCode = N'2' "
        "Update Result Set dKeepDate = '2023-03-05', iMoney = 40.4, iQuantity = 4 Where iState = 2 "
        "Insert Into Result Values (9, N'3', N'废品库', N'0301', N'废料', N'', N'', '2023-05-01', N'02', N'人工', N'收入', "
        "2, 2, -7, 0, 0, 2, -7, 0, 0, 2, -7, N'0')");
  }

  Pivot pivot(tsql::Connection& account, std::string_view text, const std::string& mode = "1") const {
    const ResultTable table(account, "Result");
    return {{.report = reportNamed("sfc-item"), .table = table, .mode = mode, .language = Language::english},
            parsePivot(text),
            {.unitCostDecimals = 4}};
  }
  Comparison compared(std::string_view text, const std::vector<SortKey>& sort = {},
                      PivotForm form = PivotForm::joined) const {
    return {pivot(*one_, text), pivot(*other_, text), years(), sort, Language::english, form};
  }
  std::vector<std::string> texts(std::string_view text, const std::vector<SortKey>& sort = {}) const {
    return test::textsOf(compared(text, sort).view());
  }

  std::unique_ptr<tsql::Connection> one_ = test::accountWithResult();
  std::unique_ptr<tsql::Connection> other_ = test::accountWithResult();
};

TEST_F(SmallComparison, HasBothTheirDifferenceAndThePercentage) {
  const View view = compared("Warehouse//Receipt amount").view();
  EXPECT_THAT(test::namesOf(view), ElementsAre("cWhCode", "one/receiptAmount", "other/receiptAmount",
                                               "difference/receiptAmount", "percent/receiptAmount"));
  EXPECT_EQ(view.columns[1].column.english, "Year 2024");
  EXPECT_EQ(view.columns[2].column.chinese, "Year 2023");
  EXPECT_EQ(view.columns[3].column.chinese, "差额");
  EXPECT_EQ(view.columns[4].column.role, ColumnRole::share);
  EXPECT_EQ(view.columns[4].groupEnglish, "Receipt amount");
  EXPECT_TRUE(view.columns[0].key);
  EXPECT_EQ(view.lineCount, 3);
  EXPECT_THAT(
      test::textsOf(view),
      ElementsAre("line|1 原料库|50.5000|40.4000|10.1000|0.2500", "line|2 成品库|1000000.0000||1000000.0000|",
                  "line|3 废品库||-7.0000|7.0000|1.0000", "total|Total|1000050.5000|33.4000|1000017.1000|29940.6317"))
      << "what one side alone has is there; the percentage is by the size of the other, whatever its sign";
}

TEST_F(SmallComparison, GoesThroughEveryLevel) {
  EXPECT_THAT(texts("Warehouse,Inventory//Receipt amount,Closing amount"),
              ElementsAre("line|1 原料库|0101 螺栓|50.5000|40.4000|10.1000|0.2500|120.2500|120.2500|0.0000|0.0000",
                          "subtotal|1 原料库 subtotal||50.5000|40.4000|10.1000|0.2500|120.2500|120.2500|0.0000|0.0000",
                          "line|2 成品库|0201 电机|1000000.0000||1000000.0000||1000000.0000||1000000.0000|",
                          "subtotal|2 成品库 subtotal||1000000.0000||1000000.0000||1000000.0000||1000000.0000|",
                          "line|3 废品库|0301 废料||-7.0000|7.0000|1.0000||0.0000|0.0000|",
                          "subtotal|3 废品库 subtotal|||-7.0000|7.0000|1.0000||0.0000|0.0000|",
                          "total|Total||1000050.5000|33.4000|1000017.1000|29940.6317|1000120.2500|120.2500|"
                          "1000000.0000|8316.0083"));
}

TEST_F(SmallComparison, HasNoDifferenceOfAUnitCostThatIsNotThere) {
  EXPECT_THAT(texts("Warehouse//Receipt unit cost"),
              ElementsAre("line|1 原料库|9.8537|10.1000|-0.2463|-0.0244", "line|2 成品库|1000000.0000|||",
                          "line|3 废品库||-3.5000||", "total|Total|163273.5510|5.5667|163267.9843|29329.4024"));
}

TEST_F(SmallComparison, MatchesMonthsOfTwoYearsByTheirNumber) {
  EXPECT_THAT(
      texts("Month//Receipt amount"),
      ElementsAre("line|03|50.5000|40.4000|10.1000|0.2500", "line|04|1000000.0000||1000000.0000|",
                  "line|05||-7.0000|7.0000|1.0000", "total|Total|1000050.5000|33.4000|1000017.1000|29940.6317"));
  other_->execute("Update Result Set dKeepDate = '2024-03-31' Where cWhCode = N'3'");
  EXPECT_THAT(texts("Month//Receipt amount"),
              ElementsAre("line|2023-03||40.4000|-40.4000|-1.0000", "line|2024-03|50.5000|-7.0000|57.5000|8.2143",
                          "line|2024-04|1000000.0000||1000000.0000|",
                          "total|Total|1000050.5000|33.4000|1000017.1000|29940.6317"))
      << "what is of several years is matched as it is";
}

TEST_F(SmallComparison, IsOrderedByAnyOfItsColumns) {
  const auto firsts = [&](const std::vector<SortKey>& sort) {
    std::vector<std::string> names;
    for (const std::string& text : texts("Warehouse,Inventory//Receipt amount", sort)) {
      if (text.starts_with("subtotal|")) names.push_back(text.substr(9, 1));
    }
    return names;
  };
  EXPECT_THAT(firsts({{"difference/receiptAmount", true}}), ElementsAre("2", "1", "3"));
  EXPECT_THAT(firsts({{"other/receiptAmount", false}}), ElementsAre("2", "3", "1")) << "nothing comes first";
  EXPECT_THAT(firsts({{"Warehouse", true}}), ElementsAre("3", "2", "1"));
  EXPECT_THAT(firsts({{"Inventory", true}}), ElementsAre("1", "2", "3"));
  EXPECT_THROW(texts("Warehouse//Receipt amount", {{"receiptAmount", true}}), UserError);
}

TEST_F(SmallComparison, KnowsTheRowsBehindAFigure) {
  const Comparison comparison = compared("Warehouse,Inventory//Issue amount,Receipt amount");
  ASSERT_EQ(comparison.rowCount(), 7U);
  const auto rowsOf = [](tsql::Connection& account, const std::vector<RowCondition>& where) {
    std::vector<std::string> rows;
    const auto cursor =
        account.query("Select autoid, iState From Result Where " +
                      conditionText(where, ResultTable(account, "Result").columns()) + " Order By autoid, iState");
    while (cursor->next())
      rows.push_back(plainText(cursor->value(0), "") + "/" + plainText(cursor->value(1), ""));
    return rows;
  };
  // Two names, then four columns of each figure.
  const auto mine = comparison.where(3, 6);
  ASSERT_TRUE(mine);
  EXPECT_FALSE(mine->ofOther);
  EXPECT_THAT(rowsOf(*one_, mine->where), ElementsAre("4/2"));
  const auto others = comparison.where(6, 7);
  ASSERT_TRUE(others);
  EXPECT_TRUE(others->ofOther);
  EXPECT_THAT(rowsOf(*other_, others->where), ElementsAre("2/2", "9/2"));
  EXPECT_FALSE(comparison.where(3, 7)) << "the other has no such row";
  EXPECT_FALSE(comparison.where(3, 8)) << "a difference is nobody's";
  EXPECT_FALSE(comparison.where(0, 0));
  EXPECT_THROW(comparison.where(7, 2), std::out_of_range);
  EXPECT_THROW(comparison.where(0, 10), std::out_of_range);
}

TEST_F(SmallComparison, ForProgramsHasCodeAndNameApart) {
  const View view = compared("Warehouse//Receipt amount", {}, PivotForm::apart).view();
  EXPECT_THAT(test::namesOf(view), ElementsAre("cWhCode", "cWhName", "one/receiptAmount", "other/receiptAmount",
                                               "difference/receiptAmount", "percent/receiptAmount"));
  EXPECT_THAT(test::textsOf(view)[2], "line|3|废品库||-7.0000|7.0000|1.0000");
}

TEST_F(SmallComparison, OfAnEmptyResultHasTheOtherAlone) {
  other_->execute("Delete From Result");
  EXPECT_THAT(texts("Warehouse//Receipt amount"),
              ElementsAre("line|1 原料库|50.5000||50.5000|", "line|2 成品库|1000000.0000||1000000.0000|",
                          "total|Total|1000050.5000||1000050.5000|"));
}

TEST(Comparisons, TakeNothingAcrossAndNoShares) {
  EXPECT_NO_THROW(checkComparison(parsePivot("Warehouse//Amount,Unit cost")));
  EXPECT_THROW(checkComparison(parsePivot("Warehouse/Month/Amount")), UserError);
  EXPECT_THROW(checkComparison(parsePivot("Warehouse//Amount:row")), UserError);
  EXPECT_THROW(checkComparison(parsePivot("Warehouse//金额：行")), UserError);
}

TEST(Comparisons, AreCalledByTheConditionsThatDiffer) {
  const ComparedNames names = namesByConditions({{"Year", "2024"}, {"Mode", "by cost item"}, {"Warehouse", "01"}},
                                                {{"Year", "2023"}, {"Mode", "by cost item"}}, Language::english);
  EXPECT_EQ(names.one, "Year 2024, Warehouse 01");
  EXPECT_EQ(names.other, "Year 2023, Warehouse all");
  const ComparedNames same = namesByConditions({{"Year", "2024"}}, {{"Year", "2024"}}, Language::english);
  EXPECT_EQ(same.one + same.other, "");
}

// Sums of every line and subtotal are held against a full join that the test writes itself.
TEST(Comparisons, AgreeWithAFullJoin) {
  const auto one = test::accountWithResult(), other = test::accountWithResult();
  constexpr int rows = 400;
  for (const int side : {0, 1}) {
    tsql::Connection& account = side == 0 ? *one : *other;
    test::addClasses(account);
    for (int i = 0; i < rows; ++i) {
      // Some warehouses and inventories are of one side alone.
      const int warehouse = (i * 7 + side) % 11, inventory = (i * 13 + 5 * side) % 29 + 10,
                cents = i * (31 + side) - 4000;
      const std::string amount = std::to_string(cents) + " / 100.0000";
      std::string insert =
          "Insert Into Result (autoid, cWhCode, cWhName, cInvCode, cInvName, iState, iQuantity, iMoney, "
          "iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney, iQcQuantity, iQcMoney) Values (";
      insert.append(std::to_string(i)).append(", N'").append(std::to_string(warehouse)).append("', N'W', N'");
      insert.append(std::to_string(inventory)).append("', N'I', 2, 1, ").append(amount).append(", 1, ").append(amount);
      account.execute(insert.append(", 0, 0, 0, 0, 0, 0)"));
    }
  }
  one->execute("Delete From Result Where cWhCode = N'3'");
  other->execute("Delete From Result Where cWhCode = N'5' Or cInvCode = N'12'");
  const auto sums = [](tsql::Connection& account) {
    std::map<std::string, tsql::Exact> found;
    const auto add = [&found, &account](const std::string& keys) {
      const auto cursor = account.query("Select " + keys + ", Sum(iInMoney) From Result" +
                                        (keys == "''" ? std::string() : " Group By " + keys));
      while (cursor->next()) {
        std::string path;
        std::size_t column = 0;
        for (; column < static_cast<std::size_t>(1 + std::ranges::count(keys, ',')); ++column)
          path += "|" + plainText(cursor->value(column), "");
        found[path] = std::get<tsql::Exact>(cursor->value(column));
      }
    };
    for (const std::string keys : {"''", "cWhCode", "cWhCode, cInvCode"})
      add(keys);
    return found;
  };
  const auto ones = sums(*one), others = sums(*other);
  const auto made = [](tsql::Connection& account) {
    const ResultTable table(account, "Result");
    return Pivot({.report = reportNamed("sfc-item"), .table = table, .mode = "1", .language = Language::english},
                 parsePivot("Warehouse,Inventory//Receipt amount"), {.form = PivotForm::apart});
  };
  const View view = Comparison(made(*one), made(*other), years(), {}, Language::english, PivotForm::apart).view();
  std::size_t seen = 0, alone = 0;
  const auto check = [&](const ViewRow& row) {
    std::string path;
    if (row.kind == RowKind::total) {
      path = "|";
    } else {
      path = "|" + plainText(row.cells[0], "");
      if (row.kind == RowKind::line) path += "|" + plainText(row.cells[2], "");
    }
    const auto mine = ones.find(path), theirs = others.find(path);
    ASSERT_TRUE(mine != ones.end() || theirs != others.end()) << path;
    const tsql::Exact none{.units = 0, .scale = 4};
    const tsql::Exact a = mine == ones.end() ? none : mine->second, b = theirs == others.end() ? none : theirs->second;
    EXPECT_EQ(tsql::isNull(row.cells[4]), mine == ones.end()) << path;
    EXPECT_EQ(tsql::isNull(row.cells[5]), theirs == others.end()) << path;
    EXPECT_EQ(tsql::compare(std::get<tsql::Exact>(row.cells[6]), {.units = a.units - b.units, .scale = 4}), 0) << path;
    ++seen;
    alone += mine == ones.end() || theirs == others.end() ? 1U : 0U;
  };
  for (const auto cursor = view.rows(); cursor->next();)
    check(cursor->row());
  check(view.totals.at(0));
  std::map<std::string, int> all;
  for (const auto* each : {&ones, &others}) {
    for (const auto& [path, sum] : *each)
      all[path] = 1;
  }
  EXPECT_EQ(seen, all.size());
  EXPECT_GT(alone, 20U);
}

}  // namespace
}  // namespace quillon::workbench
