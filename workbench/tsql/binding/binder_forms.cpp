// Other forms of a query: they give the same rows and cost SQLite less.
#include <algorithm>
#include <utility>

#include "frame/text.h"
#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/binding/binder_core.h"
#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

// Whether it can be computed of rows that the query does not give, because no value of theirs ends it with an error.
// Conversions, which the text does not show, are left to who binds it.
bool isHarmless(const Expression& expression) {
  switch (expression.kind) {
    case ExpressionKind::function:
      // One without arguments gives the same for all rows.
      if (!expression.operands.empty() && !equalIgnoringCase(expression.name.back(), "isnull")) return false;
      if (expression.star) return false;
      break;
    case ExpressionKind::null:
    case ExpressionKind::literal:
    case ExpressionKind::column:
    case ExpressionKind::searchedCase:
    case ExpressionKind::simpleCase:
    case ExpressionKind::comparison:
    case ExpressionKind::logicalAnd:
    case ExpressionKind::logicalOr:
    case ExpressionKind::logicalNot:
    case ExpressionKind::isNull:
    case ExpressionKind::between:
    case ExpressionKind::inList:
      break;
    default:
      return false;
  }
  return std::ranges::all_of(expression.operands,
                             [](const ExpressionPtr& operand) { return operand == nullptr || isHarmless(*operand); });
}
bool converts(const std::string& sql) {
  return sql.find("cast_to(") != std::string::npos;
}

// The table that a From clause begins with when no join can leave it out of a row: then each row of the query comes from
// one of its rows. Null: there is none.
const TableSource* leadingTable(const TableSource& source) {
  if (source.left == nullptr) return source.derived == nullptr ? &source : nullptr;
  return source.join == JoinKind::right || source.join == JoinKind::full ? nullptr : leadingTable(*source.left);
}

bool onlyLeftJoins(const TableSource& source) {
  return source.left == nullptr || (source.join == JoinKind::left && onlyLeftJoins(*source.left));
}

const OutputColumn* columnOf(const Source& source, const Expression& expression) {
  if (expression.kind != ExpressionKind::column || expression.name.size() != 2 ||
      !equalIgnoringCase(expression.name[0], source.alias)) {
    return nullptr;
  }
  const auto found = std::ranges::find_if(
      source.columns, [&](const OutputColumn& column) { return equalIgnoringCase(column.name, expression.name[1]); });
  return found == source.columns.end() ? nullptr : &*found;
}

}  // namespace

const Source* sourceOf(const TableSource& table, const Scope& scope) {
  const std::string& name = table.alias.empty() ? table.table.name : table.alias;
  const auto found =
      std::ranges::find_if(scope.sources, [&](const Source& source) { return equalIgnoringCase(source.alias, name); });
  return found == scope.sources.end() || found->stored == nullptr ? nullptr : &*found;
}

std::string tableAs(const Source& source) {
  return source.stored->physical + " AS " + quoteName(source.alias);
}

std::vector<const Expression*> conjuncts(const Expression& condition) {
  if (condition.kind != ExpressionKind::logicalAnd) return {&condition};
  std::vector<const Expression*> parts;
  for (const ExpressionPtr& operand : condition.operands)
    std::ranges::copy(conjuncts(*operand), std::back_inserter(parts));
  return parts;
}

// A binder of its own, so that a part that needs another source leaves no trace.
std::optional<Fragment> Binder::boundOn(const std::vector<Source>& sources, const Expression& expression) const {
  if (!isHarmless(expression)) return {};
  Scope scope;
  scope.sources = sources;
  Binder binder(tables_, exactSums_, takesParameters(nullptr) ? parameters_ : nullptr);
  try {
    Fragment result =
        expression.isCondition() ? binder.restriction(expression, scope) : binder.value(expression, scope);
    if (converts(result.sql)) return {};
    return result;
  } catch (const SqlError&) {
    return {};  // it names columns of other sources
  }
}

std::string Binder::conditionsOn(const Source& source, const SelectCore& select) const {
  std::string all;
  if (!select.where) return all;
  for (const Expression* const part : conjuncts(*select.where)) {
    if (const auto bound = boundOn({source}, *part)) all += (all.empty() ? "" : " AND ") + bound->sql;
  }
  return all;
}

bool Binder::restrictDerived(const SelectCore& select, const Scope& scope) {
  const std::size_t before = restrictions_.size();
  for (const TableSourcePtr& source : select.from) {
    const TableSource* const table = leadingTable(*source);
    const Source* const leading = table == nullptr ? nullptr : sourceOf(*table, scope);
    if (leading == nullptr || source->left == nullptr) continue;
    if (const std::string conditions = conditionsOn(*leading, select); !conditions.empty())
      restrictJoined(*source, *leading, conditions, scope);
  }
  return restrictions_.size() > before;
}

void Binder::restrictJoined(const TableSource& source, const Source& leading, const std::string& conditions,
                            const Scope& scope) {
  if (source.left == nullptr) return;
  restrictJoined(*source.left, leading, conditions, scope);
  const TableSource& right = *source.right;
  if (right.derived == nullptr || !right.derived->core || !right.columnAliases.empty() || !source.on) return;
  const auto derived = std::ranges::find(scope.sources, right.alias, &Source::alias);
  if (derived == scope.sources.end()) return;
  for (const Expression* const part : conjuncts(*source.on)) {
    if (part->kind != ExpressionKind::comparison || part->op != "=") continue;
    for (const bool swapped : {false, true}) {
      const OutputColumn* const key = columnOf(*derived, *part->operands[swapped ? 1 : 0]);
      const OutputColumn* const value = columnOf(leading, *part->operands[swapped ? 0 : 1]);
      // Whole numbers are equal in one way; texts and floating-point numbers would have to be compared as the join does.
      if (key == nullptr || value == nullptr || key->type != intType() || value->type != intType()) continue;
      restrictions_[right.derived->core.get()].push_back({.column = key->name,
                                                          .values = "SELECT " + quoteName(leading.alias) + '.' +
                                                                    quoteName(value->name) + " FROM " +
                                                                    tableAs(leading) + " WHERE " + conditions});
    }
  }
}

