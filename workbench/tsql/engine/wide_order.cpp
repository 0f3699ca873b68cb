#include "workbench/tsql/engine/wide_order.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include "workbench/tsql/engine/record.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/stored_rows.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::tsql {
namespace {

using Key = RowOrdering::Key;

// By so many keys SQLite orders. They take in those by which reports order their rows before what only breaks ties.
constexpr std::size_t leadingKeys = 12;
// With fewer keys beyond them SQLite orders by all.
constexpr std::size_t worthwhileKeys = 4;
// Rows alike in the leading keys that are held in memory.
constexpr std::size_t mostAlike = 500;
// Of row numbers, which cost little, as many as this part of all rows may be alike.
constexpr std::size_t partAlike = 8;

int sign(bool above, bool below) {
  return static_cast<int>(above) - static_cast<int>(below);
}

// A key of a row as it lies in SQLite, compared as SQLite compares.
class KeyValue {
 public:
  void read(sqlite3_stmt* statement, int column) {
    type_ = sqlite3_column_type(statement, column);
    if (type_ == SQLITE_INTEGER) {
      integer_ = sqlite3_column_int64(statement, column);
    } else if (type_ == SQLITE_FLOAT) {
      real_ = sqlite3_column_double(statement, column);
    } else if (type_ != SQLITE_NULL) {
      bytes_.assign(bytesOf(statement, column));
    }
  }

  // Whether the column of the current row is equal to it.
  bool equals(sqlite3_stmt* statement, int column) const {
    if (sqlite3_column_type(statement, column) != type_) return false;
    switch (type_) {
      case SQLITE_INTEGER:
        return sqlite3_column_int64(statement, column) == integer_;
      case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column) == real_;
      case SQLITE_NULL:
        return true;
      case SQLITE_TEXT:
        return compareText(bytes_, bytesOf(statement, column)) == 0;
      default:
        return bytes_ == bytesOf(statement, column);
    }
  }

  int compare(const KeyValue& other) const {
    if (rank() != other.rank()) return rank() - other.rank();
    if (type_ == SQLITE_NULL) return 0;
    if (type_ == SQLITE_TEXT) return compareText(bytes_, other.bytes_);
    if (type_ == SQLITE_BLOB) return bytes_.compare(other.bytes_);
    if (type_ == SQLITE_INTEGER && other.type_ == SQLITE_INTEGER)
      return sign(integer_ > other.integer_, integer_ < other.integer_);
    return sign(number() > other.number(), number() < other.number());
  }

 private:
  static std::string_view bytesOf(sqlite3_stmt* statement, int column) {
    const void* const bytes = sqlite3_column_blob(statement, column);
    const int size = sqlite3_column_bytes(statement, column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
  }
  // Nothing, then numbers, texts, bytes.
  int rank() const {
    if (type_ == SQLITE_NULL) return 0;
    if (type_ == SQLITE_TEXT) return 2;
    return type_ == SQLITE_BLOB ? 3 : 1;
  }
  long double number() const {
    return type_ == SQLITE_FLOAT ? static_cast<long double>(real_) : static_cast<long double>(integer_);
  }

  int type_ = SQLITE_NULL;
  std::int64_t integer_ = 0;
  double real_ = 0;
  std::string bytes_;
};

// The keys of a row that stand in the columns `columns` of a statement.
class RowKeys {
 public:
  explicit RowKeys(std::vector<int> columns) : columns_(std::move(columns)), values_(columns_.size()) {}

  void read(sqlite3_stmt* statement) {
    for (std::size_t i = 0; i < values_.size(); ++i)
      values_[i].read(statement, columns_[i]);
  }
  // The later keys differ more often.
  bool equal(sqlite3_stmt* statement) const {
    for (std::size_t i = values_.size(); i-- > 0;) {
      if (!values_[i].equals(statement, columns_[i])) return false;
    }
    return true;
  }

