// `quillon verify`: whether an account still gives what a page or a workbook shows.
#pragma once

#include <ostream>
#include <string>

#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

struct VerifyOptions {
  std::string file = {};  // UTF-8
  AccountSource account = {};
  Language language = Language::chinese;
  bool allowSql = false;  // run conditions that the file gives ready-made
  bool terminal = false;  // `notes` is a terminal: show progress there
};

// Runs each report whose fingerprint the file holds once more, with the same filter, and says on `out` whether it came to the
// same, or what differs. Returns whether all did. Throws std::exception with one line for the user when the file holds no
// fingerprint, or one of another account, or a report cannot be made.
bool verify(const VerifyOptions& options, std::ostream& out, std::ostream& notes);

void addVerifyCommand(CLI::App& app);

}  // namespace quillon::workbench
