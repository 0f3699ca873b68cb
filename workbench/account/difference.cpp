#include "workbench/account/difference.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>

#include "frame/text.h"
#include "workbench/account/schema.h"
#include "workbench/messages/account.h"
#include "workbench/tsql/engine/stored_schema.h"
#include "workbench/tsql/values/agreement.h"

namespace quillon::account {

namespace {

namespace messages = workbench::messages;

using Row = std::vector<tsql::Value>;
using Kind = RowDifference::Kind;
using tsql::Agreement;

// Of the ledgers: quotients, in which servers may differ by a last digit.
constexpr std::array<std::string_view, 4> unitCosts = {"iInCost", "iOutCost", "iItemInCost", "iItemOutCost"};

struct IgnoringCase {
  bool operator()(const std::string& left, const std::string& right) const {
    return std::ranges::lexicographical_compare(left, right, {}, lowerAscii, lowerAscii);
  }
};

// Primary keys by table name, "orvsystem..UA_Period".
using Keys = std::map<std::string, std::vector<std::string>, IgnoringCase>;

std::string plainName(std::string_view database, std::string_view name) {
  return (database.empty() ? std::string() : std::string(database) + "..") + std::string(name);
}

// "orvsystem..UA_Period" in brackets.
std::string writtenName(const std::string& plain) {
  constexpr std::string_view separator = "..";
  const std::size_t at = plain.find(separator);
  if (at == std::string::npos) return tsql::writtenName("", plain);
  return tsql::writtenName(plain.substr(0, at), plain.substr(at + separator.size()));
}

std::vector<std::string> splitNames(std::string_view list) {
  constexpr std::string_view separator = ", ";
  std::vector<std::string> names;
  for (std::size_t at = 0; at != std::string_view::npos;) {
    names.emplace_back(list.substr(0, at = list.find(separator)));
    if (at != std::string_view::npos) list.remove_prefix(at + separator.size());
  }
  return names;
}

// A server is taken to have the keys of the schema: there are servers whose tables have none.
void addKeys(tsql::Database& account, Keys& keys) {
  auto* const embedded = dynamic_cast<tsql::Connection*>(&account);
  if (embedded == nullptr) return;
  for (const tsql::StoredTable& table : storedSchema(*embedded).tables) {
    std::vector<std::string> key = table.primaryKey();
    if (!key.empty()) keys.emplace(plainName(table.database, table.name), std::move(key));
  }
}

std::vector<std::string> tableNames(tsql::Database& first, tsql::Database& second, ComparedTables which) {
  std::vector<std::string> names;
  for (const TableDefinition& table : tables())
    names.emplace_back(table.name);
  if (which == ComparedTables::ofAnAccount) return names;
  std::map<std::string, bool, IgnoringCase> others;
  for (tsql::Database* account : {&first, &second}) {
    for (const char* database : {"", "orvsystem"}) {
      for (const std::string& name : account->tables(database))
        others.emplace(plainName(database, name), true);
    }
  }
  for (const std::string& name : names)
    others.erase(name);
  for (const auto& [name, present] : others)
    names.push_back(name);
  return names;
}

const tsql::Column* find(const std::vector<tsql::Column>& columns, const std::string& name) {
  const auto found =
      std::ranges::find_if(columns, [&](const tsql::Column& column) { return equalIgnoringCase(column.name, name); });
  return found == columns.end() ? nullptr : &*found;
}

// Compares one table whose columns both accounts have.
class TableReader {
 public:
  TableReader(TableComparison& result, std::vector<std::string> columns, const std::vector<std::string>& key,
              const DifferenceOptions& options)
      : result_(result), columns_(std::move(columns)), options_(options) {
    for (const std::string& column : columns_) {
      quotients_.push_back(
          std::ranges::any_of(unitCosts, [&column](std::string_view name) { return equalIgnoringCase(name, column); }));
    }
    for (const std::string& name : key) {
      const auto place =
          std::ranges::find_if(columns_, [&](const std::string& column) { return equalIgnoringCase(column, name); });
      if (place != columns_.end()) key_.push_back(static_cast<std::size_t>(place - columns_.begin()));
    }
    if (key_.size() == key.size() && !key_.empty()) return;
    key_.clear();
    for (std::size_t i = 0; i < columns_.size(); ++i)
      key_.push_back(i);
  }

  void compare(tsql::Database& first, tsql::Database& second, RowCounter& counter) {
    const std::string sql = statement();
    const std::unique_ptr<tsql::Cursor> firstRows = first.query(sql), secondRows = second.query(sql);
    for (;;) {
      const bool hasFirst = firstRows->next(), hasSecond = secondRows->next();
      if (!hasFirst && !hasSecond) break;
      counter.row();
      if (hasFirst) ++result_.rows;
      if (hasFirst && hasSecond && areSame(*firstRows, *secondRows)) continue;
      std::optional<Row> one, two;
      if (hasFirst) one = rowOf(*firstRows);
      if (hasSecond) two = rowOf(*secondRows);
      if (one && two && keyOf(*one) == keyOf(*two)) {
        compareRows(*one, *two);
        continue;
      }
      if (one) meet(std::move(*one), waitingSecond_, waitingFirst_, true);
      if (two) meet(std::move(*two), waitingFirst_, waitingSecond_, false);
    }
    result_.onlyInFirst = tell(waitingFirst_, Kind::onlyInFirst);
    result_.onlyInSecond = tell(waitingSecond_, Kind::onlyInSecond);
  }

 private:
  // Rows without a partner so far, by key; of several with one key the first comes first.
  using Waiting = std::multimap<std::string, std::pair<std::int64_t, Row>>;

