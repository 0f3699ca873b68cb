#include "workbench/tsql/engine/lone_rows.h"

#include <sqlite3.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <unordered_map>

#include "workbench/tsql/engine/fingerprint.h"
#include "workbench/tsql/engine/record.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/stored_rows.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::tsql {
namespace {

// Fewer rows are sorted as fast.
constexpr std::int64_t fewestRows = 2000;
// Rows are found in their table by a bit for each row number.
constexpr std::int64_t widestSpan = std::int64_t{1} << 30;
// Rows whose fingerprints are held at a time. More rows take more readings of the table.
constexpr std::int64_t rowsAtATime = 16'000'000;
// Pairs of rows by which columns are chosen, and how often they are chosen anew for rows that they did not tell apart.
constexpr std::size_t mostPairs = 256;
constexpr int mostReadings = 3;
// After how many rows it is asked whether the program is to end.
constexpr std::size_t rowsBetweenQuestions = 4096;
// Fewer rows than this part that are not alone are not worth another reading.
constexpr std::int64_t smallPart = 50;

struct Pair {
  std::int64_t first, second;
};
using Columns = std::vector<std::size_t>;

// Which columns told the rows of a table apart, by the columns that they were grouped by: the work tables of one report have
// the same in each run. Safe from several threads.
class KnownColumns {
 public:
  static KnownColumns& ofProcess() {
    static KnownColumns instance;
    return instance;
  }
  Columns find(const std::string& grouping) const {
    const std::lock_guard lock(mutex_);
    const auto found = known_.find(grouping);
    return found == known_.end() ? Columns() : found->second;
  }
  void keep(const std::string& grouping, const Columns& columns) {
    constexpr std::size_t most = 64;
    const std::lock_guard lock(mutex_);
    if (known_.size() == most) known_.clear();
    known_[grouping] = columns;
  }

 private:
  mutable std::mutex mutex_;
  std::unordered_map<std::string, Columns> known_;
};

// The names of the key columns, without the alias, which may be the name of a table of one run.
std::string nameOf(const WideGrouping& grouping) {
  const std::string prefix = grouping.number.substr(0, grouping.number.rfind('.') + 1);
  std::string name;
  for (std::string key : grouping.keys) {
    for (std::size_t at = key.find(prefix); at != std::string::npos; at = key.find(prefix, at))
      key.erase(at, prefix.size());
    name.append(key).append(1, '\n');
  }
  return name;
}

class Search {
 public:
  Search(sqlite3* database, const WideGrouping& grouping) : database_(database), grouping_(grouping) {}

  // Of the table's first and last row; nothing in an empty table.
  bool readBounds() {
    Prepared bounds(database_,
                    "SELECT min(" + grouping_.number + "), max(" + grouping_.number + ") FROM " + grouping_.from);
    if (!bounds.step() || bounds.isNull(0)) return false;
    first_ = bounds.integer(0);
    last_ = bounds.integer(1);
    return last_ - first_ >= fewestRows && last_ - first_ < widestSpan;
  }

  // Whether at least half of the rows are alone.
  bool find(std::vector<std::uint32_t>& leaders) {
    const std::string name = nameOf(grouping_);
    Columns chosen = addTo(KnownColumns::ofProcess().find(name), neighbours());
    for (int reading = 1;; ++reading) {
      const bool isWhole = read(chosen, leaders, reading < mostReadings);
      if (found_ * smallPart <= rows_ || reading == mostReadings) break;
      Columns more = addTo(chosen, alike_);
      if (more.size() == chosen.size()) {
        if (!isWhole) read(chosen, leaders, false);
        break;
      }
      chosen = std::move(more);
    }
    KnownColumns::ofProcess().keep(name, chosen);
    return found_ * 2 <= rows_;
  }

  std::int64_t first() const { return first_; }

 private:
  // Rows that follow each other, from all over the table: these often have most in common.
  std::vector<Pair> neighbours() const {
    std::vector<Pair> pairs;
    const std::int64_t step = std::max<std::int64_t>(2, (last_ - first_) / static_cast<std::int64_t>(mostPairs));
    for (std::int64_t number = first_; number < last_ && pairs.size() < mostPairs; number += step)
      pairs.push_back({number, number + 1});
    return pairs;
  }

