// `quillon account export`, `import`, `script`: moves an account to CSV files and back, or to a server.
#pragma once

namespace CLI {
class App;
}

namespace quillon::workbench {

// Adds the commands to `account`.
void addTransferCommands(CLI::App& account);

}  // namespace quillon::workbench