 private:
  std::vector<int> columns_;
  std::vector<KeyValue> values_;
};

std::string listed(std::span<const Key> keys) {
  std::string list;
  for (const Key& key : keys)
    list.append(list.empty() ? "" : ", ").append(key.sql).append(key.descending ? " DESC" : "");
  return list;
}

// How many keys lead: behind them are only such as stand in the row itself.
std::size_t leadingOf(const RowOrdering& ordering) {
  std::size_t leading = std::min(leadingKeys, ordering.keys.size());
  for (std::size_t i = leading; i < ordering.keys.size(); ++i) {
    if (!ordering.keys[i].output) leading = i + 1;
  }
  return leading;
}

// Values of one column.
int compareCells(const Value& one, const Value& other) {
  if (isNull(one) || isNull(other)) return sign(!isNull(one), !isNull(other));
  if (const auto* text = std::get_if<std::string>(&one)) return compareText(*text, std::get<std::string>(other));
  if (const auto* exact = std::get_if<Exact>(&one)) return compare(*exact, std::get<Exact>(other));
  if (const auto* integer = std::get_if<std::int64_t>(&one)) {
    const std::int64_t second = std::get<std::int64_t>(other);
    return sign(*integer > second, *integer < second);
  }
  if (const auto* real = std::get_if<double>(&one)) {
    const double second = std::get<double>(other);
    return sign(*real > second, *real < second);
  }
  const std::int64_t first = std::get<DateTime>(one).ticks, second = std::get<DateTime>(other).ticks;
  return sign(first > second, first < second);
}

class WidelyOrderedRows : public Cursor {
 public:
  WidelyOrderedRows(sqlite3* database, const BoundQuery& query, std::vector<Column> columns)
      : database_(database),
        columns_(std::move(columns)),
        whole_(query.sql),
        keys_(query.ordering->keys),
        leading_(leadingOf(*query.ordering)),
        statement_(std::make_unique<Prepared>(database, text(query))),
        before_(columnsOfKeys()) {
    more_ = statement_->step();
  }

  std::span<const Column> columns() const override { return columns_; }

  bool next() override {
    endIfStopped();
    if (position_ + 1 < alike_) {
      ++position_;
      return true;
    }
    position_ = 0;
    alike_ = 0;
    if (byAllKeys_) return readOne();
    readAlike();
    if (alike_ <= mostAlike) return alike_ > 0;
    orderByAllKeys();
    return readOne();
  }

  const Value& value(std::size_t column) const override { return rows_[position_].at(column); }

 private:
  // The leading keys that are no output columns follow these.
  std::string text(const BoundQuery& query) const {
    std::string sql = query.sql.substr(0, query.ordering->itemsEnd);
    for (const Key& key : leading()) {
      if (!key.output) sql += ", " + key.sql;
    }
    const std::size_t from = query.ordering->itemsEnd;
    return sql + query.sql.substr(from, query.ordering->orderBegin - from) + " ORDER BY " + listed(leading());
  }
  std::span<const Key> leading() const { return std::span(keys_).first(leading_); }
  std::vector<int> columnsOfKeys() const {
    std::vector<int> columns;
    std::size_t hidden = columns_.size();
    for (const Key& key : leading())
      columns.push_back(static_cast<int>(key.output ? *key.output : hidden++));
    return columns;
  }

  void readRow() {
    if (rows_.size() == alike_) rows_.emplace_back(columns_.size());
    std::vector<Value>& row = rows_[alike_++];
    for (std::size_t i = 0; i < row.size(); ++i)
      readColumn(statement_->handle(), static_cast<int>(i), columns_[i].type, row[i]);
  }

  bool readOne() {
    if (!more_) return false;
    readRow();
    more_ = statement_->step();
    return true;
  }

  // The next row and those that are alike in the leading keys, in the order of the others; one beyond `mostAlike` says
  // that there are too many.
  void readAlike() {
    if (!more_) return;
    before_.read(statement_->handle());
    do {
      readRow();
      more_ = statement_->step();
    } while (more_ && alike_ <= mostAlike && before_.equal(statement_->handle()));
    if (alike_ <= mostAlike) given_ += static_cast<std::int64_t>(alike_);
    if (alike_ == 1 || alike_ > mostAlike) return;
    const std::span<const Key> others = std::span(keys_).subspan(leading_);
    const auto isBefore = [others](const std::vector<Value>& one, const std::vector<Value>& other) {
      for (const Key& key : others) {
        const int order = compareCells(one[*key.output], other[*key.output]);
        if (order != 0) return key.descending ? order > 0 : order < 0;
      }
      return false;
    };
    std::stable_sort(rows_.begin(), rows_.begin() + static_cast<std::ptrdiff_t>(alike_), isBefore);
  }

  // Goes on behind the rows that were given.
  void orderByAllKeys() {
    statement_.reset();
    statement_ = std::make_unique<Prepared>(database_, whole_);
    byAllKeys_ = true;
    alike_ = 0;
    more_ = statement_->step();
    for (; more_ && given_ > 0; --given_)
      more_ = statement_->step();
  }