void Binder::restrictGroups(const SelectCore& select, Core& core) {
  const auto found = restrictions_.find(&select);
  if (found == restrictions_.end() || select.top) return;
  for (const Restriction& restriction : found->second) {
    for (const SelectItem& item : select.items) {
      if (item.value == nullptr || item.value->kind != ExpressionKind::column) continue;
      const std::string& name = item.alias.empty() ? item.value->name.back() : item.alias;
      if (!equalIgnoringCase(name, restriction.column)) continue;
      const std::string key = value(*item.value, *core.scope).sql;
      if (std::ranges::find(core.scope->groups, key) == core.scope->groups.end()) continue;
      core.where = (core.where.empty() ? "" : "(" + core.where + ") AND ") + key + " IN (" + restriction.values + ")";
    }
  }
}

std::string Binder::orderedFirst(const Query& query, const Core& core) const {
  const SelectCore& select = *query.core;
  const bool plain = !query.orderBy.empty() && !core.scope->grouped && !core.distinct && !core.top &&
                     core.identityItem < 0 && core.scope->parent == nullptr && select.from.size() == 1 &&
                     select.from[0]->left != nullptr && onlyLeftJoins(*select.from[0]);
  const TableSource* const table = plain ? leadingTable(*select.from[0]) : nullptr;
  const Source* const leading = table == nullptr ? nullptr : sourceOf(*table, *core.scope);
  if (leading == nullptr || !leading->stored->hasRowid() || !core.from.starts_with(tableAs(*leading))) return {};
  std::string keys;
  for (std::size_t i = 0; i < query.orderBy.size(); ++i) {
    const auto key = core.orderKeys[i].output ? std::nullopt : boundOn({*leading}, *query.orderBy[i].value);
    if (!key) return {};
    keys += (keys.empty() ? "" : ", ") + sortKey(*key) + (query.orderBy[i].descending ? " DESC" : "");
  }
  const std::string conditions = conditionsOn(*leading, select);
  const std::string first = tableAs(*leading);
  const std::string number = quoteName(leading->alias) + '.' + leading->stored->rowid();
  // SQLite keeps the order of a query within From when it has a limit, and the order of tables under Cross Join.
  const std::string inOrder = quoteName("rows in order");
  return "(SELECT " + number + " AS number FROM " + first + (conditions.empty() ? "" : " WHERE " + conditions) +
         " ORDER BY " + keys + " LIMIT -1) AS " + inOrder + " CROSS JOIN " + first + " ON " + number + " = " + inOrder +
         ".number" + core.from.substr(first.size());
}

std::optional<WideGrouping> Binder::wideGrouping(const Query& query, Core& core, const Targets* targets,
                                                 const std::optional<Places>& places) {
  const SelectCore& select = *query.core;
  // By fewer columns SQLite groups as fast.
  constexpr std::size_t wide = 12;
  // A query among the items may aggregate rows of this one.
  const bool plain =
      std::ranges::none_of(select.items,
                           [](const SelectItem& item) { return item.value && containsQuery(*item.value); }) &&
      core.scope->parent == nullptr && core.scope->sources.size() == 1 && core.scope->sources[0].stored != nullptr &&
      core.scope->sources[0].stored->hasRowid() && core.having.empty() && !core.distinct && !core.top &&
      core.identityItem < 0 && query.orderBy.empty() && (!select.where || !containsQuery(*select.where));
  if (!plain || core.groupBy.size() < wide) return {};
  Core lone = bindCore(select, nullptr, true);
  if (lone.scope->needsAggregate) return {};
  if (targets != nullptr) storeItems(lone, *targets);
  const Source& source = core.scope->sources[0];
  WideGrouping result;
  result.number = quoteName(source.alias) + '.' + source.stored->rowid();
  result.from = core.from;
  result.where = core.where;
  result.keys = core.groupBy;
  const std::string isAlone = "is_alone(" + result.number + ")";
  const std::string given = core.where.empty() ? "" : "(" + core.where + ") AND ";
  lone.groupBy.clear();
  lone.where = given + isAlone;
  if (places) result.alone = composition(select, lone, *places);
  const std::string where = std::exchange(core.where, given + "NOT " + isAlone);
  result.sql = renderCore(lone, Naming::none) + " UNION ALL " + renderCore(core, Naming::none);
  result.columns = columnsOfKeys(core);
  if (result.alone && !result.columns.empty()) {
    result.table = source.stored;
    const std::string isTogether = "is_together(" + result.number + ")";
    core.where = given + isTogether;
    std::vector<std::string> keys = std::exchange(core.groupBy, {"group_number(" + result.number + ")"});
    result.together = composition(select, core, *places);
    core.groupBy = std::move(keys);
    core.where = given + "NOT " + isAlone + " AND NOT " + isTogether;
    result.others = renderCore(core, Naming::none);
  }
  core.where = where;
  return result;
}

}  // namespace quillon::tsql
