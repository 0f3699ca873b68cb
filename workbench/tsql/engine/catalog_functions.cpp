#include "workbench/tsql/engine/catalog_functions.h"

#include <sqlite3.h>

#include <string>

#include "workbench/tsql/engine/catalog.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/syntax/lexer.h"
#include "workbench/tsql/syntax/parser.h"

namespace quillon::tsql {
namespace {

std::string textOf(sqlite3_value* value) {
  const auto* const data = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return data == nullptr ? std::string() : std::string(data, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

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

// Any number will do, as long as it is the database's own; tempdb has the one that servers give it.
void databaseId(sqlite3_context* context, int, sqlite3_value** arguments) {
  constexpr int tempdb = 2, orvsystem = 5;
  const std::string name = textOf(arguments[0]);
  if (equalsIgnoringCase(name, "tempdb")) sqlite3_result_int(context, tempdb);
  if (equalsIgnoringCase(name, "orvsystem")) sqlite3_result_int(context, orvsystem);
}

// The aggregate's state: the first value, copied.
void singleRowStep(sqlite3_context* context, int, sqlite3_value** arguments) {
  auto** const state = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
  if (state == nullptr) {
    sqlite3_result_error_nomem(context);
    return;
  }
  if (*state != nullptr) {
    reportError(
        context,
        SqlError(512,
                 "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, <, <= "
                 ", >, >= or when the subquery is used as an expression."));
    return;
  }
  *state = sqlite3_value_dup(arguments[0]);
}

void singleRowEnd(sqlite3_context* context) {
  auto** const state = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 0));
  if (state == nullptr || *state == nullptr) return;
  sqlite3_result_value(context, *state);
  sqlite3_value_free(*state);
  *state = nullptr;
}

void required(sqlite3_context* context, int, sqlite3_value** arguments) {
  if (sqlite3_value_type(arguments[0]) != SQLITE_NULL) {
    sqlite3_result_value(context, arguments[0]);
    return;
  }
  reportError(context,
              SqlError(515, "Cannot insert the value NULL into column '" + textOf(arguments[1]) + "', table '" +
                                textOf(arguments[2]) + "'; column does not allow nulls. INSERT fails."));
}

void check(sqlite3* database, int result) {
  if (result != SQLITE_OK) throwSqliteError(database);
}

}  // namespace

void registerEngineFunctions(sqlite3* database, Catalog& catalog) {
  check(database, sqlite3_create_function_v2(database, "object_id", 1, SQLITE_UTF8, &catalog, objectId, nullptr,
                                             nullptr, nullptr));
  check(database, sqlite3_create_function_v2(database, "db_id", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                             databaseId, nullptr, nullptr, nullptr));
  check(database, sqlite3_create_function_v2(database, "single_row", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                             nullptr, singleRowStep, singleRowEnd, nullptr));
  check(database, sqlite3_create_function_v2(database, "required", 3, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                             required, nullptr, nullptr, nullptr));
}

}  // namespace quillon::tsql
