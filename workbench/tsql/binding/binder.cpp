#include "workbench/tsql/binding/binder.h"

#include <algorithm>

#include "frame/text.h"
#include "workbench/tsql/binding/binder_core.h"
#include "workbench/tsql/binding/fixed_columns.h"
#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

constexpr int deepestView = 32;
constexpr int mostViews = 1000;

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
  std::string result;
  for (const std::string& part : parts)
    result += (result.empty() ? "" : std::string(separator)) + part;
  return result;
}

void setNullable(Scope& scope, std::size_t begin, std::size_t end) {
  for (std::size_t i = begin; i < end; ++i) {
    for (OutputColumn& column : scope.sources[i].columns)
      column.notNull = column.identity = false;
  }
}

void addSource(Scope& scope, Source source, const Place& place) {
  for (const Source& other : scope.sources) {
    if (!equalIgnoringCase(other.alias, source.alias)) continue;
    if (source.aliasGiven && other.aliasGiven) {
      throw SqlError(1011, "The correlation name '" + source.alias + "' is specified multiple times in a FROM clause.",
                     place.line, source.alias);
    }
    throw SqlError(1013,
                   "The objects \"" + source.alias + "\" and \"" + other.alias +
                       "\" in the FROM clause have the same exposed names. Use correlation names to distinguish them.",
                   place.line, source.alias);
  }
  scope.sources.push_back(std::move(source));
}

// Every column of a derived table must have a name, and no two the same.
void requireColumnNames(const std::vector<OutputColumn>& columns, const std::string& alias, const Place& place) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].name.empty()) {
      throw SqlError(8155, "No column name was specified for column " + std::to_string(i + 1) + " of '" + alias + "'.",
                     place.line, alias);
    }
    for (std::size_t j = 0; j < i; ++j) {
      if (equalIgnoringCase(columns[i].name, columns[j].name)) {
        throw SqlError(8156, "The column '" + columns[i].name + "' was specified multiple times for '" + alias + "'.",
                       place.line, columns[i].name);
      }
    }
  }
}

std::vector<OutputColumn> columnsOf(const Table& table) {
  std::vector<OutputColumn> columns;
  for (const TableColumn& stored : table.columns) {
    OutputColumn column;
    column.name = stored.name;
    column.type = stored.type;
    column.magnitude = magnitudeOf(stored.type);
    column.notNull = stored.notNull;
    column.identity = stored.identity;
    column.seed = stored.seed;
    column.increment = stored.increment;
    columns.push_back(std::move(column));
  }
  return columns;
}

OutputColumn systemColumn(std::string name, const Type& type) {
  OutputColumn result;
  result.name = std::move(name);
  result.type = type;
  result.magnitude = magnitudeOf(type);
  result.notNull = true;
  return result;
}

std::vector<OutputColumn> sysobjectsColumns() {
  return {systemColumn("name", nVarCharType(128)), systemColumn("id", intType()), systemColumn("xtype", varCharType(2)),
          systemColumn("type", varCharType(2))};
}

std::vector<OutputColumn> sysindexesColumns() {
  return {systemColumn("id", intType()), systemColumn("name", nVarCharType(128))};
}

// Select Into keeps the identity property of a column when the query reads one table only.
void takeIdentity(const Scope& scope, std::string_view name, OutputColumn& column) {
  if (scope.sources.size() != 1) return;
  for (const OutputColumn& source : scope.sources[0].columns) {
    if (!equalIgnoringCase(source.name, name)) continue;
    column.identity = source.identity;
    column.seed = source.seed;
    column.increment = source.increment;
  }
}

void requireSameCount(std::size_t values, std::size_t targets, const Place& place) {
  if (values == targets) return;
  const bool fewer = values < targets;
  throw SqlError(
      fewer ? 120 : 121,
      std::string("The select list for the INSERT statement contains ") + (fewer ? "fewer" : "more") +
          " items than the insert list. The number of SELECT values must match the number of INSERT columns.",
      place.line, place.token);
}

}  // namespace