  // The columns with those that tell the pairs apart, in each step the one that tells most.
  Columns addTo(Columns columns, const std::vector<Pair>& pairs) {
    std::vector<std::vector<bool>> differences;
    std::string list;
    for (const std::string& key : grouping_.keys)
      list += (list.empty() ? "" : ", ") + key;
    Prepared row(database_, "SELECT " + list + " FROM " + grouping_.from + " WHERE " + grouping_.number + " = ?1");
    for (const Pair& pair : pairs) {
      const std::vector<std::uint64_t> one = printsOf(row, pair.first);
      const std::vector<std::uint64_t> other = printsOf(row, pair.second);
      if (one.empty() || other.empty()) continue;
      std::vector<bool>& difference = differences.emplace_back(one.size());
      for (std::size_t i = 0; i < one.size(); ++i)
        difference[i] = one[i] != other[i];
    }
    for (const std::size_t column : columns)
      std::erase_if(differences, [column](const std::vector<bool>& difference) { return difference[column]; });
    while (true) {
      std::vector<std::size_t> told(grouping_.keys.size());
      for (const std::vector<bool>& difference : differences) {
        for (std::size_t i = 0; i < told.size(); ++i)
          told[i] += difference[i] ? 1 : 0;
      }
      const auto best = std::ranges::max_element(told);
      if (*best == 0) return columns;
      const auto column = static_cast<std::size_t>(best - told.begin());
      columns.push_back(column);
      std::erase_if(differences, [column](const std::vector<bool>& difference) { return difference[column]; });
    }
  }

  std::vector<std::uint64_t> printsOf(Prepared& row, std::int64_t number) const {
    std::vector<std::uint64_t> prints;
    row.reset();
    row.bind(1, number);
    if (!row.step()) return prints;
    for (std::size_t i = 0; i < grouping_.keys.size(); ++i)
      prints.push_back(fingerprint(row.handle(), static_cast<int>(i)));
    return prints;
  }

  // Marks the rows that are alike in the columns. False: it has stopped early, where `mayStop`, because there are so many
  // of them that more columns are needed.
  bool read(const Columns& columns, std::vector<std::uint32_t>& leaders, bool mayStop) {
    const std::int64_t span = last_ - first_ + 1;
    leaders.assign(static_cast<std::size_t>(span), 0);
    alike_.clear();
    rows_ = found_ = 0;
    pairs_ = 0;
    const auto parts = static_cast<std::uint64_t>((span + rowsAtATime - 1) / rowsAtATime);
    // Open addressing: the upper half of a slot tells fingerprints apart, the lower is the row, counted from 1.
    constexpr std::int64_t room = 3;  // slots for two rows
    std::vector<std::uint64_t> slots(static_cast<std::size_t>(std::min(span, rowsAtATime) * room / 2 + 1));
    std::string sql = "SELECT " + grouping_.number;
    for (const std::size_t column : columns)
      sql += ", " + grouping_.keys[column];
    sql += " FROM " + grouping_.from + (grouping_.where.empty() ? "" : " WHERE " + grouping_.where);
    for (std::uint64_t part = 0; part < parts; ++part) {
      std::ranges::fill(slots, 0);
      Prepared rows(database_, sql);
      while (rows.step()) {
        std::uint64_t print = 0;
        for (std::size_t i = 1; i <= columns.size(); ++i)
          print = joined(print, fingerprint(rows.handle(), static_cast<int>(i)));
        if (print % parts != part) continue;
        place(slots, print / parts, rows.integer(0), leaders);
        if (mayStop && found_ >= fewestRows && found_ * 2 > rows_) return false;
      }
    }
    return true;
  }

