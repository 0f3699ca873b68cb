#include "workbench/tsql/values/value_errors.h"

#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql::errors {
namespace {

std::string text(std::initializer_list<std::string_view> parts) {
  std::string result;
  for (const std::string_view part : parts)
    result += part;
  return result;
}

}  // namespace

std::string_view systemName(const Type& type) {
  switch (type.kind) {
    case Kind::integer:
      return "int";
    case Kind::bigInt:
      return "bigint";
    case Kind::bit:
      return "bit";
    case Kind::decimal:
      return "numeric";
    case Kind::money:
      return "money";
    case Kind::real:
      return "float";
    case Kind::dateTime:
      return "datetime";
    case Kind::nVarChar:
      return "nvarchar";
    case Kind::varChar:
      return "varchar";
  }
  return "";
}

SqlError divideByZero() {
  return {8134, "Divide by zero error encountered."};
}
SqlError overflow(std::string_view from, std::string_view to) {
  return {8115, text({"Arithmetic overflow error converting ", from, " to data type ", to, "."})};
}
SqlError conversionFailed(const Type& from, std::string_view value, const Type& to) {
  return {245, text({"Conversion failed when converting the ", systemName(from), " value '", value, "' to data type ",
                     systemName(to), "."})};
}
SqlError errorConverting(const Type& from, const Type& to) {
  return {8114, text({"Error converting data type ", systemName(from), " to ", systemName(to), "."})};
}
SqlError textOverflowsInt(const Type& from, std::string_view value) {
  return {248, text({"The conversion of the ", systemName(from), " value '", value, "' overflowed an int column."})};
}
SqlError badMoneyText() {
  return {235, "Cannot convert a char value to money. The char value has incorrect syntax."};
}
SqlError noRoomForMoney(const Type& to) {
  return {234, text({"There is insufficient result space to convert a money value to ", systemName(to), "."})};
}
SqlError notADate() {
  return {241, "Conversion failed when converting date and/or time from character string."};
}
SqlError dateOutOfRange(const Type& from) {
  return {242, text({"The conversion of a ", systemName(from),
                     " data type to a datetime data type resulted in an out-of-range value."})};
}
SqlError dateArithmeticOverflow() {
  return {517, "Adding a value to a 'datetime' column caused an overflow."};
}
SqlError dateDifferenceOverflow() {
  return {535,
          "The datediff function resulted in an overflow. The number of dateparts separating two date/time instances "
          "is too large. Try to use datediff with a less precise datepart."};
}
SqlError badStyle(int style, const Type& from, const Type& to) {
  return {281, text({std::to_string(style), " is not a valid style number when converting from ", systemName(from),
                     " to a ", isText(to) ? "character string" : systemName(to), "."})};
}
SqlError wouldBeTruncated(std::string_view table, std::string_view column, std::string_view value) {
  if (table.empty()) return {8152, "String or binary data would be truncated."};
  return {2628, text({"String or binary data would be truncated in table '", table, "', column '", column,
                      "'. Truncated value: '", value, "'."})};
}
SqlError invalidOperand(const Type& type, std::string_view operation) {
  return {8117, text({"Operand data type ", systemName(type), " is invalid for ", operation, " operator."})};
}
SqlError incompatible(const Type& left, const Type& right, std::string_view operation) {
  return {402, text({"The data types ", systemName(left), " and ", systemName(right), " are incompatible in the ",
                     operation, " operator."})};
}
SqlError explicitConversionNeeded(const Type& from, const Type& to) {
  return {257, text({"Implicit conversion from data type ", systemName(from), " to ", systemName(to),
                     " is not allowed. Use the CONVERT function to run this query."})};
}
SqlError conversionNotAllowed(const Type& from, const Type& to) {
  return {529,
          text({"Explicit conversion from data type ", systemName(from), " to ", systemName(to), " is not allowed."})};
}
SqlError invalidLength(std::string_view function) {
  return {537, text({"Invalid length parameter passed to the ", function, " function."})};
}
SqlError invalidEscape(std::string_view escape) {
  return {506, text({"The invalid escape character \"", escape, "\" was specified in a LIKE predicate."})};
}

}  // namespace quillon::tsql::errors
