#include "workbench/tsql/syntax/parser.h"

#include <algorithm>
#include <array>
#include <limits>

#include "frame/text.h"
#include "workbench/tsql/syntax/lexer.h"
#include "workbench/tsql/syntax/literals.h"
#include "workbench/tsql/syntax/parser_core.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

// Parses statements; QueryParser parses the queries in them, ExpressionParser the expressions.
class StatementParser : public QueryParser {
 public:
  using QueryParser::QueryParser;

  std::vector<StatementPtr> batch() {
    std::vector<StatementPtr> statements;
    while (skipSemicolons(), !atEnd())
      statements.push_back(statement());
    return statements;
  }

  // (column type .., primary key(..)), the brackets included.
  StatementPtr tableDefinition() {
    auto create = std::make_unique<Statement>();
    create->kind = StatementKind::createTable;
    columnDefinitions(*create);
    expectEnd();
    return create;
  }

  ExpressionPtr wholeValue() {
    ExpressionPtr result = value();
    expectEnd();
    return result;
  }

  ObjectName wholeName() {
    ObjectName name = objectName();
    expectEnd();
    return name;
  }

 private:
  void skipSemicolons() {
    while (acceptSymbol(";")) {
    }
  }

  StatementPtr statement() {
    const Level level(*this);
    beginStatement();
    auto result = std::make_unique<Statement>();
    result->place = place();
    result->begin = peek().begin;
    parseInto(*result);
    result->end = previousEnd();
    return result;
  }

  void parseInto(Statement& s) {
    if (isWord("select") || isSymbol("(")) {
      s.kind = StatementKind::select;
      s.query = query();
      queryOption();
    } else if (acceptWord("insert")) {
      insert(s);
    } else if (acceptWord("update")) {
      update(s);
    } else if (acceptWord("delete")) {
      remove(s);
    } else if (acceptWord("truncate")) {
      expectWord("table");
      s.kind = StatementKind::truncate;
      s.target = objectName();
    } else if (acceptWord("create")) {
      create(s);
    } else if (acceptWord("drop")) {
      drop(s);
    } else if (acceptWord("if")) {
      conditional(s);
    } else if (isWord("begin") && !isWordAt(1, "tran") && !isWordAt(1, "transaction") && !isWordAt(1, "try")) {
      next();
      block(s);
    } else if (acceptWord("set")) {
      setOption(s);
    } else if (acceptWord("raiserror")) {
      raiseError(s);
    } else {
      refuseStatement();
    }
  }

  [[noreturn]] void refuseStatement() {
    constexpr auto known = std::to_array<std::string_view>(
        {"alter", "backup", "begin", "close",   "commit", "deallocate", "declare", "deny",   "exec",   "execute",
         "fetch", "goto",   "grant", "kill",    "merge",  "open",       "print",   "return", "revoke", "rollback",
         "save",  "throw",  "use",   "waitfor", "while",  "with",       "restore", "dbcc",   "bulk"});
    if (peek().kind == TokenKind::word) {
      for (const std::string_view word : known) {
        if (isWord(word)) refuse("the statement " + upper(word));
      }
    }
    syntaxError();
  }

  void insert(Statement& s) {
    s.kind = StatementKind::insert;
    acceptWord("into");
    s.target = objectName();
    tableHints();
    if (isSymbol("(") && !isWordAt(1, "select") && !isSymbolAt(1, "(")) s.columns = nameList();
    if (acceptWord("default")) {
      expectWord("values");
      s.defaultValues = true;
    } else if (acceptWord("values")) {
      do {
        s.valueRows.push_back(valueRow());
      } while (acceptSymbol(","));
    } else if (isWord("select") || isSymbol("(")) {
      s.query = query();
      queryOption();
    } else if (isWord("exec") || isWord("execute")) {
      refuse("INSERT ... EXECUTE");
    } else {
      syntaxError();
    }
  }

  std::vector<ExpressionPtr> valueRow() {
    std::vector<ExpressionPtr> row;
    expectSymbol("(");
    do {
      row.push_back(acceptWord("default") ? nullptr : value());
    } while (acceptSymbol(","));
    expectSymbol(")");
    return row;
  }

  void update(Statement& s) {
    s.kind = StatementKind::update;
    s.top = topClause();
    s.target = objectName();
    tableHints();
    expectWord("set");
    do {
      Assignment assignment;
      assignment.place = place();
      assignment.column = dottedName().back();
      expectSymbol("=");
      if (isWord("default")) refuse("SET column = DEFAULT");
      assignment.value = value();
      s.assignments.push_back(std::move(assignment));
    } while (acceptSymbol(","));
    fromAndWhere(s);
  }

