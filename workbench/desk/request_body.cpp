#include "workbench/desk/request_body.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "workbench/catalogue/report_layout.h"
#include "workbench/messages/filter.h"

namespace quillon::workbench::desk {

namespace {

[[noreturn]] void refuse(Message what) {
  throw ApiError(400, "form", std::move(what));
}

[[noreturn]] void refuseMember(const std::string& member, const Text<0>& mustBe) {
  refuse(messages::wrongMember(member, mustBe.caption()));
}

// Nullptr when it is missing or null.
const Json* memberOf(const Json& object, const char* member) {
  if (!object.is_object()) refuse(messages::objectExpected(member));
  const auto found = object.find(member);
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

const Json& arrayIn(const Json& object, const char* member) {
  static const Json none = Json::array();
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return none;
  if (!found->is_array()) refuseMember(member, messages::jsonList);
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
    refuseMember("kind", messages::aConditionKind);
  }
  const std::size_t count = condition.values.size();
  if (condition.kind == RowCondition::Kind::range ? count != 2 : count == 0)
    refuseMember("values", messages::aConditionsValues);
  return condition;
}

std::vector<SortKey> sortIn(const Json& body) {
  std::vector<SortKey> keys;
  for (const Json& key : arrayIn(body, "sort"))
    keys.push_back({textIn(key, "column"), flagIn(key, "descending")});
  return keys;
}

std::vector<RowCondition> whereIn(const Json& body) {
  std::vector<RowCondition> conditions;
  for (const Json& condition : arrayIn(body, "where"))
    conditions.push_back(conditionOf(condition));
  return conditions;
}

}  // namespace

Json bodyOf(const std::string& text) {
  if (text.empty()) return Json::object();
  Json body = Json::parse(text, nullptr, false);
  if (body.is_discarded()) throw ApiError(400, "json", messages::bodyNoJson());
  if (!body.is_object()) refuse(messages::bodyNoObject());
  return body;
}

std::string textIn(const Json& object, const char* member) {
  if (memberOf(object, member) == nullptr) refuse(messages::memberMissing(member));
  return textIn(object, member, "");
}

std::string textIn(const Json& object, const char* member, const std::string& otherwise) {
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return otherwise;
  if (!found->is_string()) refuseMember(member, messages::jsonText);
  return found->get<std::string>();
}

bool flagIn(const Json& object, const char* member) {
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return false;
  if (!found->is_boolean()) refuseMember(member, messages::jsonFlag);
  return found->get<bool>();
}

std::int64_t numberIn(const Json& object, const char* member) {
  const Json* const found = memberOf(object, member);
  if (found == nullptr) refuse(messages::memberMissing(member));
  if (!found->is_number_integer()) refuseMember(member, messages::aWholeNumber);
  if (found->is_number_unsigned() && found->get<std::uint64_t>() > INT64_MAX)
    refuseMember(member, messages::aWholeNumber);
  return found->get<std::int64_t>();
}

std::vector<std::string> textsIn(const Json& object, const char* member) {
  std::vector<std::string> texts;
  for (const Json& each : arrayIn(object, member)) {
    if (!each.is_string()) refuseMember(member, messages::anArrayOfTexts);
    texts.push_back(each.get<std::string>());
  }
  return texts;
}

Language languageIn(const Json& object, Language otherwise) {
  const std::string language = textIn(object, "lang", "");
  if (language == "zh") return Language::chinese;
  if (language == "en") return Language::english;
  if (memberOf(object, "lang") != nullptr) refuseMember("lang", messages::aLanguage);
  return otherwise;
}

std::vector<ItemValue> valuesIn(const Json& object, const char* member) {
  std::vector<ItemValue> values;
  const Json* const found = memberOf(object, member);
  if (found == nullptr) return values;
  if (!found->is_object()) refuseMember(member, messages::jsonObject);
  for (const auto& [key, value] : found->items())
    values.push_back({.key = key, .value = textIn(value, "value", ""), .value2 = textIn(value, "value2", "")});
  return values;
}

ViewRequest viewRequestOf(const Json& body, const Report& report, Language otherwise) {
  ViewRequest request{.layout = report.layouts.front(),
                      .allColumns = flagIn(body, "allColumns"),
                      .details = flagIn(body, "details"),
                      .language = languageIn(body, otherwise)};
  if (const std::string name = textIn(body, "layout", ""); !name.empty()) {
    const auto layout = layoutNamed(name);
    if (!layout || std::ranges::find(report.layouts, *layout) == report.layouts.end())
      throw ApiError(422, "layout", messages::layoutUnknown(report.registration.name, name));
    request.layout = *layout;
  }
  request.arrangement.columns = textsIn(body, "columns");
  request.arrangement.groupBy = textsIn(body, "groupBy");
  request.arrangement.sort = sortIn(body);
  request.arrangement.where = whereIn(body);
  return request;
}

ViewRequest pivotRequestOf(const Json& body, Language otherwise) {
  ViewRequest request{.layout = Layout::pivot, .language = languageIn(body, otherwise)};
  PivotArrangement pivot{.rows = textsIn(body, "rows"),
                         .columns = textsIn(body, "columns"),
                         .measures = textsIn(body, "measures"),
                         .sort = sortIn(body)};
  request.pivot = std::move(pivot);
  request.arrangement.where = whereIn(body);
  return request;
}

ViewRequest comparisonRequestOf(const Json& body, Language otherwise) {
  ViewRequest request = pivotRequestOf(body, otherwise);
  request.comparedWith = numberIn(body, "other");
  checkComparison(*request.pivot);
  return request;
}

std::vector<std::int64_t> rowsIn(const Json& object, const char* member) {
  std::vector<std::int64_t> rows;
  for (const Json& each : arrayIn(object, member)) {
    if (!each.is_number_unsigned() || each.get<std::uint64_t>() > INT64_MAX)
      refuseMember(member, messages::anArrayOfRows);
    rows.push_back(each.get<std::int64_t>());
  }
  return rows;
}

std::int64_t numberOf(const std::map<std::string, std::string>& query, const std::string& name, std::int64_t otherwise,
                      std::int64_t most) {
  const auto found = query.find(name);
  if (found == query.end() || found->second.empty()) return otherwise;
  std::int64_t number = 0;
  const char* const end = found->second.data() + found->second.size();
  const auto [stopped, error] = std::from_chars(found->second.data(), end, number);
  if (error != std::errc() || stopped != end || number < 0) refuseMember(name, messages::aCount);
  return std::min(number, most);
}

std::string textOf(const std::map<std::string, std::string>& query, const std::string& name) {
  const auto found = query.find(name);
  return found == query.end() ? "" : found->second;
}

}  // namespace quillon::workbench::desk
