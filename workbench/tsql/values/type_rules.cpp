#include "workbench/tsql/values/type_rules.h"

#include <algorithm>
#include <array>
#include <string>

#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

constexpr int maxNVarChar = 4000;
constexpr int maxVarChar = 8000;

// The type with the higher number wins; the other one is converted to it.
int precedence(Kind kind) {
  switch (kind) {
    case Kind::dateTime:
      return 9;
    case Kind::real:
      return 8;
    case Kind::decimal:
      return 7;
    case Kind::money:
      return 6;
    case Kind::bigInt:
      return 5;
    case Kind::integer:
      return 4;
    case Kind::bit:
      return 3;
    case Kind::nVarChar:
      return 2;
    case Kind::varChar:
      return 1;
  }
  return 0;
}

std::string_view operationName(Arithmetic operation) {
  constexpr std::array<std::string_view, 5> names = {"add", "subtract", "multiply", "divide", "modulo"};
  return names[static_cast<std::size_t>(operation)];
}

int widthLimit(Kind kind) {
  return kind == Kind::nVarChar ? maxNVarChar : maxVarChar;
}

Type joinedText(const Type& left, const Type& right) {
  Type result = precedence(left.kind) >= precedence(right.kind) ? left : right;
  const bool unlimited = left.width == Type::maxWidth || right.width == Type::maxWidth;
  result.width = unlimited ? Type::maxWidth : std::min(left.width + right.width, widthLimit(result.kind));
  return result;
}

// For sums and for the common type of several decimals: beyond 38 digits decimals are dropped, integral digits kept.
Type decimalWithin38(int integral, int scale) {
  const int precision = std::min(integral + scale, maxPrecision);
  return decimalType(precision, std::min(scale, std::max(0, precision - integral)));
}

// For products and quotients: beyond 38 digits decimals are dropped down to six.
Type reducedTo38(int precision, int scale) {
  if (precision <= maxPrecision) return decimalType(precision, scale);
  const int integral = precision - scale;
  return decimalType(maxPrecision, std::max(std::min(scale, 6), std::min(scale, maxPrecision - integral)));
}

Type decimalArithmetic(Arithmetic operation, const Type& left, const Type& right) {
  const int leftIntegral = left.precision - left.scale;
  const int rightIntegral = right.precision - right.scale;
  const int scale = std::max(left.scale, right.scale);
  switch (operation) {
    case Arithmetic::add:
    case Arithmetic::subtract: {
      const int integral = std::max(leftIntegral, rightIntegral);
      const int precision = integral + scale + 1;
      // One more digit for the carry; beyond 38 digits it is the first to be dropped.
      if (precision <= maxPrecision) return decimalType(precision, scale);
      return decimalType(maxPrecision, std::min(scale, maxPrecision - integral));
    }
    case Arithmetic::multiply:
      return reducedTo38(left.precision + right.precision + 1, left.scale + right.scale);
    case Arithmetic::divide: {
      const int quotientScale = std::max(6, left.scale + right.precision + 1);
      return reducedTo38(leftIntegral + right.scale + quotientScale, quotientScale);
    }
    case Arithmetic::remainder:
      return decimalWithin38(std::min(leftIntegral, rightIntegral), scale);
  }
  return left;
}

// The type that one side is converted to before the operation. A literal NULL takes the type of the other side.
Type converted(const Operand& operand, const Operand& other) {
  if (operand.isNullLiteral) return other.isNullLiteral ? intType() : other.type;
  if (other.isNullLiteral) return operand.type;
  const Type& type = operand.type;
  const Type& partner = other.type;
  if (precedence(partner.kind) <= precedence(type.kind)) return type;
  if (isText(type) && isText(partner)) return type;
  if (isText(type)) return partner;
  return isExact(partner) ? type : partner;
}

}  // namespace

bool isText(const Type& type) {
  return type.kind == Kind::nVarChar || type.kind == Kind::varChar;
}

bool isExact(const Type& type) {
  switch (type.kind) {
    case Kind::integer:
    case Kind::bigInt:
    case Kind::bit:
    case Kind::decimal:
    case Kind::money:
      return true;
    default:
      return false;
  }
}

bool fitsInt64(const Type& type) {
  return type.kind != Kind::decimal || type.precision <= 18;
}

Type asDecimal(const Operand& operand) {
  switch (operand.type.kind) {
    case Kind::integer:
      return decimalType(operand.literalDigits > 0 ? operand.literalDigits : 10, 0);
    case Kind::bigInt:
      return decimalType(19, 0);
    case Kind::bit:
      return decimalType(1, 0);
    case Kind::money:
      return decimalType(19, 4);
    default:
      return operand.type;
  }
}

Type arithmeticOperandType(Arithmetic operation, const Operand& operand, const Operand& other) {
  if (operation == Arithmetic::add && isText(operand.type) && isText(other.type)) return operand.type;
  return converted(operand, other);
}

