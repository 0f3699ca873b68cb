#include "workbench/tsql/engine/matched_rows.h"

#include <sqlite3.h>

#include "workbench/tsql/engine/fingerprint.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/values/collation.h"

namespace quillon::tsql {
namespace {

// A smaller table is changed as fast through SQLite's own join.
constexpr std::int64_t fewestChanged = 2000;
// More rows than this would take more memory than a page cache does.
constexpr std::int64_t mostHeld = 100'000;

// As SQLite's = finds whole numbers and texts of the collation, the only keys that there are.
bool equal(sqlite3_value* a, sqlite3_value* b) {
  const int type = sqlite3_value_type(a);
  if (type != sqlite3_value_type(b)) return false;
  if (type == SQLITE_INTEGER) return sqlite3_value_int64(a) == sqlite3_value_int64(b);
  return type == SQLITE_TEXT && equalText(textOf(a), textOf(b));
}

template <typename KeyAt>
std::uint64_t fingerprintOf(std::size_t count, KeyAt keyAt) {
  std::uint64_t print = 0;
  for (std::size_t i = 0; i < count; ++i)
    print = joined(print, fingerprint(keyAt(i)));
  return print;
}

}  // namespace

void MatchedRows::FreeValue::operator()(sqlite3_value* value) const {
  sqlite3_value_free(value);
}

void MatchedRows::registerFunctions(sqlite3* database) {
  constexpr int flags = SQLITE_UTF8 | SQLITE_INNOCUOUS;
  if (sqlite3_create_function_v2(database, "has_match", -1, flags, this, hasMatch, nullptr, nullptr, nullptr) !=
          SQLITE_OK ||
      sqlite3_create_function_v2(database, "match_value", -1, flags, this, matchValue, nullptr, nullptr, nullptr) !=
          SQLITE_OK) {
    throwSqliteError(database);
  }
}

bool MatchedRows::read(sqlite3* database, const Matching& matching, const std::function<void(Prepared&)>& bind) {
  forget();
  const std::int64_t room = countUpTo(database, matching.table, mostHeld);
  if (room < fewestChanged) return false;
  keys_ = matching.keys;
  Prepared source(database, matching.source);
  if (bind) bind(source);
  const int columns = sqlite3_column_count(source.handle());
  for (std::int64_t count = 0; source.step(); ++count) {
    Row row;
    for (int i = 0; i < columns; ++i)
      row.emplace_back(sqlite3_value_dup(sqlite3_column_value(source.handle(), i)));
    const auto keyAt = [&](std::size_t i) { return row[i].get(); };
    if (count == room || find(keyAt) != nullptr) {
      forget();
      return false;
    }
    const std::uint64_t print = fingerprintOf(keys_, keyAt);
    rows_.emplace(print, std::move(row));
  }
  return true;
}

void MatchedRows::forget() {
  rows_.clear();
}

template <typename KeyAt>
const MatchedRows::Row* MatchedRows::find(KeyAt keyAt) const {
  const auto [begin, end] = rows_.equal_range(fingerprintOf(keys_, keyAt));
  for (auto row = begin; row != end; ++row) {
    bool same = true;
    for (std::size_t i = 0; i < keys_ && same; ++i)
      same = equal(keyAt(i), row->second[i].get());
    if (same) return &row->second;
  }
  return nullptr;
}

void MatchedRows::hasMatch(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto* const self = static_cast<const MatchedRows*>(sqlite3_user_data(context));
  const Row* const row = self->find([arguments](std::size_t i) { return arguments[i]; });
  sqlite3_result_int(context, row != nullptr ? 1 : 0);
}

void MatchedRows::matchValue(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto* const self = static_cast<const MatchedRows*>(sqlite3_user_data(context));
  const Row* const row = self->find([arguments](std::size_t i) { return arguments[i + 1]; });
  const auto place = static_cast<std::size_t>(sqlite3_value_int(arguments[0]));
  if (row != nullptr) sqlite3_result_value(context, (*row)[self->keys_ + place].get());
}

}  // namespace quillon::tsql
