#include "workbench/desk/request_body.h"

#include <algorithm>
#include <charconv>

#include "workbench/catalogue/report_layout.h"

namespace quillon::workbench::desk {

namespace {

[[noreturn]] void refuse(const std::string& what) {
  throw ApiError(400, "form", what);
}

// Nullptr when it is missing or null.
const Json* memberOf(const Json& object, const char* member) {
  if (!object.is_object()) refuse(std::string("an object was expected that has \"") + member + "\"");
  const auto found = object.find(member);
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

std::string quoted(const char* member) {
  return std::string("\"") + member + "\"";
}

const Json& arrayIn(const Json& object, const char* member) {
  static const Json none = Json::array();
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return none;
  if (!found->is_array()) refuse(quoted(member) + " must be an array");
  return *found;
}

RowCondition conditionOf(const Json& json) {
  RowCondition condition{.column = textIn(json, "column"), .values = textsIn(json, "values")};
  const std::string kind = textIn(json, "kind", "equals");
  if (kind == "contains") {
    condition.kind = RowCondition::Kind::contains;
  } else if (kind == "range") {
    condition.kind = RowCondition::Kind::range;
  } else if (kind != "equals") {
    refuse("\"kind\" of a condition is equals, contains or range");
  }
  const std::size_t count = condition.values.size();
  if (condition.kind == RowCondition::Kind::range ? count != 2 : count == 0)
    refuse("\"values\" of a condition are two of a range, and at least one otherwise");
  return condition;
}

}  // namespace

Json bodyOf(const std::string& text) {
  if (text.empty()) return Json::object();
  Json body = Json::parse(text, nullptr, false);
  if (body.is_discarded()) throw ApiError(400, "json", "the body of the request is no JSON");
  if (!body.is_object()) refuse("the body of the request must be an object");
  return body;
}

std::string textIn(const Json& object, const char* member) {
  if (memberOf(object, member) == nullptr) refuse(quoted(member) + " is missing");
  return textIn(object, member, "");
}

std::string textIn(const Json& object, const char* member, const std::string& otherwise) {
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return otherwise;
  if (!found->is_string()) refuse(quoted(member) + " must be a text");
  return found->get<std::string>();
}

bool flagIn(const Json& object, const char* member) {
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return false;
  if (!found->is_boolean()) refuse(quoted(member) + " must be true or false");
  return found->get<bool>();
}

std::int64_t numberIn(const Json& object, const char* member) {
  const Json* const found = memberOf(object, member);
  if (found == nullptr) refuse(quoted(member) + " is missing");
  if (!found->is_number_integer()) refuse(quoted(member) + " must be a whole number");
  if (found->is_number_unsigned() && found->get<std::uint64_t>() > INT64_MAX) refuse(quoted(member) + " is too large");
  return found->get<std::int64_t>();
}

std::vector<std::string> textsIn(const Json& object, const char* member) {
  std::vector<std::string> texts;
  for (const Json& each : arrayIn(object, member)) {
    if (!each.is_string()) refuse(quoted(member) + " must hold texts");
    texts.push_back(each.get<std::string>());
  }
  return texts;
}

Language languageIn(const Json& object) {
  const std::string language = textIn(object, "lang", "zh");
  if (language != "zh" && language != "en") refuse("\"lang\" is zh or en");
  return language == "en" ? Language::english : Language::chinese;
}

std::vector<ItemValue> valuesIn(const Json& object, const char* member) {
  std::vector<ItemValue> values;
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return values;
  if (!found->is_object()) refuse(quoted(member) + " must be an object");
  for (const auto& [key, value] : found->items())
    values.push_back({.key = key, .value = textIn(value, "value", ""), .value2 = textIn(value, "value2", "")});
  return values;
}

ViewRequest viewRequestOf(const Json& body, const Report& report) {
  ViewRequest request{.layout = report.layouts.front(),
                      .allColumns = flagIn(body, "allColumns"),
                      .details = flagIn(body, "details"),
                      .language = languageIn(body)};
  if (const std::string name = textIn(body, "layout", ""); !name.empty()) {
    const auto layout = layoutNamed(name);
    if (!layout || std::ranges::find(report.layouts, *layout) == report.layouts.end())
      throw ApiError(422, "layout", report.registration.name + " has no layout \"" + name + "\"");
    request.layout = *layout;
  }
  request.arrangement.columns = textsIn(body, "columns");
  request.arrangement.groupBy = textsIn(body, "groupBy");
  for (const Json& key : arrayIn(body, "sort"))
    request.arrangement.sort.push_back({textIn(key, "column"), flagIn(key, "descending")});
  for (const Json& condition : arrayIn(body, "where"))
    request.arrangement.where.push_back(conditionOf(condition));
  return request;
}

std::int64_t numberOf(const std::map<std::string, std::string>& query, const std::string& name, std::int64_t otherwise,
                      std::int64_t most) {
  const auto found = query.find(name);
  if (found == query.end() || found->second.empty()) return otherwise;
  std::int64_t number = 0;
  const char* const end = found->second.data() + found->second.size();
  const auto [stopped, error] = std::from_chars(found->second.data(), end, number);
  if (error != std::errc() || stopped != end || number < 0)
    refuse("\"" + name + "\" must be a whole number of 0 or more");
  return std::min(number, most);
}

std::string textOf(const std::map<std::string, std::string>& query, const std::string& name) {
  const auto found = query.find(name);
  return found == query.end() ? "" : found->second;
}

}  // namespace quillon::workbench::desk
