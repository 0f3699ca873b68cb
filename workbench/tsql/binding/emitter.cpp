#include "workbench/tsql/binding/emitter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/conversion.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

// Units up to here fit a SQLite INTEGER. It is a little below 2^63 because bounds are kept as doubles.
constexpr double plainLimit = 9.2e18;

double tenTo(int exponent) {
  return std::pow(10.0, exponent);
}

// Up to this many units, of either sign, are in the type's range: int has one negative number more than positive ones.
double limitOf(const Type& type) {
  return type.kind == Kind::integer ? 2147483647.0 : magnitudeOf(type);
}

// Types whose range is exactly 64 bits: where SQLite makes a REAL of an overflow, T-SQL has an overflow too.
bool overflowsToReal(const Type& type) {
  return type.kind == Kind::bigInt || type.kind == Kind::money;
}

bool isWhole(const Type& type) {
  return type.kind == Kind::integer || type.kind == Kind::bigInt || type.kind == Kind::bit;
}

void absorb(Fragment& result, const Fragment& part) {
  result.bare.insert(result.bare.end(), part.bare.begin(), part.bare.end());
}

Fragment withType(Fragment value, const Type& type) {
  value.type = type;
  return value;
}

std::string shifted(const Fragment& value, int digits) {
  if (digits == 0) return value.sql;
  if (value.constant && std::holds_alternative<std::int64_t>(*value.constant)) {
    return std::to_string(std::get<std::int64_t>(*value.constant) * static_cast<std::int64_t>(tenTo(digits)));
  }
  return "(" + value.sql + " * " + std::to_string(static_cast<std::int64_t>(tenTo(digits))) + ")";
}

// A constant converted at translation. Nullopt when the conversion fails: it is then left to the run, because the error
// must come only if the value is used.
std::optional<Fragment> folded(const Fragment& value, const Type& to, int style) {
  if (!value.constant) return std::nullopt;
  try {
    return literalFragment(castValue(*value.constant, value.type, to, style), to);
  } catch (const SqlError&) {
    return std::nullopt;
  }
}

// Exact to exact without a function call; nullopt where one is needed.
std::optional<Fragment> rescaledPlainly(const Fragment& value, const Type& to) {
  if (to.kind == Kind::bit && value.type.kind != Kind::bit) return std::nullopt;
  const int digits = scaleOf(to) - scaleOf(value.type);
  if (digits < 0) return std::nullopt;
  const double magnitude = value.magnitude * tenTo(digits);
  const bool fitsTarget = magnitude <= limitOf(to);
  Fragment result = withType(value, to);
  result.constant.reset();
  result.magnitude = std::min(magnitude, magnitudeOf(to));
  if (digits == 0 && (fitsTarget || (overflowsToReal(to) && overflowsToReal(value.type)))) return result;
  if (digits == 0) {
    result.sql = "exact_check(" + value.sql + ", " + typeArgument(to) + ")";
    result.mayOverflow = result.isColumn = false;
    return result;
  }
  if (!fitsTarget || magnitude > plainLimit || value.mayOverflow) return std::nullopt;
  result.sql = shifted(value, digits);
  result.isColumn = false;
  return result;
}

std::optional<Fragment> convertedPlainly(const Fragment& value, const Type& to) {
  if (value.type == to) return value;
  if (isExact(value.type) && isExact(to)) return rescaledPlainly(value, to);
  if (isText(value.type) && isText(to) && to.width >= value.type.width) return withType(value, to);
  if (isExact(value.type) && to.kind == Kind::real && !isWide(value) && !value.mayOverflow) {
    Fragment result = withType(value, to);
    const int scale = scaleOf(value.type);
    result.sql = "CAST(" + value.sql + " AS REAL)";
    if (scale > 0)
      result.sql = "(" + result.sql + " / " + std::to_string(static_cast<std::int64_t>(tenTo(scale))) + ".0)";
    result.isColumn = false;
    return result;
  }
  return std::nullopt;
}

