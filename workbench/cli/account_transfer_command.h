// `quillon account export`, `import`, `script`: an account taken elsewhere and back.
#pragma once

namespace CLI {
class App;
}

namespace quillon::workbench {

// Adds the commands to `account`.
void addTransferCommands(CLI::App& account);

}  // namespace quillon::workbench
