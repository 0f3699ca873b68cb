#include "workbench/platform/filter_file.h"

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

#include "frame/text.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/json_schema.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

// A filter file with its text, in which errors show the place.
struct FilterText {
  std::string_view text;
  const std::string& name;

  [[noreturn]] void refuse(const Json::json_pointer& place, const Message& reason) const {
    const Message what = describePlace(place);
    throw UserError(
        messages::faultInFile(name, lineOf(text, place), what.empty() ? messages::theFile() : what, reason));
  }
};

// A member as text. Numbers and flags may stand for a text, as people write them.
std::string textOf(const Json& item, const char* member) {
  const auto found = item.find(member);
  if (found == item.end() || found->is_null()) return {};
  if (found->is_string()) return *found;
  if (found->is_boolean()) return found->get<bool>() ? "1" : "0";
  return found->dump();
}

bool flagOf(const Json& item, const char* member) {
  const auto found = item.find(member);
  return found != item.end() && found->is_boolean() && found->get<bool>();
}

bool isIdentifier(std::string_view name) {
  const auto fits = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
  return !name.empty() && !isDigit(name.front()) && std::ranges::all_of(name, fits);
}

FilterEntry& entryFor(FilterObject& filter, const Json& item, const Json::json_pointer& place, const FilterText& file) {
  const std::string name = textOf(item, "name");
  if (FilterEntry* known = findItem(filter, name); known != nullptr) return *known;
  if (!isIdentifier(name)) file.refuse(place / "name", messages::neitherItemNorColumn(name));
  const std::string caption = textOf(item, "caption");
  return filter.add({.key = name,
                     .chinese = caption.empty() ? name : caption,
                     .english = caption.empty() ? name : caption,
                     .range = flagOf(item, "range"),
                     .multiple = flagOf(item, "multi"),
                     .column = "base." + name,
                     .lookup = lookupOfLedgerColumn(name)});
}

}  // namespace

void applyFilterFile(FilterObject& filter, std::string_view text, const std::string& name) {
  static const JsonSchema schema(filterFileSchema);
  const FilterText file{text, name};
  const Json description = parseJson(text, name);
  if (const auto fault = schema.faultOf(description)) file.refuse(fault->place, fault->reason);
  const auto items = description.find("items");
  if (items == description.end()) return;
  for (std::size_t position = 0; position < items->size(); ++position) {
    const Json& item = (*items)[position];
    FilterEntry& entry = entryFor(filter, item, Json::json_pointer("/items") / position, file);
    entry.value = textOf(item, "value");
    entry.value2 = textOf(item, "value2");
    entry.sql = textOf(item, "sql");
  }
}

void readFilterFile(FilterObject& filter, const std::string& path) {
  applyFilterFile(filter, readTextFile(path), path);
}

}  // namespace quillon::workbench
