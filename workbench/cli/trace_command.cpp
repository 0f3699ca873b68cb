#include "workbench/cli/trace_command.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string_view>
#include <vector>

#include "frame/automation_error.h"
#include "frame/module.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"
#include "workbench/cli/command_error.h"
#include "workbench/cli/json_file.h"
#include "workbench/platform/trace_platform.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

// What can be traced, by its name on the command line.
struct TracedReport {
  std::string_view name;
  std::unique_ptr<SummaryReport> (*make)(Module& module);
};

template <typename Report>
std::unique_ptr<SummaryReport> made(Module& module) {
  return std::make_unique<Report>(module);
}

constexpr std::array tracedReports{
    TracedReport{"sfc-item", made<SfcItem>},
    TracedReport{"outsum-item", made<OutsumItem>},
};

std::vector<std::string> tracedNames() {
  std::vector<std::string> names;
  names.reserve(tracedReports.size());
  for (const TracedReport& report : tracedReports)
    names.emplace_back(report.name);
  return names;
}

std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + name;
  return list;
}

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
  const auto* const traced = std::ranges::find(tracedReports, report, &TracedReport::name);
  if (traced == tracedReports.end()) {
    throw CommandError("there is no report \"" + report + "\" to trace; the reports are: " + listed(tracedNames()));
  }
  const auto filterObject = std::make_shared<TraceFilter>(described<TraceFilter>("filter's", filter));
  const auto description = described<TraceDescription>("platform's", platform);
  TracePlatform tracePlatform(description, out);
  Module module(tracePlatform);
  try {
    traced->make(module)->getSql(*tracePlatform.argument(filterObject));
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
  command.add_option("REPORT", options->report, "The report: " + listed(tracedNames()))
      ->check(CLI::IsMember(tracedNames()));
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