  void remove(Statement& s) {
    s.kind = StatementKind::remove;
    s.top = topClause();
    acceptWord("from");
    s.target = objectName();
    tableHints();
    fromAndWhere(s);
  }

  void fromAndWhere(Statement& s) {
    if (isWord("output")) refuse("the OUTPUT clause");
    if (acceptWord("from")) s.from = fromList();
    if (acceptWord("where")) {
      if (isWord("current")) refuse("WHERE CURRENT OF");
      s.condition = condition();
    }
    queryOption();
  }

  void create(Statement& s) {
    if (acceptWord("table")) {
      s.kind = StatementKind::createTable;
      s.target = objectName();
      columnDefinitions(s);
    } else if (acceptWord("view")) {
      s.kind = StatementKind::createView;
      s.target = objectName();
      if (isSymbol("(")) s.columns = nameList();
      expectWord("as");
      const std::size_t begin = peek().begin;
      s.query = query();
      s.text = textFrom(begin, previousEnd());
    } else if (acceptWord("function")) {
      createFunction(s);
    } else if (acceptWord("database")) {
      createDatabase(s);
    } else {
      s.unique = acceptWord("unique");
      if (!acceptWord("clustered")) acceptWord("nonclustered");
      if (!acceptWord("index")) refuse("CREATE " + upper(peek().text));
      s.kind = StatementKind::createIndex;
      s.indexName = name();
      expectWord("on");
      s.target = objectName();
      s.columns = indexColumns();
      if (isWord("include") || isWord("where") || isWord("with")) refuse("index options (" + upper(peek().text) + ")");
    }
  }

  // create function dbo.f() returns type as begin return expression end
  void createFunction(Statement& s) {
    s.kind = StatementKind::createFunction;
    s.target = objectName();
    expectSymbol("(");
    if (!isSymbol(")")) refuse("a function with parameters");
    expectSymbol(")");
    expectWord("returns");
    s.returnType = typeName(true);
    acceptWord("as");
    expectWord("begin");
    if (!isWord("return")) refuse("a function of more than one RETURN statement");
    next();
    const std::size_t begin = peek().begin;
    s.value = value();
    s.text = textFrom(begin, previousEnd());
    skipSemicolons();
    expectWord("end");
  }

  // create database orvsystem [collate name]
  void createDatabase(Statement& s) {
    s.kind = StatementKind::createDatabase;
    const std::string database = name();
    if (!equalIgnoringCase(database, "orvsystem")) refuse("CREATE DATABASE " + database);
    s.target.name = s.target.written = database;
    if (acceptWord("collate")) name();
  }

  std::vector<std::string> indexColumns() {
    std::vector<std::string> columns;
    expectSymbol("(");
    do {
      columns.push_back(name());
      if (!acceptWord("asc")) acceptWord("desc");
    } while (acceptSymbol(","));
    expectSymbol(")");
    return columns;
  }

  void columnDefinitions(Statement& s) {
    expectSymbol("(");
    do {
      if (isWord("constraint") || isWord("primary") || isWord("unique") || isWord("foreign") || isWord("check")) {
        s.keys.push_back(tableConstraint());
      } else {
        s.definitions.push_back(columnDefinition(s));
      }
    } while (acceptSymbol(",") && !isSymbol(")"));
    expectSymbol(")");
  }

  KeyDefinition tableConstraint() {
    if (acceptWord("constraint")) name();
    KeyDefinition key;
    if (acceptWord("primary")) {
      expectWord("key");
      key.primary = true;
    } else if (!acceptWord("unique")) {
      refuse("a " + upper(peek().text) + " constraint");
    }
    if (!acceptWord("clustered")) acceptWord("nonclustered");
    key.columns = indexColumns();
    return key;
  }

  ColumnDefinition columnDefinition(Statement& s) {
    ColumnDefinition column;
    column.place = place();
    column.name = name();
    if (isWord("as")) refuse("a computed column");
    column.type = typeName(true);
    for (;;) {
      if (acceptWord("constraint")) {
        name();
      } else if (acceptWord("not")) {
        expectWord("null");
        column.notNull = true;
      } else if (acceptWord("null")) {
        column.notNull = false;
      } else if (acceptWord("identity")) {
        column.identity = column.notNull = true;
        if (acceptSymbol("(")) {
          column.seed = signedInteger();
          expectSymbol(",");
          column.increment = signedInteger();
          expectSymbol(")");
        }
      } else if (acceptWord("default")) {
        const std::size_t begin = peek().begin;
        column.defaultValue = value();
        column.defaultText = textFrom(begin, previousEnd());
      } else if (isWord("primary") || isWord("unique")) {
        KeyDefinition key;
        key.primary = isWord("primary");
        next();
        if (key.primary) {
          expectWord("key");
          column.notNull = true;
        }
        if (!acceptWord("clustered")) acceptWord("nonclustered");
        key.columns = {column.name};
        s.keys.push_back(std::move(key));
      } else if (isWord("collate") || isWord("references") || isWord("check") || isWord("rowguidcol")) {
        refuse("the column option " + upper(peek().text));
      } else {
        return column;
      }
    }
  }