Fragment converted(const Fragment& value, const Type& to, const std::string& function, const std::string& trailing) {
  Fragment source = settled(value);
  Fragment result;
  result.sql =
      function + "(" + source.sql + ", " + typeArgument(source.type) + ", " + typeArgument(to) + trailing + ")";
  result.type = to;
  result.magnitude = magnitudeOf(to);
  absorb(result, value);
  return result;
}

Fragment typedNull(const Type& type, const Fragment& like) {
  Fragment result;
  result.sql = "NULL";
  result.type = type;
  result.constant = Value();
  absorb(result, like);
  return result;
}

Fragment joinedTexts(const Fragment& left, const Fragment& right, const Type& type) {
  Fragment result;
  result.sql = "(" + left.sql + " || " + right.sql + ")";
  result.type = type;
  const std::int64_t width = static_cast<std::int64_t>(left.type.width) + right.type.width;
  if (width > type.width) {
    Type joined = type;
    joined.width = Type::maxWidth;
    result.sql = "cast_to(" + result.sql + ", " + typeArgument(joined) + ", " + typeArgument(type) + ")";
  }
  return result;
}

// A whole-number constant that may be divided by without a check: neither 0 nor -1, whose quotient may overflow.
bool dividesSafely(const Fragment& divisor) {
  if (!divisor.constant || !std::holds_alternative<std::int64_t>(*divisor.constant)) return false;
  const std::int64_t value = std::get<std::int64_t>(*divisor.constant);
  return value != 0 && value != -1;
}

std::string_view functionOf(Arithmetic operation) {
  switch (operation) {
    case Arithmetic::add:
      return "exact_add";
    case Arithmetic::subtract:
      return "exact_sub";
    case Arithmetic::multiply:
      return "exact_mul";
    case Arithmetic::divide:
      return "exact_div";
    case Arithmetic::remainder:
      return "exact_mod";
  }
  return {};
}

char symbolOf(Arithmetic operation) {
  switch (operation) {
    case Arithmetic::add:
      return '+';
    case Arithmetic::subtract:
      return '-';
    case Arithmetic::multiply:
      return '*';
    case Arithmetic::divide:
      return '/';
    case Arithmetic::remainder:
      return '%';
  }
  return ' ';
}

// The operation as plain SQLite arithmetic on units, with its bound; nullopt where that would be wrong.
struct PlainResult {
  std::string sql;
  double magnitude = 0;
};

std::optional<PlainResult> plainArithmetic(Arithmetic operation, const Fragment& left, const Fragment& right,
                                           const Type& type) {
  if (isWide(left) || isWide(right)) return std::nullopt;
  const int scale = scaleOf(type);
  const int leftScale = scaleOf(left.type);
  const int rightScale = scaleOf(right.type);
  const std::string sign = std::string(" ") + symbolOf(operation) + ' ';
  switch (operation) {
    case Arithmetic::add:
    case Arithmetic::subtract: {
      if (scale < std::max(leftScale, rightScale)) return std::nullopt;
      const double leftBound = left.magnitude * tenTo(scale - leftScale);
      const double rightBound = right.magnitude * tenTo(scale - rightScale);
      // A side that is scaled up must itself stay within 64 bits; only the sum may overflow.
      if ((scale > leftScale && leftBound > plainLimit) || (scale > rightScale && rightBound > plainLimit))
        return std::nullopt;
      return PlainResult{"(" + shifted(left, scale - leftScale) + sign + shifted(right, scale - rightScale) + ")",
                         leftBound + rightBound};
    }
    case Arithmetic::multiply:
      if (scale != leftScale + rightScale) return std::nullopt;
      return PlainResult{"(" + left.sql + sign + right.sql + ")", left.magnitude * right.magnitude};
    case Arithmetic::divide:
    case Arithmetic::remainder:
      if (!isWhole(left.type) || !isWhole(right.type) || left.mayOverflow || !dividesSafely(right)) return std::nullopt;
      return PlainResult{"(" + left.sql + sign + right.sql + ")", left.magnitude};
  }
  return std::nullopt;
}

