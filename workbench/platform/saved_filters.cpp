#include "workbench/platform/saved_filters.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "workbench/messages/filter.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

SavedFilters::SavedFilters(std::filesystem::path folder)
    : SavedFiles(std::move(folder), faultOfSavedName,
                 {.noName = messages::noFilterName,
                  .taken = messages::filterNameTaken,
                  .unknown = messages::noSavedFilter,
                  .neitherNameNorFile = messages::noSavedFilterNorFile}) {}

std::string filterFileText(const FilterObject& filter, const std::set<const FilterEntry*>& entries, Language language) {
  using Json = nlohmann::ordered_json;
  Json items = Json::array();
  for (const auto& entry : filter.entries()) {
    if (!entries.contains(entry.get())) continue;
    const ItemRegistration& item = entry->item;
    Json written = {{"name", item.key}, {"caption", item.caption(language)}};
    if (item.range) written["range"] = true;
    if (item.multiple) written["multi"] = true;
    written["value"] = entry->value;
    if (item.range) written["value2"] = entry->value2;
    if (!entry->sql.empty()) written["sql"] = entry->sql;
    items.push_back(std::move(written));
  }
  constexpr int indent = 2;
  try {
    return Json{{"id", filter.identifier()}, {"items", std::move(items)}}.dump(indent) + "\n";
  } catch (const Json::exception&) {
    throw UserError(messages::valueNotUnicode());
  }
}

}  // namespace quillon::workbench
