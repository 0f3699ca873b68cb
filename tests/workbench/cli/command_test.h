// Whole commands on a small sample account, with a configuration folder of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account.h"
#include "workbench/cli/command_line.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench::test {

// The user's configuration folder, for one test; what was there comes back.
class ConfigurationFolder {
 public:
  explicit ConfigurationFolder(const std::filesystem::path& folder) {
#ifdef _WIN32
    if (const wchar_t* const text = _wgetenv(L"APPDATA"); text != nullptr) before_ = text;
    _wputenv_s(L"APPDATA", folder.c_str());
#else
    if (const char* const text = std::getenv("XDG_CONFIG_HOME"); text != nullptr) before_ = text;
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
#endif
  }
  ConfigurationFolder(const ConfigurationFolder&) = delete;
  ConfigurationFolder& operator=(const ConfigurationFolder&) = delete;
  ~ConfigurationFolder() {
#ifdef _WIN32
    _wputenv_s(L"APPDATA", before_.c_str());
#else
    if (before_.empty()) {
      unsetenv("XDG_CONFIG_HOME");
    } else {
      setenv("XDG_CONFIG_HOME", before_.c_str(), 1);
    }
#endif
  }

 private:
  std::filesystem::path before_;
};

struct End {
  int status = 0;
  std::string out;
  std::string errors;
};

class CommandTest : public testing::Test {
 protected:
  CommandTest() { account::createSample(folder_ / "a", {.rows = 500, .years = 1}); }

  End run(std::vector<std::string> arguments) const {
    for (std::string& argument : arguments) {
      if (argument == "ACCOUNT") argument = utf8FromPath(folder_ / "a");
    }
    std::ranges::reverse(arguments);
    std::ostringstream errors;
    End end;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    try {
      end.status = runCommandLine(std::move(arguments), "1.2.3", errors);
    } catch (const std::exception& error) {
      end.status = 1;
      errors << error.what();
    }
    end.out = testing::internal::GetCapturedStdout();
    end.errors = testing::internal::GetCapturedStderr() + errors.str();
    return end;
  }

  account::testing::TestFolder folder_;
  ConfigurationFolder configuration_{folder_ / "config"};
};

}  // namespace quillon::workbench::test
