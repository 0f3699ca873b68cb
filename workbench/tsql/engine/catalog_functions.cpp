#include "workbench/tsql/engine/catalog_functions.h"

#include <sqlite3.h>

#include <string_view>

#include "frame/text.h"
#include "workbench/tsql/engine/catalog.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/syntax/parser.h"

namespace quillon::tsql {
namespace {

void objectId(sqlite3_context* context, int, sqlite3_value** arguments) {
  if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
  auto& catalog = *static_cast<Catalog*>(sqlite3_user_data(context));
  try {
    if (const auto object = catalog.object(parseObjectName(textOf(arguments[0])))) {
      sqlite3_result_int64(context, object->id);
    }
  } catch (const SqlError&) {
    // A text that is no name, or names an unknown database, has no object.
  }
}

// Any numbers that differ will do; that of tempdb is what servers give it.
void databaseId(sqlite3_context* context, int, sqlite3_value** arguments) {
  constexpr int tempdb = 2, orvsystem = 5;
  const std::string_view name = textOf(arguments[0]);
  if (equalIgnoringCase(name, "tempdb")) sqlite3_result_int(context, tempdb);
  if (equalIgnoringCase(name, "orvsystem")) sqlite3_result_int(context, orvsystem);
}

void check(sqlite3* database, int result) {
  if (result != SQLITE_OK) throwSqliteError(database);
}

}  // namespace

void registerCatalogFunctions(sqlite3* database, Catalog& catalog) {
  check(database, sqlite3_create_function_v2(database, "object_id", 1, SQLITE_UTF8, &catalog, objectId, nullptr,
                                             nullptr, nullptr));
  check(database, sqlite3_create_function_v2(database, "db_id", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                             databaseId, nullptr, nullptr, nullptr));
}

}  // namespace quillon::tsql
