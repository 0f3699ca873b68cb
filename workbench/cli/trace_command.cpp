#include "workbench/cli/trace_command.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "filters/sfc_filter_control.h"
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

// The filter dialog of both reports; the filter's identifier tells for which it is.
constexpr std::string_view tracedDialog = "dialog-sfc";

std::vector<std::string> tracedNames() {
  std::vector<std::string> names;
  names.reserve(tracedReports.size() + 1);
  for (const TracedReport& report : tracedReports)
    names.emplace_back(report.name);
  names.emplace_back(tracedDialog);
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

// --- Dialogs --------------------------------------------------------------------------------------------------------

// What happens in a dialog: "init", "view", "click", "year", "grade", "change:KEY", "change:KEY=VALUE",
// "set:KEY=VALUE". Without a value, `value` is empty.
struct DialogEvent {
  std::string kind;
  std::string key;
  std::optional<std::string> value;
};

DialogEvent dialogEvent(const std::string& text) {
  constexpr std::array plain{"init", "view", "click", "year", "grade"};
  if (std::ranges::find(plain, text) != plain.end()) return {.kind = text, .key = {}, .value = {}};
  const std::size_t colon = text.find(':');
  if (colon != std::string::npos) {
    DialogEvent event{.kind = text.substr(0, colon), .key = text.substr(colon + 1), .value = {}};
    if (const std::size_t equals = event.key.find('='); equals != std::string::npos) {
      event.value = event.key.substr(equals + 1);
      event.key.resize(equals);
    }
    const bool complete = event.kind == "change" || (event.kind == "set" && event.value);
    if (complete && !event.key.empty()) return event;
  }
  throw CommandError("there is no event \"" + text +
                     "\"; the events are: init, view, click, year, grade, change:KEY, change:KEY=VALUE, "
                     "set:KEY=VALUE");
}

// One dialog from its first event to its last.
class DialogTrace {
 public:
  DialogTrace(TracePlatform& platform, std::shared_ptr<TraceFilter> filter)
      : platform_(platform),
        module_(platform),
        control_(module_),
        filter_(std::move(filter)),
        dialog_(platform.dialog(filter_)) {}

  void play(const DialogEvent& event) {
    if (event.value) filter_->entry(event.key)->value = *event.value;
    if (event.kind == "init") {
      control_.filterInit(*dialog_);
    } else if (event.kind == "view") {
      print({{"effect", "view"}, {"value", SfcFilterControl::reportView(*dialog_)}});
    } else if (event.kind == "click") {
      print({{"effect", "result"}, {"value", SfcFilterControl::filterClick()}});
    } else if (event.kind != "set") {
      beStarted();
      if (event.kind == "change") {
        control_.valueChange(event.key, *dialog_);
      } else if (event.kind == "year") {
        control_.initYear();
        print({{"effect", "yearList"}, {"keys", control_.years()}});
      } else {
        control_.initGrade();
        print({{"effect", "gradeList"}, {"keys", control_.grades()}});
      }
    }
    platform_.log().flush();
  }

 private:
  void print(const Json& line) { platform_.log().print(line); }

  // A trace may begin in the middle of a dialog: then the connection has been opened before its first line.
  void beStarted() {
    if (module_.session) return;
    module_.session = platform_.createSession();
    module_.login = platform_.login();
  }

  TracePlatform& platform_;
  Module module_;
  SfcFilterControl control_;
  std::shared_ptr<TraceFilter> filter_;
  std::unique_ptr<FilterDialog> dialog_;
};

void traceDialog(TracePlatform& platform, const std::shared_ptr<TraceFilter>& filter,
                 const std::vector<std::string>& events) {
  std::vector<DialogEvent> parsed;
  for (const std::string& event : events.empty() ? std::vector<std::string>{"init", "view", "click"} : events)
    parsed.push_back(dialogEvent(event));
  DialogTrace dialog(platform, filter);
  for (const DialogEvent& event : parsed)
    dialog.play(event);
}

// --- Reports --------------------------------------------------------------------------------------------------------

void traceReport(TracePlatform& platform, const std::shared_ptr<TraceFilter>& filter, const TracedReport& report,
                 std::ostream& notes) {
  Module module(platform);
  report.make(module)->getSql(*platform.argument(filter));
  // The report closes its session only after a complete build.
  if (!module.session) return;
  const std::string& failure = platform.lastFailure();
  notes << "quillon: the build stopped and left its session open: "
        << (failure.empty() ? "the filter could not be translated" : "a statement was " + failure) << '\n';
}

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
    throw CommandError(file + ": events must be an array of texts, such as [\"init\", \"change:iYear=2024\"]");
  }
}

int runTrace(const TraceOptions& options) {
  if (options.caseFile.empty()) {
    return trace(options.report, readJsonFile(options.filterFile), readJsonFile(options.platformFile), std::cout,
                 std::cerr, options.events);
  }
  const Json description = readJsonFile(options.caseFile);
  if (!description.is_object() || !description.contains("report") || !description["report"].is_string()) {
    throw CommandError(options.caseFile + " names no report: give it the keys report, filter and platform");
  }
  return trace(description["report"], description.value("filter", Json::object()),
               description.value("platform", Json::object()), std::cout, std::cerr,
               eventsOf(description, options.caseFile));
}

}  // namespace

int trace(const std::string& report, const Json& filter, const Json& platform, std::ostream& out, std::ostream& notes,
          const std::vector<std::string>& events) {
  const auto* const traced = std::ranges::find(tracedReports, report, &TracedReport::name);
  const bool isDialog = report == tracedDialog;
  if (traced == tracedReports.end() && !isDialog) {
    throw CommandError("there is no report \"" + report + "\" to trace; the reports are: " + listed(tracedNames()));
  }
  if (!isDialog && !events.empty()) {
    throw CommandError("a report has no events; leave them out, or trace " + std::string(tracedDialog));
  }
  const auto filterObject = std::make_shared<TraceFilter>(described<TraceFilter>("filter's", filter));
  const auto description = described<TraceDescription>("platform's", platform);
  TracePlatform tracePlatform(description, out);
  try {
    if (isDialog) {
      traceDialog(tracePlatform, filterObject, events);
    } else {
      traceReport(tracePlatform, filterObject, *traced, notes);
    }
    return 0;
  } catch (const AutomationError& error) {
    tracePlatform.log().flush();
    out << errorLine(error) << '\n';
    return 1;
  }
}

void addTraceCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "trace", "Print every database call of a report against a described platform; nothing is executed");
  const auto options = std::make_shared<TraceOptions>();
  command.add_option("REPORT", options->report, "The report, or a filter dialog: " + listed(tracedNames()))
      ->check(CLI::IsMember(tracedNames()));
  command.add_option("--filter", options->filterFile, "The filter's description, a JSON file");
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
      throw CLI::ValidationError("trace", "give either REPORT with --filter and --platform, or --case");
    }
    if (const int status = runTrace(*options); status != 0) endWith(status);
  });
}

}  // namespace quillon::workbench
