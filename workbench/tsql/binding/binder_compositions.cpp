// Which rows of other tables a query's rows are put together of: see row_composition.h.
#include <algorithm>
#include <utility>
#include <vector>

#include "frame/text.h"
#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/binding/binder_core.h"
#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/values/collation.h"

namespace quillon::tsql {

// A table that is left joined, with the tables that are joined to it alone: together a function of the columns in its
// condition that are of others.
struct Binder::LookUp {
  std::string table, on, joined;    // the table as From names it, its condition, the joins of the others
  std::vector<std::string> keys;    // the columns of others in it, each once
  std::vector<std::size_t> tables;  // among the scope's sources
  std::vector<std::size_t> items;   // of the query, that are made of their columns
  bool isKeyed = false;             // by their keys, so that there is one row at most
};

namespace {

std::string prefixOf(const Source& source) {
  return quoteName(source.alias) + '.';
}

const TableColumn* columnOf(const Source& source, std::string_view sql) {
  const std::string prefix = prefixOf(source);
  if (source.stored == nullptr || !sql.starts_with(prefix)) return nullptr;
  const auto found = std::ranges::find_if(source.stored->columns, [&](const TableColumn& column) {
    return sql.substr(prefix.size()) == quoteName(column.name);
  });
  return found == source.stored->columns.end() ? nullptr : &*found;
}

std::size_t placeOf(const Source& source, const TableColumn& column) {
  return static_cast<std::size_t>(&column - source.stored->columns.data());
}

bool isLineOfLeftJoins(const TableSource& source) {
  return source.left == nullptr || (source.join == JoinKind::left && source.right->left == nullptr && source.on &&
                                    isLineOfLeftJoins(*source.left));
}

// Whether the columns have a key of the table among them, so that it has one row at most with their values.
bool haveKey(const Table& table, const std::vector<std::size_t>& columns) {
  const auto has = [&](int column) {
    return std::ranges::any_of(columns, [column](std::size_t one) { return static_cast<int>(one) == column; });
  };
  if (table.rowidColumn >= 0 && has(table.rowidColumn)) return true;
  return std::ranges::any_of(table.keys, [&](const KeyDefinition& key) {
    return std::ranges::all_of(key.columns, [&](const std::string& name) { return has(table.find(name)); });
  });
}

// A piece of SQLite's SQL: a column with its table's alias, a call's name, or a parameter, by the place in the text.
struct Piece {
  enum class Kind { column, call, parameter } kind;
  std::size_t begin, end;
};

// The end of what is quoted from `begin` on; a quote in it is doubled.
std::size_t endOfQuoted(std::string_view sql, std::size_t begin) {
  std::size_t end = begin;
  do
    end = sql.find(sql[begin], end + 1) + 1;
  while (end < sql.size() && sql[end] == sql[begin]);
  return end;
}

std::vector<Piece> piecesOf(std::string_view sql) {
  const auto isLower = [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; };
  std::vector<Piece> pieces;
  for (std::size_t at = 0; at < sql.size();) {
    const std::size_t begin = at;
    if (sql[at] == '\'') {
      at = endOfQuoted(sql, at);
    } else if (sql[at] == '"') {
      at = endOfQuoted(sql, at);
      if (!sql.substr(at).starts_with('.')) continue;
      at = sql[at + 1] == '"' ? endOfQuoted(sql, at + 1) : sql.find_first_of(" ,()", at);
      at = std::min(at, sql.size());
      pieces.push_back({Piece::Kind::column, begin, at});
    } else if (isLower(sql[at])) {
      while (at < sql.size() && isLower(sql[at]))
        ++at;
      if (at < sql.size() && sql[at] == '(') pieces.push_back({Piece::Kind::call, begin, at});
    } else if (sql[at++] == '?') {
      pieces.push_back({Piece::Kind::parameter, begin, at});
    }
  }
  return pieces;
}

// Whether the condition is one of columns and constants that can be asked of less rows than the query would ask it of,
// because no value of theirs ends it with an error.
bool canBeLookedUp(std::string_view sql) {
  return std::ranges::all_of(piecesOf(sql), [sql](const Piece& piece) {
    const std::string_view text = sql.substr(piece.begin, piece.end - piece.begin);
    return piece.kind == Piece::Kind::column ||
           (piece.kind == Piece::Kind::call && (text == "text_like" || text == "ifnull"));
  });
}

std::string withColumnsReplaced(std::string_view sql, const std::vector<std::string>& columns,
                                const std::vector<std::string>& by) {
  std::string result;
  std::size_t at = 0;
  for (const Piece& piece : piecesOf(sql)) {
    const auto column = std::ranges::find(columns, sql.substr(piece.begin, piece.end - piece.begin));
    if (column == columns.end()) continue;
    result.append(sql.substr(at, piece.begin - at)).append(by[static_cast<std::size_t>(column - columns.begin())]);
    at = piece.end;
  }
  return result.append(sql.substr(at));
}

// Whether a column of some table or derived table is a text.
bool isTextColumn(const std::vector<Source>& sources, std::string_view sql) {
  return std::ranges::any_of(sources, [sql](const Source& source) {
    const std::string prefix = prefixOf(source);
    return sql.starts_with(prefix) && std::ranges::any_of(source.columns, [&](const OutputColumn& column) {
             return isText(column.type) && sql.substr(prefix.size()) == quoteName(column.name);
           });
  });
}

// The columns that the text names, each once.
std::vector<std::string> columnsIn(std::string_view sql) {
  std::vector<std::string> columns;
  for (const Piece& piece : piecesOf(sql)) {
    std::string column(sql.substr(piece.begin, piece.end - piece.begin));
    if (piece.kind == Piece::Kind::column && std::ranges::find(columns, column) == columns.end())
      columns.push_back(std::move(column));
  }
  return columns;
}

}  // namespace

// A table joined in a line of left joins.
struct Binder::Joined {
  std::size_t source = 0;
  std::string table, on;
  std::string written;               // as the From clause joins it
  std::vector<std::string> columns;  // in the condition
  bool canBeLookedUp = false;
  bool isKeyed = false;  // the condition names a key of it
};

std::optional<Binder::Joined> Binder::joinedTable(const TableSource& join, Scope& scope) {
  const TableSource& table = *join.right;
  const std::string& alias = table.alias.empty() ? table.table.name : table.alias;
  const auto found =
      std::ranges::find_if(scope.sources, [&](const Source& source) { return equalIgnoringCase(source.alias, alias); });
  if (found == scope.sources.end() || found->stored == nullptr || containsQuery(*join.on)) return {};
  Joined result;
  result.source = static_cast<std::size_t>(found - scope.sources.begin());
  result.table = found->stored->physical + " AS " + quoteName(found->alias);
  result.on = condition(*join.on, scope).sql;
  result.written = " LEFT JOIN " + result.table + " ON " + result.on;
  result.columns = columnsIn(result.on);
  if (!quillon::tsql::canBeLookedUp(result.on)) return {};
  std::vector<std::size_t> equated;
  for (const Expression* const part : conjuncts(*join.on)) {
    if (part->kind != ExpressionKind::comparison || part->op != "=") continue;
    for (const ExpressionPtr& operand : part->operands) {
      if (operand->kind != ExpressionKind::column) continue;
      if (const TableColumn* const column = columnOf(*found, value(*operand, scope).sql))
        equated.push_back(placeOf(*found, *column));
    }
  }
  result.isKeyed = haveKey(*found->stored, equated);
  return result;
}

std::vector<Binder::LookUp> Binder::takeLookUps(const SelectCore& select, Core& core) {
  std::vector<LookUp> result;
  Scope& scope = *core.scope;
  if (scope.parent != nullptr || select.from.size() != 1 || !isLineOfLeftJoins(*select.from[0])) return result;
  std::vector<Joined> line;
  for (const TableSource* join = select.from[0].get(); join->left != nullptr; join = join->left.get()) {
    auto joined = joinedTable(*join, scope);
    if (joined && core.from.find(joined->written) != std::string::npos &&
        core.from.find(joined->written) == core.from.rfind(joined->written)) {
      line.insert(line.begin(), std::move(*joined));
    }
  }
  while (!line.empty()) {
    // The first, with all that are joined to it or to those alone.
    std::vector<std::string> prefixes{prefixOf(scope.sources[line.front().source])};
    const auto isTheirs = [&](const std::string& column) {
      return std::ranges::any_of(prefixes, [&](const std::string& prefix) { return column.starts_with(prefix); });
    };
    LookUp lookUp{.table = line.front().table,
                  .on = line.front().on,
                  .joined = {},
                  .keys = line.front().columns,
                  .tables = {line.front().source},
                  .items = {},
                  .isKeyed = line.front().isKeyed};
    std::erase_if(lookUp.keys, isTheirs);
    std::string from = core.from;
    from.erase(from.find(line.front().written), line.front().written.size());
    for (auto joined = line.begin() + 1; joined != line.end(); ++joined) {
      const std::string own = prefixOf(scope.sources[joined->source]);
      const auto isOutside = [&](const std::string& column) { return !column.starts_with(own) && !isTheirs(column); };
      if (std::ranges::none_of(joined->columns, isTheirs) || std::ranges::any_of(joined->columns, isOutside)) continue;
      prefixes.push_back(own);
      lookUp.joined += joined->written;
      lookUp.tables.push_back(joined->source);
      lookUp.isKeyed = lookUp.isKeyed && joined->isKeyed;
      from.erase(from.find(joined->written), joined->written.size());
    }
    // Nothing else may ask for their columns.
    const auto namesTheirs = [&](const std::string& sql) { return std::ranges::any_of(columnsIn(sql), isTheirs); };
    bool isFree = !lookUp.keys.empty() && !namesTheirs(from) && !namesTheirs(core.where) &&
                  std::ranges::none_of(core.order, namesTheirs);
    for (std::size_t i = 0; i < core.items.size() && isFree; ++i) {
      const std::string& sql = core.items[i].sql;
      if (!namesTheirs(sql)) continue;
      lookUp.items.push_back(i);
      isFree = quillon::tsql::canBeLookedUp(sql) && std::ranges::all_of(columnsIn(sql), isTheirs);
    }
    // Rows that nobody asks for can still be several.
    if (lookUp.items.empty() && !lookUp.isKeyed) isFree = false;
    if (!isFree) {
      line.erase(line.begin());
      continue;
    }
    core.from = std::move(from);
    std::erase_if(line, [&](const Joined& joined) {
      return std::ranges::find(lookUp.tables, joined.source) != lookUp.tables.end();
    });
    if (!lookUp.items.empty()) result.push_back(std::move(lookUp));
  }
  return result;
}

std::vector<std::size_t> Binder::columnsOfKeys(const Core& core) {
  const Source& source = core.scope->sources.at(0);
  std::vector<std::size_t> columns;
  for (const std::string& key : core.groupBy) {
    for (const std::string& sql : columnsIn(key)) {
      const TableColumn* const column = columnOf(source, sql);
      if (column == nullptr || static_cast<int>(placeOf(source, *column)) == source.stored->rowidColumn) return {};
      columns.push_back(placeOf(source, *column));
    }
  }
  std::ranges::sort(columns);
  const auto repeated = std::ranges::unique(columns);
  columns.erase(repeated.begin(), repeated.end());
  return columns;
}

RowComposition::Key Binder::keyOf(const std::string& sql, const std::vector<Source>& sources,
                                  const std::vector<std::optional<std::size_t>>& copiedFrom) {
  for (std::size_t i = 0; i < sources.size(); ++i) {
    const TableColumn* const column = copiedFrom[i] ? columnOf(sources[i], sql) : nullptr;
    if (column == nullptr) continue;
    const std::size_t place = placeOf(sources[i], *column);
    if (static_cast<int>(place) != sources[i].stored->rowidColumn) return {.source = copiedFrom[i], .column = place};
  }
  return {};
}

std::optional<RowComposition> Binder::composition(const SelectCore& select, Core& core, const Places& places) {
  // A row of which fewer columns are copied is made as fast by SQLite, and fewer columns of a table are read as fast.
  constexpr std::size_t wide = 12, some = 4;
  const std::string from = core.from;
  const std::vector<LookUp> lookUps = takeLookUps(select, core);
  const std::vector<Source>& sources = core.scope->sources;
  std::vector<RowComposition::Piece> pieces(core.items.size());
  std::vector<bool> isMade(core.items.size());  // the piece is one of fields
  RowComposition result;
  std::vector<Fragment> items;
  std::size_t copied = 0;
  std::vector<std::optional<std::size_t>> copiedFrom(sources.size());  // by the scope's sources
  for (std::size_t source = 0; source < sources.size(); ++source) {
    if (sources[source].stored == nullptr || !sources[source].stored->hasRowid()) continue;
    const Table& table = *sources[source].stored;
    std::vector<std::pair<std::size_t, std::size_t>> found;  // items and columns
    for (std::size_t i = 0; i < core.items.size(); ++i) {
      const TableColumn* const column = isMade[i] ? nullptr : columnOf(sources[source], core.items[i].sql);
      if (column == nullptr || storageOf(column->type) != places[i].storage) continue;
      // The row's number is not in the row.
      const std::size_t place = placeOf(sources[source], *column);
      if (static_cast<int>(place) != table.rowidColumn) found.emplace_back(i, place);
    }
    const bool isLookedUp = std::ranges::any_of(lookUps, [source](const LookUp& lookUp) {
      return std::ranges::find(lookUp.tables, source) != lookUp.tables.end();
    });
    if (found.size() < some || isLookedUp) continue;
    copiedFrom[source] = result.sources.size();
    for (const auto& [item, column] : found) {
      pieces[item] = {.kind = RowComposition::Kind::fields, .source = result.sources.size(), .first = column};
      isMade[item] = true;
      ++copied;
    }
    result.sources.push_back({.schema = table.schema, .stored = table.stored, .lookUp = {}});
    const std::string number = prefixOf(sources[source]) + table.rowid();
    // Any row of a group will do.
    items.push_back(columnFragment(core.groupBy.empty() ? number : "min(" + number + ")", intType()));
  }
  for (const LookUp& lookUp : lookUps) {
    RowComposition::Source& source = result.sources.emplace_back();
    // What is compared with a parameter is compared as with the column.
    std::vector<std::string> parameters;
    for (const std::string& key : lookUp.keys) {
      parameters.push_back('?' + std::to_string(parameters.size() + 1));
      if (isTextColumn(sources, key)) parameters.back() = '(' + parameters.back() + " COLLATE " + collationName + ')';
    }
    const std::string on = withColumnsReplaced(lookUp.on, lookUp.keys, parameters);
    std::string list;
    for (const std::size_t item : lookUp.items) {
      pieces[item] = {
          .kind = RowComposition::Kind::fields, .source = result.sources.size() - 1, .first = source.given.size()};
      isMade[item] = true;
      ++copied;
      list += (list.empty() ? "" : ", ") + core.items[item].sql;
      source.given.push_back(places[item].storage);
    }
    source.lookUp = "SELECT " + list + " FROM (SELECT 1) LEFT JOIN " + lookUp.table + " ON " + on + lookUp.joined;
    for (const std::string& sql : lookUp.keys) {
      source.keys.push_back(keyOf(sql, sources, copiedFrom));
      if (!source.keys.back().source) items.push_back(columnFragment(sql, intType()));
    }
    for (const std::size_t table : lookUp.tables) {
      if (!lookUp.isKeyed) source.smallTables.push_back(sources[table].stored->physical);
    }
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    RowComposition::Piece& piece = pieces[i];
    piece.required = places[i].required;
    if (!isMade[i] && (!core.items[i].isNullLiteral || piece.required)) {
      piece.kind = RowComposition::Kind::value;
      piece.storage = places[i].storage;
      items.push_back(core.items[i]);
    }
    if (!result.pieces.empty() && result.pieces.back().goesOnWith(piece)) {
      ++result.pieces.back().count;
    } else {
      result.pieces.push_back(piece);
    }
  }
  std::swap(core.items, items);
  std::vector<OutputColumn> columns = std::exchange(core.columns, std::vector<OutputColumn>(core.items.size()));
  result.sql = renderCore(core, Naming::none);
  // Rows of one table without an index come in the order of their numbers.
  const bool isPlain = sources.size() == 1 && select.from.size() == 1 && core.order.empty() && core.groupBy.empty() &&
                       !core.top && !(select.where && containsQuery(*select.where));
  if (isPlain && result.sources.size() == 1) result.readingFirst = " ORDER BY +" + core.items[0].sql;
  core.items = std::move(items);
  core.columns = std::move(columns);
  core.from = from;
  if (copied < wide) return {};
  return result;
}

}  // namespace quillon::tsql
