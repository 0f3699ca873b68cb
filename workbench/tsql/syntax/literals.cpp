#include "workbench/tsql/syntax/literals.h"

#include <charconv>
#include <cmath>

#include "workbench/tsql/values/conversion.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

int widthOf(const std::string& value) {
  return static_cast<int>(text::width(value));
}

double parseReal(const Token& token) {
  double result = 0;
  const char* const end = token.text.data() + token.text.size();
  const auto [stopped, error] = std::from_chars(token.text.data(), end, result);
  if (error != std::errc() || stopped != end || !std::isfinite(result)) {
    throw SqlError(
        168, "The floating point value '" + token.text + "' is out of the range of computer representation (8 bytes).",
        token.line, token.text);
  }
  return result;
}

}  // namespace

Literal parseLiteral(const Token& token) {
  switch (token.kind) {
    case TokenKind::text:
      return {token.value, varCharType(widthOf(token.value))};
    case TokenKind::nationalText:
      return {token.value, nVarCharType(widthOf(token.value))};
    case TokenKind::money: {
      const std::string digits = token.text.substr(1);
      return {castValue(digits, varCharType(widthOf(digits)), moneyType()), moneyType()};
    }
    case TokenKind::real:
      return {parseReal(token), floatType()};
    default:
      break;
  }
  const Type type = numberLiteralType(token.text);
  const std::optional<Exact> exact = parseExact(token.text);
  if (!exact)
    throw SqlError(
        1007, "The number '" + token.text + "' is out of the range for numeric representation (maximum precision 38).",
        token.line, token.text);
  if (type.kind == Kind::integer) return {exact->units.toInt64(), type};
  return {*exact, type};
}

}  // namespace quillon::tsql