Type arithmeticType(Arithmetic operation, const Operand& leftOperand, const Operand& rightOperand) {
  Operand left = leftOperand;
  Operand right = rightOperand;
  left.type = converted(leftOperand, rightOperand);
  right.type = converted(rightOperand, leftOperand);
  const Kind higher = precedence(left.type.kind) >= precedence(right.type.kind) ? left.type.kind : right.type.kind;
  switch (higher) {
    case Kind::nVarChar:
    case Kind::varChar:
      if (operation == Arithmetic::add) return joinedText(left.type, right.type);
      if (left.type.kind == right.type.kind) throw errors::invalidOperand(left.type, operationName(operation));
      throw errors::incompatible(left.type, right.type, operationName(operation));
    case Kind::dateTime:
      if (operation == Arithmetic::add || operation == Arithmetic::subtract) return dateTimeType();
      throw errors::invalidOperand(dateTimeType(), operationName(operation));
    case Kind::real:
      if (operation == Arithmetic::remainder) {
        throw errors::incompatible(leftOperand.type, rightOperand.type, operationName(operation));
      }
      return floatType();
    case Kind::decimal:
      return decimalArithmetic(operation, asDecimal(left), asDecimal(right));
    case Kind::money:
      return moneyType();
    case Kind::bigInt:
      return bigIntType();
    case Kind::bit:
      throw errors::invalidOperand(bitType(), operationName(operation));
    case Kind::integer:
      break;
  }
  return intType();
}

Type commonType(std::span<const Operand> branches) {
  const Operand* highest = nullptr;
  for (const Operand& branch : branches) {
    if (branch.isNullLiteral) continue;
    if (highest == nullptr || precedence(branch.type.kind) > precedence(highest->type.kind)) highest = &branch;
  }
  if (highest == nullptr) return intType();
  Type result = highest->type;
  if (result.kind == Kind::decimal) {
    int integral = 0;
    int scale = 0;
    for (const Operand& branch : branches) {
      if (branch.isNullLiteral || !isExact(branch.type)) continue;
      const Type decimal = asDecimal(branch);
      integral = std::max(integral, decimal.precision - decimal.scale);
      scale = std::max(scale, decimal.scale);
    }
    result = decimalWithin38(integral, scale);
  } else if (isText(result)) {
    for (const Operand& branch : branches) {
      if (!branch.isNullLiteral) result.width = std::max(result.width, branch.type.width);
    }
    if (result.width != Type::maxWidth) result.width = std::min(result.width, widthLimit(result.kind));
  }
  return result;
}

Type comparisonType(const Operand& left, const Operand& right) {
  const std::array<Operand, 2> sides = {left, right};
  return commonType(sides);
}

Type isNullType(const Operand& checkedOperand, const Operand& replacement) {
  if (!checkedOperand.isNullLiteral) return checkedOperand.type;
  return replacement.isNullLiteral ? intType() : replacement.type;
}

Type aggregateType(Aggregate aggregate, const Type& argument) {
  switch (aggregate) {
    case Aggregate::count:
      return intType();
    case Aggregate::min:
    case Aggregate::max:
      if (argument.kind == Kind::bit) {
        throw errors::invalidOperand(argument, aggregate == Aggregate::min ? "min" : "max");
      }
      return argument;
    case Aggregate::sum:
    case Aggregate::avg:
      break;
  }
  switch (argument.kind) {
    case Kind::integer:
    case Kind::bigInt:
    case Kind::money:
    case Kind::real:
      return argument;
    case Kind::decimal:
      return decimalType(maxPrecision, aggregate == Aggregate::sum ? argument.scale : std::max(argument.scale, 6));
    default:
      throw errors::invalidOperand(argument, aggregate == Aggregate::sum ? "sum" : "avg");
  }
}

Type numberLiteralType(std::string_view literal) {
  if (literal.find_first_of("eE") != std::string_view::npos) return floatType();
  const std::size_t point = literal.find('.');
  std::string_view whole = literal.substr(0, point);
  whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
  if (point == std::string_view::npos && (whole.size() < 10 || (whole.size() == 10 && whole <= "2147483647"))) {
    return intType();
  }
  const std::size_t scale = point == std::string_view::npos ? 0 : literal.size() - point - 1;
  const std::size_t precision = whole.size() + scale;
  if (precision > static_cast<std::size_t>(maxPrecision)) {
    throw SqlError(1007, "The number '" + std::string(literal) +
                             "' is out of the range for numeric representation (maximum precision 38).");
  }
  return decimalType(std::max(1, static_cast<int>(precision)), static_cast<int>(scale));
}

Type implicitTextType(const Type& type) {
  switch (type.kind) {
    case Kind::integer:
      return varCharType(12);
    case Kind::bigInt:
      return varCharType(24);
    case Kind::bit:
      return varCharType(1);
    case Kind::decimal:
      return varCharType(41);
    case Kind::money:
    case Kind::dateTime:
      return varCharType(30);
    case Kind::real:
      return varCharType(53);
    default:
      return type;
  }
}

void checkAssignment(const Type& from, const Type& to) {
  const bool dateIntoNumber = from.kind == Kind::dateTime && !isText(to) && to.kind != Kind::dateTime;
  const bool moneyIntoText = from.kind == Kind::money && isText(to);
  if (dateIntoNumber || moneyIntoText) {
    throw errors::explicitConversionNeeded(from, to);
  }
}

}  // namespace quillon::tsql
