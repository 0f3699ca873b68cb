// Which rows of other tables a query's rows are put together of: see row_composition.h.
#include <algorithm>
#include <utility>
#include <vector>

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

// Whether the condition is one of columns and constants that can be asked of less rows than the query would ask it of,
// because no value of theirs ends it with an error.
bool canBeLookedUp(std::string_view sql) {
  return std::ranges::all_of(namesIn(sql), [](const SqlName& name) {
    return name.kind == SqlName::Kind::column ||
           (name.kind == SqlName::Kind::call && (name.text == "text_like" || name.text == "ifnull"));
  });
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

}  // namespace

// A table joined in a line of left joins.
struct Binder::Joined {
  std::size_t source = 0;
  std::string table, on;
  std::string written;               // as the From clause joins it
  std::vector<std::string> columns;  // in the condition
  bool isKeyed = false;              // the condition names a key of it
};

std::optional<Binder::Joined> Binder::joinedTable(const TableSource& join, Scope& scope) {
  const Source* const found = sourceOf(*join.right, scope);
  if (found == nullptr || containsQuery(*join.on)) return {};
  Joined result;
  result.source = static_cast<std::size_t>(found - scope.sources.data());
  result.table = tableAs(*found);
  result.on = condition(*join.on, scope).sql;
  result.written = " LEFT JOIN " + result.table + " ON " + result.on;
  result.columns = columnsIn(result.on);
  if (!canBeLookedUp(result.on)) return {};
  std::vector<std::size_t> equated;
  for (const Expression* const part : conjuncts(*join.on)) {
    if (part->kind != ExpressionKind::comparison || part->op != "=") continue;
    for (const bool swapped : {false, true}) {
      const Expression& operand = *part->operands[swapped ? 1 : 0];
      const Expression& other = *part->operands[swapped ? 0 : 1];
      if (operand.kind != ExpressionKind::column) continue;
      const TableColumn* const column = columnOf(*found, value(operand, scope).sql);
      // What is made of the row itself is equal to its key in any number of rows.
      const auto isOwn = [&](const std::string& name) { return name.starts_with(prefixOf(*found)); };
      if (column != nullptr && std::ranges::none_of(columnsIn(value(other, scope).sql), isOwn))
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
      isFree = canBeLookedUp(sql) && std::ranges::all_of(columnsIn(sql), isTheirs);
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
  columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
  return columns;
}

// A composition while it is made.
class Binder::CompositionMaker {
 public:
  // `items` are those of the query, one for each of the places.
  CompositionMaker(const std::vector<Source>& sources, const std::vector<Fragment>& items, const Places& places)
      : sources_(sources), items_(items), places_(places), pieces_(items.size()), copiedFrom_(sources.size()) {
    for (std::size_t i = 0; i < places.size(); ++i)
      pieces_[i].required = places[i].required;
  }

  // Copies what the items take as it stands of a table's rows, which the query tells by their `number`.
  void copyFrom(std::size_t source, const std::string& number) {
    // Fewer columns are read as fast by SQLite.
    constexpr std::size_t some = 4;
    const Table& table = *sources_[source].stored;
    std::vector<std::pair<std::size_t, std::size_t>> found;  // items and columns
    for (std::size_t item = 0; item < items_.size(); ++item) {
      const TableColumn* const column = columnOf(sources_[source], items_[item].sql);
      if (column == nullptr || storageOf(column->type) != places_[item].storage) continue;
      // The row's number is not in the row.
      const std::size_t place = placeOf(sources_[source], *column);
      if (static_cast<int>(place) != table.rowidColumn) found.emplace_back(item, place);
    }
    if (found.size() < some) return;
    copiedFrom_[source] = made_.sources.size();
    for (const auto& [item, column] : found)
      copy(item, column);
    made_.sources.push_back({.table = sources_[source].stored, .lookUp = {}});
    asked_.push_back(columnFragment(number, intType()));
  }

  void lookUp(const LookUp& lookUp) {
    RowComposition::Source source;
    std::string list;
    for (const std::size_t item : lookUp.items) {
      copy(item, source.given.size());
      source.given.push_back(places_[item].storage);
      list += (list.empty() ? "" : ", ") + items_[item].sql;
    }
    std::vector<std::string> parameters;
    for (const std::string& key : lookUp.keys) {
      source.keys.push_back(keyOf(key));
      if (!source.keys.back().source) asked_.push_back(columnFragment(key, intType()));
      parameters.push_back('?' + std::to_string(source.keys.size()));
      // What is compared with the parameter is compared as with the column.
      if (isTextColumn(sources_, key)) parameters.back() = '(' + parameters.back() + " COLLATE " + collationName + ')';
    }
    // One row always, like the row that the tables are joined to.
    source.lookUp = "SELECT " + list + " FROM (SELECT 1) LEFT JOIN " + lookUp.table + " ON " +
                    withColumnsReplaced(lookUp.on, lookUp.keys, parameters) + lookUp.joined;
    for (const std::size_t table : lookUp.tables) {
      if (!lookUp.isKeyed) source.smallTables.push_back(sources_[table].stored->physical);
    }
    made_.sources.push_back(std::move(source));
  }

  // Asks for what remains. Nothing: so few columns are copied that SQLite makes the rows as fast.
  std::optional<RowComposition> finish() {
    constexpr std::size_t wide = 12;
    if (copied_ < wide) return {};
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      RowComposition::Piece& piece = pieces_[i];
      if (piece.kind == RowComposition::Kind::nulls && (!items_[i].isNullLiteral || piece.required)) {
        piece.kind = RowComposition::Kind::value;
        piece.storage = places_[i].storage;
        asked_.push_back(items_[i]);
      }
      if (!made_.pieces.empty() && made_.pieces.back().goesOnWith(piece)) {
        ++made_.pieces.back().count;
      } else {
        made_.pieces.push_back(piece);
      }
    }
    return std::move(made_);
  }
  // What the composition's query asks for.
  std::vector<Fragment> takeAsked() { return std::move(asked_); }

 private:
  // The item is a column of the source that is added now.
  void copy(std::size_t item, std::size_t column) {
    pieces_[item].kind = RowComposition::Kind::fields;
    pieces_[item].source = made_.sources.size();
    pieces_[item].first = column;
    ++copied_;
  }

  RowComposition::Key keyOf(const std::string& sql) const {
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      const TableColumn* const column = copiedFrom_[i] ? columnOf(sources_[i], sql) : nullptr;
      if (column == nullptr) continue;
      const std::size_t place = placeOf(sources_[i], *column);
      if (static_cast<int>(place) != sources_[i].stored->rowidColumn)
        return {.source = copiedFrom_[i], .column = place};
    }
    return {};
  }

  const std::vector<Source>& sources_;
  const std::vector<Fragment>& items_;
  const Places& places_;
  RowComposition made_;
  std::vector<RowComposition::Piece> pieces_;  // one an item
  std::vector<Fragment> asked_;
  std::size_t copied_ = 0;
  std::vector<std::optional<std::size_t>> copiedFrom_;  // by source: the composition's
};

