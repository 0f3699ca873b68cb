// `quillon dialog`: the filter dialog of a report, step by step, as the library's filter-control class fills it.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "workbench/cli/filters_command.h"
#include "workbench/cli/screen_options.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

enum class DialogFormat { table, json };

struct DialogOptions {
  std::string report = {};  // "sfc-item"
  AccountSource account = {};
  std::string filterFile = {};          // a filter file with which the dialog begins; empty for an empty filter
  FilterToSave saving = {};             // keep what it begins with and the steps change, when the last step confirms it
  std::vector<std::string> steps = {};  // see dialog_steps.h; none: init, view, click
  DialogFormat format = DialogFormat::table;
  Language language = Language::chinese;
  ScreenOptions screen = {};
  std::string date = {};  // the login's date, yyyy-mm-dd; empty: the last day of the current year
};

// Shows the dialog after each step. Throws std::exception with one line for the user; what the steps before showed has
// been written by then. `notes` gets the codes that the account does not have (workbench/platform/unknown_codes.h).
void runDialog(const DialogOptions& options, std::ostream& out, std::ostream& notes);

void addDialogCommand(CLI::App& app);

}  // namespace quillon::workbench
