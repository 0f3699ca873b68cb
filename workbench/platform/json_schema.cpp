#include "workbench/platform/json_schema.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <vector>

#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;
using Pointer = Json::json_pointer;
using Fault = JsonSchema::Fault;

// A type as a schema names it, and for a reader.
struct TypeName {
  std::string_view name;
  Caption shown;
  bool (*fits)(const Json& value);
};

constexpr std::array typeNames = {
    TypeName{"object", messages::jsonObject.caption(), [](const Json& value) { return value.is_object(); }},
    TypeName{"array", messages::jsonList.caption(), [](const Json& value) { return value.is_array(); }},
    TypeName{"string", messages::jsonText.caption(), [](const Json& value) { return value.is_string(); }},
    TypeName{"number", messages::jsonNumber.caption(), [](const Json& value) { return value.is_number(); }},
    TypeName{"boolean", messages::jsonFlag.caption(), [](const Json& value) { return value.is_boolean(); }},
    TypeName{"null", messages::jsonNull.caption(), [](const Json& value) { return value.is_null(); }},
};

const TypeName& typeNamed(const Json& name) {
  const auto* const found =
      name.is_string() ? std::ranges::find(typeNames, name.get<std::string>(), &TypeName::name) : typeNames.end();
  if (found == typeNames.end()) throw std::invalid_argument("the schema has the unknown type " + name.dump());
  return *found;
}

std::vector<const TypeName*> typesOf(const Json& type) {
  std::vector<const TypeName*> types;
  if (type.is_array()) {
    for (const Json& name : type)
      types.push_back(&typeNamed(name));
  } else {
    types.push_back(&typeNamed(type));
  }
  return types;
}

// Throws std::invalid_argument for what faultIn() would pass over.
void requireKnown(const Json& schema) {
  constexpr std::array<std::string_view, 6> annotations = {"$schema",     "$id",     "title",
                                                           "description", "default", "examples"};
  if (!schema.is_object()) throw std::invalid_argument("a schema is an object, not " + schema.dump());
  for (const auto& [keyword, value] : schema.items()) {
    bool known = std::ranges::find(annotations, keyword) != annotations.end();
    if (keyword == "type") {
      typesOf(value);
      known = true;
    } else if (keyword == "properties" && value.is_object()) {
      for (const Json& member : value)
        requireKnown(member);
      known = true;
    } else if (keyword == "items") {
      requireKnown(value);
      known = true;
    } else if (keyword == "required") {
      known = value.is_array() && std::ranges::all_of(value, [](const Json& name) { return name.is_string(); });
    } else if (keyword == "additionalProperties") {
      known = value.is_boolean();
    } else if (keyword == "minLength") {
      known = value.is_number_unsigned();
    }
    if (!known) throw std::invalid_argument("the schema asks for the unknown \"" + keyword + "\": " + value.dump());
  }
}

std::optional<Fault> faultIn(const Json& schema, const Json& value, const Pointer& place);

std::optional<Fault> faultInMembers(const Json& schema, const Json& object, const Pointer& place) {
  const Json known = schema.value("properties", Json::object());
  const bool open = schema.value("additionalProperties", true);
  for (const auto& [name, value] : object.items()) {
    const auto member = known.find(name);
    if (member != known.end()) {
      if (auto fault = faultIn(*member, value, place / name)) return fault;
    } else if (!open) {
      std::vector<std::string> names;
      for (const auto& [knownName, ignored] : known.items())
        names.push_back(knownName);
      return Fault{place / name, messages::notKnown(suggestion(name, names))};
    }
  }
  for (const Json& name : schema.value("required", Json::array())) {
    if (!object.contains(name.get<std::string>())) return Fault{place, messages::lacksMember(name.get<std::string>())};
  }
  return std::nullopt;
}

std::optional<Fault> faultOfType(const Json& type, const Json& value, const Pointer& place) {
  std::vector<const TypeName*> types = typesOf(type);
  if (std::ranges::any_of(types, [&value](const TypeName* known) { return known->fits(value); })) return std::nullopt;
  // Nobody writes null on purpose.
  if (types.size() > 1) std::erase_if(types, [](const TypeName* known) { return known->name == "null"; });
  std::vector<Message> shown;
  shown.reserve(types.size());
  for (const TypeName* known : types)
    shown.push_back(messages::said(known->shown));
  return Fault{place, messages::mustBe(alternativesOf(shown))};
}

