// What the parser makes of a batch. The nodes hold names and literals as written; nothing is looked up yet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/tsql/values/declared_table.h"
#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

// Where something stands in the batch, for error messages.
struct Place {
  int line = 0;
  std::string token;
};

// A table, view or function as named in the batch: `t`, `dbo.t`, `orvsystem..t`, `tempdb..#t`.
struct ObjectName {
  std::string database;  // empty: the account database
  std::string name;
  std::string written;  // as the batch writes it, without brackets, for messages
  Place place;
};

struct Query;
struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;
using QueryPtr = std::unique_ptr<Query>;

enum class ExpressionKind {
  // values
  null,
  literal,       // `literal` and `type`
  column,        // `name`: [database, schema,] [table,] column
  negate,        // operands[0]
  arithmetic,    // `op` in + - * / %, operands[0] and [1]
  function,      // `name`, operands; star for count(*), distinct
  cast,          // operands[0] to `type`; `style` in operands[1] when there is one
  searchedCase,  // when, then, when, then, ..., [else]
  simpleCase,    // value, when, then, ..., [else]
  scalarQuery,   // `query`
  identity,      // IDENTITY(type, seed, increment) of Select Into
  // conditions
  comparison,  // `op` in = <> < > <= >=
  logicalAnd,
  logicalOr,
  logicalNot,
  isNull,   // `negated`: IS NOT NULL
  between,  // value, low, high
  inList,   // value, members
  inQuery,  // value; `query`
  exists,   // `query`
  like,     // value, pattern, [escape]
};

struct Expression {
  ExpressionKind kind = ExpressionKind::null;
  Place place;
  std::string op;
  std::vector<std::string> name;
  std::vector<ExpressionPtr> operands;
  Value literal;
  std::size_t begin = 0;  // of a literal: its place in the batch, in bytes
  Type type;
  QueryPtr query;
  bool negated = false;   // NOT IN, NOT LIKE, NOT BETWEEN, IS NOT NULL
  bool distinct = false;  // count(distinct x)
  bool star = false;      // count(*)
  std::int64_t seed = 1;
  std::int64_t increment = 1;

  bool isCondition() const { return kind >= ExpressionKind::comparison; }
};

struct SelectItem {
  std::string alias;                    // empty: none given
  ExpressionPtr value;                  // null: a star
  std::vector<std::string> starPrefix;  // `t.*`; empty for a bare star
  Place place;
};

enum class JoinKind { inner, left, right, full, cross };

// A table, a derived table, or two of them joined.
struct TableSource {
  ObjectName table;
  QueryPtr derived;
  std::vector<std::string> columnAliases;  // of a derived table: (select ..) x(a, b)
  std::string alias;                       // empty: none given
  JoinKind join = JoinKind::inner;
  std::unique_ptr<TableSource> left, right;  // set: a join
  ExpressionPtr on;
};
using TableSourcePtr = std::unique_ptr<TableSource>;

struct OrderItem {
  ExpressionPtr value;
  bool descending = false;
};

// One SELECT without its ORDER BY, or a VALUES list of an INSERT.
struct SelectCore {
  bool distinct = false;
  std::optional<std::int64_t> top;
  std::vector<SelectItem> items;
  std::optional<ObjectName> into;
  std::vector<TableSourcePtr> from;  // separated by commas
  ExpressionPtr where;
  std::vector<ExpressionPtr> groupBy;
  ExpressionPtr having;
  Place place;
};

enum class SetOperation { none, unionDistinct, unionAll, except, intersect };

// A SELECT with its set operations and its order. The tree of operations: a leaf has `core`, a node left and right.
struct Query {
  SetOperation operation = SetOperation::none;
  std::unique_ptr<SelectCore> core;
  QueryPtr left, right;
  std::vector<OrderItem> orderBy;  // only on the outermost node
  Place place;
};

struct ColumnDefinition {
  std::string name;
  Type type;
  bool notNull = false;
  bool identity = false;
  std::int64_t seed = 1;
  std::int64_t increment = 1;
  ExpressionPtr defaultValue;
  std::string defaultText;  // the default as written
  Place place;
};

enum class StatementKind {
  select,
  insert,
  update,
  remove,
  truncate,
  createTable,
  createIndex,
  createView,
  createFunction,
  createDatabase,  // orvsystem, which is always there
  dropObjects,
  conditional,
  block,
  identityInsert,
  raiseError,
  nothing,  // a SET option that has no meaning here
};

struct Assignment {
  std::string column;
  ExpressionPtr value;
  Place place;
};

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

struct Statement {
  StatementKind kind = StatementKind::nothing;
  Place place;
  std::size_t begin = 0, end = 0;  // its text within the batch, in bytes

  ObjectName target;                                  // of everything but select, conditional and block
  QueryPtr query;                                     // select; insert .. select; create view
  std::vector<std::string> columns;                   // insert; create index; create view
  std::vector<std::vector<ExpressionPtr>> valueRows;  // insert .. values; a null pointer stands for DEFAULT
  bool defaultValues = false;                         // insert .. default values
  std::vector<Assignment> assignments;                // update
  std::vector<TableSourcePtr> from;                   // update, delete
  ExpressionPtr condition;                            // where of update and delete; if
  std::optional<std::int64_t> top;                    // update, delete
  std::vector<ColumnDefinition> definitions;          // create table
  std::vector<KeyDefinition> keys;                    // create table
  std::string indexName;
  bool unique = false;
  std::vector<ObjectName> dropped;
  char droppedType = 'U';  // U table, V view, F function, I index
  bool ifExists = false;
  std::string text;                // create function: its expression, create view: its query, as written; raiseError
  Type returnType;                 // create function
  ExpressionPtr value;             // create function: the expression that it returns
  bool on = false;                 // identityInsert
  std::vector<StatementPtr> body;  // conditional: then, [else]; block: its statements
};

}  // namespace quillon::tsql
