// Binds the names of queries to declared columns, derives types, and gives the SQLite statement that does the same.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/tsql/binding/emitter.h"
#include "workbench/tsql/binding/row_composition.h"
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
    std::string expression = {};             // then: the same without its number
  };
  std::vector<Key> keys;
  // Where in the text the select list ends, where From ends, and where " ORDER BY" stands, up to the end.
  std::size_t itemsEnd = 0;
  std::size_t fromEnd = 0;
  std::size_t orderBegin = 0;
};

// A query that groups the rows of one table by many columns, and its form for a table in which most rows are alone in their
// group: these are taken as they are, and only the others are sorted and grouped. Of these again most are in groups of
// rows that have the same in the columns by which they are grouped, to the last byte: such a group is known by a number.
struct WideGrouping {
  std::string number;             // the row number of a row of the table
  std::string from;               // the table
  std::string where;              // which rows count; empty: all
  std::vector<std::string> keys;  // what is grouped by
  // The query that calls is_alone(number), which is to be 1 for rows alone in their group alone. Each group of the query
  // as it was written is a row of it, and nothing else; the rows alone come first.
  std::string sql;
  // The same in three: the rows alone, those whose group has a number, group_number(number), where is_together(number) is 1,
  // and the query of the others. Nothing: the rows alone are not copies of others.
  std::optional<RowComposition> alone = {};
  std::optional<RowComposition> together = {};
  std::string others = {};
  std::shared_ptr<const Table> table = {};  // whose rows they are
  std::vector<std::size_t> columns = {};    // of it, by which they are grouped

  // Makes statements of `sql` and `others`, with this in front.
  void insertHead(const std::string& head) {
    sql.insert(0, head);
    others.insert(0, head);
  }
};

struct BoundQuery {
  std::string sql;
  std::vector<OutputColumn> columns;
  std::vector<BareColumn> outerReferences;
  bool oneRowAtMost = false;
  std::optional<RowOrdering> ordering = {};  // nothing: no order, or rows of another kind
  bool inTableOrder = false;                 // see queryInto()
  // Of a query whose rows are stored, Insert .. Select and Select .. Into: other forms, where there are any.
  std::optional<WideGrouping> grouping = {};
  std::optional<RowComposition> composition = {};
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
  bool ofLoneRows = false;                          // each group is one row: an aggregate is that of one value
  bool needsAggregate = false;                      // it has one that one value does not give by a plain expression
  std::vector<std::string> groups;                  // the SQL of the Group By expressions
  mutable std::vector<BareColumn> outerReferences;  // columns of the scopes around that were used here
};

// How the columns of a query are called in SQLite's SQL.
enum class Naming {
  none,     // not at all: a statement's own query
  value,    // the first is "value": a sub-query among expressions
  columns,  // by their T-SQL names: a derived table
};

// The constants of a statement that may become parameters of SQLite's statement. One that is compared with a column of its
// form, or inserted into one, becomes a parameter there, because then the statement is the same whatever it is.
class Parameters {
 public:
  // Where the constants stand in the batch, in ascending order.
  explicit Parameters(std::vector<std::size_t> places)
      : places_(std::move(places)), used_(places_.size()), pasted_(places_.size()) {}

  // The number of the parameter for the literal that stands there, from 1; 0: it is no parameter.
  int use(std::size_t place);
  // The literal that stands there became part of the SQL; withdrawn: that piece of the SQL is not used.
  void paste(std::size_t place);
  void withdraw(std::size_t place);
  // Of each constant, whether it is a parameter, and whether the SQL is the same whatever it is.
  bool isUsed(std::size_t constant) const { return used_.at(constant); }
  bool isFree(std::size_t constant) const { return used_.at(constant) && pasted_.at(constant) == 0; }

  // Keys that the rows are grouped by only under a condition that has one value for all of them, and else by a constant:
  // where the condition does not hold they can be left out. In the text such a key stands between `keyBegin` and
  // `keyEnd`, and a comma with a blank and another key stand behind it.
  static constexpr char keyBegin = '\x01', keyEnd = '\x02';
  struct DependentKeys {
    std::vector<std::string> conditions;  // one a key, in the text's order
    std::string from;                     // the one row for which they hold or not
  };
  // Whoever runs the statement sets this where it asks the conditions before, and nothing can change between.
  bool takesDependentKeys = false;
  DependentKeys dependentKeys;

 private:
  std::size_t find(std::size_t place) const;  // which constant stands there; past the last one: none

  std::vector<std::size_t> places_;
  std::vector<bool> used_;
  std::vector<int> pasted_;  // how often
};

class Binder {
 public:
  // `exactSums`: see aggregate() in emitter.h. Without `parameters` every constant is pasted.
  Binder(TableLookup& tables, bool exactSums, Parameters* parameters = nullptr)
      : tables_(tables), exactSums_(exactSums), parameters_(parameters) {}

  // A query as a statement of its own, or, with an outer scope, inside another.
  BoundQuery query(const Query& query, Scope* outer = nullptr, Naming naming = Naming::none);
  // The query as an Insert stores it: each column brought to the type of its target. Throws SqlError 120 and 121 when
  // the counts differ.
  struct Target {
    Type type;
    std::string table, column;
    bool required = false;  // refuses NULL by itself, for SQLite would make a number of it
    std::size_t place = 0;  // of the column in its table
  };
  // A value brought into its target.
  static Fragment stored(const Fragment& value, const Target& target);
  // `whole`: the table when what the query does not give stays null, null otherwise. Then the result may have an item for
  // each of its columns, in their order, from which SQLite makes rows without copying each value once more.
  BoundQuery queryInto(const Query& query, const std::vector<Target>& targets, const Table* whole);

