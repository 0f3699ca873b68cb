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

#include "filters/filter_control.h"
#include "filters/sfc_filter_control.h"
#include "filters/wt_filter_control.h"
#include "frame/automation_error.h"
#include "frame/module.h"
#include "reports/fx_detail/fx_detail.h"
#include "reports/fx_wt/fx_wt.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"
#include "workbench/cli/exit_status.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/user_error.h"
#include "workbench/trace/trace_platform.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

// A part of a description, with errors that name it.
template <typename Description>
Description described(const char* what, const Json& description) {
  try {
    return Description(description);
  } catch (const DescriptionError& error) {
    throw UserError(std::string("the ") + what + " description cannot be used: " + error.what());
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
  throw UserError("there is no event \"" + text +
                  "\"; the events are: init, view, click, year, grade, change:KEY, change:KEY=VALUE, "
                  "set:KEY=VALUE");
}

// A filter-control class at play. What it does to the dialog is printed by the platform; what its members give, here.
class TracedDialog {
 public:
  virtual ~TracedDialog() = default;

  virtual void init(FilterDialog& dialog) = 0;
  virtual void view(FilterDialog& dialog, TraceLog& log) = 0;
  virtual void click(FilterDialog& dialog, TraceLog& log) = 0;
  virtual void change(std::string_view key, FilterDialog& dialog) = 0;
  virtual void year(TraceLog& log) = 0;
  virtual void grade(TraceLog& log) = 0;
};

void printView(TraceLog& log, const std::optional<std::string>& view) {
  log.print({{"effect", "view"}, {"value", view ? Json(*view) : Json()}});
}

// Only the dialog of the summary reports has lists that are filled on request.
[[noreturn]] void refuseEvent(const std::string& report, const std::string& event) {
  throw UserError("the dialog of " + report + " has no event \"" + event + "\"; trace dialog-sfc for it");
}

// The dialog of both summary reports; the filter's identifier tells for which it is.
class TracedSfcDialog final : public TracedDialog {
 public:
  explicit TracedSfcDialog(TracePlatform& platform) : platform_(platform), module_(platform), control_(module_) {}

  void init(FilterDialog& dialog) override { control_.filterInit(dialog); }
  void view(FilterDialog& dialog, TraceLog& log) override { printView(log, SfcFilterControl::reportView(dialog)); }
  void click(FilterDialog&, TraceLog& log) override {
    log.print({{"effect", "result"}, {"value", SfcFilterControl::filterClick()}});
  }
  void change(std::string_view key, FilterDialog& dialog) override {
    beStarted();
    control_.valueChange(key, dialog);
  }
  void year(TraceLog& log) override {
    beStarted();
    control_.initYear();
    log.print({{"effect", "yearList"}, {"keys", control_.years()}});
  }
  void grade(TraceLog& log) override {
    beStarted();
    control_.initGrade();
    log.print({{"effect", "gradeList"}, {"keys", control_.grades()}});
  }

 private:
  // A trace may begin in the middle of a dialog: then the connection has been opened before its first line.
  void beStarted() {
    if (module_.session) return;
    module_.session = platform_.createSession();
    module_.login = platform_.login();
  }

  TracePlatform& platform_;
  Module module_;
  SfcFilterControl control_;
};

// The dialog of the detail ledger.
class TracedDetailDialog final : public TracedDialog {
 public:
  explicit TracedDetailDialog(TracePlatform& platform) : module_(platform), control_(module_) {}

  void init(FilterDialog& dialog) override { control_.filterInit(dialog); }
  void view(FilterDialog& dialog, TraceLog& log) override { printView(log, FilterControl::reportView(dialog)); }
  void click(FilterDialog& dialog, TraceLog& log) override {
    const std::optional<std::string> refused = control_.filterClick(dialog);
    if (refused) log.print({{"effect", "cancel"}, {"value", true}, {"item", *refused}});
  }
  void change(std::string_view key, FilterDialog& dialog) override { control_.valueChange(key, dialog); }
  void year(TraceLog&) override { refuseEvent("the detail ledger", "year"); }
  void grade(TraceLog&) override { refuseEvent("the detail ledger", "grade"); }

 private:
  Module module_;
  FilterControl control_;
};

// The dialog of the cost-item voucher report. Its class is never asked for a view.
class TracedWtDialog final : public TracedDialog {
 public:
  explicit TracedWtDialog(TracePlatform& platform) : module_(platform), control_(module_) {}

  void init(FilterDialog& dialog) override { control_.filterInit(dialog); }
  void view(FilterDialog&, TraceLog&) override {}
  void click(FilterDialog&, TraceLog& log) override {
    log.print({{"effect", "result"}, {"value", WtFilterControl::filterClick()}});
  }
  void change(std::string_view key, FilterDialog& dialog) override { control_.valueChange(key, dialog); }
  void year(TraceLog&) override { refuseEvent("the cost-item voucher report", "year"); }
  void grade(TraceLog&) override { refuseEvent("the cost-item voucher report", "grade"); }

 private:
  Module module_;
  WtFilterControl control_;
};

void play(const DialogEvent& event, TracedDialog& traced, FilterDialog& dialog, TraceFilter& filter, TraceLog& log) {
  if (event.value) filter.entry(event.key)->value = *event.value;
  if (event.kind == "init") {
    traced.init(dialog);
  } else if (event.kind == "view") {
    traced.view(dialog, log);
  } else if (event.kind == "click") {
    traced.click(dialog, log);
  } else if (event.kind == "change") {
    traced.change(event.key, dialog);
  } else if (event.kind == "year") {
    traced.year(log);
  } else if (event.kind == "grade") {
    traced.grade(log);
  }
  log.flush();
}

// --- What can be traced ---------------------------------------------------------------------------------------------

struct TraceInput {
  TracePlatform& platform;
  const Json& filter;
  const std::vector<std::string>& events;
  std::ostream& notes;
};

template <typename Dialog>
void traceDialog(const TraceInput& input) {
  const auto filter = std::make_shared<TraceFilter>(described<TraceFilter>("filter's", input.filter));
  std::vector<DialogEvent> events;
  for (const std::string& event :
       input.events.empty() ? std::vector<std::string>{"init", "view", "click"} : input.events)
    events.push_back(dialogEvent(event));
  Dialog traced(input.platform);
  const std::unique_ptr<FilterDialog> dialog = input.platform.dialog(filter);
  for (const DialogEvent& event : events)
    play(event, traced, *dialog, *filter, input.platform.log());
}

template <typename Report>
void traceReport(const TraceInput& input) {
  const auto filter = std::make_shared<TraceFilter>(described<TraceFilter>("filter's", input.filter));
  Module module(input.platform);
  Report(module).getSql(*input.platform.argument(filter));
  // A summary report closes its session only after a complete build.
  if (!module.session) return;
  const std::string& failure = input.platform.lastFailure();
  input.notes << "quillon: the build stopped and left its session open: "
              << (failure.empty() ? "the filter could not be translated" : "a statement was " + failure) << '\n';
}

void traceDrillThrough(const TraceInput& input) {
  const auto row = described<TraceRow>("row's", input.filter);
  Module module(input.platform);
  const auto result = FxDetail(module).execute(*input.platform.argument(row));
  if (result == DrillThrough::nothing) {
    input.platform.log().print({{"effect", "execute"}, {"result", "nothing"}});
  }
}

// What can be traced, by its name on the command line.
struct Tracer {
  std::string_view name;
  bool takesEvents;
  void (*run)(const TraceInput& input);
};

constexpr std::array tracers{
    Tracer{"sfc-item", false, traceReport<SfcItem>},
    Tracer{"outsum-item", false, traceReport<OutsumItem>},
    Tracer{"fx-detail", false, traceReport<FxDetail>},
    Tracer{"fx-wt", false, traceReport<FxWt>},
    Tracer{"dialog-sfc", true, traceDialog<TracedSfcDialog>},
    Tracer{"dialog-detail", true, traceDialog<TracedDetailDialog>},
    Tracer{"dialog-wt", true, traceDialog<TracedWtDialog>},
    Tracer{"execute", false, traceDrillThrough},
};

std::vector<std::string> tracedNames() {
  std::vector<std::string> names;
  names.reserve(tracers.size());
  for (const Tracer& tracer : tracers)
    names.emplace_back(tracer.name);
  return names;
}

std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + name;
  return list;
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
    throw UserError(file + ": events must be an array of texts, such as [\"init\", \"change:iYear=2024\"]");
  }
}