// A tree of set operations: a leaf has a core.
struct Binder::SetOperand {
  SetOperation operation = SetOperation::none;
  std::unique_ptr<Core> core;
  std::unique_ptr<SetOperand> left, right;

  void leaves(std::vector<Core*>& list) {
    if (core) {
      list.push_back(core.get());
    } else {
      left->leaves(list);
      right->leaves(list);
    }
  }
};

std::shared_ptr<const Table> Binder::table(const ObjectName& name) {
  auto found = tables_.table(name);
  if (!found) throw SqlError(208, "Invalid object name '" + name.written + "'.", name.place.line, name.written);
  return found;
}

Fragment Binder::stored(const Fragment& value, const Target& target) {
  Fragment result = store(value, target.type, target.table, target.column);
  if (target.required && !result.notNull) {
    const auto literal = [](const std::string& text) { return literalFragment(text, nVarCharType(1)).sql; };
    result.sql = "required(" + result.sql + ", " + literal(target.column) + ", " + literal(target.table) + ")";
  }
  return result;
}

bool Binder::hasRead(const Table& table) const {
  return read_.contains(table.physical);
}

std::string Binder::addTable(const ObjectName& name, const std::string& alias, Scope& scope) {
  Source source;
  source.aliasGiven = !alias.empty();
  source.alias = alias.empty() ? name.name : alias;
  source.database = databaseOf(name);
  source.table = name.name;
  const std::string as = " AS " + quoteName(source.alias);
  if (auto stored = tables_.table(name)) {
    source.columns = columnsOf(*stored);
    source.stored = stored;
    read_.insert(stored->physical);
    addSource(scope, std::move(source), name.place);
    return stored->physical + as;
  }
  if (equalIgnoringCase(name.name, "sysobjects")) {
    source.columns = sysobjectsColumns();
    std::string sql = "(" + tables_.sysobjects(source.database) + ")" + as;
    addSource(scope, std::move(source), name.place);
    return sql;
  }
  if (equalIgnoringCase(name.name, "sysindexes")) {
    source.columns = sysindexesColumns();
    std::string sql = "(" + tables_.sysindexes(source.database) + ")" + as;
    addSource(scope, std::move(source), name.place);
    return sql;
  }
  const std::optional<StoredObject> view = tables_.object(name);
  if (!view || view->type != 'V') {
    throw SqlError(208, "Invalid object name '" + name.written + "'.", name.place.line, name.written);
  }
  if (++viewDepth_ > deepestView) {
    throw SqlError(217, "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).");
  }
  // Views that read other views twice double the statement with each level.
  if (++views_ > mostViews) {
    throw SqlError(40510,
                   "The embedded engine does not support more than " + std::to_string(mostViews) +
                       " views in one statement, those inside views included. Read some of them into a table first.",
                   name.place.line, name.written);
  }
  const auto statements = parseBatch(view->definition);
  const BoundQuery inner = query(*statements.at(0)->query, nullptr, Naming::columns);
  --viewDepth_;
  source.columns = inner.columns;
  addSource(scope, std::move(source), name.place);
  return "(" + inner.sql + ")" + as;
}

std::string Binder::from(const std::vector<TableSourcePtr>& list, Scope& scope) {
  std::string sql;
  for (const TableSourcePtr& source : list) {
    const std::string part = join(*source, scope);
    // In a comma list, brackets limit a right or full join to its own tables.
    const bool bracket = list.size() > 1 && source->left != nullptr;
    sql += (sql.empty() ? "" : ", ") + (bracket ? "(" + part + ")" : part);
  }
  return sql;
}

