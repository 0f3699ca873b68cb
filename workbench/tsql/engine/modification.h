// Insert, Update, Delete and Truncate Table as SQLite statements.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/engine/matched_rows.h"
#include "workbench/tsql/syntax/ast.h"

namespace quillon::tsql {

// A statement and other forms of it, where there are any: `grouping` of an Insert whose rows come from a wide grouping,
// with whole statements as its `sql` and `others`; `composition` of the rows that an Insert adds, or of those that an Update
// of a table from itself changes; `matching` of an Update from other tables.
struct Modification {
  std::string sql;
  std::shared_ptr<const Table> table = {};  // that is changed; for a composition and a matching
  std::optional<WideGrouping> grouping = {};
  std::optional<RowComposition> composition = {};
  bool isUpdate = false;
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
