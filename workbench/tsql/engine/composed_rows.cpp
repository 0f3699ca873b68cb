#include "workbench/tsql/engine/composed_rows.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "workbench/tsql/engine/record.h"
#include "workbench/tsql/engine/stored_rows.h"
#include "workbench/tsql/engine/value_functions.h"

namespace quillon::tsql {
namespace {

bool fits(sqlite3_value* value, Storage storage) {
  const int type = sqlite3_value_type(value);
  if (type == SQLITE_NULL) return true;
  switch (storage) {
    case Storage::integer:
      return type == SQLITE_INTEGER;
    case Storage::real:
      return type == SQLITE_FLOAT;
    case Storage::text:
      return type == SQLITE_TEXT;
    case Storage::any:
      return true;
  }
  return false;
}

// False: the value cannot lie in such a column as it is.
bool addValue(RecordBuilder& row, sqlite3_value* value, Storage storage) {
  if (!fits(value, storage)) return false;
  if (storage == Storage::real) {
    row.addReal(value);
  } else {
    row.add(value);
  }
  return true;
}

// The same in the piece's column.
bool addGiven(RecordBuilder& row, sqlite3_value* value, const RowComposition::Piece& piece) {
  if (piece.required && sqlite3_value_type(value) == SQLITE_NULL) return false;
  return addValue(row, value, piece.storage);
}

// Rows of a look-up that have been asked for.
class LookedUpRows {
 public:
  LookedUpRows(sqlite3* database, const RowComposition::Source& source)
      : source_(source), query_(database, source.lookUp) {}

  // Begins a key, whose values are then added one by one.
  RecordBuilder& newKey() {
    key_.clear();
    return key_;
  }
  // The row for that key. False: there is not one row, or its values do not lie in their columns as they are.
  bool find(const RecordFields*& fields) {
    const std::string_view key = key_.record();
    if (last_ == nullptr || last_->first != key) {
      auto found = rows_.find(std::string(key));
      if (found == rows_.end()) {
        if (bytes_ > mostBytes) clear();
        found = rows_.try_emplace(std::string(key)).first;
        if (!read(found->first, found->second)) return false;
        bytes_ += found->first.size() + found->second.record.size() + bytesOfRow;
      }
      last_ = &*found;
    }
    fields = &last_->second.fields;
    return true;
  }

 private:
  // A statement has a dozen of these.
  static constexpr std::size_t mostBytes = std::size_t{16} << 20;
  static constexpr std::size_t bytesOfRow = 512;  // about

  struct Row {
    std::string record;
    RecordFields fields;
  };

  bool read(const std::string& key, Row& row) {
    query_.reset();
    RecordFields keys;
    keys.read(key);
    for (std::size_t i = 0; i < keys.count(); ++i)
      keys.bind(i, query_.handle(), static_cast<int>(i) + 1);
    if (!query_.step()) return false;
    RecordBuilder builder;
    for (std::size_t i = 0; i < source_.given.size(); ++i) {
      sqlite3_value* const value = sqlite3_column_value(query_.handle(), static_cast<int>(i));
      if (!addValue(builder, value, source_.given[i])) return false;
    }
    row.record = builder.record();
    row.fields.read(row.record);
    return !query_.step();
  }

  void clear() {
    rows_.clear();
    last_ = nullptr;
    bytes_ = 0;
  }

  const RowComposition::Source& source_;
  Prepared query_;
  RecordBuilder key_;
  std::unordered_map<std::string, Row> rows_;
  const std::pair<const std::string, Row>* last_ = nullptr;
  std::size_t bytes_ = 0;
};

// Whether the table is so small that to read it for each key costs little.
bool isSmall(sqlite3* database, const std::string& table) {
  constexpr std::int64_t few = 200;
  return countUpTo(database, table, few + 1) <= few;
}

// Makes one row after the other.
class Composer {
 public:
  Composer(const RowComposition& composition, Prepared& query) : composition_(composition), query_(query) {}
  ~Composer() { query_.reset(); }
  Composer(const Composer&) = delete;
  Composer& operator=(const Composer&) = delete;

