// TokenReader (tokens, names, types) and ExpressionParser.
#include <algorithm>
#include <array>

#include "frame/text.h"
#include "workbench/tsql/syntax/literals.h"
#include "workbench/tsql/syntax/parser_core.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/text.h"

namespace quillon::tsql {

const Token& TokenReader::peek(std::size_t ahead) const {
  return tokens_[std::min(position_ + ahead, tokens_.size() - 1)];
}

const Token& TokenReader::next() {
  const Token& token = peek();
  if (position_ + 1 < tokens_.size()) ++position_;
  return token;
}

bool TokenReader::isWordAt(std::size_t ahead, std::string_view word) const {
  return peek(ahead).kind == TokenKind::word && equalIgnoringCase(peek(ahead).text, word);
}

bool TokenReader::isSymbolAt(std::size_t ahead, std::string_view symbol) const {
  return peek(ahead).kind == TokenKind::symbol && peek(ahead).text == symbol;
}

bool TokenReader::acceptWord(std::string_view word) {
  if (!isWord(word)) return false;
  next();
  return true;
}

bool TokenReader::acceptSymbol(std::string_view symbol) {
  if (!isSymbol(symbol)) return false;
  next();
  return true;
}

void TokenReader::expectWord(std::string_view word) {
  if (!acceptWord(word)) syntaxError();
}

void TokenReader::expectSymbol(std::string_view symbol) {
  if (!acceptSymbol(symbol)) syntaxError();
}

void TokenReader::expectEnd() const {
  if (!atEnd()) syntaxError();
}

void TokenReader::syntaxError() const {
  // At the end of the batch the last token is what the error is near to.
  const Token& token = atEnd() && position_ > 0 ? tokens_[position_ - 1] : peek();
  const std::string shown =
      token.kind == TokenKind::quotedName || token.kind == TokenKind::text || token.kind == TokenKind::nationalText
          ? token.value
          : token.text;
  if (token.kind == TokenKind::word && isReserved(token.text)) {
    throw SqlError(156, "Incorrect syntax near the keyword '" + shown + "'.", token.line, token.text);
  }
  throw SqlError(102, "Incorrect syntax near '" + shown + "'.", token.line, token.text);
}

void TokenReader::refuse(const std::string& construct) const {
  throw SqlError(40510,
                 "The embedded engine does not support " + construct +
                     ". Rewrite the statement without it, or run it on a real server.",
                 peek().line, peek().text);
}

void TokenReader::countLink() {
  if (++links_ > mostLinks) refuseDepth();
}

void TokenReader::refuseDepth() const {
  throw SqlError(191,
                 "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller "
                 "queries.",
                 peek().line, peek().text);
}

std::string TokenReader::upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return result;
}

bool TokenReader::isNameAt(std::size_t ahead) const {
  const Token& token = peek(ahead);
  if (token.kind == TokenKind::quotedName) return true;
  return token.kind == TokenKind::word && !isReserved(token.text);
}

std::string TokenReader::name() {
  if (!isNameAt(0)) syntaxError();
  if (peek().text.starts_with('@')) refuse("variables (" + peek().text + ")");
  const Token& token = next();
  std::string result = token.kind == TokenKind::quotedName ? token.value : token.text;
  if (result.empty()) {
    throw SqlError(1038, "An object or column name is missing or empty. Name each object and column.", token.line,
                   token.text);
  }
  return result;
}

std::vector<std::string> TokenReader::nameList() {
  std::vector<std::string> names;
  expectSymbol("(");
  do {
    names.push_back(name());
  } while (acceptSymbol(","));
  expectSymbol(")");
  return names;
}

std::vector<std::string> TokenReader::dottedName() {
  std::vector<std::string> parts{name()};
  while (acceptSymbol(".")) {
    if (isSymbol(".")) {
      parts.emplace_back();
    } else {
      parts.push_back(name());
    }
  }
  return parts;
}

