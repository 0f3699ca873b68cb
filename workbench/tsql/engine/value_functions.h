// What the emitted SQL may call: scalar functions and aggregates that see nothing but their arguments, and the collation
// of the dialect. Those that look into the catalog stand in catalog_functions.h; which of them a function of T-SQL
// becomes is said in binding/built_in_functions.
//
// Values lie in SQLite as value.h says; "units" below is an exact number in the scale of its type: INTEGER, or the BLOB
// of encodeUnits() beyond 64 bits. Types are passed as integer constants, typeCode(type); both are those of
// binding/sqlite_notation.h. NULL in any value argument gives NULL unless said otherwise. All are deterministic.
//
//   function                               gives                                                errors
//   -- exact numbers (ta, tb, t: type codes of int, bigint, bit, decimal, money; t is the result's type)
//   exact_add(a, ta, b, tb, t)             a + b                                                8115
//   exact_sub(a, ta, b, tb, t)             a - b                                                8115
//   exact_mul(a, ta, b, tb, t)             a * b, rounded half away from zero to t's scale      8115
//   exact_div(a, ta, b, tb, t)             a / b, cut at t's scale                              8115, 8134
//   exact_mod(a, ta, b, tb, t)             a % b, with a's sign                                 8115, 8134
//   exact_neg(a, t)                        -a                                                   8115
//   exact_check(a, t)                      a itself when it lies in t's range; what SQLite made of an integer
//                                          overflow (a REAL) does not                           8115
//   exact_cmp(a, ta, b, tb)                -1, 0 or 1 as a is to b, scales may differ
//   exact_key(a)                           a BLOB of 16 bytes: orders and groups units of one scale, wide ones too
//   exact_abs(a, t), exact_sign(a, t)      result in t
//   exact_round(a, t, n), exact_round(a, t, n, cut)   Round; cut <> 0 cuts instead                8115
//   exact_floor(a, ta, t), exact_ceiling(a, ta, t)
//   -- float (REAL)
//   float_bits(n)                          the REAL with these 64 bits: SQLite's own literals are not always exact
//   float_check(x)                         x itself; infinite                                   8115
//   float_div(a, b)                        a / b                                                8134, 8115
//   float_round(x, n), float_round(x, n, cut), float_floor(x), float_ceiling(x), float_power(x, y) (8115),
//   float_sqrt(x), float_sign(x)
//   -- conversions
//   cast_to(x, from, to)                   Cast(x as to); texts are cut   220, 235, 241, 242, 245, 248, 8114, 8115
//   cast_to(x, from, to, style)            Convert(to, x, style)
//   store_to(x, from, to, table, column)   what Insert and Update do: as cast_to, but a text too long is an error  2628
//   -- texts (arguments are TEXT: cast numbers with cast_to(x, t, implicitTextType(t)) first)
//   text_left(x, n), text_right(x, n)      by UTF-16 units; n < 0                               537
//   text_substring(x, start, n)            n < 0                                                537
//   text_len(x)                            without trailing blanks
//   text_width(x)                          with them
//   text_upper(x), text_lower(x), text_ltrim(x), text_rtrim(x), text_reverse(x)
//   text_replace(x, what, by), text_charindex(what, x), text_charindex(what, x, start)
//   text_stuff(x, start, n, by)            NULL when start or n lies outside x, as T-SQL
//   text_replicate(x, n), text_space(n)    n < 0 gives NULL
//   text_char(n), text_nchar(n), text_ascii(x), text_unicode(x)
//   text_str(x, length, decimals)          Str of a REAL; '***' when too long
//   text_quotename(x)                      [x], with ] doubled; NULL beyond 128 characters
//   text_isnumeric(x)                      1 or 0; NULL gives 0
//   text_like(x, pattern), text_like(x, pattern, escape)                     1 or 0, nvarchar's rule on blanks    506
//   text_like_varchar(x, pattern), text_like_varchar(x, pattern, escape)     1 or 0, x's trailing blanks ignored  506
//   text_patindex(pattern, x)              Patindex; 0 is not found
//   -- dates (INTEGER ticks; part: nameOf(DatePart))
//   date_part('part', d), date_add('part', n, d) (517), date_diff('part', a, b) (535)
//   date_name('part', d)                   Datename
//   date_check(d)                          d itself when it lies in datetime's range, for d + ticks   517
//   (Getdate is the same within a statement: put currentDateTime() into the text.)
//   -- aggregates over units; no rows or only NULLs give NULL. One argument, so DISTINCT works.
//   sum_int(x), sum_bigint(x), sum_money(x), sum_decimal(x)                                     8115
//   avg_int(x), avg_bigint(x), avg_money(x) cut at the argument's scale                         8115
//   avg_decimal_0(x) .. avg_decimal_6(x)   the quotient with 0..6 decimals more than x, cut     8115
//   min_decimal(x), max_decimal(x)         for wide decimals; native min and max do for all else
//   -- parts of statements
//   single_row(x)                          aggregate: the one value of its rows, NULL of none           512
//   required(x, column, table)             x itself; NULL                                               515
//
// A failing function ends the statement with a text that errorFrom() turns back into the SqlError.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/value.h"

struct sqlite3;
struct sqlite3_context;
struct sqlite3_stmt;
struct sqlite3_value;

namespace quillon::tsql {

// Registers all of the above and the collation. Throws SqlError when SQLite refuses.
void registerValueFunctions(sqlite3* database);

// The SqlError inside the text of a failed step (sqlite3_errmsg); nullopt when one of SQLite's own errors ended it.
std::optional<SqlError> errorFrom(std::string_view sqliteMessage);
// Ends a function of the engine with an error that errorFrom() reads.
void reportError(sqlite3_context* context, const SqlError& error);

// A value's text or bytes, until SQLite changes it; none of a null.
std::string_view textOf(sqlite3_value* value);
std::string_view bytesOf(sqlite3_value* value);

// Between rows of SQLite and values. The type says what the storage means.
Value valueOf(sqlite3_value* value, const Type& type);
Value columnValue(sqlite3_stmt* statement, int column, const Type& type);
// The same into `value`, whose memory for a text is used again.
void readColumn(sqlite3_stmt* statement, int column, const Type& type, Value& value);
int bindValue(sqlite3_stmt* statement, int index, const Value& value);  // SQLite's result code

}  // namespace quillon::tsql
