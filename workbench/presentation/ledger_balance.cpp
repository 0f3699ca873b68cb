#include "workbench/presentation/ledger_balance.h"

namespace quillon::workbench {

namespace {

template <typename Key>
Figures difference(const Figures& ofTable, const std::map<Key, Figures>& running, const Key& key) {
  Figures figures = ofTable;
  if (const auto found = running.find(key); found != running.end()) figures.subtract(found->second);
  return figures;
}

Figures figuresOf(const LedgerPart& part) {
  Figures figures;
  figures.quantity.add(part.quantity);
  figures.amount.add(part.amount);
  return figures;
}

}  // namespace

LedgerBalance::LedgerBalance(const BalancesByGroup& opening) {
  for (const auto& [group, balance] : opening) {
    total_.add(balance.figures);
    byGroup_[group].add(balance.figures);
    for (const auto& [item, figures] : balance.byCostItem) {
      amounts_[item].add(figures.amount);
      byGroupAndCostItem_[{group, item}].add(figures);
    }
  }
}

void LedgerBalance::add(const LedgerLine& line) {
  const auto change = [&line](Figures& figures, const Figures& by) {
    if (line.receipt) {
      figures.add(by);
    } else {
      figures.subtract(by);
    }
  };
  change(total_, line.figures());
  change(byGroup_[line.group], line.figures());
  for (const LedgerPart& part : line.parts) {
    if (!part.costItem) continue;
    change(byGroupAndCostItem_[{line.group, *part.costItem}], figuresOf(part));
    ExactSum& amount = amounts_[*part.costItem];
    if (line.receipt) {
      amount.add(part.amount);
    } else {
      amount.subtract(part.amount);
    }
  }
}

ExactSum LedgerBalance::amountWithoutCostItem() const {
  ExactSum rest = total_.amount;
  for (const auto& [item, amount] : amounts_)
    rest.subtract(amount.value());
  return rest;
}

bool LedgerBalance::hasAllCostItems(std::size_t group, const GroupBalance& balance) const {
  for (auto of = byGroupAndCostItem_.lower_bound({group, 0});
       of != byGroupAndCostItem_.end() && of->first.first == group; ++of) {
    if (!of->second.amount.isZero() && !balance.byCostItem.contains(of->first.second)) return false;
  }
  return true;
}

std::vector<BalanceDifference> LedgerBalance::differences(const BalancesByGroup& balances) const {
  std::vector<BalanceDifference> found;
  for (const auto& [group, balance] : balances) {
    BalanceDifference differs{.group = group, .figures = {}, .byCostItem = {}, .withoutCostItem = {}};
    if (balance.known) differs.figures = difference(balance.figures, byGroup_, group);
    for (const auto& [item, figures] : balance.byCostItem) {
      const Figures of = difference(figures, byGroupAndCostItem_, {group, item});
      if (!of.isZero()) differs.byCostItem[item] = of;
    }
    if (balance.known && hasAllCostItems(group, balance)) {
      differs.withoutCostItem = differs.figures.amount;
      for (const auto& [item, figures] : differs.byCostItem)
        differs.withoutCostItem.subtract(figures.amount.value());
    }
    if (!differs.isZero()) found.push_back(std::move(differs));
  }
  return found;
}

}  // namespace quillon::workbench
