// Rows put together of the records of other rows. Most columns that a report's Insert stores are columns of some table as
// they stand; SQLite would take each value out of its record and put it into the next. Here a query gives the numbers of
// the rows that a new row comes from and the values that have to be computed, and what lies in these rows is copied.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/tsql/binding/stored_tables.h"

namespace quillon::tsql {

struct RowComposition {
  // A value by which a row is looked up: a column of a source before it whose rows are those of a table, or an item of the
  // query.
  struct Key {
    std::optional<std::size_t> source = {};
    std::size_t column = 0;
  };
  // What is copied from: the rows of a table, by their numbers, or the row of a query that has one for the values of its
  // parameters, which come again and again.
  struct Source {
    std::shared_ptr<const Table> table;
    std::string lookUp;
    std::vector<Key> keys = {};       // of a look-up
    std::vector<Storage> given = {};  // how the columns lie that it gives
    // Where it has no key to look rows up by, its tables, by their names in SQL: they are few rows, or it is not worth it.
    std::vector<std::string> smallTables = {};
  };
  enum class Kind {
    nulls,   // `count` columns that get nothing
    fields,  // `count` columns of the source from `first` on; null where the source has no row
    value,   // the next value of the query
  };
  struct Piece {
    Kind kind = Kind::nulls;
    std::size_t count = 1;
    std::size_t source = 0, first = 0;
    Storage storage = Storage::any;  // of a value
    bool required = false;           // of one column: it refuses NULL

    // Whether a piece of one column can be counted in.
    bool goesOnWith(const Piece& next) const {
      if (kind != next.kind || required || next.required) return false;
      return kind == Kind::nulls || (kind == Kind::fields && source == next.source && first + count == next.first);
    }
  };

  // SQLite's query: the row number of each source, or its keys that are items, then the values of the pieces in their order.
  std::string sql;
  // What makes it read all rows before it gives the first, when it stands behind it, and keeps their order; empty: unknown.
  std::string readingFirst;
  std::vector<Source> sources;
  // The columns of the new row in its table's order.
  std::vector<Piece> pieces;
};

}  // namespace quillon::tsql