  std::string statement() const {
    std::vector<std::string> key;
    for (const std::size_t place : key_)
      key.push_back(columns_[place]);
    return "Select " + tsql::bracketedList(columns_) + " From " + writtenName(result_.table) + " Order By " +
           tsql::bracketedList(key);
  }

  // As nearly all rows of two accounts are: those are neither copied nor looked at otherwise.
  bool areSame(const tsql::Cursor& first, const tsql::Cursor& second) const {
    for (std::size_t i = 0; i < columns_.size(); ++i)
      if (first.value(i) != second.value(i)) return false;
    return true;
  }

  Row rowOf(const tsql::Cursor& rows) const {
    Row row;
    row.reserve(columns_.size());
    for (std::size_t i = 0; i < columns_.size(); ++i)
      row.push_back(rows.value(i));
    return row;
  }

  std::string keyOf(const Row& row) const {
    std::string key;
    for (const std::size_t place : key_) {
      const std::optional<std::string> text = options_.exact ? tsql::toText(row[place]) : tsql::plainText(row[place]);
      key += text ? std::to_string(text->size()) + ':' + *text : "-";
    }
    return key;
  }

  void meet(Row row, Waiting& partners, Waiting& waiting, bool isFirst) {
    std::string key = keyOf(row);
    const auto partner = partners.find(key);
    if (partner == partners.end()) {
      waiting.emplace(std::move(key), std::pair(order_++, std::move(row)));
      return;
    }
    const Row& other = partner->second.second;
    isFirst ? compareRows(row, other) : compareRows(other, row);
    partners.erase(partner);
  }

  Agreement agreementAt(std::size_t column, const Row& one, const Row& two) const {
    if (options_.exact) return one[column] == two[column] ? Agreement::same : Agreement::different;
    return tsql::agreementOf(one[column], two[column], quotients_[column]);
  }

  void compareRows(const Row& one, const Row& two) {
    if (one == two) return;
    RowDifference difference{.kind = Kind::lastDigit, .key = {}, .changes = {}};
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const Agreement agreement = agreementAt(i, one, two);
      if (agreement == Agreement::same) continue;
      if (agreement == Agreement::different) difference.kind = Kind::changed;
      difference.changes.push_back({columns_[i], one[i], two[i], agreement == Agreement::lastDigit});
    }
    if (difference.changes.empty()) return;
    ++(difference.kind == Kind::changed ? result_.changed : result_.lastDigits);
    if (result_.shown.size() >= options_.shown) return;
    difference.key = keyValues(one);
    result_.shown.push_back(std::move(difference));
  }

  std::vector<NamedValue> keyValues(const Row& row) const {
    std::vector<NamedValue> values;
    for (const std::size_t place : key_)
      values.push_back({columns_[place], row[place]});
    return values;
  }

  std::int64_t tell(const Waiting& waiting, Kind kind) {
    std::vector<const std::pair<std::int64_t, Row>*> rows;
    for (const auto& [key, row] : waiting)
      rows.push_back(&row);
    std::ranges::sort(rows, {}, [](const auto* row) { return row->first; });
    for (const auto* row : rows) {
      if (result_.shown.size() >= options_.shown) break;
      result_.shown.push_back({.kind = kind, .key = keyValues(row->second), .changes = {}});
    }
    return static_cast<std::int64_t>(rows.size());
  }

  TableComparison& result_;
  std::vector<std::string> columns_;
  std::vector<bool> quotients_;  // of the columns
  const DifferenceOptions& options_;
  std::vector<std::size_t> key_;  // places in columns_
  Waiting waitingFirst_, waitingSecond_;
  std::int64_t order_ = 0;
};

// The columns that both have; what differs goes to the comparison.
std::vector<std::string> sharedColumns(const std::vector<tsql::Column>& first, const std::vector<tsql::Column>& second,
                                       bool exact, TableComparison& comparison) {
  std::vector<workbench::Message>& types = exact ? comparison.structure : comparison.types;
  std::vector<std::string> shared;
  for (const tsql::Column& column : first) {
    const tsql::Column* const other = find(second, column.name);
    if (other == nullptr) {
      comparison.structure.push_back(messages::secondLacksColumn(column.name));
      continue;
    }
    shared.push_back(column.name);
    if (column.type != other->type) {
      types.push_back(messages::otherType(column.name, column.type.name(), other->type.name()));
    }
  }
  for (const tsql::Column& column : second) {
    if (find(first, column.name) == nullptr) comparison.structure.push_back(messages::firstLacksColumn(column.name));
  }
  return shared;
}

}  // namespace

std::vector<TableComparison> compareAccounts(tsql::Database& first, tsql::Database& second,
                                             const DifferenceOptions& options, const TransferProgress& progress) {
  RowCounter counter(progress);
  Keys keys;
  addKeys(first, keys);
  addKeys(second, keys);
  for (const TableDefinition& table : tables())
    keys.emplace(table.name, splitNames(table.primaryKey));
  std::vector<TableComparison> comparisons;
  for (const std::string& name : tableNames(first, second, options.which)) {
    const std::vector<tsql::Column> firstColumns = first.describe(writtenName(name));
    const std::vector<tsql::Column> secondColumns = second.describe(writtenName(name));
    if (firstColumns.empty() && secondColumns.empty()) continue;
    TableComparison& comparison = comparisons.emplace_back();
    comparison.table = name;
    if (firstColumns.empty() || secondColumns.empty()) {
      comparison.structure.push_back(firstColumns.empty() ? messages::firstLacksTable() : messages::secondLacksTable());
      continue;
    }
    const std::vector<std::string> columns = sharedColumns(firstColumns, secondColumns, options.exact, comparison);
    if (!columns.empty()) TableReader(comparison, columns, keys[name], options).compare(first, second, counter);
  }
  return comparisons;
}

}  // namespace quillon::account
