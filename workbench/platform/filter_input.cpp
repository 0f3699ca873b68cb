#include "workbench/platform/filter_input.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <set>
#include <stdexcept>
#include <tuple>

#include "frame/text.h"
#include "workbench/account/schema.h"
#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/named_values.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view boundMark = "..";

Caption captionOf(const ItemRegistration& item) {
  return {item.chinese, item.english};
}

[[noreturn]] void refuse(const ItemRegistration& item, const Message& reason) {
  throw InputError(messages::filterItem(item.key, captionOf(item), reason));
}

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  while (true) {
    const auto end = text.find(separator);
    parts.emplace_back(trimBlanks(text.substr(0, end)));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::string join(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

bool isDate(std::string_view text) {
  return enteredDate(text).has_value();
}

bool isNumber(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  const auto point = text.find('.');
  const auto digits = [](std::string_view part) { return !part.empty() && std::ranges::all_of(part, isDigit); };
  return digits(text.substr(0, point)) && (point == std::string_view::npos || digits(text.substr(point + 1)));
}

Message choiceList(const ItemRegistration& item) {
  std::vector<Message> texts;
  for (const Choice& choice : item.choices) {
    const bool named = !choice.english.empty() && choice.english != choice.code;
    texts.push_back(named ? messages::named(choice.code, Caption{choice.chinese, choice.english})
                          : Message::verbatim(choice.code));
  }
  return joined(texts, messages::listSeparator.caption());
}

const Choice* findChoice(const ItemRegistration& item, std::string_view code) {
  const auto found = std::ranges::find(item.choices, code, &Choice::code);
  return found == item.choices.end() ? nullptr : &*found;
}

// A number as isNumber() takes it, cut into what can be compared digit by digit.
struct Digits {
  bool negative = false;
  std::string_view whole;     // without zeros in front
  std::string_view decimals;  // without zeros behind
};

Digits digitsOf(std::string_view number) {
  Digits digits;
  digits.negative = number.starts_with('-');
  if (digits.negative) number.remove_prefix(1);
  const auto point = number.find('.');
  digits.whole = number.substr(0, point);
  if (point != std::string_view::npos) digits.decimals = number.substr(point + 1);
  while (digits.whole.starts_with('0'))
    digits.whole.remove_prefix(1);
  while (digits.decimals.ends_with('0'))
    digits.decimals.remove_suffix(1);
  if (digits.whole.empty() && digits.decimals.empty()) digits.negative = false;
  return digits;
}

// Compares numbers of any length.
bool numberIsAbove(std::string_view left, std::string_view right) {
  const Digits one = digitsOf(left), two = digitsOf(right);
  if (one.negative != two.negative) return two.negative;
  const auto size = [](const Digits& digits) { return std::tuple(digits.whole.size(), digits.whole, digits.decimals); };
  return one.negative ? size(one) < size(two) : size(one) > size(two);
}

bool isAbove(InputKind kind, const std::string& lower, const std::string& upper) {
  if (kind == InputKind::date) return enteredDate(lower) > enteredDate(upper);
  if (kind == InputKind::number) return numberIsAbove(lower, upper);
  if (tsql::compareText(lower, upper) <= 0) return false;
  return !isNumber(lower) || !isNumber(upper) || numberIsAbove(lower, upper);
}

// The type of the account's column that the item's condition compares, as the account is made with it; empty when it
// compares none.
std::string_view columnType(const ItemRegistration& item) {
  const auto point = item.column.find('.');
  if (point == std::string::npos) return {};
  const std::string_view alias = std::string_view(item.column).substr(0, point);
  const std::string_view name = std::string_view(item.column).substr(point + 1);
  const bool ofInventory = equalIgnoringCase(alias, "inv") || equalIgnoringCase(alias, "Inventory");
  if (!ofInventory && !equalIgnoringCase(alias, "base")) return {};
  const auto tables = account::tables();
  const auto table =
      std::ranges::find(tables, ofInventory ? "Inventory" : "ia_subsidiary", &account::TableDefinition::name);
  if (table == tables.end()) return {};
  const auto column = std::ranges::find_if(
      table->columns, [name](const account::ColumnDefinition& known) { return equalIgnoringCase(known.name, name); });
  return column == table->columns.end() ? std::string_view() : column->type;
}

// Whether the value has to be a whole number: the column is one, or it is a text that is compared with a bare number.
bool comparesWholeNumbers(const ItemRegistration& item) {
  const std::string_view type = columnType(item);
  return type.starts_with("int") || (item.kind == InputKind::number && type.starts_with("nvarchar"));
}

// The codes that a choice item holds. Where all codes are one digit, several may stand together ("02"), as the
// platform's own dialog writes them.
std::vector<std::string> chosenCodes(const FilterEntry& entry) {
  const bool oneDigit = entry.item.multiple && std::ranges::all_of(entry.item.choices, [](const Choice& choice) {
                          return choice.code.size() == 1;
                        });
  std::vector<std::string> codes;
  for (const std::string& part : split(entry.value, '\t')) {
    if (!oneDigit || findChoice(entry.item, part) != nullptr) {
      codes.push_back(part);
    } else {
      for (const char digit : part)
        codes.emplace_back(1, digit);
    }
  }
  return codes;
}

void checkValue(const ItemRegistration& item, const std::string& value) {
  if (value.empty()) return;
  if (item.kind == InputKind::date && !isDate(value)) {
    refuse(item, messages::noDate(value));
  }
  if (item.kind == InputKind::number && !isNumber(value)) {
    refuse(item, messages::noNumber(value));
  }
  if (comparesWholeNumbers(item) && !tsql::text::wholeNumber<std::int32_t>(value)) {
    refuse(item, messages::noWholeNumber(value, INT32_MIN, INT32_MAX));
  }
}

// A text "key=value" that sets an item.
struct Setting {
  FilterEntry& entry;
  std::string value;
};

FilterEntry& itemNamed(FilterObject& filter, std::string_view key) {
  FilterEntry* entry = findItem(filter, key);
  if (entry != nullptr) return *entry;
  std::vector<std::string> keys;
  for (const auto& known : filter.entries())
    keys.push_back(known->item.key);
  const auto nearest = nearestName(key, keys);
  throw InputError(nearest ? messages::noSuchItemNear(key, *nearest, listOf(keys))
                           : messages::noSuchItem(key, listOf(keys)));
}

Setting readSetting(FilterObject& filter, const std::string& setting) {
  const auto equals = setting.find('=');
  if (equals == std::string::npos) {
    throw InputError(messages::noSetting(setting));
  }
  return {itemNamed(filter, trimBlanks(std::string_view(setting).substr(0, equals))), setting.substr(equals + 1)};
}

// `again`: the item has been set before, and the value is added to those that it has.
void apply(const Setting& setting, bool again) {
  auto& [entry, value] = setting;
  if (again && !entry.item.multiple) refuse(entry.item, messages::setTwice());
  if (!entry.item.range && value.find(boundMark) != std::string::npos) {
    refuse(entry.item, entry.item.multiple ? messages::noRangeButList() : messages::noRangeButOne());
  }
  if (entry.item.range) {
    const auto bounds = value.find(boundMark);
    entry.value = trimBlanks(value.substr(0, bounds));
    entry.value2 =
        bounds == std::string::npos ? entry.value : std::string(trimBlanks(value.substr(bounds + boundMark.size())));
  } else if (entry.item.multiple) {
    const std::string list = join(split(value, ','), "\t");
    entry.value = again ? entry.value + "\t" + list : list;
  } else {
    entry.value = trimBlanks(value);
    entry.value2.clear();
  }
}

std::string columnOf(Session& session, std::string_view sql) {
  const std::unique_ptr<Recordset> rows = session.query(sql, readOnlyQuery);
  std::string value;
  if (!rows->eof()) value = rows->text(0).value_or("");
  rows->close();
  return value;
}

}  // namespace

FilterEntry* findItem(FilterObject& filter, std::string_view keyOrCaption) {
  if (FilterEntry* const entry = filter.find(keyOrCaption); entry != nullptr) return entry;
  std::vector<FilterEntry*> found;
  for (const auto& entry : filter.entries()) {
    if (tsql::equalText(entry->item.chinese, keyOrCaption) || tsql::equalText(entry->item.english, keyOrCaption))
      found.push_back(entry.get());
  }
  if (found.size() > 1) {
    std::vector<std::string> keys;
    keys.reserve(found.size());
    for (const FilterEntry* const entry : found)
      keys.push_back(entry->item.key);
    throw InputError(messages::severalItems(keyOrCaption, listOf(keys)));
  }
  return found.empty() ? nullptr : found.front();
}

std::optional<std::string> enteredDate(std::string_view text) {
  const std::vector<std::string> parts = split(text, '-');
  const auto digits = [](const std::string& part) { return !part.empty() && std::ranges::all_of(part, isDigit); };
  if (parts.size() != 3 || !std::ranges::all_of(parts, digits)) return std::nullopt;
  if (parts[0].size() != 4 || parts[1].size() > 2 || parts[2].size() > 2) return std::nullopt;
  const auto number = [](const std::string& part) { return tsql::text::wholeNumber(part).value_or(0); };
  const std::chrono::year_month_day date{std::chrono::year(number(parts[0])),
                                         std::chrono::month(static_cast<unsigned>(number(parts[1]))),
                                         std::chrono::day(static_cast<unsigned>(number(parts[2])))};
  constexpr std::chrono::year firstOfDatetime{1753};
  if (!date.ok() || date.year() < firstOfDatetime) return std::nullopt;
  const auto twoDigits = [](const std::string& part) { return part.size() < 2 ? "0" + part : part; };
  return parts[0] + "-" + twoDigits(parts[1]) + "-" + twoDigits(parts[2]);
}

void prepareFilter(FilterObject& filter, Login& login, Session& session) {
  if (FilterEntry* year = filter.find("iYear"); year != nullptr) {
    const std::unique_ptr<Recordset> rows = session.query(
        "Select Distinct iYear From orvsystem..UA_Period Where iYear < 9999 Order By iYear", readOnlyQuery);
    for (; !rows->eof(); rows->moveNext())
      year->item.choices.push_back({rows->text(0).value_or(""), "", ""});
    rows->close();
    year->item.defaultValue = login.accountingYear();
    year->value = year->item.defaultValue;
  }
  if (FilterEntry* grade = filter.find("iGrade"); grade != nullptr) {
    const int grades =
        tsql::text::wholeNumber(columnOf(session, "Select IsNull(Max(iGrade), 1) From Ca_FxClassDef")).value_or(1);
    for (int number = 1; number <= grades; ++number)
      grade->item.choices.push_back({std::to_string(number), "", ""});
  }
}

void setFilterItems(FilterObject& filter, std::span<const std::string> settings) {
  std::set<const FilterEntry*> seen;
  for (const std::string& text : settings) {
    const Setting setting = readSetting(filter, text);
    apply(setting, !seen.insert(&setting.entry).second);
  }
}

const FilterEntry& changeItem(FilterObject& filter, const std::string& setting, Session& session, Language language) {
  const Setting change = readSetting(filter, setting);
  if (!change.entry.available) refuse(change.entry.item, messages::notToBeEntered());
  apply(change, false);
  resolveNames(change.entry, session, language);
  checkItem(change.entry);
  return change.entry;
}

const FilterEntry& changeItem(FilterObject& filter, const ItemValue& change, Session& session, Language language) {
  FilterEntry& entry = itemNamed(filter, change.key);
  if (!entry.available) refuse(entry.item, messages::notToBeEntered());
  const std::string value = entry.value, value2 = entry.value2;
  entry.value = change.value;
  entry.value2 = change.value2;
  try {
    resolveNames(entry, session, language);
    checkItem(entry);
  } catch (...) {
    entry.value = value;
    entry.value2 = value2;
    throw;
  }
  return entry;
}

void setItems(FilterObject& filter, std::span<const ItemValue> values) {
  for (const ItemValue& value : values) {
    FilterEntry& entry = itemNamed(filter, value.key);
    entry.value = value.value;
    entry.value2 = value.value2;
  }
}

void checkItem(const FilterEntry& entry) {
  const ItemRegistration& item = entry.item;
  const std::vector<std::string> values = split(entry.value, '\t');
  if (values.size() > 1 && !item.multiple) refuse(item, messages::oneValueOnly());
  if (!entry.value2.empty() && entry.value2 != entry.value && !item.range) refuse(item, messages::noRange());
  for (const std::string& value : values)
    checkValue(item, value);
  checkValue(item, entry.value2);
  const bool bothBounds = item.range && !entry.value.empty() && !entry.value2.empty();
  if (bothBounds && isAbove(item.kind, entry.value, entry.value2)) {
    refuse(item, messages::rangeBackwards(entry.value, entry.value2));
  }
  if (item.choices.empty() || entry.value.empty()) return;
  for (const std::string& code : chosenCodes(entry)) {
    if (findChoice(item, code) == nullptr) {
      refuse(item, messages::noSuchChoice(code, choiceList(item)));
    }
  }
}

void checkComplete(const FilterObject& filter) {
  for (const auto& entry : filter.entries()) {
    if (entry->value.empty() && entry->item.required) refuse(entry->item, messages::mustBeGiven());
  }
}

void checkFilter(const FilterObject& filter) {
  for (const auto& entry : filter.entries())
    checkItem(*entry);
  checkComplete(filter);
}

std::string describeEntry(const FilterEntry& entry, Language language) {
  if (!entry.sql.empty()) return entry.sql;
  if (entry.item.range) {
    if (entry.value.empty() && entry.value2.empty()) return {};
    return entry.value == entry.value2 ? entry.value : entry.value + " .. " + entry.value2;
  }
  if (entry.value.empty()) return {};
  if (entry.item.choices.empty()) return join(split(entry.value, '\t'), ", ");
  std::vector<std::string> names;
  for (const std::string& code : chosenCodes(entry)) {
    const Choice* choice = findChoice(entry.item, code);
    const std::string name = choice == nullptr ? "" : language == Language::chinese ? choice->chinese : choice->english;
    names.push_back(name.empty() ? code : name);
  }
  return join(names, ", ");
}

}  // namespace quillon::workbench
