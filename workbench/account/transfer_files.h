// What the files of a transferred account are called.
#pragma once

#include <string>
#include <string_view>

#include "workbench/tsql/values/declared_table.h"

namespace quillon::account {

inline constexpr std::string_view schemaFileName = "schema.sql";
// Its name while the folder is being written.
inline constexpr std::string_view unfinishedSchemaFileName = "schema.sql.part";

// "Inventory.csv", "orvsystem..UA_Period.csv". What a file name must not hold on some system stands as "%2F".
std::string csvFileName(const tsql::DeclaredTable& table);

}  // namespace quillon::account
