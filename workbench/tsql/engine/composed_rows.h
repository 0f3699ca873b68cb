// Runs what row_composition.h describes.
#pragma once

#include <cstdint>
#include <optional>

#include "workbench/tsql/binding/row_composition.h"
#include "workbench/tsql/binding/stored_tables.h"
#include "workbench/tsql/engine/sqlite.h"

struct sqlite3;

namespace quillon::tsql {

// Adds the composition's rows to the table, which its query does not read before it has read all; gives how many they are.
// Nothing: the rows cannot be made so, because the table has an index, a value is none that lies in its column as it is, or
// an error came; then nothing has been added, and the statement is to be run by SQLite, which also says what is wrong where
// something is. `query` is the composition's, with its parameters, and is reset afterwards. Runs within a savepoint. Throws
// Stopped, FileBusy, and SqlError where SQLite has undone the transaction.
std::optional<std::int64_t> addComposedRows(sqlite3* database, const RowComposition& composition, Prepared& query,
                                            const Table& table);

// The same for rows that there are: the composition's only source is the table, whose rows get the composition's in their
// place. The query may read the table; where it gives a row several times, one after the other, the last one counts.
std::optional<std::int64_t> replaceByComposedRows(sqlite3* database, const RowComposition& composition, Prepared& query,
                                                  const Table& table);

}  // namespace quillon::tsql