Fragment exactArithmetic(Arithmetic operation, const Fragment& left, const Fragment& right, const Type& type) {
  Fragment result;
  result.type = type;
  if (const auto plain = plainArithmetic(operation, left, right, type)) {
    result.sql = plain->sql;
    result.magnitude = std::min(plain->magnitude, magnitudeOf(type));
    result.mayOverflow = left.mayOverflow || right.mayOverflow;
    if (plain->magnitude <= plainLimit && plain->magnitude <= limitOf(type)) return result;
    if (overflowsToReal(type)) {
      result.mayOverflow = true;
      return result;
    }
    if (plain->magnitude <= plainLimit) {
      result.sql = "exact_check(" + result.sql + ", " + typeArgument(type) + ")";
      result.mayOverflow = false;
      return result;
    }
  }
  const Fragment a = settled(left);
  const Fragment b = settled(right);
  result.sql = std::string(functionOf(operation)) + "(" + a.sql + ", " + typeArgument(a.type) + ", " + b.sql + ", " +
               typeArgument(b.type) + ", " + typeArgument(type) + ")";
  result.magnitude = magnitudeOf(type);
  result.mayOverflow = false;
  return result;
}

Fragment realArithmetic(Arithmetic operation, const Fragment& left, const Fragment& right) {
  Fragment result;
  result.type = floatType();
  result.sql = operation == Arithmetic::divide
                   ? "float_div(" + left.sql + ", " + right.sql + ")"
                   : "float_check(" + left.sql + ' ' + symbolOf(operation) + ' ' + right.sql + ")";
  return result;
}

std::string compareExact(std::string_view op, const Fragment& left, const Fragment& right) {
  const Fragment a = settled(left);
  const Fragment b = settled(right);
  const int leftScale = scaleOf(a.type);
  const int rightScale = scaleOf(b.type);
  const int scale = std::max(leftScale, rightScale);
  const bool plain =
      a.magnitude * tenTo(scale - leftScale) <= plainLimit && b.magnitude * tenTo(scale - rightScale) <= plainLimit;
  const bool sameScale = leftScale == rightScale;
  const bool bothNarrow = !isWide(a) && !isWide(b);
  // Equal units are stored in the same form, so equality needs no function.
  if (plain || (sameScale && (bothNarrow || op == "=" || op == "<>"))) {
    return "(" + shifted(a, scale - leftScale) + ' ' + std::string(op) + ' ' + shifted(b, scale - rightScale) + ")";
  }
  return "(exact_cmp(" + a.sql + ", " + typeArgument(a.type) + ", " + b.sql + ", " + typeArgument(b.type) + ") " +
         std::string(op) + " 0)";
}

}  // namespace

double magnitudeOf(const Type& type) {
  switch (type.kind) {
    case Kind::integer:
      return 2147483648.0;
    case Kind::bit:
      return 1;
    case Kind::decimal:
      // The next double below 10^p, because 10^p itself does not fit.
      return std::nextafter(tenTo(type.precision), 0.0);
    case Kind::bigInt:
    case Kind::money:
      return 9223372036854775808.0;
    default:
      return 0;
  }
}

std::string typeArgument(const Type& type) {
  return std::to_string(typeCode(type));
}

bool isWide(const Fragment& value) {
  return value.type.kind == Kind::decimal && value.magnitude > plainLimit;
}

Fragment literalFragment(const Value& value, const Type& type) {
  Fragment result;
  result.sql = sqlLiteral(value);
  result.type = type;
  result.constant = value;
  result.notNull = !isNull(value);
  result.magnitude = magnitudeOf(type);
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    result.magnitude = std::fabs(static_cast<double>(*number));
    result.literalDigits = static_cast<int>(std::to_string(*number).size()) - (*number < 0 ? 1 : 0);
  } else if (const auto* const exact = std::get_if<Exact>(&value)) {
    result.magnitude =
        exact->units.fitsInt64() ? std::fabs(static_cast<double>(exact->units.toInt64())) : magnitudeOf(type);
  }
  return result;
}

