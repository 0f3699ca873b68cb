// Reading what a request says: its JSON body and its query.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/desk/api_error.h"
#include "workbench/desk/view_window.h"
#include "workbench/platform/filter_input.h"

namespace quillon::workbench::desk {

// All of these throw ApiError 400 when the form is wrong: it names the member.

// The object that `text` is; an empty text is an empty object.
Json bodyOf(const std::string& text);
// Members of an object. One that is missing or null is `otherwise`; without that it must be there.
std::string textIn(const Json& object, const char* member);
std::string textIn(const Json& object, const char* member, const std::string& otherwise);
bool flagIn(const Json& object, const char* member);
std::int64_t numberIn(const Json& object, const char* member);
std::vector<std::string> textsIn(const Json& object, const char* member);
// Of "lang": "zh" or "en".
Language languageIn(const Json& object, Language otherwise);
// {"key": {"value", "value2"}}; of a missing member nothing.
std::vector<ItemValue> valuesIn(const Json& object, const char* member);

// A view as it is asked for; its layout is the report's first unless it is named, its language `otherwise`. Throws ApiError 422 for a layout that
// the report does not have.
ViewRequest viewRequestOf(const Json& body, const Report& report, Language otherwise);

// A pivot as it is asked for.
ViewRequest pivotRequestOf(const Json& body, Language otherwise);

// A comparison as it is asked for: a pivot with the run in `other`. Throws UserError for what cannot be compared.
ViewRequest comparisonRequestOf(const Json& body, Language otherwise);

// A list of numbers of rows.
std::vector<std::int64_t> rowsIn(const Json& object, const char* member);

// A whole number of a query, from 0 to `most`.
std::int64_t numberOf(const std::map<std::string, std::string>& query, const std::string& name, std::int64_t otherwise,
                      std::int64_t most);
std::string textOf(const std::map<std::string, std::string>& query, const std::string& name);

}  // namespace quillon::workbench::desk
