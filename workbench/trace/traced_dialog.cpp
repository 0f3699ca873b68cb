#include "workbench/trace/traced_dialog.h"

#include <string>
#include <utility>

#include "workbench/catalogue/catalogue.h"
#include "workbench/messages/trace.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

// The dialogs that have lists, by their names on the command line.
Message dialogsWithLists() {
  std::vector<std::string> names;
  for (const DialogClass* dialog : dialogClasses()) {
    if (dialog->hasLists) names.emplace_back(dialog->traceName);
  }
  return listOf(names);
}

}  // namespace

TracedDialog::TracedDialog(TracePlatform& platform, const DialogClass& dialogClass, std::shared_ptr<TraceFilter> filter)
    : platform_(platform),
      class_(dialogClass),
      module_(platform),
      control_(dialogClass.make(module_)),
      filter_(std::move(filter)),
      dialog_(platform.dialog(filter_)) {}

void TracedDialog::play(const DialogEvent& event) {
  if (event.value) filter_->entry(event.key)->value = *event.value;
  if (event.kind == "init") {
    control_->init(*dialog_);
  } else if (event.kind == "view") {
    view();
  } else if (event.kind == "click") {
    click();
  } else if (event.kind == "change") {
    beStarted();
    control_->changed(event.key, *dialog_);
  } else if (event.kind == "year") {
    requireLists(event);
    years();
  } else if (event.kind == "grade") {
    requireLists(event);
    grades();
  }
  platform_.log().flush();
}

void TracedDialog::view() {
  if (!class_.hasViews) return;
  const std::optional<std::string> view = control_->view(*dialog_);
  platform_.log().print({{"effect", "view"}, {"value", view ? Json(*view) : Json()}});
}

void TracedDialog::click() {
  const FilterClick click = control_->click(*dialog_);
  if (click.result) platform_.log().print({{"effect", "result"}, {"value", *click.result}});
  if (click.cancelled) platform_.log().print({{"effect", "cancel"}, {"value", true}, {"item", *click.cancelled}});
}

void TracedDialog::years() {
  beStarted();
  platform_.log().print({{"effect", "yearList"}, {"keys", control_->years()}});
}

void TracedDialog::grades() {
  beStarted();
  platform_.log().print({{"effect", "gradeList"}, {"keys", control_->grades()}});
}

void TracedDialog::requireLists(const DialogEvent& event) const {
  if (class_.hasLists) return;
  throw UserError(messages::dialogLacksEvent(class_.traceName, event.kind, dialogsWithLists()));
}

// A trace may begin in the middle of a dialog: then a class that works in the module's session finds it open, from
// before the trace's first line.
void TracedDialog::beStarted() {
  if (!class_.hasLists || module_.session) return;
  module_.session = platform_.createSession();
  module_.login = platform_.login();
}

}  // namespace quillon::workbench