std::optional<RowComposition> Binder::composition(const SelectCore& select, Core& core, const Places& places) {
  const std::string from = core.from;
  const std::vector<LookUp> lookUps = takeLookUps(select, core);
  const std::vector<Source>& sources = core.scope->sources;
  const auto isLookedUp = [&](std::size_t source) {
    return std::ranges::any_of(lookUps, [source](const LookUp& lookUp) {
      return std::ranges::find(lookUp.tables, source) != lookUp.tables.end();
    });
  };
  CompositionMaker maker(sources, core.items, places);
  for (std::size_t source = 0; source < sources.size(); ++source) {
    const std::shared_ptr<const Table>& table = sources[source].stored;
    if (table == nullptr || !table->hasRowid() || isLookedUp(source)) continue;
    const std::string number = prefixOf(sources[source]) + table->rowid();
    // Any row of a group will do.
    maker.copyFrom(source, core.groupBy.empty() ? number : "min(" + number + ")");
  }
  for (const LookUp& lookUp : lookUps)
    maker.lookUp(lookUp);
  auto result = maker.finish();
  if (result) {
    std::vector<Fragment> items = std::exchange(core.items, maker.takeAsked());
    std::vector<OutputColumn> columns = std::exchange(core.columns, std::vector<OutputColumn>(core.items.size()));
    result->sql = renderCore(core, Naming::none);
    // Rows of one table without an index come in the order of their numbers.
    const bool isPlain = sources.size() == 1 && result->sources.size() == 1 && core.order.empty() &&
                         core.groupBy.empty() && !core.top && !(select.where && containsQuery(*select.where));
    if (isPlain) result->readingFirst = " ORDER BY +" + core.items[0].sql;
    core.items = std::move(items);
    core.columns = std::move(columns);
  }
  core.from = from;
  return result;
}

}  // namespace quillon::tsql
