// Runs the cases of conformance/: each fixes what T-SQL statements mean by the rows, values, column types and errors
// that they give. A case builds its tables (`setup`), runs its `steps`, and compares the result of `check`; with
// `error` the last step, or the check where there is none, must fail so.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "workbench/tsql/engine/engine.h"

namespace quillon::tsql {
namespace {

using nlohmann::json;

struct Case {
  std::string group;
  json content;

  std::string name() const { return group + ": " + content.at("name").get<std::string>(); }
  friend std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.name(); }
};

std::vector<Case> readCases() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLON_CONFORMANCE_DIR)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::vector<Case> cases;
  for (const auto& file : files) {
    std::ifstream in(file);
    const json group = json::parse(in);
    for (const json& content : group.at("cases"))
      cases.push_back({group.at("group").get<std::string>(), content});
  }
  return cases;
}

json shown(const Value& value, const Type& type) {
  if (isNull(value)) return nullptr;
  if (const auto* const number = std::get_if<std::int64_t>(&value)) return *number;
  if (const auto* const real = std::get_if<double>(&value)) return *real;
  (void)type;
  return toText(value).value();
}

bool sameValue(const json& expected, const json& actual, const Type& type) {
  if (type.kind != Kind::real || expected.is_null() || actual.is_null()) return expected == actual;
  const double a = expected.get<double>();
  const double b = actual.get<double>();
  return std::fabs(a - b) <= 1e-12 * std::max(std::fabs(a), std::fabs(b));
}

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

class Conformance : public testing::TestWithParam<Case> {
 protected:
  void expectRows(const std::string& check) {
    const json& content = GetParam().content;
    const std::unique_ptr<Cursor> cursor = connection_->query(check);
    json columns = json::array();
    for (const Column& column : cursor->columns())
      columns.push_back({lower(column.name), column.type.name()});
    json expectedColumns = content.at("columns");
    for (json& column : expectedColumns)
      column[0] = lower(column[0].get<std::string>());
    EXPECT_EQ(columns, expectedColumns);
    const json& expectedRows = content.at("rows");
    std::size_t row = 0;
    for (; cursor->next(); ++row) {
      json actual = json::array();
      bool same = row < expectedRows.size();
      for (std::size_t i = 0; i < cursor->columns().size(); ++i) {
        const Type& type = cursor->columns()[i].type;
        actual.push_back(shown(cursor->value(i), type));
        same = same && i < expectedRows[row].size() && sameValue(expectedRows[row][i], actual.back(), type);
      }
      EXPECT_TRUE(same) << "row " << row << ": " << actual << ", expected "
                        << (row < expectedRows.size() ? expectedRows[row] : json("no more rows"));
    }
    EXPECT_EQ(row, expectedRows.size());
  }

  void expectError(const std::string& batch) {
    const json& error = GetParam().content.at("error");
    try {
      connection_->execute(batch);
      FAIL() << "no error from: " << batch;
    } catch (const SqlError& caught) {
      if (!error.at("number").is_null()) {
        EXPECT_EQ(caught.number(), error.at("number").get<int>()) << caught.message();
      }
      EXPECT_NE(lower(caught.message()).find(lower(error.at("contains").get<std::string>())), std::string::npos)
          << caught.message();
    }
  }

  std::unique_ptr<Connection> connection_ = Connection::openInMemory();
};

TEST_P(Conformance, Holds) {
  const json& content = GetParam().content;
  for (const json& batch : content.at("setup"))
    connection_->execute(batch.get<std::string>());
  const json& steps = content.at("steps");
  const bool fails = content.contains("error");
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const std::string batch = steps[i].get<std::string>();
    if (fails && i + 1 == steps.size()) {
      expectError(batch);
    } else {
      connection_->execute(batch);
    }
  }
  if (!content.contains("check")) return;
  const std::string check = content.at("check").get<std::string>();
  if (fails && steps.empty()) {
    expectError(check);
  } else {
    expectRows(check);
  }
}

std::string testName(const testing::TestParamInfo<Case>& info) {
  std::string name = info.param.name();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, Conformance, testing::ValuesIn(readCases()), testName);

TEST(ConformanceData, HoldsAllCases) {
  EXPECT_EQ(readCases().size(), 254U);
}

}  // namespace
}  // namespace quillon::tsql
