#include "workbench/tsql/values/agreement.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "workbench/tsql/values/exact.h"

namespace quillon::tsql {

namespace {

std::optional<Exact> asExact(const Value& value) {
  if (const auto* const whole = std::get_if<std::int64_t>(&value)) return Exact{.units = *whole, .scale = 0};
  if (const auto* const exact = std::get_if<Exact>(&value)) return *exact;
  return std::nullopt;
}

std::optional<double> asReal(const Value& value) {
  if (const auto* const real = std::get_if<double>(&value)) return *real;
  const std::optional<Exact> exact = asExact(value);
  return exact ? std::optional(toDouble(*exact)) : std::nullopt;
}

// Numbers that differ: by one unit of the decimals that both have, or by less?
bool areNeighbours(Exact one, Exact other) {
  if (one.scale > other.scale) std::swap(one, other);
  const auto units = rescale(one.units, one.scale, other.scale, Rounding::cut);
  if (!units) return false;
  const Int128 unit = powerOfTen(other.scale - one.scale);
  return *units - other.units <= unit && other.units - *units <= unit;
}

Agreement agreementOfReals(double one, double other) {
  if (one == other) return Agreement::same;
  const double larger = std::max(std::abs(one), std::abs(other));
  const double unit = std::pow(10.0, std::floor(std::log10(larger)) - (DBL_DIG - 1));
  // The unit itself is rounded, and so is the difference.
  return std::abs(one - other) <= unit * 1.5 ? Agreement::lastDigit : Agreement::different;
}

}  // namespace

Agreement agreementOf(const Value& one, const Value& other, bool quotient) {
  if (const auto first = asExact(one), second = asExact(other); first && second) {
    if (compare(*first, *second) == 0) return Agreement::same;
    return quotient && areNeighbours(*first, *second) ? Agreement::lastDigit : Agreement::different;
  }
  if (const auto first = asReal(one), second = asReal(other); first && second) return agreementOfReals(*first, *second);
  return one == other ? Agreement::same : Agreement::different;
}

std::optional<std::string> plainText(const Value& value) {
  std::optional<std::string> text = toText(value);
  if (const auto* const exact = std::get_if<Exact>(&value); exact != nullptr && exact->scale > 0) {
    text->erase(text->find_last_not_of('0') + 1);
    if (text->ends_with('.')) text->pop_back();
  }
  return text;
}

}  // namespace quillon::tsql
