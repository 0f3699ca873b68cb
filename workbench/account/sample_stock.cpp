#include "workbench/account/sample_stock.h"

#include <stdexcept>

namespace quillon::account {
namespace {

// Splits `total` in proportion to the parts' weights. The cumulative sums are rounded
// and not the parts, so that the parts sum to the total and none is negative.
template <typename Weight>
void split(std::int64_t total, const std::vector<CostPart>& parts, Weight weight, std::int64_t PartFigures::*figure,
           std::vector<PartFigures>& out) {
  std::vector<std::int64_t> cumulative;
  cumulative.reserve(parts.size());
  std::int64_t sum = 0;
  for (const CostPart& part : parts)
    cumulative.push_back(sum += weight(part));
  if (sum == 0) throw std::logic_error("the weights of the parts add up to nothing");
  std::int64_t given = 0;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::int64_t upToHere = share(total, cumulative[i], sum);
    out[i].*figure = upToHere - given;
    given = upToHere;
  }
}

// The share numerator / denominator of every part, rounded cumulatively for the same reason.
std::int64_t takeShare(const std::vector<PartFigures>& parts, std::int64_t PartFigures::*figure, std::int64_t numerator,
                       std::int64_t denominator, std::vector<PartFigures>& out) {
  std::int64_t sum = 0;
  std::int64_t given = 0;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    sum += parts[i].*figure;
    const std::int64_t upToHere = share(sum, numerator, denominator);
    out[i].*figure = upToHere - given;
    given = upToHere;
  }
  return given;
}

}  // namespace

std::int64_t share(std::int64_t value, std::int64_t numerator, std::int64_t denominator) {
  return (value * numerator + denominator / 2) / denominator;
}

void StockBalance::breakDown(const std::vector<CostPart>& parts) {
  brokenDown_ = !parts.empty();
  parts_.assign(parts.size(), {});
  if (!brokenDown_) return;
  split(
      quantity_, parts, [](const CostPart& part) { return part.quantityWeight; }, &PartFigures::quantity, parts_);
  split(
      amount_, parts, [](const CostPart& part) { return part.amountWeight; }, &PartFigures::amount, parts_);
}

Movement StockBalance::all() const {
  return {quantity_, amount_, parts_};
}

Movement StockBalance::plannedReceipt(std::int64_t quantity, std::int64_t amount, const std::vector<CostPart>& parts,
                                      Random& random) const {
  Movement movement{quantity, amount, {}};
  if (!brokenDown_) return movement;
  movement.parts.resize(parts.size());
  split(
      quantity, parts, [](const CostPart& part) { return part.quantityWeight; }, &PartFigures::quantity,
      movement.parts);
  constexpr int percent = 100;
  constexpr int swing = 5;
  split(
      amount, parts,
      [&](const CostPart& part) { return part.amountWeight * random.between(percent - swing, percent + swing); },
      &PartFigures::amount, movement.parts);
  return movement;
}

Movement StockBalance::plannedIssue(std::int64_t quantity) const {
  Movement movement{quantity, 0, {}};
  if (!brokenDown_) {
    movement.amount = share(amount_, quantity, quantity_);
    return movement;
  }
  movement.parts.resize(parts_.size());
  takeShare(parts_, &PartFigures::quantity, quantity, quantity_, movement.parts);
  movement.amount = takeShare(parts_, &PartFigures::amount, quantity, quantity_, movement.parts);
  return movement;
}

Movement StockBalance::plannedRevaluation(std::int64_t amount) const {
  Movement movement{0, amount, {}};
  if (!brokenDown_) return movement;
  movement.parts.resize(parts_.size());
  takeShare(parts_, &PartFigures::amount, amount, amount_, movement.parts);
  return movement;
}

void StockBalance::add(const Movement& movement) {
  quantity_ += movement.quantity;
  amount_ += movement.amount;
  for (std::size_t i = 0; i < movement.parts.size(); ++i) {
    parts_[i].quantity += movement.parts[i].quantity;
    parts_[i].amount += movement.parts[i].amount;
  }
}

void StockBalance::take(const Movement& movement) {
  quantity_ -= movement.quantity;
  amount_ -= movement.amount;
  for (std::size_t i = 0; i < movement.parts.size(); ++i) {
    parts_[i].quantity -= movement.parts[i].quantity;
    parts_[i].amount -= movement.parts[i].amount;
  }
}

}  // namespace quillon::account