Fragment nullFragment() {
  Fragment result;
  result.sql = "NULL";
  result.type = intType();
  result.isNullLiteral = true;
  result.constant = Value();
  return result;
}

Fragment columnFragment(std::string sql, const Type& type) {
  Fragment result;
  result.sql = std::move(sql);
  result.type = type;
  result.magnitude = magnitudeOf(type);
  result.isColumn = true;
  return result;
}

Fragment settled(const Fragment& value) {
  if (!value.mayOverflow) return value;
  Fragment result = value;
  result.sql = "exact_check(" + value.sql + ", " + typeArgument(value.type) + ")";
  result.mayOverflow = result.isColumn = false;
  return result;
}

Fragment convert(const Fragment& value, const Type& to, Conversion conversion, int style) {
  if (value.isNullLiteral) return typedNull(to, value);
  if (conversion == Conversion::implicit && value.type != to) checkAssignment(value.type, to);
  if (auto constant = folded(value, to, style)) {
    // A literal makes a NOT NULL column in Select Into; a cast of one does not.
    if (conversion == Conversion::cast) constant->notNull = false;
    if (conversion == Conversion::cast) constant->literalDigits = 0;
    return *constant;
  }
  if (auto plain = convertedPlainly(value, to)) {
    if (conversion == Conversion::cast) plain->notNull = false;
    plain->literalDigits = 0;
    return *plain;
  }
  return converted(value, to, "cast_to", style == 0 ? "" : ", " + std::to_string(style));
}

Type unify(std::vector<Fragment>& values) {
  std::vector<Operand> operands;
  operands.reserve(values.size());
  for (const Fragment& value : values)
    operands.push_back(value.operand());
  const Type type = commonType(operands);
  for (Fragment& value : values)
    value = convert(value, type, Conversion::implicit);
  return type;
}

Fragment store(const Fragment& value, const Type& to, std::string_view table, std::string_view column) {
  if (value.isNullLiteral) return typedNull(to, value);
  if (value.type != to) checkAssignment(value.type, to);
  const bool isCut = isText(to) && (!isText(value.type) || value.type.width > to.width);
  if (!isCut) {
    if (const auto constant = folded(value, to, 0)) return *constant;
  }
  if (const auto plain = convertedPlainly(value, to)) return *plain;
  return converted(value, to, "store_to",
                   ", " + sqlLiteral(std::string(table)) + ", " + sqlLiteral(std::string(column)));
}

Fragment negate(const Fragment& value) {
  if (value.isNullLiteral) return value;
  if (!isExact(value.type) && value.type.kind != Kind::real) throw errors::invalidOperand(value.type, "minus");
  Fragment result = value;
  result.isColumn = result.notNull = false;
  result.literalDigits = value.literalDigits;
  result.constant.reset();
  if (value.constant) {
    const auto* const number = std::get_if<std::int64_t>(&*value.constant);
    if (number != nullptr && fits(-Int128(*number), value.type)) {
      Fragment literal = literalFragment(-*number, value.type);
      literal.literalDigits = value.literalDigits;
      return literal;
    }
    if (const auto* const real = std::get_if<double>(&*value.constant)) return literalFragment(-*real, value.type);
    if (const auto* const exact = std::get_if<Exact>(&*value.constant)) {
      return literalFragment(Exact{-exact->units, exact->scale}, value.type);
    }
  }
  if (value.type.kind == Kind::real || (value.type.kind == Kind::decimal && !isWide(value))) {
    result.sql = "(-" + value.sql + ")";
  } else if (overflowsToReal(value.type)) {
    result.sql = "(-" + value.sql + ")";
    result.mayOverflow = result.mayOverflow || value.magnitude > plainLimit;
  } else {
    result.sql = "exact_neg(" + settled(value).sql + ", " + typeArgument(value.type) + ")";
    result.mayOverflow = false;
  }
  return result;
}