std::string Binder::join(const TableSource& source, Scope& scope) {
  if (source.left == nullptr) {
    if (source.derived == nullptr) return addTable(source.table, source.alias, scope);
    // A derived table may use columns of the enclosing queries, not those of its neighbours in the From clause.
    BoundQuery inner = query(*source.derived, const_cast<Scope*>(scope.parent), Naming::columns);
    Source entry;
    entry.alias = source.alias;
    entry.columns = inner.columns;
    std::string sql = "(" + inner.sql + ")";
    if (!source.columnAliases.empty()) {
      if (source.columnAliases.size() != entry.columns.size()) {
        throw SqlError(
            8158, "'" + source.alias + "' has a different number of columns than were specified in the column list.",
            source.table.place.line, source.alias);
      }
      std::string renamed;
      for (std::size_t i = 0; i < entry.columns.size(); ++i) {
        renamed +=
            (i == 0 ? "" : ", ") + quoteName(entry.columns[i].name) + " AS " + quoteName(source.columnAliases[i]);
        entry.columns[i].name = source.columnAliases[i];
      }
      sql = "(SELECT " + renamed + " FROM " + sql + ")";
    }
    requireColumnNames(entry.columns, source.alias, source.table.place);
    addSource(scope, std::move(entry), source.table.place);
    return sql + " AS " + quoteName(source.alias);
  }
  const std::size_t begin = scope.sources.size();
  const std::string left = join(*source.left, scope);
  const std::size_t middle = scope.sources.size();
  std::string right = join(*source.right, scope);
  if (source.right->left != nullptr) right = "(" + right + ")";
  if (source.join == JoinKind::left || source.join == JoinKind::full) setNullable(scope, middle, scope.sources.size());
  if (source.join == JoinKind::right || source.join == JoinKind::full) setNullable(scope, begin, middle);
  const char* const word = source.join == JoinKind::left    ? " LEFT JOIN "
                           : source.join == JoinKind::right ? " RIGHT JOIN "
                           : source.join == JoinKind::full  ? " FULL JOIN "
                                                            : " JOIN ";
  return left + word + right + (source.on ? " ON " + condition(*source.on, scope).sql : "");
}

void Binder::expandStar(const SelectItem& item, Core& core) {
  bool matched = false;
  const std::string prefix = item.starPrefix.empty() ? "" : item.starPrefix.back();
  for (const Source& source : core.scope->sources) {
    const std::string& name = source.aliasGiven ? source.alias : source.table;
    if (!prefix.empty() && !equalIgnoringCase(prefix, name)) continue;
    matched = true;
    for (const OutputColumn& column : source.columns) {
      Fragment value = columnFragment(quoteName(source.alias) + '.' + quoteName(column.name), column.type);
      value.magnitude = column.magnitude;
      value.mayOverflow = column.mayOverflow;
      value.notNull = column.notNull;
      value.bare.push_back({core.scope.get(), source.alias + '.' + column.name, item.place});
      if (core.scope->grouped &&
          std::find(core.scope->groups.begin(), core.scope->groups.end(), value.sql) != core.scope->groups.end()) {
        value.bare.clear();
      }
      requireGrouped(value, *core.scope, "select list");
      core.items.push_back(std::move(value));
      core.columns.push_back(column);
      core.columns.back().place = item.place;
    }
  }
  if (matched) return;
  if (prefix.empty()) throw SqlError(263, "Must specify table to select from.", item.place.line, "*");
  throw SqlError(107,
                 "The column prefix '" + prefix + "' does not match with a table name or alias name used in the query.",
                 item.place.line, prefix);
}

