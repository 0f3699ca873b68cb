#include "workbench/platform/filter_file.h"

#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/json_schema.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

FilterObject filterOf(std::string_view text) {
  FilterObject filter(reportNamed("sfc-item").registration, InitialValues::none);
  applyFilterFile(filter, text, "f.json");
  return filter;
}

std::string refusal(std::string_view text) {
  try {
    filterOf(text);
  } catch (const UserError& error) {
    return error.what();
  }
  return "none";
}

TEST(FilterFile, FillsItems) {
  FilterObject filter = filterOf(R"({"$schema":"filter-file.schema.json","id":"X","items":[
      {"name":"CMODAL","value":1},{"name":"仓库","value":"07\t01","caption":"whatever"},
      {"name":"Posting date","value":"2024-01-01","value2":"2024-06-30","range":true,"multi":null},
      {"name":"bIncludeExpire","value":false},{"name":"cInvClass","value":null,"sql":"1 = 1"}]})");
  EXPECT_EQ(filter.find("cModal")->value, "1");
  EXPECT_EQ(filter.find("cWhCode")->value, "07\t01");
  EXPECT_EQ(filter.find("dKeepDate")->value, "2024-01-01");
  EXPECT_EQ(filter.find("dKeepDate")->value2, "2024-06-30");
  EXPECT_EQ(filter.find("bIncludeExpire")->value, "0");
  EXPECT_EQ(filter.find("cInvClass")->value, "");
  EXPECT_EQ(filter.find("cInvClass")->sql, "1 = 1");
}

TEST(FilterFile, AddsColumnsOfTheLedger) {
  FilterObject filter = filterOf(
      R"({"items":[{"name":"cPersonCode","caption":"经办","multi":true,"value":"P1"},{"name":"cMemo","range":true}]})");
  EXPECT_EQ(filter.find("cPersonCode")->item.column, "base.cPersonCode");
  EXPECT_EQ(filter.find("cPersonCode")->item.chinese, "经办");
  EXPECT_TRUE(filter.find("cPersonCode")->item.multiple);
  EXPECT_EQ(filter.find("cPersonCode")->item.lookup, &persons);
  EXPECT_TRUE(filter.find("cMemo")->item.range);
  EXPECT_EQ(filter.find("cMemo")->item.chinese, "cMemo");
  EXPECT_EQ(filter.find("cMemo")->item.lookup, nullptr);
}

TEST(FilterFile, MayBeAllButEmpty) {
  EXPECT_EQ(refusal("{}"), "none");
  EXPECT_EQ(refusal(R"({"items":[]})"), "none");
}

TEST(FilterFile, IsRefusedWithThePlace) {
  EXPECT_EQ(refusal("{\n\"items\":[\n"), "f.json is not valid JSON: see line 3");
  EXPECT_EQ(refusal("\n[]"), "f.json, line 2: the file must be an object");
  EXPECT_EQ(refusal("{\n\"items\":1}"), "f.json, line 2: \"items\" must be a list");
  EXPECT_EQ(refusal("{\n\"itmes\":[]}"), "f.json, line 2: \"itmes\" is not known; did you mean items?");
  EXPECT_EQ(refusal("{\"items\":[\n{\"name\":\"cModal\"},\n{\"value\":\"1\"}]}"),
            "f.json, line 3: item 2 lacks \"name\"");
  EXPECT_EQ(refusal("{\"items\":[\n{\"name\":\"\"}]}"), "f.json, line 2: item 1, \"name\" must not be empty");
  EXPECT_EQ(refusal("{\"items\":[{\"name\":\"cModal\",\n\"value\":[]}]}"),
            "f.json, line 2: item 1, \"value\" must be a text, a number or true or false");
  EXPECT_EQ(refusal("{\"items\":[{\"name\":\"cModal\",\n\"valeu\":\"1\"}]}"),
            "f.json, line 2: item 1, \"valeu\" is not known; did you mean value?");
  EXPECT_EQ(refusal("{\"items\":[\n\n{\"name\":\"a b\"}]}"),
            "f.json, line 3: item 1, \"name\" is \"a b\", neither an item of the report nor a column's name");
  EXPECT_EQ(refusal("{\"items\":[7]}"), "f.json, line 1: item 1 must be an object");
}

TEST(FilterFile, IsReadFromAPath) {
  const test::TemporaryFile file(".json");
  std::ofstream(file.path(), std::ios::binary) << R"({"items":[{"name":"cWhCode","value":"07"}]})";
  FilterObject filter(reportNamed("sfc-item").registration);
  readFilterFile(filter, utf8FromPath(file.path()));
  EXPECT_EQ(filter.find("cWhCode")->value, "07");
  EXPECT_THROW(readFilterFile(filter, "no-such-filter.json"), UserError);
}

// The file that ships is the one that the reader checks.
TEST(FilterFileSchema, IsTheOneThatShips) {
  std::ifstream shipped(QUILLON_FILTER_SCHEMA, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(shipped), std::istreambuf_iterator<char>()), filterFileSchema);
  EXPECT_NO_THROW(JsonSchema{filterFileSchema});
}

}  // namespace
}  // namespace quillon::workbench