Fragment arithmetic(Arithmetic operation, const Fragment& left, const Fragment& right) {
  const Type type = arithmeticType(operation, left.operand(), right.operand());
  Fragment result;
  if (left.isNullLiteral || right.isNullLiteral) {
    result = typedNull(type, left);
    absorb(result, right);
    return result;
  }
  const Type leftType = arithmeticOperandType(operation, left.operand(), right.operand());
  const Type rightType = arithmeticOperandType(operation, right.operand(), left.operand());
  const Fragment a = left.type == leftType ? left : convert(left, leftType, Conversion::implicit);
  const Fragment b = right.type == rightType ? right : convert(right, rightType, Conversion::implicit);
  if (isText(type)) {
    result = joinedTexts(a, b, type);
  } else if (type.kind == Kind::real) {
    result = realArithmetic(operation, a, b);
  } else if (type.kind == Kind::dateTime) {
    result.sql = "date_check(" + a.sql + ' ' + symbolOf(operation) + ' ' + b.sql + ")";
    result.type = type;
  } else {
    result = exactArithmetic(operation, a, b, type);
  }
  absorb(result, left);
  absorb(result, right);
  return result;
}

std::string collated(const Fragment& value) {
  return isText(value.type) && !value.isColumn ? value.sql + " COLLATE " + collationName : value.sql;
}

std::string sortKey(const Fragment& value) {
  return isWide(value) ? "exact_key(" + value.sql + ")" : collated(settled(value));
}

std::string compare(std::string_view op, const Fragment& left, const Fragment& right) {
  const auto joined = [&](const std::string& a, const std::string& b) {
    return "(" + a + ' ' + std::string(op) + ' ' + b + ")";
  };
  if (left.isNullLiteral || right.isNullLiteral) return joined(left.sql, right.sql);
  if (isExact(left.type) && isExact(right.type)) return compareExact(op, left, right);
  const Type type = comparisonType(left.operand(), right.operand());
  if (isText(type)) {
    // It is enough when one side has the collation.
    return joined(right.isColumn ? left.sql : collated(left), right.sql);
  }
  const bool toReal = type.kind == Kind::real;
  const auto side = [&](const Fragment& value) {
    // SQLite compares INTEGER and REAL by value.
    if (toReal && isWhole(value.type)) return value;
    return isExact(value.type) && isExact(type) ? value : convert(value, type, Conversion::implicit);
  };
  const Fragment a = side(left);
  const Fragment b = side(right);
  return isExact(type) ? compareExact(op, a, b) : joined(a.sql, b.sql);
}

std::string memberOf(const Fragment& left, const std::vector<Fragment>& members) {
  // One IN when all members are stored in the form of the left side; otherwise one comparison for each member.
  std::string list;
  bool uniform = true;
  for (const Fragment& member : members) {
    Fragment value = member;
    if (left.type.kind == Kind::dateTime && !member.isNullLiteral)
      value = convert(member, left.type, Conversion::implicit);
    const bool sameForm = value.isNullLiteral || (isText(left.type) && isText(value.type)) ||
                          (isExact(left.type) && isExact(value.type) && scaleOf(left.type) == scaleOf(value.type) &&
                           !left.mayOverflow && !value.mayOverflow) ||
                          (left.type.kind == value.type.kind && !isExact(left.type));
    uniform = uniform && sameForm && !left.isNullLiteral;
    list += (list.empty() ? "" : ", ") + value.sql;
  }
  if (uniform) return "(" + collated(left) + " IN (" + list + "))";
  std::string chain;
  for (const Fragment& member : members)
    chain += (chain.empty() ? "" : " OR ") + compare("=", left, member);
  return "(" + chain + ")";
}

