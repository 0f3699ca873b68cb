#include "workbench/runs/layout_text.h"

#include <algorithm>

#include "frame/text.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/messages/pivot.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

std::string textIn(const Json& object, const char* member) {
  const auto found = object.find(member);
  return found == object.end() || found->is_null() ? std::string() : found->get<std::string>();
}

bool flagIn(const Json& object, const char* member) {
  const auto found = object.find(member);
  return found != object.end() && !found->is_null() && found->get<bool>();
}

std::vector<std::string> listIn(const Json& object, const char* member) {
  const auto found = object.find(member);
  return found == object.end() ? std::vector<std::string>() : found->get<std::vector<std::string>>();
}

}  // namespace

LayoutText layoutTextOf(const Json& object) {
  return {.layout = textIn(object, "layout"),
          .arrangement = {.columns = listIn(object, "columns"),
                          .sort = listIn(object, "sort"),
                          .groupBy = listIn(object, "groupBy"),
                          .where = listIn(object, "where")},
          .pivot = textIn(object, "pivot"),
          .allColumns = flagIn(object, "allColumns"),
          .details = flagIn(object, "details")};
}

std::optional<Layout> ownLayout(std::string_view name) {
  std::string lower(name);
  std::ranges::transform(lower, lower.begin(), lowerAscii);
  return layoutNamed(lower);
}

LayoutOptions layoutOptionsOf(const Report& report, const LayoutText& text) {
  LayoutOptions options;
  options.arrangement = text.arrangement;
  options.allColumns = text.allColumns;
  options.details = text.details;
  if (!text.layout.empty()) {
    options.layout = ownLayout(text.layout);
    if (!options.layout) {
      std::vector<std::string> names;
      for (const Layout layout : report.layouts)
        names.emplace_back(layoutName(layout));
      throw UserError(messages::noSuchLayout(report.registration.name, text.layout, listOf(names)));
    }
  }
  if (!text.pivot.empty()) {
    if (options.layout || !text.arrangement.columns.empty() || !text.arrangement.groupBy.empty())
      throw UserError(messages::pivotAlone());
    options.pivot = parsePivot(text.pivot, text.arrangement.sort);
  }
  checkLayout(report, options);
  return options;
}

}  // namespace quillon::workbench
