#include "workbench/presentation/exact_sum.h"

#include <algorithm>
#include <stdexcept>

#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {

namespace {

tsql::Type exactType(int scale) {
  return {.kind = tsql::Kind::decimal, .precision = tsql::maxPrecision, .scale = scale};
}

tsql::Exact summable(const tsql::Value& value) {
  if (const auto* exact = std::get_if<tsql::Exact>(&value)) return *exact;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return {.units = *integer, .scale = 0};
  throw std::invalid_argument("only exact numbers are summed");
}

}  // namespace

void ExactSum::put(const tsql::Value& value, bool negative) {
  if (tsql::isNull(value)) return;
  const tsql::Exact number = summable(value);
  const tsql::Type type = exactType(std::max(sum_.scale, number.scale));
  sum_ = negative ? tsql::subtract(sum_, number, type) : tsql::add(sum_, number, type);
}

tsql::Value quotientOf(const ExactSum& dividend, const ExactSum& divisor, int decimals) {
  if (divisor.isZero()) return {};
  // One decimal more than is kept: a quotient is cut, and what is cut off behind that digit cannot turn the rounding.
  const tsql::Exact quotient = tsql::divide(dividend.exact(), divisor.exact(), exactType(decimals + 1));
  const auto units = tsql::rescale(quotient.units, decimals + 1, decimals, tsql::Rounding::halfAway);
  return tsql::Exact{.units = units.value(), .scale = decimals};
}

tsql::Value unitCostOf(const ExactSum& amount, const ExactSum& quantity, int decimals) {
  return quotientOf(amount, quantity, decimals);
}

}  // namespace quillon::workbench