  sqlite3* database_;
  std::vector<Column> columns_;
  std::string whole_;
  std::vector<Key> keys_;
  std::size_t leading_;
  std::unique_ptr<Prepared> statement_;
  RowKeys before_;                        // the leading keys of the rows that are read
  std::vector<std::vector<Value>> rows_;  // grows only, so that the texts keep their memory
  std::size_t alike_ = 0;                 // rows in it
  std::size_t position_ = 0;              // the current one
  std::int64_t given_ = 0;
  bool more_ = false;
  bool byAllKeys_ = false;
};

// Where rows that are alike in the leading keys begin and end.
struct Alike {
  std::size_t begin;
  std::size_t end;
};

class Numbers {
 public:
  Numbers(sqlite3* database, const BoundQuery& query, const std::string& number)
      : database_(database), keys_(query.ordering->keys), number_(number) {
    const RowOrdering& ordering = *query.ordering;
    from_ = query.sql.substr(ordering.itemsEnd, ordering.fromEnd - ordering.itemsEnd);
    where_ = query.sql.substr(ordering.fromEnd, ordering.orderBegin - ordering.fromEnd);
    leading_ = keys_.size() < leadingKeys + worthwhileKeys ? keys_.size() : leadingKeys;
  }

  std::vector<std::int64_t> all() {
    if (leading_ == keys_.size()) return byAllKeys({});
    read({});
    std::size_t alike = 0;
    for (const Alike& each : alike_)
      alike += each.end - each.begin;
    if (alike > std::max(mostAlike, rows_.size() / partAlike)) return byAllKeys({});
    orderAlike();
    return std::move(rows_);
  }

  std::vector<std::int64_t> first(std::int64_t limit) {
    if (leading_ == keys_.size()) return byAllKeys(limit);
    read(limit);
    if (std::ssize(rows_) == limit && !alike_.empty() && alike_.back().end == rows_.size()) {
      // Others that are alike may come before these.
      rows_.resize(alike_.back().begin);
      alike_.pop_back();
    } else if (std::ssize(rows_) == limit) {
      rows_.pop_back();
    }
    if (rows_.empty()) return byAllKeys(limit);
    orderAlike();
    return std::move(rows_);
  }

 private:
  static std::string limited(std::optional<std::int64_t> limit) {
    return limit ? " LIMIT " + std::to_string(*limit) : "";
  }

  std::vector<std::int64_t> byAllKeys(std::optional<std::int64_t> limit) {
    rows_.clear();
    Prepared statement(database_, "SELECT " + number_ + from_ + where_ + " ORDER BY " + listed(keys_) + limited(limit));
    while (statement.step())
      rows_.push_back(statement.integer(0));
    return std::move(rows_);
  }

  void read(std::optional<std::int64_t> limit) {
    std::string sql = "SELECT " + number_;
    std::vector<int> columns;
    const std::span<const Key> leading = std::span(keys_).first(leading_);
    for (const Key& key : leading) {
      sql += ", " + key.sql;
      columns.push_back(static_cast<int>(columns.size()) + 1);
    }
    Prepared statement(database_, sql + from_ + where_ + " ORDER BY " + listed(leading) + limited(limit));
    RowKeys before(std::move(columns));
    while (statement.step()) {
      if (!rows_.empty() && before.equal(statement.handle())) {
        if (alike_.empty() || alike_.back().end != rows_.size()) alike_.push_back({rows_.size() - 1, rows_.size()});
        alike_.back().end = rows_.size() + 1;
      } else {
        before.read(statement.handle());
      }
      rows_.push_back(statement.integer(0));
    }
  }

