// How a command of the program `quillon` fails.
#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>

namespace quillon::workbench {

// Bad input or work that cannot be done: one clear line that says what is wrong and what to do, exit status 1. Wrong
// usage (exit status 2) is CLI::ValidationError, and whatever else CLI11 throws while it parses.
class CommandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Ends the program with `exitStatus` when everything to be said has been said.
[[noreturn]] inline void endWith(int exitStatus) {
  throw CLI::RuntimeError(exitStatus);
}

}  // namespace quillon::workbench