void Binder::bindItems(const SelectCore& select, Core& core) {
  for (const SelectItem& item : select.items) {
    if (item.value == nullptr) {
      expandStar(item, core);
      continue;
    }
    OutputColumn column;
    column.place = item.place;
    column.name = item.alias;
    Fragment value;
    if (item.value->kind == ExpressionKind::identity && select.into) {
      if (core.identityItem >= 0) {
        throw SqlError(8108, "Cannot add multiple identity columns to the result table of a SELECT INTO.",
                       item.place.line, item.place.token);
      }
      core.identityItem = static_cast<int>(core.items.size());
      value = columnFragment("", item.value->type);
      value.notNull = column.identity = true;
      column.seed = item.value->seed;
      column.increment = item.value->increment;
    } else {
      value = this->value(*item.value, *core.scope);
      requireGrouped(value, *core.scope, "select list");
      if (item.value->kind == ExpressionKind::column) {
        if (column.name.empty()) column.name = item.value->name.back();
        takeIdentity(*core.scope, item.value->name.back(), column);
      }
    }
    column.type = value.type;
    column.magnitude = value.magnitude;
    column.mayOverflow = value.mayOverflow;
    column.notNull = value.notNull;
    core.items.push_back(std::move(value));
    core.columns.push_back(std::move(column));
  }
}

void Binder::arrangeGrouping(const SelectCore& select, Core& core) {
  Scope& scope = *core.scope;
  const std::vector<std::string>& keys = core.groupBy;
  if (keys.size() < 2 || scope.parent != nullptr) return;
  // SQLite compares all keys of two rows that are alike. Those that tell no rows apart come last.
  const FixedColumns fixed(select, scope, *this);
  core.from = fixed.joinedFirst(select, std::move(core.from));
  std::vector<std::string> first;
  std::vector<std::string> last;
  Parameters::DependentKeys dependent;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (fixed.contains(keys[i])) {
      last.push_back(keys[i]);
      continue;
    }
    const Expression& expression = *select.groupBy[i];
    const bool isDependent =
        takesParameters(nullptr) && parameters_->takesDependentKeys && parameters_->dependentKeys.conditions.empty() &&
        expression.kind == ExpressionKind::searchedCase && expression.operands.size() == 3 &&
        fixed.determines(*expression.operands[0]) && value(*expression.operands[2], scope).constant.has_value();
    first.push_back(keys[i]);
    if (isDependent) {
      dependent.conditions.push_back(condition(*expression.operands[0], scope).sql);
      first.back().insert(0, 1, Parameters::keyBegin).append(1, Parameters::keyEnd);
    }
  }
  // Something has to stand behind them.
  if (last.empty()) return;
  if (!dependent.conditions.empty()) {
    dependent.from = fixed.joinedTables();
    parameters_->dependentKeys = std::move(dependent);
  }
  first.insert(first.end(), last.begin(), last.end());
  core.groupBy = std::move(first);
}

Binder::Core Binder::bindCore(const SelectCore& select, Scope* outer, bool ofLoneRows) {
  Core core;
  Scope& scope = *core.scope;
  scope.parent = outer;
  scope.ofLoneRows = ofLoneRows;
  core.distinct = select.distinct;
  core.top = select.top;
  const int views = views_;
  if (!select.from.empty()) core.from = from(select.from, scope);
  if (select.where) core.where = restriction(*select.where, scope).sql;
  if (restrictDerived(select, scope)) {
    scope.sources.clear();
    views_ = views;
    core.from = from(select.from, scope);
  }
  std::vector<std::string> groups;
  for (const ExpressionPtr& expression : select.groupBy) {
    if (containsAggregate(*expression)) {
      throw SqlError(
          144,
          "Cannot use an aggregate or a subquery in an expression used for the group by list of a GROUP BY clause.",
          expression->place.line, expression->place.token);
    }
    const Fragment value = this->value(*expression, scope);
    if (value.bare.empty()) {
      throw SqlError(164, "Each GROUP BY expression must contain at least one column that is not an outer reference.",
                     expression->place.line, expression->place.token);
    }
    groups.push_back(value.sql);
    core.groupBy.push_back(collated(settled(value)));
  }
  arrangeGrouping(select, core);
  const bool aggregated = std::any_of(select.items.begin(), select.items.end(), [](const SelectItem& item) {
    return item.value && containsAggregate(*item.value);
  });
  scope.groups = std::move(groups);
  restrictGroups(select, core);
  scope.grouped = aggregated || select.having || !select.groupBy.empty();
  scope.aggregatesAllowed = true;
  bindItems(select, core);
  if (select.having) {
    const Fragment having = condition(*select.having, scope);
    requireGrouped(having, scope, "HAVING clause");
    core.having = having.sql;
  }
  const bool oneGroup = scope.grouped && select.groupBy.empty();
  core.oneRowAtMost = oneGroup || select.from.empty() || (select.top && *select.top <= 1);
  // The identity property is kept only when one stored table is read, without grouping or Distinct.
  if (scope.grouped || select.distinct || scope.sources.size() != 1 || scope.sources[0].stored == nullptr) {
    for (std::size_t i = 0; i < core.columns.size(); ++i) {
      if (static_cast<int>(i) != core.identityItem) core.columns[i].identity = false;
    }
  }
  return core;
}