  bool step() { return query_.step(); }

  // Before the first step. False: a source is none whose rows can be copied.
  bool open(sqlite3* database) {
    sources_.resize(composition_.sources.size());
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      Source& source = sources_[i];
      const RowComposition::Source& described = composition_.sources[i];
      if (!described.lookUp.empty()) {
        for (const std::string& table : described.smallTables) {
          if (!isSmall(database, table)) return false;
        }
        source.lookedUp = std::make_unique<LookedUpRows>(database, described);
        continue;
      }
      source.rows.emplace(database, *described.table, StoredRows::Use::read);
      if (!*source.rows) return false;
    }
    const auto need = [&](std::size_t source, std::size_t columns) {
      sources_[source].columns = std::max(sources_[source].columns, columns);
    };
    for (const RowComposition::Piece& piece : composition_.pieces) {
      if (piece.kind == RowComposition::Kind::fields) need(piece.source, piece.first + piece.count);
    }
    for (const RowComposition::Source& described : composition_.sources) {
      for (const RowComposition::Key& key : described.keys) {
        if (key.source) need(*key.source, key.column + 1);
      }
    }
    return true;
  }

  // False: see addComposedRows().
  bool make() {
    std::size_t value = 0;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      if (!(sources_[i].lookedUp ? lookUp(i, value) : read(sources_[i], value))) return false;
    }
    row_.clear();
    for (const RowComposition::Piece& piece : composition_.pieces) {
      switch (piece.kind) {
        case RowComposition::Kind::nulls:
          row_.addNulls(piece.count);
          break;
        case RowComposition::Kind::fields:
          if (!addFields(piece)) return false;
          break;
        case RowComposition::Kind::value:
          if (!addGiven(row_, column(value++), piece)) return false;
      }
    }
    return true;
  }
  std::string_view record() { return row_.record(); }

 private:
  sqlite3_value* column(std::size_t place) const {
    return sqlite3_column_value(query_.handle(), static_cast<int>(place));
  }
  bool addFields(const RowComposition::Piece& piece) {
    const Source& source = sources_[piece.source];
    if (piece.required && (source.row == nullptr || source.row->isNull(piece.first))) return false;
    if (source.row != nullptr) {
      row_.add(*source.row, piece.first, piece.count);
    } else {
      row_.addNulls(piece.count);
    }
    return true;
  }

  struct Source {
    std::optional<StoredRows> rows;
    std::unique_ptr<LookedUpRows> lookedUp;
    const RecordFields* row = nullptr;  // for the row that is made; null: none
    std::int64_t number = 0;            // its, in a table
    RecordFields fields;                // likewise
    std::size_t columns = 0;            // how many of them are needed
  };

  // Both take their items, from `item` on.
  bool read(Source& source, std::size_t& item) {
    sqlite3_value* const given = column(item++);
    if (sqlite3_value_type(given) == SQLITE_NULL) {
      source.row = nullptr;
      return true;
    }
    const std::int64_t number = sqlite3_value_int64(given);
    // Who adds to the table that is read gives each row once.
    if (source.row != nullptr && number == source.number) return true;
    const std::string_view record = source.rows->at(number);
    source.row = nullptr;
    if (record.empty()) return false;
    source.fields.read(record, source.columns);
    source.row = &source.fields;
    source.number = number;
    return true;
  }
  bool lookUp(std::size_t place, std::size_t& item) {
    Source& source = sources_[place];
    RecordBuilder& keys = source.lookedUp->newKey();
    for (const RowComposition::Key& key : composition_.sources[place].keys) {
      if (!key.source) {
        keys.add(column(item++));
      } else if (const RecordFields* const row = sources_[*key.source].row) {
        keys.add(*row, key.column, 1);
      } else {
        keys.addNulls(1);
      }
    }
    return source.lookedUp->find(source.row);
  }

  const RowComposition& composition_;
  Prepared& query_;
  std::vector<Source> sources_;
  RecordBuilder row_;
};

