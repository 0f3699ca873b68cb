// The running balance of a ledger: exact, by group and cost item, and compared with the balances that the table has.
#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

#include "workbench/presentation/ledger_book.h"

namespace quillon::workbench {

// By how much a balance of the table is more than the one that runs from the opening.
struct BalanceDifference {
  std::size_t group = 0;
  Figures figures;                            // of the group as a whole
  std::map<std::size_t, Figures> byCostItem;  // those that differ
  ExactSum withoutCostItem;                   // the amount; zero where the table lacks a cost item of the group

  bool isZero() const { return figures.isZero() && byCostItem.empty(); }
};

class LedgerBalance {
 public:
  explicit LedgerBalance(const BalancesByGroup& opening);

  void add(const LedgerLine& line);

  const Figures& total() const { return total_; }
  // Of all groups; cost items that had nothing at any time are left out.
  const std::map<std::size_t, ExactSum>& amountsByCostItem() const { return amounts_; }
  // What of the total falls to no cost item.
  ExactSum amountWithoutCostItem() const;

  // Of the groups and cost items that `balances` has figures for: where these are not the running ones.
  std::vector<BalanceDifference> differences(const BalancesByGroup& balances) const;

 private:
  bool hasAllCostItems(std::size_t group, const GroupBalance& balance) const;

  Figures total_;
  std::map<std::size_t, ExactSum> amounts_;
  std::map<std::size_t, Figures> byGroup_;
  std::map<std::pair<std::size_t, std::size_t>, Figures> byGroupAndCostItem_;
};

}  // namespace quillon::workbench