ObjectName TokenReader::objectName() {
  ObjectName result;
  result.place = place();
  const std::vector<std::string> parts = dottedName();
  for (std::size_t i = 0; i < parts.size(); ++i)
    result.written += (i == 0 ? "" : ".") + parts[i];
  result.name = parts.back();
  if (parts.size() > 3) {
    throw SqlError(117, "The object name '" + result.written + "' contains more than the maximum number of prefixes.",
                   result.place.line, result.place.token);
  }
  const std::string schema = parts.size() > 1 ? parts[parts.size() - 2] : "";
  if (!schema.empty() && !equalIgnoringCase(schema, "dbo") && !equalIgnoringCase(schema, "sys")) {
    throw SqlError(208, "Invalid object name '" + result.written + "'.", result.place.line, result.written);
  }
  if (parts.size() == 3) result.database = parts[0];
  return result;
}

std::int64_t TokenReader::signedInteger() {
  const bool negative = acceptSymbol("-");
  if (peek().kind != TokenKind::integer) syntaxError();
  const auto number = text::wholeNumber<std::int64_t>(peek().text);
  if (!number) syntaxError();
  next();
  return negative ? -*number : *number;
}

Type TokenReader::typeName(bool isColumn) {
  if (!isNameAt(0)) syntaxError();
  const Place where = place();
  const std::string written = name();
  std::vector<int> arguments;
  bool maximal = false;
  if (isSymbol("(")) {
    next();
    do {
      if (acceptWord("max")) {
        maximal = true;
      } else {
        arguments.push_back(static_cast<int>(std::clamp<std::int64_t>(signedInteger(), -1, 1'000'000)));
      }
    } while (acceptSymbol(","));
    expectSymbol(")");
  }
  const auto is = [&](std::string_view type) { return equalIgnoringCase(written, type); };
  const auto invalid = [&](int number, const std::string& message) {
    throw SqlError(number, message, where.line, where.token);
  };
  Type type;
  if (is("decimal") || is("numeric") || is("dec")) {
    type.kind = Kind::decimal;
    type.precision = arguments.empty() ? 18 : arguments[0];
    type.scale = arguments.size() > 1 ? arguments[1] : 0;
    if (type.precision < 1 || type.precision > 38) {
      invalid(2750, "Column or parameter: Specified column precision " + std::to_string(type.precision) +
                        " is greater than the maximum precision of 38.");
    }
    if (type.scale < 0 || type.scale > type.precision) {
      invalid(183, "The scale (" + std::to_string(type.scale) + ") must be within the range 0 to " +
                       std::to_string(type.precision) + ".");
    }
    if (arguments.size() > 2) syntaxError();
    return type;
  }
  if (is("nvarchar") || is("varchar")) {
    type.kind = is("nvarchar") ? Kind::nVarChar : Kind::varChar;
    type.width = maximal ? Type::maxWidth : !arguments.empty() ? arguments[0] : isColumn ? 1 : 30;
    const int limit = type.kind == Kind::nVarChar ? 4000 : 8000;
    if (!maximal && (type.width < 1 || type.width > limit)) {
      invalid(131, "The size (" + std::to_string(type.width) + ") given to the type '" + written +
                       "' exceeds the maximum allowed for any data type (" + std::to_string(limit) + ").");
    }
    return type;
  }
  struct Plain {
    std::string_view name;
    Kind kind;
  };
  constexpr auto plain = std::to_array<Plain>({{"int", Kind::integer},
                                               {"integer", Kind::integer},
                                               {"bigint", Kind::bigInt},
                                               {"bit", Kind::bit},
                                               {"money", Kind::money},
                                               {"float", Kind::real},
                                               {"datetime", Kind::dateTime}});
  for (const Plain& candidate : plain) {
    if (!is(candidate.name)) continue;
    const bool takesWidth = candidate.kind == Kind::real;
    if (maximal || arguments.size() > (takesWidth ? 1U : 0U)) syntaxError();
    if (takesWidth && !arguments.empty() && arguments[0] < 25)
      refuse("the type float(" + std::to_string(arguments[0]) + ")");
    type.kind = candidate.kind;
    return type;
  }
  constexpr auto other = std::to_array<std::string_view>({"smallint",
                                                          "tinyint",
                                                          "char",
                                                          "nchar",
                                                          "text",
                                                          "ntext",
                                                          "date",
                                                          "time",
                                                          "datetime2",
                                                          "smalldatetime",
                                                          "smallmoney",
                                                          "real",
                                                          "uniqueidentifier",
                                                          "binary",
                                                          "varbinary",
                                                          "image",
                                                          "xml",
                                                          "sql_variant",
                                                          "timestamp",
                                                          "sysname"});
  if (std::any_of(other.begin(), other.end(), is)) {
    throw SqlError(40510,
                   "The embedded engine does not support the type " + written +
                       ". Use int, bigint, bit, decimal, money, float, datetime, nvarchar or varchar.",
                   where.line, where.token);
  }
  throw SqlError(243, "Type " + written + " is not a defined system type.", where.line, where.token);
}

