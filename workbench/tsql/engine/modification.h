// Insert, Update, Delete and Truncate Table as SQLite statements.
#pragma once

#include <optional>
#include <string>

#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/engine/matched_rows.h"
#include "workbench/tsql/syntax/ast.h"

namespace quillon::tsql {

// A statement and, where there is one, its form for tables of many rows: `grouping` of an Insert whose rows come from a
// wide grouping, with the whole statement as its `sql`; `matching` of an Update.
struct Modification {
  std::string sql;
  std::optional<WideGrouping> grouping = {};
  std::optional<Matching> matching = {};
};

// `identityInsert`: the table takes values for its identity column. Throws SqlError 109, 110, 120, 121, 207, 208, 213,
// 264, 544, 8101.
Modification insertStatement(const Statement& statement, Binder& binder, bool identityInsert);
// The target is the row of the From clause that bears the target's name or alias, as T-SQL has it. Throws SqlError 207,
// 208, 264, 8102, 8154.
Modification updateStatement(const Statement& statement, Binder& binder);
std::string deleteStatement(const Statement& statement, Binder& binder);

}  // namespace quillon::tsql
