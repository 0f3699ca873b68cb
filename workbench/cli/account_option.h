// How a command takes the account that it works on.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "workbench/platform/account_source.h"

namespace quillon::workbench {

inline constexpr const char* sourceDescription = "The account file, or an ODBC connection string";

// Adds an option, or an argument when `name` has no dashes. What the user gives is read into `account`, which outlives
// the parsing.
inline CLI::Option& addAccountOption(CLI::App& command, const std::string& name, AccountSource& account,
                                     const std::string& description = sourceDescription) {
  return *command.add_option_function<std::string>(
      name, [&account](const std::string& text) { account = AccountSource(text); }, description);
}

}  // namespace quillon::workbench