  void drop(Statement& s) {
    s.kind = StatementKind::dropObjects;
    if (acceptWord("table")) {
      s.droppedType = 'U';
    } else if (acceptWord("view")) {
      s.droppedType = 'V';
    } else if (acceptWord("function")) {
      s.droppedType = 'F';
    } else if (acceptWord("index")) {
      s.droppedType = 'I';
    } else {
      refuse("DROP " + upper(peek().text));
    }
    if (acceptWord("if")) {
      expectWord("exists");
      s.ifExists = true;
    }
    if (s.droppedType == 'I') {
      s.indexName = name();
      if (acceptSymbol(".")) {  // the old form: table.index
        s.target.name = s.target.written = s.indexName;
        s.indexName = name();
      } else {
        expectWord("on");
        s.target = objectName();
      }
      return;
    }
    do {
      s.dropped.push_back(objectName());
    } while (acceptSymbol(","));
  }

  void conditional(Statement& s) {
    s.kind = StatementKind::conditional;
    s.condition = condition();
    skipSemicolons();
    s.body.push_back(statement());
    if (isSymbol(";") && isWordAt(1, "else")) next();
    if (acceptWord("else")) s.body.push_back(statement());
  }

  void block(Statement& s) {
    s.kind = StatementKind::block;
    while (skipSemicolons(), !acceptWord("end"))
      s.body.push_back(statement());
  }

  // Of a text as it stands, at a severity that makes it an error and leaves the connection: what is below that is a message,
  // what is above ends the connection.
  void raiseError(Statement& s) {
    constexpr std::int64_t leastError = 11, mostError = 18;
    s.kind = StatementKind::raiseError;
    expectSymbol("(");
    if (peek().kind != TokenKind::text && peek().kind != TokenKind::nationalText)
      refuse("RAISERROR of anything but a text");
    s.text = next().value;
    if (s.text.find('%') != std::string::npos) refuse("RAISERROR with places for values");
    expectSymbol(",");
    const std::int64_t severity = signedInteger();
    if (severity < leastError || severity > mostError) refuse("RAISERROR of severity " + std::to_string(severity));
    expectSymbol(",");
    signedInteger();  // the state
    expectSymbol(")");
  }

  // Options whose ON or OFF changes nothing here are accepted; ANSI settings only in the state that the engine has.
  void setOption(Statement& s) {
    constexpr auto harmless = std::to_array<std::string_view>({"nocount", "xact_abort", "arithabort", "statistics"});
    constexpr auto alwaysOn =
        std::to_array<std::string_view>({"ansi_nulls", "ansi_warnings", "ansi_padding", "ansi_null_dflt_on",
                                         "quoted_identifier", "concat_null_yields_null"});
    s.kind = StatementKind::nothing;
    if (acceptWord("identity_insert")) {
      s.kind = StatementKind::identityInsert;
      s.target = objectName();
      s.on = onOrOff();
      return;
    }
    const Token option = peek();
    const auto among = [&](const auto& options) {
      return std::any_of(options.begin(), options.end(), [&](std::string_view name) { return isWord(name); });
    };
    const bool isHarmless = among(harmless);
    if (!isHarmless && !among(alwaysOn)) refuse("SET " + option.text);
    next();
    if (!onOrOff() && !isHarmless) refuse("SET " + option.text + " OFF");
  }

  bool onOrOff() {
    if (acceptWord("on")) return true;
    expectWord("off");
    return false;
  }
};

}  // namespace

std::vector<StatementPtr> parseBatch(std::string_view batch) {
  return StatementParser(batch).batch();
}

StatementPtr parseTableDefinition(std::string_view definition) {
  return StatementParser(definition).tableDefinition();
}

ExpressionPtr parseValue(std::string_view text) {
  return StatementParser(text).wholeValue();
}

ObjectName parseObjectName(std::string_view text) {
  return StatementParser(text).wholeName();
}

}  // namespace quillon::tsql
