#include "workbench/tsql/values/exact.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

constexpr auto powersOfTen = [] {
  std::array<Int128, maxPrecision + 1> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i)
    powers[i] = powers[i - 1] * Int128(10);
  return powers;
}();

// An unsigned number for intermediate results, with room for 38 digits scaled up by another 76.
class Wide {
 public:
  explicit Wide(Int128 magnitude) {
    const auto high = static_cast<std::uint64_t>(magnitude.high());
    limbs_[0] = static_cast<std::uint32_t>(magnitude.low());
    limbs_[1] = static_cast<std::uint32_t>(magnitude.low() >> 32);
    limbs_[2] = static_cast<std::uint32_t>(high);
    limbs_[3] = static_cast<std::uint32_t>(high >> 32);
  }

  // Both factors have at most 128 bits.
  static Wide product(Int128 a, Int128 b) {
    const Wide left(a);
    const Wide right(b);
    Wide result{Int128()};
    for (std::size_t i = 0; i < 4; ++i) {
      std::uint64_t carry = 0;
      for (std::size_t j = 0; j < 4; ++j) {
        carry += std::uint64_t{left.limbs_[i]} * right.limbs_[j] + result.limbs_[i + j];
        result.limbs_[i + j] = static_cast<std::uint32_t>(carry);
        carry >>= 32;
      }
      result.limbs_[i + 4] = static_cast<std::uint32_t>(carry);
    }
    return result;
  }