  void place(std::vector<std::uint64_t>& slots, std::uint64_t print, std::int64_t number,
             std::vector<std::uint32_t>& leaders) {
    constexpr std::uint64_t lower = 0xffffffff;
    const auto row = static_cast<std::uint64_t>(number - first_);
    ++rows_;
    for (auto at = static_cast<std::size_t>(print % slots.size());; at = at + 1 == slots.size() ? 0 : at + 1) {
      std::uint64_t& slot = slots[at];
      if (slot == 0) {
        slot = (print & ~lower) | (row + 1);
        return;
      }
      if (((slot ^ print) & ~lower) != 0) continue;
      const auto leader = static_cast<std::uint32_t>(slot & lower);
      for (const std::size_t each : {static_cast<std::size_t>(row), static_cast<std::size_t>(leader - 1)}) {
        if (leaders[each] == 0) ++found_;
        leaders[each] = leader;
      }
      keep({first_ + static_cast<std::int64_t>(leader) - 1, number});
      return;
    }
  }

  // Of the pairs that are alike, as many from each part of the table.
  void keep(const Pair& pair) {
    if (alike_.size() < mostPairs) {
      alike_.push_back(pair);
    } else if (const std::uint64_t place = mixed(pairs_) % pairs_; place < mostPairs) {
      alike_[static_cast<std::size_t>(place)] = pair;
    }
    ++pairs_;
  }

  sqlite3* database_;
  const WideGrouping& grouping_;
  std::int64_t first_ = 0;
  std::int64_t last_ = 0;
  std::int64_t rows_ = 0;   // of the last reading
  std::int64_t found_ = 0;  // of these, not alone
  std::uint64_t pairs_ = 0;
  std::vector<Pair> alike_;  // some of them
};

// One of the object's answers about a row number.
template <auto answer>
void answerAbout(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto* const rows = static_cast<const LoneRows*>(sqlite3_user_data(context));
  sqlite3_result_int64(context, (rows->*answer)(sqlite3_value_int64(arguments[0])));
}

// The columns of a record, one behind the other.
void takeColumns(const RecordFields& fields, const Columns& columns, RecordBuilder& taken) {
  taken.clear();
  for (const std::size_t column : columns)
    taken.add(fields, column, 1);
}

}  // namespace

void LoneRows::registerFunctions(sqlite3* database) {
  constexpr int flags = SQLITE_UTF8 | SQLITE_INNOCUOUS;
  const auto add = [&](const char* name, void (*function)(sqlite3_context*, int, sqlite3_value**)) {
    if (sqlite3_create_function_v2(database, name, 1, flags, this, function, nullptr, nullptr, nullptr) != SQLITE_OK)
      throwSqliteError(database);
  };
  add("is_alone", answerAbout<&LoneRows::isAlone>);
  add("is_together", answerAbout<&LoneRows::isTogether>);
  add("group_number", answerAbout<&LoneRows::groupNumber>);
}

bool LoneRows::find(sqlite3* database, const WideGrouping& grouping) {
  forget();
  Search search(database, grouping);
  if (!search.readBounds()) return false;
  const bool worthwhile = search.find(leaders_);
  first_ = search.first();
  if (!worthwhile) forget();
  return worthwhile;
}

bool LoneRows::gather(sqlite3* database, const WideGrouping& grouping) {
  const Table& table = *grouping.table;
  StoredRows rows(database, table, StoredRows::Use::read);
  StoredRows leaderRows(database, table, StoredRows::Use::read);
  if (!rows || !leaderRows) return false;
  isMixed_.assign(leaders_.size(), false);
  isComplete_ = true;
  RecordFields fields;
  RecordBuilder key, leaderKey;
  const auto keyAt = [&](StoredRows& source, std::size_t row, RecordBuilder& taken) {
    fields.read(source.at(first_ + static_cast<std::int64_t>(row)), grouping.columns.back() + 1);
    takeColumns(fields, grouping.columns, taken);
    return taken.record();
  };
  for (std::size_t row = 0; row < leaders_.size(); ++row) {
    if (row % rowsBetweenQuestions == 0) endIfStopped();
    const std::uint32_t leader = leaders_[row];
    if (leader == 0 || leader == row + 1 || isMixed_[leader - 1]) continue;
    if (keyAt(rows, row, key) == keyAt(leaderRows, leader - 1, leaderKey)) continue;
    isMixed_[leader - 1] = true;
    isComplete_ = false;
  }
  return true;
}

void LoneRows::forget() {
  leaders_ = {};
  isMixed_ = {};
  isComplete_ = false;
}

}  // namespace quillon::tsql
