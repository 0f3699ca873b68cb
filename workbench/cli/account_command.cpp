#include "workbench/cli/account_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "workbench/account/account.h"
#include "workbench/account/key_check.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_diff_command.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/account_transfer_command.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/presentation/text_table.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

std::string month(int number) {
  return number == 0 ? "-" : std::to_string(number);
}

void makeSample(const std::string& file, const account::SampleOptions& options) {
  const bool terminal = errorsGoToTerminal();
  account::createSample(pathFromUtf8(file), options, [terminal](std::int64_t done, std::int64_t total) {
    if (terminal)
      std::cerr << "\r\x1b[K" << groupedCount(done) << " of " << groupedCount(total) << " ledger lines" << std::flush;
  });
  if (terminal) std::cerr << "\r\x1b[K";
  std::cout << "made " << file << " with " << groupedCount(options.rows) << " ledger lines\n";
}

void showInfo(const AccountSource& source) {
  const auto connection = source.open(tsql::OpenMode::readOnly);
  const account::AccountInfo info = account::info(*connection);
  std::cout << "account " << info.accountCode << ", inventory accounting since " << info.startDate
            << ", valuation method " << info.valuationMethod << ", current year " << info.currentYear << "\n\n";
  TextTable years(std::cout, {{"year", Align::right},
                              {"cost items from month", Align::right},
                              {"settled months", Align::right},
                              {"ledger lines", Align::right}});
  for (const account::YearInfo& year : info.years) {
    years.row({std::to_string(year.year), month(year.costItemStartMonth), std::to_string(year.settledMonths),
               groupedCount(year.ledgerLines)});
  }
  years.finish();
  std::cout << '\n';
  TextTable tables(std::cout, {{"table"}, {"rows", Align::right}});
  for (const auto& table : info.tables)
    tables.row({table.name, groupedCount(table.rows)});
  tables.finish();
  const auto left = account::leftoverWorkTables(*connection);
  if (left.empty()) return;
  std::cout << "\nwork tables that interrupted reports left (quillon account clean drops them):\n";
  for (const std::string& name : left)
    std::cout << name << '\n';
}

void clean(const AccountSource& source) {
  const auto connection = source.open(tsql::OpenMode::existing);
  const auto dropped = account::dropLeftoverWorkTables(*connection);
  for (const std::string& name : dropped)
    std::cout << "dropped " << name << '\n';
  if (dropped.empty()) std::cout << "no work tables were left\n";
}

}  // namespace

bool checkAccount(const AccountSource& source, std::ostream& out) {
  const auto connection = source.open(tsql::OpenMode::readOnly);
  const std::vector<account::BrokenKey> broken = account::brokenKeys(*connection, joinKeysOfReports());
  if (broken.empty()) {
    out << "every key by which the reports join has one row\n";
    return true;
  }
  TextTable table(out, {{"table"}, {"key"}, {"rows", Align::right}, {"reports"}});
  for (const account::BrokenKey& key : broken)
    table.row({key.table, key.key, groupedCount(key.rows), key.reports});
  table.finish();
  out << "\nThese reports count a ledger line that names such a key once for each of its rows; leave one row a key.\n";
  return false;
}

void addAccountCommand(CLI::App& app) {
  CLI::App& command =
      *app.add_subcommand("account", "Make, inspect and clean embedded accounts, take them elsewhere and back");
  command.require_subcommand(1);

  const auto file = std::make_shared<std::string>();
  const auto options = std::make_shared<account::SampleOptions>();
  static const std::map<std::string, account::Valuation> valuations = {{"inventory", account::Valuation::inventory},
                                                                       {"warehouse", account::Valuation::warehouse},
                                                                       {"department", account::Valuation::department}};
  CLI::App& create = *command.add_subcommand("new", "Make a sample account");
  create.add_option("FILE", *file, "The file to make; it must not exist")->required();
  create.add_option("--rows", options->rows, "Ledger lines")->capture_default_str();
  create.add_option("--seed", options->seed, "The same seed gives the same account")->capture_default_str();
  create.add_option("--years", options->years, "Years")->capture_default_str();
  create.add_option("--valuation", options->valuation, "inventory, warehouse or department")
      ->transform(oneOf(valuations));
  create.add_option("--fx-start-month", options->costItemStartMonth, "The first year's first month with cost items")
      ->capture_default_str();
  create.callback([file, options] { makeSample(*file, *options); });

  const auto source = std::make_shared<AccountSource>();
  CLI::App& information = *command.add_subcommand("info", "Years, start months, valuation method, row counts");
  addAccountOption(information, "SOURCE", *source).required();
  information.callback([source] { showInfo(*source); });

  CLI::App& checking = *command.add_subcommand("check", "Name the rows that would make reports show lines twice");
  addAccountOption(checking, "SOURCE", *source).required();
  checking.callback([source] {
    if (!checkAccount(*source, std::cout)) endWith(1);
  });

  CLI::App& cleaning = *command.add_subcommand("clean", "Drop the work tables that interrupted reports left");
  addAccountOption(cleaning, "SOURCE", *source).required();
  cleaning.callback([source] { clean(*source); });

  addDiffCommand(command);
  addTransferCommands(command);
}

}  // namespace quillon::workbench