std::optional<Fault> faultIn(const Json& schema, const Json& value, const Pointer& place) {
  if (const auto type = schema.find("type"); type != schema.end()) {
    if (auto fault = faultOfType(*type, value, place)) return fault;
  }
  if (value.is_string() && schema.contains("minLength")) {
    const auto least = schema["minLength"].get<std::size_t>();
    const std::string text = value.get<std::string>();
    std::size_t length = 0;
    for (std::size_t position = 0; position < text.size(); ++length)
      tsql::text::next(text, position);
    if (length < least)
      return Fault{place, least == 1 ? messages::mustNotBeEmpty() : messages::mustHaveCharacters(least)};
  }
  if (value.is_object()) return faultInMembers(schema, value, place);
  if (value.is_array() && schema.contains("items")) {
    for (std::size_t i = 0; i < value.size(); ++i) {
      if (auto fault = faultIn(schema["items"], value[i], place / i)) return fault;
    }
  }
  return std::nullopt;
}

std::vector<std::string> partsOf(Pointer place) {
  std::vector<std::string> parts;
  for (; !place.empty(); place.pop_back())
    parts.push_back(place.back());
  std::ranges::reverse(parts);
  return parts;
}

// Walks through valid JSON to one place in it.
class Walk {
 public:
  explicit Walk(std::string_view text) : text_(text) {}

  // Where the place is that leads on from the value that begins here.
  std::size_t find(std::span<const std::string> parts) {
    skipBlanks();
    if (parts.empty() || at_ >= text_.size()) return at_;
    const std::size_t begin = at_;
    return text_[at_] == '{' ? findMember(parts, begin) : text_[at_] == '[' ? findElement(parts, begin) : begin;
  }

 private:
  std::size_t findMember(std::span<const std::string> parts, std::size_t found) {
    while (next('}')) {
      const std::size_t name = at_;
      skipText();
      const bool wanted = Json::parse(text_.substr(name, at_ - name)) == parts.front();
      skipBlanks();
      ++at_;  // the colon
      const std::size_t value = at_;
      // Of members of the same name the last one counts.
      if (wanted) found = parts.size() == 1 ? name : find(parts.subspan(1));
      at_ = value;
      skipValue();
    }
    return found;
  }

  std::size_t findElement(std::span<const std::string> parts, std::size_t found) {
    const std::string& wanted = parts.front();
    for (std::size_t index = 0; next(']'); ++index) {
      if (std::to_string(index) == wanted) return find(parts.subspan(1));
      skipValue();
    }
    return found;
  }

  // Goes to the next member or element; false at the end.
  bool next(char end) {
    if (at_ >= text_.size() || text_[at_] == end) return false;
    ++at_;  // the bracket that begins, or the comma
    skipBlanks();
    return at_ < text_.size() && text_[at_] != end;
  }

  void skipBlanks() { at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size()); }

  void skipText() {
    for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) {
      if (text_[at_] == '\\') ++at_;
    }
    ++at_;
  }

  // Up to the comma or bracket behind the value; without recursion, for a file may nest as deep as it likes.
  void skipValue() {
    std::size_t depth = 0;
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (c == '"') {
        skipText();
        --at_;
      } else if (c == '{' || c == '[') {
        ++depth;
      } else if (depth == 0 && (c == ',' || c == '}' || c == ']')) {
        return;
      } else if (c == '}' || c == ']') {
        --depth;
      }
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

JsonSchema::JsonSchema(std::string_view text) {
  try {
    schema_ = Json::parse(text);
  } catch (const Json::exception& error) {
    throw std::invalid_argument(std::string("the schema is not valid JSON: ") + error.what());
  }
  requireKnown(schema_);
}

std::optional<JsonSchema::Fault> JsonSchema::faultOf(const Json& document) const {
  return faultIn(schema_, document, Pointer());
}

Message describePlace(const Pointer& place) {
  const std::vector<std::string> parts = partsOf(place);
  std::vector<Message> described;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto index = tsql::text::wholeNumber(parts[i]);
    if (parts[i] == "items" && i + 1 < parts.size()) continue;
    described.push_back(index ? messages::itemNumber(*index + 1) : messages::quotedName(parts[i]));
  }
  return joined(described, messages::listSeparator.caption());
}

std::size_t lineOf(std::string_view text, const Pointer& place) {
  constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  const std::vector<std::string> parts = partsOf(place);
  const std::size_t at = Walk(text).find(parts);
  return 1 + static_cast<std::size_t>(std::ranges::count(text.substr(0, at), '\n'));
}

}  // namespace quillon::workbench
