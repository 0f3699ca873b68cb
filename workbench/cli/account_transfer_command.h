// `quillon account export`, `import`, `script`: an account taken elsewhere and back.
#pragma once

#include <CLI/CLI.hpp>

namespace quillon::workbench {

// Adds the commands to `account`.
void addTransferCommands(CLI::App& account);

}  // namespace quillon::workbench
