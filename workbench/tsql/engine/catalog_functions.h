// The functions of the emitted SQL that look into the catalog; those that see nothing but their arguments stand in
// value_functions.h. Both are what SQLite calls: the functions that statements call, and what becomes of each call, are
// those of binding/built_in_functions.
//
//   object_id(x)    the id of the object that the text names ("[t]", "tempdb..#t"); NULL when there is none
//   db_id(x)        the number of the database of that name; NULL when there is none
#pragma once

struct sqlite3;

namespace quillon::tsql {

class Catalog;

// The catalog must outlive the connection's use. Throws SqlError when SQLite refuses.
void registerCatalogFunctions(sqlite3* database, Catalog& catalog);

}  // namespace quillon::tsql
