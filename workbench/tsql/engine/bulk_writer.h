// Writes rows without parsing and binding a statement for each, for generators and imports.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "workbench/tsql/engine/engine.h"

struct sqlite3;

namespace quillon::tsql {

class Catalog;

// Throws SqlError 207 and 208 for unknown columns and tables.
std::unique_ptr<BulkWriter> makeBulkWriter(sqlite3* database, Catalog& catalog, std::string_view table,
                                           std::span<const std::string> columns);

}  // namespace quillon::tsql
