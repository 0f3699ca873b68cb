#include "workbench/runs/book_file.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "workbench/catalogue/catalogue.h"
#include "workbench/messages/filter.h"
#include "workbench/messages/keeping.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/json_schema.h"
#include "workbench/platform/saved_filters.h"
#include "workbench/platform/user_error.h"
#include "workbench/runs/kept_layouts.h"
#include "workbench/runs/run_monitor.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

std::string textIn(const Json& object, const char* member) {
  const auto found = object.find(member);
  return found == object.end() || found->is_null() ? std::string() : found->get<std::string>();
}

// A file's name counts from the book's folder; what is saved under a name has none.
template <typename Saved>
std::string fileOf(const std::string& nameOrFile, const std::string& book) {
  if (!isSavedAsFile(nameOrFile)) return Saved::ofUser().fileOf(nameOrFile);
  return utf8FromPath(pathFromUtf8(book).parent_path() / pathFromUtf8(nameOrFile));
}

// Everything that can be wrong without an account.
void checkEntry(const BookEntry& entry) {
  const Report& report = reportNamed(entry.report);
  layoutOptionsOf(report, entry.layout);
  FilterObject filter(report.registration, InitialValues::none);
  if (!entry.filterFile.empty()) readFilterFile(filter, entry.filterFile);
  setFilterItems(filter, entry.settings);
}

// The item that a setting "key=value" is for; null when the report has none of that name.
const FilterEntry* itemOf(FilterObject& filter, const std::string& setting) {
  const std::size_t equals = setting.find('=');
  if (equals == std::string::npos) throw UserError(messages::noSetting(setting));
  return findItem(filter, setting.substr(0, equals));
}

void take(BookEntry& entry, const std::vector<std::string>& settings, std::vector<TakenSetting>& taken,
          std::size_t number) {
  FilterObject filter(reportNamed(entry.report).registration, InitialValues::none);
  std::set<const FilterEntry*> items;
  std::vector<std::string> own;
  for (std::size_t i = 0; i < settings.size(); ++i) {
    const FilterEntry* const item = itemOf(filter, settings[i]);
    if (item == nullptr) continue;
    items.insert(item);
    own.push_back(settings[i]);
    taken[i].entries.push_back(number);
  }
  std::erase_if(entry.settings, [&](const std::string& setting) { return items.contains(itemOf(filter, setting)); });
  entry.settings.insert(entry.settings.end(), own.begin(), own.end());
}

}  // namespace

std::string Book::nameOf(std::size_t entry) const {
  const BookEntry& named = entries.at(entry - 1);
  return std::to_string(entry) + " (" + (named.title.empty() ? named.report : named.title) + ")";
}

Book readBook(const std::string& path) {
  static const JsonSchema schema(bookFileSchema);
  const std::string text = readTextFile(path);
  const Json document = parseJson(text, path);
  const auto refuse = [&](const Json::json_pointer& place, const Message& reason) {
    const Message what = describePlace(place);
    throw UserError(
        messages::faultInFile(path, lineOf(text, place), what.empty() ? messages::theFile() : what, reason));
  };
  if (const auto fault = schema.faultOf(document)) refuse(fault->place, fault->reason);
  Book book{.title = textIn(document, "title"), .company = textIn(document, "company"), .entries = {}, .faults = {}};
  const Json& items = document.at("items");
  if (items.empty()) refuse(Json::json_pointer("/items"), messages::mustNotBeEmpty());
  for (const Json& item : items) {
    BookEntry& entry = book.entries.emplace_back();
    entry.title = textIn(item, "title");
    entry.report = item.at("report");
    if (const auto set = item.find("set"); set != item.end()) entry.settings = set->get<std::vector<std::string>>();
    entry.layout = layoutTextOf(item);
    try {
      const std::string filter = textIn(item, "filter");
      if (!filter.empty()) entry.filterFile = fileOf<SavedFilters>(filter, path);
      if (!entry.layout.layout.empty() && !ownLayout(entry.layout.layout))
        entry.layout =
            withKeptLayout(reportNamed(entry.report), entry.layout, fileOf<KeptLayouts>(entry.layout.layout, path));
      checkEntry(entry);
    } catch (const std::exception& error) {
      book.faults.push_back({book.entries.size(), errorText(error)});
    }
  }
  return book;
}

std::vector<TakenSetting> setInAll(Book& book, const std::vector<std::string>& settings) {
  std::vector<TakenSetting> taken;
  taken.reserve(settings.size());
  for (const std::string& setting : settings)
    taken.push_back({setting, {}});
  for (std::size_t i = 0; i < book.entries.size(); ++i)
    take(book.entries[i], settings, taken, i + 1);
  for (const TakenSetting& setting : taken) {
    if (setting.entries.empty()) throw UserError(messages::settingOfNoEntry(setting.setting));
  }
  return taken;
}

}  // namespace quillon::workbench