ExpressionPtr ExpressionParser::make(ExpressionKind kind) const {
  auto result = std::make_unique<Expression>();
  result->kind = kind;
  result->place = place();
  return result;
}

ExpressionPtr ExpressionParser::binary(ExpressionKind kind, const Token& op, ExpressionPtr left, ExpressionPtr right) {
  countLink();
  auto result = std::make_unique<Expression>();
  result->kind = kind;
  result->place = {op.line, op.text};
  result->op = op.text;
  result->operands.push_back(std::move(left));
  result->operands.push_back(std::move(right));
  return result;
}

void ExpressionParser::requireValue(const Expression& expression) const {
  if (expression.isCondition()) syntaxError();
}

void ExpressionParser::requireCondition(const Expression& expression) const {
  if (expression.isCondition()) return;
  const std::string near = peek().kind == TokenKind::end ? expression.place.token : peek().text;
  throw SqlError(
      4145,
      "An expression of non-boolean type specified in a context where a condition is expected, near '" + near + "'.",
      peek().line, near);
}

ExpressionPtr ExpressionParser::value() {
  ExpressionPtr result = sum();
  requireValue(*result);
  return result;
}

ExpressionPtr ExpressionParser::condition() {
  ExpressionPtr result = disjunction();
  requireCondition(*result);
  return result;
}

ExpressionPtr ExpressionParser::disjunction() {
  ExpressionPtr left = conjunction();
  while (isWord("or")) {
    requireCondition(*left);
    const Token& op = next();
    ExpressionPtr right = conjunction();
    requireCondition(*right);
    left = binary(ExpressionKind::logicalOr, op, std::move(left), std::move(right));
  }
  return left;
}

ExpressionPtr ExpressionParser::conjunction() {
  ExpressionPtr left = negation();
  while (isWord("and")) {
    requireCondition(*left);
    const Token& op = next();
    ExpressionPtr right = negation();
    requireCondition(*right);
    left = binary(ExpressionKind::logicalAnd, op, std::move(left), std::move(right));
  }
  return left;
}

ExpressionPtr ExpressionParser::negation() {
  if (!isWord("not")) return predicate();
  const Level level(*this);
  ExpressionPtr result = make(ExpressionKind::logicalNot);
  next();
  result->operands.push_back(negation());
  requireCondition(*result->operands[0]);
  return result;
}

ExpressionPtr ExpressionParser::predicate() {
  if (isWord("exists")) {
    ExpressionPtr result = make(ExpressionKind::exists);
    next();
    expectSymbol("(");
    result->query = query();
    expectSymbol(")");
    return result;
  }
  if (isWord("contains") || isWord("freetext")) refuse("full-text search (" + upper(peek().text) + ")");
  return predicateAfter(sum());
}

