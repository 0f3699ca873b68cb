// What reports that were interrupted left in an account: on a server, and in an account file through --keep and through
// versions that did not yet have a scratch file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/values/database.h"

namespace quillon::account {

// What the workbench calls result tables; a unique part follows.
inline constexpr std::string_view resultTablePrefix = "QuillonReport";

// True for a name that the reports give their work tables, in any letter case, because some servers keep names in small
// letters: a number, a unique part of letters, digits and underscores, and one of the reports' suffixes.
bool isWorkTableName(std::string_view name);
// True for a name that the workbench gives result tables, in any letter case: "QuillonReport" and 32 hexadecimal digits.
bool isResultTableName(std::string_view name);

struct LeftoverTable {
  std::string name;
  // Since when it is there, as the server says; nullopt for an account file, which does not know.
  std::optional<std::int64_t> minutes = std::nullopt;

  bool isResult() const { return isResultTableName(name); }
  // Whether it may belong to a report that runs now, or is wanted: younger than a day, or a result table whose age is
  // not known. Such a one is dropped only when the user says so.
  bool mayBeWanted() const;
};

// The tables with such names, by name.
std::vector<LeftoverTable> leftoverTables(tsql::Database& connection);
void dropTable(tsql::Database& connection, const std::string& name);
// Drops the work tables whose names have one of these unique parts: those of one run.
void dropWorkTablesNamed(tsql::Database& connection, const std::vector<std::string>& uniqueParts);

}  // namespace quillon::account
