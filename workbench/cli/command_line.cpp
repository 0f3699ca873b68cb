#include "workbench/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "workbench/cli/account_command.h"
#include "workbench/cli/book_command.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/filters_command.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/layouts_command.h"
#include "workbench/cli/list_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/cli/serve_command.h"
#include "workbench/cli/sql_command.h"
#include "workbench/cli/stop_signals.h"
#include "workbench/cli/trace_command.h"
#include "workbench/cli/usage_message.h"
#include "workbench/cli/verify_command.h"
#include "workbench/messages/common.h"
#include "workbench/messages/program.h"
#include "workbench/odbc/connection_string.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/runs/run_monitor.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

constexpr int wrongUsage = 2;
constexpr const char* helpCommand = "help";

// "quillon account new"
std::string fullName(const CLI::App& command) {
  const CLI::App* const parent = command.get_parent();
  return parent == nullptr ? command.get_name() : fullName(*parent) + " " + command.get_name();
}

std::vector<std::string> commandNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* sub : command.get_subcommands({}))
    names.push_back(sub->get_name());
  return names;
}

std::vector<std::string> optionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames())
      names.push_back("--" + name);
    for (const std::string& name : option->get_snames())
      names.push_back("-" + name);
  }
  return names;
}

Message noSuchCommand(const CLI::App& command, const std::string& word) {
  const std::vector<std::string> names = commandNames(command);
  const Message behind = nearestName(word, names) ? suggestion(word, names) : messages::commandsAre(listOf(names));
  if (command.get_parent() == nullptr) return messages::noSuchCommand(word, behind);
  return messages::noSuchCommandOf(word, fullName(command), behind);
}

bool isOption(const std::string& argument) {
  return argument.size() > 1 && argument.starts_with('-') && argument != "--";
}

// --- What CLI11 could not read ----------------------------------------------------------------------------------------

// The innermost command that is named.
const CLI::App& innermost(const CLI::App& app) {
  const std::vector<CLI::App*> named = app.get_subcommands();
  return named.empty() ? app : innermost(*named.back());
}

Message noSuchOption(const CLI::App& command, const std::string& argument, const CLI::App& inner) {
  const std::string option = argument.substr(0, argument.find('='));
  const std::vector<std::string> its = optionNames(inner);
  if (&command != &inner && std::ranges::find(its, option) != its.end())
    return messages::optionBehindCommand(option, fullName(inner));
  return messages::noSuchOption(fullName(command), option, suggestion(option, optionNames(command)));
}

// What stands where nothing can be made of it: an option that does not exist or, before the commands, a command. Such a slip is
// what is said even where its consequences, a missing argument or one too many, were found first.
std::optional<Message> unknownArgument(const CLI::App& command, const CLI::App& inner) {
  const std::vector<std::string> unknown = command.remaining();
  if (&command == &inner && !command.get_subcommands({}).empty()) {
    if (!unknown.empty() && !isOption(unknown.front())) return noSuchCommand(command, unknown.front());
  }
  if (const auto option = std::ranges::find_if(unknown, isOption); option != unknown.end())
    return noSuchOption(command, *option, inner);
  return &command == &inner ? std::nullopt : unknownArgument(*command.get_subcommands().back(), inner);
}

// The argument at the front of a message of CLI11.
std::string argumentIn(std::string_view message) {
  return std::string(message.substr(0, message.find_first_of(": ")));
}

