// QueryParser: queries and their From clauses.
#include <algorithm>
#include <array>

#include "workbench/tsql/syntax/parser_core.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {

QueryPtr QueryParser::query() {
  if (isWord("with")) refuse("common table expressions (WITH)");
  QueryPtr result = unionTree();
  if (acceptWord("order")) {
    expectWord("by");
    result->orderBy = orderItems();
  }
  if (isWord("for")) refuse("the FOR clause");
  if (isWord("compute")) refuse("the COMPUTE clause");
  return result;
}

void QueryParser::queryOption() {
  if (!acceptWord("option")) return;
  expectSymbol("(");
  for (int depth = 1; depth > 0;) {
    if (atEnd()) syntaxError();
    if (isSymbol("(")) ++depth;
    if (isSymbol(")")) --depth;
    next();
  }
}

QueryPtr QueryParser::unionTree() {
  QueryPtr left = intersection();
  for (;;) {
    const bool isUnion = isWord("union");
    if (!isUnion && !isWord("except")) return left;
    countLink();
    auto node = std::make_unique<Query>();
    node->place = place();
    next();
    node->operation = !isUnion            ? SetOperation::except
                      : acceptWord("all") ? SetOperation::unionAll
                                          : SetOperation::unionDistinct;
    node->left = std::move(left);
    node->right = intersection();
    left = std::move(node);
  }
}

QueryPtr QueryParser::intersection() {
  QueryPtr left = queryPrimary();
  while (isWord("intersect")) {
    countLink();
    auto node = std::make_unique<Query>();
    node->place = place();
    next();
    node->operation = SetOperation::intersect;
    node->left = std::move(left);
    node->right = queryPrimary();
    left = std::move(node);
  }
  return left;
}

QueryPtr QueryParser::queryPrimary() {
  const Level level(*this);
  if (acceptSymbol("(")) {
    QueryPtr inner = unionTree();
    expectSymbol(")");
    return inner;
  }
  auto result = std::make_unique<Query>();
  result->place = place();
  result->core = selectCore();
  return result;
}

std::unique_ptr<SelectCore> QueryParser::selectCore() {
  auto core = std::make_unique<SelectCore>();
  core->place = place();
  expectWord("select");
  if (acceptWord("distinct")) {
    core->distinct = true;
  } else {
    acceptWord("all");
  }
  core->top = topClause();
  do {
    core->items.push_back(selectItem());
  } while (acceptSymbol(","));
  if (acceptWord("into")) core->into = objectName();
  if (acceptWord("from")) core->from = fromList();
  if (acceptWord("where")) core->where = condition();
  if (acceptWord("group")) {
    expectWord("by");
    acceptWord("all");
    do {
      core->groupBy.push_back(value());
    } while (acceptSymbol(","));
    if (isWord("with") && (isWordAt(1, "rollup") || isWordAt(1, "cube")))
      refuse("GROUP BY ... WITH " + upper(peek(1).text));
  }
  if (acceptWord("having")) core->having = condition();
  return core;
}

std::optional<std::int64_t> QueryParser::topClause() {
  if (!acceptWord("top")) return std::nullopt;
  const bool bracketed = acceptSymbol("(");
  const std::int64_t count = signedInteger();
  if (bracketed) expectSymbol(")");
  if (isWord("percent")) refuse("TOP ... PERCENT");
  if (isWord("with") && isWordAt(1, "ties")) refuse("TOP ... WITH TIES");
  if (count < 0) syntaxError();
  return count;
}

// `*` or `t.*`
bool QueryParser::starItem(SelectItem& item) {
  if (acceptSymbol("*")) return true;
  std::size_t ahead = 0;
  while (isNameAt(ahead) && isSymbolAt(ahead + 1, ".")) {
    ahead += 2;
    while (isSymbolAt(ahead, "."))
      ++ahead;
  }
  if (ahead == 0 || !isSymbolAt(ahead, "*")) return false;
  for (; !isSymbol("*");) {
    if (isNameAt(0)) {
      item.starPrefix.push_back(name());
    } else {
      expectSymbol(".");
      if (isSymbol(".")) item.starPrefix.emplace_back();
    }
  }
  next();
  return true;
}

SelectItem QueryParser::selectItem() {
  SelectItem item;
  item.place = place();
  if (starItem(item)) return item;
  const bool nameFirst = isNameAt(0) || peek().kind == TokenKind::text;
  if (nameFirst && isSymbolAt(1, "=")) {
    if (peek().text.starts_with('@')) refuse("variables (" + peek().text + ")");
    const Token& alias = next();
    item.alias = alias.kind == TokenKind::word ? alias.text : alias.value;
    next();
    item.value = value();
    return item;
  }
  item.value = value();
  item.alias = aliasAfter();
  return item;
}

// [AS] name, or a text in its place; empty when none follows.
std::string QueryParser::aliasAfter() {
  const bool isText = peek().kind == TokenKind::text || peek().kind == TokenKind::nationalText;
  if (acceptWord("as")) {
    if (peek().kind == TokenKind::text || peek().kind == TokenKind::nationalText) return next().value;
    return name();
  }
  if (isText) return next().value;
  return isNameAt(0) ? name() : std::string();
}

