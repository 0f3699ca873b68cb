#include "workbench/tsql/engine/modification.h"

#include <algorithm>
#include <map>
#include <optional>

#include "frame/text.h"
#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

[[noreturn]] void fail(int number, const std::string& message, const Place& place) {
  throw SqlError(number, message, place.line, place.token);
}

// ---- Insert

struct InsertColumns {
  std::vector<std::size_t> given;    // the columns that the statement gives values for
  std::vector<std::size_t> omitted;  // columns left out that have a default or refuse NULL
};

InsertColumns insertColumns(const Statement& s, const Table& table, bool identityInsert) {
  InsertColumns result;
  std::vector<bool> isGiven(table.columns.size(), false);
  if (s.columns.empty()) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      isGiven[i] = !s.defaultValues && !table.columns[i].identity;
      if (isGiven[i]) result.given.push_back(i);
    }
  }
  for (const std::string& name : s.columns) {
    const int place = table.find(name);
    if (place < 0) fail(207, "Invalid column name '" + name + "'.", s.target.place);
    const auto index = static_cast<std::size_t>(place);
    if (isGiven[index]) {
      fail(264,
           "The column name '" + name +
               "' is specified more than once in the SET clause or column list of an INSERT. A column cannot be "
               "assigned more than one value in the same clause.",
           s.target.place);
    }
    if (table.columns[index].identity && !identityInsert) {
      fail(544,
           "Cannot insert explicit value for identity column in table '" + table.name +
               "' when IDENTITY_INSERT is set to OFF.",
           s.target.place);
    }
    isGiven[index] = true;
    result.given.push_back(index);
  }
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (isGiven[i]) continue;
    const TableColumn& column = table.columns[i];
    const bool isRowid = static_cast<int>(i) == table.rowidColumn;
    if (column.identity && !isRowid) {
      fail(40510,
           "The embedded engine does not support inserting into a table whose identity column does not count by one.",
           s.target.place);
    }
    if (!column.defaultText.empty() || (isRowid && !column.identity)) result.omitted.push_back(i);
  }
  return result;
}

Binder::Target targetOf(const Table& table, std::size_t column) {
  const TableColumn& stored = table.columns[column];
  return {stored.type, table.name, stored.name, static_cast<int>(column) == table.rowidColumn, column};
}

Fragment defaultOf(const Table& table, std::size_t column, Binder& binder) {
  Scope nothing;
  const std::string& text = table.columns[column].defaultText;
  const Fragment value = text.empty() ? nullFragment() : binder.value(*parseValue(text), nothing);
  return Binder::stored(value, targetOf(table, column));
}

std::string valueRows(const Statement& s, const Table& table, const InsertColumns& columns, Binder& binder) {
  std::string sql;
  for (const std::vector<ExpressionPtr>& row : s.valueRows) {
    if (row.size() != s.valueRows[0].size()) {
      fail(10709, "The number of columns for each row in a table value constructor must be the same.", s.target.place);
    }
    if (row.size() != columns.given.size()) {
      if (s.columns.empty())
        fail(213, "Column name or number of supplied values does not match table definition.", s.target.place);
      const bool fewer = row.size() < columns.given.size();
      fail(fewer ? 109 : 110,
           std::string("There are ") + (fewer ? "more" : "fewer") +
               " columns in the INSERT statement than values specified in the VALUES clause. The number of values in "
               "the VALUES "
               "clause must match the number of columns specified in the INSERT statement.",
           s.target.place);
    }
    sql += sql.empty() ? "VALUES (" : ", (";
    for (std::size_t i = 0; i < row.size(); ++i) {
      Scope nothing;
      const std::size_t column = columns.given[i];
      const Fragment value = row[i] == nullptr
                                 ? defaultOf(table, column, binder)
                                 : Binder::stored(binder.value(*row[i], nothing), targetOf(table, column));
      sql += (i == 0 ? "" : ", ") + value.sql;
    }
    for (const std::size_t column : columns.omitted)
      sql += ", " + defaultOf(table, column, binder).sql;
    sql += ")";
  }
  return sql;
}

