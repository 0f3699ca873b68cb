#include "workbench/account/sample_stock.h"

#include <gtest/gtest.h>

namespace quillon::account {
namespace {

const std::vector<CostPart> threeParts = {{1, 1, 1, 50}, {2, 2, 1, 30}, {3, 3, 1, 20}};

PartFigures sum(const Movement& movement) {
  PartFigures total;
  for (const PartFigures& part : movement.parts) {
    total.quantity += part.quantity;
    total.amount += part.amount;
  }
  return total;
}

TEST(Stock, SharesAreRoundedHalfUp) {
  EXPECT_EQ(share(10, 1, 4), 3);
  EXPECT_EQ(share(9, 1, 4), 2);
  EXPECT_EQ(share(100, 0, 7), 0);
  EXPECT_EQ(share(100, 7, 7), 100);
}

TEST(Stock, BreakingDownSplitsWhatIsThereByTheWeights) {
  StockBalance balance;
  balance.add({100, 1000, {}});
  balance.breakDown(threeParts);
  const Movement all = balance.all();
  ASSERT_EQ(all.parts.size(), 3U);
  EXPECT_EQ(all.parts[0].amount, 500);
  EXPECT_EQ(all.parts[1].amount, 300);
  EXPECT_EQ(all.parts[2].amount, 200);
  // A hundred by three: the rounding is spread, nothing is lost.
  EXPECT_EQ(all.parts[0].quantity, 33);
  EXPECT_EQ(all.parts[1].quantity, 34);
  EXPECT_EQ(all.parts[2].quantity, 33);
}

TEST(Stock, AnIssueTakesItsShareOfEveryPart) {
  StockBalance balance;
  balance.add({100, 1000, {}});
  balance.breakDown(threeParts);
  const Movement issue = balance.plannedIssue(50);
  EXPECT_EQ(issue.amount, 500);
  EXPECT_EQ(sum(issue).quantity, 50);
  EXPECT_EQ(sum(issue).amount, 500);
  EXPECT_EQ(issue.parts[0].amount, 250);
  balance.take(issue);
  EXPECT_EQ(balance.quantity(), 50);
  EXPECT_EQ(balance.amount(), 500);
}

TEST(Stock, TheLastIssueLeavesNothing) {
  StockBalance balance;
  balance.breakDown(threeParts);
  Random random(1);
  for (const std::int64_t quantity : {7, 11, 13}) {
    balance.add(balance.plannedReceipt(quantity, quantity * 17 + 1, threeParts, random));
  }
  while (balance.quantity() > 0) {
    const Movement issue = balance.plannedIssue(std::min<std::int64_t>(3, balance.quantity()));
    EXPECT_EQ(sum(issue).quantity, issue.quantity);
    EXPECT_EQ(sum(issue).amount, issue.amount);
    balance.take(issue);
    for (const PartFigures& part : balance.all().parts) {
      EXPECT_GE(part.quantity, 0);
      EXPECT_GE(part.amount, 0);
    }
  }
  EXPECT_TRUE(balance.empty());
  for (const PartFigures& part : balance.all().parts) {
    EXPECT_EQ(part.quantity, 0);
    EXPECT_EQ(part.amount, 0);
  }
}

TEST(Stock, ARevaluationMovesAmountsAlone) {
  StockBalance balance;
  balance.add({100, 1000, {}});
  balance.breakDown(threeParts);
  const Movement change = balance.plannedRevaluation(100);
  EXPECT_EQ(change.quantity, 0);
  EXPECT_EQ(change.amount, 100);
  EXPECT_EQ(change.parts[0].amount, 50);
  EXPECT_EQ(change.parts[1].amount, 30);
  EXPECT_EQ(change.parts[2].amount, 20);
  EXPECT_EQ(sum(change).quantity, 0);
}

TEST(Stock, WithoutCostItemsThereAreNoParts) {
  StockBalance balance;
  balance.add({100, 1000, {}});
  Random random(1);
  EXPECT_TRUE(balance.plannedReceipt(10, 100, threeParts, random).parts.empty());
  EXPECT_TRUE(balance.plannedIssue(10).parts.empty());
  EXPECT_EQ(balance.plannedIssue(10).amount, 100);
  balance.breakDown({});
  EXPECT_TRUE(balance.all().parts.empty());
}

}  // namespace
}  // namespace quillon::account
