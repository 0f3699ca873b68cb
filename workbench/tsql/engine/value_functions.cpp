#include "workbench/tsql/engine/value_functions.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <new>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/conversion.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/like.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/type_rules.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

// The longest text that a function may build, far above what nvarchar(max) is used for.
constexpr std::size_t longestText = 64U << 20;

// The first byte of the error texts of these functions; SQLite's own texts never begin with it.
constexpr char errorMark = '\x01';

// Units as SQLite stores them; nullopt for a REAL, which SQLite makes of an integer that overflows 64 bits.
std::optional<Int128> unitsOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return Int128(sqlite3_value_int64(value));
    case SQLITE_BLOB:
      return decodeUnits(bytesOf(value));
    default:
      return {};
  }
}

void fail(sqlite3_context* context, const SqlError& error) {
  reportError(context, error);
}

void giveUnits(sqlite3_context* context, Int128 units) {
  if (units.fitsInt64()) {
    sqlite3_result_int64(context, units.toInt64());
  } else {
    const auto bytes = encodeUnits(units);
    sqlite3_result_blob(context, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
  }
}

// One call of a function: its arguments and where its result goes. The result is NULL until it is given.
class Call {
 public:
  Call(sqlite3_context* context, int count, sqlite3_value** arguments)
      : context_(context), count_(count), arguments_(arguments) {}

  int count() const { return count_; }
  bool isNull(int i) const { return sqlite3_value_type(arguments_[i]) == SQLITE_NULL; }
  std::int64_t integer(int i) const { return sqlite3_value_int64(arguments_[i]); }
  double real(int i) const { return sqlite3_value_double(arguments_[i]); }
  std::string_view text(int i) const { return textOf(arguments_[i]); }
  Type type(int i) const { return typeFromCode(integer(i)); }
  Value value(int i, const Type& type) const { return valueOf(arguments_[i], type); }
  sqlite3_value* raw(int i) const { return arguments_[i]; }
  sqlite3_context* context() const { return context_; }

  // The exact number in argument i, whose type stands in the argument after it.
  Exact exact(int i) const { return {units(i, type(i + 1)), scaleOf(type(i + 1))}; }
  Int128 units(int i, const Type& type) const {
    const auto units = unitsOf(arguments_[i]);
    if (!units) throw errors::overflow("expression", errors::systemName(type));
    return *units;
  }
  DateTime dateTime(int i) const { return {integer(i)}; }
  DatePart part(int i) const {
    const auto part = datePartNamed(text(i));
    if (!part) throw SqlError(155, "'" + std::string(text(i)) + "' is not a recognized datepart option.");
    return *part;
  }

  void give(const Exact& exact) { giveUnits(context_, exact.units); }
  void give(Int128 units) { giveUnits(context_, units); }
  void give(std::int64_t integer) { sqlite3_result_int64(context_, integer); }
  void give(int integer) { sqlite3_result_int64(context_, integer); }
  void give(DateTime value) { sqlite3_result_int64(context_, value.ticks); }
  void give(std::string_view text) {
    sqlite3_result_text64(context_, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  }
  void giveReal(double value) {
    if (!std::isfinite(value)) throw errors::overflow("expression", "float");
    sqlite3_result_double(context_, value);
  }
  void giveArgument(int i) { sqlite3_result_value(context_, arguments_[i]); }
  void give(const Value& value) {
    struct Giver {
      Call& call;
      void operator()(std::monostate /*null*/) const {}
      void operator()(std::int64_t integer) const { call.give(integer); }
      void operator()(double real) const { call.giveReal(real); }
      void operator()(const Exact& exact) const { call.give(exact); }
      void operator()(DateTime time) const { call.give(time); }
      void operator()(const std::string& text) const { call.give(std::string_view(text)); }
    };
    std::visit(Giver{*this}, value);
  }

 private:
  sqlite3_context* context_;
  int count_;
  sqlite3_value** arguments_;
};

using Body = void (*)(Call&);

// No exception may pass through SQLite's C code.
template <class Work>
void guarded(sqlite3_context* context, Work work) {
  try {
    work();
  } catch (const SqlError& error) {
    fail(context, error);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

template <Body body>
void strict(sqlite3_context* context, int count, sqlite3_value** arguments) {
  guarded(context, [&] {
    Call call(context, count, arguments);
    for (int i = 0; i < count; ++i) {
      if (call.isNull(i)) return;
    }
    body(call);
  });
}

template <Body body>
void takingNull(sqlite3_context* context, int count, sqlite3_value** arguments) {
  guarded(context, [&] {
    Call call(context, count, arguments);
    body(call);
  });
}

// -- exact numbers

using Operation = Exact (*)(const Exact&, const Exact&, const Type&);

template <Operation operation>
void binary(Call& call) {
  call.give(operation(call.exact(0), call.exact(2), call.type(4)));
}

void exactNeg(Call& call) {
  call.give(negate(call.exact(0), call.type(1)));
}

void exactCheck(Call& call) {
  const Type type = call.type(1);
  const Int128 units = call.units(0, type);
  if (!fits(units, type)) throw errors::overflow("expression", errors::systemName(type));
  call.giveArgument(0);
}

void exactCmp(Call& call) {
  call.give(compare(call.exact(0), call.exact(2)));
}

void exactKey(Call& call) {
  const auto bytes = encodeUnits(call.units(0, decimalType(maxPrecision, 0)));
  sqlite3_result_blob(call.context(), bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
}

void exactAbs(Call& call) {
  const Exact number = call.exact(0);
  call.give(number.units.negative() ? negate(number, call.type(1)) : number);
}

void exactSign(Call& call) {
  const Exact number = call.exact(0);
  const int sign = number.units.negative() ? -1 : number.units == Int128() ? 0 : 1;
  call.give(Int128(sign) * powerOfTen(number.scale));
}

void exactRound(Call& call) {
  const Rounding rounding = call.count() > 3 && call.integer(3) != 0 ? Rounding::cut : Rounding::halfAway;
  call.give(round(call.exact(0), call.integer(2), rounding, call.type(1)));
}

void exactFloor(Call& call) {
  call.give(floor(call.exact(0), call.type(2)));
}

void exactCeiling(Call& call) {
  call.give(ceiling(call.exact(0), call.type(2)));
}

// -- float

void floatBits(Call& call) {
  call.giveReal(std::bit_cast<double>(call.integer(0)));
}

void floatCheck(Call& call) {
  call.giveReal(call.real(0));
}

void floatDiv(Call& call) {
  if (call.real(1) == 0) throw errors::divideByZero();
  call.giveReal(call.real(0) / call.real(1));
}

void floatRound(Call& call) {
  const double number = call.real(0);
  const auto digits = static_cast<double>(std::clamp<std::int64_t>(call.integer(1), -400, 400));
  const bool cut = call.count() > 2 && call.integer(2) != 0;
  const double power = std::pow(10.0, std::abs(digits));
  const double scaled = digits < 0 ? number / power : number * power;
  if (!std::isfinite(scaled) || !std::isfinite(power)) {
    // Rounding to more decimals than a double has changes nothing; rounding off more digits than it has gives 0.
    call.giveReal(digits < 0 ? 0 : number);
    return;
  }
  const double whole = cut ? std::trunc(scaled) : std::round(scaled);
  call.giveReal(digits < 0 ? whole * power : whole / power);
}

void floatFloor(Call& call) {
  call.giveReal(std::floor(call.real(0)));
}
void floatCeiling(Call& call) {
  call.giveReal(std::ceil(call.real(0)));
}
void floatPower(Call& call) {
  const double result = std::pow(call.real(0), call.real(1));
  if (std::isnan(result)) throw SqlError(3623, "An invalid floating point operation occurred.");
  call.giveReal(result);
}
void floatSqrt(Call& call) {
  if (call.real(0) < 0) throw SqlError(3623, "An invalid floating point operation occurred.");
  call.giveReal(std::sqrt(call.real(0)));
}
void floatSign(Call& call) {
  call.giveReal(call.real(0) < 0 ? -1 : call.real(0) > 0 ? 1 : 0);
}

// -- conversions

bool isFittingText(const Call& call, const Type& from, const Type& to) {
  return isText(from) && isText(to) && !text::widerThan(call.text(0), to.width);
}

void castTo(Call& call) {
  const Type from = call.type(1);
  const Type to = call.type(2);
  if (isFittingText(call, from, to)) {
    call.giveArgument(0);
    return;
  }
  const int style = call.count() > 3 ? static_cast<int>(call.integer(3)) : 0;
  call.give(castValue(call.value(0, from), from, to, style));
}

void storeTo(Call& call) {
  const Type from = call.type(1);
  const Type to = call.type(2);
  if (isFittingText(call, from, to)) {
    call.giveArgument(0);
    return;
  }
  call.give(assignValue(call.value(0, from), from, to, call.text(3), call.text(4)));
}

// -- texts

void textLeft(Call& call) {
  if (call.integer(1) < 0) throw errors::invalidLength("left");
  call.give(std::string_view(text::left(call.text(0), call.integer(1))));
}
void textRight(Call& call) {
  if (call.integer(1) < 0) throw errors::invalidLength("right");
  call.give(std::string_view(text::right(call.text(0), call.integer(1))));
}
void textSubstring(Call& call) {
  if (call.integer(2) < 0) throw errors::invalidLength("substring");
  call.give(std::string_view(text::substring(call.text(0), call.integer(1), call.integer(2))));
}
void textLen(Call& call) {
  call.give(text::width(text::trimRight(call.text(0))));
}
void textWidth(Call& call) {
  call.give(text::width(call.text(0)));
}
void textUpper(Call& call) {
  call.give(std::string_view(text::upper(call.text(0))));
}
void textLower(Call& call) {
  call.give(std::string_view(text::lower(call.text(0))));
}
void textLtrim(Call& call) {
  call.give(text::trimLeft(call.text(0)));
}
void textRtrim(Call& call) {
  call.give(text::trimRight(call.text(0)));
}
void textReverse(Call& call) {
  call.give(std::string_view(text::reverse(call.text(0))));
}
void textReplace(Call& call) {
  call.give(std::string_view(text::replace(call.text(0), call.text(1), call.text(2))));
}
void textCharindex(Call& call) {
  call.give(text::charIndex(call.text(0), call.text(1), call.count() > 2 ? call.integer(2) : 1));
}
void textStuff(Call& call) {
  if (call.isNull(0) || call.isNull(1) || call.isNull(2)) return;
  const std::string_view text = call.text(0);
  const std::int64_t start = call.integer(1);
  const std::int64_t count = call.integer(2);
  const std::int64_t width = text::width(text);
  if (start < 1 || count < 0 || start > width) return;
  std::string result = text::left(text, start - 1);
  if (!call.isNull(3)) result += call.text(3);
  const std::int64_t removed = std::min(count, width - start + 1);
  result += text::right(text, width - (start - 1) - removed);
  call.give(std::string_view(result));
}
void textReplicate(Call& call) {
  const std::string_view text = call.text(0);
  const std::int64_t count = call.integer(1);
  if (count < 0) return;
  if (!text.empty() && static_cast<std::uint64_t>(count) > longestText / text.size()) {
    throw SqlError(8152, "String or binary data would be truncated.");
  }
  std::string result;
  for (std::int64_t i = 0; i < count && !text.empty(); ++i)
    result += text;
  call.give(std::string_view(result));
}
void textSpace(Call& call) {
  if (call.integer(0) < 0) return;
  const std::size_t count = static_cast<std::size_t>(std::min<std::int64_t>(call.integer(0), 8000));
  call.give(std::string_view(std::string(count, ' ')));
}
void textChar(Call& call) {
  const std::int64_t code = call.integer(0);
  if (code < 0 || code > 127) return;  // above 127 the answer depends on the code page: NULL, as beyond 255
  call.give(std::string_view(std::string(1, static_cast<char>(code))));
}
void textNchar(Call& call) {
  const std::int64_t code = call.integer(0);
  if (code < 0 || code > 0xffff) return;
  std::string result;
  text::append(result, static_cast<char32_t>(code));
  call.give(std::string_view(result));
}
void textUnicode(Call& call) {
  const std::string_view text = call.text(0);
  if (text.empty()) return;
  // The first UTF-16 unit; of a surrogate pair the first half.
  const std::string first = text::left(text, 1);
  std::size_t position = 0;
  call.give(static_cast<std::int64_t>(text::next(first, position)));
}
void textAscii(Call& call) {
  const std::string_view text = call.text(0);
  if (text.empty()) return;
  const auto first = static_cast<unsigned char>(text.front());
  call.give(first < 0x80 ? static_cast<int>(first) : static_cast<int>('?'));
}
void textStr(Call& call) {
  const std::int64_t length = call.integer(1);
  const auto decimals = static_cast<int>(std::clamp<std::int64_t>(call.integer(2), 0, 16));
  if (length < 1 || length > 8000) return;
  const auto width = static_cast<std::size_t>(length);
  const std::string stars(width, '*');
  bool isTooLong = std::abs(call.real(0)) >= 1e20;
  std::string number;
  if (!isTooLong) {
    const auto print = [&](int count) {
      const Value value = castValue(Value(call.real(0)), floatType(), decimalType(maxPrecision, count));
      number = tsql::toText(std::get<Exact>(value));
    };
    print(decimals);
    // Decimals are dropped to fit the length, digits before the point are not.
    const std::size_t point = number.find('.');
    const std::size_t whole = std::min(point, number.size());
    if (number.size() > width && whole <= width) {
      print(static_cast<int>(width) - static_cast<int>(whole) - 1 > 0
                ? static_cast<int>(width) - static_cast<int>(whole) - 1
                : 0);
    }
    isTooLong = number.size() > width;
  }
  call.give(std::string_view(isTooLong ? stars : std::string(width - number.size(), ' ') + number));
}
void textQuotename(Call& call) {
  if (text::widerThan(call.text(0), 128)) return;
  std::string result = "[";
  for (const char c : call.text(0)) {
    result += c;
    if (c == ']') result += c;
  }
  call.give(std::string_view(result + ']'));
}
void textIsnumeric(Call& call) {
  call.give(!call.isNull(0) && isNumericText(call.text(0)) ? 1 : 0);
}

// A constant pattern is parsed once and kept with the statement.
template <bool ignoreTrailingBlanks>
void textLike(Call& call) {
  if (call.count() > 2) {
    const std::string_view escape = call.text(2);
    if (escape.empty()) throw errors::invalidEscape(escape);
    call.give(LikePattern(call.text(1), escape).matches(call.text(0), ignoreTrailingBlanks) ? 1 : 0);
    return;
  }
  const auto* kept = static_cast<const LikePattern*>(sqlite3_get_auxdata(call.context(), 1));
  if (kept != nullptr) {
    call.give(kept->matches(call.text(0), ignoreTrailingBlanks) ? 1 : 0);
    return;
  }
  auto pattern = std::make_unique<LikePattern>(call.text(1));
  call.give(pattern->matches(call.text(0), ignoreTrailingBlanks) ? 1 : 0);
  // SQLite may delete the pattern at once, so it is not used after this.
  sqlite3_set_auxdata(call.context(), 1, pattern.release(), [](void* old) { delete static_cast<LikePattern*>(old); });
}

void textPatindex(Call& call) {
  // A pattern that begins with % is tried, without the %, at each position; any other at the first only.
  std::string_view pattern = call.text(0);
  const std::string_view text = call.text(1);
  const bool anywhere = pattern.starts_with('%');
  while (pattern.starts_with('%'))
    pattern.remove_prefix(1);
  const LikePattern rest(pattern);
  std::int64_t index = 1;
  for (std::size_t position = 0;; ++index) {
    if (rest.matches(text.substr(position), false)) {
      call.give(index);
      return;
    }
    if (!anywhere || position == text.size()) break;
    if (text::next(text, position) > 0xffff) ++index;
  }
  call.give(0);
}

// -- dates

void datePartFunction(Call& call) {
  call.give(datePart(call.part(0), call.dateTime(1)));
}
void dateNameFunction(Call& call) {
  call.give(std::string_view(dateName(call.part(0), call.dateTime(1))));
}
void dateAddFunction(Call& call) {
  call.give(dateAdd(call.part(0), call.integer(1), call.dateTime(2)));
}
void dateDiffFunction(Call& call) {
  const std::int64_t difference = dateDiff(call.part(0), call.dateTime(1), call.dateTime(2));
  if (!fits(difference, intType())) throw errors::dateDifferenceOverflow();
  call.give(difference);
}
void dateCheck(Call& call) {
  if (!inRange(call.dateTime(0))) throw errors::dateArithmeticOverflow();
  call.giveArgument(0);
}

// -- aggregates

// A 128-bit integer for memory of SQLite, which is aligned for 64 bits only.
class UnalignedInt128 {
 public:
  Int128 get() const { return Int128::fromHalves(high_, low_); }
  void set(Int128 value) {
    high_ = value.high();
    low_ = value.low();
  }

 private:
  std::int64_t high_;
  std::uint64_t low_;
};

// SQLite allocates it zeroed, which is an empty sum.
struct Sum {
  UnalignedInt128 total;
  std::int64_t count;
  bool overflowed;

  void add(Int128 value) {
    const Int128 old = total.get();
    overflowed = overflowed || addOverflows(old, value);
    total.set(old + value);
  }
};

void sumStep(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
  const int type = sqlite3_value_type(arguments[0]);
  if (type == SQLITE_NULL) return;
  auto* sum = static_cast<Sum*>(sqlite3_aggregate_context(context, sizeof(Sum)));
  if (sum == nullptr) return;  // out of memory: SQLite reports it
  ++sum->count;
  if (type == SQLITE_INTEGER) {
    sum->add(sqlite3_value_int64(arguments[0]));
  } else if (const auto units = unitsOf(arguments[0])) {
    sum->add(*units);
  } else {
    sum->overflowed = true;
  }
}

// What an aggregate is registered with: the kind of its result, and the decimals that an average gets on top.
struct AggregateRule {
  Type type;
  int moreDecimals = 0;
};

const AggregateRule& ruleOf(sqlite3_context* context) {
  return *static_cast<const AggregateRule*>(sqlite3_user_data(context));
}

void finish(sqlite3_context* context, const std::optional<Int128>& result, const Type& type) {
  if (!result || !fits(*result, type)) {
    fail(context, errors::overflow("expression", errors::systemName(type)));
  } else {
    giveUnits(context, *result);
  }
}

void sumFinal(sqlite3_context* context) {
  const auto* sum = static_cast<const Sum*>(sqlite3_aggregate_context(context, 0));
  if (sum == nullptr || sum->count == 0) return;
  finish(context, sum->overflowed ? std::nullopt : std::optional<Int128>(sum->total.get()), ruleOf(context).type);
}

void avgFinal(sqlite3_context* context) {
  const auto* sum = static_cast<const Sum*>(sqlite3_aggregate_context(context, 0));
  if (sum == nullptr || sum->count == 0) return;
  const AggregateRule& rule = ruleOf(context);
  std::optional<Int128> average;
  if (!sum->overflowed) {
    // Quotient and rest are scaled apart, so that the total itself need not be.
    const Int128 count = sum->count;
    const Int128 total = sum->total.get();
    const Int128 power = powerOfTen(rule.moreDecimals);
    const auto whole = rescale(total / count, 0, rule.moreDecimals, Rounding::cut);
    if (whole) average = *whole + total % count * power / count;
  }
  finish(context, average, rule.type);
}

struct Extreme {
  UnalignedInt128 units;
  bool any;
};

template <bool wantsLeast>
void extremeStep(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
  const auto units = unitsOf(arguments[0]);
  if (!units) return;
  auto* extreme = static_cast<Extreme*>(sqlite3_aggregate_context(context, sizeof(Extreme)));
  if (extreme == nullptr) return;
  const Int128 best = extreme->units.get();
  if (extreme->any && (wantsLeast ? *units >= best : *units <= best)) return;
  extreme->units.set(*units);
  extreme->any = true;
}

void extremeFinal(sqlite3_context* context) {
  const auto* extreme = static_cast<const Extreme*>(sqlite3_aggregate_context(context, 0));
  if (extreme != nullptr && extreme->any) giveUnits(context, extreme->units.get());
}

// -- parts of statements

// The aggregate's state: the first value, copied.
void singleRowStep(sqlite3_context* context, int, sqlite3_value** arguments) {
  auto** const state = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
  if (state == nullptr) {
    sqlite3_result_error_nomem(context);
    return;
  }
  if (*state != nullptr) {
    reportError(
        context,
        SqlError(512,
                 "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, <, <= "
                 ", >, >= or when the subquery is used as an expression."));
    return;
  }
  *state = sqlite3_value_dup(arguments[0]);
}

void singleRowEnd(sqlite3_context* context) {
  auto** const state = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 0));
  if (state == nullptr || *state == nullptr) return;
  sqlite3_result_value(context, *state);
  sqlite3_value_free(*state);
  *state = nullptr;
}

void required(Call& call) {
  if (call.isNull(0)) {
    throw SqlError(515, "Cannot insert the value NULL into column '" + std::string(call.text(1)) + "', table '" +
                            std::string(call.text(2)) + "'; column does not allow nulls. INSERT fails.");
  }
  call.giveArgument(0);
}

// -- registration

using Entry = void (*)(sqlite3_context*, int, sqlite3_value**);

struct Function {
  const char* name;
  int arguments;
  Entry entry;
};

constexpr Function functions[] = {
    {"exact_add", 5, strict<binary<add>>},
    {"exact_sub", 5, strict<binary<subtract>>},
    {"exact_mul", 5, strict<binary<multiply>>},
    {"exact_div", 5, strict<binary<divide>>},
    {"exact_mod", 5, strict<binary<remainder>>},
    {"exact_neg", 2, strict<exactNeg>},
    {"exact_check", 2, strict<exactCheck>},
    {"exact_cmp", 4, strict<exactCmp>},
    {"exact_key", 1, strict<exactKey>},
    {"exact_abs", 2, strict<exactAbs>},
    {"exact_sign", 2, strict<exactSign>},
    {"exact_round", 3, strict<exactRound>},
    {"exact_round", 4, strict<exactRound>},
    {"exact_floor", 3, strict<exactFloor>},
    {"exact_ceiling", 3, strict<exactCeiling>},
    {"float_bits", 1, strict<floatBits>},
    {"float_check", 1, strict<floatCheck>},
    {"float_div", 2, strict<floatDiv>},
    {"float_round", 2, strict<floatRound>},
    {"float_round", 3, strict<floatRound>},
    {"float_floor", 1, strict<floatFloor>},
    {"float_ceiling", 1, strict<floatCeiling>},
    {"float_power", 2, strict<floatPower>},
    {"float_sqrt", 1, strict<floatSqrt>},
    {"float_sign", 1, strict<floatSign>},
    {"cast_to", 3, strict<castTo>},
    {"cast_to", 4, strict<castTo>},
    {"store_to", 5, strict<storeTo>},
    {"text_left", 2, strict<textLeft>},
    {"text_right", 2, strict<textRight>},
    {"text_substring", 3, strict<textSubstring>},
    {"text_len", 1, strict<textLen>},
    {"text_width", 1, strict<textWidth>},
    {"text_upper", 1, strict<textUpper>},
    {"text_lower", 1, strict<textLower>},
    {"text_ltrim", 1, strict<textLtrim>},
    {"text_rtrim", 1, strict<textRtrim>},
    {"text_reverse", 1, strict<textReverse>},
    {"text_replace", 3, strict<textReplace>},
    {"text_charindex", 2, strict<textCharindex>},
    {"text_charindex", 3, strict<textCharindex>},
    {"text_stuff", 4, takingNull<textStuff>},
    {"text_replicate", 2, strict<textReplicate>},
    {"text_space", 1, strict<textSpace>},
    {"text_char", 1, strict<textChar>},
    {"text_nchar", 1, strict<textNchar>},
    {"text_ascii", 1, strict<textAscii>},
    {"text_unicode", 1, strict<textUnicode>},
    {"text_str", 3, strict<textStr>},
    {"text_quotename", 1, strict<textQuotename>},
    {"text_isnumeric", 1, takingNull<textIsnumeric>},
    {"text_like", 2, strict<textLike<false>>},
    {"text_like", 3, strict<textLike<false>>},
    {"text_like_varchar", 2, strict<textLike<true>>},
    {"text_like_varchar", 3, strict<textLike<true>>},
    {"text_patindex", 2, strict<textPatindex>},
    {"date_part", 2, strict<datePartFunction>},
    {"date_name", 2, strict<dateNameFunction>},
    {"date_add", 3, strict<dateAddFunction>},
    {"date_diff", 3, strict<dateDiffFunction>},
    {"date_check", 1, strict<dateCheck>},
    {"required", 3, takingNull<required>},
};

struct AggregateFunction {
  const char* name;
  AggregateRule rule;
  Entry step;
  void (*final)(sqlite3_context*);
};

const Type wideDecimal = decimalType(maxPrecision, 0);
const AggregateFunction aggregates[] = {
    {"sum_int", {intType()}, sumStep, sumFinal},
    {"sum_bigint", {bigIntType()}, sumStep, sumFinal},
    {"sum_money", {moneyType()}, sumStep, sumFinal},
    {"sum_decimal", {wideDecimal}, sumStep, sumFinal},
    {"avg_int", {intType()}, sumStep, avgFinal},
    {"avg_bigint", {bigIntType()}, sumStep, avgFinal},
    {"avg_money", {moneyType()}, sumStep, avgFinal},
    {"avg_decimal_0", {wideDecimal, 0}, sumStep, avgFinal},
    {"avg_decimal_1", {wideDecimal, 1}, sumStep, avgFinal},
    {"avg_decimal_2", {wideDecimal, 2}, sumStep, avgFinal},
    {"avg_decimal_3", {wideDecimal, 3}, sumStep, avgFinal},
    {"avg_decimal_4", {wideDecimal, 4}, sumStep, avgFinal},
    {"avg_decimal_5", {wideDecimal, 5}, sumStep, avgFinal},
    {"avg_decimal_6", {wideDecimal, 6}, sumStep, avgFinal},
    {"min_decimal", {wideDecimal}, extremeStep<true>, extremeFinal},
    {"max_decimal", {wideDecimal}, extremeStep<false>, extremeFinal},
    {"single_row", {}, singleRowStep, singleRowEnd},
};

int compareForSqlite(void* /*unused*/, int aSize, const void* a, int bSize, const void* b) {
  return compareText({static_cast<const char*>(a), static_cast<std::size_t>(aSize)},
                     {static_cast<const char*>(b), static_cast<std::size_t>(bSize)});
}

void checkRegistered(sqlite3* database, int code) {
  if (code != SQLITE_OK) {
    throw SqlError(0, std::string("The dialect's functions cannot be registered: ") + sqlite3_errmsg(database));
  }
}

}  // namespace

std::string_view bytesOf(sqlite3_value* value) {
  const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

std::string_view textOf(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void registerValueFunctions(sqlite3* database) {
  constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
  for (const Function& function : functions) {
    checkRegistered(database, sqlite3_create_function_v2(database, function.name, function.arguments, flags, nullptr,
                                                         function.entry, nullptr, nullptr, nullptr));
  }
  for (const AggregateFunction& aggregate : aggregates) {
    // SQLite hands the rule back unchanged.
    void* rule = const_cast<AggregateRule*>(&aggregate.rule);
    checkRegistered(database, sqlite3_create_function_v2(database, aggregate.name, 1, flags, rule, nullptr,
                                                         aggregate.step, aggregate.final, nullptr));
  }
  checkRegistered(
      database, sqlite3_create_collation_v2(database, collationName, SQLITE_UTF8, nullptr, compareForSqlite, nullptr));
}

void reportError(sqlite3_context* context, const SqlError& error) {
  const std::string text = errorMark + std::to_string(error.number()) + ':' + error.message();
  sqlite3_result_error(context, text.data(), static_cast<int>(text.size()));
}

std::optional<SqlError> errorFrom(std::string_view sqliteMessage) {
  if (sqliteMessage.empty() || sqliteMessage.front() != errorMark) return {};
  const std::size_t colon = sqliteMessage.find(':');
  const int number = text::wholeNumber(sqliteMessage.substr(1, colon - 1)).value_or(0);
  return SqlError(number, std::string(sqliteMessage.substr(colon + 1)));
}

Value valueOf(sqlite3_value* value, const Type& type) {
  if (sqlite3_value_type(value) == SQLITE_NULL) return {};
  switch (type.kind) {
    case Kind::decimal:
    case Kind::money: {
      const auto units = unitsOf(value);
      if (!units) throw errors::overflow("expression", errors::systemName(type));
      return Exact{*units, scaleOf(type)};
    }
    case Kind::real:
      return sqlite3_value_double(value);
    case Kind::dateTime:
      return DateTime{sqlite3_value_int64(value)};
    case Kind::nVarChar:
    case Kind::varChar:
      return std::string(textOf(value));
    default:
      if (sqlite3_value_type(value) == SQLITE_FLOAT) throw errors::overflow("expression", errors::systemName(type));
      return std::int64_t{sqlite3_value_int64(value)};
  }
}

Value columnValue(sqlite3_stmt* statement, int column, const Type& type) {
  return valueOf(sqlite3_column_value(statement, column), type);
}

void readColumn(sqlite3_stmt* statement, int column, const Type& type, Value& value) {
  sqlite3_value* const read = sqlite3_column_value(statement, column);
  const bool text = type.kind == Kind::nVarChar || type.kind == Kind::varChar;
  if (sqlite3_value_type(read) == SQLITE_NULL) {
    value.emplace<std::monostate>();
  } else if (!text) {
    value = valueOf(read, type);
  } else if (auto* const known = std::get_if<std::string>(&value)) {
    known->assign(textOf(read));
  } else {
    value.emplace<std::string>(textOf(read));
  }
}

int bindValue(sqlite3_stmt* statement, int index, const Value& value) {
  struct Binder {
    sqlite3_stmt* statement;
    int index;
    int operator()(std::monostate /*null*/) const { return sqlite3_bind_null(statement, index); }
    int operator()(std::int64_t integer) const { return sqlite3_bind_int64(statement, index, integer); }
    int operator()(double real) const { return sqlite3_bind_double(statement, index, real); }
    int operator()(DateTime time) const { return sqlite3_bind_int64(statement, index, time.ticks); }
    int operator()(const Exact& exact) const {
      if (exact.units.fitsInt64()) return sqlite3_bind_int64(statement, index, exact.units.toInt64());
      const auto bytes = encodeUnits(exact.units);
      return sqlite3_bind_blob(statement, index, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
    }
    int operator()(const std::string& text) const {
      return sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
  };
  return std::visit(Binder{statement, index}, value);
}

}  // namespace quillon::tsql
