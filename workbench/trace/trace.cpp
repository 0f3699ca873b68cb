#include "workbench/trace/trace.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>

#include "frame/automation_error.h"
#include "frame/module.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/messages/trace.h"
#include "workbench/platform/user_error.h"
#include "workbench/trace/dialog_event.h"
#include "workbench/trace/trace_platform.h"
#include "workbench/trace/traced_dialog.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

// A part of a description, with errors that name it.
template <typename Description>
Description described(const Caption& what, const Json& description) {
  try {
    return Description(description);
  } catch (const DescriptionError& error) {
    throw UserError(messages::descriptionRefused(what, error.message()));
  }
}

std::string errorLine(const AutomationError& error) {
  std::array<char, sizeof "0x80040e14"> code{};
  std::snprintf(code.data(), code.size(), "0x%08x", static_cast<unsigned>(static_cast<std::uint32_t>(error.code())));
  return Json{{"error", {{"hresult", code.data()}, {"source", error.source()}, {"description", error.description()}}}}
      .dump(-1, ' ', false, Json::error_handler_t::replace);
}

struct TraceInput {
  TracePlatform& platform;
  const Json& filter;
  const std::vector<std::string>& events;
  std::ostream& notes;
};

std::shared_ptr<TraceFilter> filterOf(const TraceInput& input) {
  return std::make_shared<TraceFilter>(described<TraceFilter>(messages::ofFilter.caption(), input.filter));
}

void traceDialog(const DialogClass& dialogClass, const TraceInput& input) {
  const std::shared_ptr<TraceFilter> filter = filterOf(input);
  std::vector<DialogEvent> events;
  for (const std::string& event :
       input.events.empty() ? std::vector<std::string>{"init", "view", "click"} : input.events)
    events.push_back(dialogEvent(event));
  TracedDialog dialog(input.platform, dialogClass, filter);
  for (const DialogEvent& event : events)
    dialog.play(event);
}

void traceReport(const Report& report, const TraceInput& input) {
  const std::shared_ptr<TraceFilter> filter = filterOf(input);
  Module module(input.platform);
  report.make(module)->getSql(*input.platform.argument(filter));
  // A summary report closes its session only after a complete build.
  if (!module.session) return;
  const std::string& failure = input.platform.lastFailure();
  const Message reason = failure.empty() ? messages::traceNotTranslated() : messages::traceRefused(failure);
  input.notes << "quillon: " << messages::sessionLeftOpen(reason).english() << '\n';
}

// The report whose row opens a document: the one that the row names, else the first that opens documents.
const Report& reportOf(const TraceRow& row) {
  if (row.report.empty()) return *std::ranges::find_if(reports(), &Report::opensDocuments);
  const auto named = [&row](const Report& report) { return report.registration.name == row.report; };
  const auto found = std::ranges::find_if(reports(), named);
  if (found == reports().end() || !found->opensDocuments()) throw UserError(messages::rowsWithoutDocuments(row.report));
  return *found;
}

void traceDrillThrough(const TraceInput& input) {
  const auto row = described<TraceRow>(messages::ofRow.caption(), input.filter);
  const Report& report = reportOf(row);
  Module module(input.platform);
  if (report.make(module)->execute(*input.platform.argument(row)) == DrillThrough::nothing)
    input.platform.log().print({{"effect", "execute"}, {"result", "nothing"}});
}

// What can be traced, by its name on the command line.
struct Tracer {
  std::string name;
  bool takesEvents;
  std::function<void(const TraceInput& input)> run;
};

std::vector<Tracer> tracers() {
  std::vector<Tracer> all;
  for (const Report& report : reports())
    all.push_back(
        {report.registration.name, false, [&report](const TraceInput& input) { traceReport(report, input); }});
  for (const DialogClass* dialog : dialogClasses())
    all.push_back(
        {std::string(dialog->traceName), true, [dialog](const TraceInput& input) { traceDialog(*dialog, input); }});
  all.push_back({"execute", false, traceDrillThrough});
  return all;
}

std::vector<std::string> dialogNames() {
  std::vector<std::string> names;
  for (const DialogClass* dialog : dialogClasses())
    names.emplace_back(dialog->traceName);
  return names;
}

// "a, b or c"
}  // namespace

std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + name;
  return list;
}

std::vector<std::string> traceNames() {
  std::vector<std::string> names;
  for (const Tracer& tracer : tracers())
    names.push_back(tracer.name);
  return names;
}

int trace(const std::string& name, const Json& filter, const Json& platform, std::ostream& out, std::ostream& notes,
          const std::vector<std::string>& events) {
  const std::vector<Tracer> known = tracers();
  const auto tracer = std::ranges::find(known, name, &Tracer::name);
  if (tracer == known.end()) {
    throw UserError(messages::nothingCalled(name, listOf(traceNames())));
  }
  if (!tracer->takesEvents && !events.empty()) {
    std::vector<Message> names;
    for (const std::string& dialog : dialogNames())
      names.push_back(Message::verbatim(dialog));
    throw UserError(messages::eventsOfDialogs(alternativesOf(names)));
  }
  const auto description = described<TraceDescription>(messages::ofPlatform.caption(), platform);
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

}  // namespace quillon::workbench