  void multiplyByPowerOfTen(int exponent) {
    for (; exponent >= 9; exponent -= 9)
      multiplySmall(1'000'000'000U);
    for (; exponent > 0; --exponent)
      multiplySmall(10);
  }

  void divideByPowerOfTen(int exponent, Rounding rounding) {
    if (exponent == 0) return;
    for (--exponent; exponent >= 9; exponent -= 9)
      divideSmall(1'000'000'000U);
    for (; exponent > 0; --exponent)
      divideSmall(10);
    // The first digit that is cut decides alone: 5 and above rounds away from zero.
    if (divideSmall(10) >= 5 && rounding == Rounding::halfAway) addOne();
  }

  // Cuts the fraction. The divisor is positive and below 2^127.
  void divide(Int128 divisor) {
    Int128 rest;
    for (std::size_t i = limbs_.size(); i-- > 0;) {
      std::uint32_t quotient = 0;
      for (unsigned bit = 32; bit-- > 0;) {
        // rest * 2 could overflow; comparing rest with divisor - rest cannot.
        const Int128 next = (limbs_[i] >> bit) & 1U;
        const Int128 excess = rest - (divisor - rest) + next;
        quotient <<= 1;
        if (excess.negative()) {
          rest = rest + rest + next;
        } else {
          rest = excess;
          quotient |= 1U;
        }
      }
      limbs_[i] = quotient;
    }
  }

  std::optional<Int128> toInt128() const {
    if (std::any_of(limbs_.begin() + 4, limbs_.end(), [](std::uint32_t limb) { return limb != 0; })) return {};
    const Int128 result = Int128::fromHalves(static_cast<std::int64_t>((std::uint64_t{limbs_[3]} << 32) | limbs_[2]),
                                             (std::uint64_t{limbs_[1]} << 32) | limbs_[0]);
    if (result.negative()) return {};
    return result;
  }

 private:
  void multiplySmall(std::uint32_t factor) {
    std::uint64_t carry = 0;
    for (std::uint32_t& limb : limbs_) {
      carry += std::uint64_t{limb} * factor;
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  std::uint32_t divideSmall(std::uint32_t divisor) {
    std::uint64_t rest = 0;
    for (std::size_t i = limbs_.size(); i-- > 0;) {
      rest = (rest << 32) | limbs_[i];
      limbs_[i] = static_cast<std::uint32_t>(rest / divisor);
      rest %= divisor;
    }
    return static_cast<std::uint32_t>(rest);
  }
  void addOne() {
    for (std::uint32_t& limb : limbs_) {
      if (++limb != 0) return;
    }
  }

  std::array<std::uint32_t, 12> limbs_{};  // least significant first
};

Int128 magnitudeOf(Int128 value) {
  return value.negative() ? -value : value;
}

[[noreturn]] void throwOverflow(const Type& type) {
  throw errors::overflow("expression", errors::systemName(type));
}

Exact checked(std::optional<Int128> units, const Type& type) {
  if (!units || !fits(*units, type)) throwOverflow(type);
  return {*units, scaleOf(type)};
}

std::optional<Int128> scaleUp(Int128 units, int exponent) {
  if (exponent > maxPrecision) return units == Int128() ? std::optional<Int128>(units) : std::nullopt;
  if (units.fitsInt64() && exponent <= 18) return units * powersOfTen[static_cast<std::size_t>(exponent)];
  Wide wide = Wide::product(magnitudeOf(units), powerOfTen(exponent));
  std::optional<Int128> result = wide.toInt128();
  if (result && units.negative()) *result = -*result;
  return result;
}

// Both operands in the larger of their scales; the operation there is exact.
struct Aligned {
  Int128 a, b;
  int scale;
};

std::optional<Aligned> align(const Exact& a, const Exact& b) {
  const int scale = std::max(a.scale, b.scale);
  const auto left = scaleUp(a.units, scale - a.scale);
  const auto right = scaleUp(b.units, scale - b.scale);
  if (!left || !right) return {};
  return Aligned{*left, *right, scale};
}

}  // namespace

Int128 powerOfTen(int exponent) {
  return powersOfTen[static_cast<std::size_t>(exponent)];
}

int scaleOf(const Type& type) {
  switch (type.kind) {
    case Kind::money:
      return 4;
    case Kind::decimal:
      return type.scale;
    default:
      return 0;
  }
}

bool fits(Int128 units, const Type& type) {
  switch (type.kind) {
    case Kind::integer:
      return units >= Int128(std::numeric_limits<std::int32_t>::min()) &&
             units <= Int128(std::numeric_limits<std::int32_t>::max());
    case Kind::bit:
      return units == Int128(0) || units == Int128(1);
    case Kind::bigInt:
    case Kind::money:
      return units.fitsInt64();
    default: {
      const Int128 limit = powerOfTen(type.precision);
      return units < limit && units > -limit;
    }
  }
}

namespace {

template <typename Number>
Number divided(Number units, Number by, Rounding rounding) {
  Number quotient = units / by;
  if (rounding == Rounding::halfAway) {
    const Number rest = units % by;
    const Number size = rest < Number() ? -rest : rest;
    if (size >= by - size) quotient += Number(units < Number() ? -1 : 1);
  }
  return quotient;
}

}  // namespace

std::optional<Int128> rescale(Int128 units, int fromScale, int toScale, Rounding rounding) {
  if (toScale >= fromScale) return scaleUp(units, toScale - fromScale);
  const int cut = fromScale - toScale;
  if (cut > maxPrecision) return Int128();
  const Int128 power = powerOfTen(cut);
  // 64 bits divide several times as fast.
  if (units.fitsInt64() && power.fitsInt64()) return divided(units.toInt64(), power.toInt64(), rounding);
  return divided(units, power, rounding);
}

Exact add(const Exact& a, const Exact& b, const Type& result) {
  if (const auto aligned = align(a, b); aligned && !addOverflows(aligned->a, aligned->b)) {
    return checked(rescale(aligned->a + aligned->b, aligned->scale, scaleOf(result), Rounding::halfAway), result);
  }
  // The larger scale needs more than 128 bits: each operand is first rounded to the scale of the result.
  const auto left = rescale(a.units, a.scale, scaleOf(result), Rounding::halfAway);
  const auto right = rescale(b.units, b.scale, scaleOf(result), Rounding::halfAway);
  if (!left || !right || addOverflows(*left, *right)) throwOverflow(result);
  return checked(*left + *right, result);
}

Exact subtract(const Exact& a, const Exact& b, const Type& result) {
  return add(a, {-b.units, b.scale}, result);
}

Exact multiply(const Exact& a, const Exact& b, const Type& result) {
  const int scale = a.scale + b.scale;
  if (a.units.fitsInt64() && b.units.fitsInt64()) {
    return checked(rescale(a.units * b.units, scale, scaleOf(result), Rounding::halfAway), result);
  }
  Wide product = Wide::product(magnitudeOf(a.units), magnitudeOf(b.units));
  const int change = scaleOf(result) - scale;
  if (change >= 0) {
    product.multiplyByPowerOfTen(change);
  } else {
    product.divideByPowerOfTen(-change, Rounding::halfAway);
  }
  std::optional<Int128> units = product.toInt128();
  if (units && a.units.negative() != b.units.negative()) *units = -*units;
  return checked(units, result);
}

Exact divide(const Exact& a, const Exact& b, const Type& result) {
  if (b.units == Int128()) throw errors::divideByZero();
  const int exponent = scaleOf(result) + b.scale - a.scale;
  if (exponent >= 0 && exponent <= 18 && a.units.fitsInt64()) {
    return checked(a.units * powerOfTen(exponent) / b.units, result);
  }
  Wide dividend(magnitudeOf(a.units));
  Int128 divisor = magnitudeOf(b.units);
  if (exponent >= 0) {
    dividend.multiplyByPowerOfTen(exponent);
    dividend.divide(divisor);
  } else {
    // Cutting twice gives the same as cutting once: floor(floor(x / m) / n) is floor(x / (m n)).
    dividend.divide(divisor);
    dividend.divideByPowerOfTen(-exponent, Rounding::cut);
  }
  std::optional<Int128> units = dividend.toInt128();
  if (units && a.units.negative() != b.units.negative()) *units = -*units;
  return checked(units, result);
}

Exact remainder(const Exact& a, const Exact& b, const Type& result) {
  if (b.units == Int128()) throw errors::divideByZero();
  const auto aligned = align(a, b);
  if (!aligned) throwOverflow(result);
  return checked(rescale(aligned->a % aligned->b, aligned->scale, scaleOf(result), Rounding::halfAway), result);
}

Exact negate(const Exact& a, const Type& result) {
  return checked(-a.units, result);
}

int compare(const Exact& a, const Exact& b) {
  if (const auto aligned = align(a, b)) {
    return aligned->a < aligned->b ? -1 : aligned->a > aligned->b ? 1 : 0;
  }
  // The number that does not fit 128 bits when scaled up is the larger in magnitude.
  const bool aIsLarger = a.scale < b.scale;
  const Int128 larger = aIsLarger ? a.units : b.units;
  return larger.negative() == aIsLarger ? -1 : 1;
}

Exact round(const Exact& a, std::int64_t digits, Rounding rounding, const Type& result) {
  if (digits >= a.scale) return checked(a.units, result);
  if (digits <= a.scale - maxPrecision) return {Int128(), a.scale};
  const int kept = static_cast<int>(digits);
  const std::optional<Int128> rounded = rescale(a.units, a.scale - kept, 0, rounding);
  return checked(rounded ? scaleUp(*rounded, a.scale - kept) : std::nullopt, result);
}

Exact floor(const Exact& a, const Type& result) {
  const Int128 power = powerOfTen(a.scale);
  Int128 whole = a.units / power;
  if (a.units.negative() && whole * power != a.units) whole += Int128(-1);
  return checked(scaleUp(whole, scaleOf(result)), result);
}

Exact ceiling(const Exact& a, const Type& result) {
  const Int128 power = powerOfTen(a.scale);
  Int128 whole = a.units / power;
  if (!a.units.negative() && whole * power != a.units) whole += Int128(1);
  return checked(scaleUp(whole, scaleOf(result)), result);
}

namespace {

// The digits of a number beyond 64 bits.
std::string manyDigits(Int128 magnitude) {
  std::string digits;
  while (!magnitude.fitsInt64()) {
    const Int128 power = powerOfTen(18);
    std::int64_t low = (magnitude % power).toInt64();
    magnitude = magnitude / power;
    for (int i = 0; i < 18; ++i, low /= 10)
      digits += static_cast<char>('0' + low % 10);
  }
  for (std::int64_t low = magnitude.toInt64(); low != 0; low /= 10)
    digits += static_cast<char>('0' + low % 10);
  std::reverse(digits.begin(), digits.end());
  return digits;
}

void appendDecimal(std::string& text, std::string_view digits, std::size_t scale) {
  if (digits.size() > scale) {
    text += digits.substr(0, digits.size() - scale);
    if (scale > 0) text.append(1, '.').append(digits.substr(digits.size() - scale));
  } else {
    text.append("0.").append(scale - digits.size(), '0').append(digits);
  }
}

}  // namespace

void appendText(std::string& text, const Exact& value) {
  const auto scale = static_cast<std::size_t>(value.scale);
  if (value.units.negative()) text += '-';
  const Int128 magnitude = magnitudeOf(value.units);
  if (!magnitude.fitsInt64()) {
    appendDecimal(text, manyDigits(magnitude), scale);
    return;
  }
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), magnitude.toInt64()).ptr;
  appendDecimal(text, {digits.data(), static_cast<std::size_t>(end - digits.data())}, scale);
}

std::string toText(const Exact& value) {
  std::string text;
  appendText(text, value);
  return text;
}

double toDouble(const Exact& value) {
  constexpr std::int64_t exactDoubles = std::int64_t{1} << 53;
  if (value.units.fitsInt64() && value.scale <= 22) {
    const std::int64_t units = value.units.toInt64();
    // Both numbers are exact doubles, so the quotient is rounded once.
    if (units <= exactDoubles && units >= -exactDoubles) {
      double power = 1;
      for (int i = 0; i < value.scale; ++i)
        power *= 10;
      return static_cast<double>(units) / power;
    }
  }
  const std::string text = toText(value);
  double result = 0;
  std::from_chars(text.data(), text.data() + text.size(), result);
  return result;
}

std::optional<Exact> parseExact(std::string_view text, bool* tooLarge) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  Exact result;
  bool anyDigit = false;
  bool afterPoint = false;
  bool overflow = false;
  int digits = 0;  // significant ones
  for (const char c : text) {
    if (c == '.' && !afterPoint) {
      afterPoint = true;
      continue;
    }
    if (c < '0' || c > '9') return {};
    anyDigit = true;
    if (digits == maxPrecision || result.scale == maxPrecision) {
      // Decimals beyond the 38th digit are lost; digits before the point must not be.
      if (!afterPoint) overflow = true;
      continue;
    }
    result.units = result.units * Int128(10) + Int128(c - '0');
    if (digits > 0 || c != '0') ++digits;
    if (afterPoint) ++result.scale;
  }
  if (!anyDigit) return {};
  if (overflow) {
    if (tooLarge != nullptr) *tooLarge = true;
    return {};
  }
  if (negative) result.units = -result.units;
  return result;
}

}  // namespace quillon::tsql