// The SQL by which SQLite sorts: the number of an output column, or an expression.
RowOrdering::Key Binder::orderKey(const Expression& item, Core& core) {
  const auto position = [&](std::size_t index) -> RowOrdering::Key {
    const Fragment& value = core.items[index];
    if (isWide(value)) return {.sql = sortKey(value), .output = index, .expression = sortKey(value)};
    const bool named = isText(value.type) && !value.isColumn;
    return {.sql = std::to_string(index + 1) + (named ? collated(value).substr(value.sql.size()) : ""),
            .output = index,
            .expression = sortKey(value)};
  };
  if (item.kind == ExpressionKind::literal && std::holds_alternative<std::int64_t>(item.literal)) {
    const std::int64_t number = std::get<std::int64_t>(item.literal);
    if (number < 1 || number > static_cast<std::int64_t>(core.items.size())) {
      throw SqlError(108,
                     "The ORDER BY position number " + std::to_string(number) +
                         " is out of range of the number of items in the select list.",
                     item.place.line, item.place.token);
    }
    return position(static_cast<std::size_t>(number - 1));
  }
  // An unqualified name means an output column before a column of the tables.
  if (item.kind == ExpressionKind::column && item.name.size() == 1) {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < core.columns.size(); ++i) {
      if (!equalIgnoringCase(core.columns[i].name, item.name[0])) continue;
      if (found && core.items[*found].sql != core.items[i].sql) {
        throw SqlError(209, "Ambiguous column name '" + item.name[0] + "'.", item.place.line, item.place.token);
      }
      if (!found) found = i;
    }
    if (found && static_cast<int>(*found) != core.identityItem) return position(*found);
  }
  const Fragment value = this->value(item, *core.scope);
  requireGrouped(value, *core.scope, "ORDER BY clause");
  for (std::size_t i = 0; i < core.items.size(); ++i) {
    if (core.items[i].sql == value.sql) return position(i);
  }
  if (core.distinct) {
    throw SqlError(145, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified.",
                   item.place.line, item.place.token);
  }
  return {.sql = sortKey(value)};
}

void Binder::bindOrder(const std::vector<OrderItem>& items, Core& core) {
  for (const OrderItem& item : items) {
    core.orderKeys.push_back(orderKey(*item.value, core));
    core.orderKeys.back().descending = item.descending;
    core.order.push_back(core.orderKeys.back().sql + (item.descending ? " DESC" : ""));
  }
}

