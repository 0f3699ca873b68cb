#include "workbench/cli/account_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "workbench/account/account.h"
#include "workbench/account/key_check.h"
#include "workbench/account/leftover_tables.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_diff_command.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/account_transfer_command.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/standard_streams.h"
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

void makeSample(const std::string& file, const account::SampleOptions& options) {
  const bool terminal = errorsGoToTerminal();
  account::createSample(pathFromUtf8(file), options, [terminal](std::int64_t done, std::int64_t total) {
    if (terminal)
      std::cerr << "\r\x1b[K" << groupedCount(done) << " of " << groupedCount(total) << " ledger lines" << std::flush;
  });
  if (terminal) std::cerr << "\r\x1b[K";
  std::cout << "made " << file << " with " << groupedCount(options.rows) << " ledger lines\n";
}

// ", made 3 hours ago"; empty when nobody knows.
std::string ageText(const account::LeftoverTable& table) {
  if (!table.minutes) return {};
  constexpr std::int64_t hour = 60, day = 24 * hour;
  const auto counted = [](std::int64_t count, const char* unit) {
    return ", made " + std::to_string(count) + ' ' + unit + (count == 1 ? "" : "s") + " ago";
  };
  if (*table.minutes >= day) return counted(*table.minutes / day, "day");
  if (*table.minutes >= hour) return counted(*table.minutes / hour, "hour");
  return counted(*table.minutes, "minute");
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
  const auto left = account::leftoverTables(*connection);
  if (left.empty()) return;
  std::cout << "\ntables of reports (quillon account clean drops them):\n";
  for (const account::LeftoverTable& table : left)
    std::cout << table.name << ageText(table) << '\n';
}

}  // namespace

void cleanAccount(const AccountSource& source, const std::function<bool(const std::string&)>& agrees,
                  std::ostream& out) {
  const auto connection = source.open(tsql::OpenMode::existing);
  const auto left = account::leftoverTables(*connection);
  int dropped = 0;
  for (const account::LeftoverTable& table : left) {
    const std::string shown = table.name + ageText(table);
    const bool drops = !table.mayBeWanted() || agrees(shown);
    try {
      tsql::endIfStopped();
      if (drops) account::dropTable(*connection, table.name);
    } catch (const tsql::Stopped&) {
      if (dropped == 0) throw;
      throw UserError(std::to_string(dropped) + " of " + std::to_string(left.size()) + " tables are dropped");
    }
    if (!drops) {
      out << "kept " << shown << "; it may be in use or wanted: --yes drops it, too\n";
      continue;
    }
    ++dropped;
    out << "dropped " << shown << '\n';
  }
  if (left.empty()) out << "no tables of reports were left\n";
}

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

bool checkIntegrity(const AccountSource& source, std::ostream& out) {
  if (source.onServer()) throw UserError("--integrity is for account files; a server checks its own with DBCC CHECKDB");
  const std::vector<std::string> damage = tsql::Connection::damage(source.file());
  for (const std::string& line : damage)
    out << line << '\n';
  out << (damage.empty()
              ? "the account file is sound\n"
              : "\nThe account file is damaged: go back to a copy, or save with `quillon account export` what "
                "can still be read.\n");
  return damage.empty();
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
  create.callback([file, options] { makeSample(*file, *options); });

  const auto source = std::make_shared<AccountSource>();
  CLI::App& information = *command.add_subcommand("info", "Years, start months, valuation method, row counts");
  addAccountOption(information, "SOURCE", *source).required();
  information.callback([source] { showInfo(*source); });

  CLI::App& checking = *command.add_subcommand("check", "Name the rows that would make reports show lines twice");
  addAccountOption(checking, "SOURCE", *source).required();
  const auto integrity = std::make_shared<bool>(false);
  checking.add_flag("--integrity", *integrity, "Look for damage of the account file instead");
  checking.callback([source, integrity] {
    if (!(*integrity ? checkIntegrity(*source, std::cout) : checkAccount(*source, std::cout))) endWith(1);
  });

  CLI::App& cleaning =
      *command.add_subcommand("clean", "Drop the tables that interrupted reports left, and those of --keep");
  addAccountOption(cleaning, "SOURCE", *source).required();
  const auto everything = std::make_shared<bool>(false);
  cleaning.add_flag("--yes", *everything, "Do not ask before dropping what may be in use or wanted");
  cleaning.callback([source, everything] {
    cleanAccount(
        *source, [everything](const std::string& table) { return *everything || userAgrees("drop " + table + "?"); },
        std::cout);
  });

  addDiffCommand(command);
  addTransferCommands(command);
}

}  // namespace quillon::workbench
