// What a report, a filter dialog or a drill-through does, against a platform that is described in a file: every database
// call and every effect as one JSON object a line; nothing is executed.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace quillon::workbench {

// What can be traced: the reports, the filter dialogs ("dialog-sfc" and the like) and "execute", a drill-through.
std::vector<std::string> traceNames();

// Traces `name`. For a report `filter` is its filter; for a dialog, too, and it plays `events` on it (init, view and
// click when there are none); for a drill-through it is the row. Writes the trace to `out`; when the report absorbed an
// error and stopped, one line on `notes` says so. Gives the exit status: 1 when an error left the member, which is then
// the trace's last line; else 0. Throws UserError for a description that cannot be used and for what cannot be
// traced.
int trace(const std::string& name, const nlohmann::ordered_json& filter, const nlohmann::ordered_json& platform,
          std::ostream& out, std::ostream& notes, const std::vector<std::string>& events = {});

// "a, b, c"
std::string listed(const std::vector<std::string>& names);

}  // namespace quillon::workbench
