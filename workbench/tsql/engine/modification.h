// Insert, Update, Delete and Truncate Table as SQLite statements.
#pragma once

#include <optional>
#include <string>

#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/syntax/ast.h"

namespace quillon::tsql {

// `grouping` is set where the rows come from a wide grouping: its `sql` is then the whole statement.
struct Modification {
  std::string sql;
  std::optional<WideGrouping> grouping = {};
};

// `identityInsert`: the table takes values for its identity column. Throws SqlError 109, 110, 120, 121, 207, 208, 213,
// 264, 544, 8101.
Modification insertStatement(const Statement& statement, Binder& binder, bool identityInsert);
// The target is the row of the From clause that bears the target's name or alias, as T-SQL has it. Throws SqlError 207,
// 208, 264, 8102, 8154.
std::string updateStatement(const Statement& statement, Binder& binder);
std::string deleteStatement(const Statement& statement, Binder& binder);

}  // namespace quillon::tsql
