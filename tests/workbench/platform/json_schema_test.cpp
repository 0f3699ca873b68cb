#include "workbench/platform/json_schema.h"

#include <gmock/gmock.h>

namespace quillon::workbench {
namespace {

using Json = nlohmann::ordered_json;

// "place: reason", or nothing.
std::string fault(std::string_view schema, std::string_view document) {
  const auto found = JsonSchema(schema).faultOf(Json::parse(document));
  return found ? found->place.to_string() + ": " + found->reason.english() : "";
}

TEST(JsonSchema, HoldsValuesToTheirTypes) {
  EXPECT_EQ(fault(R"({"type":"string"})", "1"), ": must be a text");
  EXPECT_EQ(fault(R"({"type":"string"})", R"("1")"), "");
  EXPECT_EQ(fault(R"({"type":["string","number","boolean","null"]})", "[]"),
            ": must be a text, a number or true or false");
  EXPECT_EQ(fault(R"({"type":["boolean","null"]})", "null"), "");
  EXPECT_EQ(fault(R"({"type":["boolean","null"]})", "0"), ": must be true or false");
  EXPECT_EQ(fault(R"({"type":"object"})", "[]"), ": must be an object");
  EXPECT_EQ(fault(R"({"type":"array"})", "{}"), ": must be a list");
  EXPECT_EQ(fault(R"({"type":"null"})", "1"), ": must be null");
  EXPECT_EQ(fault(R"({"type":"number"})", "1.5"), "");
  EXPECT_EQ(fault("{}", "1.5"), "");
}

TEST(JsonSchema, HoldsObjectsToTheirMembers) {
  constexpr std::string_view schema =
      R"({"type":"object","properties":{"name":{"type":"string","minLength":2}},"required":["name"],
          "additionalProperties":false})";
  EXPECT_EQ(fault(schema, R"({"name":"线边"})"), "");
  EXPECT_EQ(fault(schema, R"({"name":"线"})"), "/name: must have 2 characters or more");
  EXPECT_EQ(fault(schema, R"({"name":1})"), "/name: must be a text");
  EXPECT_EQ(fault(schema, "{}"), ": lacks \"name\"");
  EXPECT_EQ(fault(schema, R"({"nam":"ab"})"), "/nam: is not known; did you mean name?");
  EXPECT_EQ(fault(R"({"properties":{"a":{"type":"null"}}})", R"({"b":1,"a":null})"), "");
}

TEST(JsonSchema, HoldsTheElementsOfLists) {
  constexpr std::string_view schema = R"({"properties":{"l":{"type":"array","items":{"type":"number"}}}})";
  EXPECT_EQ(fault(schema, R"({"l":[1,2]})"), "");
  EXPECT_EQ(fault(schema, R"({"l":[1,2,"x",[]]})"), "/l/2: must be a number");
}

TEST(JsonSchema, RefusesASchemaThatItCannotHoldDocumentsTo) {
  for (const char* const schema :
       {"", "[]", R"({"type":"integer"})", R"({"type":3})", R"({"pattern":"a"})", R"({"required":"name"})",
        R"({"additionalProperties":{}})", R"({"minLength":-1})", R"({"properties":[]})",
        R"({"properties":{"a":{"maxLength":1}}})", R"({"items":{"enum":[1]}})"})
    EXPECT_THROW(JsonSchema{schema}, std::invalid_argument) << schema;
}

std::string placeOf(const char* pointer) {
  return describePlace(Json::json_pointer(pointer)).english();
}

TEST(JsonPlace, IsToldToAReader) {
  EXPECT_EQ(placeOf(""), "");
  EXPECT_EQ(placeOf("/id"), "\"id\"");
  EXPECT_EQ(placeOf("/items"), "\"items\"");
  EXPECT_EQ(placeOf("/items/0"), "item 1");
  EXPECT_EQ(placeOf("/items/11/value"), "item 12, \"value\"");
}

TEST(JsonPlace, IsFoundInTheText) {
  constexpr std::string_view text =
      "\n{ \"a\" : \"{[\\\"\\\\\",\n \"items\":\n [ {\"name\":\"x]\"},\n  [[],{\"value\":1}],\n  {\"name\":\n 3,\n "
      "\"v\\u0061lue\"\n:[\n]}]\n, \"a\":\n2}\n";
  const auto line = [&](const char* pointer) { return lineOf(text, Json::json_pointer(pointer)); };
  ASSERT_TRUE(Json::accept(text));
  EXPECT_EQ(line(""), 2U);
  EXPECT_EQ(line("/items"), 3U);
  EXPECT_EQ(line("/items/0"), 4U);
  EXPECT_EQ(line("/items/0/name"), 4U);
  EXPECT_EQ(line("/items/1"), 5U);
  EXPECT_EQ(line("/items/2"), 6U);
  EXPECT_EQ(line("/items/2/name"), 6U);
  EXPECT_EQ(line("/items/2/value"), 8U) << "by its name, however that is written";
  EXPECT_EQ(line("/a"), 11U) << "the last of two";
  EXPECT_EQ(line("/items/2/none"), 6U) << "where what lacks it begins";
  EXPECT_EQ(lineOf("\xef\xbb\xbf\n{\"a\":1}", Json::json_pointer("/a")), 2U);
  const std::string deep = "[" + std::string(100'000, '[') + std::string(100'000, ']') + ",\n1]";
  EXPECT_EQ(lineOf(deep, Json::json_pointer("/1")), 2U);
}

}  // namespace
}  // namespace quillon::workbench
