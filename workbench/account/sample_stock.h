// The stock that the sample generator keeps: one balance for each inventory, warehouse, batch and free items, broken
// down by cost item. Balances are valued by moving average, so that what leaves takes its share of every part along,
// nothing falls below zero, and an empty balance is worth nothing.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "workbench/account/sample_company.h"
#include "workbench/account/sample_random.h"

namespace quillon::account {

// value * numerator / denominator, rounded half up; 0 <= numerator <= denominator, denominator > 0. The sample's
// balances stay below 10^9 hundredths or cents times 10^9, within 64 bits.
std::int64_t share(std::int64_t value, std::int64_t numerator, std::int64_t denominator);

struct PartFigures {
  std::int64_t quantity = 0;  // hundredths of a unit
  std::int64_t amount = 0;    // cents
};

// What a ledger line moves. `parts` holds one entry for each part of the inventory, or none at all; they sum to the
// line's own figures.
struct Movement {
  std::int64_t quantity = 0;
  std::int64_t amount = 0;
  std::vector<PartFigures> parts;
};

class StockBalance {
 public:
  // Which inventory, where, which free items; `slot` tells the batches of one place apart.
  int item = 0;
  int warehouse = 0;
  int slot = 0;
  std::array<std::int8_t, freeItemCount> free{};  // 1 + the index of each free item's value; 0: not kept by it
  std::string batch;                              // empty: not kept by batch, or nothing there yet

  std::int64_t quantity() const { return quantity_; }
  std::int64_t amount() const { return amount_; }
  bool empty() const { return quantity_ == 0 && amount_ == 0; }

  // The cost items start: what is there is broken down by `parts`.
  void breakDown(const std::vector<CostPart>& parts);

  // Everything that is there, parts included.
  Movement all() const;
  // A receipt of `quantity` for `amount`, both not negative, as it would be broken down now: the amount by the parts'
  // weights, give or take a little, the quantity by theirs. Nothing is broken down before the cost items start.
  Movement plannedReceipt(std::int64_t quantity, std::int64_t amount, const std::vector<CostPart>& parts,
                          Random& random) const;
  // An issue of `quantity`, at most what is there, at the average cost.
  Movement plannedIssue(std::int64_t quantity) const;
  // A change of value without quantity, at most what the balance is worth, by the parts' own values.
  Movement plannedRevaluation(std::int64_t amount) const;

  void add(const Movement& movement);
  void take(const Movement& movement);

 private:
  std::int64_t quantity_ = 0;
  std::int64_t amount_ = 0;
  bool brokenDown_ = false;
  std::vector<PartFigures> parts_;
};

}  // namespace quillon::account