std::vector<OrderItem> QueryParser::orderItems() {
  std::vector<OrderItem> items;
  do {
    OrderItem item;
    item.value = value();
    item.descending = acceptWord("desc");
    if (!item.descending) acceptWord("asc");
    items.push_back(std::move(item));
  } while (acceptSymbol(","));
  if (isWord("offset")) refuse("OFFSET ... FETCH");
  return items;
}

std::vector<TableSourcePtr> QueryParser::fromList() {
  std::vector<TableSourcePtr> list;
  do {
    list.push_back(joinedTables());
  } while (acceptSymbol(","));
  return list;
}

bool QueryParser::beginsQuery() const {
  std::size_t ahead = 0;
  while (isSymbolAt(ahead, "("))
    ++ahead;
  return isWordAt(ahead, "select");
}

bool QueryParser::startsJoin() const {
  if (isWord("join") || isWord("inner") || isWord("cross") || isWord("full")) return true;
  return (isWord("left") || isWord("right")) && !isSymbolAt(1, "(");
}

JoinKind QueryParser::joinKind() {
  JoinKind kind = JoinKind::inner;
  if (acceptWord("cross")) {
    kind = JoinKind::cross;
    if (isWord("apply")) refuse("CROSS APPLY");
  } else if (acceptWord("left")) {
    kind = JoinKind::left;
    acceptWord("outer");
  } else if (acceptWord("right")) {
    kind = JoinKind::right;
    acceptWord("outer");
  } else if (acceptWord("full")) {
    kind = JoinKind::full;
    acceptWord("outer");
  } else {
    acceptWord("inner");
  }
  // Join hints change how a join runs, not its rows.
  if (isWord("loop") || isWord("hash") || isWord("merge") || isWord("remote")) next();
  expectWord("join");
  return kind;
}

TableSourcePtr QueryParser::joinedTables() {
  TableSourcePtr left = tablePrimary();
  while (startsJoin())
    left = continueJoin(std::move(left));
  return left;
}

// One join. `a join b join c on .. on ..`: the inner On belongs to the later join.
TableSourcePtr QueryParser::continueJoin(TableSourcePtr left) {
  const Level level(*this);
  countLink();
  auto join = std::make_unique<TableSource>();
  join->table.place = place();
  join->join = joinKind();
  join->left = std::move(left);
  join->right = tablePrimary();
  if (join->join == JoinKind::cross) return join;
  while (startsJoin())
    join->right = continueJoin(std::move(join->right));
  expectWord("on");
  join->on = condition();
  return join;
}

TableSourcePtr QueryParser::tablePrimary() {
  const Level level(*this);
  auto source = std::make_unique<TableSource>();
  source->table.place = place();
  if (acceptSymbol("(")) {
    if (isWord("values")) refuse("a table of VALUES");
    if (!beginsQuery()) {  // (a join b on ..)
      source = joinedTables();
      expectSymbol(")");
      return source;
    }
    source->derived = query();
    expectSymbol(")");
    acceptWord("as");
    source->alias = name();
    if (isSymbol("(")) source->columnAliases = nameList();
    return source;
  }
  source->table = objectName();
  if (isSymbol("(") && !isWordAt(1, "nolock")) {
    static constexpr auto hints = std::to_array<std::string_view>(
        {"nolock", "readuncommitted", "readcommitted", "readpast", "repeatableread", "serializable", "holdlock",
         "rowlock", "paglock", "tablock", "tablockx", "updlock", "xlock", "index", "nowait", "snapshot", "fastfirstrow",
         "forceseek"});
    if (std::none_of(hints.begin(), hints.end(), [&](std::string_view hint) { return isWordAt(1, hint); })) {
      refuse("functions that return tables (" + source->table.written + ")");
    }
  }
  tableHints();
  if (isWord("as") || isNameAt(0)) {
    acceptWord("as");
    source->alias = name();
  }
  if (isWord("tablesample") || isWord("pivot") || isWord("unpivot")) refuse(upper(peek().text));
  tableHints();
  return source;
}

void QueryParser::tableHints() {
  const bool withWord = isWord("with") && isSymbolAt(1, "(");
  if (withWord) next();
  // Hints without WITH: brackets directly after a table. The caller has ruled out the column list of an INSERT.
  if (!withWord && !(isSymbol("(") && (isWordAt(1, "nolock") || isWordAt(1, "tablock") || isWordAt(1, "holdlock") ||
                                       isWordAt(1, "updlock") || isWordAt(1, "rowlock") || isWordAt(1, "index") ||
                                       isWordAt(1, "readpast") || isWordAt(1, "readuncommitted") ||
                                       isWordAt(1, "tablockx") || isWordAt(1, "xlock") || isWordAt(1, "paglock")))) {
    return;
  }
  expectSymbol("(");
  for (int depth = 1; depth > 0;) {
    if (atEnd()) syntaxError();
    if (isSymbol("(")) ++depth;
    if (isSymbol(")")) --depth;
    next();
  }
}

}  // namespace quillon::tsql