// `inTableOrder` is set where the rows have a value for each column of the table, in their order.
Modification selectedRows(const Statement& s, const Table& table, const InsertColumns& columns, Binder& binder,
                          bool& inTableOrder) {
  std::vector<Binder::Target> targets;
  for (const std::size_t column : columns.given)
    targets.push_back(targetOf(table, column));
  Modification rows;
  try {
    // What counts its own rows is not given null, nor what has a default.
    const bool allMayBeGiven = columns.omitted.empty() && table.rowidColumn < 0;
    BoundQuery query = binder.queryInto(*s.query, targets, allMayBeGiven ? &table : nullptr);
    inTableOrder = query.inTableOrder;
    rows = {.sql = std::move(query.sql),
            .grouping = std::move(query.grouping),
            .composition = std::move(query.composition)};
    if (binder.hasRead(table)) {
      if (rows.composition && !rows.composition->readingFirst.empty()) {
        rows.composition->sql += rows.composition->readingFirst;
      } else {
        rows.composition.reset();
      }
      if (rows.grouping) rows.grouping->alone.reset();
    }
  } catch (const SqlError& error) {
    // No column list means all columns of the table.
    if (!s.columns.empty() || (error.number() != 120 && error.number() != 121)) throw;
    fail(213, "Column name or number of supplied values does not match table definition.", s.target.place);
  }
  if (columns.omitted.empty()) return rows;
  std::string defaults;
  for (const std::size_t column : columns.omitted)
    defaults += ", " + defaultOf(table, column, binder).sql;
  const auto complete = [&](std::string& sql) { sql = "SELECT *" + defaults + " FROM (" + sql + ")"; };
  complete(rows.sql);
  if (rows.grouping) complete(rows.grouping->sql);
  return rows;
}

// ---- Update and Delete

// The From clause of an Update or Delete, and where its target is in it.
struct Sources {
  Scope scope;
  std::string from;                      // the whole From clause, in the order written
  std::string others;                    // without the target, where that can be: see `separable`
  std::string conditions;                // the On conditions of `others`
  std::vector<const Expression*> parts;  // of these, those that And joins
  bool separable = false;                // the target is joined by inner joins only
  std::string target;                    // its alias
  std::shared_ptr<const Table> table;
};

void collectTables(const TableSource& source, std::vector<const TableSource*>& list) {
  if (source.left != nullptr) {
    collectTables(*source.left, list);
    collectTables(*source.right, list);
  } else if (source.derived == nullptr) {
    list.push_back(&source);
  }
}

// The parts that inner and cross joins put together, and the conditions between them.
void flatten(const TableSource& source, std::vector<const TableSource*>& parts,
             std::vector<const Expression*>& conditions) {
  if (source.left == nullptr || (source.join != JoinKind::inner && source.join != JoinKind::cross)) {
    parts.push_back(&source);
    return;
  }
  flatten(*source.left, parts, conditions);
  flatten(*source.right, parts, conditions);
  if (source.on) conditions.push_back(source.on.get());
}

const TableSource* findTarget(const Statement& s) {
  std::vector<const TableSource*> tables;
  for (const TableSourcePtr& source : s.from)
    collectTables(*source, tables);
  const bool plain = s.target.database.empty();
  for (const TableSource* table : tables) {
    if (plain && equalIgnoringCase(table->alias, s.target.name)) return table;
  }
  const TableSource* found = nullptr;
  for (const TableSource* table : tables) {
    if (!equalIgnoringCase(table->table.name, s.target.name) || databaseOf(table->table) != databaseOf(s.target)) {
      continue;
    }
    if (found != nullptr) {
      // When several tables have the name, the one without an alias is the target.
      if (!found->alias.empty() && !table->alias.empty())
        fail(8154, "The table '" + s.target.written + "' is ambiguous.", s.target.place);
      if (found->alias.empty()) continue;
    }
    found = table;
  }
  return found;
}

std::string aliasOf(const TableSource& source) {
  return source.alias.empty() ? source.table.name : source.alias;
}

