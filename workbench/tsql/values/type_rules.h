// The types of expressions, by SQL Server's rules. A combination that SQL Server refuses throws SqlError with its
// number (402, 8117, 206, 257).
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

inline Type intType() {
  return {Kind::integer};
}
inline Type bigIntType() {
  return {Kind::bigInt};
}
inline Type bitType() {
  return {Kind::bit};
}
inline Type decimalType(int precision, int scale) {
  return {Kind::decimal, precision, scale};
}
inline Type moneyType() {
  return {Kind::money};
}
inline Type floatType() {
  return {Kind::real};
}
inline Type dateTimeType() {
  return {Kind::dateTime};
}
inline Type nVarCharType(int width) {
  return {Kind::nVarChar, 0, 0, width};
}
inline Type varCharType(int width) {
  return {Kind::varChar, 0, 0, width};
}

bool isText(const Type& type);   // nvarchar, varchar
bool isExact(const Type& type);  // int, bigint, bit, decimal, money: stored as scaled units
// Whether the units of every value of the type fit in 64 bits, so that the file stores INTEGERs only.
bool fitsInt64(const Type& type);

// An operand and, for an integer literal, its count of digits: beside a decimal it counts as decimal(digits, 0),
// not as decimal(10, 0). A literal NULL has any type (isNullLiteral) and takes that of its partner.
struct Operand {
  Type type;
  int literalDigits = 0;
  bool isNullLiteral = false;
};

// The decimal that an exact type becomes beside a decimal: int (10,0), bigint (19,0), bit (1,0), money (19,4).
Type asDecimal(const Operand& operand);

enum class Arithmetic { add, subtract, multiply, divide, remainder };

// The type of `left op right`. Two texts with + join (widths add, at most 4000 or 8000; maxWidth stays); a text beside
// a number or a date is converted to the partner's type first; money beside int or money stays money, beside decimal it
// is decimal; a datetime plus or minus a number is a datetime.
Type arithmeticType(Arithmetic operation, const Operand& left, const Operand& right);
// The type to which an operand is converted before arithmetic with the other: text beside an int becomes int, beside a
// decimal(p,s) that decimal, beside money money; exact beside float becomes float; everything beside datetime becomes
// datetime. Exact types stay as they are (the exact_* functions take mixed scales).
Type arithmeticOperandType(Arithmetic operation, const Operand& operand, const Operand& other);

// The type in which two expressions are compared: the higher one by precedence (datetime, float, decimal, money,
// bigint, int, bit, nvarchar, varchar), wide enough for both when they are decimals or texts.
Type comparisonType(const Operand& left, const Operand& right);

// The type of Case, Coalesce, Union and a list of In: the highest by precedence, and of its family the widest. Null
// literals do not count; int when there is nothing else.
Type commonType(std::span<const Operand> branches);
// IsNull(a, b): a's type; b's when a is a literal NULL (int when both are).
Type isNullType(const Operand& checked, const Operand& replacement);

enum class Aggregate { sum, avg, min, max, count };
// sum: int and bit... int, bigint bigint, decimal(p,s) decimal(38,s), money money, float float. avg: the same but
// decimal(38, max(s,6)). min and max: the argument's. count: int. Throws 8117 for text, datetime and bit under sum,
// avg.
Type aggregateType(Aggregate aggregate, const Type& argument);

// The literal's own type: int, or decimal(digits,0) beyond int's range; decimal(p,s) for a text with a point, leading
// zeros not counted ("1.50" is decimal(3,2), "0.1" decimal(1,1)); float with an exponent. The text is digits as the
// lexer found them, without sign. Throws 1007 for more than 38 digits.
Type numberLiteralType(std::string_view literal);

// The text type to which a value is converted where a text is wanted, as in left(i, 2) and len(i):
// int varchar(12), bigint varchar(24), bit varchar(1), decimal(p,s) varchar(41), money varchar(30), float varchar(53),
// datetime varchar(30); texts stay.
Type implicitTextType(const Type& type);

// Throws 257 when SQL Server wants an explicit Cast: money into a text, datetime into a number. All other pairs convert
// by themselves; Cast takes every pair.
void checkAssignment(const Type& from, const Type& to);

}  // namespace quillon::tsql
