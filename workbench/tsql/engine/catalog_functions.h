// The functions of the emitted SQL that need the catalog or belong to statements, beside those of value_functions.h:
//
//   object_id(x)             the id of the object that the text names ("[t]", "tempdb..#t"); NULL when there is none
//   single_row(x)            aggregate: the one value of its rows, NULL of none                               error 512
//   required(x, column, table)   x itself; NULL                                                              error 515
#pragma once

struct sqlite3;

namespace quillon::tsql {

class Catalog;

// The catalog must outlive the connection's use.
void registerEngineFunctions(sqlite3* database, Catalog& catalog);

}  // namespace quillon::tsql
