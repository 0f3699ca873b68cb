// A folder of one test's own, gone with it; another run of the same test meanwhile has another.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::account::testing {

class TestFolder {
 public:
  TestFolder() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              ("quillon-" + std::string(test->test_suite_name()) + "-" + std::string(test->name()) + "-" +
               std::to_string(std::random_device()()));
    std::filesystem::create_directories(folder_);
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  const std::filesystem::path& path() const { return folder_; }
  std::filesystem::path operator/(std::string_view name) const {
    return folder_ / std::filesystem::path(std::u8string(name.begin(), name.end()));
  }
  // The names of what is in it, sorted.
  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_))
      names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
  }

 private:
  std::filesystem::path folder_;
};

inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void write(const std::filesystem::path& file, std::string_view content) {
  std::ofstream out(file, std::ios::binary);
  out << content;
}

}  // namespace quillon::account::testing
