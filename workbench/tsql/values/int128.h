// A signed 128-bit integer for exact numerics: the compiler's own where it has one, two 64-bit halves elsewhere
// (32-bit Windows). Both classes have the same members; Int128 is the one in use. Arithmetic wraps around in
// two's complement; addOverflows and multiplyOverflows say beforehand whether it would.
#pragma once

#include <bit>
#include <compare>
#include <cstdint>

namespace quillon::tsql {

// Two's complement in two halves. Portable; the tests run it beside the native one.
class Int128Halves {
 public:
  constexpr Int128Halves() = default;
  constexpr Int128Halves(std::int64_t value)  // NOLINT(google-explicit-constructor): widening loses nothing
      : high_(value < 0 ? ~std::uint64_t{0} : 0), low_(static_cast<std::uint64_t>(value)) {}
  static constexpr Int128Halves fromHalves(std::int64_t high, std::uint64_t low) {
    Int128Halves result;
    result.high_ = static_cast<std::uint64_t>(high);
    result.low_ = low;
    return result;
  }

  constexpr std::int64_t high() const { return static_cast<std::int64_t>(high_); }
  constexpr std::uint64_t low() const { return low_; }
  constexpr bool negative() const { return high() < 0; }
  constexpr bool fitsInt64() const { return high_ == (static_cast<std::int64_t>(low_) < 0 ? ~std::uint64_t{0} : 0); }
  // Call it only when fitsInt64().
  constexpr std::int64_t toInt64() const { return static_cast<std::int64_t>(low_); }

  friend constexpr Int128Halves operator-(Int128Halves a) { return Int128Halves() - a; }
  friend constexpr Int128Halves operator+(Int128Halves a, Int128Halves b) {
    Int128Halves sum;
    sum.low_ = a.low_ + b.low_;
    sum.high_ = a.high_ + b.high_ + (sum.low_ < a.low_ ? 1 : 0);
    return sum;
  }
  friend constexpr Int128Halves operator-(Int128Halves a, Int128Halves b) {
    Int128Halves difference;
    difference.low_ = a.low_ - b.low_;
    difference.high_ = a.high_ - b.high_ - (a.low_ < b.low_ ? 1 : 0);
    return difference;
  }
  friend constexpr Int128Halves operator*(Int128Halves a, Int128Halves b) {
    Int128Halves product = multiplyUnsigned(a.low_, b.low_);
    product.high_ += a.high_ * b.low_ + a.low_ * b.high_;
    return product;
  }
  // Both cut toward zero, so the remainder has the dividend's sign. The divisor must not be zero.
  friend constexpr Int128Halves operator/(Int128Halves a, Int128Halves b);
  friend constexpr Int128Halves operator%(Int128Halves a, Int128Halves b);
  Int128Halves& operator+=(Int128Halves other) { return *this = *this + other; }

  friend constexpr bool operator==(Int128Halves a, Int128Halves b) = default;
  friend constexpr std::strong_ordering operator<=>(Int128Halves a, Int128Halves b) {
    if (a.high_ != b.high_) return a.high() <=> b.high();
    return a.low_ <=> b.low_;
  }

 private:
  struct Division;  // a quotient and a remainder

  static constexpr Int128Halves multiplyUnsigned(std::uint64_t a, std::uint64_t b) {
    constexpr std::uint64_t mask = 0xffffffffU;
    const std::uint64_t lowLow = (a & mask) * (b & mask);
    const std::uint64_t lowHigh = (a & mask) * (b >> 32);
    const std::uint64_t highLow = (a >> 32) * (b & mask);
    const std::uint64_t middle = (lowLow >> 32) + (lowHigh & mask) + (highLow & mask);
    Int128Halves product;
    product.low_ = (middle << 32) | (lowLow & mask);
    product.high_ = (a >> 32) * (b >> 32) + (lowHigh >> 32) + (highLow >> 32) + (middle >> 32);
    return product;
  }

  static constexpr Int128Halves shiftLeft(Int128Halves a, unsigned bits) {  // 0 < bits < 64
    a.high_ = (a.high_ << bits) | (a.low_ >> (64 - bits));
    a.low_ <<= bits;
    return a;
  }

  static constexpr bool lessUnsigned(Int128Halves a, Int128Halves b) {
    return a.high_ != b.high_ ? a.high_ < b.high_ : a.low_ < b.low_;
  }

  static constexpr Division divide(Int128Halves a, Int128Halves b);
  static constexpr Division divideUnsigned(Int128Halves a, Int128Halves b);

