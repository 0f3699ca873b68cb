// Exact numbers: units * 10^-scale with up to 38 digits. Every operation takes the declared type of its result, as
// type_rules.h derives it, and throws SqlError 8115 when the result does not fit that type.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

inline constexpr int maxPrecision = 38;

// 10^exponent, for 0 <= exponent <= 38.
Int128 powerOfTen(int exponent);

// The scale of an exact type: 0 for int, bigint and bit, 4 for money, as declared for decimal.
int scaleOf(const Type& type);
// Whether `units` (in the type's scale) lie in the type's range.
bool fits(Int128 units, const Type& type);

enum class Rounding { halfAway, cut };
// The same number in another scale; nullopt when it does not fit 128 bits.
std::optional<Int128> rescale(Int128 units, int fromScale, int toScale, Rounding rounding);

// Sums and differences whose scale is reduced and all products round half away from zero; quotients are cut; a
// division or remainder by zero throws 8134.
Exact add(const Exact& a, const Exact& b, const Type& result);
Exact subtract(const Exact& a, const Exact& b, const Type& result);
Exact multiply(const Exact& a, const Exact& b, const Type& result);
Exact divide(const Exact& a, const Exact& b, const Type& result);
Exact remainder(const Exact& a, const Exact& b, const Type& result);
Exact negate(const Exact& a, const Type& result);
// Less than, equal to or greater than zero as a is to b. Scales may differ.
int compare(const Exact& a, const Exact& b);

// T-SQL's round(a, digits): digits may be negative; the scale stays.
Exact round(const Exact& a, std::int64_t digits, Rounding rounding, const Type& result);
// The integral neighbours, in the scale of `result`.
Exact floor(const Exact& a, const Type& result);
Exact ceiling(const Exact& a, const Type& result);

// "-0.0500"; with scale 0 no point.
std::string toText(const Exact& value);
void appendText(std::string& text, const Exact& value);
double toDouble(const Exact& value);

// Digits with an optional point and sign, no blanks ("-12.50", ".5", "7."): the number in as many decimals as it has.
// nullopt for anything else. At most 38 digits count; more before the point give nullopt with `tooLarge` set.
std::optional<Exact> parseExact(std::string_view text, bool* tooLarge = nullptr);

}  // namespace quillon::tsql