Sources bindSources(const Statement& s, Binder& binder) {
  Sources result;
  const TableSource* const target = findTarget(s);
  if (target == nullptr) {
    result.table = binder.table(s.target);
    result.target = s.target.name;
    result.from = binder.addTable(s.target, {}, result.scope);
    if (!s.from.empty()) {
      result.others = binder.from(s.from, result.scope);
      result.from += ", " + result.others;
    }
    result.separable = true;
    return result;
  }
  result.table = binder.table(target->table);
  result.target = aliasOf(*target);
  std::vector<const TableSource*> parts;
  std::vector<const Expression*> conditions;
  for (const TableSourcePtr& source : s.from)
    flatten(*source, parts, conditions);
  result.separable = std::find(parts.begin(), parts.end(), target) != parts.end();
  if (!result.separable) {
    result.from = binder.from(s.from, result.scope);
    return result;
  }
  for (const TableSource* part : parts) {
    std::string sql = binder.join(*part, result.scope);
    if (part->left != nullptr) sql.insert(0, "(").append(")");
    result.from += (result.from.empty() ? "" : ", ") + sql;
    if (part != target) result.others += (result.others.empty() ? "" : ", ") + sql;
  }
  for (const Expression* condition : conditions) {
    std::ranges::copy(conjuncts(*condition), std::back_inserter(result.parts));
    result.conditions += (result.conditions.empty() ? "" : " AND ") + binder.condition(*condition, result.scope).sql;
  }
  return result;
}

std::string whereOf(const Statement& s, Sources& sources, Binder& binder) {
  std::string where = sources.conditions;
  if (s.condition) where += (where.empty() ? "" : " AND ") + binder.restriction(*s.condition, sources.scope).sql;
  return where.empty() ? "" : " WHERE " + where;
}

// The parts that And joins, of the On conditions and of Where.
std::vector<const Expression*> conditionParts(const Statement& s, const Sources& sources) {
  std::vector<const Expression*> parts = sources.parts;
  if (s.condition) std::ranges::copy(conjuncts(*s.condition), std::back_inserter(parts));
  return parts;
}

std::string limitOf(const Statement& s) {
  return s.top ? " LIMIT " + std::to_string(*s.top) : "";
}

}  // namespace

Modification insertStatement(const Statement& s, Binder& binder, bool identityInsert) {
  const std::shared_ptr<const Table> table = binder.table(s.target);
  const InsertColumns columns = insertColumns(s, *table, identityInsert);
  std::string names;
  for (const std::size_t column : columns.given)
    names += (names.empty() ? "" : ", ") + quoteName(table->columns[column].name);
  for (const std::size_t column : columns.omitted)
    names += (names.empty() ? "" : ", ") + quoteName(table->columns[column].name);
  const std::string head = "INSERT INTO " + table->physical;
  if (s.defaultValues) {
    if (columns.omitted.empty()) return {head + " DEFAULT VALUES"};
    std::string values;
    for (const std::size_t column : columns.omitted)
      values += (values.empty() ? "" : ", ") + defaultOf(*table, column, binder).sql;
    return {head + "(" + names + ") VALUES (" + values + ")"};
  }
  bool inTableOrder = false;
  Modification result = s.query ? selectedRows(s, *table, columns, binder, inTableOrder)
                                : Modification{valueRows(s, *table, columns, binder)};
  const std::string target = head + (inTableOrder ? " " : "(" + names + ") ");
  result.sql.insert(0, target);
  if (result.grouping) result.grouping->insertHead(target);
  result.table = table;
  return result;
}

