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
  // Registers is_alone(number), which gives 1 for a row that is alone by the last find() and 0 for others, and for those of
  // gather() is_together(number) and group_number(number). The object stays where it is until the connection is closed.
  // Throws SqlError when SQLite refuses.
  void registerFunctions(sqlite3* database);

  // Looks for the rows of the grouping that are alone. False: too few rows, or too few of them alone, to gain by it; then
  // the grouping's query must not be run. Throws SqlError, Stopped.
  bool find(sqlite3* database, const WideGrouping& grouping);
  // Then, of the rows that are not alone, those that are in the same group to the last byte, where all with their
  // fingerprint are. Runs within a savepoint. False: the table's rows cannot be read as they are stored.
  bool gather(sqlite3* database, const WideGrouping& grouping);
  void forget();

  bool isAlone(std::int64_t number) const { return leaderOf(number) == 0; }
  bool isTogether(std::int64_t number) const { return !isAlone(number) && !isMixed_[leaderOf(number) - 1]; }
  // Whether all rows are alone or together by the last gather().
  bool isComplete() const { return isComplete_; }
  // The same for rows of one group.
  std::int64_t groupNumber(std::int64_t number) const { return leaderOf(number); }

 private:
  std::uint32_t leaderOf(std::int64_t number) const { return leaders_[static_cast<std::size_t>(number - first_)]; }

  std::int64_t first_ = 0;  // the least row number
  // By row number from the first on: which row has the same fingerprint, counted from 1, and is the first of these; 0: none.
  std::vector<std::uint32_t> leaders_;
  bool isComplete_ = false;
  std::vector<bool> isMixed_;  // by leader: the rows of its fingerprint are not known to be of one group
};

}  // namespace quillon::tsql
