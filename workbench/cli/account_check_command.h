// `quillon account check`: what is wrong in an account before a report is made of it.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "workbench/cli/screen_options.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

enum class CheckFormat { table, csv, json };

struct CheckOptions {
  std::vector<std::string> checks = {};    // their names (checkNames()); empty: all
  std::optional<std::int64_t> limit = {};  // rows of each that are shown, 0: all; nothing: 10, for programs all
  CheckFormat format = CheckFormat::table;
  Language language = Language::english;
  ScreenOptions screen = {};
};

// Writes what the checks find: how many rows each, then the rows. False when there are errors, true when there are none
// or notes alone. Throws std::exception with one line for the user.
bool checkAccount(const AccountSource& source, const CheckOptions& options, std::ostream& out);

// `quillon account check --integrity`: lists what is damaged in an account file, having read all of it. True when nothing
// is. Throws std::exception with one line for the user.
bool checkIntegrity(const AccountSource& source, std::ostream& out, Language language = Language::english);

// Adds the command to `quillon account`.
void addCheckCommand(CLI::App& account);

}  // namespace quillon::workbench
