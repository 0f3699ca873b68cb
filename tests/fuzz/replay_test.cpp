// Runs every kept input through its entry point: the seeds that the fuzzers begin with, and what once broke a promise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/fuzz/targets.h"

namespace quillon::fuzz {
namespace {

struct Input {
  void (*check)(std::string_view input);
  std::filesystem::path file;
};

std::vector<Input> inputs() {
  const struct {
    const char* folder;
    void (*check)(std::string_view input);
  } targets[] = {
      {"arguments", checkArguments}, {"tsql", checkTsql},       {"filter", checkFilter}, {"csv", checkCsv},
      {"lists", checkLists},         {"request", checkRequest}, {"api", checkApi},
  };
  std::vector<Input> found;
  for (const auto& target : targets) {
    for (const char* const kind : {"corpus", "regressions"}) {
      const std::filesystem::path folder = std::filesystem::path(QUILLON_FUZZ_DIR) / kind / target.folder;
      // A target may never have failed, but each has seeds: a missing folder is an error.
      if (std::string_view(kind) == "regressions" && !std::filesystem::exists(folder)) continue;
      for (const auto& file : std::filesystem::directory_iterator(folder))
        found.push_back({target.check, file.path()});
    }
  }
  std::ranges::sort(found, {}, &Input::file);
  return found;
}

// "regressions_tsql_deep_brackets"
std::string nameOf(const testing::TestParamInfo<Input>& input) {
  const std::filesystem::path relative = input.param.file.lexically_relative(QUILLON_FUZZ_DIR);
  std::string name;
  for (const std::filesystem::path& part : relative)
    name += (name.empty() ? "" : "_") + part.stem().string();
  std::ranges::replace_if(
      name, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

class KeptInput : public testing::TestWithParam<Input> {};

TEST_P(KeptInput, KeepsThePromises) {
  std::ifstream file(GetParam().file, std::ios::binary);
  ASSERT_TRUE(file) << GetParam().file;
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  EXPECT_NO_THROW(GetParam().check(bytes));
}

INSTANTIATE_TEST_SUITE_P(All, KeptInput, testing::ValuesIn(inputs()), nameOf);

}  // namespace
}  // namespace quillon::fuzz
