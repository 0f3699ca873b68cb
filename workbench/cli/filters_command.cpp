#include "workbench/cli/filters_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/named_choice.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/text_table.h"
#include "workbench/runs/filter_report.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

// "仓库=07, 部门=05"; an item that no report is known for has its key.
std::string itemsOf(FilterObject& filter, Language language) {
  std::string text;
  for (const auto& entry : filter.entries()) {
    const std::string value = entry->sql.empty() ? describeEntry(*entry, language) : entry->sql;
    if (!value.empty())
      text.append(text.empty() ? "" : ", ").append(entry->item.caption(language)).append("=").append(value);
  }
  return text;
}

}  // namespace

void listFilters(const SavedFilters& filters, Language language, std::ostream& out) {
  const std::vector<std::string> names = filters.names();
  if (names.empty()) {
    out << messages::noFilters(utf8FromPath(filters.folder())).in(language) << '\n';
    return;
  }
  TextTable table(out, {{std::string(messages::filterHeading.in(language)), Align::left},
                        {std::string(messages::reportHeading.in(language)), Align::left},
                        {std::string(messages::itemsHeading.in(language)), Align::left}});
  for (const std::string& name : names) {
    const std::string file = utf8FromPath(filters.path(name));
    try {
      const std::string text = readTextFile(file);
      const Report* const report = reportOfFilter(text, file);
      FilterObject filter(report != nullptr ? report->registration : ReportRegistration{}, InitialValues::none);
      applyFilterFile(filter, text, file);
      table.row({name, report == nullptr ? "" : report->registration.name, oneLine(itemsOf(filter, language))});
    } catch (const std::exception&) {
      table.row({name, "", std::string(messages::unreadable.in(language))});  // `show` says why
    }
  }
  table.finish();
}

void addFiltersCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("filters", "List, show and remove the filters that were saved");
  command.require_subcommand(1);
  CLI::App& list = *command.add_subcommand("list", "List the saved filters with what they hold");
  const auto language = std::make_shared<Language>(Language::chinese);
  addLanguageOption(list, *language);
  list.callback([language] { listFilters(SavedFilters::ofUser(), *language, std::cout); });

  const auto name = std::make_shared<std::string>();
  CLI::App& show = *command.add_subcommand("show", "Print a saved filter's file, for --filter FILE elsewhere");
  show.add_option("NAME", *name, "The filter")->required();
  addLanguageOption(show, *language);
  show.callback([name] {
    const SavedFilters filters = SavedFilters::ofUser();
    filters.requireThere(*name);
    std::cout << readTextFile(utf8FromPath(filters.path(*name)));
  });
  CLI::App& remove = *command.add_subcommand("remove", "Remove a saved filter");
  remove.add_option("NAME", *name, "The filter")->required();
  addLanguageOption(remove, *language);
  remove.callback([name] { SavedFilters::ofUser().remove(*name); });
}

void addFilterOption(CLI::App& command, std::string& file, const std::string& description) {
  command.add_option_function<std::string>(
      "--filter",
      [&file](const std::string& text) {
        // A file needs no folder for saved filters.
        file = isSavedAsFile(text) ? text : SavedFilters::ofUser().fileOf(text);
      },
      description + ": a saved filter's NAME, or a JSON FILE");
}

void addSaveFilterOptions(CLI::App& command, FilterToSave& saving) {
  CLI::Option& save = *command.add_option("--save-filter", saving.name,
                                          "Save the filter as it was given under this name, for --filter NAME");
  command.add_flag("--replace-filter", saving.replace, "Let --save-filter replace a filter of that name")->needs(&save);
}

}  // namespace quillon::workbench
