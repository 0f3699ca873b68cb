#include "workbench/cli/trace_command.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>

#include "frame/automation_error.h"
#include "frame/module.h"
#include "reports/sfc_item/sfc_item.h"
#include "workbench/cli/command_error.h"
#include "workbench/cli/json_file.h"
#include "workbench/platform/trace_platform.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view knownReports = "sfc-item";

// A part of a description, with errors that name it.
template <typename Description>
Description described(const char* what, const Json& description) {
  try {
    return Description(description);
  } catch (const DescriptionError& error) {
    throw CommandError(std::string("the ") + what + " description cannot be used: " + error.what());
  }
}

std::string errorLine(const AutomationError& error) {
  std::array<char, sizeof "0x80040e14"> code{};
  std::snprintf(code.data(), code.size(), "0x%08x", static_cast<unsigned>(static_cast<std::uint32_t>(error.code())));
  return Json{{"error", {{"hresult", code.data()}, {"source", error.source()}, {"description", error.description()}}}}
      .dump(-1, ' ', false, Json::error_handler_t::replace);
}

struct TraceOptions {
  std::string report;
  std::string filterFile;
  std::string platformFile;
  std::string caseFile;
};

int runTrace(const TraceOptions& options) {
  if (options.caseFile.empty()) {
    return trace(options.report, readJsonFile(options.filterFile), readJsonFile(options.platformFile), std::cout,
                 std::cerr);
  }
  const Json description = readJsonFile(options.caseFile);
  if (!description.is_object() || !description.contains("report") || !description["report"].is_string()) {
    throw CommandError(options.caseFile + " names no report: give it the keys report, filter and platform");
  }
  return trace(description["report"], description.value("filter", Json::object()),
               description.value("platform", Json::object()), std::cout, std::cerr);
}

}  // namespace

int trace(const std::string& report, const Json& filter, const Json& platform, std::ostream& out, std::ostream& notes) {
  if (report != knownReports) {
    throw CommandError("there is no report \"" + report + "\" to trace; the reports are: " + std::string(knownReports));
  }
  const auto filterObject = std::make_shared<TraceFilter>(described<TraceFilter>("filter's", filter));
  const auto description = described<TraceDescription>("platform's", platform);
  TracePlatform tracePlatform(description, out);
  Module module(tracePlatform);
  try {
    SfcItem instance(module);
    instance.getSql(*tracePlatform.argument(filterObject));
  } catch (const AutomationError& error) {
    out << errorLine(error) << '\n';
    return 1;
  }
  // The report closes its session only after a complete build.
  if (module.session) {
    const std::string& failure = tracePlatform.lastFailure();
    notes << "quillon: the build stopped and left its session open: "
          << (failure.empty() ? "the filter could not be translated" : "a statement was " + failure) << '\n';
  }
  return 0;
}

void addTraceCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "trace", "Print every database call of a report against a described platform; nothing is executed");
  const auto options = std::make_shared<TraceOptions>();
  command.add_option("REPORT", options->report, "The report: " + std::string(knownReports))
      ->check(CLI::IsMember({std::string(knownReports)}));
  command.add_option("--filter", options->filterFile, "The filter's description, a JSON file");
  command.add_option("--platform", options->platformFile, "The platform's description, a JSON file");
  command.add_option("--case", options->caseFile,
                     "Instead of them one JSON file with the keys report, filter and platform");
  command.callback([options] {
    const bool described = !options->report.empty() && !options->filterFile.empty() && !options->platformFile.empty();
    const bool undescribed = options->report.empty() && options->filterFile.empty() && options->platformFile.empty();
    if (options->caseFile.empty() ? !described : !undescribed) {
      throw CLI::ValidationError("trace", "give either REPORT with --filter and --platform, or --case");
    }
    if (const int status = runTrace(*options); status != 0) endWith(status);
  });
}

}  // namespace quillon::workbench
