// Number and text literals: their value and T-SQL type.
#pragma once

#include "workbench/tsql/syntax/lexer.h"
#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

struct Literal {
  Value value;
  Type type;
};

// Throws SqlError 1007 when a number has more digits than a decimal holds, 8115 when a float or money is out of range.
Literal parseLiteral(const Token& token);

}  // namespace quillon::tsql
