// `quillon trace`: a report run against a platform that is described in a file; prints every database call as one JSON
// object a line and executes nothing.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quillon::workbench {

// Adds the command to the program. Its errors are UserError.
void addTraceCommand(CLI::App& app);

// Traces `report`: a report; a filter dialog ("dialog-sfc", "dialog-detail", "dialog-wt") on which it plays `events`
// (init, view and click when there are none); or "execute", a drill-through, for which `filter` is the row. Writes the
// trace to `out`; a build that the report absorbed is told in one line on `notes`. Gives the exit status: 1 when an error
// left the member, which the trace's last line then tells; else 0. Throws UserError for a description that cannot be
// used and for what cannot be traced.
int trace(const std::string& report, const nlohmann::ordered_json& filter, const nlohmann::ordered_json& platform,
          std::ostream& out, std::ostream& notes, const std::vector<std::string>& events = {});

}  // namespace quillon::workbench