ExpressionPtr ExpressionParser::predicateAfter(ExpressionPtr left) {
  constexpr auto comparisons = std::to_array<std::string_view>({"=", "<>", "<", ">", "<=", ">="});
  const Token op = peek();
  if (op.kind == TokenKind::symbol && std::find(comparisons.begin(), comparisons.end(), op.text) != comparisons.end()) {
    requireValue(*left);
    next();
    if (isWord("all") || isWord("any") || isWord("some")) refuse("comparison with " + upper(peek().text));
    ExpressionPtr right = sum();
    requireValue(*right);
    return binary(ExpressionKind::comparison, op, std::move(left), std::move(right));
  }
  if (isWord("is")) {
    requireValue(*left);
    ExpressionPtr result = make(ExpressionKind::isNull);
    next();
    result->negated = acceptWord("not");
    expectWord("null");
    result->operands.push_back(std::move(left));
    return result;
  }
  const bool negated = isWord("not") && (isWordAt(1, "in") || isWordAt(1, "like") || isWordAt(1, "between"));
  if (!negated && !isWord("in") && !isWord("like") && !isWord("between")) return left;
  requireValue(*left);
  if (negated) next();
  if (isWord("in")) return membership(std::move(left), negated);
  const bool isLike = isWord("like");
  ExpressionPtr result = make(isLike ? ExpressionKind::like : ExpressionKind::between);
  next();
  result->negated = negated;
  result->operands.push_back(std::move(left));
  result->operands.push_back(value());
  if (!isLike) {
    expectWord("and");
    result->operands.push_back(value());
  } else if (acceptWord("escape")) {
    result->operands.push_back(value());
  }
  return result;
}

ExpressionPtr ExpressionParser::membership(ExpressionPtr left, bool negated) {
  ExpressionPtr result = make(ExpressionKind::inList);
  next();
  result->negated = negated;
  result->operands.push_back(std::move(left));
  if (!isSymbol("(")) syntaxError();
  if (isQueryInParentheses()) {
    next();
    result->kind = ExpressionKind::inQuery;
    result->query = query();
  } else {
    next();
    do {
      result->operands.push_back(value());
    } while (acceptSymbol(","));
  }
  expectSymbol(")");
  return result;
}

ExpressionPtr ExpressionParser::sum() {
  ExpressionPtr left = product();
  while (isSymbol("+") || isSymbol("-")) {
    requireValue(*left);
    const Token& op = next();
    ExpressionPtr right = product();
    requireValue(*right);
    left = binary(ExpressionKind::arithmetic, op, std::move(left), std::move(right));
  }
  if (isSymbol("&") || isSymbol("|") || isSymbol("^")) refuse("the operator " + peek().text);
  return left;
}

ExpressionPtr ExpressionParser::product() {
  ExpressionPtr left = unary();
  while (isSymbol("*") || isSymbol("/") || isSymbol("%")) {
    requireValue(*left);
    const Token& op = next();
    ExpressionPtr right = unary();
    requireValue(*right);
    left = binary(ExpressionKind::arithmetic, op, std::move(left), std::move(right));
  }
  return left;
}

ExpressionPtr ExpressionParser::unary() {
  const Level level(*this);
  if (isSymbol("~")) refuse("the operator ~");
  if (acceptSymbol("+")) {
    ExpressionPtr operand = unary();
    requireValue(*operand);
    return operand;
  }
  if (!isSymbol("-")) return primary();
  ExpressionPtr result = make(ExpressionKind::negate);
  next();
  result->operands.push_back(unary());
  requireValue(*result->operands[0]);
  return result;
}

ExpressionPtr ExpressionParser::primary() {
  const Token& token = peek();
  switch (token.kind) {
    case TokenKind::integer:
    case TokenKind::decimal:
    case TokenKind::real:
    case TokenKind::money:
    case TokenKind::text:
    case TokenKind::nationalText:
      return literal();
    case TokenKind::binary:
      refuse("binary constants (" + token.text + ")");
    case TokenKind::symbol:
      if (isSymbol("(")) return parenthesized();
      syntaxError();
    case TokenKind::end:
      syntaxError();
    case TokenKind::quotedName:
      return columnOrFunction();
    case TokenKind::word:
      break;
  }
  if (token.text.starts_with('@')) refuse("variables (" + token.text + ")");
  if (isWord("null")) {
    ExpressionPtr result = make(ExpressionKind::null);
    next();
    return result;
  }
  if (isWord("case")) return caseExpression();
  if (isSymbolAt(1, "(")) {
    if (isWord("cast")) return cast();
    if (isWord("convert")) return convert();
    if (isWord("identity")) return identity();
    if (isWord("try_convert") || isWord("try_cast")) refuse(upper(token.text));
    if (isWord("left") || isWord("right") || isWord("coalesce") || isWord("nullif")) return columnOrFunction();
  }
  if (isWord("current_timestamp")) {
    ExpressionPtr result = make(ExpressionKind::function);
    result->name = {"getdate"};
    next();
    return result;
  }
  if (isReserved(token.text)) syntaxError();
  return columnOrFunction();
}