  void orderAlike() {
    if (alike_.empty()) return;
    const std::span<const Key> others = std::span(keys_).subspan(leading_);
    std::string sql = "SELECT ";
    for (const Key& key : others)
      sql.append(&key == others.data() ? "" : ", ").append(key.sql);
    Prepared statement(database_, sql + from_ + " WHERE " + number_ + " = ?1");
    struct Row {
      std::int64_t number = 0;
      std::vector<KeyValue> keys;
    };
    const auto isBefore = [others](const Row& one, const Row& other) {
      for (std::size_t i = 0; i < others.size(); ++i) {
        const int order = one.keys[i].compare(other.keys[i]);
        if (order != 0) return others[i].descending ? order > 0 : order < 0;
      }
      return false;
    };
    for (const Alike& each : alike_) {
      endIfStopped();
      std::vector<Row> rows(each.end - each.begin);
      for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].number = rows_[each.begin + i];
        rows[i].keys.resize(others.size());
        statement.reset();
        statement.bind(1, rows[i].number);
        if (!statement.step()) continue;
        for (std::size_t key = 0; key < others.size(); ++key)
          rows[i].keys[key].read(statement.handle(), static_cast<int>(key));
      }
      std::ranges::stable_sort(rows, isBefore);
      for (std::size_t i = 0; i < rows.size(); ++i)
        rows_[each.begin + i] = rows[i].number;
    }
  }

  sqlite3* database_;
  std::vector<Key> keys_;
  std::string number_;
  std::string from_;
  std::string where_;
  std::size_t leading_ = 0;
  std::vector<std::int64_t> rows_;
  std::vector<Alike> alike_;
};

// The rows of one table, read as they are stored.
class RowsByNumber : public Cursor {
 public:
  RowsByNumber(sqlite3* database, std::vector<Column> columns, ShownTable shown)
      : columns_(std::move(columns)),
        shown_(std::move(shown)),
        row_(columns_.size()),
        reading_(database, "SELECT 1 FROM " + shown_.table->physical) {
    for (const std::size_t place : shown_.places)
      needed_ = std::max(needed_, place + 1);
    if (reading_.step()) rows_.emplace(database, *shown_.table, StoredRows::Use::read);
  }

  // False: the rows cannot be read so.
  bool order(sqlite3* database, const BoundQuery& query) {
    if (!rows_) return true;
    if (!*rows_) return false;
    numbers_ = orderedNumbers(database, query, shown_.number, {});
    return true;
  }

  std::span<const Column> columns() const override { return columns_; }
  bool next() override {
    endIfStopped();
    std::string_view record;
    std::int64_t number = 0;
    // Whoever reads may delete rows.
    while (record.empty()) {
      if (position_ == numbers_.size()) return false;
      number = numbers_[position_++];
      record = rows_->at(number);
    }
    fields_.read(record, needed_);
    for (std::size_t i = 0; i < row_.size(); ++i) {
      if (static_cast<int>(shown_.places[i]) == shown_.table->rowidColumn) {
        row_[i] = number;
      } else {
        fields_.read(shown_.places[i], columns_[i].type, row_[i]);
      }
    }
    return true;
  }
  const Value& value(std::size_t column) const override { return row_.at(column); }

 private:
  std::vector<Column> columns_;
  ShownTable shown_;
  std::vector<Value> row_;
  Prepared reading_;  // nobody else changes the file while it lasts
  std::optional<StoredRows> rows_;
  RecordFields fields_;
  std::size_t needed_ = 0;
  std::vector<std::int64_t> numbers_;
  std::size_t position_ = 0;
};

}  // namespace

std::unique_ptr<Cursor> rowsOfSmallTable(sqlite3* database, const BoundQuery& query, std::vector<Column> columns,
                                         const ShownTable& shown) {
  // As many bytes as the cache has, at four a column.
  constexpr std::int64_t bytesOfCache = std::int64_t{64} << 20;
  const std::int64_t most = bytesOfCache / 4 / static_cast<std::int64_t>(shown.table->columns.size());
  if (countUpTo(database, shown.table->physical, most + 1) > most) return nullptr;
  BoundQuery ordered = query;
  for (Key& key : ordered.ordering->keys) {
    if (key.output) key.sql = key.expression;
  }
  auto rows = std::make_unique<RowsByNumber>(database, std::move(columns), shown);
  if (!rows->order(database, ordered)) return nullptr;
  return rows;
}

bool isWidelyOrdered(const BoundQuery& query) {
  return query.ordering && leadingOf(*query.ordering) + worthwhileKeys <= query.ordering->keys.size();
}

std::unique_ptr<Cursor> widelyOrderedRows(sqlite3* database, const BoundQuery& query, std::vector<Column> columns) {
  return std::make_unique<WidelyOrderedRows>(database, query, std::move(columns));
}

std::vector<std::int64_t> orderedNumbers(sqlite3* database, const BoundQuery& query, const std::string& number,
                                         std::optional<std::int64_t> limit) {
  Numbers numbers(database, query, number);
  return limit ? numbers.first(*limit) : numbers.all();
}

}  // namespace quillon::tsql