  std::uint64_t high_ = 0;
  std::uint64_t low_ = 0;
};

struct Int128Halves::Division {
  Int128Halves quotient;
  Int128Halves remainder;
};

constexpr Int128Halves::Division Int128Halves::divideUnsigned(Int128Halves a, Int128Halves b) {
  Division result;
  if (a.high_ == 0 && b.high_ == 0) {
    result.quotient.low_ = a.low_ / b.low_;
    result.remainder.low_ = a.low_ % b.low_;
    return result;
  }
  // Bit by bit: wide divisions are rare, and only 32-bit builds come here.
  for (int bit = 127; bit >= 0; --bit) {
    const std::uint64_t half = bit >= 64 ? a.high_ : a.low_;
    result.quotient = shiftLeft(result.quotient, 1);
    // The remainder stays below the divisor, which is at most 2^127: its top bit is free for the shift.
    result.remainder = shiftLeft(result.remainder, 1);
    result.remainder.low_ |= (half >> (static_cast<unsigned>(bit) % 64)) & 1U;
    if (!lessUnsigned(result.remainder, b)) {
      result.remainder = result.remainder - b;
      result.quotient.low_ |= 1U;
    }
  }
  return result;
}

constexpr Int128Halves::Division Int128Halves::divide(Int128Halves a, Int128Halves b) {
  Division result = divideUnsigned(a.negative() ? -a : a, b.negative() ? -b : b);
  if (a.negative() != b.negative()) result.quotient = -result.quotient;
  if (a.negative()) result.remainder = -result.remainder;
  return result;
}

constexpr Int128Halves operator/(Int128Halves a, Int128Halves b) {
  return Int128Halves::divide(a, b).quotient;
}
constexpr Int128Halves operator%(Int128Halves a, Int128Halves b) {
  return Int128Halves::divide(a, b).remainder;
}

#ifdef __SIZEOF_INT128__

// The compiler's own 128-bit integer.
class Int128Native {
 public:
  constexpr Int128Native() = default;
  constexpr Int128Native(std::int64_t value) : value_(value) {}  // NOLINT(google-explicit-constructor)
  static constexpr Int128Native fromHalves(std::int64_t high, std::uint64_t low) {
    return wrap((static_cast<Unsigned>(static_cast<std::uint64_t>(high)) << 64) | low);
  }

  constexpr std::int64_t high() const { return static_cast<std::int64_t>(static_cast<Unsigned>(value_) >> 64); }
  constexpr std::uint64_t low() const { return static_cast<std::uint64_t>(value_); }
  constexpr bool negative() const { return value_ < 0; }
  constexpr bool fitsInt64() const { return value_ == static_cast<std::int64_t>(value_); }
  // Call it only when fitsInt64().
  constexpr std::int64_t toInt64() const { return static_cast<std::int64_t>(value_); }

  friend constexpr Int128Native operator-(Int128Native a) { return wrap(-static_cast<Unsigned>(a.value_)); }
  friend constexpr Int128Native operator+(Int128Native a, Int128Native b) {
    return wrap(static_cast<Unsigned>(a.value_) + static_cast<Unsigned>(b.value_));
  }
  friend constexpr Int128Native operator-(Int128Native a, Int128Native b) {
    return wrap(static_cast<Unsigned>(a.value_) - static_cast<Unsigned>(b.value_));
  }
  friend constexpr Int128Native operator*(Int128Native a, Int128Native b) {
    return wrap(static_cast<Unsigned>(a.value_) * static_cast<Unsigned>(b.value_));
  }
  // Both cut toward zero, so the remainder has the dividend's sign. The divisor must not be zero.
  friend constexpr Int128Native operator/(Int128Native a, Int128Native b) {
    Int128Native result;
    result.value_ = a.value_ / b.value_;
    return result;
  }
  friend constexpr Int128Native operator%(Int128Native a, Int128Native b) {
    Int128Native result;
    result.value_ = a.value_ % b.value_;
    return result;
  }
  Int128Native& operator+=(Int128Native other) { return *this = *this + other; }

  friend constexpr bool operator==(Int128Native a, Int128Native b) { return a.value_ == b.value_; }
  friend constexpr std::strong_ordering operator<=>(Int128Native a, Int128Native b) {
    if (a.value_ == b.value_) return std::strong_ordering::equal;
    return a.value_ < b.value_ ? std::strong_ordering::less : std::strong_ordering::greater;
  }

 private:
  __extension__ typedef __int128 Signed;
  __extension__ typedef unsigned __int128 Unsigned;

  static constexpr Int128Native wrap(Unsigned value) {
    Int128Native result;
    result.value_ = static_cast<Signed>(value);
    return result;
  }

  Signed value_ = 0;
};

using Int128 = Int128Native;

#else

using Int128 = Int128Halves;

#endif

// Whether a + b leaves the 128 bits.
template <class Integer>
constexpr bool addOverflows(Integer a, Integer b) {
  const Integer sum = a + b;
  return a.negative() == b.negative() && sum.negative() != a.negative();
}

// The nearest double.
template <class Integer>
constexpr double toDouble(Integer value) {
  // Rounded once: a magnitude above 64 bits keeps its top 64 bits, and a sticky bit stands for what is cut.
  const Integer magnitude = value.negative() ? -value : value;
  const auto high = static_cast<std::uint64_t>(magnitude.high());
  const std::uint64_t low = magnitude.low();
  double result = 0;
  if (high == 0) {
    result = static_cast<double>(low);
  } else {
    const int shift = 64 - std::countl_zero(high);
    const std::uint64_t top = shift == 64 ? high : (high << (64 - shift)) | (low >> shift);
    const bool sticky = shift == 64 ? low != 0 : (low << (64 - shift)) != 0;
    result = static_cast<double>(top | (sticky ? 1U : 0U));
    for (int i = 0; i < shift; ++i)
      result *= 2;
  }
  return value.negative() ? -result : result;
}

}  // namespace quillon::tsql
