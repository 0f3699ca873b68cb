// Binds the names of queries to declared columns, derives types, and gives the SQLite statement that does the same.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/binding/emitter.h"
#include "workbench/tsql/binding/stored_tables.h"
#include "workbench/tsql/syntax/ast.h"

namespace quillon::tsql {

struct OutputColumn {
  std::string name;  // empty: none given
  Type type;
  double magnitude = 0;
  bool mayOverflow = false;
  bool notNull = false;
  bool identity = false;  // IDENTITY(..), or an identity column taken over as it is
  std::int64_t seed = 1;
  std::int64_t increment = 1;
  Place place;
};

// How the rows of a query are ordered that are rows of its tables: neither grouped nor distinct nor the first so many.
struct RowOrdering {
  struct Key {
    std::string sql;  // an expression, or the number of an output column
    bool descending = false;
    std::optional<std::size_t> output = {};  // the output column, where it is one
  };
  std::vector<Key> keys;
  // Where in the text the select list ends, where From ends, and where " ORDER BY" stands, up to the end.
  std::size_t itemsEnd = 0;
  std::size_t fromEnd = 0;
  std::size_t orderBegin = 0;
};

struct BoundQuery {
  std::string sql;
  std::vector<OutputColumn> columns;
  std::vector<BareColumn> outerReferences;
  bool oneRowAtMost = false;
  std::optional<RowOrdering> ordering = {};  // nothing: no order, or rows of another kind
};

// A table or derived table of a From clause.
struct Source {
  std::string alias;       // what its columns are qualified with, in SQLite too
  bool aliasGiven = true;  // false: the alias is the table's own name, and dbo.t or orvsystem..t qualify too
  std::string database;
  std::string table;  // the table's own name; empty for a derived table
  std::vector<OutputColumn> columns;
  std::shared_ptr<const Table> stored;  // null for derived tables
};

// The sources that names are looked up in, and those of the queries around.
struct Scope {
  const Scope* parent = nullptr;
  std::vector<Source> sources;
  bool grouped = false;
  bool aggregatesAllowed = false;
  bool inAggregate = false;
  std::vector<std::string> groups;                  // the SQL of the Group By expressions
  mutable std::vector<BareColumn> outerReferences;  // columns of the scopes around that were used here
};

// How the columns of a query are called in SQLite's SQL.
enum class Naming {
  none,     // not at all: a statement's own query
  value,    // the first is "value": a sub-query among expressions
  columns,  // by their T-SQL names: a derived table
};

class Binder {
 public:
  // `exactSums`: see aggregate() in emitter.h.
  Binder(TableLookup& tables, bool exactSums) : tables_(tables), exactSums_(exactSums) {}

  // A query as a statement of its own, or, with an outer scope, inside another.
  BoundQuery query(const Query& query, Scope* outer = nullptr, Naming naming = Naming::none);
  // The query as an Insert stores it: each column brought to the type of its target. Throws SqlError 120 and 121 when
  // the counts differ.
  struct Target {
    Type type;
    std::string table, column;
    bool required = false;  // refuses NULL by itself, for SQLite would make a number of it
  };
  // A value brought into its target.
  static Fragment stored(const Fragment& value, const Target& target);
  BoundQuery queryInto(const Query& query, const std::vector<Target>& targets);

  Fragment value(const Expression& expression, Scope& scope);
  Fragment condition(const Expression& expression, Scope& scope);

  // Adds the table to the scope; gives what stands in SQLite's From clause. Throws SqlError 208.
  std::string addTable(const ObjectName& name, const std::string& alias, Scope& scope);
  std::string from(const std::vector<TableSourcePtr>& list, Scope& scope);
  std::string join(const TableSource& source, Scope& scope);
  // The stored table; throws SqlError 208 when there is none.
  std::shared_ptr<const Table> table(const ObjectName& name);

 private:
  struct Core;
  struct SetOperand;

  Core bindCore(const SelectCore& core, Scope* outer);
  void bindItems(const SelectCore& select, Core& core);
  void expandStar(const SelectItem& item, Core& core);
  // `ordering`, which may be null, gets where the parts of the text end.
  std::string renderCore(const Core& core, Naming naming, RowOrdering* ordering = nullptr) const;
  void bindOrder(const std::vector<OrderItem>& items, Core& core);
  RowOrdering::Key orderKey(const Expression& item, Core& core);
  BoundQuery simpleQuery(const Query& query, Scope* outer, Naming naming, const std::vector<Target>* targets);
  BoundQuery setQuery(const Query& query, Scope* outer, Naming naming, const std::vector<Target>* targets);
  SetOperand bindOperand(const Query& query, Scope* outer);
  std::string renderOperand(const SetOperand& operand, Naming naming) const;

  Fragment column(const Expression& expression, Scope& scope);
  Fragment function(const Expression& expression, Scope& scope);
  Fragment aggregateCall(const std::string& name, const Expression& expression, Scope& scope);
  Fragment userFunction(const Expression& expression);
  Fragment caseValue(const Expression& expression, Scope& scope);
  Fragment castValue(const Expression& expression, Scope& scope);
  Fragment scalarQuery(const Expression& expression, Scope& scope);
  Fragment unboxed(const Expression& expression, Scope& scope);
  Fragment plainCondition(const Expression& expression, Scope& scope);

  TableLookup& tables_;
  bool exactSums_;
  int viewDepth_ = 0;
  int views_ = 0;  // bound so far
};

// Whether an expression holds an aggregate of its own query (not of a sub-query).
bool containsAggregate(const Expression& expression);
// The fragment's first column that is neither grouped nor aggregated ends the statement with error 8120; `clause` says
// where it stands ("select list", "HAVING clause", "ORDER BY clause").
void requireGrouped(const Fragment& value, const Scope& scope, std::string_view clause);

}  // namespace quillon::tsql