std::string like(const Fragment& value, const Fragment& pattern, const std::optional<Fragment>& escape) {
  const auto asText = [](const Fragment& part) {
    return isText(part.type) && !part.isNullLiteral ? part
                                                    : convert(part, implicitTextType(part.type), Conversion::cast);
  };
  const Fragment a = asText(value);
  const Fragment b = asText(pattern);
  const bool both = a.type.kind == Kind::varChar && b.type.kind == Kind::varChar;
  return std::string(both ? "text_like_varchar(" : "text_like(") + a.sql + ", " + b.sql +
         (escape ? ", " + asText(*escape).sql : "") + ")";
}

Fragment call(std::string_view function, const std::vector<Fragment>& arguments, const Type& type) {
  Fragment result;
  result.sql = std::string(function) + "(";
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    result.sql += (i == 0 ? "" : ", ") + settled(arguments[i]).sql;
    absorb(result, arguments[i]);
  }
  result.sql += ")";
  result.type = type;
  result.magnitude = magnitudeOf(type);
  return result;
}

namespace {

Aggregate aggregateNamed(std::string_view name) {
  return name == "sum"   ? Aggregate::sum
         : name == "avg" ? Aggregate::avg
         : name == "min" ? Aggregate::min
         : name == "max" ? Aggregate::max
                         : Aggregate::count;
}

}  // namespace

Fragment aggregate(std::string_view name, const Fragment& argument, bool distinct, bool exactSums) {
  const Aggregate kind = aggregateNamed(name);
  Fragment result;
  result.type = aggregateType(kind, argument.type);
  result.magnitude = magnitudeOf(result.type);
  const bool extreme = kind == Aggregate::min || kind == Aggregate::max;
  const auto apply = [&](std::string_view function) {
    const std::string value = extreme || distinct ? collated(settled(argument)) : argument.sql;
    return std::string(function) + (distinct ? "(DISTINCT " : "(") + value + ")";
  };
  switch (kind) {
    case Aggregate::count:
      result.sql = apply("count");
      break;
    case Aggregate::min:
    case Aggregate::max:
      result.sql = isWide(argument) ? apply(std::string(name) + "_decimal") : apply(name);
      result.magnitude = argument.magnitude;
      break;
    case Aggregate::sum:
      if (argument.type.kind == Kind::integer) {
        result.sql = "exact_check(" + apply("sum") + ", " + typeArgument(result.type) + ")";
      } else if (argument.type.kind == Kind::decimal && (isWide(argument) || exactSums)) {
        result.sql = apply("sum_decimal");
      } else {
        result.sql = apply("sum");
        result.mayOverflow = argument.mayOverflow;
        if (result.type.kind == Kind::decimal) result.magnitude = plainLimit;
      }
      break;
    case Aggregate::avg:
      if (argument.type.kind == Kind::real) {
        result.sql = apply("avg");
      } else if (argument.type.kind == Kind::decimal) {
        result.sql = apply("avg_decimal_" + std::to_string(result.type.scale - argument.type.scale));
      } else {
        result.sql = apply(argument.type.kind == Kind::money    ? "avg_money"
                           : argument.type.kind == Kind::bigInt ? "avg_bigint"
                                                                : "avg_int");
      }
      break;
  }
  return result;
}

std::optional<std::string> aggregateOfOne(std::string_view name, const Fragment& argument) {
  switch (aggregateNamed(name)) {
    case Aggregate::count:
      return "(" + argument.sql + " IS NOT NULL)";
    case Aggregate::min:
    case Aggregate::max:
      return settled(argument).sql;
    case Aggregate::sum:
      switch (argument.type.kind) {
        case Kind::integer:
          return "exact_check(" + argument.sql + ", " + typeArgument(aggregateType(Aggregate::sum, argument.type)) +
                 ")";
        case Kind::real:
          return "(" + argument.sql + " + 0.0)";  // a sum begins at 0, which makes 0 of -0
        case Kind::decimal:
          if (argument.mayOverflow) return {};
          return argument.sql;
        default:
          return argument.sql;
      }
    case Aggregate::avg:
      return {};
  }
  return {};
}

}  // namespace quillon::tsql