namespace {

// The rows of the table with these values in their columns; the composition's query ends before From.
std::optional<RowComposition> changedRows(const std::shared_ptr<const Table>& table, const std::string& alias,
                                          const std::map<std::size_t, Fragment>& values) {
  if (!table->hasRowid() || (table->rowidColumn >= 0 && values.contains(static_cast<std::size_t>(table->rowidColumn))))
    return {};
  RowComposition result;
  result.sql = "SELECT " + alias + '.' + table->rowid();
  result.sources.push_back({.table = table, .lookUp = {}});
  const auto copy = [&](std::size_t first, std::size_t end) {
    if (first == end) return;
    result.pieces.push_back({.kind = RowComposition::Kind::fields, .count = end - first, .first = first});
  };
  std::size_t copied = 0;
  for (const auto& [column, value] : values) {
    copy(copied, column);
    result.sql += ", " + value.sql;
    result.pieces.push_back({.kind = RowComposition::Kind::value,
                             .storage = storageOf(table->columns[column].type),
                             .required = table->columns[column].notNull});
    copied = column + 1;
  }
  copy(copied, table->columns.size());
  return result;
}

// The Update by keys, where the other tables are joined to the target by the equality of whole numbers or texts and give
// plain values.
std::optional<Matching> matchingOf(const Statement& s, const Sources& sources, const Binder& binder) {
  std::vector<Source> target, others;
  for (const Source& source : sources.scope.sources)
    (equalIgnoringCase(source.alias, sources.target) ? target : others).push_back(source);
  std::string where, sourceWhere, keys, list;
  Matching result;
  for (const Expression* const part : conditionParts(s, sources)) {
    if (const auto ofOthers = binder.boundOn(others, *part)) {
      sourceWhere += (sourceWhere.empty() ? " WHERE " : " AND ") + ofOthers->sql;
      continue;
    }
    if (const auto ofTarget = binder.boundOn(target, *part)) {
      where += ofTarget->sql + " AND ";
      continue;
    }
    if (part->kind != ExpressionKind::comparison || part->op != "=") return {};
    const bool swapped = !binder.boundOn(target, *part->operands[0]);
    const auto key = binder.boundOn(target, *part->operands[swapped ? 1 : 0]);
    const auto other = binder.boundOn(others, *part->operands[swapped ? 0 : 1]);
    if (!key || !other) return {};
    const bool texts = isText(key->type) && isText(other->type);
    if (!texts && (key->type != intType() || other->type != intType())) return {};
    keys += (keys.empty() ? "" : ", ") + key->sql;
    list += (list.empty() ? "" : ", ") + other->sql;
    ++result.keys;
  }
  if (result.keys == 0) return {};
  std::string set;
  std::map<std::size_t, Fragment> values;  // by column
  for (std::size_t i = 0; i < s.assignments.size(); ++i) {
    const Assignment& assignment = s.assignments[i];
    auto value = binder.boundOn(others, *assignment.value);
    if (!value) return {};
    list += ", " + value->sql;
    value->sql = "match_value(" + std::to_string(i) + ", " + keys + ")";
    value->isColumn = false;
    value->constant.reset();
    const auto column = static_cast<std::size_t>(sources.table->find(assignment.column));
    const Fragment stored = Binder::stored(*value, targetOf(*sources.table, column));
    set += (set.empty() ? "" : ", ") + quoteName(sources.table->columns[column].name) + " = " + stored.sql;
    values[column] = stored;
  }
  result.table = sources.table->physical;
  result.source = "SELECT " + list + " FROM " + sources.others + sourceWhere;
  const std::string as = " AS " + quoteName(sources.target);
  const std::string changed = " WHERE " + where + "has_match(" + keys + ")";
  result.sql = "UPDATE " + result.table + as + " SET " + set + changed;
  result.composition = changedRows(sources.table, quoteName(sources.target), values);
  if (result.composition) result.composition->sql += " FROM " + result.table + as + changed;
  return result;
}

// The other table of the From clause, where it is the changed one once more and so wide that SQLite's index of it would have
// more columns than the statement names, and the conditions hold no query.
const Source* sameTable(const Statement& s, const Sources& sources, const std::vector<std::string>& columns) {
  // SQLite knows which of a table's first columns are needed, and else that some beyond these are.
  constexpr std::size_t known = 63;
  const auto& all = sources.scope.sources;
  if (all.size() != 2 ||
      std::ranges::any_of(conditionParts(s, sources), [](const Expression* part) { return containsQuery(*part); })) {
    return nullptr;
  }
  const Source& other = all[equalIgnoringCase(all[0].alias, sources.target) ? 1 : 0];
  if (other.stored != sources.table) return nullptr;
  const std::vector<TableColumn>& its = other.stored->columns;
  const auto isNeeded = [&](const TableColumn& column) {
    return std::ranges::find(columns, quoteName(other.alias) + '.' + quoteName(column.name)) != columns.end();
  };
  const auto beyond = its.begin() + static_cast<std::ptrdiff_t>(std::min(known, its.size()));
  return std::any_of(beyond, its.end(), isNeeded) ? &other : nullptr;
}

// The table in a From clause with the given columns alone, and only the rows that its own conditions leave.
std::string onlyColumnsOf(const Source& source, const std::vector<std::string>& columns, const Statement& s,
                          const Sources& sources, const Binder& binder) {
  const std::string alias = quoteName(source.alias);
  std::string list, where;
  for (const std::string& column : columns) {
    if (!column.starts_with(alias + '.')) continue;
    list += (list.empty() ? "" : ", ") + column + " AS " + column.substr(alias.size() + 1);
  }
  for (const Expression* const part : conditionParts(s, sources)) {
    if (const auto own = binder.boundOn({source}, *part)) where += (where.empty() ? " WHERE " : " AND ") + own->sql;
  }
  // With a limit SQLite does not put it back into the query around.
  return "(SELECT " + (list.empty() ? "1" : list) + " FROM " + source.stored->physical + " AS " + alias + where +
         " LIMIT -1) AS " + alias;
}

}  // namespace