std::string Binder::renderCore(const Core& core, Naming naming, RowOrdering* ordering) const {
  std::string sql = core.distinct ? "SELECT DISTINCT " : "SELECT ";
  for (std::size_t i = 0; i < core.items.size(); ++i) {
    const OutputColumn& column = core.columns[i];
    sql += i == 0 ? "" : ", ";
    if (static_cast<int>(i) == core.identityItem && column.increment == 1 && !core.distinct) {
      // The rows are inserted in the order of the query, and the identity of the new table numbers them.
      sql += "NULL";
    } else if (static_cast<int>(i) == core.identityItem) {
      sql += std::to_string(column.seed) + " + (row_number() OVER (" +
             (core.order.empty() ? "" : "ORDER BY " + joined(core.order, ", ")) + ") - 1) * " +
             std::to_string(column.increment);
    } else {
      // A text that an outer query compares, unites or makes distinct must carry its collation.
      sql += naming != Naming::none || core.distinct ? collated(core.items[i]) : core.items[i].sql;
    }
    if (naming == Naming::columns && !column.name.empty()) sql += " AS " + quoteName(column.name);
    if (naming == Naming::value && i == 0) sql += " AS value";
  }
  if (ordering != nullptr) ordering->itemsEnd = sql.size();
  if (!core.from.empty()) sql += " FROM " + core.from;
  if (ordering != nullptr) ordering->fromEnd = sql.size();
  if (!core.where.empty()) sql += " WHERE " + core.where;
  if (!core.groupBy.empty()) sql += " GROUP BY " + joined(core.groupBy, ", ");
  if (!core.having.empty()) sql += " HAVING " + core.having;
  if (ordering != nullptr) ordering->orderBegin = sql.size();
  if (!core.order.empty()) sql += " ORDER BY " + joined(core.order, ", ");
  if (core.top) sql += " LIMIT " + std::to_string(*core.top);
  return sql;
}

BoundQuery Binder::query(const Query& query, Scope* outer, Naming naming) {
  const bool inside = naming != Naming::none;
  const bool hasTop = query.core && query.core->top;
  if (inside && !query.orderBy.empty() && !hasTop) {
    throw SqlError(
        1033,
        "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common table "
        "expressions, unless TOP, OFFSET or FOR XML is also specified.",
        query.place.line, "ORDER");
  }
  return query.core ? simpleQuery(query, outer, naming, nullptr) : setQuery(query, outer, naming, nullptr);
}

BoundQuery Binder::queryInto(const Query& query, const std::vector<Target>& targets, const Table* whole) {
  const Targets into{.columns = &targets, .whole = whole};
  return query.core ? simpleQuery(query, nullptr, Naming::none, &into) : setQuery(query, nullptr, Naming::none, &into);
}

void Binder::storeItems(Core& core, const Targets& targets) {
  for (std::size_t i = 0; i < core.items.size(); ++i)
    core.items[i] = stored(core.items[i], (*targets.columns)[i]);
  if (targets.whole == nullptr) return;
  std::vector<Fragment> items(targets.whole->columns.size(), nullFragment());
  for (std::size_t i = 0; i < core.items.size(); ++i)
    items[(*targets.columns)[i].place] = std::move(core.items[i]);
  core.items = std::move(items);
  core.columns.assign(core.items.size(), {});
}

void Binder::takeItemParameters(const Query& query, Core& core, const std::vector<Target>& targets) {
  const std::vector<SelectItem>& items = query.core->items;
  // A Distinct or an order looks at the items, and a star stands for several.
  if (core.distinct || !query.orderBy.empty() || items.size() != core.items.size()) return;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (items[i].value == nullptr) continue;
    auto parameter = parameterFor(*items[i].value, targets[i].type);
    if (!parameter) continue;
    core.items[i] = std::move(*parameter);
    parameters_->withdraw(items[i].value->begin);
  }
}

std::optional<Binder::Places> Binder::placesOf(const Core& core, const Targets& targets) {
  // The text of an order by the number of an item depends on the items.
  if (core.distinct || core.identityItem >= 0 ||
      std::ranges::any_of(core.orderKeys, [](const auto& key) { return key.output.has_value(); })) {
    return {};
  }
  Places places;
  if (targets.whole != nullptr) {
    for (const TableColumn& column : targets.whole->columns)
      places.push_back({.storage = storageOf(column.type), .required = column.notNull});
  } else if (targets.columns == nullptr) {
    for (const OutputColumn& column : core.columns) {
      if (column.identity) return {};
      places.push_back({.storage = storageOf(column.type), .required = column.notNull});
    }
  }
  if (places.empty()) return {};
  return places;
}

