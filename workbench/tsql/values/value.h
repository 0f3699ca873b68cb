// Types and values of the T-SQL dialect, and how the SQLite file stores them.
//
//   T-SQL type          in SQLite                                  Value
//   int, bigint, bit    INTEGER                                    integer
//   decimal(p,s)        INTEGER units of 10^-s; units that do      exact
//                       not fit in 64 bits: a sortable BLOB
//   money               INTEGER units of 10^-4                     exact, scale 4
//   float               REAL                                       real
//   datetime            INTEGER ticks of 1/300 s since 1900-01-01  dateTime
//   nvarchar, varchar   TEXT, UTF-8, collation of collation.h       text
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "workbench/tsql/values/int128.h"

namespace quillon::tsql {

enum class Kind { integer, bigInt, bit, decimal, money, real, dateTime, nVarChar, varChar };

// The declared or derived type of a column or expression.
struct Type {
  Kind kind = Kind::integer;
  int precision = 0;  // decimal
  int scale = 0;      // decimal; money always counts 4
  int width = 0;      // texts, in characters; maxWidth for nvarchar(max)

  static constexpr int maxWidth = 0x7fffffff;
  // As error texts and result headings write it: "decimal(18,6)", "nvarchar(20)", "money".
  std::string name() const;
  friend bool operator==(const Type&, const Type&) = default;
};

// A number with a fixed count of decimals: units * 10^-scale.
struct Exact {
  Int128 units;
  int scale = 0;
  friend bool operator==(const Exact&, const Exact&) = default;
};

// A point in time, in ticks of 1/300 s since 1900-01-01 00:00; negative before it.
struct DateTime {
  std::int64_t ticks = 0;
  static constexpr std::int64_t ticksPerDay = 24LL * 60 * 60 * 300;
  friend bool operator==(const DateTime&, const DateTime&) = default;
};

// One value of a row. Null is std::monostate.
using Value = std::variant<std::monostate, std::int64_t, double, Exact, DateTime, std::string>;

inline bool isNull(const Value& value) {
  return std::holds_alternative<std::monostate>(value);
}
// The value as exact text: "12", "0.3000", "2024-03-05 00:00:00.000"; null gives nullopt.
std::optional<std::string> toText(const Value& value);
// Appends that text, nothing for null.
void appendText(std::string& text, const Value& value);

}  // namespace quillon::tsql
