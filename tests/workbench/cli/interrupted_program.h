// The built program `quillon`, run and interrupted from outside, as a user's Ctrl-C, the system's wish or a power button's
// kill does.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::workbench::test {

// When the program is killed. At most one of the two.
struct Kill {
  // Before it makes this change to the file system, counting from 1: opening a file for writing, writing, cutting,
  // renaming, removing, making a folder.
  std::optional<int> beforeChange = std::nullopt;
  std::optional<std::chrono::microseconds> after = std::nullopt;
  int signal = SIGKILL;
};

struct ProgramEnd {
  bool killed = false;  // by the signal; of another than SIGKILL only before the program takes it
  int status = 0;       // unless killed
  int changes = 0;      // made to the file system; of a killed program as far as it came. 0 when killed after a time
  std::string errors;   // standard error
};

struct ProgramLimits {
  std::optional<std::uint64_t> fileSize = std::nullopt;  // in bytes
  std::string output = "/dev/null";                      // where standard output goes
};

// Runs the program with `arguments` and waits for its end. Throws std::runtime_error when it cannot be run.
ProgramEnd runProgram(const std::vector<std::string>& arguments, const Kill& kill = {},
                      const ProgramLimits& limits = {});

}  // namespace quillon::workbench::test
