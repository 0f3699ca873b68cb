#include "workbench/cli/layouts_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

#include "workbench/cli/language_option.h"
#include "workbench/cli/usage_message.h"
#include "workbench/messages/filter.h"
#include "workbench/messages/keeping.h"
#include "workbench/messages/program.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/text_table.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

void addOption(std::string& text, std::string_view name, const std::string& value) {
  if (!value.empty()) text.append(text.empty() ? "" : " ").append(name).append(" ").append(value);
}

void addList(std::string& text, std::string_view name, const std::vector<std::string>& values) {
  std::string list;
  for (const std::string& value : values)
    list.append(list.empty() ? "" : ",").append(value);
  addOption(text, name, list);
}

// "--layout lines --sort -iMoney".
std::string optionsOf(const LayoutText& layout) {
  std::string text;
  addOption(text, "--layout", layout.layout);
  addOption(text, "--pivot", layout.pivot);
  addList(text, "--columns", layout.arrangement.columns);
  addList(text, "--sort", layout.arrangement.sort);
  addList(text, "--group-by", layout.arrangement.groupBy);
  if (layout.allColumns) text.append(text.empty() ? "" : " ").append("--all-columns");
  return text;
}

}  // namespace

void listLayouts(const KeptLayouts& layouts, Language language, std::ostream& out) {
  const std::vector<std::string> names = layouts.names();
  if (names.empty()) {
    out << messages::noLayouts(utf8FromPath(layouts.folder())).in(language) << '\n';
    return;
  }
  TextTable table(out, {{std::string(messages::filterHeading.in(language)), Align::left},
                        {std::string(messages::reportHeading.in(language)), Align::left},
                        {std::string(messages::layoutHeading.in(language)), Align::left}});
  for (const std::string& name : names) {
    try {
      const KeptLayout layout = layouts.read(name);
      table.row({name, layout.report, oneLine(optionsOf(layout.text))});
    } catch (const std::exception&) {
      table.row({name, "", std::string(messages::unreadable.in(language))});  // `show` says why
    }
  }
  table.finish();
}

void addLayoutsCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("layouts", "List, show and remove the layouts that were saved");
  command.require_subcommand(1);
  CLI::App& list = *command.add_subcommand("list", "List the saved layouts with what they show");
  const auto language = std::make_shared<Language>(Language::chinese);
  addLanguageOption(list, *language);
  list.callback([language] { listLayouts(KeptLayouts::ofUser(), *language, std::cout); });

  const auto name = std::make_shared<std::string>();
  CLI::App& show = *command.add_subcommand("show", "Print a saved layout's file, for --layout FILE elsewhere");
  show.add_option("NAME", *name, "The layout")->required();
  addLanguageOption(show, *language);
  show.callback([name] {
    const KeptLayouts layouts = KeptLayouts::ofUser();
    layouts.requireThere(*name);
    const std::string file = utf8FromPath(layouts.path(*name));
    const std::string text = readTextFile(file);
    parseKeptLayout(text, file);
    std::cout << text;
  });
  CLI::App& remove = *command.add_subcommand("remove", "Remove a saved layout");
  remove.add_option("NAME", *name, "The layout")->required();
  addLanguageOption(remove, *language);
  remove.callback([name] { KeptLayouts::ofUser().remove(*name); });
}

void addLayoutOption(CLI::App& command, std::string& layout) {
  command.add_option(
      "--layout", layout,
      "summary, tree or lines; of the ledger ledger, columnar or lines; of the voucher report vouchers or "
      "lines; or a saved layout's NAME, or a JSON FILE");
}

LayoutText layoutAskedFor(const Report& report, LayoutText asked) {
  const std::string name = asked.layout;
  if (name.empty() || ownLayout(name)) return asked;
  if (isSavedAsFile(name)) return withKeptLayout(report, std::move(asked), name);
  std::vector<std::string> names;
  for (const Layout layout : report.layouts)
    names.emplace_back(layoutName(layout));
  const KeptLayouts kept = KeptLayouts::ofUser();
  if (kept.has(name)) return withKeptLayout(report, std::move(asked), utf8FromPath(kept.path(name)));
  const std::vector<std::string> others = kept.names();
  names.insert(names.end(), others.begin(), others.end());
  throw CLI::ValidationError("--layout", usageText(messages::noneOf(name, listOf(names), suggestion(name, names))));
}

CLI::Option& addSaveLayoutOptions(CLI::App& command, FileToSave& saving) {
  CLI::Option& save = *command.add_option("--save-layout", saving.name,
                                          "Save the layout as it is shown under this name, for --layout NAME");
  command.add_flag("--replace-layout", saving.replace, "Let --save-layout replace a layout of that name")->needs(&save);
  return save;
}

}  // namespace quillon::workbench