// Puts rows of a table in the place of those that they are made of.
class Replacer {
 public:
  Replacer(const RowComposition& composition, Prepared& query) : composition_(composition), query_(query) {
    std::size_t column = 0;
    for (const RowComposition::Piece& piece : composition.pieces) {
      column += piece.count;
      if (piece.kind == RowComposition::Kind::value) looked_ = column;
    }
  }
  ~Replacer() { query_.reset(); }
  Replacer(const Replacer&) = delete;
  Replacer& operator=(const Replacer&) = delete;

  std::optional<std::int64_t> run(StoredRows& table) {
    std::optional<std::int64_t> number;
    std::int64_t count = 0;
    while (query_.step()) {
      const std::int64_t next = query_.integer(0);
      if (number && next != *number && !write(table, *number)) return {};
      if (next != number) ++count;
      number = next;
      if (!takeValues()) return {};
    }
    if (number && !write(table, *number)) return {};
    return count;
  }

 private:
  bool takeValues() {
    values_.clear();
    int item = 1;
    for (const RowComposition::Piece& piece : composition_.pieces) {
      if (piece.kind != RowComposition::Kind::value) continue;
      if (!addGiven(values_, sqlite3_column_value(query_.handle(), item++), piece)) return false;
    }
    return true;
  }

  bool write(StoredRows& table, std::int64_t number) {
    const std::string_view record = table.at(number);
    if (record.empty()) return false;
    // What follows the last new value is taken as it is.
    fields_.read(record, looked_);
    newFields_.read(values_.record());
    row_.clear();
    std::size_t column = 0, value = 0;
    for (const RowComposition::Piece& piece : composition_.pieces) {
      if (column == looked_) break;
      const bool isNew = piece.kind == RowComposition::Kind::value;
      row_.add(isNew ? newFields_ : fields_, isNew ? value++ : piece.first, piece.count);
      column += piece.count;
    }
    row_.addOthers(fields_);
    table.replace(number, row_.record());
    return true;
  }

  const RowComposition& composition_;
  Prepared& query_;
  std::size_t looked_ = 0;      // the columns up to the last new value
  RecordBuilder values_, row_;  // the values for the row that was given last
  RecordFields fields_, newFields_;
};

// Runs the action, which gives nothing where it leaves the rows to SQLite, so that nothing is left of it then.
template <typename Action>
std::optional<std::int64_t> allOrNothing(sqlite3* database, Action action) {
  try {
    Savepoint savepoint(database);
    const std::optional<std::int64_t> result = action();
    if (result) savepoint.keep();
    return result;
  } catch (const FileBusy&) {
    throw;
  } catch (const SqlError&) {
    // SQLite might compute things in another order for the statement, of fewer rows or with another error; unless it has
    // undone the whole transaction.
    if (sqlite3_get_autocommit(database) != 0) throw;
    return {};
  }
}

}  // namespace

std::optional<std::int64_t> addComposedRows(sqlite3* database, const RowComposition& composition, Prepared& query,
                                            const Table& table) {
  return allOrNothing(database, [&]() -> std::optional<std::int64_t> {
    Composer composer(composition, query);
    StoredRows target(database, table, StoredRows::Use::write);
    if (!target || !composer.open(database)) return {};
    std::int64_t number = target.last();
    std::int64_t count = 0;
    for (; composer.step(); ++count) {
      if (number == std::numeric_limits<std::int64_t>::max() || !composer.make()) return {};
      target.add(++number, composer.record());
    }
    return count;
  });
}

std::optional<std::int64_t> replaceByComposedRows(sqlite3* database, const RowComposition& composition, Prepared& query,
                                                  const Table& table) {
  return allOrNothing(database, [&]() -> std::optional<std::int64_t> {
    Replacer replacer(composition, query);
    StoredRows target(database, table, StoredRows::Use::write);
    if (!target) return {};
    return replacer.run(target);
  });
}

}  // namespace quillon::tsql
