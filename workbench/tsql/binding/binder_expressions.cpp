// Binder: values and conditions.
#include <algorithm>
#include <array>

#include "frame/text.h"
#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/binding/built_in_functions.h"
#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/text.h"

namespace quillon::tsql {
namespace {

constexpr auto aggregateNames = std::to_array<std::string_view>({"sum", "avg", "min", "max", "count", "count_big"});

bool isAggregate(const Expression& expression) {
  return expression.kind == ExpressionKind::function && expression.name.size() == 1 &&
         std::find(aggregateNames.begin(), aggregateNames.end(), text::foldCase(expression.name[0])) !=
             aggregateNames.end();
}

void absorb(Fragment& result, const Fragment& part) {
  result.bare.insert(result.bare.end(), part.bare.begin(), part.bare.end());
}

std::string dotted(const std::vector<std::string>& parts) {
  std::string result;
  for (std::size_t i = 0; i < parts.size(); ++i)
    result += (i == 0 ? "" : ".") + parts[i];
  return result;
}

// Whether `qualifier` (of one, two or three parts, the column not among them) names the source.
bool qualifies(const std::vector<std::string>& qualifier, const Source& source) {
  if (!equalIgnoringCase(qualifier.back(), source.aliasGiven ? source.alias : source.table)) return false;
  if (qualifier.size() == 1) return true;
  const std::string& schema = qualifier[qualifier.size() - 2];
  if (source.aliasGiven || !(schema.empty() || equalIgnoringCase(schema, "dbo"))) return false;
  return qualifier.size() == 2 || equalIgnoringCase(qualifier[0], source.database);
}

Arithmetic operationOf(std::string_view op) {
  switch (op[0]) {
    case '+':
      return Arithmetic::add;
    case '-':
      return Arithmetic::subtract;
    case '*':
      return Arithmetic::multiply;
    case '/':
      return Arithmetic::divide;
    default:
      return Arithmetic::remainder;
  }
}

// Errors of values/ have no line and token: this gives them those of the expression.
template <typename Action>
auto located(const Expression& expression, Action action) {
  try {
    return action();
  } catch (const SqlError& error) {
    if (error.line() != 0) throw;
    throw SqlError(error.number(), error.message(), expression.place.line, expression.place.token);
  }
}

void requireAggregatesAllowed(const Scope& scope, const Expression& expression) {
  if (scope.aggregatesAllowed) return;
  throw SqlError(
      147,
      "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING clause or "
      "a select list, and the column being aggregated is an outer reference.",
      expression.place.line, expression.place.token);
}

// The scope of the query that an aggregate is computed in: the one that its columns come from, which may be outside the
// query that it is written in.
const Scope& scopeOfAggregate(const Fragment& argument, const Scope& written) {
  const Scope* scope = &written;
  if (argument.bare.empty()) return *scope;
  while (scope->parent != nullptr &&
         std::ranges::none_of(argument.bare, [scope](const BareColumn& bare) { return bare.scope == scope; }))
    scope = scope->parent;
  return *scope;
}

}  // namespace

bool containsAggregate(const Expression& expression) {
  if (isAggregate(expression)) return true;
  return std::any_of(expression.operands.begin(), expression.operands.end(),
                     [](const ExpressionPtr& operand) { return operand && containsAggregate(*operand); });
}

bool containsQuery(const Expression& expression) {
  return expression.query != nullptr ||
         std::any_of(expression.operands.begin(), expression.operands.end(),
                     [](const ExpressionPtr& operand) { return operand && containsQuery(*operand); });
}

void requireGrouped(const Fragment& value, const Scope& scope, std::string_view clause) {
  if (!scope.grouped) return;
  for (const BareColumn& bare : value.bare) {
    if (bare.scope != &scope) continue;
    const int number = clause == "HAVING clause" ? 8121 : clause == "ORDER BY clause" ? 8127 : 8120;
    throw SqlError(number,
                   "Column '" + bare.name + "' is invalid in the " + std::string(clause) +
                       " because it is not contained in either an aggregate function or the GROUP BY clause.",
                   bare.place.line, bare.place.token);
  }
}

Fragment Binder::value(const Expression& expression, Scope& scope) {
  Fragment result = located(expression, [&] { return unboxed(expression, scope); });
  // NullIf and Case repeat their operand, so each level of nesting doubles the statement.
  constexpr std::size_t mostBytes = 4'000'000;
  if (!expression.operands.empty() && result.sql.size() > mostBytes) {
    throw SqlError(40510,
                   "The embedded engine does not support an expression that is nested in this way: " +
                       expression.place.token + " repeats what it is given too often. Compute a part of it beforehand.",
                   expression.place.line, expression.place.token);
  }
  if (scope.grouped && !result.bare.empty() &&
      std::find(scope.groups.begin(), scope.groups.end(), result.sql) != scope.groups.end()) {
    std::erase_if(result.bare, [&](const BareColumn& bare) { return bare.scope == &scope; });
  }
  return result;
}

Fragment Binder::unboxed(const Expression& expression, Scope& scope) {
  switch (expression.kind) {
    case ExpressionKind::null:
      return nullFragment();
    case ExpressionKind::literal:
      if (parameters_ != nullptr) parameters_->paste(expression.begin);
      return literalFragment(expression.literal, expression.type);
    case ExpressionKind::column:
      return column(expression, scope);
    case ExpressionKind::negate:
      return negate(value(*expression.operands[0], scope));
    case ExpressionKind::arithmetic:
      return arithmetic(operationOf(expression.op), value(*expression.operands[0], scope),
                        value(*expression.operands[1], scope));
    case ExpressionKind::function:
      return function(expression, scope);
    case ExpressionKind::cast:
      return castValue(expression, scope);
    case ExpressionKind::searchedCase:
    case ExpressionKind::simpleCase:
      return caseValue(expression, scope);
    case ExpressionKind::scalarQuery:
      return scalarQuery(expression, scope);
    case ExpressionKind::identity:
      throw SqlError(177, "The IDENTITY function can only be used when the SELECT statement has an INTO clause.",
                     expression.place.line, expression.place.token);
    default:
      throw SqlError(102, "Incorrect syntax near '" + expression.place.token + "'.", expression.place.line,
                     expression.place.token);
  }
}

Fragment Binder::column(const Expression& expression, Scope& scope) {
  const std::string& name = expression.name.back();
  const std::vector<std::string> qualifier(expression.name.begin(), expression.name.end() - 1);
  bool qualifierKnown = false;
  for (const Scope* level = &scope; level != nullptr; level = level->parent) {
    const Source* owner = nullptr;
    const OutputColumn* found = nullptr;
    for (const Source& source : level->sources) {
      if (!qualifier.empty() && !qualifies(qualifier, source)) continue;
      qualifierKnown = true;
      for (const OutputColumn& candidate : source.columns) {
        if (!equalIgnoringCase(candidate.name, name)) continue;
        if (found != nullptr) {
          throw SqlError(209, "Ambiguous column name '" + name + "'.", expression.place.line, expression.place.token);
        }
        found = &candidate;
        owner = &source;
      }
    }
    if (found == nullptr) {
      // The qualifier names a source of this query, so the outer ones are not searched.
      if (!qualifier.empty() && qualifierKnown) break;
      continue;
    }
    Fragment result = columnFragment(quoteName(owner->alias) + '.' + quoteName(found->name), found->type);
    result.magnitude = found->magnitude;
    result.mayOverflow = found->mayOverflow;
    result.notNull = found->notNull;
    const BareColumn bare{level, owner->alias + '.' + found->name, expression.place};
    result.bare.push_back(bare);
    for (const Scope* inner = &scope; inner != level; inner = inner->parent)
      inner->outerReferences.push_back(bare);
    return result;
  }
  if (!qualifier.empty() && !qualifierKnown) {
    throw SqlError(4104, "The multi-part identifier \"" + dotted(expression.name) + "\" could not be bound.",
                   expression.place.line, expression.place.token);
  }
  throw SqlError(207, "Invalid column name '" + name + "'.", expression.place.line, name);
}

Fragment Binder::castValue(const Expression& expression, Scope& scope) {
  int style = 0;
  if (expression.operands.size() > 1) {
    const Fragment given = value(*expression.operands[1], scope);
    if (!given.constant || !std::holds_alternative<std::int64_t>(*given.constant)) {
      throw SqlError(8116,
                     "Argument data type is invalid for argument 3 of convert function: give the style as an integer.",
                     expression.place.line, expression.place.token);
    }
    style = static_cast<int>(std::get<std::int64_t>(*given.constant));
  }
  return convert(value(*expression.operands[0], scope), expression.type, Conversion::cast, style);
}

Fragment Binder::caseValue(const Expression& expression, Scope& scope) {
  const bool simple = expression.kind == ExpressionKind::simpleCase;
  const std::size_t first = simple ? 1 : 0;
  const std::size_t count = expression.operands.size() - first;
  const bool hasElse = count % 2 == 1;
  std::vector<Fragment> whens, results;
  std::optional<Fragment> subject;
  if (simple) subject = value(*expression.operands[0], scope);
  for (std::size_t i = 0; i + 1 < count; i += 2) {
    const Expression& when = *expression.operands[first + i];
    if (simple) {
      const Fragment candidate = value(when, scope);
      Fragment test;
      test.sql = compare("=", *subject, candidate);
      absorb(test, *subject);
      absorb(test, candidate);
      whens.push_back(std::move(test));
    } else {
      whens.push_back(condition(when, scope));
    }
    results.push_back(value(*expression.operands[first + i + 1], scope));
  }
  if (hasElse) results.push_back(value(*expression.operands.back(), scope));
  if (std::all_of(results.begin(), results.end(), [](const Fragment& result) { return result.isNullLiteral; })) {
    throw SqlError(
        8133,
        "At least one of the result expressions in a CASE specification must be an expression other than the NULL "
        "constant.",
        expression.place.line, expression.place.token);
  }
  Fragment result;
  result.type = unify(results);
  result.sql = "CASE";
  for (std::size_t i = 0; i < results.size(); ++i) {
    result.sql += i < whens.size() ? " WHEN " + whens[i].sql + " THEN " : " ELSE ";
    result.sql += results[i].sql;
    result.magnitude = std::max(result.magnitude, results[i].magnitude);
    result.mayOverflow = result.mayOverflow || results[i].mayOverflow;
    if (i < whens.size()) absorb(result, whens[i]);
    absorb(result, results[i]);
  }
  result.sql += " END";
  return result;
}

Fragment Binder::scalarQuery(const Expression& expression, Scope& scope) {
  const BoundQuery inner = query(*expression.query, &scope, Naming::value);
  if (inner.columns.size() != 1) {
    throw SqlError(
        116, "Only one expression can be specified in the select list when the subquery is not introduced with EXISTS.",
        expression.place.line, expression.place.token);
  }
  Fragment result;
  result.sql = inner.oneRowAtMost ? "(" + inner.sql + ")" : "(SELECT single_row(value) FROM (" + inner.sql + "))";
  result.type = inner.columns[0].type;
  result.magnitude = inner.columns[0].magnitude;
  result.mayOverflow = inner.columns[0].mayOverflow;
  result.bare = inner.outerReferences;
  return result;
}

Fragment Binder::function(const Expression& expression, Scope& scope) {
  if (expression.name.size() > 1) return userFunction(expression);
  const std::string name = text::foldCase(expression.name[0]);
  if (isAggregate(expression)) return aggregateCall(name, expression, scope);
  if (expression.star || expression.distinct) {
    throw SqlError(102, "Incorrect syntax near '" + expression.name[0] + "'.", expression.place.line,
                   expression.name[0]);
  }
  constexpr auto datePartFirst = std::to_array<std::string_view>({"dateadd", "datediff", "datepart", "datename"});
  const bool skipFirst = std::find(datePartFirst.begin(), datePartFirst.end(), name) != datePartFirst.end();
  std::vector<Fragment> arguments;
  for (std::size_t i = 0; i < expression.operands.size(); ++i) {
    arguments.push_back(skipFirst && i == 0 ? Fragment() : value(*expression.operands[i], scope));
  }
  return scalarFunction(name, arguments, expression);
}

Fragment Binder::aggregateCall(const std::string& name, const Expression& expression, Scope& scope) {
  requireAggregatesAllowed(scope, expression);
  if (scope.inAggregate) {
    throw SqlError(130, "Cannot perform an aggregate function on an expression containing an aggregate or a subquery.",
                   expression.place.line, expression.place.token);
  }
  Fragment result;
  if (expression.star) {
    if (name != "count" && name != "count_big") {
      throw SqlError(102, "Incorrect syntax near '*'.", expression.place.line, "*");
    }
    result.sql = scope.ofLoneRows ? "1" : "count(*)";
    result.type = intType();
    result.magnitude = magnitudeOf(result.type);
  } else {
    if (expression.operands.size() != 1) {
      throw SqlError(174, "The " + name + " function requires 1 argument(s).", expression.place.line, name);
    }
    scope.inAggregate = true;
    const Fragment argument = value(*expression.operands[0], scope);
    scope.inAggregate = false;
    requireAggregatesAllowed(scopeOfAggregate(argument, scope), expression);
    result = aggregate(name, argument, expression.distinct, exactSums_);
    if (scope.ofLoneRows) {
      const std::optional<std::string> one = aggregateOfOne(name, argument);
      if (!one) scope.needsAggregate = true;
      result.sql = one.value_or(result.sql);
    }
    // Columns under an aggregate need not be grouped.
    for (const BareColumn& bare : argument.bare) {
      if (bare.scope != &scope) result.bare.push_back(bare);
    }
  }
  if (name == "count_big") {
    result.type = bigIntType();
    result.magnitude = magnitudeOf(result.type);
  }
  return result;
}

Fragment Binder::userFunction(const Expression& expression) {
  ObjectName name;
  name.name = expression.name.back();
  name.written = dotted(expression.name);
  name.place = expression.place;
  if (expression.name.size() == 3) name.database = expression.name[0];
  const std::optional<StoredObject> stored = tables_.object(name);
  if (!stored || stored->type != 'F') {
    throw SqlError(4121,
                   "Cannot find either column \"" + expression.name[0] +
                       "\" or the user-defined function or aggregate \"" + name.written +
                       "\", or the name is ambiguous.",
                   expression.place.line, expression.place.token);
  }
  if (!expression.operands.empty()) {
    throw SqlError(8144, "Procedure or function " + name.written + " has too many arguments specified.",
                   expression.place.line, expression.place.token);
  }
  // Stored as Cast(expression As type).
  Scope nothing;
  const ExpressionPtr body = parseValue(stored->definition);
  Fragment result = value(*body, nothing);
  result.notNull = false;
  return result;
}

std::size_t Parameters::find(std::size_t place) const {
  const auto found = std::ranges::lower_bound(places_, place);
  const bool isThere = found != places_.end() && *found == place;
  return isThere ? static_cast<std::size_t>(found - places_.begin()) : places_.size();
}

int Parameters::use(std::size_t place) {
  const std::size_t constant = find(place);
  if (constant == places_.size()) return 0;
  used_[constant] = true;
  return static_cast<int>(constant) + 1;
}

void Parameters::paste(std::size_t place) {
  if (const std::size_t constant = find(place); constant < places_.size()) ++pasted_[constant];
}

void Parameters::withdraw(std::size_t place) {
  if (const std::size_t constant = find(place); constant < places_.size()) --pasted_[constant];
}

// Not inside expressions, whose texts are compared with each other, and not in views, whose texts are not the batch's.
bool Binder::takesParameters(const Scope* outer) const {
  return parameters_ != nullptr && outer == nullptr && viewDepth_ == 0;
}

std::optional<Fragment> Binder::parameterFor(const Expression& literal, const Type& column) {
  if (literal.kind != ExpressionKind::literal || !takesParameters(nullptr)) return std::nullopt;
  const bool isNumber =
      literal.type.kind == Kind::integer && (column.kind == Kind::integer || column.kind == Kind::bigInt);
  const bool isFitting = isText(literal.type) && isText(column) && literal.type.width <= column.width;
  if (!isNumber && !isFitting) return std::nullopt;
  const int number = parameters_->use(literal.begin);
  if (number == 0) return std::nullopt;
  Fragment result;
  result.sql = "?" + std::to_string(number);
  result.type = literal.type;
  result.notNull = true;
  constexpr double mostUnits = 999'999'999;  // of the constants that are taken out of statements
  if (isNumber) result.magnitude = mostUnits;
  return result;
}

Fragment Binder::restriction(const Expression& expression, Scope& scope) {
  if (!takesParameters(scope.parent)) return condition(expression, scope);
  if (expression.kind == ExpressionKind::logicalAnd) {
    Fragment result;
    for (const ExpressionPtr& operand : expression.operands) {
      const Fragment part = restriction(*operand, scope);
      result.sql += (result.sql.empty() ? "(" : " AND ") + part.sql;
      absorb(result, part);
    }
    result.sql += ")";
    return result;
  }
  if (expression.kind != ExpressionKind::comparison) return condition(expression, scope);
  const std::size_t constant = expression.operands[0]->kind == ExpressionKind::literal ? 0 : 1;
  const Expression& other = *expression.operands[1 - constant];
  if (other.kind != ExpressionKind::column) return condition(expression, scope);
  const Fragment column = value(other, scope);
  const std::optional<Fragment> parameter = parameterFor(*expression.operands[constant], column.type);
  if (!parameter) return condition(expression, scope);
  Fragment result;
  result.sql = constant == 0 ? compare(expression.op, *parameter, column) : compare(expression.op, column, *parameter);
  absorb(result, column);
  return result;
}

Fragment Binder::condition(const Expression& expression, Scope& scope) {
  return located(expression, [&] { return plainCondition(expression, scope); });
}

Fragment Binder::plainCondition(const Expression& expression, Scope& scope) {
  Fragment result;
  std::vector<Fragment> operands;
  const bool isLogical = expression.kind == ExpressionKind::logicalAnd ||
                         expression.kind == ExpressionKind::logicalOr || expression.kind == ExpressionKind::logicalNot;
  for (const ExpressionPtr& operand : expression.operands) {
    operands.push_back(isLogical ? condition(*operand, scope) : value(*operand, scope));
    absorb(result, operands.back());
  }
  switch (expression.kind) {
    case ExpressionKind::logicalAnd:
      result.sql = "(" + operands[0].sql + " AND " + operands[1].sql + ")";
      return result;
    case ExpressionKind::logicalOr:
      result.sql = "(" + operands[0].sql + " OR " + operands[1].sql + ")";
      return result;
    case ExpressionKind::logicalNot:
      result.sql = "(NOT " + operands[0].sql + ")";
      return result;
    case ExpressionKind::comparison:
      result.sql = compare(expression.op, operands[0], operands[1]);
      return result;
    case ExpressionKind::isNull:
      result.sql = "(" + operands[0].sql + (expression.negated ? " IS NOT NULL)" : " IS NULL)");
      return result;
    case ExpressionKind::between:
      result.sql =
          "(" + compare(">=", operands[0], operands[1]) + " AND " + compare("<=", operands[0], operands[2]) + ")";
      break;
    case ExpressionKind::inList:
      result.sql = memberOf(operands[0], {operands.begin() + 1, operands.end()});
      break;
    case ExpressionKind::like:
      result.sql = like(operands[0], operands[1], operands.size() > 2 ? std::optional(operands[2]) : std::nullopt);
      break;
    case ExpressionKind::exists: {
      const BoundQuery inner = query(*expression.query, &scope);
      result.sql = "EXISTS(" + inner.sql + ")";
      result.bare.insert(result.bare.end(), inner.outerReferences.begin(), inner.outerReferences.end());
      break;
    }
    case ExpressionKind::inQuery: {
      const BoundQuery inner = query(*expression.query, &scope, Naming::value);
      if (inner.columns.size() != 1) {
        throw SqlError(
            116,
            "Only one expression can be specified in the select list when the subquery is not introduced with EXISTS.",
            expression.place.line, expression.place.token);
      }
      result.bare.insert(result.bare.end(), inner.outerReferences.begin(), inner.outerReferences.end());
      Fragment member = columnFragment("value", inner.columns[0].type);
      member.magnitude = inner.columns[0].magnitude;
      member.mayOverflow = inner.columns[0].mayOverflow;
      const Fragment& left = operands[0];
      const bool sameForm = (isText(left.type) && isText(member.type)) ||
                            (left.type == member.type && !left.mayOverflow && !member.mayOverflow);
      // When both sides are stored in the same form, SQLite's IN is right; otherwise each row is compared by T-SQL's rules.
      result.sql = sameForm ? "(" + collated(left) + " IN (" + inner.sql + "))"
                            : "(1 IN (SELECT " + compare("=", left, member) + " FROM (" + inner.sql + ")))";
      break;
    }
    default:
      throw SqlError(4145,
                     "An expression of non-boolean type specified in a context where a condition is expected, near '" +
                         expression.place.token + "'.",
                     expression.place.line, expression.place.token);
  }
  if (expression.negated) result.sql = "(NOT " + result.sql + ")";
  return result;
}

}  // namespace quillon::tsql
