#include "workbench/tsql/binding/stored_tables.h"

#include <algorithm>
#include <array>

#include "frame/text.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

constexpr auto rowidNames = std::to_array<const char*>({"rowid", "_rowid_", "oid"});

}  // namespace

Storage storageOf(const Type& type) {
  switch (type.kind) {
    case Kind::integer:
    case Kind::bigInt:
    case Kind::bit:
    case Kind::money:
    case Kind::dateTime:
      return Storage::integer;
    case Kind::decimal:
      return type.precision <= 18 ? Storage::integer : Storage::any;
    case Kind::real:
      return Storage::real;
    case Kind::nVarChar:
    case Kind::varChar:
      return Storage::text;
  }
  return Storage::any;
}

bool Table::hasRowid() const {
  return std::ranges::any_of(rowidNames, [this](const char* name) { return find(name) < 0; });
}

std::string Table::rowid() const {
  for (const char* const candidate : rowidNames) {
    if (find(candidate) < 0) return candidate;
  }
  throw SqlError(40510,
                 "The embedded engine does not support a table with columns rowid, _rowid_ and oid all at once.");
}

std::string databaseOf(const ObjectName& name) {
  if (name.name.starts_with('#') || equalIgnoringCase(name.database, "tempdb")) return "tempdb";
  if (name.database.empty()) return {};
  if (equalIgnoringCase(name.database, "orvsystem")) return "orvsystem";
  throw SqlError(208, "Invalid object name '" + name.written + "'.", name.place.line, name.written);
}

}  // namespace quillon::tsql