ExpressionPtr ExpressionParser::literal() {
  ExpressionPtr result = make(ExpressionKind::literal);
  result->begin = peek().begin;
  const Token& token = next();
  Literal parsed = parseLiteral(token);
  result->literal = std::move(parsed.value);
  result->type = parsed.type;
  if (isWord("collate")) refuse("COLLATE");
  return result;
}

bool ExpressionParser::isQueryInParentheses() const {
  std::size_t depth = 0;
  while (isSymbolAt(depth, "("))
    ++depth;
  return depth > 0 && isWordAt(depth, "select");
}

ExpressionPtr ExpressionParser::parenthesized() {
  // ((select ..)) is a sub-query, ((select ..) + 1) is a value that begins with one. So brackets hold a value unless
  // SELECT follows directly.
  if (isWordAt(1, "select")) {
    ExpressionPtr result = make(ExpressionKind::scalarQuery);
    next();
    result->query = query();
    expectSymbol(")");
    return result;
  }
  next();
  ExpressionPtr result = disjunction();
  expectSymbol(")");
  return result;
}

ExpressionPtr ExpressionParser::caseExpression() {
  ExpressionPtr result = make(ExpressionKind::searchedCase);
  next();
  if (!isWord("when")) {
    result->kind = ExpressionKind::simpleCase;
    result->operands.push_back(value());
  }
  if (!isWord("when")) syntaxError();
  while (acceptWord("when")) {
    result->operands.push_back(result->kind == ExpressionKind::simpleCase ? value() : condition());
    expectWord("then");
    result->operands.push_back(value());
  }
  if (acceptWord("else")) result->operands.push_back(value());
  expectWord("end");
  return result;
}

ExpressionPtr ExpressionParser::cast() {
  ExpressionPtr result = make(ExpressionKind::cast);
  next();
  expectSymbol("(");
  result->operands.push_back(value());
  expectWord("as");
  result->type = typeName(false);
  expectSymbol(")");
  return result;
}

// CONVERT(type, value [, style])
ExpressionPtr ExpressionParser::convert() {
  ExpressionPtr result = make(ExpressionKind::cast);
  next();
  expectSymbol("(");
  result->type = typeName(false);
  expectSymbol(",");
  result->operands.push_back(value());
  if (acceptSymbol(",")) result->operands.push_back(value());
  expectSymbol(")");
  return result;
}

// IDENTITY(type [, seed, increment])
ExpressionPtr ExpressionParser::identity() {
  ExpressionPtr result = make(ExpressionKind::identity);
  next();
  expectSymbol("(");
  result->type = typeName(false);
  if (acceptSymbol(",")) {
    result->seed = signedInteger();
    expectSymbol(",");
    result->increment = signedInteger();
  }
  expectSymbol(")");
  return result;
}

ExpressionPtr ExpressionParser::columnOrFunction() {
  ExpressionPtr result = make(ExpressionKind::column);
  if (isSymbolAt(1, "(") && peek().kind == TokenKind::word) {
    result->name = {next().text};
  } else {
    result->name = dottedName();
  }
  std::string& token = result->place.token;
  token.clear();
  for (const std::string& part : result->name)
    token += (token.empty() ? "" : ".") + part;
  if (isSymbol("(")) return functionCall(std::move(result));
  if (isWord("collate")) refuse("COLLATE");
  return result;
}

ExpressionPtr ExpressionParser::functionCall(ExpressionPtr call) {
  call->kind = ExpressionKind::function;
  expectSymbol("(");
  if (acceptSymbol("*")) {
    call->star = true;
  } else if (!isSymbol(")")) {
    call->distinct = acceptWord("distinct");
    if (!call->distinct) acceptWord("all");
    // DATEADD(month, 1, d): the date part is a word; the parser keeps it as a column of that name.
    do {
      call->operands.push_back(value());
    } while (acceptSymbol(","));
  }
  expectSymbol(")");
  if (isWord("over")) refuse("window functions (OVER)");
  return call;
}

}  // namespace quillon::tsql