Modification updateStatement(const Statement& s, Binder& binder) {
  Sources sources = bindSources(s, binder);
  const Table& table = *sources.table;
  struct NewValue {
    std::string column, sql;
  };
  std::vector<NewValue> values;
  std::map<std::size_t, Fragment> newValues;  // by column
  for (const Assignment& assignment : s.assignments) {
    const int place = table.find(assignment.column);
    if (place < 0) fail(207, "Invalid column name '" + assignment.column + "'.", assignment.place);
    const auto index = static_cast<std::size_t>(place);
    const std::string column = quoteName(table.columns[index].name);
    if (table.columns[index].identity)
      fail(8102, "Cannot update identity column '" + table.columns[index].name + "'.", assignment.place);
    if (std::any_of(values.begin(), values.end(), [&](const NewValue& value) { return value.column == column; })) {
      fail(264,
           "The column name '" + assignment.column +
               "' is specified more than once in the SET clause or column list of an INSERT. A column cannot be "
               "assigned more than one value in the same clause.",
           assignment.place);
    }
    const Fragment value = Binder::stored(binder.value(*assignment.value, sources.scope), targetOf(table, index));
    values.push_back({column, value.sql});
    newValues[index] = value;
  }
  const std::string where = whereOf(s, sources, binder);
  const std::string target = quoteName(sources.target);
  std::string sql = "UPDATE " + table.physical + " AS ";
  if (sources.separable && !s.top) {
    sql += target + " SET ";
    for (std::size_t i = 0; i < values.size(); ++i)
      sql += (i == 0 ? "" : ", ") + values[i].column + " = " + values[i].sql;
    if (sources.others.empty()) return {sql + where};
    Modification result{
        .sql = sql + " FROM " + sources.others + where, .table = sources.table, .composition = {}, .isUpdate = true};
    result.matching = matchingOf(s, sources, binder);
    const std::vector<std::string> columns = columnsIn(sql + where);
    if (const Source* const other = sameTable(s, sources, columns)) {
      result.composition = changedRows(sources.table, target, newValues);
      if (result.composition)
        result.composition->sql += " FROM " + table.physical + " AS " + target + " CROSS JOIN " +
                                   onlyColumnsOf(*other, columns, s, sources, binder) + where;
    }
    return result;
  }
  // The new values are computed over the whole From clause and then assigned to the rows of the target.
  sql += "target_row SET ";
  std::string list = target + '.' + table.rowid() + " AS row_number";
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string name = "value" + std::to_string(i);
    sql += (i == 0 ? "" : ", ") + values[i].column + " = source." + name;
    list += ", " + values[i].sql + " AS " + name;
  }
  return {sql + " FROM (SELECT " + list + " FROM " + sources.from + where + limitOf(s) +
          ") AS source WHERE target_row." + table.rowid() + " = source.row_number"};
}

std::string deleteStatement(const Statement& s, Binder& binder) {
  Sources sources = bindSources(s, binder);
  const Table& table = *sources.table;
  const std::string where = whereOf(s, sources, binder);
  const std::string target = quoteName(sources.target);
  if (s.from.empty() && !s.top) return "DELETE FROM " + table.physical + " AS " + target + where;
  return "DELETE FROM " + table.physical + " WHERE " + table.rowid() + " IN (SELECT " + target + '.' + table.rowid() +
         " FROM " + sources.from + where + limitOf(s) + ")";
}

}  // namespace quillon::tsql
