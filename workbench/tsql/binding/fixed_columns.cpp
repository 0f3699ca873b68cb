#include "workbench/tsql/binding/fixed_columns.h"

#include <algorithm>
#include <utility>

#include "frame/text.h"
#include "workbench/tsql/binding/sqlite_notation.h"

namespace quillon::tsql {
namespace {

// Numbers with decimals may be stored in several forms, dates and times are compared as what a text means.
bool isPlainlyCompared(const Type& column, const Type& constant) {
  const bool isWhole = column.kind == Kind::integer || column.kind == Kind::bigInt || column.kind == Kind::bit;
  return (isText(column) && isText(constant)) || (isWhole && constant.kind == Kind::integer);
}

bool hasLeftJoinsOnly(const TableSource& source) {
  return source.left == nullptr || (source.join == JoinKind::left && hasLeftJoinsOnly(*source.left));
}

}  // namespace

FixedColumns::FixedColumns(const SelectCore& select, Scope& scope, Binder& binder) : scope_(scope), binder_(binder) {
  if (select.where) addRestrictions(*select.where);
  if (columns_.empty()) return;
  for (const TableSourcePtr& source : select.from)
    addJoins(*source);
}

bool FixedColumns::contains(std::string_view sql) const {
  return std::ranges::find(columns_, sql, &Column::sql) != columns_.end() ||
         std::ranges::any_of(joined_, [sql](const Joined& joined) {
           return sql.starts_with(joined.prefix) && sql.find('"', joined.prefix.size() + 1) == sql.size() - 1;
         });
}

bool FixedColumns::determines(const Expression& expression) const {
  switch (expression.kind) {
    case ExpressionKind::null:
    case ExpressionKind::literal:
      return true;
    case ExpressionKind::column: {
      const std::string sql = binder_.value(expression, scope_).sql;
      return std::ranges::any_of(joined_, [&](const Joined& joined) { return sql.starts_with(joined.prefix); });
    }
    case ExpressionKind::function:
      // Others may give another value each time.
      if (expression.name.size() != 1 || !equalIgnoringCase(expression.name[0], "isnull")) return false;
      break;
    case ExpressionKind::comparison:
    case ExpressionKind::logicalAnd:
    case ExpressionKind::logicalOr:
    case ExpressionKind::logicalNot:
    case ExpressionKind::isNull:
      break;
    default:
      return false;
  }
  return std::ranges::all_of(expression.operands,
                             [this](const ExpressionPtr& operand) { return determines(*operand); });
}

std::string FixedColumns::joinedTables() const {
  std::string from = "(SELECT 1)";
  for (const Joined& joined : joined_)
    from += joined.join;
  return from;
}

std::string FixedColumns::joinedFirst(const SelectCore& select, std::string from) const {
  if (joined_.empty() || select.from.size() != 1 || !hasLeftJoinsOnly(*select.from[0])) return from;
  for (const Joined& joined : joined_) {
    const std::size_t place = from.find(joined.written);
    if (place == std::string::npos || from.rfind(joined.written) != place) return from;
  }
  for (const Joined& joined : joined_)
    from.erase(from.find(joined.written), joined.written.size());
  return joinedTables() + " CROSS JOIN " + from;
}

std::string FixedColumns::constantOf(std::string_view column) const {
  const auto found = std::ranges::find(columns_, column, &Column::sql);
  return found == columns_.end() ? std::string(column) : found->constant;
}

void FixedColumns::addRestrictions(const Expression& condition) {
  if (condition.kind == ExpressionKind::logicalAnd) {
    for (const ExpressionPtr& operand : condition.operands)
      addRestrictions(*operand);
    return;
  }
  if (condition.kind != ExpressionKind::comparison || condition.op != "=") return;
  const std::size_t constant = condition.operands[0]->kind == ExpressionKind::literal ? 0 : 1;
  const Expression& literal = *condition.operands[constant];
  const Expression& other = *condition.operands[1 - constant];
  if (literal.kind != ExpressionKind::literal || other.kind != ExpressionKind::column) return;
  const Fragment column = binder_.value(other, scope_);
  if (!isPlainlyCompared(column.type, literal.type)) return;
  const std::optional<Fragment> parameter = binder_.parameterFor(literal, column.type);
  columns_.push_back({column.sql, parameter ? parameter->sql : binder_.value(literal, scope_).sql});
}

bool FixedColumns::isKey(const Source& source, const std::string& column) const {
  return std::ranges::any_of(source.stored->keys, [&](const KeyDefinition& key) {
    return key.columns.size() == 1 &&
           quoteName(source.alias) + '.' +
                   quoteName(
                       source.stored->columns.at(static_cast<std::size_t>(source.stored->find(key.columns[0]))).name) ==
               column;
  });
}

// A join on such a column and nothing else finds the same row for all rows on its left, or none for all.
void FixedColumns::addJoins(const TableSource& source) {
  if (source.left == nullptr) return;
  addJoins(*source.left);
  addJoins(*source.right);
  const bool isFollowed = source.join == JoinKind::inner || source.join == JoinKind::left;
  if (!isFollowed || source.right->left != nullptr || source.right->derived != nullptr || !source.on ||
      source.on->kind != ExpressionKind::comparison || source.on->op != "=") {
    return;
  }
  const std::string& alias = source.right->alias.empty() ? source.right->table.name : source.right->alias;
  const auto joined = std::ranges::find_if(
      scope_.sources, [&](const Source& one) { return one.stored && equalIgnoringCase(one.alias, alias); });
  if (joined == scope_.sources.end()) return;
  const Expression& left = *source.on->operands[0];
  const Expression& right = *source.on->operands[1];
  if (left.kind != ExpressionKind::column || right.kind != ExpressionKind::column) return;
  Fragment key = binder_.value(left, scope_);
  Fragment given = binder_.value(right, scope_);
  if (!isKey(*joined, key.sql)) std::swap(key, given);
  if (isKey(*joined, key.sql) && contains(given.sql) && isPlainlyCompared(key.type, given.type))
    addJoined(*joined, key.sql + " = " + constantOf(given.sql), binder_.condition(*source.on, scope_).sql);
}

void FixedColumns::addJoined(const Source& source, const std::string& condition, const std::string& written) {
  const std::string table = " LEFT JOIN " + source.stored->physical + " AS " + quoteName(source.alias) + " ON ";
  joined_.push_back(
      {.prefix = quoteName(source.alias) + '.', .join = table + '(' + condition + ')', .written = table + written});
}

}  // namespace quillon::tsql
