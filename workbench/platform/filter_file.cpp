#include "workbench/platform/filter_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <vector>

#include "frame/text.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

[[noreturn]] void refuse(std::size_t position, const std::string& reason) {
  throw UserError("filter file, item " + std::to_string(position + 1) + ": " + reason);
}

// A member as text. Numbers and flags may stand for a text, as people write them.
std::string text(const Json& item, std::size_t position, const char* member) {
  const auto found = item.find(member);
  if (found == item.end() || found->is_null()) return {};
  if (found->is_string()) return *found;
  if (found->is_boolean()) return found->get<bool>() ? "1" : "0";
  if (found->is_number()) return found->dump();
  refuse(position, std::string("\"") + member + "\" must be a text");
}

bool flag(const Json& item, std::size_t position, const char* member) {
  const auto found = item.find(member);
  if (found == item.end() || found->is_null()) return false;
  if (!found->is_boolean()) refuse(position, std::string("\"") + member + "\" must be true or false");
  return *found;
}

bool isIdentifier(std::string_view name) {
  const auto fits = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
  return !name.empty() && !isDigit(name.front()) && std::ranges::all_of(name, fits);
}

FilterEntry& entryFor(FilterObject& filter, const Json& item, std::size_t position) {
  const std::string name = text(item, position, "name");
  if (name.empty()) refuse(position, "\"name\" is missing; give the item's key");
  if (FilterEntry* known = findItem(filter, name); known != nullptr) return *known;
  if (!isIdentifier(name)) refuse(position, "\"" + name + "\" is neither an item of the report nor a column's name");
  const std::string caption = text(item, position, "caption");
  return filter.add({.key = name,
                     .chinese = caption.empty() ? name : caption,
                     .english = caption.empty() ? name : caption,
                     .range = flag(item, position, "range"),
                     .multiple = flag(item, position, "multi"),
                     .column = "base." + name,
                     .lookup = lookupOfLedgerColumn(name)});
}

void requireKnownMembers(const Json& item, std::size_t position) {
  static constexpr std::array known = {"name", "value", "value2", "range", "multi", "caption", "sql"};
  for (const auto& [member, value] : item.items()) {
    if (std::ranges::find(known, member) != known.end()) continue;
    refuse(position, "\"" + member + "\" is not known" +
                         suggestion(member, std::vector<std::string>(known.begin(), known.end())));
  }
}

}  // namespace

void applyFilterFile(FilterObject& filter, const Json& description) {
  if (!description.is_object()) throw UserError("the filter file must hold one object with \"items\"");
  const auto items = description.find("items");
  if (items == description.end()) return;
  if (!items->is_array()) throw UserError("filter file: \"items\" must be a list");
  for (std::size_t position = 0; position < items->size(); ++position) {
    const Json& item = (*items)[position];
    if (!item.is_object()) refuse(position, "must be an object with \"name\" and \"value\"");
    requireKnownMembers(item, position);
    FilterEntry& entry = entryFor(filter, item, position);
    entry.value = text(item, position, "value");
    entry.value2 = text(item, position, "value2");
    entry.sql = text(item, position, "sql");
  }
}

}  // namespace quillon::workbench
