// The tables of reports that a test's account is left with.
#pragma once

#include <string>
#include <vector>

#include "workbench/account/leftover_tables.h"

namespace quillon::account::testing {

inline std::vector<std::string> leftoverNames(tsql::Database& account) {
  std::vector<std::string> names;
  for (const LeftoverTable& table : leftoverTables(account))
    names.push_back(table.name);
  return names;
}

// Drops all of them; gives their names.
inline std::vector<std::string> dropLeftovers(tsql::Database& account) {
  std::vector<std::string> names = leftoverNames(account);
  for (const std::string& name : names)
    dropTable(account, name);
  return names;
}

}  // namespace quillon::account::testing
