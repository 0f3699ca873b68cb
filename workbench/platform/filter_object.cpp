#include "workbench/platform/filter_object.h"

#include <algorithm>

#include "frame/text.h"

namespace quillon::workbench {

namespace {

constexpr HResult badIndex = static_cast<HResult>(0x8002000BU);

AutomationError noSuchItem(const std::string& which) {
  return {badIndex, std::string(filterSource), "The filter has no item " + which + "."};
}

bool isNumber(std::string_view text) {
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  const auto point = text.find('.');
  const std::string_view whole = text.substr(0, point);
  const std::string_view decimals = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  return !(whole.empty() && decimals.empty()) && std::ranges::all_of(whole, isDigit) &&
         std::ranges::all_of(decimals, isDigit);
}

std::string quoted(std::string_view prefix, std::string_view value) {
  std::string text(prefix);
  text += '\'';
  for (const char c : value)
    text.append(c == '\'' ? 2 : 1, c);
  return text + "'";
}

std::string literal(const ItemRegistration& item, std::string_view value) {
  switch (item.kind) {
    case InputKind::number:
    case InputKind::flag:
      if (!isNumber(value)) {
        throw AutomationError(hresult::typeMismatch, std::string(filterSource),
                              "The filter item " + item.key + " takes a number, not \"" + std::string(value) + "\".");
      }
      return std::string(value);
    case InputKind::date:
      return quoted("", value);
    default:
      return quoted("N", value);
  }
}

std::vector<std::string_view> splitValues(std::string_view values) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto tab = values.find('\t');
    parts.push_back(values.substr(0, tab));
    if (tab == std::string_view::npos) return parts;
    values.remove_prefix(tab + 1);
  }
}

// An item as the report classes see it. It shares the entry, so it stays valid when the filter is gone.
class EntryItem final : public FilterItem {
 public:
  explicit EntryItem(std::shared_ptr<FilterEntry> entry) : entry_(std::move(entry)) {}

  void setGroupToken(int token) override { entry_->token = token; }
  std::string name() override { return entry_->item.key; }
  std::string value() override { return entry_->value; }
  std::string value2() override { return entry_->value2; }
  bool rangeInput() override { return entry_->item.range; }
  bool multipleSelection() override { return entry_->item.multiple; }
  std::string sqlText() override { return conditionOf(*entry_); }

 private:
  std::shared_ptr<FilterEntry> entry_;
};

}  // namespace

std::string conditionOf(const FilterEntry& entry) {
  const ItemRegistration& item = entry.item;
  if (!entry.sql.empty()) return entry.sql;
  if (item.range || !entry.value2.empty()) {
    std::string lower;
    std::string upper;
    if (!entry.value.empty()) lower = item.column + " >= " + literal(item, entry.value);
    if (!entry.value2.empty()) upper = item.column + " <= " + literal(item, entry.value2);
    return lower.empty() || upper.empty() ? lower + upper : "(" + lower + " And " + upper + ")";
  }
  if (entry.value.empty()) return {};
  const std::vector<std::string_view> values = splitValues(entry.value);
  if (values.size() == 1) return item.column + " = " + literal(item, values.front());
  std::string list;
  for (const std::string_view value : values)
    list += (list.empty() ? "" : ", ") + literal(item, value);
  return item.column + " In (" + list + ")";
}

FilterObject::FilterObject(const ReportRegistration& registration, InitialValues values)
    : identifier_(registration.identifier) {
  for (const ItemRegistration& item : registration.items) {
    FilterEntry& entry = add(item);
    if (values == InitialValues::defaults) entry.value = item.defaultValue;
  }
}

std::unique_ptr<FilterItem> FilterObject::item(int position) {
  return std::make_unique<EntryItem>(entry(position));
}

std::unique_ptr<FilterItem> FilterObject::item(std::string_view key) {
  return std::make_unique<EntryItem>(entry(key));
}

const std::shared_ptr<FilterEntry>& FilterObject::entry(int position) const {
  const auto index = static_cast<std::size_t>(position) - 1;
  if (position < 1 || index >= entries_.size()) throw noSuchItem("number " + std::to_string(position));
  return entries_[index];
}

const std::shared_ptr<FilterEntry>& FilterObject::entry(std::string_view key) const {
  const auto found =
      std::ranges::find_if(entries_, [key](const auto& entry) { return equalIgnoringCase(entry->item.key, key); });
  if (found == entries_.end()) throw noSuchItem("\"" + std::string(key) + "\"");
  return *found;
}

std::string FilterObject::whereWithToken(int token) {
  std::string where;
  for (const auto& entry : entries_) {
    if (entry->token != token) continue;
    const std::string condition = conditionOf(*entry);
    if (!condition.empty()) where += (where.empty() ? "" : " And ") + condition;
  }
  return where;
}

FilterEntry* FilterObject::find(std::string_view key) {
  const auto found =
      std::ranges::find_if(entries_, [key](const auto& entry) { return equalIgnoringCase(entry->item.key, key); });
  return found == entries_.end() ? nullptr : found->get();
}

FilterEntry& FilterObject::add(ItemRegistration item) {
  entries_.push_back(std::make_shared<FilterEntry>());
  entries_.back()->item = std::move(item);
  return *entries_.back();
}

}  // namespace quillon::workbench