int runTrace(const TraceOptions& options) {
  if (options.caseFile.empty()) {
    return trace(options.report, readJsonFile(options.filterFile), readJsonFile(options.platformFile), std::cout,
                 std::cerr, options.events);
  }
  const Json description = readJsonFile(options.caseFile);
  if (!description.is_object() || !description.contains("report") || !description["report"].is_string()) {
    throw UserError(options.caseFile + " names no report: give it the keys report, filter and platform");
  }
  return trace(description["report"], description.value("filter", Json::object()),
               description.value("platform", Json::object()), std::cout, std::cerr,
               eventsOf(description, options.caseFile));
}

}  // namespace

int trace(const std::string& report, const Json& filter, const Json& platform, std::ostream& out, std::ostream& notes,
          const std::vector<std::string>& events) {
  const auto* const tracer = std::ranges::find(tracers, report, &Tracer::name);
  if (tracer == tracers.end()) {
    throw UserError("there is nothing called \"" + report + "\" to trace; there are: " + listed(tracedNames()));
  }
  if (!tracer->takesEvents && !events.empty()) {
    throw UserError("only a dialog has events; leave them out, or trace dialog-sfc, dialog-detail or dialog-wt");
  }
  const auto description = described<TraceDescription>("platform's", platform);
  TracePlatform tracePlatform(description, out);
  try {
    tracer->run({.platform = tracePlatform, .filter = filter, .events = events, .notes = notes});
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
  command
      .add_option("REPORT", options->report,
                  "The report, a filter dialog, or execute for a drill-through: " + listed(tracedNames()))
      ->check(CLI::IsMember(tracedNames()));
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
      throw CLI::ValidationError("trace", "give either REPORT with --filter and --platform, or --case");
    }
    if (const int status = runTrace(*options); status != 0) endWith(status);
  });
}

}  // namespace quillon::workbench