// The message of `error` in this program's words.
Message inOwnWords(const CLI::App& inner, const CLI::ParseError& error) {
  std::string message = error.what();
  const std::string argument = argumentIn(message);
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    std::vector<std::string> extra = inner.remaining();
    return extra.empty() ? usageMessage(message) : messages::noFurtherArgument(fullName(inner), extra.front());
  }
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    const std::vector<std::string> commands = commandNames(inner);
    if (!commands.empty()) return messages::nameACommand(listOf(commands));
    return messages::optionNeeded(argument);
  }
  if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) {
    constexpr std::string_view between = " excludes ";
    return messages::optionExcludes(argument, message.substr(argument.size() + between.size()));
  }
  if (dynamic_cast<const CLI::RequiresError*>(&error) != nullptr) {
    constexpr std::string_view between = " requires ";
    return messages::optionRequires(argument, message.substr(argument.size() + between.size()));
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    if (message.ends_with("missing")) return messages::optionNeedsValue(argument);
    return message.find("flag") == std::string::npos ? messages::optionOnce(argument)
                                                     : messages::optionTakesNoValue(argument);
  }
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
    constexpr std::string_view before = "Could not convert: ";  // a flag's value; all others have checks of their own
    return messages::optionTakesNoValue(
        argumentIn(message.starts_with(before) ? message.substr(before.size()) : message));
  }
  return usageMessage(message);
}

Message usageLine(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App& inner = innermost(app);
  const std::optional<Message> unknown = unknownArgument(app, inner);
  const Message line = unknown ? *unknown : inOwnWords(inner, error);
  // Who asks for the help of a command that does not exist is not helped by the help of `help`.
  const CLI::App& known = inner.get_name() == helpCommand ? app : inner;
  return line.english().ends_with('?') ? messages::seeHelpAfterQuestion(line, fullName(known))
                                       : messages::seeHelp(line, fullName(known));
}

// --- quillon help -----------------------------------------------------------------------------------------------------

void addHelpCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(helpCommand, "Tell how a command is called, or which commands there are");
  const auto words = std::make_shared<std::vector<std::string>>();
  command.add_option("COMMAND", *words, "The command, such as report, or account new");
  command.callback([&app, words] {
    const CLI::App* wanted = &app;
    for (const std::string& word : *words) {
      const auto named = wanted->get_subcommands([&word](const CLI::App* sub) { return sub->check_name(word); });
      if (named.empty()) refuseUsage(noSuchCommand(*wanted, word));
      wanted = named.front();
    }
    std::cout << wanted->get_formatter()->make_help(wanted, fullName(*wanted), CLI::AppFormatMode::Normal);
  });
}

// What a library threw by itself, in this program's words; empty for this program's own errors.
Message libraryError(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return messages::notEnoughMemory();
  if (const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&error); file != nullptr)
    return messages::cannotUse(utf8FromPath(file->path1()), file->code().message());
  if (dynamic_cast<const nlohmann::json::exception*>(&error) != nullptr) return messages::otherJsonKind();
  return {};
}

}  // namespace

std::string errorLine(const std::exception& error, Language language) {
  const Message ofLibrary = libraryError(error);
  const Message message = ofLibrary.empty() ? errorText(error) : ofLibrary;
  return odbc::ConnectionString(message.in(language)).withoutPassword();
}

int runCommandLine(std::vector<std::string> arguments, const std::string& version, std::ostream& errors) {
  const Language language = languageOf(arguments);
  CLI::App app("Inventory-accounting reports by cost item, and the workbench that runs them");
  app.name("quillon");
  // Under Wine a path may begin with a slash; it is not an option.
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  app.set_version_flag("--version", "quillon " + version);
  addAccountCommand(app);
  addBookCommand(app);
  addDialogCommand(app);
  addDrillCommand(app);
  addFiltersCommand(app);
  addHelpCommand(app);
  addLayoutsCommand(app);
  addListCommand(app);
  addReportCommand(app);
  addServeCommand(app);
  addSqlCommand(app);
  addTraceCommand(app);
  addVerifyCommand(app);
  try {
    app.parse(std::move(arguments));
    return 0;
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::RuntimeError& end) {
    if (stopCause()) throw tsql::Stopped();
    return end.get_exit_code();
  } catch (const CLI::ParseError& error) {
    errors << "quillon: " << odbc::ConnectionString(usageLine(app, error).in(language)).withoutPassword() << '\n';
    return wrongUsage;
  }
}

}  // namespace quillon::workbench
