// How names, types and values are written in SQLite's SQL. The emitter writes them so, the engine reads them back.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

// A name in SQLite's double quotes.
std::string quoteName(std::string_view name);

// A name in a piece of SQLite's SQL: a column with the alias of its table, a function that is called, or a parameter.
struct SqlName {
  enum class Kind { column, call, parameter } kind = Kind::column;
  std::size_t begin = 0;  // where it stands
  std::string_view text;  // into the SQL
};
// All of them in order; literals are passed over.
std::vector<SqlName> namesIn(std::string_view sql);
// Of these the columns, each once.
std::vector<std::string> columnsIn(std::string_view sql);
// The SQL with other text for some columns, wherever they stand.
std::string withColumnsReplaced(std::string_view sql, const std::vector<std::string>& columns,
                                const std::vector<std::string>& by);

// A type as one integer constant: width * 1000000 + kind * 10000 + precision * 100 + scale.
std::int64_t typeCode(const Type& type);
Type typeFromCode(std::int64_t code);

// Units beyond 64 bits as a BLOB: most significant byte first, sign bit inverted, so that memcmp orders them as numbers.
using WideUnits = std::array<char, 16>;
WideUnits encodeUnits(Int128 units);
// Throws SqlError 824 when these are no such bytes.
Int128 decodeUnits(std::string_view bytes);

// A value as a literal of SQLite's SQL, for constants folded at translation time: 12, -150, X'80..', 1.5, 'it''s',
// NULL.
std::string sqlLiteral(const Value& value);

}  // namespace quillon::tsql
