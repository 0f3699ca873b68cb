// `quillon trace`: a report run against a platform that is described in a file; prints every database call as one JSON
// object a line and executes nothing.
#pragma once

namespace CLI {
class App;
}

namespace quillon::workbench {

// Adds the command to the program. Its errors are UserError.
void addTraceCommand(CLI::App& app);

}  // namespace quillon::workbench
