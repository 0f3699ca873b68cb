// Turns a T-SQL batch into statements. What the dialect leaves out is refused here by name (SqlError 40510); what is no
// T-SQL gives SqlError 102 or 156 with the offending token and its line.
#pragma once

#include <string_view>
#include <vector>

#include "workbench/tsql/syntax/ast.h"

namespace quillon::tsql {

// The statements of a batch in order; they may follow each other with or without a semicolon.
std::vector<StatementPtr> parseBatch(std::string_view batch);
// The column definitions and keys inside the brackets of a Create Table, as the catalog keeps them.
StatementPtr parseTableDefinition(std::string_view definition);
// One value, as the catalog keeps a column's default.
ExpressionPtr parseValue(std::string_view text);
// A name as OBJECT_ID takes it: `[t]`, `dbo.t`, `tempdb..#t`. Throws SqlError 102 when it is none.
ObjectName parseObjectName(std::string_view text);

}  // namespace quillon::tsql
