// JSON documents held to a JSON Schema, with faults that a person can read. Of the schema language it knows what describes
// objects, lists and plain values: type, properties, required, additionalProperties (true or false), items, minLength, and
// the annotations $schema, $id, title, description, default and examples.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/messages/message.h"

namespace quillon::workbench {

class JsonSchema {
 public:
  using Json = nlohmann::ordered_json;

  // Throws std::invalid_argument for a text that is no schema, and for keywords that are not known here: what a schema
  // asks for is never passed over.
  explicit JsonSchema(std::string_view text);

  struct Fault {
    Json::json_pointer place;  // what is wrong, or for something that is missing what lacks it
    Message reason;            // "must be a text"
  };

  // The first fault of `document`, in the order of its members; nothing when it is as the schema says.
  std::optional<Fault> faultOf(const Json& document) const;

 private:
  Json schema_;
};

// A place for a reader: `item 2, "value"`, where `items` is the one list of the document; empty for the whole document.
Message describePlace(const nlohmann::ordered_json::json_pointer& place);

// The line, from 1, where the value at `place` begins in `text`, which is valid JSON; for a member, where its name does.
std::size_t lineOf(std::string_view text, const nlohmann::ordered_json::json_pointer& place);

}  // namespace quillon::workbench
