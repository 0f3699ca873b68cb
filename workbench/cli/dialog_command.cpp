#include "workbench/cli/dialog_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <set>

#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/dialog_output.h"
#include "workbench/cli/item_help.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/run_notes.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/named_values.h"
#include "workbench/platform/unknown_codes.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/runs/account_login.h"
#include "workbench/runs/report_run.h"

namespace quillon::workbench {

namespace {

std::vector<DialogStep> stepsOf(const DialogOptions& options) {
  std::vector<DialogStep> steps;
  for (const std::string& step :
       options.steps.empty() ? std::vector<std::string>{"init", "view", "click"} : options.steps)
    steps.push_back(dialogStep(step));
  return steps;
}

}  // namespace

void runDialog(const DialogOptions& options, std::ostream& out, std::ostream& notes) {
  const Report& report = reportNamed(options.report);
  const std::vector<DialogStep> steps = stepsOf(options);
  if (!options.saving.name.empty()) SavedFilters::ofUser().requireFree(options.saving.name, options.saving.replace);
  const SignedInAccount account = logIn(options.account, options.language, options.date);
  const auto filter = std::make_shared<FilterObject>(report.registration, InitialValues::none);
  if (!options.filterFile.empty()) readFilterFile(*filter, options.filterFile);
  resolveNames(*filter, *account.session, options.language, true);
  std::set<const FilterEntry*> given = givenTo(*filter);

  RunNotes observer(notes, options.language);
  std::vector<std::string> messages;
  EmbeddedPlatform platform({.account = account.source,
                             .language = options.language,
                             .messages = [&messages](std::string_view text, int) { messages.emplace_back(text); }});
  const auto dialog = std::make_shared<FilterDialogObject>(filter, account.login, account.session);
  const auto runner = makeDialogRunner(platform, report, dialog);
  DialogPlay play(dialog, *runner, messages);
  const bool written = writePaged(out, options.screen, [&](std::ostream& pages) {
    for (const DialogStep& step : steps) {
      play.take(step);
      if (const FilterEntry* const changed = play.changed(); changed != nullptr) given.insert(changed);
      if (step.kind == DialogStep::Kind::init) resolveOffered(*filter, *account.session, options.language);
      if (options.format == DialogFormat::json) {
        writeDialogJson(pages, step, play, options.language);
      } else {
        if (&step != &steps.front()) pages << '\n';
        writeDialogTable(pages, step, play, options.screen.style(options.language));
      }
    }
  });
  if (play.accepted() == false && !play.messages().empty())
    noteValuesToGive(*filter, play.messages().back(), account, options.language, observer);
  for (const Message& line : unknownCodes(*filter, *account.session))
    observer.noted(oneLine(line.in(options.language)));
  if (!options.saving.name.empty()) {
    if (!play.accepted().value_or(false)) throw UserError(messages::filterNotConfirmed());
    saveFilter(options.saving, *filter, given, options.language, observer);
  }
  if (!written) throw UserError(messages::dialogNotWritten());
}

void addDialogCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("dialog", "Show what a report's filter dialog shows after each step");
  const auto options = std::make_shared<DialogOptions>();
  static const std::map<std::string, DialogFormat> formats = {{"table", DialogFormat::table},
                                                              {"json", DialogFormat::json}};
  command.add_option("REPORT", options->report, "The report: " + reportNames())->required();
  addItemHelp(command, options->report);
  addAccountOption(command, "--account", options->account).required();
  addFilterOption(command, options->filterFile, "The filter with which the dialog begins");
  addSaveFilterOptions(command, options->saving);
  command
      .add_option("--step", options->steps,
                  "What happens, in order (may be repeated): init, view, click, change:KEY=VALUE; without it: init, "
                  "view, click")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_option("--format", options->format, "table or json (one object a step)")->transform(oneOf(formats));
  addLanguageOption(command, options->language);
  addScreenOptions(command, options->screen);
  addDateOption(command, options->date);
  command.callback([options] {
    options->screen.screen = outputScreen();
    runDialog(*options, std::cout, std::cerr);
  });
}

}  // namespace quillon::workbench
