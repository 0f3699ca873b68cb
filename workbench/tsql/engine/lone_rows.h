// Which rows of a table are alone in their group, when its rows are grouped by many columns: reports group rows that are
// nearly all different, and SQLite would sort whole rows to find that out.
//
// Rows are told apart by fingerprints of a few of the columns. Two rows of one group always have the same; when two of
// different groups have, both count as not alone, and SQLite groups them with the rest.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/tsql/binding/binder.h"

struct sqlite3;

namespace quillon::tsql {

class LoneRows {
 public:
  // Registers is_alone(number), which gives 1 for a row that is alone by the last find() and 0 for others. The object
  // stays where it is until the connection is closed. Throws SqlError when SQLite refuses.
  void registerFunction(sqlite3* database);

  // Looks for the rows of the grouping that are alone. False: too few rows, or too few of them alone, to gain by it; then
  // the grouping's query must not be run. Throws SqlError, Stopped.
  bool find(sqlite3* database, const WideGrouping& grouping);
  void forget();
  bool has(std::int64_t number) const;

 private:
  std::int64_t first_ = 0;      // the least row number
  std::vector<bool> repeated_;  // by row number from the first on: shares its fingerprint with another row
};

}  // namespace quillon::tsql
