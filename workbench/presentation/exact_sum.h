// Sums of exact numbers as they come from a result table, without ever leaving exact numbers.
#pragma once

#include "workbench/tsql/values/value.h"

namespace quillon::workbench {

class ExactSum {
 public:
  // Null counts as nothing. Throws tsql::SqlError 8115 when the sum has more than 38 digits, std::invalid_argument for a
  // text, a date or a floating-point number, which have no exact sum.
  void add(const tsql::Value& value) { put(value, false); }
  void subtract(const tsql::Value& value) { put(value, true); }
  void add(const ExactSum& other) { add(other.value()); }

  bool isZero() const { return sum_.units == 0; }
  // With as many decimals as the number with the most had; 0 when nothing was added.
  tsql::Value value() const { return sum_; }
  const tsql::Exact& exact() const { return sum_; }

 private:
  void put(const tsql::Value& value, bool negative);

  tsql::Exact sum_{.units = 0, .scale = 0};
};

// `dividend` by `divisor` with `decimals` decimals, rounded half away from zero; null when the divisor is zero.
tsql::Value quotientOf(const ExactSum& dividend, const ExactSum& divisor, int decimals);
// `amount` by `quantity` with `decimals` decimals, rounded half away from zero; null when the quantity is zero.
tsql::Value unitCostOf(const ExactSum& amount, const ExactSum& quantity, int decimals);

}  // namespace quillon::workbench
