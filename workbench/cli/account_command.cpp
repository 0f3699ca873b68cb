#include "workbench/cli/account_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "workbench/account/account.h"
#include "workbench/account/leftover_tables.h"
#include "workbench/cli/account_check_command.h"
#include "workbench/cli/account_diff_command.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/account_transfer_command.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/screen_options.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/transfer_line.h"
#include "workbench/messages/account.h"
#include "workbench/messages/program.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_table.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

std::string month(int number) {
  return number == 0 ? "-" : std::to_string(number);
}

void makeSample(const std::string& file, const account::SampleOptions& options, Language language) {
  TransferLine line(language);
  account::createSample(pathFromUtf8(file), options, line.ofLedgerLines(options.rows));
  line.finish();
  std::cout << messages::sampleMade(file, groupedCount(options.rows)).in(language) << '\n';
}

Message ageText(std::int64_t minutes) {
  constexpr std::int64_t hour = 60, day = 24 * hour;
  if (minutes >= day) return minutes / day == 1 ? messages::oneDay() : messages::days(minutes / day);
  if (minutes >= hour) return minutes / hour == 1 ? messages::oneHour() : messages::hours(minutes / hour);
  return minutes == 1 ? messages::oneMinute() : messages::minutes(minutes);
}

// "QuillonX, made 3 hours ago"; the name alone when nobody knows.
Message described(const account::LeftoverTable& table) {
  return table.minutes ? messages::tableOfAge(table.name, ageText(*table.minutes)) : Message::verbatim(table.name);
}

std::string heading(const Text<0>& text, Language language) {
  return std::string(text.in(language));
}

void writeInfo(tsql::Database& connection, std::ostream& out, const TableStyle& style) {
  const Language language = style.language;
  const account::AccountInfo info = account::info(connection);
  out << messages::accountLine(info.accountCode, info.startDate, info.valuationMethod, info.currentYear).in(language)
      << "\n\n";
  TextTable years(out,
                  {{heading(messages::yearHeading, language), Align::right},
                   {heading(messages::costItemsHeading, language), Align::right},
                   {heading(messages::settledHeading, language), Align::right},
                   {heading(messages::ledgerLinesHeading, language), Align::right}},
                  style);
  for (const account::YearInfo& year : info.years) {
    years.row({std::to_string(year.year), month(year.costItemStartMonth), std::to_string(year.settledMonths),
               groupedCount(year.ledgerLines)});
  }
  years.finish();
  out << '\n';
  TextTable tables(
      out, {{heading(messages::tableHeading, language)}, {heading(messages::rowsHeading, language), Align::right}},
      style);
  for (const auto& table : info.tables)
    tables.row({table.name, groupedCount(table.rows)});
  tables.finish();
  const auto left = account::leftoverTables(connection);
  if (left.empty()) return;
  out << '\n' << messages::leftoverTables.in(language) << '\n';
  for (const account::LeftoverTable& table : left)
    out << described(table).in(language) << '\n';
}

}  // namespace

void showInfo(const AccountSource& source, std::ostream& out, Language language, const ScreenOptions& screen) {
  const auto connection = source.open(tsql::OpenMode::readOnly);
  if (!writePaged(out, screen, [&](std::ostream& pages) { writeInfo(*connection, pages, screen.style(language)); }))
    throw UserError(messages::outputNotWritten());
}

void cleanAccount(const AccountSource& source, const std::function<bool(const std::string&)>& agrees, std::ostream& out,
                  Language language) {
  const auto connection = source.open(tsql::OpenMode::existing);
  const auto left = account::leftoverTables(*connection);
  int dropped = 0;
  for (const account::LeftoverTable& table : left) {
    const std::string shown = described(table).in(language);
    const bool drops = !table.mayBeWanted() || agrees(shown);
    try {
      tsql::endIfStopped();
      if (drops) account::dropTable(*connection, table.name);
    } catch (const tsql::Stopped&) {
      if (dropped == 0) throw;
      throw UserError(messages::someDropped(dropped, left.size()));
    }
    if (!drops) {
      out << messages::kept(shown).in(language) << '\n';
      continue;
    }
    ++dropped;
    out << messages::dropped(shown).in(language) << '\n';
  }
  if (left.empty()) out << messages::nothingLeft.in(language) << '\n';
}

void addAccountCommand(CLI::App& app) {
  CLI::App& command =
      *app.add_subcommand("account", "Make, inspect and clean embedded accounts, take them elsewhere and back");
  command.require_subcommand(1);

  const auto language = std::make_shared<Language>(Language::english);
  const auto screen = std::make_shared<ScreenOptions>();
  const auto file = std::make_shared<std::string>();
  const auto options = std::make_shared<account::SampleOptions>();
  static const std::map<std::string, account::Valuation> valuations = {{"inventory", account::Valuation::inventory},
                                                                       {"warehouse", account::Valuation::warehouse},
                                                                       {"department", account::Valuation::department}};
  CLI::App& create = *command.add_subcommand("new", "Make a sample account");
  create.add_option("FILE", *file, "The file to make; it must not exist")->required();
  create.add_option("--rows", options->rows, "Ledger lines")
      ->transform(wholeNumber<std::int64_t>(1))
      ->capture_default_str();
  create.add_option("--seed", options->seed, "The same seed gives the same account")
      ->transform(wholeNumber<std::uint64_t>(0))
      ->capture_default_str();
  create.add_option("--years", options->years, "Years")
      ->transform(wholeNumber(1, account::maximumSampleYears))
      ->capture_default_str();
  create.add_option("--valuation", options->valuation, "inventory, warehouse or department")
      ->transform(oneOf(valuations));
  create.add_option("--fx-start-month", options->costItemStartMonth, "The first year's first month with cost items")
      ->transform(wholeNumber(1, 12))
      ->capture_default_str();
  addLanguageOption(create, *language);
  create.callback([file, options, language] { makeSample(*file, *options, *language); });

  const auto source = std::make_shared<AccountSource>();
  CLI::App& information = *command.add_subcommand("info", "Years, start months, valuation method, row counts");
  addAccountOption(information, "SOURCE", *source).required();
  addLanguageOption(information, *language);
  addScreenOptions(information, *screen);
  information.callback([source, language, screen] {
    screen->screen = outputScreen();
    showInfo(*source, std::cout, *language, *screen);
  });

  addCheckCommand(command);

  CLI::App& cleaning =
      *command.add_subcommand("clean", "Drop the tables that interrupted reports left, and those of --keep");
  addAccountOption(cleaning, "SOURCE", *source).required();
  const auto everything = std::make_shared<bool>(false);
  cleaning.add_flag("--yes", *everything, "Do not ask before dropping what may be in use or wanted");
  addLanguageOption(cleaning, *language);
  cleaning.callback([source, everything, language] {
    const auto agrees = [everything, language](const std::string& table) {
      return *everything || userAgrees(messages::dropQuestion(table).in(*language));
    };
    cleanAccount(*source, agrees, std::cout, *language);
  });

  addDiffCommand(command);
  addTransferCommands(command);
}

}  // namespace quillon::workbench
