// Makes SQLite expressions out of typed parts. Exact numbers are scaled integers, so plain SQLite arithmetic is used
// wherever 64 bits provably suffice: each part carries a bound on its units. Everything else calls functions that the
// engine registers, known here by name alone (engine/value_functions.h lists them).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/syntax/ast.h"
#include "workbench/tsql/values/type_rules.h"
#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

// A column of a grouped query outside of any aggregate; `scope` is that of the query it belongs to.
struct BareColumn {
  const void* scope = nullptr;
  std::string name;
  Place place;
};

// A piece of SQLite's SQL with what T-SQL knows about it.
struct Fragment {
  std::string sql;
  Type type;
  double magnitude = 0;      // exact types: no value has more units
  bool mayOverflow = false;  // bigint and money: SQLite may give a REAL here, which means an overflow
  bool notNull = false;      // of a literal or a column declared so: Select Into keeps it
  bool isColumn = false;     // a stored column: compares by its own collation
  int literalDigits = 0;     // of an integer literal
  bool isNullLiteral = false;
  std::optional<Value> constant;  // known at translation
  std::vector<BareColumn> bare;

  Operand operand() const { return {type, literalDigits, isNullLiteral}; }
};

enum class Conversion {
  cast,      // Cast, Convert: a text too long is cut
  implicit,  // what a comparison or an operator does
};

// The largest number of units that a value of an exact type can have.
double magnitudeOf(const Type& type);

Fragment literalFragment(const Value& value, const Type& type);
Fragment nullFragment();
// A stored or derived column.
Fragment columnFragment(std::string sql, const Type& type);

Fragment convert(const Fragment& value, const Type& to, Conversion conversion, int style = 0);
// Gives the type that all the values have together and brings each to it.
Type unify(std::vector<Fragment>& values);
// As Insert and Update bring a value into a column.
Fragment store(const Fragment& value, const Type& to, std::string_view table, std::string_view column);

Fragment negate(const Fragment& value);
Fragment arithmetic(Arithmetic operation, const Fragment& left, const Fragment& right);

// A condition: op is one of = <> < > <= >=.
std::string compare(std::string_view op, const Fragment& left, const Fragment& right);
// left In (members).
std::string memberOf(const Fragment& left, const std::vector<Fragment>& members);
std::string like(const Fragment& value, const Fragment& pattern, const std::optional<Fragment>& escape);

// The value as it may be grouped, made distinct, united or sorted by position: a text carries its collation.
std::string collated(const Fragment& value);
// The value as an Order By needs it: wide decimals by a key that sorts like the number.
std::string sortKey(const Fragment& value);
// The value with an overflow turned into an error.
Fragment settled(const Fragment& value);
// A value that may not lie in 64 bits: INTEGER or BLOB.
bool isWide(const Fragment& value);

// `exactSums`: sums of decimals count in 128 bits also where 64 are almost certainly enough.
Fragment aggregate(std::string_view name, const Fragment& argument, bool distinct, bool exactSums);

// The SQL of what aggregate() gives where the argument has one value; nullopt where that takes more than an expression.
std::optional<std::string> aggregateOfOne(std::string_view name, const Fragment& argument);

// A call in SQLite's SQL; the result has the arguments' bare columns.
Fragment call(std::string_view function, const std::vector<Fragment>& arguments, const Type& type);
// The type as an argument of such a call.
std::string typeArgument(const Type& type);

}  // namespace quillon::tsql
