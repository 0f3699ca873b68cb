#include "workbench/tsql/engine/translation.h"

#include <algorithm>

namespace quillon::tsql {
namespace {

bool isSame(const std::optional<StoredObject>& left, const std::optional<StoredObject>& right) {
  if (!left || !right) return !left && !right;
  return left->id == right->id && left->type == right->type && left->name == right->name &&
         left->definition == right->definition && left->schema == right->schema;
}

bool isSameName(const ObjectName& left, const ObjectName& right) {
  return left.database == right.database && left.name == right.name;
}

}  // namespace

std::shared_ptr<const Table> NotedLookup::table(const ObjectName& name) {
  auto table = tables_.table(name);
  if (std::ranges::none_of(found_.tables, [&](const auto& one) { return isSameName(one.name, name); }))
    found_.tables.push_back({name, table});
  return table;
}

std::optional<StoredObject> NotedLookup::object(const ObjectName& name) {
  auto object = tables_.object(name);
  if (std::ranges::none_of(found_.objects, [&](const auto& one) { return isSameName(one.name, name); }))
    found_.objects.push_back({name, object});
  return object;
}

std::string NotedLookup::sysobjects(std::string_view database) const {
  found_.isWhole = false;
  return tables_.sysobjects(database);
}

std::string NotedLookup::sysindexes(std::string_view database) const {
  found_.isWhole = false;
  return tables_.sysindexes(database);
}

bool NotedLookup::Found::holds(TableLookup& lookup) const {
  // The catalog gives equal declarations as one object.
  return std::ranges::all_of(tables, [&](const auto& one) { return lookup.table(one.name) == one.table; }) &&
         std::ranges::all_of(objects, [&](const auto& one) { return isSame(lookup.object(one.name), one.object); });
}

bool Translation::fits(const StatementForm& other) const {
  if (form.text != other.text) return false;
  for (std::size_t i = 0; i < isFree.size(); ++i) {
    if (!isFree[i] && form.constants[i].value != other.constants[i].value) return false;
  }
  return true;
}

bool Translation::takeKeys(const Parameters::DependentKeys& keys) {
  const auto count = static_cast<std::ptrdiff_t>(keys.conditions.size());
  const auto hasThem = [count](std::string_view text) {
    return std::ranges::count(text, Parameters::keyBegin) == count &&
           std::ranges::count(text, Parameters::keyEnd) == count;
  };
  if (!hasThem(statement.sql) || (statement.matching && !hasThem(statement.matching->source)) ||
      (statement.composition && !hasThem(statement.composition->sql))) {
    return false;
  }
  for (const std::string& condition : keys.conditions)
    keysQuery += (keysQuery.empty() ? "SELECT " : ", ") + condition;
  if (!keysQuery.empty()) keysQuery += " FROM " + keys.from;
  return true;
}

std::string Translation::withKeys(std::string_view text, const std::vector<bool>& isKey) {
  std::string result;
  for (const bool isTaken : isKey) {
    const std::size_t begin = text.find(Parameters::keyBegin);
    const std::size_t end = text.find(Parameters::keyEnd, begin);
    result.append(text.substr(0, begin));
    if (isTaken) result.append(text.substr(begin + 1, end - begin - 1));
    text.remove_prefix(end + 1 + (isTaken ? 0 : std::string_view(", ").size()));
  }
  return result.append(text);
}

Translations& Translations::ofProcess() {
  static Translations translations;
  return translations;
}

std::shared_ptr<const Translation> Translations::find(const StatementForm& form, TableLookup& tables) {
  std::vector<std::shared_ptr<const Translation>> candidates;
  {
    const std::lock_guard lock(mutex_);
    const auto [first, last] = byForm_.equal_range(form.text);
    for (auto each = first; each != last; ++each) {
      const List::iterator kept = each->second;
      if (!kept->translation->fits(form)) continue;
      candidates.push_back(kept->translation);
      proven_.splice(proven_.begin(), kept->isProven ? proven_ : new_, kept);
      kept->isProven = true;
    }
    dropBeyond(proven_, mostProven);
  }
  for (auto& candidate : candidates) {
    if (candidate->names.holds(tables)) return std::move(candidate);
  }
  return nullptr;
}

void Translations::keep(std::shared_ptr<const Translation> translation) {
  if (translation->statement.sql.size() > longestSql) return;
  const std::lock_guard lock(mutex_);
  new_.push_front({.translation = std::move(translation)});
  byForm_.emplace(new_.front().translation->form.text, new_.begin());
  dropBeyond(new_, mostNew);
}

void Translations::dropBeyond(List& list, std::size_t most) {
  while (list.size() > most) {
    const auto oldest = std::prev(list.end());
    const auto [first, last] = byForm_.equal_range(oldest->translation->form.text);
    byForm_.erase(std::find_if(first, last, [oldest](const auto& each) { return each.second == oldest; }));
    list.pop_back();
  }
}

std::size_t Translations::size() const {
  const std::lock_guard lock(mutex_);
  return new_.size() + proven_.size();
}

}  // namespace quillon::tsql
