#include "workbench/cli/trace_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "workbench/cli/exit_status.h"
#include "workbench/cli/usage_message.h"
#include "workbench/messages/trace.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"
#include "workbench/trace/trace.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

struct TraceOptions {
  std::string report;
  std::string filterFile;
  std::string platformFile;
  std::string caseFile;
  std::vector<std::string> events;
};

std::vector<std::string> eventsOf(const Json& description, const std::string& file) {
  const Json events = description.value("events", Json::array());
  try {
    return events.get<std::vector<std::string>>();
  } catch (const Json::exception&) {
    throw UserError(messages::eventsMustBeTexts(file));
  }
}

int runTrace(const TraceOptions& options) {
  if (options.caseFile.empty()) {
    return trace(options.report, readJsonFile(options.filterFile), readJsonFile(options.platformFile), std::cout,
                 std::cerr, options.events);
  }
  const Json description = readJsonFile(options.caseFile);
  if (!description.is_object() || !description.contains("report") || !description["report"].is_string()) {
    throw UserError(messages::caseNamesNoReport(options.caseFile));
  }
  return trace(description["report"], description.value("filter", Json::object()),
               description.value("platform", Json::object()), std::cout, std::cerr,
               eventsOf(description, options.caseFile));
}

}  // namespace

void addTraceCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "trace", "Print every database call of a report against a described platform; nothing is executed");
  const auto options = std::make_shared<TraceOptions>();
  command
      .add_option("REPORT", options->report,
                  "The report, a filter dialog, or execute for a drill-through: " + listed(traceNames()))
      ->check([](const std::string& name) {
        const std::vector<std::string> names = traceNames();
        if (std::ranges::find(names, name) != names.end()) return std::string();
        return usageText(messages::nothingToTrace(name, suggestion(name, names)));
      });
  command.add_option("--filter", options->filterFile, "The filter's description, for execute the row's; a JSON file");
  command.add_option("--platform", options->platformFile, "The platform's description, a JSON file");
  command.add_option("--case", options->caseFile,
                     "Instead of them one JSON file with the keys report, filter, platform and, for dialogs, events");
  command.add_option(
      "--event", options->events,
      "What happens in a dialog, in order (may be repeated): init, view, click, year, grade, change:KEY, "
      "change:KEY=VALUE, set:KEY=VALUE; without it: init, view, click");
  command.callback([options] {
    const bool described = !options->report.empty() && !options->filterFile.empty() && !options->platformFile.empty();
    const bool undescribed = options->report.empty() && options->filterFile.empty() && options->platformFile.empty() &&
                             options->events.empty();
    if (options->caseFile.empty() ? !described : !undescribed) {
      refuseUsage(messages::reportOrCase());
    }
    if (const int status = runTrace(*options); status != 0) endWith(status);
  });
}

}  // namespace quillon::workbench
