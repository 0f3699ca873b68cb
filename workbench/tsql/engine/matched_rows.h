// What an Update takes from other tables, held by what joins them to the table that is changed: so the table is read and
// changed in one pass, where SQLite would first collect all new values in a table of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "workbench/tsql/binding/row_composition.h"
#include "workbench/tsql/engine/sqlite.h"

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

namespace quillon::tsql {

// An Update .. From whose other tables are joined by equality alone.
struct Matching {
  std::string table;     // the table to be changed
  std::string source;    // the query of the others: first the keys, then what of them is taken
  std::size_t keys = 0;  // its first columns
  // The Update that calls has_match(key, ...), 1 where the keys are in the source, and match_value(n, key, ...), the n-th
  // value of the row with these keys, counted from 0.
  std::string sql;
  // The rows as they become by it; nothing where the table cannot have them so.
  std::optional<RowComposition> composition = {};
};

class MatchedRows {
 public:
  // Registers the two functions. The object stays where it is until the connection is closed. Throws SqlError when SQLite
  // refuses.
  void registerFunctions(sqlite3* database);

  // Reads the source. False: the table is too small to gain by it, the source has more rows than the table, or two with
  // the same keys, so that SQLite has to choose; then the matching's Update must not be run. Throws SqlError, Stopped.
  // `bind` gives the source its parameters.
  bool read(sqlite3* database, const Matching& matching, const std::function<void(Prepared&)>& bind = {});
  void forget();

 private:
  struct FreeValue {
    void operator()(sqlite3_value* value) const;
  };
  using Row = std::vector<std::unique_ptr<sqlite3_value, FreeValue>>;  // the keys first

  static void hasMatch(sqlite3_context* context, int count, sqlite3_value** arguments);
  static void matchValue(sqlite3_context* context, int count, sqlite3_value** arguments);
  // The row with these keys; null: none.
  template <typename KeyAt>
  const Row* find(KeyAt keyAt) const;

  std::size_t keys_ = 0;
  std::unordered_multimap<std::uint64_t, Row> rows_;  // by the fingerprint of their keys
};

}  // namespace quillon::tsql
