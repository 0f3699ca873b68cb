#include "workbench/runs/kept_layouts.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "workbench/catalogue/catalogue.h"
#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/messages/keeping.h"
#include "workbench/messages/pivot.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/json_schema.h"
#include "workbench/platform/user_error.h"
#include "workbench/runs/run_monitor.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

Message faultOfLayoutName(std::string_view name) {
  return ownLayout(name) ? messages::nameOfOwnLayout() : faultOfSavedName(name);
}

// Names that stand in one text with commas between them, each by itself.
std::vector<std::string> separated(const std::vector<std::string>& texts) {
  std::vector<std::string> names;
  for (const std::string_view text : texts) {
    for (std::size_t at = 0; at <= text.size();) {
      const std::size_t end = std::min(text.find(',', at), text.size());
      if (std::string name = trimmed(text.substr(at, end - at)); !name.empty()) names.push_back(std::move(name));
      at = end + 1;
    }
  }
  return names;
}

void put(Json& file, const char* member, const std::vector<std::string>& texts) {
  if (const std::vector<std::string> names = separated(texts); !names.empty()) file[member] = names;
}

}  // namespace

KeptLayouts::KeptLayouts(std::filesystem::path folder)
    : SavedFiles(std::move(folder), faultOfLayoutName,
                 {.noName = messages::noLayoutName,
                  .taken = messages::layoutNameTaken,
                  .unknown = messages::noKeptLayout,
                  .neitherNameNorFile = messages::noLayoutNorFile}) {}

KeptLayout KeptLayouts::read(std::string_view name) const {
  requireThere(name);
  return readKeptLayout(utf8FromPath(path(name)));
}

void KeptLayouts::requireFreeFor(std::string_view name, std::string_view report, bool replace) const {
  requireFree(name, replace);
  if (!has(name)) return;
  std::string other;
  try {
    other = read(name).report;
  } catch (const UserError&) {
    return;  // a file that nobody can use may go
  }
  if (other != report) throw UserError(messages::layoutOfOtherReport(name, other));
}

void KeptLayouts::keep(std::string_view name, const KeptLayout& layout, bool replace) const {
  requireFreeFor(name, layout.report, replace);
  save(name, keptLayoutText(layout), replace);
}

KeptLayout parseKeptLayout(std::string_view text, const std::string& name) {
  static const JsonSchema schema(layoutFileSchema);
  const Json document = parseJson(text, name);
  const auto refuse = [&](const Json::json_pointer& place, const Message& reason) {
    const Message what = describePlace(place);
    throw UserError(
        messages::faultInFile(name, lineOf(text, place), what.empty() ? messages::theFile() : what, reason));
  };
  if (const auto fault = schema.faultOf(document)) refuse(fault->place, fault->reason);
  KeptLayout kept{.report = document.at("report"), .text = layoutTextOf(document)};
  for (std::vector<std::string> ArrangementText::*const list :
       {&ArrangementText::columns, &ArrangementText::sort, &ArrangementText::groupBy})
    kept.text.arrangement.*list = separated(kept.text.arrangement.*list);
  try {
    layoutOptionsOf(reportNamed(kept.report), kept.text);
  } catch (const std::exception& error) {
    throw UserError(messages::headed(name, errorText(error)));
  }
  return kept;
}

KeptLayout readKeptLayout(const std::string& path) {
  return parseKeptLayout(readTextFile(path), path);
}

std::string keptLayoutText(const KeptLayout& layout) {
  const LayoutText& text = layout.text;
  Json file = {{"report", layout.report}};
  if (!text.layout.empty()) file["layout"] = text.layout;
  put(file, "columns", text.arrangement.columns);
  put(file, "sort", text.arrangement.sort);
  put(file, "groupBy", text.arrangement.groupBy);
  if (!text.pivot.empty()) file["pivot"] = text.pivot;
  if (text.allColumns) file["allColumns"] = true;
  if (text.details) file["details"] = true;
  constexpr int indent = 2;
  try {
    return file.dump(indent) + "\n";
  } catch (const Json::exception&) {
    throw UserError(messages::layoutNotUnicode());
  }
}

LayoutText withKeptLayout(const Report& report, LayoutText asked, const std::string& path) {
  KeptLayout kept = readKeptLayout(path);
  if (kept.report != report.registration.name)
    throw UserError(messages::layoutFileOfOther(path, kept.report, report.registration.name));
  if (!asked.pivot.empty()) throw UserError(messages::pivotAlone());
  LayoutText& text = kept.text;
  const auto over = [](std::vector<std::string>& own, std::vector<std::string>& given) {
    if (!given.empty()) own = std::move(given);
  };
  over(text.arrangement.columns, asked.arrangement.columns);
  over(text.arrangement.sort, asked.arrangement.sort);
  over(text.arrangement.groupBy, asked.arrangement.groupBy);
  text.arrangement.where = std::move(asked.arrangement.where);
  text.allColumns = text.allColumns || asked.allColumns;
  text.details = text.details || asked.details;
  return std::move(text);
}

}  // namespace quillon::workbench