BoundQuery Binder::simpleQuery(const Query& query, Scope* outer, Naming naming, const Targets* targets) {
  Core core = bindCore(*query.core, outer);
  if (targets != nullptr) {
    requireSameCount(core.items.size(), targets->columns->size(), query.core->items.front().place);
  }
  if (core.identityItem >= 0) {
    // Inside a window function Order By takes expressions; the number of an output column would be a constant there.
    for (const OrderItem& item : query.orderBy) {
      const Fragment value = this->value(*item.value, *core.scope);
      core.order.push_back(sortKey(value) + (item.descending ? " DESC" : ""));
    }
  } else {
    bindOrder(query.orderBy, core);
  }
  BoundQuery result;
  Targets into = targets == nullptr ? Targets{} : *targets;
  // Distinct rows, and an order by the number of an item, are those of the query's own items.
  if (core.distinct || std::ranges::any_of(core.orderKeys, [](const auto& key) { return key.output.has_value(); })) {
    into.whole = nullptr;
  }
  result.inTableOrder = into.whole != nullptr;
  const bool isStored = targets != nullptr || query.core->into;
  if (isStored) {
    if (std::string first = orderedFirst(query, core); !first.empty()) {
      core.from = std::move(first);
      core.order.clear();
    }
  }
  if (targets != nullptr) {
    if (takesParameters(outer)) takeItemParameters(query, core, *targets->columns);
    storeItems(core, into);
  } else if (naming == Naming::none && !query.core->into) {
    for (Fragment& item : core.items)
      item = settled(item);
  }
  if (isStored) {
    const std::optional<Places> places = placesOf(core, into);
    result.grouping = wideGrouping(query, core, targets == nullptr ? nullptr : &into, places);
    if (places && !core.scope->grouped) result.composition = composition(*query.core, core, *places);
  }
  RowOrdering ordering;
  result.sql = renderCore(core, naming, &ordering);
  if (!core.orderKeys.empty() && !core.distinct && !core.scope->grouped && !core.top) {
    ordering.keys = std::move(core.orderKeys);
    result.ordering = std::move(ordering);
  }
  result.columns = std::move(core.columns);
  result.outerReferences = std::move(core.scope->outerReferences);
  result.oneRowAtMost = core.oneRowAtMost;
  return result;
}

Binder::SetOperand Binder::bindOperand(const Query& query, Scope* outer) {
  SetOperand operand;
  operand.operation = query.operation;
  if (query.core) {
    if (query.core->into) {
      throw SqlError(
          196, "SELECT INTO must be the first query in a statement containing a UNION, INTERSECT or EXCEPT operator.",
          query.place.line, "INTO");
    }
    operand.core = std::make_unique<Core>(bindCore(*query.core, outer));
  } else {
    operand.left = std::make_unique<SetOperand>(bindOperand(*query.left, outer));
    operand.right = std::make_unique<SetOperand>(bindOperand(*query.right, outer));
  }
  return operand;
}

std::string Binder::renderOperand(const SetOperand& operand, Naming naming) const {
  if (operand.core) {
    const std::string sql = renderCore(*operand.core, naming);
    return operand.core->top ? "SELECT * FROM (" + sql + ")" : sql;
  }
  const char* const word = operand.operation == SetOperation::unionAll        ? " UNION ALL "
                           : operand.operation == SetOperation::unionDistinct ? " UNION "
                           : operand.operation == SetOperation::except        ? " EXCEPT "
                                                                              : " INTERSECT ";
  const std::string right = renderOperand(*operand.right, naming);
  return renderOperand(*operand.left, naming) + word + (operand.right->core ? right : "SELECT * FROM (" + right + ")");
}

