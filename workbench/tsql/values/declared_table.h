// A table as its Create Table declares it, and how T-SQL writes its parts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

struct TableColumn {
  std::string name;
  Type type;
  bool notNull = false;
  bool identity = false;
  std::int64_t seed = 1;
  std::int64_t increment = 1;
  std::string defaultText;  // T-SQL; empty: none
};

// A primary key or a unique key.
struct KeyDefinition {
  bool primary = false;
  std::vector<std::string> columns;
};

struct DeclaredTable {
  std::string database;  // "", "orvsystem" or "tempdb"
  std::string name;
  std::vector<TableColumn> columns;
  std::vector<KeyDefinition> keys;

  // The place of a column, in any letter case; -1 when there is none.
  int find(std::string_view column) const;
  // The columns of the primary key; empty without one.
  std::vector<std::string> primaryKey() const;
};

// A type as a Create Table writes it.
std::string declaration(const Type& type);
// A name in brackets.
std::string bracketed(std::string_view name);
// "[a], [b]"
std::string bracketedList(const std::vector<std::string>& columns);
// How a statement names a table, view or function: "[Inventory]", "orvsystem..[UA_Period]".
std::string writtenName(std::string_view database, std::string_view name);

}  // namespace quillon::tsql