  Fragment value(const Expression& expression, Scope& scope);
  Fragment condition(const Expression& expression, Scope& scope);
  // The condition of a Where, whose comparisons of a column with a constant may get parameters.
  Fragment restriction(const Expression& expression, Scope& scope);

  // The literal as a parameter for a column of that type; nothing when it has to be pasted.
  std::optional<Fragment> parameterFor(const Expression& literal, const Type& column);

  // Adds the table to the scope; gives what stands in SQLite's From clause. Throws SqlError 208.
  std::string addTable(const ObjectName& name, const std::string& alias, Scope& scope);
  std::string from(const std::vector<TableSourcePtr>& list, Scope& scope);
  std::string join(const TableSource& source, Scope& scope);
  // The stored table; throws SqlError 208 when there is none.
  std::shared_ptr<const Table> table(const ObjectName& name);
  // Whether rows of the table are read by what has been bound.
  bool hasRead(const Table& table) const;

  // The expression or condition bound with these sources alone in sight. Nullopt: it names columns of others, holds a
  // query, or some value may end it with an error, so that it must not be computed of rows that are not asked for.
  std::optional<Fragment> boundOn(const std::vector<Source>& sources, const Expression& expression) const;

 private:
  struct Core;
  struct SetOperand;
  struct Joined;  // these three: binder_compositions.cpp
  struct LookUp;
  class CompositionMaker;

  struct Targets {
    const std::vector<Target>* columns = nullptr;
    const Table* whole = nullptr;  // see queryInto()
  };
  // The columns of the table that a query's rows go into.
  struct Place {
    Storage storage = Storage::any;
    bool required = false;  // refuses NULL
  };
  using Places = std::vector<Place>;
  // Nothing where the rows are made in another way than item by item. `targets` without columns: those of Select Into.
  static std::optional<Places> placesOf(const Core& core, const Targets& targets);
  // `ofLoneRows`: see Scope.
  Core bindCore(const SelectCore& core, Scope* outer, bool ofLoneRows = false);
  static void storeItems(Core& core, const Targets& targets);
  // The first table of the From clause read in the query's order, where the order is one of its rows: narrower to sort
  // than the query's own rows. Empty: the order is another.
  std::string orderedFirst(const Query& query, const Core& core) const;
  // `core` is bound, and its items are as they are stored.
  // `places`: see composition(); nothing when the items are in another order than the columns.
  std::optional<WideGrouping> wideGrouping(const Query& query, Core& core, const Targets* targets,
                                           const std::optional<Places>& places);
  // `core` has an item for each column of the table that the rows go into, and is not grouped, or by rows that are alone.
  std::optional<RowComposition> composition(const SelectCore& select, Core& core, const Places& places);
  // The tables of the From clause whose rows are looked up for each row of the others; they leave `core.from`.
  std::vector<LookUp> takeLookUps(const SelectCore& select, Core& core);
  // The columns that the rows of one table are grouped by; empty: one is the row's number.
  static std::vector<std::size_t> columnsOfKeys(const Core& core);
  // Nothing: the join is of something else than a table, or its condition may end with an error.
  std::optional<Joined> joinedTable(const TableSource& join, Scope& scope);
  void bindItems(const SelectCore& select, Core& core);
  void expandStar(const SelectItem& item, Core& core);
  // `ordering`, which may be null, gets where the parts of the text end.
  std::string renderCore(const Core& core, Naming naming, RowOrdering* ordering = nullptr) const;
  void bindOrder(const std::vector<OrderItem>& items, Core& core);
  RowOrdering::Key orderKey(const Expression& item, Core& core);
  BoundQuery simpleQuery(const Query& query, Scope* outer, Naming naming, const Targets* targets);
  BoundQuery setQuery(const Query& query, Scope* outer, Naming naming, const Targets* targets);
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
  bool takesParameters(const Scope* outer) const;
  // Items that are constants become parameters for the columns that they are stored in.
  void takeItemParameters(const Query& query, Core& core, const std::vector<Target>& targets);
  // Puts keys and tables of a grouping as they cost SQLite least. The groups and their order are those of the query as
  // written.
  void arrangeGrouping(const SelectCore& select, Core& core);

  // The conditions of the Where clause that see this source only, joined by And; empty: none.
  std::string conditionsOn(const Source& source, const SelectCore& select) const;
  // Of a grouped derived table that is joined by what it groups by, those groups suffice whose `column` is among the
  // `values` of the rows that the query can give. True: there are such tables, to be bound anew.
  struct Restriction {
    std::string column, values;
  };
  bool restrictDerived(const SelectCore& select, const Scope& scope);
  void restrictJoined(const TableSource& source, const Source& leading, const std::string& conditions,
                      const Scope& scope);
  void restrictGroups(const SelectCore& select, Core& core);

  TableLookup& tables_;
  bool exactSums_;
  std::map<const SelectCore*, std::vector<Restriction>> restrictions_;
  Parameters* parameters_;
  int viewDepth_ = 0;
  int views_ = 0;               // bound so far
  std::set<std::string> read_;  // tables in From clauses, by their place in SQLite
};

// The parts of a condition that And joins.
std::vector<const Expression*> conjuncts(const Expression& condition);
// Whether an expression holds an aggregate of its own query (not of a sub-query).
bool containsAggregate(const Expression& expression);
// Whether an expression holds a query.
bool containsQuery(const Expression& expression);
// The fragment's first column that is neither grouped nor aggregated ends the statement with error 8120; `clause` says
// where it stands ("select list", "HAVING clause", "ORDER BY clause").
void requireGrouped(const Fragment& value, const Scope& scope, std::string_view clause);

}  // namespace quillon::tsql