BoundQuery Binder::setQuery(const Query& query, Scope* outer, Naming naming, const Targets* targets) {
  SetOperand tree = bindOperand(query, outer);
  std::vector<Core*> leaves;
  tree.leaves(leaves);
  BoundQuery result;
  result.columns = leaves[0]->columns;
  for (const Core* leaf : leaves) {
    if (leaf->items.size() != result.columns.size()) {
      throw SqlError(
          205,
          "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of expressions "
          "in their target lists.",
          query.place.line, query.place.token);
    }
    result.outerReferences.insert(result.outerReferences.end(), leaf->scope->outerReferences.begin(),
                                  leaf->scope->outerReferences.end());
  }
  if (targets != nullptr) requireSameCount(result.columns.size(), targets->columns->size(), query.place);
  for (std::size_t i = 0; i < result.columns.size(); ++i) {
    std::vector<Fragment> values;
    values.reserve(leaves.size());
    for (const Core* leaf : leaves)
      values.push_back(settled(leaf->items[i]));
    OutputColumn& column = result.columns[i];
    column.type = unify(values);
    column.magnitude = 0;
    column.notNull = std::all_of(values.begin(), values.end(), [](const Fragment& value) { return value.notNull; });
    column.identity = column.mayOverflow = false;
    for (std::size_t leaf = 0; leaf < leaves.size(); ++leaf) {
      column.magnitude = std::max(column.magnitude, values[leaf].magnitude);
      leaves[leaf]->items[i] = std::move(values[leaf]);
    }
  }
  // The leftmost query gives the columns their names and collations.
  result.sql = renderOperand(tree, naming == Naming::none ? Naming::columns : naming);
  std::vector<std::string> order;
  for (const OrderItem& item : query.orderBy) {
    std::optional<std::size_t> found;
    const Expression& key = *item.value;
    if (key.kind == ExpressionKind::literal && std::holds_alternative<std::int64_t>(key.literal)) {
      const std::int64_t number = std::get<std::int64_t>(key.literal);
      if (number < 1 || number > static_cast<std::int64_t>(result.columns.size())) {
        throw SqlError(108,
                       "The ORDER BY position number " + std::to_string(number) +
                           " is out of range of the number of items in the select list.",
                       key.place.line, key.place.token);
      }
      found = static_cast<std::size_t>(number - 1);
    } else if (key.kind == ExpressionKind::column) {
      for (std::size_t i = 0; i < result.columns.size() && !found; ++i) {
        if (equalIgnoringCase(result.columns[i].name, key.name.back())) found = i;
      }
      if (!found)
        throw SqlError(207, "Invalid column name '" + key.name.back() + "'.", key.place.line, key.name.back());
    }
    if (!found) {
      throw SqlError(104,
                     "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or "
                     "EXCEPT operator.",
                     key.place.line, key.place.token);
    }
    Fragment sorted = columnFragment(quoteName(result.columns[*found].name), result.columns[*found].type);
    sorted.magnitude = result.columns[*found].magnitude;
    order.push_back((isWide(sorted) ? sortKey(sorted) : std::to_string(*found + 1)) + (item.descending ? " DESC" : ""));
  }
  if (!order.empty()) result.sql = "SELECT * FROM (" + result.sql + ") ORDER BY " + joined(order, ", ");
  if (targets != nullptr) {
    std::string items;
    for (std::size_t i = 0; i < result.columns.size(); ++i) {
      Fragment value = columnFragment("column" + std::to_string(i + 1), result.columns[i].type);
      value.magnitude = result.columns[i].magnitude;
      items += (i == 0 ? "" : ", ") + stored(value, (*targets->columns)[i]).sql;
    }
    // WITH gives the columns new names by position, whatever the query calls them.
    std::string names;
    for (std::size_t i = 0; i < result.columns.size(); ++i)
      names += (i == 0 ? "column" : ", column") + std::to_string(i + 1);
    result.sql = "WITH source(" + names + ") AS (" + result.sql + ") SELECT " + items + " FROM source";
  }
  return result;
}

}  // namespace quillon::tsql
