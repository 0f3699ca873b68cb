// Conversions between types, with SQL Server's rules and errors. Null converts to null.
#pragma once

#include <string>
#include <string_view>

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

// Cast and Convert: a text longer than the target is cut without an error. `style` is Convert's third argument; it counts
// for datetime to and from text (0, 20/120, 21/121, 23, 111, 112, 102, 126, 101, 103, 104, 105, 108, 110, 114), money
// to text (0, 1, 2) and float to text (0, 1, 2). Throws SqlError 220, 235, 241, 242, 245, 248, 8114 or 8115.
Value castValue(const Value& value, const Type& from, const Type& to, int style = 0);

// What Insert and Update do: as castValue, but a text that is too long throws 2628 (trailing blanks beyond the width
// are dropped). `table` and `column` are for the error's text.
Value assignValue(const Value& value, const Type& from, const Type& to, std::string_view table = {},
                  std::string_view column = {});

// A float as SQL Server prints it: six significant digits, "1e+010".
std::string floatToText(double value);
// 1 when the text converts to some number type (IsNumeric).
bool isNumericText(std::string_view text);

}  // namespace quillon::tsql
